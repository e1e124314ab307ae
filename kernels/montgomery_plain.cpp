// The Montgomery product limb by limb: for each limb of b one pass that multiplies and one that
// reduces.
#include <algorithm>

#include "kernels/limbs.h"
#include "kernels/montgomery_product.h"

std::uint32_t subtract_limbs(std::uint16_t* a, const std::uint16_t* b, int n) {
    std::uint32_t borrow = 0;
    for (int i = 0; i < n; ++i) {
        // 0 <= 2^16 + a - b - borrow < 2^17, and bit 16 is clear exactly when a borrow occurs.
        const std::uint32_t t = 0x10000 + std::uint32_t{a[i]} - b[i] - borrow;
        a[i] = low_half(t);
        borrow = 1 - high_half(t);
    }
    return borrow;
}

void montgomery_product_plain(const std::uint16_t* a, const std::uint16_t* b, std::uint16_t* out,
                              const std::uint16_t* m, std::uint16_t mont, int n) {
    // Between rounds T < a + m < 2R, which is n limbs and one bit. Within a round a*b[i] adds less
    // than 2^16 R, so T < 2^16 R + 2R, which is n + 1 limbs and one bit.
    std::uint16_t T[kMaxProductLimbs + 2] = {};
    for (int i = 0; i < n; ++i) {
        std::uint32_t carry = 0;
        for (int j = 0; j < n; ++j) {
            // (2^16-1)^2 + 2(2^16-1) = 2^32-1: t cannot overflow, here and below.
            const std::uint32_t t = std::uint32_t{a[j]} * b[i] + T[j] + carry;
            T[j] = low_half(t);
            carry = high_half(t);
        }
        const std::uint32_t top = T[n] + carry;
        T[n] = low_half(top);
        T[n + 1] = low_half(high_half(top));

        // The limb for which T[0] + u*m[0] is a multiple of 2^16.
        const std::uint32_t u = low_half(std::uint32_t{T[0]} * mont);
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
    while (T[n] != 0) T[n] = low_half(T[n] - subtract_limbs(T, m, n));
    std::copy_n(T, n, out);
}
