// The output of ktsign: messages of one line, with escaped control characters in names.
#ifndef KTBASE_TOOLS_MESSAGES_H
#define KTBASE_TOOLS_MESSAGES_H

#include <stdexcept>
#include <string>

// Quotes a file name for a message. A byte that is not part of a printable character of the locale,
// or that is part of a mark of the text direction, becomes \xHH. A backslash is doubled, "-"
// becomes `dash`, and an empty name two quotes.
std::string quoted(const std::string& name, const std::string& dash = "standard input");

// An error message of one line: the file and the reason.
struct Failure : std::runtime_error {
    using std::runtime_error::runtime_error;
    Failure(const std::string& name, const std::string& reason)
        : std::runtime_error(quoted(name) + ": " + reason) {}
};

// Throws a Failure with the message of errno.
[[noreturn]] void fail_with_errno(const std::string& name);

// Prints a line of the form "ktsign: MESSAGE" on standard error.
void print_error(const std::string& message);
void print_error(const std::exception& error);

// Prints a line on standard output. Throws Failure.
void print_line(const std::string& line);

#endif
