"""Incomplete beta references for distfun_beta_test.cpp.

Run: python3 cdfbeta.py > cdfbeta.csv   (re-running reproduces the file byte for byte)
Each input is a double; mpmath.mpf(float) takes its exact value, printed with repr.
P = I_x(a, b) at 60 digits (betaref.py). A shape pair and its mirror image (b, a) give
the upper tail I_(1-x)(b, a) near 0 as a lower tail of their own.
"""
import math

import mpmath as mp

import betaref

mp.mp.dps = 50

PAIRS = [(0.1, 0.1), (0.1, 3.0), (3.0, 0.1), (0.5, 0.5), (0.5, 50.0), (50.0, 0.5),
         (1.0, 1.0), (1.0, 2.5), (2.5, 1.0), (2.5, 7.5), (7.5, 2.5), (50.0, 80.0),
         (1e3, 1e3), (1e3, 10.0), (1e5, 1e5), (1e5, 3e4), (1e5, 0.5), (0.5, 1e5),
         (1e-300, 2.0), (2.0, 1e-300)]
# Far tails, the series' slow corner near 0.004 for small shapes, the middle, near 1.
POINTS = [1e-300, 1e-100, 1e-20, 1e-8, 1e-3, 0.004, 0.1, 0.3, 0.5, 0.7, 0.9, 0.999,
          1 - 1e-8, 1 - 2.0 ** -50]
SPREAD = [-30, -10, -3, -1, 0, 1, 3, 10, 30]  # standard deviations about the mean

betaref.check()
print(f"# made by cdfbeta.py, mpmath {mp.__version__}, 60 digits; do not edit")
print("# x,a,b,P")
for a, b in PAIRS:
    mean = a / (a + b)
    sd = math.sqrt(a * b / ((a + b) ** 2 * (a + b + 1)))
    points = set(POINTS)
    if a + b >= 1e3:  # all but the middle would underflow: the far points once
        points = {1e-300, 0.1, 0.9, 1 - 1e-8}
        points.update(mean + k * sd for k in SPREAD if 0 < mean + k * sd < 1)
    for x in sorted(points):
        X = mp.mpf(x)  # the exact double
        p, _ = betaref.ibeta(X, 1 - X, a, b)
        print(f"{x!r},{a!r},{b!r},{mp.nstr(p, 20)}")
