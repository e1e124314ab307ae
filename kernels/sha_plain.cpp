// SHA's block function as FIPS 180 (1993) writes it, with the schedule in the words of the block.
#include "kernels/sha_blocks.h"

#include <bit>

namespace {

std::uint32_t choice(std::uint32_t b, std::uint32_t c, std::uint32_t d) {
    return ((c ^ d) & b) ^ d;
}
std::uint32_t parity(std::uint32_t b, std::uint32_t c, std::uint32_t d) {
    return b ^ c ^ d;
}
std::uint32_t majority(std::uint32_t b, std::uint32_t c, std::uint32_t d) {
    return (b & c) | ((b | c) & d);
}

std::uint32_t big_endian_word(const unsigned char* bytes) {
    return std::uint32_t{bytes[0]} << 24 | std::uint32_t{bytes[1]} << 16 |
           std::uint32_t{bytes[2]} << 8 | bytes[3];
}

// Returns W[t], computed in the word that held W[t-16].
std::uint32_t schedule_word(std::uint32_t* schedule, unsigned t) {
    if (t >= kShaBlockWords)
        schedule[t % 16] ^=
            schedule[(t + 13) % 16] ^ schedule[(t + 8) % 16] ^ schedule[(t + 2) % 16];
    return schedule[t % 16];
}

struct WorkingState {
    std::uint32_t a, b, c, d, e;
};

template <auto kRoundFunction, unsigned kFirst>
void twenty_rounds(WorkingState& s, std::uint32_t* schedule) {
    for (unsigned t = kFirst; t < kFirst + 20; ++t) {
        const std::uint32_t sum = std::rotl(s.a, 5) + kRoundFunction(s.b, s.c, s.d) + s.e +
                                  schedule_word(schedule, t) + kShaConstants[kFirst / 20];
        s = {sum, s.a, std::rotl(s.b, 30), s.c, s.d};
    }
}

// Compresses the block in `schedule` into `state`.
void compress(std::uint32_t* state, std::uint32_t* schedule) {
    WorkingState s = {state[0], state[1], state[2], state[3], state[4]};
    twenty_rounds<choice, 0>(s, schedule);
    twenty_rounds<parity, 20>(s, schedule);
    twenty_rounds<majority, 40>(s, schedule);
    twenty_rounds<parity, 60>(s, schedule);
    state[0] += s.a;
    state[1] += s.b;
    state[2] += s.c;
    state[3] += s.d;
    state[4] += s.e;
}

}  // namespace

void sha_blocks_plain(std::uint32_t* state, std::uint32_t* schedule, const unsigned char* blocks,
                      std::size_t count) {
    for (; count != 0; --count, blocks += kShaBlockBytes) {
        for (unsigned i = 0; i < kShaBlockWords; ++i) schedule[i] = big_endian_word(blocks + 4 * i);
        compress(state, schedule);
    }
}
