// Arithmetic modulo an odd number of any width, on the library's limb functions.
#ifndef KTBASE_LONGARITH_DOMAIN_MODULUS_H
#define KTBASE_LONGARITH_DOMAIN_MODULUS_H

#include "domain_file.h"

// Helpers on numbers of fixed width, least significant limb first.
int bit_count(const Limbs& a);  // the width in bits, leading zeros included
bool test_bit(const Limbs& a, int position);
bool less(const Limbs& a, const Limbs& b);  // for numbers of equal width
Limbs number(unsigned short value, std::size_t limbs);

// An odd modulus. "Montgomery form" of a residue x is x * 2^bit_count(modulus), fully reduced.
class Modulus {
public:
    explicit Modulus(Limbs m);

    unsigned short montgomery_constant() const { return montgomery_constant_; }

    // Residues, not in Montgomery form.
    Limbs power_of_two(int exponent) const;
    Limbs residue(const Limbs& a) const;  // of a number of any width

    // Operands and results in Montgomery form. The exponent and the operand of to_montgomery_form
    // are ordinary numbers.
    const Limbs& one() const { return one_; }
    Limbs to_montgomery_form(const Limbs& a) const;
    Limbs multiply(Limbs a, Limbs b) const;
    Limbs square(const Limbs& a) const { return multiply(a, a); }
    Limbs power(const Limbs& base, const Limbs& exponent) const;

    // Miller-Rabin with 64 bases. The bases are derived from the modulus, so builds are repeatable.
    bool is_prime() const;

private:
    unsigned short* limbs() const;
    short limb_count() const { return static_cast<short>(m_.size()); }
    void subtract(Limbs& a) const;
    void double_and_add(Limbs& a, bool low_bit) const;
    bool is_witness(const Limbs& base) const;

    Limbs m_;
    unsigned short montgomery_constant_;
    Limbs one_;
};

#endif
