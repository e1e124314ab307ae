// Raw memory and C-string routines. The build compiles this source so that no loop becomes a call
// of a libc routine or a copy of vectors.
#include <ktbase/text.h>

#include <cstdint>

namespace {

// A 32-bit unit at any address, over memory of any type.
using Unit [[gnu::aligned(1), gnu::may_alias]] = std::uint32_t;

constexpr unsigned kUnitBytes = 4;

void copy_bytes(unsigned char* to, const unsigned char* from, unsigned count) {
    for (; count != 0; --count) *to++ = *from++;
}

// Loads each unit as a whole, stores this unit, and only then loads the next one. Callers with
// overlapping ranges depend on this order.
void copy_units(void* destination, const void* source, unsigned count) {
    auto* to = static_cast<unsigned char*>(destination);
    const auto* from = static_cast<const unsigned char*>(source);
    for (; count >= kUnitBytes; count -= kUnitBytes) {
        *reinterpret_cast<Unit*>(to) = *reinterpret_cast<const Unit*>(from);
        to += kUnitBytes;
        from += kUnitBytes;
    }
    copy_bytes(to, from, count);
}

signed char folded(unsigned char byte) {
    return static_cast<signed char>(byte >= 'A' && byte <= 'Z' ? byte + ('a' - 'A') : byte);
}

}  // namespace

int e_memicmp(const void* a, const void* b, unsigned count) {
    const auto* x = static_cast<const unsigned char*>(a);
    const auto* y = static_cast<const unsigned char*>(b);
    for (; count != 0; --count) {
        const signed char p = folded(*x++);
        const signed char q = folded(*y++);
        if (p != q) return p < q ? -1 : 1;
    }
    return 0;
}

int e_memcmp(const void* a, const void* b, unsigned count) {
    if (count == 0) return 0;
    const auto* x = static_cast<const unsigned char*>(a);
    const auto* y = static_cast<const unsigned char*>(b);
    for (; count != 1 && *x == *y; --count) {
        ++x;
        ++y;
    }
    return *x - *y;
}

unsigned e_strlen(const char* text) {
    unsigned length = 0;
    while (text[length] != '\0') ++length;
    return length;
}

void* e_memcpy(void* destination, const void* source, unsigned count) {
    copy_bytes(static_cast<unsigned char*>(destination), static_cast<const unsigned char*>(source),
               count);
    return destination;
}

void* q_memcpy(void* destination, const void* source, unsigned count) {
    copy_units(destination, source, count);
    return destination;
}

void t_memmove(void* destination, const void* source, unsigned count) {
    copy_units(destination, source, count);
}

void* e_memmove(void* destination, const void* source, unsigned count) {
    auto* to = static_cast<unsigned char*>(destination);
    const auto* from = static_cast<const unsigned char*>(source);
    if (reinterpret_cast<std::uintptr_t>(to) > reinterpret_cast<std::uintptr_t>(from)) {
        for (; count != 0; --count) to[count - 1] = from[count - 1];
    } else {
        copy_bytes(to, from, count);
    }
    return destination;
}

void* e_memchr(const void* bytes, int ch, unsigned count) {
    const auto* at = static_cast<const signed char*>(bytes);
    for (; count != 0; --count, ++at)
        if (*at == ch) return const_cast<signed char*>(at);
    return nullptr;
}

void* e_memset(void* destination, int ch, unsigned count) {
    auto* to = static_cast<unsigned char*>(destination);
    const auto fill = static_cast<unsigned char>(ch);
    for (; count >= kUnitBytes; count -= kUnitBytes) {
        *reinterpret_cast<Unit*>(to) = fill * 0x01010101U;
        to += kUnitBytes;
    }
    for (; count != 0; --count) *to++ = fill;
    return destination;
}

char* e_strrchr(const char* text, int ch) {
    if (text == nullptr) return nullptr;
    for (unsigned left = e_strlen(text); left != 0; --left) {
        const char* const at = text + (left - 1);
        if (static_cast<signed char>(*at) == ch) return const_cast<char*>(at);
    }
    return nullptr;
}
