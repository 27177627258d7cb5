// The encoders against plain code doing the same mapping, each side fed the same kValues
// values and timed per value. The library's encoders are called through IZREncoder *, the
// pointer hidden from the optimiser so every call goes through the virtual table:
// ZRCatNumEncoder and ZRStringEncoder on seen categories against std::unordered_map::find,
// ZRBinningEncoder::Encode against std::lower_bound, and ZRContEncoder and ZRRoundEncoder
// (one missing interval, three discrete missing values) against the same tests written
// out by hand and called through a function pointer, so that side pays an indirect call
// too. Each pass sums the codes into a checksum kept alive with DoNotOptimize. Before
// timing, the library's code for every value is checked against the baseline's (and the
// category lookups against the code each value was drawn with); a mismatch skips the
// benchmark with the first value that differs.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "zrcommon920r/common/numconst.h"
#include "zrcommon920r/xml/vars/encoder.h"

#include "benchlcg.h"

namespace {

using zrbench::Lcg;

namespace zx = ZRXML_920;
using ZRCommon_920::kSysMisValue;

constexpr int kValues = 1000000;

void PerValue(benchmark::State & state) {
  state.counters["calls"] = kValues;
}

// Skips the benchmark, saying where, unless both sides give the same code for value i.
bool SameCode(benchmark::State & state, int i, double zr, double ref) {
  if (zr == ref) return true;
  char message[96];
  std::snprintf(message, sizeof message, "value %d: zr %.17g, baseline %.17g", i, zr, ref);
  state.SkipWithError(message);
  return false;
}

// ---- Categories held as numbers ----

// n distinct category values (integers, as codes usually are, in scrambled order) and
// kValues draws among them.
struct NumCats {
  std::vector<double> categories;
  std::vector<int> draws;  // the code each value should get
  std::vector<double> values;
};

NumCats MakeNumCats(int n) {
  NumCats data;
  Lcg gen(0x5DEECE66Du + static_cast<std::uint64_t>(n));
  std::unordered_set<double> seen;
  while (static_cast<int>(data.categories.size()) < n) {
    const double v = static_cast<double>(gen.Below(1000000));
    if (seen.insert(v).second) data.categories.push_back(v);
  }
  data.draws.resize(kValues);
  data.values.resize(kValues);
  for (int i = 0; i < kValues; ++i) {
    data.draws[i] = gen.Below(n);
    data.values[i] = data.categories[data.draws[i]];
  }
  return data;
}

void CatNumZr(benchmark::State & state, int n) {
  const NumCats data = MakeNumCats(n);
  const std::unique_ptr<zx::IZREncoder> owner(new zx::ZRCatNumEncoder(data.categories));
  zx::IZREncoder * encoder = owner.get();
  benchmark::DoNotOptimize(encoder);
  for (int i = 0; i < kValues; ++i)
    if (!SameCode(state, i, encoder->Encode(data.values[i]), data.draws[i])) return;
  for (auto _ : state) {
    double sum = 0.0;
    for (const double v : data.values) sum += encoder->Encode(v);
    benchmark::DoNotOptimize(sum);
  }
  PerValue(state);
}

void CatNumMap(benchmark::State & state, int n) {
  const NumCats data = MakeNumCats(n);
  std::unordered_map<double, int> codes;
  for (std::size_t i = 0; i < data.categories.size(); ++i)
    codes.emplace(data.categories[i], static_cast<int>(i));
  for (int i = 0; i < kValues; ++i)
    if (!SameCode(state, i, codes.find(data.values[i])->second, data.draws[i])) return;
  for (auto _ : state) {
    double sum = 0.0;
    for (const double v : data.values) sum += codes.find(v)->second;
    benchmark::DoNotOptimize(sum);
  }
  PerValue(state);
}

// ---- Categories held as text ----

// n distinct lowercase strings of 3 to 30 bytes and kValues draws among them, held as
// indices so that both sides read the very same string objects.
struct TextCats {
  std::vector<std::string> categories;
  std::vector<int> draws;
};

TextCats MakeTextCats(int n) {
  TextCats data;
  Lcg gen(0xB5297A4Du + static_cast<std::uint64_t>(n));
  std::unordered_set<std::string> seen;
  while (static_cast<int>(data.categories.size()) < n) {
    std::string s(static_cast<std::size_t>(3 + gen.Below(28)), ' ');
    for (char & c : s) c = static_cast<char>('a' + gen.Below(26));
    if (seen.insert(s).second) data.categories.push_back(s);
  }
  data.draws.resize(kValues);
  for (int & d : data.draws) d = gen.Below(n);
  return data;
}

void StringZr(benchmark::State & state, int n) {
  const TextCats data = MakeTextCats(n);
  const std::unique_ptr<zx::IZREncoder> owner(new zx::ZRStringEncoder(data.categories));
  zx::IZREncoder * encoder = owner.get();
  benchmark::DoNotOptimize(encoder);
  for (int i = 0; i < kValues; ++i)
    if (!SameCode(state, i, encoder->Encode(data.categories[data.draws[i]]), data.draws[i])) return;
  for (auto _ : state) {
    double sum = 0.0;
    for (const int d : data.draws) sum += encoder->Encode(data.categories[d]);
    benchmark::DoNotOptimize(sum);
  }
  PerValue(state);
}

void StringMap(benchmark::State & state, int n) {
  const TextCats data = MakeTextCats(n);
  std::unordered_map<std::string, int> codes;
  for (std::size_t i = 0; i < data.categories.size(); ++i)
    codes.emplace(data.categories[i], static_cast<int>(i));
  for (int i = 0; i < kValues; ++i)
    if (!SameCode(state, i, codes.find(data.categories[data.draws[i]])->second, data.draws[i]))
      return;
  for (auto _ : state) {
    double sum = 0.0;
    for (const int d : data.draws) sum += codes.find(data.categories[d])->second;
    benchmark::DoNotOptimize(sum);
  }
  PerValue(state);
}

// ---- Binning ----

// nCuts equal-width cut points over [0, 100], and values over [-5, 105], one in 16 on a
// cut point (the boundary case), one in 256 system-missing.
struct Binned {
  std::unique_ptr<zx::ZRBinningEncoder> encoder;
  std::vector<double> values;
};

Binned MakeBinned(int nCuts) {
  Binned data;
  data.encoder.reset(new zx::ZRBinningEncoder(0.0, 100.0, nCuts + 1));
  const std::vector<double> & cuts = data.encoder->GetBinningCutpoints();
  Lcg gen(0x2545F491u + static_cast<std::uint64_t>(nCuts));
  data.values.resize(kValues);
  for (int i = 0; i < kValues; ++i) {
    if (i % 256 == 255)
      data.values[i] = kSysMisValue;
    else if (i % 16 == 7)
      data.values[i] = cuts[gen.Below(nCuts)];
    else
      data.values[i] = -5.0 + 110.0 * gen.Uniform();
  }
  return data;
}

// The number of cut points below x, -1 for the system-missing value.
inline double LowerBoundBin(const std::vector<double> & cuts, double x) {
  if (x == kSysMisValue) return -1.0;
  return static_cast<double>(std::lower_bound(cuts.begin(), cuts.end(), x) - cuts.begin());
}

void BinningZr(benchmark::State & state, int n) {
  const Binned data = MakeBinned(n);
  const zx::ZRBinningEncoder & encoder = *data.encoder;
  const std::vector<double> & cuts = encoder.GetBinningCutpoints();
  for (int i = 0; i < kValues; ++i)
    if (!SameCode(state, i, encoder.Encode(data.values[i]), LowerBoundBin(cuts, data.values[i])))
      return;
  for (auto _ : state) {
    double sum = 0.0;
    for (const double v : data.values) sum += encoder.Encode(v);
    benchmark::DoNotOptimize(sum);
  }
  PerValue(state);
}

void BinningLowerBound(benchmark::State & state, int n) {
  const Binned data = MakeBinned(n);
  const std::vector<double> cuts = data.encoder->GetBinningCutpoints();
  for (auto _ : state) {
    double sum = 0.0;
    for (const double v : data.values) sum += LowerBoundBin(cuts, v);
    benchmark::DoNotOptimize(sum);
  }
  PerValue(state);
}

// ---- Continuous values and weights ----

// The user-missing values of both encoders: the interval [990, 999] and 97, 98, -9.
constexpr double kMissLow = 990.0;
constexpr double kMissHigh = 999.0;
constexpr double kDiscreteMiss[] = {97.0, 98.0, -9.0};

// Values over [-20, 200) with a fractional part; one in 32 in the missing interval, one
// in 32 a discrete missing value, one in 64 system-missing.
std::vector<double> ContValues() {
  Lcg gen(0x9E3779B97F4A7C15u);
  std::vector<double> values(kValues);
  for (double & v : values) {
    const int kind = gen.Below(64);
    if (kind < 2)
      v = kMissLow + (kMissHigh - kMissLow) * gen.Uniform();
    else if (kind < 4)
      v = kDiscreteMiss[gen.Below(3)];
    else if (kind < 5)
      v = kSysMisValue;
    else
      v = -20.0 + 220.0 * gen.Uniform();
  }
  return values;
}

template <class Encoder>
std::unique_ptr<zx::IZREncoder> WithMissing() {
  std::unique_ptr<zx::IZREncoder> encoder(new Encoder());
  encoder->SetMissingInterval(kMissLow, kMissHigh);
  for (const double v : kDiscreteMiss) encoder->AddDiscreteUserMissing(v, "missing");
  return encoder;
}

// The same missing values, held as the encoders hold them.
struct HandMissing {
  double low;
  double high;
  std::vector<double> discrete;

