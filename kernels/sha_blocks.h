// The variants of SHA's block function.
#ifndef KTBASE_KERNELS_SHA_BLOCKS_H
#define KTBASE_KERNELS_SHA_BLOCKS_H

#include "kernels/kernels.h"

ShaBlocks sha_blocks_plain;  // the reference for the others
ShaBlocks sha_blocks_sse2;
ShaBlocks sha_blocks_shani;

// The constants K of rounds 0 to 19, 20 to 39, 40 to 59 and 60 to 79.
constexpr std::uint32_t kShaConstants[4] = {0x5A827999, 0x6ED9EBA1, 0x8F1BBCDC, 0xCA62C1D6};

#endif
