// Arithmetic on vectors of 16-bit limbs: byte strings, subtraction, and the Montgomery reduction;
// the Montgomery product is in the files named after it.
#include <ktbase/longarith.h>

#include <algorithm>

#include "montgomery_product.h"

namespace {

std::uint16_t low_half(std::uint32_t t) {
    return static_cast<std::uint16_t>(t);
}
std::uint32_t high_half(std::uint32_t t) {
    return t >> 16;
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
    subtract_limbs(a, b, n);
}

void multmodLAN(unsigned short* a, unsigned short* b, unsigned short* out, unsigned short* m,
                unsigned short mont, short n) {
    if (n <= 0) return;
    montgomery_product()(a, b, out, m, mont, n);
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
        int top = std::max<int>(nm, 1) - 1;  // the limb that the carry enters
        for (; top + 1 < na; ++top) {
            const std::uint32_t t = a[top + 1] + carry;
            a[top] = low_half(t);
            carry = high_half(t);
        }
        a[top] = low_half(carry);
    }
}
