// Tests of the SHA digest: known answers, and records without InitHash.
#include <gtest/gtest.h>

#include "digest_model.h"

namespace {

using Words = std::vector<std::uint32_t>;

struct KnownAnswer {
    std::string message;
    Words state;
};

// FIPS 180 (1993), Appendix A to C, and the empty message.
const KnownAnswer kKnownAnswers[] = {
    {.message = "", .state = {0xF96CEA19, 0x8AD1DD56, 0x17AC084A, 0x3D92C610, 0x7708C0EF}},
    {.message = "abc", .state = {0x0164B8A9, 0x14CD2A5E, 0x74C4F7FF, 0x082C4D97, 0xF1EDF880}},
    {.message = "abcdbcdecdefdefgefghfghighijhijkijkljklmklmnlmnomnopnopq",
     .state = {0xD2516EE1, 0xACFA5BAF, 0x33DFC1C4, 0x71E43844, 0x9EF134C8}},
    {.message = std::string(1000000, 'a'),
     .state = {0x3232AFFA, 0x48628A26, 0x653B5AAA, 0x44541FD9, 0x0D690603}},
};

TEST(Sha, digests_equal_the_known_answers) {
    for (const KnownAnswer& known : kKnownAnswers) {
        Bytes bytes(known.message.begin(), known.message.end());
        HASH_CTX ctx;
        InitHash(&ctx);
        HashBuf(bytes.data(), bytes.size(), &ctx);
        EndHash(&ctx);
        EXPECT_EQ(Words(ctx.state, ctx.state + 5), known.state) << known.message.substr(0, 8);
    }
}

TEST(Sha, a_length_of_zero_accesses_nothing) {
    HashBuf(nullptr, 0, nullptr);
}

TEST(Sha, lengths_are_unsigned) {
    Bytes bytes(1000, 1);
    EXPECT_DEATH(HashBuf(bytes.data(), 0x80000001U, &Hash), "");
}

TEST(Sha, unset_records_cause_no_write_outside_the_record) {
    Bytes bytes(1000, 1);
    for (const std::uint32_t fill : {0U, 16U, 17U, 0xFFFFFFFFU}) {
        Words words(26, fill);
        auto* const ctx = reinterpret_cast<HASH_CTX*>(&words[1]);
        EndHash(ctx);
        ctx->index = fill;
        ctx->left = 4;
        HashBuf(bytes.data(), bytes.size(), ctx);
        EndHash(ctx);
        EndHash(ctx);
        EXPECT_EQ(words.front(), fill);
        EXPECT_EQ(words.back(), fill);
    }
}

}  // namespace
