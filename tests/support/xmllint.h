// Runs xmllint (libxml2-utils), an independent checker, on a document the tests printed.
#ifndef ZRCOMMON920R_TESTS_SUPPORT_XMLLINT_H
#define ZRCOMMON920R_TESTS_SUPPORT_XMLLINT_H

#include <string>

namespace zrtest {

struct XmllintResult {
  int exitCode;        // xmllint's exit status; -1 when it could not be run at all
  std::string output;  // what it printed on both streams
};

// document written to a temporary file and checked by "xmllint <options> <file>", the
// xmllint found when the build was configured (the configuration stops without one).
XmllintResult RunXmllint(const std::string & document, const std::string & options);

}  // namespace zrtest

#endif  // ZRCOMMON920R_TESTS_SUPPORT_XMLLINT_H
