#include "modulus.h"

#include <ktbase/longarith.h>

#include <algorithm>
#include <random>
#include <utility>

#include "../domain_shape.h"
#include "kernels/limbs.h"

namespace {

constexpr int kPrimalityRounds = 64;  // a composite passes one round with a probability below 1/4

}  // namespace

int bit_count(const Limbs& a) {
    return kLimbBits * static_cast<int>(a.size());
}
bool test_bit(const Limbs& a, int position) {
    return (a[position / kLimbBits] >> position % kLimbBits & 1) != 0;
}
bool less(const Limbs& a, const Limbs& b) {
    return less_limbs(a.data(), b.data(), static_cast<int>(a.size()));
}
Limbs number(unsigned short value, std::size_t limbs) {
    Limbs a(limbs);
    a[0] = value;
    return a;
}

Modulus::Modulus(Limbs m) : m_(std::move(m)) {
    // Newton: m * inverse is 1 in the low bit, and each step doubles the number of such bits.
    unsigned inverse = 1;
    for (int correct = 1; correct < kLimbBits; correct *= 2) inverse *= 2 - m_[0] * inverse;
    montgomery_constant_ = static_cast<unsigned short>(0 - inverse);
    one_ = power_of_two(bit_count(m_));
}

Limbs Modulus::power_of_two(int exponent) const {
    Limbs r = number(1, m_.size());
    for (int i = 0; i < exponent; ++i) double_and_add(r, false);
    return r;
}

Limbs Modulus::residue(const Limbs& a) const {
    Limbs r(m_.size());
    for (int i = bit_count(a) - 1; i >= 0; --i) double_and_add(r, test_bit(a, i));
    return r;
}

Limbs Modulus::to_montgomery_form(const Limbs& a) const {
    return multiply(a, power_of_two(2 * bit_count(m_)));
}

Limbs Modulus::multiply(Limbs a, Limbs b) const {
    multmodLAN(a.data(), b.data(), a.data(), limbs(), montgomery_constant_, limb_count());
    while (!less(a, m_)) subtract(a);
    return a;
}

Limbs Modulus::power(const Limbs& base, const Limbs& exponent) const {
    Limbs result = one_;
    for (int i = bit_count(exponent) - 1; i >= 0; --i) {
        result = square(result);
        if (test_bit(exponent, i)) result = multiply(result, base);
    }
    return result;
}

bool Modulus::is_prime() const {
    std::seed_seq seed(m_.begin(), m_.end());
    std::mt19937 random(seed);
    for (int round = 0; round < kPrimalityRounds; ++round) {
        Limbs base(m_.size());
        std::generate(base.begin(), base.end(),
                      [&] { return static_cast<unsigned short>(random() & 0xFFFF); });
        base = residue(base);
        if (base != Limbs(m_.size()) && is_witness(base)) return false;
    }
    return true;
}

unsigned short* Modulus::limbs() const {
    return const_cast<unsigned short*>(m_.data());
}

void Modulus::subtract(Limbs& a) const {
    subtLAN(a.data(), limbs(), limb_count());
}

// a = 2a + low_bit mod m, for a < m.
void Modulus::double_and_add(Limbs& a, bool low_bit) const {
    bool carry = low_bit;
    for (unsigned short& limb : a) {
        const unsigned t = limb * 2U + (carry ? 1 : 0);
        limb = static_cast<unsigned short>(t);
        carry = t >> kLimbBits != 0;
    }
    // 2a + 1 < 2m, so one subtraction is enough. Its borrow cancels the carry.
    if (carry || !less(a, m_)) subtract(a);
}

// True when `base`, in Montgomery form, proves that the modulus is composite.
bool Modulus::is_witness(const Limbs& base) const {
    Limbs minus_one = m_;
    subtLAN(minus_one.data(), const_cast<unsigned short*>(one_.data()), limb_count());
    // m - 1 = odd * 2^twos. m is odd, so the bits of m - 1 above bit 0 are those of m.
    int twos = 1;
    while (!test_bit(m_, twos)) ++twos;
    Limbs x = one_;
    for (int i = bit_count(m_) - 1; i >= twos; --i) {
        x = square(x);
        if (test_bit(m_, i)) x = multiply(x, base);
    }
    if (x == one_) return false;
    for (int i = 0; i < twos; ++i, x = square(x))
        if (x == minus_one) return false;
    return true;
}
