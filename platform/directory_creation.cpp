// One directory, or a chain of them down to a backslash-separated path.
#include <ktbase/platform.h>
#include <sys/stat.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <memory>

namespace {

constexpr char kSeparator = '\\';

struct FreeKeepingErrno {
    void operator()(char* text) const {
        const int kept = errno;
        std::free(text);
        errno = kept;
    }
};

// The first position at which the path may be cut.
std::size_t scan_start(const char* path) {
    if (path[0] == kSeparator && path[1] == kSeparator) return 2;  // no cut before the server's end
    const bool has_drive = path[1] == ':' && path[2] == kSeparator;
    return has_drive ? 3 : 0;
}

// Ends `text`, `length` characters long, at its last separator at or after `start`; `length`
// becomes the position of the cut. False when there is no such separator.
bool cut_last_component(char* text, std::size_t start, std::size_t& length) {
    for (std::size_t i = length; i > start; --i) {
        if (text[i - 1] != kSeparator) continue;
        length = i - 1;
        text[length] = '\0';
        return true;
    }
    return false;
}

// Puts the separators back into `text`, which is cut at `length` and before `whole`, and creates
// each longer path on the way.
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
    const std::size_t start = scan_start(path);
    const std::size_t whole = std::strlen(path);
    std::size_t length = whole;
    std::unique_ptr<char, FreeKeepingErrno> copy;
    KtFileAttributes attributes = KtGetFileAttributes(path);
    if (attributes == -1) {
        copy.reset(strdup(path));
        if (copy == nullptr) return -1;
    }
    while (attributes == -1) {
        if (!cut_last_component(copy.get(), start, length)) {
            // Nothing on the path exists.
            if (KtMakeDirectory(copy.get()) == -1) return -1;
            return create_from(copy.get(), length, whole);
        }
        attributes = KtGetFileAttributes(copy.get());
    }
    if (KtIsDirectory(attributes) == 0) return -1;
    return create_from(copy.get(), length, whole);
}
