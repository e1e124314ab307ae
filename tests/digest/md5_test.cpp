// MD5 against known answers, and what it leaves behind.
#include <gtest/gtest.h>
#include <ktbase/digest.h>
#include <pthread.h>
#include <sys/mman.h>

#include <algorithm>
#include <cstring>
#include <functional>
#include <random>
#include <set>
#include <string>

namespace {

std::string hex(const unsigned char* digest) {
    std::string text;
    for (int i = 0; i < 32; ++i)
        text += "0123456789abcdef"[digest[i / 2] >> (i % 2 == 0 ? 4 : 0) & 15];
    return text;
}

const unsigned char* bytes(const std::string& text) {
    return reinterpret_cast<const unsigned char*>(text.data());
}

std::string random_text(std::mt19937& random, std::size_t size) {
    std::string text(size, '\0');
    for (char& c : text) c = static_cast<char>(random());
    return text;
}

std::string whole(const std::string& message) {
    unsigned char digest[16] = {};
    EXPECT_EQ(GetBufferMD5(digest, bytes(message), message.size()), 1);
    return hex(digest);
}

// The digest of a message given in pieces of the sizes that `next` says, after an empty one each.
template <auto Init, auto Update, auto Final, class Record>
std::string pieces(const std::string& message, const std::function<std::size_t()>& next) {
    struct {
        Record record;
        Record zero{};
    } r;
    std::memset(&r.record, 0xA5, sizeof r.record);
    Init(&r.record);
    EXPECT_EQ(r.record.buffer[0], 0xA5);
    for (std::size_t done = 0, size = 0; done < message.size(); done += size) {
        Update(&r.record, nullptr, 0);
        size = std::min(next(), message.size() - done);
        Update(&r.record, bytes(message) + done, size);
    }
    unsigned char digest[16];
    Final(digest, &r.record);
    EXPECT_EQ(std::memcmp(&r.record, &r.zero, sizeof r.zero), 0) << "left in the record";
    return hex(digest);
}
constexpr auto global_pieces = pieces<MD5Init, MD5Update, MD5Final, MD5_CTX>;
constexpr auto vantu_pieces =
    pieces<vantu::MD5_Init, vantu::MD5_Update, vantu::MD5_Final, vantu::MD5_CTX>;

// RFC 1321, A.5.
TEST(Md5, known_answers_come_out_of_every_route) {
    const std::pair<std::string, std::string> answers[] = {
        {"", "d41d8cd98f00b204e9800998ecf8427e"},
        {"a", "0cc175b9c0f1b6a831c399e269772661"},
        {"abc", "900150983cd24fb0d6963f7d28e17f72"},
        {"message digest", "f96b697d7cb7938d525a2f31aaf161d0"},
        {"abcdefghijklmnopqrstuvwxyz", "c3fcd3d76192e4007dfb496cca67e13b"},
        {"ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789",
         "d174ab98d277d9f5a5611c2c9f419d9f"},
        {"12345678901234567890123456789012345678901234567890123456789012345678901234567890",
         "57edf4a22be3c955ac49da2e2107b67a"},
    };
    for (const auto& [message, answer] : answers) {
        EXPECT_EQ(whole(message), answer);
        unsigned char digest[16] = {};
        EXPECT_EQ(vantu::MD5(message.data(), message.size(), digest), 1);
        EXPECT_EQ(hex(digest), answer);
        for (const std::size_t step : {100, 1, 7, 64}) {
            EXPECT_EQ(global_pieces(message, [=] { return step; }), answer) << "by " << step;
            EXPECT_EQ(vantu_pieces(message, [=] { return step; }), answer) << "by " << step;
        }
    }
}

TEST(Md5, splits_do_not_change_the_digest_of_any_length) {
    std::mt19937 random(1321);
    for (std::size_t size = 0; size <= 300; ++size) {
        const std::string message = random_text(random, size);
        const std::string answer = whole(message);
        for (const unsigned most : {3, 70, 200})
            ASSERT_EQ(global_pieces(message, [&] { return random() % most; }), answer) << size;
    }
}

TEST(Md5, the_bit_count_carries_and_takes_half_a_gibibyte_in_one_call) {
    MD5_CTX ctx;
    MD5Init(&ctx);
    ctx.count[0] = 0xFFFFFFF8;
    MD5Update(&ctx, bytes("x"), 1);
    EXPECT_EQ(ctx.count[0], 0U);
    EXPECT_EQ(ctx.count[1], 1U);

    const unsigned size = (1U << 29) + 5;
    void* const zeros = mmap(nullptr, size, PROT_READ, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    ASSERT_NE(zeros, MAP_FAILED);
    unsigned char digest[16];
    GetBufferMD5(digest, static_cast<unsigned char*>(zeros), size);
    munmap(zeros, size);
    EXPECT_EQ(hex(digest), "53f83c490b7435d7e205466bfd984882");
}

TEST(Md5, the_input_may_lie_in_the_buffer_of_the_record) {
    std::mt19937 random(2);
    const std::string message = random_text(random, 40);
    MD5_CTX ctx;
    MD5Init(&ctx);
    MD5Update(&ctx, bytes(message), 40);
    MD5Update(&ctx, ctx.buffer + 30, 10);
    MD5Update(&ctx, ctx.buffer + 35, 14);
    unsigned char digest[16];
    MD5Final(digest, &ctx);
    const std::string all =
        message + message.substr(30) + message.substr(35) + message.substr(30, 9);
    EXPECT_EQ(hex(digest), whole(all));
}

TEST(Md5, the_second_block_function_takes_the_state_in_reverse_order) {
    std::mt19937 random(3);
    for (int round = 0; round < 50; ++round) {
        const std::string block = random_text(random, 65);
        std::uint32_t state[4];
        for (std::uint32_t& word : state) word = random();
        std::uint32_t other[4];
        std::reverse_copy(state, state + 4, other);
        MD5Transform(other, bytes(block) + 1);
        std::reverse(other, other + 4);
        MD5Transform2(state, bytes(block) + 1);
        ASSERT_TRUE(std::equal(state, state + 4, other));
    }
}

// Runs `call` on a stack of its own and counts the runs of four message bytes that it leaves there.
int runs_left(const std::string& message, void (*call)(const std::string&)) {
    static std::pair<const std::string*, void (*)(const std::string&)> work;
    work = {&message, call};
    std::set<std::uint32_t> runs;
    std::uint32_t run = 0;
    for (std::size_t i = 0; i + 4 <= message.size(); ++i)
        std::memcpy(&run, message.data() + i, 4), runs.insert(run);

    const std::size_t size = 1 << 18;
    auto* const stack = static_cast<unsigned char*>(
        mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0));
    pthread_attr_t attributes;
    pthread_attr_init(&attributes);
    pthread_attr_setstack(&attributes, stack, size);
    const auto on_own_stack = [](void*) -> void* {
        // What runs when the thread ends overwrites this only.
        [[maybe_unused]] volatile char gap[1 << 16];
        gap[0] = 1;
        work.second(*work.first);
        gap[0] = 0;
        return nullptr;
    };
    pthread_t thread;
    EXPECT_EQ(pthread_create(&thread, &attributes, on_own_stack, nullptr), 0);
    pthread_join(thread, nullptr);
    int left = 0;
    for (std::size_t i = 0; i + 4 <= size; ++i)
        std::memcpy(&run, stack + i, 4), left += runs.contains(run);
    munmap(stack, size);
    return left;
}

TEST(Md5, no_run_of_the_message_stays_on_the_stack) {
    std::mt19937 random(4);
    const std::string message = random_text(random, 150);
    const auto one_shot = [](const std::string& text) {
        unsigned char digest[16];
        GetBufferMD5(digest, bytes(text), text.size());
    };
    const auto blocks = [](const std::string& text) {
        std::uint32_t state[4] = {};
        MD5Transform(state, bytes(text));
        MD5Transform2(state, bytes(text) + 71);
    };
    const auto careless = [](const std::string& text) {
        volatile char copy[8];
        std::copy_n(text.data(), 8, copy);
    };
    EXPECT_GT(runs_left(message, careless), 0) << "the search does not see what is there";
    EXPECT_EQ(runs_left(message, one_shot), 0);
    EXPECT_EQ(runs_left(message, blocks), 0);
}

}  // namespace
