#include "passphrase.h"

#include <fcntl.h>
#include <openssl/err.h>
#include <openssl/evp.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>

#include "descriptor.h"
#include "messages.h"

namespace {

constexpr std::size_t kMaxBytes = 512;

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
        if (line.size() == kMaxBytes) throw Failure(name, "a line too long for a passphrase");
        line.push_back(byte);
    }
}

SecretBytes prompt_for(const std::string& key_name, bool twice) {
    // Without a terminal, libcrypto reads standard input.
    if (Descriptor(open("/dev/tty", O_RDWR | O_CLOEXEC)).get() == -1)
        throw Failure(key_name, "no terminal for the passphrase; use --passphrase-fd");
    const std::string prompt = "Passphrase of " + quoted(key_name) + ": ";
    SecretBytes text(kMaxBytes + 1);
    if (EVP_read_pw_string(reinterpret_cast<char*>(text.data()), static_cast<int>(text.size()),
                           prompt.c_str(), twice ? 1 : 0) != 0) {
        ERR_clear_error();
        throw Failure(key_name, twice ? "the same passphrase was not entered twice"
                                      : "no passphrase was entered");
    }
    text.resize(static_cast<std::size_t>(std::find(text.begin(), text.end(), 0) - text.begin()));
    return text;
}

}  // namespace

const SecretBytes& Passphrase::obtain(const std::string& key_name, bool twice) {
    if (!text_) text_ = fd_ ? read_line(*fd_) : prompt_for(key_name, twice);
    return *text_;
}

const SecretBytes& Passphrase::for_existing_key(const std::string& key_name) {
    return obtain(key_name, false);
}

const SecretBytes& Passphrase::for_new_key(const std::string& key_name) {
    const SecretBytes& text = obtain(key_name, true);
    if (text.empty()) throw Failure(key_name, "the passphrase is empty");
    return text;
}
