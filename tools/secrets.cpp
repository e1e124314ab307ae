#include "secrets.h"

#include <malloc.h>
#include <sys/prctl.h>
#include <sys/resource.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>

namespace {

constexpr std::size_t kSecureHeapBytes = 1 << 18;  // far below the usual limit of locked memory
constexpr std::size_t kSmallestBlock = 32;

// The ordinary heap of libcrypto. libcrypto's default functions do not cleanse released memory,
// which may contain the encoding of a key.
void* allocate(std::size_t size, const char* /*file*/, int /*line*/) {
    return std::malloc(size);
}
void release(void* memory, const char* /*file*/, int /*line*/) {
    if (memory != nullptr) explicit_bzero(memory, malloc_usable_size(memory));
    std::free(memory);
}
void* resize(void* memory, std::size_t size, const char* file, int line) {
    void* const moved = size == 0 ? nullptr : std::malloc(size);
    if (size != 0 && moved == nullptr) return nullptr;
    if (memory != nullptr && moved != nullptr)
        std::memcpy(moved, memory, std::min(size, malloc_usable_size(memory)));
    release(memory, file, line);
    return moved;
}

}  // namespace

void protect_process() {
    const rlimit none = {0, 0};
    setrlimit(RLIMIT_CORE, &none);
    prctl(PR_SET_DUMPABLE, 0);
    CRYPTO_set_mem_functions(allocate, resize, release);
    CRYPTO_secure_malloc_init(kSecureHeapBytes, kSmallestBlock);
}
