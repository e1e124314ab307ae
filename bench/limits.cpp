#include "limits.h"

#include <immintrin.h>

#include <cstdint>

namespace {

template <int kFunction>
[[gnu::target("sha,sse4.1"), gnu::always_inline]] inline __m128i twenty_rounds(__m128i abcd,
                                                                               __m128i words) {
    for (int i = 0; i < 5; ++i) abcd = _mm_sha1rnds4_epu32(abcd, words, kFunction);
    return abcd;
}

}  // namespace

[[gnu::target("sha,sse4.1")]] void sha_round_chain(unsigned blocks) {
    const __m128i words = _mm_set1_epi32(1);
    __m128i abcd = words;
    for (; blocks != 0; --blocks) {
        abcd = twenty_rounds<0>(abcd, words);
        abcd = twenty_rounds<1>(abcd, words);
        abcd = twenty_rounds<2>(abcd, words);
        abcd = twenty_rounds<3>(abcd, words);
        asm volatile("" : "+x"(abcd));
    }
}

void md5_step_chain(unsigned blocks) {
    std::uint32_t b = 1;
    const std::uint32_t x = 2;
    for (; blocks != 0; --blocks) {
        for (int step = 0; step < 16; ++step)
            asm volatile("and %1,%0; xor %1,%0; add %1,%0; rol $7,%0; add %1,%0"
                         : "+r"(b)
                         : "r"(x));
        for (int step = 0; step < 16; ++step)
            asm volatile("and %1,%0; add %1,%0; rol $5,%0; add %1,%0" : "+r"(b) : "r"(x));
        for (int step = 0; step < 16; ++step)
            asm volatile("xor %1,%0; add %1,%0; rol $4,%0; add %1,%0" : "+r"(b) : "r"(x));
        for (int step = 0; step < 16; ++step)
            asm volatile("or %1,%0; xor %1,%0; add %1,%0; rol $6,%0; add %1,%0" : "+r"(b) : "r"(x));
    }
}
