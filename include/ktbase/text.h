// Text and memory in ktbase: raw memory and C-string routines, helpers over the standard string, a
// table of character classes, hexadecimal and number conversions.
//
// Everything works in the caller's memory; only KsStrdup allocates, an array that the caller owns.
// No function reports an error through errno or checks the room of a destination.
//
// Threads: all functions are reentrant and keep no state. The case-insensitive string helpers and
// ConvertToLowerCase follow the process's current locale.
#ifndef KTBASE_TEXT_H
#define KTBASE_TEXT_H

#include <cstdint>
#include <string>

#pragma GCC visibility push(default)

// ---- Memory and C strings ---------------------------------------------------------------------

// Counts are unsigned numbers of bytes, up to 2^32 - 1; with a count of 0 no memory is touched and
// pointers may be null. No byte outside the counted ranges is read or written, and no routine calls
// the system library. A NUL ends nothing where there is a count.
//
// How a byte ranks differs from routine to routine: e_memcmp takes it as unsigned; e_memicmp,
// e_memchr and e_strrchr as signed, -128 to 127. So a byte 0xE9 is found with `ch` -23, and a `ch`
// from 128 to 255 never matches.

extern "C" {

// Compares `count` bytes with 'A' to 'Z' folded to lower case, whatever the locale. Returns -1, 0
// or 1; bytes 0x80 to 0xFF rank below 0x00 to 0x7F.
int e_memicmp(const void* a, const void* b, unsigned int count);

// Returns a[k] - b[k], of unsigned bytes, at the first difference within `count`: -255 to 255; 0
// when all are equal. The two ranges are read no further than the first difference.
int e_memcmp(const void* a, const void* b, unsigned int count);

// The bytes before the NUL of `text`, which is not null.
unsigned int e_strlen(const char* text);

// Copies a byte at a time, first to last. The destination lies at or below the source, or the
// ranges are disjoint. Returns the destination.
void* e_memcpy(void* destination, const void* source, unsigned int count);

// Copies first to last, four bytes in one load and one store while four are left, then the last 0
// to 3 singly, at any alignment. Overlap as for e_memcpy. Returns the destination.
void* q_memcpy(void* destination, const void* source, unsigned int count);

// q_memcpy that returns nothing. In spite of its name it is not for a destination above the source
// within the source's range: that is e_memmove.
void t_memmove(void* destination, const void* source, unsigned int count);

// Moves `count` bytes between ranges that overlap in any way. Returns the destination.
void* e_memmove(void* destination, const void* source, unsigned int count);

// The first byte equal to `ch`, or null. Bytes after the match are not read.
void* e_memchr(const void* bytes, int ch, unsigned int count);

// Fills with the low 8 bits of `ch`. Returns the destination.
void* e_memset(void* destination, int ch, unsigned int count);

// The last character equal to `ch`, or null; null for a null `text`. The terminating NUL is no
// match.
char* e_strrchr(const char* text, int ch);

}  // extern "C"

// ---- Comparing standard strings ---------------------------------------------------------------

// All return -1, 0 or 1 and allocate nothing. A standard string is compared whole, NULs inside it
// included; a C string up to its NUL; a null pointer is the empty string. With a count `n`, the
// first `n` bytes of each side count; a C string is measured in full first, so it ends in a NUL
// even where it is longer than `n`. When one side is the beginning of the other, it orders first.

// Bytes rank as signed: 0x80 to 0xFF below 0x00 to 0x7F.
int KsStrcmp(const std::string& a, const std::string& b);
int KsStrcmp(const char* a, const std::string& b);
int KsStrcmp(const std::string& a, const char* b);
int KsStrncmp(const std::string& a, const std::string& b, unsigned int n);
int KsStrncmp(const char* a, const std::string& b, unsigned int n);
int KsStrncmp(const std::string& a, const char* b, unsigned int n);

