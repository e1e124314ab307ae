// The message digests of ktbase: SHA as first published in FIPS 180 (1993), commonly called SHA-0.
//
// The caller owns every record; no function keeps a pointer to one after it returns, allocates, or
// checks an argument. Different records may be used on different threads at the same time; one
// record, the exported Hash included, belongs to one thread at a time.
#ifndef KTBASE_DIGEST_H
#define KTBASE_DIGEST_H

#include <cstdint>

#pragma GCC visibility push(default)

// ---- SHA (FIPS 180, 1993) ---------------------------------------------------------------------

// A running SHA digest. Unset until InitHash; absorbing between InitHash and EndHash; finished
// after EndHash, when `state` is the digest and the other fields are spent. HashBuf and EndHash on
// a record that is not absorbing give an unspecified digest.
struct HASH_CTX {
    std::uint32_t state[5];  // chaining values H0 to H4
    std::uint32_t count;     // bytes absorbed, modulo 2^32
    std::uint32_t index;     // the word of `data` being filled, 0 to 15
    std::uint32_t data[16];  // the current block, big-endian; W[64] to W[79] after a compression
    std::uint32_t left;      // bytes that data[index] still takes, 4 down to 1
};

extern "C" {

// A record in static storage for callers that want one; all zero at load, so InitHash comes first.
// The library never touches it.
extern HASH_CTX Hash;

// Starts a digest in `ctx`, whatever it held.
void InitHash(HASH_CTX* ctx);

// Absorbs `length` bytes of `buffer`, which may start at any address. The digest does not depend
// on how a message is split among calls; a length of 0 changes nothing and reads nothing.
void HashBuf(unsigned char* buffer, unsigned length, HASH_CTX* ctx);

// Pads and compresses the last block or blocks. The digest is then state[0] to state[4]; the byte
// string of FIPS 180 is these words in order, each most significant byte first.
// Messages of 2^29 bytes and more are digested with their bit count modulo 2^32 in the length
// field, and so not as FIPS 180 has it.
void EndHash(HASH_CTX* ctx);

}  // extern "C"

#pragma GCC visibility pop

#endif