  bool IsUserMissing(double x) const {
    if (low <= x && x <= high) return true;
    for (const double v : discrete)
      if (x == v) return true;
    return false;
  }
};

const HandMissing & Missing() {
  static const HandMissing missing{
      kMissLow, kMissHigh, std::vector<double>(std::begin(kDiscreteMiss), std::end(kDiscreteMiss))};
  return missing;
}

double ContByHand(const HandMissing & m, double x) {
  return x == kSysMisValue || m.IsUserMissing(x) ? kSysMisValue : x;
}

// Truncation, the default rounding; a weight not above 0 is missing, before and after.
double RoundByHand(const HandMissing & m, double x) {
  if (x == kSysMisValue || x <= 0.0 || m.IsUserMissing(x)) return kSysMisValue;
  x = std::floor(x);
  return x <= 0.0 ? kSysMisValue : x;
}

using HandRule = double (*)(const HandMissing &, double);

template <class Encoder>
void MissingZr(benchmark::State & state, HandRule rule) {
  const std::vector<double> values = ContValues();
  const std::unique_ptr<zx::IZREncoder> owner = WithMissing<Encoder>();
  zx::IZREncoder * encoder = owner.get();
  benchmark::DoNotOptimize(encoder);
  for (int i = 0; i < kValues; ++i)
    if (!SameCode(state, i, encoder->Encode(values[i]), rule(Missing(), values[i]))) return;
  for (auto _ : state) {
    double sum = 0.0;
    for (const double v : values) sum += encoder->Encode(v);
    benchmark::DoNotOptimize(sum);
  }
  PerValue(state);
}

void MissingByHand(benchmark::State & state, HandRule rule) {
  const std::vector<double> values = ContValues();
  const HandMissing & missing = Missing();
  benchmark::DoNotOptimize(rule);
  for (auto _ : state) {
    double sum = 0.0;
    for (const double v : values) sum += rule(missing, v);
    benchmark::DoNotOptimize(sum);
  }
  PerValue(state);
}

// ---- Registration ----

// Registers "<work>/zr/<args>" then "<work>/<side>/<args>", so the pair runs together;
// each is called with arg.
template <class Zr, class Ref, class Arg>
void Register(const char * work, const char * side, const std::string & args, Zr zr, Ref ref,
              Arg arg) {
  const auto name = [&](const char * who) {
    return std::string(work) + "/" + who + (args.empty() ? "" : "/" + args);
  };
  benchmark::RegisterBenchmark(name("zr").c_str(), zr, arg)->Unit(benchmark::kMillisecond);
  benchmark::RegisterBenchmark(name(side).c_str(), ref, arg)->Unit(benchmark::kMillisecond);
}

bool RegisterAll() {
  for (const int n : {20, 5000})
    Register("CatNumEncode", "unordered_map", "cats:" + std::to_string(n), CatNumZr, CatNumMap, n);
  for (const int n : {20, 5000})
    Register("StringEncode", "unordered_map", "cats:" + std::to_string(n), StringZr, StringMap, n);
  for (const int n : {9, 999})
    Register("BinningEncode", "lower_bound", "cuts:" + std::to_string(n), BinningZr,
             BinningLowerBound, n);
  Register("ContEncode", "by_hand", "", MissingZr<zx::ZRContEncoder>, MissingByHand, &ContByHand);
  Register("RoundEncode", "by_hand", "", MissingZr<zx::ZRRoundEncoder>, MissingByHand,
           &RoundByHand);
  return true;
}

[[maybe_unused]] const bool kRegistered = RegisterAll();

}  // namespace
