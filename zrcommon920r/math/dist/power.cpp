// ZRPower's guarded exponentials, powers and products with their integer tests, and ZRMV's
// missing value and property texts.
#include "zrcommon920r/math/dist/power.h"

#include <cmath>
#include <cstddef>

#include "zrcommon920r/display/display.h"

namespace ZRMath_920 {

namespace {

constexpr double kMiss = ZRCommon_920::kSysMisValue;

// Power accepts an exponent as 1/odd (an odd root) when it is that within 32 epsilons.
constexpr double kOddRootMult = 32.0;

constexpr double kMaxIntAsDouble = static_cast<double>(ZRPower::gMachineMaxInt);

}  // namespace

double ZRPower::MaxExp() {
  return gMachineMaxExp;
}

double ZRPower::MinExp() {
  return gMachineMinExp;
}

double ZRPower::MEpsilon() {
  return gMachineEpsilon;
}

int ZRPower::MaxInt() {
  return gMachineMaxInt;
}

bool ZRPower::ExpOverflow(double x) {
  return x > gMachineMaxExp;
}

bool ZRPower::ExpUnderflow(double x) {
  return gMachineMinExp > x;
}

ZRPower::PowerStatus ZRPower::Exponent(double x, double & r) {
  if (ExpUnderflow(x)) {
    r = 0.0;
    return kPowerUnderflow;
  }
  if (ExpOverflow(x) || std::isnan(x)) {
    r = kMiss;
    return kPowerOverflow;
  }
  r = std::exp(x);
  return kPowerOk;
}

ZRPower::PowerStatus ZRPower::Power(double b, double e, double & r) {
  r = kMiss;
  if (std::isnan(b) || std::isnan(e)) return kPowerNegBaseNonInteger;
  if (b == 0.0) {
    if (e == 0.0) {
      r = 1.0;
      return kPowerZeroBaseZeroExponent;
    }
    if (e > 0.0) {
      r = 0.0;
      return kPowerOk;
    }
    return kPowerZeroBaseNegExponent;
  }
  if (b < 0.0) {
    if (e == 0.0) {
      r = 1.0;
      return kPowerNegBaseZeroExponent;
    }
    if (!IsEvenInteger(e)) {
      // An odd power or an odd root keeps the sign of the base; nothing else is real.
      if (!IsOddInteger(e) && !IsOneOverOddInteger(e, kOddRootMult)) {
        return kPowerNegBaseNonInteger;
      }
      const double t = std::log(-b) * e;
      if (ExpUnderflow(t)) {
        r = -0.0;
        return kPowerUnderflow;
      }
      // Intended: status 3 only for a positive exponent; a negative one (|b| < 1) gives 2.
      if (ExpOverflow(t)) return e > 0.0 ? kPowerNegBaseOverflow : kPowerOverflow;
      r = -std::exp(t);
      return kPowerOk;
    }
  } else if (e == 0.0) {
    r = 1.0;
    return kPowerOk;
  }
  // A positive base, or a negative one with an even exponent: |b|^e.
  const double t = std::log(std::fabs(b)) * e;
  if (std::isnan(t)) {  // log 1 * inf: one to any power is one
    r = 1.0;
    return kPowerOk;
  }
  if (ExpUnderflow(t)) {
    r = 0.0;
    return kPowerUnderflow;
  }
  if (ExpOverflow(t)) return kPowerOverflow;
  r = std::exp(t);
  return kPowerOk;
}

double ZRPower::Multiply(double a, double b) {
  if (std::isnan(a) || std::isnan(b)) return kMiss;
  if (a == 0.0 || b == 0.0) return 0.0;
  // Intended: through the logs even where a * b is finite and exact.
  const double t = std::log(std::fabs(a)) + std::log(std::fabs(b));
  // Intended: an underflow gives +0 whatever the signs (Power gives -0 for odd powers).
  if (ExpUnderflow(t)) return 0.0;
  if (ExpOverflow(t)) return kMiss;
  const double product = std::exp(t);
  return (a < 0.0) != (b < 0.0) ? -product : product;
}

bool ZRPower::AlmostEqual(double a, double b, double mult) {
  if (std::isnan(a) || std::isnan(b)) return false;
  if (a == 0.0) return b == 0.0;
  if (b == 0.0 || (a < 0.0) != (b < 0.0)) return false;
  // With an infinity the relative difference is inf - inf or inf / inf: equal only to itself.
  if (std::isinf(a) || std::isinf(b)) return a == b;
  const double d = std::fabs(a) - std::fabs(b);
  const double larger = d < 0.0 ? std::fabs(b) : std::fabs(a);
  return mult * gMachineEpsilon >= std::fabs(d) / larger;
}

bool ZRPower::IsInteger(double x) {
  // Intended: only the upper bound; -3e9 and -inf are integers here.
  return x <= kMaxIntAsDouble && std::floor(x) == x;
}

bool ZRPower::IsEvenInteger(double x) {
  return IsInteger(x) && std::floor(x / 2.0) == x / 2.0;
}

bool ZRPower::IsOddInteger(double x) {
  return IsInteger(x) && !IsEvenInteger(x);
}

bool ZRPower::IsOneOverEvenInteger(double x, double mult) {
  if (x == 0.0) return false;
  const double v = 1.0 / x;
  // Intended: only the upper bound, as in IsInteger. The negated test also refuses NaN.
  if (!(v <= kMaxIntAsDouble)) return false;
  const double half = v * 0.5;
  return AlmostEqual(half, std::floor(half + 0.5), mult);
}

bool ZRPower::IsOneOverOddInteger(double x, double mult) {
  if (x == 0.0) return false;
  const double v = 1.0 / x;
  // Intended: only the upper bound, as in IsInteger. The negated test also refuses NaN.
  if (!(v <= kMaxIntAsDouble)) return false;
  const double w = v * 0.5 + 0.5;  // whole exactly when v is odd
  return AlmostEqual(w, std::floor(w + 0.5), mult);
}

}  // namespace ZRMath_920

