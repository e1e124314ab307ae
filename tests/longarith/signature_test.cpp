// Verification of the worked example of FIPS 186, Appendix 5, and of the example with bits changed.
#include <gtest/gtest.h>
#include <ktbase/longarith.h>

#include <cstring>

#include "fips186_example.h"

namespace {

using Bytes = fips186::Bytes;

// A public key, and its signature of a digest or of a message.
struct Example {
    Bytes key = fips186::key();
    Bytes signature;
    Bytes text;  // the digest or the message

    // The record ends after its state.
    int check_digest() {
        auto* const record = reinterpret_cast<HASH_CTX*>(text.data());
        return CheckSignature(key.data(), signature.data(), record);
    }
    int check_message() {
        const auto size = static_cast<long>(text.size());
        return CheckBufferSign(text.data(), size, key.data(), signature.data());
    }
    bool operator==(const Example&) const = default;
};
const Example kOfDigest = {.signature = fips186::signature(),
                           .text = fips186::little_endian(fips186::kDigest)};
const Example kOfMessage = {.signature = fips186::signature(fips186::kSOfAbc),
                            .text = {'a', 'b', 'c'}};

// Expects `check` to refuse the example with each bit of `part` inverted, or with one in `step`.
void expect_refused(Example& example, Bytes& part, int (Example::*check)(), std::size_t step = 1) {
    for (std::size_t bit = 0; bit < 8 * part.size(); bit += step) {
        part[bit / 8] ^= 1U << bit % 8;
        EXPECT_NE((example.*check)(), 0) << bit;
        part[bit / 8] ^= 1U << bit % 8;
    }
}

TEST(Signature, of_a_digest_is_invalid_after_any_change) {
    Example example = kOfDigest;
    EXPECT_EQ(example.check_digest(), 0);
    expect_refused(example, example.text, &Example::check_digest);
    expect_refused(example, example.signature, &Example::check_digest);
    expect_refused(example, example.key, &Example::check_digest, 5);
    EXPECT_EQ(example, kOfDigest) << "verification only reads";
}

TEST(Signature, of_a_message_is_invalid_after_any_change) {
    Example example = kOfMessage;
    EXPECT_EQ(example.check_message(), 0);
    expect_refused(example, example.text, &Example::check_message);
    expect_refused(example, example.signature, &Example::check_message);
    EXPECT_EQ(example, kOfMessage) << "verification only reads";
}

TEST(Signature, every_invalid_message_has_one_result) {
    Example example = kOfMessage;
    for (const unsigned char r : {0x00, 0x01, 0xFF}) {
        example.signature.assign(40, r);
        EXPECT_EQ(example.check_message(), -1);
    }
}

TEST(Signature, verification_does_not_touch_the_exported_record) {
    Example(kOfMessage).check_message();
    const HASH_CTX zero = {};
    EXPECT_EQ(std::memcmp(&Hash, &zero, sizeof zero), 0);
}

}  // namespace
