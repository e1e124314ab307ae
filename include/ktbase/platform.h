// The platform layer of ktbase: files under a process-wide budget, path attributes, wildcard
// enumeration, directory chains, the clock and the program's command line.
//
// Widths are those of 32-bit x86 Linux: sizes, offsets and times are 32-bit. Paths and texts are
// NUL-terminated byte strings. Failures answer -1 (or null) with the reason in errno; no function
// with a plain symbol lets an exception out.
//
// Ownership: everything belongs to the caller, except the directory stream and the Dirent of an
// enumeration, which KtFindFirst makes and the library releases when the enumeration ends.
//
// Threads: nothing here is locked. The open-file count, the process locale (switched to "C" while
// an enumeration lives), the system's shared local-time record, pCmdLine and the exported globals
// are process-wide; callers that use the services behind them from several threads make those
// calls one at a time. The rest is reentrant.
#ifndef KTBASE_PLATFORM_H
#define KTBASE_PLATFORM_H

#include <cstdint>
#include <ctime>

struct dirent64;  // the platform's 64-bit directory entry, of <dirent.h>

#pragma GCC visibility push(default)

// ---- Files ------------------------------------------------------------------------------------

// The operating system's file descriptor itself; -1 is the invalid handle. Handles are counted,
// not tracked: read, write, seek and length take any descriptor, also one opened elsewhere.
using KtFileHandle = std::int32_t;

extern "C" {

// The open-file budget. SYS_OPENFILES counts the handles opened by KtOpenFile and the directory
// streams opened by KtFindFirst that are still open; it is 0 at load and never falls below 0.
// SYS_MAXFILES is its limit, 64 at load: the host may set it at any time, the library never does,
// and the next open sees the new value.
extern std::int32_t SYS_OPENFILES;
extern std::int32_t SYS_MAXFILES;

// Opens `path` with open(2) and counts the handle. With O_CREAT in `flags`, a missing file is
// created with mode 0600 less the umask and the flags go to the system as they are; without it,
// O_LARGEFILE is added. `extra` is ORed into the flags and carries no O_CREAT, and neither carries
// O_TMPFILE: no mode would go along. The fourth argument is ignored (pass 0).
// Returns the descriptor, or -1 with the system's errno; -1 with errno untouched and no system call
// when SYS_OPENFILES has reached SYS_MAXFILES.
KtFileHandle KtOpenFile(const char* path, int flags, int extra, int unused);

// Reads up to `size` bytes at the descriptor's position into `buffer`.
// Returns the bytes read, 0 at end of file, or -1 with errno set; -1 at once, errno untouched, for
// the handle -1. One read(2): short counts come back as they are.
int KtReadFile(KtFileHandle file, void* buffer, unsigned size);

// Writes up to `size` bytes of `buffer` at the descriptor's position. Returns the bytes written,
// or -1, as KtReadFile does. One write(2): short counts come back as they are.
int KtWriteFile(KtFileHandle file, const void* buffer, unsigned size);

// Moves the descriptor's position `offset` bytes from `origin` (SEEK_SET, SEEK_CUR or SEEK_END).
// Returns the new position from the start, or -1 with errno set; -1 at once, errno untouched, for
// the handle -1. Positions of 2 GiB and more do not fit: EOVERFLOW.
std::int32_t KtSeekFile(KtFileHandle file, std::int32_t offset, int origin);

// Returns the file's size in bytes, or -1 with fstat's errno when the handle is not open or the
// size does not fit 31 bits (EOVERFLOW).
std::int32_t KtGetFileLength(KtFileHandle file);

// Closes the descriptor. The count falls by one, unless it is 0, before the system is asked and
// whatever it answers. Returns 0, or -1 with errno set; -1 at once, errno and count untouched, for
// the handle -1.
int KtCloseFile(KtFileHandle file);

// ---- File attributes --------------------------------------------------------------------------

// The st_mode word of a path as the status query reports it: the type in the S_IFMT field (0xF000;
// 0x4000 a directory, 0xA000 a symbolic link), the permission bits below. -1: not known.
using KtFileAttributes = std::int32_t;

// Whether the attributes of a symbolic link are those of what it points to (non-zero; 1 at load) or
// its own (zero). The host may set it at any time, the library never does.
extern unsigned char bFollowLinks;

// Returns the attribute word of `path`, or -1 with the status query's errno. A link that cannot be
// followed is -1 as well, unless bFollowLinks is zero. The empty path names the current directory.
// One status query, and a second one for a link that is followed.
KtFileAttributes KtGetFileAttributes(const char* path);

// Returns 1 when the word is a directory's, else 0; also for -1.
int KtIsDirectory(KtFileAttributes attributes);

// Changes nothing, reads no argument, and returns 0.
int KtSetFileAttributes(const char* path, KtFileAttributes attributes);

}  // extern "C"

// ---- Directory enumeration --------------------------------------------------------------------

