// The built-in domain: the primes p and q, and the numbers derived from them and from the generator
// g for verification. The build derives every value from the domain file.
#ifndef KTBASE_LONGARITH_DOMAIN_PARAMETERS_H
#define KTBASE_LONGARITH_DOMAIN_PARAMETERS_H

#include <ktbase/longarith.h>

#include "domain_shape.h"

extern const unsigned short DsaP[kLimbsP];
extern const unsigned short DsaQ[kLimbsQ];
extern const unsigned short DsaMontP;           // -1/p mod 2^16
extern const unsigned short DsaMontQ;           // -1/q mod 2^16
extern const unsigned short DsaR2Q[kLimbsQ];    // 2^320 mod q
extern const unsigned short DsaFoldQ[kLimbsQ];  // 2^672 mod q

// Entry kPowersG * j + k holds g^((2k+1) * 2^(kChunkBits * j)) * 2^512 mod p.
extern const unsigned short DsaBaseTable[kChunks * kPowersG * kLimbsP];

// The exported limb functions only read these operands. Their types have no const, because argument
// types are part of the symbols.
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
