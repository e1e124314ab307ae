// The built-in domain: the primes p and q, and what verification needs of them and of the generator
// g. The build derives every value from the domain file.
#ifndef KTBASE_LONGARITH_DOMAIN_PARAMETERS_H
#define KTBASE_LONGARITH_DOMAIN_PARAMETERS_H

#include <ktbase/longarith.h>

constexpr short kLimbsP = 32;  // p has 512 bits
constexpr short kLimbsQ = 10;  // q has 160 bits
constexpr short kExponentBytes = 20;

// The limb arithmetic only reads its operands, though its signatures do not say so; helpers below
// hand these constants over.
extern const unsigned short DsaP[kLimbsP];
extern const unsigned short DsaQ[kLimbsQ];
extern const unsigned short DsaMontP;           // -1/p mod 2^16
extern const unsigned short DsaMontQ;           // -1/q mod 2^16
extern const unsigned short DsaR2Q[kLimbsQ];    // 2^320 mod q
extern const unsigned short DsaFoldQ[kLimbsQ];  // 2^672 mod q

// Entry 16j + k, for j = 0 to 3 and k = 0 to 15: g^((2k+1) * 2^(40j)) * 2^512 mod p.
extern const unsigned short DsaBaseTable[64 * kLimbsP];

inline unsigned short* read_only(const unsigned short* limbs) {
    return const_cast<unsigned short*>(limbs);
}

// a = a*b / 2^512 mod p, almost reduced.
inline void multiply_mod_p(unsigned short* a, const unsigned short* b) {
    multmodLAN(a, read_only(b), a, read_only(DsaP), DsaMontP, kLimbsP);
}

// a = a*b / 2^160 mod q, almost reduced.
inline void multiply_mod_q(unsigned short* a, const unsigned short* b) {
    multmodLAN(a, read_only(b), a, read_only(DsaQ), DsaMontQ, kLimbsQ);
}

#endif
