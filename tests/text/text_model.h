// Models of the text services, made of std::string, algorithms and libc's routines.
#ifndef KTBASE_TESTS_TEXT_MODEL_H
#define KTBASE_TESTS_TEXT_MODEL_H

#include <ktbase/text.h>

#include <algorithm>
#include <cstring>
#include <string_view>

#include "../check.h"

inline int signed_rank(char c) {
    return static_cast<signed char>(c);
}
// tolower of the "C" locale: -1 stays -1, and -128 to -2 become 128 to 254.
inline int folded_rank(char c) {
    const int code = static_cast<unsigned char>(c);
    return code == 255 ? -1 : code >= 'A' && code <= 'Z' ? code + 32 : code;
}
inline int ascii_folded_rank(char c) {
    return static_cast<signed char>(folded_rank(c));
}

// The order of two texts whose characters order by `rank`: -1, 0 or 1.
inline int order(const std::string& a, const std::string& b, int (*rank)(char)) {
    const auto less = [rank](char x, char y) { return rank(x) < rank(y); };
    return std::lexicographical_compare(b.begin(), b.end(), a.begin(), a.end(), less) -
           std::lexicographical_compare(a.begin(), a.end(), b.begin(), b.end(), less);
}

template <class A, class B>
void check_comparison(const A& a, const B& b, unsigned n) {
    const std::string x = a;
    const std::string y = b;
    const std::string x_start = x.substr(0, n);
    const std::string y_start = y.substr(0, n);
    require(KsStrcmp(a, b) == order(x, y, signed_rank), "KsStrcmp");
    require(KsStrcasecmp(a, b) == order(x, y, folded_rank), "KsStrcasecmp");
    require(KsStrncmp(a, b, n) == order(x_start, y_start, signed_rank), "KsStrncmp");
    require(KsStrncasecmp(a, b, n) == order(x_start, y_start, folded_rank), "KsStrncasecmp");
}

inline void check_comparisons(const std::string& a, const std::string& b, unsigned n) {
    check_comparison(a, b, n);
    check_comparison(a, b.c_str(), n);
    check_comparison(a.c_str(), b, n);
}

inline void check_copies(const std::string& source, unsigned n) {
    std::string array(source.size() + 2, '#');
    KsStrcpy(array.data(), source);
    require(array == source + '\0' + '#', "KsStrcpy into an array");
    array.assign(n + 1, '#');
    KsStrncpy(array.data(), source, n);
    std::string padded = source;
    padded.resize(n);
    require(array == padded + '#', "KsStrncpy into an array");
    char* const made = KsStrdup(source);
    require(std::string(made, source.size() + 1) == source + '\0', "KsStrdup");
    delete[] made;

    // The source is an array within the destination.
    const std::string half = source.c_str() + source.size() / 2;
    std::string copy = source;
    KsStrncpy(copy, copy.c_str() + source.size() / 2, n);
    require(copy == half.substr(0, n), "KsStrncpy of an array");
    KsStrcpy(copy, source);
    require(copy == source, "KsStrcpy of a string");
    KsStrcpy(copy, copy.c_str() + source.size() / 2);
    require(copy == half, "KsStrcpy of an array");
    copy = source;
    KsStrncpy(copy, copy, n);
    require(copy == source.substr(0, n), "KsStrncpy of a string");
}

inline void check_edits(std::string text) {
    std::string expected = text;
    const auto kept = [](char c) { return std::memchr(" \t\r\n", c, 4) == nullptr; };
    expected.erase(std::find_if(expected.rbegin(), expected.rend(), kept).base(), expected.end());
    expected.erase(expected.begin(), std::find_if(expected.begin(), expected.end(), kept));
    Trim(text);
    require(text == expected, "Trim");
    for (char& c : expected) c = static_cast<char>(folded_rank(c));
    ConvertToLowerCase(text);
    require(text == expected, "ConvertToLowerCase");
}

// Requires texts of one size.
inline void check_memory_comparisons(const std::string& s, const std::string& t) {
    const auto [x, y] = std::mismatch(s.begin(), s.end(), t.begin());
    const int difference = x == s.end() ? 0 : (*x & 255) - (*y & 255);
    require(e_memcmp(s.data(), t.data(), s.size()) == difference, "e_memcmp");
    require(e_memicmp(s.data(), t.data(), s.size()) == order(s, t, ascii_folded_rank), "e_memicmp");
}

