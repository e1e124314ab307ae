// A new directory for each test, and checks that an operation has released its resources.
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

constexpr int kUntouched = 4711;  // a value that no system call stores in errno

struct Platform : testing::Test {
    Platform() {
        fs::create_directory(root);
        fs::current_path(root);
        umask(022);
        // The categories differ, so that a test fails if only one of them is restored.
        if (setlocale(LC_ALL, "C.UTF-8") == nullptr || setlocale(LC_TIME, "C") == nullptr) abort();
        locale = setlocale(LC_ALL, nullptr);
        calls = {};
    }
    ~Platform() override {
        calls = {};
        SYS_OPENFILES = 0;
        SYS_MAXFILES = 64;
        bFollowLinks = 1;
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

struct Enumeration {
    explicit Enumeration(const char* pattern) : find(KtFindFirst(pattern, &found)) {}
    int next() const { return KtFindNext(find, found); }

    Dirent* found = nullptr;
    KtFindHandle find;
};

// "NAME SIZE ATTR TARGET_ATTR IS_LINK ERROR"
inline std::string describe(const Dirent* found) {
    char text[300];
    std::snprintf(text, sizeof text, "%s %d %x %x %d %d", found->lastName ? found->lastName : "?",
                  found->size, found->attr, found->targetAttr, found->isLink, found->error);
    return text;
}

struct Outcome {
    int result;
    int error;    // errno
    Lines lines;  // the entries delivered or the directories made
};

inline Outcome enumerate(const char* pattern) {
    errno = kUntouched;
    const Enumeration enumeration(pattern);
    if (enumeration.find == -1) return {-1, errno, {}};
    Outcome outcome = {};
    do {
        outcome.lines.push_back(describe(enumeration.found));
        errno = kUntouched;
    } while (enumeration.next() == 0 && errno == kUntouched);
    outcome.error = errno;
    return outcome;
}

#endif
