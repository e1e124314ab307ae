// Text and memory: raw memory and C-string routines, helpers over the standard string, a table of
// character classes, hexadecimal and number conversions. The header requires C++11. The standard
// string is that of libstdc++ in its C++11 ABI.
//
// The caller owns all memory, the array that KsStrdup returns included. No function reports an
// error in errno or checks the size of a destination.
//
// Threads: all functions are reentrant and keep no state. KsStrcasecmp, KsStrncasecmp and
// ConvertToLowerCase follow the current locale: the calling thread's own (uselocale), or else the
// process locale.
#ifndef KTBASE_TEXT_H
#define KTBASE_TEXT_H

#include <cstdint>
#include <string>

#pragma GCC visibility push(default)

// ---- Memory and C strings ---------------------------------------------------------------------

// Counts are unsigned numbers of bytes, up to 2^32 - 1. With a count of 0 no memory is accessed,
// and pointers may be null. No byte outside the counted ranges is read or written. A NUL does not
// end a counted range. No routine calls the system library.
//
// e_memcmp compares bytes as unsigned. e_memicmp, e_memchr and e_strrchr take a byte as signed,
// -128 to 127: the byte 0xE9 matches `ch` -23, and a `ch` from 128 to 255 never matches.

extern "C" {

// Compares `count` bytes as signed, with 'A' to 'Z' folded to lower case in every locale. Returns
// -1, 0 or 1. Bytes 0x80 to 0xFF order before 0x00 to 0x7F.
int e_memicmp(const void* a, const void* b, unsigned int count);

// Compares `count` bytes as unsigned. Returns a[k] - b[k] (-255 to 255) at the first difference k,
// or 0 if all bytes are equal. Bytes after the first difference are not read.
int e_memcmp(const void* a, const void* b, unsigned int count);

// Returns the number of bytes before the NUL of `text`. `text` must not be null.
unsigned int e_strlen(const char* text);

// Copies `count` bytes one at a time, first to last. Returns `destination`.
// The ranges must be disjoint, or `destination` at or below `source`.
void* e_memcpy(void* destination, const void* source, unsigned int count);

// Copies `count` bytes first to last: four bytes in one load and one store while at least four are
// left, then the last 0 to 3 one at a time. Both pointers may have any alignment. Returns
// `destination`.
// The ranges must be disjoint, or `destination` at or below `source`.
void* q_memcpy(void* destination, const void* source, unsigned int count);

// Does what q_memcpy does, and returns nothing.
// The ranges must be disjoint, or `destination` at or below `source`: in spite of its name the
// routine does not move upwards within a range. Use e_memmove for that.
void t_memmove(void* destination, const void* source, unsigned int count);

// Moves `count` bytes. The ranges may overlap in any way. Returns `destination`.
void* e_memmove(void* destination, const void* source, unsigned int count);

// Returns the first of `count` bytes that equals `ch`, or null. Bytes after the match are not read.
void* e_memchr(const void* bytes, int ch, unsigned int count);

// Sets `count` bytes to the low 8 bits of `ch`. Returns `destination`.
void* e_memset(void* destination, int ch, unsigned int count);

// Returns the last character of `text` that equals `ch`, or null. Returns null for a null `text`.
// The terminating NUL never matches.
char* e_strrchr(const char* text, int ch);

}  // extern "C"

// ---- Comparing standard strings ---------------------------------------------------------------

// All return -1 if `a` orders first, 1 if `b` orders first, and 0 if they are equal. If one operand
// is the beginning of the other, the shorter one orders first. All allocate nothing.
//
// A standard string is compared whole, NULs inside it included. A C string is compared up to its
// NUL. A null pointer is the empty string. With a count `n`, only the first `n` bytes of each
// operand are compared. A C string must end in a NUL even where it is longer than `n`, because it
// is measured in full first.

// Bytes are compared as signed: 0x80 to 0xFF order before 0x00 to 0x7F.
int KsStrcmp(const std::string& a, const std::string& b);
int KsStrcmp(const char* a, const std::string& b);
int KsStrcmp(const std::string& a, const char* b);
int KsStrncmp(const std::string& a, const std::string& b, unsigned int n);
int KsStrncmp(const char* a, const std::string& b, unsigned int n);
int KsStrncmp(const std::string& a, const char* b, unsigned int n);

// Bytes are compared as the int that tolower returns for their signed value, -128 to 127, in the
// current locale. Folding is to lower case, so '_' orders before 'A'. In the "C" locale glibc's
// tolower returns 128 to 254 for -128 to -2. Bytes 0x80 to 0xFE therefore order after ASCII there,
// and 0xFF before.
int KsStrcasecmp(const std::string& a, const std::string& b);
int KsStrcasecmp(const char* a, const std::string& b);
int KsStrcasecmp(const std::string& a, const char* b);
int KsStrncasecmp(const std::string& a, const std::string& b, unsigned int n);
int KsStrncasecmp(const char* a, const std::string& b, unsigned int n);
int KsStrncasecmp(const std::string& a, const char* b, unsigned int n);

