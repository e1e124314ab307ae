// SHA's block function with SSE2: the schedule four words a vector, the rounds one by one.
#include <emmintrin.h>

#include "sha_block.h"

// Nothing here may be shared with code of the baseline: no template or inline function of a
// library, of which the linker might keep this file's copy for all.
namespace {

constexpr unsigned kPrefetchBytes = 1024;

__m128i load(const unsigned char* bytes) {
    return _mm_loadu_si128(reinterpret_cast<const __m128i*>(bytes));
}

void store(std::uint32_t* words, __m128i vector) {
    _mm_storeu_si128(reinterpret_cast<__m128i*>(words), vector);
}

// Four words from their bytes, most significant first.
__m128i load_words(const unsigned char* bytes) {
    const __m128i in = load(bytes);
    const __m128i halves = _mm_or_si128(_mm_slli_epi16(in, 8), _mm_srli_epi16(in, 8));
    constexpr int kSwap = _MM_SHUFFLE(2, 3, 0, 1);
    return _mm_shufflehi_epi16(_mm_shufflelo_epi16(halves, kSwap), kSwap);
}

// W[t] to W[t+3], where the arguments begin with W[t-16], W[t-12], W[t-8] and W[t-4].
__m128i next_words(__m128i t16, __m128i t12, __m128i t8, __m128i t4) {
    const __m128i t14 =
        _mm_castpd_si128(_mm_shuffle_pd(_mm_castsi128_pd(t16), _mm_castsi128_pd(t12), 1));
    const __m128i older = _mm_xor_si128(_mm_xor_si128(t16, t14), t8);
    // What W[t+3] takes from three words before is W[t], the first of the same vector. So it takes
    // the parts of W[t]: the first word of `older`, and, like W[t] itself, W[t-3].
    const __m128i t3 = _mm_shuffle_epi32(t4, _MM_SHUFFLE(1, 3, 2, 1));
    return _mm_xor_si128(_mm_xor_si128(older, _mm_slli_si128(older, 12)), t3);
}

std::uint32_t rotated(std::uint32_t word, int by) {
    return word << by | word >> (32 - by);
}

struct WorkingState {
    std::uint32_t a, b, c, d, e;
};

// One round with its variables in place; the sum is left in e, for the caller to rename. What was
// known longest is added first, since each round waits for the sum of the one before. The empty
// instructions hold the compiler to that order.
template <unsigned Twenty>
[[gnu::always_inline]] inline void one_round(std::uint32_t a, std::uint32_t& b, std::uint32_t c,
                                             std::uint32_t d, std::uint32_t& e,
                                             std::uint32_t word_and_constant) {
    e += word_and_constant;
    asm("" : "+r"(e));
    if constexpr (Twenty == 0) {
        e += ((c ^ d) & b) ^ d;
    } else if constexpr (Twenty == 2) {
        // The majority in two sums: no bit is set in both.
        e += c & d;
        e += (c ^ d) & b;
    } else {
        e += (c ^ d) ^ b;
    }
    asm("" : "+r"(e));
    b = rotated(b, 30);
    e += rotated(a, 5);
}

// The sums are read as volatile, or the compiler would take each out of its vector by itself.
template <unsigned Twenty>
[[gnu::always_inline]] inline void four_rounds(WorkingState& s,
                                               const volatile std::uint32_t* sums) {
    one_round<Twenty>(s.a, s.b, s.c, s.d, s.e, sums[0]);
    one_round<Twenty>(s.e, s.a, s.b, s.c, s.d, sums[1]);
    one_round<Twenty>(s.d, s.e, s.a, s.b, s.c, sums[2]);
    one_round<Twenty>(s.c, s.d, s.e, s.a, s.b, sums[3]);
    s = {s.b, s.c, s.d, s.e, s.a};
}

// Rounds First to First + 15, whose words are in `w`. The group of twenty may change in between.
template <unsigned First>
[[gnu::always_inline]] inline void sixteen_rounds(WorkingState& s, const __m128i* w) {
    constexpr unsigned kTwenty[4] = {First / 20, (First + 4) / 20, (First + 8) / 20,
                                     (First + 12) / 20};
    std::uint32_t sums[16];
    for (unsigned k = 0; k < 4; ++k) {
        const auto constant = static_cast<int>(kShaConstants[kTwenty[k]]);
        store(sums + 4 * k, _mm_add_epi32(w[k], _mm_set1_epi32(constant)));
    }
    four_rounds<kTwenty[0]>(s, sums);
    four_rounds<kTwenty[1]>(s, sums + 4);
    four_rounds<kTwenty[2]>(s, sums + 8);
    four_rounds<kTwenty[3]>(s, sums + 12);
}

// The next sixteen words over the last.
[[gnu::always_inline]] inline void next_sixteen(__m128i* w) {
    w[0] = next_words(w[0], w[1], w[2], w[3]);
    w[1] = next_words(w[1], w[2], w[3], w[0]);
    w[2] = next_words(w[2], w[3], w[0], w[1]);
    w[3] = next_words(w[3], w[0], w[1], w[2]);
}

// Compresses the block whose words are in `w`, which is left with W[64] to W[79].
[[gnu::always_inline]] inline WorkingState eighty_rounds(WorkingState s, __m128i* w) {
    sixteen_rounds<0>(s, w);
    next_sixteen(w);
    sixteen_rounds<16>(s, w);
    next_sixteen(w);
    sixteen_rounds<32>(s, w);
    next_sixteen(w);
    sixteen_rounds<48>(s, w);
    next_sixteen(w);
    sixteen_rounds<64>(s, w);
    return s;
}

}  // namespace

void sha_blocks_sse2(HASH_CTX* ctx, const unsigned char* blocks, std::size_t count) {
    std::uint32_t* const state = ctx->state;
    WorkingState s = {state[0], state[1], state[2], state[3], state[4]};
    __m128i w[4];
    do {
        _mm_prefetch(reinterpret_cast<const char*>(blocks) + kPrefetchBytes, _MM_HINT_T0);
        for (unsigned k = 0; k < 4; ++k) w[k] = load_words(blocks + 16 * k);
        s = eighty_rounds(s, w);
        s = {state[0] + s.a, state[1] + s.b, state[2] + s.c, state[3] + s.d, state[4] + s.e};
        state[0] = s.a;
        state[1] = s.b;
        state[2] = s.c;
        state[3] = s.d;
        state[4] = s.e;
        blocks += kShaBlockBytes;
    } while (--count != 0);
    for (unsigned k = 0; k < 4; ++k) store(ctx->data + 4 * k, w[k]);
}
