// What ktsign prints: one line a message, with names that cannot act on the terminal.
#ifndef KTBASE_TOOLS_MESSAGES_H
#define KTBASE_TOOLS_MESSAGES_H

#include <stdexcept>
#include <string>

// Quotes a file name for a message: what the locale does not call printable becomes \xHH, a
// backslash is doubled, and "-" becomes `dash`.
std::string quoted(const std::string& name, const std::string& dash = "standard input");

// What went wrong with which file, in one line.
struct Failure : std::runtime_error {
    using std::runtime_error::runtime_error;
    Failure(const std::string& name, const std::string& reason)
        : std::runtime_error(quoted(name) + ": " + reason) {}
};

// Throws the Failure that errno describes.
[[noreturn]] void fail_with_errno(const std::string& name);

// Prints a line of the form "ktsign: MESSAGE" on standard error.
void complain(const std::string& message);

// Prints a line on standard output. Throws Failure.
void print_line(const std::string& line);

#endif
