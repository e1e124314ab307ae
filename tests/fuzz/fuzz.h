// What the fuzzers share. A fuzzer draws values from its input and calls a model with them.
#ifndef KTBASE_TESTS_FUZZ_FUZZ_H
#define KTBASE_TESTS_FUZZ_FUZZ_H

#include <algorithm>
#include <cstdint>
#include <string>
#include <string_view>

#include "../check.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

// Draws values from an input. An exhausted input gives zeros.
struct Input {
    std::string_view left;

    Input(const std::uint8_t* data, std::size_t size)
        : left(reinterpret_cast<const char*>(data), size) {}

    // At most that many characters.
    std::string chars(std::size_t most) {
        const std::string drawn(left.substr(0, most));
        left.remove_prefix(drawn.size());
        return drawn;
    }
    unsigned byte() { return chars(1)[0] & 0xFF; }
    Bytes bytes(std::size_t size) {
        const std::string drawn = chars(size);
        Bytes bytes(drawn.begin(), drawn.end());
        bytes.resize(size);
        return bytes;
    }
    // Up to the next byte 0 or the end.
    std::string text() {
        const std::string drawn = chars(left.find('\0'));
        byte();
        return drawn;
    }
};

#endif
