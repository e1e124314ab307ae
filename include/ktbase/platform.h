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
// O_LARGEFILE is added. `extra` is ORed into the flags and carries no O_CREAT; the fourth argument
// is ignored (pass 0). Returns the descriptor, or -1 with the system's errno; -1 with errno
// untouched and no system call when SYS_OPENFILES has reached SYS_MAXFILES.
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

}  // extern "C"

#pragma GCC visibility pop

#endif
