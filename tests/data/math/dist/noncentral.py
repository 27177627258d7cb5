"""Non-central chi-square, F and t references for distfun_noncentral_test.cpp.

Run: python3 noncentral.py > noncentral.csv   (re-running reproduces the file byte for byte)
Each input is a double; mpmath.mpf(float) takes its exact value, printed with repr.
kind 0, chi-square: x,df,lambda -> P(X <= x) as the Poisson(lambda / 2) mixture of the
  regularised incomplete gamma P(df / 2 + i, x / 2), every index with weight above 1e-40.
kind 1, F: x,df1,df2,lambda -> the same mixture of I_y(df1 / 2 + i, df2 / 2), y = x df1 /
  (x df1 + df2).
kind 2, t: t,df,delta -> P(T <= t): Phi(-delta) plus the mixture of I_x(j + 1/2, df / 2)
  and I_x(j + 1, df / 2), x = t^2 / (t^2 + df), for t >= 0; 1 - P(T <= -t; -delta) below.
  Last column: the density, (df / t) (P(T' <= t sqrt(1 + 2 / df)) - P(T <= t)) with T' on
  df + 2 degrees of freedom, from the same series at 90 digits; nan where below 1e-50.
  Rows with P below 1e-60 are left out (the series' absolute accuracy).
The mixtures step the incomplete functions by their recurrences at 90 digits. Each
distribution value is checked here by a second route, quadrature of the mixture at 30
digits (chi-square: its Bessel-function density; F: the non-central chi-square of
x df1 v / df2 against the chi-square(df2) density of v; t: Phi(t sqrt(v / df) - delta)
against the chi-square(df) density), and the script stops if they differ by 1e-15.
"""
import mpmath as mp

mp.mp.dps = 50


def window(h):
    """Poisson(h) indices with weight above 1e-40 of the peak, and the weights."""
    sd = mp.sqrt(h) if h > 0 else mp.mpf(0)
    i0 = int(max(0, mp.floor(h - 20 * sd - 30)))
    i1 = int(mp.ceil(h + 20 * sd + 60))
    return i0, i1


def mix_gamma(u, a, h):
    with mp.workdps(90):
        if h == 0:
            return mp.gammainc(a, 0, u, regularized=True)
        i0, i1 = window(h)
        P = mp.gammainc(a + i0, 0, u, regularized=True)
        w = mp.exp(-h + i0 * mp.log(h) - mp.loggamma(i0 + 1)) if i0 > 0 else mp.exp(-h)
        s = 0
        for i in range(i0, i1 + 1):
            s += w * P
            P -= mp.exp((a + i) * mp.log(u) - u - mp.loggamma(a + i + 1))
            w *= h / (i + 1)
        return s


def ibeta_step(y, a, b):
    """I_y(a, b) - I_y(a + 1, b)."""
    return mp.exp(a * mp.log(y) + b * mp.log1p(-y) + mp.loggamma(a + b) - mp.loggamma(a + 1)
                  - mp.loggamma(b))


def mix_beta(y, a, b, h):
    with mp.workdps(90):
        if h == 0:
            return mp.betainc(a, b, 0, y, regularized=True)
        i0, i1 = window(h)
        I = mp.betainc(a + i0, b, 0, y, regularized=True)
        w = mp.exp(-h + i0 * mp.log(h) - mp.loggamma(i0 + 1)) if i0 > 0 else mp.exp(-h)
        s = 0
        for i in range(i0, i1 + 1):
            s += w * I
            I -= ibeta_step(y, a + i, b)
            w *= h / (i + 1)
        return s


def nct_nonneg(t, df, d):
    with mp.workdps(90):
        x = t * t / (t * t + df)
        b = df / 2
        h = d * d / 2
        _, j1 = window(h)
        Io = mp.betainc(mp.mpf(0.5), b, 0, x, regularized=True)
        Ie = mp.betainc(mp.mpf(1), b, 0, x, regularized=True)
        s = mp.ncdf(-d)
        for j in range(0, j1 + 1):
            pj = mp.exp(-h + j * mp.log(h) - mp.loggamma(j + 1)) / 2
            qj = d * mp.exp(-h + j * mp.log(h) - mp.loggamma(j + mp.mpf(1.5))) / (2 * mp.sqrt(2))
            s += pj * Io + qj * Ie
            Io -= ibeta_step(x, j + mp.mpf(0.5), b)
            Ie -= ibeta_step(x, j + mp.mpf(1), b)
        return s


