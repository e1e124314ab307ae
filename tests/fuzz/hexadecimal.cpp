// Hexadecimal text against what the standard streams read and write.
#include <ktbase/text.h>

#include <iomanip>
#include <sstream>

#include "fuzz.h"

namespace {

void check_reading(std::string text) {
    const std::size_t count = text.size() % 2 == 0 ? text.size() / 2 : 0;
    Bytes expected(text.size() + 1, '#');
    for (std::size_t i = 0; i < count; ++i) {
        unsigned value = 0;
        std::istringstream(text.substr(2 * i, 2)) >> std::hex >> value;
        expected[i] = static_cast<unsigned char>(value);
    }
    Bytes read(expected.size(), '#');
    require(HexStringToBuf(text.data(), read.data()) == (count != 0), "HexStringToBuf's result");
    require(read == expected, "HexStringToBuf");
    HexStringToBuf(text.data(), reinterpret_cast<unsigned char*>(text.data()));
    require(count == 0 || std::equal(text.data(), text.data() + count, read.data(),
                                     [](char a, unsigned char b) { return (a & 0xFF) == b; }),
            "HexStringToBuf over the text");
}

void check_writing(Bytes bytes) {
    std::ostringstream expected;
    expected << std::hex << std::uppercase << std::setfill('0');
    for (const unsigned byte : bytes) expected << std::setw(2) << byte;
    const int length = static_cast<int>(bytes.size());
    std::string text(2 * bytes.size() + 1, '#');
    require(BufToHexString(bytes.data(), length, text.data()) == (length != 0), "BufToHexString");
    require(length == 0 || text.c_str() == expected.str(), "BufToHexString's text");
    std::string same(text.size(), '#');
    require(MakeHexString(same.data(), bytes.data(), length) == 0, "MakeHexString");
    require(same == text, "MakeHexString's text");
    Bytes back(bytes.size());
    require(length == 0 || HexStringToBuf(text.data(), back.data()) == 1, "the way back");
    require(back == bytes, "the way there and back");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Input input(data, size);
    check_reading(input.text());
    check_writing(input.bytes(input.left.size()));
    return 0;
}
