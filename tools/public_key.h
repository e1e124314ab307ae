// Public keys in the encoding of the library.
#ifndef KTBASE_TOOLS_PUBLIC_KEY_H
#define KTBASE_TOOLS_PUBLIC_KEY_H

#include <array>
#include <string>

#include "domain.h"
#include "domain_shape.h"

// For j = 0 to 3 the number y^(2^(40j)) * 2^512 mod p, 64 bytes each, least significant first.
using PublicKeyBlob = std::array<unsigned char, kPublicKeyBytes>;

PublicKeyBlob read_public_key(const std::string& name);  // throws Failure

PublicKeyBlob public_key_of(const BIGNUM* y, const BIGNUM* p);

// Returns the reason why a key is not sound in the built-in domain, or "" for a sound key. The
// library accepts any key. If all components are p, a signature with r = 1 matches every file. If y
// is 1, anyone can sign.
std::string unsoundness(const PublicKeyBlob& key);

std::string fingerprint(const PublicKeyBlob& key);  // SHA-256 in hexadecimal

#endif
