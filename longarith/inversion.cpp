// The inverse modulo the built-in q: an extended Euclidean algorithm in base 256.
#include "domain_parameters.h"

#include <algorithm>
#include <utility>

namespace {

constexpr int kDigits = kBytesQ + 1;  // the last one takes what a multiply-subtract carries

// A number in base 256, least significant digit first.
struct Number {
    unsigned char digit[kDigits] = {};
    int top = 0;  // index of the highest digit that is not zero

    void find_top() {
        top = kDigits - 1;
        while (top > 0 && digit[top] == 0) --top;
    }
    bool is_one() const { return top == 0 && digit[0] == 1; }
    // The two highest digits as one number.
    unsigned head() const { return 256U * digit[top] + digit[top - 1]; }
};

bool is_zero(const Number& a) {
    return a.top == 0 && a.digit[0] == 0;
}

bool less(const Number& a, const Number& b) {
    if (a.top != b.top) return a.top < b.top;
    return std::lexicographical_compare(
        std::make_reverse_iterator(a.digit + a.top + 1), std::make_reverse_iterator(a.digit),
        std::make_reverse_iterator(b.digit + b.top + 1), std::make_reverse_iterator(b.digit));
}

// One digit of a quotient: the factor times 256^shift.
struct Quotient {
    unsigned factor;
    int shift;
};

// Estimates the leading digit of a/b from the highest digits of both, for a > b > 1. The estimate
// is from 1 to 255 and may be off; subtract_multiple corrects one that is too large, and another
// division step makes up for one that is too small.
Quotient estimate(const Number& a, const Number& b) {
    if (b.top == 0) {
        const unsigned divisor = b.digit[0];
        if (a.digit[a.top] >= divisor) return {a.digit[a.top] / divisor, a.top};
        return {a.head() / divisor, a.top - 1};
    }
    const unsigned dividend = a.head();
    const unsigned divisor = b.head();
    const int shift = a.top - b.top;
    if (dividend > divisor) return {dividend / divisor, shift};
    // Equal or smaller heads at one length would make a <= b, but for the equal heads of the last
    // case.
    if (dividend < divisor) return {(256 * dividend + a.digit[a.top - 2]) / divisor, shift - 1};
    if (shift > 0) return {255, shift - 1};
    return {1, 0};
}

// a -= b * factor * 256^shift, with the factor lowered until the difference is not negative.
// Returns the factor that was used.
unsigned subtract_multiple(Number& a, const Number& b, Quotient quotient) {
    unsigned char* const window = a.digit + quotient.shift;
    const int size = b.top + 1;
    // At most 255*255 + 255 + 1: a product, its carry and a borrow stay far below 2^32.
    unsigned carry = 0;
    for (int j = 0; j < size; ++j) {
        const unsigned t = quotient.factor * b.digit[j] + carry;
        const unsigned difference = window[j] - (t & 0xFF);
        window[j] = static_cast<unsigned char>(difference);
        carry = (t >> 8) + (difference >> 31);
    }
    const bool underflow = window[size] < carry;
    window[size] = static_cast<unsigned char>(window[size] - carry);
    for (bool negative = underflow; negative;) {
        --quotient.factor;
        carry = 0;
        for (int j = 0; j <= size; ++j) {
            const unsigned t = window[j] + carry + (j < size ? b.digit[j] : 0U);
            window[j] = static_cast<unsigned char>(t);
            carry = t >> 8;
        }
        negative = carry == 0;  // a carry out takes the difference back above zero
    }
    a.find_top();
    return quotient.factor;
}

// a += b * factor * 256^shift. The sum is a cofactor, below 2^160, so neither the digits of b nor
// the carry lead beyond the last digit of a.
void add_multiple(Number& a, const Number& b, Quotient quotient) {
    unsigned carry = 0;
    for (int j = 0; j <= b.top || carry != 0; ++j) {
        const unsigned t = quotient.factor * b.digit[j] + a.digit[quotient.shift + j] + carry;
        a.digit[quotient.shift + j] = static_cast<unsigned char>(t);
        carry = t >> 8;
    }
    a.find_top();
}

Number modulus() {
    Number q;
    unpackLAN(read_only(DsaQ), q.digit, kBytesQ);
    q.find_top();
    return q;
}

}  // namespace

void invertLAN(unsigned char* x, unsigned short* out) {
    Number a = modulus();
    Number b;
    std::copy_n(x, kBytesQ, b.digit);
    b.find_top();
    if (!less(b, a)) subtract_multiple(b, modulus(), {1, 0});  // x < 2^160 <= 2q: once is enough
    if (is_zero(b)) {
        std::fill_n(out, kLimbsQ, static_cast<unsigned short>(0));
        return;
    }

    // Invariant: b = sign*cofactor_b*x and a = -sign*cofactor_a*x (mod q), with a > b before every
    // step. The pairs end at b = 1, because q is prime.
    Number cofactor_a;
    Number cofactor_b;
    cofactor_b.digit[0] = 1;
    bool positive = true;
    while (!b.is_one()) {
        Quotient quotient = estimate(a, b);
        quotient.factor = subtract_multiple(a, b, quotient);
        add_multiple(cofactor_a, cofactor_b, quotient);
        if (!less(a, b)) continue;
        std::swap(a, b);
        std::swap(cofactor_a, cofactor_b);
        positive = !positive;
    }

    if (positive) {
        packLAN(cofactor_b.digit, out, kBytesQ);
        return;
    }
    unsigned short negated[kLimbsQ];
    packLAN(cofactor_b.digit, negated, kBytesQ);
    std::copy_n(DsaQ, kLimbsQ, out);
    subtLAN(out, negated, kLimbsQ);
}
