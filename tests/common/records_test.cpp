// Records: ValueRecord against a vector-of-pairs model, RawData's bit-level reads, the size
// and allocation rules of RawRecord and Record, and MemoryRecordIterator on exact-size arrays.
#include "zrcommon920r/common/records.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <limits>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "support/alloccount.h"
#include "zrcommon920r/xml/vars/ivariable.h"

namespace {

using ZRCommon_920::MemoryRecordIterator;
using ZRCommon_920::RawData;
using ZRCommon_920::RawRecord;
using ZRCommon_920::Record;
using ZRCommon_920::Value;
using ZRCommon_920::ValueRecord;
using Storage = ZRXML_920::IZRVariable;

static_assert(RawData::kStorageUndefined == Storage::kStorageUndefined &&
                  RawData::kStorageInteger == Storage::kStorageInteger &&
                  RawData::kStorageReal == Storage::kStorageReal &&
                  RawData::kStorageString == Storage::kStorageString &&
                  RawData::kStorageDate == Storage::kStorageDate &&
                  RawData::kStorageTime == Storage::kStorageTime &&
                  RawData::kStorageTimestamp == Storage::kStorageTimestamp,
              "RawData's storage codes are those of IZRVariable::VariableStorage");

// A fixed 64-bit LCG (Knuth's MMIX constants); Below(n) is uniform on 0 .. n - 1.
struct Lcg {
  std::uint64_t state;
  int Below(int n) {
    state = state * 6364136223846793005u + 1442695040888963407u;
    return static_cast<int>((state >> 33) % static_cast<std::uint64_t>(n));
  }
};

std::string Text(const ValueRecord & record) {
  std::ostringstream os;
  os << record;
  return os.str();
}

ValueRecord RecordOf(std::vector<std::pair<std::string, Value>> entries) {
  ValueRecord record;
  for (const auto & [name, value] : entries) record.Add(name, value);
  return record;
}

TEST(ValueRecord, NamesPositionsAndValuesStayPairedUnderRandomEdits) {
  std::vector<std::pair<std::string, long long>> model;  // by position
  ValueRecord record;
  Lcg gen{19};
  for (long long step = 0; step < 3000; ++step) {
    const std::string name = "v" + std::to_string(gen.Below(400));
    const auto hit = std::find_if(model.begin(), model.end(),
                                  [&name](const auto & entry) { return entry.first == name; });
    const int at = hit == model.end() ? -1 : static_cast<int>(hit - model.begin());
    const int op = gen.Below(4);
    SCOPED_TRACE(std::to_string(step) + " " + std::to_string(op) + " " + name);
    if (op == 1) {  // Remove: later positions fall by one
      if (at >= 0) model.erase(hit);
      record.Remove(name);
    } else if (op == 2) {  // Set never creates
      ASSERT_EQ(record.Set(name, Value(step), false), at >= 0);
      if (at >= 0) hit->second = step;
    } else {  // Add, or operator[] (adding a null) written through: in place, or appended
      const int position = op == 0 ? record.Add(name, Value(step)) : -1;
      if (op == 3) record[name] = step;
      if (at >= 0)
        hit->second = step;
      else
        model.emplace_back(name, step);
      if (op == 0) {
        ASSERT_EQ(position, at >= 0 ? at : static_cast<int>(model.size()) - 1);
      }
    }
    ASSERT_EQ(record.Size(), static_cast<int>(model.size()));
    const std::vector<std::string> names = record.Names(true);
    ASSERT_EQ(names.size(), model.size());
    for (std::size_t i = 0; i < model.size(); ++i) {
      ASSERT_EQ(names[i], model[i].first);
      ASSERT_EQ(record.IndexOf(model[i].first), static_cast<int>(i));
      ASSERT_EQ(static_cast<long long>(record[static_cast<int>(i)]), model[i].second);
    }
    if (!model.empty()) {  // GetName walks the index: spot-check one position per step
      const int probe = gen.Below(static_cast<int>(model.size()));
      ASSERT_EQ(record.GetName(probe), model[static_cast<std::size_t>(probe)].first);
    }
  }
  EXPECT_EQ(record.GetName(record.Size()), "");
  EXPECT_EQ(record.GetName(-1), "");
}

TEST(ValueRecord, GetCopiesWithoutAllocatingAndGivesNullsOutOfRange) {
  ValueRecord record = RecordOf({{"x", Value(2.5)}, {"n", Value(7)}});
  const std::string name = "n";
  zrtest::AllocCounter counter;
  const double x = record.Get(0).GetReal();
  const long long n = record.Get(name).GetInteger();
  const long count = counter.Count();
  EXPECT_EQ(count, 0);
  EXPECT_EQ(x, 2.5);
  EXPECT_EQ(n, 7);
  EXPECT_TRUE(record.Get(2).IsNull() && record.Get(-1).IsNull() && record.Get("zz").IsNull());
  EXPECT_EQ(record.Size(), 2);           // lookups add nothing
  EXPECT_TRUE(record.SetValue(1, "t"));  // the type follows the argument
  record.SetMissingValue(0);
  EXPECT_EQ(Text(record), "[n:t,x:]");
}

TEST(ValueRecord, SetWithCheckTypeRefusesOnlyANewTypeOverANonNull) {
  struct {
    int line;
    Value present, given;
    bool accepted;
  } const cases[] = {
      {__LINE__, Value(1.5), Value(2), false},    {__LINE__, Value(1.5), Value(2.5), true},
      {__LINE__, Value(), Value(2), true},        {__LINE__, Value(), Value("s"), true},
      {__LINE__, Value("s"), Value(true), false}, {__LINE__, Value(3), Value(), false},
  };
  for (const auto & c : cases) {
    SCOPED_TRACE(c.line);
    ValueRecord record = RecordOf({{"k", c.present}});
    EXPECT_EQ(record.Set("k", c.given, true), c.accepted);
    EXPECT_EQ(record.Get("k").GetType(), c.accepted ? c.given.GetType() : c.present.GetType());
    EXPECT_TRUE(record.Set("k", c.given, false));  // without the check anything goes
  }
}

TEST(ValueRecord, EqualityNeedsSameNamesAndEqualNonNullValues) {
  const ValueRecord base = RecordOf({{"a", Value(1.0)}, {"b", Value("x")}});
  struct {
    int line;
    ValueRecord other;
    bool equal;
  } const cases[] = {
      {__LINE__, RecordOf({{"b", Value("x")}, {"a", Value(1.0)}}), true},  // positions differ
      {__LINE__, RecordOf({{"a", Value(1.0 + 1e-15)}, {"b", Value("x")}}), true},  // tolerance
      {__LINE__, RecordOf({{"a", Value(1.0 + 1e-12)}, {"b", Value("x")}}), false},
      {__LINE__, RecordOf({{"a", Value(1)}, {"b", Value("x")}}), false},    // integer vs real
      {__LINE__, RecordOf({{"a", Value(1.0)}, {"c", Value("x")}}), false},  // other name
      {__LINE__, RecordOf({{"a", Value(1.0)}}), false},
  };
  for (const auto & c : cases) {
    SCOPED_TRACE(c.line);
    EXPECT_EQ(base == c.other, c.equal);
    EXPECT_EQ(c.other == base, c.equal);
  }
  // A null equals nothing, so a record holding one is not even equal to itself.
  const ValueRecord withNull = RecordOf({{"a", Value(1.0)}, {"n", Value()}});
  EXPECT_FALSE(withNull == withNull);
}

TEST(ValueRecord, AddAllAddsInNameOrderAndOverwritesPresentNames) {
  ValueRecord target = RecordOf({{"m", Value(1)}});
  const ValueRecord source = RecordOf({{"z", Value(2)}, {"m", Value(3)}, {"b", Value(4)}});
  EXPECT_TRUE(target.AddAll(source));
  EXPECT_EQ(target.Names(true), (std::vector<std::string>{"m", "b", "z"}));
  EXPECT_EQ(Text(target), "[b:4,m:3,z:2]");
  EXPECT_TRUE(target.AddAll(target));
  EXPECT_EQ(Text(target), "[b:4,m:3,z:2]");
}

TEST(ValueRecord, ClearValuesKeepsNamesAndTheShapeOfNestedValues) {
  ValueRecord record;
  record["s"] = "text";
  record["arr"][2] = 5;  // an array of three
  record["map"]["k"] = 1.5;
  record.ClearValues();
  EXPECT_EQ(record.Names(true), (std::vector<std::string>{"s", "arr", "map"}));
  EXPECT_EQ(Text(record), "[arr:{,,},map:[k:],s:]");
}

TEST(RawData, GettersReadTheStoredBitsWhateverTheStorage) {
  const double tiny3 = 3 * std::numeric_limits<double>::denorm_min();  // the bits 0x3
  struct {
    int line;
    void (*set)(RawData &);
    std::int32_t storage;
    long long bits;
    double real;
  } const cases[] = {
      {__LINE__, [](RawData & d) { d.SetInteger(3, false); }, 1, 3, tiny3},
      {__LINE__, [](RawData & d) { d.SetReal(1.5, false); }, 2, 0x3FF8000000000000, 1.5},
      {__LINE__, [](RawData & d) { d.SetDate(-2.0, false); }, 4, -0x4000000000000000, -2.0},
      {__LINE__, [](RawData & d) { d.SetTime(1.5, false); }, 5, 0x3FF8000000000000, 1.5},
      {__LINE__, [](RawData & d) { d.SetTimestamp(3.0, true); }, 6, 0x4008000000000000, 3.0},
  };
  for (const auto & c : cases) {
    SCOPED_TRACE(c.line);
    RawData d;
    d.SetString("kept", true);
    c.set(d);
    EXPECT_EQ(d.GetStorgeType(), c.storage);
    EXPECT_EQ(d.GetInteger(), c.bits);
    EXPECT_EQ(d.GetReal(), c.real);
    EXPECT_EQ(d.GetString(), "kept");  // a number setter leaves the text
  }
  RawData d;
  EXPECT_TRUE(d.IsNull() && d.GetStorgeType() == 0 && d.GetInteger() == 0);
  d.SetReal(1.5, false);
  d.SetString("a", false);
  EXPECT_EQ(d.GetStorgeType(), 3);
  EXPECT_EQ(d.GetReal(), 1.5);  // the text setter leaves the number
}

TEST(RawData, CopiesTakeEveryFieldAndMovesEmptyTheSourceText) {
  RawData source;
  source.SetInteger(-9, false);
  source.SetString(std::string(40, 'q'), true);  // past any small-string buffer
  RawData copy(source), assigned;
  RawData moved(std::move(source));
  assigned = std::move(copy);
  EXPECT_EQ(source.GetString(), "");  // NOLINT(bugprone-use-after-move): the documented state
  EXPECT_EQ(copy.GetString(), "");    // NOLINT(bugprone-use-after-move)
  for (const RawData * d : {&moved, &assigned}) {
    EXPECT_TRUE(d->GetStorgeType() == 3 && d->IsNull() && d->GetInteger() == -9);
    EXPECT_EQ(d->GetString(), std::string(40, 'q'));
  }
}

// The size rules RawRecord and Record share; fresh(r, i) tells a freshly made element.
template <class R>
void ExpectSizeRules(bool (*fresh)(const R &, int)) {
  const std::pair<int, int> askedAndSize[] = {{-5, 1}, {0, 0}, {3, 3}};
  for (const auto & [asked, size] : askedAndSize) {
    SCOPED_TRACE(asked);
    const R r(asked);
    EXPECT_EQ(r.Size(), size);
    EXPECT_EQ(r.GetAll() == nullptr, size == 0);
    for (int i = 0; i < r.Size(); ++i) EXPECT_TRUE(fresh(r, i));
    EXPECT_EQ(R(r).Size(), size);
  }
  R resized(4);
  EXPECT_TRUE(resized.Resize(-3));  // as construction with 0
  EXPECT_EQ(resized.GetAll(), nullptr);
}

TEST(RawRecordAndRecord, SizeRulesAndFreshContents) {
  ExpectSizeRules<Record>([](const Record & r, int i) { return r[i] == 0.0; });
  ExpectSizeRules<RawRecord>(
      [](const RawRecord & r, int i) { return r[i].IsNull() && r[i].GetStorgeType() == 0; });
  Record record(3);
  record[1] = 4.5;
  EXPECT_TRUE(record.Resize(3));  // the same size keeps the contents
  EXPECT_EQ(Record(record)[1], 4.5);
  RawRecord cells(2), cellsCopy;
  cells[1].SetString("x", false);
  cellsCopy = cells;
  EXPECT_TRUE(cells.Resize(4));  // another size: fresh cells
  EXPECT_EQ(cells[1].GetString(), "");
  EXPECT_EQ(cellsCopy[1].GetString(), "x");
}

TEST(RawRecordAndRecord, AllocationFailureIsSwallowedByConstructorsAndReportedByResize) {
  if (!zrtest::CountsAllocations()) GTEST_SKIP() << "operator new[] cannot be made to fail here";
  Record record(3);
  record[2] = 8.0;
  RawRecord cells(3);
  zrtest::FailArrayNew failing;
  const Record newRecord(4), recordCopy(record);
  const RawRecord newCells(4), cellsCopy(cells);
  for (int size : {newRecord.Size(), recordCopy.Size(), newCells.Size(), cellsCopy.Size()})
    EXPECT_EQ(size, 0);
  EXPECT_TRUE(newRecord.GetAll() == nullptr && cellsCopy.GetAll() == nullptr);
  EXPECT_FALSE(record.Resize(7));  // unchanged
  EXPECT_FALSE(cells.Resize(7));
  EXPECT_TRUE(record.Size() == 3 && record[2] == 8.0 && cells.Size() == 3);
  EXPECT_TRUE(cells.Resize(0));  // needs no allocation
  const double one = 1.0;
  MemoryRecordIterator noRecord(1, 0, &one, nullptr, nullptr);
  EXPECT_EQ(noRecord.GetFailReason(), 2);
  EXPECT_EQ(noRecord.Next(), nullptr);
  EXPECT_EQ(noRecord.NewPass(), 2);
}

// Every record of one pass, copied out.
std::vector<std::vector<double>> Pass(MemoryRecordIterator & it) {
  std::vector<std::vector<double>> records;
  for (int guard = 0; it.HasMore() && guard < 100; ++guard) {
    const Record * r = it.Next();
    if (r == nullptr) break;
    records.emplace_back(r->GetAll(), r->GetAll() + r->Size());
  }
  return records;
}

TEST(MemoryRecordIterator, PlacesFirstPredictorsLastAndReplaysEachPass) {
  // Exact-size heap arrays: a read past an end is a sanitizer error.
  const std::vector<double> first{1, 2, 3}, predictors{10, 11, 20, 21, 30, 31}, last{7, 8, 9};
  const std::vector<std::vector<double>> withLast{{1, 10, 11, 7}, {2, 20, 21, 8}, {3, 30, 31, 9}};
  const std::vector<std::vector<double>> withoutLast{{1, 10, 11}, {2, 20, 21}, {3, 30, 31}};
  MemoryRecordIterator it(3, 2, first.data(), predictors.data(), last.data());
  MemoryRecordIterator plain(3, 2, first.data(), predictors.data(), nullptr);
  EXPECT_EQ(Pass(plain), withoutLast);
  EXPECT_TRUE(it.HasMore());
  const Record * r1 = it.Next();
  const MemoryRecordIterator copy = it;  // keeps its position
  EXPECT_EQ(it.Next(), r1);              // one record, reused
  EXPECT_TRUE(it.HasMore());
  zrtest::AllocCounter counter;
  const Record * r3 = it.Next();
  const long count = counter.Count();
  EXPECT_EQ(count, 0);
  ASSERT_NE(r3, nullptr);
  EXPECT_EQ(std::vector<double>(r3->GetAll(), r3->GetAll() + 4), withLast[2]);
  EXPECT_FALSE(it.HasMore());  // right after the last case
  EXPECT_EQ(it.GetFailReason(), 1);
  EXPECT_EQ(it.Next(), nullptr);
  EXPECT_EQ(it.NewPass(), 0);
  EXPECT_EQ(Pass(it), withLast);
  MemoryRecordIterator resumed = copy;
  EXPECT_EQ(Pass(resumed), (std::vector<std::vector<double>>{withLast[1], withLast[2]}));
  EXPECT_EQ(resumed.NewPass(), 0);
  EXPECT_EQ(Pass(resumed), withLast);
}

TEST(MemoryRecordIterator, EmptySourceEndsAtOnceAndReadsNoArray) {
  for (int nCases : {0, -4}) {
    SCOPED_TRACE(nCases);
    MemoryRecordIterator it(nCases, -2, nullptr, nullptr, nullptr);  // arrays never read
    EXPECT_FALSE(it.HasMore());
    EXPECT_EQ(it.GetFailReason(), 1);
    EXPECT_EQ(it.NewPass(), 0);
    EXPECT_TRUE(it.HasMore());  // as documented: the caller should not call Next now
    EXPECT_EQ(it.Next(), nullptr);
    EXPECT_EQ(it.GetFailReason(), 1);
  }
}

}  // namespace
