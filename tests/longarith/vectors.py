#!/usr/bin/env python3
"""Writes operands and results of the long arithmetic, computed with Python's integers. A line is a
case: its kind, then NAME=NUMBER for each operand and result, in big-endian hexadecimal of whole limbs.
  reduction   na nm k a m mont result   a and result have the larger of na and nm limbs
  power       e1 e2 table result other  g^e1 * y^e2 * 2^512 mod p; `other` is result + p if that is below 2^512
  inverse     x result
  signature   key signature digest code   the blobs start in the second byte, so at odd addresses
usage: vectors.py DOMAIN_FILE
"""
import random
import re
import sys

domain = dict(re.findall(r"^\s*([pqg])\s*=\s*(\w+)", open(sys.argv[1]).read(), re.M))
p, q, g = (int(domain[name], 16) for name in "pqg")
rng = random.Random(186)
R = 1 << 512


def case(kind, **fields):
    """Prints a case. Each field is a number and its width in limbs; a plain number has one limb."""
    pairs = ((name, f if isinstance(f, tuple) else (f, 1)) for name, f in fields.items())
    print(kind, *(f"{name}={number:0{4 * limbs}x}" for name, (number, limbs) in pairs))


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


def reduced(a, m, k):
    """(a + U*m) / 2^(16k) for the U below 2^(16k) that makes the division exact."""
    r = 1 << 16 * k
    return (a + -a * inverse(m, r) % r * m) // r


def reduction():
    na = rng.randint(1, 40)
    nm, k = rng.choice([na, rng.randint(1, 34)]), rng.choice([na, rng.randint(0, 40)])
    n = max(na, nm)
    a, m = operand(16 * n), operand(16 * nm) | 1
    case("reduction", na=na, nm=nm, k=k, a=(a, n), m=(m, nm), mont=-inverse(m, 1 << 16) % (1 << 16),
         result=(reduced(a, m, k), n))


def montgomery_form(a):
    """The residue a*R modulo p, at times with p added."""
    x = a * R % p
    return x + p if x + p < R and rng.randrange(2) else x


def joined(bits, numbers):
    return sum(x << bits * i for i, x in enumerate(numbers))


def power(e1, e2):
    y = operand(512) % p  # of any order
    table = [montgomery_form(pow(y, (2 * k + 1) << 40 * j, p)) for j in range(4) for k in range(2)]
    result = pow(g, e1, p) * pow(y, e2, p) * R % p
    other = result + p if result + p < R else result
    case("power", e1=(e1, 10), e2=(e2, 10), table=(joined(512, table), 256), result=(result, 32),
         other=(other, 32))


def single_window(entry):
    """The power is the table's entry, any number of 512 bits."""
    table = [R - 1 - i for i in range(8)]
    e2 = (1, 3)[entry % 2] << 40 * (entry // 2)
    case("power", e1=(0, 10), e2=(e2, 10), table=(joined(512, table), 256), result=(table[entry], 32),
         other=(table[entry], 32))


def inversion(x):
    case("inverse", x=(x, 10), result=(0 if x % q == 0 else inverse(x, q), 10))


def verification(key, r, s, digest, code):
    """A number out of range determines the code, r before s."""
    for x in (s, r):
        code = 0x7707 if x >= q else 0x707 if x == 0 else code
    case("signature", key=(key << 8, 129), signature=(joined(160, [r, s]) << 8, 21), digest=(digest, 10),
         code=code)


def signature(digest):
    """FIPS 186, section 5, over any digest integer of 160 bits; then with another digest."""
    r = s = 0
    while r == 0 or s == 0:
        x, k = (operand(160) % (q - 1) + 1 for _ in range(2))
        r = pow(g, k, p) % q
        s = inverse(k, q) * (digest + x * r) % q
    key = joined(512, [montgomery_form(pow(g, x << 40 * j, p)) for j in range(4)])
    verification(key, r, s, digest, 0)
    verification(key, r, s, digest ^ 1 << rng.randrange(160), 0xF0F)
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
for shift in range(160):  # numbers whose highest digits are those of q
    inversion(q - rng.getrandbits(shift))
    inversion((q >> shift) + rng.randrange(2))
for _ in range(3000):
    inversion(operand(rng.randint(1, 160)))
# A digest of 0 makes the exponent of g zero. A digest of q or more is not reduced.
for message in [0, 1, q - 1, q, q + 1, (1 << 160) - 1, *(operand(160) for _ in range(300))]:
    public_key, valid_r, valid_s = signature(message)
for wrong_r in [valid_r, 0, 1, q - 1, q, q + 1, (1 << 160) - 1]:
    for wrong_s in [0, 1, q - 1, q, q + 1, (1 << 160) - 1]:
        verification(public_key, wrong_r, wrong_s, message, 0xF0F)
for limb in range(10):  # a key of 0 gives the number 0, which differs from r in one limb
    verification(0, 1 << 16 * limb, 1, message, 0xF0F)
