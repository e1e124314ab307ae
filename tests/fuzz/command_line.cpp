// Words and full paths against a splitter that collects words into strings and paths built of
// strings.
#include <ktbase/platform.h>

#include <new>

#include "fuzz.h"

namespace {

std::vector<std::string> words(const std::string& text) {
    std::vector<std::string> found;
    for (std::size_t i = 0; (i = text.find_first_not_of(' ', i)) != text.npos;) {
        int quotes = 0;
        std::string& word = found.emplace_back();
        for (; i < text.size() && quotes < 2 && (quotes == 1 || text[i] != ' '); ++i)
            if (text[i] == '"')
                ++quotes;
            else
                word += text[i];
    }
    return found;
}

std::string backslashed(std::string path) {
    std::replace(path.begin(), path.end(), '/', '\\');
    return path;
}

std::string full_path(const std::string& path, const std::string& name) {
    const std::size_t root = path.find('\\');
    if (name.empty()) return "";
    if (name.starts_with("\\\\")) return backslashed(name);
    if (name[0] == '\\') return (root == path.npos ? "" : path.substr(0, root)) + name;
    if (name.substr(1).starts_with(':') || root == path.npos) return backslashed(name);
    return path.substr(0, path.rfind('\\') + 1) + name;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Input input(data, size);
    const unsigned mode = input.byte();
    std::string program;
    const std::string part = input.text();
    for (int i = 0; i < (mode == 'R' ? 400 : 1); ++i) program += part;  // beyond 4,096 characters
    const std::string name = input.text();
    const std::string text = input.text().substr(0, 4097) + '\0';

    char* table[] = {program.data(), nullptr};
    Bytes memory(sizeof(KtCmdLine), '#');
    auto* const line = new (memory.data()) KtCmdLine(mode == 'N' ? 0 : 1, table);
    const std::string path = mode == 'N' ? "" : backslashed(program).substr(0, 4096);
    std::string whole = '\0' + path;
    whole.resize(sizeof line->text);
    require(pCmdLine == line && whole == std::string(line->text, whole.size()), "path text");
    std::string out(full_path(path, name).size() + path.size() + 1, '#');
    require(line->MakeFullPath(name.c_str(), out.data()) == out.data(), "MakeFullPath's result");
    require(out.c_str() == full_path(path, name), "MakeFullPath");

    const std::vector<std::string> expected = words(text.c_str());
    std::vector<char*> argv(expected.size() + 1);
    line->argv = argv.data();
    text.copy(line->text, text.size());
    require(line->ParseCmdLine() == 0, "ParseCmdLine's result");
    require(line->argc == static_cast<int>(argv.size()) && argv[0] == line->text + 1, "argc");
    require(std::equal(expected.begin(), expected.end(), argv.begin() + 1), "words");
    require(std::equal(whole.begin() + text.size(), whole.end(), line->text + text.size()),
            "what stands behind the text");
    return 0;
}
