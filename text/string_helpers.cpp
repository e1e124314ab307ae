// Comparisons, copies and small edits over the standard string.
#include <ktbase/text.h>

#include <algorithm>
#include <cctype>
#include <cstring>

namespace {

constexpr char kBlanks[] = " \t\r\n";

// One operand of a comparison: all of a standard string, or a C string up to its NUL. Null is
// empty.
struct Operand {
    const char* text;
    std::size_t length;

    Operand(const std::string& s) : text(s.data()), length(s.size()) {}
    Operand(const char* s) : text(s), length(s == nullptr ? 0 : std::strlen(s)) {}
};

Operand first(unsigned count, Operand operand) {
    operand.length = std::min<std::size_t>(operand.length, count);
    return operand;
}

int signed_value(char c) {
    return static_cast<signed char>(c);
}

// Returns what tolower returns for the signed value of the character.
int folded(char c) {
    return std::tolower(signed_value(c));
}

template <int (*kRank)(char)>
int compare(const Operand& a, const Operand& b) {
    const std::size_t common = std::min(a.length, b.length);
    for (std::size_t i = 0; i < common; ++i) {
        const int x = kRank(a.text[i]);
        const int y = kRank(b.text[i]);
        if (x != y) return x < y ? -1 : 1;
    }
    if (a.length == b.length) return 0;
    return a.length < b.length ? -1 : 1;
}

int compare_case(const Operand& a, const Operand& b) {
    return compare<signed_value>(a, b);
}

int compare_no_case(const Operand& a, const Operand& b) {
    return compare<folded>(a, b);
}

// memmove, because the destination may lie in the source's own text.
void move_text(char* destination, const std::string& source, std::size_t length) {
    if (length != 0 && destination != source.data())
        std::memmove(destination, source.data(), length);
}

}  // namespace

int KsStrcmp(const std::string& a, const std::string& b) {
    return compare_case(a, b);
}
int KsStrcmp(const char* a, const std::string& b) {
    return compare_case(a, b);
}
int KsStrcmp(const std::string& a, const char* b) {
    return compare_case(a, b);
}

int KsStrncmp(const std::string& a, const std::string& b, unsigned n) {
    return compare_case(first(n, a), first(n, b));
}
int KsStrncmp(const char* a, const std::string& b, unsigned n) {
    return compare_case(first(n, a), first(n, b));
}
int KsStrncmp(const std::string& a, const char* b, unsigned n) {
    return compare_case(first(n, a), first(n, b));
}

int KsStrcasecmp(const std::string& a, const std::string& b) {
    return compare_no_case(a, b);
}
int KsStrcasecmp(const char* a, const std::string& b) {
    return compare_no_case(a, b);
}
int KsStrcasecmp(const std::string& a, const char* b) {
    return compare_no_case(a, b);
}

int KsStrncasecmp(const std::string& a, const std::string& b, unsigned n) {
    return compare_no_case(first(n, a), first(n, b));
}
int KsStrncasecmp(const char* a, const std::string& b, unsigned n) {
    return compare_no_case(first(n, a), first(n, b));
}
int KsStrncasecmp(const std::string& a, const char* b, unsigned n) {
    return compare_no_case(first(n, a), first(n, b));
}

void KsStrcpy(char* destination, const std::string& source) {
    if (destination == nullptr) return;
    const std::size_t length = source.size();
    move_text(destination, source, length);
    destination[length] = '\0';
}
void KsStrcpy(std::string& destination, const char* source) {
    destination.assign(source == nullptr ? "" : source);
}
void KsStrcpy(std::string& destination, const std::string& source) {
    destination = source;
}

void KsStrncpy(std::string& destination, const char* source, unsigned n) {
    const std::string whole(source);  // throws for null, whatever n is
    destination.assign(whole, 0, n);
}
void KsStrncpy(char* destination, const std::string& source, unsigned n) {
    if (destination == nullptr) return;
    const std::size_t length = std::min<std::size_t>(n, source.size());
    move_text(destination, source, length);
    std::fill(destination + length, destination + n, '\0');
}
void KsStrncpy(std::string& destination, const std::string& source, unsigned n) {
    destination.assign(source, 0, n);
}

char* KsStrdup(const std::string& source) {
    const std::size_t length = source.size();
    char* const copy = new char[length + 1];
    KsStrncpy(copy, source, length);
    copy[length] = '\0';
    return copy;
}

void ConvertToLowerCase(std::string& text) {
    for (char& c : text) c = static_cast<char>(folded(c));
}

void Trim(std::string& text) {
    // For a text of blanks only, npos + 1 is 0, and all of it is erased.
    text.erase(text.find_last_not_of(kBlanks) + 1);
    text.erase(0, text.find_first_not_of(kBlanks));
}
