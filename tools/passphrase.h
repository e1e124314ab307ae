// Passphrases of private keys, from a descriptor or the terminal.
#ifndef KTBASE_TOOLS_PASSPHRASE_H
#define KTBASE_TOOLS_PASSPHRASE_H

#include <optional>
#include <string>

#include "secrets.h"

class Passphrase {
public:
    // Takes the passphrase from a line of the descriptor `fd`, or from the terminal if `fd` is
    // empty.
    explicit Passphrase(std::optional<int> fd) : fd_(fd) {}

    // The first call reads or prompts, and later calls return the same passphrase. Throws Failure.
    const SecretBytes& for_existing_key(const std::string& key_name);
    const SecretBytes& for_new_key(const std::string& key_name);  // prompts twice

private:
    const SecretBytes& obtain(const std::string& key_name, bool twice);

    std::optional<int> fd_;
    std::optional<SecretBytes> text_;
};

#endif
