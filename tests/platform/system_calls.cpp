#include "system_calls.h"

#include <dirent.h>
#include <dlfcn.h>
#include <fcntl.h>
#include <ktbase/platform.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <clocale>
#include <cstdarg>
#include <cstring>
#include <ctime>
#include <new>

Calls calls;

namespace {

bool fails(const char* name) {
    const int use = ++calls.made[name];
    if (name != calls.failing || use < calls.use) return false;
    if (use > calls.use && !calls.ever_after) return false;
    errno = calls.error;
    return true;
}

template <typename Result, typename... Parameters>
Result call(const char* name, std::type_identity_t<Result> failure, Result (*)(Parameters...),
            std::type_identity_t<Parameters>... given) {
    if (fails(name)) return failure;
    return reinterpret_cast<Result (*)(Parameters...)>(dlsym(RTLD_NEXT, name))(given...);
}

void trace(const std::string& what) {
    if (calls.trace != nullptr) *calls.trace += what + ' ';
}

}  // namespace

int open(const char* path, int flags, ...) {
    va_list rest;
    va_start(rest, flags);
    const unsigned mode = (flags & O_CREAT) != 0 ? va_arg(rest, unsigned) : 0;
    va_end(rest);
    char text[30];
    std::snprintf(text, sizeof text, "%x:%x", flags, mode);
    trace(text);
    if (fails("open")) return -1;
    return reinterpret_cast<decltype(&open)>(dlsym(RTLD_NEXT, "open"))(path, flags, mode);
}
ssize_t read(int file, void* buffer, size_t size) {
    return call("read", -1, read, file, buffer, size);
}
ssize_t write(int file, const void* buffer, size_t size) {
    return call("write", -1, write, file, buffer, size);
}
off_t lseek(int file, off_t offset, int origin) noexcept {
    return call("lseek", -1, lseek, file, offset, origin);
}
int fstat(int file, struct stat* status) noexcept {
    return call("fstat", -1, fstat, file, status);
}
int close(int file) {  // which it is even when this fails
    trace("close:" + std::to_string(SYS_OPENFILES));
    const int result = reinterpret_cast<decltype(&close)>(dlsym(RTLD_NEXT, "close"))(file);
    return fails("close") ? -1 : result;
}
int lstat64(const char* path, struct stat64* status) noexcept {
    trace('?' + std::string(path));
    return call("lstat64", -1, lstat64, path, status);
}
int stat64(const char* path, struct stat64* status) noexcept {
    return call("stat64", -1, stat64, path, status);
}
int mkdir(const char* path, mode_t mode) noexcept {
    trace('+' + std::string(path));
    return call("mkdir", -1, mkdir, path, mode);
}
DIR* opendir(const char* path) {
    DIR* const stream = call("opendir", nullptr, opendir, path);
    if (stream != nullptr) errno = EXDEV;  // as a call that succeeds may leave it
    return stream;
}
dirent64* readdir64(DIR* stream) {
    if (calls.listing.empty()) return call("readdir64", nullptr, readdir64, stream);
    if (fails("readdir64")) return nullptr;
    static dirent64 record;
    const std::size_t next = calls.made["readdir64"] - 1;
    if (next >= calls.listing.size()) return nullptr;
    errno = EXDEV;  // as at opendir
    std::strcpy(record.d_name, calls.listing[next]);
    return &record;
}
int closedir(DIR* stream) {
    reinterpret_cast<decltype(&closedir)>(dlsym(RTLD_NEXT, "closedir"))(stream);
    return fails("closedir") ? -1 : 0;
}
char* setlocale(int category, const char* name) noexcept {
    return call("setlocale", nullptr, setlocale, category, name);
}
char* strdup(const char* text) noexcept {
    return call("strdup", nullptr, strdup, text);
}
tm* localtime(const time_t* time) noexcept {
    return call("localtime", nullptr, localtime, time);
}
time_t mktime(tm* date) noexcept {
    return call("mktime", -1, mktime, date);
}
int usleep(useconds_t microseconds) {
    return call("usleep", -1, usleep, microseconds);
}
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
    return fails("new") ? nullptr : operator new(size);
}
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept {
    return fails("new[]") ? nullptr : operator new[](size);
}
