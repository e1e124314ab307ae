// The digest of a file that is signed or verified.
#ifndef KTBASE_TOOLS_MESSAGE_DIGEST_H
#define KTBASE_TOOLS_MESSAGE_DIGEST_H

#include <ktbase/digest.h>

#include <string>

// Returns the finished SHA digest of a file of less than 2^29 bytes. Throws Failure, also if the
// file changes during the read.
HASH_CTX digest_file(const std::string& name);

#endif
