// Tests of words and full paths of command lines.
#include <gtest/gtest.h>

#include <cstring>

#include "command_line_model.h"

namespace {

TEST(CommandLine, full_paths_start_at_the_program) {
    struct Case {
        const char *program, *name, *full_path;
    };
    for (const Case& c : {
             Case{"./bin/prog", "data/x.ini", R"(.\bin\data/x.ini)"},
             Case{"./bin/prog", R"(\etc/x)", R"(.\etc/x)"},
             Case{"C:/tools/prog.exe", R"(\x\y)", R"(C:\x\y)"},
             Case{"C:/tools/prog.exe", R"(\:y)", R"(C:\:y)"},
             Case{"C:/tools/prog.exe", "D:/z", R"(D:\z)"},
             Case{"C:/tools/prog.exe", R"(\\srv/share)", R"(\\srv\share)"},
             Case{"C:/tools/prog.exe", "", ""},
             Case{"prog", "a/b", R"(a\b)"},
             Case{"prog", R"(\a/b)", R"(\a/b)"},
         }) {
        std::string program = c.program;
        char* argv[] = {program.data(), nullptr};
        char out[40];
        EXPECT_STREQ(KtCmdLine(1, argv).MakeFullPath(c.name, out), c.full_path);
    }
}

TEST(CommandLine, words_are_split_at_spaces_outside_quotes) {
    for (const char* text : {"  one \"two three\"four  five", "ab\"c d\"e", "say \"\"", "a \"b c ",
                             "\tx\ty", " ", "\"", "a\"b\"\"c\""})
        check_command_line("./program", "name", text);
}

TEST(CommandLine, a_path_is_cut_to_4096_characters) {
    for (const std::size_t size : {4095, 4096, 4097, 5000})
        check_command_line(std::string(size, '/'), "name", "word");
}

TEST(CommandLine, no_arguments_give_an_empty_path) {
    const KtCmdLine line(0, nullptr);
    EXPECT_EQ(line.argc, 0);
    EXPECT_STREQ(line.text, "");
}

TEST(CommandLine, the_default_table_has_room_for_the_most_words) {
    KtCmdLine line;
    EXPECT_EQ(pCmdLine, &line);
    EXPECT_EQ(line.argc, 1);
    for (std::size_t i = 0; i + 1 < sizeof line.text; ++i) line.text[i] = i % 2 == 0 ? 'w' : ' ';
    line.ParseCmdLine();
    EXPECT_EQ(line.argc, 2050);
}

TEST(CommandLine, a_null_name_makes_no_full_path) {
    KtCmdLine line;
    char out[] = "#";
    EXPECT_EQ(line.MakeFullPath(nullptr, out), out);
    EXPECT_STREQ(out, "#");
    EXPECT_EQ(line.MakeFullPath("name", nullptr), nullptr);
}

}  // namespace
