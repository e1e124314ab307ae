// cpuid itself: the compiler's own test of the processor would run when the library is loaded.
#include "processor.h"

#include <cpuid.h>

namespace {

struct Cpuid {
    unsigned eax = 0, ebx = 0, ecx = 0, edx = 0;

    // All zero for a leaf that the processor does not have.
    explicit Cpuid(unsigned leaf) { __get_cpuid_count(leaf, 0, &eax, &ebx, &ecx, &edx); }
};

constexpr unsigned kFeatures = 1;
constexpr unsigned kExtendedFeatures = 7;

}  // namespace

bool has_sse2() {
    return (Cpuid(kFeatures).edx & bit_SSE2) != 0;
}

bool has_sha() {
    constexpr unsigned kNeeded = bit_SSSE3 | bit_SSE4_1;
    return (Cpuid(kFeatures).ecx & kNeeded) == kNeeded &&
           (Cpuid(kExtendedFeatures).ebx & bit_SHA) != 0;
}
