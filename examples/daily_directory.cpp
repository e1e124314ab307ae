// daily_directory SECONDS COMMANDS: makes a directory for the day and splits a line of commands.
//
//     daily_directory 1000000000 'open "my log.txt" append'
//
// Shows how to pin the clock, convert a local date, create a chain of directories, make the full
// path of a file in the program's directory, and split a command line. If SECONDS is 0, the clock
// is not pinned.
#include <ktbase/platform.h>

#include <cerrno>
#include <cstdio>
#include <cstring>

namespace {

constexpr char kSettings[] = "settings.ini";

// Converts `text` to `seconds`. Returns false if `text` is not a number of 31 bits.
bool parse_seconds(const char* text, std::int32_t& seconds) {
    char* end = nullptr;
    errno = 0;
    const unsigned long value = KtStrtoul(text, &end, 10);
    seconds = static_cast<std::int32_t>(value);
    return end != text && *end == '\0' && errno == 0 && value <= INT32_MAX;
}

bool make_directory_of_the_day() {
    KtLocalDate date;
    if (KtTimeToLocalDate(KtGetTime(), &date) == nullptr) return false;
    // For the system a backslash is part of a name, so all directories ("logs", "logs\2001", ...)
    // are created in the current directory.
    char path[64];
    std::snprintf(path, sizeof path, "logs\\%04d\\%02d\\%02d", date.tm_year + 1900, date.tm_mon + 1,
                  date.tm_mday);
    if (KtMakePath(path) == -1) {
        std::fprintf(stderr, "daily_directory: %s: %s\n", path, std::strerror(errno));
        return false;
    }
    std::printf("directory: %s\n", path);
    return true;
}

void print_path_of_settings(KtCmdLine& program) {
    char path[sizeof program.text + sizeof kSettings];
    program.MakeFullPath(kSettings, path);
    std::printf("settings: %s\n", path);
}

bool print_words(const char* text) {
    static KtCmdLine commands;  // static, because pCmdLine points to it
    if (std::strlen(text) >= sizeof commands.text) return false;
    CopyTextString(commands.text, text);
    commands.ParseCmdLine();
    for (int i = 1; i < commands.argc; ++i) std::printf("word: %s\n", commands.argv[i]);
    return true;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 3 || !parse_seconds(argv[1], starttime)) {
        std::fprintf(stderr, "usage: daily_directory SECONDS COMMANDS\n");
        return 2;
    }
    static KtCmdLine program(argc, argv);
    print_path_of_settings(program);
    if (!make_directory_of_the_day()) return 1;
    if (!print_words(argv[2])) {
        std::fprintf(stderr, "daily_directory: the commands are too long\n");
        return 1;
    }
    if (std::fflush(stdout) == 0) return 0;
    std::perror("daily_directory: standard output");
    return 1;
}
