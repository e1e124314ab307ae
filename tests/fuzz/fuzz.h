// What the fuzzers share. Each defines LLVMFuzzerTestOneInput, which draws a case from the input,
// runs the library and a model on it, and requires them to agree.
#ifndef KTBASE_TESTS_FUZZ_FUZZ_H
#define KTBASE_TESTS_FUZZ_FUZZ_H

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

// Each array is of its own exact size: the address sanitizer sees the first byte beyond it.
using Bytes = std::vector<unsigned char>;

inline void require(bool holds, const char* what) {
    if (holds) return;
    std::fprintf(stderr, "FAILED: %s\n", what);
    std::abort();
}

// Draws values from an input; one that is used up gives zeros.
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
        Bytes all(drawn.begin(), drawn.end());
        all.resize(size);
        return all;
    }
    // Up to the next byte 0 or the end.
    std::string text() {
        const std::string drawn = chars(left.find('\0'));
        byte();
        return drawn;
    }
};

#endif
