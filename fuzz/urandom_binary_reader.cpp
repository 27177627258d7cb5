// ZRURandom's binary reader over arbitrary bytes, through an fstream whose buffer is a
// string. A read returns 20, after which the object writes the same 20 bytes but for the
// seed's fraction and switches other than 0 or 1, and draws; or 0, leaving the object as it
// was. No other result, and nothing printed.
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <fstream>
#include <sstream>
#include <string>

#include "fuzzcheck.h"
#include "zrcommon920r/display/display.h"
#include "zrcommon920r/math/random/uniform.h"

namespace {

using zrfuzz::Fail;
using zrfuzz::Shown;
using ZRMath_920::ZRURandom;

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t * data, std::size_t size) {
  const std::string bytes(reinterpret_cast<const char *>(data), size);
  std::stringbuf buffer(bytes, std::ios::in | std::ios::out | std::ios::binary);
  std::fstream in;
  static_cast<std::ios &>(in).rdbuf(&buffer);
  in.clear();
  ZRURandom u(2718281828u, true, false);
  const std::string before = zrfuzz::DisplayedText(u);
  const int read = u.ReadObject(in);
  if (read == 0) {
    if (zrfuzz::DisplayedText(u) != before)
      Fail("a failed read changed the object: " + Shown(zrfuzz::DisplayedText(u)));
    return 0;
  }
  if (read != 20 || size < 20) Fail("read returned " + std::to_string(read));
  std::stringbuf written(std::ios::in | std::ios::out | std::ios::binary);
  std::fstream out;
  static_cast<std::ios &>(out).rdbuf(&written);
  out.clear();
  if (u.WriteObject(out) != 20) Fail("the object did not write 20 bytes");
  std::string want = bytes.substr(0, 20);
  double seed;
  std::memcpy(&seed, want.data() + 4, 8);
  seed = static_cast<double>(static_cast<std::uint32_t>(seed));  // -0.0 comes back as 0.0
  std::memcpy(&want[4], &seed, 8);
  for (int at : {12, 16}) {
    std::int32_t flag;
    std::memcpy(&flag, want.data() + at, 4);
    flag = flag == 1 ? 1 : 0;
    std::memcpy(&want[static_cast<std::size_t>(at)], &flag, 4);
  }
  if (written.str() != want) {
    Fail("wrote \"" + Shown(written.str()) + "\" after reading \"" + Shown(want) + "\"");
  }
  // After the write: the congruential source draws on the seed itself.
  for (int i = 0; i < 3; ++i) {
    const double x = u.GetRandom();
    if (!(x >= 0.0 && x <= 1.0)) Fail("a draw after the read gave " + std::to_string(x));
  }
  return 0;
}
