// Verification: known answers, and everything that must not pass for one.
#include <gtest/gtest.h>
#include <sys/mman.h>

#include <cstring>

#include "fips186_example.h"
#include "vectors.h"

namespace {

using fips186::Bytes;

constexpr int kIsZero = 0x707;
constexpr int kOutOfRange = 0x7707;
constexpr int kNoMatch = 0xF0F;

struct SignatureVerification : testing::Test {
    Bytes key = fips186::key();
    Bytes signature = fips186::signature();
    Bytes message = fips186::little_endian(fips186::kDigest);

    void SetUp() override {
        if (vectors("domain")[0][0] != fips186::kQ) GTEST_SKIP() << "built for another domain";
    }
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

struct SignatureVerificationInAnyDomain : SignatureVerification {
    void SetUp() override {}
};

TEST_F(SignatureVerificationInAnyDomain,
       accepts_what_others_compute_for_keys_and_digests_of_all_sizes) {
    const auto cases = vectors("signature");
    ASSERT_EQ(cases.size(), 66U);
    for (const auto& v : cases) {
        key = fips186::joined({v[0], v[1], v[2], v[3]});
        message = fips186::little_endian(v[4]);
        signature = fips186::joined({v[5], v[6]});
        EXPECT_EQ(check(), 0) << v[4];
        message[7] ^= 0x10;
        EXPECT_EQ(check(), kNoMatch) << v[4];
    }
}

TEST_F(SignatureVerification, judges_the_range_of_r_before_that_of_s) {
    const std::string zero(40, '0');
    const std::string q = fips186::kQ;
    const std::string below_q = q.substr(0, 39) + "e";
    const std::string above_q = q.substr(0, 38) + "60";
    const std::string top(40, 'f');
    const struct {
        std::string r, s;
        int code;
    } cases[] = {
        {zero, fips186::kS, kIsZero},
        {fips186::kR, zero, kIsZero},
        {q, fips186::kS, kOutOfRange},
        {fips186::kR, q, kOutOfRange},
        {top, fips186::kS, kOutOfRange},
        {fips186::kR, above_q, kOutOfRange},
        {zero, q, kIsZero},
        {q, zero, kOutOfRange},
        {zero, zero, kIsZero},
        {below_q, below_q, kNoMatch},
        {fips186::kS, fips186::kR, kNoMatch},
    };
    for (const auto& c : cases) {
        signature = fips186::joined({c.r, c.s});
        EXPECT_EQ(check(), c.code) << c.r << ' ' << c.s;
    }
}

TEST_F(SignatureVerification, reads_blobs_at_any_address_and_of_the_record_only_the_state) {
    // Everything ends at an unreadable page; the record, after its five words.
    constexpr std::size_t kPage = 4096;
    auto* const pages = static_cast<unsigned char*>(
        mmap(nullptr, 2 * kPage, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0));
    ASSERT_NE(pages, MAP_FAILED);
    unsigned char* const end = pages + kPage;
    mprotect(end, kPage, PROT_NONE);
    HASH_CTX example = fips186::digest(message);
    std::memcpy(end - sizeof example.state, example.state, sizeof example.state);
    auto* const digest = reinterpret_cast<HASH_CTX*>(end - sizeof example.state);
    for (std::size_t offset = 0; offset < 4; ++offset) {
        unsigned char* const odd_key = pages + offset;
        unsigned char* const odd_signature = pages + 1024 + offset;
        std::copy(key.begin(), key.end(), odd_key);
        std::copy(signature.begin(), signature.end(), odd_signature);
        EXPECT_EQ(CheckSignature(odd_key, odd_signature, digest), 0) << offset;
    }
    std::copy(signature.begin(), signature.end(), end - signature.size());
    EXPECT_EQ(CheckSignature(pages + 3, end - signature.size(), &example), 0);
    std::copy(key.begin(), key.end(), end - key.size());
    EXPECT_EQ(CheckSignature(end - key.size(), signature.data(), &example), 0);
    munmap(pages, 2 * kPage);
}

TEST_F(SignatureVerification, a_buffer_is_digested_and_every_refusal_is_minus_one) {
    // Made with the example's key and nonce over the library's digest of these three bytes.
    const Bytes over_abc =
        fips186::joined({fips186::kR, "1272cde7ff6c85740593c4a88cc229b22c0670d2"});
    unsigned char abc[] = "abc";
    const auto check_buffer = [&](unsigned char* buffer, long length, Bytes blob) {
        return CheckBufferSign(buffer, length, key.data(), blob.data());
    };
    EXPECT_EQ(check_buffer(abc, 3, over_abc), 0);
    EXPECT_EQ(Hash.count, 0U) << "the exported record is left alone";
    EXPECT_EQ(check_buffer(abc, 2, over_abc), -1);
    EXPECT_EQ(check_buffer(abc, 3, Bytes(40)), -1);
    EXPECT_EQ(check_buffer(abc, 3, Bytes(40, 0xFF)), -1);
    EXPECT_EQ(check_buffer(nullptr, 0, over_abc), -1);
    abc[1] ^= 1;
    EXPECT_EQ(check_buffer(abc, 3, over_abc), -1);
}

}  // namespace
