// The message digests of ktbase: SHA as first published in FIPS 180 (1993), commonly called SHA-0,
// and MD5 (RFC 1321).
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
// on how a message is split among calls; a length of 0 touches neither record nor buffer. The two
// do not overlap.
void HashBuf(unsigned char* buffer, unsigned length, HASH_CTX* ctx);

// Pads and compresses the last block or blocks. The digest is then state[0] to state[4]; the byte
// string of FIPS 180 is these words in order, each most significant byte first.
// Messages of 2^29 bytes and more are digested with their bit count modulo 2^32 in the length
// field, and so not as FIPS 180 has it.
void EndHash(HASH_CTX* ctx);

}  // extern "C"

// ---- MD5 (RFC 1321) ---------------------------------------------------------------------------

// A running MD5 digest, the RFC's record. Absorbing between MD5Init and MD5Final, which leaves it
// all zero; that is no start state, so MD5Init comes before the next digest.
struct MD5_CTX {
    std::uint32_t state[4];    // chaining values A to D
    std::uint32_t count[2];    // bits absorbed, modulo 2^64, low word first
    unsigned char buffer[64];  // the current block; its first count[0] / 8 % 64 bytes are valid
};

extern "C" {

// Starts a digest in `ctx`, whatever it held; `buffer` stays as it is.
void MD5Init(MD5_CTX* ctx);

// Absorbs `length` bytes of `input`, which may start at any address, in `ctx->buffer` too. The
// digest does not depend on how a message is split among calls; a length of 0 changes nothing and
// reads nothing.
void MD5Update(MD5_CTX* ctx, const unsigned char* input, unsigned length);

// Compresses the 64 bytes of `block`, at any address, into the 4 words of `state`. No word of the
// block is left on the stack.
void MD5Transform(std::uint32_t* state, const unsigned char* block);

// MD5Transform on the state words in reverse order: A is state[3], D is state[0].
void MD5Transform2(std::uint32_t* state, const unsigned char* block);

// Writes the 16-byte digest of the `length` bytes at `input`. Returns 1. The record it runs on is
// its own and is wiped.
int GetBufferMD5(unsigned char* digest, const unsigned char* input, unsigned length);

}  // extern "C"

// Pads, writes the 16-byte digest (state[0] to state[3], each least significant byte first), and
// sets the whole record to zero. Its symbol carries its argument types.
void MD5Final(unsigned char* digest, MD5_CTX* ctx);

// The same digest on a record type of its own. The argument order of vantu::MD5 is not that of
// GetBufferMD5: the input comes first, the digest last.
namespace vantu {

// ::MD5_CTX again: the same fields in the same places.
struct MD5_CTX {
    std::uint32_t state[4];    // chaining values A to D
    std::uint32_t count[2];    // bits absorbed, modulo 2^64, low word first
    unsigned char buffer[64];  // the current block
};

// What MD5Init, MD5Update and MD5Final do.
void MD5_Init(MD5_CTX* ctx);
void MD5_Update(MD5_CTX* ctx, const unsigned char* input, unsigned int length);
void MD5_Final(unsigned char* digest, MD5_CTX* ctx);

// Does what GetBufferMD5 does, and returns 1.
int MD5(const char* input, unsigned int length, unsigned char* digest);

}  // namespace vantu

#pragma GCC visibility pop

#endif
