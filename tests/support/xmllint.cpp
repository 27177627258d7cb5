// xmllint on a temporary file, its streams gathered through popen.
#include "support/xmllint.h"

#include <stdio.h>
#include <stdlib.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <fstream>

namespace zrtest {

XmllintResult RunXmllint(const std::string & document, const std::string & options) {
  char path[] = "/tmp/zr_xmllint_XXXXXX";
  const int fd = mkstemp(path);
  if (fd < 0) return {-1, "mkstemp failed"};
  close(fd);
  {
    std::ofstream out(path, std::ios::binary);
    out << document;
  }
  const std::string command =
      std::string("'") + ZR_XMLLINT + "' " + options + " '" + path + "' 2>&1";
  XmllintResult result{-1, std::string()};
  if (FILE * pipe = popen(command.c_str(), "r")) {
    std::array<char, 512> buf;
    std::size_t n;
    while ((n = fread(buf.data(), 1, buf.size(), pipe)) > 0) result.output.append(buf.data(), n);
    const int status = pclose(pipe);
    if (status != -1 && WIFEXITED(status)) result.exitCode = WEXITSTATUS(status);
  }
  unlink(path);
  return result;
}

}  // namespace zrtest
