// The values at load, the clock, and what no fuzzer's command line reaches.
#include <sys/time.h>

#include <csignal>
#include <tuple>

#include "fixture.h"

namespace {

// Taken before any test runs.
const std::tuple kAtLoad(SYS_OPENFILES, SYS_MAXFILES, bFollowLinks, starttime, pCmdLine);

TEST(Services, have_their_values_when_the_library_is_loaded) {
    EXPECT_EQ(kAtLoad, std::tuple(0, 64, 1, 0, nullptr));
}

TEST(Services, tell_convert_and_pass_the_time_and_stop_it_at_any_start_but_zero) {
    for (starttime = -1; starttime < 2; ++starttime) {
        const auto before = time(nullptr);
        const auto told = KtGetTime();
        EXPECT_TRUE(starttime != 0 ? told == starttime : before <= told && told <= before + 60);
    }
    setenv("TZ", "CET-1CEST,M3.5.0,M10.5.0/3", 1);
    KtLocalDate date;
    for (const std::int32_t time : {INT32_MIN + 86400, INT32_MAX, 1729989000}) {
        ASSERT_EQ(KtTimeToLocalDate(time, &date), &date);
        EXPECT_EQ(KtLocalDateToTime(&date), time);
    }
    date.tm_isdst = 0;  // the last one is 02:30 on the night that has it twice
    EXPECT_EQ(KtLocalDateToTime(&date), 1729989000 + 3600);
    EXPECT_EQ(KtLocalDateToTime(nullptr), 0);
    EXPECT_EQ(KtTimeToLocalDate(0, nullptr), nullptr);

    signal(SIGALRM, [](int) {});
    const itimerval alarm = {{0, 300000}, {0, 300000}};
    setitimer(ITIMER_REAL, &alarm, nullptr);
    EXPECT_EQ(KtSleep(4294968), 0) << "wraps to 704 microseconds";
    EXPECT_EQ(KtSleep(60000), -1);
    EXPECT_EQ(errno, EINTR);
}

TEST(Services, split_a_command_line_of_the_most_words_into_the_default_table) {
    KtCmdLine line;
    EXPECT_EQ(line.argc, 1);
    EXPECT_EQ(pCmdLine, &line);
    for (std::size_t i = 0; i + 1 < sizeof line.text; ++i) line.text[i] = i % 2 == 0 ? 'w' : ' ';
    line.ParseCmdLine();
    EXPECT_EQ(line.argc, 2050);
    EXPECT_EQ(line.MakeFullPath(nullptr, line.text), line.text);
    EXPECT_EQ(line.MakeFullPath("name", nullptr), nullptr);
    char* end = nullptr;
    EXPECT_EQ(KtStrtoul("-z!", &end, 36), -35UL);
    EXPECT_EQ(CopyTextString(line.text, end), line.text);
    EXPECT_STREQ(line.text, "!");
}

}  // namespace
