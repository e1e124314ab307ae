// Tests of patterns, entries and the end of enumerations.
#include <dirent.h>

#include "fixture.h"

namespace {

TEST_F(Platform, a_pattern_is_split_at_its_last_slash) {
    fs::create_directory("d");
    for (const char* path : {"e.cfg", "d/a.txt"}) write(path);
    struct Case {
        const char *pattern, *name;
        unsigned mask_length, dir_length;  // the values of the fields
        const char* allocation;            // of `name`
    };
    for (const Case& c :
         {Case{"*.cfg", ".//e.cfg", 6, 2, "new[] 10"}, Case{"/et[c]", "//etc", 6, 2, "new[] 8"},
          Case{"d/*t", "d/a.txt", 3, 2, "new[] 10"},
          Case{"./d/*t", "./d/a.txt", 3, 4, "new[] 12"}}) {
        std::string last;
        calls = {.observer = [&last](const std::string& call) {
            if (call.starts_with("new[]")) last = call;
        }};
        const Enumeration enumeration(c.pattern);
        EXPECT_STREQ(enumeration.found->lastName, c.name);
        EXPECT_EQ(enumeration.found->maskLen, c.mask_length);
        EXPECT_EQ(enumeration.found->dirLen, c.dir_length);
        EXPECT_EQ(last, c.allocation);
        EXPECT_EQ(enumeration.next(), -1);
        expect_all_released();
    }
}

TEST_F(Platform, an_enumeration_without_entries_has_a_reason) {
    fs::create_directories("d/empty");
    for (const char* path : {"e.cfg", "d/a.txt"}) write(path);
    struct Case {
        const char* pattern;
        int error;
    };
    for (const Case& c : {Case{"d/A.TXT", ENOENT}, Case{"d/", ENOENT}, Case{"none/*", ENOENT},
                          Case{"e.cfg/*", ENOTDIR}, Case{"d/empty/*", 0}}) {
        const Outcome outcome = enumerate(c.pattern);
        EXPECT_EQ(outcome.result, -1) << c.pattern;
        EXPECT_EQ(outcome.error, c.error) << c.pattern;
        expect_all_released();
    }
}

TEST_F(Platform, a_mask_matches_bytes_by_the_rules_of_the_shell) {
    struct Case {
        const char* mask;
        std::vector<const char*> listing;
        std::size_t matches;
    };
    for (const Case& c :
         {Case{"a\\*", {"a\\b", "a\\c", "a*"}, 2}, Case{"*x", {".x", "y/x", "X"}, 2},
          Case{"??", {"\xC3\xA9", "a"}, 1}, Case{"[!a-c][[:digit:]]", {"x1", "a1"}, 1}}) {
        calls = {.listing = c.listing};
        EXPECT_EQ(enumerate(c.mask).lines.size(), c.matches) << c.mask;
    }
}

TEST_F(Platform, dot_directories_are_skipped_only_before_other_entries) {
    fs::create_directory("...");
    calls = {.listing = {".", "..", "...", "..", "."}};
    EXPECT_EQ(enumerate("*").lines.size(), 3U);
    calls = {"lstat64", 2, false, EACCES, {".", "..", "..."}};
    EXPECT_EQ(enumerate("*").lines[0], ".//.. -1 ffffffff ffffffff 0 13");
}

TEST_F(Platform, an_entry_has_the_size_of_the_target_of_a_link) {
    for (const char* path : {"ten", "2g", "big"}) write(path);
    truncate64("2g", 0x80000000);
    truncate64("big", 0x80000001);
    for (const auto& [target, path] : {std::pair{"ten", "l1"}, {"none", "l2"}, {"big", "l3"}})
        fs::create_symlink(target, path);
    for (const char* entry :
         {"ten 10 81a4 81a4 0 0", "2g -2147483648 81a4 81a4 0 0", "big -1 ffffffff ffffffff 0 75",
          "l1 10 a1ff 81a4 1 0", "l2 4 a1ff a1ff 1 2", "l3 -1 ffffffff ffffffff 0 75"}) {
        const std::string name(entry, strchr(entry, ' '));
        EXPECT_EQ(enumerate(name.c_str()).lines, Lines{".//" + std::string(entry)});
    }
}

TEST_F(Platform, the_getters_of_a_link_follow_the_flag) {
    write("ten");
    fs::create_symlink("ten", "link");
    bFollowLinks = 128;
    const Enumeration enumeration("link");
    EXPECT_STREQ(KtFindGetFileName(enumeration.found), "link");
    EXPECT_EQ(KtFindGetFileSize(enumeration.found), 10);
    enumeration.found->isLink = 0;
    EXPECT_EQ(KtFindGetFileAttributes(enumeration.found), 0x81A4);
    EXPECT_EQ(enumeration.found->isLink, 1);
    bFollowLinks = 0;
    EXPECT_EQ(KtFindGetFileAttributes(enumeration.found), 0xA1FF);
    EXPECT_EQ(enumeration.next(), -1);
}

TEST_F(Platform, a_query_replaces_the_attributes) {
    write("a");
    const Enumeration enumeration("a");
    enumeration.found->isLink = 1;
    fs::remove("a");
    enumeration.found->setAttr();
    EXPECT_EQ(describe(enumeration.found), ".//a -1 ffffffff ffffffff 0 2");
    EXPECT_EQ(enumeration.next(), -1);
}

TEST_F(Platform, enumerations_count_until_their_end) {
    write("a");
    SYS_MAXFILES = 1;
    const Enumeration enumeration("a");
    EXPECT_EQ(SYS_OPENFILES, 1);
    EXPECT_STREQ(setlocale(LC_ALL, nullptr), "C");
    Dirent* found = enumeration.found;
    EXPECT_EQ(KtFindClose(enumeration.find, &found), 0);
    EXPECT_EQ(SYS_OPENFILES, 1);
    EXPECT_EQ(KtFindNext(-1, found), -1);
    EXPECT_EQ(KtFindNext(enumeration.find, nullptr), -1);
    EXPECT_EQ(SYS_OPENFILES, 1);
    EXPECT_EQ(enumeration.next(), -1);
    expect_all_released();
}

TEST_F(Platform, the_handle_zero_releases_an_object) {
    EXPECT_EQ(KtFindNext(0, new Dirent("a")), -1);
    expect_all_released();
}

TEST_F(Platform, the_end_of_an_enumeration_lowers_only_a_positive_count) {
    write("a");
    for (const auto& [count, lowered] : {std::pair{2, 1}, {0, 0}, {-5, -5}}) {
        const Enumeration enumeration("a");
        SYS_OPENFILES = count;
        EXPECT_EQ(enumeration.next(), -1);
        EXPECT_EQ(SYS_OPENFILES, lowered);
    }
}

// The destructor of Dirent restores the locale. Each call is followed by the count at that time.
TEST_F(Platform, an_enumeration_releases_its_parts_in_order) {
    write("a");
    struct Case {
        const char *pattern, *end;
    };
    for (const Case& c :
         {Case{"none", "closedir:0 setlocale:0 "}, Case{"a", "setlocale:1 closedir:0 "}}) {
        std::string order;
        calls = {.observer = [&order](const std::string& call) {
            order += call + ':' + std::to_string(SYS_OPENFILES) + ' ';
        }};
        enumerate(c.pattern);
        calls.observer = nullptr;
        EXPECT_TRUE(order.ends_with(c.end)) << order;
    }
}

TEST_F(Platform, is_link_is_zero_during_a_read) {
    fs::create_symlink("none", "link");
    const Enumeration enumeration("link");
    int is_link = -1;
    calls.observer = [&](const std::string& call) {
        if (call == "readdir64") is_link = enumeration.found->isLink;
    };
    EXPECT_EQ(enumeration.next(), -1);
    EXPECT_EQ(is_link, 0);
}

TEST_F(Platform, a_failure_stores_no_object) {
    Dirent* found = nullptr;
    EXPECT_EQ(KtFindFirst("none", &found), -1);
    EXPECT_EQ(found, nullptr);
    EXPECT_EQ(KtFindFirst("none", nullptr), -1);
    EXPECT_EQ(errno, 0);
}

TEST_F(Platform, a_null_entry_has_no_properties) {
    EXPECT_EQ(KtFindNext(0, nullptr), -1);
    EXPECT_EQ(KtFindGetFileName(nullptr), nullptr);
    EXPECT_EQ(KtFindGetFileAttributes(nullptr), -1);
    EXPECT_EQ(KtFindGetFileSize(nullptr), -1);
    Dirent without_entry("a");
    EXPECT_EQ(KtFindGetFileName(&without_entry), nullptr);
    EXPECT_EQ(without_entry.getLastName(), nullptr);
    without_entry.lastName = new char[1];
    EXPECT_EQ(without_entry.setLastName(), 0);
    EXPECT_EQ(without_entry.lastName, nullptr);
    calls = {"new[]", 2, false, ENOMEM};
    Dirent without_directory("a");
    dirent64 entry = {};
    without_directory.entry = &entry;
    EXPECT_EQ(without_directory.setLastName(), 0);
}

TEST_F(Platform, an_entry_that_does_not_match_costs_one_read) {
    for (const char* path : {"a1", "a2"}) write(path);
    calls = {.listing = {".", "..", "b1", "a1", "b2", "b3", "a2", "b4"}};
    EXPECT_EQ(enumerate("a*").lines.size(), 2U);
    EXPECT_EQ(calls.made["readdir64"], 8 + 1);
    EXPECT_EQ(calls.made["lstat64"], 2);
    EXPECT_EQ(calls.made["stat64"], 0);
    EXPECT_EQ(calls.made["new[]"], 2 + 2);  // the parts of the pattern as well
}

}  // namespace
