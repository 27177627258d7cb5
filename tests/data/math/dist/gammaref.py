"""Regularised incomplete gamma P(a, h), Q(a, h) and its inverse at 60 digits, shared by
cdfchi.py, idfchi.py and gamma.py. Not run by itself.

mpmath's gammainc serves shapes below 1e5. From 1e5 on it is not trusted to converge, so
Pearson's series (h < a + 1) or Legendre's continued fraction (h >= a + 1, modified Lentz)
is summed here, each times exp(a log h - h - loggamma), until a term changes nothing at
60 digits; the other tail is 1 minus that.
"""
import mpmath as mp

mp.mp.dps = 60
BIG_SHAPE = 1e5


def _series(a, h):
    """P(a, h) by Pearson's series."""
    term = s = mp.mpf(1)
    k = 0
    while True:
        k += 1
        term *= h / (a + k)
        s += term
        if term < s * mp.mpf(10) ** -62:
            break
    return mp.exp(a * mp.log(h) - h - mp.loggamma(a + 1)) * s


def _fraction(a, h):
    """Q(a, h) by Legendre's continued fraction."""
    tiny = mp.mpf(10) ** -300
    b = h + 1 - a
    c = 1 / tiny
    d = 1 / b
    f = d
    i = 0
    while True:
        i += 1
        an = -i * (i - a)
        b += 2
        d = an * d + b
        d = 1 / (d if d != 0 else tiny)
        c = b + an / c
        if c == 0:
            c = tiny
        delta = c * d
        f *= delta
        if abs(delta - 1) < mp.mpf(10) ** -62:
            break
    return mp.exp(a * mp.log(h) - h - mp.loggamma(a)) * f


def tails(a, h):
    """(P, Q) for exact mpf shape a > 0 and point h > 0."""
    a, h = mp.mpf(a), mp.mpf(h)
    if a < BIG_SHAPE:
        return (mp.gammainc(a, 0, h, regularized=True),
                mp.gammainc(a, h, mp.inf, regularized=True))
    if h < a + 1:
        p = _series(a, h)
        return p, 1 - p
    q = _fraction(a, h)
    return 1 - q, q


def density(a, h):
    """The gamma density h^(a-1) exp(-h) / Gamma(a) at rate 1."""
    a, h = mp.mpf(a), mp.mpf(h)
    return mp.exp((a - 1) * mp.log(h) - h - mp.loggamma(a))


def quantile(a, target, upper=False):
    """The h with P(a, h) = target (Q(a, h) = target when upper): Newton on u = log h
    against the log of the tail, kept inside a bracket, to 50 digits."""
    a, target = mp.mpf(a), mp.mpf(target)
    logt = mp.log(target)

    def f(u):  # (log tail - log target, increasing in u; its slope)
        h = mp.exp(u)
        p, q = tails(a, h)
        tail = q if upper else p
        value = (logt - mp.log(q)) if upper else (mp.log(p) - logt)
        return value, h * density(a, h) / tail

    # Start from Wilson-Hilferty; z is the normal quantile of the lower tail.
    lower = 1 - target if upper else target
    if 1e-300 < lower < 1:
        z = mp.sqrt(2) * mp.erfinv(2 * lower - 1)
    else:
        z = mp.sqrt(-2 * logt) * (1 if upper else -1)
    w = 1 - 1 / (9 * a) + z / (3 * mp.sqrt(a))
    u = mp.log(a * w ** 3) if w > 0 else (mp.log(target * mp.gamma(a + 1)) / a)
    lo, hi = -mp.inf, mp.inf
    for _ in range(500):
        fu, slope = f(u)
        if fu == 0:
            return mp.exp(u)
        if fu > 0:
            hi = u
        else:
            lo = u
        un = u - fu / slope
        if not (lo < un < hi):  # outside the bracket: halve it, or widen an open end
            if mp.isinf(lo):
                un = hi - 2 * max(1, abs(hi))
            elif mp.isinf(hi):
                un = lo + 2 * max(1, abs(lo))
            else:
                un = (lo + hi) / 2
        if abs(un - u) < mp.mpf(10) ** -52 * max(1, abs(u)):
            return mp.exp(un)
        u = un
    raise RuntimeError(f"no convergence: a={a} target={target} upper={upper}")
