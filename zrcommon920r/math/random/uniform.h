// Uniform random sources: the MT19937 engine ZRRandomTwister; ZRURandom, which draws from a
// caller's ZRRandom, the run-time rand, a multiplicative congruential generator or a
// twister, and persists its seed and switches; and the object generators' base
// ZRRNGenerator with its two uniform members, ZRRNGUCongruential and ZRRNGUTwister.
#ifndef ZRCOMMON920R_MATH_RANDOM_UNIFORM_H
#define ZRCOMMON920R_MATH_RANDOM_UNIFORM_H

#include <cstdint>
#include <fstream>
#include <istream>
#include <memory>
#include <ostream>

namespace ZRMath_920 {

// The 32-bit Mersenne Twister MT19937: Matsumoto, M. and Nishimura, T. (1998), Mersenne
// twister: a 623-dimensionally equidistributed uniform pseudo-random number generator, ACM
// Transactions on Modeling and Computer Simulation 8, 3-30; period 2^19937 - 1. The state is
// one owned block of 625 words: 624 words of state, then the index of the next word (625:
// never seeded). An engine never seeded draws as one seeded by Initialize(5489). Tested bit
// for bit against the published check value (the 10000th word after Initialize(5489) is
// 4123659995) and against numpy's MT19937. Copies copy the whole block.
class ZRRandomTwister {
 public:
  ZRRandomTwister();
  ZRRandomTwister(const ZRRandomTwister & other);
  ZRRandomTwister & operator=(const ZRRandomTwister & other);
  ~ZRRandomTwister() = default;

  // Seeds the state from one word (init_genrand): word 0 = seed, word i =
  // 1812433253 (word(i-1) xor (word(i-1) >> 30)) + i modulo 2^32.
  void Initialize(std::uint32_t seed);
  // Seeds the state from length key words (init_by_array): Initialize(19650218), then
  // max(624, length) mixing rounds with the key and 623 without, and word 0 = 0x80000000.
  // A null key or length 0 mixes as if every key word were 0.
  void InitByArray(std::uint32_t * const key, std::uint32_t length);

  // Next tempered 32-bit word. The block of 624 words is regenerated when used up.
  std::uint32_t GetInteger32() {
    std::uint32_t * const s = fpState.get();
    std::uint32_t i = s[kN];
    if (i >= kN) {
      Refill();
      i = 0;
    }
    s[kN] = i + 1;
    std::uint32_t y = s[i];
    y ^= y >> 11;
    y ^= (y << 7) & 0x9d2c5680u;
    y ^= (y << 15) & 0xefc60000u;
    return y ^ (y >> 18);
  }
  // GetInteger32() >> 1, in [0, 2^31).
  std::int32_t GetInteger31() { return static_cast<std::int32_t>(GetInteger32() >> 1); }
  // word / 4294967295.0, in [0, 1] with both ends.
  double GetRealClosed() { return GetInteger32() / 4294967295.0; }
  // word 2^-32, in [0, 1).
  double GetRealClosedOpen() { return GetInteger32() * 2.3283064365386963e-10; }
  // (word + 0.5) 2^-32, in (0, 1).
  double GetRealOpen() { return (GetInteger32() + 0.5) * 2.3283064365386963e-10; }
  // 53 random bits in [0, 1): a = word >> 5 (the high part, drawn first), b = next word >> 6,
  // (b + a 2^26) 2^-53.
  double GetRealRes53() {
    const std::uint32_t a = GetInteger32() >> 5;
    const std::uint32_t b = GetInteger32() >> 6;
    return (b + a * 67108864.0) * 1.1102230246251565e-16;
  }

 private:
  static constexpr std::uint32_t kN = 624;
  // Regenerates the 624 words; an engine never seeded is first seeded with 5489.
  void Refill();

  std::unique_ptr<std::uint32_t[]> fpState;
};

// A caller's uniform generator. The library calls GetRandom for the next value in [0, 1]
// and nothing else of it.
class ZRRandom {
 public:
  virtual ~ZRRandom() = default;
  virtual double GetRandom() = 0;
};

// A small value-like uniform source, choosing in this order: the caller's generator when one
// is given; rand() / RAND_MAX without the portable switch (process-wide state, values 0 and
// 1 included); the multiplicative congruential generator x <- 397204094 x mod (2^31 - 1)
// with the seed as its state when the twister switch is off; else a twister, (word + 0.5)
// 2^-32. Not polymorphic; nothing thrown but the allocator's exceptions.
class ZRURandom {
 public:
  // The twister switch is on only when usePortable and useTwister are and userRNG is null;
  // only then an engine is made and seeded by Initialize(seed). userRNG is not owned.
  explicit ZRURandom(std::uint32_t seed = 34567, bool usePortable = true, bool useTwister = true,
                     ZRRandom * userRNG = nullptr);
  // Copies the seed, switches and user pointer. With the twister on the copy gets a new
  // engine seeded from the seed, so it restarts the sequence rather than continuing it
  // (the congruential state, being the seed, continues). operator= frees the target's old
  // engine; self-assignment does nothing.
  ZRURandom(const ZRURandom & other);
  ZRURandom & operator=(const ZRURandom & other);
  ~ZRURandom();

