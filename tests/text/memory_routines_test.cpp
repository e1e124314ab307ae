// The memory routines against plain models, at the edges of memory they may not touch.
#include <gtest/gtest.h>
#include <ktbase/text.h>
#include <sys/mman.h>

#include <algorithm>
#include <cstring>
#include <string>

namespace {

void* move(void* to, const void* from, unsigned count) {
    t_memmove(to, from, count);
    return to;
}
// The last one alone takes a destination above the source.
void* (*const kCopies[])(void*, const void*, unsigned) = {e_memcpy, q_memcpy, move, e_memmove};

// The end of a page between two that cannot be touched.
char* lone_page_end() {
    void* const map = mmap(nullptr, 3 << 12, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    mprotect(static_cast<char*>(map) + 4096, 4096, PROT_READ | PROT_WRITE);
    return static_cast<char*>(map) + 8192;
}
char* const first_end = lone_page_end();
char* const second_end = lone_page_end();

TEST(MemoryRoutines, take_bytes_as_signed_or_unsigned_each_in_its_way) {
    const auto fold = [](int c) { return c > 64 && c < 91 ? c + 32 : c; };
    const auto rank = [=](int c) { return c < 128 ? fold(c) : c - 256; };
    for (int x = 0; x < 256; ++x)
        for (int y = 0; y < 256; ++y) {
            const char a[] = {'\0', static_cast<char>(x), static_cast<char>(x), '\0'};
            const char b[] = {'\0', static_cast<char>(y), 'A', '\0'};
            ASSERT_EQ(e_memcmp(a, b, 2), x - y);
            ASSERT_EQ(e_memicmp(a, b, 2), (rank(x) > rank(y)) - (rank(x) < rank(y))) << x << y;
            ASSERT_EQ(e_memcmp(a, b, 1) | e_memcmp(a, b, 0) | e_memicmp(a, b, 0), 0);
            for (const int ch : {y, y - 256}) {
                const bool found = ch == (x < 128 ? x : x - 256);
                ASSERT_EQ(e_memchr(a + 1, ch, 2), found ? a + 1 : nullptr) << x << ' ' << ch;
                ASSERT_EQ(e_strrchr(a + 1, ch), found && x != 0 ? a + 2 : nullptr)
                    << x << ' ' << ch;
            }
        }
    EXPECT_EQ(e_strrchr(nullptr, 'a'), nullptr);
}

TEST(MemoryRoutines, copies_and_fills_change_their_range_alone_at_any_distance) {
    const std::string text = "0123456789abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ";
    for (unsigned count = 0; count < 40; ++count)
        for (int distance = -9; distance <= 9; ++distance) {
            std::string expected = text;
            std::memmove(expected.data() + 10 + distance, text.data() + 10, count);
            for (const auto copy : kCopies) {
                if (distance > 0 && copy != e_memmove) continue;
                std::string got = text;
                void* const to = got.data() + 10 + distance;
                EXPECT_EQ(copy(to, got.data() + 10, count), to);
                ASSERT_EQ(got, expected) << count << ' ' << distance;
            }
            std::string got = text;
            expected = text;
            expected.replace(10 + distance, count, count, '\x83');
            e_memset(got.data() + 10 + distance, distance % 2 == 0 ? 0x183 : 0x83 - 256, count);
            ASSERT_EQ(got, expected) << count << ' ' << distance;
        }
}

TEST(MemoryRoutines, nothing_is_touched_beyond_either_end_of_a_range) {
    for (unsigned n = 1; n < 40; ++n)
        for (const unsigned before_end : {n, 4096U}) {
            char* const x = first_end - before_end;
            char* const y = second_end - before_end;
            EXPECT_EQ(e_memset(y, 'm', n), y);
            for (const auto copy : kCopies) copy(x, y, n), copy(y, x, n);
            EXPECT_EQ(e_memcmp(x, y, n) | e_memicmp(x, y, n), 0);
            EXPECT_EQ(e_memchr(x, 'x', n), nullptr);
            x[n - 1] = '\0';
            EXPECT_EQ(e_strlen(x), n - 1);
            EXPECT_EQ(e_strrchr(x, 'x'), nullptr);
        }
}

TEST(MemoryRoutines, counts_are_unsigned) {
    const unsigned huge = 0x80000003U;
    // Two gibibytes run into the page that cannot be touched, unless they count as nothing.
    char* const below = std::min(first_end, second_end) - 2;
    char* const above = std::max(first_end, second_end) - 2;
    for (const auto copy : kCopies) EXPECT_DEATH(copy(below, above, huge), "");
    EXPECT_DEATH(e_memset(below, 0, huge), "");
    std::memcpy(above, "ab", 2);
    std::memcpy(below, "ac", 2);
    EXPECT_EQ(e_memcmp(above, below, huge), -1);
    EXPECT_EQ(e_memicmp(above, below, huge), -1);
    EXPECT_EQ(e_memchr(below, 'c', huge), below + 1);
}

}  // namespace
