"""NIST StRD linear regression sets Longley, Norris, Pontius, Wampler1 for nist_regression_test.cpp.

Run: python3 nist_strd.py   (writes nist_longley.csv .. nist_wampler1.csv and
nist_strd_cert.csv here; re-running reproduces them byte for byte)

Reads NIST's own files, as installed by the Debian package gretl-data, and copies the data
rows as the decimal text of the file (the test reads them with strtod, as a procedure
would). nist_strd_cert.csv holds one row per set: the set number, each coefficient's
certified estimate and standard deviation in turn (B0 first), then the certified residual
standard deviation, again as the file prints them.
"""
import os
import re
import sys

SOURCE = "/usr/share/gretl/data/nist"
SETS = ["Longley", "Norris", "Pontius", "Wampler1"]  # set numbers 1 .. 4 in the cert file
PAGE = "https://www.itl.nist.gov/div898/strd/lls/data/{}.shtml"
MADE_BY = "# made by nist_strd.py from the NIST StRD file (Debian package gretl-data); do not edit\n"


def line_range(lines, label):
    """First and last line number (1-based) of the section the file's header names."""
    for line in lines[:10]:
        m = re.match(r"\s*" + label + r"\s+\(lines (\d+) to (\d+)\)", line)
        if m:
            return int(m.group(1)), int(m.group(2))
    sys.exit(f"no '{label}' line range in the header")


def read_set(name):
    path = os.path.join(SOURCE, name + ".dat")
    if not os.path.exists(path):
        sys.exit(f"{path} not found: apt-get install gretl-data")
    with open(path, encoding="ascii") as f:
        lines = [line.rstrip("\r\n") for line in f]
    first, last = line_range(lines, "Certified Values")
    cert = []  # (estimate, sd) text pairs, B0 first
    resid_sd = None
    for line in lines[first - 1 : last]:
        m = re.match(r"\s*B(\d+)\s+(\S+)\s+(\S+)\s*$", line)
        if m:
            if int(m.group(1)) != len(cert):
                sys.exit(f"{name}: parameters out of order")
            cert.append((m.group(2), m.group(3)))
        m = re.match(r"\s*Standard Deviation\s+(\S+)\s*$", line)
        if m:
            resid_sd = m.group(1)
    if not cert or resid_sd is None:
        sys.exit(f"{name}: certified values not found")
    first, last = line_range(lines, "Data")
    columns = lines[first - 2].split()
    if columns[0] != "Data:":
        sys.exit(f"{name}: no column names before the data")
    rows = [line.split() for line in lines[first - 1 : last]]
    if any(len(row) != len(columns) - 1 for row in rows):
        sys.exit(f"{name}: a data row has the wrong number of fields")
    return columns[1:], rows, cert, resid_sd


here = os.path.dirname(os.path.abspath(__file__))
cert_lines = [MADE_BY]
for number, name in enumerate(SETS, start=1):
    columns, rows, cert, resid_sd = read_set(name)
    with open(os.path.join(here, f"nist_{name.lower()}.csv"), "w", encoding="ascii", newline="\n") as f:
        f.write(MADE_BY)
        f.write(f"# NIST StRD {name}, {PAGE.format(name)}: {len(rows)} cases\n")
        f.write("# " + ",".join(columns) + "\n")
        for row in rows:
            f.write(",".join(row) + "\n")
    cert_lines.append(f"# set {number}: {name}, {PAGE.format(name)}\n")
    fields = [str(number)] + [text for pair in cert for text in pair] + [resid_sd]
    cert_lines.append(",".join(fields) + "\n")

cert_lines.insert(1, "# set,B0,sd of B0,B1,sd of B1,...,residual standard deviation\n")
with open(os.path.join(here, "nist_strd_cert.csv"), "w", encoding="ascii", newline="\n") as f:
    f.writelines(cert_lines)