// An enumeration delivers the entries of one directory whose names match a mask, in the order of
// the directory. It is a find handle, which is the open directory stream, and a Dirent, which holds
// the current entry. KtFindFirst makes both, and the library releases both when it is over:
//
//     Dirent* found;
//     const KtFindHandle find = KtFindFirst("logs/*.txt", &found);
//     if (find == -1) return;
//     do {
//         use(found->getLastName(), KtFindGetFileSize(found));
//         errno = 0;
//     } while (KtFindNext(find, found) == 0);
//     if (errno != 0) report_unreadable_directory();
//
// The caller runs every enumeration to its end: nothing else releases it. From KtFindFirst to the
// end the locale of the whole process is "C"; the end restores the one that was in force at the
// start. Enumerations that overlap must therefore end in the reverse order of their start if the
// host's locale is to be in force after the last of them.
//
// The pattern is split at its last "/" into directory and mask; without a "/" the directory is
// "./". The mask is matched as fnmatch(3) does it in the "C" locale with FNM_NOESCAPE alone: the
// backslash is an ordinary character, wildcards match a leading dot, case counts. An empty mask
// matches no name.
using KtFindHandle = std::intptr_t;

// One enumeration's pattern and current entry. The fields are for reading: those of the pattern
// stay for the object's life, those of the entry until the next one is current.
class Dirent {
public:
    // Splits `pattern` and switches the process locale to "C", unless its name cannot be had. When
    // memory runs out, `mask` or `dir` is null; such an object is only good for destruction.
    explicit Dirent(const char* pattern);

    // Restores the locale and releases what the object owns. Where the system cannot restore the
    // locale, because memory has run out for good, it stays "C".
    ~Dirent();

    Dirent(const Dirent&) = delete;
    Dirent& operator=(const Dirent&) = delete;

    // Builds `lastName` for the current entry. Returns 1, or 0 when there is no memory for it:
    // `error` is then ENOMEM and `lastName` null.
    int setLastName();

    // Builds `lastName` and fills `isLink`, `size`, `attr`, `targetAttr` and `error` for the
    // current entry. errno stays as it is.
    void setAttr();

    // Returns `lastName`, built first when it is null; null when there is no memory for it.
    const char* getLastName();

    dirent64* entry = nullptr;     // the stream's own record, gone with the next entry
    char* oldLocale = nullptr;     // the locale to restore, from strdup; null when there is none
    char* lastName = nullptr;      // directory, "/", entry's name; null when not built
    char* mask = nullptr;          // the wildcard mask
    std::uint32_t maskLen = 0;     // its length and one
    char* dir = nullptr;           // the directory
    std::uint32_t dirLen = 0;      // its length and one, but 2 for the "./" of a bare mask
    std::int32_t isLink = 0;       // 1 when the entry is a symbolic link
    std::int32_t size = -1;        // in bytes, of a link's target where there is one; -1: not known
    std::int32_t attr = -1;        // attributes of the entry itself; -1: not known
    std::int32_t targetAttr = -1;  // those of a link's target; `attr` where there is none
    std::int32_t error = 0;        // 0, or why the entry's attributes or name are not all known
};

