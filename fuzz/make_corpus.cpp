// Writes the seed corpus under fuzz/corpus/<target>/: text made by the library's writers,
// with the leading bytes a target reads as its script or locale. Run once, and again only
// when the writers' format changes:  build/fuzz/make_corpus fuzz/corpus
#include <cfloat>
#include <climits>
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <initializer_list>
#include <limits>
#include <sstream>
#include <string>

#include "support/testrecord.h"
#include "zrcommon920r/common/numconst.h"
#include "zrcommon920r/math/random/uniform.h"
#include "zrcommon920r/xml/core/objstream.h"
#include "zrcommon920r/xml/core/xmltree.h"
#include "zrcommon920r/xml/vars/varlist.h"

namespace {

namespace fs = std::filesystem;
using namespace ZRXML_920;
using zrtest::TestRecord;

fs::path gRoot;

void Save(const std::string & target, const std::string & name, const std::string & bytes) {
  const fs::path dir = gRoot / target;
  fs::create_directories(dir);
  std::ofstream(dir / name, std::ios::binary) << bytes;
}

TestRecord Sample() {
  TestRecord r;
  r.fnCount = 42;
  r.fnSeed = 5489;
  r.fbWeighted = true;
  r.fnTotal = 9007199254740993L;
  r.fdMean = 0.1 + 0.2;
  r.fdVariance = ZRCommon_920::kSysMisValue;
  r.fsLabel = " fuel & <weight>  \"kg\"\t";
  r.fPart.fnLevel = 2;
  r.fPart.fsCode = "a   b";
  return r;
}

TestRecord Extremes() {
  TestRecord r;
  r.fnCount = INT_MIN;
  r.fnSeed = UINT_MAX;
  r.fnTotal = LONG_MIN;
  r.fdMean = std::numeric_limits<double>::quiet_NaN();
  r.fdVariance = DBL_TRUE_MIN;
  r.fsLabel = std::string(200, 'x') + "&";
  r.fPart.fnLevel = INT_MAX;
  r.fPart.fsCode = "";
  return r;
}

std::string Text(const TestRecord & r, int nTabs) {
  std::ostringstream out;
  r.WriteObjectXML(out, nTabs);
  return out.str();
}

// The script of objstream_reader that reads a record: its calls (see Call there), the
// object names chosen by byte / 9 % 4 (0 "TestRecord", 1 "TestRecordPart").
std::string RecordScript(bool header) {
  std::string calls = header ? std::string(1, '\x00') : std::string();
  calls += "\x01\x02\x03\x07\x04\x05\x05\x06\x0A\x02\x06\x08\x08";
  return std::string(1, static_cast<char>(calls.size() - 1)) + calls;
}

// What a caller writes before its objects: the declaration, the DOCTYPE line, the root.
std::string Header() {
  XMLDocType * docType = XMLDocType::Create(kObjStreamRoot, kObjStreamDtdFile, 0);
  std::string out;
  ExportFormat format;
  docType->ToString(out, format);
  delete docType;
  std::ostringstream root;
  StartRoot(root, "(c) zrcommon920r");
  return out + root.str();
}

std::string Tree(const std::string & value, bool utf8, bool format) {
  XMLElement * root = XMLElement::Create("Row");
  root->AddAttribute("name", value);
  root->AddAttribute("value", 0.1 + 0.2);
  root->AddAttribute("fixed", 1.5, true);
  root->AddAttribute("miss", ZRCommon_920::kSysMisValue);
  root->AddElement(XMLString::Create(value));
  XMLElement * child = XMLElement::Create("Cell");
  child->AddAttribute("v", -1e-300);
  root->AddElement(child);
  std::ostringstream out;
  if (utf8) {
    WriteTreeUTF8(out, nullptr, root, format);
  } else {
    WriteTree(out, nullptr, root, format);
  }
  delete root;
  return out.str();
}

// Written variable lists, each within make fuzz's 4096 bytes, one holding
// every variable and encoder kind with labels, missing values and intervals.
std::string ListText(const ZRVarList & list) {
  std::ostringstream out;
  list.WriteObjectXML(out, 0);
  return out.str();
}

void SaveLists() {
  using V = IZRVariable;
  ZRVarList cont, num, text, weight, all;
  for (ZRVarList * l : {&cont, &all}) {
    l->AddContVar("x", "R&D", 0, 10, V::kRoleInput, true, 5);
    l->GetEncoderAt(l->FindVariable("x"))->SetMissingInterval(-3, 7.5);
    l->GetEncoderAt(l->FindVariable("x"))->AddDiscreteUserMissing(-99, "none");
  }
  for (ZRVarList * l : {&num, &all}) {
    l->AddCatVar("n", "N", std::vector<double>{5, 3, 7}, std::vector<std::string>{"five"},
                 V::kRoleTarget);
    l->GetEncoderAt(l->FindVariable("n"))->SetMissingInterval(100, 200);
    l->GetEncoderAt(l->FindVariable("n"))->AddDiscreteUserMissing(9, "nine");
    l->SetMissingValueReplacement(l->FindVariable("n"), "5");
  }
  for (ZRVarList * l : {&text, &all}) {
    l->AddCatVar("s", "S", std::vector<std::string>{"a", " b "}, std::vector<std::string>{"A"},
                 V::kRoleTargetResponse);
    l->GetEncoderAt(l->FindVariable("s"))->AddDiscreteUserMissing("?", "unknown");
  }
  for (ZRVarList * l : {&weight, &all}) {
    l->SetWeightVar("w", "W", V::kRoundNearest);
    l->GetEncoderAt(l->GetFreqWeightIndex())->SetMissingInterval(1000, 2000);
    l->GetEncoderAt(l->GetFreqWeightIndex())->AddDiscreteUserMissing(99, "unknown");
  }
  Save("varlist_reader", "empty", ListText(ZRVarList()));
  Save("varlist_reader", "continuous", ListText(cont));
  Save("varlist_reader", "numeric", ListText(num));
  Save("varlist_reader", "string", ListText(text));
  Save("varlist_reader", "weight", ListText(weight));
  Save("varlist_reader", "all", ListText(all));
}

// The binary form of u, written through an fstream whose buffer is a string.
std::string URandomBytes(const ZRMath_920::ZRURandom & u) {
  std::stringbuf bytes(std::ios::in | std::ios::out | std::ios::binary);
  std::fstream out;
  static_cast<std::ios &>(out).rdbuf(&bytes);
  out.clear();
  u.WriteObject(out);
  return bytes.str();
}

// Texts for settings_text, NUL-separated: numbers of every form the getters and the
// vector conversions read, their limits, and the one text that is a true bool.
void SaveSettingTexts() {
  const auto joined = [](std::initializer_list<const char *> texts) {
    std::string out;
    for (const char * text : texts) out += std::string(text) + '\0';
    out.pop_back();
    return out;
  };
  Save("settings_text", "ints", joined({"12", " -3", "+7", "12abc", "2147483647", "-2147483648"}));
  Save("settings_text", "limits",
       joined({"2147483648", "-2147483649", "9223372036854775807", "-9223372036854775809",
               "99999999999999999999"}));
  Save("settings_text", "doubles", joined({"1.5", "-0.25e3", "1,5", "1e400", "4.9e-324", ".5"}));
  Save("settings_text", "words", joined({"true", "True", "", "abc", "0x1A", "true", " "}));
  Save("settings_text", "bytes", std::string("\x80\xff\0a\0\0b\x01", 8));
}

}  // namespace

