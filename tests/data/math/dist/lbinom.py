"""Log binomial coefficient references for distfun_lgamma_test.cpp.

Run: python3 lbinom.py > lbinom.csv   (re-running reproduces the file byte for byte)
Each input is a double; mpmath.mpf(float) takes its exact value, printed with repr. The
last column, the sum over a = n + 1, k + 1, n - k + 1 of |lgamma(a)| + |a digamma(a)|,
scales the error of a difference of log-gammas taken at rounded arguments.
"""
import mpmath as mp

rows = [(n, float(k)) for n in (2.0, 5.0, 10.0, 33.0) for k in range(1, int(n))]
rows += [(n, k) for n in (0.7, 2.5, 33.5, 34.0, 100.0, 1e3, 1e6, 1e10, 1e15)
         for k in (0.25, 0.5, 1.0, 3.0, n / 3, n / 2, n - 1) if 0 < k < n]
rows += [(1e100, 1e50), (1e100, 5e99), (1e300, 5e299)]
# Nearly degenerate pairs, where the coefficient is barely above 1 and the difference of
# log-gammas can round below 0 (it does at n = 1e-5, k = 9.9999999988358472e-06).
rows += [(1e-5, 9.9999999988358472e-06), (1e-5, 9.999997615814209e-06), (1e-8, 5e-9),
         (40.5, 40.49999999999999), (0.5, 1e-300), (1e15, 999999999999999.0)]

print(f"# made by lbinom.py, mpmath {mp.__version__}, 50 digits; do not edit")
print("# n,k,logC,scale")
for n, k in rows:
    with mp.workdps(50 + 320):  # the difference loses up to 300 digits at n = 1e300
        args = (mp.mpf(n) + 1, mp.mpf(k) + 1, mp.mpf(n) - mp.mpf(k) + 1)
        a, b, c = (mp.loggamma(t) for t in args)
        scale = sum(abs(mp.loggamma(t)) + abs(t * mp.digamma(t)) for t in args)
        print(f"{n!r},{k!r},{mp.nstr(a - b - c, 25)},{mp.nstr(scale, 25)}")
