#include "message_digest.h"

#include <cstdint>
#include <vector>

#include "input_files.h"
#include "messages.h"
#include "progress.h"

namespace {

constexpr std::size_t kPieceBytes = 1 << 16;
// The digest of a longer message is not the one of FIPS 180.
constexpr std::uint64_t kTooLong = std::uint64_t{1} << 29;

void require_digestible(const InputFile& file, std::uint64_t size) {
    if (size >= kTooLong) throw Failure(file.name(), "too long; the limit is 2^29 - 1 bytes");
}

}  // namespace

HASH_CTX digest_file(const std::string& name) {
    InputFile file(name);
    require_digestible(file, file.size().value_or(0));
    Progress progress(file.size().value_or(0));
    std::vector<unsigned char> piece(kPieceBytes);
    HASH_CTX digest;
    InitHash(&digest);
    std::uint64_t done = 0;
    while (const std::size_t size = file.read(piece)) {
        done += size;
        require_digestible(file, done);
        HashBuf(piece.data(), static_cast<unsigned>(size), &digest);
        progress.show(done);
    }
    file.require_unchanged();
    EndHash(&digest);
    return digest;
}
