// Records: the named value record (ValueRecord); one cell of case data as it came from the
// source (RawData); fixed-size arrays of cells (RawRecord) and of doubles (Record); and the
// sources of records: the interfaces RecordIterator and MultiPassRecordIter and
// MemoryRecordIterator, which serves records from arrays in memory.
#ifndef ZRCOMMON920R_COMMON_RECORDS_H
#define ZRCOMMON920R_COMMON_RECORDS_H

#include <cstdint>
#include <map>
#include <ostream>
#include <string>
#include <vector>

#include "zrcommon920r/common/value.h"

namespace ZRCommon_920 {

// A growing list of Values in the order of their addition, with an ordered index from name
// to position: every position has exactly one name. Copies are deep.
// Unchecked positions are the caller's contract: SetMissingValue, the SetValue overloads and
// operator[](int) need 0 <= index < Size(); Get(int) and GetName check theirs.
// Allocation failures throw std::bad_alloc; Add then leaves the record as it was.
class ValueRecord {
 public:
  // An empty record with room reserved for capacity values (none when capacity <= 0).
  ValueRecord() = default;
  explicit ValueRecord(int capacity);
  ValueRecord(const ValueRecord & other) = default;
  ValueRecord(ValueRecord && other) = default;
  ValueRecord & operator=(const ValueRecord & other) = default;
  ValueRecord & operator=(ValueRecord && other) = default;

  virtual ~ValueRecord();

  // Equal when both hold the same number of names and every name of this record is in
  // other with a value equal by Value::operator==. Intended: a null equals nothing, so a
  // record holding a null is not equal to any record, its own copy and itself included.
  virtual bool operator==(const ValueRecord & other) const;
  // Overwrites the value of a present name in place and returns its position; otherwise
  // appends the value under the new name and returns the new position.
  virtual int Add(const std::string & name, const Value & value);
  // Adds every entry of other through Add, in name order (so new names arrive sorted, not
  // in other's order of positions). Always true.
  virtual bool AddAll(const ValueRecord & other);
  // Assigns to the value of a present name; never creates one. False when the name is
  // absent or, with checkType, when the present value is not null and of another type than
  // value (any type may replace a null).
  virtual bool Set(const std::string & name, const Value & value, bool checkType);
  // Removes the name and its value; every later position moves down by one. An absent
  // name changes nothing.
  virtual void Remove(const std::string & name);
  // Removes every name and value.
  virtual void Clear();
  // Keeps the names and clears the values with Value::ClearValue: scalars become null,
  // arrays and maps keep their shape with their leaves cleared.
  virtual void ClearValues();
  // Makes the value at index null; index unchecked.
  virtual void SetMissingValue(int index);
  // A copy of the value at index; a null for an index out of range.
  virtual Value Get(int index);
  // A copy of the value of name; a null when the name is absent.
  virtual Value Get(const std::string & name);
  // The position of name, or -1.
  virtual int IndexOf(const std::string & name) const;
  // Whether IndexOf(name) is not -1.
  virtual bool Contains(const std::string & name);
  // The number of names.
  virtual int Size() const;
  // The names by position when byPosition, otherwise in name order.
  virtual std::vector<std::string> Names(bool byPosition) const;
  // The name at position index (a walk of the index), or "" when no name has it.
  virtual std::string GetName(int index);
  // Assign to the value at index with Value::operator=, so its type changes with the
  // argument's. The index is unchecked; always true.
  virtual bool SetValue(int index, const std::string & value);
  virtual bool SetValue(int index, const char * value);
  virtual bool SetValue(int index, double value);
  virtual bool SetValue(int index, long long value);
  virtual bool SetValue(int index, int value);
  virtual bool SetValue(int index, bool value);
  // A hook for records built on other storage; this one has none and returns null.
  virtual void * GetRecord() const;

  // The value at position index, unchecked.
  Value & operator[](int index) { return fvValues[static_cast<std::size_t>(index)]; }
  const Value & operator[](int index) const { return fvValues[static_cast<std::size_t>(index)]; }
  // The value of name, added as a null through Add when absent.
  Value & operator[](const std::string & name);

  // Writes "[" and the entries in name order as name ":" value (Value::Display, so a null
  // writes nothing), separated by ",", then "]", without blanks: "[a:x,b:1]". Returns os.
  std::ostream & Display(std::ostream & os) const;

 protected:
  // The position of name, or -1; what IndexOf answers, without the virtual call.
  int Find(const std::string & name) const;

