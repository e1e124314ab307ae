// Message digests: SHA as first published in FIPS 180 (1993), commonly called SHA-0, and MD5
// (RFC 1321). The header requires C++11.
//
// The caller owns every record and every buffer. No function keeps a pointer after it returns,
// allocates memory, sets errno or checks an argument.
//
// Threads: different records may be used on different threads at the same time. One record, the
// exported Hash included, must be used by one thread at a time.
#ifndef KTBASE_DIGEST_H
#define KTBASE_DIGEST_H

#include <cstdint>

#pragma GCC visibility push(default)

// ---- SHA (FIPS 180, 1993) ---------------------------------------------------------------------

// A running SHA digest. A record is in one of three states:
//   unset      before InitHash, whatever its bytes are;
//   absorbing  between InitHash and EndHash;
//   finished   after EndHash: `state` is the digest, the other fields have no meaning.
struct HASH_CTX {
    std::uint32_t state[5];  // chaining values H0 to H4
    std::uint32_t count;     // bytes absorbed, modulo 2^32
    std::uint32_t index;     // index of the word of `data` that is being filled, 0 to 15
    std::uint32_t data[16];  // the current block, big-endian; W[64] to W[79] after a compression
    std::uint32_t left;      // bytes that data[index] still has room for, 4 down to 1
};

extern "C" {

// A record in static storage, for callers that need one. It is all zero at load, and so unset: call
// InitHash first. The library never accesses it.
extern HASH_CTX Hash;

// Starts a digest in `ctx`. The record may be in any state.
void InitHash(HASH_CTX* ctx);

// Absorbs `length` bytes of `buffer`. `buffer` may have any alignment. It is only read; a caller
// with constant data may cast the const away. The digest does not depend on how a message is split
// among calls. With a length of 0, nothing changes and `buffer` is not read.
// `ctx` must be absorbing; otherwise the digest is unspecified. `buffer` must not overlap `*ctx`.
void HashBuf(unsigned char* buffer, unsigned length, HASH_CTX* ctx);

// Pads the message and compresses its last block or blocks. The digest is then state[0] to
// state[4]. The byte string of FIPS 180 is these words in order, each most significant byte first.
// For a message of 2^29 bytes or more, the length field holds the bit count modulo 2^32. The digest
// is then not the one of FIPS 180.
// `ctx` must be absorbing; otherwise the digest is unspecified.
void EndHash(HASH_CTX* ctx);

}  // extern "C"

// ---- MD5 (RFC 1321) ---------------------------------------------------------------------------

// A running MD5 digest, with the fields of the record of RFC 1321. A digest runs from MD5Init to
// MD5Final. MD5Final sets the record to zero. An all-zero record is not a start state: call MD5Init
// before the next digest.
struct MD5_CTX {
    std::uint32_t state[4];    // chaining values A to D
    std::uint32_t count[2];    // bits absorbed, modulo 2^64, low word first
    unsigned char buffer[64];  // the current block; its first count[0] / 8 % 64 bytes are valid
};

extern "C" {

// Starts a digest in `ctx`, whatever the record held. `buffer` keeps its bytes.
void MD5Init(MD5_CTX* ctx);

// Absorbs `length` bytes of `input`. `input` may have any alignment. The digest does not depend on
// how a message is split among calls. With a length of 0, nothing changes and `input` is not read.
// `input` must not overlap `*ctx`, with one exception: it may lie in `ctx->buffer`, either within
// the valid bytes or behind them, but not across their end.
void MD5Update(MD5_CTX* ctx, const unsigned char* input, unsigned length);

// Compresses the 64 bytes of `block` into the 4 words of `state`. `block` may have any alignment.
// No word of the block remains on the stack.
void MD5Transform(std::uint32_t* state, const unsigned char* block);

// Does what MD5Transform does, with the words of `state` in reverse order: A is state[3], D is
// state[0].
void MD5Transform2(std::uint32_t* state, const unsigned char* block);

// Writes the 16-byte digest of `length` bytes of `input` to `digest`. With a length of 0, `input`
// is not read. The function wipes the record that it uses. Returns 1, always.
// `digest` may overlap `input`.
int GetBufferMD5(unsigned char* digest, const unsigned char* input, unsigned length);

}  // extern "C"

// Pads the message, writes the 16-byte digest to `digest`, and sets the whole record to zero. The
// digest is state[0] to state[3], each least significant byte first. The function has C++ linkage.
// `digest` must not overlap `*ctx`.
void MD5Final(unsigned char* digest, MD5_CTX* ctx);

// The same functions on a record type of the namespace.
namespace vantu {

// The same fields in the same places as in ::MD5_CTX.
struct MD5_CTX {
    std::uint32_t state[4];    // chaining values A to D
    std::uint32_t count[2];    // bits absorbed, modulo 2^64, low word first
    unsigned char buffer[64];  // the current block
};

// These do what ::MD5Init, ::MD5Update and ::MD5Final do.
void MD5_Init(MD5_CTX* ctx);
void MD5_Update(MD5_CTX* ctx, const unsigned char* input, unsigned int length);
void MD5_Final(unsigned char* digest, MD5_CTX* ctx);

// Does what ::GetBufferMD5 does, and returns 1, always. The argument order differs: the input comes
// first, the digest last.
int MD5(const char* input, unsigned int length, unsigned char* digest);

}  // namespace vantu

#pragma GCC visibility pop

#endif
