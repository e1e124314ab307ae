// Enumerates the entries of one directory that match a wildcard mask, in the order of the stream.
#include <dirent.h>
#include <fnmatch.h>
#include <ktbase/platform.h>
#include <sys/stat.h>

#include <bit>
#include <cerrno>
#include <clocale>
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <new>
#include <string_view>

static_assert(sizeof(Dirent) == 48);
static_assert(offsetof(Dirent, oldLocale) == 4 && offsetof(Dirent, lastName) == 8 &&
              offsetof(Dirent, mask) == 12 && offsetof(Dirent, maskLen) == 16 &&
              offsetof(Dirent, dir) == 20 && offsetof(Dirent, dirLen) == 24 &&
              offsetof(Dirent, isLink) == 28 && offsetof(Dirent, size) == 32 &&
              offsetof(Dirent, attr) == 36 && offsetof(Dirent, targetAttr) == 40 &&
              offsetof(Dirent, error) == 44);

namespace {

constexpr KtFindHandle kNoFind = -1;
constexpr KtFileAttributes kUnknown = -1;
constexpr std::int32_t kUnknownSize = -1;
constexpr off64_t kLargestSize = off64_t{1} << 31;  // a file of this size is not too large

// Restores errno at the end of its scope.
class ErrnoGuard {
public:
    ErrnoGuard() : saved_(errno) {}
    ~ErrnoGuard() { errno = saved_; }
    ErrnoGuard(const ErrnoGuard&) = delete;
    ErrnoGuard& operator=(const ErrnoGuard&) = delete;

private:
    int saved_;
};

// Copies the name of the process locale to `old_name` and sets the locale to "C". Leaves the locale
// as it is if its name cannot be queried, because it could not be restored. Returns false if there
// is no memory for the copy.
bool enter_c_locale(char*& old_name) {
    const char* const name = std::setlocale(LC_ALL, nullptr);
    if (name == nullptr) return true;
    old_name = strdup(name);
    if (old_name == nullptr) return false;
    std::setlocale(LC_ALL, "C");
    return true;
}

char* new_text(std::string_view text) {
    char* const copy = new (std::nothrow) char[text.size() + 1];
    if (copy != nullptr) copy[text.copy(copy, text.size())] = '\0';
    return copy;
}

std::int32_t low_word(off64_t size) {
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(size));
}

bool is_complete(const Dirent* found) {
    return found != nullptr && found->mask != nullptr && found->dir != nullptr;
}

bool is_dot_directory(Dirent* found) {
    const std::string_view name = found->entry->d_name;
    return (name == "." || name == "..") && KtIsDirectory(KtFindGetFileAttributes(found)) != 0;
}

// Reads entries until one matches the mask, and queries its attributes. Returns false at the end of
// the stream, with errno unchanged, and on a read error, with the errno of the error.
bool read_next_match(DIR* stream, Dirent* found) {
    const int errno_before = errno;
    do {
        found->isLink = 0;
        errno = 0;  // readdir64 returns null at the end and on an error, and sets errno on an error
        found->entry = readdir64(stream);
        if (found->entry == nullptr) {
            if (errno == 0) errno = errno_before;
            return false;
        }
    } while (fnmatch(found->mask, found->entry->d_name, FNM_NOESCAPE) != 0);
    errno = errno_before;
    found->setAttr();
    return true;
}

void destroy(Dirent* found) {
    const ErrnoGuard guard;
    delete found;
}

void close_stream(DIR* stream) {
    const ErrnoGuard guard;
    if (SYS_OPENFILES > 0) --SYS_OPENFILES;
    closedir(stream);
}

}  // namespace

Dirent::Dirent(const char* pattern) {
    const char* const slash = std::strrchr(pattern, '/');
    if (!enter_c_locale(oldLocale)) return;
    const std::string_view name = slash == nullptr ? pattern : slash + 1;
    std::string_view directory = "./";
    dirLen = 2;
    if (slash != nullptr) {
        directory = slash == pattern ? "/" : std::string_view(pattern, slash - pattern);
        dirLen = directory.size() + 1;
    }
    maskLen = name.size() + 1;
    mask = new_text(name);
    dir = new_text(directory);
}

