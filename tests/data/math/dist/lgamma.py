"""Log-gamma references for distfun_lgamma_test.cpp.

Run: python3 lgamma.py > lgamma.csv   (re-running reproduces the file byte for byte)
Each input is a double; mpmath.mpf(float) takes its exact value, printed with repr.
"""
import math

import mpmath as mp

mp.mp.dps = 50


def warped_row_start(r):
    """The x with x - 4.5 / (x + 0.5) = r - 4: where row r of the 0.5-3.5 table begins."""
    y = r - 4.0
    return ((y - 0.5) + math.sqrt(y * y + y + 18.25)) / 2


# Subnormal and least normal x, a log sweep from 1e-300 to 1e300, both sides of every
# switch (0.25, 0.5, 3.5, 8) and table row, the zeros at 1 and 2 approached from both
# sides, and a dense sweep over 0 to 10.
points = [5e-324, 2.2250738585072014e-308] + [10.0 ** (e / 8) for e in range(-2400, 2401, 7)]
edges = [0.25, 0.5, 3.5, 4.0, 5.0, 6.0, 7.0, 8.0] + [warped_row_start(r) for r in range(1, 7)]
for edge in edges:
    points += [math.nextafter(edge, 0.0), edge, math.nextafter(edge, 10.0)]
for zero in (1.0, 2.0):
    points += [zero + s * 2.0 ** -k for k in (1, 2, 4, 7, 10, 15, 20, 30, 40, 52) for s in (-1, 1)]
points += [i * 0.0137 for i in range(1, 730)]
points = sorted(set(points))

print(f"# made by lgamma.py, mpmath {mp.__version__}, 50 digits; do not edit")
print("# x,lgamma")
for x in points:
    print(f"{x!r},{mp.nstr(mp.loggamma(mp.mpf(x)), 25)}")
