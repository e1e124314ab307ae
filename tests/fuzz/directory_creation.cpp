// Chains of directories against the same rules told recursively, in twin directories.
#include <ktbase/platform.h>

#include <fstream>
#include <set>

#include "fuzz.h"
#include "scratch.h"

namespace {

namespace fs = std::filesystem;

// Creates `path` and what it needs before it, cut at backslashes from `start` on.
int make(const std::string& path, std::size_t start) {
    const fs::path here = path.empty() ? "." : path;
    std::error_code error;
    if (fs::exists(here, error)) return fs::is_directory(here) ? 0 : -1;
    const std::size_t cut = path.rfind('\\');
    if (cut != path.npos && cut >= start && make(path.substr(0, cut), start) != 0) return -1;
    return fs::create_directory(here, error) ? 0 : -1;
}

int make_path(const std::string& path) {
    if (path.empty()) return -1;
    if (path.substr(1).starts_with(":\\")) return make(path, 3);
    if (!path.starts_with("\\\\")) return make(path, 0);
    const std::size_t server_end = path.find('\\', 2);
    return make(path, server_end == path.npos ? 2 : server_end);
}

// Five letters, the separator most of all; no path leaves the directory.
std::string path(Input& input) {
    std::string drawn = input.text().substr(0, 60);
    for (char& c : drawn) c = "\\\\ab:/"[static_cast<unsigned char>(c) % 6];
    return drawn.erase(0, drawn.find_first_not_of('/'));
}

std::set<std::string> entries() {
    std::set<std::string> found;
    for (const auto& entry : fs::recursive_directory_iterator("."))
        found.insert(entry.path().string() + (entry.is_directory() ? "/" : ""));
    return found;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const Scratch kScratch;
    fs::current_path(kScratch.path());
    int result[2];
    std::set<std::string> left[2];
    for (int turn = 0; turn < 2; ++turn) {
        Input input(data, size);
        const std::string wanted = path(input);
        for (int i = 0; i < 3 && !input.empty(); ++i) {
            std::error_code ignored;
            const bool directory = input.byte() % 4 != 0;
            const std::string name = path(input);
            if (!directory)
                std::ofstream(name) << 'x';
            else if (!name.empty())
                fs::create_directory(name, ignored);
        }
        result[turn] = turn == 0 ? make_path(wanted) : KtMakePath(wanted.c_str());
        left[turn] = entries();
        kScratch.clear();
    }
    require(result[0] == result[1], "result");
    require(left[0] == left[1], "directories");
    return 0;
}
