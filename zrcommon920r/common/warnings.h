// ZRWarnings: two lists of distinct warning statuses, in order of first arrival, and typed
// parameters attached to warning codes for the caller's messages.
#ifndef ZRCOMMON920R_COMMON_WARNINGS_H
#define ZRCOMMON920R_COMMON_WARNINGS_H

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "zrcommon920r/common/status.h"

namespace ZRCommon_920 {

// The warnings an analytic object met on the way, kept for its caller. There are two lists,
// whose meaning the caller chooses (GetWarnings(true) and GetWarnings(false)); each holds
// only warnings (positive level), none twice by ZRStatus::operator==, in order of first
// arrival, and both are searched linearly. Parameters (integers, doubles, strings) are
// attached to a status code, not to a status: every status with that code, whatever its
// level or data and whether it was ever added, shares one row of parameters.
//
// Not safe for concurrent use, even for reading: GetParameters writes a scratch vector.
// Only allocation can throw (bad_alloc), and a throwing call leaves the object valid.
class ZRWarnings {
 public:
  // One parameter of a warning message: an integer, a double or a string, with its type.
  class ZRParameterValue {
   public:
    enum ValueType : std::int32_t { ParamInteger = 0, ParamDouble = 1, ParamString = 2 };

    // Type ParamInteger, integer 0, double 0.0, empty string.
    ZRParameterValue() = default;
    ZRParameterValue(const ZRParameterValue &) = default;
    ZRParameterValue(ZRParameterValue &&) = default;
    ZRParameterValue & operator=(const ZRParameterValue &) = default;
    ZRParameterValue & operator=(ZRParameterValue &&) = default;

    ValueType GetType() const { return fType; }

    // The stored field of each kind, whatever the type: nothing is converted, so ToDouble
    // of a ParamInteger value is 0.0 and ToInteger of a ParamString value is 0.
    int ToInteger() const { return fnValue; }
    double ToDouble() const { return fdValue; }
    std::string ToString() const { return fsValue; }

   private:
    friend class ZRWarnings;

    // Each sets the type and its one field; the other fields keep their values.
    void SetValue(int value);
    void SetValue(double value);
    void SetValue(std::string value);

    ValueType fType = ParamInteger;
    int fnValue = 0;
    double fdValue = 0.0;
    std::string fsValue;
  };

  // The lists AddWarning writes to. The underlying type is fixed so that any 32-bit value
  // is a valid Destination: every value other than DestFirst and DestSecond means both.
  enum Destination : std::int32_t { DestFirst = 0, DestSecond = 1, DestBoth = 2 };

  // No warnings and no parameters.
  ZRWarnings() = default;

  // Copies all five fields (both lists, the parameters and the GetParameters scratch).
  ZRWarnings(const ZRWarnings & other) = default;
  ZRWarnings(ZRWarnings && other) = default;
  // As the copy and move constructors; self-assignment does nothing.
  ZRWarnings & operator=(const ZRWarnings & other);
  ZRWarnings & operator=(ZRWarnings && other);
  virtual ~ZRWarnings();

  // Appends status to the list(s) chosen by destination unless an equal status is already
  // there; each list is tested on its own. A status that is OK or an error (level <= 0) is
  // not recorded at all.
  void AddWarning(const ZRStatus & status, Destination destination);

  // AddWarning(status, DestFirst) for every element of statuses, in order.
  void AddWarnings(const std::vector<ZRStatus> & statuses);

  // Merges other into this object: its first list into the first list and its second list
  // into the second, in order, skipping statuses already present; then the parameter rows
  // of its codes, in ascending code order, for the codes this object has no row for. Where
  // both have parameters for a code, this object's row stays and other's is dropped.
  // other is taken by value: pass an rvalue to avoid the copy.
  void AddWarnings(ZRWarnings other);

  // The first list when first is true, the second otherwise. The reference lives as long
  // as this object; adding or clearing warnings may invalidate iterators into it.
  const std::vector<ZRStatus> & GetWarnings(bool first) const {
    return first ? fFirstList : fSecondList;
  }

  // Empties the first list. The second list and all parameters stay.
  void ClearWarnings();

  // Appends value to the parameter row of status's code (level and data play no part),
  // starting the row if the code has none. A row may mix types and keeps duplicates, in
  // the order of the calls. Always returns true.
  bool AddParameter(const ZRStatus & status, int value);
  bool AddParameter(const ZRStatus & status, double value);
  bool AddParameter(const ZRStatus & status, std::string value);

  // Whether status's code has at least one parameter.
  bool HasParameter(const ZRStatus & status) const;

  // A copy of the parameters of status's code, in the order they were added; empty for a
  // code without parameters (no row is made for it). The result is one scratch vector of
  // this object: the next GetParameters call overwrites what the reference shows.
  const std::vector<ZRParameterValue> & GetParameters(const ZRStatus & status);

 private:
  // Appends value to the row of code, making the row when the code has none.
  void AppendParameter(std::int32_t code, ZRParameterValue && value);
  // Appends status to list unless the list already holds an equal status.
  static void AddDistinct(std::vector<ZRStatus> & list, const ZRStatus & status);

  std::vector<ZRStatus> fFirstList;
  std::vector<ZRStatus> fSecondList;
  std::map<std::int32_t, std::size_t> fParameterIndex;  // code -> row of fParameterTable
  std::vector<std::vector<ZRParameterValue>> fParameterTable;
  std::vector<ZRParameterValue> fParameterScratch;
};

}  // namespace ZRCommon_920

#endif  // ZRCOMMON920R_COMMON_WARNINGS_H
