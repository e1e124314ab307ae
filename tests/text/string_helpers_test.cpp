// The helpers over the standard string, overload by overload.
#include <gtest/gtest.h>
#include <ktbase/text.h>

#include <climits>
#include <cstring>
#include <stdexcept>
#include <string>

namespace {

using namespace std::string_literals;

constexpr unsigned kAll = UINT_MAX;  // stands for the comparison without a count, too

template <class A, class B>
void expect_overloads(const A& a, const B& b, unsigned n, int sign, int folded) {
    EXPECT_EQ(KsStrncmp(a, b, n), sign) << a << ' ' << b << ' ' << n;
    EXPECT_EQ(KsStrncasecmp(a, b, n), folded) << a << ' ' << b << ' ' << n;
    EXPECT_EQ(n == kAll ? KsStrcmp(a, b) : sign, sign) << a << ' ' << b;
    EXPECT_EQ(n == kAll ? KsStrcasecmp(a, b) : folded, folded) << a << ' ' << b;
}
void expect(const std::string& a, const std::string& b, unsigned n, int sign, int folded) {
    expect_overloads(a, b, n, sign, folded);
    if (std::strlen(a.c_str()) == a.size()) expect_overloads(a.c_str(), b, n, sign, folded);
    if (std::strlen(b.c_str()) == b.size()) expect_overloads(a, b.c_str(), n, sign, folded);
}

TEST(StringHelpers, comparisons_rank_every_pair_of_bytes_and_then_lengths) {
    const auto rank = [](int c) { return c < 128 ? c : c - 256; };
    // The "C" locale's tolower leaves -1 as it is and answers 128 to 254 for the bytes before it.
    const auto folded = [](int c) { return c == 255 ? -1 : c >= 65 && c <= 90 ? c + 32 : c; };
    const auto sign = [](int x, int y) { return (x > y) - (x < y); };
    for (int x = 0; x < 256; ++x)
        for (int y = 0; y < 256; ++y)
            expect("p"s + static_cast<char>(x), "p"s + static_cast<char>(y), kAll,
                   sign(rank(x), rank(y)), sign(folded(x), folded(y)));
    expect("ab", "abc", kAll, -1, -1);
    expect("abc", "ab", 5, 1, 1);
    expect("ab", "abc", 2, 0, 0);
    expect("HELLO world", "hello", 5, -1, 0);
    expect("HELLO world", "hello", 6, -1, 1);
    expect("a\0b"s, "a", kAll, 1, 1);
    expect("a\0b"s, "a\0c"s, kAll, -1, -1);
    const char* const null = nullptr;
    EXPECT_EQ(KsStrcmp(null, ""s) | KsStrcasecmp(""s, null) | KsStrncmp(""s, null, 1), 0);
    EXPECT_EQ(KsStrcmp(null, "x"s) & KsStrcasecmp(null, "x"s) & KsStrncasecmp(null, "x"s, 1), -1);
}

TEST(StringHelpers, copies_into_arrays_write_their_bytes_and_no_more) {
    std::string array(7, '#');
    const auto filled = [&](const std::string& source) {
        KsStrncpy(array.data(), source, 5);
        return array;
    };
    EXPECT_EQ(filled("abcdef"), "abcde##");
    EXPECT_EQ(filled("abc"), "abc\0\0##"s);
    EXPECT_EQ(filled("a\0b"s), "a\0b\0\0##"s);
    KsStrcpy(array.data() + 3, "x\0y"s);
    EXPECT_EQ(array, "a\0bx\0y\0"s);
    KsStrcpy(array.data(), ""s);
    EXPECT_EQ(array, "\0\0bx\0y\0"s);
    KsStrcpy(static_cast<char*>(nullptr), "abc"s);
    KsStrncpy(static_cast<char*>(nullptr), "abc"s, 2);
    std::string self = "abcdefgh";
    KsStrncpy(self.data() + 2, self, 5);
    KsStrncpy(self.data(), self, 8);
    KsStrcpy(self.data(), self);
    EXPECT_EQ(self, "ababcdeh");
}

TEST(StringHelpers, copies_into_strings_take_sources_inside_the_destination) {
    for (const std::string& text : {"abcde"s, "0123456789abcdefghijklmnopqrstuvwxyz"s})
        for (const std::size_t at : {0, 1, 5}) {
            std::string d = text;
            KsStrcpy(d, d.c_str() + at);
            EXPECT_EQ(d, text.substr(at));
            d = text;
            KsStrncpy(d, d.c_str() + at, 7);
            EXPECT_EQ(d, text.substr(at, 7));
            KsStrcpy(d, "a\0bcd"s);
            KsStrncpy(d, d, 3 + at);
            EXPECT_EQ(d, "a\0bcd"s.substr(0, 3 + at));
        }
    std::string d = "old";
    EXPECT_THROW(KsStrncpy(d, static_cast<const char*>(nullptr), 0), std::logic_error);
    EXPECT_EQ(d, "old");
    KsStrcpy(d, static_cast<const char*>(nullptr));
    EXPECT_EQ(d, "");
}

TEST(StringHelpers, a_duplicate_keeps_every_byte_and_adds_a_nul) {
    for (const std::string& source : {""s, "a\0b"s, std::string(1000, 'z')}) {
        char* const copy = KsStrdup(source);
        EXPECT_EQ(std::string(copy, source.size() + 1), source + '\0');
        delete[] copy;
    }
}

TEST(StringHelpers, edits_change_what_they_name_and_nothing_else) {
    std::string text = "MiXeD \0AZ@[`{ \xC9\xE9\xFF"s;
    ConvertToLowerCase(text);
    EXPECT_EQ(text, "mixed \0az@[`{ \xC9\xE9\xFF"s);
    const auto trimmed = [](std::string s) { return Trim(s), s; };
    EXPECT_EQ(trimmed(" \t a b \r\n"), "a b");
    EXPECT_EQ(trimmed("\n\ry") + trimmed("x  ") + trimmed("    ") + trimmed(""), "yx");
    EXPECT_EQ(trimmed("\v \f") + trimmed("\0 a \0"s) + trimmed("\xA0 z"), "\v \f\0 a \0\xA0 z"s);
}

}  // namespace
