#!/usr/bin/env python3
"""Writes operands and results of the long arithmetic, computed with Python's integers, a case a line:
  reduction NA NM K A M MONT RESULT    A and RESULT of the larger of NA and NM limbs
  power E1 E2 TABLE RESULT OTHER       g^E1 * y^E2 * 2^512 mod p, with p added where OTHER holds it
  inverse X RESULT
  signature KEY SIGNATURE DIGEST CODE  the blobs start in the second byte, so at odd addresses
Each is a big-endian hexadecimal number of whole limbs, tables and blobs too.
usage: vectors.py DOMAIN_FILE
"""
import random
import re
import sys

domain = dict(re.findall(r"^\s*([pqg])\s*=\s*(\w+)", open(sys.argv[1]).read(), re.M))
p, q, g = (int(domain[name], 16) for name in "pqg")
rng = random.Random(186)
R = 1 << 512


def hexadecimal(limbs, *numbers):
    return " ".join(f"{x:0{4 * limbs}x}" for x in numbers)


def operand(bits):
    """Any number of at most `bits` bits: random, or made of long runs, or one of the extremes."""
    kind = rng.randrange(10)
    if kind == 0:
        return rng.choice([0, 1, (1 << bits) - 1, (1 << bits) - rng.randint(1, 1 << 16)]) % (1 << bits)
    if kind < 6:
        return rng.getrandbits(bits)
    runs = "".join(rng.choice("01") * rng.randint(1, 40) for _ in range(bits))
    return int(runs[:bits], 2)


def inverse(x, m):
    return pow(x, -1, m) if m > 1 else 0


def montgomery_constant(m):
    return -inverse(m, 1 << 16) % (1 << 16)


def reduced(a, m, k):
    """(a + U*m) / 2^(16k) for the U below 2^(16k) that makes the division exact."""
    r = 1 << 16 * k
    return (a + -a * inverse(m, r) % r * m) // r


def reduction():
    na = rng.randint(1, 40)
    nm, k = rng.choice([na, rng.randint(1, 34)]), rng.choice([na, rng.randint(0, 40)])
    n = max(na, nm)
    a, m = operand(16 * n), operand(16 * nm) | 1
    print("reduction", hexadecimal(1, na, nm, k), hexadecimal(n, a), hexadecimal(nm, m),
          hexadecimal(1, montgomery_constant(m)), hexadecimal(n, reduced(a, m, k)))


def form(a):
    """The Montgomery form of a residue modulo p, at times the one above p."""
    x = a * R % p
    return x + p if x + p < R and rng.randrange(2) else x


def joined(bits, numbers):
    return sum(x << bits * i for i, x in enumerate(numbers))


def power(e1, e2):
    y = operand(512) % p  # of any order
    table = [form(pow(y, (2 * k + 1) << 40 * j, p)) for j in range(4) for k in range(2)]
    result = pow(g, e1, p) * pow(y, e2, p) * R % p
    other = result + p if result + p < R else result
    print("power", hexadecimal(10, e1, e2), hexadecimal(256, joined(512, table)),
          hexadecimal(32, result, other))


def single_window(entry):
    """The power is the table's entry, any number of 512 bits."""
    table = [R - 1 - i for i in range(8)]
    e2 = (1, 3)[entry % 2] << 40 * (entry // 2)
    print("power", hexadecimal(10, 0, e2), hexadecimal(256, joined(512, table)),
          hexadecimal(32, table[entry], table[entry]))


def inversion(x):
    print("inverse", hexadecimal(10, x, 0 if x % q == 0 else inverse(x, q)))


def judged(key, r, s, digest, code):
    """A number out of range decides the code, and that of r comes first."""
    for x in (s, r):
        code = 0x7707 if x >= q else 0x707 if x == 0 else code
    print("signature", hexadecimal(129, key << 8), hexadecimal(21, joined(160, [r, s]) << 8),
          hexadecimal(10, digest), hexadecimal(1, code))


def signature(digest):
    """FIPS 186, section 5, over any digest integer of 160 bits; then with another digest."""
    r = s = 0
    while r == 0 or s == 0:
        x, k = (operand(160) % (q - 1) + 1 for _ in range(2))
        r = pow(g, k, p) % q
        s = inverse(k, q) * (digest + x * r) % q
    key = joined(512, [form(pow(g, x << 40 * j, p)) for j in range(4)])
    judged(key, r, s, digest, 0)
    judged(key, r, s, digest ^ 1 << rng.randrange(160), 0xF0F)
    return key, r, s


for _ in range(1500):
    reduction()
power(0, 0)
for _ in range(150):
    power(*(rng.choice([operand(160), 1 << rng.randrange(160)]) for _ in range(2)))
for number in range(8):
    single_window(number)
for number in [0, 1, 2, q - 1, q, q + 1, (1 << 160) - 1, *(1 << i for i in range(160))]:
    inversion(number)
for shift in range(160):  # the division of numbers with equal heads
    inversion(q - rng.getrandbits(shift))
    inversion((q >> shift) + rng.randrange(2))
for _ in range(3000):
    inversion(operand(rng.randint(1, 160)))
# A digest of 0 makes the exponent of g zero; one of q or more is used as it is.
for message in [0, 1, q - 1, q, q + 1, (1 << 160) - 1, *(operand(160) for _ in range(300))]:
    public_key, valid_r, valid_s = signature(message)
for wrong_r in [valid_r, 0, 1, q - 1, q, q + 1, (1 << 160) - 1]:
    for wrong_s in [0, 1, q - 1, q, q + 1, (1 << 160) - 1]:
        judged(public_key, wrong_r, wrong_s, message, 0xF0F)
