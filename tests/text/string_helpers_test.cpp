// The string helpers by their models, and what depends on the locale, on null and on allocation.
#include <gtest/gtest.h>

#include <climits>
#include <new>

#include "text_model.h"

static bool everything_folds_to_x = false;
static int allocations = 0;

// These take the places of the system's.
extern "C" int tolower(int c) noexcept {
    if (everything_folds_to_x) return 'x';
    return c == 255 ? c : folded_rank(static_cast<char>(c));
}
void* operator new(std::size_t size) {
    ++allocations;
    return std::malloc(size);
}
// Never inlined, or the compiler would see free() take what operator new gave.
[[gnu::noinline]] void operator delete(void* memory) noexcept {
    std::free(memory);
}
[[gnu::noinline]] void operator delete(void* memory, std::size_t) noexcept {
    std::free(memory);
}

namespace {

using namespace std::string_literals;

const char* const null = nullptr;

char character(unsigned code) {
    return static_cast<char>(code);
}

TEST(StringHelpers, every_pair_of_bytes_compares_as_in_the_models) {
    for (unsigned pair = 0; pair < 1 << 16; ++pair) {
        const std::string x = {character(pair >> 8)};
        const std::string y = {character(pair)};
        check_comparisons(x, y, 1);
        check_comparisons('p' + x + 'a', 'p' + y + 'A', 2);
        check_memory_comparisons(x, y);
        check_memory_comparisons('p' + x + 'a', 'p' + y + 'A');
    }
}

TEST(StringHelpers, every_byte_is_searched_for_as_in_the_models) {
    for (unsigned pair = 0; pair < 1 << 16; ++pair) {
        const std::string text = {'p', character(pair), character(pair), 'q'};
        check_searches(text, static_cast<int>(pair >> 8));
        check_searches(text, static_cast<signed char>(pair >> 8));
    }
}

TEST(StringHelpers, every_byte_is_edited_as_in_the_models) {
    for (unsigned code = 0; code < 256; ++code) {
        check_edits({character(code)});
        check_edits({character(code), ' ', character(code), 'B', '\t', character(code)});
    }
}

TEST(StringHelpers, texts_of_every_length_are_copied_as_in_the_models) {
    const std::string text = "ab\0cdefghijk"s;
    for (std::size_t size = 0; size <= text.size(); ++size)
        for (unsigned n = 0; n < 20; ++n) {
            check_copies(text.substr(0, size), n);
            check_comparisons(text.substr(0, size), text, n);
        }
    check_memory_comparisons("", "");
}

TEST(StringHelpers, the_locale_folds) {
    everything_folds_to_x = true;
    std::string text = "abc";
    ConvertToLowerCase(text);
    const int order_of_all = KsStrcasecmp("Ab"s, "cD");
    const int order_of_first = KsStrncasecmp("Ab"s, "cDe", 2);
    everything_folds_to_x = false;
    EXPECT_EQ(text, "xxx");
    EXPECT_EQ(order_of_all, 0);
    EXPECT_EQ(order_of_first, 0);
}

TEST(StringHelpers, comparisons_allocate_nothing) {
    const std::string a(99, 'a');
    const std::string b(99, 'b');
    allocations = 0;
    KsStrcmp(a, b.c_str());
    KsStrncmp(a.c_str(), b, 98);
    KsStrcasecmp(b, a.c_str());
    KsStrncasecmp(b.c_str(), a, 98);
    EXPECT_EQ(allocations, 0);
}

TEST(StringHelpers, null_compares_as_the_empty_text) {
    EXPECT_EQ(KsStrcmp(null, ""s), 0);
    EXPECT_EQ(KsStrcmp(""s, null), 0);
    EXPECT_EQ(KsStrcmp(null, "x"s), -1);
    EXPECT_EQ(KsStrcasecmp("x"s, null), 1);
    EXPECT_EQ(KsStrncmp(null, "x"s, 1), -1);
    EXPECT_EQ(KsStrncasecmp(null, ""s, 1), 0);
}

TEST(StringHelpers, counts_are_unsigned) {
    EXPECT_EQ(KsStrncmp("ab"s, "ab", UINT_MAX), 0);
    EXPECT_EQ(KsStrncasecmp("AB"s, "abc", UINT_MAX), -1);
    std::string copy;
    KsStrncpy(copy, "abc"s, UINT_MAX);
    EXPECT_EQ(copy, "abc");
}

TEST(StringHelpers, arrays_may_lie_in_their_source) {
    std::string text = "abcdefgh";
    KsStrncpy(text.data() + 2, text, 5);
    EXPECT_EQ(text, "ababcdeh");
    KsStrncpy(text.data(), text, 8);
    KsStrcpy(text.data(), text);
    EXPECT_EQ(text, "ababcdeh");
}

TEST(StringHelpers, a_null_array_receives_nothing) {
    KsStrcpy(static_cast<char*>(nullptr), "abc"s);
    KsStrncpy(static_cast<char*>(nullptr), "abc"s, 2);
}

TEST(StringHelpers, a_whole_copy_of_null_is_empty) {
    std::string text = "abc";
    KsStrcpy(text, null);
    EXPECT_EQ(text, "");
}

TEST(StringHelpers, a_counted_copy_of_null_throws) {
    std::string text = "abc";
    EXPECT_THROW(KsStrncpy(text, null, 0), std::logic_error);
    EXPECT_EQ(text, "abc");
}

}  // namespace
