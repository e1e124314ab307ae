// Models of the limb arithmetic on single bits: products by additions and halvings, windows by the
// bits of an exponent.
#ifndef KTBASE_TESTS_LONGARITH_MODEL_H
#define KTBASE_TESTS_LONGARITH_MODEL_H

#include <ktbase/longarith.h>

#include <algorithm>
#include <array>
#include <cstdint>

#include "../check.h"

using Limbs = std::vector<unsigned short>;

// A number in 32-bit words, with room for carries.
using Words = std::vector<std::uint32_t>;

inline Words words_of(const Limbs& limbs) {
    Words words(limbs.size() / 2 + 1);
    for (std::size_t i = 0; i < limbs.size(); ++i) words[i / 2] |= limbs[i] << i % 2 * 16;
    return words;
}

inline bool bit(const Words& words, std::size_t i) {
    return (words[i / 32] >> i % 32 & 1) != 0;
}

// Adds b, or its complement and a carry, modulo a power of 2.
inline void add(Words& a, const Words& b, std::uint32_t complement = 0, unsigned carry = 0) {
    std::uint64_t sum = carry;
    for (std::size_t i = 0; i < a.size(); ++i, sum >>= 32) {
        sum += std::uint64_t{a[i]} + (b[i] ^ complement);
        a[i] = static_cast<std::uint32_t>(sum);
    }
}

inline void halve(Words& a) {
    for (std::size_t i = 0; i + 1 < a.size(); ++i) a[i] = a[i] >> 1 | a[i + 1] << 31;
    a.back() >>= 1;
}

// a*b / 2^bits modulo m. Subtracts m once if the sum has more than `bits` bits.
inline Limbs montgomery_product(const Limbs& a, const Limbs& b, const Limbs& m) {
    const std::size_t bits = 16 * m.size();
    const Words x = words_of(a);
    const Words y = words_of(b);
    const Words modulus = words_of(m);
    Words sum(x.size());
    for (std::size_t i = 0; i < bits; ++i) {
        if (bit(y, i)) add(sum, x);
        if (bit(sum, 0)) add(sum, modulus);
        halve(sum);
    }
    if (bit(sum, bits)) add(sum, modulus, ~0U, 1);
    Limbs product(m.size());
    for (std::size_t i = 0; i < product.size(); ++i)
        product[i] = static_cast<unsigned short>(sum[i / 2] >> i % 2 * 16);
    return product;
}

// -1/m modulo 2^16. Each step doubles the number of correct low bits, from 3.
inline unsigned short montgomery_constant(const Limbs& m) {
    unsigned constant = 0U - m[0];
    for (int bits = 3; bits < 16; bits *= 2) constant *= 2 + m[0] * constant;
    return static_cast<unsigned short>(constant);
}

// The numbers in a row, from an address that is not a multiple of 4.
inline Limbs joined(const std::array<Limbs, 4>& numbers) {
    Limbs memory(1);
    for (const Limbs& number : numbers) memory.insert(memory.end(), number.begin(), number.end());
    return memory;
}

// Checks a*b in memory of its own and in place of each operand, and a square if a equals b. Only
// the result may change. Requires numbers of one size and an odd m.
inline void check_product(const Limbs& a, const Limbs& b, const Limbs& m) {
    enum { kA, kB, kOut, kM };
    const struct {
        int first, second, out;
    } placements[] = {{kA, kB, kOut}, {kA, kB, kA}, {kA, kB, kB}, {kA, kA, kOut}, {kA, kA, kA}};
    const std::size_t n = m.size();
    const Limbs product = montgomery_product(a, b, m);
    for (const auto& [first, second, out] : placements) {
        if (first == second && a != b) continue;
        std::array<Limbs, 4> numbers = {a, b, Limbs(n), m};
        Limbs memory = joined(numbers);
        const auto limbs = [&memory, n](int number) { return &memory[1 + number * n]; };
        multmodLAN(limbs(first), limbs(second), limbs(out), limbs(kM), montgomery_constant(m),
                   static_cast<short>(n));
        numbers[out] = product;
        require(memory == joined(numbers), "a product");
    }
}

// Checks all windows of an exponent below bit `position`.
inline void check_windows(Bytes exponent, short position, short width) {
    const auto is_set = [exponent](int i) { return (exponent[i / 8] >> i % 8 & 1) != 0; };
    short window = 77;
    while (position >= 0) {
        int high = position - 1;
        while (high >= 0 && !is_set(high)) --high;
        int low = std::max(high - width + 1, 0);
        while (low < high && !is_set(low)) ++low;
        int value = 0;
        for (int i = high; i >= low; --i) value = 2 * value + (is_set(i) ? 1 : 0);
        const int expected = high < 0 ? window : value / 2;
        stelLAN(exponent.data(), &position, &window, width);
        require(position == (high < 0 ? -1 : low), "the position of a window");
        require(window == expected, "a window");
    }
}

#endif
