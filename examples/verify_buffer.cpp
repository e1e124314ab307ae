// The shortest way to verify a file that fits in memory: one read, one call, yes or no.
//
//   verify_buffer PUB FILE SIG    exit status: 0 valid, 1 not valid, 2 something else went wrong
#include <fcntl.h>
#include <ktbase/longarith.h>
#include <ktbase/platform.h>

#include <cstdio>
#include <vector>

namespace {

bool load(const char* path, std::vector<unsigned char>& content) {
    const KtFileHandle file = KtOpenFile(path, O_RDONLY, 0, 0);
    if (file == -1) return false;
    const int length = KtGetFileLength(file);
    bool whole = length >= 0;
    if (whole) {
        content.resize(static_cast<unsigned>(length));
        whole = KtReadFile(file, content.data(), static_cast<unsigned>(length)) == length;
    }
    KtCloseFile(file);
    return whole;
}

}  // namespace

int main(int argc, char** argv) {
    std::vector<unsigned char> key;
    std::vector<unsigned char> file;
    std::vector<unsigned char> signature;
    if (argc != 4 || !load(argv[1], key) || key.size() != 256 || !load(argv[2], file) ||
        !load(argv[3], signature) || signature.size() != 40) {
        std::fprintf(stderr, "verify_buffer: needs a public key, a file and a signature\n");
        return 2;
    }
    const int verdict =
        CheckBufferSign(file.data(), static_cast<long>(file.size()), key.data(), signature.data());
    std::puts(verdict == 0 ? "valid" : "not valid");
    return verdict == 0 ? 0 : 1;
}
