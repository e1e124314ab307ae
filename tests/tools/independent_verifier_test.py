"""Verifies signatures of random keys and messages with Python's integers."""
import os
import pathlib
import random
import sys
import unittest

from harness import BUILT, EXAMPLES, KTSIGN, Test, domain_numbers, run

DOMAINS = {  # the domain file, ktsign and a host of the library in that domain
    "built-in": (os.environ["DOMAIN"], KTSIGN, EXAMPLES + "/verify_file"),
    "fresh": (BUILT + "/fresh.domain", BUILT + "/ktsign_fresh", BUILT + "/verify_file_fresh"),
}
PAIRS = 100


def rotated(word, by):
    return (word << by | word >> 32 - by) & 0xFFFFFFFF


def sha_1993(message):
    """FIPS 180 (1993). Returns the five words as a number, least significant first."""
    h = [0x67452301, 0xEFCDAB89, 0x98BADCFE, 0x10325476, 0xC3D2E1F0]
    padded = message + b"\x80" + bytes(-(len(message) + 9) % 64) + (8 * len(message)).to_bytes(8, "big")
    for start in range(0, len(padded), 64):
        w = [int.from_bytes(padded[i:i + 4], "big") for i in range(start, start + 64, 4)]
        for t in range(16, 80):
            w.append(w[t - 3] ^ w[t - 8] ^ w[t - 14] ^ w[t - 16])
        a, b, c, d, e = h
        for t in range(80):
            f, k = [(b & c | ~b & d, 0x5A827999), (b ^ c ^ d, 0x6ED9EBA1),
                    (b & c | b & d | c & d, 0x8F1BBCDC), (b ^ c ^ d, 0xCA62C1D6)][t // 20]
            a, b, c, d, e = (rotated(a, 5) + f + e + w[t] + k) & 0xFFFFFFFF, a, rotated(b, 30), c, d
        h = [(x + y) & 0xFFFFFFFF for x, y in zip(h, (a, b, c, d, e))]
    return sum(word << 32 * i for i, word in enumerate(h))


def numbers(blob, width):
    return [int.from_bytes(blob[i:i + width], "little") for i in range(0, len(blob), width)]


def is_valid(domain, key, message, signature):
    """FIPS 186, section 6. Also checks every component of the key."""
    p, q, g = domain
    y = key[0] * pow(2, -512, p) % p
    powers = [pow(y, 2**(40 * j), p) * 2**512 % p for j in range(4)]
    r, s = signature
    w = pow(s, -1, q)
    v = pow(g, sha_1993(message) * w % q, p) * pow(y, r * w % q, p) % p % q
    return key == powers and 0 < r < q and 0 < s < q and v == r


class IndependentVerifier(Test):
    def judge(self, file, ktsign, host):
        message = random.randbytes(random.choice([random.randrange(130), random.randrange(9000)]))
        pathlib.Path("file").write_bytes(message)
        self.does("new-key", "key", program=ktsign)
        self.does("sign", "key", "file", program=ktsign)
        key = numbers(pathlib.Path("key.pub").read_bytes(), 64)
        signature = numbers(pathlib.Path("file.sig").read_bytes(), 20)
        self.assertTrue(is_valid(domain_numbers(file), key, message, signature), message.hex())
        self.assertEqual("valid\n", self.does("key.pub", "file", "file.sig", program=host))
        pathlib.Path("file").write_bytes(message + b"x")
        self.assertEqual(1, run("verify", "key.pub", "file", program=ktsign).returncode)
        for name in ["key", "key.pub"]:
            os.remove(name)

    def test_random_keys_sign_random_messages(self):
        for file, ktsign, host in DOMAINS.values():
            for _ in range(PAIRS):
                self.judge(file, ktsign, host)


unittest.main(argv=sys.argv[:1])
