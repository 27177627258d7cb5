"""F quantile references for distfun_f_test.cpp.

Run: python3 idff.py > idff.csv   (re-running reproduces the file byte for byte)
Each input is a double; mpmath.mpf(float) takes its exact value, printed with repr.
b solves I_b(df1/2, df2/2) = p to 50 digits (betaref.quantile), and
F = df2 b / (df1 (1 - b)). Also printed: b, the beta-scale value, and db/dp, the
reciprocal of the Beta(df1/2, df2/2) density at b, which turns an error in p into one in b.
"""
import mpmath as mp

import betaref

mp.mp.dps = 50

PAIRS = [(0.5, 3.0), (1.0, 1.0), (1.0, 10.0), (1.0, 1e9), (2.0, 7.0), (5.0, 20.0),
         (10.0, 1e5), (1e3, 1e3), (1e5, 4.0)]
PS = [1e-300, 1e-100, 1e-20, 1e-10, 1e-5, 0.01, 0.05, 0.3, 0.5, 0.7, 0.95, 0.99,
      1 - 1e-5, 1 - 1e-10, 1 - 1e-12]

betaref.check()
print(f"# made by idff.py, mpmath {mp.__version__}, 60 digits; do not edit")
print("# p,df1,df2,F,b,db/dp")
for df1, df2 in PAIRS:
    for p in PS:
        with mp.workdps(60):
            b, c = betaref.quantile(p, mp.mpf(df1) / 2, mp.mpf(df2) / 2)
            f = df2 * b / (df1 * c)
            a1, a2 = mp.mpf(df1) / 2, mp.mpf(df2) / 2
            log_dens = ((a1 - 1) * mp.log(b) + (a2 - 1) * mp.log(c) - mp.loggamma(a1)
                        - mp.loggamma(a2) + mp.loggamma(a1 + a2))
        print(f"{p!r},{df1!r},{df2!r},{mp.nstr(f, 20)},{mp.nstr(b, 20)},"
              f"{mp.nstr(mp.exp(-log_dens), 6)}")
