// Value: the library's one variant (null, bool, 64-bit integer, double, string, array of
// Value, map from string to Value), and the numeric constants every class uses: the
// system-missing value, infinity and the tolerance unit of IsZeroDiff.
#ifndef ZRCOMMON920R_COMMON_VALUE_H
#define ZRCOMMON920R_COMMON_VALUE_H

#include <cstddef>
#include <limits>
#include <map>
#include <ostream>
#include <string>
#include <vector>

#include "zrcommon920r/common/numconst.h"
#include "zrcommon920r/common/status.h"

namespace ZRCommon_920 {

// A 16-bit type tag and one 64-bit payload:
//   0 null, 1 bool, 2 integer (long long), 3 real (double),
//   4 string, 5 array of Value, 6 map from string to Value (ordered by std::string's <).
// Strings, arrays and maps live on the heap with exactly one owner, and every copy is deep.
// Misuse throws ZRException by value: code 13 "Value type wrong!" (strict access to another
// type) or "This value is not an array!", code 14 "Out of this array bounds!". A negative
// integer index throws std::out_of_range from the vector's checked access; allocation
// failures throw std::bad_alloc. The converting getters (GetBool, GetInteger, GetReal,
// GetString, GetStringRef) never throw for a wrong type.
//
// Static initialisation order: the double constants are constexpr, and the Value constants
// (NULL_VALUE ... STRING_VALUE) are constant-initialised (the build checks it) and own no
// heap memory. So they hold their values before any dynamic initialiser of any file runs,
// and are destroyed only after every dynamically initialised static: they may be used from
// the static initialisers and destructors of other files.
//
// The conversion operators are implicit. Convert to int through long long: `int i = v;`
// selects operator bool. Direct initialisation `std::string s(v)` of a non-const Value is
// ambiguous; write `std::string s = v;`. Not synchronised: one thread at a time per Value.
class Value {
 public:
  using Array = std::vector<Value>;
  using Map = std::map<std::string, Value>;

  // The system-missing value, the lowest finite double (bits FFEFFFFFFFFFFFFF).
  static constexpr double SYSMISVALUE = kSysMisValue;
  // Positive infinity (bits 7FF0000000000000).
  static constexpr double ZRVALUE_INFINITY = std::numeric_limits<double>::infinity();
  // The tolerance unit of IsZeroDiff and of real equality (bits 3CB00001DD9DC7D3).
  // Intended: the five-digit literal, slightly above the double's machine epsilon.
  static constexpr double EPSILON = 2.22045e-16;

  static const Value NULL_VALUE;     // a null
  static const Value BOOL_VALUE;     // false
  static const Value INTEGER_VALUE;  // integer 0
  static const Value REAL_VALUE;     // the real SYSMISVALUE
  static const Value STRING_VALUE;   // the empty string

  static constexpr double GetSysmisValue() { return SYSMISVALUE; }
  static constexpr double GetInfinity() { return ZRVALUE_INFINITY; }

  // A null.
  constexpr Value() : fnType(kNull), fnValue(0) {}
  // A bool, an integer (int widens), a real.
  constexpr Value(bool value) : fnType(kBool), fbValue(value) {}
  constexpr Value(int value) : fnType(kInteger), fnValue(value) {}
  constexpr Value(long long value) : fnType(kInteger), fnValue(value) {}
  constexpr Value(double value) : fnType(kReal), fdValue(value) {}
  // A string. A null pointer, which callers must not pass, is read as the empty string.
  Value(const char * value);
  Value(const std::string & value);

  // A deep copy.
  Value(const Value & other);
  // Takes other's contents and leaves other a null; never throws.
  Value(Value && other) noexcept;

  // Replaces the contents by a deep copy of other; self-assignment does nothing. The copy
  // is made before the old contents are released, so assigning a part of this Value
  // (v = v[0]) is safe, and on bad_alloc this Value is unchanged.
  Value & operator=(const Value & other);
  // Takes other's contents, leaving other a null; safe when other is a part of this Value.
  Value & operator=(Value && other) noexcept;

  // Replace the contents and the type (a null const char * is read as "").
  Value & operator=(bool value);
  Value & operator=(int value);
  Value & operator=(long long value);
  Value & operator=(double value);
  Value & operator=(const char * value);
  Value & operator=(const std::string & value);

  // Releases the contents.
  ~Value() { Release(); }

  // Releases the contents and leaves a null.
  void Clear() { Invalidate(); }

  // A new heap copy, owned by the caller.
  Value * Clone() const { return new Value(*this); }

  // Strict access: the payload of a bool, integer or real, a copy of a string. Any other
  // type, null included, throws 13 "Value type wrong!".
  operator bool() const;
  operator long long() const;
  operator double() const;
  operator std::string() const;

