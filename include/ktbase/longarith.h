// Long arithmetic on 16-bit limbs, and the verification of DSA signatures (FIPS 186) in the domain
// that is built into the library.
//
// A number is a vector of unsigned 16-bit limbs, least significant first, of fixed width: a pointer
// to limb 0, with the count of limbs in an argument of its own. As a byte string it is
// little-endian: limb i is bytes 2i (low) and 2i+1 (high). A vector overlaps another one only where
// its function says so.
//
// Montgomery convention: a modulus m is an odd number of n limbs, R = 2^(16n), and its Montgomery
// constant is m' = -1/m mod 2^16. The Montgomery form of x is x*R mod m.
//
// The caller owns all memory. The functions allocate nothing, check no argument, set no errno, and
// keep no state, so that any number of threads may use them at once.
#ifndef KTBASE_LONGARITH_H
#define KTBASE_LONGARITH_H

#include <ktbase/digest.h>

#pragma GCC visibility push(default)

// ---- Limb vectors -----------------------------------------------------------------------------

// Reads `nbytes` little-endian bytes into ceil(nbytes/2) limbs; an odd last byte makes a limb whose
// high half is zero. Nothing happens when nbytes is zero or below.
void packLAN(unsigned char* bytes, unsigned short* limbs, short nbytes);

// Writes the low `nbytes` bytes of ceil(nbytes/2) limbs, little-endian, and no byte more. Nothing
// happens when nbytes is zero or below.
void unpackLAN(unsigned short* limbs, unsigned char* bytes, short nbytes);

// a = (a - b) mod 2^(16n), in place; the last borrow is dropped. Nothing happens when n is zero or
// below. `b` may be `a`.
void subtLAN(unsigned short* a, unsigned short* b, short n);

// Montgomery product: out = a*b/R mod m for vectors of `n` limbs, n at most 32. Nothing happens
// when n is zero or below. The result is almost reduced: below R, but not always below m, because m
// is subtracted only from a value that does not fit n limbs. Exact for every a and b below R and
// every odd m with its `mont` (m'). `out` may be `a`, `b` or both.
void multmodLAN(unsigned short* a, unsigned short* b, unsigned short* out, unsigned short* m,
                unsigned short mont, short n);

// `k` steps of Montgomery reduction of `a` (na limbs) by `m` (nm limbs, at least one), in place:
// each step replaces a by (a + u*m)/2^16, with u the limb that makes the division exact. The result
// is congruent to a/2^(16k) modulo m and at most a/2^(16k) + m. Nothing happens when k is zero or
// below.
// `a` must have room for the larger of na and nm limbs; where na is less than nm, the limbs of `a`
// above na take part.
void privLAN(unsigned short* a, unsigned short* m, unsigned short mont, short na, short nm,
             short k);

// ---- Powers modulo the built-in p, inverses modulo the built-in q -------------------------------

// Finds the next sliding window of the exponent `e` (little-endian bytes) below bit *pos: from the
// highest bit set there, at most `w` bits (1 to 8) wide, cut at its lowest bit set. Sets *pos to
// the position of that lowest bit and *win to (v - 1)/2 for the window's odd value v. When no bit
// is set below *pos, *pos becomes -1 and *win keeps its value. To scan a whole exponent start with
// *pos at its bit count, and call until *pos is -1. No byte outside the ones between bit 0 and the
// start position is read.
void stelLAN(unsigned char* e, short* pos, short* win, short w);

// out (32 limbs) = g^e1 * y^e2 * 2^512 mod p, almost reduced: below 2^512. The exponents are 20
// bytes each, all 160 bits used, and need not be below q. `ytab` is a table of 8 entries of 32
// limbs: entry 2j + k, for j = 0 to 3 and k = 0 or 1, is any number below 2^512 that is congruent
// to y^((2k+1) * 2^(40j)) * 2^512 modulo p. `out` must not overlap the inputs. With both exponents
// zero the result is 2^512 mod p, the Montgomery form of 1.
void expmodLAN(unsigned short* out, unsigned char* e1, unsigned short* ytab, unsigned char* e2);

// out (10 limbs) = the inverse of `x` (20 bytes) modulo q, from 1 to q - 1; 0 when x is a multiple
// of q. `out` may overlap `x` in any way.
void invertLAN(unsigned char* x, unsigned short* out);

// ---- Signatures ---------------------------------------------------------------------------------

// DSA (FIPS 186) over the built-in p (512 bits), q (160 bits) and g, with the SHA digest of FIPS
// 180 (1993). Every number in a blob is little-endian:
//   public key blob, 256 bytes: for j = 0 to 3, 64 bytes with y^(2^(40j)) * 2^512 mod p. A number
//     at or above p stands for its residue; the blob is not validated.
//   signature blob, 40 bytes: r, then s, 20 bytes each.
// The digest enters as the number state[0] + state[1]*2^32 + ... + state[4]*2^128, which is the 20
// bytes of HASH_CTX::state in memory read as a little-endian number, not the big-endian digest
// string of FIPS 186.

// Digests `length` bytes of `buffer` and verifies the signature over them. Returns 0 when it is
// valid, -1 otherwise. A length of 0 is the empty message.
int CheckBufferSign(unsigned char* buffer, long length, unsigned char* key,
                    unsigned char* signature);

// Verifies the signature over the message whose finished digest is in `digest`; reads nothing of
// the record but its five state words. Returns
//   0       the signature is valid;
//   0x707   r or s is zero;
//   0x7707  r or s is q or more;
//   0xF0F   r and s are in range, but the signature does not match.
// r is judged before s.
extern "C" int CheckSignature(unsigned char* key, unsigned char* signature, HASH_CTX* digest);

#pragma GCC visibility pop

#endif
