#include "domain_file.h"

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <map>
#include <sstream>

#include "../domain_shape.h"

namespace {

constexpr std::size_t kDigitsPerLimb = kLimbBits / 4;
constexpr std::size_t kDigitsP = kLimbsP * kDigitsPerLimb;
constexpr std::size_t kDigitsQ = kLimbsQ * kDigitsPerLimb;

std::string trimmed(const std::string& text) {
    const char* const blanks = " \t\r";
    const std::size_t first = text.find_first_not_of(blanks);
    if (first == std::string::npos) return "";
    return text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

// Returns the number `name`. Requires exactly `width` digits, or at most `width` where `exact` is
// false.
Limbs parse_number(const std::map<std::string, std::string>& numbers, const std::string& name,
                   std::size_t width, bool exact) {
    const auto found = numbers.find(name);
    if (found == numbers.end()) throw DomainError("no line \"" + name + " = HEX\"");
    std::string digits = found->second;
    if (digits.size() > width || (exact && digits.size() < width))
        throw DomainError(name + " has " + std::to_string(digits.size()) +
                          " hexadecimal digits; expected " + (exact ? "" : "at most ") +
                          std::to_string(width));
    digits.insert(0, width - digits.size(), '0');
    Limbs limbs;
    for (std::size_t end = width; end != 0; end -= kDigitsPerLimb)
        limbs.push_back(static_cast<unsigned short>(
            std::stoul(digits.substr(end - kDigitsPerLimb, kDigitsPerLimb), nullptr, 16)));
    return limbs;
}

}  // namespace

Domain parse_domain(const std::string& text) {
    std::map<std::string, std::string> numbers;
    std::istringstream lines(text);
    std::string line;
    for (int number = 1; std::getline(lines, line); ++number) {
        const std::string content = trimmed(line.substr(0, line.find('#')));
        if (content.empty()) continue;
        const std::string where = "line " + std::to_string(number) + ": ";
        const std::size_t equals = content.find('=');
        if (equals == std::string::npos) throw DomainError(where + "not of the form NAME = HEX");
        const std::string name = trimmed(content.substr(0, equals));
        const std::string digits = trimmed(content.substr(equals + 1));
        if (name != "p" && name != "q" && name != "g")
            throw DomainError(where + "the name is not p, q or g");
        if (digits.empty() ||
            digits.find_first_not_of("0123456789abcdefABCDEF") != std::string::npos)
            throw DomainError(where + name + " is not a hexadecimal number");
        if (!numbers.emplace(name, digits).second)
            throw DomainError(where + name + " is given twice");
    }
    return {parse_number(numbers, "p", kDigitsP, true), parse_number(numbers, "q", kDigitsQ, true),
            parse_number(numbers, "g", kDigitsP, false)};
}

Domain read_domain_file(const std::string& path) {
    std::error_code error;  // ignored: the open below reports errors of the path
    if (path.empty() || std::filesystem::is_directory(path, error)) throw DomainError("not a file");
    std::ifstream file(path, std::ios::binary);
    if (!file) throw DomainError(std::strerror(errno));
    std::string text;
    char c = 0;
    while (file.get(c)) text += c;
    if (file.bad()) throw DomainError(std::strerror(errno));
    return parse_domain(text);
}
