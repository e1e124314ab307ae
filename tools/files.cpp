#include "files.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <utility>
#include <vector>

namespace {

constexpr std::size_t kPieceBytes = 1 << 16;
constexpr mode_t kOwnerOnly = 0600;
constexpr mode_t kEverybody = 0666;  // less the umask
constexpr mode_t kPermissions = 07777;

mode_t current_umask() {
    const mode_t mask = umask(0);
    umask(mask);
    return mask;
}

[[noreturn]] void fail(const std::string& path) {
    throw FileError(path, std::strerror(errno));
}

class Descriptor {
public:
    // Takes over what was opened for `path`; -1 is a failure.
    Descriptor(int fd, const std::string& path) : fd_(fd) {
        if (fd_ == -1) fail(path);
    }
    Descriptor(const std::string& path, int flags, mode_t mode = 0)
        : Descriptor(open(path.c_str(), flags | O_CLOEXEC, mode), path) {}
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    ~Descriptor() {
        if (fd_ != -1) close(fd_);
    }

    int get() const { return fd_; }
    // Writes all of `content` and closes; false with errno set when either fails.
    bool write_and_close(ConstBytes content) {
        while (!content.empty()) {
            const ssize_t written = write(fd_, content.data(), content.size());
            if (written == -1 && errno == EINTR) continue;
            if (written == -1) return false;
            content = content.subspan(static_cast<std::size_t>(written));
        }
        return close(std::exchange(fd_, -1)) == 0;
    }

private:
    int fd_;
};

// Removes a file that did not become what it should, unless it is kept.
class Provisional {
public:
    explicit Provisional(std::string path) : path_(std::move(path)) {}
    Provisional(const Provisional&) = delete;
    Provisional& operator=(const Provisional&) = delete;
    ~Provisional() {
        if (!kept_) unlink(path_.c_str());
    }
    void keep() { kept_ = true; }

private:
    std::string path_;
    bool kept_ = false;
};

}  // namespace

void read_pieces(const std::string& path,
                 const std::function<void(std::span<unsigned char>)>& take) {
    const Descriptor file(path, O_RDONLY);
    std::vector<unsigned char> piece(kPieceBytes);
    for (;;) {
        const ssize_t size = read(file.get(), piece.data(), piece.size());
        if (size == -1 && errno == EINTR) continue;
        if (size == -1) fail(path);
        if (size == 0) return;
        take(std::span(piece).first(static_cast<std::size_t>(size)));
    }
}

bool same_file(const std::string& a, const std::string& b) {
    struct stat of_a;
    struct stat of_b;
    return stat(a.c_str(), &of_a) == 0 && stat(b.c_str(), &of_b) == 0 &&
           of_a.st_dev == of_b.st_dev && of_a.st_ino == of_b.st_ino;
}

void create_file(const std::string& path, ConstBytes content, Readers readers) {
    const bool secret = readers == Readers::owner;
    Descriptor file(path, O_WRONLY | O_CREAT | O_EXCL, secret ? kOwnerOnly : kEverybody);
    Provisional created(path);
    // Whatever the umask took away, the owner can read a key.
    if (secret && fchmod(file.get(), kOwnerOnly) == -1) fail(path);
    if (!file.write_and_close(content)) fail(path);
    created.keep();
}

void replace_file(const std::string& path, ConstBytes content) {
    struct stat status;
    mode_t mode = kEverybody & ~current_umask();
    std::string target = path;
    if (stat(path.c_str(), &status) == 0) {
        if (!S_ISREG(status.st_mode)) {
            // A terminal, a pipe: there is nothing to replace. A directory is refused here.
            if (!Descriptor(path, O_WRONLY).write_and_close(content)) fail(path);
            return;
        }
        mode = status.st_mode & kPermissions;
        target = std::filesystem::canonical(path);
    }
    std::string beside = std::filesystem::path(target).replace_filename(".ktsign-XXXXXX");
    Descriptor file(mkostemp(beside.data(), O_CLOEXEC), path);
    const Provisional created(beside);
    if (fchmod(file.get(), mode) == -1 || !file.write_and_close(content)) fail(path);
    // Renamed, it is gone from where it would be removed.
    if (std::rename(beside.c_str(), target.c_str()) == -1) fail(path);
}
