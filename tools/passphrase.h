// Passphrases of private keys, from a descriptor or the terminal.
#ifndef KTBASE_TOOLS_PASSPHRASE_H
#define KTBASE_TOOLS_PASSPHRASE_H

#include <optional>
#include <string>

#include "secrets.h"

class Passphrase {
public:
    // Reads the passphrase from a line of the descriptor `fd`. Without `fd`, the first call of a
    // function below prompts on the terminal, and later calls return the same passphrase. Requires
    // that ktsign has not opened a file yet, which could have the number `fd`. All functions throw
    // Failure.
    explicit Passphrase(std::optional<int> fd);

    const SecretBytes& for_existing_key(const std::string& key_name);
    const SecretBytes& for_new_key(const std::string& key_name);  // prompts twice

private:
    std::optional<SecretBytes> text_;
};

#endif
