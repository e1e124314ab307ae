#include "private_key.h"

#include <openssl/core_names.h>
#include <openssl/dsa.h>
#include <openssl/err.h>
#include <openssl/param_build.h>
#include <openssl/pem.h>
#include <openssl/pkcs12.h>
#include <openssl/rand.h>
#include <openssl/x509.h>

#include <algorithm>
#include <exception>
#include <utility>
#include <vector>

#include "domain_shape.h"
#include "messages.h"
#include "output_files.h"
#include "verification.h"

namespace {

// libcrypto refuses a key whose scrypt needs more than 32 MiB. N = 2^14 and r = 8 need 16 MiB. p =
// 5 multiplies the time by 5.
constexpr unsigned kScryptN = 1 << 14;
constexpr unsigned kScryptR = 8;
constexpr unsigned kScryptP = 5;
constexpr int kSaltBytes = 16;

using KeyContext = Owned<EVP_PKEY_CTX, EVP_PKEY_CTX_free>;
using Signature = Owned<DSA_SIG, DSA_SIG_free>;
using Stream = Owned<BIO, BIO_free_all>;
using Algorithm = Owned<X509_ALGOR, X509_ALGOR_free>;
using PlainKey = Owned<PKCS8_PRIV_KEY_INFO, PKCS8_PRIV_KEY_INFO_free>;
using EncryptedKey = Owned<X509_SIG, X509_SIG_free>;
using ParamBuilder = Owned<OSSL_PARAM_BLD, OSSL_PARAM_BLD_free>;
using Params = Owned<OSSL_PARAM, OSSL_PARAM_free>;

// The digest as a number, most significant byte first.
using DigestInteger = std::array<unsigned char, kBytesQ>;

DigestInteger digest_integer(const HASH_CTX& digest) {
    // The state words are the number's 32-bit digits, least significant first.
    DigestInteger integer;
    for (std::size_t i = 0; i < integer.size(); ++i)
        integer[integer.size() - 1 - i] =
            static_cast<unsigned char>(digest.state[i / 4] >> (8 * (i % 4)));
    return integer;
}

KeyContext context_of(EVP_PKEY* key) {
    return KeyContext(checked(EVP_PKEY_CTX_new(key, nullptr)));
}

Number parameter(const EVP_PKEY* key, const char* name) {
    BIGNUM* value = nullptr;
    checked(EVP_PKEY_get_bn_param(key, name, &value) == 1);
    return Number(value);
}

// Returns a random number from 1 to q - 1. libcrypto's generation of keys refuses a p of 512 bits.
Number random_private_number() {
    Number x(checked(BN_secure_new()));
    while (BN_is_zero(x.get()) == 1)
        checked(BN_priv_rand_range(x.get(), built_in_domain().q.get()));
    return x;
}

// Returns g^x mod p in constant time.
Number public_number(const Number& x) {
    Number y = number();
    BN_set_flags(x.get(), BN_FLG_CONSTTIME);
    checked(BN_mod_exp(y.get(), built_in_domain().g.get(), x.get(), built_in_domain().p.get(),
                       number_context().get()));
    return y;
}

struct PassphraseRequest {
    Passphrase& passphrase;
    const std::string& name;
    bool obtained = false;
    std::exception_ptr failure;
};

// libcrypto calls this function for an encrypted key. An exception must not leave it.
int give_passphrase(char* buffer, int size, int /*writing*/, void* argument) {
    auto& request = *static_cast<PassphraseRequest*>(argument);
    if (request.failure) return -1;
    try {
        const SecretBytes& text = request.passphrase.for_existing_key(request.name);
        request.obtained = true;
        if (text.size() > static_cast<std::size_t>(size)) return -1;
        std::copy(text.begin(), text.end(), buffer);
        return static_cast<int>(text.size());
    } catch (...) {
        request.failure = std::current_exception();
        return -1;
    }
}

SignatureBlob encode(const std::vector<unsigned char>& der) {
    const unsigned char* parsed = der.data();
    const Signature signature(
        checked(d2i_DSA_SIG(nullptr, &parsed, static_cast<long>(der.size()))));
    const BIGNUM* r = nullptr;
    const BIGNUM* s = nullptr;
    DSA_SIG_get0(signature.get(), &r, &s);
    SignatureBlob blob;
    checked(BN_bn2lebinpad(r, blob.data(), kBytesQ) == kBytesQ);
    checked(BN_bn2lebinpad(s, blob.data() + kBytesQ, kBytesQ) == kBytesQ);
    return blob;
}

// libcrypto's function for this format does not take the parameters of scrypt.
void write_encrypted(BIO* stream, const EVP_PKEY* key, const SecretBytes& passphrase) {
    std::array<unsigned char, kSaltBytes> salt{};
    checked(RAND_bytes(salt.data(), kSaltBytes) == 1);
    Algorithm algorithm(checked(PKCS5_pbe2_set_scrypt(EVP_aes_256_cbc(), salt.data(), kSaltBytes,
                                                      nullptr, kScryptN, kScryptR, kScryptP)));
    const PlainKey plain(checked(EVP_PKEY2PKCS8(key)));
    const EncryptedKey encrypted(
        checked(PKCS8_set0_pbe(reinterpret_cast<const char*>(passphrase.data()),
                               static_cast<int>(passphrase.size()), plain.get(), algorithm.get())));
    static_cast<void>(algorithm.release());  // now part of `encrypted`
    checked(PEM_write_bio_PKCS8(stream, encrypted.get()) == 1);
}

// Removes the errors of libcrypto. Returns the first one that is not caused by the content of a
// key, or an empty text.
std::string limit_of_libcrypto() {
    std::string reason;
    while (const unsigned long error = ERR_get_error()) {
        const bool is_limit =
            ERR_GET_LIB(error) == ERR_LIB_EVP || ERR_GET_REASON(error) == ERR_R_MALLOC_FAILURE;
        if (is_limit && reason.empty()) reason = ERR_reason_error_string(error);
    }
    return reason;
}

void warn_when_others_may_read(const InputFile& file) {
    const mode_t others = S_IRGRP | S_IROTH;
    if (file.size() && (file.status().st_mode & others) != 0)
        print_error(quoted(file.name()) +
                    ": warning: users other than its owner may read this private key");
}

}  // namespace

