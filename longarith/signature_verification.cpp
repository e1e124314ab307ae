// Verification of a DSA signature (FIPS 186, section 6) in the built-in domain.
#include "domain_parameters.h"

#include <algorithm>

#include "kernels/limbs.h"

namespace {

constexpr int kValid = 0;
constexpr int kIsZero = 0x707;
constexpr int kOutOfRange = 0x7707;
constexpr int kNoMatch = 0xF0F;

bool reaches_q(const unsigned short* a) {
    return !less_limbs(a, DsaQ, kLimbsQ);
}

// Reads r or s from the signature and checks its range.
int read_in_range(unsigned char* bytes, unsigned short* number) {
    packLAN(bytes, number, kBytesQ);
    if (reaches_q(number)) return kOutOfRange;
    const bool zero =
        std::all_of(number, number + kLimbsQ, [](unsigned short limb) { return limb == 0; });
    return zero ? kIsZero : kValid;
}

// The table of powers that expmodLAN takes: each number of the key, and its cube.
void build_key_powers(unsigned char* key, unsigned short* powers) {
    for (int j = 0; j < kChunks; ++j) {
        unsigned short* const y = powers + kPowersY * j * kLimbsP;
        unsigned short* const cube = y + kLimbsP;
        packLAN(key + kBytesP * j, y, kBytesP);
        unsigned short square[kLimbsP];
        std::copy_n(y, kLimbsP, square);
        multiply_mod_p(square, y);
        std::copy_n(y, kLimbsP, cube);
        multiply_mod_p(cube, square);
    }
}

// exponent = w*factor modulo q, at most 160 bits.
void make_exponent(const unsigned short* w, const unsigned short* factor, unsigned char* exponent) {
    unsigned short product[kLimbsQ];
    std::copy_n(w, kLimbsQ, product);
    multiply_mod_q(product, factor);
    multiply_mod_q(product, DsaR2Q);  // cancels the 2^-160 of both products
    unpackLAN(product, exponent, kBytesQ);
}

// Converts `x` from Montgomery form modulo p to its residue modulo p, and reduces this residue
// modulo q. The result is in the low kLimbsQ limbs of `x`.
void reduce_to_q(unsigned short* x) {
    // The product by 1 is (x + U*p) / 2^512, for the U that makes the division exact. kLimbsP
    // steps of privLAN compute the same value. The value is at most p, so the product subtracts
    // nothing.
    static constexpr unsigned short kOne[kLimbsP] = {1};
    multiply_mod_p(x, kOne);
    // kLimbsP steps reduce x to at most q, with a factor of 2^-512. The product by 2^672 cancels
    // this factor and its own 2^-160. The result is below 2q.
    privLAN(x, read_only(DsaQ), DsaMontQ, kLimbsP, kLimbsQ, kLimbsP);
    multiply_mod_q(x, DsaFoldQ);
    if (reaches_q(x)) subtLAN(x, read_only(DsaQ), kLimbsQ);
}

}  // namespace

int CheckBufferSign(unsigned char* buffer, long length, unsigned char* key,
                    unsigned char* signature) {
    HASH_CTX ctx;
    InitHash(&ctx);
    HashBuf(buffer, static_cast<unsigned>(length), &ctx);
    EndHash(&ctx);
    return CheckSignature(key, signature, &ctx) == kValid ? 0 : -1;
}

int CheckSignature(unsigned char* key, unsigned char* signature, HASH_CTX* digest) {
    unsigned short r[kLimbsQ];
    unsigned short s[kLimbsQ];
    if (const int code = read_in_range(signature, r); code != kValid) return code;
    if (const int code = read_in_range(signature + kBytesQ, s); code != kValid) return code;

    unsigned short key_powers[kChunks * kPowersY * kLimbsP];
    build_key_powers(key, key_powers);
    unsigned short w[kLimbsQ];
    invertLAN(signature + kBytesQ, w);

    unsigned short message[kLimbsQ];  // the digest integer
    packLAN(reinterpret_cast<unsigned char*>(digest->state), message, kBytesQ);
    unsigned char u1[kBytesQ];
    unsigned char u2[kBytesQ];
    make_exponent(w, message, u1);
    make_exponent(w, r, u2);

    unsigned short v[kLimbsP];
    expmodLAN(v, u1, key_powers, u2);
    reduce_to_q(v);
    return std::equal(r, r + kLimbsQ, v) ? kValid : kNoMatch;
}
