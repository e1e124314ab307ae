// SHA's block function with the SHA instructions, which take the rounds four at a time. They are
// SHA-1's, whose rounds are the same; its schedule is not, and here is plain sums of vectors.
#include <immintrin.h>

#include "sha_block.h"

// Nothing here may be shared with code of the baseline: no template or inline function of a
// library, of which the linker might keep this file's copy for all.
namespace {

constexpr unsigned kPrefetchBytes = 1024;

// The instructions want the earliest word, and a, in the highest lane.
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
    // What W[t+3] takes from three words before is W[t], the first of the same vector. So it takes
    // the parts of W[t]: the first word of `older`, and, like W[t] itself, W[t-3].
    const __m128i t3 = _mm_shuffle_epi32(t4, _MM_SHUFFLE(2, 1, 0, 2));
    return _mm_xor_si128(_mm_xor_si128(older, _mm_srli_si128(older, 12)), t3);
}

// a to d, and the same four rounds earlier, whose a is e but for its rotation.
struct WorkingState {
    __m128i abcd, earlier;
};

template <unsigned First>
[[gnu::always_inline]] inline void four_rounds(WorkingState& s, __m128i words) {
    const __m128i words_and_e = _mm_sha1nexte_epu32(s.earlier, words);
    s.earlier = s.abcd;
    s.abcd = _mm_sha1rnds4_epu32(s.abcd, words_and_e, First / 20);
}

// Rounds First to First + 15, forming their words over the last sixteen.
template <unsigned First>
[[gnu::always_inline]] inline void sixteen_rounds(WorkingState& s, __m128i* w) {
    w[0] = next_words(w[0], w[1], w[2], w[3]);
    four_rounds<First>(s, w[0]);
    w[1] = next_words(w[1], w[2], w[3], w[0]);
    four_rounds<First + 4>(s, w[1]);
    w[2] = next_words(w[2], w[3], w[0], w[1]);
    four_rounds<First + 8>(s, w[2]);
    w[3] = next_words(w[3], w[0], w[1], w[2]);
    four_rounds<First + 12>(s, w[3]);
}

// Compresses the block whose words are in `w`, which is left with W[64] to W[79].
[[gnu::always_inline]] inline WorkingState eighty_rounds(__m128i abcd, __m128i e, __m128i* w) {
    // The first e comes as it is, not as an earlier a.
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

void sha_blocks_shani(HASH_CTX* ctx, const unsigned char* blocks, std::size_t count) {
    __m128i abcd = _mm_shuffle_epi32(load(ctx->state), kReverse);
    __m128i e = _mm_set_epi32(static_cast<int>(ctx->state[4]), 0, 0, 0);
    __m128i w[4];
    do {
        // Volatile puts these, which can wait, into memory; the compiler would put the working
        // state there, which each block begins with.
        const volatile __m128i abcd_before = abcd;
        const volatile __m128i e_before = e;
        _mm_prefetch(reinterpret_cast<const char*>(blocks) + kPrefetchBytes, _MM_HINT_T0);
        for (unsigned k = 0; k < 4; ++k) w[k] = load_words(blocks + 16 * k);
        const WorkingState s = eighty_rounds(abcd, e, w);
        e = _mm_sha1nexte_epu32(s.earlier, e_before);
        abcd = _mm_add_epi32(s.abcd, abcd_before);
        blocks += kShaBlockBytes;
    } while (--count != 0);
    store_reversed(ctx->state, abcd);
    ctx->state[4] = static_cast<std::uint32_t>(_mm_extract_epi32(e, 3));
    for (unsigned k = 0; k < 4; ++k) store_reversed(ctx->data + 4 * k, w[k]);
}
