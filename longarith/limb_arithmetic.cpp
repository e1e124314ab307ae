// Arithmetic on vectors of 16-bit limbs: byte strings, subtraction, the Montgomery product and
// reduction.
#include <ktbase/longarith.h>

#include <algorithm>
#include <bit>
#include <cstring>

#include "kernels/kernels.h"
#include "kernels/limbs.h"

// The bytes of a number are its limbs as they lie in memory.
static_assert(std::endian::native == std::endian::little);

namespace {

// The limb u for which t0 + u*m0 is a multiple of 2^16.
std::uint32_t reduction_limb(std::uint16_t t0, std::uint16_t mont) {
    return low_half(std::uint32_t{t0} * mont);
}

}  // namespace

void packLAN(unsigned char* bytes, unsigned short* limbs, short nbytes) {
    if (nbytes <= 0) return;
    const unsigned char last = bytes[nbytes - 1];
    std::memmove(limbs, bytes, static_cast<std::size_t>(nbytes) / 2 * 2);
    if (nbytes % 2 != 0) limbs[nbytes / 2] = last;
}

void unpackLAN(unsigned short* limbs, unsigned char* bytes, short nbytes) {
    if (nbytes > 0) std::memmove(bytes, limbs, static_cast<std::size_t>(nbytes));
}

void subtLAN(unsigned short* a, unsigned short* b, short n) {
    subtract_limbs(a, b, n);
}

void multmodLAN(unsigned short* a, unsigned short* b, unsigned short* out, unsigned short* m,
                unsigned short mont, short n) {
    if (n <= 0) return;
    kernels().montgomery_product(a, b, out, m, mont, n);
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
        int top = std::max<int>(nm, 1) - 1;  // the limb that receives the carry
        for (; top + 1 < na; ++top) {
            const std::uint32_t t = a[top + 1] + carry;
            a[top] = low_half(t);
            carry = high_half(t);
        }
        a[top] = low_half(carry);
    }
}
