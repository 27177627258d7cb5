"""Chi-square quantile references for distfun_gamma_test.cpp.

Run: python3 idfchi.py > idfchi.csv   (re-running reproduces the file byte for byte)
Each p is a double taken exactly (mpmath.mpf(float)); above 0.5 the upper tail 1 - p is
solved for, so that p near 1 keeps its digits. Quantiles below 1e-300 are left out.
Tails at 60 digits by gammaref.py (mpmath's gammainc below shape 1e5).
"""
import mpmath as mp

import gammaref

dfs = [0.1, 0.3, 0.5, 1.0, 2.0, 3.0, 7.5, 30.0, 150.0, 1e3, 1e4, 2e5, 1e6, 1e7, 1e8, 1e9]
ps = [1e-300, 1e-100, 1e-20, 1e-8, 1e-3, 0.1, 0.5, 0.9, 0.999, 1 - 1e-8, 1 - 1e-12]

print(f"# made by idfchi.py, mpmath {mp.__version__}, 60 digits; do not edit")
print("# p,df,x")
for df in dfs:
    a = mp.mpf(df) / 2
    for p in ps:
        if p > 0.5:
            x = 2 * gammaref.quantile(a, 1 - mp.mpf(p), upper=True)
        else:
            x = 2 * gammaref.quantile(a, p)
        if x >= 1e-300:
            print(f"{p!r},{df!r},{mp.nstr(x, 20)}")
