// list_files PATTERN: lists the directory entries that match, like a small "ls -l".
//
//     list_files 'logs/*.txt'
//
// Shows how to run an enumeration to its end, and how to report links and the errors of entries.
#include <dirent.h>
#include <ktbase/platform.h>
#include <ktbase/text.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

namespace {

constexpr std::size_t kLongestTarget = 4096;

struct Row {
    char type;
    std::string size;
    std::string name;
};

char type_letter(KtFileAttributes attributes) {
    if (attributes == -1) return '?';
    if (KtIsDirectory(attributes) != 0) return 'd';
    if (S_ISLNK(attributes)) return 'l';
    return S_ISREG(attributes) ? '-' : 's';  // devices, pipes and sockets
}

// The entry's size. The size of a file of exactly 2 GiB is -2147483648, and the cast to unsigned
// makes it 2147483648.
std::string size_text(Dirent* found) {
    if (KtFindGetFileAttributes(found) == -1) return "?";
    return std::to_string(static_cast<unsigned>(KtFindGetFileSize(found)));
}

std::string name_text(Dirent* found) {
    // The name is valid only until the next entry. Copy it.
    std::string text = KtFindGetFileName(found);
    const char* const path = found->getLastName();
    if (found->isLink != 0 && path != nullptr) {
        char target[kLongestTarget];
        const ssize_t length = readlink(path, target, sizeof target);
        if (length >= 0) text += " -> " + std::string(target, length);
    }
    if (found->error != 0) text += std::string(" (") + std::strerror(found->error) + ')';
    return text;
}

bool directory_exists(const std::string& pattern) {
    const std::size_t slash = pattern.rfind('/');
    return slash == std::string::npos ||
           KtIsDirectory(KtGetFileAttributes(pattern.substr(0, slash + 1).c_str())) != 0;
}

int fail(const char* what, const char* why) {
    std::fprintf(stderr, "list_files: %s: %s\n", what, why);
    return 1;
}

// A name may hold any character but NUL and the slash. Do not print control characters.
std::string printable(std::string text) {
    for (char& c : text)
        if ((ks_char_map[static_cast<unsigned char>(c)] & CHAR_CTL) != 0) c = '?';
    return text;
}

void print(const std::vector<Row>& rows) {
    std::size_t width = 0;
    for (const Row& row : rows) width = std::max(width, row.size.size());
    for (const Row& row : rows)
        std::printf("%c %*s %s\n", row.type, static_cast<int>(width), row.size.c_str(),
                    printable(row.name).c_str());
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 2) {
        std::fprintf(stderr, "usage: list_files PATTERN\n");
        return 2;
    }
    const char* const pattern = argv[1];
    bFollowLinks = 0;  // a link is listed as a link

    Dirent* found = nullptr;
    const KtFindHandle find = KtFindFirst(pattern, &found);
    if (find == -1) {
        // ENOENT: the directory does not exist, or no entry matches.
        const int error = errno;
        const bool none = error == 0 || (error == ENOENT && directory_exists(pattern));
        return fail(pattern, none ? "nothing matches" : std::strerror(error));
    }
    std::vector<Row> rows;
    do {
        rows.push_back(
            {type_letter(KtFindGetFileAttributes(found)), size_text(found), name_text(found)});
        errno = 0;  // KtFindNext sets errno only if it cannot read the directory
    } while (KtFindNext(find, found) == 0);
    const int error = errno;

    print(rows);
    if (error != 0) return fail(pattern, std::strerror(error));
    if (std::fflush(stdout) != 0) return fail("standard output", std::strerror(errno));
    return 0;
}
