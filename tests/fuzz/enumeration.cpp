// An enumeration against readdir, fnmatch and stat over the same made directory.
#include <dirent.h>
#include <fnmatch.h>
#include <ktbase/platform.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <fstream>

#include "fuzz.h"
#include "scratch.h"

namespace {

using Entries = std::vector<std::string>;  // one line each

std::string line(const std::string& name, const std::string& full, std::int32_t attributes,
                 std::int32_t size) {
    return name + '\0' + full + '\0' + std::to_string(attributes) + ' ' + std::to_string(size);
}

// Files of some bytes, directories, links to the name made before and links to nothing.
void make_entries(Input& input, const std::string& directory) {
    std::string before = "nothing";
    for (int i = 0; i < 6 && !input.empty(); ++i) {
        const unsigned kind = input.byte();
        std::string name = input.text().substr(0, 255);
        std::replace(name.begin(), name.end(), '/', '|');
        const std::string path = directory + '/' + name;
        int made = -1;
        if (kind % 4 == 0) made = mkdir(path.c_str(), 0700);
        if (kind % 4 == 1) made = symlink(before.c_str(), path.c_str());
        if (kind % 4 >= 2) std::ofstream(path) << std::string(kind, 'x');
        if (made == 0) before = name;
    }
}

Entries expected_entries(const std::string& directory, const std::string& mask) {
    Entries found;
    DIR* const stream = opendir(directory.c_str());
    while (const dirent64* entry = readdir64(stream)) {
        const std::string name = entry->d_name;
        if (fnmatch(mask.c_str(), name.c_str(), FNM_NOESCAPE) != 0) continue;
        if (found.empty() && (name == "." || name == "..")) continue;
        struct stat64 status;
        const std::string path = directory + '/' + name;
        if ((bFollowLinks != 0 ? stat64 : lstat64)(path.c_str(), &status) != 0)
            lstat64(path.c_str(), &status);
        const auto mode = static_cast<std::int32_t>(status.st_mode);
        if (bFollowLinks == 0 && stat64(path.c_str(), &status) != 0) lstat64(path.c_str(), &status);
        found.push_back(line(name, path, mode, static_cast<std::int32_t>(status.st_size)));
    }
    closedir(stream);
    return found;
}

Entries enumerated(const std::string& pattern) {
    Entries found;
    Dirent* entry = nullptr;
    const KtFindHandle find = KtFindFirst(pattern.c_str(), &entry);
    if (find == -1) {
        require(errno == ENOENT || errno == 0, "errno of an empty enumeration");
        return found;
    }
    require(SYS_OPENFILES == 1, "the stream is counted");
    do {
        found.push_back(line(KtFindGetFileName(entry), entry->getLastName(),
                             KtFindGetFileAttributes(entry), KtFindGetFileSize(entry)));
    } while (KtFindNext(find, entry) == 0);
    return found;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const Scratch kScratch;
    Input input(data, size);
    bFollowLinks = static_cast<unsigned char>(input.byte() % 2);
    std::string mask = input.text();
    std::replace(mask.begin(), mask.end(), '/', '|');
    const std::string directory = kScratch.path();
    make_entries(input, directory);
    require(enumerated(directory + '/' + mask) == expected_entries(directory, mask), "entries");
    require(SYS_OPENFILES == 0, "the count falls back");
    kScratch.clear();
    return 0;
}
