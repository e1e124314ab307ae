#include "libcrypto.h"

#include <openssl/err.h>
#include <openssl/evp.h>

#include <array>
#include <cstdio>
#include <cstring>

#include "messages.h"

void fail_with_libcrypto() {
    const unsigned long error = ERR_get_error();
    ERR_clear_error();
    const char* reason = ERR_SYSTEM_ERROR(error) ? std::strerror(ERR_GET_REASON(error))
                                                 : ERR_reason_error_string(error);
    throw Failure(std::string("libcrypto: ") + (reason != nullptr ? reason : "unknown error"));
}

Number number(BN_ULONG value) {
    Number made(checked(BN_new()));
    checked(BN_set_word(made.get(), value));
    return made;
}

Number number_from_hexadecimal(const char* digits) {
    BIGNUM* parsed = nullptr;
    checked(BN_hex2bn(&parsed, digits));
    return Number(parsed);
}

Number number_from_little_endian(ConstBytes bytes) {
    return Number(checked(BN_lebin2bn(bytes.data(), static_cast<int>(bytes.size()), nullptr)));
}

NumberContext number_context() {
    return NumberContext(checked(BN_CTX_new()));
}

std::string sha256_hexadecimal(ConstBytes bytes) {
    std::array<unsigned char, EVP_MAX_MD_SIZE> digest{};
    unsigned size = 0;
    checked(EVP_Digest(bytes.data(), bytes.size(), digest.data(), &size, EVP_sha256(), nullptr));
    std::string text;
    for (unsigned i = 0; i < size; ++i) {
        std::array<char, 3> digits{};
        std::snprintf(digits.data(), digits.size(), "%02x", digest[i]);
        text += digits.data();
    }
    return text;
}
