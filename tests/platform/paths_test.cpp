// Attributes, creation and enumeration, in a fresh directory and over system calls that are
// counted and fail on request: those defined here take the place of the system's.
#include <dirent.h>
#include <dlfcn.h>
#include <gtest/gtest.h>
#include <ktbase/platform.h>
#include <malloc.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <clocale>
#include <filesystem>
#include <fstream>

namespace {

struct Calls {
    std::string failing = {};  // the call of this name fails with `error`
    int use = 0;               // on this use, counted from 1,
    bool ever_after = false;   // and on all later ones
    int error = 0;
    std::vector<const char*> listing = {};  // what any directory is said to hold, if not empty
    std::string* trace = nullptr;           // gets "?path " for an lstat64, "+path " for a mkdir
    std::map<std::string, int> made = {};   // uses by name
} calls;

bool fails(const char* name) {
    const int use = ++calls.made[name];
    if (name != calls.failing || use < calls.use) return false;
    if (use > calls.use && !calls.ever_after) return false;
    errno = calls.error;
    return true;
}

template <typename Function>
Function* system_call(const char* name, Function*) {
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

void trace(char kind, const char* path) {
    if (calls.trace != nullptr) *calls.trace += kind + std::string(path) + ' ';
}

}  // namespace

DIR* opendir(const char* path) {
    return fails("opendir") ? nullptr : system_call("opendir", opendir)(path);
}
dirent64* readdir64(DIR* stream) {
    if (fails("readdir64")) return nullptr;
    if (calls.listing.empty()) return system_call("readdir64", readdir64)(stream);
    static dirent64 record;
    const std::size_t next = calls.made["readdir64"] - 1;
    if (next >= calls.listing.size()) return nullptr;
    strcpy(record.d_name, calls.listing[next]);
    return &record;
}
int closedir(DIR* stream) {
    system_call("closedir", closedir)(stream);
    return fails("closedir") ? -1 : 0;
}
int lstat64(const char* path, struct stat64* status) noexcept {
    trace('?', path);
    return fails("lstat64") ? -1 : system_call("lstat64", lstat64)(path, status);
}
int stat64(const char* path, struct stat64* status) noexcept {
    return fails("stat64") ? -1 : system_call("stat64", stat64)(path, status);
}
int mkdir(const char* path, mode_t mode) noexcept {
    trace('+', path);
    return fails("mkdir") ? -1 : system_call("mkdir", mkdir)(path, mode);
}
char* setlocale(int category, const char* name) noexcept {
    return fails("setlocale") ? nullptr : system_call("setlocale", setlocale)(category, name);
}
char* strdup(const char* text) noexcept {
    return fails("strdup") ? nullptr : system_call("strdup", strdup)(text);
}
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
    return fails("new") ? nullptr : operator new(size);
}
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept {
    return fails("new[]") ? nullptr : operator new[](size);
}

