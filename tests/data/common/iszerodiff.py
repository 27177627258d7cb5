"""Tolerance-boundary cases for Value::IsZeroDiff in value_test.cpp.
Run: python3 iszerodiff.py > iszerodiff.csv

Python floats are IEEE doubles with correctly rounded operations, so the test
max(|a|, |b|) * (multiplier * 2.22045e-16) >= |a - b| is evaluated here with the same
roundings the C++ code must make. Every difference |a - b| is checked to be exact, and the
boundary rows are checked to sit exactly on the bound (the product equals the difference),
with the next multiplier below falling short.
"""
import math
from fractions import Fraction

EPSILON = 2.22045e-16
ULP1 = 2.0 ** -52  # spacing of doubles just above 1.0


def expected(a, b, m):
    diff = abs(a - b)
    assert Fraction(diff) == abs(Fraction(a) - Fraction(b)), (a, b)  # exact difference
    if diff == 0.0:
        return 1
    if a == 0.0 or b == 0.0:
        return 0
    return int(max(abs(a), abs(b)) * (m * EPSILON) >= diff)


rows = []
# Multiplier for which 1.0 * (m * EPSILON) rounds to exactly 2^-52 = |1 - (1 - 2^-52)|.
m_on = ULP1 / EPSILON
while m_on * EPSILON != ULP1:
    m_on = math.nextafter(m_on, 2.0 if m_on * EPSILON < ULP1 else 0.0)
m_below = math.nextafter(m_on, 0.0)
assert m_below * EPSILON < ULP1 < math.nextafter(m_on, 2.0) * EPSILON
just_under_one = 1.0 - ULP1
for a, b in ((1.0, just_under_one), (just_under_one, 1.0), (-1.0, -just_under_one)):
    rows.append((a, b, m_on, 1))  # on the bound: >= holds
    rows.append((a, b, m_below, 0))  # one multiplier step short
# The literal 2.22045e-16 lies above the machine epsilon 2^-52: one ulp passes at m = 1.
rows.append((1.0, 1.0 + ULP1, 1.0, None))
rows.append((1.0, 1.0 + 2 * ULP1, 1.0, None))
# Multiplier 100, as real equality uses: 100 steps of 2^-52 pass, 101 do not.
for scale in (1.0, 2.0 ** 1000, -(2.0 ** -1000)):
    rows.append((scale, scale * (1.0 + 100 * ULP1), 100.0, None))
    rows.append((scale, scale * (1.0 + 101 * ULP1), 100.0, None))
# Subnormals: the bound underflows to 0 at m = 1 but not at m = 1e16.
tiny = 5e-324
rows.append((tiny, 2 * tiny, 1.0, None))
rows.append((tiny, 2 * tiny, 1e16, None))

print("# made by iszerodiff.py; do not edit")
print("# a,b,multiplier,expected (1 true, 0 false)")
for a, b, m, want in rows:
    got = expected(a, b, m)
    assert want is None or got == want, (a, b, m)
    print(f"{a!r},{b!r},{m!r},{got}")
