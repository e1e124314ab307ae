// Prints the MD5 of files in the format of md5sum, with the same escapes in names.
//
//   md5sum [FILE]...    "-" or no FILE: standard input; exit status: 0, or 1 when a file failed
#include <fcntl.h>
#include <ktbase/digest.h>
#include <ktbase/platform.h>
#include <ktbase/text.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <string>

namespace {

constexpr unsigned kPieceBytes = 1 << 16;
constexpr unsigned kDigestBytes = 16;

// Returns false with errno set when a read fails.
bool digest_to_end(KtFileHandle file, unsigned char* digest) {
    static unsigned char piece[kPieceBytes];
    MD5_CTX ctx;
    MD5Init(&ctx);
    int got = 0;
    while ((got = KtReadFile(file, piece, sizeof piece)) != 0) {
        if (got == -1 && errno != EINTR) return false;
        if (got != -1) MD5Update(&ctx, piece, static_cast<unsigned>(got));
    }
    MD5Final(digest, &ctx);
    return true;
}

bool digest_file(const char* name, unsigned char* digest) {
    if (std::strcmp(name, "-") == 0) return digest_to_end(0, digest);
    const KtFileHandle file = KtOpenFile(name, O_RDONLY, O_CLOEXEC, 0);
    if (file == -1) return false;
    const bool whole = digest_to_end(file, digest);
    const int reason = errno;
    KtCloseFile(file);
    errno = reason;
    return whole;
}

std::string escaped(const std::string& name) {
    std::string text;
    for (const char c : name) {
        if (c == '\n' || c == '\r' || c == '\\') text += '\\';
        text += c == '\n' ? 'n' : c == '\r' ? 'r' : c;
    }
    return text;
}

bool print_digest(const char* name) {
    unsigned char digest[kDigestBytes];
    if (!digest_file(name, digest)) {
        std::fprintf(stderr, "md5sum: %s: %s\n", name, std::strerror(errno));
        return false;
    }
    char hex[2 * kDigestBytes + 1];
    BufToHexString(digest, kDigestBytes, hex);
    std::string digits = hex;
    ConvertToLowerCase(digits);
    const std::string shown = escaped(name);
    std::printf("%s%s  %s\n", shown == name ? "" : "\\", digits.c_str(), shown.c_str());
    return true;
}

}  // namespace

int main(int argc, char** argv) {
    int status = 0;
    if (argc < 2 && !print_digest("-")) status = 1;
    for (int i = 1; i < argc; ++i)
        if (!print_digest(argv[i])) status = 1;
    if (std::fflush(stdout) == 0) return status;
    std::perror("md5sum: standard output");
    return 1;
}
