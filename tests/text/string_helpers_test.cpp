// The string helpers and the memory routines by the fuzzer's models, and what no input reaches.
#include <gtest/gtest.h>
#include <ktbase/text.h>

#include <climits>
#include <stdexcept>

#include "fuzz.h"

static bool folds_all = false;
static int allocations = 0;

// These take the place of the system's: a locale where everything folds to x, and a count.
extern "C" int tolower(int c) noexcept {
    const bool upper = c >= 'A' && c <= 'Z';
    if (folds_all) return 'x';
    return upper ? c + 32 : c < -1 ? c + 256 : c;
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

TEST(StringHelpers, every_pair_of_bytes_ranks_folds_and_is_found_as_in_the_models) {
    for (unsigned i = 0; i < 1 << 17; ++i) {
        const auto x = static_cast<unsigned char>(i >> 8);
        const auto y = static_cast<unsigned char>(i);
        const auto as_signed = static_cast<unsigned char>(i >> 16 << 7 | 1);
        const unsigned char input[] = {2, y, as_signed, 3, 'p', x, x, y, 'A'};
        LLVMFuzzerTestOneInput(input, sizeof input);
    }
}

TEST(StringHelpers, compare_as_the_locale_folds_and_allocate_nothing_for_it) {
    std::string a(99, 'a');
    const std::string b(99, 'b');
    const int before = allocations;
    folds_all = true;
    EXPECT_EQ(KsStrcasecmp(a, b.c_str()) | KsStrncasecmp(b.c_str(), a, 98) | KsStrcasecmp(b, a), 0);
    EXPECT_EQ(KsStrcmp(a, b.c_str()) & KsStrncmp(a.c_str(), b, 98), -1);
    ConvertToLowerCase(a);
    folds_all = false;
    EXPECT_EQ(allocations, before);
    EXPECT_EQ(a, std::string(99, 'x'));
}

TEST(StringHelpers, take_null_for_empty_counts_for_unsigned_and_their_own_text_for_source) {
    const char* const null = nullptr;
    EXPECT_EQ(KsStrcmp(null, ""s) | KsStrcasecmp(""s, null) | KsStrncmp(""s, null, 1), 0);
    EXPECT_EQ(KsStrcmp(null, "x"s) & KsStrcasecmp(null, "x"s) & KsStrncasecmp(null, "x"s, 1), -1);
    EXPECT_EQ(KsStrncmp("ab"s, "abc"s, UINT_MAX) & KsStrncasecmp("AB"s, "abc", UINT_MAX), -1);
    std::string self = "abcdefgh";
    EXPECT_THROW(KsStrncpy(self, null, 0), std::logic_error);
    KsStrncpy(self.data() + 2, self, 5);
    KsStrncpy(self.data(), self, 8);
    KsStrcpy(self.data(), self);
    KsStrncpy(self, self, 7);
    KsStrncpy(self, self, UINT_MAX);
    EXPECT_EQ(self, "ababcde");
    KsStrcpy(self, null);
    EXPECT_EQ(self, "");
    KsStrcpy(static_cast<char*>(nullptr), "abc"s);
    KsStrncpy(static_cast<char*>(nullptr), "abc"s, 2);
    EXPECT_EQ(e_strrchr(nullptr, 'a'), nullptr);
}

}  // namespace
