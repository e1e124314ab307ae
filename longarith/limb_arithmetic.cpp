// Arithmetic on vectors of 16-bit limbs: byte strings, subtraction, Montgomery product and
// reduction.
#include <ktbase/longarith.h>

#include <algorithm>

namespace {

constexpr int kMaxProductLimbs = 32;

std::uint16_t low_half(std::uint32_t t) {
    return static_cast<std::uint16_t>(t);
}
std::uint32_t high_half(std::uint32_t t) {
    return t >> 16;
}

// Subtracts n limbs of b from a and returns the borrow, 0 or 1.
std::uint32_t subtract(std::uint16_t* a, const std::uint16_t* b, int n) {
    std::uint32_t borrow = 0;
    for (int i = 0; i < n; ++i) {
        // 0 <= 2^16 + a - b - borrow < 2^17: bit 16 is set exactly when nothing is borrowed.
        const std::uint32_t t = 0x10000 + std::uint32_t{a[i]} - b[i] - borrow;
        a[i] = low_half(t);
        borrow = 1 - high_half(t);
    }
    return borrow;
}

// The limb u for which t0 + u*m0 is a multiple of 2^16.
std::uint32_t reduction_limb(std::uint16_t t0, std::uint16_t mont) {
    return low_half(std::uint32_t{t0} * mont);
}

}  // namespace

void packLAN(unsigned char* bytes, unsigned short* limbs, short nbytes) {
    // An int index: one of type short would wrap before it reached 32767 in steps of 2.
    for (int k = 0; k < nbytes; k += 2) {
        const unsigned high = k + 1 < nbytes ? bytes[k + 1] : 0U;
        limbs[k / 2] = low_half(bytes[k] + 256 * high);
    }
}

void unpackLAN(unsigned short* limbs, unsigned char* bytes, short nbytes) {
    for (int k = 0; k < nbytes; k += 2) {
        const unsigned limb = limbs[k / 2];
        bytes[k] = static_cast<unsigned char>(limb & 0xFF);
        if (k + 1 < nbytes) bytes[k + 1] = static_cast<unsigned char>(limb >> 8);
    }
}

void subtLAN(unsigned short* a, unsigned short* b, short n) {
    subtract(a, b, n);
}

void multmodLAN(unsigned short* a, unsigned short* b, unsigned short* out, unsigned short* m,
                unsigned short mont, short n) {
    if (n <= 0) return;
    // T < a + m < 2R between rounds, so n limbs and one bit; within a round a*b[i] adds less than
    // 2^16 R, and the second extra limb takes what that carries out of the first.
    std::uint16_t T[kMaxProductLimbs + 2] = {};
    for (int i = 0; i < n; ++i) {
        std::uint32_t carry = 0;
        for (int j = 0; j < n; ++j) {
            // (2^16-1)^2 + 2(2^16-1) = 2^32-1, so t cannot overflow; nor below.
            const std::uint32_t t = std::uint32_t{a[j]} * b[i] + T[j] + carry;
            T[j] = low_half(t);
            carry = high_half(t);
        }
        const std::uint32_t top = T[n] + carry;
        T[n] = low_half(top);
        T[n + 1] = low_half(high_half(top));

        const std::uint32_t u = reduction_limb(T[0], mont);
        carry = high_half(u * m[0] + T[0]);
        for (int j = 1; j < n; ++j) {
            const std::uint32_t t = u * m[j] + T[j] + carry;
            T[j - 1] = low_half(t);
            carry = high_half(t);
        }
        const std::uint32_t t = T[n] + carry;
        T[n - 1] = low_half(t);
        T[n] = low_half(T[n + 1] + high_half(t));
    }
    while (T[n] != 0) T[n] = low_half(T[n] - subtract(T, m, n));
    std::copy_n(T, n, out);
}

void privLAN(unsigned short* a, unsigned short* m, unsigned short mont, short na, short nm,
             short k) {
    for (int step = 0; step < k; ++step) {
        const std::uint32_t u = reduction_limb(a[0], mont);
        std::uint32_t carry = high_half(u * m[0] + a[0]);
        for (int j = 1; j < nm; ++j) {
            const std::uint32_t t = u * m[j] + a[j] + carry;
            a[j - 1] = low_half(t);
            carry = high_half(t);
        }
        int top = nm - 1;  // the limb that the carry enters
        for (; top + 1 < na; ++top) {
            const std::uint32_t t = a[top + 1] + carry;
            a[top] = low_half(t);
            carry = high_half(t);
        }
        a[top] = low_half(carry);
    }
}
