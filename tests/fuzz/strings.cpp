// The string helpers against the standard string's own algorithms, and the memory routines against
// the system's.
#include <ktbase/text.h>

#include <cctype>
#include <cstring>

#include "fuzz.h"

namespace {

int own(char c) {
    return static_cast<signed char>(c);
}
int lower(char c) {
    return tolower(own(c));
}
int ascii(char c) {
    return c >= 'A' && c <= 'Z' ? c + 32 : own(c);
}

// -1, 0 or 1 for two texts whose characters rank as `rank` tells.
int order(const std::string& a, const std::string& b, int (*rank)(char)) {
    const auto less = [rank](char x, char y) { return rank(x) < rank(y); };
    return std::lexicographical_compare(b.begin(), b.end(), a.begin(), a.end(), less) -
           std::lexicographical_compare(a.begin(), a.end(), b.begin(), b.end(), less);
}

void check_comparisons(const std::string& a, const std::string& b, unsigned n) {
    const char* const c = b.c_str();
    const std::string to_nul = c;
    for (const bool whole : {true, false}) {
        const std::string& second = whole ? b : to_nul;
        const int exact = order(a, second, own);
        const int folded = order(a, second, lower);
        const int exact_n = order(a.substr(0, n), second.substr(0, n), own);
        const int folded_n = order(a.substr(0, n), second.substr(0, n), lower);
        require((whole ? KsStrcmp(a, b) : KsStrcmp(a, c)) == exact, "KsStrcmp");
        require((whole ? KsStrcmp(b, a) : KsStrcmp(c, a)) == -exact, "KsStrcmp");
        require((whole ? KsStrncmp(a, b, n) : KsStrncmp(a, c, n)) == exact_n, "KsStrncmp");
        require((whole ? KsStrncmp(b, a, n) : KsStrncmp(c, a, n)) == -exact_n, "KsStrncmp");
        require((whole ? KsStrcasecmp(a, b) : KsStrcasecmp(a, c)) == folded, "KsStrcasecmp");
        require((whole ? KsStrcasecmp(b, a) : KsStrcasecmp(c, a)) == -folded, "KsStrcasecmp");
        require((whole ? KsStrncasecmp(a, b, n) : KsStrncasecmp(a, c, n)) == folded_n, "n");
        require((whole ? KsStrncasecmp(b, a, n) : KsStrncasecmp(c, a, n)) == -folded_n, "n");
    }
}

void check_copies(const std::string& source, unsigned n) {
    std::string array(source.size() + 1, '#');
    KsStrcpy(array.data(), source);
    require(array == source + '\0', "KsStrcpy into an array");
    array.assign(n, '#');
    KsStrncpy(array.data(), source, n);
    std::string expected = source.substr(0, n);
    expected.resize(n);
    require(array == expected, "KsStrncpy into an array");
    std::string text;
    KsStrncpy(text, source, n);
    require(text == source.substr(0, n), "KsStrncpy of a string");
    KsStrncpy(text, source.c_str(), n);
    require(text == std::string(source.c_str()).substr(0, n), "KsStrncpy of an array");
    char* const copy = KsStrdup(source);
    require(std::string(copy, source.size() + 1) == source + '\0', "KsStrdup");
    delete[] copy;

    text = expected = source;
    Trim(text);
    const auto inside = [](char c) { return std::strchr(" \t\r\n", c) == nullptr || c == '\0'; };
    expected.erase(std::find_if(expected.rbegin(), expected.rend(), inside).base(), expected.end());
    expected.erase(expected.begin(), std::find_if(expected.begin(), expected.end(), inside));
    require(text == expected, "Trim");
    ConvertToLowerCase(text);
    std::transform(expected.begin(), expected.end(), expected.begin(), lower);
    require(text == expected, "ConvertToLowerCase");
}

void check_memory(const std::string& s, const std::string& t, int wanted) {
    const std::size_t n = s.size();
    const auto pair = std::mismatch(s.begin(), s.end(), t.begin());
    const auto byte = [](char c) { return static_cast<unsigned char>(c); };
    require(e_memcmp(s.data(), t.data(), n) ==
                (pair.first == s.end() ? 0 : byte(*pair.first) - byte(*pair.second)),
            "e_memcmp");
    require(e_memicmp(s.data(), t.data(), n) == order(s, t, ascii), "e_memicmp");

    const bool none = wanted > 127;
    const std::string terminated = s.c_str();
    const auto first = none ? s.npos : s.find(static_cast<char>(wanted));
    const auto last = none ? s.npos : terminated.rfind(static_cast<char>(wanted));
    require(e_memchr(s.data(), wanted, n) == (first == s.npos ? nullptr : &s[first]), "e_memchr");
    require(e_strrchr(terminated.c_str(), wanted) == (last == s.npos ? nullptr : &terminated[last]),
            "e_strrchr");
    require(e_strlen(terminated.c_str()) == terminated.size(), "e_strlen");

    for (const auto copy : {&e_memcpy, &q_memcpy, &e_memmove}) {
        std::string to(n, '#');
        require(copy(to.data(), s.data(), n) == to.data() && to == s, "copy");
    }
    const std::size_t shift = n == 0 ? 0 : static_cast<unsigned>(wanted) % 8 % n;
    const std::string up = s.substr(0, shift) + s.substr(0, n - shift);
    std::string moved = s;
    e_memmove(moved.data() + shift, moved.data(), n - shift);
    require(moved == up, "e_memmove up");
    const std::string down = s.substr(shift) + s.substr(n - shift);
    moved = s;
    e_memmove(moved.data(), moved.data() + shift, n - shift);
    require(moved == down, "e_memmove down");
    moved = s;
    t_memmove(moved.data(), moved.data() + shift, n - shift);
    require(moved == down, "t_memmove");
    Bytes filled(n, 1);
    e_memset(filled.data(), wanted, n);
    require(filled == Bytes(n, static_cast<unsigned char>(wanted)), "e_memset");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Input input(data, size);
    const unsigned n = input.byte() % 24;
    const int wanted = static_cast<int>(input.byte()) - 100;
    const unsigned common = input.byte() % 16;
    const std::string s = input.chars(input.byte() % 48);
    std::string t = s.substr(0, common) + input.chars(80);
    check_comparisons(s, t, n);
    check_copies(s, n);
    check_copies(t, n);
    t.resize(s.size());
    check_memory(s, t, wanted);
    return 0;
}
