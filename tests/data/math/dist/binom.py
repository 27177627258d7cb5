"""Binomial and negative binomial references for distfun_discrete_test.cpp.

Run: python3 binom.py > binom.csv   (re-running reproduces the file byte for byte)
Each input is a double; mpmath.mpf(float) takes its exact value, printed with repr.
Rows "B": x,n,p -> pmf at x, P = P(X <= floor x), Q = P(X > floor x), and a flag that is 1
where the pmf at min(floor x, floor(p (n + 1))) is below e^-708 (the distribution function
switches to a normal approximation there). Each tail is summed term by term from its end
nearer the mode outward, by the ratio of adjacent terms, to a term below 1e-70 of the sum.
Rows "N": x,r,p -> negative binomial pmf C(x + r - 1, x) p^r (1 - p)^x, flag 0.
"""
import math

import mpmath as mp

mp.mp.dps = 50


def pmf(k, n, p):
    return mp.binomial(n, k) * p**k * (1 - p)**(n - k)


def tail(k, n, p, down):
    """sum of pmf(i) for i <= k (down) or i >= k, outward from k."""
    with mp.workdps(70):
        t = pmf(k, n, p)
        s, i = t, k
        while True:
            if down:
                if i == 0:
                    break
                t *= i / (n - i + 1) * (1 - p) / p
                i -= 1
            else:
                if i == n:
                    break
                t *= (n - i) / (i + 1) * p / (1 - p)
                i += 1
            s += t
            if t < s * mp.mpf(10)**-70:
                break
        return s


def cdf(k, n, p):
    """(P(X <= k), P(X > k)) with the smaller tail summed directly."""
    if k < 0:
        return mp.mpf(0), mp.mpf(1)
    if k >= n:
        return mp.mpf(1), mp.mpf(0)
    if k <= n * p:
        lo = tail(k, n, p, True)
        return lo, 1 - lo
    hi = tail(k + 1, n, p, False)
    return 1 - hi, hi


print(f"# made by binom.py, mpmath {mp.__version__}, 50 digits; do not edit")
print("# kind(0 B, 1 N),x,n or r,p,pmf,P,Q,flag")
for n in (1.0, 2.0, 5.0, 10.0, 33.0, 100.0, 1000.0, 1e4, 1e6):
    for p in (1e-3, 0.1, 0.5, 0.9, 0.999):
        N, P = mp.mpf(n), mp.mpf(p)
        sd = math.sqrt(n * p * (1 - p))
        ks = set()
        for z in (-40, -37, -20, -8, -2, 0, 2, 8, 20, 37):
            ks.add(min(max(math.floor(n * p + z * sd), 0), n))
        ks.update((0.0, 1.0, n - 1, n))
        for k in sorted(k for k in ks if 0 <= k <= n):
            x = float(k) + (0.25 if k == 1.0 else 0.0)  # one point off the integers
            lo, hi = cdf(mp.mpf(k), N, P)
            j = min(k, math.floor(p * (n + 1)))
            flag = 1 if pmf(mp.mpf(j), N, P) < mp.exp(-708) else 0
            f = pmf(mp.mpf(k), N, P) if x == k else mp.mpf(0)
            if lo < mp.mpf(10)**-300 if not flag else lo < mp.mpf(10)**-306:
                continue
            print(f"0,{x!r},{n!r},{p!r},{mp.nstr(f, 20)},{mp.nstr(lo, 20)},{mp.nstr(hi, 20)},{flag}")
for r in (0.5, 1.0, 2.5, 10.0, 1000.0):
    for p in (0.01, 0.3, 0.9):
        for x in (0.0, 1.0, 2.0, 5.0, 50.0, 1e4, 1e6):
            X, R, P = mp.mpf(x), mp.mpf(r), mp.mpf(p)
            f = mp.binomial(X + R - 1, X) * P**R * (1 - P)**X
            if f < mp.mpf(10)**-300:
                continue
            print(f"1,{x!r},{r!r},{p!r},{mp.nstr(f, 20)},0,0,0")
