"""F distribution references for distfun_f_test.cpp.

Run: python3 cdff.py > cdff.csv   (re-running reproduces the file byte for byte)
Each input is a double; mpmath.mpf(float) takes its exact value, printed with repr.
P = P(F <= x) = I_z(df1/2, df2/2), z = df1 x / (df1 x + df2), and Q = P(F > x), each
computed as its own tail at 60 digits (betaref.py), z and 1 - z formed exactly.
"""
import math

import mpmath as mp

import betaref

mp.mp.dps = 50

PAIRS = [(0.1, 0.1), (0.5, 3.0), (1.0, 1.0), (1.0, 2.5), (1.0, 30.0), (1.0, 1e9),
         (2.0, 7.0), (5.0, 20.0), (3.0, 1e9), (10.0, 1e5), (1e3, 1e3), (1e5, 1e5),
         (1e9, 1e9), (1e9, 4.0)]
XS = [1e-300, 1e-20, 1e-5, 0.01, 0.5, 0.9, 1.0, 1.5, 3.0, 10.0, 100.0, 1e10, 1e300]
SPREAD = [-10, -3, -1, 1, 3, 10]  # about 1, in standard deviations of log F

betaref.check()
print(f"# made by cdff.py, mpmath {mp.__version__}, 60 digits; do not edit")
print("# x,df1,df2,P,Q")
for df1, df2 in PAIRS:
    xs = set(XS)
    if min(df1, df2) >= 1e3:
        sd = math.sqrt(2 / df1 + 2 / df2)
        xs.update(math.exp(k * sd) for k in SPREAD)
    for x in sorted(xs):
        with mp.workdps(60):
            X, D1, D2 = mp.mpf(x), mp.mpf(df1), mp.mpf(df2)  # the exact doubles
            p, q = betaref.ibeta(D1 * X / (D1 * X + D2), D2 / (D1 * X + D2), D1 / 2, D2 / 2)
        print(f"{x!r},{df1!r},{df2!r},{mp.nstr(p, 20)},{mp.nstr(q, 20)}")
