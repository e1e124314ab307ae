// Times hexadecimal conversions, compared with loops over tables.
#include <ktbase/text.h>

#include <array>
#include <cstring>

#include "groups.h"
#include "timing.h"

namespace {

constexpr int kBytes = 1 << 10;
constexpr char kDigits[] = "0123456789ABCDEF";

constexpr std::array<int, 256> make_digit_values() {
    std::array<int, 256> values{};
    values.fill(-1);
    for (int i = 0; i < 16; ++i) {
        values[static_cast<unsigned char>(kDigits[i])] = i;
        if (i >= 10) values[static_cast<unsigned char>(kDigits[i] - 'A' + 'a')] = i;
    }
    return values;
}
constexpr std::array<int, 256> kValues = make_digit_values();

struct DigitPairs {
    char text[256][2];
    DigitPairs() {
        for (int i = 0; i < 256; ++i) {
            text[i][0] = kDigits[i / 16];
            text[i][1] = kDigits[i % 16];
        }
    }
};

void write_by_table(const DigitPairs& pairs, const Bytes& input, char* output) {
    for (const unsigned char byte : input) {
        std::memcpy(output, pairs.text[byte], 2);
        output += 2;
    }
    *output = '\0';
}

bool read_by_table(const char* text, unsigned char* output) {
    const std::size_t length = std::strlen(text);
    for (std::size_t i = 0; i < length; i += 2) {
        const int high = kValues[static_cast<unsigned char>(text[i])];
        const int low = kValues[static_cast<unsigned char>(text[i + 1])];
        if (high < 0 || low < 0) return false;
        output[i / 2] = static_cast<unsigned char>(16 * high + low);
    }
    return true;
}

}  // namespace

void bench_conversions() {
    Bytes bytes = test_data(kBytes);
    const DigitPairs pairs;
    char ours[2 * kBytes + 1];
    char theirs[2 * kBytes + 1];
    const std::vector<Candidate> writers = {
        {"library", [&] { BufToHexString(bytes.data(), kBytes, ours); }},
        {"table of digit pairs", [&] { write_by_table(pairs, bytes, theirs); }}};
    for (const Candidate& writer : writers) writer.run();
    check(std::strcmp(ours, theirs) == 0, "hexadecimal text");
    compare("to hexadecimal, 1 KiB", writers);

    Bytes back(kBytes);
    const std::vector<Candidate> readers = {
        {"library", [&] { HexStringToBuf(ours, back.data()); }},
        {"table of digit values", [&] { read_by_table(ours, back.data()); }}};
    for (const Candidate& reader : readers) {
        back.assign(kBytes, 0);
        reader.run();
        check(back == bytes, "bytes by " + reader.name);
    }
    compare("from hexadecimal, 1 KiB", readers);
}
