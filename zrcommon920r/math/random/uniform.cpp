// The uniform sources: the MT19937 engine, ZRURandom with its binary and object stream
// forms, and the congruential and twister object generators.
#include "zrcommon920r/math/random/uniform.h"

#include <cfloat>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <iostream>
#include <string>

#include "zrcommon920r/display/display.h"

namespace ZRMath_920 {

namespace {

constexpr std::uint32_t kN = 624;
constexpr std::uint32_t kM = 397;
constexpr std::uint32_t kMatrixA = 0x9908b0dfu;
constexpr std::uint32_t kUpperMask = 0x80000000u;
constexpr std::uint32_t kLowerMask = 0x7fffffffu;
constexpr std::uint32_t kNeverSeeded = kN + 1;

constexpr std::uint32_t kCongruentialMultiplier = 397204094u;
constexpr std::uint32_t kCongruentialModulus = 2147483647u;  // 2^31 - 1
constexpr double kTwoToMinus31 = 4.656612873077393e-10;
constexpr double kTwoToMinus32 = 2.3283064365386963e-10;

const char kMagic[4] = {'Z', 'R', 'U', 'R'};
constexpr int kBinarySize = 20;

// One step of the twister's recurrence: the upper bit of a, the lower 31 of b, through A.
inline std::uint32_t Twist(std::uint32_t m, std::uint32_t a, std::uint32_t b) {
  const std::uint32_t y = (a & kUpperMask) | (b & kLowerMask);
  return m ^ (y >> 1) ^ (static_cast<std::uint32_t>(-static_cast<std::int32_t>(y & 1u)) & kMatrixA);
}

// The congruential step on state; the result is the new state.
inline std::uint32_t CongruentialStep(std::uint32_t state) {
  const std::uint64_t product = static_cast<std::uint64_t>(state) * kCongruentialMultiplier;
  const std::uint32_t next = static_cast<std::uint32_t>(product % kCongruentialModulus);
  return next == 0 ? 1u : next;
}

// The twister's mixing rounds of init_by_array over key (length words; none when 0).
void MixKey(ZRRandomTwister & engine, std::uint32_t * state, const std::uint32_t * key,
            std::uint32_t length) {
  engine.Initialize(19650218u);
  std::uint32_t i = 1, j = 0;
  for (std::uint32_t k = length > kN ? length : kN; k > 0; --k) {
    const std::uint32_t prev = state[i - 1] ^ (state[i - 1] >> 30);
    const std::uint32_t word = length > 0 ? key[j] : 0u;
    state[i] = (state[i] ^ (prev * 1664525u)) + word + j;
    ++i;
    ++j;
    if (i >= kN) {
      state[0] = state[kN - 1];
      i = 1;
    }
    if (j >= length) j = 0;
  }
  for (std::uint32_t k = kN - 1; k > 0; --k) {
    const std::uint32_t prev = state[i - 1] ^ (state[i - 1] >> 30);
    state[i] = (state[i] ^ (prev * 1566083941u)) - i;
    ++i;
    if (i >= kN) {
      state[0] = state[kN - 1];
      i = 1;
    }
  }
  state[0] = 0x80000000u;
}

}  // namespace

// ---------------------------------------------------------------------------------------
// ZRRandomTwister

ZRRandomTwister::ZRRandomTwister() : fpState(new std::uint32_t[kN + 1]()) {
  fpState[kN] = kNeverSeeded;
}

ZRRandomTwister::ZRRandomTwister(const ZRRandomTwister & other)
    : fpState(new std::uint32_t[kN + 1]) {
  std::memcpy(fpState.get(), other.fpState.get(), (kN + 1) * sizeof(std::uint32_t));
}

ZRRandomTwister & ZRRandomTwister::operator=(const ZRRandomTwister & other) {
  if (this != &other) {
    std::memcpy(fpState.get(), other.fpState.get(), (kN + 1) * sizeof(std::uint32_t));
  }
  return *this;
}

void ZRRandomTwister::Initialize(std::uint32_t seed) {
  std::uint32_t * const s = fpState.get();
  s[0] = seed;
  for (std::uint32_t i = 1; i < kN; ++i) s[i] = 1812433253u * (s[i - 1] ^ (s[i - 1] >> 30)) + i;
  s[kN] = kN;
}

void ZRRandomTwister::InitByArray(std::uint32_t * const key, std::uint32_t length) {
  MixKey(*this, fpState.get(), key, key == nullptr ? 0u : length);
}

// Three loops without wrap-around tests, so that a compiler can vectorise the first two.
void ZRRandomTwister::Refill() {
  std::uint32_t * const s = fpState.get();
  if (s[kN] == kNeverSeeded) Initialize(5489u);
  std::uint32_t k = 0;
  for (; k < kN - kM; ++k) s[k] = Twist(s[k + kM], s[k], s[k + 1]);
  for (; k < kN - 1; ++k) s[k] = Twist(s[k + kM - kN], s[k], s[k + 1]);
  s[kN - 1] = Twist(s[kM - 1], s[kN - 1], s[0]);
  s[kN] = 0;
}

// ---------------------------------------------------------------------------------------
// ZRURandom

ZRURandom::ZRURandom(std::uint32_t seed, bool usePortable, bool useTwister, ZRRandom * userRNG)
    : fSeed(seed),
      fbUsePortable(usePortable),
      fbUseTwister(usePortable && useTwister && userRNG == nullptr),
      fpTwister(nullptr),
      fpUserRNG(userRNG) {
  if (fbUseTwister) {
    fpTwister = new ZRRandomTwister;
    fpTwister->Initialize(fSeed);
  }
}

ZRURandom::ZRURandom(const ZRURandom & other)
    : fSeed(other.fSeed),
      fbUsePortable(other.fbUsePortable),
      fbUseTwister(other.fbUseTwister),
      fpTwister(nullptr),
      fpUserRNG(other.fpUserRNG) {
  if (fbUseTwister) {
    fpTwister = new ZRRandomTwister;
    fpTwister->Initialize(fSeed);
  }
}

ZRURandom & ZRURandom::operator=(const ZRURandom & other) {
  if (this == &other) return *this;
  ZRRandomTwister * engine = nullptr;
  if (other.fbUseTwister) {
    engine = new ZRRandomTwister;
    engine->Initialize(other.fSeed);
  }
  delete fpTwister;
  fpTwister = engine;
  fSeed = other.fSeed;
  fbUsePortable = other.fbUsePortable;
  fbUseTwister = other.fbUseTwister;
  fpUserRNG = other.fpUserRNG;
  return *this;
}

ZRURandom::~ZRURandom() {
  delete fpTwister;
}

void ZRURandom::SetSeed(std::uint32_t seed) {
  fSeed = seed;
  if (!fbUsePortable) std::srand(seed);
  if (fbUseTwister) {
    if (fpTwister == nullptr) fpTwister = new ZRRandomTwister;
    fpTwister->Initialize(seed);
  }
}

void ZRURandom::SetUsePortable(bool usePortable) {
  fbUsePortable = usePortable;
  if (!usePortable && fbUseTwister) {
    fbUseTwister = false;
    delete fpTwister;
    fpTwister = nullptr;
  }
}

double ZRURandom::TwisterDraw() {
  if (fpTwister == nullptr) {
    fpTwister = new ZRRandomTwister;
    fpTwister->Initialize(fSeed);
  }
  return (fpTwister->GetInteger32() + 0.5) * kTwoToMinus32;
}

double ZRURandom::GetRandom() {
  if (fpUserRNG != nullptr) return fpUserRNG->GetRandom();
  if (!fbUseTwister) {
    // Intended: the run-time source may give exactly 0 or 1.
    if (!fbUsePortable) return std::rand() / static_cast<double>(RAND_MAX);
    fSeed = CongruentialStep(fSeed);
    return fSeed * kTwoToMinus31;
  }
  return TwisterDraw();
}

int ZRURandom::WriteObject(std::fstream & out) const {
  if (!out.good()) return 0;
  char bytes[kBinarySize];
  const double seed = fSeed;
  const std::int32_t portable = fbUsePortable ? 1 : 0, twister = fbUseTwister ? 1 : 0;
  std::memcpy(bytes, kMagic, 4);
  std::memcpy(bytes + 4, &seed, 8);
  std::memcpy(bytes + 12, &portable, 4);
  std::memcpy(bytes + 16, &twister, 4);
  out.write(bytes, kBinarySize);
  return kBinarySize;
}

int ZRURandom::ReadObject(std::fstream & in) {
  if (!in.good()) return 0;
  char bytes[kBinarySize];
  in.read(bytes, kBinarySize);
  if (in.gcount() != kBinarySize || std::memcmp(bytes, kMagic, 4) != 0) return 0;
  double seed;
  std::int32_t portable, twister;
  std::memcpy(&seed, bytes + 4, 8);
  std::memcpy(&portable, bytes + 12, 4);
  std::memcpy(&twister, bytes + 16, 4);
  if (!IsStorableSeed(seed)) return 0;
  // Intended: only the seed and switches come back; an existing engine is not re-seeded.
  fSeed = static_cast<std::uint32_t>(seed);
  fbUsePortable = portable == 1;
  fbUseTwister = twister == 1;
  return kBinarySize;
}

void ZRURandom::Display() const {
  ZRDisplay_920::DisplayText(1, "ZRURandom display start");
  ZRDisplay_920::DisplayS("The seed", std::to_string(fSeed));
  ZRDisplay_920::DisplayB("Portable RNG indicator", fbUsePortable);
  ZRDisplay_920::DisplayB("Mersenne Twister RNG indicator", fbUseTwister);
  ZRDisplay_920::DisplayText(1, "ZRURandom display end");
}

// ---------------------------------------------------------------------------------------
// ZRRNGUCongruential

void ZRRNGUCongruential::SetSeed(double seed) {
  if (std::isnan(seed)) seed = 0.0;
  const double t = std::floor(std::fabs(seed));
  if (t == 0.0) {
    fnSeed = 1;
  } else {
    // Intended: the cap 2^31 - 1 is a state of its own, which steps to 0 and then on from 1.
    fnSeed = t >= kCongruentialModulus ? kCongruentialModulus : static_cast<std::uint32_t>(t);
  }
}

double ZRRNGUCongruential::GetNext() {
  fnSeed = CongruentialStep(fnSeed);
  return fnSeed * kTwoToMinus31;
}

// ---------------------------------------------------------------------------------------
// ZRRNGUTwister

void ZRRNGUTwister::SetSeed(double seed) {
  if (std::isnan(seed)) seed = 0.0;
  if (std::isinf(seed)) seed = seed > 0.0 ? DBL_MAX : -DBL_MAX;
  if (seed >= 0.0 && seed <= 2147483647.0 && seed == std::floor(seed)) {
    fTwister.Initialize(static_cast<std::uint32_t>(seed));
    return;
  }
  // The key: sign, binary exponent c and whether |seed| >= 1, then the fraction f in
  // [0.5, 1) as 26 and 27 bits.
  const double a = std::fabs(seed);
  double f = a;
  std::uint32_t c = 0;
  if (a >= 1.0) {
    while (f >= 1.0) {
      f *= 0.5;
      ++c;
    }
  } else {
    while (f < 0.5) {  // a is not 0 here: 0 is whole
      f *= 2.0;
      ++c;
    }
  }
  std::uint32_t key[3];
  key[0] = 2u * ((seed < 0.0 ? 1u : 0u) + 2u * (2u * c + (a >= 1.0 ? 1u : 0u))) +
           (seed == 0.0 ? 1u : 0u);
  f *= 67108864.0;
  key[1] = static_cast<std::uint32_t>(f);
  f = (f - key[1]) * 134217728.0;
  key[2] = static_cast<std::uint32_t>(f);
  fTwister.InitByArray(key, 3);
}

double ZRRNGUTwister::GetNext() {
  return fTwister.GetRealRes53();
}

}  // namespace ZRMath_920
