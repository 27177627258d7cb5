// Example procedure: builds a small design matrix, forms products with it and reports
// the results on the diagnostic stream, as an analytic procedure would while debugging.
#include <cstdio>
#include <vector>

#include "zrcommon920r/zrcommon920r.h"

namespace {

using ZRCommon_920::kSysMisValue;
using ZRMath_920::ZRBitSet;
using ZRMath_920::ZRRectMatrix;
using ZRMath_920::ZRSymMatrix;
namespace disp = ZRDisplay_920;

// Design matrix of five cases: an intercept and two predictors.
ZRRectMatrix MakeDesign() {
  const double rows[5][3] = {
      {1.0, 2.0, 0.5}, {1.0, 3.5, -1.0}, {1.0, 1.0, 2.0}, {1.0, 4.0, 0.0}, {1.0, 2.5, 1.5}};
  ZRRectMatrix x(5, 3, true);
  for (int i = 0; i < 5; ++i)
    for (int j = 0; j < 3; ++j) x.SetElem(i, j, rows[i][j]);
  return x;
}

// Least squares by sweeping: accumulates the cross-products of [1 x1 x2 y] case by case,
// sweeps the three predictor rows, and reads the coefficients and the residual sum of
// squares from the row of the dependent variable.
bool FitBySweeping(const ZRRectMatrix & x, const std::vector<double> & y) {
  const int p = x.GetNCols();
  ZRSymMatrix cross(p + 1, true);
  std::vector<double> row(p + 1);
  for (int i = 0; i < x.GetNRows(); ++i) {
    for (int j = 0; j < p; ++j) row[j] = x.GetElem(i, j);
    row[p] = y[i];
    if (!cross.UpdateXX(row, 1.0)) return false;
  }
  cross.Display();

  ZRBitSet entered;
  double logDet = 0.0;
  if (!cross.SweepOnMany(p, 1e-12, true, entered, logDet, true, nullptr)) return false;
  std::vector<double> coefficients;
  if (!cross.GetRegCoeffs(coefficients, entered)) return false;
  disp::DisplayI("predictors entered", entered.InSet());
  disp::DisplayDV("regression coefficients", coefficients, true);
  disp::DisplayDF("residual sum of squares", cross.GetElem(p, p));
  disp::DisplayD("log determinant of X'X", logDet);
  return true;
}

}  // namespace

int main() {
  const ZRRectMatrix x = MakeDesign();
  x.Display();

  // Fitted values for a coefficient vector: X b.
  const std::vector<double> beta{0.5, 1.25, -0.75};
  std::vector<double> fitted;
  if (!x.ComputeRV(beta, fitted)) return 1;
  disp::DisplayDV("fitted values X b", fitted, false);

  // Cross-products X'X, the start of a least-squares fit.
  ZRRectMatrix xt = x;
  xt.Transpose();
  ZRRectMatrix xtx;
  if (!xt.ComputeMatrixProduct(x, xtx)) return 1;
  xtx.DisplayF();

  disp::DisplayI("cases", x.GetNRows());
  disp::DisplayD("norm of column 1", x.ColNorm(1));
  disp::DisplayD("norm of a bad column", x.ColNorm(7));  // no result: system-missing
  disp::DisplayD("system-missing value", kSysMisValue);
  disp::DisplayDF("sum of squares of fitted values",
                  ZRMath_920::ZRMathFun::DDot(5, fitted, 0, 1, fitted, 0, 1));
  // A response for the five cases, then the fit.
  const std::vector<double> y{3.1, 4.9, 0.2, 6.1, 2.4};
  if (!FitBySweeping(x, y)) return 1;
  std::printf("\n");
  return 0;
}
