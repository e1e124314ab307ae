// Verification with the library's own code.
#ifndef KTBASE_TOOLS_VERIFICATION_H
#define KTBASE_TOOLS_VERIFICATION_H

#include <string>

#include "private_key.h"
#include "public_key.h"

// Returns why the signature is refused, or "" for a valid one.
std::string refusal(PublicKeyBlob key, SignatureBlob signature, HASH_CTX digest);

#endif
