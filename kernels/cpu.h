// What the processor and the operating system offer beyond the i686 baseline.
#ifndef KTBASE_KERNELS_CPU_H
#define KTBASE_KERNELS_CPU_H

#include <cstdint>

struct CpuidRegisters {
    std::uint32_t eax, ebx, ecx, edx;
};

// The instructions that detection executes. Tests replace them to describe other processors.
struct CpuInstructions {
    CpuidRegisters (*cpuid)(std::uint32_t leaf);  // subleaf 0; zeros for a leaf out of range
    std::uint32_t (*read_xcr0)();                 // low half; valid only where OSXSAVE is set
};

extern const CpuInstructions kCpuInstructions;  // those of the running processor

struct CpuFeatures {
    bool sse2;
    bool sha;   // the SHA instructions, with the SSSE3 and SSE4.1 instructions used beside them
    bool avx2;  // AVX2, and the system saves the upper halves of the registers
};

CpuFeatures detect_cpu_features(const CpuInstructions& cpu = kCpuInstructions);

#endif
