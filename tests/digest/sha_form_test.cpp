// The tests of SHA once more, on the form of its block function for a flag of the processor.
// usage: sha_form_test [FLAG], by default of the fastest
#include <gtest/gtest.h>

#include <fstream>
#include <iterator>

#include "sha_block.h"

namespace {

ShaForm* form;

// Calls the form as hosts of other compilers do, off the stack's multiples of 16.
void on_skewed_stack(HASH_CTX* ctx, const unsigned char* blocks, std::size_t count) {
    ShaForm* called = form;
    asm volatile(
        "movl %%esp, %%ebx\n\t"
        "andl $-16, %%esp\n\t"
        "pushl %2\n\t"
        "pushl %1\n\t"
        "pushl %0\n\t"
        "call *%3\n\t"
        "movl %%ebx, %%esp"
        : "+c"(ctx), "+d"(blocks), "+S"(count), "+a"(called)
        :
        : "ebx", "cc", "memory");
}

}  // namespace

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    std::ifstream file("/proc/cpuinfo");
    const std::string processor{std::istreambuf_iterator<char>(file), {}};
    const std::pair<std::string, ShaForm*> forms[] = {
        {"flags", sha_blocks_plain}, {" sse2 ", sha_blocks_sse2}, {" sha_ni ", sha_blocks_shani}};
    ShaForm* fastest = nullptr;
    for (const auto& [flag, blocks] : forms) {
        if (processor.find(flag) == std::string::npos) continue;
        fastest = blocks;
        if (argc < 2 || flag.find(argv[1]) != std::string::npos) form = blocks;
    }
    if (sha_form() != fastest) return std::puts("FAILED: a slower form was chosen"), 1;
    if (form == nullptr) return 77;
    // The plain form needs no alignment, but what a sanitizer adds to it does.
    use_sha_form(form == sha_blocks_plain ? form : on_skewed_stack);
    return RUN_ALL_TESTS();
}
