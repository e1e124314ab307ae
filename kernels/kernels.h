// The kernels: the block function of SHA and the Montgomery product. Each exists in several
// variants that give equal results, and the fastest one that the processor can run is used.
#ifndef KTBASE_KERNELS_KERNELS_H
#define KTBASE_KERNELS_KERNELS_H

#include <cstddef>
#include <cstdint>

#include "kernels/cpu.h"

constexpr unsigned kShaStateWords = 5;
constexpr unsigned kShaBlockWords = 16;
constexpr unsigned kShaBlockBytes = 64;

// Compresses `count` consecutive blocks into `state` (5 words). Requires count >= 1. Leaves W[64]
// to W[79] of the last block in `schedule` (16 words). `blocks` may be the memory of `schedule`,
// and may have any alignment.
using ShaBlocks = void(std::uint32_t* state, std::uint32_t* schedule, const unsigned char* blocks,
                       std::size_t count);

constexpr int kMaxProductLimbs = 32;

// Computes T = (a*b + U*m)/R for numbers of n limbs, with R = 2^(16n) and the U below R that makes
// the division exact. Subtracts m while T does not fit n limbs, and stores T in `out`. Requires
// 1 <= n <= kMaxProductLimbs, an odd m, and mont = -1/m mod 2^16. `out` may be any of the operands.
using MontgomeryProduct = void(const std::uint16_t* a, const std::uint16_t* b, std::uint16_t* out,
                               const std::uint16_t* m, std::uint16_t mont, int n);

struct Kernels {
    ShaBlocks* sha_blocks;
    MontgomeryProduct* montgomery_product;
};

// The kernels in use: those of fastest_kernels() for this processor, chosen at the first call.
const Kernels& kernels();

// The fastest variants for a processor with `cpu`. The table has static storage.
const Kernels& fastest_kernels(const CpuFeatures& cpu);

// Makes kernels() return `table`, which must outlive its use. Null restores
// the choice for this processor.
void set_kernels_for_testing(const Kernels* table);

#endif
