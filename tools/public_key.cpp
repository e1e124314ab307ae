#include "public_key.h"

#include "input_files.h"

namespace {

Number power(const BIGNUM* base, const BIGNUM* exponent, const BIGNUM* p) {
    Number result = number();
    checked(BN_mod_exp(result.get(), base, exponent, p, number_context().get()));
    return result;
}

// Returns y^(2^40) mod p.
Number next_power(const BIGNUM* y, const BIGNUM* p) {
    const Number step = number(1);
    checked(BN_lshift(step.get(), step.get(), kChunkBits));
    return power(y, step.get(), p);
}

// Converts `form` from Montgomery form.
Number from_montgomery_form(const BIGNUM* form, const BIGNUM* p) {
    const NumberContext context = number_context();
    const Number shift = number(1);
    checked(BN_lshift(shift.get(), shift.get(), kBitsP));
    const Number inverse(checked(BN_mod_inverse(nullptr, shift.get(), p, context.get())));
    Number result = number();
    checked(BN_mod_mul(result.get(), form, inverse.get(), p, context.get()));
    return result;
}

}  // namespace

PublicKeyBlob read_public_key(const std::string& name) {
    return read_blob<sizeof(PublicKeyBlob)>(name, "public key");
}

PublicKeyBlob public_key_of(const BIGNUM* y, const BIGNUM* p) {
    const NumberContext context = number_context();
    Number current(checked(BN_dup(y)));
    PublicKeyBlob key;
    for (int j = 0; j < kChunks; ++j) {
        const Number form = number();
        checked(BN_lshift(form.get(), current.get(), kBitsP));
        checked(BN_mod(form.get(), form.get(), p, context.get()));
        checked(BN_bn2lebinpad(form.get(), &key[kBytesP * j], kBytesP) == kBytesP);
        current = next_power(current.get(), p);
    }
    return key;
}

std::string unsoundness(const PublicKeyBlob& key) {
    const BIGNUM* const p = built_in_domain().p.get();
    Number component[kChunks];
    for (int j = 0; j < kChunks; ++j) {
        component[j] = number_from_little_endian(ConstBytes(key).subspan(kBytesP * j, kBytesP));
        if (BN_cmp(component[j].get(), p) >= 0)
            return "component " + std::to_string(j) + " is not below p";
    }
    const Number y = from_montgomery_form(component[0].get(), p);
    if (BN_is_zero(y.get()) == 1 || BN_is_one(y.get()) == 1) return "y is not above 1";
    if (BN_is_one(power(y.get(), built_in_domain().q.get(), p).get()) == 0) return "y^q is not 1";
    // Each component is below p, so its encoding is unique.
    return public_key_of(y.get(), p) == key ? "" : "its components are not powers of one y";
}

std::string fingerprint(const PublicKeyBlob& key) {
    return sha256_hexadecimal(key);
}
