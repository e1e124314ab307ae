// ktsign: makes domains, keys and signatures for the library, and verifies them with its code.
#include <fcntl.h>
#include <unistd.h>

#include <clocale>
#include <csignal>
#include <exception>
#include <map>

#include "commands.h"
#include "domain.h"
#include "messages.h"
#include "secrets.h"

namespace {

int help(const CommandLine& /*line*/) {
    std::string usage = kUsage;
    usage.pop_back();  // print_line ends the line
    print_line(usage);
    return kDone;
}

int version(const CommandLine& /*line*/) {
    print_line("ktsign " KTSIGN_VERSION);
    print_line("domain-fingerprint " + fingerprint(built_in_domain()));
    return kDone;
}

// Fills the places of closed standard descriptors, or a key could open as standard output and take
// what is printed. The fillers fail when they are read or written.
void fill_standard_descriptors() {
    for (const int fd : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
        if (fcntl(fd, F_GETFD) == -1) open("/dev/null", fd == STDIN_FILENO ? O_WRONLY : O_RDONLY);
}

int run(std::span<char*> words) {
    const CommandLine line = parse_command_line(words);
    const std::map<std::string, int (*)(const CommandLine&)> commands = {
        {"new-domain", new_domain}, {"new-key", new_key},
        {"public-key", public_key}, {"sign", sign},
        {"verify", verify},         {"show", show},
        {"--help", help},           {"--version", version}};
    return commands.at(line.command)(line);
}

}  // namespace

int main(int argc, char** argv) {
    fill_standard_descriptors();
    protect_process();
    std::setlocale(LC_CTYPE, "");
    std::signal(SIGXFSZ, SIG_IGN);  // a file too long for its limit is an error like others
    try {
        return run({argv, argv + argc});
    } catch (const std::exception& error) {
        complain(error.what());
        return kFailed;
    }
}
