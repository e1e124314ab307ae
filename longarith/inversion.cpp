// The inverse modulo the built-in q: the extended Euclidean algorithm with Lehmer's steps.
//
// For remainders a > b and their cofactors ua and ub, every step keeps
//     b = sign*ub*x and a = -sign*ua*x (mod q)    and    a*ub + b*ua = q.
// All four numbers are non-negative, so the second equation bounds the cofactors: ua, ub <= q.
// Every step makes a + b smaller, so the loop ends. q is prime, so the remainders reach 1, and then
// sign*ub is the inverse.
#include <algorithm>
#include <bit>
#include <utility>

#include "domain_parameters.h"
#include "kernels/limbs.h"

namespace {

// A remainder or a cofactor. The limbs from `size` on are zero, and limb[size - 1] is not.
struct Unsigned160 {
    std::uint16_t limb[kLimbsQ] = {};
    int size = 0;

    void trim(int limbs) {
        size = limbs;
        while (size > 0 && limb[size - 1] == 0) --size;
    }
    bool is_one() const { return size == 1 && limb[0] == 1; }
    // Limbs `top` (upper half) and `top` - 1. Limbs below 0 count as zero.
    std::uint32_t two_limbs(int top) const {
        return std::uint32_t{limb[top]} << 16 | (top > 0 ? limb[top - 1] : 0U);
    }
};

// Returns f*a - g*b. Requires a result from 0 to 2^160 - 1, and f, g <= 0xFFFF.
Unsigned160 difference(std::uint32_t f, const Unsigned160& a, std::uint32_t g,
                       const Unsigned160& b) {
    const int size = std::max(a.size, b.size);
    Unsigned160 result;
    std::uint32_t carry_a = 0;
    std::uint32_t carry_b = 0;
    std::uint32_t borrow = 0;
    for (int i = 0; i < size; ++i) {
        // (2^16-1)^2 + (2^16-1) < 2^32: neither product overflows with its carry.
        const std::uint32_t product_a = f * a.limb[i] + carry_a;
        const std::uint32_t product_b = g * b.limb[i] + carry_b;
        const std::uint32_t t = 0x10000U + low_half(product_a) - low_half(product_b) - borrow;
        result.limb[i] = low_half(t);
        borrow = 1 - high_half(t);
        carry_a = high_half(product_a);
        carry_b = high_half(product_b);
    }
    result.trim(size);
    return result;
}

// Returns f*a + g*b. Requires a result below 2^160, and f + g <= 0x10000.
Unsigned160 sum(std::uint32_t f, const Unsigned160& a, std::uint32_t g, const Unsigned160& b) {
    const int size = std::min<int>(std::max(a.size, b.size) + 1, kLimbsQ);
    Unsigned160 result;
    std::uint32_t carry = 0;
    for (int i = 0; i < size; ++i) {
        // At most 2^16 (2^16-1) + (2^16-1) = 2^32-1.
        const std::uint32_t t = f * a.limb[i] + g * b.limb[i] + carry;
        result.limb[i] = low_half(t);
        carry = high_half(t);
    }
    result.trim(size);
    return result;
}

// Several steps of Euclid's algorithm at once. They start at the remainders R[0] = a and R[1] = b
// and end at R[i] = |x1*a - y1*b| and R[i+1] = |x2*a - y2*b|. The sign of x*a - y*b is positive if
// the remainder has an even index.
struct Steps {
    std::uint32_t x1 = 1, y1 = 0;
    std::uint32_t x2 = 0, y2 = 1;
    bool second_is_even = false;  // i + 1 is even
};

constexpr std::uint32_t kMaxFactor = 0xFFFF;

// Finds steps from the leading 32 bits of a, and the bits of b at the same place. Takes a step only
// if these bits prove that it is also the next step for a and b. Keeps x2 + y2 <= kMaxFactor.
Steps find_steps(std::uint32_t leading_a, std::uint32_t leading_b) {
    Steps s;
    std::uint32_t r1 = leading_a;
    std::uint32_t r2 = leading_b;
    while (r2 != 0) {
        const std::uint32_t quotient = r1 / r2;
        if (quotient > kMaxFactor) break;
        const std::uint32_t rest = r1 - quotient * r2;
        // Below 2^32: quotient, x2 and y2 have at most 16 bits.
        const std::uint32_t x = s.x1 + quotient * s.x2;
        const std::uint32_t y = s.y1 + quotient * s.y2;
        if (x > kMaxFactor || y > kMaxFactor - x) break;
        // Jebelean's condition. In units of the lowest of these bits, the true remainder is above
        // rest - y and below rest + x where its index is even, and above rest - x and below rest +
        // y where its index is odd. The first comparison proves that the true remainder is
        // positive, the second one that it is less than the remainder before it.
        const bool rest_is_even = !s.second_is_even;
        const std::uint32_t least_rest = rest_is_even ? y : x;
        const std::uint32_t least_gap = rest_is_even ? x + s.x2 : y + s.y2;
        if (rest < least_rest || r2 - rest < least_gap) break;
        s = {s.x2, s.y2, x, y, rest_is_even};
        r1 = r2;
        r2 = rest;
    }
    return s;
}

// The 32 bits of `number` that begin `shift` bits below the top of limb `top`.
std::uint32_t leading_bits(const Unsigned160& number, int top, int shift) {
    const std::uint32_t below = top > 1 ? number.limb[top - 2] : 0U;
    return number.two_limbs(top) << shift | below >> (16 - shift);
}

// A part of the quotient of a by b: factor * 2^(16*shift).
struct Quotient {
    std::uint32_t factor;  // from 1 to kMaxFactor
    int shift;
};

// Returns a part that is not above the quotient. Requires a > b > 0.
Quotient underestimate(const Unsigned160& a, const Unsigned160& b) {
    // Shift both numbers left by the number of leading zero bits of b. Then the top limb of b is
    // divisor - 1, from 2^15 to 2^16 - 1, and a may have one more limb.
    const int top_a = a.size - 1;
    const int top_b = b.size - 1;
    const int shift = std::countl_zero(b.limb[top_b]);
    const std::uint32_t divisor = high_half(leading_bits(b, top_b, shift)) + 1;
    const std::uint32_t extra_limb = std::uint32_t{a.limb[top_a]} >> (16 - shift);
    const std::uint32_t next_limbs = leading_bits(a, top_a, shift);
    if (extra_limb == 0 && a.size > b.size) {
        // next_limbs >= 2^16 >= divisor, so the factor is at least 1.
        return {std::min(next_limbs / divisor, kMaxFactor), a.size - b.size - 1};
    }
    const std::uint32_t dividend = extra_limb << 16 | high_half(next_limbs);
    // The factor is 0 only where a has no extra limb. Then a and b have the same size, and a > b
    // allows the factor 1.
    return {std::clamp(dividend / divisor, std::uint32_t{1}, kMaxFactor), a.size - b.size};
}

Unsigned160 shifted(const Unsigned160& a, int limbs) {
    Unsigned160 result;
    std::copy_n(a.limb, a.size, result.limb + limbs);
    result.size = a.size + limbs;
    return result;
}

struct Euclid {
    Unsigned160 a, b;
    Unsigned160 ua, ub;
    bool positive = true;  // the sign