PrivateKey PrivateKey::generate() {
    const DomainNumbers& built_in = built_in_domain();
    const Number x = random_private_number();
    const Number y = public_number(x);
    const ParamBuilder builder(checked(OSSL_PARAM_BLD_new()));
    checked(OSSL_PARAM_BLD_push_BN(builder.get(), OSSL_PKEY_PARAM_FFC_P, built_in.p.get()) == 1);
    checked(OSSL_PARAM_BLD_push_BN(builder.get(), OSSL_PKEY_PARAM_FFC_Q, built_in.q.get()) == 1);
    checked(OSSL_PARAM_BLD_push_BN(builder.get(), OSSL_PKEY_PARAM_FFC_G, built_in.g.get()) == 1);
    checked(OSSL_PARAM_BLD_push_BN(builder.get(), OSSL_PKEY_PARAM_PUB_KEY, y.get()) == 1);
    checked(OSSL_PARAM_BLD_push_BN(builder.get(), OSSL_PKEY_PARAM_PRIV_KEY, x.get()) == 1);
    const Params params(checked(OSSL_PARAM_BLD_to_param(builder.get())));

    const KeyContext context(checked(EVP_PKEY_CTX_new_from_name(nullptr, "DSA", nullptr)));
    EVP_PKEY* made = nullptr;
    checked(EVP_PKEY_fromdata_init(context.get()) == 1);
    checked(EVP_PKEY_fromdata(context.get(), &made, EVP_PKEY_KEYPAIR, params.get()) == 1);
    PrivateKey key{Handle(made)};
    // Test the key: sign() verifies the signature.
    HASH_CTX digest{};
    checked(RAND_bytes(reinterpret_cast<unsigned char*>(digest.state), sizeof(digest.state)) == 1);
    static_cast<void>(key.sign(digest));
    return key;
}

