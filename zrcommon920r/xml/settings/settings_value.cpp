// The setting values: ZRNumValue, ZRStrValue and ZRSettingListValue.
#include <algorithm>
#include <climits>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <iostream>
#include <locale>
#include <sstream>
#include <string>

#include "zrcommon920r/display/display.h"
#include "zrcommon920r/xml/settings/settings.h"

namespace ZRXML_920 {

using ZRDisplay_920::DisplayD;
using ZRDisplay_920::DisplayS;

namespace {

// The smallest normal double: a list's answer to GetDouble.
constexpr double kListDouble = 2.2250738585072014e-308;

// Truncation toward zero; INT_MIN for NaN and for results outside int.
int TruncToInt(double value) {
  if (value > -2147483649.0 && value < 2147483648.0) return static_cast<int>(value);
  return INT_MIN;
}

// Truncation toward zero; LLONG_MIN for NaN and for results outside long long.
long long TruncToLongLong(double value) {
  if (value >= -9223372036854775808.0 && value < 9223372036854775808.0)
    return static_cast<long long>(value);
  return LLONG_MIN;
}

// The int of the low 32 bits of value, two's complement.
int LowBits(long long value) {
  const auto low = static_cast<std::uint32_t>(static_cast<unsigned long long>(value));
  if (low <= static_cast<std::uint32_t>(INT_MAX)) return static_cast<int>(low);
  return static_cast<int>(low - 2147483648u) + INT_MIN;
}

}  // namespace

// ---- ZRNumValue ----

const ZRNumValue ZRNumValue::SYSINI;

ZRNumValue::ZRNumValue()
    : fIntValue(INT_MIN),
      fDoubleValue(gInitalValue),
      fLongLongValue(INT_MIN),  // Intended: -2147483648, not LLONG_MIN
      fNumValueType(eDouble) {}

ZRNumValue::ZRNumValue(int value) {
  SetNumValue(value);
}

ZRNumValue::ZRNumValue(double value) {
  SetNumValue(value);
}

ZRNumValue::ZRNumValue(long long value) {
  SetNumValue(value);
}

void ZRNumValue::SetNumValue(int value) {
  fIntValue = value;
  fDoubleValue = value;
  fLongLongValue = value;
  fNumValueType = eInt;
}

void ZRNumValue::SetNumValue(double value) {
  fIntValue = TruncToInt(value);
  fDoubleValue = value;
  fLongLongValue = TruncToLongLong(value);
  fNumValueType = eDouble;
}

void ZRNumValue::SetNumValue(long long value) {
  fIntValue = LowBits(value);
  fDoubleValue = static_cast<double>(value);
  fLongLongValue = value;
  fNumValueType = eLongLong;
}

IZRSettingValue * ZRNumValue::Clone() const {
  return new ZRNumValue(*this);
}

bool ZRNumValue::operator==(const IZRSettingValue & other) const {
  const auto * that = dynamic_cast<const ZRNumValue *>(&other);
  if (that == nullptr) return false;
  // Intended: unlike types meet on their int fields, so 1.9 equals the int 1.
  if (fNumValueType != that->fNumValueType) return fIntValue == that->fIntValue;
  switch (fNumValueType) {
    case eInt:
      return fIntValue == that->fIntValue;
    case eLongLong:
      return fLongLongValue == that->fLongLongValue;
    case eDouble:
      break;
  }
  const double a = fDoubleValue, b = that->fDoubleValue;
  if (a == 0.0 && b == 0.0) return true;
  if (a == gInitalValue) return b == gInitalValue;
  if (b == gInitalValue) return false;
  // Intended: relative only, so 0 and 1e-300 differ, and a NaN, an infinity or a tiny
  // subnormal differs even from itself.
  return std::fabs(a - b) < fEpsilon * std::max(std::fabs(a), std::fabs(b));
}

bool ZRNumValue::operator<(const IZRSettingValue & other) const {
  const auto * that = dynamic_cast<const ZRNumValue *>(&other);
  if (that == nullptr) return false;
  if (fNumValueType != that->fNumValueType) return fIntValue < that->fIntValue;
  switch (fNumValueType) {
    case eInt:
      return fIntValue < that->fIntValue;
    case eLongLong:
      return fLongLongValue < that->fLongLongValue;
    case eDouble:
      break;
  }
  return fDoubleValue < that->fDoubleValue;
}

std::string ZRNumValue::GetString() const {
  if (fDoubleValue <= gInitalValue) return "Undefined";
  std::ostringstream out;
  switch (fNumValueType) {
    case eInt:
      out << fIntValue;
      break;
    case eLongLong:
      out << fLongLongValue;
      break;
    case eDouble:
      out << fDoubleValue;
      break;
  }
  return out.str();
}

bool ZRNumValue::GetBool() const {
  switch (fNumValueType) {
    case eInt:
      return fIntValue > 0;
    case eLongLong:
      return fLongLongValue > 0;
    case eDouble:
      break;
  }
  return fDoubleValue > 0.0;
}

void ZRNumValue::Display() const {
  DisplayS("Setting Value Type", "Numeric");
  DisplayD("Setting Value", fDoubleValue);
}

// ---- ZRStrValue ----

IZRSettingValue * ZRStrValue::Clone() const {
  return new ZRStrValue(*this);
}

bool ZRStrValue::operator==(const IZRSettingValue & other) const {
  const auto * that = dynamic_cast<const ZRStrValue *>(&other);
  return that != nullptr && fValue == that->fValue;
}

bool ZRStrValue::operator<(const IZRSettingValue & other) const {
  // std::string compares chars as unsigned bytes, over the whole length.
  const auto * that = dynamic_cast<const ZRStrValue *>(&other);
  return that != nullptr && fValue.compare(that->fValue) < 0;
}

int ZRStrValue::GetInt() const {
  // strtol saturates at the long limits; the result is then held to int's.
  const long value = std::strtol(fValue.c_str(), nullptr, 10);
  if (value > INT_MAX) return INT_MAX;
  if (value < INT_MIN) return INT_MIN;
  return static_cast<int>(value);
}

long long ZRStrValue::GetLongLong() const {
  return std::strtoll(fValue.c_str(), nullptr, 10);
}

double ZRStrValue::GetDouble() const {
  if (fValue.empty()) return ZRNumValue::gInitalValue;
  std::string text = fValue;
  const std::size_t point = text.find('.');
  if (point != std::string::npos)
    text[point] = std::use_facet<std::numpunct<char>>(std::cout.getloc()).decimal_point();
  std::istringstream in(text);
  double value = 0.0;
  in >> value;  // a failed read leaves 0
  return value;
}

void ZRStrValue::Display() const {
  DisplayS("Setting Value Type", "String");
  DisplayS("Setting Value", fValue);
}

// ---- ZRSettingListValue ----

ZRSettingListValue::ZRSettingListValue() : fList(new ZRSettings()) {}

ZRSettingListValue::ZRSettingListValue(const ZRSettings & list) : fList(new ZRSettings(list)) {}

ZRSettingListValue::ZRSettingListValue(const ZRSettingListValue & other)
    : IZRSettingValue(other), fList(new ZRSettings(*other.fList)) {}

ZRSettingListValue & ZRSettingListValue::operator=(const ZRSettingListValue & other) {
  if (this != &other) {
    ZRSettings * copy = new ZRSettings(*other.fList);
    delete fList;
    fList = copy;
  }
  return *this;
}

ZRSettingListValue::~ZRSettingListValue() {
  delete fList;
}

IZRSettingValue * ZRSettingListValue::Clone() const {
  return new ZRSettingListValue(*this);
}

bool ZRSettingListValue::operator==(const IZRSettingValue & other) const {
  const auto * that = dynamic_cast<const ZRSettingListValue *>(&other);
  return that != nullptr && *fList == *that->fList;
}

bool ZRSettingListValue::operator<(const IZRSettingValue & other) const {
  const auto * that = dynamic_cast<const ZRSettingListValue *>(&other);
  return that != nullptr && *fList < *that->fList;
}

int ZRSettingListValue::GetInt() const {
  return INT_MIN;
}

double ZRSettingListValue::GetDouble() const {
  return kListDouble;
}

long long ZRSettingListValue::GetLongLong() const {
  return LLONG_MIN;
}

void ZRSettingListValue::Display() const {
  fList->Display();
}

}  // namespace ZRXML_920
