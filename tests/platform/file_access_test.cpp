// Files and their budget.
#include <fcntl.h>

#include "fixture.h"

namespace {

TEST_F(Platform, files_are_held_against_the_budget_without_asking_the_system) {
    std::vector<KtFileHandle> files;
    for (int i = 0; i < 64; ++i) files.push_back(KtOpenFile("/dev/null", O_RDONLY, 0, 0));
    EXPECT_EQ(KtCloseFile(files.back()), 0);
    files.back() = KtOpenFile("/dev/null", O_RDONLY, 0, 0);
    errno = kUntouched;
    for (const int limit : {64, 0, -1}) {
        SYS_MAXFILES = limit;
        EXPECT_EQ(KtOpenFile("file", O_CREAT, 0, 0), -1) << limit;
    }
    EXPECT_EQ(KtCloseFile(-1), -1);
    EXPECT_EQ(SYS_OPENFILES, 64);
    for (const KtFileHandle file : files) EXPECT_EQ(KtCloseFile(file), 0);
    EXPECT_EQ(KtCloseFile(dup(STDIN_FILENO)), 0) << "not one of them: the count stays at 0";
    EXPECT_EQ(KtOpenFile("file", O_CREAT, 0, 0), -1) << "a negative limit refuses everything";
    SYS_MAXFILES = 64;
    EXPECT_EQ(calls.made["open"], 65);
    EXPECT_EQ(errno, kUntouched);
    expect_all_released();
}

TEST_F(Platform, files_are_created_by_the_flags_alone_and_without_the_large_file_flag) {
    std::string trace;
    calls.trace = &trace;
    umask(0200);
    const KtFileHandle file = KtOpenFile("file", O_RDWR | O_CREAT | O_EXCL, O_APPEND, 1);
    EXPECT_EQ(KtOpenFile("file", O_RDWR | O_CREAT | O_EXCL, 0, 0), -1);
    EXPECT_EQ(errno, EEXIST);
    EXPECT_EQ(KtOpenFile("file", O_RDONLY, O_NOFOLLOW, 0), file + 1);
    // Against the contract, but no end of the host.
    EXPECT_EQ(KtOpenFile("file", O_RDONLY, O_CREAT, 0), file + 2);
    EXPECT_EQ(SYS_OPENFILES, 3);
    EXPECT_EQ(trace.substr(0, trace.rfind(':')), "4c2:8180 c2:8180 28000:0 8040");
    EXPECT_EQ(KtGetFileAttributes("file"), 0x8100);
    trace.clear();
    for (const KtFileHandle opened : {file, file + 1, file + 2}) KtCloseFile(opened);
    EXPECT_EQ(trace, "close:2 close:1 close:0 ") << "the count falls first";
}

TEST_F(Platform, files_are_read_written_and_measured_at_their_position) {
    write("file");
    calls = {};
    const KtFileHandle file = KtOpenFile("file", O_RDWR, 0, 0);
    char buffer[16] = {};
    errno = kUntouched;
    EXPECT_EQ(KtSeekFile(file, 0, SEEK_END), 10);
    EXPECT_EQ(KtWriteFile(file, "abc", 2), 2);
    EXPECT_EQ(KtSeekFile(file, -4, SEEK_CUR), 8);
    EXPECT_EQ(KtReadFile(file, buffer, sizeof buffer), 4);
    EXPECT_STREQ(buffer, "89ab");
    EXPECT_EQ(KtReadFile(file, buffer, sizeof buffer), 0);
    EXPECT_EQ(calls.made["read"] + calls.made["write"], 3);
    EXPECT_EQ(truncate64("file", 0x7FFFFFFF), 0);
    EXPECT_EQ(KtGetFileLength(file), 0x7FFFFFFF);
    EXPECT_EQ(errno, kUntouched);
    EXPECT_EQ(truncate64("file", 0x80000000LL), 0);
    EXPECT_EQ(KtGetFileLength(file), -1);
    EXPECT_EQ(std::exchange(errno, 0), EOVERFLOW);
    EXPECT_EQ(KtSeekFile(file, 0, SEEK_END), -1);
    EXPECT_EQ(errno, EOVERFLOW);
    EXPECT_EQ(KtCloseFile(KtOpenFile("file", O_RDONLY, 0, 0)), 0) << "with the large-file flag";
    KtCloseFile(file);
    for (const auto& [none, error] : {std::pair{-1, kUntouched}, {-2, EBADF}}) {
        errno = kUntouched;
        EXPECT_EQ(KtReadFile(none, buffer, 1), -1);
        EXPECT_EQ(KtWriteFile(none, buffer, 1), -1);
        EXPECT_EQ(KtSeekFile(none, 0, SEEK_SET), -1);
        EXPECT_EQ(errno, error);
        EXPECT_EQ(KtGetFileLength(none), -1);
        EXPECT_EQ(errno, EBADF);
    }
}

}  // namespace
