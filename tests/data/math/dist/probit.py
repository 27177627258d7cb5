"""Normal quantile references for distfun_normal_test.cpp.

Run: python3 probit.py > probit.csv   (re-running reproduces the file byte for byte)
Each input is a double; mpmath.mpf(float) takes its exact value, printed with repr. The
quantile solves Phi(z) = p by Newton's method on log Phi of the smaller tail, at 50 digits;
the last column is the quantile at mean 40 and sd 0.5, 40 + z / 2.
"""
import math

import mpmath as mp

mp.mp.dps = 50


def quantile(p):
    """The z with Phi(z) = p, p an exact double in (0, 1)."""
    tail = min(p, 1 - p)
    z = mp.sqrt(-2 * mp.log(tail))  # solve Phi(-z) = tail for z >= 0
    for _ in range(200):
        step = (mp.log(mp.ncdf(-z)) - mp.log(tail)) * mp.ncdf(-z) / mp.npdf(z)
        z += step
        if abs(step) < mp.mpf(10) ** -45 * (1 + abs(z)):
            break
    else:
        raise RuntimeError(f"no convergence at {p!r}")
    return -z if p < mp.mpf(0.5) else z


# Lower tail from the subnormals and 1e-300, the switches of AS 241 (|p - 0.5| = 0.425, and
# r = 5 near p = exp(-25)), the centre, and the upper tail out to 1 - 1e-12.
points = [5e-324, 2.2250738585072014e-308]
points += [10.0 ** -k for k in (300, 250, 200, 150, 100, 75, 50, 40, 30)]
points += [10.0 ** -k for k in range(1, 26)] + [3e-7, 0.025]
points += [0.075, math.nextafter(0.075, 0.0), math.nextafter(0.075, 1.0), 0.925,
           math.nextafter(0.925, 0.0), math.nextafter(0.925, 1.0), math.exp(-25.0),
           math.nextafter(math.exp(-25.0), 0.0), math.nextafter(math.exp(-25.0), 1.0),
           math.nextafter(0.5, 0.0), math.nextafter(0.5, 1.0), 0.49, 0.51]
points += [i / 64 for i in range(1, 64) if i != 32]
points += [1.0 - 10.0 ** -k for k in range(1, 13)] + [0.975, 0.9999997]
points = sorted(set(points))

print(f"# made by probit.py, mpmath {mp.__version__}, 50 digits; do not edit")
print("# p,z,quantile at mean 40 and sd 0.5")
for p in points:
    z = quantile(mp.mpf(p))
    print(f"{p!r},{mp.nstr(z, 25)},{mp.nstr(40 + z / 2, 25)}")
