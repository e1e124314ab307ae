// A fresh directory, and what must be as it was when an operation is over.
#ifndef KTBASE_TESTS_PLATFORM_FIXTURE_H
#define KTBASE_TESTS_PLATFORM_FIXTURE_H

#include <gtest/gtest.h>
#include <ktbase/platform.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <clocale>
#include <filesystem>
#include <fstream>

#include "system_calls.h"

namespace fs = std::filesystem;
using Lines = std::vector<std::string>;

constexpr int kUntouched = 4711;  // an errno that no system has

struct Platform : testing::Test {
    Platform() {
        calls = {};
        fs::create_directory(root);
        fs::current_path(root);
        umask(022);
        // Categories that differ, so that restoring one of them is not enough.
        if (setlocale(LC_ALL, "C.UTF-8") == nullptr || setlocale(LC_TIME, "C") == nullptr) abort();
        locale = setlocale(LC_ALL, nullptr);
    }
    ~Platform() override {
        calls = {};
        fs::remove_all(root);
    }

    static void write(const fs::path& path) { std::ofstream(path) << "0123456789"; }

    static std::ptrdiff_t open_descriptors() {
        return std::distance(fs::directory_iterator("/proc/self/fd"), {});
    }
    void expect_all_released() const {
        calls = {};
        EXPECT_EQ(SYS_OPENFILES, 0);
        EXPECT_EQ(open_descriptors(), descriptors);
        EXPECT_EQ(setlocale(LC_ALL, nullptr), locale);
    }

    const fs::path root = testing::TempDir() + "ktbase_platform_" + std::to_string(getpid());
    std::ptrdiff_t descriptors = open_descriptors();
    std::string locale;
};

inline std::string describe(const Dirent* found) {
    char text[300];
    std::snprintf(text, sizeof text, "%s %d %x %x %d %d", found->lastName ? found->lastName : "?",
                  found->size, found->attr, found->targetAttr, found->isLink, found->error);
    return text;
}

// The entries, and last the errno of the failure or of the end.
inline Lines enumerate(const char* pattern) {
    Lines run;
    Dirent* found = nullptr;
    const KtFindHandle find = KtFindFirst(pattern, &found);
    if (find == -1) return {std::to_string(errno)};
    do {
        run.push_back(describe(found));
        errno = kUntouched;
    } while (KtFindNext(find, found) == 0 && errno == kUntouched);
    run.push_back(std::to_string(errno));
    return run;
}

#endif
