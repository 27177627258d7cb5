"""Condition estimates for kernels_linpack_po_test.cpp, traced in exact rational arithmetic.

Run: python3 linpack_po_rcond.py > linpack_po_rcond.csv

Each case is an integer upper triangular R; A = R'R is then factored exactly in double
(every quotient is an integer, every pivot a perfect square), so the estimate of the
published LINPACK positive definite estimator (Cline, Moler, Stewart and Wilkinson 1979;
LINPACK Users' Guide, ch. 3) depends on R alone. This traces it step by step with
Fractions, so the value is exact; cases whose branches are decided by a near tie
(relative gap below 1e-9, not zero) are discarded, since double rounding could decide
them differently. The cases are chosen, from a fixed seed, to pass through every branch.
"""
import random
from fractions import Fraction as F

NMAX = 6
TIE = F(1, 10**9)


class NearTie(Exception):
    pass


def le(x, y, hits, name):
    """x <= y, recording the branch; near ties are refused. Exact ties are kept: the
    first step always has one (|wk| = |wkm| with z = 0), which double computes exactly."""
    if 0 < abs(x - y) <= TIE * max(abs(x), abs(y)):
        raise NearTie()
    if not x <= y:
        hits.add(name)
    return x <= y


def rcond(r, n):
    """The published estimate for A = R'R; r[i][j] 1-based, upper triangle."""
    hits = set()
    a = {(i, j): sum(r[k][i] * r[k][j] for k in range(1, min(i, j) + 1))
         for i in range(1, n + 1) for j in range(1, n + 1)}
    anorm = max(sum(abs(a[i, j]) for i in range(1, n + 1)) for j in range(1, n + 1))
    z = [None] + [F(0)] * n

    def scal(s):
        for i in range(1, n + 1):
            z[i] *= s

    def asum():
        return sum(abs(z[i]) for i in range(1, n + 1))

    ek = F(1)
    for k in range(1, n + 1):
        if z[k] != 0:
            ek = abs(ek) if -z[k] >= 0 else -abs(ek)
        if not le(abs(ek - z[k]), r[k][k], hits, "scale R'w=e"):
            s = r[k][k] / abs(ek - z[k])
            scal(s)
            ek = s * ek
        wk = ek - z[k]
        wkm = -ek - z[k]
        s = abs(wk)
        sm = abs(wkm)
        wk = wk / r[k][k]
        wkm = wkm / r[k][k]
        if k + 1 <= n:
            for j in range(k + 1, n + 1):
                sm = sm + abs(z[j] + wkm * r[k][j])
                z[j] = z[j] + wk * r[k][j]
                s = s + abs(z[j])
            if not le(sm, s, hits, "s < sm"):
                t = wkm - wk
                wk = wkm
                for j in range(k + 1, n + 1):
                    z[j] = z[j] + t * r[k][j]
        z[k] = wk
    scal(1 / asum())
    for k in range(n, 0, -1):
        if not le(abs(z[k]), r[k][k], hits, "scale Ry=w"):
            scal(r[k][k] / abs(z[k]))
        z[k] = z[k] / r[k][k]
        for i in range(1, k):
            z[i] = z[i] - z[k] * r[i][k]
    scal(1 / asum())
    ynorm = F(1)
    for j in range(1, n + 1):
        z[j] = z[j] - sum(r[i][j] * z[i] for i in range(1, j))
        if not le(abs(z[j]), r[j][j], hits, "scale R'v=y"):
            s = r[j][j] / abs(z[j])
            scal(s)
            ynorm = s * ynorm
        z[j] = z[j] / r[j][j]
    s = 1 / asum()
    scal(s)
    ynorm = s * ynorm
    for j in range(n, 0, -1):
        if not le(abs(z[j]), r[j][j], hits, "scale Rz=v"):
            s = r[j][j] / abs(z[j])
            scal(s)
            ynorm = s * ynorm
        z[j] = z[j] / r[j][j]
        for i in range(1, j):
            z[i] = z[i] - z[j] * r[i][j]
    s = 1 / asum()
    ynorm = s * ynorm
    return ynorm / anorm, hits


def random_r(rng, n):
    r = [[F(0)] * (n + 1) for _ in range(n + 1)]
    band = rng.randint(1, n - 1)
    for j in range(1, n + 1):
        r[j][j] = F(rng.choice([2, 3, 5]))
        for i in range(max(1, j - band), j):
            r[i][j] = F(rng.randint(-4, 4))
    return r


def main():
    rng = random.Random(920)
    branches = {"scale R'w=e", "s < sm", "scale Ry=w", "scale R'v=y", "scale Rz=v"}
    chosen, seen = [], set()
    while len(chosen) < 8:
        n = rng.randint(3, NMAX)
        r = random_r(rng, n)
        try:
            value, hits = rcond(r, n)
        except NearTie:
            continue
        if hits - seen or (seen == branches and len(chosen) < 8 and hits):
            chosen.append((n, r, value, sorted(hits)))
            seen |= hits
    print("# made by linpack_po_rcond.py, exact rational trace; do not edit")
    print("# n, then R(i,j) for i <= j by columns, zero-padded to n = 6; then rcond")
    for n, r, value, hits in chosen:
        print("# branches: " + ", ".join(hits))
        cells = [repr(float(r[i][j])) for j in range(1, n + 1) for i in range(1, j + 1)]
        cells += ["0.0"] * (NMAX * (NMAX + 1) // 2 - len(cells))
        print(",".join([str(n)] + cells + [repr(float(value))]))


main()