  std::vector<Value> fvValues;        // the values by position
  std::map<std::string, int> fIndex;  // the position of each name
};

// Writes record.Display(os) and returns os.
std::ostream & operator<<(std::ostream & os, const ValueRecord & record);

// One cell of case data as it came from the source: a storage code, a null flag, a 64-bit
// number read as long long or as double, and a text. The storage codes are those of
// ZRXML_920::IZRVariable::VariableStorage (this folder stands below xml/, so they are
// repeated here as plain 32-bit ints):
//   0 undefined (default construction, null), 1 integer (the number as long long),
//   2 real, 4 date, 5 time, 6 timestamp (the number as double), 3 string (the text).
// Dates, times and timestamps are doubles with no interpretation here. Intended: a setter
// writes only its own member, the storage and the null flag, so the number and the text
// survive a change of storage; and every getter reads its member unconverted, whatever the
// storage: GetInteger after SetReal(1.5, false) gives the bits 0x3FF8000000000000.
class RawData {
 public:
  static constexpr std::int32_t kStorageUndefined = 0;
  static constexpr std::int32_t kStorageInteger = 1;
  static constexpr std::int32_t kStorageReal = 2;
  static constexpr std::int32_t kStorageString = 3;
  static constexpr std::int32_t kStorageDate = 4;
  static constexpr std::int32_t kStorageTime = 5;
  static constexpr std::int32_t kStorageTimestamp = 6;

  // Storage 0, null, number 0, empty text.
  RawData() noexcept : fnStorage(kStorageUndefined), fbNull(true), fuNumber{0} {}
  // Copies take all four fields; a copy throws std::bad_alloc only from the text, and an
  // assignment that throws leaves this cell unchanged.
  RawData(const RawData & other) = default;
  RawData & operator=(const RawData & other);
  // Moves take all four fields and leave the source's text empty (its other fields stay).
  RawData(RawData && other) noexcept;
  RawData & operator=(RawData && other) noexcept;
  ~RawData() = default;

  // Sets the null flag only.
  void SetIsNull(bool isNull) { fbNull = isNull; }
  // Store the datum, the storage of the setter and the null flag.
  void SetInteger(const long long & value, bool isNull);
  void SetReal(const double & value, bool isNull) { SetNumber(kStorageReal, value, isNull); }
  void SetDate(const double & value, bool isNull) { SetNumber(kStorageDate, value, isNull); }
  void SetTime(const double & value, bool isNull) { SetNumber(kStorageTime, value, isNull); }
  void SetTimestamp(const double & value, bool isNull) {
    SetNumber(kStorageTimestamp, value, isNull);
  }
  // The text; a null pointer is read as "". On std::bad_alloc the cell is unchanged.
  void SetString(const std::string & value, bool isNull);
  void SetString(const char * value, bool isNull);

  bool IsNull() const { return fbNull; }
  // The storage code, 0 to 6 (see the class comment). Callers know it by this spelling.
  std::int32_t GetStorgeType() const { return fnStorage; }
  // The number's 64 bits as a long long, whatever the storage.
  long long GetInteger() const;
  // The number's 64 bits as a double, whatever the storage (all four read the same).
  double GetReal() const;
  double GetDate() const { return GetReal(); }
  double GetTime() const { return GetReal(); }
  double GetTimestamp() const { return GetReal(); }
  // The text, whatever the storage.
  const std::string & GetString() const { return fsText; }

 private:
  void SetNumber(std::int32_t storage, double value, bool isNull);

  std::int32_t fnStorage;
  bool fbNull;
  union Number {
    long long fnInteger;
    double fdReal;
  } fuNumber;  // written and read with memcpy only, so either view of the bits is defined
  std::string fsText;
};

// A fixed-size array of RawData cells. Construction with size n: a negative n is taken as
// 1; 0 gives no array (a null pointer); otherwise n default-constructed cells. Intended:
// when the array cannot be allocated the constructors swallow std::bad_alloc and leave
// size 0 and a null pointer; callers compare Size() with what they asked for.
class RawRecord {
 public:
  RawRecord() noexcept : fpCells(nullptr), fnSize(0) {}
  explicit RawRecord(int size);
  // A deep copy; a source below size 1 gives size 0, and a failed allocation (array or
  // text) size 0 and a null pointer, as above.
  RawRecord(const RawRecord & other);
  // Assigns as the copy constructor builds: on failure this record is left empty.
  RawRecord & operator=(const RawRecord & other);
  // Moves take the array and leave the source empty.
  RawRecord(RawRecord && other) noexcept;
  RawRecord & operator=(RawRecord && other) noexcept;
  ~RawRecord();

  // Cell i, unchecked: 0 <= i < Size() is the caller's contract.
  RawData & operator[](int i) { return fpCells[i]; }
  const RawData & operator[](int i) const { return fpCells[i]; }
  // The array (null when the size is 0).
  RawData * GetAll() { return fpCells; }
  const RawData * GetAll() const { return fpCells; }
  int Size() const { return fnSize; }
  // True at once, contents kept, when size is the current size. Otherwise a fresh array
  // of default-constructed cells replaces the old one (a size <= 0 leaves a null pointer
  // and size 0) and the old contents are gone. False, with the record unchanged, when the
  // array cannot be allocated.
  bool Resize(int size);

