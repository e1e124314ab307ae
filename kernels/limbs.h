// Steps on 16-bit limbs that the products and the rest of the long arithmetic share.
#ifndef KTBASE_KERNELS_LIMBS_H
#define KTBASE_KERNELS_LIMBS_H

#include <cstdint>

// Subtracts n limbs of b from a and returns the borrow, 0 or 1. `b` may be `a`.
std::uint32_t subtract_limbs(std::uint16_t* a, const std::uint16_t* b, int n);

// static: every source has copies of its own, compiled for its own instruction set.
static inline std::uint16_t low_half(std::uint32_t t) {
    return static_cast<std::uint16_t>(t);
}
static inline std::uint32_t high_half(std::uint32_t t) {
    return t >> 16;
}

// True when a < b, for numbers of n limbs.
static inline bool less_limbs(const std::uint16_t* a, const std::uint16_t* b, int n) {
    for (int i = n - 1; i >= 0; --i)
        if (a[i] != b[i]) return a[i] < b[i];
    return false;
}

#endif
