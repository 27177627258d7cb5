// Value: construction, strict and converting access, containers, ordering and display.
#include "zrcommon920r/common/value.h"

#include <algorithm>
#include <charconv>
#include <climits>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <iostream>
#include <locale>
#include <new>
#include <sstream>
#include <stdexcept>
#include <system_error>

namespace ZRCommon_920 {

namespace {

const char kTypeWrong[] = "Value type wrong!";
const char kNotArray[] = "This value is not an array!";
const char kOutOfBounds[] = "Out of this array bounds!";

constexpr double kEqualityMultiplier = 100.0;

[[noreturn]] void ThrowTypeWrong() {
  throw ZRException(13, kTypeWrong);
}
[[noreturn]] void ThrowNotArray() {
  throw ZRException(13, kNotArray);
}

std::uint64_t BitsOf(double d) {
  std::uint64_t u;
  std::memcpy(&u, &d, sizeof u);
  return u;
}

std::uint64_t BitsOf(long long n) {
  std::uint64_t u;
  std::memcpy(&u, &n, sizeof u);
  return u;
}

double DoubleFromBits(std::uint64_t u) {
  double d;
  std::memcpy(&d, &u, sizeof d);
  return d;
}

long long IntegerFromBits(std::uint64_t u) {
  long long n;
  std::memcpy(&n, &u, sizeof n);
  return n;
}

std::uint64_t WithLowByte(std::uint64_t u, bool value) {
  return (u & ~std::uint64_t{0xFF}) | (value ? 1U : 0U);
}

// The empty string handed out for a null string pointer and by GetStringRef. Built on
// first use in static storage and never destroyed, so it outlives every other static.
const std::string & SharedEmptyString() {
  alignas(std::string) static unsigned char storage[sizeof(std::string)];
  static const std::string * const empty = new (storage) std::string();
  return *empty;
}

// Truncation toward zero without undefined behaviour: saturates outside long long's range,
// and a NaN gives 0.
long long TruncateToInteger(double d) {
  if (std::isnan(d)) return 0;
  constexpr double kTwoTo63 = 9223372036854775808.0;
  if (d >= kTwoTo63) return LLONG_MAX;
  if (d < -kTwoTo63) return LLONG_MIN;
  return static_cast<long long>(d);
}

// %g with six significant digits, in the classic locale.
std::string RealText(double d) {
  char buf[32];
  const std::to_chars_result r =
      std::to_chars(buf, buf + sizeof buf, d, std::chars_format::general, 6);
  return r.ec == std::errc() ? std::string(buf, r.ptr) : std::string();
}

}  // namespace

#if defined(__clang__)
#define ZR_CONSTANT_INIT [[clang::require_constant_initialization]]
#elif defined(__GNUC__) && __GNUC__ >= 10
#define ZR_CONSTANT_INIT __constinit
#else
#define ZR_CONSTANT_INIT
#endif

// The compilers that know how refuse to build unless these are constant-initialised.
ZR_CONSTANT_INIT const Value Value::NULL_VALUE;
ZR_CONSTANT_INIT const Value Value::BOOL_VALUE(false);
ZR_CONSTANT_INIT const Value Value::INTEGER_VALUE(0LL);
ZR_CONSTANT_INIT const Value Value::REAL_VALUE(Value::SYSMISVALUE);
ZR_CONSTANT_INIT const Value Value::STRING_VALUE(Value::EmptyStringTag{});

#undef ZR_CONSTANT_INIT

// --- construction, assignment, release -------------------------------------------------

Value::Value(const char * value) : fnType(kString), fpString(new std::string(value ? value : "")) {}

Value::Value(const std::string & value) : fnType(kString), fpString(new std::string(value)) {}

Value::Value(const Value & other) : fnType(kNull), fnValue(0) {
  switch (other.fnType) {
    case kBool:
      fbValue = other.fbValue;
      break;
    case kInteger:
      fnValue = other.fnValue;
      break;
    case kReal:
      fdValue = other.fdValue;
      break;
    case kString:
      fpString = other.fpString ? new std::string(*other.fpString) : nullptr;
      break;
    case kArray:
      fpArray = new Array(*other.fpArray);
      break;
    case kMap:
      fpMap = new Map(*other.fpMap);
      break;
    default:
      break;
  }
  fnType = other.fnType;
}

Value::Value(Value && other) noexcept : fnType(kNull), fnValue(0) {
  TakeFrom(other);
  other.fnType = kNull;
  other.fnValue = 0;
}

Value & Value::operator=(const Value & other) {
  if (this != &other) {
    Value copy(other);
    *this = std::move(copy);
  }
  return *this;
}

Value & Value::operator=(Value && other) noexcept {
  if (this != &other) {
    Value taken;  // detach other first: it may be a part of this Value
    taken.TakeFrom(other);
    other.fnType = kNull;
    other.fnValue = 0;
    TakeFrom(taken);
    taken.fnType = kNull;
  }
  return *this;
}

Value & Value::operator=(bool value) {
  Invalidate();
  fbValue = value;
  fnType = kBool;
  return *this;
}

Value & Value::operator=(int value) {
  return *this = static_cast<long long>(value);
}

Value & Value::operator=(long long value) {
  Invalidate();
  fnValue = value;
  fnType = kInteger;
  return *this;
}

Value & Value::operator=(double value) {
  Invalidate();
  fdValue = value;
  fnType = kReal;
  return *this;
}

Value & Value::operator=(const char * value) {
  return *this = Value(value);
}

Value & Value::operator=(const std::string & value) {
  if (fnType == kString) {
    MutableString() = value;
    return *this;
  }
  return *this = Value(value);
}

void Value::Release() noexcept {
  switch (fnType) {
    case kString:
      delete fpString;
      break;
    case kArray:
      delete fpArray;
      break;
    case kMap:
      delete fpMap;
      break;
    default:
      break;
  }
}

void Value::TakeFrom(Value & other) noexcept {
  Release();
  fnType = kNull;
  switch (other.fnType) {
    case kBool:
      fbValue = other.fbValue;
      break;
    case kInteger:
      fnValue = other.fnValue;
      break;
    case kReal:
      fdValue = other.fdValue;
      break;
    case kString:
      fpString = other.fpString;
      break;
    case kArray:
      fpArray = other.fpArray;
      break;
    case kMap:
      fpMap = other.fpMap;
      break;
    default:
      fnValue = 0;
      break;
  }
  fnType = other.fnType;
}

void Value::Invalidate() {
  Release();
  fnType = kNull;
  fnValue = 0;
}

const std::string & Value::StringRef() const {
  return fpString ? *fpString : SharedEmptyString();
}

std::string & Value::MutableString() {
  if (!fpString) fpString = new std::string();
  return *fpString;
}

// --- strict access ---------------------------------------------------------------------

Value::operator bool() const {
  AssertTypeOrInvalid(kBool);
  return fbValue;
}

Value::operator long long() const {
  AssertTypeOrInvalid(kInteger);
  return fnValue;
}

Value::operator double() const {
  AssertTypeOrInvalid(kReal);
  return fdValue;
}

Value::operator std::string() const {
  AssertTypeOrInvalid(kString);
  return StringRef();
}

Value::operator bool &() {
  AssertTypeOrInvalid(kBool);
  return fbValue;
}

Value::operator long long &() {
  AssertTypeOrInvalid(kInteger);
  return fnValue;
}

Value::operator double &() {
  AssertTypeOrInvalid(kReal);
  return fdValue;
}

Value::operator std::string &() {
  AssertTypeOrInvalid(kString);
  return MutableString();
}

void Value::AssertTypeOrInvalid(unsigned short type) const {
  if (fnType != type) ThrowTypeWrong();
}

void Value::AssertTypeOrInvalid(unsigned short type) {
  if (fnType == kNull && type != kNull) {
    switch (type) {
      case kBool:
        fbValue = false;
        break;
      case kInteger:
        fnValue = 0;
        break;
      case kReal:
        fdValue = 0.0;
        break;
      case kString:
        fpString = new std::string();
        break;
      case kArray:
        fpArray = new Array();
        break;
      case kMap:
        fpMap = new Map();
        break;
      default:
        ThrowTypeWrong();  // no such type: the null stays
    }
    fnType = type;
  }
  static_cast<const Value &>(*this).AssertTypeOrInvalid(type);
}

// --- converting access -----------------------------------------------------------------

bool Value::GetBool() const {
  switch (fnType) {
    case kBool:
      return fbValue;
    case kInteger:
      return fnValue != 0;
    case kReal:
      return fdValue != 0.0;
    case kString: {
      std::istringstream in(StringRef());
      bool b = false;
      in >> b;
      return b;
    }
    case kArray:
      return !fpArray->empty();
    case kMap:
      return !fpMap->empty();
    default:
      return false;
  }
}

long long Value::GetInteger() const {
  switch (fnType) {
    case kBool:
      return fbValue ? 1 : 0;
    case kInteger:
      return fnValue;
    case kReal:
      return TruncateToInteger(fdValue);
    case kString: {
      std::istringstream in(StringRef());
      long long n = 0;
      in >> n;
      return n;
    }
    case kArray:
      return static_cast<long long>(fpArray->size());
    case kMap:
      return static_cast<long long>(fpMap->size());
    default:
      return 0;
  }
}

double Value::GetReal() const {
  switch (fnType) {
    case kBool:
      return fbValue ? 1.0 : 0.0;
    case kInteger:
      return static_cast<double>(fnValue);
    case kReal:
      return fdValue;
    case kString: {
      // Text written with '.' reads in std::cout's locale; the stream is imbued with that
      // locale too, so the substituted decimal point is the one the extraction expects.
      const std::locale loc = std::cout.getloc();
      std::string text = StringRef();
      const std::string::size_type dot = text.find('.');
      if (dot != std::string::npos) {
        text[dot] = std::use_facet<std::numpunct<char>>(loc).decimal_point();
      }
      std::istringstream in(text);
      in.imbue(loc);
      double d = SYSMISVALUE;
      in >> d;
      return d;
    }
    case kArray:
      return static_cast<double>(fpArray->size());
    case kMap:
      return static_cast<double>(fpMap->size());
    default:
      return SYSMISVALUE;
  }
}

std::string Value::GetString() const {
  switch (fnType) {
    case kBool:
      return fbValue ? "1" : "0";
    case kInteger:
      return std::to_string(fnValue);
    case kReal:
      return RealText(fdValue);
    case kString:
      return StringRef();
    case kArray:
    case kMap: {
      std::ostringstream out;
      out.imbue(std::locale::classic());  // nested reals as GetString writes them
      Display(out);
      return out.str();
    }
    default:
      return std::string();
  }
}

const std::string & Value::GetStringRef() const {
  return fnType == kString ? StringRef() : SharedEmptyString();
}

// --- SetValue --------------------------------------------------------------------------

void Value::SetValue(bool value) {
  switch (fnType) {
    // Intended: only the low-order byte of an integer's or a real's bits is written.
    case kInteger:
      fnValue = IntegerFromBits(WithLowByte(BitsOf(fnValue), value));
      break;
    case kReal:
      fdValue = DoubleFromBits(WithLowByte(BitsOf(fdValue), value));
      break;
    case kBool:
      fbValue = value;
      break;
    default:  // null; or a string, array or map, released (our safe answer)
      *this = value;
  }
}

void Value::SetValue(int value) {
  SetValue(static_cast<long long>(value));
}

void Value::SetValue(long long value) {
  switch (fnType) {
    case kInteger:
      fnValue = value;
      break;
    // Intended: the tag stays and the payload takes the integer's bits.
    case kReal:
      fdValue = DoubleFromBits(BitsOf(value));
      break;
    case kBool:  // Intended: the bool is the low-order byte of the bits, non-zero true
      fbValue = (BitsOf(value) & 0xFF) != 0;
      break;
    default:  // null; or a string, array or map, released (our safe answer)
      *this = value;
  }
}

void Value::SetValue(double value) {
  switch (fnType) {
    case kReal:
      fdValue = value;
      break;
    // Intended: the tag stays and the payload takes the double's bits.
    case kInteger:
      fnValue = IntegerFromBits(BitsOf(value));
      break;
    case kBool:  // Intended: the bool is the low-order byte of the bits, non-zero true
      fbValue = (BitsOf(value) & 0xFF) != 0;
      break;
    default:  // null; or a string, array or map, released (our safe answer)
      *this = value;
  }
}

void Value::SetValue(const char * value) {
  SetValue(std::string(value ? value : ""));
}

void Value::SetValue(const std::string & value) {
  if (fnType == kString) {
    MutableString() = value;
  } else {
    *this = Value(value);  // copied before the old contents go: value may live in them
  }
}

// --- arrays and maps -------------------------------------------------------------------

int Value::CapSize(std::size_t n) {
  return n > static_cast<std::size_t>(INT_MAX) ? INT_MAX : static_cast<int>(n);
}

void Value::CheckArray(long long requiredSize) const {
  if (fnType != kArray) ThrowNotArray();
  if (static_cast<long long>(fpArray->size()) < requiredSize) {
    throw ZRException(14, kOutOfBounds);
  }
}

void Value::MakeArray(long long requiredSize, bool exact) {
  if (exact && requiredSize < 0) throw std::length_error("Value: negative array size");
  const std::size_t want = requiredSize > 0 ? static_cast<std::size_t>(requiredSize) : 0U;
  if (fnType == kNull) {
    fpArray = new Array(want);
    fnType = kArray;
    return;
  }
  if (fnType != kArray) ThrowNotArray();
  if (exact || fpArray->size() < want) fpArray->resize(want);
}

void Value::AssertArray(int requiredSize) const {
  CheckArray(requiredSize);
}

void Value::AssertArray(int requiredSize, bool exact) {
  MakeArray(requiredSize, exact);
}

void Value::AssertMap() {
  if (fnType == kMap) return;
  Map * map = new Map();
  Release();
  fpMap = map;
  fnType = kMap;
}

const Value & Value::operator[](int i) const {
  CheckArray(static_cast<long long>(i) + 1);
  return fpArray->at(static_cast<std::size_t>(i));  // i < 0 wraps and throws out_of_range
}

Value & Value::operator[](int i) {
  MakeArray(static_cast<long long>(i) + 1, false);
  return fpArray->at(static_cast<std::size_t>(i));  // i < 0 wraps and throws out_of_range
}

Value & Value::operator[](const std::string & name) {
  if (fnType == kMap) return (*fpMap)[name];
  // Intended: any other type is discarded without a word. The key is inserted into the new
  // map before the old contents go, since name may live in them.
  Map * map = new Map();
  Value * entry;
  try {
    entry = &(*map)[name];
  } catch (...) {
    delete map;
    throw;
  }
  Release();
  fpMap = map;
  fnType = kMap;
  return *entry;
}

void Value::Resize(int size) {
  if (fnType != kNull && fnType != kArray) ThrowNotArray();
  MakeArray(size, true);
}

bool Value::Contains(const std::string & name) const {
  return fnType == kMap && fpMap->count(name) != 0;
}

std::vector<std::string> Value::Names() const {
  std::vector<std::string> names;
  if (fnType != kMap) return names;
  names.reserve(fpMap->size());
  for (const auto & entry : *fpMap) names.push_back(entry.first);
  return names;
}

int Value::Size() const {
  switch (fnType) {
    case kString:
      return CapSize(StringRef().size());
    case kArray:
      return CapSize(fpArray->size());
    case kMap:
      return CapSize(fpMap->size());
    default:
      return -1;
  }
}

void Value::ClearValue() {
  switch (fnType) {
    case kArray:
      for (Value & element : *fpArray) element.ClearValue();
      break;
    case kMap:
      for (auto & entry : *fpMap) entry.second.ClearValue();
      break;
    default:
      Invalidate();
  }
}

// --- display ---------------------------------------------------------------------------

std::ostream & Value::Display(std::ostream & os) const {
  switch (fnType) {
    case kBool:
      os << fbValue;
      break;
    case kInteger:
      os << fnValue;
      break;
    case kReal:
      os << fdValue;
      break;
    case kString:
      os << StringRef();
      break;
    case kArray: {
      os << '{';
      for (std::size_t i = 0; i < fpArray->size(); ++i) {
        if (i > 0) os << ',';
        (*fpArray)[i].Display(os);
      }
      os << '}';
      break;
    }
    case kMap: {
      os << '[';
      bool first = true;
      for (const auto & entry : *fpMap) {
        if (!first) os << ',';
        first = false;
        os << entry.first << ':';
        entry.second.Display(os);
      }
      os << ']';
      break;
    }
    default:
      break;
  }
  return os;
}

std::ostream & operator<<(std::ostream & os, const Value & value) {
  return value.Display(os);
}

// --- comparison ------------------------------------------------------------------------

bool Value::IsZeroDiff(double a, double b, double multiplier) {
  const double diff = std::fabs(a - b);
  if (diff == 0.0) return true;
  if (a == 0.0 || b == 0.0) return false;
  return std::max(std::fabs(a), std::fabs(b)) * (multiplier * EPSILON) >= diff;
}

bool Value::operator==(const Value & other) const {
  if (fnType != other.fnType) return false;
  switch (fnType) {
    case kBool:
      return fbValue == other.fbValue;
    case kInteger:
      return fnValue == other.fnValue;
    case kReal: {
      const double a = fdValue, b = other.fdValue;
      if (a == 0.0 && b == 0.0) return true;
      if (a == SYSMISVALUE || b == SYSMISVALUE) return a == b;
      return IsZeroDiff(a, b, kEqualityMultiplier);
    }
    case kString:
      return StringRef() == other.StringRef();
    case kArray:
      return *fpArray == *other.fpArray;
    case kMap:
      return fpMap->size() == other.fpMap->size() &&
             std::equal(fpMap->begin(), fpMap->end(), other.fpMap->begin(),
                        [](const Map::value_type & x, const Map::value_type & y) {
                          return x.first == y.first && x.second == y.second;
                        });
    default:
      return false;  // Intended: a null equals nothing, not even a null
  }
}

bool Value::operator<(const Value & other) const {
  // Intended: different tags compare as text, so 10 < "9" and Value(1) < Value(1.0) is false.
  if (fnType != other.fnType) return GetString() < other.GetString();
  switch (fnType) {
    case kBool:
      return !fbValue && other.fbValue;
    case kInteger:
      return fnValue < other.fnValue;
    case kReal:
      if (fdValue == SYSMISVALUE || other.fdValue == SYSMISVALUE) return false;
      return fdValue < other.fdValue;
    case kString:
      return StringRef() < other.StringRef();
    case kArray:
      return std::lexicographical_compare(fpArray->begin(), fpArray->end(), other.fpArray->begin(),
                                          other.fpArray->end());
    case kMap:
      return std::lexicographical_compare(
          fpMap->begin(), fpMap->end(), other.fpMap->begin(), other.fpMap->end(),
          [](const Map::value_type & x, const Map::value_type & y) {
            return x.first < y.first || (x.first == y.first && x.second < y.second);
          });
    default:
      return false;
  }
}

bool Value::operator>(const Value & other) const {
  // Intended: for two bools the test is the same as <, so false > true holds.
  if (fnType == kBool && other.fnType == kBool) return *this < other;
  return other < *this;
}

}  // namespace ZRCommon_920
