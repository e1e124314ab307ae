#include "output_files.h"

#include <fcntl.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <utility>
#include <vector>

#include "input_files.h"
#include "messages.h"

namespace {

constexpr char kOpenFiles[] = "/proc/self/fd/";
constexpr std::size_t kStemBytes = 200;  // of a temporary name, which has at most 255
constexpr mode_t kOwnerOnly = 0600;
constexpr mode_t kEverybody = 0666;  // the umask clears some of these bits
constexpr mode_t kPermissions = 0777;

mode_t mode_of_new_file() {
    const mode_t mask = umask(0);
    umask(mask);
    return kEverybody & ~mask;
}

class BlockedSignals {
public:
    BlockedSignals() {
        sigset_t all;
        sigfillset(&all);
        sigprocmask(SIG_BLOCK, &all, &before_);
    }
    BlockedSignals(const BlockedSignals&) = delete;
    BlockedSignals& operator=(const BlockedSignals&) = delete;
    ~BlockedSignals() { sigprocmask(SIG_SETMASK, &before_, nullptr); }

private:
    sigset_t before_;
};

void write_all(int fd, ConstBytes content, const std::string& name) {
    while (!content.empty()) {
        const ssize_t written = write(fd, content.data(), content.size());
        if (written == -1 && errno == EINTR) continue;
        if (written == -1) fail_with_errno(name);
        content = content.subspan(static_cast<std::size_t>(written));
    }
}

void sync_file(int fd, const std::string& name) {
    if (fsync(fd) == -1) fail_with_errno(name);
}

constexpr uid_t kUnchanged = -1;  // fchown keeps the owner

struct Access {
    mode_t mode;
    uid_t owner = kUnchanged;
    gid_t group = kUnchanged;
};

// A complete file on the disk that does not have its name yet.
class StagedFile {
public:
    StagedFile(const std::string& name, ConstBytes content, Access access, bool replaces)
        : name_(name), base_(std::filesystem::path(name).filename()) {
        const std::string parent = std::filesystem::path(name).parent_path();
        directory_ = Descriptor(
            open(parent.empty() ? "." : parent.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
        if (directory_.get() == -1) fail_with_errno(name_);
        if (!replaces) open_unnamed();
        if (file_.get() == -1) open_temporary(parent);
        try {
            set_access(access);
            write_all(file_.get(), content, name_);
            sync_file(file_.get(), name_);
        } catch (...) {
            remove_temporary();
            throw;
        }
    }
    StagedFile(const StagedFile&) = delete;
    StagedFile& operator=(const StagedFile&) = delete;
    ~StagedFile() { remove_temporary(); }

    // Gives the file its name, which must not exist.
    void create() {
        if (give_name() == -1) fail_with_errno(name_);
        try {
            sync_directory();
        } catch (...) {
            withdraw();
            throw;
        }
    }
    // Removes what create() made.
    void withdraw() const { unlinkat(directory_.get(), base_.c_str(), 0); }

    // Gives the file its name, and replaces the file that has this name.
    void replace() {
        if (renameat(AT_FDCWD, temporary_.c_str(), directory_.get(), base_.c_str()) == -1)
            fail_with_errno(name_);
        temporary_.clear();
        sync_directory();
    }

    void sync_directory() const {
        // EINVAL: the file system does not support the sync of a directory.
        if (fsync(directory_.get()) == -1 && errno != EINVAL) fail_with_errno(name_);
    }

private:
    // The system removes a file without a name at the end of the process. Some file systems do not
    // support such files. A link from /proc gives such a file its name.
    void open_unnamed() {
        if (access(kOpenFiles, F_OK) == -1) return;
        file_ =
            Descriptor(openat(directory_.get(), ".", O_TMPFILE | O_WRONLY | O_CLOEXEC, kOwnerOnly));
        if (file_.get() == -1 && errno != EOPNOTSUPP && errno != EISDIR) fail_with_errno(name_);
    }
    void open_temporary(const std::string& parent) {
        const std::string stem = base_.substr(0, kStemBytes);
        temporary_ = std::filesystem::path(parent) / ("." + stem + ".ktsign-XXXXXX");
        file_ = Descriptor(mkostemp(temporary_.data(), O_CLOEXEC));
        if (file_.get() == -1) {
            temporary_.clear();
            fail_with_errno(name_);
        }
    }
    void remove_temporary() const {
        if (!temporary_.empty()) unlink(temporary_.c_str());
    }

    void set_access(const Access& access) const {
        struct stat status;
        if (fstat(file_.get(), &status) == -1) fail_with_errno(name_);
        const bool kept = access.owner == kUnchanged ||
                          (access.owner == status.st_uid && access.group == status.st_gid);
        if (!kept && fchown(file_.get(), access.owner, access.group) == -1)
            throw Failure(name_, "its owner cannot be kept: " + std::string(std::strerror(errno)));
        if (fchmod(file_.get(), access.mode) == -1) fail_with_errno(name_);
    }

    int give_name() {
        std::string from = temporary_;
        if (from.empty()) {
            from = kOpenFiles + std::to_string(file_.get());
        } else if (renameat2(AT_FDCWD, from.c_str(), directory_.get(), base_.c_str(),
                             RENAME_NOREPLACE) == 0) {
            temporary_.clear();
            return 0;
        } else if (errno != EINVAL) {  // EINVAL: the file system does not support the flag
            return -1;
        }
        return linkat(AT_FDCWD, from.c_str(), directory_.get(), base_.c_str(), AT_SYMLINK_FOLLOW);
    }

    std::string name_;
    std::string base_;
    Descriptor directory_;
    Descriptor file_;
    std::string temporary_;  // empty: the file has no name
};

void write_through(const std::string& name, ConstBytes content) {
    const Descriptor file(open(name.c_str(), O_WRONLY | O_NOCTTY | O_CLOEXEC));
    if (file.get() == -1) fail_with_errno(name);
    write_all(file.get(), content, name);
}

bool has_content(const std::string& name, ConstBytes content) {
    try {
        InputFile file(name);
        std::vector<unsigned char> bytes(content.size() + 1);
        bytes.resize(file.read(bytes));
        return std::equal(bytes.begin(), bytes.end(), content.begin(), content.end());
    } catch (const Failure&) {
        return false;
    }
}

FileIdentity identity_of(const struct stat& status) {
    return {status.st_dev, status.st_ino};
}

bool is_standard_output(const struct stat& status) {
    struct stat output;
    return fstat(STDOUT_FILENO, &output) == 0 && identity_of(output) == identity_of(status);
}

}  // namespace

bool name_exists(const std::string& name) {
    struct stat status;
    if (lstat(name.c_str(), &status) == 0) return true;
    if (errno != ENOENT) fail_with_errno(name);
    return false;
}

std::optional<FileIdentity> file_identity(const std::string& name) {
    struct stat status;
    if (stat(name.c_str(), &status) == 0) return identity_of(status);
    if (errno != ENOENT) fail_with_errno(name);
    return std::nullopt;
}

OutputFile::OutputFile(const std::string& name, Replacement replacement)
    : name_(name), replacement_(std::move(replacement)), state_(query()) {}

std::optional<FileIdentity> OutputFile::identity() const {
    if (!state_.status) return std::nullopt;
    return identity_of(*state_.status);
}

OutputFile::State OutputFile::query() const {
    State state = {name_, std::nullopt};
    if (name_ == "-") return state;
    struct stat status;
    if (lstat(name_.c_str(), &status) == -1) {
        if (errno != ENOENT) fail_with_errno(name_);
        return state;
    }
    if (S_ISLNK(status.st_mode)) {
        if (stat(name_.c_str(), &status) == -1) {
            if (errno == ENOENT) throw Failure(name_, "a symbolic link without a target");
            fail_with_errno(name_);
        }
        std::error_code error;
        state.target = std::filesystem::canonical(name_, error);
        if (error && S_ISREG(status.st_mode)) throw Failure(name_, error.message());
    }
    require_replaceable(status);
    state.status = status;
    return state;
}

void OutputFile::require_replaceable(const struct stat& status) const {
    if (S_ISFIFO(status.st_mode) || S_ISCHR(status.st_mode)) return;
    if (S_ISDIR(status.st_mode)) {
        errno = EISDIR;
        fail_with_errno(name_);
    }
    if (!S_ISREG(status.st_mode)) throw Failure(name_, "not a regular file");
    // A replaced file would be another one than the file that standard output is open for.
    if (is_standard_output(status)) throw Failure(name_, "is standard output; its name is -");
    const bool replaceable = status.st_size == 0 || status.st_size == replacement_.size;
    if (!replaceable && !replacement_.forced)
        throw Failure(name_, "exists and is not " + replacement_.kind + "; --force replaces it");
}

void OutputFile::write(ConstBytes content) const {
    if (name_ == "-") {
        write_all(STDOUT_FILENO, content, "standard output");
        struct stat status;
        if (fstat(STDOUT_FILENO, &status) == 0 && S_ISREG(status.st_mode))
            sync_file(STDOUT_FILENO, "standard output");
        return;
    }
    // Query again: the file may have changed while ktsign digested a large input.
    const State now = query();
    if (now.status && !S_ISREG(now.status->st_mode)) return write_through(name_, content);
    const BlockedSignals blocked;
    if (!now.status) {
        StagedFile(now.target, content, {.mode = mode_of_new_file()}, false).create();
        return;
    }
    const struct stat& replaced = *now.status;
    const Access access = {replaced.st_mode & kPermissions, replaced.st_uid, replaced.st_gid};
    StagedFile(now.target, content, access, true).replace();
}

void create_key_pair(const std::string& private_name, ConstBytes private_key,
                     const std::string& public_name, ConstBytes public_key) {
    const BlockedSignals blocked;
    StagedFile private_file(private_name, private_key, {.mode = kOwnerOnly}, false);
    StagedFile public_file(public_name, public_key, {.mode = mode_of_new_file()}, false);
    private_file.create();
    try {
        public_file.create();
    } catch (...) {
        // A second run may have taken the private key for the remains of a killed run, and may have
        // completed the pair.
        if (has_content(public_name, public_key)) return public_file.sync_directory();
        private_file.withdraw();
        throw;
    }
}
