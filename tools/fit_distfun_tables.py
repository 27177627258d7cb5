"""Fits the polynomial tables of distfun_normal.cpp and distfun_lgamma.cpp.

Run: python3 tools/fit_distfun_tables.py            the C++ tables on stdout
     python3 tools/fit_distfun_tables.py --check    also each row, evaluated in double by
                                                    Horner, against mpmath (on stderr)

Each row is a polynomial in its own variable v, highest power first, fitted by weighted
least squares at Chebyshev points at 60 digits. The coefficients are rounded to double one
at a time from the constant term up, the higher ones refitted after each rounding, so that
the rounded polynomial stays close to the function. Output is deterministic.

Tables: function of v, and the interval of v each row is used on.
  kErfSmall[n], n = 0..4      erf(sqrt(s)) / sqrt(s), s = n + v     [0, 1); [0, 0.84] for n = 4
  kErfLarge[n], n = 0..4      erfc(a)^(1/16), a = n + 2 + v         [0, 1); [0.2, 1) for n = 0,
                                                                    [0, 0.9] for n = 4
  kLogGammaMid[n], n = 0..4   lgamma(n + 3.5 + v)                   [-0.5, 0.5); [0, 0.5) for n = 0
  kLogGammaLow[r], r = 0..6   lgamma(x), x - 4.5 / (x + 0.5)        [-0.5, 0.5);
                                = r - 3.5 + v                       [-0.5, -0.125) for r = 6
  kRecipGamma[1]              1 / Gamma(1 + x), v = x               [0.25, 0.5)
kRecipGamma[0] (x < 0.25) is printed as it stands and only checked. The rows of
kLogGammaLow holding the zeros of lgamma (x = 1 and 2) are fitted for absolute error.
"""
import sys

import mpmath as mp

mp.mp.dps = 60
EPS = 2.0 ** -52

# Row 0 of the reciprocal gamma series, for x < 0.25: kept as it stands, only checked here.
RECIP_ROW0 = [9.967270908702825e-05, -0.00019831672170162227, -0.0011708531534962581,
              0.007220128109483195, -0.00962213009367803, -0.04219772092994235,
              0.1665386106524361, -0.04200263501129018, -0.6558780715206193,
              0.5772156649015352, 1.0]


def horner(coefs, v):
    """The C++ evaluation, in double: highest power first, no fused multiply-add."""
    s = coefs[0]
    for c in coefs[1:]:
        s = s * v + c
    return s


def erf_small(n):
    def f(v):
        s = n + mp.mpf(v)
        if s == 0:
            return 2 / mp.sqrt(mp.pi)
        z = mp.sqrt(s)
        return mp.erf(z) / z
    return f


def erf_large(n):
    return lambda v: mp.erfc(n + 2 + mp.mpf(v)) ** (mp.mpf(1) / 16)


def lgamma_mid(n):
    return lambda v: mp.loggamma(n + mp.mpf(3.5) + mp.mpf(v))


def warped_x(y):
    """The x > 0.5 with x - 4.5 / (x + 0.5) == y."""
    return ((y - mp.mpf(0.5)) + mp.sqrt(y * y + y + mp.mpf(18.25))) / 2


def lgamma_low(r):
    return lambda v: mp.loggamma(warped_x(r - mp.mpf(3.5) + mp.mpf(v)))


def recip_gamma(x):
    return 1 / mp.gamma(1 + mp.mpf(x))


def cheb_points(lo, hi, m):
    lo, hi = mp.mpf(lo), mp.mpf(hi)
    pts = [(lo + hi) / 2 + (hi - lo) / 2 * mp.cos(mp.pi * (2 * i + 1) / (2 * m)) for i in range(m)]
    return pts + [lo, hi]  # mpmath's Householder step needs a non-zero first row


def fit_row(func, lo, hi, ncoef, weight):
    """Rounded coefficients, highest power first, of a weighted least-squares fit."""
    pts = cheb_points(lo, hi, 10 * ncoef)
    vals = [func(v) for v in pts]
    wts = [weight(fv) for fv in vals]
    fixed = []  # rounded coefficients of v^0, v^1, ...
    for j in range(ncoef):
        rows, rhs = [], []
        for v, fv, w in zip(pts, vals, wts):
            rest = fv - sum(c * v ** i for i, c in enumerate(fixed))
            rows.append([w * v ** k for k in range(j, ncoef)])
            rhs.append(w * rest)
        sol, _ = mp.qr_solve(mp.matrix(rows), mp.matrix(rhs))
        fixed.append(float(sol[0]))
    return fixed[::-1]


