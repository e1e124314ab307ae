// The limb arithmetic against arithmetic on sets of bits: Montgomery products as additions and
// halvings, windows bit by bit.
#include <ktbase/longarith.h>

#include <bitset>

#include "fuzz.h"

namespace {

using Limbs = std::vector<unsigned short>;
using Number = std::bitset<648>;  // 40 limbs, and room for carries

Number number(const Limbs& limbs) {
    Number a;
    for (std::size_t i = limbs.size(); i-- > 0;) a = a << 16 | Number(limbs[i]);
    return a;
}
Number sum(Number a, Number b) {
    while (b.any()) {
        const Number carries = (a & b) << 1;
        a ^= b;
        b = carries;
    }
    return a;
}
Number half(const Number& a, const Number& m) {
    return (a[0] ? sum(a, m) : a) >> 1;
}
// Montgomery's a*b / 2^bits modulo m.
Number product(const Number& a, const Number& b, const Number& m, std::size_t bits) {
    Number t;
    for (std::size_t i = 0; i < bits; ++i) t = half(b[i] ? sum(t, a) : t, m);
    return t;
}

Limbs limbs(Input& input, int count) {
    Limbs drawn(static_cast<std::size_t>(count));
    const unsigned edge = input.byte();  // makes long runs of ones and zeros likely
    for (unsigned short& limb : drawn) {
        limb = static_cast<unsigned short>(input.byte() << 8 | input.byte());
        if (edge < 128 && limb % 2 == 0) limb = edge < 64 ? 0xFFFF : 0;
    }
    return drawn;
}

void check_product(Input& input) {
    const auto n = static_cast<short>(1 + input.byte() % 32);
    const unsigned where = input.byte() % 4;
    Limbs m = limbs(input, n);
    Limbs a = limbs(input, n);
    Limbs b = limbs(input, n);
    Limbs apart(a.size());
    m[0] |= 1;
    Limbs& factor = where == 3 ? a : b;
    Limbs& out = where == 0 ? apart : where == 1 ? b : a;
    Number expected = product(number(a), number(factor), number(m), 16 * a.size());
    while (expected[16 * a.size()]) expected = ~sum(~expected, number(m));
    unsigned mont = 0U - m[0];  // -1/m, right in 3 bits, and then in 6, 12 and 24
    for (int bits = 3; bits < 16; bits *= 2) mont *= 2 + m[0] * mont;
    multmodLAN(a.data(), factor.data(), out.data(), m.data(), static_cast<unsigned short>(mont), n);
    require(number(out) == expected, "product");
}

void check_windows(Input& input) {
    const auto width = static_cast<short>(1 + input.byte() % 8);
    Limbs e = limbs(input, 1 + static_cast<int>(input.byte() % 40));
    const Number bits = number(e);
    auto position = static_cast<short>(16 * e.size() - input.byte() % 16);
    short window = 77;
    do {
        int high = position - 1;
        while (high >= 0 && !bits[high]) --high;
        int low = std::max(high - width + 1, 0);
        while (low < high && !bits[low]) ++low;
        unsigned value = 0;
        for (int i = high; i >= low; --i) value = 2 * value + bits[i];
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
