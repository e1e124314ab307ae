// The command line of ktsign.
#ifndef KTBASE_TOOLS_COMMAND_LINE_H
#define KTBASE_TOOLS_COMMAND_LINE_H

#include <optional>
#include <span>
#include <string>
#include <vector>

extern const char kUsage[];

struct CommandLine {
    std::string command;  // or "--help" or "--version"
    std::vector<std::string> operands;
    bool encrypt = false;
    bool force = false;
    std::optional<int> passphrase_fd;
    std::optional<std::string> output;
    std::optional<std::string> signature;
};

// Parses the words of a command line, of which the first is the name of the program. The result has
// the operands and options that its command takes. Throws Failure. Requires that getopt_long has
// not been called before.
CommandLine parse_command_line(std::span<char*> words);

#endif
