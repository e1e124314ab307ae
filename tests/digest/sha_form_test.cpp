// Every form of SHA's block function that this processor has, beside the plain one.
#include <gtest/gtest.h>
#include <sys/mman.h>

#include <cstring>
#include <random>
#include <vector>

#include "processor.h"
#include "sha_block.h"

namespace {

struct Form {
    const char* name;
    ShaForm* blocks;
    bool runs;
};

std::vector<Form> forms() {
    const Form all[] = {{"sse2", sha_blocks_sse2, has_sse2()},
                        {"shani", sha_blocks_shani, has_sha()}};
    std::vector<Form> present;
    for (const Form& form : all) {
        if (form.runs)
            present.push_back(form);
        else
            std::printf("this processor has no %s\n", form.name);
    }
    return present;
}

std::vector<std::uint32_t> record(const HASH_CTX& ctx) {
    const auto* words = reinterpret_cast<const std::uint32_t*>(&ctx);
    return {words, words + sizeof ctx / 4};
}

// The last `size` bytes before a page that cannot be read.
class BytesBeforeTheEnd {
public:
    BytesBeforeTheEnd()
        : pages_(mmap(nullptr, 3 * kPage, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1,
                      0)) {
        mprotect(end(), kPage, PROT_NONE);
    }
    ~BytesBeforeTheEnd() { munmap(pages_, 3 * kPage); }
    BytesBeforeTheEnd(const BytesBeforeTheEnd&) = delete;
    BytesBeforeTheEnd& operator=(const BytesBeforeTheEnd&) = delete;
    unsigned char* end() const { return static_cast<unsigned char*>(pages_) + 2 * kPage; }

private:
    static constexpr std::size_t kPage = 4096;
    void* pages_;
};

// Calls as hosts of other compilers do, with `skew` bytes between the stack and its next multiple
// of 16.
void call_on_skewed_stack(ShaForm* form, HASH_CTX* ctx, const unsigned char* blocks,
                          std::size_t count, unsigned skew) {
    const struct {
        ShaForm* form;
        HASH_CTX* ctx;
        const unsigned char* blocks;
        std::size_t count;
    } call = {form, ctx, blocks, count};
    asm volatile(
        "movl %%esp, %%ebx\n\t"
        "andl $-16, %%esp\n\t"
        "subl %1, %%esp\n\t"
        "pushl 12(%0)\n\t"
        "pushl 8(%0)\n\t"
        "pushl 4(%0)\n\t"
        "call *(%0)\n\t"
        "movl %%ebx, %%esp"
        :
        : "S"(&call), "D"(skew)
        : "eax", "ebx", "ecx", "edx", "cc", "memory");
}

TEST(ShaForm, blocks_of_every_kind_leave_the_plain_forms_record) {
    std::mt19937 random(5);
    const BytesBeforeTheEnd bytes;
    for (const Form& form : forms()) {
        for (unsigned round = 0; round < 2000; ++round) {
            const std::size_t count = 1 + random() % 5;
            unsigned char* const blocks = bytes.end() - 64 * count - round % 17;
            // All bits set carry through every sum; single bits show where each word goes.
            const unsigned kind = round % 4;
            for (unsigned i = 0; i < 64 * count; ++i)
                blocks[i] = static_cast<unsigned char>(kind == 0 ? 0 : kind == 1 ? 0xFF : random());
            if (kind == 0) blocks[random() % (64 * count)] = 1 << random() % 8;
            HASH_CTX expected;
            for (unsigned i = 0; i < 24; ++i)
                reinterpret_cast<std::uint32_t*>(&expected)[i] = kind == 1 ? ~0U : random();
            HASH_CTX ctx = expected;
            sha_blocks_plain(&expected, blocks, count);
            call_on_skewed_stack(form.blocks, &ctx, blocks, count, 4 * (round % 4));
            ASSERT_EQ(record(ctx), record(expected)) << form.name << ", round " << round;
            // Once more, from the words that the block has left.
            sha_blocks_plain(&expected, reinterpret_cast<unsigned char*>(expected.data), 1);
            form.blocks(&ctx, reinterpret_cast<unsigned char*>(ctx.data), 1);
            ASSERT_EQ(record(ctx), record(expected)) << form.name << ", round " << round;
        }
    }
}

TEST(ShaForm, every_call_leaves_the_plain_forms_record) {
    std::mt19937 random(6);
    std::vector<unsigned char> bytes(1 << 12);
    for (unsigned char& byte : bytes) byte = static_cast<unsigned char>(random());
    for (const Form& form : forms()) {
        for (unsigned round = 0; round < 500; ++round) {
            HASH_CTX expected;
            HASH_CTX ctx;
            InitHash(&expected);
            InitHash(&ctx);
            const auto both = [&](auto&& call) {
                use_sha_form(sha_blocks_plain);
                call(&expected);
                use_sha_form(form.blocks);
                call(&ctx);
                EXPECT_EQ(record(ctx), record(expected)) << form.name << ", round " << round;
            };
            for (unsigned calls = random() % 6; calls != 0; --calls) {
                const unsigned size = random() % (round % 2 == 0 ? 70 : 900);
                unsigned char* const from = bytes.data() + random() % 3000;
                both([&](HASH_CTX* to) { HashBuf(from, size, to); });
            }
            both([](HASH_CTX* to) { EndHash(to); });
            ASSERT_FALSE(testing::Test::HasFailure());
        }
    }
    use_sha_form(nullptr);
}

TEST(ShaForm, the_chosen_form_is_the_fastest_that_the_processor_has) {
    use_sha_form(nullptr);
    const std::vector<Form> present = forms();
    EXPECT_EQ(sha_form(), present.empty() ? sha_blocks_plain : present.back().blocks);
    use_sha_form(sha_blocks_plain);
    EXPECT_EQ(sha_form(), sha_blocks_plain);
    use_sha_form(nullptr);
}

}  // namespace
