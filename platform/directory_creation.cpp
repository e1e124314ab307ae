// One directory, or a chain of them down to a backslash-separated path.
#include <ktbase/platform.h>
#include <sys/stat.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <memory>

namespace {

constexpr char kSeparator = '\\';

struct FreeAndKeepErrno {
    void operator()(char* text) const {
        const int saved = errno;
        std::free(text);
        errno = saved;
    }
};

// The first position at which the path may be cut.
std::size_t scan_start(const char* path) {
    if (path[0] == kSeparator && path[1] == kSeparator) return 2;  // the server's name stays whole
    const bool has_drive = path[1] == ':' && path[2] == kSeparator;
    return has_drive ? 3 : 0;
}

// Cuts `text`, which has `length` characters, at its last separator at or after `start`. Sets
// `length` to the position of the cut. Returns false when there is no such separator.
bool cut_last_component(char* text, std::size_t start, std::size_t& length) {
    for (std::size_t i = length; i > start; --i) {
        if (text[i - 1] != kSeparator) continue;
        length = i - 1;
        text[length] = '\0';
        return true;
    }
    return false;
}

// Restores the cut separators of `text` from position `length` up to `whole`, and creates the path
// that each of them completes.
int create_from(char* text, std::size_t length, std::size_t whole) {
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
    if (attributes != -1) return KtIsDirectory(attributes) != 0 ? 0 : -1;

    const std::unique_ptr<char, FreeAndKeepErrno> copy(strdup(path));
    if (copy == nullptr) return -1;
    const std::size_t start = scan_start(path);
    const std::size_t whole = std::strlen(path);
    std::size_t length = whole;
    while (attributes == -1) {
        if (!cut_last_component(copy.get(), start, length)) {
            // No part of the path exists.
            if (KtMakeDirectory(copy.get()) == -1) return -1;
            return create_from(copy.get(), length, whole);
        }
        attributes = KtGetFileAttributes(copy.get());
    }
    if (KtIsDirectory(attributes) == 0) return -1;
    return create_from(copy.get(), length, whole);
}
