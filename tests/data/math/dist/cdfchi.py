"""Chi-square references for distfun_gamma_test.cpp: both tails at each point.

Run: python3 cdfchi.py > cdfchi.csv   (re-running reproduces the file byte for byte)
Points are the doubles nearest the quantiles of tail areas from 1e-300 to 0.5 on either
side, plus a few fixed points; each is then taken exactly (mpmath.mpf(float)) and
printed with repr. Tails at 60 digits by gammaref.py (mpmath's gammainc below shape 1e5).
"""
import mpmath as mp

import gammaref

dfs = [0.1, 0.5, 1.0, 2.0, 3.0, 7.5, 30.0, 150.0, 1e3, 1e4, 2e5, 1e6, 1e7, 1e8, 1e9]
areas = [1e-300, 1e-100, 1e-20, 1e-6, 0.05, 0.5]
fixed = {0.1: [1e-300, 1e-5], 1.0: [1e-300, 1e300], 2.0: [1e-300, 1e-17], 3.0: [1e-300],
         # just below the mean at large df, where the series would be too long
         1e8: [99999990.0, 99999996.7, 99999998.0, 99999999.0, 99999999.5, 99999999.9],
         1e9: [999999900.0, 999999942.0, 999999971.0, 999999987.0, 999999993.0, 999999997.0,
               999999999.0, 999999999.7]}

print(f"# made by cdfchi.py, mpmath {mp.__version__}, 60 digits; do not edit")
print("# x,df,P,Q")
for df in dfs:
    a = mp.mpf(df) / 2
    points = set(fixed.get(df, []))
    for area in areas:
        for upper in (False, True):
            x = float(2 * gammaref.quantile(a, area, upper))
            if 1e-300 <= x < 1e308:
                points.add(x)
    for x in sorted(points):
        p, q = gammaref.tails(a, mp.mpf(x) / 2)  # mpf(float) is the exact double
        print(f"{x!r},{df!r},{mp.nstr(p, 20)},{mp.nstr(q, 20)}")
