// The generated data set of the examples that spread the model build over threads or
// processes: cases drawn in chunks, chunk c from its own seed, so the data set is the same
// however the chunks are shared out.
#ifndef ZRCOMMON920R_EXAMPLES_GENERATED_CASES_H
#define ZRCOMMON920R_EXAMPLES_GENERATED_CASES_H

#include <cstdint>
#include <vector>

#include "zrcommon920r/zrcommon920r.h"

namespace zr_examples {

constexpr int kChunkRows = 2048;      // a chunk's block stays in the second-level cache
constexpr std::uint32_t kSeed = 920;  // chunk c is drawn from seed kSeed + c
constexpr int kIndicators = 3;        // columns of the four-category field

// The shape of the generated data set.
struct Shape {
  long long cases;
  int predictors;
  long long Chunks() const { return (cases + kChunkRows - 1) / kChunkRows; }
  // Cases in chunk c: kChunkRows, fewer in the last.
  int Rows(long long c) const {
    const long long left = cases - c * kChunkRows;
    return static_cast<int>(left < kChunkRows ? left : kChunkRows);
  }
  // Design columns, the response, then the frequency weight.
  int Columns() const { return predictors + 2; }
  int Continuous() const { return predictors - kIndicators; }
};

// Fills the first rows of block with chunk c: a category in 0..3 as indicators of 1..3,
// continuous predictors about 10 j sharing a common part, a response linear in all of them
// plus noise, and a whole-number weight 1..3. The category goes to codes[r].
inline void GenerateChunk(const Shape & shape, long long c, int rows,
                          ZRMath_920::ZRRandomTwister & source, ZRMath_920::ZRRectMatrix & block,
                          std::vector<double> & codes) {
  source.Initialize(kSeed + static_cast<std::uint32_t>(c));
  const int p = shape.predictors;
  for (int r = 0; r < rows; ++r) {
    const std::uint32_t word = source.GetInteger32();
    const int category = static_cast<int>(word % 4u);
    const double common = source.GetRealClosedOpen() - 0.5;
    double y = 2.0 + 0.75 * category;
    for (int j = 0; j < kIndicators; ++j) block.SetElem(r, j, category == j + 1 ? 1.0 : 0.0);
    for (int j = kIndicators; j < p; ++j) {
      const double x = 10.0 * j + (source.GetRealClosedOpen() - 0.5) + 0.3 * common;
      block.SetElem(r, j, x);
      y += (j % 3 == 0 ? 0.5 : -0.2) * x;
    }
    block.SetElem(r, p, y + source.GetRealClosedOpen() - 0.5);
    block.SetElem(r, p + 1, 1.0 + static_cast<double>((word >> 8) % 3u));
    codes[r] = category;
  }
}

}  // namespace zr_examples

#endif  // ZRCOMMON920R_EXAMPLES_GENERATED_CASES_H
