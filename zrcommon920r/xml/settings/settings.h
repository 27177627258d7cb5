// The options tree: typed setting values (a number, a text, a vector, a nested list), the
// named setting that holds one, and the ordered collection of settings that a procedure
// fills and a component queries by name. Everything lives in memory only: there is no
// text form. Every value answers every basic getter, with a fixed answer where it has no
// natural one, so no getter fails; the collection's bool results tell failures apart.
#ifndef ZRCOMMON920R_XML_SETTINGS_SETTINGS_H
#define ZRCOMMON920R_XML_SETTINGS_SETTINGS_H

#include <cstddef>
#include <limits>
#include <map>
#include <memory>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "zrcommon920r/common/numconst.h"
#include "zrcommon920r/display/display.h"

namespace ZRXML_920 {

class ZRSettings;

// A setting's value. Comparisons between values of different classes are false in both
// directions (there is no order between them), and so is any comparison of a vector with a
// vector of another element type.
class IZRSettingValue {
 public:
  // The class of a value.
  enum ValueType : int { eNumValue = 0, eStrValue = 1, eVecValue = 2, eListValue = 3 };
  // What a vector holds; eNoSubType for a non-vector or an element type not listed.
  enum ValueSubType : int {
    eNoSubType = 0,
    eIntSubType = 1,         // int
    eDoubleSubType = 2,      // double
    eStringSubType = 3,      // std::string
    ePairIntSubType = 4,     // std::pair<std::string, int>
    ePairDoubleSubType = 5,  // std::pair<std::string, double>
    ePairStringSubType = 6,  // std::pair<std::string, std::string>
    eSettingsSubType = 7     // ZRSettings
  };

  virtual ~IZRSettingValue() = default;
  // A deep copy, owned by the caller.
  virtual IZRSettingValue * Clone() const = 0;
  virtual bool operator==(const IZRSettingValue & other) const = 0;
  virtual bool operator<(const IZRSettingValue & other) const = 0;
  virtual int GetInt() const = 0;
  virtual double GetDouble() const = 0;
  virtual std::string GetString() const = 0;
  virtual bool GetBool() const = 0;
  virtual long long GetLongLong() const = 0;
  virtual ValueType GetType() = 0;
  virtual ValueSubType GetSubType() { return eNoSubType; }
  // Prints the value's kind and value through the diagnostic display stream.
  virtual void Display() const = 0;

 protected:
  IZRSettingValue() = default;
  IZRSettingValue(const IZRSettingValue &) = default;
  IZRSettingValue & operator=(const IZRSettingValue &) = default;
};

// A number held three ways at once: every assignment fills the int, double and long long
// fields, so each getter is a plain read. Conversions never overflow: a double that is NaN
// or whose truncation lies outside int (long long) gives -2147483648 (-9223372036854775808),
// and a long long gives the int of its low 32 bits.
class ZRNumValue : public IZRSettingValue {
 public:
  enum NumValueType : int { eInt = 0, eDouble = 1, eLongLong = 2 };

  // The value of a number never set: the system-missing value.
  static constexpr double gInitalValue = ZRCommon_920::kSysMisValue;
  static constexpr double gInfinity = std::numeric_limits<double>::infinity();
  // Relative tolerance of equal doubles; Intended: 2.22045e-16 as stored, a little above
  // the machine precision, so two doubles just below a power of 2 can differ by 2 ulps.
  static constexpr double fEpsilon = 2.22045e-16;
  // A default-constructed value.
  static const ZRNumValue SYSINI;

  // Not set: int and long long -2147483648 (Intended: not LLONG_MIN), double
  // gInitalValue, type eDouble.
  ZRNumValue();
  explicit ZRNumValue(int value);
  explicit ZRNumValue(double value);
  explicit ZRNumValue(long long value);

