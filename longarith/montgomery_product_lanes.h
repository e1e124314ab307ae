// The Montgomery product in eight vector lanes at a time. Each source that includes this compiles
// it for its own instruction set, after these operations of that set:
//   Lanes                  eight 32-bit lanes
//   all(x)                 x in every lane
//   load, store            at a multiple of 32 bytes; load_unaligned, store_unaligned anywhere
//   +  |  &                lane by lane
//   shift_up_16, shift_down_13
//   multiply_pairs(x, y)   x.low*y.low + x.high*y.high of each lane's signed 16-bit halves
//   join_pairs(x)          lane 2i = x[2i] + 2^16 x[2i+1], for x below 2^16
//   next_lane(x, before)   lane i = x[i-1], lane 0 = the last lane of `before`
//   split_digits(bytes)    the eight 13-bit digits of a number of 13 bytes; reads 16
//
// Digits of 13 bits leave room: a lane adds up products without passing carries on, and the pairs
// of a multiply_pairs stay non-negative. Eight digits are a block of exactly 13 bytes. With N
// digits, any number of whole blocks that holds n limbs, and S = 2^(13N)/R, the product comes from
//     (a*S*b + V*m) / 2^(13N),   V = -(a*S*b)/m mod 2^(13N),
// where V = S*U for the U that belongs to R: the same T to the last limb. S is a power of 2^8, so
// that a enters shifted by whole bytes.
//
// Everything here is the including source's own: of a function shared by name the linker keeps one
// copy, and that might be one that the CPU cannot run.
#ifndef KTBASE_LONGARITH_MONTGOMERY_PRODUCT_LANES_H
#define KTBASE_LONGARITH_MONTGOMERY_PRODUCT_LANES_H

#include <cstring>

#include "montgomery_product.h"

namespace {  // NOLINT(cert-dcl59-cpp): see above

constexpr std::uint32_t kDigitMask = (1U << 13) - 1;
constexpr std::uint32_t kPairMask = (1U << 26) - 1;
constexpr int kBlockDigits = 8;
constexpr int kBlockPairs = kBlockDigits / 2;
constexpr int kBlockBytes = 13;

// Copies n limbs, from and to any alignment.
void copy_limbs(void* to, const void* from, int n) {
    const unsigned size = 2 * static_cast<unsigned>(n);
    if (size < sizeof(Lanes)) {
        std::memcpy(to, from, size);
        return;
    }
    // At most twice the size of Lanes: both ends, which may overlap.
    const unsigned rest = size - sizeof(Lanes);
    const Lanes low = load_unaligned(from);
    const Lanes high = load_unaligned(static_cast<const unsigned char*>(from) + rest);
    store_unaligned(to, low);
    store_unaligned(static_cast<unsigned char*>(to) + rest, high);
}

// A number of kBlocks blocks as little-endian bytes, with the bytes that split_digits reads on.
template <int kBlocks>
struct Bytes {
    // Whole lanes, with room for what split_digits reads on.
    static constexpr int kSize = (kBlockBytes * kBlocks + 3 + 31) / 32 * 32;
    alignas(64) unsigned char byte[kSize];

    Bytes(const std::uint16_t* limbs, int n, int start) {
        for (int i = 0; i < kSize; i += 32) store(byte + i, all(0));
        copy_limbs(byte + start, limbs, n);
    }
    Lanes digits(int block) const { return split_digits(byte + kBlockBytes * block); }
};

// The factor a or m. Lane j holds its digits j (low half) and j - 1, and zeros outside the number:
// multiplied by the pair of b[i] (low half) and b[i+1] it is what column i + j gets from the two.
template <int kBlocks>
struct Multiplicand {
    static constexpr int kDigits = kBlockDigits * kBlocks;
    alignas(64) std::uint32_t lane[kDigits + 2 * kBlockDigits];

    explicit Multiplicand(const Bytes<kBlocks>& number) {
        Lanes before = all(0);
        store(lane, before);
        for (int block = 0; block < kBlocks; ++block) {
            const Lanes digits = number.digits(block);
            set(block, digits | shift_up_16(next_lane(digits, before)));
            before = digits;
        }
        set(kBlocks, shift_up_16(next_lane(all(0), before)));
    }
    void set(int block, Lanes digits) { store(lane + kBlockDigits * (block + 1), digits); }
    std::uint32_t digit(int j) const { return lane[kBlockDigits + j] & kDigitMask; }

