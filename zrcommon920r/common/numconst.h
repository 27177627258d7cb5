// Numeric constants shared by every numeric class of the library.
#ifndef ZRCOMMON920R_COMMON_NUMCONST_H
#define ZRCOMMON920R_COMMON_NUMCONST_H

namespace ZRCommon_920 {

// The system-missing value: the lowest finite double (bits FFEFFFFFFFFFFFFF). Numeric
// classes test it by exact equality and return it when there is no result.
inline constexpr double kSysMisValue = -1.7976931348623157e308;

// Machine precision of double, written as a literal wherever a tolerance uses it.
inline constexpr double kMachineEpsilon = 2.220446049250313e-16;

}  // namespace ZRCommon_920

#endif  // ZRCOMMON920R_COMMON_NUMCONST_H
