// Creates one directory, or each missing directory of a backslash-separated path.
#include <ktbase/platform.h>
#include <sys/stat.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <memory>

namespace {

constexpr char kSeparator = '\\';
constexpr KtFileAttributes kUnknown = -1;

// free() may change errno in libc versions before 2.33.
struct FreePreservingErrno {
    void operator()(char* text) const {
        const int saved = errno;
        std::free(text);
        errno = saved;
    }
};

// Returns the first position at which the path may be cut.
std::size_t scan_start(const char* path) {
    // After two backslashes the server name follows. The path may be cut at the backslash after it.
    if (path[0] == kSeparator && path[1] == kSeparator) return 2;
    const bool has_drive = path[1] == ':' && path[2] == kSeparator;
    return has_drive ? 3 : 0;
}

// Replaces the last separator at or after `start` in `text` by a NUL. `length` is the length of
// `text` before and after. Returns false if there is no such separator.
bool cut_last_component(char* text, std::size_t start, std::size_t& length) {
    for (std::size_t i = length; i > start; --i) {
        if (text[i - 1] != kSeparator) continue;
        length = i - 1;
        text[length] = '\0';
        return true;
    }
    return false;
}

// Puts back each separator that was cut from `text`, from left to right, and creates the directory
// that `text` then names. `length` is the length of `text` now, `whole` its length before any cut.
int create_cut_components(char* text, std::size_t length, std::size_t whole) {
    while (length != whole) {
        text[length] = kSeparator;
        if (KtMakeDirectory(text) == -1) return -1;
        length += std::strlen(text + length);
    }
    return 0;
}

}  // namespace

int KtMakeDirectory(const char* path) {
    return mkdir(path, S_IRWXU);
}

int KtMakePath(const char* path) {
    if (path == nullptr || *path == '\0') return -1;
    KtFileAttributes attributes = KtGetFileAttributes(path);
    if (attributes != kUnknown) return KtIsDirectory(attributes) != 0 ? 0 : -1;

    const std::unique_ptr<char, FreePreservingErrno> copy(strdup(path));
    if (copy == nullptr) return -1;
    const std::size_t start = scan_start(path);
    const std::size_t whole = std::strlen(path);
    std::size_t length = whole;
    while (cut_last_component(copy.get(), start, length)) {
        attributes = KtGetFileAttributes(copy.get());
        if (attributes == kUnknown) continue;
        if (KtIsDirectory(attributes) == 0) return -1;
        return create_cut_components(copy.get(), length, whole);
    }
    // No part of the path exists.
    if (KtMakeDirectory(copy.get()) == -1) return -1;
    return create_cut_components(copy.get(), length, whole);
}
