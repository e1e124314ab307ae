// The string helpers against the standard string's own algorithms, and the memory routines against
// the system's.
#include <ktbase/text.h>

#include <cstring>

#include "fuzz.h"

namespace {

int own(char c) {
    return static_cast<signed char>(c);
}
// The "C" locale's tolower leaves -1 as it is and answers 128 to 254 for the bytes before it.
int lower(char c) {
    const int code = static_cast<unsigned char>(c);
    return code == 255 ? -1 : code >= 65 && code <= 90 ? code + 32 : code;
}
int ascii(char c) {
    return static_cast<signed char>(lower(c));
}

// -1, 0 or 1 for two texts whose characters rank as `rank` tells.
int order(const std::string& a, const std::string& b, int (*rank)(char)) {
    const auto less = [rank](char x, char y) { return rank(x) < rank(y); };
    return std::lexicographical_compare(b.begin(), b.end(), a.begin(), a.end(), less) -
           std::lexicographical_compare(a.begin(), a.end(), b.begin(), b.end(), less);
}

template <class A, class B>
void check_comparisons(const A& a, const B& b, unsigned n) {
    const std::string x[] = {a, std::string(a).substr(0, n)};
    const std::string y[] = {b, std::string(b).substr(0, n)};
    require(KsStrcmp(a, b) == order(x[0], y[0], own), "KsStrcmp");
    require(KsStrcasecmp(a, b) == order(x[0], y[0], lower), "KsStrcasecmp");
    require(KsStrncmp(a, b, n) == order(x[1], y[1], own), "KsStrncmp");
    require(KsStrncasecmp(a, b, n) == order(x[1], y[1], lower), "KsStrncasecmp");
}

void check_copies(const std::string& source, unsigned n) {
    std::string expected = source.substr(0, n);
    std::string text = source;
    KsStrncpy(text, text, n);
    require(text == expected, "KsStrncpy of a string");
    text = source;
    KsStrncpy(text, text.c_str() + source.size() / 2, n);
    const std::string half = source.c_str() + source.size() / 2;
    require(text == half.substr(0, n), "KsStrncpy of an array");
    text = source;
    KsStrcpy(text, text.c_str() + source.size() / 2);
    require(text == half, "KsStrcpy of an array");
    char* const copy = KsStrdup(source);
    require(std::string(copy, source.size() + 1) == source + '\0', "KsStrdup");
    delete[] copy;
    text.assign(source.size() + 2, '#');
    KsStrcpy(text.data(), source);
    require(text == source + '\0' + '#', "KsStrcpy into an array");
    text.assign(n + 1, '#');
    KsStrncpy(text.data(), source, n);
    expected.resize(n);
    require(text == expected + '#', "KsStrncpy into an array");
}

void check_edits(const std::string& source) {
    std::string text;
    std::string expected = source;
    KsStrcpy(text, source);
    Trim(text);
    const auto kept = [](char c) { return std::memchr(" \t\r\n", c, 4) == nullptr; };
    expected.erase(std::find_if(expected.rbegin(), expected.rend(), kept).base(), expected.end());
    expected.erase(expected.begin(), std::find_if(expected.begin(), expected.end(), kept));
    require(text == expected, "Trim");
    ConvertToLowerCase(text);
    for (char& c : expected) c = static_cast<char>(lower(c));
    require(text == expected, "ConvertToLowerCase");
}

void check_memory(const std::string& s, const std::string& t, int wanted) {
    const std::size_t n = s.size();
    const auto pair = std::mismatch(s.begin(), s.end(), t.begin());
    const int difference = pair.first == s.end() ? 0 : (*pair.first & 0xFF) - (*pair.second & 0xFF);
    require(e_memcmp(s.data(), t.data(), n) == difference, "e_memcmp");
    require(e_memicmp(s.data(), t.data(), n) == order(s, t, ascii), "e_memicmp");

    const char* const text = s.c_str();
    const bool none = wanted > 127;
    require(e_memchr(text, wanted, n) == (none ? nullptr : std::memchr(text, wanted, n)),
            "e_memchr");
    // The search ends before the NUL.
    const char* const last = none || wanted == 0 ? nullptr : std::strrchr(text, wanted);
    require(e_strrchr(text, wanted) == last, "e_strrchr");
    require(e_strlen(text) == std::strlen(text), "e_strlen");

    const std::size_t shift = n == 0 ? 0 : static_cast<unsigned>(wanted) % 8 % n;
    const std::size_t rest = n - shift;
    std::string moved = s;
    require(e_memmove(&moved[shift], &moved[0], rest) == &moved[shift], "e_memmove's result");
    require(moved == s.substr(0, shift) + s.substr(0, rest), "e_memmove up");
    const auto move = [](void* to, const void* from, unsigned count) {
        return t_memmove(to, from, count), to;
    };
    for (const auto copy : {&e_memcpy, &q_memcpy, &e_memmove, +move}) {
        moved = s;
        require(copy(&moved[0], &moved[shift], rest) == &moved[0], "the result of a copy");
        require(moved == s.substr(shift) + s.substr(rest), "a copy down");
    }
    moved = s;
    require(e_memset(&moved[0], wanted, rest) == &moved[0], "e_memset's result");
    const std::string fill(rest, static_cast<char>(wanted));
    require(moved == fill + s.substr(rest), "e_memset");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Input input(data, size);
    const unsigned n = input.byte() % 24;
    const unsigned wanted = input.byte();
    const unsigned common = input.byte();
    const std::string s = input.chars(input.byte() % 48);
    std::string t = s.substr(0, common % 16) + input.chars(80);
    check_comparisons(s, t, n);
    check_comparisons(s, t.c_str(), n);
    check_comparisons(t.c_str(), s, n);
    check_copies(s, n);
    check_edits(s);
    t.resize(s.size());
    // Half of the searches are for the byte as a signed one, which alone can be found above 127.
    check_memory(s, t,
                 static_cast<int>(common < 128 ? wanted : wanted ^ 128) - (common < 128 ? 0 : 128));
    return 0;
}