namespace {

namespace fs = std::filesystem;
using Lines = std::vector<std::string>;

struct Paths : testing::Test {
    Paths() {
        calls = {};
        fs::create_directory(root);
        fs::current_path(root);
        umask(022);
        // Categories that differ, so that restoring one of them is not enough.
        if (setlocale(LC_ALL, "C.UTF-8") == nullptr || setlocale(LC_TIME, "C") == nullptr) abort();
        locale = setlocale(LC_ALL, nullptr);
    }
    ~Paths() override {
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

    const fs::path root = testing::TempDir() + "ktbase_paths_" + std::to_string(getpid());
    const std::ptrdiff_t descriptors = open_descriptors();
    std::string locale;
};

std::string describe(const Dirent* found) {
    char text[300];
    std::snprintf(text, sizeof text, "%s %d %x %x %d %d", found->lastName ? found->lastName : "?",
                  found->size, found->attr, found->targetAttr, found->isLink, found->error);
    return text;
}

// The entries, and last the errno of the failure or of the end, where 77 is the caller's own.
Lines enumerate(const char* pattern) {
    Lines run;
    Dirent* found = nullptr;
    const KtFindHandle find = KtFindFirst(pattern, &found);
    if (find == -1) return {std::to_string(errno)};
    do {
        run.push_back(describe(found));
        errno = 77;
    } while (KtFindNext(find, found) == 0 && errno == 77);
    run.push_back(std::to_string(errno));
    return run;
}

TEST_F(Paths, are_queried_back_to_what_exists_and_created_forward_from_there) {
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
          Case{"g\\", 0, "?g\\ ?g +g +g\\ "}, Case{"\\a\\b", 0, "?\\a\\b ?\\a ?. +\\a +\\a\\b "},
          Case{"X:\\a\\b", 0, "?X:\\a\\b ?X:\\a +X:\\a +X:\\a\\b "},
          Case{"X:d\\e", 0, "?X:d\\e ?X:d +X:d +X:d\\e "},
          Case{"\\\\s\\t", 0, "?\\\\s\\t ?\\\\s +\\\\s +\\\\s\\t "},
          Case{"\\\\u", 0, "?\\\\u +\\\\u "},
          Case{"\\\\\\s", 0, "?\\\\\\s ?\\\\ +\\\\ +\\\\\\s "}}) {
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
    for (const auto& [call, error] : {std::pair{"mkdir", EDQUOT}, {"strdup", ENOMEM}}) {
        calls = {.failing = call, .use = call == std::string("mkdir") ? 2 : 1, .error = error};
        EXPECT_EQ(KtMakePath("p\\q\\r"), -1);
        EXPECT_EQ(errno, error);
        EXPECT_TRUE(fs::exists("p") && !fs::exists("p\\q"));
    }
}

TEST_F(Paths, are_enumerated_by_mask_in_the_C_locale) {
    fs::create_directories("d/empty");
    for (const char* path : {"e.cfg", "d/a.txt", "d/.h.txt", "d/b.dat", "d/a\\b", "d/\xC3\xA9.dat"})
        write(path);
    struct Case {
        const char *pattern, *names;
        int error;
    };
    for (const Case& c :
         {Case{"d/*.txt", "d/.h.txt d/a.txt ", 77}, Case{"d/a\\*", "d/a\\b ", 77},
          Case{"d/[ab].?*", "d/a.txt d/b.dat ", 77}, Case{"d/?.dat", "d/b.dat ", 77},
          Case{"d/??.dat", "d/\xC3\xA9.dat ", 77}, Case{"*.cfg", ".//e.cfg ", 77},
          Case{"/et[c]", "//etc ", 77}, Case{"d/", "", ENOENT}, Case{"d/A.TXT", "", ENOENT},
          Case{"none/*", "", ENOENT}, Case{"e.cfg/*", "", ENOTDIR}, Case{"d/empty/*", "", 0}}) {
        Lines run = enumerate(c.pattern);
        EXPECT_EQ(run.back(), std::to_string(c.error)) << c.pattern;
        std::sort(run.begin(), run.end() - 1);
        std::string names;
        for (std::size_t i = 0; i + 1 < run.size(); ++i)
            names += run[i].substr(0, run[i].find(' ') + 1);
        EXPECT_EQ(names, c.names) << c.pattern;
        expect_all_released();
    }
    // Dot directories are passed over before the first other entry only, and only when known.
    calls = {.listing = {".", "..", "e.cfg", "..", "."}};
    EXPECT_EQ(enumerate("*").size(), 3U + 1);
    calls = {.failing = "lstat64", .use = 2, .error = EACCES, .listing = {".", "..", "e.cfg"}};
    EXPECT_EQ(enumerate("*")[0], ".//.. -1 ffffffff ffffffff 0 13");
}

TEST_F(Paths, that_are_links_or_large_say_so_in_their_attributes) {
    for (const char* path : {"ten", "2g", "big"}) write(path);
    EXPECT_EQ(truncate64("2g", 0x80000000) + truncate64("big", 0x80000001), 0);
    fs::create_directory("dir");
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
        Dirent* found = nullptr;
        const KtFindHandle find = KtFindFirst(c.path, &found);
        EXPECT_EQ(describe(found), ".//" + std::string(c.path) + ' ' + c.entry);
        for (const unsigned char follow : {0, 128, 1}) {
            bFollowLinks = follow;
            EXPECT_EQ(KtGetFileAttributes(c.path), follow ? c.followed : c.own);
            EXPECT_EQ(KtFindGetFileAttributes(found), follow ? found->targetAttr : found->attr);
        }
        EXPECT_EQ(KtFindNext(find, found), -1);
    }
    EXPECT_EQ(KtGetFileAttributes("dir"), 0x41ED);
    EXPECT_EQ(KtIsDirectory(0x41ED) + KtIsDirectory(0x61ED) + KtIsDirectory(-1), 1);
}

