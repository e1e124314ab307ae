// Files that ktsign writes. What is reported as written is on the disk: a file is synced before it
// takes its name, and its directory after that. A reader sees the old content or the new, never a
// part. Signals are blocked while files are written, so that a signal leaves both keys of a pair or
// neither, and no temporary file.
#ifndef KTBASE_TOOLS_OUTPUT_FILES_H
#define KTBASE_TOOLS_OUTPUT_FILES_H

#include <sys/stat.h>

#include <optional>
#include <string>

#include "descriptor.h"
#include "libcrypto.h"

// True for a link that leads to no file, too. Throws Failure when the query fails.
bool name_exists(const std::string& name);

// Which file a name leads to.
struct FileIdentity {
    dev_t device;
    ino_t inode;
    auto operator<=>(const FileIdentity&) const = default;
};

// Returns nothing when `name` leads to no file. Throws Failure when the query fails otherwise.
std::optional<FileIdentity> file_identity(const std::string& name);

// What an output may replace.
struct Replacement {
    std::string kind;           // as a message names it
    std::optional<off_t> size;  // of what the command writes; nothing: only an empty file
    bool forced = false;        // any regular file
};

// One output. A link is followed to what it leads to. A pipe or a terminal is written through, and
// so is standard output, by the name "-". Every function throws Failure.
class OutputFile {
public:
    // Throws when the file may not be written.
    OutputFile(const std::string& name, Replacement replacement);

    std::optional<FileIdentity> identity() const;  // of an existing file
    bool is_empty() const { return state_.status && state_.status->st_size == 0; }
    void write(ConstBytes content) const;

private:
    struct State {
        std::string target;                 // the name without links
        std::optional<struct stat> status;  // of an existing file
    };

    State query() const;
    void require_replaceable(const struct stat& status) const;

    std::string name_;
    Replacement replacement_;
    State state_;
};

// Creates a private key that only its owner may read and the public key for everybody less the
// umask, the private key first. Neither name may exist. Throws Failure, and then neither was made.
void create_key_pair(const std::string& private_name, ConstBytes private_key,
                     const std::string& public_name, ConstBytes public_key);

#endif
