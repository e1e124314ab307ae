// Verifies a file that fits in memory, with one read and one call.
//
// The library accepts any key. `ktsign show PUB` prints whether the key is sound, and its
// fingerprint for a comparison with the vendor's.
//
//   verify_buffer PUB FILE SIG    exit status: 0 valid, 1 not valid, 2 something else went wrong
#include <fcntl.h>
#include <ktbase/longarith.h>
#include <ktbase/platform.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <vector>

namespace {

[[noreturn]] void fail(const char* path, const char* why) {
    std::fprintf(stderr, "verify_buffer: %s: %s\n", path, why);
    std::exit(2);
}

// Reads the whole file with one call. Refuses a file whose length differs from the bytes read.
std::vector<unsigned char> load(const char* path) {
    const KtFileHandle file = KtOpenFile(path, O_RDONLY, 0, 0);
    const int length = file == -1 ? -1 : KtGetFileLength(file);
    if (length == -1) fail(path, std::strerror(errno));
    std::vector<unsigned char> content(static_cast<unsigned>(length));
    unsigned char more = 0;
    if (KtReadFile(file, content.data(), static_cast<unsigned>(length)) != length ||
        KtReadFile(file, &more, 1) != 0)
        fail(path, "not a file that can be read at once");
    KtCloseFile(file);
    return content;
}

std::vector<unsigned char> load_blob(const char* path, std::size_t size) {
    std::vector<unsigned char> blob = load(path);
    if (blob.size() != size) fail(path, "not a blob of the right length");
    return blob;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 4) {
        std::fprintf(stderr, "usage: verify_buffer PUB FILE SIG\n");
        return 2;
    }
    std::vector<unsigned char> key = load_blob(argv[1], 256);
    std::vector<unsigned char> file = load(argv[2]);
    std::vector<unsigned char> signature = load_blob(argv[3], 40);
    const int verdict =
        CheckBufferSign(file.data(), static_cast<long>(file.size()), key.data(), signature.data());
    std::puts(verdict == 0 ? "valid" : "not valid");
    if (std::fflush(stdout) != 0) fail("standard output", std::strerror(errno));
    return verdict == 0 ? 0 : 1;
}
