// ZRPower: exponentials, powers and products that report overflow instead of producing
// infinities, with the integer tests they rely on; ZRMV: the system-missing value and the
// display of the coded properties of variables.
#ifndef ZRCOMMON920R_MATH_DIST_POWER_H
#define ZRCOMMON920R_MATH_DIST_POWER_H

#include <string>

#include "zrcommon920r/common/numconst.h"

namespace ZRMath_920 {

// Static functions only: no state, no heap, nothing thrown or printed.
//
// Results are formed as exp(t) with t a logarithm, guarded by the limits below: t above
// gMachineMaxExp is an overflow and gives the system-missing value miss (tested by exact
// equality), t below gMachineMinExp an underflow and gives 0. exp amplifies the rounding of
// t: Power is good to about (|t| + 1) eps relative, Multiply to about (|log|a|| + |log|b||
// + |t| + 1) eps / 2, at worst about 3e-13; so even exact cases such as Power(2, 3) may
// miss by a few ulps. Tested to 8 eps where |t| < 5, and to 2e-13 with logs of 460 and 690.
//
// Non-finite arguments: a NaN gives miss (Exponent: status 2; Power: status 4), false from the
// predicates. Infinities follow the branches below as IEEE arithmetic takes them through
// (Exponent(+inf) is an overflow, Exponent(-inf) an underflow); the exceptions are named
// at each function.
class ZRPower {
 public:
  // Exponent guards: exp(x) is taken only for gMachineMinExp <= x <= gMachineMaxExp.
  static constexpr double gMachineMaxExp = 709.0;
  static constexpr double gMachineMinExp = -708.39;
  // Largest value that the integer tests accept (the largest 32-bit int).
  static constexpr int gMachineMaxInt = 2147483647;
  // Machine precision of double, the unit of AlmostEqual's tolerance.
  static constexpr double gMachineEpsilon = 2.220446049250313e-16;

  // Outcome of Exponent and Power; 3 to 7 only from Power.
  enum PowerStatus {
    kPowerOk = 0,                    // r holds the result
    kPowerUnderflow = 1,             // r = 0 (-0 for a negative base and an odd power)
    kPowerOverflow = 2,              // r = miss; also a NaN argument to Exponent
    kPowerNegBaseOverflow = 3,       // odd power of a negative base overflows; r = miss
    kPowerNegBaseNonInteger = 4,     // no real power of a negative base; r = miss; also NaN
    kPowerNegBaseZeroExponent = 5,   // (negative)^0; r = 1
    kPowerZeroBaseNegExponent = 6,   // 0^(negative); r = miss
    kPowerZeroBaseZeroExponent = 7,  // 0^0; r = 1
  };

  // The constants above, as functions.
  static double MaxExp();
  static double MinExp();
  static double MEpsilon();
  static int MaxInt();

  // Whether exp(x) counts as an overflow: x > 709. False for NaN.
  static bool ExpOverflow(double x);

  // Whether exp(x) counts as an underflow: x < -708.39. False for NaN.
  static bool ExpUnderflow(double x);

  // e^x in r. Below -708.39: r = 0, status 1; above 709 (+inf included): r = miss,
  // status 2; otherwise r = exp(x), status 0. A NaN x gives r = miss, status 2.
  static PowerStatus Exponent(double x, double & r);

  // b^e in r as exp(e log|b|), with the status; r is miss unless the status says otherwise.
  // Base 0: 0^0 = 1 (status 7), 0 for e > 0, status 6 for e < 0. Negative base: e = 0
  // gives 1 (status 5); an even integer e, |b|^e; an odd integer e or e = 1/odd (within 32
  // eps), -|b|^e, status 1 with r = -0 on underflow, 3 on overflow for e > 0 and 2 for
  // e < 0; any other e, status 4. Positive base: e = 0 gives 1; then status 1 (r = 0) or 2.
  // A NaN b or e: status 4. -inf counts as an even integer, +inf as no integer, and |b| = 1
  // with an infinite e gives 1, status 0.
  static PowerStatus Power(double b, double e, double & r);

  // a * b as exp(log|a| + log|b|), negated when the signs differ: 0 when a or b is 0, or
  // when the log sum is below -708.39 (+0 whatever the signs); miss when it is above 709,
  // and so for an infinite factor times a non-zero one. A NaN a or b gives miss. Carries
  // the rounding of the logs even where the plain product is exact.
  static double Multiply(double a, double b);

  // Whether a and b agree within mult machine epsilons, relative to the larger of |a|, |b|:
  // mult * eps >= ||a| - |b|| / max(|a|, |b|). Zero equals only zero; values of opposite
  // signs are never equal. False when a or b is NaN; an infinity equals only itself.
  static bool AlmostEqual(double a, double b, double mult);

  // Whether x is a whole number no larger than 2147483647. There is no lower bound: -3e9
  // and -inf are integers here, 3e9 and +inf are not. False for NaN.
  static bool IsInteger(double x);

  // IsInteger(x) and x/2 whole as well (so -inf is even).
  static bool IsEvenInteger(double x);

  // IsInteger(x) and not IsEvenInteger(x).
  static bool IsOddInteger(double x);

  // Whether 1/x is, within mult epsilons (AlmostEqual on (1/x)/2), an even integer no
  // larger than 2147483647. False for x = 0 and NaN; true for x = +-inf (1/x = 0). As with
  // IsInteger there is no lower bound: a tiny negative x passes (mult 32: x in [-5e-15, 0)).
  static bool IsOneOverEvenInteger(double x, double mult);

  // Whether 1/x is, within mult epsilons (AlmostEqual on (1/x + 1)/2), an odd integer no
  // larger than 2147483647. False for x = 0 and NaN; a tiny negative x passes, as above.
  static bool IsOneOverOddInteger(double x, double mult);
};

}  // namespace ZRMath_920

namespace ZRCommon_920 {

// The system-missing value and the text of the coded properties of variables.
class ZRMV {
 public:
  // The system-missing value, the lowest finite double.
  static constexpr double gMissingValue = kSysMisValue;

  // The system-missing value -1.7976931348623157e308.
  static double Missing();

  // Whether x is the system-missing value, by exact equality (false for NaN).
  static bool IsMissing(double x);

  // Each prints one line through the diagnostic display stream: label, then the text of
  // code (" = Continuous", ...), or " = unrecognized" for a code without one.
  // Measure level: 0 unknown, 1 continuous, 2 numeric categorical, 3 string categorical,
  // 4 frequency weight.
  static void DisplayMeasureLevel(const std::string & label, int code);
  // Role: 0 undefined, 1 target, 2 target response, 3 frequency weight, 4 input,
  // 5 possible input, 6 unused, 7 record ID.
  static void DisplayRole(const std::string & label, int code);
  // Storage: 0 undefined, 1 integer, 2 real, 3 string, 4 date, 5 time, 6 timestamp.
  static void DisplayStorage(const std::string & label, int code);
  // Rounding: 0 truncate to the smaller int, 1 round to the closest, 2 as is.
  static void DisplayRounding(const std::string & label, int code);
};

}  // namespace ZRCommon_920

#endif  // ZRCOMMON920R_MATH_DIST_POWER_H
