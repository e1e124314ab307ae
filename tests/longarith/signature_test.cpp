// Tests of verification with the worked example of FIPS 186, Appendix 5.
#include <gtest/gtest.h>
#include <ktbase/longarith.h>

#include <cstring>

#include "fips186_example.h"

namespace {

using fips186::Bytes;

struct Example {
    Bytes key = fips186::key();
    Bytes signature = fips186::signature(fips186::kSOfAbc);
    Bytes message = {'a', 'b', 'c'};

    int check() {
        const auto size = static_cast<long>(message.size());
        return CheckBufferSign(message.data(), size, key.data(), signature.data());
    }
};

TEST(Signature, the_published_digest_has_the_published_signature) {
    Example example = {.signature = fips186::signature()};
    Bytes state =
        fips186::little_endian(fips186::kDigest);  // the memory of the record ends after its state
    auto* const record = reinterpret_cast<HASH_CTX*>(state.data());
    EXPECT_EQ(CheckSignature(example.key.data(), example.signature.data(), record), 0);
}

TEST(Signature, an_inverted_bit_makes_an_example_invalid) {
    Example example;
    for (Bytes Example::*const part : {&Example::key, &Example::signature, &Example::message})
        for (std::size_t bit = 0; bit < 8 * (example.*part).size(); ++bit) {
            EXPECT_EQ(example.check(), 0);
            (example.*part)[bit / 8] ^= 1U << bit % 8;
            EXPECT_EQ(example.check(), -1) << bit;
            (example.*part)[bit / 8] ^= 1U << bit % 8;
        }
}

TEST(Signature, verification_does_not_touch_the_exported_record) {
    Example().check();
    const HASH_CTX zero = {};
    EXPECT_EQ(std::memcmp(&Hash, &zero, sizeof zero), 0);
}

}  // namespace
