// Files as ktsign reads and writes them: read in pieces, written whole or not at all.
#ifndef KTBASE_TOOLS_FILES_H
#define KTBASE_TOOLS_FILES_H

#include <functional>
#include <span>
#include <stdexcept>
#include <string>

using ConstBytes = std::span<const unsigned char>;

// What went wrong and with which file, in one line.
struct FileError : std::runtime_error {
    FileError(const std::string& path, const std::string& what)
        : std::runtime_error(path + ": " + what) {}
};

// Hands the file to `take`, piece by piece. Throws FileError.
void read_pieces(const std::string& path,
                 const std::function<void(std::span<unsigned char>)>& take);

// True when both names lead to one file.
bool same_file(const std::string& a, const std::string& b);

enum class Readers { owner, everybody };  // everybody, less the umask

// Writes a file that must not exist yet. Throws FileError, and then leaves everything as it was.
void create_file(const std::string& path, ConstBytes content, Readers readers);

// Writes a file, or replaces it: another reader sees the old content or the new, never a part. What
// is replaced keeps its mode, but not its other names; a link is followed. Throws FileError, and
// then leaves everything as it was.
void replace_file(const std::string& path, ConstBytes content);

#endif
