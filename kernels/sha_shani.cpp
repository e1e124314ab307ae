// SHA's block function with the SHA instructions, which compute four rounds at a time. They are
// made for SHA-1, which has the same rounds. Its schedule differs, so the schedule is computed with
// exclusive ors of vectors.
#include <immintrin.h>

#include "kernels/sha_blocks.h"

namespace {

constexpr unsigned kPrefetchBytes = 1024;

// The instructions take the earliest word, and a, in the highest lane.
constexpr int kReverse = _MM_SHUFFLE(0, 1, 2, 3);

__m128i load(const void* bytes) {
    return _mm_loadu_si128(static_cast<const __m128i*>(bytes));
}

void store_reversed(std::uint32_t* words, __m128i vector) {
    _mm_storeu_si128(reinterpret_cast<__m128i*>(words), _mm_shuffle_epi32(vector, kReverse));
}

// Four words from their bytes, most significant first.
__m128i load_words(const unsigned char* bytes) {
    const __m128i last_byte_first = _mm_set_epi64x(0x0001020304050607, 0x08090A0B0C0D0E0F);
    return _mm_shuffle_epi8(load(bytes), last_byte_first);
}

// W[t] to W[t+3], where the arguments begin with W[t-16], W[t-12], W[t-8] and W[t-4].
__m128i next_words(__m128i t16, __m128i t12, __m128i t8, __m128i t4) {
    const __m128i older = _mm_xor_si128(_mm_xor_si128(t16, _mm_alignr_epi8(t16, t12, 8)), t8);
    // W[t+3] depends on W[t], which is in the same vector. W[t] is the first word of `older` xor
    // W[t-3]. The last lane therefore receives these two words instead of W[t].
    const __m128i t3 = _mm_shuffle_epi32(t4, _MM_SHUFFLE(2, 1, 0, 2));
    return _mm_xor_si128(_mm_xor_si128(older, _mm_srli_si128(older, 12)), t3);
}

// a to d now and four rounds earlier. The earlier a, rotated by 30, is the present e.
struct WorkingState {
    __m128i abcd, earlier;
};

template <unsigned kFirst>
[[gnu::always_inline]] inline void four_rounds(WorkingState& s, __m128i words) {
    const __m128i words_and_e = _mm_sha1nexte_epu32(s.earlier, words);
    s.earlier = s.abcd;
    s.abcd = _mm_sha1rnds4_epu32(s.abcd, words_and_e, kFirst / 20);
}

// Rounds kFirst to kFirst + 15. Replaces the previous sixteen words by those of these rounds.
template <unsigned kFirst>
[[gnu::always_inline]] inline void sixteen_rounds(WorkingState& s, __m128i* w) {
    w[0] = next_words(w[0], w[1], w[2], w[3]);
    four_rounds<kFirst>(s, w[0]);
    w[1] = next_words(w[1], w[2], w[3], w[0]);
    four_rounds<kFirst + 4>(s, w[1]);
    w[2] = next_words(w[2], w[3], w[0], w[1]);
    four_rounds<kFirst + 8>(s, w[2]);
    w[3] = next_words(w[3], w[0], w[1], w[2]);
    four_rounds<kFirst + 12>(s, w[3]);
}

// Runs all rounds on the block whose words are in `w`, and leaves W[64] to W[79] there.
[[gnu::always_inline]] inline WorkingState eighty_rounds(__m128i abcd, __m128i e, __m128i* w) {
    // The first e is not the rotation of an earlier a, so it is added without sha1nexte.
    WorkingState s = {_mm_sha1rnds4_epu32(abcd, _mm_add_epi32(e, w[0]), 0), abcd};
    four_rounds<4>(s, w[1]);
    four_rounds<8>(s, w[2]);
    four_rounds<12>(s, w[3]);
    sixteen_rounds<16>(s, w);
    sixteen_rounds<32>(s, w);
    sixteen_rounds<48>(s, w);
    sixteen_rounds<64>(s, w);
    return s;
}

}  // namespace

void sha_blocks_shani(std::uint32_t* state, std::uint32_t* schedule, const unsigned char* blocks,
                      std::size_t count) {
    __m128i abcd = _mm_shuffle_epi32(load(state), kReverse);
    __m128i e = _mm_set_epi32(static_cast<int>(state[4]), 0, 0, 0);
    __m128i w[4];
    do {
        // volatile spills these two. Otherwise g++ spills the working state, which is on the
        // critical path.
        const volatile __m128i abcd_before = abcd;
        const volatile __m128i e_before = e;
        _mm_prefetch(reinterpret_cast<const char*>(blocks) + kPrefetchBytes, _MM_HINT_T0);
        for (unsigned k = 0; k < 4; ++k) w[k] = load_words(blocks + 16 * k);
        const WorkingState s = eighty_rounds(abcd, e, w);
        e = _mm_sha1nexte_epu32(s.earlier, e_before);
        abcd = _mm_add_epi32(s.abcd, abcd_before);
        blocks += kShaBlockBytes;
    } while (--count != 0);
    store_reversed(state, abcd);
    state[4] = static_cast<std::uint32_t>(_mm_extract_epi32(e, 3));
    for (unsigned k = 0; k < 4; ++k) store_reversed(schedule + 4 * k, w[k]);
}