  // Type eInt; all three fields the value.
  void SetNumValue(int value);
  // Type eDouble; the double as given, the integers by truncation toward zero.
  void SetNumValue(double value);
  // Type eLongLong; the int its low 32 bits, the double the nearest to it.
  void SetNumValue(long long value);
  void GetNumValue(int & value) const { value = fIntValue; }
  void GetNumValue(double & value) const { value = fDoubleValue; }
  void GetNumValue(long long & value) const { value = fLongLongValue; }
  NumValueType GetNumValueType() const { return fNumValueType; }

  IZRSettingValue * Clone() const override;
  // False for a value of another class. Same types: equal ints or long longs; doubles equal
  // when both are 0, when both are gInitalValue (one alone is not), or when
  // |a - b| < fEpsilon * max(|a|, |b|). Intended: with no absolute part, a NaN, an infinity
  // or a subnormal below 2^-1022 (whose tolerance underflows to 0) equals nothing, itself
  // included. Unlike types compare their int fields (Intended: 1.9 equals the int 1).
  bool operator==(const IZRSettingValue & other) const override;
  // False for a value of another class. Same types: plain < of the matching fields;
  // unlike types: of the int fields.
  bool operator<(const IZRSettingValue & other) const override;
  int GetInt() const override { return fIntValue; }
  double GetDouble() const override { return fDoubleValue; }
  // "Undefined" when the double is at or below gInitalValue, whatever the type; otherwise
  // the matching field through a default std::ostringstream (global C++ locale; a double
  // to six significant digits).
  std::string GetString() const override;
  // Whether the field matching the type is strictly above zero.
  bool GetBool() const override;
  long long GetLongLong() const override { return fLongLongValue; }
  ValueType GetType() override { return eNumValue; }
  // "Setting Value Type = Numeric", then "Setting Value" with the double (as DisplayD).
  void Display() const override;

 private:
  int fIntValue;
  double fDoubleValue;
  long long fLongLongValue;
  NumValueType fNumValueType;
};

// A text. Its numeric getters read the number it starts with and never fail.
class ZRStrValue : public IZRSettingValue {
 public:
  ZRStrValue() = default;
  explicit ZRStrValue(const std::string & value) : fValue(value) {}

  void SetString(const std::string & value) { fValue = value; }
  int GetLength() const { return static_cast<int>(fValue.size()); }

  IZRSettingValue * Clone() const override;
  // False for a value of another class; otherwise the bytes compared as unsigned, past
  // NULs, the shorter text first where one is a prefix of the other.
  bool operator==(const IZRSettingValue & other) const override;
  bool operator<(const IZRSettingValue & other) const override;
  // strtol in base 10 of the text up to its first NUL, held to the int range: leading
  // blanks skipped, trailing characters ignored, 0 when no digits start it.
  int GetInt() const override;
  // gInitalValue for an empty text. Otherwise the first '.' of a copy becomes the decimal
  // separator of std::cout's locale, and a default std::istringstream (global C++ locale)
  // reads a double from it, giving 0 when the text starts with no number; a comma under a
  // point locale ends the number.
  double GetDouble() const override;
  std::string GetString() const override { return fValue; }
  // True only for the four bytes "true".
  bool GetBool() const override { return fValue == "true"; }
  // strtoll in base 10, saturating at the long long limits.
  long long GetLongLong() const override;
  ValueType GetType() override { return eStrValue; }
  // "Setting Value Type = String", then "Setting Value = " and the text.
  void Display() const override;

 private:
  std::string fValue;
};

// A nested collection of settings, owned and always allocated. Its scalar getters give
// fixed answers: int -2147483648, double 2.2250738585072014e-308 (the smallest normal
// double, not the system-missing value), long long -9223372036854775808, "" and false.
class ZRSettingListValue : public IZRSettingValue {
 public:
  ZRSettingListValue();
  // Deep copies.
  explicit ZRSettingListValue(const ZRSettings & list);
  ZRSettingListValue(const ZRSettingListValue & other);
  ZRSettingListValue & operator=(const ZRSettingListValue & other);
  ~ZRSettingListValue() override;

  // The held collection, still owned by the value.
  ZRSettings * GetListValue() const { return fList; }

