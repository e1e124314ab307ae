// The platform layer: files under a process-wide budget, path attributes, directory enumeration by
// wildcard, directory chains, the clock, and the program's command line. The header requires C++11.
//
// Sizes, offsets and times have 32 bits, as on 32-bit x86 Linux. A query of a file's status fails
// with EOVERFLOW if the access, modification or change time of the file does not fit: if it is
// after 2038-01-19 03:14:07 UTC or before 1901-12-13 20:45:52 UTC. This concerns KtGetFileLength,
// KtGetFileAttributes, KtMakePath and enumerations. Opening, reading, writing, seeking and closing
// work for these files as well.
//
// Paths and texts are NUL-terminated byte strings. Unless its comment says otherwise, a function
// reports failure by -1 (or null) with the reason in errno. No function throws an exception.
//
// The caller owns everything except the directory stream and the Dirent of an enumeration.
// KtFindFirst creates both, and the library releases both when the enumeration ends.
//
// Threads: nothing is locked. The open-file count, the process locale (which is "C" during an
// enumeration), libc's shared local-time record, pCmdLine and the other exported globals are
// process-wide. A host must serialize its calls of KtOpenFile, KtCloseFile, the functions of an
// enumeration, KtTimeToLocalDate and the constructors of KtCmdLine, and its changes of an exported
// global. All other functions are reentrant.
#ifndef KTBASE_PLATFORM_H
#define KTBASE_PLATFORM_H

#include <cstdint>
#include <ctime>

struct dirent64;  // the 64-bit directory entry of <dirent.h>

#pragma GCC visibility push(default)

// ---- Files ------------------------------------------------------------------------------------

// The file descriptor of the operating system; -1 is the invalid handle. Handles are counted, not
// tracked: read, write, seek and length take any descriptor, including one that was opened
// elsewhere.
using KtFileHandle = std::int32_t;

extern "C" {

// The open-file budget. SYS_OPENFILES is the number of open handles of KtOpenFile and open
// directory streams of KtFindFirst. It is 0 at load and never falls below 0.
// SYS_MAXFILES is the limit of SYS_OPENFILES, 64 at load. The host may set it at any time; the next
// open uses the new value. The library never sets it.
extern std::int32_t SYS_OPENFILES;
extern std::int32_t SYS_MAXFILES;

// Opens `path` with one open(2) and adds 1 to SYS_OPENFILES. The open flags are `flags` | `extra`.
// With O_CREAT in `flags`, a missing file is created with mode 0600 less the umask. Without O_CREAT
// in `flags`, O_LARGEFILE is added. `unused` is ignored; pass 0.
// Returns the descriptor, or -1 with open's errno. Returns -1 with errno unchanged, and makes no
// system call, if SYS_OPENFILES >= SYS_MAXFILES.
// With O_CREAT but without O_LARGEFILE in the flags, an existing file of 2 GiB or more is not
// opened (EOVERFLOW), and the handle cannot write beyond 2 GiB - 1 (EFBIG in KtWriteFile).
// `extra` must not contain O_CREAT. Neither `flags` nor `extra` may contain O_TMPFILE. In both
// cases the file would be created without a defined mode.
KtFileHandle KtOpenFile(const char* path, int flags, int extra, int unused);

// Reads up to `size` bytes at the descriptor's position into `buffer`, with one read(2). An
// interrupted call is not repeated.
// Returns the count of bytes read, which may be below `size`, or 0 at end of file. Returns -1 with
// errno set on failure, and -1 with errno unchanged for the handle -1.
int KtReadFile(KtFileHandle file, void* buffer, unsigned size);

// Writes up to `size` bytes of `buffer` at the descriptor's position, with one write(2). An
// interrupted call is not repeated.
// Returns the count of bytes written, which may be below `size`. Returns -1 with errno set on
// failure, and -1 with errno unchanged for the handle -1.
int KtWriteFile(KtFileHandle file, const void* buffer, unsigned size);

// Moves the descriptor's position `offset` bytes from `origin`: SEEK_SET, SEEK_CUR or SEEK_END.
// Returns the new position from the start of the file. Returns -1 with EOVERFLOW if the new
// position is 2 GiB or more; in this case the position has moved. Returns -1 with errno set on
// other failures, and -1 with errno unchanged for the handle -1.
std::int32_t KtSeekFile(KtFileHandle file, std::int32_t offset, int origin);

// Returns the file's size in bytes, or -1 with fstat's errno:
//   EBADF      the handle is not open; this includes the handle -1;
//   EOVERFLOW  the size is 2 GiB or more, or the inode number or a time of the file does not fit 32
//              bits.
std::int32_t KtGetFileLength(KtFileHandle file);

// Subtracts 1 from SYS_OPENFILES, unless SYS_OPENFILES is 0, and then closes the descriptor. A
// failed close does not undo the subtraction. Returns 0, or -1 with errno set. Returns -1 with
// errno and SYS_OPENFILES unchanged for the handle -1.
int KtCloseFile(KtFileHandle file);

// ---- File attributes --------------------------------------------------------------------------

// The st_mode word of a path as the status query reports it, or -1 if it is not known. The field
// S_IFMT (0xF000) is the type: 0x4000 is a directory, 0xA000 a symbolic link. The low 12 bits are
// the set-ID, sticky and permission bits.
using KtFileAttributes = std::int32_t;

// Selects the attributes that functions report for a symbolic link: those of the link's target if
// non-zero (1 at load), those of the link itself if zero. The host may set it at any time. The
// library never sets it.
extern unsigned char bFollowLinks;

// Returns the attribute word of `path`. The empty path is the current directory. Makes one status
// query, and a second one for a link that is followed.
// Returns -1 with the errno of the status query. If bFollowLinks is non-zero, this includes a link
// that cannot be followed. A null path gives EFAULT, and a time that does not fit 32 bits gives
// EOVERFLOW. The size of the file does not matter.
KtFileAttributes KtGetFileAttributes(const char* path);

// Returns 1 if the type of `attributes` is directory, else 0. Returns 0 for -1.
int KtIsDirectory(KtFileAttributes attributes);

// Changes nothing, reads no argument, and returns 0.
int KtSetFileAttributes(const char* path, KtFileAttributes attributes);

}  // extern "C"

