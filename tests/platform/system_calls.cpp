#include "system_calls.h"

#include <dirent.h>
#include <dlfcn.h>
#include <fcntl.h>
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

// Passes the arguments to the observer.
bool fails(const std::string& name, const std::string& arguments = "") {
    if (calls.observer) calls.observer(name + arguments);
    const int made = ++calls.made[name];
    if (name != calls.failing || made < calls.nth) return false;
    if (made > calls.nth && !calls.always) return false;
    errno = calls.error;
    return true;
}

template <typename Function>
Function* system_function(Function* /*replacement*/, const char* name) {
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

template <typename Result, typename... Parameters>
Result call(const char* name, std::type_identity_t<Result> failure, Result (*f)(Parameters...),
            std::type_identity_t<Parameters>... given) {
    return fails(name) ? failure : system_function(f, name)(given...);
}

}  // namespace

int open(const char* path, int flags, ...) {
    va_list rest;
    va_start(rest, flags);
    const unsigned mode = (flags & O_CREAT) != 0 ? va_arg(rest, unsigned) : 0;
    va_end(rest);
    char text[30];
    std::snprintf(text, sizeof text, " %x %x", flags, mode);
    return fails("open", text) ? -1 : system_function(open, "open")(path, flags, mode);
}
ssize_t read(int file, void* buffer, size_t size) {
    return call("read", -1, read, file, buffer, size);
}
ssize_t write(int file, const void* buffer, size_t size) {
    return call("write", -1, write, file, buffer, size);
}
int close(int file) {  // A close that fails also closes the descriptor.
    const bool failed = fails("close");
    const int result = system_function(close, "close")(file);
    return failed ? -1 : result;
}
int lstat64(const char* path, struct stat64* status) noexcept {
    if (fails("lstat64", ' ' + std::string(path))) return -1;
    return system_function(lstat64, "lstat64")(path, status);
}
int stat64(const char* path, struct stat64* status) noexcept {
    return call("stat64", -1, stat64, path, status);
}
int mkdir(const char* path, mode_t mode) noexcept {
    if (fails("mkdir", ' ' + std::string(path))) return -1;
    return system_function(mkdir, "mkdir")(path, mode);
}
DIR* opendir(const char* path) {
    DIR* const stream = call("opendir", nullptr, opendir, path);
    if (stream != nullptr) errno = EXDEV;  // A call that succeeds may change errno.
    return stream;
}
dirent64* readdir64(DIR* stream) {
    if (calls.listing.empty()) return call("readdir64", nullptr, readdir64, stream);
    if (fails("readdir64")) return nullptr;
    static dirent64 record;
    const std::size_t next = calls.made["readdir64"] - 1;
    if (next >= calls.listing.size()) return nullptr;
    errno = EXDEV;
    std::strcpy(record.d_name, calls.listing[next]);
    return &record;
}
int closedir(DIR* stream) {
    const bool failed = fails("closedir");
    system_function(closedir, "closedir")(stream);
    if (failed) errno = calls.error;
    return failed ? -1 : 0;
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
int usleep(useconds_t microseconds) {
    return fails("usleep", ' ' + std::to_string(microseconds)) ? -1 : 0;
}
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
    return fails("new") ? nullptr : operator new(size);
}
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept {
    return fails("new[]", ' ' + std::to_string(size)) ? nullptr : operator new[](size);
}
