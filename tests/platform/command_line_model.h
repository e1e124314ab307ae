// A model of command lines: the positions of words, and the parts of a full path.
#ifndef KTBASE_TESTS_PLATFORM_COMMAND_LINE_MODEL_H
#define KTBASE_TESTS_PLATFORM_COMMAND_LINE_MODEL_H

#include <ktbase/platform.h>

#include <algorithm>
#include <new>

#include "../check.h"

inline std::string with_backslashes(std::string path) {
    std::replace(path.begin(), path.end(), '/', '\\');
    return path;
}

// A word ends at a space or at the end of the text, or at its second quote if it has quotes.
inline std::vector<std::string> words_of(const std::string& text) {
    std::vector<std::string> words;
    for (std::size_t i = 0; (i = text.find_first_not_of(' ', i)) != text.npos;) {
        const std::size_t plain = std::min(text.find_first_of(" \"", i), text.size());
        words.push_back(text.substr(i, plain - i));
        i = plain;
        if (text[plain] != '"') continue;
        const std::size_t quote = std::min(text.find('"', plain + 1), text.size());
        words.back() += text.substr(plain + 1, quote - plain - 1);
        i = std::min(quote + 1, text.size());
    }
    return words;
}

// `text` has at most 4,097 characters and ends before its first NUL.
inline void check_command_line(std::string program, const std::string& name, std::string text) {
    text = text.substr(0, text.find('\0')) + '\0';
    char* table[] = {program.data(), nullptr, nullptr};
    Bytes memory(sizeof(KtCmdLine), '#');
    auto* const line = new (memory.data()) KtCmdLine(2, table);
    const std::string path = with_backslashes(program).substr(0, 4096);
    std::string whole = '\0' + path;
    whole.resize(sizeof line->text);
    require(pCmdLine == line, "pCmdLine");
    require(whole == std::string(line->text, whole.size()), "the path text");

    std::string out(path.size() + name.size() + 1, '#');
    require(line->MakeFullPath(name.c_str(), out.data()) == out.data(), "MakeFullPath's result");
    const std::string full_path = with_backslashes(out.c_str());
    require(full_path.ends_with(with_backslashes(name)), "a full path ends with the name");
    require(path.starts_with(full_path.substr(0, full_path.size() - name.size())),
            "a full path starts with a part of the program's path");

    const std::vector<std::string> words = words_of(text.c_str());
    std::vector<char*> argv(words.size() + 1);
    line->argv = argv.data();
    text.copy(line->text, text.size());
    require(line->ParseCmdLine() == 0, "ParseCmdLine's result");
    require(line->argc == static_cast<int>(argv.size()), "argc");
    require(argv[0] == line->text + 1, "argv[0]");
    require(std::equal(words.begin(), words.end(), argv.begin() + 1), "the words");
    require(whole.substr(text.size()) ==
                std::string(line->text + text.size(), line->text + whole.size()),
            "the path after the text");
}

#endif
