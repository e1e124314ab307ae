// Attributes, creation and enumeration.
#include <dirent.h>
#include <malloc.h>

#include "fixture.h"

namespace {

TEST_F(Platform, paths_are_queried_back_to_what_exists_and_created_forward_from_there) {
    write("file");
    fs::create_directory("dir");
    fs::create_directory("x\\y");
    struct Case {
        const char* path;
        int result;
        const char* trace;
    };
    for (const Case& c :
         {Case{"", -1, ""}, Case{"dir", 0, "?dir "}, Case{"e/f", -1, "?e/f +e/f "},
          Case{"a\\b\\c", 0, "?a\\b\\c ?a\\b ?a +a +a\\b +a\\b\\c "},
          Case{"x\\y\\z", 0, "?x\\y\\z ?x\\y +x\\y\\z "}, Case{"file\\b", -1, "?file\\b ?file "},
          Case{"file", -1, "?file "}, Case{"g\\", 0, "?g\\ ?g +g +g\\ "},
          Case{"\\a\\b", 0, "?\\a\\b ?\\a ?. +\\a +\\a\\b "},
          Case{"X:\\a\\b", 0, "?X:\\a\\b ?X:\\a +X:\\a +X:\\a\\b "},
          Case{"X:d\\e", 0, "?X:d\\e ?X:d +X:d +X:d\\e "},
          Case{"\\\\s\\t", 0, "?\\\\s\\t ?\\\\s +\\\\s +\\\\s\\t "},
          Case{"\\\\u", 0, "?\\\\u +\\\\u "},
          Case{"\\\\\\s\\t", 0, "?\\\\\\s\\t ?\\\\\\s ?\\\\ +\\\\ +\\\\\\s +\\\\\\s\\t "}}) {
        std::string trace;
        calls = {.trace = &trace};
        EXPECT_EQ(KtMakePath(c.path), c.result) << c.path;
        EXPECT_EQ(trace, c.trace);
        EXPECT_EQ(calls.made["strdup"], strchr(c.trace, ' ') < strrchr(c.trace, ' ')) << c.path;
    }
    calls = {};
    EXPECT_EQ(KtMakePath(nullptr), -1);
    umask(0);
    EXPECT_EQ(KtMakePath(("d\\" + std::string(70000, 'e')).c_str()), -1);
    EXPECT_EQ(errno, ENAMETOOLONG);
    EXPECT_EQ(KtGetFileAttributes("d"), S_IFDIR | 0700);
}

TEST_F(Platform, patterns_name_a_directory_or_the_current_one_and_failures_tell_why) {
    fs::create_directories("d/empty");
    for (const char* path : {"e.cfg", "d/a.txt"}) write(path);
    struct Case {
        const char *pattern, *name;
        int error;
    };
    for (const Case& c : {Case{"*.cfg", ".//e.cfg", kUntouched},
                          Case{"/et[c]", "//etc", kUntouched}, Case{"d/*t", "d/a.txt", kUntouched},
                          Case{"d/A.TXT", nullptr, ENOENT}, Case{"none/*", nullptr, ENOENT},
                          Case{"e.cfg/*", nullptr, ENOTDIR}, Case{"d/empty/*", nullptr, 0}}) {
        const Lines run = enumerate(c.pattern);
        EXPECT_EQ(run.back(), std::to_string(c.error)) << c.pattern;
        EXPECT_EQ(run[0].substr(0, run[0].find(' ')), c.name != nullptr ? c.name : run.back());
        expect_all_released();
    }
    // Dot directories are passed over before the first other entry only, and only when known.
    calls = {.listing = {".", "..", "e.cfg", "..", "."}};
    EXPECT_EQ(enumerate("*").size(), 3U + 1);
    calls = {"lstat64", 2, false, EACCES, {".", "..", "e.cfg"}};
    EXPECT_EQ(enumerate("*")[0], ".//.. -1 ffffffff ffffffff 0 13");
}

TEST_F(Platform, links_and_large_files_say_so_in_their_attributes) {
    for (const char* path : {"ten", "2g", "big"}) write(path);
    EXPECT_EQ(truncate64("2g", 0x80000000) + truncate64("big", 0x80000001), 0);
    for (const auto& [target, path] : {std::pair{"ten", "l1"}, {"none", "l2"}, {"big", "l3"}})
        fs::create_symlink(target, path);
    struct Case {
        const char *path, *entry;
        int followed, own;
    };
    for (const Case& c :
         {Case{"ten", "10 81a4 81a4 0 0", 0x81A4, 0x81A4},
          Case{"2g", "-2147483648 81a4 81a4 0 0", 0x81A4, 0x81A4},
          Case{"big", "-1 ffffffff ffffffff 0 75", 0x81A4, 0x81A4},
          Case{"l1", "10 a1ff 81a4 1 0", 0x81A4, 0xA1FF}, Case{"l2", "4 a1ff a1ff 1 2", -1, 0xA1FF},
          Case{"l3", "-1 ffffffff ffffffff 0 75", 0x81A4, 0xA1FF}}) {
        EXPECT_EQ(enumerate(c.path)[0], ".//" + std::string(c.path) + ' ' + c.entry);
        for (const unsigned char follow : {0, 128, 1}) {
            bFollowLinks = follow;
            EXPECT_EQ(KtGetFileAttributes(c.path), follow ? c.followed : c.own);
        }
    }
    EXPECT_EQ(KtSetFileAttributes("ten", 0), 0);
    EXPECT_EQ(KtIsDirectory(0x61ED) | KtIsDirectory(-1), 0);
    EXPECT_EQ(KtIsDirectory(KtGetFileAttributes("")), 1);
    calls = {};
    EXPECT_EQ(KtGetFileAttributes("ten"), 0x81A4);
    EXPECT_EQ(calls.made, (std::map<std::string, int>{{"lstat64", 1}}));
}

TEST_F(Platform, enumerations_count_and_hold_the_locale_until_their_end) {
    for (const char* path : {"a", "b"}) write(path);
    Dirent* outer = nullptr;
    const KtFindHandle outer_find = KtFindFirst("[ab]", &outer);
    EXPECT_STREQ(setlocale(LC_ALL, nullptr), "C");
    SYS_MAXFILES = 0;
    calls = {};
    Dirent* inner = outer;
    EXPECT_EQ(KtFindFirst("a", &inner), -1);
    EXPECT_EQ(errno, EMFILE);
    EXPECT_EQ(KtFindFirst("a", nullptr), -1);
    EXPECT_EQ(errno, 0);
    EXPECT_TRUE(calls.made.empty());
    SYS_MAXFILES = 64;
    EXPECT_EQ(KtFindFirst("none", &inner), -1);
    EXPECT_EQ(inner, outer) << "stored by a failure";
    const KtFindHandle inner_find = KtFindFirst("a", &inner);
    for (const char* path : {"a", "b"}) fs::remove(path);
    EXPECT_EQ(KtFindNext(outer_find, outer), 0);
    EXPECT_EQ(describe(outer).substr(5), "-1 ffffffff ffffffff 0 2") << "of a vanished entry";
    EXPECT_EQ(KtFindClose(outer_find, &outer), 0);
    EXPECT_EQ(KtFindNext(-1, outer), -1);
    EXPECT_EQ(KtFindNext(0, new Dirent("made by hand")), -1);
    EXPECT_EQ(SYS_OPENFILES, 2);
    EXPECT_EQ(KtFindNext(inner_find, inner), -1);
    EXPECT_STREQ(setlocale(LC_ALL, nullptr), "C");
    EXPECT_EQ(KtFindNext(outer_find, nullptr), -1);
    SYS_OPENFILES = 0;  // the host's doing: the end must not take it below
    EXPECT_EQ(KtFindNext(outer_find, outer), -1);
    expect_all_released();
}

TEST_F(Platform, null_is_never_followed) {
    EXPECT_EQ(KtFindNext(0, nullptr), -1);
    EXPECT_EQ(KtFindGetFileName(nullptr), nullptr);
    EXPECT_EQ(KtFindGetFileAttributes(nullptr), -1);
    EXPECT_EQ(KtFindGetFileSize(nullptr), -1);
    EXPECT_EQ(KtGetFileAttributes(nullptr), -1);
    EXPECT_EQ(errno, EFAULT);
    Dirent made_by_hand("a");
    EXPECT_EQ(KtFindGetFileName(&made_by_hand), nullptr);
    EXPECT_EQ(made_by_hand.getLastName(), nullptr);
    made_by_hand.attr = 0xA1FF;
    made_by_hand.targetAttr = 7;
    for (const unsigned char follow : {0, 1}) {
        bFollowLinks = follow;
        EXPECT_EQ(KtFindGetFileAttributes(&made_by_hand), follow ? 7 : 0xA1FF);
    }
    EXPECT_EQ(made_by_hand.isLink, 1);
    EXPECT_EQ(made_by_hand.maskLen + made_by_hand.dirLen, 2U + 2);
    calls = {"new[]", 2, false, ENOMEM};
    Dirent without_directory("a");
    dirent64 entry = {};
    without_directory.entry = &entry;
    EXPECT_EQ(without_directory.setLastName(), 0);
    write("a");
    calls = {"new[]", 3, false, ENOMEM};
    Dirent* found = nullptr;
    const KtFindHandle find = KtFindFirst("a", &found);
    EXPECT_EQ(found->lastName, nullptr);
    EXPECT_STREQ(found->getLastName(), ".//a") << "there is memory again";
    EXPECT_EQ(KtFindNext(find, found), -1);
}

TEST_F(Platform, entries_by_the_100000_take_one_query_for_each_delivered_and_no_memory) {
    for (const char* path : {"a", "b"}) write(path);  // a file takes 65,000 names at most
    for (int i = 100000; i < 200000; ++i)
        ASSERT_EQ(link(i % 2 == 0 ? "a" : "b", std::to_string(i).c_str()), 0);
    calls = {};
    Dirent* found = nullptr;
    const KtFindHandle find = KtFindFirst("*[05]", &found);
    const auto in_use = mallinfo2().uordblks;
    int delivered = 1;
    for (; KtFindNext(find, found) == 0; ++delivered) ASSERT_LE(mallinfo2().uordblks, in_use);
    EXPECT_EQ(delivered, 20000);
    EXPECT_EQ(calls.made["lstat64"] + calls.made["stat64"], delivered);
    EXPECT_EQ(calls.made["new[]"], delivered + 2);
    EXPECT_EQ(calls.made["readdir64"], 2 + 100000 + 2 + 1);
}

}  // namespace
