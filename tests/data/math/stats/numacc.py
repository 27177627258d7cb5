"""NIST StRD univariate summary sets NumAcc1..NumAcc4 for meansxprod_test.cpp and
unistats_test.cpp.

Run: python3 numacc.py   (writes numacc1.csv .. numacc4.csv and numacc_cert.csv here;
re-running reproduces them byte for byte)

Source: NIST Statistical Reference Datasets, Univariate Summary Statistics,
https://www.itl.nist.gov/div898/strd/univ/homepage.html; each set's page (PAGE) is named
in its file. The data are the published decimal values, one to a line, as the doubles
nearest to them (printed with repr, so reading them back gives the very same doubles).
numacc_cert.csv holds, per set, the certified mean and standard deviation (divisor n - 1)
published with the data, and beside them the exact mean and standard deviation of the
doubles themselves, computed by mpmath at 50 digits: the decimal inputs are not doubles,
so the certified values carry the representation error of the data and bound the digits
any double algorithm can agree to.
"""
import os

import mpmath as mp

mp.mp.dps = 50

# (name, data as decimal strings, certified mean, certified standard deviation)
SETS = [
    ("numacc1", ["10000001", "10000003", "10000002"], "10000002", "1"),
    ("numacc2", ["1.2"] + ["1.1", "1.3"] * 500, "1.2", "0.1"),
    ("numacc3", ["1000000.2"] + ["1000000.1", "1000000.3"] * 500, "1000000.2", "0.1"),
    ("numacc4", ["10000000.2"] + ["10000000.1", "10000000.3"] * 500, "10000000.2", "0.1"),
]

PAGE = "https://www.itl.nist.gov/div898/strd/univ/data/{}.dat"

here = os.path.dirname(os.path.abspath(__file__))
header = f"# made by numacc.py, mpmath {mp.__version__}, 50 digits; do not edit\n"

cert = [header, "# set,certified mean,certified sd,exact mean of the doubles,exact sd of the doubles\n"]
for k, (name, data, mean, sd) in enumerate(SETS, start=1):
    values = [float(s) for s in data]
    with open(os.path.join(here, name + ".csv"), "w") as f:
        f.write(header)
        title = f"{name[:3].capitalize()}{name[3:6].capitalize()}{name[6:]}"
        f.write(f"# NIST StRD {title}: {len(values)} values, {PAGE.format(title)}\n")
        for v in values:
            f.write(f"{v!r}\n")
    exact = [mp.mpf(v) for v in values]  # mpf(float) is the exact double
    n = len(exact)
    m = mp.fsum(exact) / n
    s = mp.sqrt(mp.fsum((x - m) ** 2 for x in exact) / (n - 1))
    cert.append(f"{k},{mean},{sd},{mp.nstr(m, 25)},{mp.nstr(s, 25)}\n")

with open(os.path.join(here, "numacc_cert.csv"), "w") as f:
    f.writelines(cert)
