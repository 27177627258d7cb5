"""Congruential stream references for uniform_test.cpp: state <- 397204094 state mod
(2^31 - 1), a state of 0 replaced by 1, value state 2^-31, in Python integers.

Run: python3 congruential.py > congruential.csv   (re-running reproduces the file byte for
byte). The seed is the starting state as ZRURandom keeps it, any 32-bit word.
"""
SEEDS = (1, 7, 34567, 2147483646, 2147483647, 2147483648, 4294967295)
STEPS = (1, 2, 3, 1000)

print("# made by congruential.py; do not edit")
print("# seed,step,state,value")
for seed in SEEDS:
    state = seed
    for step in range(1, max(STEPS) + 1):
        state = state * 397204094 % 2147483647 or 1
        if step in STEPS:
            print(f"{seed},{step},{state},{state * 2.0**-31!r}")
