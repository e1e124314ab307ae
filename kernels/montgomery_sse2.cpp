// The Montgomery product with SSE2.
#include <emmintrin.h>

#include <cstdint>
#include <cstring>

namespace {

struct Lanes {
    __m128i low, high;
};

Lanes all(std::uint32_t x) {
    const __m128i v = _mm_set1_epi32(static_cast<int>(x));
    return {v, v};
}
Lanes load(const void* from) {
    const auto* const v = static_cast<const __m128i*>(from);
    return {_mm_load_si128(v), _mm_load_si128(v + 1)};
}
Lanes load_unaligned(const void* from) {
    const auto* const v = static_cast<const __m128i_u*>(from);
    return {_mm_loadu_si128(v), _mm_loadu_si128(v + 1)};
}
void store(void* to, Lanes x) {
    auto* const v = static_cast<__m128i*>(to);
    _mm_store_si128(v, x.low);
    _mm_store_si128(v + 1, x.high);
}
void store_unaligned(void* to, Lanes x) {
    auto* const v = static_cast<__m128i_u*>(to);
    _mm_storeu_si128(v, x.low);
    _mm_storeu_si128(v + 1, x.high);
}

Lanes operator+(Lanes x, Lanes y) {
    return {_mm_add_epi32(x.low, y.low), _mm_add_epi32(x.high, y.high)};
}
Lanes operator|(Lanes x, Lanes y) {
    return {_mm_or_si128(x.low, y.low), _mm_or_si128(x.high, y.high)};
}
Lanes operator&(Lanes x, Lanes y) {
    return {_mm_and_si128(x.low, y.low), _mm_and_si128(x.high, y.high)};
}
Lanes shift_up_16(Lanes x) {
    return {_mm_slli_epi32(x.low, 16), _mm_slli_epi32(x.high, 16)};
}
Lanes shift_down_13(Lanes x) {
    return {_mm_srli_epi32(x.low, 13), _mm_srli_epi32(x.high, 13)};
}
Lanes multiply_pairs(Lanes x, Lanes y) {
    return {_mm_madd_epi16(x.low, y.low), _mm_madd_epi16(x.high, y.high)};
}
Lanes join_pairs(Lanes x) {
    return x | Lanes{_mm_srli_epi64(x.low, 16), _mm_srli_epi64(x.high, 16)};
}
Lanes next_lane(Lanes x, Lanes before) {
    return Lanes{_mm_slli_si128(x.low, 4), _mm_slli_si128(x.high, 4)} |
           Lanes{_mm_srli_si128(before.high, 12), _mm_srli_si128(x.low, 12)};
}

// Digit j starts in byte 13j/8, at bit 13j%8.
int split_digit(const unsigned char* bytes, int j) {
    std::uint32_t word = 0;
    std::memcpy(&word, bytes + 13 * j / 8, sizeof(word));
    return static_cast<int>(word >> 13 * j % 8 & 0x1FFF);
}
Lanes split_digits(const unsigned char* bytes) {
    return {_mm_setr_epi32(split_digit(bytes, 0), split_digit(bytes, 1), split_digit(bytes, 2),
                           split_digit(bytes, 3)),
            _mm_setr_epi32(split_digit(bytes, 4), split_digit(bytes, 5), split_digit(bytes, 6),
                           split_digit(bytes, 7))};
}

}  // namespace

#include "kernels/montgomery_lanes.inc"

void montgomery_product_sse2(const std::uint16_t* a, const std::uint16_t* b, std::uint16_t* out,
                             const std::uint16_t* m, std::uint16_t mont, int n) {
    multiply_in_lanes(a, b, out, m, mont, n);
}
