// The block function of SHA in its forms, which differ in speed only.
#ifndef KTBASE_DIGEST_SHA_BLOCK_H
#define KTBASE_DIGEST_SHA_BLOCK_H

#include <ktbase/digest.h>

#include <cstddef>

// Compresses `count` blocks, at least one, that follow each other from `blocks` on into
// `ctx->state`. `ctx->data` is left holding W[64] to W[79] of the last; `blocks` may be that very
// memory. The rest of the record is neither read nor written.
using ShaForm = void(HASH_CTX* ctx, const unsigned char* blocks, std::size_t count);

ShaForm sha_blocks_plain;  // the form to read
ShaForm sha_blocks_sse2;
ShaForm sha_blocks_shani;

// The fastest form that this processor has, chosen at the first call.
ShaForm* sha_form();

// Makes sha_form answer `form`, for tests; null returns to the processor's own.
void use_sha_form(ShaForm* form);

constexpr unsigned kShaBlockBytes = 64;

// The constants of rounds 0 to 19, 20 to 39, 40 to 59 and 60 to 79.
constexpr std::uint32_t kShaConstants[4] = {0x5A827999, 0x6ED9EBA1, 0x8F1BBCDC, 0xCA62C1D6};

#endif
