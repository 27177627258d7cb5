// Small helpers of the common, XML, display and example tests: whole files, shell commands
// run in a scratch folder, a decimal-comma numpunct, and libxml2 as an independent parser.
#ifndef ZRCOMMON920R_TESTS_SUPPORT_TEXTIO_H
#define ZRCOMMON920R_TESTS_SUPPORT_TEXTIO_H

#include <libxml/parser.h>
#include <libxml/tree.h>
#include <stdlib.h>
#include <sys/wait.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <locale>
#include <memory>
#include <sstream>
#include <string>
#include <system_error>

#include "support/capture.h"

namespace zrtest {

// What shown's Display() prints on the diagnostic stream.
template <class T>
std::string Shown(const T & shown) {
  DisplayCapture capture;
  shown.Display();
  return capture.Text();
}

// The bytes of the file at path; empty when it cannot be read.
inline std::string ReadFile(const std::string & path) {
  std::ifstream in(path, std::ios::binary);
  std::ostringstream text;
  text << in.rdbuf();
  return text.str();
}

// The exit code of command run by the shell; -1 when it could not be run or did not exit.
inline int ShellExitCode(const std::string & command) {
  const int status = std::system(command.c_str());
  return status != -1 && WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

// A fresh folder under /tmp, removed with its contents when the object ends. When none can
// be made, paths lead into a folder that does not exist, so writes and reads there fail.
class ScratchFolder {
 public:
  explicit ScratchFolder(const std::string & stem) : fPath("/tmp/" + stem + "_XXXXXX") {
    if (mkdtemp(&fPath[0]) == nullptr) fPath = "/nonexistent/" + stem;
  }
  ~ScratchFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(fPath, ignored);
  }
  ScratchFolder(const ScratchFolder &) = delete;
  ScratchFolder & operator=(const ScratchFolder &) = delete;

  // The path of name inside the folder.
  std::string operator/(const std::string & name) const { return fPath + "/" + name; }
  // Writes text into the file name of the folder; its path.
  std::string Write(const std::string & name, const std::string & text) const {
    std::ofstream(*this / name, std::ios::binary) << text;
    return *this / name;
  }

 private:
  std::string fPath;
};

// A decimal comma and digit grouping by dots, as a German user locale has them.
struct CommaPunct : std::numpunct<char> {
  char do_decimal_point() const override { return ','; }
  char do_thousands_sep() const override { return '.'; }
  std::string do_grouping() const override { return "\3"; }
};

using XmlDoc = std::unique_ptr<xmlDoc, void (*)(xmlDocPtr)>;

// text parsed by libxml2; null when it is not well-formed.
inline XmlDoc ParseXml(const std::string & text) {
  return XmlDoc(xmlReadMemory(text.data(), static_cast<int>(text.size()), "t.xml", nullptr,
                              XML_PARSE_NONET | XML_PARSE_NOERROR | XML_PARSE_NOWARNING),
                xmlFreeDoc);
}

}  // namespace zrtest

#endif  // ZRCOMMON920R_TESTS_SUPPORT_TEXTIO_H