// Bytes rank as the int that tolower gives for their signed value, -128 to 127, in the current
// locale. Folding is to lower case, so '_' orders before 'A'. In the "C" locale glibc answers
// 128 to 254 for -128 to -2, so bytes 0x80 to 0xFE rank above ASCII here, and 0xFF below.
int KsStrcasecmp(const std::string& a, const std::string& b);
int KsStrcasecmp(const char* a, const std::string& b);
int KsStrcasecmp(const std::string& a, const char* b);
int KsStrncasecmp(const std::string& a, const std::string& b, unsigned int n);
int KsStrncasecmp(const char* a, const std::string& b, unsigned int n);
int KsStrncasecmp(const std::string& a, const char* b, unsigned int n);

// ---- Copying and editing standard strings -----------------------------------------------------

// Sources may lie inside the destination's own text, and the other way round. What a standard
// string or an array cannot allocate raises std::bad_alloc.

// Copies the whole source, NULs inside it included. An array needs room for size + 1 bytes and ends
// in a NUL; nothing is written to a null one. A null source gives the empty string.
void KsStrcpy(char* destination, const std::string& source);
void KsStrcpy(std::string& destination, const char* source);
void KsStrcpy(std::string& destination, const std::string& source);

// Into a string: the first `n` bytes of the source, or all where it is shorter; a null `source`
// raises std::logic_error, even for `n` 0, and leaves the destination as it was.
// Into an array: exactly `n` bytes, filled up with NULs where the source is shorter, without a
// terminator where it is not; nothing is written to a null one.
void KsStrncpy(std::string& destination, const char* source, unsigned int n);
void KsStrncpy(char* destination, const std::string& source, unsigned int n);
void KsStrncpy(std::string& destination, const std::string& source, unsigned int n);

// A new array of size + 1 bytes: the text, NULs inside it included, and a NUL. The caller releases
// it with delete[].
char* KsStrdup(const std::string& source);

// Replaces every byte by the low 8 bits of what tolower gives for its signed value.
void ConvertToLowerCase(std::string& text);

// Removes spaces, tabs, carriage returns and line feeds, but no other blanks, from both ends.
void Trim(std::string& text);

// ---- Character classes ------------------------------------------------------------------------

// The flags of ks_char_map. Codes from 0x80 on have none.
constexpr unsigned char CHAR_CTL = 0x01;      // 0x00 to 0x1F and 0x7F
constexpr unsigned char CHAR_SPACE = 0x02;    // tab, line feed, carriage return, space
constexpr unsigned char CHAR_SPECIAL = 0x04;  // specials of RFC 822: ( ) < > @ , ; : \ " . [ ]
constexpr unsigned char CHAR_TSPECIAL =
    0x08;  // tspecials of RFC 2045: ( ) < > @ , ; : \ " / [ ] ? =

extern "C" {

// A read-only table of 256 bytes, the flags of each character code. The library reads neither the
// table nor the pointer, which the host may set to a table of its own.
extern const unsigned char* ks_char_map;

// ---- Conversions ------------------------------------------------------------------------------

// Writes the `length` bytes of `input` as 2 * length upper-case hexadecimal digits and a NUL.
// Returns 1, or 0 with nothing written when a pointer is null or `length` below 1.
int BufToHexString(unsigned char* input, int length, char* output);

// Reads pairs of hexadecimal digits, of either case, into strlen(text) / 2 bytes, which may be
// written over the text. Each pair is read as strtoul reads a string of two characters in base 16:
// white space and a sign are accepted, reading stops at the first other character, and a pair
// without a digit is 0. Returns 1, or 0 with nothing written when a pointer is null or the text has
// no characters or an odd number of them.
int HexStringToBuf(char* text, unsigned char* output);

}  // extern "C"

// Writes what BufToHexString writes. Returns 0, also for a `length` below 1, which writes nothing;
// -1 when printing a byte fails, with the digits before it written. The pointers are not tested.
int MakeHexString(char* output, unsigned char* input, long length);

// 10 to the power `exponent`, modulo 2^32.
std::uint32_t _ktpow10(unsigned int exponent);

#pragma GCC visibility pop

#endif
