// Makes a replay run SHA and the Montgomery product in the forms for the processor's flag that the
// environment's KTBASE_FORM names, or in the plain ones. Without the flag it ends with 77, a skip.
#include <fstream>
#include <sstream>

#include "fuzz.h"
#include "kernels/montgomery_product.h"
#include "kernels/sha_blocks.h"

namespace {

bool processor_has(const std::string& flag) {
    std::stringstream flags;
    flags << std::ifstream("/proc/cpuinfo").rdbuf();
    return flags.str().find(' ' + flag + ' ') != std::string::npos;
}

ShaBlocks* sha;

// Calls SHA's block function as hosts of other compilers do, off the stack's multiples of 16.
void on_skewed_stack(std::uint32_t* state, std::uint32_t* schedule, const unsigned char* blocks,
                     std::size_t count) {
    const void* arguments[] = {state, schedule, blocks, reinterpret_cast<const void*>(count)};
    const void** at = arguments;
    ShaBlocks* called = sha;
    asm volatile(
        "movl %%esp, %%ebx\n\t"
        "andl $-16, %%esp\n\t"
        "subl $4, %%esp\n\t"
        "pushl 12(%0)\n\t"
        "pushl 8(%0)\n\t"
        "pushl 4(%0)\n\t"
        "pushl (%0)\n\t"
        "call *%1\n\t"
        "movl %%ebx, %%esp"
        : "+S"(at), "+a"(called)
        :
        : "ebx", "ecx", "edx", "cc", "memory");
}

[[maybe_unused]] const bool chosen = [] {
    static Kernels table = kernels();
    sha = processor_has("sse2") ? sha_blocks_sse2 : sha_blocks_plain;
    require(table.sha_blocks == (processor_has("sha_ni") ? sha_blocks_shani : sha),
            "the choice of SHA");
    auto* product = processor_has("sse2") ? montgomery_product_sse2 : montgomery_product_plain;
    if (processor_has("avx2")) product = montgomery_product_avx2;
    require(table.montgomery_product == product, "the choice of the product");

    const std::string form = std::getenv("KTBASE_FORM");
    if (form != "plain" && !processor_has(form)) std::exit(77);
    if (form == "sha_ni") sha = sha_blocks_shani;
    if (form == "sse2") product = montgomery_product_sse2;
    if (form == "plain") product = montgomery_product_plain;
    // The plain form needs no alignment, but what a sanitizer adds to it does.
    table = {form == "plain" ? sha_blocks_plain : on_skewed_stack, product};
    set_kernels_for_testing(&table);
    return true;
}();

}  // namespace
