// Files and the open-file budget.
#include <fcntl.h>

#include "fixture.h"

namespace {

TEST_F(Platform, a_full_budget_refuses_an_open_without_a_system_call) {
    for (const auto& [count, limit] : {std::pair{64, 64}, {2, 1}, {0, 0}, {0, -1}}) {
        SYS_OPENFILES = count;
        SYS_MAXFILES = limit;
        errno = kUntouched;
        EXPECT_EQ(KtOpenFile("file", O_CREAT, 0, 0), -1) << limit;
        EXPECT_EQ(errno, kUntouched);
        EXPECT_EQ(enumerate("*").error, EMFILE) << limit;
        EXPECT_EQ(SYS_OPENFILES, count);
    }
    EXPECT_TRUE(calls.made.empty());
}

TEST_F(Platform, an_open_counts_until_its_close) {
    const KtFileHandle file = KtOpenFile("/dev/null", O_RDONLY, 0, 0);
    EXPECT_EQ(SYS_OPENFILES, 1);
    EXPECT_EQ(KtCloseFile(file), 0);
    expect_all_released();
}

TEST_F(Platform, a_close_lowers_every_count_but_zero_before_the_system_call) {
    int seen = 0;
    calls.observer = [&seen](const std::string& call) {
        if (call == "close") seen = SYS_OPENFILES;
    };
    for (const auto& [count, lowered] : {std::pair{2, 1}, {0, 0}, {-5, -6}}) {
        SYS_OPENFILES = count;
        EXPECT_EQ(KtCloseFile(dup(STDIN_FILENO)), 0);
        EXPECT_EQ(seen, lowered);
    }
}

TEST_F(Platform, only_creation_has_a_mode_instead_of_the_large_file_flag) {
    struct Case {
        int flags, extra;
        const char* call;  // with flags and mode in hexadecimal
    };
    for (const Case& c : {Case{O_RDWR | O_CREAT | O_EXCL, O_APPEND, "open 4c2 8180"},
                          Case{O_RDONLY, O_NOFOLLOW, "open 28000 0"},
                          Case{O_RDONLY, O_CREAT, "open 8040 "}}) {  // against the contract
        calls.observer = [&c](const std::string& call) {
            EXPECT_TRUE(call.starts_with(c.call)) << call;
        };
        const KtFileHandle file = KtOpenFile("file", c.flags, c.extra, 1);
        calls.observer = nullptr;
        EXPECT_EQ(KtCloseFile(file), 0);
    }
    EXPECT_EQ(KtGetFileAttributes("file"), 0x8180);
}

TEST_F(Platform, reading_continues_where_writing_stops) {
    write("file");
    const KtFileHandle file = KtOpenFile("file", O_RDWR, 0, 0);
    char buffer[16] = {};
    EXPECT_EQ(KtSeekFile(file, 0, SEEK_END), 10);
    EXPECT_EQ(KtWriteFile(file, "abc", 2), 2);
    EXPECT_EQ(KtSeekFile(file, -4, SEEK_CUR), 8);
    EXPECT_EQ(KtReadFile(file, buffer, sizeof buffer), 4);
    EXPECT_EQ(calls.made["read"], 1) << "a short read is not continued";
    EXPECT_STREQ(buffer, "89ab");
    EXPECT_EQ(KtReadFile(file, buffer, sizeof buffer), 0);
    EXPECT_EQ(KtCloseFile(file), 0);
}

TEST_F(Platform, a_length_has_31_bits) {
    const KtFileHandle file = KtOpenFile("file", O_RDWR | O_CREAT, 0, 0);
    EXPECT_EQ(truncate64("file", 0x7FFFFFFF), 0);
    EXPECT_EQ(KtGetFileLength(file), 0x7FFFFFFF);
    EXPECT_EQ(truncate64("file", 0x80000000), 0);
    EXPECT_EQ(KtGetFileLength(file), -1);
    EXPECT_EQ(std::exchange(errno, 0), EOVERFLOW);
    EXPECT_EQ(KtSeekFile(file, 0, SEEK_END), -1);
    EXPECT_EQ(errno, EOVERFLOW);
    KtCloseFile(file);
}

TEST_F(Platform, the_invalid_handle_reaches_no_system_call_but_fstat) {
    for (const auto& [handle, error] : {std::pair{-1, kUntouched}, {-2, EBADF}}) {
        errno = kUntouched;
        EXPECT_EQ(KtReadFile(handle, nullptr, 0), -1);
        EXPECT_EQ(errno, error);
        EXPECT_EQ(KtWriteFile(handle, nullptr, 0), -1);
        EXPECT_EQ(errno, error);
        EXPECT_EQ(KtSeekFile(handle, 0, SEEK_SET), -1);
        EXPECT_EQ(errno, error);
        SYS_OPENFILES = 1;
        EXPECT_EQ(KtCloseFile(handle), -1);
        EXPECT_EQ(errno, error);
        EXPECT_EQ(SYS_OPENFILES, handle == -1 ? 1 : 0);
        EXPECT_EQ(KtGetFileLength(handle), -1);
        EXPECT_EQ(errno, EBADF);
    }
}

}  // namespace
