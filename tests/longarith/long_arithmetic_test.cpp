// Tests of the long arithmetic: computed vectors, all windows of small exponents, limits of counts.
#include <gtest/gtest.h>

#include <cstring>
#include <fstream>
#include <map>
#include <sstream>

#include "longarith_model.h"

namespace {

using Vector = std::map<std::string, Limbs>;

unsigned char* bytes_of(Limbs& limbs) {
    return reinterpret_cast<unsigned char*>(limbs.data());
}

Limbs parse_hexadecimal(const std::string& digits) {
    Limbs number;
    for (std::size_t end = digits.size(); end != 0; end -= 4)
        number.push_back(
            static_cast<unsigned short>(std::stoul(digits.substr(end - 4, 4), nullptr, 16)));
    return number;
}

// The computed vectors of a kind.
std::vector<Vector> vectors(const std::string& kind) {
    std::ifstream file(KTBASE_VECTORS);
    std::vector<Vector> found;
    for (std::string line; std::getline(file, line);) {
        if (!line.starts_with(kind + ' ')) continue;
        std::istringstream fields(line.substr(kind.size()));
        found.emplace_back();
        for (std::string field; fields >> field;) {
            const std::size_t equals = field.find('=');
            found.back()[field.substr(0, equals)] = parse_hexadecimal(field.substr(equals + 1));
        }
    }
    EXPECT_FALSE(found.empty()) << kind;
    return found;
}

TEST(LongArithmetic, conversions_accept_odd_addresses) {
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

TEST(LongArithmetic, a_count_of_zero_or_below_reads_nothing) {
    Bytes bytes(2);
    Limbs limbs(1);
    for (const short count : {0, -1, -32768}) {
        packLAN(bytes.data(), limbs.data(), count);
        unpackLAN(limbs.data(), bytes.data(), count);
        subtLAN(nullptr, nullptr, count);
        multmodLAN(nullptr, nullptr, nullptr, nullptr, 1, count);
        privLAN(nullptr, nullptr, 1, 4, 4, count);
    }
}

TEST(LongArithmetic, subtraction_borrows_through_all_limbs) {
    Limbs a(32767);
    Limbs one(32767);
    one[0] = 1;
    subtLAN(a.data(), one.data(), 32766);
    EXPECT_EQ(std::count(a.begin(), a.end() - 1, 0xFFFF), 32766);
    EXPECT_EQ(a.back(), 0) << "the last borrow is dropped";
}

TEST(LongArithmetic, reductions_equal_the_vectors) {
    for (Vector& v : vectors("reduction")) {
        privLAN(v["a"].data(), v["m"].data(), v["mont"][0], static_cast<short>(v["na"][0]),
                static_cast<short>(v["nm"][0]), static_cast<short>(v["k"][0]));
        ASSERT_EQ(v["a"], v["result"]) << testing::PrintToString(v);
    }
}

TEST(LongArithmetic, windows_of_small_exponents_equal_the_model) {
    for (unsigned exponent = 0; exponent < 1 << 12; ++exponent)
        for (short width = 1; width <= 8; ++width)
            for (const short position : {1, 7, 8, 9, 12, 16})
                check_windows({static_cast<unsigned char>(exponent),
                               static_cast<unsigned char>(exponent >> 8)},
                              position, width);
}

TEST(LongArithmetic, a_window_below_bit_0_only_decrements_the_position) {
    for (const short start : {0, -1, -7, -32767}) {
        short position = start;
        short window = 77;
        stelLAN(nullptr, &position, &window, 5);
        EXPECT_EQ(position, start - 1);
        EXPECT_EQ(window, 77);
    }
}

TEST(LongArithmetic, powers_equal_the_vectors) {
    for (const Vector& given : vectors("power")) {
        Vector v = given;
        Limbs out(32);
        expmodLAN(out.data(), bytes_of(v["e1"]), v["table"].data(), bytes_of(v["e2"]));
        EXPECT_EQ(v, given);
        const bool agrees = out == v["result"] || out == v["other"];
        ASSERT_TRUE(agrees) << testing::PrintToString(v);
    }
}

TEST(LongArithmetic, an_inverse_may_overlap_its_number_at_any_offset) {
    std::size_t offset = 0;
    for (Vector& v : vectors("inverse")) {
        Limbs memory(30);
        unsigned char* const x = bytes_of(memory) + ++offset % 41;
        std::copy_n(bytes_of(v["x"]), 20, x);
        invertLAN(x, &memory[10]);
        ASSERT_EQ(Limbs(&memory[10], &memory[20]), v["result"]) << testing::PrintToString(v);
    }
}

// The memory of each record ends after its state.
TEST(LongArithmetic, verdicts_equal_the_vectors) {
    for (Vector& v : vectors("signature")) {
        auto* const digest = reinterpret_cast<HASH_CTX*>(v["digest"].data());
        const int code =
            CheckSignature(bytes_of(v["key"]) + 1, bytes_of(v["signature"]) + 1, digest);
        EXPECT_EQ(code, v["code"][0]) << testing::PrintToString(v);
    }
}

}  // namespace
