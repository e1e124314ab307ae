// MD5 (RFC 1321), and the same operations under the names of the vantu namespace.
#include <ktbase/digest.h>

#include <bit>
#include <cstddef>
#include <cstring>

static_assert(sizeof(MD5_CTX) == 88);
static_assert(offsetof(MD5_CTX, count) == 16 && offsetof(MD5_CTX, buffer) == 24);
// vantu's functions hand their record to the global ones as it is.
static_assert(sizeof(vantu::MD5_CTX) == sizeof(MD5_CTX));
static_assert(offsetof(vantu::MD5_CTX, count) == offsetof(MD5_CTX, count) &&
              offsetof(vantu::MD5_CTX, buffer) == offsetof(MD5_CTX, buffer));

namespace {

constexpr unsigned kBlockBytes = 64;
constexpr unsigned kBlockWords = 16;
constexpr unsigned kLengthBytes = 8;

constexpr std::uint32_t kInitialState[4] = {0x67452301, 0xefcdab89, 0x98badcfe, 0x10325476};

constexpr unsigned char kPadding[kBlockBytes] = {0x80};

// T[1] to T[64] of section 3.4: the integer part of 2^32 * abs(sin(t)), t in radians.
constexpr std::uint32_t kSines[64] = {
    0xd76aa478, 0xe8c7b756, 0x242070db, 0xc1bdceee, 0xf57c0faf, 0x4787c62a, 0xa8304613, 0xfd469501,
    0x698098d8, 0x8b44f7af, 0xffff5bb1, 0x895cd7be, 0x6b901122, 0xfd987193, 0xa679438e, 0x49b40821,
    0xf61e2562, 0xc040b340, 0x265e5a51, 0xe9b6c7aa, 0xd62f105d, 0x02441453, 0xd8a1e681, 0xe7d3fbc8,
    0x21e1cde6, 0xc33707d6, 0xf4d50d87, 0x455a14ed, 0xa9e3e905, 0xfcefa3f8, 0x676f02d9, 0x8d2a4c8a,
    0xfffa3942, 0x8771f681, 0x6d9d6122, 0xfde5380c, 0xa4beea44, 0x4bdecfa9, 0xf6bb4b60, 0xbebfbc70,
    0x289b7ec6, 0xeaa127fa, 0xd4ef3085, 0x04881d05, 0xd9d4d039, 0xe6db99e5, 0x1fa27cf8, 0xc4ac5665,
    0xf4292244, 0x432aff97, 0xab9423a7, 0xfc93a039, 0x655b59c3, 0x8f0ccc92, 0xffeff47d, 0x85845dd1,
    0x6fa87e4f, 0xfe2ce6e0, 0xa3014314, 0x4e0811a1, 0xf7537e82, 0xbd3af235, 0x2ad7d2bb, 0xeb86d391};

std::uint32_t little_endian_word(const unsigned char* bytes) {
    return bytes[0] | std::uint32_t{bytes[1]} << 8 | std::uint32_t{bytes[2]} << 16 |
           std::uint32_t{bytes[3]} << 24;
}

void put_little_endian(unsigned char* bytes, const std::uint32_t* words, unsigned count) {
    for (unsigned i = 0; i < 4 * count; ++i)
        bytes[i] = static_cast<unsigned char>(words[i / 4] >> 8 * (i % 4));
}

std::uint32_t f(std::uint32_t b, std::uint32_t c, std::uint32_t d) {
    return ((c ^ d) & b) ^ d;
}
std::uint32_t g(std::uint32_t b, std::uint32_t c, std::uint32_t d) {
    return ((b ^ c) & d) ^ c;
}
std::uint32_t h(std::uint32_t b, std::uint32_t c, std::uint32_t d) {
    return b ^ c ^ d;
}
std::uint32_t i(std::uint32_t b, std::uint32_t c, std::uint32_t d) {
    return c ^ (b | ~d);
}

struct WorkingState {
    std::uint32_t a, b, c, d;
};

// The words of a block, from decoding until they are wiped. Volatile, so that a step loads its word
// from here and none is kept for a later step in a register, whose spill slot nobody would wipe;
// and so that the wipe of memory about to die stays.
class BlockWords {
public:
    explicit BlockWords(const unsigned char* block) {
        for (unsigned k = 0; k < kBlockWords; ++k) words_[k] = little_endian_word(block + 4 * k);
    }
    BlockWords(const BlockWords&) = delete;
    BlockWords& operator=(const BlockWords&) = delete;
    ~BlockWords() {
        for (volatile std::uint32_t& word : words_) word = 0;
    }
    const volatile std::uint32_t& operator[](unsigned k) const { return words_[k % kBlockWords]; }

private:
    volatile std::uint32_t words_[kBlockWords];
};

// The two empty instructions keep the load at the addition; a word loaded earlier would wait in a
// slot of the stack that nobody wipes.
std::uint32_t add_as_loaded(std::uint32_t sum, const volatile std::uint32_t& word) {
    asm("" : "+r"(sum));
    sum += word;
    asm("" : "+r"(sum));
    return sum;
}

struct Shifts {
    int by[4];
};

// The round that begins at step `First`; step t takes the word Stride * t + Start, modulo 16.
template <auto RoundFunction, unsigned First, unsigned Stride, unsigned Start>
void sixteen_steps(WorkingState& s, const BlockWords& words, const Shifts& shifts) {
    for (unsigned t = First; t < First + 16; ++t) {
        const std::uint32_t sum = add_as_loaded(s.a + kSines[t], words[Stride * t + Start]) +
                                  RoundFunction(s.b, s.c, s.d);
        s = {s.d, s.b + std::rotl(sum, shifts.by[t % 4]), s.b, s.c};
    }
}

void compress(std::uint32_t* state, const unsigned char* block) {
    const BlockWords words(block);
    WorkingState s = {state[0], state[1], state[2], state[3]};
    sixteen_steps<f, 0, 1, 0>(s, words, {{7, 12, 17, 22}});
    sixteen_steps<g, 16, 5, 1>(s, words, {{5, 9, 14, 20}});
    sixteen_steps<h, 32, 3, 5>(s, words, {{4, 11, 16, 23}});
    sixteen_steps<i, 48, 7, 0>(s, words, {{6, 10, 15, 21}});
    state[0] += s.a;
    state[1] += s.b;
    state[2] += s.c;
    state[3] += s.d;
}

// The bytes of `buffer` that wait for the rest of their block.
unsigned waiting(const MD5_CTX* ctx) {
    return ctx->count[0] / 8 % kBlockBytes;
}

void add_to_count(std::uint32_t* count, unsigned length) {
    const std::uint32_t bits = length << 3;
    count[0] += bits;
    if (count[0] < bits) ++count[1];
    count[1] += length >> 29;
}

}  // namespace