extern "C" {

// Starts an enumeration at the first entry that matches `pattern`, passing over "." and ".." where
// they come before any other match and their attributes say directory. Stores the Dirent at
// `*found` and returns the handle. Returns -1, with everything released, and errno
//   0        when `found` is null, or when nothing but "." and ".." matches;
//   EMFILE   when SYS_OPENFILES has reached SYS_MAXFILES;
//   ENOMEM   when there is no memory for the Dirent;
//   ENOENT   when no entry matches;
//   the system's, when the directory cannot be opened or read.
// `*found` is not to be used after a failure.
KtFindHandle KtFindFirst(const char* pattern, Dirent** found);

// Makes the next matching entry current; "." and ".." are entries like others here. Returns 0, or
// -1 at the end of the directory or when it cannot be read: the enumeration is then released, and
// neither handle nor Dirent may be used again. errno stays as it is, but for a read error's.
//
// An entry that cannot be queried is delivered all the same: its size and attributes are -1, and
// `error` tells why (EOVERFLOW for more than 2 GiB; ENOMEM when its full name could not be built).
// A link that cannot be followed has its own size and attributes and the reason in `error`.
//
// For the null handle it only deletes the Dirent that it is given, if any; for -1, or without a
// Dirent, it touches nothing. Both return -1.
int KtFindNext(KtFindHandle find, Dirent* found);

// Returns 0 and releases nothing: an enumeration ends at its end.
int KtFindClose(KtFindHandle find, Dirent** found);

// The current entry's name without its directory, valid until the next entry; null for null.
const char* KtFindGetFileName(Dirent* found);

// The current entry's attributes, or -1 when they are not known and for null. For a link they are
// the target's or the link's own, as bFollowLinks says at the time of the call; its own, too, when
// it cannot be followed.
KtFileAttributes KtFindGetFileAttributes(Dirent* found);

// The current entry's size in bytes, of a link's target where there is one, or -1 when it is not
// known and for null. Exactly 2 GiB reads as its low 32 bits, -2147483648.
std::int32_t KtFindGetFileSize(Dirent* found);

// ---- Directory creation -----------------------------------------------------------------------

// Creates one directory with mode 0700 less the umask; its parent must exist. Returns 0, or -1 with
// the system's errno.
int KtMakeDirectory(const char* path);

// Creates every missing directory on `path`, the last component included. The separator is the
// backslash; "/" is an ordinary character. To the system it is the other way round: it gets the
// path, or the path cut at a backslash, byte for byte, so that "a\b" is one name in the current
// directory, beside "a". Nothing is collapsed: a doubled or trailing backslash makes a directory of
// its own.
//
// The path is cut no further than its root: behind the server's name when it begins with two
// backslashes, behind the first component when it begins with a drive ("X:\", with any character
// for X). A path with one leading backslash is cut back to the empty path, which is the current
// directory and exists.
//
// Returns 0 when the whole path is a directory, now or already. Returns -1 when the path is null or
// empty or when the longest existing part of it is no directory (errno is not set for these), when
// a creation fails (the system's errno; what was created before it stays), and when there is no
// memory for a copy of the path (ENOMEM).
int KtMakePath(const char* path);

// ---- Clock and small services -----------------------------------------------------------------

// Times are seconds since 1970-01-01 00:00:00 UTC. A local date is the platform's broken-down time,
// glibc's two fields included, in the time zone of the process; the record is the caller's.
using KtLocalDate = std::tm;

// The time that KtGetTime tells, unless it is 0, as it is at load; for hosts that need the clock to
// stand still. The library never sets it.
extern std::int32_t starttime;

// Returns `starttime`, or the current time when that is 0.
std::int32_t KtGetTime();

// Fills `date` with the local date of `time` and returns it; null, with the record untouched, when
// `date` is null or the time cannot be converted. Uses the system's shared record (localtime).
KtLocalDate* KtTimeToLocalDate(std::int32_t time, KtLocalDate* date);

// Returns the time of a local date, 0 for null, or -1 when 32 bits cannot hold it. As mktime does,
// it takes tm_isdst as given, ignores tm_wday and tm_yday, and normalises the record in place.
std::int32_t KtLocalDateToTime(KtLocalDate* date);

// Sleeps for `milliseconds`; above 4,294,967 their microseconds wrap modulo 2^32. Returns 0, or -1
// with EINTR when a signal cut the sleep short; it is not resumed.
int KtSleep(unsigned milliseconds);

// strtoul(3), with nothing added.
unsigned long KtStrtoul(const char* text, char** end, int base);

// Copies `source` with its NUL to `destination`, which has room for it and does not overlap it.
// Returns `destination`.
char* CopyTextString(char* destination, const char* source);

}  // extern "C"

// ---- Command line -----------------------------------------------------------------------------

// A program's command line: its own path in backslash form, a text to split into words, and full
// paths made relative to the program. Making one sets pCmdLine to it; nothing ever resets pCmdLine,
// so the object must live for as long as that is used.
class KtCmdLine {
public:
    // An empty `text`, split into the library's one default table, which has room for every word
    // that `text` can hold. All default-made objects share that table.
    KtCmdLine();

    // Keeps the count and the table, not a copy of it, and takes the path from argv[0], cut to its
    // first 4,096 characters and with every "/" turned into a backslash. With argc below 1 the path
    // is empty. The rest of `text` is zero.
    KtCmdLine(int argc, char** argv);

    KtCmdLine(const KtCmdLine&) = delete;
    KtCmdLine& operator=(const KtCmdLine&) = delete;

    // Splits `text` from position 0 into words, in place, and returns 0. argv[0] becomes the path
    // text (position 1), the words follow, `argc` counts both. Spaces (0x20 alone) separate words.
    // In each word the first `"` is removed and opens a stretch in which spaces are kept; the
    // second one ends the word, and a text without it is quoted to its end. There is no escape
    // character, two quotes in a row make an empty word, and no null follows the last word. The
    // words point into `text`. The table must have room for one entry more than there are words.
    int ParseCmdLine();

    // Writes the full path of `name` to `out` and returns `out`; writes nothing when either is
    // null.
    //   \\server...   the name, every "/" turned into a backslash
    //   X:...        likewise, for any first character
    //   \...         the path text before its first backslash, then the name as it is
    //   empty        empty
    //   other        the path text up to its last backslash, then the name as it is; without a
    //                backslash in the path text, the name, every "/" turned into a backslash
    // `out` needs room for the path text, the name and a NUL, and overlaps neither.
    char* MakeFullPath(const char* name, char* out);

    // Position 0 is where splitting starts; positions 1 to 4,096 are the path text, which a split
    // shares with the words; the last is always NUL.
    char text[4098];
    std::int32_t argc;  // the entries of `argv` in use, the program's path included
    char** argv;        // the caller's table, or the default one
};

extern "C" {

// The KtCmdLine made last; null at load.
extern KtCmdLine* pCmdLine;

}  // extern "C"

#pragma GCC visibility pop

#endif
