#include "command_line.h"

#include <getopt.h>

#include <algorithm>
#include <charconv>
#include <climits>
#include <string_view>

#include "messages.h"

const char kUsage[] =
    "usage: ktsign new-domain FILE            make a domain of your own: p, q and g\n"
    "       ktsign new-key [--encrypt] KEY    make a key pair: KEY (private) and KEY.pub (public)\n"
    "       ktsign public-key KEY PUB         write the public key of KEY to PUB\n"
    "       ktsign sign [-o SIG] KEY FILE...  write the signature of each FILE to FILE.sig, or "
    "SIG\n"
    "       ktsign verify [-s SIG] PUB FILE...  verify each FILE with FILE.sig, or SIG\n"
    "       ktsign show FILE                  describe a private key, a public key or a domain\n"
    "       ktsign --help | --version\n"
    "  -o, --output SIG       write the signature of the one FILE to SIG\n"
    "  -s, --signature SIG    verify the one FILE with SIG\n"
    "      --encrypt          encrypt the private key with a passphrase\n"
    "      --passphrase-fd N  read the passphrase from descriptor N, not from the terminal\n"
    "      --force            replace an existing output file of any size\n"
    "The file name - is standard input or output. The man page, ktsign(1), describes the "
    "details.\n";

namespace {

constexpr char kMore[] = "; see ktsign --help";

struct Command {
    const char* name;
    const char* operands;  // for messages
    std::size_t least;
    std::size_t most;
    std::vector<std::string> options;
};

const std::vector<Command>& commands() {
    static const std::vector<Command> all = {
        {"new-domain", "FILE", 1, 1, {"--force"}},
        {"new-key", "KEY", 1, 1, {"--encrypt", "--passphrase-fd"}},
        {"public-key", "KEY PUB", 2, 2, {"--force", "--passphrase-fd"}},
        {"sign", "KEY FILE...", 2, SIZE_MAX, {"--output", "--force", "--passphrase-fd"}},
        {"verify", "PUB FILE...", 2, SIZE_MAX, {"--signature"}},
        {"show", "FILE", 1, 1, {"--passphrase-fd"}},
        {"--help", "nothing", 0, SIZE_MAX, {}},
        {"--version", "nothing", 0, 0, {}},
    };
    return all;
}

int parse_descriptor(const std::string& text) {
    int fd = -1;  // from_chars does not change it if there is no number
    const char* const end = text.data() + text.size();
    if (std::from_chars(text.data(), end, fd).ptr != end || fd < 0)
        throw Failure("--passphrase-fd: not a descriptor: " + quoted(text, "-"));
    return fd;
}

// Values that getopt_long returns for an operand, and for options without a short form.
enum : int { kOperand = 1, kEncrypt = 256, kForce, kPassphraseFd, kVersion };

const option kOptions[] = {{"output", required_argument, nullptr, 'o'},
                           {"signature", required_argument, nullptr, 's'},
                           {"passphrase-fd", required_argument, nullptr, kPassphraseFd},
                           {"encrypt", no_argument, nullptr, kEncrypt},
                           {"force", no_argument, nullptr, kForce},
                           {"version", no_argument, nullptr, kVersion},
                           {}};

// With "-", getopt_long returns each operand in its order, as the argument of kOperand. With ":",
// it returns ':' for a missing value, and prints no message.
constexpr char kShortOptions[] = "-:o:s:";

std::string long_name(int value) {
    const auto* const found = std::find_if(std::begin(kOptions), std::end(kOptions),
                                           [value](const option& o) { return o.val == value; });
    return std::string("--") + found->name;
}

bool requests_help(std::span<char*> words) {
    const auto options_end = std::find(words.begin(), words.end(), std::string_view("--"));
    return std::any_of(words.begin(), options_end,
                       [](std::string_view word) { return word == "-h" || word == "--help"; });
}

void take_operand(CommandLine& line, const char* word) {
    if (line.command.empty())
        line.command = word;
    else
        line.operands.emplace_back(word);
}

// `word` is the argument that contains the option.
void take_option(CommandLine& line, int value, const std::string& word) {
    switch (value) {
        case 'o':
            line.output = optarg;
            break;
        case 's':
            line.signature = optarg;
            break;
        case kPassphraseFd:
            line.passphrase_fd = parse_descriptor(optarg);
            break;
        case kEncrypt:
            line.encrypt = true;
            break;
        case kForce:
            line.force = true;
            break;
        case kVersion:
            if (line.command.empty()) line.command = long_name(value);
            break;
        case ':':
            throw Failure(word, std::string("needs a value") + kMore);
        default:
            if (optopt >= kEncrypt) throw Failure(word, std::string("takes no value") + kMore);
            throw Failure(word,
                          "not an option; write ./" + quoted(word) + " for a file of this name");
    }
}

// Stores the long names of the options in `options`.
CommandLine parse_words(std::span<char*> words, std::vector<std::string>& options) {
    CommandLine line;
    if (requests_help(words)) {
        line.command = "--help";
        return line;
    }
    const int count = static_cast<int>(words.size());
    while (optind < count) {
        const std::string word = words[optind];
        const int value = getopt_long(count, words.data(), kShortOptions, kOptions, nullptr);
        if (value == -1) break;
        if (value == kOperand) {
            take_operand(line, optarg);
            continue;
        }
        take_option(line, value, word);
        options.push_back(long_name(value));
    }
    for (; optind < count; ++optind) take_operand(line, words[optind]);
    return line;
}

const Command& command_of(const std::string& name) {
    if (name.empty()) throw Failure(std::string("no command") + kMore);
    for (const Command& command : commands())
        if (name == command.name) return command;
    throw Failure(quoted(name, "-") + ": not a command" + kMore);
}

// Throws Failure unless the command accepts the operands and options.
void require_valid(const CommandLine& line, std::vector<std::string> options) {
    const Command& command = command_of(line.command);
    std::erase(options, line.command);
    for (const std::string& option : options)
        if (std::count(command.options.begin(), command.options.end(), option) == 0)
            throw Failure(line.command + ": does not take " + option + kMore);
    if (line.operands.size() < command.least || line.operands.size() > command.most)
        throw Failure(line.command + ": takes " + command.operands + kMore);
    if ((line.output || line.signature) && line.operands.size() != 2)
        throw Failure(line.command + ": SIG requires exactly one FILE" + kMore);
    // PUB is the only output among the operands.
    const auto inputs_end = line.operands.end() - (line.command == "public-key" ? 1 : 0);
    if (std::count(line.operands.begin(), inputs_end, "-") + (line.signature == "-" ? 1 : 0) > 1)
        throw Failure(line.command + ": standard input is named more than once");
    if (line.command == "new-key" && line.passphrase_fd && !line.encrypt)
        throw Failure(line.command + ": --passphrase-fd requires --encrypt" + kMore);
}

}  // namespace

CommandLine parse_command_line(std::span<char*> words) {
    std::vector<std::string> options;
    CommandLine line = parse_words(words, options);
    require_valid(line, options);
    return line;
}
