"""Error function references for distfun_normal_test.cpp.

Run: python3 erf.py > erf.csv   (re-running reproduces the file byte for byte)
Each input is a double; mpmath.mpf(float) takes its exact value, printed with repr.
"""
import math

import mpmath as mp

mp.mp.dps = 50

# Tiny arguments, the rows of the small table (x^2 = 1, 2, 3, 4) and of the large one
# (x = 3 .. 6), both sides of the switches at 2.2 and 6.9, a sweep out to where erfc
# underflows (about 26.54), and negative arguments.
points = [1e-300, 1e-200, 1e-20, 1e-8, 1e-4, 0.1, 0.5]
for edge in (1.0, math.sqrt(2.0), math.sqrt(3.0), 2.0, 2.2, 3.0, 4.0, 5.0, 6.0, 6.9, 7.0):
    points += [math.nextafter(edge, 0.0), edge, math.nextafter(edge, 30.0)]
points += [i * 0.037 for i in range(1, 718)] + [10.0, 15.0, 20.0, 25.0, 26.0, 26.5]
points += [-x for x in (1e-300, 1e-8, 0.3, 0.9, 1.5, 2.1, 2.2, 3.3, 5.5, 6.9, 8.0, 27.0)]
points = sorted(set(points))

print(f"# made by erf.py, mpmath {mp.__version__}, 50 digits; do not edit")
print("# x,erf,erfc")
for x in points:
    v = mp.mpf(x)  # the exact double
    print(f"{x!r},{mp.nstr(mp.erf(v), 25)},{mp.nstr(mp.erfc(v), 25)}")