    // to[c] = from[c] + what column first + c gets from a block of pairs, up to the last column
    // that gets something.
    void multiply_add(std::uint32_t* to, const std::uint32_t* from, int first,
                      const std::uint32_t* pairs) const {
        const Lanes pair0 = all(pairs[0]);
        const Lanes pair1 = all(pairs[1]);
        const Lanes pair2 = all(pairs[2]);
        const Lanes pair3 = all(pairs[3]);
        for (int c = 0; first + c <= kDigits; c += kBlockDigits) {
            const std::uint32_t* const at = lane + kBlockDigits + first + c;
            // The last pair comes last from the reduction, so nothing waits for it but one sum.
            const Lanes sum = load(from + c) + multiply_pairs(load_unaligned(at), pair0) +
                              multiply_pairs(load_unaligned(at - 2), pair1) +
                              multiply_pairs(load_unaligned(at - 4), pair2) +
                              multiply_pairs(load_unaligned(at - 6), pair3);
            store(to + c, sum);
        }
    }
};

// The factor b: lane 2i holds its digits 2i (low half) and 2i + 1.
template <int kBlocks>
struct Multiplier {
    alignas(64) std::uint32_t lane[kBlockDigits * kBlocks];

    explicit Multiplier(const Bytes<kBlocks>& number) {
        for (int block = 0; block < kBlocks; ++block)
            store(lane + kBlockDigits * block, join_pairs(number.digits(block)));
    }
};

// Finds the digits of V block by block.
class Reduction {
public:
    template <int kBlocks>
    Reduction(const Multiplicand<kBlocks>& modulus, std::uint16_t mont) {
        for (int j = 0; j < kBlockDigits; ++j) m_[j] = modulus.digit(j);
        // A Newton step takes -1/m from 13 bits to 26.
        inverse_ = mont & kDigitMask;
        inverse_ *= 2 + (m_[0] | m_[1] << 13) * inverse_;
    }

    // Computes the eight digits that make the lowest eight columns a multiple of 2^104, as pairs,
    // and keeps what these columns carry into the next one.
    void next_block(const std::uint32_t* column, std::uint32_t* pairs) {
        std::uint32_t t[kBlockDigits];
        for (int c = 0; c < kBlockDigits; ++c) t[c] = column[c];
#pragma GCC unroll 4
        for (int c = 0; c < kBlockDigits; c += 2) {
            const std::uint32_t pair = (t[c] + (t[c + 1] << 13) + carry_) * inverse_;
            const std::uint32_t v0 = pair & kDigitMask;
            const std::uint32_t v1 = pair >> 13 & kDigitMask;
            const std::uint32_t low_carry = (t[c] + carry_ + m_[0] * v0) >> 13;
            carry_ = (t[c + 1] + m_[1] * v0 + m_[0] * v1 + low_carry) >> 13;
            pairs[c / 2] = v0 | v1 << 16;
#pragma GCC unroll 8
            for (int j = c + 2; j < kBlockDigits; ++j) t[j] += m_[j - c] * v0 + m_[j - c - 1] * v1;
        }
    }
    std::uint32_t carry() const {
        return carry_;
    }

private:
    std::uint32_t m_[kBlockDigits];
    std::uint32_t inverse_;
    std::uint32_t carry_ = 0;
};

// The sum a*S*b + V*m in columns of weight 2^(13c), each time less the lowest block, which is zero
// by then; the columns of a*S*b are a block ahead.
template <int kBlocks>
struct Columns {
    static constexpr int kDigits = kBlockDigits * kBlocks;
    alignas(64) std::uint32_t column[kDigits + 2 * kBlockDigits];

    Columns() {
        for (int c = 0; c < kDigits + 2 * kBlockDigits; c += kBlockDigits)
            store(column + c, all(0));
    }
    // Ends a shift of the columns down by a block.
    void shift_last_block() {
        store(column + kDigits, load(column + kDigits + kBlockDigits));
        store(column + kDigits + kBlockDigits, all(0));
    }