  IZRSettingValue * Clone() const override;
  // False for a value of another class; otherwise ZRSettings' comparison.
  bool operator==(const IZRSettingValue & other) const override;
  bool operator<(const IZRSettingValue & other) const override;
  int GetInt() const override;
  double GetDouble() const override;
  std::string GetString() const override { return std::string(); }
  bool GetBool() const override { return false; }
  long long GetLongLong() const override;
  ValueType GetType() override { return eListValue; }
  // The Display of each contained setting in order.
  void Display() const override;

 private:
  ZRSettings * fList;
};

// The subtype that names T, eNoSubType for a type outside the seven.
template <typename T>
constexpr IZRSettingValue::ValueSubType SettingSubTypeOf() {
  using V = IZRSettingValue;
  using S = std::string;
  if (std::is_same<T, int>::value) return V::eIntSubType;
  if (std::is_same<T, double>::value) return V::eDoubleSubType;
  if (std::is_same<T, S>::value) return V::eStringSubType;
  if (std::is_same<T, std::pair<S, int>>::value) return V::ePairIntSubType;
  if (std::is_same<T, std::pair<S, double>>::value) return V::ePairDoubleSubType;
  if (std::is_same<T, std::pair<S, S>>::value) return V::ePairStringSubType;
  if (std::is_same<T, ZRSettings>::value) return V::eSettingsSubType;
  return V::eNoSubType;
}

// A vector of T, any copyable T with operator<. Its getters describe the vector: int and
// long long the number of elements, bool whether there is one, double the system-missing
// value, text "Vector Value: Length of vector = n".
template <typename T>
class ZRVecValue : public IZRSettingValue {
 public:
  explicit ZRVecValue(const std::vector<T> & values)
      : fVec(values), fSubType(SettingSubTypeOf<T>()) {}

  // The elements.
  const std::vector<T> & GetVecValue() const { return fVec; }

  IZRSettingValue * Clone() const override { return new ZRVecValue<T>(*this); }
  // False unless other is a ZRVecValue of the same T (checked, both ways); then equal
  // element by element, by < in both directions.
  bool operator==(const IZRSettingValue & other) const override {
    const auto * that = dynamic_cast<const ZRVecValue<T> *>(&other);
    return that != nullptr && Compare(*that) == 0;
  }
  // False unless other is a ZRVecValue of the same T; then lexicographic by the elements'
  // <, a vector before every longer one that it starts.
  bool operator<(const IZRSettingValue & other) const override {
    const auto * that = dynamic_cast<const ZRVecValue<T> *>(&other);
    return that != nullptr && Compare(*that) < 0;
  }
  int GetInt() const override { return static_cast<int>(fVec.size()); }
  double GetDouble() const override { return ZRCommon_920::kSysMisValue; }
  std::string GetString() const override {
    return "Vector Value: Length of vector = " + std::to_string(fVec.size());
  }
  bool GetBool() const override { return !fVec.empty(); }
  long long GetLongLong() const override { return static_cast<long long>(fVec.size()); }
  ValueType GetType() override { return eVecValue; }
  ValueSubType GetSubType() override { return fSubType; }
  // "Setting Value Type = Vector", then "Total number of setting value = n".
  void Display() const override {
    ZRDisplay_920::DisplayS("Setting Value Type", "Vector");
    ZRDisplay_920::DisplayI("Total number of setting value", static_cast<int>(fVec.size()));
  }

 private:
  // -1, 0 or 1 as this vector is before, equal to or after other.
  int Compare(const ZRVecValue<T> & other) const {
    const std::size_t n = fVec.size() < other.fVec.size() ? fVec.size() : other.fVec.size();
    for (std::size_t i = 0; i < n; ++i) {
      if (fVec[i] < other.fVec[i]) return -1;
      if (other.fVec[i] < fVec[i]) return 1;
    }
    if (fVec.size() == other.fVec.size()) return 0;
    return fVec.size() < other.fVec.size() ? -1 : 1;
  }

