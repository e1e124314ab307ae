// SHA as first published in FIPS 180 (1993): no rotation in the message schedule.
#include <ktbase/digest.h>

#include <algorithm>
#include <cstddef>
#include <cstring>

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

// Moves on to the next word, and compresses the block after its last word.
void end_word(HASH_CTX* ctx) {
    if (++ctx->index < kShaBlockWords) return;
    compress_data(ctx);
    ctx->index = 0;
}

void absorb_byte(HASH_CTX* ctx, unsigned char byte) {
    // Only a record that is not absorbing has an index above 15. Its digest is unspecified, but
    // nothing outside `data` may be written.
    std::uint32_t& word = ctx->data[ctx->index % kShaBlockWords];
    word = word << 8 | byte;
    if (--ctx->left != 0) return;
    ctx->left = kWordBytes;
    end_word(ctx);
}

std::uint32_t big_endian_word(const unsigned char* bytes) {
    std::uint32_t word = 0;
    std::memcpy(&word, bytes, sizeof word);
    return __builtin_bswap32(word);
}

// Absorbs whole words up to the end of the block. Returns the number of absorbed bytes. Four bytes
// replace all bits of a word, so the record is the same as after absorbing single bytes. Requires
// length >= 4 and a record at the start of a word.
unsigned absorb_words(HASH_CTX* ctx, const unsigned char* bytes, unsigned length) {
    const unsigned words = std::min(length / kWordBytes, kShaBlockWords - ctx->index);
    std::uint32_t* const data = ctx->data + ctx->index;
    for (unsigned i = 0; i < words; ++i) data[i] = big_endian_word(bytes + kWordBytes * i);
    ctx->index += words - 1;
    end_word(ctx);
    return words * kWordBytes;
}

// Absorbs some bytes, at least one, and returns their number.
unsigned absorb_some(HASH_CTX* ctx, const unsigned char* bytes, unsigned length) {
    const bool at_word_start = ctx->left == kWordBytes && ctx->index < kShaBlockWords;
    if (!at_word_start || length < kWordBytes) {
        absorb_byte(ctx, *bytes);
        return 1;
    }
    if (ctx->index != 0 || length < kShaBlockBytes) return absorb_words(ctx, bytes, length);
    const unsigned blocks = length / kShaBlockBytes;
    compress(ctx, bytes, blocks);
    return blocks * kShaBlockBytes;
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
    if (length == 0) return;  // before any access to the record
    ctx->count += length;
    while (length != 0) {
        const unsigned absorbed = absorb_some(ctx, buffer, length);
        buffer += absorbed;
        length -= absorbed;
    }
}

void EndHash(HASH_CTX* ctx) {
    const unsigned last = ctx->index % kShaBlockWords;
    // The padding bit follows the last message byte. The shift below also removes the bytes that an
    // earlier compression left above the message bytes of this word.
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
