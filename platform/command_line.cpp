// A program's command line: its path in backslash form, words, and full paths.
#include <ktbase/platform.h>

#include <algorithm>
#include <cstddef>
#include <cstring>

static_assert(sizeof(KtCmdLine) == 4108);
static_assert(offsetof(KtCmdLine, argc) == 4100 && offsetof(KtCmdLine, argv) == 4104);

KtCmdLine* pCmdLine = nullptr;

namespace {

constexpr char kSeparator = '\\';
constexpr std::size_t kPathStart = 1;
constexpr std::size_t kPathSize = 4096;

// `text` holds 4,097 characters before its last NUL. A word occupies at least two of them: one of
// its own and a space, or two quotes. Only the last word may occupy one. The table starts with
// argv[0].
constexpr std::size_t kDefaultTableSize = (sizeof(KtCmdLine::text) - 1 + 1) / 2 + 1;
char* default_table[kDefaultTableSize];

void convert_slashes(char* text) {
    std::replace(text, text + std::strlen(text), '/', kSeparator);
}

char* copy_converted(char* out, const char* name) {
    std::strcpy(out, name);
    convert_slashes(out);
    return out;
}

char* join(char* out, const char* prefix, std::size_t length, const char* name) {
    std::strcpy(std::copy_n(prefix, length, out), name);
    return out;
}

// Replaces the spaces at `p` by NULs. Returns the position after them.
char* clear_spaces(char* p) {
    while (*p == ' ') *p++ = '\0';
    return p;
}

// Scans the word at `p`. Removes its opening quote from the text, and replaces its closing quote by
// the NUL that ends the word. Returns the position after the word.
char* scan_word(char* p) {
    bool quoted = false;
    while (*p != '\0' && (quoted || *p != ' ')) {
        if (*p != '"') {
            ++p;
        } else if (quoted) {
            *p = '\0';
            return p + 1;
        } else {
            quoted = true;
            std::memmove(p, p + 1, std::strlen(p));  // the rest of the text with its NUL
        }
    }
    return p;
}

}  // namespace

KtCmdLine::KtCmdLine() : text{}, argc(0), argv(default_table) {
    pCmdLine = this;
    ParseCmdLine();
}

KtCmdLine::KtCmdLine(int argc, char** argv) : text{}, argc(argc), argv(argv) {
    pCmdLine = this;
    if (argc < 1) return;
    std::strncpy(text + kPathStart, argv[0], kPathSize);
    convert_slashes(text + kPathStart);
}

int KtCmdLine::ParseCmdLine() {
    argv[0] = text + kPathStart;
    argc = 1;
    for (char* p = clear_spaces(text); *p != '\0'; p = clear_spaces(p)) {
        argv[argc++] = p;
        p = scan_word(p);
    }
    return 0;
}

char* KtCmdLine::MakeFullPath(const char* name, char* out) {
    if (name == nullptr || out == nullptr) return out;
    const char* const path = text + kPathStart;
    if (name[0] == kSeparator && name[1] == kSeparator) return copy_converted(out, name);
    if (name[0] == kSeparator) {
        const char* const root = std::strchr(path, kSeparator);
        return join(out, path, root == nullptr ? 0 : root - path, name);
    }
    if (name[0] == '\0') {
        *out = '\0';
        return out;
    }
    const char* const last = std::strrchr(path, kSeparator);
    if (name[1] == ':' || last == nullptr) return copy_converted(out, name);
    return join(out, path, last + 1 - path, name);
}
