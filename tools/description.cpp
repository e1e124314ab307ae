// The command show: prints the kind of a file and its fingerprints, as lines of a name and a value.
#include <algorithm>
#include <string_view>

#include "commands.h"
#include "domain.h"
#include "messages.h"
#include "private_key.h"

namespace {

void print_value(const std::string& name, const std::string& value) {
    print_line(name + " " + value);
}

void show_private_key(const PrivateKey& key) {
    print_value("kind", "private-key");
    print_value("key-fingerprint", fingerprint(key.public_key()));
    print_value("domain-fingerprint", fingerprint(key.domain()));
}

void show_public_key(const PublicKeyBlob& key) {
    const std::string reason = unsoundness(key);
    print_value("kind", "public-key");
    print_value("key-fingerprint", fingerprint(key));
    print_value("domain-fingerprint", fingerprint(built_in_domain()));
    print_value("sound", reason.empty() ? "yes" : "no");
    if (!reason.empty()) print_value("reason", reason);
}

constexpr std::string_view kSpaces = "\n\r\t";

bool is_text(std::string_view content) {
    return std::all_of(content.begin(), content.end(), [](char c) {
        return (c >= ' ' && c <= '~') || kSpaces.find(c) != std::string_view::npos;
    });
}

}  // namespace

int show(const CommandLine& line) {
    const std::string& name = line.operands[0];
    Passphrase passphrase(line.passphrase_fd);
    InputFile file(name);
    const SecretBytes bytes =
        read_at_most(file, kMaxKeyFileBytes, "not a key or a domain: too long");
    const std::string_view content(reinterpret_cast<const char*>(bytes.data()), bytes.size());
    if (content.find("-----BEGIN ") != std::string_view::npos) {
        show_private_key(parse_private_key(file, bytes, passphrase));
    } else if (PublicKeyBlob key; !is_text(content) && bytes.size() == key.size()) {
        std::copy(bytes.begin(), bytes.end(), key.begin());
        show_public_key(key);
    } else if (is_text(content) && content.find('=') != std::string_view::npos) {
        const DomainNumbers domain = parse_domain_file(name, std::string(content));
        print_value("kind", "domain");
        print_value("domain-fingerprint", fingerprint(domain));
    } else {
        throw Failure(name, "not a private key, a public key or a domain");
    }
    return kDone;
}
