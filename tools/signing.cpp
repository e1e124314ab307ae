// The command sign.
#include <filesystem>
#include <set>
#include <string>

#include "commands.h"
#include "message_digest.h"
#include "messages.h"
#include "output_files.h"
#include "private_key.h"

namespace {

class Signer {
public:
    explicit Signer(const CommandLine& line)
        : line_(line),
          passphrase_(line.passphrase_fd),
          key_(read_own_private_key(line.operands[0], passphrase_)) {
        require_matching_public_key(key_, line.operands[0]);
        protect(line.operands[0] + ".pub");
        for (const std::string& input : line.operands) protect(input);
        for (const std::string& input : line.operands) names_.insert(normal(input));
        names_.insert(normal(line.operands[0] + ".pub"));
    }

    void sign(const std::string& file) const {
        const OutputFile output(output_name(file),
                                {"a signature", sizeof(SignatureBlob), line_.force});
        if (is_input(output_name(file), output))
            throw Failure(output_name(file), "is an input and would be overwritten");
        output.write(key_.sign(digest_file(file)));
    }

private:
    // Ignores errors: sign() reports them when it reads the file.
    void protect(const std::string& input) {
        if (input == "-") return;
        try {
            if (const auto identity = file_identity(input)) inputs_.insert(*identity);
        } catch (const Failure&) {  // NOLINT(bugprone-empty-catch)
        }
    }
    static std::string normal(const std::string& name) {
        return std::filesystem::path(name).lexically_normal();
    }
    // A file that does not exist has no identity. Its name is compared.
    bool is_input(const std::string& name, const OutputFile& output) const {
        if (name == "-") return false;  // standard output
        return names_.contains(normal(name)) ||
               (output.identity() && inputs_.contains(*output.identity()));
    }
    std::string output_name(const std::string& file) const {
        if (line_.output) return *line_.output;
        if (file == "-") throw Failure("standard input: its signature has no name; use -o");
        return file + ".sig";
    }

    const CommandLine& line_;
    Passphrase passphrase_;
    PrivateKey key_;
    std::set<FileIdentity> inputs_;
    std::set<std::string> names_;
};

}  // namespace

int sign(const CommandLine& line) {
    const Signer signer(line);
    int status = kDone;
    for (std::size_t i = 1; i < line.operands.size(); ++i) {
        try {
            signer.sign(line.operands[i]);
        } catch (const std::exception& error) {
            print_error(error);
            status = kFailed;
        }
    }
    return status;
}
