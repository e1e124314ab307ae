// Memory for passphrases and private keys, and a process that leaves none of them behind.
#ifndef KTBASE_TOOLS_SECRETS_H
#define KTBASE_TOOLS_SECRETS_H

#include <openssl/crypto.h>

#include <cstddef>
#include <new>
#include <vector>

// Turns core dumps off and keeps other processes of the user from reading this one's memory. Makes
// libcrypto cleanse what it releases, and sets up its secure heap, which is locked in memory where
// the limits allow it. Comes before every other use of libcrypto.
void protect_process();

// Takes memory from the secure heap, or from the ordinary one when that is full, and cleanses it
// before it is released.
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
