// Files and their budget. The program's own open() stands before the system's and notes its calls.
#include <dlfcn.h>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <ktbase/platform.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdarg>
#include <vector>

namespace {

struct OpenCall {
    int flags;
    unsigned mode;
    bool operator==(const OpenCall&) const = default;
};
std::vector<OpenCall> open_calls;

constexpr int kUntouched = 4711;  // no system error

}  // namespace

extern "C" int open(const char* path, int flags, ...) {
    va_list rest;
    va_start(rest, flags);
    const unsigned mode = (flags & O_CREAT) != 0 ? va_arg(rest, unsigned) : 0;
    va_end(rest);
    open_calls.push_back({flags, mode});
    const auto real = reinterpret_cast<decltype(&open)>(dlsym(RTLD_NEXT, "open"));
    return real(path, flags, mode);
}

namespace {

struct FileAccess : testing::Test {
    const std::string path = testing::TempDir() + "ktbase_file_" + std::to_string(getpid());

    FileAccess() {
        open_calls.clear();
        errno = kUntouched;
    }
    ~FileAccess() override { unlink(path.c_str()); }
    KtFileHandle create() const {
        return KtOpenFile(path.c_str(), O_RDWR | O_CREAT | O_EXCL, 0, 0);
    }
};

TEST_F(FileAccess, opens_are_held_against_the_budget_without_asking_the_system) {
    EXPECT_EQ(SYS_OPENFILES, 0);
    EXPECT_EQ(SYS_MAXFILES, 64);
    std::vector<KtFileHandle> files;
    for (int i = 0; i < 64; ++i) files.push_back(KtOpenFile("/dev/null", O_RDONLY, 0, 0));
    EXPECT_EQ(KtCloseFile(files.back()), 0);
    files.back() = KtOpenFile("/dev/null", O_RDONLY, 0, 0);
    for (const int limit : {64, 0, -1}) {
        SYS_MAXFILES = limit;
        EXPECT_EQ(create(), -1) << limit;
    }
    EXPECT_EQ(open_calls.size(), 65U);
    EXPECT_EQ(errno, kUntouched);
    for (const KtFileHandle file : files) EXPECT_EQ(KtCloseFile(file), 0);
    EXPECT_EQ(create(), -1) << "a negative limit refuses everything";
    SYS_MAXFILES = 64;
}

TEST_F(FileAccess, creation_is_asked_for_in_the_flags_and_goes_without_the_large_file_flag) {
    constexpr int kCreate = O_RDWR | O_CREAT | O_EXCL;
    const mode_t umask_before = umask(0040);
    const KtFileHandle file = KtOpenFile(path.c_str(), kCreate, O_APPEND, 1);
    umask(umask_before);
    EXPECT_EQ(create(), -1);
    EXPECT_EQ(errno, EEXIST);
    EXPECT_EQ(KtOpenFile(path.c_str(), O_RDONLY, O_NOFOLLOW, 0), file + 1);
    // Against the contract, but no end of the host.
    EXPECT_EQ(KtOpenFile(path.c_str(), O_RDONLY, O_CREAT, 0), file + 2);
    EXPECT_EQ(SYS_OPENFILES, 3);
    open_calls.resize(3);
    EXPECT_EQ(open_calls, (std::vector<OpenCall>{{kCreate | O_APPEND, 0x8180},
                                                 {kCreate, 0x8180},
                                                 {O_RDONLY | 0x8000 | O_NOFOLLOW, 0}}));
    struct stat64 status;
    ASSERT_EQ(stat64(path.c_str(), &status), 0);
    EXPECT_EQ(status.st_mode, S_IFREG | 0600U);
    for (const KtFileHandle opened : {file, file + 1, file + 2}) KtCloseFile(opened);
}

TEST_F(FileAccess, a_close_lowers_the_count_first_and_never_below_zero) {
    SYS_OPENFILES = 2;
    EXPECT_EQ(KtCloseFile(-1), -1);
    EXPECT_EQ(errno, kUntouched);
    EXPECT_EQ(SYS_OPENFILES, 2);
    EXPECT_EQ(KtCloseFile(-2), -1);
    EXPECT_EQ(errno, EBADF);
    EXPECT_EQ(SYS_OPENFILES, 1);
    SYS_OPENFILES = 0;
    const int foreign = dup(STDIN_FILENO);
    EXPECT_EQ(KtCloseFile(foreign), 0);
    EXPECT_EQ(SYS_OPENFILES, 0);
    EXPECT_EQ(fcntl(foreign, F_GETFD), -1);
}

TEST_F(FileAccess, files_are_read_written_and_measured_at_their_position) {
    const KtFileHandle file = create();
    char buffer[16] = {};
    EXPECT_EQ(KtWriteFile(file, "0123456789", 10), 10);
    EXPECT_EQ(KtSeekFile(file, -4, SEEK_CUR), 6);
    EXPECT_EQ(KtReadFile(file, buffer, sizeof buffer), 4);
    EXPECT_STREQ(buffer, "6789");
    EXPECT_EQ(KtReadFile(file, buffer, sizeof buffer), 0);
    EXPECT_EQ(KtSeekFile(file, 0, SEEK_END), 10);
    EXPECT_EQ(KtSeekFile(file, 3, SEEK_SET), 3);
    EXPECT_EQ(errno, kUntouched);

    ASSERT_EQ(ftruncate64(file, 0x7FFFFFFF), 0);
    EXPECT_EQ(KtGetFileLength(file), 0x7FFFFFFF);
    KtCloseFile(file);
    const KtFileHandle large = KtOpenFile(path.c_str(), O_RDWR, 0, 0);
    ASSERT_EQ(ftruncate64(large, 0x80000000LL), 0);
    EXPECT_EQ(KtGetFileLength(large), -1);
    EXPECT_EQ(errno, EOVERFLOW);
    EXPECT_EQ(KtOpenFile(path.c_str(), O_RDONLY, 0, 0), large + 1)
        << "the large-file flag is added";
    for (const KtFileHandle opened : {large, large + 1}) KtCloseFile(opened);
}

TEST_F(FileAccess, the_invalid_handle_is_answered_at_once_and_others_by_the_system) {
    char byte = 0;
    for (const auto& [file, error] : {std::pair{-1, kUntouched}, {-2, EBADF}}) {
        EXPECT_EQ(KtReadFile(file, &byte, 1), -1);
        EXPECT_EQ(KtWriteFile(file, &byte, 1), -1);
        EXPECT_EQ(KtSeekFile(file, 0, SEEK_SET), -1);
        EXPECT_EQ(errno, error);
    }
    EXPECT_EQ(KtGetFileLength(-1), -1);
    EXPECT_EQ(errno, EBADF);
}

}  // namespace
