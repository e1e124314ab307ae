// Bytes to hexadecimal text and back, and powers of ten.
#include <ktbase/text.h>

#include <array>
#include <cstdio>
#include <cstring>

// The strtoul of ISO C99. From glibc 2.38 on, <cstdlib> redirects strtoul to a function that
// also accepts the prefix "0b". Older systems do not have that function.
extern "C" unsigned long iso_c99_strtoul(const char* text, char** end, int base) noexcept
    __asm__("strtoul");

namespace {

constexpr char kDigits[] = "0123456789ABCDEF";

using DigitPair = std::array<char, 2>;

constexpr std::array<DigitPair, 256> make_digit_pairs() {
    std::array<DigitPair, 256> pairs{};
    for (unsigned i = 0; i < 256; ++i) pairs[i] = {kDigits[i / 16], kDigits[i % 16]};
    return pairs;
}
constexpr std::array<DigitPair, 256> kDigitPairs = make_digit_pairs();

constexpr unsigned char kNoDigit = 0xFF;

constexpr std::array<unsigned char, 256> make_digit_values() {
    std::array<unsigned char, 256> values{};
    values.fill(kNoDigit);
    for (unsigned char i = 0; i < 10; ++i) values['0' + i] = i;
    for (unsigned char i = 10; i < 16; ++i) values['A' + i - 10] = values['a' + i - 10] = i;
    return values;
}
constexpr std::array<unsigned char, 256> kDigitValues = make_digit_values();

unsigned char parse_pair(char high, char low) {
    const unsigned char values[] = {kDigitValues[static_cast<unsigned char>(high)],
                                    kDigitValues[static_cast<unsigned char>(low)]};
    if ((values[0] | values[1]) < 16) return static_cast<unsigned char>(values[0] << 4 | values[1]);
    const char pair[] = {high, low, '\0'};
    return static_cast<unsigned char>(iso_c99_strtoul(pair, nullptr, 16));
}

}  // namespace

int BufToHexString(unsigned char* input, int length, char* output) {
    if (input == nullptr || length < 1 || output == nullptr) return 0;
#pragma GCC unroll 4
    for (; length > 0; --length, output += 2) {
        std::memcpy(output, kDigitPairs[*input++].data(), sizeof(DigitPair));
        output[2] = '\0';
    }
    return 1;
}

int MakeHexString(char* output, unsigned char* input, long length) {
    for (; length > 0; --length, output += 2)
        if (std::sprintf(output, "%02X", *input++) < 0) return -1;
    return 0;
}

int HexStringToBuf(char* text, unsigned char* output) {
    if (text == nullptr || output == nullptr) return 0;
    // Measure before the loop: the output may overwrite the text.
    const std::size_t length = std::strlen(text);
    if (length == 0 || length % 2 != 0) return 0;
    for (std::size_t i = 0; i < length / 2; ++i)
        output[i] = parse_pair(text[2 * i], text[2 * i + 1]);
    return 1;
}

std::uint32_t _ktpow10(unsigned exponent) {
    // 10^32 and all higher powers are multiples of 2^32.
    if (exponent >= 32) return 0;
    std::uint32_t power = 1;
    for (; exponent != 0; --exponent) power *= 10;
    return power;
}
