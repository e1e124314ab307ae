// Private keys and signatures, made by libcrypto.
#ifndef KTBASE_TOOLS_PRIVATE_KEY_H
#define KTBASE_TOOLS_PRIVATE_KEY_H

#include <ktbase/digest.h>
#include <openssl/evp.h>

#include <array>
#include <string>

#include "input_files.h"
#include "passphrase.h"
#include "public_key.h"

constexpr std::size_t kMaxKeyFileBytes = (1 << 14) - 1;

// r, then s, least significant byte first.
using SignatureBlob = std::array<unsigned char, kSignatureBytes>;

// A DSA key with y = g^x. Every function throws Failure.
class PrivateKey {
public:
    static PrivateKey generate();  // in the built-in domain
    // Reads plain or encrypted PEM, in any domain with a p of 512 bits and a q of 160. `name` is
    // for messages.
    static PrivateKey from_pem(const SecretBytes& pem, Passphrase& passphrase,
                               const std::string& name);

    // Returns PKCS#8 in PEM. With a passphrase the key is encrypted (PBES2 with scrypt).
    SecretBytes to_pem(const SecretBytes* passphrase) const;
    DomainNumbers domain() const;
    PublicKeyBlob public_key() const;
    bool was_encrypted() const { return was_encrypted_; }  // in the PEM text
    // Signs a finished digest in the built-in domain. Before the signature is returned, libcrypto
    // and the library's own code verify it. A signature made with a fault of the processor, the
    // memory or the key can reveal the private key.
    SignatureBlob sign(const HASH_CTX& digest) const;

private:
    using Handle = Owned<EVP_PKEY, EVP_PKEY_free>;
    explicit PrivateKey(Handle key) : key_(std::move(key)) {}

    Handle key_;
    bool was_encrypted_ = false;
};

// Parses the content of a file. Prints a warning if other users may read the file.
PrivateKey parse_private_key(const InputFile& file, const SecretBytes& pem, Passphrase& passphrase);

// Reads a private key of the built-in domain.
PrivateKey read_own_private_key(const std::string& name, Passphrase& passphrase);

// Throws Failure if the file NAME.pub exists and is not the public key of `key`. Without NAME.pub,
// a damaged x is not detected: PKCS#8 contains no y, so y is computed from x.
void require_matching_public_key(const PrivateKey& key, const std::string& name);

#endif
