// The choice among the forms of the Montgomery product.
#include "montgomery_product.h"

#include <cpuid.h>

#include <atomic>

namespace {

struct CpuidResult {
    unsigned eax, ebx, ecx, edx;  // all zero where the CPU does not know the leaf
};

CpuidResult cpuid(unsigned leaf) {
    CpuidResult result = {};
    __get_cpuid_count(leaf, 0, &result.eax, &result.ebx, &result.ecx, &result.edx);
    return result;
}

// True when the system saves the upper halves of the vector registers.
bool system_keeps_avx_state() {
    constexpr unsigned kSseAndAvxState = 0x6;
    if ((cpuid(1).ecx & bit_OSXSAVE) == 0) return false;
    unsigned eax = 0;
    unsigned edx = 0;
    asm("xgetbv" : "=a"(eax), "=d"(edx) : "c"(0));
    return (eax & kSseAndAvxState) == kSseAndAvxState;
}

// Relaxed: threads that race to the first choice make the same one.
constinit std::atomic<MontgomeryProduct*> chosen = nullptr;

MontgomeryProduct* fastest_form() {
    if (cpu_has_avx2()) return montgomery_product_avx2;
    if (cpu_has_sse2()) return montgomery_product_sse2;
    return montgomery_product_plain;
}

}  // namespace

bool cpu_has_sse2() {
    return (cpuid(1).edx & bit_SSE2) != 0;
}

bool cpu_has_avx2() {
    return system_keeps_avx_state() && (cpuid(7).ebx & bit_AVX2) != 0;
}

MontgomeryProduct* montgomery_product() {
    MontgomeryProduct* form = chosen.load(std::memory_order_relaxed);
    if (form == nullptr) {
        form = fastest_form();
        chosen.store(form, std::memory_order_relaxed);
    }
    return form;
}

void use_montgomery_product(MontgomeryProduct* form) {
    chosen.store(form, std::memory_order_relaxed);
}
