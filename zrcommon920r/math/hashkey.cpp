// ZRHashKey and ZRPackedInt: hash codes, copying and ordering of keys; the unit split,
// packing and unpacking of integer sequences.
#include "zrcommon920r/math/hashkey.h"

#include <algorithm>
#include <climits>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <new>
#include <string>

#include "zrcommon920r/display/display.h"

namespace ZRMath_920 {

namespace {

// The fixed ceiling of a key element before the offset is taken off (hexadecimal 8F1779).
constexpr long long kElementCeiling = 9377657;

// The int with the same 32 bits as u (two's complement), without relying on the
// implementation-defined conversion of out-of-range values.
int ToInt(std::uint32_t u) {
  return u <= static_cast<std::uint32_t>(INT_MAX) ? static_cast<int>(u) : -static_cast<int>(~u) - 1;
}

}  // namespace

int ZRHashKey::ADD_LOWER_BOUND = 0;

const int ZRHashKey::PRIME_FACTOR[49] = {
    3,   5,   7,   11,  13,  17,  19,  23,  29,  31,  37,  41,  43,  47,  53,  59,  61,
    67,  71,  73,  79,  83,  89,  97,  101, 103, 107, 109, 113, 127, 131, 137, 139, 149,
    151, 157, 163, 167, 173, 179, 181, 191, 193, 197, 199, 211, 223, 227, 229};

ZRHashKey::ZRHashKey() : fKey(nullptr), fLength(0), fHashCode(0) {}

ZRHashKey::ZRHashKey(int length) : fKey(nullptr), fLength(0), fHashCode(0) {
  if (length < 0) throw std::bad_array_new_length();
  // Value-initialised: the code computed here means nothing, but reading indeterminate
  // ints would be undefined.
  if (length > 0) fKey = new int[static_cast<std::size_t>(length)]();
  fLength = length;
  fHashCode = ComputeHashCode();
}

ZRHashKey::ZRHashKey(const ZRHashKey & other)
    : fKey(nullptr), fLength(other.fLength), fHashCode(other.fHashCode) {
  if (fLength > 0) {
    fKey = new int[static_cast<std::size_t>(fLength)];
    std::copy(other.fKey, other.fKey + fLength, fKey);
  }
}

void ZRHashKey::operator=(const ZRHashKey & other) {
  if (fKey == other.fKey) return;
  if (fLength != other.fLength) {
    int * fresh = other.fLength > 0 ? new int[static_cast<std::size_t>(other.fLength)] : nullptr;
    delete[] fKey;
    fKey = fresh;
    fLength = other.fLength;
  }
  if (fLength > 0) std::copy(other.fKey, other.fKey + fLength, fKey);
  fHashCode = other.fHashCode;
}

ZRHashKey::~ZRHashKey() {
  delete[] fKey;
}

// XOR of PRIME_FACTOR[i mod 49] * (element i + offset), in unsigned 32-bit arithmetic so
// that it wraps as the stored codes require, without signed overflow.
int ZRHashKey::ComputeHashCode() const {
  if (fLength < 1) return 0;
  const auto offset = static_cast<std::uint32_t>(ADD_LOWER_BOUND);
  std::uint32_t code = 0;
  for (int i = 0; i < fLength; ++i) {
    code ^= static_cast<std::uint32_t>(PRIME_FACTOR[i % 49]) *
            (static_cast<std::uint32_t>(fKey[i]) + offset);
  }
  return ToInt(code);
}

bool ZRHashKey::operator==(const ZRHashKey & other) const {
  if (fHashCode != other.fHashCode || fLength != other.fLength) return false;
  return fLength < 1 || std::equal(fKey, fKey + fLength, other.fKey);
}

int ZRHashKey::Mismatch(const ZRHashKey & other) const {
  const int n = std::min(fLength, other.fLength);
  int i = 0;
  while (i < n && fKey[i] == other.fKey[i]) ++i;
  return i;
}

int ZRHashKey::GetElementUpperBound() {
  const long long bound = kElementCeiling - ADD_LOWER_BOUND;
  return bound > INT_MAX ? INT_MAX : static_cast<int>(bound);
}

void ZRHashKey::Display() const {
  std::string line = "\t Key: ";
  char buf[16];
  for (int i = 0; i < fLength; ++i) {
    std::snprintf(buf, sizeof buf, "  %d", fKey[i]);
    line += buf;
  }
  ZRDisplay_920::DisplayText(1, line);
}

bool operator<(const ZRHashKey & a, const ZRHashKey & b) {
  if (a.GetLength() != b.GetLength()) return a.GetLength() < b.GetLength();
  for (int i = 0; i < a.GetLength(); ++i) {
    if (a[i] != b[i]) return a[i] < b[i];
  }
  return false;
}

ZRPackedInt::ZRPackedInt() : fSeqSize(0), fLowerBound(0), fNUnits(0) {}

ZRPackedInt::ZRPackedInt(int seqSize, int lowerBound, const std::vector<int> & nDiffVal)
    : fSeqSize(seqSize), fLowerBound(lowerBound), fvNDiffVal(nDiffVal), fNUnits(0) {
  Setup();
}

bool ZRPackedInt::SetForSequence(int seqSize, int lowerBound, const std::vector<int> & nDiffVal) {
  fSeqSize = seqSize;
  fLowerBound = lowerBound;
  fvNDiffVal = nDiffVal;
  return Setup();
}

int ZRPackedInt::GetNDiffVal(int i) const {
  return i >= 0 && i < fSeqSize ? fvNDiffVal[static_cast<std::size_t>(i)] : -1;
}

// Splits the positions into units by running sums of log(fvNDiffVal[i]) against
// log(element bound); see SetForSequence.
bool ZRPackedInt::Setup() {
  fNUnits = 0;
  fvUnitIndex.clear();
  fvProducts.clear();
  const auto n = static_cast<std::size_t>(std::max(fSeqSize, 0));
  if (fSeqSize < 1 || fvNDiffVal.size() < n ||
      std::any_of(fvNDiffVal.begin(), fvNDiffVal.begin() + fSeqSize, [](int x) { return x < 1; })) {
    fSeqSize = 0;
    fvNDiffVal.clear();
    return false;
  }
  fvUnitIndex.resize(n);
  fvProducts.resize(n);
  const int bound = ZRHashKey::GetElementUpperBound();
  // With an offset at or above the ceiling no packed int can stay below the bound; a
  // limit of -infinity then gives every position a unit of its own.
  const double limit = bound >= 1 ? std::log(static_cast<double>(bound)) : -HUGE_VAL;
  int unit = 0;
  long long product = 1;  // at most the bound (<= INT_MAX) while a unit grows
  double sum = 0.0;
  for (std::size_t i = 0; i < n; ++i) {
    const int x = fvNDiffVal[i];
    const double logX = std::log(static_cast<double>(x));
    sum += logX;
    // Intended: the first position stays in unit 0 even alone above the limit; opening
    // unit 1 there would leave unit 0 empty and Pack and Unpack out of step.
    if (sum > limit && i > 0) {
      product = x;
      sum = logX;
      ++unit;
    } else {
      product *= x;
    }
    fvProducts[i] = static_cast<int>(product);
    fvUnitIndex[i] = unit;
  }
  fNUnits = unit + 1;
  return true;
}

bool ZRPackedInt::Pack(const std::vector<int> & seq, std::vector<int> & packed, bool check) const {
  const auto n = static_cast<std::size_t>(fSeqSize);
  // Intended: the length is tested even without check, as a short seq would be read past
  // its end.
  if (seq.size() < n) return false;
  if (check) {
    for (std::size_t i = 0; i < n; ++i) {
      if (seq[i] < fLowerBound || static_cast<long long>(seq[i]) - fLowerBound >= fvNDiffVal[i]) {
        return false;
      }
    }
  }
  if (packed.size() != static_cast<std::size_t>(fNUnits)) {
    packed.resize(static_cast<std::size_t>(fNUnits));
  }
  // Unsigned arithmetic: unchecked elements wrap instead of overflowing.
  std::uint32_t acc = 0;
  std::uint32_t multiplier = 1;
  std::size_t unit = 0;
  for (std::size_t i = 0; i < n; ++i) {
    acc +=
        (static_cast<std::uint32_t>(seq[i]) - static_cast<std::uint32_t>(fLowerBound)) * multiplier;
    if (i + 1 < n && fvUnitIndex[i + 1] == fvUnitIndex[i]) {
      multiplier = static_cast<std::uint32_t>(fvProducts[i]);
    } else {
      packed[unit++] = ToInt(acc);
      acc = 0;
      multiplier = 1;
    }
  }
  return true;
}

bool ZRPackedInt::Unpack(std::vector<int> & seq, const std::vector<int> & packed) const {
  if (packed.size() < static_cast<std::size_t>(fNUnits)) return false;
  if (seq.size() < static_cast<std::size_t>(fSeqSize))
    seq.resize(static_cast<std::size_t>(fSeqSize));
  long long r = 0;
  for (int i = fSeqSize - 1; i >= 0; --i) {
    const int unit = fvUnitIndex[static_cast<std::size_t>(i)];
    if (i == fSeqSize - 1 || fvUnitIndex[static_cast<std::size_t>(i) + 1] != unit) {
      r = packed[static_cast<std::size_t>(unit)];
    }
    const long long d = i > 0 && fvUnitIndex[static_cast<std::size_t>(i) - 1] == unit
                            ? fvProducts[static_cast<std::size_t>(i) - 1]
                            : 1;
    const long long q = r / d;  // d >= 1, so |q| <= |r| fits an int
    seq[static_cast<std::size_t>(i)] =
        ToInt(static_cast<std::uint32_t>(fLowerBound) + static_cast<std::uint32_t>(q));
    r -= q * d;
  }
  return true;
}

void ZRPackedInt::Display() const {
  using namespace ZRDisplay_920;
  DisplayText(1, "ZRPackedInt display start");
  DisplayI("The sequence size", fSeqSize);
  DisplayI("The lower bound", fLowerBound);
  DisplayIV("The vector of numbers of different values", fvNDiffVal);
  DisplayI("The number of packed storage units", fNUnits);
  DisplayIV("The vector of packed storage unit indices", fvUnitIndex);
  DisplayIV("The vector of products", fvProducts);
  DisplayText(1, "ZRPackedInt display end");
}

}  // namespace ZRMath_920
