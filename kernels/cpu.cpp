// Detection by cpuid and xgetbv. The compiler's own detection (__builtin_cpu_supports) is not used:
// it runs a constructor when the library is loaded.
#include "kernels/cpu.h"

#include <cpuid.h>

namespace {

constexpr std::uint32_t kFeatureLeaf = 1;
constexpr std::uint32_t kExtendedFeatureLeaf = 7;

CpuidRegisters execute_cpuid(std::uint32_t leaf) {
    CpuidRegisters r = {};
    __get_cpuid_count(leaf, 0, &r.eax, &r.ebx, &r.ecx, &r.edx);
    return r;
}

std::uint32_t execute_xgetbv() {
    std::uint32_t low = 0;
    std::uint32_t high = 0;
    asm volatile("xgetbv" : "=a"(low), "=d"(high) : "c"(0));
    return low;
}

bool has_all(std::uint32_t word, std::uint32_t bits) {
    return (word & bits) == bits;
}

// True when the system saves the SSE and AVX registers of a thread. xgetbv is undefined without
// OSXSAVE, so that bit is tested first.
bool system_saves_avx_state(const CpuInstructions& cpu, const CpuidRegisters& features) {
    constexpr std::uint32_t kSseAndAvxState = 0x6;
    return has_all(features.ecx, bit_OSXSAVE) && has_all(cpu.read_xcr0(), kSseAndAvxState);
}

}  // namespace

const CpuInstructions kCpuInstructions = {execute_cpuid, execute_xgetbv};

CpuFeatures detect_cpu_features(const CpuInstructions& cpu) {
    const CpuidRegisters features = cpu.cpuid(kFeatureLeaf);
    const CpuidRegisters extended = cpu.cpuid(kExtendedFeatureLeaf);
    return {.sse2 = has_all(features.edx, bit_SSE2),
            .sha = has_all(features.ecx, bit_SSSE3 | bit_SSE4_1) && has_all(extended.ebx, bit_SHA),
            .avx2 = has_all(extended.ebx, bit_AVX2) && system_saves_avx_state(cpu, features)};
}
