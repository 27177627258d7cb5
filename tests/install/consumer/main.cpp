// A program outside the library's tree: includes the umbrella header and links.
#include <zrcommon920r/zrcommon920r.h>

int main() {
  ZRMath_920::ZRRectMatrix m(2, 3, true);
  m.SetElem(1, 2, 4.0);
  std::vector<double> v{1.0, 1.0, 0.5}, out;
  if (!m.ComputeRV(v, out) || out.size() != 2 || out[1] != 2.0) return 1;
  return ZRMath_920::ZRMathFun::DNrm2(2, out, 0, 1) == 2.0 ? 0 : 1;
}
