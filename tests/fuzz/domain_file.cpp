// The domain reader against a reader made of regular expressions.
#include "../../longarith/domain/domain_file.h"

#include <map>
#include <regex>
#include <sstream>

#include "fuzz.h"

namespace {

// p, q and g as hexadecimal digits of their full widths; empty when the text is no domain.
std::string model(const std::string& text) {
    static const std::regex kBlank("[ \t\r]*");
    static const std::regex kNumber("[ \t\r]*([pqg])[ \t\r]*=[ \t\r]*([0-9a-fA-F]+)[ \t\r]*");
    std::map<std::string, std::string> numbers;
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
        line.erase(std::min(line.find('#'), line.size()));
        std::smatch found;
        if (std::regex_match(line, kBlank)) continue;
        if (!std::regex_match(line, found, kNumber)) return "";
        if (!numbers.emplace(found[1], found[2]).second) return "";
    }
    if (numbers.size() != 3 || numbers["p"].size() != 128 || numbers["q"].size() != 40) return "";
    if (numbers["g"].size() > 128) return "";
    std::string all = numbers["p"] + numbers["q"] + std::string(128 - numbers["g"].size(), '0');
    all += numbers["g"];
    std::transform(all.begin(), all.end(), all.begin(), tolower);
    return all;
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
    std::string read;
    const std::string text = Input(data, size).chars(size);
    try {
        const Domain domain = parse_domain(text);
        read = hexadecimal(domain.p) + hexadecimal(domain.q) + hexadecimal(domain.g);
    } catch (const DomainError& error) {
        require(std::string(error.what()).find('\n') == std::string::npos, "one line");
    }
    require(read == model(text), "the numbers, or none");
    return 0;
}
