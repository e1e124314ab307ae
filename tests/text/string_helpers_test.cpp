// The string helpers and the memory routines by the fuzzer's models, and what no input reaches.
#include <gtest/gtest.h>
#include <ktbase/text.h>

#include <climits>
#include <stdexcept>

#include "fuzz.h"

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
