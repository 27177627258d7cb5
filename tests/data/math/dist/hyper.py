"""Hypergeometric references for distfun_discrete_test.cpp.

Run: python3 hyper.py > hyper.csv   (re-running reproduces the file byte for byte)
x,total,sample,successes -> pmf, CDF, flag. CDF is P(X <= x), the smaller tail summed term
by term by the ratio of adjacent terms to a term below 1e-70 of the sum; where flag is 1
(population above 10000 and min(sample, total - sample) > 16 max(r, 1/r), r = successes /
(total - successes)) it is instead the stated normal approximation
Phi((x - mu + 0.5) / sqrt((total - sample) / (total - 1) (total - successes) / total mu)),
mu = sample successes / total, evaluated here at 50 digits.
"""
import math

import mpmath as mp

mp.mp.dps = 50


def pmf(x, N, n, K):
    return mp.binomial(K, x) * mp.binomial(N - K, n - x) / mp.binomial(N, n)


def cdf(x, N, n, K):
    lo, hi = max(n - N + K, 0), min(n, K)
    if x < lo:
        return mp.mpf(0)
    if x >= hi:
        return mp.mpf(1)
    down = x <= n * K / N
    with mp.workdps(70):
        i = x if down else x + 1
        t = pmf(mp.mpf(i), N, n, K)
        s = t
        while (i > lo) if down else (i < hi):
            if down:
                t *= i * (N - K - n + i) / ((K - i + 1) * (n - i + 1))
                i -= 1
            else:
                t *= (K - i) * (n - i) / ((i + 1) * (N - K - n + i + 1))
                i += 1
            s += t
            if t < s * mp.mpf(10)**-70:
                break
        return s if down else 1 - s


print(f"# made by hyper.py, mpmath {mp.__version__}, 50 digits; do not edit")
print("# x,total,sample,successes,pmf,CDF,flag")
cases = [(20, 5, 7), (20, 12, 15), (100, 30, 40), (1000, 500, 300), (1000, 3, 999),
         (5000, 100, 2500), (9999, 4000, 6000), (1e6, 10, 5e5), (1e6, 20, 999000),
         (1e6, 900, 400), (1e6, 5e5, 3e5), (1e6, 2e5, 1e5)]
for N, n, K in cases:
    N, n, K = float(N), float(n), float(K)
    mu = n * K / N
    sd = math.sqrt(mu * (N - n) / (N - 1) * (N - K) / N)
    lo, hi = max(n - N + K, 0), min(n, K)
    r = K / (N - K)
    flag = 1 if N > 10000 and min(n, N - n) > 16 * max(r, 1 / r) else 0
    xs = {lo, hi, lo + 1, hi - 1}
    for z in (-37, -20, -5, -1, 0, 1, 5, 20, 37):
        xs.add(min(max(math.floor(mu + z * sd), lo), hi))
    for x in sorted(v for v in xs if lo <= v <= hi):
        X, NN, nn, KK = (mp.mpf(v) for v in (x, N, n, K))
        f = pmf(X, NN, nn, KK)
        if flag:
            M = nn * KK / NN
            c = mp.ncdf((X - M + mp.mpf(0.5)) / mp.sqrt((NN - nn) / (NN - 1) * ((NN - KK) / NN) * M))
        else:
            c = cdf(X, NN, nn, KK)
        if f < mp.mpf(10)**-300:
            continue
        print(f"{x!r},{N!r},{n!r},{K!r},{mp.nstr(f, 20)},{mp.nstr(c, 20)},{flag}")
