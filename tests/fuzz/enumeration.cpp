// An enumeration against readdir, fnmatch and stat over the same made directory.
#include <dirent.h>
#include <fnmatch.h>
#include <ktbase/platform.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <clocale>
#include <filesystem>
#include <fstream>
#include <tuple>

#include "fuzz.h"

namespace {

namespace fs = std::filesystem;
// Name, full name, size, attributes and whether it is a link.
using Entries = std::vector<std::tuple<std::string, std::string, std::int32_t, unsigned, bool>>;

std::string without_slashes(std::string name) {
    std::replace(name.begin(), name.end(), '/', '|');
    return name;
}

// Files of some bytes, directories, links to the name made before and links to nothing.
void make_entries(Input& input, const std::string& directory) {
    std::string before = "nothing";
    for (int i = 0; i < 6 && !input.left.empty(); ++i) {
        const unsigned kind = input.byte();
        const std::string name = without_slashes(input.text().substr(0, 255));
        const std::string path = directory + '/' + name;
        if (kind % 4 == 0) mkdir(path.c_str(), 0700);
        if (kind % 4 == 1 && symlink(before.c_str(), path.c_str()) != 0) continue;
        if (kind % 4 >= 2) std::ofstream(path) << std::string(kind, 'x');
        before = name;
    }
}

Entries expected_entries(const std::string& directory, const std::string& mask) {
    Entries found;
    DIR* const stream = opendir(directory.c_str());
    while (const dirent64* entry = readdir64(stream)) {
        const std::string name = entry->d_name;
        if (fnmatch(mask.c_str(), name.c_str(), FNM_NOESCAPE) != 0) continue;
        if (found.empty() && (name == "." || name == "..")) continue;
        const std::string path = directory + '/' + name;
        struct stat64 own;
        struct stat64 target;
        lstat64(path.c_str(), &own);
        if (stat64(path.c_str(), &target) != 0) target = own;
        found.emplace_back(name, path, target.st_size, (bFollowLinks != 0 ? target : own).st_mode,
                           S_ISLNK(own.st_mode));
    }
    closedir(stream);
    return found;
}

Entries enumerated(const std::string& pattern) {
    Entries found;
    Dirent* entry = nullptr;
    const KtFindHandle find = KtFindFirst(pattern.c_str(), &entry);
    require(find != -1 || errno == ENOENT || errno == 0, "errno of an empty enumeration");
    for (int next = find == -1 ? -1 : 0; next == 0; next = KtFindNext(find, entry)) {
        require(SYS_OPENFILES == 1, "the stream is counted");
        const KtFileAttributes attributes = KtFindGetFileAttributes(entry);
        found.emplace_back(KtFindGetFileName(entry), entry->getLastName(), KtFindGetFileSize(entry),
                           attributes, entry->isLink);
        require(entry->maskLen + entry->dirLen == pattern.size() + 1, "the lengths of its parts");
    }
    return found;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string directory =
        fs::temp_directory_path() / ("ktbase_fuzz_" + std::to_string(getpid()));
    Input input(data, size);
    bFollowLinks = static_cast<unsigned char>(input.byte() % 2);
    const std::string mask = without_slashes(input.text());
    fs::create_directory(directory);
    make_entries(input, directory);
    const Entries expected = expected_entries(directory, mask);
    setlocale(LC_ALL, "C.UTF-8");  // where a character may be several bytes
    const Entries found = enumerated(directory + '/' + mask);
    require(std::string(setlocale(LC_ALL, nullptr)) == "C.UTF-8", "the locale");
    setlocale(LC_ALL, "C");
    fs::remove_all(directory);
    require(found == expected, "entries");
    require(SYS_OPENFILES == 0, "the count falls back");
    return 0;
}
