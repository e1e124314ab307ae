// Writes operands and results of the limb arithmetic, computed by libcrypto, a case a line:
//   product N A B M MONT RESULT          all of N limbs
//   reduction NA NM K A M MONT RESULT    A and RESULT of the larger of NA and NM limbs
//   power E1 E2 TABLE RESULT             RESULT = g^E1 * y^E2 * 2^512 mod p, fully reduced
//   inverse X RESULT
//   signature KEY0 KEY1 KEY2 KEY3 DIGEST R S    a valid one; numbers as the blobs have them
// Numbers are in big-endian hexadecimal of their full width, counts in decimal.
#include <openssl/bn.h>

#include <cstdio>
#include <functional>
#include <random>
#include <string>
#include <vector>

#include "domain_numbers.h"

namespace {

std::mt19937 generator(186);
BN_CTX* const context = BN_CTX_new();

// A number of libcrypto with the operators of arithmetic. A program that ends after a second frees
// nothing.
struct Bn {
    BIGNUM* n = BN_new();

    Bn(unsigned long value = 0) { BN_set_word(n, value); }
};
Bn from_hex(const char* hex) {
    Bn r;
    BN_hex2bn(&r.n, hex);
    return r;
}
Bn operator+(const Bn& a, const Bn& b) {
    Bn r;
    BN_add(r.n, a.n, b.n);
    return r;
}
Bn operator-(const Bn& a, const Bn& b) {
    Bn r;
    BN_sub(r.n, a.n, b.n);
    return r;
}
Bn operator*(const Bn& a, const Bn& b) {
    Bn r;
    BN_mul(r.n, a.n, b.n, context);
    return r;
}
Bn operator/(const Bn& a, const Bn& b) {
    Bn r;
    BN_div(r.n, nullptr, a.n, b.n, context);
    return r;
}
Bn operator%(const Bn& a, const Bn& m) {
    Bn r;
    BN_nnmod(r.n, a.n, m.n, context);
    return r;
}
bool operator<(const Bn& a, const Bn& b) {
    return BN_cmp(a.n, b.n) < 0;
}
Bn power(const Bn& a, const Bn& e, const Bn& m) {
    Bn r;
    BN_mod_exp(r.n, a.n, e.n, m.n, context);
    return r;
}
Bn inverse(const Bn& a, const Bn& m) {
    Bn r;
    if (BN_is_one(m.n)) return 0;
    BN_mod_inverse(r.n, a.n, m.n, context);
    return r;
}
Bn two_to(int bits) {
    Bn r;
    BN_set_bit(r.n, bits);
    return r;
}

int pick(int first, int last) {
    return first + static_cast<int>(generator() % static_cast<unsigned>(last - first + 1));
}

// Any number of `bits` bits at most: mostly random, often with long runs of ones or zeros, at times
// one of the extremes.
Bn operand(int bits) {
    const int kind = pick(0, 9);
    if (kind == 0) return 0;
    if (kind == 1) return two_to(bits) - 1;
    if (kind == 2)
        return two_to(bits) - Bn(static_cast<unsigned long>(pick(1, 70000))) % two_to(bits);
    Bn r;
    for (int i = 0; i < bits;) {
        const int run = kind < 6 ? 1 : pick(1, 40);
        const bool one = generator() % 2 != 0;
        for (int end = std::min(bits, i + run); i < end; ++i)
            if (one) BN_set_bit(r.n, i);
    }
    return r;
}
Bn modulus(int bits) {
    Bn m = operand(bits);
    BN_set_bit(m.n, 0);
    return m;
}

void print(const Bn& a, int limbs) {
    std::vector<unsigned char> bytes(2 * static_cast<std::size_t>(limbs));
    if (BN_bn2binpad(a.n, bytes.data(), 2 * limbs) < 0) std::abort();
    std::putchar(' ');
    for (const unsigned char byte : bytes) std::printf("%02x", byte);
}

Bn montgomery_constant(const Bn& m) {
    const Bn r = two_to(16);
    return (r - inverse(m, r)) % r;
}

// (a + U*m) / 2^(16k) for the U below 2^(16k) that makes the division exact.
Bn reduced(const Bn& a, const Bn& m, int k) {
    const Bn r = two_to(16 * k);
    const Bn u = (r - a * inverse(m, r) % r) % r;
    return (a + u * m) / r;
}

void product(int n) {
    const Bn m = modulus(16 * n);
    const Bn a = operand(16 * n);
    const Bn b = pick(0, 4) == 0 ? a : operand(16 * n);
    Bn result = reduced(a * b, m, n);
    if (!(result < two_to(16 * n))) result = result - m;
    std::printf("product %d", n);
    for (const Bn& x : {a, b, m}) print(x, n);
    print(montgomery_constant(m), 1);
    print(result, n);
    std::putchar('\n');
}

void reduction() {
    const int na = pick(1, 40);
    const int nm = pick(0, 2) == 0 ? na : pick(1, 34);
    const int k = pick(0, 2) == 0 ? na : pick(0, 40);
    const int limbs = std::max(na, nm);
    const Bn m = modulus(16 * nm);
    const Bn a = operand(16 * limbs);
    std::printf("reduction %d %d %d", na, nm, k);
    print(a, limbs);
    print(m, nm);
    print(montgomery_constant(m), 1);
    print(reduced(a, m, k), limbs);
    std::putchar('\n');
}

// The Montgomery form of a residue modulo p, at times the one above p.
Bn form(const Bn& a) {
    const Bn p = from_hex(kDomainP);
    const Bn r = two_to(512);
    const Bn reduced_form = a * r % p;
    return pick(0, 1) == 0 && reduced_form + p < r ? reduced_form + p : reduced_form;
}

void double_power() {
    const Bn p = from_hex(kDomainP);
    const Bn e1 = pick(0, 5) == 0 ? two_to(pick(0, 159)) : operand(160);
    const Bn e2 = pick(0, 5) == 0 ? two_to(pick(0, 159)) : operand(160);
    const Bn y = operand(512) % p;  // any order
    std::printf("power");
    print(e1, 10);
    print(e2, 10);
    for (int j = 0; j < 4; ++j) {
        const Bn base = power(y, two_to(40 * j), p);
        for (const Bn& entry : {base, power(base, 3, p)}) {
            print(form(entry), 32);
        }
    }
    print(power(from_hex(kDomainG), e1, p) * power(y, e2, p) * two_to(512) % p, 32);
    std::putchar('\n');
}

void inversion(const Bn& x) {
    const Bn q = from_hex(kDomainQ);
    const Bn residue = x % q;
    std::printf("inverse");
    print(x, 10);
    print(BN_is_zero(residue.n) ? residue : inverse(residue, q), 10);
    std::putchar('\n');
}

// FIPS 186, section 5, over any digest integer of 160 bits.
void signature(const Bn& digest) {
    const Bn p = from_hex(kDomainP);
    const Bn q = from_hex(kDomainQ);
    const Bn g = from_hex(kDomainG);
    const Bn x = operand(160) % (q - 1) + 1;
    const Bn k = operand(160) % (q - 1) + 1;
    const Bn r = power(g, k, p) % q;
    const Bn s = inverse(k, q) * (digest + x * r) % q;
    if (BN_is_zero(r.n) || BN_is_zero(s.n)) return signature(digest);
    std::printf("signature");
    for (int j = 0; j < 4; ++j) print(form(power(power(g, x, p), two_to(40 * j), p)), 32);
    for (const Bn& number : {digest, r, s}) print(number, 10);
    std::putchar('\n');
}

}  // namespace

int main() {
    for (int n = 1; n <= 32; ++n)
        for (int i = 0; i < 60; ++i) product(n);
    for (int i = 0; i < 1500; ++i) reduction();
    for (int i = 0; i < 150; ++i) double_power();
    const Bn q = from_hex(kDomainQ);
    for (const Bn& x : {Bn(0), Bn(1), Bn(2), q - 1, q, q + 1, two_to(160) - 1}) inversion(x);
    for (int i = 0; i < 160; ++i) inversion(two_to(i));
    for (int i = 0; i < 3000; ++i) inversion(operand(pick(1, 160)));
    // A digest of 0 makes the exponent of g zero; one of q or more is used as it is.
    for (const Bn& digest : {Bn(0), Bn(1), q - 1, q, q + 1, two_to(160) - 1}) signature(digest);
    for (int i = 0; i < 60; ++i) signature(operand(160));
    return 0;
}
