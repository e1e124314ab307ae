// Files through plain descriptors, counted against the process-wide open-file budget.
#include <fcntl.h>
#include <ktbase/platform.h>
#include <sys/stat.h>
#include <unistd.h>

std::int32_t SYS_OPENFILES = 0;
std::int32_t SYS_MAXFILES = 64;

namespace {
constexpr KtFileHandle kInvalidHandle = -1;
}  // namespace

KtFileHandle KtOpenFile(const char* path, int flags, int extra, int /*unused*/) {
    if (SYS_OPENFILES >= SYS_MAXFILES) return kInvalidHandle;
    // O_CREAT in `flags` alone decides whether open() receives a mode. The system ignores the type
    // bit of the mode, S_IFREG.
    const KtFileHandle file = (flags & O_CREAT) != 0
                                  ? open(path, flags | extra, S_IFREG | S_IRUSR | S_IWUSR)
                                  : open(path, flags | O_LARGEFILE | extra);
    if (file == kInvalidHandle) return kInvalidHandle;
    ++SYS_OPENFILES;
    return file;
}

int KtReadFile(KtFileHandle file, void* buffer, unsigned size) {
    if (file == kInvalidHandle) return -1;
    return read(file, buffer, size);
}

int KtWriteFile(KtFileHandle file, const void* buffer, unsigned size) {
    if (file == kInvalidHandle) return -1;
    return write(file, buffer, size);
}

std::int32_t KtSeekFile(KtFileHandle file, std::int32_t offset, int origin) {
    if (file == kInvalidHandle) return -1;
    return lseek(file, offset, origin);
}

std::int32_t KtGetFileLength(KtFileHandle file) {
    struct stat status;  // 32-bit: fstat fails with EOVERFLOW above 2 GiB - 1
    if (fstat(file, &status) == -1) return -1;
    return status.st_size;
}

int KtCloseFile(KtFileHandle file) {
    if (file == kInvalidHandle) return -1;
    if (SYS_OPENFILES != 0) --SYS_OPENFILES;
    return close(file);
}
