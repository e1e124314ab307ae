// The entries of one directory that match a wildcard mask, in the order of the stream.
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
constexpr off64_t kLargestSize = off64_t{1} << 31;  // still passes

class ErrnoKeeper {
public:
    ErrnoKeeper() : kept_(errno) {}
    ~ErrnoKeeper() { errno = kept_; }
    ErrnoKeeper(const ErrnoKeeper&) = delete;
    ErrnoKeeper& operator=(const ErrnoKeeper&) = delete;

private:
    int kept_;
};

// Keeps the name of the process locale in `kept` and switches the process to "C". A locale without
// a name could not be restored, so it stays. False when there is no memory for the name.
bool enter_c_locale(char*& kept) {
    const char* const name = std::setlocale(LC_ALL, nullptr);
    if (name == nullptr) return true;
    kept = strdup(name);
    if (kept == nullptr) return false;
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

// Makes the next entry that the mask takes the current one. False when the stream has no more of
// them, with errno as it was, or cannot be read, with the stream's errno.
bool advance(DIR* stream, Dirent* found) {
    const int errno_before = errno;
    do {
        errno = 0;  // only this tells a read error from the end
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

// Releases what there is of an enumeration and leaves errno alone.
void release(DIR* stream, Dirent* found) {
    const ErrnoKeeper keeper;
    delete found;
    if (stream == nullptr) return;
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
        // It takes memory for a locale other than "C"; what failed once may be had now.
        if (std::setlocale(LC_ALL, oldLocale) == nullptr) std::setlocale(LC_ALL, oldLocale);
        std::free(oldLocale);
    }
    // Volatile, or the store into a dying object would be dropped.
    static_cast<volatile std::int32_t&>(isLink) = 0;
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
    const ErrnoKeeper keeper;
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
        release(nullptr, current);
        errno = ENOMEM;
        return kNoFind;
    }
    DIR* const stream = opendir(current->dir);
    if (stream == nullptr) {
        release(nullptr, current);
        return kNoFind;
    }
    ++SYS_OPENFILES;
    errno = 0;  // whatever the locale switch and the open left
    if (!advance(stream, current)) {
        if (errno == 0) errno = ENOENT;
        release(stream, current);
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
        release(nullptr, found);
        return -1;
    }
    if (find == kNoFind || found == nullptr) return -1;
    if (advance(stream, found)) return 0;
    release(stream, found);
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
