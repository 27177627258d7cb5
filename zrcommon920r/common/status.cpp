// ZRStatus comparison and data slots; ZRException.
#include "zrcommon920r/common/status.h"

namespace ZRCommon_920 {

bool ZRStatus::operator==(const ZRStatus & other) const {
  if (fCode != other.fCode || fLevel != other.fLevel) return false;
  for (unsigned int i = 0; i < kSlots; ++i) {
    // Intended: IEEE comparison, so a NaN slot makes a status unequal even to itself and a
    // warning list takes such a warning again each time it is added.
    if (fDiscreteData[i] != other.fDiscreteData[i] || !(fScaleData[i] == other.fScaleData[i])) {
      return false;
    }
  }
  return true;
}

std::int32_t ZRStatus::GetDiscreteDatum(unsigned int index) const {
  return index < kSlots ? fDiscreteData[index] : 0;
}

void ZRStatus::SetDiscreteDatum(unsigned int index, std::int32_t value) {
  if (index < kSlots) fDiscreteData[index] = value;
}

double ZRStatus::GetScaleDatum(unsigned int index) const {
  return index < kSlots ? fScaleData[index] : 0.0;
}

void ZRStatus::SetScaleDatum(unsigned int index, double value) {
  if (index < kSlots) fScaleData[index] = value;
}

ZRException::ZRException(int code, const std::string & message) : fCode(code), fMessage(message) {}

// Defined here so that the virtual table has one home in the library.
ZRException::~ZRException() = default;

}  // namespace ZRCommon_920