    // Passes the upper part of every column from the first on to the next one. A column holds less
    // than 49*2^26 by the bound in multiply, and keeps less than 50*2^13.
    void pass_carries(int first) {
        Lanes before = all(0);
        for (int c = first; c < kDigits + 2 * kBlockDigits; c += kBlockDigits) {
            const Lanes sum = load(column + c);
            const Lanes carries = shift_down_13(sum);
            store(column + c, (sum & all(kDigitMask)) + next_lane(carries, before));
            before = carries;
        }
    }

    // Adds the lowest columns up to bytes, after pass_carries; the carry is what they start with.
    // Writes four bytes after the last block, the number's top.
    void write(unsigned char* bytes, std::uint32_t carry) const {
        for (int block = 0; block < kBlocks; ++block, bytes += kBlockBytes) {
            std::uint32_t pair[kBlockPairs];
            for (int i = 0; i < kBlockPairs; ++i) {
                const std::uint32_t* const at = column + kBlockDigits * block + 2 * i;
                // Less than 50*2^26 + 2^20, which fits.
                const std::uint32_t t = at[0] + (at[1] << 13) + carry;
                pair[i] = t & kPairMask;
                carry = t >> 26;
            }
            const std::uint32_t words[4] = {pair[0] | pair[1] << 26, pair[1] >> 6 | pair[2] << 20,
                                            pair[2] >> 12 | pair[3] << 14, pair[3] >> 18};
            std::memcpy(bytes, words, sizeof(words));
        }
        carry += column[kDigits];
        std::memcpy(bytes, &carry, sizeof(carry));
    }
};

template <int kBlocks>
void multiply(const std::uint16_t* a, const std::uint16_t* b, std::uint16_t* out,
              const std::uint16_t* m, std::uint16_t mont, int n) {
    using Number = Bytes<kBlocks>;
    const Multiplicand<kBlocks> multiplicand(Number(a, n, kBlockBytes * kBlocks - 2 * n));
    const Multiplicand<kBlocks> modulus(Number(m, n, 0));
    const Multiplier<kBlocks> multiplier(Number(b, n, 0));
    const auto add_block_of_b = [&](std::uint32_t* column, int block) {
        const std::uint32_t* const b_pairs = multiplier.lane + kBlockDigits * block;
        const std::uint32_t pairs[kBlockPairs] = {b_pairs[0], b_pairs[2], b_pairs[4], b_pairs[6]};
        multiplicand.multiply_add(column, column, 0, pairs);
    };

    Columns<kBlocks> sum;
    std::uint32_t* const column = sum.column;
    Reduction reduction(modulus, mont);
    add_block_of_b(column, 0);
    for (int block = 0; block < kBlocks; ++block) {
        if (block + 1 < kBlocks) add_block_of_b(column + kBlockDigits, block + 1);
        std::uint32_t v_pairs[kBlockPairs];
        reduction.next_block(column, v_pairs);
        // From a block of b or V a column gets at most eight products below 2^26. Of the ten
        // blocks it has four and two by now, and gets one and three yet: with the carries less
        // than 48*2^26 + 2^20, which fits; ten at once would not.
        if (block == 2) sum.pass_carries(kBlockDigits);
        modulus.multiply_add(column, column + kBlockDigits, kBlockDigits, v_pairs);
        sum.shift_last_block();
    }
    sum.pass_carries(0);

    std::uint16_t result[kMaxProductLimbs + 4];
    static_assert(kBlockBytes * kBlocks + 4 <= sizeof(result));
    sum.write(reinterpret_cast<unsigned char*>(result), reduction.carry());
    while (result[n] != 0)
        result[n] = static_cast<std::uint16_t>(result[n] - subtract_limbs(result, m, n));
    copy_limbs(out, result, n);
}

// The sizes of verification: 160 bits fit two blocks, 512 bits take five.
void multiply_in_lanes(const std::uint16_t* a, const std::uint16_t* b, std::uint16_t* out,
                       const std::uint16_t* m, std::uint16_t mont, int n) {
    if (2 * n <= 2 * kBlockBytes) return multiply<2>(a, b, out, m, mont, n);
    multiply<5>(a, b, out, m, mont, n);
}

}  // namespace

#endif
