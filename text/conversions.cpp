// Bytes to hexadecimal text and back, and powers of ten.
#include <ktbase/text.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace {

// Two digits and a NUL, which the next pair overwrites. Returns below 0 when printing fails.
int format_byte(char* output, unsigned char byte) {
    return std::sprintf(output, "%02X", byte);
}

}  // namespace

int BufToHexString(unsigned char* input, int length, char* output) {
    if (input == nullptr || length < 1 || output == nullptr) return 0;
    for (; length > 0; --length, output += 2) format_byte(output, *input++);
    return 1;
}

int MakeHexString(char* output, unsigned char* input, long length) {
    for (; length > 0; --length, output += 2)
        if (format_byte(output, *input++) < 0) return -1;
    return 0;
}

int HexStringToBuf(char* text, unsigned char* output) {
    if (text == nullptr || output == nullptr) return 0;
    // Taken once: the bytes may be written over the text.
    const std::size_t length = std::strlen(text);
    if (length == 0 || length % 2 != 0) return 0;
    for (std::size_t i = 0; i < length / 2; ++i) {
        const char pair[] = {text[2 * i], text[2 * i + 1], '\0'};
        output[i] = static_cast<unsigned char>(std::strtoul(pair, nullptr, 16));
    }
    return 1;
}

std::uint32_t _ktpow10(unsigned exponent) {
    // 10^32 is a multiple of 2^32, and so are all that follow.
    if (exponent >= 32) return 0;
    std::uint32_t power = 1;
    for (; exponent != 0; --exponent) power *= 10;
    return power;
}
