"""60-digit regularised incomplete beta and its inverse, shared by the beta, t and F
reference scripts of this folder (cdfbeta.py, idfbeta.py, cdft.py, idft.py, cdff.py,
idff.py).

Both tails come back together, each summed as a lower tail where mpmath's betainc
converges, so a tail of 1e-300 keeps its digits. Where betainc gives up (shapes of about
1e4 and up near the mean) the continued fraction is summed here on its side of the mean,
and the other tail is 1 minus that; check() holds the two methods to 1e-45 where both
work.
"""
import mpmath as mp
from mpmath.libmp import NoConvergence

DPS = 60


def _log_front(x, y, a, b):
    # log of x^a y^b / (a B(a, b))
    return (a * mp.log(x) + b * mp.log(y) - mp.log(a)
            - (mp.loggamma(a) + mp.loggamma(b) - mp.loggamma(a + b)))


def _fraction(x, y, a, b):
    """I_x(a, b) for x < (a + 1) / (a + b + 2): the continued fraction, modified Lentz."""
    tiny = mp.mpf(10) ** (-2 * DPS - 100)
    eps = mp.mpf(10) ** (-DPS - 2)
    c, d = mp.mpf(1), 1 - (a + b) * x / (a + 1)
    d = 1 / (d if abs(d) > tiny else tiny)
    h = d
    for m in range(1, 10 ** 7):
        for num in (m * (b - m) * x / ((a + 2 * m - 1) * (a + 2 * m)),
                    -(a + m) * (a + b + m) * x / ((a + 2 * m) * (a + 2 * m + 1))):
            d = 1 + num * d
            d = 1 / (d if abs(d) > tiny else tiny)
            c = 1 + num / c
            c = c if abs(c) > tiny else tiny
            h *= d * c
        if abs(d * c - 1) < eps:
            return mp.exp(_log_front(x, y, a, b)) * h
    raise RuntimeError("continued fraction did not converge")


def ibeta(x, y, a, b, own=False):
    """(I_x(a, b), 1 - I_x(a, b)) for x + y = 1, both given exactly; own: no mpmath.

    mpmath sums each tail as a lower one, I_x(a, b) and I_y(b, a); the fraction gives the
    tail on its side, x < (a + 1) / (a + b + 2), and the other is 1 minus that.
    """
    with mp.workdps(DPS):
        x, y, a, b = mp.mpf(x), mp.mpf(y), mp.mpf(a), mp.mpf(b)
        if x <= 0:
            return mp.mpf(0), mp.mpf(1)
        if y <= 0:
            return mp.mpf(1), mp.mpf(0)
        if not own:
            try:
                return (mp.betainc(a, b, 0, x, regularized=True),
                        mp.betainc(b, a, 0, y, regularized=True))
            except (NoConvergence, ValueError):
                pass
        if x * (a + b + 2) < a + 1:
            lo = _fraction(x, y, a, b)
            return lo, 1 - lo
        hi = _fraction(y, x, b, a)
        return 1 - hi, hi


def quantile(p, a, b):
    """(x, y), y = 1 - x, with I_x(a, b) = p, 0 < p < 1 exact; each side to 1e-50.

    Newton on the log of the smaller tail in s = log(x / y), kept inside a bracket.
    """
    with mp.workdps(DPS):
        p, a, b = mp.mpf(p), mp.mpf(a), mp.mpf(b)
        upper = p > mp.mpf(0.5)
        target = mp.log(1 - p if upper else p)
        log_beta = mp.loggamma(a) + mp.loggamma(b) - mp.loggamma(a + b)

        def point(s):
            return 1 / (1 + mp.exp(-s)), 1 / (1 + mp.exp(s))

        def h(s):  # log tail - target, and its derivative in s
            x, y = point(s)
            lo, hi = ibeta(x, y, a, b)
            tail = hi if upper else lo
            dens = mp.exp(a * mp.log(x) + b * mp.log(y) - log_beta)  # f(x) x y
            return mp.log(tail) - target, (-dens if upper else dens) / tail

        def side(s):  # +1 once s is at or past the root
            v = h(s)[0]
            return (v < 0) if upper else (v > 0)

        lo_s, hi_s = mp.mpf(-1), mp.mpf(1)
        while side(lo_s):
            lo_s *= 2
        while not side(hi_s):
            hi_s *= 2
        s = (lo_s + hi_s) / 2
        for _ in range(400):
            v, dv = h(s)
            if side(s):
                hi_s = s
            else:
                lo_s = s
            step = v / dv
            t = s - step
            if not lo_s < t < hi_s:
                t = (lo_s + hi_s) / 2
            if abs(t - s) < mp.mpf(10) ** (-DPS + 5) * (1 + abs(s)):
                return point(t)
            s = t
        raise RuntimeError("quantile did not converge")


def check():
    """The fraction against mpmath where both work, and a quantile round trip."""
    with mp.workdps(DPS):
        for x, a, b in ((0.3, 2.5, 7.5), (1e-5, 0.5, 50.0), (0.9, 0.1, 3.0),
                        (0.49, 1000.0, 1000.0), (0.01, 3.0, 0.1)):
            x = mp.mpf(x)
            mine, theirs = ibeta(x, 1 - x, a, b, own=True), ibeta(x, 1 - x, a, b)
            for u, v in zip(mine, theirs):
                assert abs(u - v) <= mp.mpf(10) ** -45 * abs(v), (x, a, b, u, v)
        for p, a, b in ((0.3, 2.5, 7.5), (1e-30, 0.5, 5.0), (1 - 1e-12, 40.0, 0.3)):
            x, y = quantile(p, a, b)
            lo, hi = ibeta(x, y, a, b)
            got, want = (hi, 1 - mp.mpf(p)) if p > 0.5 else (lo, mp.mpf(p))
            assert abs(got - want) <= mp.mpf(10) ** -45 * want, (p, a, b)
