// Makes a replay run SHA in one form of its block function.
#include "form.h"
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

[[maybe_unused]] const bool chosen = [] {
    ShaForm* const fastest = processor_has("sha_ni") ? sha_blocks_shani
                             : processor_has("sse2") ? sha_blocks_sse2
                                                     : sha_blocks_plain;
    require(sha_form() == fastest, "the processor's own form of SHA");
    const std::string name = form_to_run();
    form = name == "sha_ni" ? sha_blocks_shani : name == "sse2" ? sha_blocks_sse2 : nullptr;
    // The plain form needs no alignment, but what a sanitizer adds to it does.
    use_sha_form(form == nullptr ? sha_blocks_plain : on_skewed_stack);
    return true;
}();

}  // namespace
