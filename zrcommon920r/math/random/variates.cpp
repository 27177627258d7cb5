// The object variate generators: normal (Kinderman and Ramage), beta (by shape: powers of a
// uniform, Johnk's rejection, rejection from a normal, the quantile as fallback) and
// binomial (Relles's median splitting), with their shared uniform sources.
#include <cmath>
#include <cstdint>
#include <utility>

#include "zrcommon920r/common/numconst.h"
#include "zrcommon920r/math/dist/distfun.h"
#include "zrcommon920r/math/random/detail/normal_kr.h"
#include "zrcommon920r/math/random/variates.h"

namespace ZRMath_920 {

namespace {

// Tries of Johnk's and the normal rejection before the quantile takes over.
constexpr int kBetaTries = 5000;
// Redraws of a uniform that is not positive, or of a normal point outside [0, 1], allowed
// in one beta draw; a working source needs them only with shapes within about 1e-8 of 1.
constexpr int kBetaRedraws = 5000;
// Intended: the beta's exponent limit is -708.0, where the gamma's is -708.39.
constexpr double kBetaExpMin = -708.0;
// Trials from which the binomial splits at the median.
constexpr std::int64_t kSplitFrom = 100;
// The largest n taken: every count up to 2^53 is a double exactly.
constexpr double kMaxTrials = 9007199254740992.0;

// The source a copy gets: its own congruential generator in the same state when the
// original owns one (only a congruential source is ever owned), else the same pointer.
ZRRNGenerator * CopiedSource(ZRRNGenerator * source, bool own) {
  if (source == nullptr || !own) return source;
  return new ZRRNGUCongruential(*static_cast<ZRRNGUCongruential *>(source));
}

bool ValidShapes(double a, double b) {
  return a > 0.0 && b > 0.0 && std::isfinite(a) && std::isfinite(b);
}

bool ValidBinomial(double n, double p) {
  return n >= 0.0 && n <= kMaxTrials && n == std::floor(n) && p >= 0.0 && p <= 1.0;
}

// exp(t), 0 below the beta's limit.
double BetaExp(double t) {
  return t < kBetaExpMin ? 0.0 : std::exp(t);
}

// The fallback of both rejections: the quantile of a new uniform, IdfBeta's
// betinv(u, a, b, 1e-20, 1e-12); -1.0 when betinv fails.
double QuantileFallback(ZRRNGenerator & source, double a, double b) {
  return ZRDistFun::IdfBeta(source.GetNext(), a, b);
}

// A uniform redrawn while not positive; false once redraws runs out.
bool PositiveUniform(ZRRNGenerator & source, int & redraws, double & u) {
  for (;;) {
    u = source.GetNext();
    if (u > 0.0) return true;
    if (++redraws >= kBetaRedraws) return false;
  }
}

}  // namespace

// ---------------------------------------------------------------------------------------
// ZRRNGNormal

struct ZRRNGNormal::Impl {
  ZRRNGenerator * fpGenerator = nullptr;
  bool fbOwnGenerator = true;
  double fdMean = 0.0;
  double fdSD = 1.0;

