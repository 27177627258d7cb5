// Uniform sources: MT19937 streams and conversions against numpy, the congruential stream
// against Python integers, ZRURandom's choice of source, copies and switches, its binary
// and object stream forms, and the object generators' seeding.
#include "zrcommon920r/math/random/uniform.h"

#include <gtest/gtest.h>

#include <cfloat>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <limits>
#include <map>
#include <string>
#include <vector>

#include "support/capture.h"
#include "support/persist.h"
#include "support/refdata.h"

namespace {

using ZRMath_920::ZRRandom;
using ZRMath_920::ZRRandomTwister;
using ZRMath_920::ZRRNGUCongruential;
using ZRMath_920::ZRRNGUTwister;
using ZRMath_920::ZRURandom;
using zrtest::LoadRefTable;

// Each word of the stream that starts at engine's state, up to index last (from 0).
std::vector<std::uint32_t> Words(ZRRandomTwister & engine, int last) {
  std::vector<std::uint32_t> words(static_cast<std::size_t>(last) + 1);
  for (auto & w : words) w = engine.GetInteger32();
  return words;
}

// A caller's source giving 0.25, 0.5, 0.75, ...
class CountingRandom : public ZRRandom {
 public:
  double GetRandom() override { return 0.25 * static_cast<double>(++fnCalls); }
  int fnCalls = 0;
};

std::string Shown(const ZRURandom & u) {
  zrtest::DisplayCapture capture;
  u.Display();
  return capture.Text();
}

TEST(ZRRandomTwister, WordsAndConversionsMatchNumpy) {  // data: mt19937_words.csv
  // Row 5489,9999 is the reference implementation's published check value, 4123659995.
  std::map<double, std::vector<std::uint32_t>> streams;
  for (const auto & row : LoadRefTable("math/random/mt19937_words.csv", 2)) {
    SCOPED_TRACE(row.where);
    auto & words = streams[row.in[0]];
    if (words.empty()) {  // 10000 words from Initialize(seed)
      ZRRandomTwister engine;
      engine.Initialize(static_cast<std::uint32_t>(row.in[0]));
      words = Words(engine, 9999);
    }
    const std::uint32_t w = words[static_cast<std::size_t>(row.in[1])];
    EXPECT_EQ(w, row.out[0]);
    // Each conversion takes the same word from its own engine.
    const auto at = [&row] {
      ZRRandomTwister engine;
      engine.Initialize(static_cast<std::uint32_t>(row.in[0]));
      for (int i = 0; i < row.in[1]; ++i) engine.GetInteger32();
      return engine;
    };
    ZRRandomTwister a = at(), b = at(), c = at(), d = at();
    EXPECT_EQ(a.GetRealClosed(), row.out[1]);
    EXPECT_EQ(b.GetRealClosedOpen(), row.out[2]);
    EXPECT_EQ(c.GetRealOpen(), row.out[3]);
    EXPECT_EQ(d.GetInteger31(), static_cast<std::int32_t>(w >> 1));
  }
}

TEST(ZRRandomTwister, NeverSeededDrawsAsSeededWith5489) {
  ZRRandomTwister seeded, unseeded;
  seeded.Initialize(5489);
  EXPECT_EQ(Words(unseeded, 9), Words(seeded, 9));
}

TEST(ZRRandomTwister, KeySeedingMatchesNumpy) {  // data: mt19937_keys.csv, keys as mt19937.py
  // Key 0's first five words are the reference's published init_by_array outputs.
  std::vector<std::uint32_t> keys[3] = {{0x123, 0x234, 0x345, 0x456}, {7, 11}, {}};
  for (std::uint32_t i = 0; i < 700; ++i) keys[2].push_back((i * 2654435761u) + 12345u);
  std::vector<std::uint32_t> words[3];
  for (int k = 0; k < 3; ++k) {
    ZRRandomTwister engine;
    engine.InitByArray(keys[k].data(), static_cast<std::uint32_t>(keys[k].size()));
    words[k] = Words(engine, 1249);
  }
  for (const auto & row : LoadRefTable("math/random/mt19937_keys.csv", 2)) {
    SCOPED_TRACE(row.where);
    EXPECT_EQ(words[static_cast<int>(row.in[0])][static_cast<std::size_t>(row.in[1])], row.out[0]);
  }
}

TEST(ZRRandomTwister, Res53AndObjectTwisterMatchNumpy) {  // data: mt19937_res53.csv
  std::map<double, std::vector<double>> streams;
  for (const auto & row : LoadRefTable("math/random/mt19937_res53.csv", 2)) {
    SCOPED_TRACE(row.where);
    auto & values = streams[row.in[0]];
    if (values.empty()) {
      ZRRandomTwister engine;
      ZRRNGUTwister object;
      engine.Initialize(static_cast<std::uint32_t>(row.in[0]));
      object.SetSeed(row.in[0]);
      for (int i = 0; i < 700; ++i) {
        values.push_back(engine.GetRealRes53());
        EXPECT_EQ(object.GetNext(), values.back());
      }
    }
    EXPECT_EQ(values[static_cast<std::size_t>(row.in[1])], row.out[0]);
  }
}

TEST(ZRRNGUTwister, EveryDoubleSeedMatchesNumpysKeyedStream) {  // data: mt19937_doubles.csv
  std::map<double, ZRRNGUTwister> streams;
  for (const auto & row : LoadRefTable("math/random/mt19937_doubles.csv", 2)) {
    SCOPED_TRACE(row.where);
    if (row.in[1] == 0.0) streams[row.in[0]].SetSeed(row.in[0]);
    EXPECT_EQ(streams[row.in[0]].GetNext(), row.out[0]);
  }
  // Non-finite seeds: NaN as 0, an infinity as the largest double of its sign.
  struct {
    double seed, as;
  } const cases[] = {{std::nan(""), 0.0},
                     {std::numeric_limits<double>::infinity(), DBL_MAX},
                     {-std::numeric_limits<double>::infinity(), -DBL_MAX}};
  for (const auto & c : cases) {
    ZRRNGUTwister got, want;
    got.SetSeed(c.seed);
    want.SetSeed(c.as);
    EXPECT_EQ(got.GetNext(), want.GetNext()) << c.seed;
  }
}

TEST(ZRRNGUCongruential, StreamMatchesPythonIntegers) {  // data: congruential.csv
  // ZRURandom's congruential source runs on the seed itself, any 32-bit word.
  std::map<double, ZRURandom> streams;
  std::map<double, int> steps;
  for (const auto & row : LoadRefTable("math/random/congruential.csv", 2)) {
    SCOPED_TRACE(row.where);
    auto found = streams.find(row.in[0]);
    if (found == streams.end()) {
      found =
          streams.emplace(row.in[0], ZRURandom(static_cast<std::uint32_t>(row.in[0]), true, false))
              .first;
    }
    double value = 0.0;
    while (steps[row.in[0]] < row.in[1]) value = found->second.GetRandom(), ++steps[row.in[0]];
    EXPECT_EQ(value, row.out[1]);
    if (row.in[0] < 2147483647.0) {  // the object generator takes seeds up to the cap
      ZRRNGUCongruential object;
      object.SetSeed(row.in[0]);
      double objectValue = 0.0;
      for (int i = 0; i < row.in[1]; ++i) objectValue = object.GetNext();
      EXPECT_EQ(objectValue, row.out[1]);
    }
  }
}

TEST(ZRRNGUCongruential, SeedRules) {
  struct {
    int line;
    double seed, same;
  } const cases[] = {{__LINE__, -7.9, 7.0},
                     {__LINE__, 0.0, 1.0},
                     {__LINE__, 0.7, 1.0},
                     {__LINE__, 1e12, 2147483647.0},
                     {__LINE__, std::nan(""), 1.0},
                     {__LINE__, -std::numeric_limits<double>::infinity(), 2147483647.0}};
  for (const auto & c : cases) {
    SCOPED_TRACE(c.line);
    ZRRNGUCongruential got, want;
    got.SetSeed(c.seed);
    want.SetSeed(c.same);
    for (int i = 0; i < 3; ++i) EXPECT_EQ(got.GetNext(), want.GetNext());
  }
  // The cap steps to state 0, which becomes 1: the value is 2^-31.
  ZRRNGUCongruential capped;
  capped.SetSeed(2147483647.0);
  EXPECT_EQ(capped.GetNext(), 4.656612873077393e-10);
  // A new generator starts at state 1.
  EXPECT_EQ(ZRRNGUCongruential().GetNext(), 397204094 * 4.656612873077393e-10);
}

TEST(ZRURandom, ChoosesItsSource) {
  CountingRandom user;
  ZRURandom withUser(5, true, true, &user);
  EXPECT_FALSE(withUser.GetUseTwister());
  EXPECT_EQ(withUser.GetRandom(), 0.25);
  EXPECT_EQ(withUser.GetUserRNG(), &user);

  ZRURandom runTime(5, false, true);
  EXPECT_FALSE(runTime.GetUseTwister());
  runTime.SetSeed(77);  // srand(77)
  const double first = runTime.GetRandom();
  std::srand(77);
  EXPECT_EQ(first, std::rand() / static_cast<double>(RAND_MAX));

  ZRURandom byDefault;  // seed 34567, the twister: (word + 0.5) 2^-32
  ZRRandomTwister engine;
  engine.Initialize(34567);
  EXPECT_EQ(byDefault.GetRandom(), engine.GetRealOpen());
  EXPECT_NE(Shown(byDefault).find("The seed = 34567"), std::string::npos);

  // A seed above 2^31 prints all its unsigned digits.
  EXPECT_EQ(Shown(ZRURandom(4294967295u, true, false)),
            "\nZRURandom display start\nThe seed = 4294967295\nPortable RNG indicator = true"
            "\nMersenne Twister RNG indicator = false\nZRURandom display end");
}

TEST(ZRURandom, CopiesRestartTheTwisterAndContinueTheCongruential) {
  ZRURandom twister(11), congruential(11, true, false);
  const double twisterFirst = twister.GetRandom();
  congruential.GetRandom();
  ZRURandom twisterCopy(twister), congruentialCopy(congruential);
  EXPECT_EQ(twisterCopy.GetRandom(), twisterFirst);
  EXPECT_EQ(congruentialCopy.GetRandom(), congruential.GetRandom());
  ZRURandom assigned(99);
  assigned.GetRandom();
  assigned = twister;  // frees the old engine (the sanitizer run checks the leak)
  EXPECT_EQ(assigned.GetRandom(), twisterFirst);
  ZRURandom & alias = assigned;
  assigned = alias;  // self-assignment changes nothing
  EXPECT_NE(assigned.GetRandom(), twisterFirst);
}

TEST(ZRURandom, SwitchingOffPortableDropsTheTwisterForGood) {
  ZRURandom u(3);
  u.SetUsePortable(false);
  EXPECT_FALSE(u.GetUseTwister());
  u.SetUsePortable(true);
  EXPECT_FALSE(u.GetUseTwister());
  u.SetSeed(3);  // now the congruential generator on state 3
  ZRRNGUCongruential want;
  want.SetSeed(3.0);
  EXPECT_EQ(u.GetRandom(), want.GetNext());
}

// ---- Persistence --------------------------------------------------------------------------

std::string XmlText(const ZRURandom & u) {
  int written = 0;
  const std::string text = zrtest::WriteText(u, 1, &written);
  EXPECT_EQ(written, 5);
  return text;
}

TEST(ZRURandomXml, RoundTripSetsSeedAndSwitchesOnly) {
  const ZRURandom saved(4000000000u, true, false);
  const std::string text = XmlText(saved);
  EXPECT_EQ(text,
            "\n\t<Obj name=\"ZRURandom\">\n\t\t<Double value=\"4000000000\"/>\n\t\t<Int "
            "value=\"1\"/>\n\t\t<Int value=\"0\"/>\n\t</Obj>");
  ZRURandom back(1, false, false);
  EXPECT_TRUE(zrtest::ReadWhole(zrtest::ReadText(text, zrtest::ReaderInto(back)), 5));
  EXPECT_EQ(Shown(back), Shown(saved));
  EXPECT_EQ(back.GetRandom(), ZRURandom(saved).GetRandom());

  // A twister switched on by a read starts from the read seed when it first draws.
  ZRURandom lazy(1, true, false);
  ASSERT_EQ(zrtest::ReadText(XmlText(ZRURandom(8)), zrtest::ReaderInto(lazy)).count, 5);
  EXPECT_EQ(lazy.GetRandom(), ZRURandom(8).GetRandom());
  // An existing engine is not re-seeded by a read.
  ZRURandom kept(8);
  kept.GetRandom();
  const double second = kept.GetRandom();
  ZRURandom fresh(8);
  fresh.GetRandom();
  ASSERT_EQ(zrtest::ReadText(XmlText(ZRURandom(9)), zrtest::ReaderInto(fresh)).count, 5);
  EXPECT_EQ(fresh.GetRandom(), second);
}

TEST(ZRURandomXml, BadInputFailsCleanlyAndChangesNothing) {
  zrtest::ExpectTruncationsFail(XmlText(ZRURandom(123, true, false)),
                                zrtest::FreshReader<ZRURandom>(), 5);
  const std::string good = XmlText(ZRURandom(123));
  struct {
    int line;
    std::string from, to;
  } const edits[] = {{__LINE__, "\"123\"", "\"-1\""},
                     {__LINE__, "\"123\"", "\"4294967296\""},
                     {__LINE__, "\"123\"", "\"Missing\""},
                     {__LINE__, "ZRURandom", "ZRURandon"},
                     {__LINE__, "Double", "Int"}};
  for (const auto & e : edits) {
    SCOPED_TRACE(e.line);
    std::string text = good;
    text.replace(text.find(e.from), e.from.size(), e.to);
    ZRURandom target(77, true, false);
    const std::string before = Shown(target);
    EXPECT_TRUE(zrtest::FailedCleanly(zrtest::ReadText(text, zrtest::ReaderInto(target))));
    EXPECT_EQ(Shown(target), before);
  }
  // A switch other than 1 reads as false.
  std::string two = good;
  two.replace(two.find("<Int value=\"1\""), 14, "<Int value=\"2\"");
  ZRURandom target;
  ASSERT_EQ(zrtest::ReadText(two, zrtest::ReaderInto(target)).count, 5);
  EXPECT_FALSE(target.GetUsePortable());
}

// A scratch file for the binary form, removed at the end of the test.
class ZRURandomBinary : public testing::Test {
 protected:
  void TearDown() override { std::remove(fPath.c_str()); }
  void Put(const std::string & bytes) { std::ofstream(fPath, std::ios::binary) << bytes; }
  std::string Get() {
    std::ifstream in(fPath, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
  }
  int Read(ZRURandom & u) {
    std::fstream in(fPath, std::ios::in | std::ios::binary);
    return u.ReadObject(in);
  }
  const std::string fPath = testing::TempDir() + "zr_urandom_" +
                            testing::UnitTest::GetInstance()->current_test_info()->name() + ".bin";
};

std::string Bytes(double seed, std::int32_t portable, std::int32_t twister, const char * magic) {
  char b[20];
  std::memcpy(b, magic, 4);
  std::memcpy(b + 4, &seed, 8);
  std::memcpy(b + 12, &portable, 4);
  std::memcpy(b + 16, &twister, 4);
  return std::string(b, 20);
}

TEST_F(ZRURandomBinary, RoundTripIsTheDocumentedLayout) {
  {
    std::fstream out(fPath, std::ios::out | std::ios::binary | std::ios::trunc);
    EXPECT_EQ(ZRURandom(3000000000u, true, false).WriteObject(out), 20);
  }
  EXPECT_EQ(Get(), Bytes(3e9, 1, 0, "ZRUR"));
  ZRURandom back;
  EXPECT_EQ(Read(back), 20);
  EXPECT_EQ(Shown(back), Shown(ZRURandom(3000000000u, true, false)));

  std::fstream failed;  // never opened: a failed stream
  failed.setstate(std::ios::failbit);
  EXPECT_EQ(back.WriteObject(failed), 0);
  EXPECT_EQ(back.ReadObject(failed), 0);
}

TEST_F(ZRURandomBinary, BadInputReturnsZeroAndChangesNothing) {
  const std::string good = Bytes(42.9, 1, 1, "ZRUR");
  std::vector<std::string> bad;
  for (std::size_t n = 0; n < good.size(); ++n) bad.push_back(good.substr(0, n));
  bad.push_back(Bytes(42.0, 1, 1, "ZRUX"));
  bad.push_back(Bytes(std::nan(""), 1, 1, "ZRUR"));
  bad.push_back(Bytes(-1.0, 1, 1, "ZRUR"));
  bad.push_back(Bytes(4294967296.0, 1, 1, "ZRUR"));
  bad.push_back(Bytes(std::numeric_limits<double>::infinity(), 1, 1, "ZRUR"));
  for (const std::string & bytes : bad) {
    SCOPED_TRACE(bytes.size());
    Put(bytes);
    ZRURandom target(77, true, false);
    const std::string before = Shown(target);
    EXPECT_EQ(Read(target), 0);
    EXPECT_EQ(Shown(target), before);
  }
  // The seed is truncated; a switch other than 1 reads as false.
  Put(Bytes(42.9, 2, -1, "ZRUR"));
  ZRURandom target;
  EXPECT_EQ(Read(target), 20);
  EXPECT_EQ(Shown(target), Shown(ZRURandom(42, false, false)));
}

}  // namespace
