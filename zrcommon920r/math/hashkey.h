// Keys of small integers: ZRHashKey, a fixed-length int array with a stored hash code, and
// ZRPackedInt, a mixed-radix packing of short-ranged integer sequences into as few ints as
// possible, each below ZRHashKey's element bound, so that a packed sequence can serve as a
// key.
//
// Both depend on the process-wide element offset (SetElementOffset), which is neither
// locked nor tracked: set it before any key or packing is built. Stored hash codes and
// packing units made before a change are stale.
#ifndef ZRCOMMON920R_MATH_HASHKEY_H
#define ZRCOMMON920R_MATH_HASHKEY_H

#include <vector>

namespace ZRMath_920 {

// A bare owned array of fLength ints and the hash code as last computed. Element access is
// unchecked and does not refresh the code: fill the key, then call UpdateHashCode.
class ZRHashKey {
 public:
  // No elements (null array), hash code 0.
  ZRHashKey();

  // length ints, all 0, with their hash code computed. The elements mean nothing until the
  // caller has filled them and called UpdateHashCode. A negative length throws
  // std::bad_array_new_length, as operator new[] does; length 0 holds no array.
  explicit ZRHashKey(int length);

  // A deep copy; the stored hash code is copied, not recomputed.
  ZRHashKey(const ZRHashKey & other);

  // Copies the elements and the stored hash code, reallocating when the lengths differ
  // (strong guarantee: on std::bad_alloc this key is unchanged). Nothing happens when the
  // two keys share their array, as in self-assignment.
  // Intended: returns void, so assignments do not chain.
  void operator=(const ZRHashKey & other);

  ~ZRHashKey();

  // Element i, unchecked (0 <= i < GetLength() is the caller's duty). Writing through it
  // leaves the stored hash code as it was.
  int & operator[](int i) { return fKey[i]; }
  const int & operator[](int i) const { return fKey[i]; }

  // Recomputes and stores the hash code: the XOR over i of
  // PRIME_FACTOR[i mod 49] * (element i + offset), in 32-bit wrapping arithmetic; 0 for an
  // empty key.
  void UpdateHashCode() { fHashCode = ComputeHashCode(); }

  // The stored hash code.
  int GetHashcode() const { return fHashCode; }

  // The number of elements.
  int GetLength() const { return fLength; }

  // Equal stored hash codes, lengths and elements; the hash codes are compared first, so
  // unequal codes reject at once (and keys with stale codes may compare unequal).
  bool operator==(const ZRHashKey & other) const;

  // The number of leading elements on which the two keys agree, at most the length of the
  // shorter key: a key with itself gives its length, an empty key 0.
  int Mismatch(const ZRHashKey & other) const;

  // Sets the element offset for the whole process; it enters every later hash code and
  // the element bound. Starts at 0.
  static void SetElementOffset(int offset) { ADD_LOWER_BOUND = offset; }

  // The element offset.
  static int GetElementOffset() { return ADD_LOWER_BOUND; }

  // The bound that elements (and packed ints) stay below: 9377657 - offset, saturated at
  // INT_MAX for offsets below 9377657 - INT_MAX.
  static int GetElementUpperBound();

  // Prints one line: "\t Key: ", then "  %d" for each element.
  void Display() const;

 private:
  int ComputeHashCode() const;

  int * fKey;
  int fLength;
  int fHashCode;

  static int ADD_LOWER_BOUND;
  static const int PRIME_FACTOR[49];
};

// Orders by length first (a shorter key is the lesser whatever its elements), then by the
// elements from the front; the hash codes play no part. Equal keys are not less.
bool operator<(const ZRHashKey & a, const ZRHashKey & b);

// Packs sequences of fSeqSize integers, position i taking the fvNDiffVal[i] values
// fLowerBound .. fLowerBound + fvNDiffVal[i] - 1, into fNUnits ints. Consecutive positions
// share a unit while the product of their numbers of values stays within the element
// bound of ZRHashKey; within a unit the first position is the fastest-changing digit.
class ZRPackedInt {
 public:
  // Empty: no positions, no units.
  ZRPackedInt();

  // Stores the description and sets up the units as SetForSequence does, without reporting
  // the outcome (an invalid description leaves no positions).
  ZRPackedInt(int seqSize, int lowerBound, const std::vector<int> & nDiffVal);

  // Stores the description and sets up the units. The split: walking the positions, add
  // log(fvNDiffVal[i]) to a running sum; when the sum passes log(element bound) position i
  // opens a new unit and the sum restarts at its own logarithm. (So the test is on sums of
  // logarithms, not on the integer product.) Returns false, leaving fSeqSize 0 and no
  // values or units, when seqSize < 1, nDiffVal has fewer than seqSize entries or one of
  // the first seqSize is below 1.
  bool SetForSequence(int seqSize, int lowerBound, const std::vector<int> & nDiffVal);

  int GetSeqSize() const { return fSeqSize; }
  int GetLowerBound() const { return fLowerBound; }

  // The number of values of position i; -1 when i < 0 or i >= GetSeqSize().
  int GetNDiffVal(int i) const;

  // Packs seq[0 .. fSeqSize - 1] into packed, resized to fNUnits elements if it has
  // another size, and returns true. False, with packed untouched, when seq is shorter than
  // fSeqSize or, with check, when some seq[i] lies outside its position's values. Without
  // check the range is not tested, and an element outside it packs to an unspecified
  // value (never undefined behaviour).
  bool Pack(const std::vector<int> & seq, std::vector<int> & packed, bool check) const;

  // The inverse of Pack: writes the fSeqSize positions to seq, which is lengthened to
  // fSeqSize if shorter (a longer seq keeps its tail), and returns true. False, with seq
  // untouched, when packed has fewer than fNUnits elements. A packed value that Pack could
  // not have made unpacks to an unspecified sequence.
  bool Unpack(std::vector<int> & seq, const std::vector<int> & packed) const;

  // Prints "ZRPackedInt display start", the members under descriptive names, and
  // "ZRPackedInt display end" on the diagnostic stream.
  void Display() const;

 private:
  bool Setup();

  int fSeqSize;
  int fLowerBound;
  std::vector<int> fvNDiffVal;
  int fNUnits;
  std::vector<int> fvUnitIndex;
  std::vector<int> fvProducts;
};

}  // namespace ZRMath_920

#endif  // ZRCOMMON920R_MATH_HASHKEY_H