  std::vector<T> fVec;
  ValueSubType fSubType;
};

// One named value with a free-form label (empty by default). Copies are deep.
class ZRSetting {
 public:
  // A ZRNumValue, a ZRStrValue, or a ZRSettingListValue holding a deep copy.
  ZRSetting(const std::string & name, double value);
  ZRSetting(const std::string & name, const std::string & value);
  ZRSetting(const std::string & name, const ZRSettings & value);
  ZRSetting(const ZRSetting & other);
  ZRSetting & operator=(const ZRSetting & other);
  ~ZRSetting();
  ZRSetting * Clone() const;

  const std::string & GetName() const { return fName; }
  // Renames the setting alone. Intended: a collection holding it keeps indexing it by the
  // old name, so lookups find it under that name while GetSettingNames shows the new one.
  void SetName(const std::string & name) { fName = name; }
  void SetType(std::string type) { fType = std::move(type); }
  std::string GetType() { return fType; }
  // Each replaces the value, whose class may change.
  void SetValue(double value);
  void SetValue(const std::string & value);
  void SetValue(const ZRSettings & value);
  // The held value, still owned by the setting.
  IZRSettingValue * GetValue() const { return fValue; }
  // Whether the value is a vector (not a list: that is HasChild).
  bool IsList() const;
  // Whether the value is a nested list of settings.
  bool HasChild() const;
  // "Setting Name = name", "Setting Type = label", then the value's Display.
  void Display() const;
  // Equal names, labels and values.
  bool operator==(const ZRSetting & other) const;
  // The values' < alone: names and labels take no part.
  bool operator<(const ZRSetting & other) const;

 private:
  friend class ZRSettings;
  ZRSetting(const std::string & name, std::unique_ptr<IZRSettingValue> value);

  std::string fName;
  std::string fType;
  IZRSettingValue * fValue;
};

// An ordered collection of settings, viewed both in insertion order and through an index
// sorted by name (byte order, case-sensitive). Names may repeat: a lookup by name finds the
// earliest inserted setting of that name still present. A query of an absent name answers
// false and leaves its output unchanged. Removal is linear in the size of the collection.
class ZRSettings {
 public:
  ZRSettings() = default;
  // Deep copies; the name index is copied as it stands.
  ZRSettings(const ZRSettings & other);
  ZRSettings & operator=(const ZRSettings & other);
  ZRSettings * Clone() const;
  virtual ~ZRSettings();

  // Deletes every setting.
  void Clear();
  std::size_t Size() const { return fSettings.size(); }

  // Appends a setting with an empty label, first removing every setting of that name when
  // replace is set. Always true.
  bool AddSetting(const std::string & name, double value, bool replace);
  bool AddSetting(const std::string & name, const std::string & value, bool replace);
  // Deletes the first setting of that name, or all of them; false when there is none.
  bool RemoveSetting(const std::string & name, bool all);
  // Every setting of that name, earliest first; empty when none.
  std::vector<ZRSetting *> GetSettingByName(const std::string & name);
  // By insertion position; null when index is not below Size().
  ZRSetting * GetSettingAt(std::size_t index) const;
  // Appends the names in insertion order, repeats included; names is not cleared.
  void GetSettingNames(std::vector<std::string> & names) const;

  // The first setting of that name through the value's GetInt, GetDouble, GetString,
  // GetBool or GetLongLong, whatever its class; false, value unchanged, when there is none.
  bool GetSettingValByName(const std::string & name, int & value) const;
  bool GetSettingValByName(const std::string & name, double & value) const;
  bool GetSettingValByName(const std::string & name, std::string & value) const;
  bool GetSettingValByName(const std::string & name, bool & value) const;
  bool GetSettingValByName(const std::string & name, long long & value) const;
  // A deep copy of a nested list; false unless the first setting of that name holds one.
  bool GetSettingValByName(const std::string & name, ZRSettings & value) const;
  // The elements of the first setting of that name, converted as follows. From a vector of
  // the target's own type they are assigned. The converting routes append: int from double
  // by truncation (-2147483648 outside int or for NaN), int and double from text by
  // stream extraction (a number may trail characters: "12abc" is 12; one text that starts
  // with no number empties value and gives false), text from int or double through a
  // default std::ostringstream (six significant digits), pairs of texts from pairs with an
  // int or double second alike. Any other value leaves value alone: true for int, double
  // and text targets, false for ZRSettings and pairs. False for an absent name.
  bool GetSettingValByName(const std::string & name, std::vector<int> & value) const;
  bool GetSettingValByName(const std::string & name, std::vector<double> & value) const;
  bool GetSettingValByName(const std::string & name, std::vector<std::string> & value) const;
  bool GetSettingValByName(const std::string & name, std::vector<ZRSettings> & value) const;
  bool GetSettingValByName(const std::string & name,
                           std::vector<std::pair<std::string, std::string>> & value) const;

