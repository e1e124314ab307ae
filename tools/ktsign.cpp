// ktsign: makes keys, signatures and key blobs for the library to verify.
#include <ktbase/digest.h>

#include <cerrno>
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <iostream>
#include <string>
#include <vector>

#include "files.h"
#include "progress.h"
#include "signing_key.h"

namespace {

constexpr int kDone = 0;
constexpr int kFailed = 2;

constexpr char kUsage[] =
    "usage: ktsign new-key KEY          make a key pair: KEY (private) and KEY.pub (public)\n"
    "       ktsign public-key KEY PUB   write the public key of KEY to PUB\n"
    "       ktsign sign KEY FILE SIG    write the signature of FILE to SIG\n"
    "       ktsign --help | --version\n"
    "The man page, ktsign(1), says what the files hold.\n";

// From here on the digest would not be the one of FIPS 180.
constexpr std::uint64_t kTooLong = std::uint64_t{1} << 29;
constexpr std::size_t kMaxKeyFileBytes = 1 << 16;

SigningKey read_key(const std::string& path) {
    std::string pem;
    read_pieces(path, [&](std::span<unsigned char> piece) {
        pem.append(piece.begin(), piece.end());
        if (pem.size() > kMaxKeyFileBytes) throw FileError(path, "too long for a key");
    });
    try {
        return SigningKey::from_pem(pem);
    } catch (const KeyError& error) {
        throw FileError(path, error.what());
    }
}

DigestInteger digest_file(const std::string& path) {
    HASH_CTX ctx;
    InitHash(&ctx);
    std::uint64_t size = 0;
    Progress progress(path);
    read_pieces(path, [&](std::span<unsigned char> piece) {
        size += piece.size();
        if (size >= kTooLong)
            throw FileError(path, "too long to sign, the limit is 2^29 - 1 bytes");
        HashBuf(piece.data(), static_cast<unsigned>(piece.size()), &ctx);
        progress.show(size);
    });
    EndHash(&ctx);
    // The state words are the number's 32-bit digits, least significant first.
    DigestInteger digest;
    for (std::size_t i = 0; i < digest.size(); ++i)
        digest[digest.size() - 1 - i] =
            static_cast<unsigned char>(ctx.state[i / 4] >> (8 * (i % 4)));
    return digest;
}

void refuse_to_overwrite(const std::string& output, const std::string& input) {
    if (same_file(output, input)) throw FileError(output, "would be overwritten, it is an input");
}

void new_key(const std::string& path) {
    const std::string public_path = path + ".pub";
    const SigningKey key = SigningKey::generate();
    const PublicKeyBlob blob = key.public_key();
    create_file(path, key.to_pem(), Readers::owner);
    try {
        create_file(public_path, blob, Readers::everybody);
    } catch (const FileError&) {
        std::remove(path.c_str());
        throw;
    }
}

void public_key(const std::string& path, const std::string& output) {
    refuse_to_overwrite(output, path);
    replace_file(output, read_key(path).public_key());
}

void sign(const std::string& path, const std::string& file, const std::string& output) {
    refuse_to_overwrite(output, path);
    refuse_to_overwrite(output, file);
    const SigningKey key = read_key(path);
    replace_file(output, key.sign(digest_file(file)));
}

int run(const std::vector<std::string>& arguments) {
    const std::string command = arguments.empty() ? "" : arguments[0];
    const std::size_t operands = arguments.empty() ? 0 : arguments.size() - 1;
    if (command == "new-key" && operands == 1)
        new_key(arguments[1]);
    else if (command == "public-key" && operands == 2)
        public_key(arguments[1], arguments[2]);
    else if (command == "sign" && operands == 3)
        sign(arguments[1], arguments[2], arguments[3]);
    else if (command == "--help" && operands == 0)
        std::cout << kUsage;
    else if (command == "--version" && operands == 0)
        std::cout << "ktsign " << KTSIGN_VERSION << '\n';
    else {
        std::cerr << kUsage;
        return kFailed;
    }
    return kDone;
}

}  // namespace

int main(int argc, char** argv) {
    std::signal(SIGXFSZ, SIG_IGN);  // a file too long for its limit is an error like others
    try {
        const int status = run({argv + 1, argv + argc});
        if (!std::cout.flush()) throw FileError("standard output", std::strerror(errno));
        return status;
    } catch (const std::exception& error) {
        std::cerr << "ktsign: " << error.what() << '\n';
        return kFailed;
    }
}
