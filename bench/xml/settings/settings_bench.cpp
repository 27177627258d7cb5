// Lookups of a number by name: ZRSettings::GetSettingValByName against Boost.PropertyTree's
// get_optional<double>, each side holding the same n names (n = 10, 100, 1000) with the
// same values and asked for the same kLookups names, drawn at random among them and timed
// per lookup. Names are 4 to 24 lowercase letters, no '.' (the tree's path separator);
// values are halves, so the property tree's text form holds them exactly. Each pass sums
// the values into a checksum kept alive with DoNotOptimize. Before timing, every lookup is
// checked against the value the name was given; a mismatch skips the benchmark.
#include <benchmark/benchmark.h>
#include <boost/optional.hpp>
#include <boost/property_tree/ptree.hpp>

#include <cstdint>
#include <cstdio>
#include <string>
#include <unordered_set>
#include <vector>

#include "zrcommon920r/xml/settings/settings.h"

#include "benchlcg.h"

namespace {

using zrbench::Lcg;

constexpr int kLookups = 100000;

// n distinct names, name i holding i / 2, and kLookups draws among them.
struct Names {
  std::vector<std::string> names;
  std::vector<int> draws;
};

Names MakeNames(int n) {
  Names data;
  Lcg gen(0x9E3779B9u + static_cast<std::uint64_t>(n));
  std::unordered_set<std::string> seen;
  while (static_cast<int>(data.names.size()) < n) {
    std::string s(static_cast<std::size_t>(4 + gen.Below(21)), ' ');
    for (char & c : s) c = static_cast<char>('a' + gen.Below(26));
    if (seen.insert(s).second) data.names.push_back(s);
  }
  data.draws.resize(kLookups);
  for (int & d : data.draws) d = gen.Below(n);
  return data;
}

double ValueOf(int i) {
  return 0.5 * i;
}

// Skips the benchmark, saying where, unless lookup i found the value its name was given.
bool Found(benchmark::State & state, int i, bool found, double got, double want) {
  if (found && got == want) return true;
  char message[96];
  std::snprintf(message, sizeof message, "lookup %d: %s %.17g, given %.17g", i,
                found ? "found" : "not found", got, want);
  state.SkipWithError(message);
  return false;
}

void SettingsZr(benchmark::State & state, int n) {
  const Names data = MakeNames(n);
  ZRXML_920::ZRSettings settings;
  for (int i = 0; i < n; ++i) settings.AddSetting(data.names[i], ValueOf(i), false);
  for (int i = 0; i < kLookups; ++i) {
    double got = 0.0;
    const bool found = settings.GetSettingValByName(data.names[data.draws[i]], got);
    if (!Found(state, i, found, got, ValueOf(data.draws[i]))) return;
  }
  for (auto _ : state) {
    double sum = 0.0;
    for (const int d : data.draws) {
      double value = 0.0;
      settings.GetSettingValByName(data.names[d], value);
      sum += value;
    }
    benchmark::DoNotOptimize(sum);
  }
  state.counters["calls"] = kLookups;
}

void SettingsPtree(benchmark::State & state, int n) {
  const Names data = MakeNames(n);
  boost::property_tree::ptree tree;
  for (int i = 0; i < n; ++i) tree.put(data.names[i], ValueOf(i));
  for (int i = 0; i < kLookups; ++i) {
    const boost::optional<double> got = tree.get_optional<double>(data.names[data.draws[i]]);
    if (!Found(state, i, static_cast<bool>(got), got ? *got : 0.0, ValueOf(data.draws[i]))) return;
  }
  for (auto _ : state) {
    double sum = 0.0;
    for (const int d : data.draws) {
      const boost::optional<double> value = tree.get_optional<double>(data.names[d]);
      if (value) sum += *value;
    }
    benchmark::DoNotOptimize(sum);
  }
  state.counters["calls"] = kLookups;
}

bool RegisterAll() {
  for (const int n : {10, 100, 1000}) {
    const std::string args = "/names:" + std::to_string(n);
    benchmark::RegisterBenchmark(("GetSettingValByName/zr" + args).c_str(), SettingsZr, n)
        ->Unit(benchmark::kMillisecond);
    benchmark::RegisterBenchmark(("GetSettingValByName/ptree" + args).c_str(), SettingsPtree, n)
        ->Unit(benchmark::kMillisecond);
  }
  return true;
}

[[maybe_unused]] const bool kRegistered = RegisterAll();

}  // namespace
