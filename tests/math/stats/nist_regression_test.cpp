// Linear regressions of the NIST StRD sets Longley, Norris, Pontius and Wampler1, fitted as a
// procedure fits them: two-pass means and corrected cross-products, the sweep, the intercept
// from the means. Every coefficient, standard error and residual standard deviation is
// scored by its log relative error against the certified value and may not fall more than
// half a digit below the figure recorded here.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <string>
#include <vector>

#include "support/refdata.h"
#include "zrcommon920r/math/bitset.h"
#include "zrcommon920r/math/matrix/rectmatrix.h"
#include "zrcommon920r/math/matrix/symmatrix.h"
#include "zrcommon920r/math/stats/meansxprod.h"

namespace {

using ZRMath_920::ZRBitSet;
using ZRMath_920::ZRMeansXProducts;
using ZRMath_920::ZRRectMatrix;
using ZRMath_920::ZRSymMatrix;

constexpr double kMaxLre = 15.0;     // the certified values are printed to 15 digits
constexpr double kSlack = 0.5;       // a drop of more than half a digit fails
constexpr double kSweepTol = 1e-10;  // the example procedure's pivot tolerance
constexpr int kMaxTerms = 7;         // Longley: the intercept and six predictors
const double kNaN = std::nan("");

struct NistSet {
  const char * name;  // nist_<name>.csv; row <set> of nist_strd_cert.csv
  int set;
  int powers;  // 0: the file's predictors; k: x, x^2 .. x^k of its one predictor
};

// The digits this code reaches, rounded down to 0.1: coefficients and their standard errors
// (intercept first), and the residual standard deviation from the swept residual sum of
// squares and from a second pass over the data. Wampler1 is an exact fit whose swept
// residual sum of squares comes out negative (-0.0036), hence NaN.
struct Recorded {
  NistSet data;
  double coef[kMaxTerms], se[kMaxTerms];
  double sd[2];  // swept, second pass
};

const Recorded kRecorded[] = {
    {{"longley", 1, 0},
     {14.2, 12.0, 13.0, 13.6, 14.2, 12.3, 14.4},
     {12.8, 12.6, 12.8, 12.8, 12.7, 12.7, 12.8},
     {13.5, 12.6}},
    {{"norris", 2, 0}, {12.7, 14.3}, {13.6, 13.7}, {11.6, 13.7}},
    {{"pontius", 3, 2}, {11.4, 14.2, 12.3}, {14.4, 14.3, 14.6}, {9.3, 14.0}},
    {{"wampler1", 4, 5},
     {7.8, 7.3, 7.6, 8.5, 9.7, 11.4},
     {7.7, 7.6, 8.1, 9.0, 10.3, 12.0},
     {kNaN, 7.6}},
};

struct Measured {
  std::vector<double> coef, se;  // intercept first
  double sd[2] = {0.0, 0.0};     // swept, second pass
};

// -log10 of the relative error (absolute where the certified value is 0), at most kMaxLre;
// NaN stays NaN.
double Lre(double got, double cert) {
  if (std::isnan(got)) return got;
  const double err = cert == 0.0 ? std::fabs(got) : std::fabs(got - cert) / std::fabs(cert);
  return err == 0.0 ? kMaxLre : std::min(kMaxLre, -std::log10(err));
}

// Fits the set and scores it against its certified row: estimate and sd of each
// coefficient in turn, then the residual sd.
Measured FitSet(const NistSet & s, const std::vector<double> & cert) {
  const auto rows = zrtest::LoadRefTable(std::string("math/stats/nist_") + s.name + ".csv", 1);
  const int nRows = static_cast<int>(rows.size());
  if (nRows == 0) return Measured();
  const int p = s.powers > 0 ? s.powers : static_cast<int>(rows.front().out.size());
  Measured m;
  if (cert.size() != static_cast<size_t>(2 * (p + 1) + 1)) {
    ADD_FAILURE() << s.name << ": certified row has " << cert.size() << " values";
    return m;
  }

  // Predictors, then the response; powers formed in double as a procedure forms them.
  ZRRectMatrix x(nRows, p + 1, true);
  for (int r = 0; r < nRows; ++r) {
    double power = 1.0;
    for (int j = 0; j < p; ++j)
      x.SetElem(r, j, s.powers > 0 ? (power *= rows[r].out[0]) : rows[r].out[j]);
    x.SetElem(r, p, rows[r].in[0]);
  }
  ZRMeansXProducts summary(p + 1, true, false, false);
  EXPECT_TRUE(summary.Compute(x, 0));
  ZRSymMatrix a = summary.GetXProds();
  ZRBitSet entered;
  double logDet = 0.0;
  EXPECT_TRUE(a.SweepOnMany(p, kSweepTol, true, entered, logDet, true, nullptr));
  EXPECT_EQ(entered.InSet(), p) << s.name << ": a predictor was refused";
  std::vector<double> b;
  a.GetRegCoeffs(b, entered);

  const double n = summary.GetNCases(), df = n - p - 1.0;
  const std::vector<double> & means = summary.GetMeans();
  double intercept = means[p], meanQuad = 0.0;  // the swept block is -(X'X)^-1, X centred
  for (int j = 0; j < p; ++j) {
    intercept -= b[j] * means[j];
    for (int k = 0; k < p; ++k) meanQuad -= means[j] * a.GetElem(j, k) * means[k];
  }
  double rss = 0.0;
  for (int r = 0; r < nRows; ++r) {
    double e = x.GetElem(r, p) - intercept;
    for (int j = 0; j < p; ++j) e -= b[j] * x.GetElem(r, j);
    rss += e * e;
  }
  const double sigma2 = rss / df;

  m.coef.push_back(Lre(intercept, cert[0]));
  m.se.push_back(Lre(std::sqrt(sigma2 * (1.0 / n + meanQuad)), cert[1]));
  for (int j = 0; j < p; ++j) {
    m.coef.push_back(Lre(b[j], cert[2 * (j + 1)]));
    m.se.push_back(Lre(std::sqrt(-a.GetElem(j, j) * sigma2), cert[2 * (j + 1) + 1]));
  }
  m.sd[0] = Lre(std::sqrt(a.GetElem(p, p) / df), cert.back());
  m.sd[1] = Lre(std::sqrt(sigma2), cert.back());
  return m;
}

// A figure as the table records it: rounded down to 0.1.
std::string Figure(double lre) {
  if (std::isnan(lre)) return " NaN";
  char buf[16];
  std::snprintf(buf, sizeof buf, " %.1f", std::floor(lre * 10.0) / 10.0);
  return buf;
}

// Fails when measured falls more than kSlack below recorded; a recorded NaN must stay NaN.
void ExpectKeeps(const std::string & what, double measured, double recorded) {
  SCOPED_TRACE(what);
  if (std::isnan(recorded)) {
    EXPECT_TRUE(std::isnan(measured))
        << "now " << measured << " digits, recorded NaN: record the new figure";
  } else {
    EXPECT_GE(measured, recorded - kSlack) << "recorded " << recorded;
  }
}

// The figures are printed, rounded down as recorded.
TEST(ZRNistRegression, FitsKeepRecordedDigits) {  // data: nist_*.csv, nist_strd_cert.csv
  const auto cert = zrtest::LoadRefTable("math/stats/nist_strd_cert.csv", 1);
  for (const Recorded & r : kRecorded) {
    const std::string name = r.data.name;
    const auto row = std::find_if(cert.begin(), cert.end(),
                                  [&](const zrtest::RefRow & c) { return c.in[0] == r.data.set; });
    ASSERT_NE(row, cert.end()) << name << ": no certified row " << r.data.set;
    const Measured m = FitSet(r.data, row->out);
    ASSERT_FALSE(m.coef.empty()) << name;
    std::string line = "NIST " + name + " LRE: coefficients";
    for (double v : m.coef) line += Figure(v);
    line += "; standard errors";
    for (double v : m.se) line += Figure(v);
    line += "; residual sd swept" + Figure(m.sd[0]) + ", second pass" + Figure(m.sd[1]);
    std::printf("%s\n", line.c_str());
    for (size_t j = 0; j < m.coef.size(); ++j) {
      ExpectKeeps(name + " B" + std::to_string(j), m.coef[j], r.coef[j]);
      ExpectKeeps(name + " sd of B" + std::to_string(j), m.se[j], r.se[j]);
    }
    ExpectKeeps(name + " residual sd, swept", m.sd[0], r.sd[0]);
    ExpectKeeps(name + " residual sd, second pass", m.sd[1], r.sd[1]);
  }
}

}  // namespace
