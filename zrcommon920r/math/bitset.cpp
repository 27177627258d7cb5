// ZRBitSet: the operations on whole sets and ranges of bits.
#include "zrcommon920r/math/bitset.h"

#include <algorithm>
#include <climits>
#include <cstddef>

#include "zrcommon920r/display/display.h"

namespace ZRMath_920 {

namespace {

using BitIter = std::vector<bool>::const_iterator;

int CountTrue(BitIter first, BitIter last) {
  return static_cast<int>(std::count(first, last, true));
}

}  // namespace

ZRBitSet::ZRBitSet(int size) : fbVec(size > 0 ? static_cast<std::size_t>(size) : 0U, false) {}

ZRBitSet::ZRBitSet(const std::vector<bool> & bits) : fbVec(bits) {}

bool ZRBitSet::Set(const std::vector<bool> & bits) {
  fbVec = bits;
  return true;
}

void ZRBitSet::Clear() {
  std::fill(fbVec.begin(), fbVec.end(), false);
}

void ZRBitSet::Resize(int size, bool value) {
  if (size < 1) {
    fbVec.clear();
    return;
  }
  fbVec.assign(static_cast<std::size_t>(size), value);  // Intended: old bits are not kept
}

int ZRBitSet::InSet() const {
  return CountTrue(fbVec.begin(), fbVec.end());
}

int ZRBitSet::Append(bool bit) {
  if (fbVec.size() >= static_cast<std::size_t>(INT_MAX)) return -1;
  fbVec.push_back(bit);
  return Size();
}

void ZRBitSet::Negate() {
  fbVec.flip();
}

bool ZRBitSet::SetRange(int first, int last, bool value) {
  if (first < 0 || first > last || last >= Size()) return false;
  std::fill(fbVec.begin() + first, fbVec.begin() + last + 1, value);
  return true;
}

bool ZRBitSet::SetSubset(std::vector<int> indices, bool value) {
  const int size = Size();
  for (int i : indices) {
    if (i < 0 || i >= size) return false;
  }
  for (int i : indices) fbVec[static_cast<std::size_t>(i)] = value;
  return true;
}

ZRBitSet ZRBitSet::GetSubset(int first, int last) const {
  first = std::max(first, 0);
  last = std::min(last, Size() - 1);
  ZRBitSet result;
  if (first <= last) result.fbVec.assign(fbVec.begin() + first, fbVec.begin() + last + 1);
  return result;
}

int ZRBitSet::InRange(int first, int last) const {
  if (first < 0 || first > last || last >= Size()) return -1;
  return CountTrue(fbVec.begin() + first, fbVec.begin() + last + 1);
}

int ZRBitSet::InRangeS(int first, int count) const {
  // 64 bits: first + count must not overflow for first and count near INT_MAX.
  if (first < 0 || count < 0 || static_cast<long long>(first) + count - 1 >= Size()) return -1;
  return CountTrue(fbVec.begin() + first, fbVec.begin() + first + count);
}

bool ZRBitSet::IsNewFalse(const ZRBitSet & other, int n) const {
  const int limit = std::min(n, Size());
  for (int i = 0; i < limit; ++i) {
    if (fbVec[static_cast<std::size_t>(i)] && !other.IsIn(i)) return true;
  }
  return false;
}

// Bit i of the result depends only on bit i of a and b, so resizing first and writing in
// ascending order is safe when this set is a or b: their first n bits are kept.
void ZRBitSet::DoAND(const ZRBitSet & a, const ZRBitSet & b) {
  const std::size_t n = std::min(a.fbVec.size(), b.fbVec.size());
  fbVec.resize(n);
  for (std::size_t i = 0; i < n; ++i) fbVec[i] = a.fbVec[i] && b.fbVec[i];
}

// Intended: OR over the common length only; the tail of the longer operand is dropped.
void ZRBitSet::DoOR(const ZRBitSet & a, const ZRBitSet & b) {
  const std::size_t n = std::min(a.fbVec.size(), b.fbVec.size());
  fbVec.resize(n);
  for (std::size_t i = 0; i < n; ++i) fbVec[i] = a.fbVec[i] || b.fbVec[i];
}

bool ZRBitSet::Duplicate(int n) {
  if (n < 0) return false;
  const std::size_t old = fbVec.size();
  if (n == 0 || old == 0) return true;
  if ((static_cast<unsigned long long>(n) + 1) * old > static_cast<unsigned long long>(INT_MAX)) {
    return false;
  }
  fbVec.resize((static_cast<std::size_t>(n) + 1) * old);
  const auto begin = fbVec.begin();
  for (std::size_t k = 1; k <= static_cast<std::size_t>(n); ++k) {
    std::copy(begin, begin + static_cast<std::ptrdiff_t>(old),
              begin + static_cast<std::ptrdiff_t>(k * old));
  }
  return true;
}

void ZRBitSet::Display() const {
  ZRDisplay_920::DisplayText(1, "ZRBitSet display start");
  ZRDisplay_920::DisplayBV("fbVec", fbVec);
  ZRDisplay_920::DisplayText(1, "ZRBitSet display end");
}

}  // namespace ZRMath_920
