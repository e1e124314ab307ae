// SHA as first published in FIPS 180 (1993): no rotation in the message schedule.
#include <ktbase/digest.h>

#include <algorithm>
#include <cstddef>

#include "kernels/kernels.h"

static_assert(sizeof(HASH_CTX) == 96);
static_assert(offsetof(HASH_CTX, count) == 20 && offsetof(HASH_CTX, index) == 24 &&
              offsetof(HASH_CTX, data) == 28 && offsetof(HASH_CTX, left) == 92);

HASH_CTX Hash;

namespace {

constexpr unsigned kWordBytes = 4;
constexpr unsigned kLengthWord = 14;  // the 64-bit message length takes words 14 and 15

constexpr std::uint32_t kInitialState[5] = {0x67452301, 0xEFCDAB89, 0x98BADCFE, 0x10325476,
                                            0xC3D2E1F0};

// Compresses `count` blocks into the record's state, and leaves their last schedule words in
// `data`.
void compress(HASH_CTX* ctx, const unsigned char* blocks, unsigned count) {
    kernels().sha_blocks(ctx->state, ctx->data, blocks, count);
}

// Compresses the block in `data`. The kernels read bytes, so the words become big-endian bytes
// first.
void compress_data(HASH_CTX* ctx) {
    for (std::uint32_t& word : ctx->data) word = __builtin_bswap32(word);
    compress(ctx, reinterpret_cast<const unsigned char*>(ctx->data), 1);
}

void absorb_byte(HASH_CTX* ctx, unsigned char byte) {
    // Only a record that is not absorbing has an index above 15; its digest is unspecified, but
    // nothing outside `data` is written for it.
    std::uint32_t& word = ctx->data[ctx->index % kShaBlockWords];
    word = word << 8 | byte;
    if (--ctx->left != 0) return;
    ctx->left = kWordBytes;
    if (++ctx->index < kShaBlockWords) return;
    compress_data(ctx);
    ctx->index = 0;
}

bool at_block_border(const HASH_CTX* ctx) {
    return ctx->index == 0 && ctx->left == kWordBytes;
}

}  // namespace

void InitHash(HASH_CTX* ctx) {
    ctx->count = 0;
    std::copy_n(kInitialState, 5, ctx->state);
    std::fill_n(ctx->data, kShaBlockWords, 0);
    ctx->index = 0;
    ctx->left = kWordBytes;
}

void HashBuf(unsigned char* buffer, unsigned length, HASH_CTX* ctx) {
    if (length == 0) return;
    ctx->count += length;
    while (length != 0) {
        if (length >= kShaBlockBytes && at_block_border(ctx)) {
            // Whole blocks leave the record as their bytes one by one would.
            const unsigned blocks = length / kShaBlockBytes;
            compress(ctx, buffer, blocks);
            buffer += blocks * kShaBlockBytes;
            length %= kShaBlockBytes;
        } else {
            absorb_byte(ctx, *buffer++);
            --length;
        }
    }
}

void EndHash(HASH_CTX* ctx) {
    const unsigned last = ctx->index % kShaBlockWords;
    // The padding bit follows the last message byte; shifting it up pushes out what an earlier
    // compression left above the message bytes of the word.
    const std::uint32_t word = ctx->data[last] << 8 | 0x80;
    --ctx->left;
    ctx->data[last] = word << (8 * (ctx->left % kWordBytes));
    ctx->index = last + 1;
    std::fill(ctx->data + ctx->index, ctx->data + kShaBlockWords, 0);
    if (ctx->index > kLengthWord) {
        compress_data(ctx);
        std::fill_n(ctx->data, kShaBlockWords, 0);
    }
    ctx->data[15] = ctx->count * 8;
    compress_data(ctx);
}
