// Arithmetic on vectors of 16-bit limbs, and verification of DSA signatures (FIPS 186) in the
// domain that is built into the library. The header requires C++11.
//
// Numbers: a number is an array of unsigned 16-bit limbs, least significant limb first. It is
// passed as a pointer to limb 0. The count of limbs is another argument, or fixed by the function.
// As a byte string a number is little-endian: limb i is bytes 2i (low half) and 2i+1 (high half).
//
// Montgomery form: a modulus m is odd and has n limbs, and R = 2^(16n). The Montgomery
// constant of m is m' = -1/m mod 2^16. The Montgomery form of x is x*R mod m.
//
// Constant data: an argument is only read, unless its function's comment says that it is written.
// The types have no const, because the argument types are part of the symbols. A caller with
// constant data may cast the const away.
//
// Overlap: arguments that are only read may overlap each other in any way. An argument that is
// written must not overlap another argument, unless its function's comment allows it.
//
// The caller owns all memory. No function allocates memory, keeps state, checks an argument or sets
// errno.
//
// Threads: all functions are reentrant. Any number of threads may call them at the same time.
#ifndef KTBASE_LONGARITH_H
#define KTBASE_LONGARITH_H

#include <ktbase/digest.h>

#pragma GCC visibility push(default)

// ---- Limb vectors -----------------------------------------------------------------------------

// Reads `nbytes` little-endian bytes and writes ceil(nbytes/2) limbs to `limbs`. With an odd
// `nbytes`, the high half of the last limb is zero. With `nbytes` <= 0, does nothing.
void packLAN(unsigned char* bytes, unsigned short* limbs, short nbytes);

// Reads ceil(nbytes/2) limbs and writes their low `nbytes` bytes, little-endian, to `bytes`. With
// an odd `nbytes`, the high half of the last limb is not written. With `nbytes` <= 0, does nothing.
void unpackLAN(unsigned short* limbs, unsigned char* bytes, short nbytes);

// a = (a - b) mod 2^(16n), in place. `a` is written. Both have `n` limbs. The last borrow is
// dropped. With `n` <= 0, does nothing. `b` may be `a`.
void subtLAN(unsigned short* a, unsigned short* b, short n);

// Montgomery product: out = a*b/R mod m. `out` is written. All four vectors have `n` limbs; `mont`
// is m'. With `n` <= 0, does nothing. The product is exact for every a and b below R and every odd
// m. `out` is almost reduced: it is below R, but not always below m, because m is subtracted only
// while the value does not fit `n` limbs.
// `out` may be `a`, `b` or both. `a`, `b` and `m` may overlap each other in any way.
// Requires n <= 32.
void multmodLAN(unsigned short* a, unsigned short* b, unsigned short* out, unsigned short* m,
                unsigned short mont, short n);

// Montgomery reduction of `a` (na limbs) by `m` (nm limbs) in `k` steps, in place. `a` is written;
// `mont` is m'. Each step replaces a by (a + u*m)/2^16, where u is the limb that makes the division
// exact. The result is congruent to a/2^(16k) modulo m and at most a/2^(16k) + m. With `k` <= 0,
// does nothing.
// Requires nm >= 1. `a` must have room for the larger of na and nm limbs. If na < nm,
// a[na] to a[nm - 1] are read, too: the caller must set them.
void privLAN(unsigned short* a, unsigned short* m, unsigned short mont, short na, short nm,
             short k);

// ---- Powers modulo the built-in p, inverses modulo the built-in q -------------------------------

// Finds the next sliding window of the exponent `e` (little-endian bytes) below bit *pos. The
// window's highest bit is the highest bit set below *pos. The window is at most `w` bits wide, and
// its lowest bit is set. `*pos` and `*win` are written:
//   window found              *pos is the position of its lowest bit, *win is (v - 1)/2, where v is
//                             the window's odd value;
//   no bit set below *pos     *pos is -1, *win keeps its value;
//   *pos 0 or below at entry  *pos is one lower, *win keeps its value, `e` is not read.
// Only the bytes that hold bits 0 to *pos - 1 are read. To scan a whole exponent, start with *pos
// at its count of bits and call until *pos is -1.
// Requires 1 <= w <= 8.
void stelLAN(unsigned char* e, short* pos, short* win, short w);

// out = g^e1 * y^e2 * 2^512 mod p, almost reduced: below 2^512, but not always below p. `out` (32
// limbs) is written. `e1` and `e2` have 20 bytes each; all 160 bits count, and the exponents may be
// q or more. With both exponents zero, the result is 2^512 mod p, the Montgomery form of 1.
// `ytab` is a table of 8 entries of 32 limbs. Entry 2j + k, for j = 0 to 3 and k = 0 or 1, is any
// number below 2^512 that is congruent to y^((2k+1) * 2^(40j)) * 2^512 modulo p.
void expmodLAN(unsigned short* out, unsigned char* e1, unsigned short* ytab, unsigned char* e2);

// out = the inverse of `x` modulo q, from 1 to q - 1, or 0 if x is a multiple of q. `x` has 20
// bytes. `out` (10 limbs) is written.
// `out` may overlap `x` in any way.
void invertLAN(unsigned char* x, unsigned short* out);

// ---- Signatures ---------------------------------------------------------------------------------

// DSA (FIPS 186) over the built-in p (512 bits), q (160 bits) and g, with the SHA digest of FIPS
// 180 (1993). Every number in a blob is little-endian:
//   public key blob, 256 bytes: for j = 0 to 3, 64 bytes with y^(2^(40j)) * 2^512 mod p. A number
//     that is p or more stands for its residue. The blob is not validated.
//   signature blob, 40 bytes: r, then s, 20 bytes each.
// The digest is the number state[0] + state[1]*2^32 + ... + state[4]*2^128. This number is the 20
// bytes of HASH_CTX::state in memory, read as little-endian. It is not the number of FIPS 186,
// which reads the digest string as big-endian.

// Digests `length` bytes of `buffer` and verifies the signature over them. A length of 0 is the
// empty message. Returns 0 if the signature is valid, and -1 for every other result of
// CheckSignature.
// Requires length >= 0: a negative length is passed to HashBuf as unsigned, so 2^32 + length bytes
// are read.
int CheckBufferSign(unsigned char* buffer, long length, unsigned char* key,
                    unsigned char* signature);

// Verifies the signature over the message whose finished digest is in `digest`. Only the five words
// of digest->state are read. r is checked first, and s only if r is in range. Returns
//   0       if the signature is valid;
//   0x707   if r or s is zero;
//   0x7707  if r or s is q or more;
//   0xF0F   if r and s are in range, but the signature does not match.
extern "C" int CheckSignature(unsigned char* key, unsigned char* signature, HASH_CTX* digest);

#pragma GCC visibility pop

#endif
