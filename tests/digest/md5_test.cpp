// MD5 against known answers, in awkward records, and what it leaves behind.
#include <gtest/gtest.h>
#include <ktbase/digest.h>
#include <ktbase/text.h>
#include <sys/mman.h>
#include <ucontext.h>

#include <algorithm>
#include <random>
#include <string>

namespace {

std::mt19937 random_word(1321);

const unsigned char* bytes(const std::string& text) {
    return reinterpret_cast<const unsigned char*>(text.data());
}

// RFC 1321, A.5. The fuzzer takes the other names of the functions, md5sum_test every length.
TEST(Md5, known_answers_come_out) {
    const std::string letters = "abcdefghijklmnopqrstuvwxyz";
    std::string digits;
    while (digits.size() < 80) digits += "1234567890";
    const std::pair<std::string, const char*> answers[] = {
        {"", "D41D8CD98F00B204E9800998ECF8427E"},
        {"a", "0CC175B9C0F1B6A831C399E269772661"},
        {"abc", "900150983CD24FB0D6963F7D28E17F72"},
        {"message digest", "F96B697D7CB7938D525A2F31AAF161D0"},
        {letters, "C3FCD3D76192E4007DFB496CCA67E13B"},
        {"ABCDEFGHIJKLMNOPQRSTUVWXYZ" + letters + "0123456789", "D174AB98D277D9F5A5611C2C9F419D9F"},
        {digits, "57EDF4A22BE3C955AC49DA2E2107B67A"}};
    for (const auto& [message, answer] : answers) {
        unsigned char digest[16];
        char text[33];
        EXPECT_EQ(GetBufferMD5(digest, bytes(message), message.size()), 1);
        BufToHexString(digest, 16, text);
        EXPECT_STREQ(text, answer);
    }
}

TEST(Md5, input_may_lie_in_the_record_the_count_carries_and_both_block_functions_agree) {
    // 57 bytes wait; ten from the 54th on fill the block, over themselves, and begin the next.
    MD5_CTX ctx = {{1, 2, 3, 4}, {0xFFFFFFC8, 7}, {}};
    std::string block(64, '\0');
    for (char& c : block) c = static_cast<char>(random_word());
    std::copy(block.begin(), block.end(), ctx.buffer);
    MD5Update(&ctx, ctx.buffer + 54, 10);
    block.replace(57, 7, block, 54, 7);
    std::uint32_t state[4] = {1, 2, 3, 4};
    MD5Transform(state, bytes(block));
    std::uint32_t reversed[4] = {4, 3, 2, 1};
    MD5Transform2(reversed, bytes(block));
    block.replace(0, 3, block, 61, 3);
    EXPECT_TRUE(std::equal(state, state + 4, ctx.state));
    EXPECT_TRUE(std::equal(state, state + 4, std::rbegin(reversed)));
    EXPECT_TRUE(std::equal(block.begin(), block.end(), reinterpret_cast<char*>(ctx.buffer)));
    EXPECT_EQ(ctx.count[0], 0x18U);
    EXPECT_EQ(ctx.count[1], 8U);
    // All pages of such a map are the system's one page of zeros.
    void* const zeros =
        mmap(nullptr, 1 << 29, PROT_READ, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
    MD5Update(&ctx, static_cast<unsigned char*>(zeros), 1 << 29);
    EXPECT_EQ(ctx.count[0], 0x18U);
    EXPECT_EQ(ctx.count[1], 9U);
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
        volatile std::uint32_t copy[32];  // of words: clang would lay out bytes as it likes
        std::copy_n(reinterpret_cast<const std::uint32_t*>(message.data()), 32, copy);
    };
    EXPECT_GT(runs_left(careless), 0);
    const auto careful = [] {
        unsigned char digest[16];
        GetBufferMD5(digest, bytes(message), message.size());
        std::uint32_t state[4] = {};
        MD5Transform(state, bytes(message));
        MD5Transform2(state, bytes(message) + 71);
    };
    EXPECT_EQ(runs_left(careful), 0);
}

}  // namespace
