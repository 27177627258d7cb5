// The object stream form of ZRURandom. It is defined here, beside the object stream, so
// that the random sources include nothing of the XML tree.
#include <iostream>
#include <ostream>

#include "zrcommon920r/math/random/uniform.h"
#include "zrcommon920r/xml/core/objstream.h"

namespace ZRMath_920 {

namespace {

constexpr int kXmlElements = 5;
const char * const kClassName = "ZRURandom";

}  // namespace

int ZRURandom::WriteObjectXML(std::ostream & out, int nTabs) const {
  if (!out.good()) return 0;
  const ZRXML_920::XMLObj obj(kClassName, nTabs);
  obj.StartObj(out);
  obj.WriteSubElement(out, static_cast<double>(fSeed));
  obj.WriteSubElement(out, fbUsePortable ? 1 : 0);
  obj.WriteSubElement(out, fbUseTwister ? 1 : 0);
  obj.EndObj(out);
  return kXmlElements;
}

int ZRURandom::ReadObjectXML(std::istream & in) {
  double seed = 0.0;
  int portable = 0, twister = 0;
  if (!(in.good() && ZRXML_920::ParseStartObj(in, kClassName) && ZRXML_920::ParseValue(in, seed) &&
        ZRXML_920::ParseValue(in, portable) && ZRXML_920::ParseValue(in, twister) &&
        ZRXML_920::ParseEndObj(in) && IsStorableSeed(seed))) {
    std::cerr << "Failure reading ZRURandom!\n";
    return 0;
  }
  fSeed = static_cast<std::uint32_t>(seed);
  fbUsePortable = portable == 1;
  fbUseTwister = twister == 1;
  return kXmlElements;
}

}  // namespace ZRMath_920
