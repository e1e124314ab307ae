// What the fuzzers share. Each defines LLVMFuzzerTestOneInput, which draws a case from the input,
// runs the library and a model on it, and requires them to agree.
#ifndef KTBASE_TESTS_FUZZ_FUZZ_H
#define KTBASE_TESTS_FUZZ_FUZZ_H

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

using Bytes = std::vector<unsigned char>;

inline void require(bool holds, const char* what) {
    if (holds) return;
    std::fprintf(stderr, "FAILED: %s\n", what);
    std::abort();
}

// Draws values from an input; one that is used up gives zeros. Every array is of its own exact
// size, so that the address sanitizer sees the first byte beyond it.
class Input {
public:
    Input(const std::uint8_t* data, std::size_t size) : at_(data), end_(data + size) {}

    bool empty() const { return at_ == end_; }
    unsigned byte() { return empty() ? 0 : *at_++; }
    Bytes bytes(std::size_t size) {
        Bytes drawn(size);
        for (unsigned char& b : drawn) b = static_cast<unsigned char>(byte());
        return drawn;
    }
    Bytes rest() { return bytes(static_cast<std::size_t>(end_ - at_)); }
    // At most that many characters.
    std::string chars(std::size_t most) {
        std::string drawn;
        while (!empty() && drawn.size() < most) drawn += static_cast<char>(byte());
        return drawn;
    }
    // Up to the next byte 0 or the end.
    std::string text() {
        std::string drawn;
        while (!empty())
            if (const unsigned b = byte(); b != 0)
                drawn += static_cast<char>(b);
            else
                break;
        return drawn;
    }

private:
    const std::uint8_t* at_;
    const std::uint8_t* end_;
};

#endif
