#!/usr/bin/env python3
"""Writes operands and results of the long arithmetic, computed with Python's integers, a case a line:
  product N A B M MONT RESULT          all of N limbs
  reduction NA NM K A M MONT RESULT    A and RESULT of the larger of NA and NM limbs
  power E1 E2 TABLE RESULT             TABLE of 8; RESULT = g^E1 * y^E2 * 2^512 mod p, fully reduced
  inverse X RESULT
  signature KEY DIGEST R S             a valid one; KEY of 4; numbers as the blobs have them
  domain Q
Numbers are in big-endian hexadecimal of their full width, counts in decimal.
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


def product(n):
    a, b, m = operand(16 * n), operand(16 * n), operand(16 * n) | 1
    if rng.randrange(4) == 0:
        b = a
    result = reduced(a * b, m, n)
    if result >> 16 * n:
        result -= m
    print("product", n, hexadecimal(n, a, b, m), hexadecimal(1, montgomery_constant(m)),
          hexadecimal(n, result))


def reduction():
    na = rng.randint(1, 40)
    nm, k = rng.choice([na, rng.randint(1, 34)]), rng.choice([na, rng.randint(0, 40)])
    n = max(na, nm)
    a, m = operand(16 * n), operand(16 * nm) | 1
    print("reduction", na, nm, k, hexadecimal(n, a), hexadecimal(nm, m),
          hexadecimal(1, montgomery_constant(m)), hexadecimal(n, reduced(a, m, k)))


def form(a):
    """The Montgomery form of a residue modulo p, at times the one above p."""
    x = a * R % p
    return x + p if x + p < R and rng.randrange(2) else x


def power():
    e1, e2 = (rng.choice([operand(160), 1 << rng.randrange(160)]) for _ in range(2))
    y = operand(512) % p  # of any order
    table = [form(pow(y, (2 * k + 1) << 40 * j, p)) for j in range(4) for k in range(2)]
    print("power", hexadecimal(10, e1, e2), hexadecimal(32, *table),
          hexadecimal(32, pow(g, e1, p) * pow(y, e2, p) * R % p))


def inversion(x):
    print("inverse", hexadecimal(10, x, 0 if x % q == 0 else inverse(x, q)))


def signature(digest):
    """FIPS 186, section 5, over any digest integer of 160 bits."""
    r = s = 0
    while r == 0 or s == 0:
        x, k = (operand(160) % (q - 1) + 1 for _ in range(2))
        r = pow(g, k, p) % q
        s = inverse(k, q) * (digest + x * r) % q
    key = [form(pow(g, x << 40 * j, p)) for j in range(4)]
    print("signature", hexadecimal(32, *key), hexadecimal(10, digest, r, s))


print("domain", hexadecimal(10, q))
for limbs in range(1, 33):
    for _ in range(60):
        product(limbs)
for _ in range(1500):
    reduction()
for _ in range(150):
    power()
for x in [0, 1, 2, q - 1, q, q + 1, (1 << 160) - 1, *(1 << i for i in range(160))]:
    inversion(x)
for _ in range(3000):
    inversion(operand(rng.randint(1, 160)))
# A digest of 0 makes the exponent of g zero; one of q or more is used as it is.
for digest in [0, 1, q - 1, q, q + 1, (1 << 160) - 1, *(operand(160) for _ in range(60))]:
    signature(digest)
