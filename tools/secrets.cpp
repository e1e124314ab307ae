#include "secrets.h"

#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/resource.h>

namespace {

constexpr std::size_t kSecureHeapBytes = 1 << 18;  // far below the usual limit of locked memory
constexpr std::size_t kSmallestBlock = 32;

}  // namespace

void protect_process() {
    const rlimit none = {0, 0};
    setrlimit(RLIMIT_CORE, &none);
    prctl(PR_SET_DUMPABLE, 0);
    CRYPTO_secure_malloc_init(kSecureHeapBytes, kSmallestBlock);
}
