// Times enumeration and reading, compared with system calls and the standard library.
#include <dirent.h>
#include <fcntl.h>
#include <fnmatch.h>
#include <glob.h>
#include <ktbase/platform.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>

#include "groups.h"
#include "timing.h"

namespace {

namespace fs = std::filesystem;

// A directory of empty files, in /dev/shm if it exists.
class TestDirectory {
public:
    explicit TestDirectory(int files)
        : path_((fs::exists("/dev/shm") ? fs::path("/dev/shm") : fs::temp_directory_path()) /
                ("ktbench-" + std::to_string(getpid()))) {
        fs::create_directory(path_);
        for (int i = 0; i < files; ++i) std::ofstream(path_ / (std::to_string(i) + ".txt"));
    }
    TestDirectory(const TestDirectory&) = delete;
    TestDirectory& operator=(const TestDirectory&) = delete;
    ~TestDirectory() { fs::remove_all(path_); }

    std::string path() const { return path_.string(); }

private:
    fs::path path_;
};

int by_library(const std::string& pattern) {
    Dirent* found = nullptr;
    const KtFindHandle find = KtFindFirst(pattern.c_str(), &found);
    if (find == -1) return 0;
    int entries = 0;
    do ++entries;
    while (KtFindNext(find, found) == 0);
    return entries;
}

int by_system_calls(const std::string& directory) {
    DIR* const stream = opendir(directory.c_str());
    int entries = 0;
    while (const dirent64* entry = readdir64(stream)) {
        if (fnmatch("*.txt", entry->d_name, FNM_NOESCAPE) != 0) continue;
        const std::string path = directory + '/' + entry->d_name;
        struct stat64 status;
        if (lstat64(path.c_str(), &status) == 0) ++entries;
    }
    closedir(stream);
    return entries;
}

// Returns names only. Most hosts then query each one.
int by_glob(const std::string& pattern) {
    glob_t found;
    if (glob(pattern.c_str(), GLOB_NOSORT | GLOB_NOESCAPE | GLOB_PERIOD, nullptr, &found) != 0)
        return 0;
    const int entries = static_cast<int>(found.gl_pathc);
    globfree(&found);
    return entries;
}

int by_filesystem(const std::string& directory) {
    int entries = 0;
    for (const fs::directory_entry& entry : fs::directory_iterator(directory)) {
        if (entry.path().extension() == ".txt" &&
            entry.symlink_status().type() != fs::file_type::none)
            ++entries;
    }
    return entries;
}

void bench_enumeration(int files) {
    const TestDirectory directory(files);
    const std::string path = directory.path();
    const std::string pattern = path + "/*.txt";
    for (const int entries :
         {by_library(pattern), by_system_calls(path), by_glob(pattern), by_filesystem(path)})
        check(entries == files, "entries");
    compare("enumeration of " + std::to_string(files),
            {{"library", [&] { by_library(pattern); }},
             {"readdir, fnmatch, lstat", [&] { by_system_calls(path); }},
             {"glob, names only", [&] { by_glob(pattern); }},
             {"std::filesystem", [&] { by_filesystem(path); }}});
}

void bench_reading() {
    char buffer[1 << 12];
    const KtFileHandle zeros = KtOpenFile("/dev/zero", O_RDONLY, 0, 0);
    check(KtReadFile(zeros, buffer, sizeof buffer) == sizeof buffer, "bytes read");
    compare("read of 4 KiB",
            {{"library", [&] { KtReadFile(zeros, buffer, sizeof buffer); }},
             {"read", [&] { check(read(zeros, buffer, sizeof buffer) > 0, "read"); }}});
    KtCloseFile(zeros);
}

}  // namespace

void bench_platform() {
    bench_enumeration(1000);
    bench_enumeration(100000);
    bench_reading();
}
