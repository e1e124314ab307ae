// Tests of the initial values of globals, of the clock and of the small services.
#include <tuple>

#include "fixture.h"

namespace {

// Initialised before the first test.
const std::tuple kAtLoad(SYS_OPENFILES, SYS_MAXFILES, bFollowLinks, starttime, pCmdLine);

TEST_F(Platform, globals_have_their_values_at_load) {
    EXPECT_EQ(kAtLoad, std::tuple(0, 64, 1, 0, nullptr));
}

TEST_F(Platform, a_nonzero_start_time_stops_the_clock) {
    for (const std::int32_t start : {-1, 1}) {
        starttime = start;
        EXPECT_EQ(KtGetTime(), start);
    }
    starttime = 0;
    EXPECT_NEAR(KtGetTime(), time(nullptr), 60);
}

TEST_F(Platform, local_dates_convert_in_both_directions) {
    setenv("TZ", "CET-1CEST,M3.5.0,M10.5.0/3", 1);
    constexpr std::int32_t kRepeatedHour = 1729989000;  // 02:30 in summer time
    KtLocalDate date;
    for (const std::int32_t time : {INT32_MIN + 86400, INT32_MAX, kRepeatedHour}) {
        EXPECT_EQ(KtTimeToLocalDate(time, &date), &date);
        EXPECT_EQ(KtLocalDateToTime(&date), time);
    }
    EXPECT_STREQ(date.tm_zone, "CEST");
    date.tm_isdst = 0;
    EXPECT_EQ(KtLocalDateToTime(&date), kRepeatedHour + 3600);
    date.tm_year = INT32_MAX;
    EXPECT_EQ(KtLocalDateToTime(&date), -1);
}

TEST_F(Platform, a_null_date_fails) {
    EXPECT_EQ(KtLocalDateToTime(nullptr), 0);
    EXPECT_EQ(KtTimeToLocalDate(0, nullptr), nullptr);
}

TEST_F(Platform, a_long_sleep_wraps_at_32_bits_of_microseconds) {
    for (const auto& [milliseconds, call] :
         {std::pair{1500U, "usleep 1500000"}, {4294968, "usleep 704"}}) {
        std::string made;
        calls.observer = [&made](const std::string& name) { made += name; };
        EXPECT_EQ(KtSleep(milliseconds), 0);
        EXPECT_EQ(made, call);
    }
}

TEST_F(Platform, a_number_ends_at_the_first_digit_outside_its_base) {
    struct Case {
        const char* text;
        int base;
        unsigned long value;
        const char* end;
    };
    for (const Case& c : {Case{"-z!", 36, -35UL, "!"}, Case{"0x1F", 0, 31, ""},
                          Case{"0b11", 0, 0, "b11"}, Case{"0b11", 2, 0, "b11"}}) {
        char* end = nullptr;
        EXPECT_EQ(KtStrtoul(c.text, &end, c.base), c.value) << c.text;
        EXPECT_STREQ(end, c.end);
    }
}

TEST_F(Platform, a_copy_returns_its_destination) {
    char text[] = "####";
    EXPECT_EQ(CopyTextString(text, "ab"), text);
    EXPECT_EQ(std::string(text, 4), std::string("ab\0#", 4));
}

}  // namespace
