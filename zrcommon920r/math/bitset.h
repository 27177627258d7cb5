// ZRBitSet: a set of indices 0 .. Size() - 1 held as packed bits, with which the sweep and
// factorisation operations of the matrices mark their pivots and redundant rows.
#ifndef ZRCOMMON920R_MATH_BITSET_H
#define ZRCOMMON920R_MATH_BITSET_H

#include <vector>

namespace ZRMath_920 {

// Bit i is element i of fbVec; the size is the number of bits, set or not. Indices are
// checked everywhere: an index out of range is reported by the result (false, -1) and
// changes nothing. Nothing throws except the standard allocation failures of operations
// that make the set longer; per-element queries and updates never allocate.
// Sizes are limited to INT_MAX bits, since Size() answers an int.
class ZRBitSet {
 public:
  // An empty set.
  ZRBitSet() = default;

  // size bits, all false; a negative size gives an empty set.
  explicit ZRBitSet(int size);

  // A copy of bits.
  ZRBitSet(const std::vector<bool> & bits);

  // The number of bits.
  int Size() const { return static_cast<int>(fbVec.size()); }

  // Bit i; false when i < 0 or i >= Size().
  bool IsIn(int i) const { return i >= 0 && i < Size() && fbVec[static_cast<unsigned>(i)]; }

  // Writes bit i and returns true; false, with nothing changed, when i < 0 or i >= Size().
  bool Set(int i, bool value) {
    if (i < 0 || i >= Size()) return false;
    fbVec[static_cast<unsigned>(i)] = value;
    return true;
  }

  // Replaces the whole contents by bits; always true.
  bool Set(const std::vector<bool> & bits);

  // Sets every bit false; the size stays.
  void Clear();

  // Re-initialisation: size bits all equal to value (no old bit is kept); empty when
  // size < 1.
  void Resize(int size, bool value);

  // The number of true bits.
  int InSet() const;

  // Adds bit at the end and returns the new size; -1, with nothing changed, when the set
  // already holds INT_MAX bits.
  int Append(bool bit);

  // Flips every bit.
  void Negate();

  // Writes value to bits first .. last inclusive and returns true; false, with nothing
  // changed, unless 0 <= first <= last < Size().
  bool SetRange(int first, int last, bool value);

  // Writes value to every listed bit and returns true (also for an empty list); false,
  // with nothing changed, when any index is outside 0 .. Size() - 1.
  bool SetSubset(std::vector<int> indices, bool value);

  // Bits first .. last in order, after raising a negative first to 0 and lowering last to
  // Size() - 1; empty when then first > last.
  ZRBitSet GetSubset(int first, int last) const;

  // The number of true bits among first .. last inclusive; -1 unless
  // 0 <= first <= last < Size().
  int InRange(int first, int last) const;

  // The number of true bits among the count bits from first; -1 when first or count is
  // negative or first + count - 1 >= Size(). An empty range (count 0) at any first from 0
  // to Size() inclusive gives 0.
  int InRangeS(int first, int count) const;

  // Whether some i < min(n, Size()) has this bit i true and other's bit i false; a bit
  // beyond other's end reads as false. False for n < 1.
  bool IsNewFalse(const ZRBitSet & other, int n) const;

  // Makes this set min(a.Size(), b.Size()) bits long with bit i = a[i] AND b[i]. This set
  // may be a or b.
  void DoAND(const ZRBitSet & a, const ZRBitSet & b);

  // As DoAND with OR: the size is still that of the smaller operand, so a true bit in the
  // tail of the larger one is dropped.
  void DoOR(const ZRBitSet & a, const ZRBitSet & b);

  // Appends the bits as they stand n times, so the size becomes (n + 1) times the old one,
  // and returns true; n == 0 changes nothing and returns true. False, with nothing changed,
  // for a negative n or when the new size would pass INT_MAX.
  bool Duplicate(int n);

  // Same size and same bits.
  bool operator==(const ZRBitSet & other) const { return fbVec == other.fbVec; }

  // Lexicographic order on the bits, false before true; a proper prefix is the lesser.
  bool operator<(const ZRBitSet & other) const { return fbVec < other.fbVec; }

  // Prints "ZRBitSet display start", the bits as "fbVec" (see DisplayBV) and
  // "ZRBitSet display end" on the diagnostic stream.
  void Display() const;

 private:
  std::vector<bool> fbVec;
};

}  // namespace ZRMath_920

#endif  // ZRCOMMON920R_MATH_BITSET_H
