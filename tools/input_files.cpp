#include "input_files.h"

#include <fcntl.h>

#include <cerrno>

#include "messages.h"

namespace {

bool equal(const timespec& a, const timespec& b) {
    return a.tv_sec == b.tv_sec && a.tv_nsec == b.tv_nsec;
}

}  // namespace

InputFile::InputFile(const std::string& name)
    : name_(name),
      descriptor_(name == "-" ? STDIN_FILENO
                              : open(name.c_str(), O_RDONLY | O_CLOEXEC | O_NOCTTY)) {
    if (descriptor_.get() == -1) fail_with_errno(name_);
    status_ = query();
}

struct stat InputFile::query() const {
    struct stat now;
    if (fstat(descriptor_.get(), &now) == -1) fail_with_errno(name_);
    return now;
}

std::optional<std::uint64_t> InputFile::size() const {
    if (!S_ISREG(status_.st_mode)) return std::nullopt;
    return static_cast<std::uint64_t>(status_.st_size);
}

std::size_t InputFile::read(std::span<unsigned char> buffer) {
    std::size_t filled = 0;
    while (filled < buffer.size()) {
        const ssize_t got = ::read(descriptor_.get(), &buffer[filled], buffer.size() - filled);
        if (got == -1 && errno == EINTR) continue;
        if (got == -1) fail_with_errno(name_);
        if (got == 0) break;
        filled += static_cast<std::size_t>(got);
    }
    return filled;
}

void InputFile::require_unchanged() const {
    if (!S_ISREG(status_.st_mode)) return;
    const struct stat now = query();
    // A program can restore the time of modification, but not the time of change.
    if (now.st_size != status_.st_size || !equal(now.st_mtim, status_.st_mtim) ||
        !equal(now.st_ctim, status_.st_ctim))
        throw Failure(name_, "changed while it was read");
}

SecretBytes read_at_most(InputFile& file, std::size_t limit, const std::string& too_long) {
    SecretBytes content(limit + 1);
    content.resize(file.read(content));
    if (content.size() > limit) throw Failure(file.name(), too_long);
    return content;
}
