// Verifies a signature over a file of any size. Digests the file in pieces. CheckSignature returns
// the reason for a refusal.
//
// The library accepts any key. `ktsign show PUB` prints whether the key is sound, and its
// fingerprint for a comparison with the vendor's.
//
//   verify_file PUB FILE SIG    exit status: 0 valid, 1 not valid, 2 something else went wrong
#include <fcntl.h>
#include <ktbase/longarith.h>
#include <ktbase/platform.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <stdexcept>
#include <string>

namespace {

constexpr unsigned kKeyBytes = 256;
constexpr unsigned kSignatureBytes = 40;
constexpr unsigned kPieceBytes = 1 << 16;

class InputFile {
public:
    explicit InputFile(const char* path)
        : path_(path), handle_(KtOpenFile(path, O_RDONLY, O_CLOEXEC, 0)) {
        if (handle_ == -1) fail();
    }
    InputFile(const InputFile&) = delete;
    InputFile& operator=(const InputFile&) = delete;
    ~InputFile() { KtCloseFile(handle_); }

    // Returns the bytes read, fewer than `size` only at the end of the file.
    unsigned read(unsigned char* buffer, unsigned size) {
        unsigned filled = 0;
        while (filled < size) {
            const int got = KtReadFile(handle_, buffer + filled, size - filled);
            if (got == -1 && errno == EINTR) continue;
            if (got == -1) fail();
            if (got == 0) break;
            filled += static_cast<unsigned>(got);
        }
        return filled;
    }

private:
    [[noreturn]] void fail() const {
        throw std::runtime_error(path_ + ": " + std::strerror(errno));
    }

    std::string path_;
    KtFileHandle handle_;
};

template <unsigned kSize>
struct Blob {
    unsigned char bytes[kSize + 1];  // one more byte, to detect a longer file

    Blob(const char* path, const char* kind) {
        if (InputFile(path).read(bytes, sizeof bytes) != kSize)
            throw std::runtime_error(std::string(path) + ": not a " + kind + ", which has " +
                                     std::to_string(kSize) + " bytes");
    }
};

HASH_CTX digest_file(const char* path) {
    static unsigned char piece[kPieceBytes];
    InputFile file(path);
    HASH_CTX ctx;
    InitHash(&ctx);
    while (const unsigned size = file.read(piece, sizeof piece)) HashBuf(piece, size, &ctx);
    EndHash(&ctx);
    return ctx;
}

const char* verdict(int code) {
    switch (code) {
        case 0:
            return "valid";
        case 0x707:
            return "r or s is zero";
        case 0x7707:
            return "r or s out of range";
        default:
            return "signature does not match";
    }
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 4) {
        std::fprintf(stderr, "usage: verify_file PUB FILE SIG\n");
        return 2;
    }
    try {
        Blob<kKeyBytes> key(argv[1], "public key");
        Blob<kSignatureBytes> signature(argv[3], "signature");
        HASH_CTX digest = digest_file(argv[2]);
        const int code = CheckSignature(key.bytes, signature.bytes, &digest);
        std::puts(verdict(code));
        if (std::fflush(stdout) != 0)
            throw std::runtime_error(std::string("standard output: ") + std::strerror(errno));
        return code == 0 ? 0 : 1;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "verify_file: %s\n", error.what());
        return 2;
    }
}
