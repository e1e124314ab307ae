// Private keys and what is made with them, by libcrypto.
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

using SignatureBlob = std::array<unsigned char, 40>;  // r, then s, least significant byte first

// A DSA key whose y belongs to its x. Every function throws Failure.
class PrivateKey {
public:
    static PrivateKey generate();  // in the built-in domain
    // Reads PEM, encrypted or not, in any domain of the size. `name` is for messages.
    static PrivateKey from_pem(const SecretBytes& pem, Passphrase& passphrase,
                               const std::string& name);

    // PKCS#8, encrypted with a key that scrypt derives when there is a passphrase.
    SecretBytes to_pem(const SecretBytes* passphrase) const;
    DomainNumbers domain() const;
    PublicKeyBlob public_key() const;
    // Signs a finished digest in the built-in domain. libcrypto and the library's own code have
    // verified what this returns: a fault in the processor, the memory or the key would otherwise
    // put a signature out that gives the private key away.
    SignatureBlob sign(const HASH_CTX& digest) const;

private:
    using Handle = Owned<EVP_PKEY, EVP_PKEY_free>;
    explicit PrivateKey(Handle key) : key_(std::move(key)) {}

    Handle key_;
};

// Reads a private key of any domain, and warns when others than its owner may read it.
PrivateKey read_private_key(InputFile& file, Passphrase& passphrase);

// Reads a private key of the built-in domain.
PrivateKey read_own_private_key(const std::string& name, Passphrase& passphrase);

// Throws when the public key NAME.pub beside the private key NAME exists and is not that of `key`:
// a damaged private key in PKCS#8 is in order by itself, because y is computed from x.
void require_match_beside(const PrivateKey& key, const std::string& name);

#endif
