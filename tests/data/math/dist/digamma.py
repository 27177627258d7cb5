"""Digamma and trigamma references for mathfun_test.cpp.

Run: python3 digamma.py > digamma.csv   (re-running reproduces the file byte for byte)
Each input is a double; mpmath.mpf(float) takes its exact value, printed with repr.
"""
import math

import mpmath as mp

mp.mp.dps = 50

# Both sides of the switches at 1e-5 (digamma) and 1e-4 (trigamma), the zero of psi near
# 1.4616, the shift point 10, and a log-spaced sweep from 1e-16 to 1e300.
points = [math.nextafter(1e-16, 1.0), 2e-16, 1e-12, 3e-9, 1e-7, 9.999e-6,
          math.nextafter(1e-5, 0.0), 1e-5, 3e-5, math.nextafter(1e-4, 0.0), 1e-4, 2.5e-4,
          0.5, 1.0, 1.25, 1.4616321449683622, 1.4616321449683625, 1.5, 2.0, 3.0,
          9.75, 10.0, 100.0, 1e100, 1e200, 1e300]
points += [10.0 ** (e / 4) for e in range(-60, 81)]
points = sorted(set(points))

print(f"# made by digamma.py, mpmath {mp.__version__}, 50 digits; do not edit")
print("# x,digamma,trigamma")
for x in points:
    v = mp.mpf(x)  # the exact double
    print(f"{x!r},{mp.nstr(mp.digamma(v), 25)},{mp.nstr(mp.psi(1, v), 25)}")
