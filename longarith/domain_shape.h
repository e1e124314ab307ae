// The shape of the built-in DSA domain, and of the keys and signatures made in it.
#ifndef KTBASE_LONGARITH_DOMAIN_SHAPE_H
#define KTBASE_LONGARITH_DOMAIN_SHAPE_H

constexpr int kLimbBits = 16;

// The primes p and q. Exponents have the width of q.
constexpr int kBitsP = 512;
constexpr int kBitsQ = 160;
constexpr short kBytesP = kBitsP / 8;
constexpr short kBytesQ = kBitsQ / 8;
constexpr short kLimbsP = kBitsP / kLimbBits;
constexpr short kLimbsQ = kBitsQ / kLimbBits;

// An exponent is the sum of chunk_j * 2^(kChunkBits * j). A base is therefore stored as kChunks
// numbers: base^(2^(kChunkBits * j)) for each j.
constexpr int kChunks = 4;
constexpr short kChunkBits = 40;
constexpr int kChunkBytes = kChunkBits / 8;
static_assert(kChunks * kChunkBits == kBitsQ);

// The widths of the windows of the exponents of g and of y. For each chunk, a table of powers holds
// the 2^(width - 1) odd powers that a window can select.
constexpr short kWindowG = 5;
constexpr short kWindowY = 2;
constexpr int kPowersG = 1 << (kWindowG - 1);
constexpr int kPowersY = 1 << (kWindowY - 1);

constexpr int kPublicKeyBytes = kChunks * kBytesP;  // y^(2^(40j)) in Montgomery form, j = 0 to 3
constexpr int kSignatureBytes = 2 * kBytesQ;        // r, then s

// DsaR2Q holds 2^kExponentR2Q mod q, and DsaFoldQ holds 2^kExponentFoldQ mod q.
constexpr int kExponentR2Q = 2 * kBitsQ;
constexpr int kExponentFoldQ = kBitsP + kBitsQ;
static_assert(kExponentR2Q == 320 && kExponentFoldQ == 672);

#endif
