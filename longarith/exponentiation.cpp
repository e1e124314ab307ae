// g^e1 * y^e2 modulo the built-in p: one simultaneous sliding-window exponentiation.
#include "domain_parameters.h"

#include <algorithm>
#include <bit>

namespace {

constexpr int kCursors = 2 * kChunks;  // one for each chunk of each exponent

// Scans one chunk of an exponent from its top, window by window.
struct Cursor {
    unsigned char* chunk;
    const unsigned short* powers;  // odd powers of the chunk's base, in Montgomery form
    short width;
    short position;  // of the current window's lowest bit; -1 after the last window
    short window;

    void next_window() { stelLAN(chunk, &position, &window, width); }
    const unsigned short* power() const { return powers + window * kLimbsP; }
};

// Multiplies `out` by the power of every window whose lowest bit is at `level`. Moves the cursors
// of these windows to their next windows.
void multiply_windows(unsigned short* out, Cursor* cursors, int level) {
    for (Cursor* cursor = cursors; cursor != cursors + kCursors; ++cursor) {
        if (cursor->position != level) continue;
        multiply_mod_p(out, cursor->power());
        cursor->next_window();
    }
}

// 2^512 mod p, which is 2^512 - p because p has 512 bits.
void set_to_one(unsigned short* out) {
    std::fill_n(out, kLimbsP, static_cast<unsigned short>(0));
    subtLAN(out, read_only(DsaP), kLimbsP);
}

}  // namespace

void stelLAN(unsigned char* e, short* pos, short* win, short w) {
    const int start = --*pos;
    if (start < 0) return;
    int byte = start / 8;
    unsigned bits = e[byte] & (0xFFU >> (7 - start % 8));
    while (bits == 0 && byte > 0) bits = e[--byte];
    if (bits == 0) {
        *pos = -1;
        return;
    }
    const int high = 8 * byte + static_cast<int>(std::bit_width(bits)) - 1;
    const int low = std::max(high - w + 1, 0);
    // The window has at most 8 bits, so it reaches into at most one lower byte.
    if (low / 8 != byte) bits = bits << 8 | e[byte - 1];
    bits >>= low % 8;  // nothing is set above bit `high`
    const int zeros = std::countr_zero(bits);
    *pos = static_cast<short>(low + zeros);
    *win = static_cast<short>((bits >> zeros) / 2);
}

void expmodLAN(unsigned short* out, unsigned char* e1, unsigned short* ytab, unsigned char* e2) {
    // The order of the cursors is chunk 0 of e1, chunk 0 of e2, chunk 1 of e1, ...
    Cursor cursors[kCursors];
    Cursor* leading = nullptr;
    for (int i = 0; i < kCursors; ++i) {
        const int j = i / 2;
        Cursor& cursor = cursors[i];
        if (i % 2 == 0)
            cursor = {e1 + kChunkBytes * j, DsaBaseTable + kPowersG * kLimbsP * j, kWindowG,
                      kChunkBits, 0};
        else
            cursor = {e2 + kChunkBytes * j, ytab + kPowersY * kLimbsP * j, kWindowY, kChunkBits, 0};
        cursor.next_window();
        if (cursor.position > (leading != nullptr ? leading->position : -1)) leading = &cursor;
    }
    if (leading == nullptr) {
        set_to_one(out);
        return;
    }

    int level = leading->position;
    std::copy_n(leading->power(), kLimbsP, out);
    leading->next_window();
    multiply_windows(out, cursors, level);
    while (--level >= 0) {
        multiply_mod_p(out, out);
        multiply_windows(out, cursors, level);
    }
}