    void apply(const Steps& s) {
        Unsigned160 first =
            s.second_is_even ? difference(s.y1, b, s.x1, a) : difference(s.x1, a, s.y1, b);
        b = s.second_is_even ? difference(s.x2, a, s.y2, b) : difference(s.y2, b, s.x2, a);
        a = first;
        first = sum(s.x1, ua, s.y1, ub);
        ub = sum(s.x2, ua, s.y2, ub);
        ua = first;
        if (s.second_is_even) positive = !positive;
    }

    // Subtracts one multiple of b from a. `shifted` cannot overflow: b * 2^(16*shift) <= a, and
    // ub * 2^(16*shift) is at most the new ua.
    void subtract_multiple() {
        const Quotient q = underestimate(a, b);
        a = difference(1, a, q.factor, shifted(b, q.shift));
        ua = sum(1, ua, q.factor, shifted(ub, q.shift));
        if (less_limbs(a.limb, b.limb, kLimbsQ)) {
            std::swap(a, b);
            std::swap(ua, ub);
            positive = !positive;
        }
    }
};

void run(Euclid& e) {
    while (!e.b.is_one()) {
        const int top = e.a.size - 1;
        const int shift = std::countl_zero(e.a.limb[top]);
        const Steps steps =
            find_steps(leading_bits(e.a, top, shift), leading_bits(e.b, top, shift));
        if (steps.x2 != 0)
            e.apply(steps);
        else
            e.subtract_multiple();
    }
}

Unsigned160 from_bytes(unsigned char* bytes) {
    Unsigned160 number;
    packLAN(bytes, number.limb, kBytesQ);
    number.trim(kLimbsQ);
    return number;
}

Unsigned160 modulus() {
    Unsigned160 q;
    std::copy_n(DsaQ, kLimbsQ, q.limb);
    q.size = kLimbsQ;  // the top bit of q is set
    return q;
}

}  // namespace

void invertLAN(unsigned char* x, unsigned short* out) {
    Euclid e = {.a = modulus(), .b = from_bytes(x), .ua = {}, .ub = {.limb = {1}, .size = 1}};
    if (!less_limbs(e.b.limb, e.a.limb, kLimbsQ))
        e.b = difference(1, e.b, 1, e.a);  // x < 2^160 <= 2q: one subtraction is enough
    if (e.b.size == 0) {
        std::fill_n(out, kLimbsQ, static_cast<unsigned short>(0));
        return;
    }
    run(e);
    const Unsigned160 inverse = e.positive ? e.ub : difference(1, modulus(), 1, e.ub);
    std::copy_n(inverse.limb, kLimbsQ, out);
}
