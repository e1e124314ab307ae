// The SHA digest against its known answers, and its record against a model that takes every byte
// and every round by itself.
#include <gtest/gtest.h>
#include <ktbase/digest.h>

#include <bit>
#include <cstring>
#include <random>
#include <string>
#include <vector>

namespace {

using Bytes = std::vector<unsigned char>;
using Words = std::vector<std::uint32_t>;

// The record as FIPS 180 (1993) drives it, with the schedule in the sixteen words of the block.
struct Model {
    HASH_CTX r = {{0x67452301, 0xefcdab89, 0x98badcfe, 0x10325476, 0xc3d2e1f0}, 0, 0, {}, 4};

    void compress() {
        std::uint32_t v[5];
        std::memcpy(v, r.state, sizeof v);
        for (int t = 0; t < 80; ++t) {
            std::uint32_t& w = r.data[t & 15];
            if (t > 15) w ^= r.data[(t - 3) & 15] ^ r.data[(t - 8) & 15] ^ r.data[(t - 14) & 15];
            const std::uint32_t ch = (v[1] & v[2]) | (~v[1] & v[3]);
            const std::uint32_t maj = (v[1] & v[2]) | (v[1] & v[3]) | (v[2] & v[3]);
            const std::uint32_t par = v[1] ^ v[2] ^ v[3];
            const std::uint32_t f[] = {ch, par, maj, par};
            const std::uint32_t k[] = {0x5a827999, 0x6ed9eba1, 0x8f1bbcdc, 0xca62c1d6};
            const std::uint32_t sum = std::rotl(v[0], 5) + f[t / 20] + v[4] + w + k[t / 20];
            std::memmove(v + 1, v, 4 * sizeof v[0]);
            v[0] = sum;
            v[2] = std::rotl(v[2], 30);
        }
        for (int i = 0; i < 5; ++i) r.state[i] += v[i];
    }
    void take(const unsigned char* bytes, unsigned size) {
        r.count += size;
        for (unsigned i = 0; i < size; ++i) {
            r.data[r.index] = (r.data[r.index] << 8) + bytes[i];
            if (--r.left == 0) {
                r.left = 4;
                if (++r.index == 16) compress(), r.index = 0;
            }
        }
    }
    void end() {
        const unsigned i = r.index;
        const std::uint32_t w = r.data[i] << 8 | 0x80;
        r.left -= 1;
        r.data[i] = w << 8 * r.left;
        r.index = i + 1;
        for (unsigned j = i + 1; j < 16; ++j) r.data[j] = 0;
        if (r.index > 14) compress(), std::memset(r.data, 0, sizeof r.data);
        r.data[15] = r.count << 3;
        compress();
    }
};

Words record(const HASH_CTX& ctx) {
    const auto* words = reinterpret_cast<const std::uint32_t*>(&ctx);
    return {words, words + sizeof ctx / 4};
}

// The digest of a message given in pieces of `step` bytes, with an empty piece after each.
Words digest(const std::string& message, std::size_t step) {
    HASH_CTX ctx;
    std::memset(&ctx, 0xA5, sizeof ctx);
    InitHash(&ctx);
    Bytes bytes(message.begin(), message.end());
    for (std::size_t done = 0; done < bytes.size(); done += step) {
        HashBuf(bytes.data() + done, static_cast<unsigned>(std::min(step, bytes.size() - done)),
                &ctx);
        HashBuf(nullptr, 0, &ctx);
    }
    EndHash(&ctx);
    return {ctx.state, ctx.state + 5};
}

TEST(Sha, known_answers_come_out_whole_and_in_pieces) {
    const std::pair<std::string, Words> answers[] = {
        {"", {0xF96CEA19, 0x8AD1DD56, 0x17AC084A, 0x3D92C610, 0x7708C0EF}},
        {"abc", {0x0164B8A9, 0x14CD2A5E, 0x74C4F7FF, 0x082C4D97, 0xF1EDF880}},
        {"abcdbcdecdefdefgefghfghighijhijkijkljklmklmnlmnomnopnopq",
         {0xD2516EE1, 0xACFA5BAF, 0x33DFC1C4, 0x71E43844, 0x9EF134C8}},
        {std::string(1000000, 'a'), {0x3232AFFA, 0x48628A26, 0x653B5AAA, 0x44541FD9, 0x0D690603}},
    };
    for (const auto& [message, answer] : answers)
        for (const std::size_t step :
             {message.size() + 1, std::size_t{1}, std::size_t{7}, std::size_t{67}})
            EXPECT_EQ(digest(message, step), answer) << message.substr(0, 8) << " by " << step;
}

TEST(Sha, the_record_is_the_models_to_the_bit_after_every_call) {
    std::mt19937 random(1);
    Bytes bytes(1 << 12);
    for (unsigned char& byte : bytes) byte = static_cast<unsigned char>(random());
    for (int round = 0; round < 400; ++round) {
        HASH_CTX ctx;
        Model model;
        InitHash(&ctx);
        ASSERT_EQ(record(ctx), record(model.r));
        for (unsigned calls = random() % 6; calls != 0; --calls) {
            const unsigned size = random() % (round % 2 == 0 ? 70 : 900);
            unsigned char* const from = bytes.data() + random() % 3000;
            HashBuf(from, size, &ctx);
            model.take(from, size);
            ASSERT_EQ(record(ctx), record(model.r)) << "after " << model.r.count << " bytes";
        }
        EndHash(&ctx);
        model.end();
        ASSERT_EQ(record(ctx), record(model.r)) << "of " << model.r.count << " bytes";
    }
}

TEST(Sha, every_length_around_the_block_border_is_padded_like_the_model) {
    Bytes bytes(200, 0xEE);
    for (unsigned size = 0; size < bytes.size(); ++size) {
        HASH_CTX ctx;
        Model model;
        InitHash(&ctx);
        HashBuf(bytes.data(), size, &ctx);
        EndHash(&ctx);
        model.take(bytes.data(), size);
        model.end();
        ASSERT_EQ(record(ctx), record(model.r)) << size;
    }
}

TEST(Sha, the_length_field_carries_the_bit_count_modulo_2_to_the_32) {
    for (const std::uint32_t count : {0x1FFFFFC0U, 0x20000000U, 0xFFFFFFC0U}) {
        Bytes bytes(100, 0x3C);
        HASH_CTX ctx;
        InitHash(&ctx);
        ctx.count = count;
        Model model;
        model.r.count = count;
        HashBuf(bytes.data(), 100, &ctx);
        model.take(bytes.data(), 100);
        EXPECT_EQ(ctx.count, count + 100);
        EndHash(&ctx);
        model.end();
        EXPECT_EQ(record(ctx), record(model.r)) << count;
    }
}

TEST(Sha, the_exported_record_is_zero_at_load_and_bad_records_write_nothing_outside) {
    EXPECT_EQ(record(Hash), Words(24));
    struct {
        std::uint32_t before = 0x11111111;
        HASH_CTX ctx;
        std::uint32_t after = 0x22222222;
    } guarded;
    Bytes bytes(1000, 1);
    for (const std::uint32_t fill : {0U, 16U, 0xFFFFFFFFU}) {
        std::fill_n(reinterpret_cast<std::uint32_t*>(&guarded.ctx), 24, fill);
        HashBuf(bytes.data(), 1000, &guarded.ctx);
        EndHash(&guarded.ctx);
        EndHash(&guarded.ctx);
        HashBuf(bytes.data(), 1000, &guarded.ctx);
        EXPECT_EQ(guarded.before, 0x11111111U);
        EXPECT_EQ(guarded.after, 0x22222222U);
    }
}

}  // namespace