// ---- Copying and editing standard strings -----------------------------------------------------

// Source and destination of a copy may overlap. A copy into an array allocates nothing. A copy into
// a standard string allocates only if the text exceeds the destination's capacity. KsStrncpy from a
// C string first copies the whole source to a temporary string, which allocates if the source has
// more than 15 bytes. If there is no memory, std::bad_alloc is thrown and the destination keeps its
// text.

// Copies the whole source, NULs inside it included. An array receives a NUL after the text. Nothing
// is written to a null array. A null C string is the empty string.
// An array must have room for source.size() + 1 bytes.
void KsStrcpy(char* destination, const std::string& source);
void KsStrcpy(std::string& destination, const char* source);
void KsStrcpy(std::string& destination, const std::string& source);

// Copies the first `n` bytes of the source, or the whole source if it is shorter. An array receives
// exactly `n` bytes: NULs follow a shorter source, and no NUL follows a source of `n` bytes or
// more. Nothing is written to a null array. A null C string throws std::logic_error, for `n` 0 as
// well; the destination then keeps its text.
// An array must have room for `n` bytes.
void KsStrncpy(std::string& destination, const char* source, unsigned int n);
void KsStrncpy(char* destination, const std::string& source, unsigned int n);
void KsStrncpy(std::string& destination, const std::string& source, unsigned int n);

// Returns a new array of source.size() + 1 bytes: the text, NULs inside it included, and a NUL.
// Throws std::bad_alloc if there is no memory. The caller must release the array with delete[].
char* KsStrdup(const std::string& source);

// Replaces every byte by the low 8 bits of what tolower returns for its signed value. In the "C"
// locale only 'A' to 'Z' change. Allocates nothing.
void ConvertToLowerCase(std::string& text);

// Removes spaces, tabs, carriage returns and line feeds, but no other characters, from both ends.
// Allocates nothing.
void Trim(std::string& text);

// ---- Character classes ------------------------------------------------------------------------

// The flags of ks_char_map. Codes 0x80 to 0xFF have none.
constexpr unsigned char CHAR_CTL = 0x01;      // 0x00 to 0x1F and 0x7F
constexpr unsigned char CHAR_SPACE = 0x02;    // tab, line feed, carriage return, space
constexpr unsigned char CHAR_SPECIAL = 0x04;  // specials of RFC 822: ( ) < > @ , ; : \ " . [ ]
constexpr unsigned char CHAR_TSPECIAL =
    0x08;  // tspecials of RFC 2045: ( ) < > @ , ; : \ " / [ ] ? =

extern "C" {

// Points to a read-only table of 256 bytes: the flags of each character code. The host may set the
// pointer to a table of its own. The library reads neither the table nor the pointer.
extern const unsigned char* ks_char_map;

// ---- Conversions ------------------------------------------------------------------------------

// Inputs are only read; a caller with constant data may cast the const away. Only HexStringToBuf
// allows its output to overlap its input.

// Writes the `length` bytes of `input` as 2 * length upper-case hexadecimal digits and a NUL.
// Returns 1. Returns 0, with nothing written, if a pointer is null or `length` is below 1.
// `output` must have room for 2 * length + 1 characters.
int BufToHexString(unsigned char* input, int length, char* output);

// Reads pairs of hexadecimal digits, of either case, and writes strlen(text) / 2 bytes. Each pair
// is read as strtoul reads a string of two characters in base 16: white space and a sign are
// accepted, reading stops at the first other character, and a pair without a digit is 0. The byte
// is the low 8 bits of the result.
// Returns 1. Returns 0, with nothing written, if a pointer is null, or if the length of `text` is 0
// or odd.
// `output` must have room for strlen(text) / 2 bytes. It may overlap `text` if it does not begin
// above `text`.
int HexStringToBuf(char* text, unsigned char* output);

}  // extern "C"

// Writes what BufToHexString writes. Returns 0. With `length` below 1, returns 0 and writes
// nothing. Returns -1 if printing a byte fails; the digits before that byte are then written.
// `output` must have room for 2 * length + 1 characters. Neither pointer may be null if `length` is
// above 0.
int MakeHexString(char* output, unsigned char* input, long length);

// Returns 10 to the power `exponent`, modulo 2^32.
std::uint32_t _ktpow10(unsigned int exponent);

#pragma GCC visibility pop

#endif
