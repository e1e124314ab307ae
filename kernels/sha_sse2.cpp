// SHA's block function with SSE2: the schedule in vectors of four words, the rounds one by one.
#include <emmintrin.h>

#include "kernels/sha_blocks.h"

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
    // W[t+3] depends on W[t], which is in the same vector. W[t] is the first word of `older` xor
    // W[t-3]. The last lane therefore receives these two words instead of W[t].
    const __m128i t3 = _mm_shuffle_epi32(t4, _MM_SHUFFLE(1, 3, 2, 1));
    return _mm_xor_si128(_mm_xor_si128(older, _mm_slli_si128(older, 12)), t3);
}

std::uint32_t rotated(std::uint32_t word, int by) {
    return word << by | word >> (32 - by);
}

struct WorkingState {
    std::uint32_t a, b, c, d, e;
};

// One round in place. Leaves the sum in e, and the caller renames the variables. The sum of the
// previous round is a, on the critical path, so its term is added last. The empty asm statements
// keep the compiler from reordering the additions.
template <unsigned kGroup>
[[gnu::always_inline]] inline void one_round(std::uint32_t a, std::uint32_t& b, std::uint32_t c,
                                             std::uint32_t d, std::uint32_t& e,
                                             std::uint32_t word_and_constant) {
    e += word_and_constant;
    asm("" : "+r"(e));
    if constexpr (kGroup == 0) {
        e += ((c ^ d) & b) ^ d;
    } else if constexpr (kGroup == 2) {
        // The majority as a sum: no bit is set in both terms.
        e += c & d;
        e += (c ^ d) & b;
    } else {
        e += (c ^ d) ^ b;
    }
    asm("" : "+r"(e));
    b = rotated(b, 30);
    e += rotated(a, 5);
}

// `sums` is volatile so that each sum is loaded from memory. Otherwise the compiler extracts each
// one from its vector, which is slower.
template <unsigned kGroup>
[[gnu::always_inline]] inline void four_rounds(WorkingState& s,
                                               const volatile std::uint32_t* sums) {
    one_round<kGroup>(s.a, s.b, s.c, s.d, s.e, sums[0]);
    one_round<kGroup>(s.e, s.a, s.b, s.c, s.d, sums[1]);
    one_round<kGroup>(s.d, s.e, s.a, s.b, s.c, sums[2]);
    one_round<kGroup>(s.c, s.d, s.e, s.a, s.b, sums[3]);
    s = {s.b, s.c, s.d, s.e, s.a};
}

// Rounds kFirst to kFirst + 15, whose words are in `w`. Twenty rounds with one function and
// constant are a group; a group may end within the sixteen.
template <unsigned kFirst>
[[gnu::always_inline]] inline void sixteen_rounds(WorkingState& s, const __m128i* w) {
    constexpr unsigned kGroups[4] = {kFirst / 20, (kFirst + 4) / 20, (kFirst + 8) / 20,
                                     (kFirst + 12) / 20};
    std::uint32_t sums[16];
    for (unsigned k = 0; k < 4; ++k) {
        const auto constant = static_cast<int>(kShaConstants[kGroups[k]]);
        store(sums + 4 * k, _mm_add_epi32(w[k], _mm_set1_epi32(constant)));
    }
    four_rounds<kGroups[0]>(s, sums);
    four_rounds<kGroups[1]>(s, sums + 4);
    four_rounds<kGroups[2]>(s, sums + 8);
    four_rounds<kGroups[3]>(s, sums + 12);
}

// Replaces sixteen words by the next sixteen.
[[gnu::always_inline]] inline void next_sixteen(__m128i* w) {
    w[0] = next_words(w[0], w[1], w[2], w[3]);
    w[1] = next_words(w[1], w[2], w[3], w[0]);
    w[2] = next_words(w[2], w[3], w[0], w[1]);
    w[3] = next_words(w[3], w[0], w[1], w[2]);
}

// Runs all rounds on the block whose words are in `w`, and leaves W[64] to W[79] there.
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

void sha_blocks_sse2(std::uint32_t* state, std::uint32_t* schedule, const unsigned char* blocks,
                     std::size_t count) {
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
    for (unsigned k = 0; k < 4; ++k) store(schedule + 4 * k, w[k]);
}
