"""Normal distribution and density references for distfun_normal_test.cpp.

Run: python3 normal.py > normal.csv   (re-running reproduces the file byte for byte)
Each input is a double; mpmath.mpf(float) takes its exact value, printed with repr.
Rows with mean 0 and sd 1 are the standard normal.
"""
import mpmath as mp

mp.mp.dps = 50

# Both tails: the lower one down to Phi near 1e-307 (x = -37.5), the upper one to 8.3,
# where Phi rounds to 1.
standard = [-37.5, -37.25, -37.0, -35.0, -30.0, -25.0, -20.0, -15.0, -10.0, -8.3, -6.0,
            -1e-300, 1e-300, 1e-10, 8.3]
standard += [-5.0 + i * 0.0625 for i in range(161)] + [i * 0.3 - 37.4 for i in range(152)]
rows = [(x, 0.0, 1.0) for x in sorted(set(standard))]
# Other locations and scales.
rows += [(3.0, 1.0, 2.0), (-7.5, 2.5, 0.5), (1e-5, 0.0, 1e-6), (100.0, 99.0, 0.25),
         (-3.25e10, 1e10, 3e9), (0.3, 0.30000000000000004, 1e-17), (5.0, 5.0, 7.0),
         (-1e300, 1e300, 1e299)]

print(f"# made by normal.py, mpmath {mp.__version__}, 50 digits; do not edit")
print("# x,mean,sd,cdf,pdf")
for x, mean, sd in rows:
    z = (mp.mpf(x) - mp.mpf(mean)) / mp.mpf(sd)  # exact doubles, exact arithmetic
    pdf = mp.npdf(z) / mp.mpf(sd)
    print(f"{x!r},{mean!r},{sd!r},{mp.nstr(mp.ncdf(z), 25)},{mp.nstr(pdf, 25)}")
