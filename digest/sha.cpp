// SHA as first published in FIPS 180 (1993): no rotation in the message schedule.
#include <ktbase/digest.h>

#include <algorithm>
#include <bit>
#include <cstddef>

static_assert(sizeof(HASH_CTX) == 96);
static_assert(offsetof(HASH_CTX, count) == 20 && offsetof(HASH_CTX, index) == 24 &&
              offsetof(HASH_CTX, data) == 28 && offsetof(HASH_CTX, left) == 92);

HASH_CTX Hash;

namespace {

constexpr unsigned kBlockWords = 16;
constexpr unsigned kBlockBytes = 64;
constexpr unsigned kWordBytes = 4;
constexpr unsigned kLengthWord = 14;  // the 64-bit message length takes words 14 and 15

constexpr std::uint32_t kInitialState[5] = {0x67452301, 0xEFCDAB89, 0x98BADCFE, 0x10325476,
                                            0xC3D2E1F0};

std::uint32_t choice(std::uint32_t b, std::uint32_t c, std::uint32_t d) {
    return ((c ^ d) & b) ^ d;
}
std::uint32_t parity(std::uint32_t b, std::uint32_t c, std::uint32_t d) {
    return b ^ c ^ d;
}
std::uint32_t majority(std::uint32_t b, std::uint32_t c, std::uint32_t d) {
    return (b & c) | ((b | c) & d);
}

// Word t of the message schedule, formed over the word of `data` that held W[t-16].
std::uint32_t schedule_word(std::uint32_t* data, unsigned t) {
    if (t >= kBlockWords)
        data[t % 16] ^= data[(t + 13) % 16] ^ data[(t + 8) % 16] ^ data[(t + 2) % 16];
    return data[t % 16];
}

struct WorkingState {
    std::uint32_t a, b, c, d, e;
};

template <auto RoundFunction, std::uint32_t Constant>
void twenty_rounds(WorkingState& s, std::uint32_t* data, unsigned first) {
    for (unsigned t = first; t < first + 20; ++t) {
        const std::uint32_t sum = std::rotl(s.a, 5) + RoundFunction(s.b, s.c, s.d) + s.e +
                                  schedule_word(data, t) + Constant;
        s = {sum, s.a, std::rotl(s.b, 30), s.c, s.d};
    }
}

// Compresses `data` into `state`; `data` is left holding W[64] to W[79].
void HashBlock(HASH_CTX* ctx) {
    std::uint32_t* const state = ctx->state;
    WorkingState s = {state[0], state[1], state[2], state[3], state[4]};
    twenty_rounds<choice, 0x5A827999>(s, ctx->data, 0);
    twenty_rounds<parity, 0x6ED9EBA1>(s, ctx->data, 20);
    twenty_rounds<majority, 0x8F1BBCDC>(s, ctx->data, 40);
    twenty_rounds<parity, 0xCA62C1D6>(s, ctx->data, 60);
    state[0] += s.a;
    state[1] += s.b;
    state[2] += s.c;
    state[3] += s.d;
    state[4] += s.e;
}

std::uint32_t big_endian_word(const unsigned char* bytes) {
    return std::uint32_t{bytes[0]} << 24 | std::uint32_t{bytes[1]} << 16 |
           std::uint32_t{bytes[2]} << 8 | bytes[3];
}

void absorb_byte(HASH_CTX* ctx, unsigned char byte) {
    // Only a record that is not absorbing has an index above 15; its digest is unspecified, but
    // nothing outside `data` is written for it.
    std::uint32_t& word = ctx->data[ctx->index % kBlockWords];
    word = word << 8 | byte;
    if (--ctx->left != 0) return;
    ctx->left = kWordBytes;
    if (++ctx->index < kBlockWords) return;
    HashBlock(ctx);
    ctx->index = 0;
}

bool at_block_border(const HASH_CTX* ctx) {
    return ctx->index == 0 && ctx->left == kWordBytes;
}

}  // namespace

void InitHash(HASH_CTX* ctx) {
    ctx->count = 0;
    std::copy_n(kInitialState, 5, ctx->state);
    std::fill_n(ctx->data, kBlockWords, 0);
    ctx->index = 0;
    ctx->left = kWordBytes;
}

void HashBuf(unsigned char* buffer, unsigned length, HASH_CTX* ctx) {
    ctx->count += length;
    while (length != 0) {
        if (length >= kBlockBytes && at_block_border(ctx)) {
            // A whole block leaves the record as its 64 bytes one by one would.
            for (unsigned i = 0; i < kBlockWords; ++i)
                ctx->data[i] = big_endian_word(buffer + kWordBytes * i);
            HashBlock(ctx);
            buffer += kBlockBytes;
            length -= kBlockBytes;
        } else {
            absorb_byte(ctx, *buffer++);
            --length;
        }
    }
}

void EndHash(HASH_CTX* ctx) {
    const unsigned last = ctx->index % kBlockWords;
    // The padding bit follows the last message byte; shifting it up pushes out what an earlier
    // compression left above the message bytes of the word.
    const std::uint32_t word = ctx->data[last] << 8 | 0x80;
    --ctx->left;
    ctx->data[last] = word << (8 * (ctx->left % kWordBytes));
    ctx->index = last + 1;
    std::fill(ctx->data + ctx->index, ctx->data + kBlockWords, 0);
    if (ctx->index > kLengthWord) {
        HashBlock(ctx);
        std::fill_n(ctx->data, kBlockWords, 0);
    }
    ctx->data[15] = ctx->count * 8;
    HashBlock(ctx);
}
