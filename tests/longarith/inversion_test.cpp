// Inverses modulo the built-in q against Python's.
#include <gtest/gtest.h>
#include <ktbase/longarith.h>

#include <cstring>

#include "vectors.h"

namespace {

TEST(Inversion, inverses_agree_with_the_vectors_and_multiples_of_q_have_none) {
    const auto cases = vectors("inverse");
    ASSERT_EQ(cases.size(), 3167U);
    for (const auto& v : cases) {
        Limbs x = limbs(v[0]);
        Limbs out(11, 0xCCCC);
        unsigned char bytes[20];
        unpackLAN(x.data(), bytes, 20);
        invertLAN(bytes, out.data());
        ASSERT_EQ(out.back(), 0xCCCC);
        out.pop_back();
        ASSERT_EQ(out, limbs(v[1])) << v[0];
    }
}

TEST(Inversion, the_result_may_lie_over_the_number_at_any_offset) {
    const auto v = vectors("inverse").back();
    const Limbs expected = limbs(v[1]);
    Limbs x = limbs(v[0]);
    for (int offset = -20; offset <= 20; ++offset) {
        alignas(2) unsigned char memory[64] = {};
        unpackLAN(x.data(), memory + 20 + offset, 20);
        auto* const out = reinterpret_cast<unsigned short*>(memory + 20);
        invertLAN(memory + 20 + offset, out);
        EXPECT_EQ(std::memcmp(out, expected.data(), 20), 0) << offset;
    }
}

}  // namespace
