// The memory routines: overlaps, and the edges of memory that they must not touch.
#include <gtest/gtest.h>
#include <sys/mman.h>

#include "text_model.h"

namespace {

// The end of a page between two that cannot be touched.
char* page_end() {
    void* const map = mmap(nullptr, 3 << 12, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    mprotect(static_cast<char*>(map) + 4096, 4096, PROT_READ | PROT_WRITE);
    return static_cast<char*>(map) + 8192;
}
char* const first_end = page_end();
char* const second_end = page_end();
char* const lower_end = std::min(first_end, second_end);
char* const upper_end = std::max(first_end, second_end);

TEST(MemoryRoutines, moves_agree_with_the_model_at_every_distance) {
    const std::string text = "abcdefghijklmnopqrstuvw";
    for (std::size_t size = 0; size <= text.size(); ++size)
        for (std::size_t distance = 0; distance <= size; ++distance)
            check_moves(text.substr(0, size), distance, 0x1FF);
}

TEST(MemoryRoutines, e_memcpy_copies_one_byte_at_a_time) {
    std::string text = "abcdefghij";
    e_memcpy(&text[1], &text[0], 9);
    EXPECT_EQ(text, "aaaaaaaaaa");
}

TEST(MemoryRoutines, unit_copies_copy_four_bytes_at_a_time) {
    for (const auto copy : {q_memcpy, call_t_memmove}) {
        std::string text = "abcdefghij";
        copy(&text[1], &text[0], 9);
        EXPECT_EQ(text, "aabcddfghh");
    }
}

TEST(MemoryRoutines, nothing_is_touched_beyond_either_end_of_a_range) {
    for (unsigned n = 1; n < 40; ++n)
        for (const unsigned before_end : {n, 4096U}) {
            char* const x = first_end - before_end;
            char* const y = second_end - before_end;
            e_memset(y, 'm', n);
            for (const auto copy : kCopies) {
                copy(x, y, n);
                copy(y, x, n);
            }
            EXPECT_EQ(e_memcmp(x, y, n), 0);
            EXPECT_EQ(e_memicmp(x, y, n), 0);
            EXPECT_EQ(e_memchr(x, 'x', n), nullptr);
            x[n - 1] = '\0';
            EXPECT_EQ(e_strlen(x), n - 1);
            EXPECT_EQ(e_strrchr(x, 'x'), nullptr);
        }
}

// A routine that takes the count as signed touches nothing, and does not crash.
TEST(MemoryRoutines, counts_of_two_gibibytes_are_not_negative) {
    const unsigned huge = 0x80000003U;
    for (const auto copy : kCopies) EXPECT_DEATH(copy(lower_end - 2, upper_end - 2, huge), "");
    EXPECT_DEATH(e_memset(lower_end - 2, 0, huge), "");
    std::memcpy(lower_end - 2, "ac", 2);
    std::memcpy(upper_end - 2, "ab", 2);
    EXPECT_EQ(e_memcmp(upper_end - 2, lower_end - 2, huge), -1);
    EXPECT_EQ(e_memicmp(upper_end - 2, lower_end - 2, huge), -1);
    EXPECT_EQ(e_memchr(lower_end - 2, 'c', huge), lower_end - 1);
}

TEST(MemoryRoutines, null_holds_no_character) {
    EXPECT_EQ(e_strrchr(nullptr, 'a'), nullptr);
}

}  // namespace
