// Owners of libcrypto's objects, and exceptions for its errors.
#ifndef KTBASE_TOOLS_LIBCRYPTO_H
#define KTBASE_TOOLS_LIBCRYPTO_H

#include <openssl/bn.h>

#include <memory>
#include <span>
#include <string>

using ConstBytes = std::span<const unsigned char>;

template <auto kFunction>
struct Releaser {
    template <class T>
    void operator()(T* object) const {
        kFunction(object);
    }
};
template <class T, auto kFunction>
using Owned = std::unique_ptr<T, Releaser<kFunction>>;

using Number = Owned<BIGNUM, BN_clear_free>;
using NumberContext = Owned<BN_CTX, BN_CTX_free>;

// Throws a Failure with the first error in libcrypto's queue, and empties the queue. The errors
// after the first one only name the functions that passed it on.
[[noreturn]] void fail_with_libcrypto();

// Returns the result of a libcrypto function. Throws Failure if the result reports an error.
template <class Result>
Result checked(Result result) {
    if (!result) fail_with_libcrypto();
    return result;
}

Number number(BN_ULONG value = 0);
Number number_from_hexadecimal(const char* digits);
Number number_from_little_endian(ConstBytes bytes);
NumberContext number_context();

std::string sha256_hexadecimal(ConstBytes bytes);

#endif
