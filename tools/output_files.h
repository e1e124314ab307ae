// Files that ktsign writes. A file is synced before it gets its name, and its directory afterwards,
// so a file is on the disk when a function returns. Other programs read the old content or the new
// content, never a part. Signals are blocked while files are written: after a signal, both keys of
// a pair exist or neither does, and no temporary file remains.
#ifndef KTBASE_TOOLS_OUTPUT_FILES_H
#define KTBASE_TOOLS_OUTPUT_FILES_H

#include <sys/stat.h>

#include <optional>
#include <string>

#include "descriptor.h"
#include "libcrypto.h"

// Also true for a symbolic link without a target. Throws Failure if the query fails.
bool name_exists(const std::string& name);

// Identifies the file of a name, after symbolic links.
struct FileIdentity {
    dev_t device;
    ino_t inode;
    auto operator<=>(const FileIdentity&) const = default;
};

// Returns nothing if the file does not exist. Throws Failure for any other error of the query.
std::optional<FileIdentity> file_identity(const std::string& name);

// The files that an output may replace.
struct Replacement {
    std::string kind;           // for messages
    std::optional<off_t> size;  // files of this size and empty files are replaced
    bool forced;                // any regular file
};

// One output. Symbolic links are followed. A pipe, a terminal and standard output (the name "-")
// are written in place. Every function throws Failure.
class OutputFile {
public:
    // Throws Failure if the file must not be replaced.
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

// Creates a private key with mode 0600 and then the public key with mode 0666 less the umask.
// Requires that neither file exists. Throws Failure, and then neither file exists.
void create_key_pair(const std::string& private_name, ConstBytes private_key,
                     const std::string& public_name, ConstBytes public_key);

#endif
