// The long arithmetic: computed vectors, the published signature, and the limits of the counts.
#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <sstream>

#include "fips186_example.h"

namespace {

using fips186::Bytes;
using fips186::little_endian;
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
            const Bytes number = little_endian(hex);
            std::memcpy(bytes_of(found.back().emplace_back(number.size() / 2)), number.data(),
                        number.size());
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

TEST(LongArithmetic, products_are_exact_limb_for_limb_wherever_the_result_goes) {
    int place = 0;
    for (const Vector& v : vectors("product")) {
        Vector numbers = {v[1], v[2], v[3], Limbs(v[1].size())};
        Limbs& a = numbers[0];
        Limbs& b = numbers[v[1] == v[2] ? 0 : 1];
        Limbs* const places[] = {&a, &b, &numbers[3]};
        Limbs& out = *places[++place % 3];
        multmodLAN(a.data(), b.data(), out.data(), numbers[2].data(), v[4][0], v[0][0]);
        ASSERT_EQ(out, v[5]) << testing::PrintToString(v);
    }
}

TEST(LongArithmetic, reductions_leave_what_their_steps_leave) {
    for (Vector& v : vectors("reduction")) {
        privLAN(v[3].data(), v[4].data(), v[5][0], v[0][0], v[1][0], v[2][0]);
        ASSERT_EQ(v[3], v[6]) << testing::PrintToString(v);
    }
}

TEST(LongArithmetic, powers_are_almost_reduced_and_a_single_window_is_its_table_entry) {
    for (Vector& v : vectors("power")) {
        Limbs out(32);
        expmodLAN(out.data(), bytes_of(v[0]), v[2].data(), bytes_of(v[1]));
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

int check(unsigned char* key, unsigned char* signature, unsigned char* state) {
    return CheckSignature(key, signature, reinterpret_cast<HASH_CTX*>(state));
}

TEST(LongArithmetic, signatures_at_odd_addresses_over_records_cut_behind_the_state_are_judged) {
    for (Vector& v : vectors("signature"))
        EXPECT_EQ(check(bytes_of(v[0]) + 1, bytes_of(v[1]) + 1, bytes_of(v[2])), v[3][0])
            << testing::PrintToString(v);
}

TEST(LongArithmetic, the_published_signature_is_valid_and_nothing_near_it) {
    Bytes key = fips186::key();
    Bytes blob = little_endian(std::string(fips186::kDigest) + fips186::kS + fips186::kR);
    if (std::memcmp(vectors("domain")[0][0].data(), little_endian(fips186::kQ).data(), 20) != 0)
        GTEST_SKIP() << "built for another domain";
    EXPECT_EQ(check(key.data(), blob.data(), &blob[40]), 0);
    for (unsigned bit = 0; bit < 8 * blob.size(); ++bit) {
        Bytes changed = blob;
        changed[bit / 8] ^= 1U << bit % 8;
        EXPECT_NE(check(key.data(), changed.data(), &changed[40]), 0) << "bit " << bit;
    }
    // Made with the example's key and nonce over the library's digest of these three bytes.
    blob = little_endian(std::string("1272cde7ff6c85740593c4a88cc229b22c0670d2") + fips186::kR);
    unsigned char abc[] = "abc";
    EXPECT_EQ(CheckBufferSign(abc, 3, key.data(), blob.data()), 0);
    EXPECT_EQ(Hash.count, 0U) << "the exported record is left alone";
    EXPECT_EQ(CheckBufferSign(abc, 2, key.data(), blob.data()), -1);
    EXPECT_EQ(CheckBufferSign(nullptr, 0, key.data(), blob.data()), -1);
    blob.assign(40, 0);
    EXPECT_EQ(CheckBufferSign(abc, 3, key.data(), blob.data()), -1);
}

}  // namespace
