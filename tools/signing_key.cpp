#include "signing_key.h"

#include <openssl/bn.h>
#include <openssl/core_names.h>
#include <openssl/dsa.h>
#include <openssl/err.h>
#include <openssl/param_build.h>
#include <openssl/pem.h>

#include "domain_numbers.h"

namespace {

constexpr int kBitsP = 512;
constexpr int kBytesP = 64;
constexpr int kBytesQ = 20;
constexpr int kKeyNumbers = 4;
constexpr int kChunkBits = 40;  // the powers of y in a public key are 2^40 apart

template <auto Function>
struct Releaser {
    template <class T>
    void operator()(T* object) const {
        Function(object);
    }
};
template <class T, auto Function>
using Owned = std::unique_ptr<T, Releaser<Function>>;

using Number = Owned<BIGNUM, BN_clear_free>;
using NumberContext = Owned<BN_CTX, BN_CTX_free>;
using KeyContext = Owned<EVP_PKEY_CTX, EVP_PKEY_CTX_free>;
using Signature = Owned<DSA_SIG, DSA_SIG_free>;
using Stream = Owned<BIO, BIO_free_all>;
using ParamBuilder = Owned<OSSL_PARAM_BLD, OSSL_PARAM_BLD_free>;
using Params = Owned<OSSL_PARAM, OSSL_PARAM_free>;

// Passes on what a libcrypto function returned, unless it says that the function failed.
template <class Result>
Result must(Result result) {
    if (result) return result;
    const char* const reason = ERR_reason_error_string(ERR_peek_last_error());
    throw KeyError(std::string("libcrypto: ") + (reason != nullptr ? reason : "unknown error"));
}

Number number(const char* hex = "0") {
    BIGNUM* parsed = nullptr;
    must(BN_hex2bn(&parsed, hex));
    return Number(parsed);
}

NumberContext number_context() {
    return NumberContext(must(BN_CTX_new()));
}

Number parameter(const EVP_PKEY* key, const char* name) {
    BIGNUM* value = nullptr;
    must(EVP_PKEY_get_bn_param(key, name, &value));
    return Number(value);
}

// base^exponent mod p, in a time that does not tell the exponent.
Number power_mod_p(const Number& base, const Number& exponent) {
    const Number p = number(kDomainP);
    Number result = number();
    BN_set_flags(exponent.get(), BN_FLG_CONSTTIME);
    must(BN_mod_exp(result.get(), base.get(), exponent.get(), p.get(), number_context().get()));
    return result;
}

// A private key is any number from 1 to q - 1.
Number random_private_key() {
    const Number q = number(kDomainQ);
    Number x = number();
    while (BN_is_zero(x.get()) != 0) must(BN_priv_rand_range(x.get(), q.get()));
    return x;
}

}  // namespace

SigningKey SigningKey::generate() {
    const Number p = number(kDomainP);
    const Number q = number(kDomainQ);
    const Number g = number(kDomainG);
    const Number x = random_private_key();
    const Number y = power_mod_p(g, x);

    const ParamBuilder builder(must(OSSL_PARAM_BLD_new()));
    must(OSSL_PARAM_BLD_push_BN(builder.get(), OSSL_PKEY_PARAM_FFC_P, p.get()));
    must(OSSL_PARAM_BLD_push_BN(builder.get(), OSSL_PKEY_PARAM_FFC_Q, q.get()));
    must(OSSL_PARAM_BLD_push_BN(builder.get(), OSSL_PKEY_PARAM_FFC_G, g.get()));
    must(OSSL_PARAM_BLD_push_BN(builder.get(), OSSL_PKEY_PARAM_PUB_KEY, y.get()));
    must(OSSL_PARAM_BLD_push_BN(builder.get(), OSSL_PKEY_PARAM_PRIV_KEY, x.get()));
    const Params params(must(OSSL_PARAM_BLD_to_param(builder.get())));

    const KeyContext context(must(EVP_PKEY_CTX_new_from_name(nullptr, "DSA", nullptr)));
    must(EVP_PKEY_fromdata_init(context.get()) == 1);
    EVP_PKEY* key = nullptr;
    must(EVP_PKEY_fromdata(context.get(), &key, EVP_PKEY_KEYPAIR, params.get()) == 1);
    return SigningKey(Handle(key));
}

