// Which form of SHA's block function runs.
#include <atomic>

#include "processor.h"
#include "sha_block.h"

namespace {

// Relaxed: threads that race to the first choice make the same one.
constinit std::atomic<ShaForm*> chosen = nullptr;

ShaForm* fastest_form() {
    if (has_sha()) return sha_blocks_shani;
    return has_sse2() ? sha_blocks_sse2 : sha_blocks_plain;
}

}  // namespace

ShaForm* sha_form() {
    ShaForm* form = chosen.load(std::memory_order_relaxed);
    if (form == nullptr) {
        form = fastest_form();
        chosen.store(form, std::memory_order_relaxed);
    }
    return form;
}

void use_sha_form(ShaForm* form) {
    chosen.store(form, std::memory_order_relaxed);
}