Dirent::~Dirent() {
    if (oldLocale != nullptr) {
        // setlocale needs memory for a locale other than "C". A second call may get it.
        if (std::setlocale(LC_ALL, oldLocale) == nullptr) std::setlocale(LC_ALL, oldLocale);
        std::free(oldLocale);
    }
    delete[] mask;
    delete[] dir;
    delete[] lastName;
}

int Dirent::setLastName() {
    delete[] lastName;
    lastName = nullptr;
    if (entry == nullptr || dir == nullptr) return 0;
    lastName = new (std::nothrow) char[std::strlen(entry->d_name) + dirLen + 3];
    if (lastName == nullptr) {
        error = ENOMEM;
        return 0;
    }
    std::strcpy(stpcpy(stpcpy(lastName, dir), "/"), entry->d_name);
    return 1;
}

void Dirent::setAttr() {
    const ErrnoGuard guard;
    size = kUnknownSize;
    attr = targetAttr = kUnknown;
    error = 0;
    isLink = 0;
    if (setLastName() == 0) return;

    struct stat64 status;
    if (lstat64(lastName, &status) == -1) {
        error = errno;
        return;
    }
    attr = static_cast<KtFileAttributes>(status.st_mode);
    if (S_ISLNK(status.st_mode)) {
        isLink = 1;
        struct stat64 target;
        if (stat64(lastName, &target) == -1)
            error = errno;
        else
            status = target;
    }
    targetAttr = static_cast<KtFileAttributes>(status.st_mode);
    size = low_word(status.st_size);
    if (status.st_size > kLargestSize) {
        size = kUnknownSize;
        attr = targetAttr = kUnknown;
        isLink = 0;
        error = EOVERFLOW;
    }
}

const char* Dirent::getLastName() {
    if (lastName == nullptr) setLastName();
    return lastName;
}

KtFindHandle KtFindFirst(const char* pattern, Dirent** found) {
    errno = 0;
    if (found == nullptr) return kNoFind;
    if (SYS_OPENFILES >= SYS_MAXFILES) {
        errno = EMFILE;
        return kNoFind;
    }
    Dirent* const current = new (std::nothrow) Dirent(pattern);
    if (!is_complete(current)) {
        delete current;
        errno = ENOMEM;
        return kNoFind;
    }
    DIR* const stream = opendir(current->dir);
    if (stream == nullptr) {
        destroy(current);
        return kNoFind;
    }
    ++SYS_OPENFILES;
    errno = 0;  // setlocale and opendir may set it although they succeed
    if (!read_next_match(stream, current)) {
        if (errno == 0) errno = ENOENT;
        close_stream(stream);
        destroy(current);
        return kNoFind;
    }
    *found = current;
    const KtFindHandle find = std::bit_cast<KtFindHandle>(stream);
    while (is_dot_directory(current))
        if (KtFindNext(find, current) == -1) return kNoFind;
    return find;
}

int KtFindNext(KtFindHandle find, Dirent* found) {
    DIR* const stream = std::bit_cast<DIR*>(find);
    if (stream == nullptr) {
        destroy(found);
        return -1;
    }
    if (find == kNoFind || found == nullptr) return -1;
    if (read_next_match(stream, found)) return 0;
    destroy(found);
    close_stream(stream);
    return -1;
}

int KtFindClose(KtFindHandle /*find*/, Dirent** /*found*/) {
    return 0;
}

const char* KtFindGetFileName(Dirent* found) {
    return found == nullptr || found->entry == nullptr ? nullptr : found->entry->d_name;
}

KtFileAttributes KtFindGetFileAttributes(Dirent* found) {
    if (found == nullptr || found->attr == kUnknown) return kUnknown;
    if (!S_ISLNK(found->attr)) return found->attr;
    found->isLink = 1;
    return bFollowLinks != 0 ? found->targetAttr : found->attr;
}

std::int32_t KtFindGetFileSize(Dirent* found) {
    return found == nullptr ? kUnknownSize : found->size;
}
