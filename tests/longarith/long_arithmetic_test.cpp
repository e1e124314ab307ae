// The long arithmetic: computed vectors, and the limits of the counts. The fuzzers' models hold the
// products, the windows and the published signature.
#include <gtest/gtest.h>
#include <ktbase/longarith.h>

#include <algorithm>
#include <cstring>
#include <fstream>
#include <sstream>

namespace {

using Bytes = std::vector<unsigned char>;
using Limbs = std::vector<unsigned short>;
using Vector = std::vector<Limbs>;

unsigned char* bytes_of(Limbs& limbs) {
    return reinterpret_cast<unsigned char*>(limbs.data());
}

// The numbers behind the name in every vector of that name.
std::vector<Vector> vectors(const std::string& name) {
    std::ifstream file(KTBASE_VECTORS);
    std::vector<Vector> found;
    for (std::string line; std::getline(file, line);) {
        if (line.rfind(name + ' ', 0) != 0) continue;
        std::istringstream fields(line.substr(name.size()));
        found.emplace_back();
        for (std::string hex; fields >> hex;) {
            Limbs& number = found.back().emplace_back();
            for (auto end = hex.size(); end != 0; end -= 4)
                number.push_back(std::stoul(hex.substr(end - 4, 4), nullptr, 16));
        }
    }
    EXPECT_FALSE(found.empty()) << name;
    return found;
}

TEST(LongArithmetic, byte_strings_of_every_length_map_to_limbs_and_back_at_odd_addresses) {
    for (const short size : {0, 1, 2, 3, 20, 64, 32766, 32767}) {
        Bytes bytes(static_cast<std::size_t>(size) + 2, 0xCC);
        for (int i = 1; i <= size; ++i) bytes[i] = static_cast<unsigned char>(i * 89 ^ i >> 8);
        Limbs expected(static_cast<std::size_t>(size) / 2 + 1, 0xCCCC);
        std::memcpy(expected.data(), &bytes[1], size);
        if (size % 2 != 0) expected.back() &= 0xFF;
        Limbs packed(expected.size(), 0xCCCC);
        packLAN(&bytes[1], packed.data(), size);
        EXPECT_EQ(packed, expected) << size;
        Bytes unpacked(bytes.size(), 0xCC);
        unpackLAN(packed.data(), &unpacked[1], size);
        EXPECT_EQ(unpacked, bytes) << size;
    }
}

TEST(LongArithmetic, a_count_of_zero_or_below_looks_at_nothing) {
    for (const short none : {0, -1, -32768}) {
        packLAN(nullptr, nullptr, none);
        unpackLAN(nullptr, nullptr, none);
        subtLAN(nullptr, nullptr, none);
        multmodLAN(nullptr, nullptr, nullptr, nullptr, 1, none);
        privLAN(nullptr, nullptr, 1, 4, 4, none);
    }
}

TEST(LongArithmetic, subtraction_borrows_through_all_limbs_and_drops_the_last_borrow) {
    Limbs a(32767);
    Limbs one(32767);
    one[0] = 1;
    subtLAN(a.data(), one.data(), 32766);
    EXPECT_EQ(std::count(a.begin(), a.end() - 1, 0xFFFF), 32766);
    EXPECT_EQ(a.back(), 0);
    subtLAN(a.data(), a.data(), 32767);
    EXPECT_EQ(a, Limbs(32767));
}

TEST(LongArithmetic, reductions_leave_what_their_steps_leave) {
    for (Vector& v : vectors("reduction")) {
        privLAN(v[3].data(), v[4].data(), v[5][0], v[0][0], v[1][0], v[2][0]);
        ASSERT_EQ(v[3], v[6]) << testing::PrintToString(v);
    }
}

TEST(LongArithmetic, powers_are_almost_reduced_and_a_single_window_is_its_table_entry) {
    for (const Vector& given : vectors("power")) {
        Vector v = given;
        Limbs out(32);
        expmodLAN(out.data(), bytes_of(v[0]), v[2].data(), bytes_of(v[1]));
        EXPECT_EQ(v, given);
        ASSERT_TRUE(out == v[3] || out == v[4]) << testing::PrintToString(v);
    }
}

TEST(LongArithmetic, inverses_may_lie_over_their_numbers_at_any_offset) {
    std::size_t offset = 0;
    for (Vector& v : vectors("inverse")) {
        Limbs memory(30);
        unsigned char* const x = bytes_of(memory) + ++offset % 41;
        std::copy_n(bytes_of(v[0]), 20, x);
        invertLAN(x, &memory[10]);
        ASSERT_EQ(Limbs(&memory[10], &memory[20]), v[1]) << testing::PrintToString(v);
    }
}

TEST(LongArithmetic, signatures_at_odd_addresses_over_records_cut_behind_the_state_are_judged) {
    for (Vector& v : vectors("signature"))
        EXPECT_EQ(CheckSignature(bytes_of(v[0]) + 1, bytes_of(v[1]) + 1,
                                 reinterpret_cast<HASH_CTX*>(v[2].data())),
                  v[3][0])
            << testing::PrintToString(v);
}

}  // namespace
