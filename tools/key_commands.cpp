// The commands new-domain, new-key and public-key.
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>

#include "commands.h"
#include "domain.h"
#include "messages.h"
#include "output_files.h"
#include "private_key.h"

namespace {

constexpr mode_t kOthers = S_IRWXG | S_IRWXO;

// True for a private key without a public key. A SIGKILL between the creations of the two files
// leaves such a key. False for a file of another user, and for a file that others have access to.
bool lacks_public_key(const std::string& private_name) {
    struct stat status;
    if (name_exists(private_name + ".pub") || lstat(private_name.c_str(), &status) == -1)
        return false;
    return S_ISREG(status.st_mode) && status.st_uid == geteuid() && status.st_size != 0 &&
           (status.st_mode & kOthers) == 0;
}

OutputFile public_key_output(const std::string& name, bool force) {
    return OutputFile(name, {"a public key", sizeof(PublicKeyBlob), force});
}

void complete_key_pair(const std::string& private_name, bool encrypt, Passphrase& passphrase) {
    const std::string public_name = private_name + ".pub";
    const PrivateKey key = read_own_private_key(private_name, passphrase);
    if (encrypt && !key.was_encrypted()) throw Failure(private_name, "exists and is not encrypted");
    public_key_output(public_name, false).write(key.public_key());
    print_error(quoted(private_name) + ": kept; made the missing " + quoted(public_name) +
                " from it");
}

}  // namespace

int new_domain(const CommandLine& line) {
    const OutputFile output(line.operands[0], {"empty", std::nullopt, line.force});
    const std::string text = generate_domain_file();
    output.write(ConstBytes(reinterpret_cast<const unsigned char*>(text.data()), text.size()));
    return kDone;
}

int new_key(const CommandLine& line) {
    const std::string& name = line.operands[0];
    if (name == "-") throw Failure("new-key: a key pair is two files, not standard output");
    Passphrase passphrase(line.passphrase_fd);
    if (lacks_public_key(name)) {
        complete_key_pair(name, line.encrypt, passphrase);
        return kDone;
    }
    std::error_code ignored;  // name_exists() below reports the error
    const auto type = std::filesystem::symlink_status(name, ignored).type();
    if (type == std::filesystem::file_type::regular && !name_exists(name + ".pub"))
        throw Failure(name,
                      "exists; if it is a private key, \"ktsign public-key\" makes its public key");
    for (const std::string& file : {name, name + ".pub"}) {
        if (!name_exists(file)) continue;
        errno = EEXIST;
        fail_with_errno(file);
    }
    const SecretBytes* const text = line.encrypt ? &passphrase.for_new_key(name) : nullptr;
    const PrivateKey key = PrivateKey::generate();
    create_key_pair(name, key.to_pem(text), name + ".pub", key.public_key());
    return kDone;
}

int public_key(const CommandLine& line) {
    const std::string& name = line.operands[0];
    const std::string& output_name = line.operands[1];
    const OutputFile output = public_key_output(output_name, line.force);
    if (name != "-" && output.identity() && output.identity() == file_identity(name))
        throw Failure(output_name, "is an input and would be overwritten");
    Passphrase passphrase(line.passphrase_fd);
    const PrivateKey key = read_own_private_key(name, passphrase);
    // KEY.pub does not have to match if this command replaces it.
    const bool replaces_key_pub =
        output.identity() && output.identity() == file_identity(name + ".pub");
    if (!replaces_key_pub || !(line.force || output.is_empty()))
        require_matching_public_key(key, name);
    output.write(key.public_key());
    return kDone;
}
