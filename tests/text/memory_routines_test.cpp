// The memory routines at the edges of memory they may not touch.
#include <gtest/gtest.h>
#include <ktbase/text.h>
#include <sys/mman.h>

#include <algorithm>
#include <cstring>

namespace {

void* move(void* to, const void* from, unsigned count) {
    t_memmove(to, from, count);
    return to;
}
void* (*const kCopies[])(void*, const void*, unsigned) = {e_memcpy, q_memcpy, move, e_memmove};

// The end of a page between two that cannot be touched.
char* lone_page_end() {
    void* const map = mmap(nullptr, 3 << 12, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    mprotect(static_cast<char*>(map) + 4096, 4096, PROT_READ | PROT_WRITE);
    return static_cast<char*>(map) + 8192;
}
char* const first_end = lone_page_end();
char* const second_end = lone_page_end();

TEST(MemoryRoutines, nothing_is_touched_beyond_either_end_of_a_range) {
    for (unsigned n = 1; n < 40; ++n)
        for (const unsigned before_end : {n, 4096U}) {
            char* const x = first_end - before_end;
            char* const y = second_end - before_end;
            e_memset(y, 'm', n);
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