TEST_F(Paths, that_are_being_enumerated_count_and_hold_the_locale_until_the_end) {
    for (const char* path : {"a", "b"}) write(path);
    Dirent* outer = nullptr;
    const KtFindHandle outer_find = KtFindFirst("[ab]", &outer);
    EXPECT_STREQ(setlocale(LC_ALL, nullptr), "C");
    SYS_MAXFILES = 1;
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
    EXPECT_EQ(KtFindNext(outer_find, outer), -1);
    expect_all_released();
}

TEST_F(Paths, are_never_followed_where_a_pointer_is_null) {
    write("a");
    Dirent* found = nullptr;
    const KtFindHandle find = KtFindFirst("a", &found);
    SYS_OPENFILES = 0;  // the host's doing: the end must not take it below
    EXPECT_EQ(KtFindNext(find, nullptr), -1);
    EXPECT_EQ(KtFindNext(find, found), -1);
    EXPECT_EQ(SYS_OPENFILES, 0);
    EXPECT_EQ(KtFindNext(0, nullptr), -1);
    EXPECT_EQ(KtFindGetFileName(nullptr), nullptr);
    EXPECT_EQ(KtFindGetFileAttributes(nullptr), -1);
    EXPECT_EQ(KtFindGetFileSize(nullptr), -1);
    EXPECT_EQ(KtGetFileAttributes(nullptr), -1);
    EXPECT_EQ(errno, EFAULT);
    Dirent made_by_hand("a");
    EXPECT_EQ(KtFindGetFileName(&made_by_hand), nullptr);
    EXPECT_EQ(made_by_hand.getLastName(), nullptr);
}

// What a clean run becomes by the fault in `calls`.
Lines after_fault(Lines run) {
    const std::string& call = calls.failing;
    const std::string error = std::to_string(calls.error);
    int i = calls.use - 1 - (call == "new[]" ? 2 : 0);  // two for the pattern, then full names
    if (call == "opendir" || call == "strdup" || call == "new" || i < 0) return {error};
    for (std::string& entry : run) {
        const auto name = entry.find(' ');
        const bool queried_twice = entry.find(" a1ff 81a4 ") != std::string::npos;
        if (name == std::string::npos || (call == "stat64" && !queried_twice)) continue;
        if (const int nth = i--; nth > 0 || (nth < 0 && !calls.ever_after)) continue;
        if (call == "new[]") entry = "? -1 ffffffff ffffffff 0 " + error;
        if (call == "lstat64") entry.replace(name, 99, " -1 ffffffff ffffffff 0 " + error);
        if (call == "stat64") entry.replace(name, 99, " 5 a1ff a1ff 1 " + error);
    }
    return run;  // a locale that cannot be told or set, and a failed close, change nothing
}

TEST_F(Paths, are_enumerated_through_every_fault) {
    for (const char* path : {"a.txt", "b.txt", "c.dat"}) write(path);
    for (const char* path : {"l1.txt", "l2.txt"}) fs::create_symlink("a.txt", path);
    const Lines clean = enumerate("*.txt");
    ASSERT_EQ(clean.size(), 5U);
    for (const std::string call : {"opendir", "readdir64", "closedir", "lstat64", "stat64",
                                   "setlocale", "strdup", "new", "new[]"})
        for (const bool ever_after : {false, true})
            for (int use = 1, untouched = 0; untouched == 0; ++use) {
                SCOPED_TRACE(testing::Message() << call << ' ' << use << ' ' << ever_after);
                const bool memory = call == "strdup" || call[0] == 'n';
                calls = {call, use, ever_after, memory ? ENOMEM : EIO};
                Lines run = enumerate("*.txt");
                untouched = calls.made[call] < use;
                EXPECT_NE(calls.made[call], 0) << "never called";
                Lines expected = untouched ? clean : after_fault(clean);
                if (call == "readdir64" && !untouched) {  // it ends there
                    expected.resize(run.size());
                    expected.back() = std::to_string(EIO);
                }
                EXPECT_EQ(run, expected);
                calls = {};
                // Restored at the second try, but not without end.
                if (call == "setlocale" && use == 3 && ever_after)
                    setlocale(LC_ALL, locale.c_str());
                expect_all_released();
            }
    calls = {"new[]", 3, false, ENOMEM};
    Dirent* found = nullptr;
    const KtFindHandle find = KtFindFirst("b.txt", &found);
    EXPECT_STREQ(found->getLastName(), ".//b.txt") << "there is memory again";
    EXPECT_EQ(KtFindNext(find, found), -1);
}

TEST_F(Paths, are_enumerated_by_the_100000_with_one_query_for_each_delivered_and_no_memory) {
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
