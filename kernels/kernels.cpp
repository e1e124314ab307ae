// The choice among the variants.
#include "kernels/kernels.h"

#include <atomic>

#include "kernels/montgomery_product.h"
#include "kernels/sha_blocks.h"

namespace {

constexpr Kernels kPlain = {sha_blocks_plain, montgomery_product_plain};
constexpr Kernels kSse2 = {sha_blocks_sse2, montgomery_product_sse2};
constexpr Kernels kSse2WithSha = {sha_blocks_shani, montgomery_product_sse2};
constexpr Kernels kAvx2 = {sha_blocks_sse2, montgomery_product_avx2};
constexpr Kernels kAvx2WithSha = {sha_blocks_shani, montgomery_product_avx2};

// Relaxed order is enough: the tables are constant, and threads that choose at the same time choose
// the same table.
constinit std::atomic<const Kernels*> chosen = nullptr;

}  // namespace

const Kernels& fastest_kernels(const CpuFeatures& cpu) {
    if (!cpu.sse2) return kPlain;
    if (cpu.avx2) return cpu.sha ? kAvx2WithSha : kAvx2;
    return cpu.sha ? kSse2WithSha : kSse2;
}

const Kernels& kernels() {
    const Kernels* table = chosen.load(std::memory_order_relaxed);
    if (table == nullptr) {
        table = &fastest_kernels(detect_cpu_features());
        chosen.store(table, std::memory_order_relaxed);
    }
    return *table;
}

void set_kernels_for_testing(const Kernels* table) {
    chosen.store(table, std::memory_order_relaxed);
}