// ---- Directory enumeration --------------------------------------------------------------------

// An enumeration delivers the entries of one directory whose names match a mask, in the order of
// the directory stream. It consists of a find handle, which is the open directory stream, and a
// Dirent, which holds the current entry.
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
// The caller must run every enumeration to its end. Nothing else releases it.
//
// The pattern is split at its last "/" into directory and mask. Without a "/", the directory is
// "./". The mask is matched by fnmatch(3) with FNM_NOESCAPE alone: the backslash is an ordinary
// character, wildcards match a leading dot, and case is significant. An empty mask matches no name.
//
// Locale: from KtFindFirst to the end of the enumeration, the locale of the whole process is "C",
// and the mask is matched in it. The end restores the locale that KtFindFirst found. If
// enumerations overlap, they must end in the reverse order of their start; otherwise the host's
// locale is not in force after the last end. In a thread that has a locale of its own (uselocale),
// the mask is matched in that locale.
//
// An entry is delivered even if not everything about it is known. `error` is then the reason:
//   file or link's target above 2 GiB  size and attributes are -1, `error` is EOVERFLOW;
//   status query failed                size and attributes are -1, `error` is the query's errno:
//                                      EOVERFLOW for a time that does not fit 32 bits;
//   no memory for the full name        size and attributes are -1, `error` is ENOMEM;
//   link that cannot be followed       size and attributes are the link's own, `error` is the errno
//                                      of the query of the target.
using KtFindHandle = std::intptr_t;

// The pattern and the current entry of one enumeration. A host only reads the fields. Those of the
// pattern are valid for the object's life, those of the entry until the next one is current.
class Dirent {
public:
    // Splits `pattern`. Switches the process locale to "C", unless the system reports no name for
    // the current one. If there is no memory, `mask` or `dir` is null, and the object must only be
    // destroyed. `pattern` must not be null.
    explicit Dirent(const char* pattern);

    // Restores the locale and releases what the object owns. The locale stays "C" if the system has
    // no memory to restore it.
    ~Dirent();

    Dirent(const Dirent&) = delete;
    Dirent& operator=(const Dirent&) = delete;

    // Builds `lastName` for the current entry. Returns 1. Returns 0, with `lastName` null, if there
    // is no current entry or `dir` is null, or if there is no memory; in the last case `error` is
    // ENOMEM.
    int setLastName();

    // Builds `lastName` and sets `isLink`, `size`, `attr`, `targetAttr` and `error` for the current
    // entry. Leaves errno unchanged.
    void setAttr();

    // Returns `lastName`, and builds it first if it is null. Returns null if setLastName returns 0.
    const char* getLastName();

    dirent64* entry = nullptr;     // the stream's record, valid until the next entry is current
    char* oldLocale = nullptr;     // name of the locale to restore, from strdup; null if none
    char* lastName = nullptr;      // directory, "/" and the entry's name; null if not built
    char* mask = nullptr;          // the wildcard mask
    std::uint32_t maskLen = 0;     // length of `mask` plus 1
    char* dir = nullptr;           // the directory
    std::uint32_t dirLen = 0;      // length of `dir` plus 1, but 2 for the "./" of a bare mask
    std::int32_t isLink = 0;       // 1 if the entry is a symbolic link and `attr` is known
    std::int32_t size = -1;        // in bytes, of a link's target if known; -1 if not known
    std::int32_t attr = -1;        // attributes of the entry itself; -1 if not known
    std::int32_t targetAttr = -1;  // of a link's target if known, else equal to `attr`
    std::int32_t error = 0;        // 0, or why the entry's attributes or name are not all known
};

