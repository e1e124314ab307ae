// Windows bit by bit, and double powers against Python's.
#include <gtest/gtest.h>
#include <ktbase/longarith.h>
#include <sys/mman.h>

#include <algorithm>
#include <random>

#include "fips186_example.h"
#include "vectors.h"

namespace {

using fips186::Bytes;
using fips186::little_endian;

struct Window {
    short pos, win;
    bool operator==(const Window&) const = default;
};

// The bits of the exponent one at a time.
Window next_window(const unsigned char* e, short pos, short win, int width) {
    const auto bit = [e](int i) { return e[i / 8] >> i % 8 & 1; };
    int high = pos - 1;
    while (high >= 0 && !bit(high)) --high;
    if (high < 0) return {static_cast<short>(pos <= 0 ? pos - 1 : -1), win};
    int low = std::max(high - width + 1, 0);
    while (!bit(low)) ++low;
    int value = 0;
    for (int i = high; i >= low; --i) value = 2 * value + bit(i);
    return {static_cast<short>(low), static_cast<short>((value - 1) / 2)};
}

TEST(Exponentiation, windows_are_the_models_for_every_width_and_read_nothing_outside) {
    // The exponent begins and ends at an unreadable page.
    constexpr std::size_t kPage = 4096;
    auto* const pages = static_cast<unsigned char*>(
        mmap(nullptr, 3 * kPage, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0));
    ASSERT_NE(pages, MAP_FAILED);
    mprotect(pages, kPage, PROT_NONE);
    mprotect(pages + 2 * kPage, kPage, PROT_NONE);
    std::mt19937 random(40);
    for (int round = 0; round < 4000; ++round) {
        const int size = 1 + static_cast<int>(random() % 20);
        unsigned char* const e = round % 2 == 0 ? pages + kPage : pages + 2 * kPage - size;
        for (int i = 0; i < size; ++i)
            e[i] = static_cast<unsigned char>(random() % 3 == 0 ? 0 : random() & random());
        const short width = static_cast<short>(1 + random() % 8);
        Window w = {static_cast<short>(random() % static_cast<unsigned>(8 * size + 1)), 77};
        do {
            const Window expected = next_window(e, w.pos, w.win, width);
            stelLAN(e, &w.pos, &w.win, width);
            ASSERT_EQ(w, expected) << "width " << width;
        } while (w.pos >= 0);
    }
    munmap(pages, 3 * kPage);
}

struct PowerCase {
    Bytes e1, e2;
    Limbs table;
    Limbs power() {
        Limbs out(32, 0xCCCC);
        expmodLAN(out.data(), e1.data(), table.data(), e2.data());
        return out;
    }
};

// x or x - p: p comes from 2^512 mod p = 2^512 - p, the power with both exponents zero.
Limbs fully_reduced(Limbs x) {
    Limbs p(32);
    Limbs one = PowerCase{Bytes(20), Bytes(20), Limbs(8 * 32)}.power();
    subtLAN(p.data(), one.data(), 32);
    if (!std::lexicographical_compare(x.rbegin(), x.rend(), p.rbegin(), p.rend()))
        subtLAN(x.data(), p.data(), 32);
    return x;
}

TEST(Exponentiation, powers_agree_with_the_vectors_for_bases_of_any_order) {
    const auto cases = vectors("power");
    ASSERT_EQ(cases.size(), 150U);
    for (const auto& v : cases) {
        PowerCase c{little_endian(v[0]), little_endian(v[1]), {}};
        for (std::size_t entry = 2; entry < 10; ++entry) {
            const Limbs number = limbs(v[entry]);
            c.table.insert(c.table.end(), number.begin(), number.end());
        }
        ASSERT_EQ(fully_reduced(c.power()), limbs(v[10])) << v[0] << ' ' << v[1];
    }
}

TEST(Exponentiation, a_single_window_gives_its_table_entry_limb_for_limb) {
    PowerCase c{Bytes(20), Bytes(20), Limbs(8 * 32)};
    for (std::size_t i = 0; i < c.table.size(); ++i)
        c.table[i] = static_cast<unsigned short>(0xFFFF - i);  // above p, and not to be normalised
    for (std::size_t chunk = 0; chunk < 4; ++chunk) {
        for (const unsigned char window : {1, 3}) {
            c.e2.assign(20, 0);
            c.e2[5 * chunk] = window;
            const auto entry = c.table.begin() + static_cast<long>(32 * (2 * chunk + window / 2));
            EXPECT_EQ(c.power(), Limbs(entry, entry + 32)) << chunk << ' ' << int{window};
        }
    }
}

}  // namespace
