// The limb arithmetic against plain long arithmetic done bit by bit: Montgomery products and
// reductions as additions and halvings, inverses multiplied back by doublings, windows as bits of
// one word.
#include <ktbase/longarith.h>

#include <array>
#include <bit>
#include <cstring>

#include "../longarith/fips186_example.h"
#include "fuzz.h"

namespace {

using Limbs = std::vector<unsigned short>;
using Number = std::array<std::uint32_t, 21>;  // 40 limbs and room for a carry

Number number(const void* little_endian, std::size_t bytes) {
    Number a{};
    std::memcpy(a.data(), little_endian, bytes);
    return a;
}
Number number(const Limbs& limbs) {
    return number(limbs.data(), 2 * limbs.size());
}
bool bit(const Number& a, unsigned i) {
    return (a[i / 32] >> i % 32 & 1) != 0;
}
Number operator+(Number a, const Number& b) {
    std::uint64_t carry = 0;
    for (std::size_t i = 0; i < a.size(); ++i, carry >>= 32)
        a[i] = static_cast<std::uint32_t>(carry += std::uint64_t{a[i]} + b[i]);
    return a;
}
Number operator-(const Number& a, Number b) {
    for (std::uint32_t& word : b) word = ~word;
    return a + b + Number{1};
}
Number residue(const Number& a, const Number& m) {  // of a below 2m
    return std::lexicographical_compare(a.rbegin(), a.rend(), m.rbegin(), m.rend()) ? a : a - m;
}
Number halved(Number a, const Number& m) {
    if (bit(a, 0)) a = a + m;
    for (std::size_t i = 0; i < a.size(); ++i)
        a[i] = a[i] >> 1 | (i + 1 < a.size() ? a[i + 1] << 31 : 0);
    return a;
}

Limbs limbs(Input& input, int count, bool odd = false) {
    Limbs drawn(static_cast<std::size_t>(count));
    const unsigned edge = input.byte();  // makes long runs of ones and zeros likely
    for (unsigned short& limb : drawn) {
        limb = static_cast<unsigned short>(input.byte() << 8 | input.byte());
        if (edge < 128 && limb % 2 == 0) limb = edge < 64 ? 0xFFFF : 0;
    }
    if (odd) drawn[0] |= 1;
    return drawn;
}
unsigned short montgomery_constant(const Limbs& m) {
    unsigned inverse = m[0];  // right in 3 bits, and then in 6, 12 and 24
    for (int i = 0; i < 3; ++i) inverse *= 2 - m[0] * inverse;
    return static_cast<unsigned short>(0 - inverse);
}

void check_product(Input& input) {
    const auto n = static_cast<short>(1 + input.byte() % 32);
    const unsigned where = input.byte() % 4;
    Limbs m = limbs(input, n, true);
    Limbs a = limbs(input, n);
    Limbs b = where == 3 ? a : limbs(input, n);
    Limbs apart(a.size());
    Number t{};
    for (int i = 0; i < 16 * n; ++i) t = halved(bit(number(b), i) ? t + number(a) : t, number(m));
    while (bit(t, 16 * n)) t = t - number(m);
    Limbs& out = where == 0 ? apart : where == 1 ? b : a;
    multmodLAN(a.data(), where == 3 ? a.data() : b.data(), out.data(), m.data(),
               montgomery_constant(m), n);
    require(number(out) == t, "product");
}

void check_reduction(Input& input) {
    const auto na = static_cast<short>(1 + input.byte() % 40);
    const auto nm = static_cast<short>(1 + input.byte() % 40);
    const auto k = static_cast<short>(input.byte() % 40);
    Limbs m = limbs(input, nm, true);
    Limbs a = limbs(input, std::max(na, nm));
    Number t = number(a);
    for (int i = 0; i < 16 * k; ++i) t = halved(t, number(m));
    privLAN(a.data(), m.data(), montgomery_constant(m), na, nm, k);
    require(number(a) == t, "reduction");
}

void check_inverse(Input& input) {
    const Bytes q = fips186::little_endian(fips186::kQ);
    Bytes x = input.byte() % 8 == 0 ? q : input.bytes(20);
    x[0] ^= static_cast<unsigned char>(input.byte() % 4);
    Limbs inverse(10);
    invertLAN(x.data(), inverse.data());
    const Number modulus = number(q.data(), 20);
    require(number(inverse) == residue(number(inverse), modulus), "inverse below q");
    Number product{};
    for (int i = 159; i >= 0; --i) {
        product = residue(product + product, modulus);
        if (bit(number(x.data(), 20), i)) product = residue(product + number(inverse), modulus);
    }
    require(product == Number{x != q && x != Bytes(20) ? 1U : 0U}, "inverse");
}

void check_windows(Input& input) {
    const auto width = static_cast<short>(1 + input.byte() % 8);
    Bytes e = input.bytes(1 + input.byte() % 8);
    std::uint64_t left = 0;
    std::memcpy(&left, e.data(), e.size());
    auto position = static_cast<short>(8 * e.size() - input.byte() % 8);
    left &= (std::uint64_t{2} << (position - 1)) - 1;
    for (short window = 77;;) {
        const short before = window;
        stelLAN(e.data(), &position, &window, width);
        if (left == 0) return require(position == -1 && window == before, "end of the windows");
        const int low = std::max(static_cast<int>(std::bit_width(left)) - width, 0);
        const auto value = static_cast<int>(left >> low);
        const int zeros = std::countr_zero(static_cast<unsigned>(value));
        require(position == low + zeros && window == value >> (zeros + 1), "window");
        left &= (std::uint64_t{1} << low) - 1;
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Input input(data, size);
    constexpr void (*kChecks[])(Input&) = {check_product, check_reduction, check_inverse,
                                           check_windows};
    kChecks[input.byte() % 4](input);
    return 0;
}
