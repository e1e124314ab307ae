// The command verify.
#include "verification.h"

#include <ktbase/longarith.h>

#include <algorithm>

#include "commands.h"
#include "message_digest.h"
#include "messages.h"

namespace {

int verify_file(const PublicKeyBlob& key, const std::string& file, const std::string& signature) {
    const auto blob = read_blob<sizeof(SignatureBlob)>(signature, "signature");
    const std::string reason = refusal(key, blob, digest_file(file));
    print_line(quoted(file) + ": " + (reason.empty() ? "valid" : reason));
    return reason.empty() ? kDone : kNotValid;
}

}  // namespace

std::string refusal(PublicKeyBlob key, SignatureBlob signature, HASH_CTX digest) {
    switch (CheckSignature(key.data(), signature.data(), &digest)) {
        case 0:
            return "";
        case 0x707:
            return "r or s is zero";
        case 0x7707:
            return "r or s out of range";
        default:
            return "signature does not match";
    }
}

int verify(const CommandLine& line) {
    const std::string& key_name = line.operands[0];
    const PublicKeyBlob key = read_public_key(key_name);
    if (const std::string reason = unsoundness(key); !reason.empty())
        throw Failure(key_name, "not a sound public key of this domain: " + reason);
    int status = kDone;
    for (std::size_t i = 1; i < line.operands.size(); ++i) {
        const std::string& file = line.operands[i];
        try {
            if (file == "-" && !line.signature)
                throw Failure("standard input: its signature has no name; use -s");
            status =
                std::max(status, verify_file(key, file, line.signature.value_or(file + ".sig")));
        } catch (const std::exception& error) {
            print_error(error);
            status = kFailed;
        }
    }
    return status;
}
