// Limb vectors against Python's integers, and the limits of their counts.
#include <gtest/gtest.h>
#include <ktbase/longarith.h>

#include "vectors.h"

namespace {

TEST(LimbArithmetic, byte_strings_of_odd_and_even_length_map_to_limbs_and_back) {
    unsigned char bytes[] = {1, 2, 3, 0xFF};
    unsigned short words[] = {9, 9, 9};
    packLAN(bytes, words, 3);
    EXPECT_EQ(Limbs(words, words + 3), (Limbs{0x0201, 0x0003, 9}));
    words[1] = 0xAB03;
    unsigned char back[] = {7, 7, 7, 7};
    unpackLAN(words, back, 3);
    EXPECT_EQ(std::vector(back, back + 4), (std::vector<unsigned char>{1, 2, 3, 7}));

    // The longest string there is: an index of the count's own type would never get past it.
    std::vector<unsigned char> longest(32767, 0xA5);
    Limbs many(16384);
    packLAN(longest.data(), many.data(), 32767);
    EXPECT_EQ(many[16382], 0xA5A5);
    EXPECT_EQ(many[16383], 0x00A5);
    std::vector<unsigned char> again(32768);
    unpackLAN(many.data(), again.data() + 1, 32767);  // odd addresses do
    EXPECT_EQ(std::vector(again.begin() + 1, again.end()), longest);
}

TEST(LimbArithmetic, a_count_of_zero_or_below_looks_at_nothing) {
    for (const short count : {short{0}, short{-1}, short{-32768}}) {
        packLAN(nullptr, nullptr, count);
        unpackLAN(nullptr, nullptr, count);
        subtLAN(nullptr, nullptr, count);
        multmodLAN(nullptr, nullptr, nullptr, nullptr, 1, count);
        privLAN(nullptr, nullptr, 1, 4, 4, count);
    }
}

TEST(LimbArithmetic, subtraction_borrows_through_and_drops_the_last_borrow) {
    Limbs a = {0, 0, 7};
    Limbs one = {1, 0, 0};
    subtLAN(a.data(), one.data(), 2);
    EXPECT_EQ(a, (Limbs{0xFFFF, 0xFFFF, 7}));
    subtLAN(a.data(), one.data(), 3);
    EXPECT_EQ(a, (Limbs{0xFFFE, 0xFFFF, 7}));
    subtLAN(a.data(), a.data(), 3);
    EXPECT_EQ(a, (Limbs{0, 0, 0}));
    Limbs zeros(32767);
    Limbs ones(32767);
    ones[0] = 1;
    subtLAN(zeros.data(), ones.data(), 32767);
    EXPECT_EQ(zeros, Limbs(32767, 0xFFFF));
}

TEST(LimbArithmetic, products_are_exact_limb_for_limb_wherever_the_result_goes) {
    int cases = 0;
    for (const auto& v : vectors("product")) {
        const short n = static_cast<short>(std::stoi(v[0]));
        const Limbs a = limbs(v[1]);
        const Limbs b = limbs(v[2]);
        Limbs m = limbs(v[3]);
        const unsigned short mont = limbs(v[4])[0];
        const Limbs expected = limbs(v[5]);
        enum { kApart, kOverA, kOverB, kOverBoth };
        for (const int where : {kApart, kOverA, kOverB, kOverBoth}) {
            if (where == kOverBoth && a != b) continue;
            Limbs x = a;
            Limbs y = b;
            Limbs apart(a.size() + 1, 0xCCCC);
            unsigned short* const first = x.data();
            unsigned short* const second = where == kOverBoth ? first : y.data();
            unsigned short* const out = where == kApart   ? apart.data()
                                        : where == kOverB ? second
                                                          : first;
            multmodLAN(first, second, out, m.data(), mont, n);
            ASSERT_EQ(Limbs(out, out + n), expected) << v[1] << " * " << v[2] << " mod " << v[3];
            ASSERT_EQ(apart[a.size()], 0xCCCC);
        }
        ASSERT_EQ(m, limbs(v[3]));
        ++cases;
    }
    EXPECT_EQ(cases, 32 * 60);
}

TEST(LimbArithmetic, results_are_almost_reduced_and_no_more) {
    unsigned short m = 0xFFF1;
    unsigned short a = 2;
    unsigned short b = 3;
    unsigned short out = 0;
    multmodLAN(&a, &b, &out, &m, 0xEEEF, 1);
    EXPECT_EQ(out, 39313);
    a = 3135;
    multmodLAN(&a, &a, &a, &m, 0xEEEF, 1);
    EXPECT_EQ(a, 65526);
    a = 15;
    privLAN(&a, &m, 0xEEEF, 1, 1, 1);
    EXPECT_EQ(a, 1);
}

TEST(LimbArithmetic, reductions_leave_what_their_steps_leave) {
    int cases = 0;
    for (const auto& v : vectors("reduction")) {
        const short na = static_cast<short>(std::stoi(v[0]));
        const short nm = static_cast<short>(std::stoi(v[1]));
        const short k = static_cast<short>(std::stoi(v[2]));
        Limbs a = limbs(v[3]);
        Limbs m = limbs(v[4]);
        a.push_back(0xCCCC);
        privLAN(a.data(), m.data(), limbs(v[5])[0], na, nm, k);
        ASSERT_EQ(a.back(), 0xCCCC);
        a.pop_back();
        ASSERT_EQ(a, limbs(v[6])) << v[3] << " mod " << v[4] << ", " << v[0] << ' ' << v[1] << ' '
                                  << v[2];
        ++cases;
    }
    EXPECT_EQ(cases, 1500);
}

}  // namespace
