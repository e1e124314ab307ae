// Tests of MD5: known answers, messages in pieces, and the record.
#include <gtest/gtest.h>
#include <ktbase/text.h>
#include <sys/mman.h>

#include <random>

#include "digest_model.h"

namespace {

struct KnownAnswer {
    std::string message;
    const char* digest;
};

// RFC 1321, A.5.
const KnownAnswer kKnownAnswers[] = {
    {.message = "", .digest = "D41D8CD98F00B204E9800998ECF8427E"},
    {.message = "a", .digest = "0CC175B9C0F1B6A831C399E269772661"},
    {.message = "abc", .digest = "900150983CD24FB0D6963F7D28E17F72"},
    {.message = "message digest", .digest = "F96B697D7CB7938D525A2F31AAF161D0"},
    {.message = "abcdefghijklmnopqrstuvwxyz", .digest = "C3FCD3D76192E4007DFB496CCA67E13B"},
    {.message = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789",
     .digest = "D174AB98D277D9F5A5611C2C9F419D9F"},
    {.message = "1234567890123456789012345678901234567890"
                "1234567890123456789012345678901234567890",
     .digest = "57EDF4A22BE3C955AC49DA2E2107B67A"}};

Bytes random_bytes(std::size_t size) {
    std::mt19937 random(1321);
    Bytes bytes(size);
    for (unsigned char& byte : bytes) byte = static_cast<unsigned char>(random());
    return bytes;
}

TEST(Md5, digests_equal_the_known_answers) {
    for (const KnownAnswer& known : kKnownAnswers) {
        unsigned char digest[16];
        char text[33];
        vantu::MD5(known.message.data(), known.message.size(), digest);
        BufToHexString(digest, 16, text);
        EXPECT_STREQ(text, known.digest);
    }
}

TEST(Md5, pieces_of_every_size_have_the_digest_of_the_whole) {
    for (std::size_t size = 0; size < 140; ++size) check_md5(random_bytes(400), {size, 7, 64 - 7});
}

// The record buffers 57 bytes. The input is ten bytes of the buffer from offset 54, which complete
// the block and overlap their copy. The header excludes such an input.
TEST(Md5, input_that_overlaps_its_copy_is_moved) {
    const Bytes buffer = random_bytes(64);
    MD5_CTX ctx = {{1, 2, 3, 4}, {57 * 8, 0}, {}};
    std::copy(buffer.begin(), buffer.end(), ctx.buffer);
    MD5Update(&ctx, ctx.buffer + 54, 10);
    Bytes block = buffer;
    std::copy_n(buffer.begin() + 54, 7, block.begin() + 57);
    std::uint32_t state[4] = {1, 2, 3, 4};
    MD5Transform(state, block.data());
    std::copy_n(block.begin() + 61, 3, block.begin());
    EXPECT_EQ(std::memcmp(ctx.state, state, sizeof state), 0);
    EXPECT_EQ(Bytes(ctx.buffer, ctx.buffer + 64), block);
}

TEST(Md5, the_reversed_transform_reverses_the_state) {
    const Bytes block = random_bytes(64);
    std::uint32_t state[4] = {1, 2, 3, 4};
    std::uint32_t reversed[4] = {4, 3, 2, 1};
    MD5Transform(state, block.data());
    MD5Transform2(reversed, block.data());
    EXPECT_TRUE(std::equal(state, state + 4, std::rbegin(reversed)));
}

TEST(Md5, the_count_of_bits_has_64_bits) {
    const unsigned size = 1U << 29;
    // The kernel maps one page of zeros everywhere in this range.
    void* const zeros =
        mmap(nullptr, size, PROT_READ, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
    MD5_CTX ctx = {{}, {0xFFFFFFC8, 7}, {}};
    MD5Update(&ctx, static_cast<unsigned char*>(zeros), 10);
    EXPECT_EQ(ctx.count[0], 0x18U);
    EXPECT_EQ(ctx.count[1], 8U);
    MD5Update(&ctx, static_cast<unsigned char*>(zeros), size);
    EXPECT_EQ(ctx.count[0], 0x18U);
    EXPECT_EQ(ctx.count[1], 9U);
    munmap(zeros, size);
}

}  // namespace
