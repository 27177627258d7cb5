"""Student t references for distfun_t_test.cpp.

Run: python3 cdft.py > cdft.csv   (re-running reproduces the file byte for byte)
Each input is a double; mpmath.mpf(float) takes its exact value, printed with repr.
P = P(T <= x) and Q = P(T > x), each computed as its own tail from the incomplete beta at
60 digits (betaref.py), the argument x^2/(df+x^2) or df/(df+x^2), whichever is smaller,
formed exactly; density at 50 digits.
"""
import mpmath as mp

import betaref

mp.mp.dps = 50

DFS = [0.1, 0.5, 1.0, 2.0, 2.5, 3.0, 10.0, 30.0, 1e3, 1e5, 5e7, 1e8, 2e8, 1e9]
XS = [1e-300, 1e-10, 0.75, 1.0, 1.5, 3.0, 10.0, 37.0, 1e20]
XS = [-x for x in reversed(XS)] + XS

betaref.check()
print(f"# made by cdft.py, mpmath {mp.__version__}, 60 digits; do not edit")
print("# x,df,P,Q,density")
for df in DFS:
    for x in XS:
        with mp.workdps(60):
            X, D = mp.mpf(x), mp.mpf(df)  # the exact doubles
            u, w = X * X / (D + X * X), D / (D + X * X)
            if u <= w:  # P(|T| <= |x|) = I_u(1/2, df/2)
                inner, outer = betaref.ibeta(u, w, mp.mpf(0.5), D / 2)
            else:  # P(|T| > |x|) = I_w(df/2, 1/2)
                outer, inner = betaref.ibeta(w, u, D / 2, mp.mpf(0.5))
            lower, upper = (outer / 2, (1 + inner) / 2) if x < 0 else ((1 + inner) / 2, outer / 2)
            dens = mp.exp(mp.loggamma((D + 1) / 2) - mp.loggamma(D / 2) - mp.log(D * mp.pi) / 2
                          - (D + 1) / 2 * mp.log1p(X * X / D))
        print(f"{x!r},{df!r},{mp.nstr(lower, 20)},{mp.nstr(upper, 20)},{mp.nstr(dens, 20)}")