def nct(t, df, d):
    return nct_nonneg(t, df, d) if t >= 0 else 1 - nct_nonneg(-t, df, -d)


def chi_pdf(v, df):
    return mp.exp((df / 2 - 1) * mp.log(v) - v / 2 - df / 2 * mp.log(2) - mp.loggamma(df / 2))


def check(a, b, what):
    if abs(a - b) > mp.mpf(10)**-15:
        raise SystemExit(f"second route disagrees at {what}: {a} {b}")


def v_points(df):
    m, s = df, mp.sqrt(2 * df)
    return [0] + [p for p in (m - 8 * s, m - 2 * s, m, m + 2 * s, m + 8 * s) if p > 0] + [mp.inf]


print(f"# made by noncentral.py, mpmath {mp.__version__}, 50 digits; do not edit")
print("# kind,x,df(1),df2 or delta,lambda,P,density")
for df in (1.0, 4.5, 50.0):
    for lam in (0.0, 0.5, 10.0, 100.0, 1e3, 1e4):
        sd = float(mp.sqrt(2 * (df + 2 * lam)))
        for z in (-6.0, -2.0, 0.0, 2.0, 6.0):
            x = round(df + lam + z * sd, 3)
            if x <= 0:
                continue
            X, D, L = mp.mpf(x), mp.mpf(df), mp.mpf(lam)
            p = mix_gamma(X / 2, D / 2, L / 2)
            if lam > 0:
                with mp.workdps(30):
                    dens = lambda v: (mp.exp(-(v + L) / 2 + (D / 4 - mp.mpf(0.5)) * mp.log(v / L))
                                      * mp.besseli(D / 2 - 1, mp.sqrt(L * v)) / 2)
                    pts = [0] + [q for q in (df + lam - 8 * sd, df + lam) if 0 < q < x] + [X]
                    check(mp.quad(dens, pts), p, ("chi", x, df, lam))
            print(f"0,{x!r},{df!r},0.0,{lam!r},{mp.nstr(p, 20)},0")
for df1, df2 in ((1.0, 5.0), (4.0, 20.0), (30.0, 2.5)):
    for lam in (0.0, 1.0, 10.0, 100.0, 1e3):
        for q in (0.2, 0.5, 1.0, 2.0):
            x = round((df1 + lam) / df1 * q * 2, 3)  # around the mean of the numerator
            X, D1, D2, L = mp.mpf(x), mp.mpf(df1), mp.mpf(df2), mp.mpf(lam)
            p = mix_beta(X * D1 / (X * D1 + D2), D1 / 2, D2 / 2, L / 2)
            if lam <= 100:
                with mp.workdps(30):
                    f = lambda v: mix_gamma(X * D1 * v / D2 / 2, D1 / 2, L / 2) * chi_pdf(v, D2)
                    check(mp.quad(f, v_points(D2)), p, ("F", x, df1, df2, lam))
            print(f"1,{x!r},{df1!r},{df2!r},{lam!r},{mp.nstr(p, 20)},0")
for df in (1.0, 10.0, 100.0):
    for d in (-3.0, 2.0, 10.0, 100.0):
        for t in (-5.0, 0.7, 9.5, 110.0):
            T, D, DL = mp.mpf(t), mp.mpf(df), mp.mpf(d)
            p = nct(T, D, DL)
            with mp.workdps(30):
                g = lambda v: mp.ncdf(T * mp.sqrt(v / D) - DL) * chi_pdf(v, D)
                pts = v_points(D)
                if abs(T) > 0:
                    c = float(D * (DL / T)**2)
                    pts = sorted(set(pts[:-1] + [c * s for s in (0.25, 0.5, 1, 2, 4)])) + [mp.inf]
                check(mp.quad(g, pts), p, ("t", t, df, d))
            with mp.workdps(90):
                dens = D / T * (nct(T * mp.sqrt(1 + 2 / D), D + 2, DL) - p)
            if p < mp.mpf(10)**-60:
                continue
            dens = mp.nstr(dens, 20) if dens > mp.mpf(10)**-50 else "nan"
            print(f"2,{t!r},{df!r},{d!r},0.0,{mp.nstr(p, 20)},{dens}")
