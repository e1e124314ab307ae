// Verification: a known answer, and everything that must not pass for it.
#include <gtest/gtest.h>

#include "fips186_example.h"

namespace {

using fips186::Bytes;

struct SignatureVerification : testing::Test {
    Bytes key = fips186::key();
    Bytes signature = fips186::signature();
    Bytes message = fips186::little_endian(fips186::kDigest);

    int check() {
        HASH_CTX digest = fips186::digest(message);
        return CheckSignature(key.data(), signature.data(), &digest);
    }
};

TEST_F(SignatureVerification, accepts_the_published_example_and_no_single_bit_change_of_it) {
    EXPECT_EQ(check(), 0);
    for (Bytes* part : {&signature, &message}) {
        for (std::size_t bit = 0; bit < 8 * part->size(); ++bit) {
            (*part)[bit / 8] ^= 1U << bit % 8;
            EXPECT_NE(check(), 0) << "bit " << bit;
            (*part)[bit / 8] ^= 1U << bit % 8;
        }
    }
    EXPECT_EQ(check(), 0);
}

}  // namespace
