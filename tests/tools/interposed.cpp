// Replaces functions of libcrypto and the system. KTSIGN_FAULT names the faults to inject.
#include <dlfcn.h>
#include <openssl/evp.h>
#include <sys/stat.h>

#include <cstdlib>
#include <cstring>

namespace {

constexpr std::size_t kPieceOfMessage = 1 << 16;

template <class Function>
Function* original(const char* name) {
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

bool fault(const char* name) {
    const char* const wanted = std::getenv("KTSIGN_FAULT");
    return wanted != nullptr && std::strstr(wanted, name) != nullptr;
}

}  // namespace

extern "C" {

int EVP_PKEY_sign(EVP_PKEY_CTX* context, unsigned char* signature, std::size_t* size,
                  const unsigned char* digest, std::size_t digest_size) {
    const int result = original<decltype(EVP_PKEY_sign)>("EVP_PKEY_sign")(context, signature, size,
                                                                          digest, digest_size);
    if (signature != nullptr && fault("sign")) signature[*size - 1] ^= 1;
    return result;
}

int EVP_PKEY_verify(EVP_PKEY_CTX* context, const unsigned char* signature, std::size_t size,
                    const unsigned char* digest, std::size_t digest_size) {
    if (fault("verify")) return 1;
    return original<decltype(EVP_PKEY_verify)>("EVP_PKEY_verify")(context, signature, size, digest,
                                                                  digest_size);
}

ssize_t read(int fd, void* buffer, std::size_t size) {
    const timespec times[] = {{1, 0}, {1, 0}};
    if (size == kPieceOfMessage && fault("change")) futimens(fd, times);
    return original<decltype(read)>("read")(fd, buffer, size);
}

}  // extern "C"
