// Protection of passphrases and private keys in memory.
#ifndef KTBASE_TOOLS_SECRETS_H
#define KTBASE_TOOLS_SECRETS_H

#include <openssl/crypto.h>

#include <cstddef>
#include <new>
#include <vector>

// Disables core dumps, and prevents other processes of the user from reading the memory of this
// one. Makes libcrypto cleanse released memory. Sets up libcrypto's secure heap, which is locked in
// memory if the limits allow it. Requires that libcrypto has not been used before.
void protect_process();

// Allocates from the secure heap, or from the ordinary heap if the secure heap is full. Cleanses
// the memory before its release.
template <class T>
struct SecretAllocator {
    using value_type = T;
    SecretAllocator() = default;
    template <class U>
    explicit SecretAllocator(const SecretAllocator<U>& /*other*/) {}

    T* allocate(std::size_t count) {
        void* memory = OPENSSL_secure_malloc(count * sizeof(T));
        if (memory == nullptr) memory = OPENSSL_malloc(count * sizeof(T));
        if (memory == nullptr) throw std::bad_alloc();
        return static_cast<T*>(memory);
    }
    void deallocate(T* memory, std::size_t count) {
        OPENSSL_secure_clear_free(memory, count * sizeof(T));
    }
    template <class U>
    bool operator==(const SecretAllocator<U>& /*other*/) const {
        return true;
    }
};

using SecretBytes = std::vector<unsigned char, SecretAllocator<unsigned char>>;

#endif