void MD5Init(MD5_CTX* ctx) {
    ctx->count[0] = ctx->count[1] = 0;
    std::memcpy(ctx->state, kInitialState, sizeof kInitialState);
}

void MD5Update(MD5_CTX* ctx, const unsigned char* input, unsigned length) {
    unsigned used = waiting(ctx);
    add_to_count(ctx->count, length);
    // Moves, not copies: the input may lie in the record.
    const unsigned missing = kBlockBytes - used;
    if (length >= missing) {
        std::memmove(ctx->buffer + used, input, missing);
        compress(ctx->state, ctx->buffer);
        input += missing;
        length -= missing;
        for (; length >= kBlockBytes; length -= kBlockBytes, input += kBlockBytes)
            compress(ctx->state, input);
        used = 0;
    }
    // No move of nothing: its address may be null.
    if (length != 0) std::memmove(ctx->buffer + used, input, length);
}

void MD5Transform(std::uint32_t* state, const unsigned char* block) {
    compress(state, block);
}

void MD5Transform2(std::uint32_t* state, const unsigned char* block) {
    std::uint32_t reversed[4] = {state[3], state[2], state[1], state[0]};
    compress(reversed, block);
    for (unsigned k = 0; k < 4; ++k) state[k] = reversed[3 - k];
}

int GetBufferMD5(unsigned char* digest, const unsigned char* input, unsigned length) {
    MD5_CTX ctx;
    MD5Init(&ctx);
    MD5Update(&ctx, input, length);
    MD5Final(digest, &ctx);
    return 1;
}

void MD5Final(unsigned char* digest, MD5_CTX* ctx) {
    unsigned char length[kLengthBytes];
    put_little_endian(length, ctx->count, 2);
    const unsigned used = waiting(ctx);
    MD5Update(ctx, kPadding, (used < 56 ? 56 : 120) - used);
    MD5Update(ctx, length, kLengthBytes);
    put_little_endian(digest, ctx->state, 4);
    explicit_bzero(ctx, sizeof *ctx);  // a plain fill of a record about to die may be dropped
}

namespace vantu {

void MD5_Init(MD5_CTX* ctx) {
    MD5Init(reinterpret_cast<::MD5_CTX*>(ctx));
}

void MD5_Update(MD5_CTX* ctx, const unsigned char* input, unsigned int length) {
    MD5Update(reinterpret_cast<::MD5_CTX*>(ctx), input, length);
}

void MD5_Final(unsigned char* digest, MD5_CTX* ctx) {
    MD5Final(digest, reinterpret_cast<::MD5_CTX*>(ctx));
}

int MD5(const char* input, unsigned int length, unsigned char* digest) {
    return GetBufferMD5(digest, reinterpret_cast<const unsigned char*>(input), length);
}

}  // namespace vantu