  ZRRNGenerator & Source() {
    if (fpGenerator == nullptr) {
      fpGenerator = new ZRRNGUCongruential;
      fbOwnGenerator = true;
    }
    return *fpGenerator;
  }
  double Draw(double mean, double sd) {
    ZRRNGenerator & source = Source();
    const double z = random_detail::StdNormalKR([&source] { return source.GetNext(); });
    return z == ZRCommon_920::kSysMisValue ? z : z * sd + mean;
  }
};

ZRRNGNormal::ZRRNGNormal(double mean, double sd) : fpImpl(new Impl) {
  SetParameters(mean, sd);
}

ZRRNGNormal::ZRRNGNormal(const ZRRNGNormal & other) : fpImpl(new Impl(*other.fpImpl)) {
  fpImpl->fpGenerator = CopiedSource(other.fpImpl->fpGenerator, other.fpImpl->fbOwnGenerator);
}

ZRRNGNormal & ZRRNGNormal::operator=(const ZRRNGNormal & other) {
  ZRRNGNormal copy(other);
  std::swap(fpImpl, copy.fpImpl);
  return *this;
}

ZRRNGNormal::~ZRRNGNormal() {
  if (fpImpl->fbOwnGenerator) delete fpImpl->fpGenerator;
}

void ZRRNGNormal::SetURNGenerator(ZRRNGenerator & source) {
  if (fpImpl->fpGenerator == &source) return;
  if (fpImpl->fbOwnGenerator) delete fpImpl->fpGenerator;
  fpImpl->fpGenerator = &source;
  fpImpl->fbOwnGenerator = false;
}

void ZRRNGNormal::SetSeed(double seed) {
  fpImpl->Source().SetSeed(seed);
}

void ZRRNGNormal::SetParameters(double mean, double sd) {
  const bool valid = sd >= 0.0;
  fpImpl->fdMean = valid ? mean : 0.0;
  fpImpl->fdSD = valid ? sd : 1.0;
}

double ZRRNGNormal::GetNext(double mean, double sd) {
  if (!(sd >= 0.0)) return fpImpl->Draw(0.0, 1.0);
  return fpImpl->Draw(mean, sd);
}

double ZRRNGNormal::GetNext() {
  return fpImpl->Draw(fpImpl->fdMean, fpImpl->fdSD);
}

// ---------------------------------------------------------------------------------------
// ZRRNGBeta

struct ZRRNGBeta::Impl {
  ZRRNGenerator * fpGenerator = nullptr;
  bool fbOwnGenerator = true;
  ZRRNGNormal fNormal;
  double fdA = 1.0;
  double fdB = 1.0;