def relative(fv):
    return 1 / abs(fv)


def near_zero(fv):
    # lgamma has zeros at 1 and 2: relative weight away from them, absolute near them.
    return 1 / max(abs(fv), mp.mpf("0.05"))


def check_row(name, coefs, func, lo, hi, npts=4000):
    """Largest error of the double Horner value at npts doubles spread over [lo, hi]."""
    worst_rel, worst_abs = 0.0, 0.0
    for i in range(npts + 1):
        v = lo + (hi - lo) * i / npts
        want = func(v)
        err = abs(mp.mpf(horner(coefs, v)) - want)
        worst_abs = max(worst_abs, float(err))
        if abs(want) >= 0.05:  # near the zeros of lgamma only the absolute error counts
            worst_rel = max(worst_rel, float(err / abs(want)))
    print(f"{name}: max rel {worst_rel / EPS:6.2f} eps, max abs {worst_abs:.2e}", file=sys.stderr)


def packed(items, first, indent, last, width=100):
    """Lines of comma-separated items filled to width, as clang-format lays them out."""
    lines, line = [], first
    for i, item in enumerate(items):
        text = item + (last if i == len(items) - 1 else ",")
        if line.strip() and len(line) + 1 + len(text) > width and line != first:
            lines.append(line)
            line = indent + text
        else:
            line = line + ("" if line == first else " ") + text
    return lines + [line]


def print_table(cname, comment, rows):
    print(f"// {comment}")
    print(f"constexpr double {cname}[{len(rows)}][{len(rows[0])}] = {{")
    for row in rows:
        print("\n".join(packed([repr(c) for c in row], "    {", "     ", "},")))
    print("};")


def main():
    check = "--check" in sys.argv[1:]
    # (file, C name, comment, [(function, lo, hi)], coefficients per row, weight)
    tables = [
        ("distfun_normal.cpp", "kErfSmall",
         "erf(a) / a, a < 2.2: row floor(a^2), polynomial in frac(a^2).",
         [(erf_small(n), 0.0, 0.845 if n == 4 else 1.0) for n in range(5)], 13, relative),
        ("distfun_normal.cpp", "kErfLarge",
         "erfc(a)^(1/16), 2.2 <= a < 6.9: row floor(a) - 2, polynomial in frac(a).",
         [(erf_large(n), 0.19 if n == 0 else 0.0, 0.905 if n == 4 else 1.0) for n in range(5)],
         13, relative),
        ("distfun_lgamma.cpp", "kLogGammaMid",
         "lgamma(x), 3.5 <= x < 8: row floor(x) - 3, polynomial in x - (floor(x) + 0.5).",
         [(lgamma_mid(n), 0.0 if n == 0 else -0.5, 0.5) for n in range(5)], 13, relative),
        ("distfun_lgamma.cpp", "kLogGammaLow",
         "lgamma(x), 0.5 < x < 3.5: y = x - 4.5 / (x + 0.5), row r = floor(y + 4),\n"
         "// polynomial in y - (r - 3.5).",
         [(lgamma_low(r), -0.5, -0.12 if r == 6 else 0.5) for r in range(7)], 14, near_zero),
        ("distfun_lgamma.cpp", "kRecipGamma",
         "Q(x) = 1 / Gamma(1 + x), polynomial in x: row 0 for x < 0.25 (kept as it stands,\n"
         "// not refitted), row 1 for 0.25 <= x < 0.5.",
         [(recip_gamma, 0.0, 0.25), (recip_gamma, 0.25, 0.5)], 11, relative),
    ]
    current = None
    for fname, cname, comment, rows, ncoef, weight in tables:
        if fname != current:
            current = fname
            print(f"// ---- {fname}")
            print("// Written by tools/fit_distfun_tables.py "
                  f"(mpmath {mp.__version__}); do not edit.")
        coefs = []
        for func, lo, hi in rows:
            keep = cname == "kRecipGamma" and not coefs
            coefs.append(RECIP_ROW0 if keep else fit_row(func, lo, hi, ncoef, weight))
            if check:
                check_row(f"{cname}[{len(coefs) - 1}] on [{lo}, {hi}]", coefs[-1], func, lo, hi)
        print_table(cname, comment, coefs)


if __name__ == "__main__":
    main()