PrivateKey PrivateKey::from_pem(const SecretBytes& pem, Passphrase& passphrase,
                                const std::string& name) {
    const Stream stream(checked(BIO_new_mem_buf(pem.data(), static_cast<int>(pem.size()))));
    PassphraseRequest request{passphrase, name, false, nullptr};
    Handle key(PEM_read_bio_PrivateKey(stream.get(), nullptr, give_passphrase, &request));
    const std::string limit = limit_of_libcrypto();
    if (request.failure) std::rethrow_exception(request.failure);
    if (!key && !limit.empty()) throw Failure(name, "libcrypto: " + limit);
    if (!key && request.obtained) throw Failure(name, "wrong passphrase, or a damaged key");
    if (!key) throw Failure(name, "not a private key in PEM");
    if (EVP_PKEY_is_a(key.get(), "DSA") == 0) throw Failure(name, "not a DSA key");
    PrivateKey made(std::move(key));
    made.was_encrypted_ = request.obtained;
    if (!has_the_size(made.domain()))
        throw Failure(name, "not a DSA key with a p of 512 bits and a q of 160");
    const KeyContext context = context_of(made.key_.get());
    if (EVP_PKEY_private_check(context.get()) != 1) {
        ERR_clear_error();
        throw Failure(name, "the private key is out of range");
    }
    // Some formats also contain the public value.
    if (EVP_PKEY_pairwise_check(context.get()) != 1) {
        ERR_clear_error();
        throw Failure(name, "a damaged key: its numbers do not belong together");
    }
    return made;
}

SecretBytes PrivateKey::to_pem(const SecretBytes* passphrase) const {
    const Stream stream(checked(BIO_new(BIO_s_secmem())));
    if (passphrase != nullptr)
        write_encrypted(stream.get(), key_.get(), *passphrase);
    else
        checked(PEM_write_bio_PKCS8PrivateKey(stream.get(), key_.get(), nullptr, nullptr, 0,
                                              nullptr, nullptr) == 1);
    const unsigned char* text = nullptr;
    const long size = BIO_get_mem_data(stream.get(), &text);
    return {text, text + size};
}

DomainNumbers PrivateKey::domain() const {
    return {parameter(key_.get(), OSSL_PKEY_PARAM_FFC_P),
            parameter(key_.get(), OSSL_PKEY_PARAM_FFC_Q),
            parameter(key_.get(), OSSL_PKEY_PARAM_FFC_G)};
}

PublicKeyBlob PrivateKey::public_key() const {
    return public_key_of(parameter(key_.get(), OSSL_PKEY_PARAM_PUB_KEY).get(),
                         parameter(key_.get(), OSSL_PKEY_PARAM_FFC_P).get());
}

SignatureBlob PrivateKey::sign(const HASH_CTX& digest) const {
    const DigestInteger integer = digest_integer(digest);
    const KeyContext context = context_of(key_.get());
    checked(EVP_PKEY_sign_init(context.get()) == 1);
    std::size_t size = 0;
    checked(EVP_PKEY_sign(context.get(), nullptr, &size, integer.data(), integer.size()) == 1);
    std::vector<unsigned char> der(size);
    checked(EVP_PKEY_sign(context.get(), der.data(), &size, integer.data(), integer.size()) == 1);
    der.resize(size);

    checked(EVP_PKEY_verify_init(context.get()) == 1);
    const int verdict =
        EVP_PKEY_verify(context.get(), der.data(), der.size(), integer.data(), integer.size());
    ERR_clear_error();
    const std::string faulty = "the signature just made does not match: a faulty key or machine";
    if (verdict != 1) throw Failure("libcrypto: " + faulty);
    const SignatureBlob signature = encode(der);
    if (!refusal(public_key(), signature, digest).empty()) throw Failure("the library: " + faulty);
    return signature;
}

PrivateKey parse_private_key(const InputFile& file, const SecretBytes& pem,
                             Passphrase& passphrase) {
    PrivateKey key = PrivateKey::from_pem(pem, passphrase, file.name());
    warn_when_others_may_read(file);
    return key;
}

PrivateKey read_own_private_key(const std::string& name, Passphrase& passphrase) {
    InputFile file(name);
    const SecretBytes pem = read_at_most(file, kMaxKeyFileBytes, "too long for a key");
    PrivateKey key = parse_private_key(file, pem, passphrase);
    if (!(key.domain() == built_in_domain())) throw Failure(name, "a key of another domain");
    return key;
}

void require_matching_public_key(const PrivateKey& key, const std::string& name) {
    const std::string public_name = name + ".pub";
    if (name == "-" || !name_exists(public_name)) return;
    if (read_public_key(public_name) != key.public_key())
        throw Failure(public_name, "not the public key of " + quoted(name));
}