  // Each appends a setting with the given label; none is ever replaced.
  void AddNewSetting(const std::string & name, double value, const std::string & type);
  void AddNewSetting(const std::string & name, const std::string & value, const std::string & type);
  void AddNewSetting(const std::string & name, const ZRSettings & value, const std::string & type);
  // A ZRVecValue<std::string> of the count texts (NUL-terminated); none when count < 1 or
  // values is null, "" for a null entry.
  void AddNewSetting(const std::string & name, char ** values, int count, const std::string & type);
  // A ZRVecValue<ZRSettings> of deep copies of the count collections; none when count < 1
  // or values is null, an empty collection for a null entry.
  void AddNewSetting(const std::string & name, ZRSettings ** values, int count,
                     const std::string & type);
  // A setting holding value.Clone(), so a caller's own ZRVecValue<T> can enter the tree.
  void AddNewSetting(const std::string & name, const IZRSettingValue & value,
                     const std::string & type);

  // Compare: the values alone, in insertion order, by their <; the first pair where one
  // is less decides, a collection that runs out first is less. Intended: values of unlike
  // classes are neither less nor greater, so same-sized collections of unrelated values
  // are equal.
  bool operator==(const ZRSettings & other) const { return Compare(other) == 0; }
  bool operator<(const ZRSettings & other) const { return Compare(other) < 0; }
  // The Display of each setting in insertion order.
  void Display() const;

 private:
  using Index = std::multimap<std::string, std::size_t>;

  // The index entry of the earliest setting of that name; fIndex.end() when none.
  Index::const_iterator FindSetting(const std::string & name) const;
  // Labels setting and appends it to both views, after others of its name.
  void Insert(std::unique_ptr<ZRSetting> setting, const std::string & type);
  // Deletes the setting at index, whose entry is at, and renumbers the later ones.
  void Delete(Index::const_iterator at, std::size_t index);
  // -1, 0 or 1; see operator==.
  int Compare(const ZRSettings & other) const;
  // The value of the first setting of that name; null when none.
  IZRSettingValue * FindValue(const std::string & name) const;
  static bool MapVecValue(IZRSettingValue * value, std::vector<int> & target);
  static bool MapVecValue(IZRSettingValue * value, std::vector<double> & target);
  static bool MapVecValue(IZRSettingValue * value, std::vector<std::string> & target);
  static bool MapVecValue(IZRSettingValue * value, std::vector<ZRSettings> & target);
  static bool MapVecValue(IZRSettingValue * value,
                          std::vector<std::pair<std::string, std::string>> & target);
  // Stream extraction of one number from text; whether it succeeded.
  static bool Str2Int(const std::string & text, int * value);
  static bool Str2Double(const std::string & text, double * value);
  // Appends the number of each text; at the first failure empties target, false.
  static bool StrVec2IntVec(const std::vector<std::string> & texts, std::vector<int> & target);
  static bool StrVec2DoubleVec(const std::vector<std::string> & texts,
                               std::vector<double> & target);
  void DeleteAll();

  std::vector<ZRSetting *> fSettings;
  Index fIndex;
};

}  // namespace ZRXML_920

#endif  // ZRCOMMON920R_XML_SETTINGS_SETTINGS_H