namespace ZRCommon_920 {

namespace {

constexpr const char * kUnrecognized = " = unrecognized";

constexpr const char * kMeasureLevelTexts[] = {" = Unknown measure level", " = Continuous",
                                               " = Numeric Categorical", " = String Categorical",
                                               " = Frequency weight"};

constexpr const char * kRoleTexts[] = {" = Undefined variable role",
                                       " = Target",
                                       " = Target Response",
                                       " = Frequency weight",
                                       " = Input",
                                       " = Possible Input",
                                       " = Unused variable",
                                       " = Record ID variable"};

constexpr const char * kStorageTexts[] = {" = Undefined variable storage",
                                          " = Integer",
                                          " = Real",
                                          " = String",
                                          " = Date",
                                          " = Time",
                                          " = Timestamp"};

constexpr const char * kRoundingTexts[] = {" = Truncate to smaller int", " = Round to closest int",
                                           " = As is - no change"};

// One display line: label, then texts[code], or the unrecognized text for a code outside
// the table.
template <std::size_t N>
void DisplayCoded(const std::string & label, int code, const char * const (&texts)[N]) {
  const bool known = code >= 0 && static_cast<std::size_t>(code) < N;
  ZRDisplay_920::DisplayText(1, label);
  ZRDisplay_920::DisplayText(0, known ? texts[code] : kUnrecognized);
}

}  // namespace

double ZRMV::Missing() {
  return gMissingValue;
}

bool ZRMV::IsMissing(double x) {
  return x == gMissingValue;
}

void ZRMV::DisplayMeasureLevel(const std::string & label, int code) {
  DisplayCoded(label, code, kMeasureLevelTexts);
}

void ZRMV::DisplayRole(const std::string & label, int code) {
  DisplayCoded(label, code, kRoleTexts);
}

void ZRMV::DisplayStorage(const std::string & label, int code) {
  DisplayCoded(label, code, kStorageTexts);
}

void ZRMV::DisplayRounding(const std::string & label, int code) {
  DisplayCoded(label, code, kRoundingTexts);
}

}  // namespace ZRCommon_920
