#include "domain.h"

#include <openssl/core_names.h>
#include <openssl/dsa.h>
#include <openssl/evp.h>

#include <array>

#include "domain_check.h"
#include "domain_shape.h"
#include "messages.h"

namespace {

constexpr int kAttempts = 100;

using KeyContext = Owned<EVP_PKEY_CTX, EVP_PKEY_CTX_free>;
using Parameters = Owned<EVP_PKEY, EVP_PKEY_free>;
using Text = Owned<char, [](char* text) { OPENSSL_free(text); }>;

Number number_from_limbs(const Limbs& limbs) {
    std::vector<unsigned char> bytes;
    for (const unsigned short limb : limbs) {
        bytes.push_back(static_cast<unsigned char>(limb & 0xFF));
        bytes.push_back(static_cast<unsigned char>(limb >> 8));
    }
    return number_from_little_endian(bytes);
}

Parameters generate_parameters() {
    const KeyContext context(checked(EVP_PKEY_CTX_new_from_name(nullptr, "DSA", nullptr)));
    checked(EVP_PKEY_paramgen_init(context.get()) == 1);
    checked(EVP_PKEY_CTX_set_dsa_paramgen_bits(context.get(), kBitsP) == 1);
    checked(EVP_PKEY_CTX_set_dsa_paramgen_q_bits(context.get(), kBitsQ) == 1);
    EVP_PKEY* made = nullptr;
    checked(EVP_PKEY_paramgen(context.get(), &made) == 1);
    return Parameters(made);
}

std::string line(const EVP_PKEY* parameters, const char* name) {
    BIGNUM* value = nullptr;
    checked(EVP_PKEY_get_bn_param(parameters, name, &value) == 1);
    const Number owner(value);
    const Text digits(checked(BN_bn2hex(value)));
    return std::string(name) + " = " + digits.get() + "\n";
}

}  // namespace

bool operator==(const DomainNumbers& a, const DomainNumbers& b) {
    return BN_cmp(a.p.get(), b.p.get()) == 0 && BN_cmp(a.q.get(), b.q.get()) == 0 &&
           BN_cmp(a.g.get(), b.g.get()) == 0;
}

bool has_the_size(const DomainNumbers& domain) {
    return BN_num_bits(domain.p.get()) == kBitsP && BN_num_bits(domain.q.get()) == kBitsQ &&
           BN_num_bits(domain.g.get()) <= kBitsP;
}

std::string fingerprint(const DomainNumbers& domain) {
    std::array<unsigned char, 2 * kBytesP + kBytesQ> bytes;
    checked(BN_bn2binpad(domain.p.get(), bytes.data(), kBytesP) == kBytesP);
    checked(BN_bn2binpad(domain.q.get(), &bytes[kBytesP], kBytesQ) == kBytesQ);
    checked(BN_bn2binpad(domain.g.get(), &bytes[kBytesP + kBytesQ], kBytesP) == kBytesP);
    return sha256_hexadecimal(bytes);
}

DomainNumbers parse_domain_file(const std::string& name, const std::string& text) {
    try {
        const Domain domain = parse_domain(text);
        check_domain(domain);
        return {number_from_limbs(domain.p), number_from_limbs(domain.q),
                number_from_limbs(domain.g)};
    } catch (const DomainError& error) {
        throw Failure(name, error.what());
    }
}

std::string generate_domain_file() {
    for (int attempt = 1;; ++attempt) {
        const Parameters parameters = generate_parameters();
        const std::string text = line(parameters.get(), OSSL_PKEY_PARAM_FFC_P) +
                                 line(parameters.get(), OSSL_PKEY_PARAM_FFC_Q) +
                                 line(parameters.get(), OSSL_PKEY_PARAM_FFC_G);
        try {
            // check_domain refuses a p with a top limb of 0xFFFF, which is one p in 2^15.
            const DomainNumbers domain = parse_domain_file("the new domain", text);
            return "# domain-fingerprint " + fingerprint(domain) + "\n" + text;
        } catch (const Failure&) {
            if (attempt == kAttempts) throw;
        }
    }
}
