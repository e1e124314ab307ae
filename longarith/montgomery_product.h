// The Montgomery product: the forms it comes in, and the choice among them.
#ifndef KTBASE_LONGARITH_MONTGOMERY_PRODUCT_H
#define KTBASE_LONGARITH_MONTGOMERY_PRODUCT_H

#include <cstdint>

constexpr int kMaxProductLimbs = 32;

// Every form computes T = (a*b + U*m)/R, where U is the number below R that makes the division
// exact, subtracts m while T does not fit n limbs, and stores T: equal limbs from every form. n is
// 1 to kMaxProductLimbs, and out may be a, b or both.
using MontgomeryProduct = void(const std::uint16_t* a, const std::uint16_t* b, std::uint16_t* out,
                               const std::uint16_t* m, std::uint16_t mont, int n);

MontgomeryProduct montgomery_product_plain;
MontgomeryProduct montgomery_product_sse2;
MontgomeryProduct montgomery_product_avx2;

bool cpu_has_sse2();
bool cpu_has_avx2();

// The fastest form that the CPU has, chosen at the first call.
MontgomeryProduct* montgomery_product();

// Makes montgomery_product answer `form`, for tests; null returns to the CPU's own.
void use_montgomery_product(MontgomeryProduct* form);

// Subtracts n limbs of b from a and returns the borrow, 0 or 1.
std::uint32_t subtract_limbs(std::uint16_t* a, const std::uint16_t* b, int n);

#endif
