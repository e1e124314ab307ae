// Tests of the kernels: their choice, and each variant against the models.
#include "kernels/kernels.h"

#include <cpuid.h>
#include <gtest/gtest.h>

#include <fstream>
#include <random>
#include <sstream>

#include "../digest/digest_model.h"
#include "../longarith/longarith_model.h"
#include "kernels/montgomery_product.h"
#include "kernels/sha_blocks.h"

namespace {

constexpr Kernels kPlain = {sha_blocks_plain, montgomery_product_plain};
constexpr Kernels kSse2 = {sha_blocks_sse2, montgomery_product_sse2};
constexpr Kernels kSse2WithSha = {sha_blocks_shani, montgomery_product_sse2};
constexpr Kernels kAvx2 = {sha_blocks_sse2, montgomery_product_avx2};
constexpr Kernels kAvx2WithSha = {sha_blocks_shani, montgomery_product_avx2};

// ---- The choice

// No two features have the same bit, so one word describes a processor.
constexpr std::uint32_t kLeaf1Ecx = bit_SSSE3 | bit_SSE4_1 | bit_OSXSAVE;
constexpr std::uint32_t kLeaf1Edx = bit_SSE2;
constexpr std::uint32_t kLeaf7Ebx = bit_AVX2 | bit_SHA;
constexpr std::uint32_t kEverything = kLeaf1Ecx | kLeaf1Edx | kLeaf7Ebx;

// Bits of XCR0.
constexpr std::uint32_t kSseState = 2;
constexpr std::uint32_t kAvxState = 4;
constexpr std::uint32_t kAllState = kSseState | kAvxState;

struct Processor {
    std::uint32_t lacks;
    std::uint32_t saves;  // state of vector registers
    Kernels fastest;
};

const Processor kProcessors[] = {
    {.lacks = 0, .saves = kAllState, .fastest = kAvx2WithSha},
    {.lacks = bit_SSE2, .saves = kAllState, .fastest = kPlain},
    {.lacks = bit_AVX2, .saves = kAllState, .fastest = kSse2WithSha},
    {.lacks = bit_OSXSAVE, .saves = kAllState, .fastest = kSse2WithSha},
    {.lacks = 0, .saves = kSseState, .fastest = kSse2WithSha},
    {.lacks = 0, .saves = kAvxState, .fastest = kSse2WithSha},
    {.lacks = bit_SHA, .saves = kAllState, .fastest = kAvx2},
    {.lacks = bit_SSSE3, .saves = kAllState, .fastest = kAvx2},
    {.lacks = bit_SSE4_1, .saves = kAllState, .fastest = kAvx2},
    {.lacks = kEverything - bit_SSE2, .saves = 0, .fastest = kSse2},
    {.lacks = kEverything, .saves = 0, .fastest = kPlain},
};

Processor processor;

CpuidRegisters execute_cpuid(std::uint32_t leaf) {
    const std::uint32_t has = kEverything - processor.lacks;
    if (leaf == 1) return {0, 0, has & kLeaf1Ecx, has & kLeaf1Edx};
    if (leaf == 7) return {0, has & kLeaf7Ebx, 0, 0};
    return {};
}
std::uint32_t read_xcr0() {
    EXPECT_EQ(processor.lacks & bit_OSXSAVE, 0U) << "an illegal instruction";
    return processor.saves;
}

TEST(KernelChoice, takes_the_fastest_variants_of_each_processor) {
    for (const Processor& row : kProcessors) {
        processor = row;
        const Kernels& chosen = fastest_kernels(detect_cpu_features({execute_cpuid, read_xcr0}));
        EXPECT_EQ(chosen.sha_blocks, row.fastest.sha_blocks) << &row - kProcessors;
        EXPECT_EQ(chosen.montgomery_product, row.fastest.montgomery_product) << &row - kProcessors;
    }
}

TEST(KernelChoice, finds_the_features_that_the_system_reports) {
    std::stringstream flags;
    flags << std::ifstream("/proc/cpuinfo").rdbuf();
    const auto reported = [text = flags.str()](const char* flag) {
        return text.find(flag) != std::string::npos;
    };
    const CpuFeatures found = detect_cpu_features();
    EXPECT_EQ(found.sse2, reported(" sse2 "));
    EXPECT_EQ(found.sha, reported(" sha_ni "));
    EXPECT_EQ(found.avx2, reported(" avx2 "));
    EXPECT_EQ(&kernels(), &fastest_kernels(found));
}

// ---- Every variant

struct Variant {
    const char* name;
    bool available;
    Kernels kernels;
};
void PrintTo(const Variant& variant, std::ostream* out) {
    *out << variant.name;
}
const CpuFeatures kHere = detect_cpu_features();
const Variant kVariants[] = {{.name = "plain", .available = true, .kernels = kPlain},
                             {.name = "sse2", .available = kHere.sse2, .kernels = kSse2},
                             {.name = "sha", .available = kHere.sha, .kernels = kSse2WithSha},
                             {.name = "avx2", .available = kHere.avx2, .kernels = kAvx2}};

class Kernel : public testing::TestWithParam<Variant> {
    void SetUp() override {
        if (!GetParam().available) GTEST_SKIP() << "the processor lacks " << GetParam().name;
        set_kernels_for_testing(&GetParam().kernels);
    }
    void TearDown() override { set_kernels_for_testing(nullptr); }
};
INSTANTIATE_TEST_SUITE_P(Every, Kernel, testing::ValuesIn(kVariants),
                         [](const auto& row) { return row.param.name; });

TEST_P(Kernel, digests_messages_of_every_length) {
    Bytes message;
    for (std::size_t size = 0; size < 330; ++size) {
        check_sha(message, {});
        check_sha(message, {1, size / 3, 64, 3});
        message.push_back(static_cast<unsigned char>(size * size * 41));
    }
}

TEST_P(Kernel, digests_lengths_modulo_2_to_the_32_bits) {
    for (const std::uint32_t before : {0x1FFFFFFDU, 0x20000000U, 0xFFFFFFFEU})
        check_sha({'a', 'b', 'c'}, {}, before);
}

// These values bring the columns of the vector variants close to 2^32.
TEST_P(Kernel, multiplies_values_that_fill_the_columns) {
    Limbs a(32, 0xFFFF);
    a[0] = 0xFF01;
    Limbs b(32, 0xFEFE);
    b[0] = 0xFEFF;
    check_product(a, b, Limbs(32, 0xFFFF));
}

// Random limbs between runs of zeros and ones.
Limbs random_limbs(std::mt19937& random, std::size_t count) {
    Limbs limbs(count);
    for (unsigned short& limb : limbs) {
        const unsigned short choices[] = {0, 0xFFFF, static_cast<unsigned short>(random())};
        limb = choices[random() % 3];
    }
    return limbs;
}

void check_random_products() {
    std::mt19937 random(512);
    for (int i = 0; i < 2000; ++i) {
        const std::size_t n = 1 + i % 32;
        Limbs m = random_limbs(random, n);
        m[0] |= 1;
        check_product(random_limbs(random, n), random_limbs(random, n), m);
    }
}

TEST_P(Kernel, multiplies_random_values) {
    check_random_products();
}

// Hosts of other compilers align the stack to 4 bytes only. Code added by a sanitizer needs 16.
#ifndef __SANITIZE_ADDRESS__
TEST_P(Kernel, needs_a_stack_alignment_of_4_bytes_only) {
    const auto check = +[] {
        check_sha(Bytes(300, 'a'), {});
        check_random_products();
    };
    asm volatile("subl $4, %%esp\n\tcall *%0\n\taddl $4, %%esp" ::"r"(check)
                 : "eax", "ecx", "edx", "cc", "memory");
}
#endif

}  // namespace
