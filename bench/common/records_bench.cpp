// The records against plain code doing the same work. RecordPass: one full pass of
// MemoryRecordIterator (through MultiPassRecordIter *, hidden from the optimiser, so every
// call goes through the virtual table) over kCases cases of kPredictors predictors with a
// last array, against a hand-written loop copying the same doubles into a buffer; both
// sides read two elements of each record. RecordIndexOf and RecordGet: lookups of kLookups
// names drawn from a 50-name ValueRecord (through ValueRecord *) against
// std::map<std::string, int>::find plus an index into a vector of the same Values. Before
// timing, the library's answers are checked against the baseline's; a mismatch skips the
// benchmark with the first case that differs. Times are per case or per lookup.
#include <benchmark/benchmark.h>

#include <cstdint>
#include <cstdio>
#include <map>
#include <string>
#include <vector>

#include "zrcommon920r/common/records.h"

#include "benchlcg.h"

namespace {

using zrbench::Lcg;

using ZRCommon_920::MemoryRecordIterator;
using ZRCommon_920::MultiPassRecordIter;
using ZRCommon_920::Record;
using ZRCommon_920::Value;
using ZRCommon_920::ValueRecord;

constexpr int kCases = 1000000;
constexpr int kPredictors = 20;
constexpr int kNames = 50;
constexpr int kLookups = 100000;

void Fail(benchmark::State & state, const char * what, long long at) {
  char message[96];
  std::snprintf(message, sizeof message, "%s differs at %lld", what, at);
  state.SkipWithError(message);
}

// ---- One pass over the cases ----

struct Cases {
  std::vector<double> first, predictors, last;
};

const Cases & TheCases() {
  static const Cases cases = [] {
    Cases c;
    Lcg gen(20240519);
    c.first.resize(kCases);
    c.predictors.resize(static_cast<std::size_t>(kCases) * kPredictors);
    c.last.resize(kCases);
    for (double & x : c.first) x = gen.Uniform();
    for (double & x : c.predictors) x = gen.Uniform();
    for (double & x : c.last) x = gen.Uniform();
    return c;
  }();
  return cases;
}

void PassZr(benchmark::State & state) {
  const Cases & c = TheCases();
  MemoryRecordIterator owner(kCases, kPredictors, c.first.data(), c.predictors.data(),
                             c.last.data());
  MultiPassRecordIter * it = &owner;
  benchmark::DoNotOptimize(it);
  for (long long k = 0; it->HasMore(); ++k) {
    const Record & r = *it->Next();
    const std::size_t at = static_cast<std::size_t>(k) * kPredictors;
    bool same =
        r.Size() == kPredictors + 2 && r[0] == c.first[k] && r[kPredictors + 1] == c.last[k];
    for (int j = 0; j < kPredictors && same; ++j) same = r[j + 1] == c.predictors[at + j];
    if (!same) return Fail(state, "record", k);
  }
  for (auto _ : state) {
    it->NewPass();
    double sum = 0.0;
    while (it->HasMore()) {
      const Record & r = *it->Next();
      sum += r[1] + r[kPredictors + 1];
    }
    benchmark::DoNotOptimize(sum);
  }
  state.counters["calls"] = kCases;
}

void PassByHand(benchmark::State & state) {
  const Cases & c = TheCases();
  std::vector<double> buffer(kPredictors + 2);
  double * out = buffer.data();
  benchmark::DoNotOptimize(out);
  for (auto _ : state) {
    double sum = 0.0;
    for (std::size_t k = 0; k < static_cast<std::size_t>(kCases); ++k) {
      out[0] = c.first[k];
      const double * row = c.predictors.data() + k * kPredictors;
      for (int j = 0; j < kPredictors; ++j) out[j + 1] = row[j];
      out[kPredictors + 1] = c.last[k];
      benchmark::ClobberMemory();  // the record is written out, as the library's must be
      sum += out[1] + out[kPredictors + 1];
    }
    benchmark::DoNotOptimize(sum);
  }
  state.counters["calls"] = kCases;
}

// ---- Lookups by name ----

struct Names {
  ValueRecord record;
  std::map<std::string, int> index;
  std::vector<Value> values;
  std::vector<std::string> lookups;
};

const Names & TheNames() {
  static const Names names = [] {
    Names n;
    Lcg gen(50);
    for (int i = 0; i < kNames; ++i) {
      const std::string name =
          "field_" + std::to_string(gen.Below(1000000)) + "_" + std::to_string(i);
      const Value value(gen.Uniform());
      n.record.Add(name, value);
      n.index.emplace(name, i);
      n.values.push_back(value);
    }
    const std::vector<std::string> all = n.record.Names(true);
    for (int i = 0; i < kLookups; ++i) n.lookups.push_back(all[gen.Below(kNames)]);
    return n;
  }();
  return names;
}

void IndexOfZr(benchmark::State & state) {
  const Names & n = TheNames();
  const ValueRecord * record = &n.record;
  benchmark::DoNotOptimize(record);
  for (int i = 0; i < kLookups; ++i)
    if (record->IndexOf(n.lookups[i]) != n.index.find(n.lookups[i])->second)
      return Fail(state, "position", i);
  for (auto _ : state) {
    long long sum = 0;
    for (const std::string & name : n.lookups) sum += record->IndexOf(name);
    benchmark::DoNotOptimize(sum);
  }
  state.counters["calls"] = kLookups;
}

void IndexOfMap(benchmark::State & state) {
  const Names & n = TheNames();
  for (auto _ : state) {
    long long sum = 0;
    for (const std::string & name : n.lookups) sum += n.index.find(name)->second;
    benchmark::DoNotOptimize(sum);
  }
  state.counters["calls"] = kLookups;
}

void GetZr(benchmark::State & state) {
  const Names & n = TheNames();
  ValueRecord copy = n.record;
  ValueRecord * record = &copy;
  benchmark::DoNotOptimize(record);
  for (int i = 0; i < kLookups; ++i)
    if (record->Get(n.lookups[i]).GetReal() !=
        n.values[static_cast<std::size_t>(n.index.find(n.lookups[i])->second)].GetReal())
      return Fail(state, "value", i);
  for (auto _ : state) {
    double sum = 0.0;
    for (const std::string & name : n.lookups) sum += record->Get(name).GetReal();
    benchmark::DoNotOptimize(sum);
  }
  state.counters["calls"] = kLookups;
}

void GetMap(benchmark::State & state) {
  const Names & n = TheNames();
  for (auto _ : state) {
    double sum = 0.0;
    for (const std::string & name : n.lookups) {
      const Value value = n.values[static_cast<std::size_t>(n.index.find(name)->second)];
      sum += value.GetReal();
    }
    benchmark::DoNotOptimize(sum);
  }
  state.counters["calls"] = kLookups;
}

// Registers "<work>/zr" then "<work>/<side>", so the pair runs together.
void Register(const char * work, const char * side, void (*zr)(benchmark::State &),
              void (*ref)(benchmark::State &)) {
  benchmark::RegisterBenchmark((std::string(work) + "/zr").c_str(), zr)
      ->Unit(benchmark::kMillisecond);
  benchmark::RegisterBenchmark((std::string(work) + "/" + side).c_str(), ref)
      ->Unit(benchmark::kMillisecond);
}

bool RegisterAll() {
  Register("RecordPass", "by_hand", PassZr, PassByHand);
  Register("RecordIndexOf", "map_find", IndexOfZr, IndexOfMap);
  Register("RecordGet", "map_find", GetZr, GetMap);
  return true;
}

[[maybe_unused]] const bool kRegistered = RegisterAll();

}  // namespace
