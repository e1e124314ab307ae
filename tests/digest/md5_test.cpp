// MD5 against known answers in all its routes, and what it leaves behind.
#include <gtest/gtest.h>
#include <ktbase/digest.h>
#include <ktbase/text.h>
#include <ucontext.h>

#include <algorithm>
#include <random>
#include <string>

namespace {

std::mt19937 random_word(1321);

const unsigned char* bytes(const std::string& text) {
    return reinterpret_cast<const unsigned char*>(text.data());
}
std::string hex(unsigned char* digest) {
    std::string text(32, '\0');
    BufToHexString(digest, 16, text.data());
    return text;
}

// The digest of a message in pieces of 0 to `most` bytes.
template <class Record, auto Init, auto Update, auto Final>
std::string pieces(const std::string& message, unsigned most) {
    std::string memory(sizeof(Record), '\xA5');
    auto* const record = reinterpret_cast<Record*>(memory.data());
    Init(record);
    for (std::size_t done = 0, size = 0; done < message.size(); done += size) {
        size = std::min<std::size_t>(random_word() % (most + 1), message.size() - done);
        Update(record, size == 0 ? nullptr : bytes(message) + done, size);
    }
    unsigned char digest[16];
    Final(digest, record);
    EXPECT_EQ(memory, std::string(sizeof(Record), '\0'));
    return hex(digest);
}

void expect_from_every_route(const std::string& message, const std::string& answer) {
    using namespace vantu;
    unsigned char digest[16];
    EXPECT_EQ(vantu::MD5(message.data(), message.size(), digest), 1);
    EXPECT_EQ(hex(digest), answer);
    EXPECT_EQ(GetBufferMD5(digest, bytes(message), message.size()), 1);
    EXPECT_EQ(hex(digest), answer);
    for (const unsigned most : {1, 7, 70, 1000}) {
        EXPECT_EQ((pieces<::MD5_CTX, MD5Init, MD5Update, MD5Final>(message, most)), answer);
        EXPECT_EQ((pieces<vantu::MD5_CTX, MD5_Init, MD5_Update, MD5_Final>(message, most)), answer);
    }
}

// RFC 1321, A.5, and every length against the digest of one piece, which md5sum_test compares.
TEST(Md5, every_route_gives_the_same_right_answer) {
    const std::string letters = "abcdefghijklmnopqrstuvwxyz";
    const std::string mixed = "ABCDEFGHIJKLMNOPQRSTUVWXYZ" + letters + "0123456789";
    expect_from_every_route("", "D41D8CD98F00B204E9800998ECF8427E");
    expect_from_every_route("a", "0CC175B9C0F1B6A831C399E269772661");
    expect_from_every_route("abc", "900150983CD24FB0D6963F7D28E17F72");
    expect_from_every_route("message digest", "F96B697D7CB7938D525A2F31AAF161D0");
    expect_from_every_route(letters, "C3FCD3D76192E4007DFB496CCA67E13B");
    expect_from_every_route(mixed, "D174AB98D277D9F5A5611C2C9F419D9F");
    std::string message;
    while (message.size() < 80) message += "1234567890";
    expect_from_every_route(message, "57EDF4A22BE3C955AC49DA2E2107B67A");
    for (message.clear(); message.size() < 300; message += static_cast<char>(random_word())) {
        unsigned char digest[16];
        GetBufferMD5(digest, bytes(message), message.size());
        expect_from_every_route(message, hex(digest));
    }
}

TEST(Md5, the_bit_count_carries_into_its_high_word) {
    MD5_CTX ctx = {{}, {0xFFFFFFF8, 7}, {}};
    MD5Update(&ctx, ctx.buffer, 1);
    EXPECT_EQ(ctx.count[0], 0U);
    EXPECT_EQ(ctx.count[1], 8U);
}

TEST(Md5, the_second_block_function_takes_the_state_in_reverse_order) {
    std::uint32_t state[4] = {random_word(), random_word(), random_word(), random_word()};
    std::uint32_t other[4] = {state[3], state[2], state[1], state[0]};
    const unsigned char block[65] =
        "Sixty-four bytes at an odd address, not one of them a NUL......";
    MD5Transform2(state, block + 1);
    MD5Transform(other, block + 1);
    EXPECT_TRUE(std::equal(state, state + 4, std::rbegin(other)));
}

std::string message;

// Calls on a stack of its own and counts the runs of four message bytes that stay there.
int runs_left(void (*call)()) {
    static ucontext_t here;
    static ucontext_t there;
    std::string stack(1 << 16, '\0');
    getcontext(&there);
    there.uc_stack = {stack.data(), 0, stack.size()};
    there.uc_link = &here;
    makecontext(&there, call, 0);
    swapcontext(&here, &there);
    int left = 0;
    for (std::size_t i = 0; i + 4 <= stack.size(); ++i)
        left += message.find(stack.data() + i, 0, 4) != std::string::npos;
    return left;
}

TEST(Md5, no_run_of_the_message_stays_on_the_stack) {
    while (message.size() < 150) message += static_cast<char>(random_word());
    const auto careless = [] {
        volatile char copy[32];
        std::copy_n(message.data(), 32, copy);
    };
    EXPECT_GT(runs_left(careless), 0);
    const auto one_shot = [] {
        unsigned char digest[16];
        GetBufferMD5(digest, bytes(message), message.size());
    };
    EXPECT_EQ(runs_left(one_shot), 0);
    const auto blocks = [] {
        std::uint32_t state[4] = {};
        MD5Transform(state, bytes(message));
        MD5Transform2(state, bytes(message) + 71);
    };
    EXPECT_EQ(runs_left(blocks), 0);
}

}  // namespace