 private:
  RawData * fpCells;
  int fnSize;
};

// A fixed-size array of doubles, with the construction rules of RawRecord: a negative size
// is taken as 1, 0 gives a null pointer, elements start at 0.0, and a failed allocation is
// swallowed, leaving size 0 and a null pointer.
class Record {
 public:
  Record() noexcept : fpValues(nullptr), fnSize(0) {}
  explicit Record(int size);
  // A deep copy; a source below size 1 gives size 0; a failed allocation size 0.
  Record(const Record & other);
  // Assigns as the copy constructor builds: on failure this record is left empty.
  Record & operator=(const Record & other);
  Record(Record && other) noexcept;
  Record & operator=(Record && other) noexcept;
  ~Record();

  // Element i, unchecked: 0 <= i < Size() is the caller's contract.
  double & operator[](int i) { return fpValues[i]; }
  double operator[](int i) const { return fpValues[i]; }
  double * GetAll() { return fpValues; }
  const double * GetAll() const { return fpValues; }
  int Size() const { return fnSize; }
  // As RawRecord::Resize. The fresh array is not initialised: its elements have no defined
  // value until written.
  bool Resize(int size);

 private:
  double * fpValues;
  int fnSize;
};

// A source of records. A consumer loops on HasMore and Next; GetFailReason tells an orderly
// end or a failure (non-zero) from a running state (0). The record Next returns belongs to
// the source and may be overwritten by the following call. An interface without data.
class RecordIterator {
 public:
  virtual ~RecordIterator() = default;
  // Whether Next has a record to give.
  virtual bool HasMore() const = 0;
  // The next record, or null when there is none.
  virtual const Record * Next() = 0;
  // 0 while records remain; otherwise the implementation's reason for the end.
  virtual int GetFailReason() const = 0;

 protected:
  RecordIterator() = default;
  RecordIterator(const RecordIterator &) = default;
  RecordIterator & operator=(const RecordIterator &) = default;
};

// A source that can go through its data again.
class MultiPassRecordIter : public RecordIterator {
 public:
  // Starts a new pass from the first record; 0 on success.
  virtual int NewPass() = 0;

 protected:
  MultiPassRecordIter() = default;
  MultiPassRecordIter(const MultiPassRecordIter &) = default;
  MultiPassRecordIter & operator=(const MultiPassRecordIter &) = default;
};

// Serves the cases of arrays in memory, which are kept by pointer, not owned, and must
// outlive the iterator: first (one value per case), predictors (nPredictors values per case,
// case by case) and last (one value per case, or null). Each case fills one record of
// nPredictors + 1 elements, + 1 more with last: first, the predictors, last. That record is
// reused by every Next, so a caller that keeps a case copies it. Fail reasons: 0 running,
// 1 end of the data, 2 the record could not be allocated (then nothing is ever served).
// Copies keep their position and share the arrays. Next allocates nothing.
class MemoryRecordIterator : public MultiPassRecordIter {
 public:
  // A negative nPredictors counts as 0. Intended: nCases < 1 sets the fail reason to 1 at
  // once, yet NewPass clears it and HasMore is then true; the Next that follows reads no
  // array, returns null and sets the reason back to 1.
  MemoryRecordIterator(int nCases, int nPredictors, const double * first, const double * predictors,
                       const double * last);
  // Copies take every field, position included, and share the arrays; a copy whose record
  // cannot be allocated has fail reason 2.
  MemoryRecordIterator(const MemoryRecordIterator & other);
  MemoryRecordIterator & operator=(const MemoryRecordIterator & other);
  ~MemoryRecordIterator() override = default;

  // Whether the fail reason is 0. False right after the last case has been handed out.
  bool HasMore() const override { return fnFailReason == 0; }
  // Null when the fail reason is not 0. Otherwise fills the record with the current case,
  // advances, sets the fail reason to 1 once every case has been served, and returns the
  // record.
  const Record * Next() override;
  int GetFailReason() const override { return fnFailReason; }
  // Rewinds to the first case and clears the fail reason; 0. Without a record (reason 2)
  // nothing changes and the result is 2.
  int NewPass() override;

 private:
  // The record's size for the arrays given: nPredictors + 1, + 1 with last.
  long long RecordSize() const;

  int fnCases;
  int fnPredictors;
  const double * fpFirst;
  const double * fpPredictors;
  const double * fpLast;
  Record fRecord;
  int fnFailReason;
  int fnCurrent;  // the next case to deliver, from 0
};

}  // namespace ZRCommon_920

#endif  // ZRCOMMON920R_COMMON_RECORDS_H
