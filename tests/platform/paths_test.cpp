// Tests of the attributes of paths, and of the creation of chains.
#include "fixture.h"

namespace {

TEST_F(Platform, a_chain_is_cut_back_to_what_exists) {
    write("file");
    fs::create_directory("dir");
    fs::create_directory(R"(x\y)");
    struct Case {
        const char* path;
        int result, copies;
        const char *queried, *created;
    };
    for (const Case& c : {
             Case{"", -1, 0, "", ""},
             Case{"dir", 0, 0, " dir", ""},
             Case{"file", -1, 0, " file", ""},
             Case{"e/f", -1, 1, " e/f", " e/f"},
             Case{R"(a\b\c)", 0, 1, R"( a\b\c a\b a)", R"( a a\b a\b\c)"},
             Case{R"(x\y\z)", 0, 1, R"( x\y\z x\y)", R"( x\y\z)"},
             Case{R"(file\b)", -1, 1, R"( file\b file)", ""},
             Case{R"(g\)", 0, 1, R"( g\ g)", R"( g g\)"},
             Case{R"(\a\b)", 0, 1, R"( \a\b \a .)", R"( \a \a\b)"},
             Case{R"(X:\a\b)", 0, 1, R"( X:\a\b X:\a)", R"( X:\a X:\a\b)"},
             Case{R"(X:\\b)", 0, 1, R"( X:\\b X:\)", R"( X:\ X:\\b)"},
             Case{R"(\:c)", 0, 1, R"( \:c .)", R"( \:c)"},
             Case{R"(\\s\t)", 0, 1, R"( \\s\t \\s)", R"( \\s \\s\t)"},
             Case{R"(\\u)", 0, 1, R"( \\u)", R"( \\u)"},
             Case{R"(\\\s\t)", 0, 1, R"( \\\s\t \\\s \\)", R"( \\ \\\s \\\s\t)"},
         }) {
        std::string queried;
        std::string created;
        calls = {.observer = [&](const std::string& call) {
            if (call.starts_with("lstat64")) queried += call.substr(7);
            if (call.starts_with("mkdir")) created += call.substr(5);
        }};
        EXPECT_EQ(KtMakePath(c.path), c.result) << c.path;
        EXPECT_EQ(queried, c.queried);
        EXPECT_EQ(created, c.created);
        EXPECT_EQ(calls.made["strdup"], c.copies);
    }
}

TEST_F(Platform, a_creation_that_fails_leaves_the_directories_before_it) {
    umask(0);
    EXPECT_EQ(KtMakePath(("d\\" + std::string(70000, 'e')).c_str()), -1);
    EXPECT_EQ(errno, ENAMETOOLONG);
    EXPECT_EQ(KtGetFileAttributes("d"), 0x41C0);
}

TEST_F(Platform, the_attributes_of_a_link_follow_the_flag) {
    write("ten");
    fs::create_symlink("ten", "link");
    fs::create_symlink("none", "dangling");
    struct Case {
        const char* path;
        int followed, not_followed;
    };
    for (const Case& c : {Case{"ten", 0x81A4, 0x81A4}, Case{"link", 0x81A4, 0xA1FF},
                          Case{"dangling", -1, 0xA1FF}, Case{"none", -1, -1}}) {
        for (const unsigned char follow : {0, 128, 1}) {
            bFollowLinks = follow;
            EXPECT_EQ(KtGetFileAttributes(c.path), follow ? c.followed : c.not_followed) << c.path;
        }
    }
    calls = {};
    KtGetFileAttributes("ten");
    EXPECT_EQ(calls.made, (std::map<std::string, int>{{"lstat64", 1}}));
}

TEST_F(Platform, only_the_type_bits_make_a_directory) {
    EXPECT_EQ(KtIsDirectory(0x41ED), 1);
    EXPECT_EQ(KtIsDirectory(0x4000), 1);
    EXPECT_EQ(KtIsDirectory(0x61ED), 0);
    EXPECT_EQ(KtIsDirectory(-1), 0);
    EXPECT_EQ(KtIsDirectory(KtGetFileAttributes("")), 1);
}

TEST_F(Platform, setting_attributes_changes_nothing) {
    write("ten");
    EXPECT_EQ(KtSetFileAttributes("ten", 0), 0);
    EXPECT_EQ(KtGetFileAttributes("ten"), 0x81A4);
}

TEST_F(Platform, a_null_path_fails) {
    EXPECT_EQ(KtMakePath(nullptr), -1);
    EXPECT_EQ(KtGetFileAttributes(nullptr), -1);
    EXPECT_EQ(errno, EFAULT);
}

}  // namespace
