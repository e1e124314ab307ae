// The limb arithmetic against arithmetic on bits: Montgomery products as additions and halvings,
// windows bit by bit.
#include <ktbase/longarith.h>

#include <array>

#include "fuzz.h"

namespace {

using Limbs = std::vector<unsigned short>;

// 40 limbs, and room for carries.
struct Number {
    std::array<std::uint32_t, 21> words = {};

    explicit Number(const Limbs& limbs) {
        for (std::size_t i = 0; i < limbs.size(); ++i) words[i / 2] |= limbs[i] << i % 2 * 16;
    }
    bool bit(std::size_t i) const { return (words[i / 32] >> i % 32 & 1) != 0; }
    void add(const Number& b, bool complemented = false) {
        std::uint64_t carry = complemented ? 1 : 0;
        for (std::size_t i = 0; i < words.size(); ++i, carry >>= 32) {
            carry += std::uint64_t{words[i]} + (complemented ? ~b.words[i] : b.words[i]);
            words[i] = static_cast<std::uint32_t>(carry);
        }
    }
    void halve() {
        for (std::size_t i = 0; i < words.size(); ++i)
            words[i] = words[i] >> 1 | (i + 1 < words.size() ? words[i + 1] << 31 : 0);
    }
};

// Montgomery's a*b / 2^bits modulo m, which fits `bits` bits.
Number product(const Number& a, const Number& b, const Number& m, std::size_t bits) {
    Number t({});
    for (std::size_t i = 0; i < bits; ++i) {
        if (b.bit(i)) t.add(a);
        if (t.bit(0)) t.add(m);
        t.halve();
    }
    if (t.bit(bits)) t.add(m, true);
    return t;
}

Limbs limbs(Input& input, unsigned count) {
    Limbs drawn(count);
    const unsigned kind = input.byte() % 4;  // all ones, nearly all ones, nearly all zeros, random
    for (unsigned short& limb : drawn) {
        limb = static_cast<unsigned short>(input.byte() << 8 | input.byte());
        if (kind == 0 || (kind < 3 && limb % 8 != 0)) limb = kind < 2 ? 0xFFFF : 0;
    }
    return drawn;
}

void check_product(Input& input) {
    const auto n = static_cast<short>(1 + input.byte() % 32);
    const unsigned places = input.byte();
    const unsigned skew = places / 4 % 2;  // a limb before each number puts it off every alignment
    Limbs m = limbs(input, n + skew);
    Limbs a = limbs(input, n + skew);
    Limbs b = limbs(input, n + skew);
    Limbs apart(a.size());
    m[skew] = static_cast<unsigned short>(input.byte() << 8 | input.byte() | 1);
    Limbs& factor = places / 8 % 2 == 0 ? b : a;
    Limbs& out = places % 4 == 0 ? apart : places % 4 == 1 ? b : a;
    Limbs* const operands[] = {&a, &b, &m};
    const Limbs before[] = {a, b, m};
    const auto number = [skew](const Limbs& x) { return Number({x.begin() + skew, x.end()}); };
    const Number expected = product(number(a), number(factor), number(m), 16U * n);
    unsigned mont = 0U - m[skew];  // -1/m, right in 3 bits, and then in 6, 12 and 24
    for (int bits = 3; bits < 16; bits *= 2) mont *= 2 + m[skew] * mont;
    multmodLAN(&a[skew], &factor[skew], &out[skew], &m[skew], static_cast<unsigned short>(mont), n);
    require(number(out).words == expected.words, "product");
    for (int i = 0; i < 3; ++i)
        require(operands[i] == &out || *operands[i] == before[i], "an operand that stays");
}

void check_windows(Input& input) {
    const auto width = static_cast<short>(1 + input.byte() % 8);
    Limbs e = limbs(input, 1 + input.byte() % 40);
    const Number number(e);
    auto position = static_cast<short>(16 * e.size() - input.byte() % (16 * e.size()));
    short window = 77;
    do {
        int high = position - 1;
        while (high >= 0 && !number.bit(high)) --high;
        int low = std::max(high - width + 1, 0);
        while (low < high && !number.bit(low)) ++low;
        unsigned value = 0;
        for (int i = high; i >= low; --i) value = 2 * value + number.bit(i);
        const short expected = high < 0 ? window : static_cast<short>(value / 2);
        stelLAN(reinterpret_cast<unsigned char*>(e.data()), &position, &window, width);
        require(position == (high < 0 ? -1 : low) && window == expected, "window");
    } while (position >= 0);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Input input(data, size);
    input.byte() % 4 != 0 ? check_product(input) : check_windows(input);
    return 0;
}