  // Stores the seed; without the portable switch also srand(seed); with the twister on,
  // Initialize(seed) on the engine (made first when a read left none).
  void SetSeed(std::uint32_t seed);
  // Stores the switch; false with the twister on switches the twister off for good and
  // frees its engine. true does not bring a twister back.
  void SetUsePortable(bool usePortable);
  bool GetUsePortable() const { return fbUsePortable; }
  bool GetUseTwister() const { return fbUseTwister; }
  ZRRandom * GetUserRNG() { return fpUserRNG; }

  // The next uniform value from the source chosen above. The congruential step gives
  // state 2^-31, strictly inside (0, 1) (a state of 0 becomes 1); the twister strictly
  // inside (0, 1). With the twister on and no engine (after a read) one is made from the
  // seed.
  double GetRandom();

  // Binary form, 20 bytes at the stream's position in native byte order: "ZRUR", the seed
  // as a double, then the portable and twister switches as int32 1 or 0. Writes and returns
  // 20; 0, writing nothing, on a stream that is not good.
  int WriteObject(std::fstream & out) const;
  // Reads the 20 bytes before changing anything, then takes the seed and the switches (a
  // switch is on exactly when its int32 is 1) and returns 20. 0, object unchanged, for a
  // stream that is not good, short input, another magic, or a seed that is not a finite
  // number in [0, 2^32). The seed is truncated. No engine is made, freed or re-seeded.
  int ReadObject(std::fstream & in);
  // Object stream form: an object "ZRURandom" at depth nTabs holding the seed (Double) and
  // the two switches (Int 0 or 1). Returns 5; 0 on a stream that is not good. Defined with
  // the object stream (xml/core/urandom_xml.cpp), so this tree needs nothing of it.
  int WriteObjectXML(std::ostream & out, int nTabs) const;
  // Reads that form and returns 5, with the same rules as ReadObject. On any failure,
  // object unchanged, prints "Failure reading ZRURandom!" and a line feed on std::cerr and
  // returns 0.
  int ReadObjectXML(std::istream & in);

  // "ZRURandom display start", the seed with all its digits, the two switches,
  // "ZRURandom display end".
  void Display() const;

 private:
  // Whether seed can be kept as an unsigned 32-bit seed: finite and in [0, 2^32).
  static bool IsStorableSeed(double seed) { return seed >= 0.0 && seed < 4294967296.0; }
  // The twister draw, making the engine from the seed when there is none.
  double TwisterDraw();

  std::uint32_t fSeed;
  bool fbUsePortable;
  bool fbUseTwister;
  ZRRandomTwister * fpTwister;
  ZRRandom * fpUserRNG;
};

// Base of the object generators. SetSeed restarts the generator from a double; GetNext
// gives the next value.
class ZRRNGenerator {
 public:
  virtual ~ZRRNGenerator() = default;
  virtual void SetSeed(double seed) = 0;
  virtual double GetNext() = 0;
};

// Lehmer's multiplicative congruential generator with the prime modulus 2^31 - 1 and the
// multiplier 397204094 (the family: Park, S. K. and Miller, K. W. (1988), Random number
// generators: good ones are hard to find, Communications of the ACM 31, 1192-1201). State 1
// after construction. Tested bit for bit against Python integers.
class ZRRNGUCongruential : public ZRRNGenerator {
 public:
  ZRRNGUCongruential() = default;
  ZRRNGUCongruential(const ZRRNGUCongruential &) = default;
  ZRRNGUCongruential(ZRRNGUCongruential &&) = default;
  ZRRNGUCongruential & operator=(const ZRRNGUCongruential &) = default;
  ZRRNGUCongruential & operator=(ZRRNGUCongruential &&) = default;
  ~ZRRNGUCongruential() override = default;

  // State floor(|seed|): 1 for 0, at most 2147483647 (which steps to 0, then on from 1).
  // NaN counts as 0 and an infinity as the cap.
  void SetSeed(double seed) override;
  // state <- 397204094 state mod (2^31 - 1), 0 replaced by 1; returns state 2^-31, strictly
  // inside (0, 1).
  double GetNext() override;

 private:
  std::uint32_t fnSeed = 1;
};

// MT19937 as an object generator; GetNext is the 53-bit GetRealRes53, in [0, 1). Never
// seeded it draws as Initialize(5489).
class ZRRNGUTwister : public ZRRNGenerator {
 public:
  ZRRNGUTwister() = default;
  ZRRNGUTwister(const ZRRNGUTwister &) = default;
  ZRRNGUTwister & operator=(const ZRRNGUTwister &) = default;
  ~ZRRNGUTwister() override = default;

  // A whole seed in [0, 2147483647] is Initialize(seed). Any other double is turned into
  // a key of three words (sign, binary exponent and whether |seed| >= 1; then 26 and 27
  // bits of the fraction) and seeded by InitByArray's rounds, so each double selects a
  // stream of its own. NaN counts as 0 and an infinity as the largest double of its sign.
  void SetSeed(double seed) override;
  double GetNext() override;

 private:
  ZRRandomTwister fTwister;
};

}  // namespace ZRMath_920

#endif  // ZRCOMMON920R_MATH_RANDOM_UNIFORM_H
