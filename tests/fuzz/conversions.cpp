// Hexadecimal text to bytes against a reader of its own, and round trips through both writers.
#include <ktbase/text.h>

#include <cstring>

#include "fuzz.h"

namespace {

int digit(char c) {
    const char* const digits = "0123456789abcdef0123456789ABCDEF";
    const char* const found = c == '\0' ? nullptr : std::strchr(digits, c);
    return found == nullptr ? -1 : static_cast<int>((found - digits) % 16);
}

// What strtoul takes two characters for.
unsigned char pair_value(std::string pair) {
    pair.erase(0, pair.find_first_not_of(" \t\n\v\f\r"));
    const bool negative = pair.starts_with('-');
    if (negative || pair.starts_with('+')) pair.erase(0, 1);
    int value = 0;
    for (const char c : pair) {
        if (digit(c) < 0) break;
        value = 16 * value + digit(c);
    }
    return static_cast<unsigned char>(negative ? -value : value);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Input input(data, size);
    std::string text = input.text();
    Bytes bytes(text.size() / 2, 0xEE);
    Bytes expected = bytes;
    const bool good = !text.empty() && text.size() % 2 == 0;
    for (std::size_t i = 0; good && i < expected.size(); ++i)
        expected[i] = pair_value(text.substr(2 * i, 2));
    Bytes none(1);
    unsigned char* const out = bytes.empty() ? none.data() : bytes.data();
    require(HexStringToBuf(text.data(), out) == (good ? 1 : 0), "HexStringToBuf's result");
    require(bytes == expected, "HexStringToBuf");

    Bytes data_bytes = input.empty() ? bytes : input.rest();
    if (data_bytes.empty()) return 0;
    const auto length = static_cast<int>(data_bytes.size());
    std::string hex(2 * data_bytes.size(), '#');
    std::string other = hex;
    require(BufToHexString(data_bytes.data(), length, hex.data()) == 1, "BufToHexString's result");
    require(MakeHexString(other.data(), data_bytes.data(), length) == 0, "MakeHexString's result");
    require(hex == other && hex.find_first_not_of("0123456789ABCDEF") == hex.npos, "digits");
    Bytes back(data_bytes.size());
    HexStringToBuf(hex.data(), back.data());
    require(back == data_bytes, "round trip");
    return 0;
}
