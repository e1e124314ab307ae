// Files that ktsign reads. The name "-" is standard input.
#ifndef KTBASE_TOOLS_INPUT_FILES_H
#define KTBASE_TOOLS_INPUT_FILES_H

#include <sys/stat.h>

#include <array>
#include <cstdint>
#include <optional>
#include <span>
#include <string>

#include "descriptor.h"
#include "messages.h"
#include "secrets.h"

class InputFile {
public:
    explicit InputFile(const std::string& name);  // all functions throw Failure

    const std::string& name() const { return name_; }
    const struct stat& status() const { return status_; }
    std::optional<std::uint64_t> size() const;  // of a regular file

    // Fills `buffer`. Returns the bytes read, fewer than its size only at the end of the file.
    std::size_t read(std::span<unsigned char> buffer);
    // Throws Failure if the size, the time of modification or the time of change differs from that
    // at the open. Accepts any file that is not regular.
    void require_unchanged() const;

private:
    struct stat query() const;

    std::string name_;
    Descriptor descriptor_;
    struct stat status_;
};

// Reads a whole file of at most `limit` bytes. Throws Failure with `too_long` for a longer one.
SecretBytes read_at_most(InputFile& file, std::size_t limit, const std::string& too_long);

// Reads a file of exactly kSize bytes.
template <std::size_t kSize>
std::array<unsigned char, kSize> read_blob(const std::string& name, const std::string& kind) {
    const std::string reason = "not a " + kind + ", which has " + std::to_string(kSize) + " bytes";
    InputFile file(name);
    std::array<unsigned char, kSize> blob;
    std::array<unsigned char, 1> beyond;
    if (file.read(blob) != kSize || file.read(beyond) != 0) throw Failure(name, reason);
    return blob;
}

#endif
