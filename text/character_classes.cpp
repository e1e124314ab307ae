// The character classes of the 256 codes: control and space characters, the specials of RFC 822 and
// the tspecials of RFC 2045.
#include <ktbase/text.h>

#include <array>
#include <string_view>

namespace {

constexpr std::string_view kSpaces = "\t\n\r ";
constexpr std::string_view kSpecials = "()<>@,;:\\\".[]";     // RFC 822, section 3.3
constexpr std::string_view kTspecials = "()<>@,;:\\\"/[]?=";  // RFC 2045, section 5.1
static_assert(kSpecials.size() == 13 && kTspecials.size() == 15);

constexpr std::array<unsigned char, 256> make_classes() {
    std::array<unsigned char, 256> classes{};
    for (unsigned c = 0; c < 0x20; ++c) classes[c] |= CHAR_CTL;
    classes[0x7f] |= CHAR_CTL;
    for (const char c : kSpaces) classes[static_cast<unsigned char>(c)] |= CHAR_SPACE;
    for (const char c : kSpecials) classes[static_cast<unsigned char>(c)] |= CHAR_SPECIAL;
    for (const char c : kTspecials) classes[static_cast<unsigned char>(c)] |= CHAR_TSPECIAL;
    return classes;
}

constexpr std::array<unsigned char, 256> kClasses = make_classes();

}  // namespace

const unsigned char* ks_char_map = kClasses.data();
