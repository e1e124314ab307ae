// ktsign: makes domains, keys and signatures for the library, and verifies signatures with the
// library's code.
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
    usage.pop_back();  // print_line adds the newline
    print_line(usage);
    return kDone;
}

int version(const CommandLine& /*line*/) {
    print_line("ktsign " KTSIGN_VERSION);
    print_line("domain-fingerprint " + fingerprint(built_in_domain()));
    return kDone;
}

// Opens the path of a directory for each closed standard descriptor. Otherwise a file that ktsign
// opens would become standard output, and ktsign would print into it. A read or write of such a
// descriptor fails, and also of its name in /dev.
void fill_standard_descriptors() {
    for (const int fd : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
        if (fcntl(fd, F_GETFD) == -1) open("/", O_PATH);
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
    std::signal(SIGXFSZ, SIG_IGN);  // a write beyond RLIMIT_FSIZE then fails with EFBIG
    try {
        return run({argv, argv + argc});
    } catch (const std::exception& error) {
        print_error(error);
        return kFailed;
    }
}
