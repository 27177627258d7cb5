// RawData, RawRecord, Record and MemoryRecordIterator: case data in cells and in arrays,
// and the in-memory source of records.
#include "zrcommon920r/common/records.h"

#include <algorithm>
#include <climits>
#include <cstddef>
#include <cstring>
#include <memory>
#include <new>
#include <utility>

namespace ZRCommon_920 {

namespace {

constexpr int kRunning = 0;
constexpr int kEndOfData = 1;
constexpr int kNoRecord = 2;

// A new array of n > 0 elements (value-initialised when zeroed), or null when it cannot
// be allocated.
template <class T>
T * TryNewArray(int n, bool zeroed) noexcept {
  try {
    const std::size_t count = static_cast<std::size_t>(n);
    return zeroed ? new T[count]() : new T[count];
  } catch (const std::bad_alloc &) {
    return nullptr;
  }
}

// A deep copy of n > 0 elements, or null when the array or an element's copy cannot be
// allocated.
template <class T>
T * TryCopyArray(const T * source, int n) noexcept {
  try {
    std::unique_ptr<T[]> copy(new T[static_cast<std::size_t>(n)]);
    std::copy_n(source, n, copy.get());
    return copy.release();
  } catch (const std::bad_alloc &) {
    return nullptr;
  }
}

// Resize of both records: true at once for the current size; otherwise a fresh array (a
// size <= 0 gives none) or false with array and size untouched.
template <class T>
bool ResizeArray(T *& array, int & currentSize, int size) noexcept {
  if (size == currentSize) return true;
  const int n = std::max(size, 0);
  T * fresh = nullptr;
  if (n > 0) {
    fresh = TryNewArray<T>(n, /*zeroed=*/false);
    if (fresh == nullptr) return false;
  }
  delete[] array;
  array = fresh;
  currentSize = n;
  return true;
}

// The constructors' size rule: a negative size is taken as 1.
int ConstructedSize(int size) {
  return size < 0 ? 1 : size;
}

}  // namespace

// ---- RawData ----

RawData & RawData::operator=(const RawData & other) {
  fsText = other.fsText;  // first: the one step that can throw
  fnStorage = other.fnStorage;
  fbNull = other.fbNull;
  fuNumber = other.fuNumber;
  return *this;
}

RawData::RawData(RawData && other) noexcept
    : fnStorage(other.fnStorage),
      fbNull(other.fbNull),
      fuNumber(other.fuNumber),
      fsText(std::move(other.fsText)) {
  other.fsText.clear();
}

RawData & RawData::operator=(RawData && other) noexcept {
  if (this == &other) return *this;
  fnStorage = other.fnStorage;
  fbNull = other.fbNull;
  fuNumber = other.fuNumber;
  fsText = std::move(other.fsText);
  other.fsText.clear();
  return *this;
}

void RawData::SetInteger(const long long & value, bool isNull) {
  std::memcpy(&fuNumber, &value, sizeof fuNumber);
  fnStorage = kStorageInteger;
  fbNull = isNull;
}

void RawData::SetNumber(std::int32_t storage, double value, bool isNull) {
  std::memcpy(&fuNumber, &value, sizeof fuNumber);
  fnStorage = storage;
  fbNull = isNull;
}

void RawData::SetString(const std::string & value, bool isNull) {
  fsText = value;
  fnStorage = kStorageString;
  fbNull = isNull;
}

void RawData::SetString(const char * value, bool isNull) {
  fsText = value != nullptr ? value : "";
  fnStorage = kStorageString;
  fbNull = isNull;
}

long long RawData::GetInteger() const {
  long long value;
  std::memcpy(&value, &fuNumber, sizeof value);
  return value;
}

double RawData::GetReal() const {
  double value;
  std::memcpy(&value, &fuNumber, sizeof value);
  return value;
}

// ---- RawRecord ----

RawRecord::RawRecord(int size) : fpCells(nullptr), fnSize(0) {
  const int n = ConstructedSize(size);
  if (n == 0) return;
  fpCells = TryNewArray<RawData>(n, /*zeroed=*/false);  // cells default-constructed
  if (fpCells != nullptr) fnSize = n;
}

RawRecord::RawRecord(const RawRecord & other) : fpCells(nullptr), fnSize(0) {
  if (other.fnSize < 1) return;
  fpCells = TryCopyArray(other.fpCells, other.fnSize);
  if (fpCells != nullptr) fnSize = other.fnSize;
}

RawRecord & RawRecord::operator=(const RawRecord & other) {
  if (this != &other) *this = RawRecord(other);
  return *this;
}

RawRecord::RawRecord(RawRecord && other) noexcept : fpCells(other.fpCells), fnSize(other.fnSize) {
  other.fpCells = nullptr;
  other.fnSize = 0;
}

RawRecord & RawRecord::operator=(RawRecord && other) noexcept {
  std::swap(fpCells, other.fpCells);
  std::swap(fnSize, other.fnSize);
  return *this;
}

RawRecord::~RawRecord() {
  delete[] fpCells;
}

bool RawRecord::Resize(int size) {
  return ResizeArray(fpCells, fnSize, size);
}

// ---- Record ----

Record::Record(int size) : fpValues(nullptr), fnSize(0) {
  const int n = ConstructedSize(size);
  if (n == 0) return;
  fpValues = TryNewArray<double>(n, /*zeroed=*/true);
  if (fpValues != nullptr) fnSize = n;
}

Record::Record(const Record & other) : fpValues(nullptr), fnSize(0) {
  if (other.fnSize < 1) return;
  fpValues = TryCopyArray(other.fpValues, other.fnSize);
  if (fpValues != nullptr) fnSize = other.fnSize;
}

Record & Record::operator=(const Record & other) {
  if (this != &other) *this = Record(other);
  return *this;
}

Record::Record(Record && other) noexcept : fpValues(other.fpValues), fnSize(other.fnSize) {
  other.fpValues = nullptr;
  other.fnSize = 0;
}

Record & Record::operator=(Record && other) noexcept {
  std::swap(fpValues, other.fpValues);
  std::swap(fnSize, other.fnSize);
  return *this;
}

Record::~Record() {
  delete[] fpValues;
}

bool Record::Resize(int size) {
  return ResizeArray(fpValues, fnSize, size);
}

// ---- MemoryRecordIterator ----

MemoryRecordIterator::MemoryRecordIterator(int nCases, int nPredictors, const double * first,
                                           const double * predictors, const double * last)
    : fnCases(nCases),
      fnPredictors(std::max(nPredictors, 0)),
      fpFirst(first),
      fpPredictors(predictors),
      fpLast(last),
      fRecord(),
      fnFailReason(nCases < 1 ? kEndOfData : kRunning),
      fnCurrent(0) {
  const long long size = RecordSize();
  if (size <= INT_MAX) fRecord = Record(static_cast<int>(size));
  if (fRecord.Size() != size) fnFailReason = kNoRecord;
}

long long MemoryRecordIterator::RecordSize() const {
  return fnPredictors + 1LL + (fpLast != nullptr ? 1 : 0);
}

MemoryRecordIterator::MemoryRecordIterator(const MemoryRecordIterator & other)
    : MultiPassRecordIter(other),
      fnCases(other.fnCases),
      fnPredictors(other.fnPredictors),
      fpFirst(other.fpFirst),
      fpPredictors(other.fpPredictors),
      fpLast(other.fpLast),
      fRecord(other.fRecord),
      fnFailReason(other.fnFailReason),
      fnCurrent(other.fnCurrent) {
  if (fRecord.Size() != RecordSize()) fnFailReason = kNoRecord;
}

MemoryRecordIterator & MemoryRecordIterator::operator=(const MemoryRecordIterator & other) {
  if (this == &other) return *this;
  fnCases = other.fnCases;
  fnPredictors = other.fnPredictors;
  fpFirst = other.fpFirst;
  fpPredictors = other.fpPredictors;
  fpLast = other.fpLast;
  fRecord = other.fRecord;
  fnFailReason = other.fnFailReason;
  fnCurrent = other.fnCurrent;
  if (fRecord.Size() != RecordSize()) fnFailReason = kNoRecord;
  return *this;
}

const Record * MemoryRecordIterator::Next() {
  // Running implies a record of the right size: every constructor and assignment that
  // could not allocate it has set kNoRecord, which only a successful NewPass clears.
  if (fnFailReason != kRunning) return nullptr;
  // The empty source after NewPass: no array is read.
  if (fnCurrent >= fnCases) {
    fnFailReason = kEndOfData;
    return nullptr;
  }
  double * out = fRecord.GetAll();
  const std::size_t current = static_cast<std::size_t>(fnCurrent);
  const std::size_t nPredictors = static_cast<std::size_t>(fnPredictors);
  out[0] = fpFirst[current];
  if (nPredictors > 0)
    std::memcpy(out + 1, fpPredictors + current * nPredictors, nPredictors * sizeof(double));
  if (fpLast != nullptr) out[nPredictors + 1] = fpLast[current];
  if (++fnCurrent >= fnCases) fnFailReason = kEndOfData;
  return &fRecord;
}

int MemoryRecordIterator::NewPass() {
  if (fRecord.Size() != RecordSize()) {
    fnFailReason = kNoRecord;
    return kNoRecord;
  }
  fnFailReason = kRunning;
  fnCurrent = 0;
  return 0;
}

}  // namespace ZRCommon_920