SigningKey SigningKey::from_pem(const std::string& pem) {
    const Stream stream(must(BIO_new_mem_buf(pem.data(), static_cast<int>(pem.size()))));
    // An encrypted key finds no password here; nobody is asked.
    const auto no_password = [](char*, int, int, void*) { return -1; };
    Handle key(PEM_read_bio_PrivateKey(stream.get(), nullptr, no_password, nullptr));
    if (!key) throw KeyError("not an unencrypted private key in PEM");
    if (EVP_PKEY_is_a(key.get(), "DSA") == 0) throw KeyError("not a DSA key");

    const char* const names[] = {OSSL_PKEY_PARAM_FFC_P, OSSL_PKEY_PARAM_FFC_Q,
                                 OSSL_PKEY_PARAM_FFC_G};
    const char* const domain[] = {kDomainP, kDomainQ, kDomainG};
    for (int i = 0; i < 3; ++i)
        if (BN_cmp(parameter(key.get(), names[i]).get(), number(domain[i]).get()) != 0)
            throw KeyError("a key of another domain");
    const Number x = parameter(key.get(), OSSL_PKEY_PARAM_PRIV_KEY);
    if (BN_is_zero(x.get()) != 0 || BN_is_negative(x.get()) != 0 ||
        BN_cmp(x.get(), number(kDomainQ).get()) >= 0)
        throw KeyError("the private key is out of range");
    // Some forms of PEM bring a public value of their own.
    if (BN_cmp(parameter(key.get(), OSSL_PKEY_PARAM_PUB_KEY).get(),
               power_mod_p(number(kDomainG), x).get()) != 0)
        throw KeyError("the public value does not belong to the private key");
    return SigningKey(std::move(key));
}

std::vector<unsigned char> SigningKey::to_pem() const {
    const Stream stream(must(BIO_new(BIO_s_secmem())));
    must(PEM_write_bio_PKCS8PrivateKey(stream.get(), key_.get(), nullptr, nullptr, 0, nullptr,
                                       nullptr));
    const unsigned char* text = nullptr;
    const long size = BIO_get_mem_data(stream.get(), &text);
    return {text, text + size};
}

PublicKeyBlob SigningKey::public_key() const {
    const Number p = number(kDomainP);
    const NumberContext context = number_context();
    const Number step = number("1");
    must(BN_lshift(step.get(), step.get(), kChunkBits));
    Number y = parameter(key_.get(), OSSL_PKEY_PARAM_PUB_KEY);
    PublicKeyBlob blob;
    for (int j = 0; j < kKeyNumbers; ++j) {
        const Number montgomery = number();
        must(BN_lshift(montgomery.get(), y.get(), kBitsP));
        must(BN_mod(montgomery.get(), montgomery.get(), p.get(), context.get()));
        must(BN_bn2lebinpad(montgomery.get(), blob.data() + kBytesP * j, kBytesP) == kBytesP);
        y = power_mod_p(y, step);
    }
    return blob;
}

SignatureBlob SigningKey::sign(const DigestInteger& digest) const {
    const KeyContext context(must(EVP_PKEY_CTX_new(key_.get(), nullptr)));
    must(EVP_PKEY_sign_init(context.get()) == 1);
    std::size_t size = 0;
    must(EVP_PKEY_sign(context.get(), nullptr, &size, digest.data(), digest.size()) == 1);
    std::vector<unsigned char> der(size);
    must(EVP_PKEY_sign(context.get(), der.data(), &size, digest.data(), digest.size()) == 1);

    const unsigned char* parsed = der.data();
    const Signature signature(must(d2i_DSA_SIG(nullptr, &parsed, static_cast<long>(size))));
    const BIGNUM* r = nullptr;
    const BIGNUM* s = nullptr;
    DSA_SIG_get0(signature.get(), &r, &s);
    SignatureBlob blob;
    must(BN_bn2lebinpad(r, blob.data(), kBytesQ) == kBytesQ);
    must(BN_bn2lebinpad(s, blob.data() + kBytesQ, kBytesQ) == kBytesQ);
    return blob;
}
