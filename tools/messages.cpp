#include "messages.h"

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <cwchar>
#include <cwctype>
#include <new>
#include <string_view>

namespace {

// Characters of Unicode that change the direction of the text after them.
constexpr std::wstring_view kDirectionMarks =
    L"\u200E\u200F\u202A\u202B\u202C\u202D\u202E\u2066\u2067\u2068\u2069";

bool is_printed_in_order(wchar_t c) {
    return std::iswprint(static_cast<std::wint_t>(c)) != 0 &&
           kDirectionMarks.find(c) == std::wstring_view::npos;
}

}  // namespace

std::string quoted(const std::string& name, const std::string& dash) {
    if (name == "-") return dash;
    if (name.empty()) return "\"\"";
    std::string text;
    std::mbstate_t state{};
    for (std::size_t at = 0; at < name.size();) {
        wchar_t character = 0;
        std::size_t length = std::mbrtowc(&character, &name[at], name.size() - at, &state);
        const bool complete = length <= name.size();
        if (!complete || length == 0) {  // an invalid sequence, or a NUL
            state = {};
            length = 1;
        }
        if (complete && is_printed_in_order(character)) {
            text += name[at] == '\\' ? "\\\\" : name.substr(at, length);
        } else {
            for (std::size_t i = at; i < at + length; ++i) {
                std::array<char, 5> escape{};
                std::snprintf(escape.data(), escape.size(), "\\x%02x",
                              static_cast<unsigned char>(name[i]));
                text += escape.data();
            }
        }
        at += length;
    }
    return text;
}

void fail_with_errno(const std::string& name) {
    throw Failure(name, std::strerror(errno));
}

void print_error(const std::string& message) {
    std::fprintf(stderr, "ktsign: %s\n", message.c_str());
}

void print_error(const std::exception& error) {
    const bool is_shortage = dynamic_cast<const std::bad_alloc*>(&error) != nullptr;
    print_error(is_shortage ? "out of memory" : error.what());
}

void print_line(const std::string& line) {
    if (std::puts(line.c_str()) == EOF || std::fflush(stdout) == EOF)
        fail_with_errno("standard output");
}