extern "C" {

// Starts an enumeration at the first entry that matches `pattern`. Skips "." and ".." before the
// first other match if their attributes are those of a directory. Stores the Dirent at `*found` and
// returns the handle.
// Returns -1, with everything released, and errno
//   0        if `found` is null, or if only "." and ".." match;
//   EMFILE   if SYS_OPENFILES >= SYS_MAXFILES;
//   ENOMEM   if there is no memory for the Dirent;
//   ENOENT   if no entry matches;
//   of the system call, if the directory cannot be opened or read.
// After a failure `*found` must not be used. `pattern` must not be null.
KtFindHandle KtFindFirst(const char* pattern, Dirent** found);

// Makes the next matching entry current. Does not skip "." and "..". Returns 0.
// Returns -1 at the end of the directory, with errno unchanged, or if the directory cannot be read,
// with errno set. The enumeration is then released: neither handle nor Dirent may be used again.
// Returns -1 with errno unchanged for invalid arguments: the null handle, for which `found` is
// deleted; the handle -1 and a null `found`, for which nothing is released.
int KtFindNext(KtFindHandle find, Dirent* found);

// Returns 0 and releases nothing. Only KtFindNext ends an enumeration.
int KtFindClose(KtFindHandle find, Dirent** found);

// Returns the current entry's name without its directory, valid until the next entry is current.
// Returns null if `found` is null.
const char* KtFindGetFileName(Dirent* found);

// Returns the current entry's attributes, or -1 if they are not known or `found` is null. For a
// link, returns the attributes that bFollowLinks selects at the time of the call, or the link's own
// if it cannot be followed, and sets found->isLink to 1.
KtFileAttributes KtFindGetFileAttributes(Dirent* found);

// Returns the current entry's size in bytes. For a link that can be followed, returns the size of
// its target. Returns -1 if the size is not known or `found` is null. Returns -2147483648 for a
// size of exactly 2 GiB.
std::int32_t KtFindGetFileSize(Dirent* found);

// ---- Directory creation -----------------------------------------------------------------------

// Creates one directory with mode 0700 less the umask. The parent must exist. Returns 0, or -1 with
// the errno of mkdir(2).
int KtMakeDirectory(const char* path);

// Creates every missing directory on `path`, the last component included. Here the separator is the
// backslash, and "/" is an ordinary character. Each directory's path is `path` itself, or `path`
// cut off at a backslash. The system gets this path unchanged. The system separates at "/" alone:
// "a\b" is one name in the current directory, beside "a". No backslash is dropped: a doubled or
// trailing one makes a directory of its own.
//
// The path is not cut within its root. If the path begins with two backslashes, they and the
// server's name are the root. If the path begins with a drive ("X:\", with any character for X),
// the drive and the first component after it are the root. A path that begins with a single
// backslash may be cut to the empty path, which is the current directory.
//
// Each of these paths is queried with KtGetFileAttributes. If bFollowLinks is non-zero, a link to a
// directory counts as a directory. If bFollowLinks is zero, no link does. A path whose query fails
// counts as missing; if it exists nevertheless, its creation fails with EEXIST. Examples are a link
// that cannot be followed, and a directory with a time that does not fit 32 bits.
//
// Returns 0 if the whole path is a directory, created or already there. errno is then unspecified:
// the query of a missing part may have set it.
// Returns -1
//   if `path` is null or empty, with errno unchanged;
//   if the longest existing part of the path is not a directory, with nothing created; errno is
//     unchanged, or that of the query of a longer part;
//   if a creation fails, with the errno of mkdir(2); directories created before it stay;
//   if there is no memory for a copy of the path, with ENOMEM.
// Threads: if two threads create the same path at once, one of them may return -1 with EEXIST.
int KtMakePath(const char* path);

// ---- Clock and small services -----------------------------------------------------------------

// Times are seconds since 1970-01-01 00:00:00 UTC. A local date is the broken-down time of the
// platform, in the time zone of the process. The record belongs to the caller, but tm_zone points
// to a string of libc, which the caller must neither change nor free.
using KtLocalDate = std::tm;

// The time that KtGetTime returns, if it is not 0. It is 0 at load. A host sets it to pin the
// clock. The library never sets it.
extern std::int32_t starttime;

// Returns `starttime`, or the current time if `starttime` is 0. The current time must not be after
// 2038-01-19 03:14:07 UTC, the last that 32 bits can hold.
std::int32_t KtGetTime();

// Converts `time` to a local date in `*date`. Returns `date`. Returns null, with the record
// unchanged, if `date` is null or the conversion fails.
// Threads: uses libc's shared record (localtime).
KtLocalDate* KtTimeToLocalDate(std::int32_t time, KtLocalDate* date);

// Converts a local date to a time with mktime(3). tm_isdst is used as given; tm_wday and tm_yday
// are ignored. Normalises the record in place.
// Returns the time. Returns 0 if `date` is null. Returns -1 with EOVERFLOW and the record unchanged
// if 32 bits cannot hold the time. -1 is also the valid time one second before 1970. To distinguish
// the two, set tm_wday to -1 before the call: a conversion sets it to 0 to 6.
std::int32_t KtLocalDateToTime(KtLocalDate* date);

// Sleeps for `milliseconds`. The duration in microseconds is computed modulo 2^32, so values above
// 4,294,967 wrap. Returns 0. Returns -1 with EINTR if a signal ended the sleep early.
int KtSleep(unsigned milliseconds);

// Does what strtoul(3) does: base 0 selects decimal, octal ("0") or hexadecimal ("0x") by prefix.
// `end` may be null. Returns the value, or ULONG_MAX with ERANGE if 32 bits cannot hold it.
unsigned long KtStrtoul(const char* text, char** end, int base);

// Copies `source` and its NUL to `destination`. Returns `destination`.
// `destination` must have room for both and must not overlap `source`.
char* CopyTextString(char* destination, const char* source);

}  // extern "C"