// Requires ch in -128 to 255. Bytes rank as signed, so no byte equals a ch above 127.
inline void check_searches(const std::string& s, int ch) {
    const char* const text = s.c_str();
    const void* const first = ch > 127 ? nullptr : std::memchr(text, ch, s.size());
    require(e_memchr(text, ch, s.size()) == first, "e_memchr");
    require(e_memchr(text, ch + 0x10000, s.size()) == nullptr, "e_memchr of more than a byte");
    const char* const last = ch > 127 || ch == 0 ? nullptr : std::strrchr(text, ch);
    require(e_strrchr(text, ch) == last, "e_strrchr");
    require(e_strlen(text) == std::strlen(text), "e_strlen");
}

inline void* call_t_memmove(void* to, const void* from, unsigned count) {
    t_memmove(to, from, count);
    return to;
}
inline constexpr auto kCopies = {e_memcpy, q_memcpy, call_t_memmove, e_memmove};

// Moves by `distance` within the text, and fills. Requires a distance of at most its size.
inline void check_moves(const std::string& s, std::size_t distance, int fill) {
    const std::size_t count = s.size() - distance;
    for (const auto copy : kCopies) {
        std::string moved = s;
        require(copy(&moved[0], &moved[distance], count) == &moved[0], "the result of a copy");
        require(moved == s.substr(distance) + s.substr(count), "a copy down");
    }
    std::string moved = s;
    require(e_memmove(&moved[distance], &moved[0], count) == &moved[distance], "e_memmove");
    require(moved == s.substr(0, distance) + s.substr(0, count), "a move up");
    const std::string rest = moved.substr(count);
    require(e_memset(&moved[0], fill, count) == &moved[0], "e_memset's result");
    require(moved == std::string(count, static_cast<char>(fill)) + rest, "e_memset");
}

// The value of a hexadecimal digit, or -1.
inline int digit_value(char c) {
    const std::size_t at = std::string_view("0123456789ABCDEFabcdef").find(c);
    if (at == std::string_view::npos) return -1;
    return static_cast<int>(at < 16 ? at : at - 6);
}

// The result of strtoul for two characters in base 16, modulo 256.
inline unsigned char pair_value(char first, char second) {
    const int high = digit_value(first);
    const int low = digit_value(second);
    const int alone = std::max(low, 0);
    if (std::strchr(" \t\n\v\f\r+", first) != nullptr) return static_cast<unsigned char>(alone);
    if (first == '-') return static_cast<unsigned char>(-alone);
    if (high < 0) return 0;
    return static_cast<unsigned char>(low < 0 ? high : 16 * high + low);
}

inline void check_hexadecimal_reading(std::string text) {
    const std::size_t count = text.size() % 2 == 0 ? text.size() / 2 : 0;
    Bytes expected(text.size() + 1, '#');
    for (std::size_t i = 0; i < count; ++i) expected[i] = pair_value(text[2 * i], text[2 * i + 1]);
    Bytes bytes(expected.size(), '#');
    require(HexStringToBuf(text.data(), bytes.data()) == (count != 0), "HexStringToBuf's result");
    require(bytes == expected, "HexStringToBuf");
    HexStringToBuf(text.data(), reinterpret_cast<unsigned char*>(text.data()));
    require(std::memcmp(text.data(), bytes.data(), count) == 0, "HexStringToBuf over the text");
}

inline void check_hexadecimal_writing(Bytes bytes) {
    const int length = static_cast<int>(bytes.size());
    std::string expected;
    for (const unsigned char byte : bytes)
        for (const int digit : {byte >> 4, byte & 15}) expected += "0123456789ABCDEF"[digit];
    expected += bytes.empty() ? '#' : '\0';
    std::string text(expected.size(), '#');
    require(BufToHexString(bytes.data(), length, text.data()) == (length != 0), "BufToHexString");
    require(text == expected, "BufToHexString's text");
    text.assign(expected.size(), '#');
    require(MakeHexString(text.data(), bytes.data(), length) == 0, "MakeHexString");
    require(text == expected, "MakeHexString's text");
}

#endif
