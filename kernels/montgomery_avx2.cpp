// The Montgomery product with AVX2.
#include <immintrin.h>

#include <cstdint>

namespace {

struct Lanes {
    __m256i v;
};

Lanes all(std::uint32_t x) {
    return {_mm256_set1_epi32(static_cast<int>(x))};
}
Lanes load(const void* from) {
    return {_mm256_load_si256(static_cast<const __m256i*>(from))};
}
Lanes load_unaligned(const void* from) {
    return {_mm256_loadu_si256(static_cast<const __m256i_u*>(from))};
}
void store(void* to, Lanes x) {
    _mm256_store_si256(static_cast<__m256i*>(to), x.v);
}
void store_unaligned(void* to, Lanes x) {
    _mm256_storeu_si256(static_cast<__m256i_u*>(to), x.v);
}

Lanes operator+(Lanes x, Lanes y) {
    return {_mm256_add_epi32(x.v, y.v)};
}
Lanes operator|(Lanes x, Lanes y) {
    return {_mm256_or_si256(x.v, y.v)};
}
Lanes operator&(Lanes x, Lanes y) {
    return {_mm256_and_si256(x.v, y.v)};
}
Lanes shift_up_16(Lanes x) {
    return {_mm256_slli_epi32(x.v, 16)};
}
Lanes shift_down_13(Lanes x) {
    return {_mm256_srli_epi32(x.v, 13)};
}
Lanes multiply_pairs(Lanes x, Lanes y) {
    return {_mm256_madd_epi16(x.v, y.v)};
}
Lanes join_pairs(Lanes x) {
    return {_mm256_or_si256(x.v, _mm256_srli_epi64(x.v, 16))};
}
Lanes next_lane(Lanes x, Lanes before) {
    const __m256i upper_before_and_lower = _mm256_permute2x128_si256(before.v, x.v, 0x21);
    return {_mm256_alignr_epi8(x.v, upper_before_and_lower, 12)};
}

Lanes split_digits(const unsigned char* bytes) {
    const __m128i number = _mm_loadu_si128(reinterpret_cast<const __m128i_u*>(bytes));
    // Digit j starts in byte 13j/8, at bit 13j%8, and lies within three bytes.
    const __m256i bytes_of_digits =
        _mm256_setr_epi8(0, 1, 2, -1, 1, 2, 3, -1, 3, 4, 5, -1, 4, 5, 6, -1,  //
                         6, 7, 8, -1, 8, 9, 10, -1, 9, 10, 11, -1, 11, 12, 13, -1);
    const __m256i first_bits = _mm256_setr_epi32(0, 5, 2, 7, 4, 1, 6, 3);
    const __m256i words = _mm256_shuffle_epi8(_mm256_broadcastsi128_si256(number), bytes_of_digits);
    return {_mm256_and_si256(_mm256_srlv_epi32(words, first_bits), _mm256_set1_epi32(0x1FFF))};
}

}  // namespace

#include "kernels/montgomery_lanes.inc"

void montgomery_product_avx2(const std::uint16_t* a, const std::uint16_t* b, std::uint16_t* out,
                             const std::uint16_t* m, std::uint16_t mont, int n) {
    multiply_in_lanes(a, b, out, m, mont, n);
}
