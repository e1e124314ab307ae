// Tests of hexadecimal text, powers of ten and the table of character classes.
#include <gtest/gtest.h>

#include <cstdarg>
#include <cstdio>

#include "text_model.h"

static int successful_prints = -1;  // calls of sprintf before the one that fails

// Replaces the function of libc.
extern "C" int sprintf(char* text, const char* format, ...) noexcept {
    va_list arguments;
    va_start(arguments, format);
    const int printed = std::vsprintf(text, format, arguments);
    va_end(arguments);
    return successful_prints-- == 0 ? -1 : printed;
}

namespace {

using namespace std::string_literals;

TEST(Conversions, reading_equals_the_model_for_every_pair_of_characters) {
    std::string text;
    for (int i = 0; i < 255 * 255; ++i) {
        text += static_cast<char>(i / 255 + 1);
        text += static_cast<char>(i % 255 + 1);
    }
    check_hexadecimal_reading(text);
}

TEST(Conversions, reading_refuses_a_text_without_whole_pairs) {
    for (const char* const text : {"", "a", "abc"}) check_hexadecimal_reading(text);
}

TEST(Conversions, writing_equals_the_model_for_every_size) {
    Bytes bytes;
    for (unsigned code = 0; code <= 256; ++code) {
        check_hexadecimal_writing(bytes);
        bytes.push_back(static_cast<unsigned char>(code));
    }
}

TEST(Conversions, negative_lengths_write_nothing) {
    Bytes bytes = {1};
    char text[] = "#";
    for (const int length : {-1, INT32_MIN}) {
        EXPECT_EQ(BufToHexString(bytes.data(), length, text), 0);
        EXPECT_EQ(MakeHexString(text, bytes.data(), length), 0);
        EXPECT_STREQ(text, "#");
    }
}

TEST(Conversions, conversions_refuse_null) {
    Bytes bytes = {1};
    char text[] = "####";
    EXPECT_EQ(BufToHexString(nullptr, 1, text), 0);
    EXPECT_EQ(BufToHexString(bytes.data(), 1, nullptr), 0);
    EXPECT_EQ(HexStringToBuf(nullptr, bytes.data()), 0);
    EXPECT_EQ(HexStringToBuf(text, nullptr), 0);
}

TEST(Conversions, MakeHexString_stops_where_printing_fails) {
    Bytes bytes = {0x00, 0xAB, 0x5F};
    std::string text(9, '#');
    successful_prints = 1;
    EXPECT_EQ(MakeHexString(text.data(), bytes.data(), 3), -1);
    EXPECT_EQ(text, "00AB\0####"s);
}

TEST(Conversions, powers_of_ten_wrap_at_32_bits) {
    std::uint32_t power = 1;
    for (unsigned n = 0; n < 40; ++n, power *= 10) EXPECT_EQ(_ktpow10(n), power);
    EXPECT_EQ(_ktpow10(UINT32_MAX), 0U);
}

TEST(CharacterClasses, every_code_has_exactly_its_flags) {
    std::string expected = std::string(32, '\x01') + std::string(224, '\0');
    for (const char c : {0x09, 0x0A, 0x0D}) expected[c] = 0x03;
    for (const char c : "\"(),:;<>@[\\]"s) expected[c] = 0x0C;
    for (const char c : "/=?"s) expected[c] = 0x08;
    expected[0x20] = 0x02;
    expected[0x2E] = 0x04;
    expected[0x7F] = 0x01;
    EXPECT_EQ(std::string(ks_char_map, ks_char_map + 256), expected);
}

}  // namespace
