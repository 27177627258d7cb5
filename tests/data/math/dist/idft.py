"""Student t quantile references for distfun_t_test.cpp.

Run: python3 idft.py > idft.csv   (re-running reproduces the file byte for byte)
Each input is a double; mpmath.mpf(float) takes its exact value, printed with repr.
With q = 2 min(p, 1 - p), w solves I_w(df/2, 1/2) = q to 50 digits (betaref.quantile),
and t = -+sqrt(df (1 - w) / w). Also printed: w, the beta-scale value, and dw/dq, the
reciprocal of the Beta(df/2, 1/2) density at w, which turns an error in q into one in w.
"""
import mpmath as mp

import betaref

mp.mp.dps = 50

DFS = [0.1, 0.5, 1.0, 2.0, 2.5, 10.0, 30.0, 1e3, 1e5, 5e7, 1e8, 1e9]
PS = [1e-300, 1e-100, 1e-20, 1e-10, 1e-5, 0.01, 0.05, 0.3, 0.7, 0.975, 0.99, 1 - 1e-5,
      1 - 1e-10, 1 - 1e-12]

betaref.check()
print(f"# made by idft.py, mpmath {mp.__version__}, 60 digits; do not edit")
print("# p,df,t,w,dw/dq")
for df in DFS:
    for p in PS:
        with mp.workdps(60):
            P = mp.mpf(p)  # the exact double
            q = 2 * P if p < 0.5 else 2 * (1 - P)
            w, v = betaref.quantile(q, mp.mpf(df) / 2, mp.mpf(0.5))
            t = mp.sqrt(df * v / w) * (-1 if p < 0.5 else 1)
            a = mp.mpf(df) / 2
            log_dens = ((a - 1) * mp.log(w) - mp.log(v) / 2 - mp.loggamma(a) - mp.loggamma(0.5)
                        + mp.loggamma(a + 0.5))
        print(f"{p!r},{df!r},{mp.nstr(t, 20)},{mp.nstr(w, 20)},{mp.nstr(mp.exp(-log_dens), 6)}")