  // Strict access by reference into the payload. A null first takes the wanted type with a
  // zero payload (false, 0, 0.0) or an empty string; any other type throws 13.
  operator bool &();
  operator long long &();
  operator double &();
  operator std::string &();

  // Converting access; never throws for a wrong type.
  // Truth value: false for a null; not 0 / not 0.0 (so true for a NaN); the text read by
  // stream extraction with default flags into a bool that starts false ("1" true, "true"
  // and unreadable text false, any other number true); a non-empty array or map.
  bool GetBool() const;
  // Integer: 0 for a null, 0 or 1, the real truncated toward 0, the text read by stream
  // extraction into a long long that starts at 0, the size of an array or map. A real
  // outside the range of long long saturates (SYSMISVALUE gives LLONG_MIN), a NaN gives 0.
  long long GetInteger() const;
  // Real: SYSMISVALUE for a null, 0.0 or 1.0, the integer rounded to nearest, the size of
  // an array or map. A string's first '.' is replaced by the decimal point of std::cout's
  // locale and the text read in that locale into a double that starts at SYSMISVALUE; an
  // unreadable text therefore gives 0.0 or SYSMISVALUE, as the extraction leaves it.
  double GetReal() const;
  // Text: "" for a null, "1" or "0", decimal digits, the string, the Display text of an
  // array or map (reals inside written as here). A real is written as %g with six significant
  // digits in the classic locale ("1.23457e+06", "-1.79769e+308" for SYSMISVALUE, "inf", "nan"),
  // with a '.' decimal point and no digit grouping whatever the global locale.
  std::string GetString() const;
  // The string of a string, and for any other type the shared empty string that
  // STRING_VALUE holds. Valid while this Value is a string and not written to.
  const std::string & GetStringRef() const;

  // Writes a scalar without changing the tag. A null takes the matching type (int widens
  // to integer). Intended: on a bool, integer or real of another type the tag stays and
  // the payload gets the argument's bits: SetValue(1.5) on an integer leaves an integer
  // holding the bits of 1.5, and the integer overloads store the 64 bits of the widened
  // value. The bool overload writes only the low-order byte (0 or 1); a bool payload is
  // read back from its low-order byte (non-zero is true).
  // Our safe answer for a string, array or map, which these overloads are not meant for:
  // the contents are released and the Value takes the matching scalar type.
  void SetValue(bool value);
  void SetValue(int value);
  void SetValue(long long value);
  void SetValue(double value);
  // Assigns in place to a string; any other type is released and becomes a string.
  void SetValue(const char * value);
  void SetValue(const std::string & value);

  // Element i of an array holding at least i + 1 elements. Throws 13 "This value is not an
  // array!" for any other type, null included, 14 "Out of this array bounds!" when
  // i + 1 > Size(), and std::out_of_range for i < 0.
  const Value & operator[](int i) const;
  // Element i of an array, grown with nulls to i + 1 elements if it is shorter. A null
  // first becomes an array; another type throws 13. For i < 0 std::out_of_range is thrown
  // after that (a null is then left an empty array).
  Value & operator[](int i);
  // Entry name of a map, created as a null if absent. Intended: any other type, null
  // included, is silently discarded and replaced by an empty map first, so this never
  // throws a ZRException.
  Value & operator[](const std::string & name);
  Value & operator[](const char * name) { return (*this)[std::string(name ? name : "")]; }
  // No const lookup by name (use Contains and Names): deleted so that cv["a"] cannot
  // compile as pointer arithmetic on the literal through operator long long.
  const Value & operator[](const std::string & name) const = delete;
  const Value & operator[](const char * name) const = delete;

  // Makes an array of exactly size elements, shrinking or growing with nulls; a null
  // becomes an array. Another type throws 13; a negative size throws std::length_error and
  // changes nothing.
  void Resize(int size);
  // Whether this is a map with the key name.
  bool Contains(const std::string & name) const;
  // The keys of a map in order; empty for any other type.
  std::vector<std::string> Names() const;
  // Length of a string, elements of an array, entries of a map (capped at INT_MAX); -1 for
  // any other type.
  int Size() const;

  bool IsNull() const { return fnType == kNull; }
  // The tag, 0 to 6.
  unsigned short GetType() const { return fnType; }
  // True for a null and for a real equal to SYSMISVALUE; false otherwise, a NaN included.
  bool IsMissing() const { return fnType == kNull || (fnType == kReal && fdValue == SYSMISVALUE); }
  bool IsSystemMissingValue() const { return IsMissing(); }
  // An integer or a real (not a bool).
  bool IsNumericValue() const { return fnType == kInteger || fnType == kReal; }

