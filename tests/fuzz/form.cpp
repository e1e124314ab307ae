// Makes a replay run SHA and the Montgomery product in the forms for the processor's flag that the
// environment's KTBASE_FORM names, or in the plain ones. Without the flag it ends with 77, a skip.
#include <fstream>
#include <sstream>

#include "fuzz.h"
#include "montgomery_product.h"
#include "sha_block.h"

namespace {

bool processor_has(const std::string& flag) {
    std::stringstream flags;
    flags << std::ifstream("/proc/cpuinfo").rdbuf();
    return flags.str().find(' ' + flag + ' ') != std::string::npos;
}

ShaForm* sha;

// Calls SHA's form as hosts of other compilers do, off the stack's multiples of 16.
void on_skewed_stack(HASH_CTX* ctx, const unsigned char* blocks, std::size_t count) {
    ShaForm* called = sha;
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

[[maybe_unused]] const bool chosen = [] {
    sha = processor_has("sse2") ? sha_blocks_sse2 : sha_blocks_plain;
    require(sha_form() == (processor_has("sha_ni") ? sha_blocks_shani : sha), "the choice of SHA");
    auto* product = processor_has("sse2") ? montgomery_product_sse2 : montgomery_product_plain;
    if (processor_has("avx2")) product = montgomery_product_avx2;
    require(montgomery_product() == product, "the choice of the product");

    const std::string form = std::getenv("KTBASE_FORM");
    if (form != "plain" && !processor_has(form)) std::exit(77);
    if (form == "sha_ni") sha = sha_blocks_shani;
    if (form == "sse2") product = montgomery_product_sse2;
    if (form == "plain") product = montgomery_product_plain;
    use_montgomery_product(product);
    // The plain form needs no alignment, but what a sanitizer adds to it does.
    use_sha_form(form == "plain" ? sha_blocks_plain : on_skewed_stack);
    return true;
}();

}  // namespace
