// Verification with the library's own code.
#ifndef KTBASE_TOOLS_VERIFICATION_H
#define KTBASE_TOOLS_VERIFICATION_H

#include <string>

#include "private_key.h"
#include "public_key.h"

// Returns the reason why the signature is not valid, or "" for a valid signature.
std::string refusal(PublicKeyBlob key, SignatureBlob signature, HASH_CTX digest);

#endif
