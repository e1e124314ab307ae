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
    const std::size_t middle = source.size() / 2;
    const std::string half = source.c_str() + middle;
    std::string copy[4] = {source, source, source, source};
    KsStrncpy(copy[0], copy[0], n);
    require(copy[0] == source.substr(0, n), "KsStrncpy of a string");
    KsStrncpy(copy[1], copy[1].c_str() + middle, n);
    require(copy[1] == half.substr(0, n), "KsStrncpy of an array");
    KsStrcpy(copy[2], copy[2].c_str() + middle);
    require(copy[2] == half, "KsStrcpy of an array");
    KsStrcpy(copy[3], half);
    require(copy[3] == half, "KsStrcpy of a string");

    char* const made = KsStrdup(source);
    require(std::string(made, source.size() + 1) == source + '\0', "KsStrdup");
    delete[] made;
    std::string array(source.size() + 2, '#');
    KsStrcpy(array.data(), source);
    require(array == source + '\0' + '#', "KsStrcpy into an array");
    array.assign(n + 1, '#');
    KsStrncpy(array.data(), source, n);
    std::string padded = source;
    padded.resize(n);
    require(array == padded + '#', "KsStrncpy into an array");
}

void check_edits(std::string text) {
    std::string expected = text;
    const auto kept = [](char c) { return std::memchr(" \t\r\n", c, 4) == nullptr; };
    expected.erase(std::find_if(expected.rbegin(), expected.rend(), kept).base(), expected.end());
    expected.erase(expected.begin(), std::find_if(expected.begin(), expected.end(), kept));
    Trim(text);
    require(text == expected, "Trim");
    for (char& c : expected) c = static_cast<char>(lower(c));
    ConvertToLowerCase(text);
    require(text == expected, "ConvertToLowerCase");
}

void check_searches(const std::string& s, const std::string& t, int wanted) {
    const auto [a, b] = std::mismatch(s.begin(), s.end(), t.begin());
    require(e_memcmp(s.data(), t.data(), s.size()) == (a == s.end() ? 0 : (*a & 255) - (*b & 255)),
            "e_memcmp");
    require(e_memicmp(s.data(), t.data(), s.size()) == order(s, t, ascii), "e_memicmp");
    const char* const text = s.c_str();
    const void* const first = wanted > 127 ? nullptr : std::memchr(text, wanted, s.size());
    require(e_memchr(text, wanted, s.size()) == first, "e_memchr");
    require(e_memchr(text, wanted + 0x10000, s.size()) == nullptr, "e_memchr of more than a byte");
    // The search ends before the NUL.
    const char* const last = wanted > 127 || wanted == 0 ? nullptr : std::strrchr(text, wanted);
    require(e_strrchr(text, wanted) == last, "e_strrchr");
    require(e_strlen(text) == std::strlen(text), "e_strlen");
}

void check_moves(const std::string& s, int wanted) {
    const std::size_t shift = s.empty() ? 0 : static_cast<unsigned>(wanted) % 8 % s.size();
    const std::size_t rest = s.size() - shift;
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
    require(moved == std::string(rest, static_cast<char>(wanted)) + s.substr(rest), "e_memset");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Input input(data, size);
    const unsigned n = input.byte() % 24;
    const unsigned byte = input.byte();
    const unsigned common = input.byte();
    // Half of the searches are for the byte as a signed one, which alone can be found above 127.
    const int wanted = common < 128 ? byte : static_cast<signed char>(byte);
    const std::string s = input.chars(input.byte() % 48);
    std::string t = s.substr(0, common % 16) + input.chars(80);
    check_comparisons(s, t, n);
    check_comparisons(s, t.c_str(), n);
    check_comparisons(t.c_str(), s, n);
    check_copies(s, n);
    check_edits(s);
    t.resize(s.size());
    check_searches(s, t, wanted);
    check_moves(s, wanted);
    return 0;
}
