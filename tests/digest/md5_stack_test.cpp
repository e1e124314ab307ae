// Tests that MD5 leaves no part of the message on the stack.
#include <gtest/gtest.h>
#include <ktbase/digest.h>
#include <ucontext.h>

#include <algorithm>
#include <numeric>
#include <string>

namespace {

unsigned char message[150];

void digest_message() {
    unsigned char digest[16];
    GetBufferMD5(digest, message, sizeof message);
    std::uint32_t state[4] = {};
    MD5Transform(state, message);
    MD5Transform2(state, message + 71);
}

void copy_message() {
    volatile std::uint32_t copy[32];  // words: clang would reorder bytes
    std::copy_n(reinterpret_cast<const std::uint32_t*>(message), 32, copy);
}

// Calls the function on a stack of its own. Returns how often four bytes of the message remain
// there.
int runs_left_by(void (*call)()) {
    static ucontext_t here;
    static ucontext_t there;
    std::string stack(1 << 16, '\0');
    getcontext(&there);
    there.uc_stack = {stack.data(), 0, stack.size()};
    there.uc_link = &here;
    makecontext(&there, call, 0);
    swapcontext(&here, &there);
    const std::string searched(message, message + sizeof message);
    int left = 0;
    for (std::size_t i = 0; i + 4 <= stack.size(); ++i)
        left += searched.find(stack.data() + i, 0, 4) != std::string::npos;
    return left;
}

TEST(Md5Stack, no_part_of_the_message_remains) {
    std::iota(message, message + sizeof message, static_cast<unsigned char>(77));
    EXPECT_GT(runs_left_by(copy_message), 0);
    EXPECT_EQ(runs_left_by(digest_message), 0);
}

}  // namespace
