// Example procedure: builds a small design matrix, forms products with it and reports
// the results on the diagnostic stream, as an analytic procedure would while debugging.
#include <cstdio>
#include <vector>

#include "zrcommon920r/zrcommon920r.h"

namespace {

using ZRCommon_920::kSysMisValue;
using ZRMath_920::ZRRectMatrix;
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
  std::printf("\n");
  return 0;
}
