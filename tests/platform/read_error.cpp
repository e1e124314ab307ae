// Replaces readdir64: every directory has one entry, and then cannot be read.
#include <dirent.h>

#include <cerrno>
#include <cstring>

dirent64* readdir64(DIR* /*stream*/) {
    static dirent64 record;
    errno = EIO;
    if (record.d_name[0] != '\0') return nullptr;
    std::strcpy(record.d_name, "empty.txt");
    return &record;
}