  // Clears the leaves and keeps the shape: a bool, integer, real or string becomes a null;
  // every element of an array and every entry of a map is cleared recursively, and the
  // array keeps its size and the map its keys.
  void ClearValue();

  // Writes the value without quotes or blanks: nothing for a null, a bool and an integer
  // through the stream's operator<< (a bool as 0 or 1 under default flags), a real under
  // the stream's current format, a string's characters, an array as "{a,b}", a map as
  // "[k1:v1,k2:v2]", nesting inline. Returns os.
  std::ostream & Display(std::ostream & os) const;

  // Equality within a relative tolerance: true when a - b is exactly 0; otherwise false
  // when a or b is 0 (nothing is near zero but zero); otherwise
  // max(|a|, |b|) * (multiplier * EPSILON) >= |a - b|. A NaN gives false, and so do two
  // infinities, whose difference is a NaN.
  static bool IsZeroDiff(double a, double b, double multiplier);

  // Equality: same tag and equal payloads. Intended: a null equals nothing, not even a
  // null, so containers holding nulls never compare equal. Reals: both 0.0 (either sign)
  // are equal; SYSMISVALUE equals only itself; otherwise IsZeroDiff(a, b, 100.0).
  // Strings by bytes; arrays element by element; maps by keys and values in key order.
  bool operator==(const Value & other) const;
  bool operator!=(const Value & other) const { return !(*this == other); }
  // Ordering. Intended: Values of different tags compare their GetString() texts, so the
  // integer 10 is less than the string "9". Two nulls: false. Bools: false < true.
  // Integers numerically; reals exactly, and false when either is SYSMISVALUE. Strings,
  // arrays and maps lexicographically (a prefix is the lesser; map entries by key, then by
  // value).
  bool operator<(const Value & other) const;
  // other < *this. Intended: for two bools it is the same test as <, so false > true.
  bool operator>(const Value & other) const;
  bool operator<=(const Value & other) const { return *this < other || *this == other; }
  bool operator>=(const Value & other) const { return *this > other || *this == other; }

 protected:
  // Throws 13 "Value type wrong!" unless the tag is type.
  void AssertTypeOrInvalid(unsigned short type) const;
  // The same, after a null has taken the type (0 to 6): an empty string, array or map for
  // 4 to 6, a zero payload otherwise. Any other type throws 13 and changes nothing.
  void AssertTypeOrInvalid(unsigned short type);
  // Throws 13 "This value is not an array!" unless this is an array, then 14 "Out of this
  // array bounds!" if it has fewer than requiredSize elements.
  void AssertArray(int requiredSize) const;
  // Makes a null an array of requiredSize elements (none when requiredSize < 0); another
  // non-array throws 13. Then resizes to requiredSize when exact, or grows to requiredSize
  // if shorter when not. A negative requiredSize with exact throws std::length_error.
  void AssertArray(int requiredSize, bool exact);
  // Makes this a map: a map stays, any other type is released and becomes an empty map.
  void AssertMap();
  // Releases the contents and leaves a null (zero payload).
  void Invalidate();

 private:
  static constexpr unsigned short kNull = 0, kBool = 1, kInteger = 2, kReal = 3, kString = 4,
                                  kArray = 5, kMap = 6;

  struct EmptyStringTag {};
  // STRING_VALUE: a string whose pointer is null. A null string pointer stands for the
  // empty string, so that the constant needs no allocation and is constant-initialised.
  constexpr explicit Value(EmptyStringTag) : fnType(kString), fpString(nullptr) {}

  // Frees a string, array or map; tag and payload are left as they are.
  void Release() noexcept;
  // Release, then the tag and payload of other (other untouched).
  void TakeFrom(Value & other) noexcept;
  // The string of a string Value (the shared empty string for a null pointer).
  const std::string & StringRef() const;
  // The string of a string Value, allocated first if the pointer is null.
  std::string & MutableString();
  // n as an int, capped at INT_MAX.
  static int CapSize(std::size_t n);
  // The two AssertArray forms for a required size that may pass INT_MAX (i + 1).
  void CheckArray(long long requiredSize) const;
  void MakeArray(long long requiredSize, bool exact);

  unsigned short fnType;
  union {
    bool fbValue;
    long long fnValue;
    double fdValue;
    std::string * fpString;
    Array * fpArray;
    Map * fpMap;
  };
};

// Writes value.Display(os) and returns os.
std::ostream & operator<<(std::ostream & os, const Value & value);

}  // namespace ZRCommon_920

#endif  // ZRCOMMON920R_COMMON_VALUE_H