// ---- Command line -----------------------------------------------------------------------------

// A program's command line: its own path with backslashes, a text to split into words, and full
// paths made from the program's path. Every constructor sets pCmdLine to the object. Nothing resets
// pCmdLine: the object must live for as long as pCmdLine is used.
//
// Threads: MakeFullPath only reads the object; several threads may call it at the same time.
// ParseCmdLine writes the object and its table; no other thread may use them meanwhile.
class KtCmdLine {
public:
    // Makes `text` empty, and sets `argv` to the library's default table, which has room for every
    // word that `text` can hold. Then calls ParseCmdLine, so that `argc` is 1.
    // All objects of this constructor share that table. The construction of a second object
    // overwrites argv[0] of the first. ParseCmdLine of the second overwrites the words of the
    // first.
    KtCmdLine();

    // Keeps `argc` and the pointer `argv`, not a copy of the table. Copies argv[0] to the path
    // text, cut to its first 4,096 characters and with every "/" replaced by a backslash. With
    // `argc` below 1, the path text is empty. All other characters of `text` are zero.
    KtCmdLine(int argc, char** argv);

    KtCmdLine(const KtCmdLine&) = delete;
    KtCmdLine& operator=(const KtCmdLine&) = delete;

    // Splits `text`, from position 0, into words in place. Sets argv[0] to the path text (position
    // 1), the following entries to the words, and `argc` to the count of these entries. All of them
    // point into `text`. No null entry follows the last word. Returns 0.
    // Words are separated by spaces (0x20 alone). The first `"` of a word is removed, and spaces
    // after it belong to the word. The second `"` ends the word; without it, the word extends to
    // the end of the text. Two quotes in a row make an empty word. There is no escape character.
    // The table must have room for one entry more than there are words.
    int ParseCmdLine();

    // Writes the full path of `name` to `out`. Returns `out`. Writes nothing if `name` or `out` is
    // null. The first row that matches `name` applies:
    //   \\server...   `name`, with every "/" replaced by a backslash
    //   \...         the path text before its first backslash, then `name` unchanged
    //   empty        the empty text
    //   X:...        `name`, with every "/" replaced by a backslash; X is any character
    //   other        the path text up to and with its last backslash, then `name` unchanged;
    //                without a backslash in the path text, `name`, with every "/" replaced by a
    //                backslash
    // `out` must have room for the path text, `name` and a NUL. It must not overlap `name` or the
    // object.
    char* MakeFullPath(const char* name, char* out);

    // Position 0 is where ParseCmdLine starts. Positions 1 to 4,096 are the path text. A text that
    // the host stores from position 0 on, to be split, overwrites the path text. The last position
    // is always NUL.
    char text[4098];
    std::int32_t argc;  // entries of `argv` in use, the program's path included
    char** argv;        // the caller's table, or the default one
};

extern "C" {

// The KtCmdLine object that was constructed last; null at load.
extern KtCmdLine* pCmdLine;

}  // extern "C"

#pragma GCC visibility pop

#endif
