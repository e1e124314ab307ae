// The clock and the command line.
#include <dlfcn.h>
#include <gtest/gtest.h>
#include <ktbase/platform.h>
#include <sys/time.h>

#include <cerrno>
#include <csignal>
#include <cstring>
#include <memory>
#include <tuple>

namespace {
bool conversion_fails = false;
}

// Stands before the system's.
extern "C" std::tm* localtime(const time_t* time) {
    static const auto real = reinterpret_cast<decltype(&localtime)>(dlsym(RTLD_NEXT, "localtime"));
    return conversion_fails ? nullptr : real(time);
}

namespace {

// Taken before any test runs.
const std::tuple kAtLoad(SYS_OPENFILES, SYS_MAXFILES, bFollowLinks, starttime, pCmdLine);

TEST(Globals, have_their_values_when_the_library_is_loaded) {
    EXPECT_EQ(kAtLoad, std::tuple(0, 64, 1, 0, nullptr));
}

TEST(Clock, converts_sleeps_and_stands_still_at_any_start_time_but_zero) {
    for (starttime = -1; starttime < 2; ++starttime) {
        const auto before = time(nullptr);
        const auto told = KtGetTime();
        EXPECT_TRUE(starttime != 0 ? told == starttime : before <= told && told <= before + 60);
    }
    setenv("TZ", "CET-1CEST,M3.5.0,M10.5.0/3", 1);
    KtLocalDate date;
    for (const std::int32_t time : {INT32_MIN + 86400, -1, 0, INT32_MAX, 1729989000}) {
        ASSERT_EQ(KtTimeToLocalDate(time, &date), &date);
        EXPECT_EQ(KtLocalDateToTime(&date), time);
    }
    date.tm_isdst = 0;  // the last one is 02:30 on the night that has it twice
    EXPECT_EQ(KtLocalDateToTime(&date), 1729989000 + 3600);
    date.tm_mon = 11;
    date.tm_mday = 32;
    EXPECT_EQ(KtLocalDateToTime(&date), 1735695000);
    EXPECT_EQ(date.tm_year * 10000 + date.tm_mon * 100 + date.tm_mday, 1250001);
    EXPECT_EQ(KtLocalDateToTime(nullptr), 0);
    EXPECT_EQ(KtTimeToLocalDate(0, nullptr), nullptr);
    conversion_fails = true;
    EXPECT_EQ(KtTimeToLocalDate(0, &date), nullptr);
    conversion_fails = false;
    EXPECT_EQ(date.tm_year, 125) << "left as it was";

    signal(SIGALRM, [](int) {});
    const itimerval alarm = {{2, 0}, {2, 0}};
    setitimer(ITIMER_REAL, &alarm, nullptr);
    EXPECT_EQ(KtSleep(4294968), 0) << "wraps to 704 microseconds";
    EXPECT_EQ(KtSleep(60000), -1);
    EXPECT_EQ(errno, EINTR);
}

TEST(CommandLine, splits_its_text_in_place) {
    const char* const cases[][2] = {
        {"", "1[z]"},
        {"   ", "1[]"},
        {"  one \"two three\"four  five", "5[][one][two three][four][five]"},
        {"say \"\"", "3[ay][say][]"},
        {"ab\"c d\"e", "3[bc d][abc d][e]"},
        {"a\tb\\\" c \" d\"", "3[\tb\\ c ][a\tb\\ c ][d]"},
        {"x \"open to the end ", "3[][x][open to the end ]"}};
    KtCmdLine line;
    EXPECT_EQ(line.argc, 1);
    for (const auto& [text, words] : cases) {
        char* const behind = line.text + std::strlen(text) + 1;
        std::strcpy(behind, "z");
        std::strcpy(line.text, text);
        EXPECT_EQ(line.ParseCmdLine(), 0);
        std::string parsed = std::to_string(line.argc);
        for (int i = 0; i < line.argc; ++i) parsed += '[' + std::string(line.argv[i]) + ']';
        EXPECT_EQ(parsed, words);
        EXPECT_STREQ(behind, "z") << "moved with the text";
    }
    for (std::size_t i = 0; i + 1 < sizeof line.text; ++i) line.text[i] = i % 2 == 0 ? 'w' : ' ';
    line.ParseCmdLine();
    EXPECT_EQ(line.argc, 2050) << "the most words that a text can hold";
}

TEST(CommandLine, makes_full_paths_in_no_more_room_than_they_may_take) {
    const char* const cases[][3] = {{"./bin/prog", "data/x.ini", ".\\bin\\data/x.ini"},
                                    {"./bin/prog", "\\etc/x", ".\\etc/x"},
                                    {"./bin/prog", "/etc/x", ".\\bin\\/etc/x"},
                                    {"C:\\t\\p", "\\x\\y", "C:\\x\\y"},
                                    {"C:\\t\\p", "/:/z", "\\:\\z"},
                                    {"C:\\t\\p", "\\\\srv/share", "\\\\srv\\share"},
                                    {"prog", "a/b", "a\\b"},
                                    {"prog", "\\a/b", "\\a/b"}};
    for (const auto& [program, name, full] : cases) {
        char* argv[] = {const_cast<char*>(program)};
        KtCmdLine line(1, argv);
        EXPECT_EQ(pCmdLine, &line);
        const auto out = std::make_unique<char[]>(std::strlen(program) + std::strlen(name) + 1);
        EXPECT_EQ(line.MakeFullPath(name, out.get()), out.get());
        EXPECT_EQ(line.MakeFullPath(nullptr, out.get()), out.get());
        EXPECT_EQ(line.MakeFullPath(name, nullptr), nullptr);
        EXPECT_STREQ(out.get(), full);
    }
}

TEST(CommandLine, keeps_4096_characters_of_the_path_and_zeros_around_them) {
    alignas(KtCmdLine) char memory[sizeof(KtCmdLine)];
    std::string program(5000, '/');
    char* argv[] = {program.data()};
    for (const int argc : {1, 0}) {
        std::memset(memory, 0xEE, sizeof memory);
        const std::string text((new (memory) KtCmdLine(argc, argv))->text, 4098);
        EXPECT_EQ(text, '\0' + std::string(4096, argc == 0 ? '\0' : '\\') + '\0');
    }
}

}  // namespace
