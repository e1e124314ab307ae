// Hexadecimal text, powers of ten and the table of character classes.
#include <gtest/gtest.h>
#include <ktbase/text.h>

#include <cstdarg>

#include "fuzz.h"

static int prints_until_failure = -1;

// Takes the place of the system's, so that one of them can fail.
extern "C" int sprintf(char* text, const char* format, ...) noexcept {
    va_list arguments;
    va_start(arguments, format);
    const int printed = std::vsprintf(text, format, arguments);
    va_end(arguments);
    return prints_until_failure-- == 0 ? -1 : printed;
}

namespace {

using namespace std::string_literals;

unsigned char* in(std::string& text) {
    return reinterpret_cast<unsigned char*>(text.data());
}

TEST(Conversions, writers_refuse_and_write_nothing_or_stop_where_printing_fails) {
    std::string bytes = "\x00\xAB\x5F"s;
    std::string text(9, '#');
    for (const int length : {0, -1, INT32_MIN}) {
        EXPECT_EQ(BufToHexString(in(bytes), length, text.data()), 0);
        EXPECT_EQ(MakeHexString(text.data(), in(bytes), length), 0);
    }
    EXPECT_EQ(BufToHexString(nullptr, 1, text.data()) | BufToHexString(in(bytes), 1, nullptr), 0);
    EXPECT_EQ(text, "#########");
    prints_until_failure = 1;
    EXPECT_EQ(MakeHexString(text.data(), in(bytes), 3), -1);
    EXPECT_EQ(text, "00AB\0####"s);
}

TEST(Conversions, every_pair_of_characters_is_read_as_in_the_model_and_null_is_refused) {
    std::string text;
    for (int i = 0; i < 255 * 255; ++i)
        text += {static_cast<char>(i / 255 + 1), static_cast<char>(i % 255 + 1)};
    LLVMFuzzerTestOneInput(in(text), text.size());
    EXPECT_EQ(HexStringToBuf(text.data(), nullptr) | HexStringToBuf(nullptr, in(text)), 0);
}

TEST(Conversions, powers_of_ten_wrap_at_32_bits) {
    std::uint32_t power = 1;
    for (unsigned n = 0; n < 40; ++n, power *= 10) EXPECT_EQ(_ktpow10(n), power);
    EXPECT_EQ(_ktpow10(UINT32_MAX), 0U);
}

TEST(CharacterClasses, every_code_has_exactly_its_flags_in_memory_that_cannot_be_written) {
    std::string expected = std::string(32, '\x01') + std::string(224, '\0');
    for (const char c : {0x09, 0x0A, 0x0D}) expected[c] = 0x03;
    for (const char c : "\"(),:;<>@[\\]"s) expected[c] = 0x0C;
    for (const char c : "/=?"s) expected[c] = 0x08;
    expected[0x20] = 0x02;
    expected[0x2E] = 0x04;
    expected[0x7F] = 0x01;
    const unsigned char* const table = ks_char_map;
    EXPECT_EQ(std::string(table, table + 256), expected);
    EXPECT_DEATH(*const_cast<unsigned char*>(table) = 1, "");
    ks_char_map = nullptr;  // the pointer can
    ks_char_map = table;
}

}  // namespace
