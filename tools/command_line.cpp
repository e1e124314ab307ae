#include "command_line.h"

#include <algorithm>
#include <charconv>
#include <climits>

#include "messages.h"

const char kUsage[] =
    "usage: ktsign new-domain FILE            make p, q and g for a library of your own\n"
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
    "      --force            replace an existing output, whatever it is\n"
    "As FILE, SIG or an input, - is standard input or output. The man page, ktsign(1), says "
    "more.\n";

namespace {

constexpr char kMore[] = "; see ktsign --help";

struct Form {
    const char* command;
    const char* operands;  // as a message names them
    std::size_t least;
    std::size_t most;
    std::vector<std::string> options;
};

const std::vector<Form>& forms() {
    static const std::vector<Form> all = {
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
    int fd = -1;
    const char* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, fd);
    if (error != std::errc() || stop != end || fd < 0)
        throw Failure("--passphrase-fd: not a descriptor: " + quoted(text));
    return fd;
}

std::string long_name(const std::string& name) {
    if (name == "-o") return "--output";
    return name == "-s" ? "--signature" : name;
}

// The words after the name of the program, taken one by one.
class Parser {
public:
    explicit Parser(std::span<char*> words) : words_(words.begin(), words.end()) {}

    CommandLine parse() {
        const auto options_end = std::find(words_.begin(), words_.end(), "--");
        if (std::find_if(words_.begin(), options_end, asks_for_help) != options_end) {
            line_.command = "--help";
            return line_;
        }
        bool taking_options = true;
        while (next_ < words_.size()) {
            const std::string word = words_[next_++];
            if (!taking_options || word == "-" || !word.starts_with('-'))
                take_operand(word);
            else if (word == "--")
                taking_options = false;
            else
                take_option(word);
        }
        return line_;
    }
    const std::vector<std::string>& options() const { return options_; }

private:
    static bool asks_for_help(const std::string& word) { return word == "-h" || word == "--help"; }

    void take_operand(const std::string& word) {
        if (line_.command.empty())
            line_.command = word;
        else
            line_.operands.push_back(word);
    }

    void take_option(const std::string& word) {
        const std::size_t equals = word.starts_with("--") ? word.find('=') : std::string::npos;
        const std::string name = long_name(word.substr(0, equals));
        std::optional<std::string> attached;
        if (equals != std::string::npos) attached = word.substr(equals + 1);
        options_.push_back(name);
        if (name == "--output")
            line_.output = value(name, attached);
        else if (name == "--signature")
            line_.signature = value(name, attached);
        else if (name == "--passphrase-fd")
            line_.passphrase_fd = parse_descriptor(value(name, attached));
        else if (name == "--encrypt" && !attached)
            line_.encrypt = true;
        else if (name == "--force" && !attached)
            line_.force = true;
        else if (name == "--version" && !attached && line_.command.empty())
            line_.command = name;
        else
            throw Failure(word,
                          "not an option; write ./" + quoted(word) + " for a file of this name");
    }

    std::string value(const std::string& name, const std::optional<std::string>& attached) {
        if (attached) return *attached;
        if (next_ == words_.size()) throw Failure(name + ": needs a value" + kMore);
        return words_[next_++];
    }

    std::vector<std::string> words_;
    std::size_t next_ = 0;
    CommandLine line_;
    std::vector<std::string> options_;
};

const Form& form_of(const std::string& command) {
    if (command.empty()) throw Failure(std::string("no command") + kMore);
    for (const Form& form : forms())
        if (command == form.command) return form;
    throw Failure(command, std::string("not a command") + kMore);
}

void require_form(const CommandLine& line, std::vector<std::string> options) {
    const Form& form = form_of(line.command);
    std::erase(options, line.command);
    for (const std::string& option : options)
        if (std::count(form.options.begin(), form.options.end(), option) == 0)
            throw Failure(line.command + ": does not take " + option + kMore);
    if (line.operands.size() < form.least || line.operands.size() > form.most)
        throw Failure(line.command + ": takes " + form.operands + kMore);
    if ((line.output || line.signature) && line.operands.size() != 2)
        throw Failure(line.command + ": one signature is for one FILE" + kMore);
    // PUB is the only output among the operands.
    const auto inputs_end = line.operands.end() - (line.command == "public-key" ? 1 : 0);
    if (std::count(line.operands.begin(), inputs_end, "-") + (line.signature == "-" ? 1 : 0) > 1)
        throw Failure(line.command + ": standard input is named more than once");
    if (line.command == "new-key" && line.passphrase_fd && !line.encrypt)
        throw Failure(line.command + ": --passphrase-fd is for --encrypt" + kMore);
}

}  // namespace

CommandLine parse_command_line(std::span<char*> arguments) {
    Parser parser(arguments);
    CommandLine line = parser.parse();
    require_form(line, parser.options());
    return line;
}
