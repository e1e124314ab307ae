// A directory of the fuzzer's own, removed at exit.
#ifndef KTBASE_TESTS_FUZZ_SCRATCH_H
#define KTBASE_TESTS_FUZZ_SCRATCH_H

#include <cstdlib>
#include <filesystem>
#include <string>
#include <system_error>

class Scratch {
public:
    Scratch() {
        std::string name = std::filesystem::temp_directory_path() / "ktbase_fuzz_XXXXXX";
        if (mkdtemp(name.data()) == nullptr) std::abort();
        path_ = name;
    }
    ~Scratch() {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }
    Scratch(const Scratch&) = delete;
    Scratch& operator=(const Scratch&) = delete;

    const std::filesystem::path& path() const { return path_; }
    void clear() const {
        for (const auto& entry : std::filesystem::directory_iterator(path_))
            std::filesystem::remove_all(entry);
    }

private:
    std::filesystem::path path_;
};

#endif
