// The SHA digest against its known answers. The fuzzer's model holds its record, in any pieces.
#include <gtest/gtest.h>
#include <ktbase/digest.h>

#include <cstring>

namespace {

using Words = std::vector<std::uint32_t>;
using Bytes = std::vector<unsigned char>;

TEST(Sha, known_answers_come_out) {
    const std::pair<std::string, Words> answers[] = {
        {"", {0xF96CEA19, 0x8AD1DD56, 0x17AC084A, 0x3D92C610, 0x7708C0EF}},
        {"abc", {0x0164B8A9, 0x14CD2A5E, 0x74C4F7FF, 0x082C4D97, 0xF1EDF880}},
        {"abcdbcdecdefdefgefghfghighijhijkijkljklmklmnlmnomnopnopq",
         {0xD2516EE1, 0xACFA5BAF, 0x33DFC1C4, 0x71E43844, 0x9EF134C8}},
        {std::string(1000000, 'a'), {0x3232AFFA, 0x48628A26, 0x653B5AAA, 0x44541FD9, 0x0D690603}},
    };
    for (const auto& [message, answer] : answers) {
        HASH_CTX ctx;
        InitHash(&ctx);
        HashBuf(nullptr, 0, &ctx);
        Bytes bytes(message.begin(), message.end());
        HashBuf(bytes.data(), bytes.size(), &ctx);
        EndHash(&ctx);
        EXPECT_EQ(Words(ctx.state, ctx.state + 5), answer) << message.substr(0, 8);
    }
}

TEST(Sha, the_exported_record_is_zero_at_load_and_bad_records_write_nothing_outside) {
    const HASH_CTX zero = {};
    EXPECT_EQ(std::memcmp(&Hash, &zero, sizeof zero), 0);
    Bytes bytes(1000, 1);
    for (const std::uint32_t fill : {0U, 16U, 17U, 0xFFFFFFFFU}) {
        Words words(26, fill);
        auto* const ctx = reinterpret_cast<HASH_CTX*>(&words[1]);
        for (int round = 0; round < 2; ++round) {
            HashBuf(bytes.data(), 1000, ctx);
            EndHash(ctx);
            EndHash(ctx);
        }
        EXPECT_EQ(words.front(), fill);
        EXPECT_EQ(words.back(), fill);
    }
    EXPECT_DEATH(HashBuf(bytes.data(), 0x80000001U, &Hash), "") << "lengths are unsigned";
}

}  // namespace
