#include "passphrase.h"

#include <fcntl.h>
#include <openssl/err.h>
#include <openssl/evp.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>

#include "descriptor.h"
#include "messages.h"

namespace {

constexpr std::size_t kMaxBytes = 512;
constexpr int kInterrupted = -2;  // a result of EVP_read_pw_string

// Reads no byte beyond the line, because a file may follow on the same descriptor.
SecretBytes read_line(int fd) {
    const std::string name = "passphrase descriptor " + std::to_string(fd);
    SecretBytes line;
    line.reserve(kMaxBytes);  // a reallocation would leave a copy in the heap
    for (unsigned char byte = 0;;) {
        const ssize_t got = read(fd, &byte, 1);
        if (got == -1 && errno == EINTR) continue;
        if (got == -1) fail_with_errno(name);
        if (got == 0 || byte == '\n') return line;
        if (line.size() == kMaxBytes) throw Failure(name, "too long for a passphrase");
        line.push_back(byte);
    }
}

SecretBytes prompt_for(const std::string& key_name, const std::string& purpose = "") {
    // Without a terminal, libcrypto reads standard input.
    if (Descriptor(open("/dev/tty", O_RDWR | O_CLOEXEC)).get() == -1)
        throw Failure(key_name, "no terminal for the passphrase; use --passphrase-fd");
    const std::string prompt = "Passphrase of " + quoted(key_name) + purpose + ": ";
    SecretBytes text(2 * kMaxBytes);
    const int status = EVP_read_pw_string(reinterpret_cast<char*>(text.data()),
                                          static_cast<int>(text.size()), prompt.c_str(), 0);
    ERR_clear_error();
    if (status == kInterrupted) std::raise(SIGINT);  // libcrypto has caught the signal
    if (status != 0) throw Failure(key_name, "no passphrase was entered");
    text.resize(static_cast<std::size_t>(std::find(text.begin(), text.end(), 0) - text.begin()));
    if (text.size() > kMaxBytes) throw Failure(key_name, "too long for a passphrase");
    return text;
}

}  // namespace

Passphrase::Passphrase(std::optional<int> fd) {
    if (fd) text_ = read_line(*fd);
}

const SecretBytes& Passphrase::for_existing_key(const std::string& key_name) {
    if (!text_) text_ = prompt_for(key_name);
    return *text_;
}

const SecretBytes& Passphrase::for_new_key(const std::string& key_name) {
    if (!text_) {
        text_ = prompt_for(key_name);
        if (prompt_for(key_name, " again") != *text_)
            throw Failure(key_name, "the two passphrases differ");
    }
    if (text_->empty()) throw Failure(key_name, "the passphrase is empty");
    return *text_;
}
