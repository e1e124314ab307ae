// MD5 (RFC 1321), and the same operations under the names of the vantu namespace.
#include <ktbase/digest.h>

#include <bit>
#include <cstddef>
#include <cstring>

static_assert(sizeof(MD5_CTX) == 88);
static_assert(offsetof(MD5_CTX, count) == 16 && offsetof(MD5_CTX, buffer) == 24);
// vantu's functions pass their record to the global functions.
static_assert(sizeof(vantu::MD5_CTX) == sizeof(MD5_CTX));
static_assert(offsetof(vantu::MD5_CTX, count) == offsetof(MD5_CTX, count) &&
              offsetof(vantu::MD5_CTX, buffer) == offsetof(MD5_CTX, buffer));

// The message, the length and the digest consist of little-endian words, so words are copied as
// they lie in memory.
static_assert(std::endian::native == std::endian::little);

namespace {

constexpr unsigned kBlockBytes = 64;
constexpr unsigned kBlockWords = 16;
constexpr unsigned kLengthBytes = 8;
constexpr unsigned kDigestBytes = 16;

constexpr std::uint32_t kInitialState[4] = {0x67452301, 0xefcdab89, 0x98badcfe, 0x10325476};

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

// A little-endian word at any address. It is volatile so that each use loads it again. Otherwise
// the compiler spills words of the message to the stack.
using WordInPlace [[gnu::aligned(1), gnu::may_alias]] = const volatile std::uint32_t;

std::uint32_t word_at(const unsigned char* bytes) {
    return *reinterpret_cast<WordInPlace*>(bytes);
}

struct Round {
    unsigned stride, start;  // step t takes the word stride * t + start, modulo 16
    int shifts[4];
};
constexpr Round kRounds[4] = {{1, 0, {7, 12, 17, 22}},
                              {5, 1, {5, 9, 14, 20}},
                              {3, 5, {4, 11, 16, 23}},
                              {7, 0, {6, 10, 15, 21}}};

// Step kStep + 1 of section 3.4. b is the result of the previous step and the critical path, so
// each of the functions F to I is added in an order that needs b last. The word is loaded from the
// block where it is added, so no copy of the message is left to wipe.
template <unsigned kStep>
[[gnu::always_inline]] inline void step(std::uint32_t& a, std::uint32_t b, std::uint32_t c,
                                        std::uint32_t d, const unsigned char* block) {
    constexpr const Round& kRound = kRounds[kStep / 16];
    constexpr unsigned kWord = (kRound.stride * kStep + kRound.start) % kBlockWords;
    a += kSines[kStep];
    a += word_at(block + 4 * kWord);
    asm("" : "+r"(a));  // keeps the compiler from delaying the addition and spilling the word
    if constexpr (kStep < 16) {
        a += ((c ^ d) & b) ^ d;
    } else if constexpr (kStep < 32) {
        // G as a sum: no bit is set in both terms.
        a += c & ~d;
        a += b & d;
    } else if constexpr (kStep < 48) {
        a += (c ^ d) ^ b;
    } else {
        a += c ^ (b | ~d);
    }
    a = b + std::rotl(a, kRound.shifts[kStep % 4]);
}

struct WorkingState {
    std::uint32_t a, b, c, d;
};

template <unsigned kFirst>
[[gnu::always_inline]] inline void sixteen_steps(WorkingState& s, const unsigned char* block) {
    step<kFirst>(s.a, s.b, s.c, s.d, block);
    step<kFirst + 1>(s.d, s.a, s.b, s.c, block);
    step<kFirst + 2>(s.c, s.d, s.a, s.b, block);
    step<kFirst + 3>(s.b, s.c, s.d, s.a, block);
    if constexpr (kFirst % 16 < 12) sixteen_steps<kFirst + 4>(s, block);
}

// Compresses `count` consecutive blocks.
void compress(std::uint32_t* state, const unsigned char* block, unsigned count) {
    WorkingState s = {state[0], state[1], state[2], state[3]};
    for (; count != 0; --count, block += kBlockBytes) {
        sixteen_steps<0>(s, block);
        sixteen_steps<16>(s, block);
        sixteen_steps<32>(s, block);
        sixteen_steps<48>(s, block);
        s = {state[0] + s.a, state[1] + s.b, state[2] + s.c, state[3] + s.d};
        state[0] = s.a;
        state[1] = s.b;
        state[2] = s.c;
        state[3] = s.d;
    }
}

// The number of bytes in `buffer`.
unsigned buffered_bytes(const MD5_CTX* ctx) {
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
    unsigned used = buffered_bytes(ctx);
    add_to_count(ctx->count, length);
    // memmove, because the input may lie in the record.
    const unsigned missing = kBlockBytes - used;
    if (length >= missing) {
        std::memmove(ctx->buffer + used, input, missing);
        compress(ctx->state, ctx->buffer, 1);
        input += missing;
        length -= missing;
        const unsigned blocks = length / kBlockBytes;
        compress(ctx->state, input, blocks);
        input += blocks * kBlockBytes;
        length %= kBlockBytes;
        used = 0;
    }
    // memmove from null is undefined even for 0 bytes.
    if (length != 0) std::memmove(ctx->buffer + used, input, length);
}

void MD5Transform(std::uint32_t* state, const unsigned char* block) {
    compress(state, block, 1);
}

void MD5Transform2(std::uint32_t* state, const unsigned char* block) {
    std::uint32_t reversed[4] = {state[3], state[2], state[1], state[0]};
    compress(reversed, block, 1);
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
    // A bit 1, then zeros up to 8 bytes before the end of a block, then the count.
    unsigned char padding[kBlockBytes + kLengthBytes] = {0x80};
    const unsigned used = buffered_bytes(ctx);
    const unsigned zeros_end = (used < 56 ? 56 : 120) - used;
    std::memcpy(padding + zeros_end, ctx->count, kLengthBytes);
    MD5Update(ctx, padding, zeros_end + kLengthBytes);
    std::memcpy(digest, ctx->state, kDigestBytes);
    explicit_bzero(ctx, sizeof *ctx);  // the compiler may drop a memset whose result is not read
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
