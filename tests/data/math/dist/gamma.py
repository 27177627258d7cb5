"""Gamma distribution references for distfun_gamma_test.cpp: quantile, cdf and density.

Run: python3 gamma.py > gamma.csv   (re-running reproduces the file byte for byte)
Columns p, shape, rate, then x = the double nearest the quantile at p (printed with repr,
and an exact input for the cdf and density), P(shape, x rate) and the density at x, both
at that exact double (mpmath.mpf(float)). Above 0.5 the upper tail 1 - p is solved for.
Tails at 60 digits by gammaref.py (mpmath's gammainc below shape 1e5).
"""
import mpmath as mp

import gammaref

ps = [1e-300, 1e-30, 1e-6, 0.1, 0.5, 0.9, 1 - 1e-6, 1 - 1e-12]
cases = [(0.1, 1.0), (0.5, 1.0), (0.5, 0.25), (1.0, 1.0), (1.0, 3.0), (1.5, 1.0),
         (4.0, 1.0), (4.0, 3.0), (25.0, 1.0), (1e3, 1.0), (1e3, 0.25), (1e5, 1.0),
         (1e7, 1.0), (1e9, 1.0)]

print(f"# made by gamma.py, mpmath {mp.__version__}, 60 digits; do not edit")
print("# p,shape,rate,x,P,density")
for shape, rate in cases:
    a, r = mp.mpf(shape), mp.mpf(rate)
    for p in ps:
        if p > 0.5:
            h = gammaref.quantile(a, 1 - mp.mpf(p), upper=True)
        else:
            h = gammaref.quantile(a, p)
        x = float(h / r)
        if not 1e-300 <= x < 1e308:
            continue
        hx = mp.mpf(x) * r  # the exact product of the doubles
        cdf = gammaref.tails(a, hx)[0]
        pdf = r * gammaref.density(a, hx)
        print(f"{p!r},{shape!r},{rate!r},{x!r},{mp.nstr(cdf, 20)},{mp.nstr(pdf, 20)}")
