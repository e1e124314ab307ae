// Keys and signatures in the built-in domain, made by libcrypto, in the encodings that the library
// verifies.
#ifndef KTBASE_TOOLS_SIGNING_KEY_H
#define KTBASE_TOOLS_SIGNING_KEY_H

#include <openssl/evp.h>

#include <array>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

using PublicKeyBlob = std::array<unsigned char, 256>;
using SignatureBlob = std::array<unsigned char, 40>;
// The digest as a number, most significant byte first.
using DigestInteger = std::array<unsigned char, 20>;

// What is wrong with a key, or what libcrypto could not do, in one line.
struct KeyError : std::runtime_error {
    using std::runtime_error::runtime_error;
};

// A private key of the built-in domain. Every function throws KeyError.
class SigningKey {
public:
    static SigningKey generate();
    static SigningKey from_pem(const std::string& pem);

    std::vector<unsigned char> to_pem() const;  // PKCS#8, not encrypted
    PublicKeyBlob public_key() const;
    SignatureBlob sign(const DigestInteger& digest) const;

private:
    struct Release {
        void operator()(EVP_PKEY* key) const { EVP_PKEY_free(key); }
    };
    using Handle = std::unique_ptr<EVP_PKEY, Release>;

    explicit SigningKey(Handle key) : key_(std::move(key)) {}

    Handle key_;
};

#endif
