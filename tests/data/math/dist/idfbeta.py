"""Beta quantile references for distfun_beta_test.cpp.

Run: python3 idfbeta.py > idfbeta.csv   (re-running reproduces the file byte for byte)
Each input is a double; mpmath.mpf(float) takes its exact value, printed with repr.
x solves I_x(a, b) = p to 50 digits (betaref.quantile), on the smaller tail.
"""
import mpmath as mp

import betaref

mp.mp.dps = 50

PAIRS = [(0.5, 0.5), (3.0, 3.0), (1.0, 2.5), (2.5, 1.0), (2.5, 7.5), (0.5, 5.0),
         (5.0, 0.5), (0.1, 3.0), (3.0, 0.1), (50.0, 80.0), (1e3, 1e3), (1e5, 1e5),
         (1e5, 0.5), (0.5, 1e5)]
PS = [1e-300, 1e-100, 1e-21, 1e-20, 1e-10, 1e-5, 0.01, 0.1, 0.3, 0.5, 0.7, 0.9, 0.99,
      1 - 1e-5, 1 - 1e-10, 1 - 1e-12]

betaref.check()
print(f"# made by idfbeta.py, mpmath {mp.__version__}, 60 digits; do not edit")
print("# p,a,b,x")
for a, b in PAIRS:
    for p in PS:
        x, _ = betaref.quantile(p, a, b)
        print(f"{p!r},{a!r},{b!r},{mp.nstr(x, 20)}")
