// Reference tables and error measures shared by the tests.
#ifndef ZRCOMMON920R_TESTS_SUPPORT_REFDATA_H
#define ZRCOMMON920R_TESTS_SUPPORT_REFDATA_H

#include <initializer_list>
#include <string>
#include <vector>

namespace zrtest {

// Relative error |got - want| / |want|, or the absolute error when want is 0. A NaN on
// either side, or infinities that differ, give +infinity so that a bound always fails.
double RelErr(double got, double want);

// Digits of agreement: -log10 of |got - want| / |want|, at most 16 (16 when they are equal).
double Lre(double got, double want);

// One data row of a reference table: the first nIn numbers are inputs, the rest outputs.
struct RefRow {
  std::string where;  // "file.csv:LINE", for SCOPED_TRACE
  std::vector<double> in;
  std::vector<double> out;
};

// Reads tests/data/<relPath>: comma-separated numbers, '#' lines and blank lines skipped.
// Numbers are read with strtod (so "inf", "nan" and hexadecimal floats work). A file that
// cannot be opened, or a row with fewer than nIn + 1 fields, fails the calling test.
std::vector<RefRow> LoadRefTable(const std::string & relPath, int nIn);

// An expected result that holds exactly, traced to its source line.
struct ExactCase {
  int line;
  double got, want;
};
// EXPECT_EQ(got, want) for each case, under a trace of its line.
void ExpectExact(std::initializer_list<ExactCase> cases);

// Absolute path of a file under tests/data.
std::string DataPath(const std::string & relPath);

}  // namespace zrtest

#endif  // ZRCOMMON920R_TESTS_SUPPORT_REFDATA_H