  ZRRNGenerator & Source() {
    if (fpGenerator == nullptr) {
      fpGenerator = new ZRRNGUCongruential;
      fbOwnGenerator = true;
      fNormal.SetURNGenerator(*fpGenerator);
    }
    return *fpGenerator;
  }
  double Draw(double a, double b);
  double Johnk(ZRRNGenerator & source, double a, double b);
  double NormalRejection(ZRRNGenerator & source, double a, double b);
};

// Beta(a, b) by route; -1.0 for a shape that is not positive (the public calls prevent it).
double ZRRNGBeta::Impl::Draw(double a, double b) {
  if (!(a > 0.0) || !(b > 0.0)) return -1.0;
  ZRRNGenerator & source = Source();
  if (a > 1.0 && b > 1.0) return NormalRejection(source, a, b);
  if (a == 1.0 && b == 1.0) return source.GetNext();
  if (b == 1.0) {  // u^(1/a)
    const double u = source.GetNext();
    return u <= 0.0 ? 0.0 : BetaExp(std::log(u) / a);
  }
  if (a == 1.0) {  // 1 - u^(1/b)
    const double u = source.GetNext();
    if (u <= 0.0) return 1.0;
    const double t = std::log(u) / b;
    return t < kBetaExpMin ? 1.0 : 1.0 - std::exp(t);
  }
  return Johnk(source, a, b);
}

// Johnk (1964): x = u^(1/a), y = v^(1/b), accepted when 0 < x + y <= 1, giving x / (x + y).
double ZRRNGBeta::Impl::Johnk(ZRRNGenerator & source, double a, double b) {
  int redraws = 0;
  for (int tries = 0; tries < kBetaTries; ++tries) {
    double u, v;
    if (!PositiveUniform(source, redraws, u)) break;
    const double x = BetaExp(std::log(u) / a);
    if (!PositiveUniform(source, redraws, v)) break;
    const double y = BetaExp(std::log(v) / b);
    const double s = x + y;
    if (s > 0.0 && s <= 1.0) return x / s;
  }
  return QuantileFallback(source, a, b);
}

// Rejection from the normal approximation N(a1 / c, 1 / (4 c)), c = a1 + b1, ai the shapes
// less 1: x is accepted when log(u) <= log of the density ratio, a1 log(x / a1) +
// b1 log((1 - x) / b1) + c log c + z^2 / 2.
double ZRRNGBeta::Impl::NormalRejection(ZRRNGenerator & source, double a, double b) {
  const double a1 = a - 1.0, b1 = b - 1.0, c = a1 + b1;
  const double logC = std::log(c) * c, r = std::sqrt(c);
  int redraws = 0;
  for (int tries = 0; tries < kBetaTries; ++tries) {
    double z = 0.0, x = -1.0;
    while (!(x >= 0.0 && x <= 1.0)) {
      if (redraws++ >= kBetaRedraws) return QuantileFallback(source, a, b);
      z = fNormal.GetNext(0.0, 1.0);
      x = z * (0.5 / r) + a1 / c;
    }
    const double t = std::log((1.0 - x) / b1) * b1 + std::log(x / a1) * a1 + logC;
    double u;
    if (!PositiveUniform(source, redraws, u)) break;
    if (std::log(u) <= t + z * 0.5 * z) return x;
  }
  return QuantileFallback(source, a, b);
}

ZRRNGBeta::ZRRNGBeta(double a, double b) : fpImpl(new Impl) {
  SetParameters(a, b);
}

ZRRNGBeta::ZRRNGBeta(const ZRRNGBeta & other) : fpImpl(new Impl) {
  const Impl & from = *other.fpImpl;
  fpImpl->fdA = from.fdA;
  fpImpl->fdB = from.fdB;
  fpImpl->fbOwnGenerator = from.fbOwnGenerator;
  fpImpl->fpGenerator = CopiedSource(from.fpGenerator, from.fbOwnGenerator);
  if (fpImpl->fpGenerator != nullptr) fpImpl->fNormal.SetURNGenerator(*fpImpl->fpGenerator);
}

ZRRNGBeta & ZRRNGBeta::operator=(const ZRRNGBeta & other) {
  ZRRNGBeta copy(other);
  std::swap(fpImpl, copy.fpImpl);
  return *this;
}

ZRRNGBeta::~ZRRNGBeta() {
  if (fpImpl->fbOwnGenerator) delete fpImpl->fpGenerator;
}

void ZRRNGBeta::SetURNGenerator(ZRRNGenerator & source) {
  if (fpImpl->fpGenerator == &source) return;
  if (fpImpl->fbOwnGenerator) delete fpImpl->fpGenerator;
  fpImpl->fpGenerator = &source;
  fpImpl->fbOwnGenerator = false;
  fpImpl->fNormal.SetURNGenerator(source);
}

void ZRRNGBeta::SetSeed(double seed) {
  fpImpl->Source().SetSeed(seed);
}

void ZRRNGBeta::SetParameters(double a, double b) {
  const bool valid = ValidShapes(a, b);
  fpImpl->fdA = valid ? a : 1.0;
  fpImpl->fdB = valid ? b : 1.0;
}

double ZRRNGBeta::GetNext(double a, double b) {
  return ValidShapes(a, b) ? fpImpl->Draw(a, b) : fpImpl->Draw(1.0, 1.0);
}

double ZRRNGBeta::GetNext() {
  return fpImpl->Draw(fpImpl->fdA, fpImpl->fdB);
}

// ---------------------------------------------------------------------------------------
// ZRRNGBinomial

struct ZRRNGBinomial::Impl {
  ZRRNGenerator * fpGenerator = nullptr;
  bool fbOwnGenerator = true;
  ZRRNGBeta fBeta;
  double fdN = 0.0;
  double fdP = 0.0;

