// Reference-table loader and error measures for the tests.
#include "support/refdata.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstdlib>
#include <fstream>
#include <limits>
#include <sstream>

namespace zrtest {

double RelErr(double got, double want) {
  if (std::isnan(got) || std::isnan(want)) return std::numeric_limits<double>::infinity();
  if (std::isinf(got) || std::isinf(want))
    return got == want ? 0.0 : std::numeric_limits<double>::infinity();
  const double diff = std::fabs(got - want);
  return want == 0.0 ? diff : diff / std::fabs(want);
}

double Lre(double got, double want) {
  const double rel = std::fabs(got - want) / std::fabs(want);
  return rel == 0.0 ? 16.0 : std::min(16.0, -std::log10(rel));
}

std::string DataPath(const std::string & relPath) {
  return std::string(ZR_TEST_DATA_DIR) + "/" + relPath;
}

std::vector<RefRow> LoadRefTable(const std::string & relPath, int nIn) {
  std::vector<RefRow> rows;
  std::ifstream in(DataPath(relPath));
  if (!in) {
    ADD_FAILURE() << "cannot open reference table " << DataPath(relPath);
    return rows;
  }
  const std::string base = relPath.substr(relPath.find_last_of('/') + 1);
  std::string line;
  for (int lineNo = 1; std::getline(in, line); ++lineNo) {
    if (line.empty() || line[0] == '#') continue;
    RefRow row;
    row.where = base + ":" + std::to_string(lineNo);
    std::stringstream fields(line);
    std::string field;
    int k = 0;
    while (std::getline(fields, field, ',')) {
      errno = 0;
      char * end = nullptr;
      const double v = std::strtod(field.c_str(), &end);
      if (end == field.c_str()) {
        ADD_FAILURE() << row.where << ": not a number: '" << field << "'";
        return rows;
      }
      (k++ < nIn ? row.in : row.out).push_back(v);
    }
    if (k <= nIn) {
      ADD_FAILURE() << row.where << ": " << k << " fields, need more than " << nIn;
      return rows;
    }
    rows.push_back(std::move(row));
  }
  if (rows.empty()) ADD_FAILURE() << "reference table " << relPath << " has no rows";
  return rows;
}

void ExpectExact(std::initializer_list<ExactCase> cases) {
  for (const ExactCase & c : cases) {
    SCOPED_TRACE(c.line);
    EXPECT_EQ(c.got, c.want);
  }
}

}  // namespace zrtest
