// The attribute word of a path.
#include <ktbase/platform.h>
#include <sys/stat.h>

#include <cerrno>

unsigned char bFollowLinks = 1;

namespace {
constexpr KtFileAttributes kUnknown = -1;
}  // namespace

KtFileAttributes KtGetFileAttributes(const char* path) {
    // lstat64 is declared nonnull, so the compiler may assume that a path passed to it is not null.
    // The system call itself fails with EFAULT.
    if (path == nullptr) {
        errno = EFAULT;
        return kUnknown;
    }
    if (*path == '\0') path = ".";
    struct stat64 status;
    if (lstat64(path, &status) == -1) return kUnknown;
    if (S_ISLNK(status.st_mode) && bFollowLinks != 0 && stat64(path, &status) == -1)
        return kUnknown;
    return static_cast<KtFileAttributes>(status.st_mode);
}

int KtIsDirectory(KtFileAttributes attributes) {
    return S_ISDIR(attributes) ? 1 : 0;  // -1 has all type bits set, which is the code of no type
}

int KtSetFileAttributes(const char* /*path*/, KtFileAttributes /*attributes*/) {
    return 0;
}