  ZRRNGenerator & Source() {
    if (fpGenerator == nullptr) {
      fpGenerator = new ZRRNGUCongruential;
      fbOwnGenerator = true;
      fBeta.SetURNGenerator(*fpGenerator);
    }
    return *fpGenerator;
  }
  double Draw(double n, double p);
};

// Relles (1972). While k >= 100 trials remain (k made odd by one Bernoulli trial), the
// median of k uniforms is lo + width B, B ~ Beta(h, h), h = (k + 1) / 2: if p lies below it
// the h - 1 uniforms under it remain, in a window [lo, median), else the median and the
// h - 1 under it count and the h - 1 above remain. r is p on the window's scale.
double ZRRNGBinomial::Impl::Draw(double n, double p) {
  if (n <= 0.0 || p <= 0.0) return 0.0;
  ZRRNGenerator & source = Source();
  std::int64_t k = static_cast<std::int64_t>(n), count = 0;
  double r = p, lo = 0.0, width = 1.0;
  while (k >= kSplitFrom) {
    if (k % 2 == 0) {
      --k;
      if (source.GetNext() <= r) ++count;
    }
    const std::int64_t h = (k + 1) / 2;
    const double half = static_cast<double>(h);
    const double y = fBeta.GetNext(half, half) * width, pos = y + lo;
    if (p < pos) {
      width = y;
      r = (p - lo) / y;
    } else {
      lo = pos;
      width -= y;
      r = (p - pos) / width;
      count += h;
    }
    k = h - 1;
  }
  if (r > 0.0 && r < 1.0) {
    for (std::int64_t i = 0; i < k; ++i) {
      if (source.GetNext() <= r) ++count;
    }
  } else if (r >= 1.0) {
    // Intended: r at or above 1 counts every trial; lo + width rounding away from 1 would
    // otherwise lose them at p = 1.
    count += k;
  }
  return static_cast<double>(count);
}

ZRRNGBinomial::ZRRNGBinomial(double n, double p) : fpImpl(new Impl) {
  SetParameters(n, p);
}

ZRRNGBinomial::ZRRNGBinomial(const ZRRNGBinomial & other) : fpImpl(new Impl) {
  const Impl & from = *other.fpImpl;
  fpImpl->fdN = from.fdN;
  fpImpl->fdP = from.fdP;
  fpImpl->fbOwnGenerator = from.fbOwnGenerator;
  fpImpl->fpGenerator = CopiedSource(from.fpGenerator, from.fbOwnGenerator);
  if (fpImpl->fpGenerator != nullptr) fpImpl->fBeta.SetURNGenerator(*fpImpl->fpGenerator);
}

ZRRNGBinomial & ZRRNGBinomial::operator=(const ZRRNGBinomial & other) {
  ZRRNGBinomial copy(other);
  std::swap(fpImpl, copy.fpImpl);
  return *this;
}

ZRRNGBinomial::~ZRRNGBinomial() {
  if (fpImpl->fbOwnGenerator) delete fpImpl->fpGenerator;
}

void ZRRNGBinomial::SetURNGenerator(ZRRNGenerator & source) {
  if (fpImpl->fpGenerator == &source) return;
  if (fpImpl->fbOwnGenerator) delete fpImpl->fpGenerator;
  fpImpl->fpGenerator = &source;
  fpImpl->fbOwnGenerator = false;
  fpImpl->fBeta.SetURNGenerator(source);
}

void ZRRNGBinomial::SetSeed(double seed) {
  fpImpl->Source().SetSeed(seed);
}

void ZRRNGBinomial::SetParameters(double n, double p) {
  const bool valid = ValidBinomial(n, p);
  fpImpl->fdN = valid ? n : 0.0;
  fpImpl->fdP = valid ? p : 0.0;
}

double ZRRNGBinomial::GetNext(double n, double p) {
  return ValidBinomial(n, p) ? fpImpl->Draw(n, p) : 0.0;
}

double ZRRNGBinomial::GetNext() {
  return fpImpl->Draw(fpImpl->fdN, fpImpl->fdP);
}

}  // namespace ZRMath_920
