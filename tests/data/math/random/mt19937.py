"""MT19937 references for uniform_test.cpp, from numpy's RandomState and its MT19937.

Run: python3 mt19937.py   (Debian's python3-numpy) writes the four mt19937_*.csv files beside it;
re-running reproduces them byte for byte. A RandomState seeded with an integer in [0, 2^32) is seeded by init_genrand,
one seeded with an array of uint32 by init_by_array; random_raw gives the tempered words and
random_sample the 53-bit doubles (a >> 5) 2^26 + (b >> 6), over 2^53.

Files and rows:
  mt19937_words.csv     seed,index,word,word/(2^32-1),word 2^-32,(word+0.5) 2^-32
  mt19937_keys.csv      key id,index,word     (the keys are listed in KEYS)
  mt19937_res53.csv     seed,index,double
  mt19937_doubles.csv   double seed,index,double  (the three-word key of a double, made with frexp)
"""
import math

import numpy as np

SEEDS = (5489, 0, 1, 34567, 4294967295)
INDICES = list(range(0, 8)) + list(range(622, 627)) + list(range(1246, 1250)) + [9999]
KEYS = {
    0: [0x123, 0x234, 0x345, 0x456],
    1: [7, 11],  # numpy squeezes a one-word key to init_genrand
    2: [(i * 2654435761 + 12345) % 2**32 for i in range(700)],  # longer than the state
}
DOUBLE_SEEDS = (1.5, -1.5, 3e9, -3.0, 0.1, 2.0**31, 1e-300, -0.75, 3.0,
                -1.7976931348623157e308, 1.7976931348623157e308)


def words(state, n):
    return [int(w) for w in state._bit_generator.random_raw(n)]


def double_key(d):
    """The key of a double: sign, exponent count and |d| >= 1, then 26 and 27 fraction bits."""
    a = abs(d)
    if a == 0.0:
        f, c = 0.0, 0
    else:
        f, e = math.frexp(a)  # a = f 2^e, 0.5 <= f < 1
        c = e if a >= 1.0 else -e
    k0 = 2 * (int(d < 0) + 2 * (2 * c + int(a >= 1.0))) + int(d == 0.0)
    f *= 67108864.0
    k1 = int(f)
    f = (f - k1) * 134217728.0
    return [k0, k1, int(f)]


def stream(d):
    if d == math.floor(d) and 0 <= d <= 2147483647:
        return np.random.RandomState(int(d))
    return np.random.RandomState(np.array(double_key(d), dtype=np.uint32))


def write(name, header, rows):
    with open(name, "w") as out:
        out.write(f"# made by mt19937.py, numpy {np.__version__}; do not edit\n# {header}\n")
        out.writelines(row + "\n" for row in rows)


rows = []
for seed in SEEDS:
    w = words(np.random.RandomState(seed), INDICES[-1] + 1)
    rows += [f"{seed},{i},{w[i]},{w[i] / 4294967295.0!r},{w[i] * 2.0**-32!r},"
             f"{(w[i] + 0.5) * 2.0**-32!r}" for i in INDICES]
write("mt19937_words.csv", "seed,index,word,closed,closedopen,open", rows)
rows = []
for kid, key in KEYS.items():
    w = words(np.random.RandomState(np.array(key, dtype=np.uint32)), 1250)
    rows += [f"{kid},{i},{w[i]}" for i in INDICES[:-1]]
write("mt19937_keys.csv", "key id,index,word", rows)
rows = []
for seed in (5489, 34567):
    x = np.random.RandomState(seed).random_sample(700)
    rows += [f"{seed},{i},{float(x[i])!r}" for i in (0, 1, 2, 311, 312, 699)]
write("mt19937_res53.csv", "seed,index,value", rows)
rows = []
for d in DOUBLE_SEEDS:
    x = stream(d).random_sample(4)
    rows += [f"{d!r},{i},{float(x[i])!r}" for i in range(4)]
write("mt19937_doubles.csv", "double seed,index,value", rows)