int main(int argc, char ** argv) {
  if (argc != 2) {
    std::fprintf(stderr, "usage: %s <corpus directory>\n", argv[0]);
    return 2;
  }
  gRoot = argv[1];

  std::ostringstream end;
  EndRoot(end);
  Save("objstream_reader", "header_record",
       RecordScript(true) + Header() + Text(Sample(), 1) + end.str());
  Save("objstream_reader", "record", RecordScript(false) + Text(Sample(), 0));
  Save("objstream_reader", "extremes", RecordScript(false) + Text(Extremes(), 2));

  Save("record_reader", "default", Text(TestRecord(), 0));
  Save("record_reader", "sample", Text(Sample(), 0));
  Save("record_reader", "extremes", Text(Extremes(), 3));

  Save("escape_diff", "blanks", Tree("  a, a   b,  ,    ", false, true));
  Save("escape_diff", "specials", Tree("x&y<z>\"q\"\t\n\r&amp;", false, false));
  Save("escape_diff", "record", Text(Sample(), 1));

  using ZRMath_920::ZRURandom;
  std::ostringstream urandom;
  ZRURandom(34567).WriteObjectXML(urandom, 1);
  Save("urandom_reader", "twister", urandom.str());
  urandom.str("");
  ZRURandom(4294967295u, false, false).WriteObjectXML(urandom, 0);
  Save("urandom_reader", "runtime", urandom.str());
  Save("urandom_binary_reader", "twister", URandomBytes(ZRURandom(34567)));
  Save("urandom_binary_reader", "congruential", URandomBytes(ZRURandom(4294967295u, true, false)));

  const std::string latin1 = "caf\xE9 \xBD \xFF\xA0";
  const std::string cp1252 = "\x80 \x81\x8D\x8F\x90\x9D \x93q\x94 \x9F";
  const std::string broken = "\xC3\xA9 \xC0\xAF \xED\xA0\x80 \xF4\x90\x80\x80 \xE2\x82";
  Save("utf8_valid", "c_latin1", std::string(1, '\x00') + Tree(latin1, false, true));
  Save("utf8_valid", "utf8_converted", std::string(1, '\x01') + Tree(latin1, true, true));
  Save("utf8_valid", "utf8_broken", std::string(1, '\x04') + Tree(broken, false, false));
  Save("utf8_valid", "cp1252", std::string(1, '\x02') + Tree(cp1252, false, true));
  Save("utf8_valid", "cp1252_tree", std::string(1, '\x0E') + Tree(latin1 + cp1252, false, true));

  SaveLists();
  SaveSettingTexts();
  return 0;
}
