// The domain reader against a reader made of regular expressions.
#include "../../longarith/domain/domain_file.h"

#include <map>
#include <regex>
#include <sstream>

#include "fuzz.h"

namespace {

// The numbers of a domain as hexadecimal text of full width; empty when the text is none.
std::map<std::string, std::string> model(const std::string& text) {
    static const std::regex kBlank("[ \t\r]*(#.*)?");
    static const std::regex kNumber("[ \t\r]*([pqg])[ \t\r]*=[ \t\r]*([0-9a-fA-F]+)[ \t\r]*(#.*)?");
    std::map<std::string, std::string> numbers;
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
        std::replace(line.begin(), line.end(), '\n', '?');
        std::smatch found;
        const std::string content = line.substr(0, line.find('#'));
        if (std::regex_match(content, kBlank)) continue;
        if (!std::regex_match(content, found, kNumber)) return {};
        if (!numbers.emplace(found[1], found[2]).second) return {};
    }
    if (numbers.size() != 3 || numbers["p"].size() != 128 || numbers["q"].size() != 40) return {};
    if (numbers["g"].size() > 128) return {};
    numbers["g"].insert(0, 128 - numbers["g"].size(), '0');
    return numbers;
}

std::string hexadecimal(const Limbs& limbs) {
    std::string text;
    for (const unsigned short limb : limbs) {
        char digits[5];
        std::snprintf(digits, sizeof digits, "%04x", limb);
        text.insert(0, digits);
    }
    return text;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text(reinterpret_cast<const char*>(data), size);
    auto expected = model(text);
    for (auto& [name, digits] : expected)
        std::transform(digits.begin(), digits.end(), digits.begin(), tolower);
    try {
        const Domain domain = parse_domain(text);
        require(!expected.empty(), "refusal");
        require(hexadecimal(domain.p) == expected["p"], "p");
        require(hexadecimal(domain.q) == expected["q"], "q");
        require(hexadecimal(domain.g) == expected["g"], "g");
    } catch (const DomainError& error) {
        require(expected.empty(), error.what());
        require(std::string(error.what()).find('\n') == std::string::npos, "one line");
    }
    return 0;
}
