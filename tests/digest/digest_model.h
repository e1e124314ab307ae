// Models of the digests. The model of SHA derives the record from the message and its length, with
// the rounds of FIPS 180 (1993). The model of MD5 compares the digests of pieces and of the whole.
#ifndef KTBASE_TESTS_DIGEST_MODEL_H
#define KTBASE_TESTS_DIGEST_MODEL_H

#include <ktbase/digest.h>

#include <algorithm>
#include <bit>
#include <cstring>

#include "../check.h"

inline bool operator==(const HASH_CTX& a, const HASH_CTX& b) {
    return std::memcmp(&a, &b, sizeof a) == 0;
}

// FIPS 180 (1993), section 7. Leaves the last words of the schedule in `data`.
inline void compress(HASH_CTX& record, const unsigned char* block) {
    constexpr std::uint32_t kConstants[] = {0x5A827999, 0x6ED9EBA1, 0x8F1BBCDC, 0xCA62C1D6};
    std::uint32_t w[80] = {};
    for (int i = 0; i < 64; ++i) w[i / 4] = w[i / 4] << 8 | block[i];
    for (int t = 16; t < 80; ++t) w[t] = w[t - 3] ^ w[t - 8] ^ w[t - 14] ^ w[t - 16];
    auto [a, b, c, d, e] = record.state;
    for (int t = 0; t < 80; ++t) {
        std::uint32_t f = b ^ c ^ d;
        if (t < 20) f = (b & c) | (~b & d);
        if (t >= 40 && t < 60) f = (b & c) | (b & d) | (c & d);
        const std::uint32_t sum = std::rotl(a, 5) + f + e + w[t] + kConstants[t / 20];
        e = d;
        d = c;
        c = std::rotl(b, 30);
        b = a;
        a = sum;
    }
    const std::uint32_t sums[] = {a, b, c, d, e};
    for (int i = 0; i < 5; ++i) record.state[i] += sums[i];
    std::copy(w + 64, w + 80, record.data);
}

// The records after 0, 1, 2 and more whole blocks.
inline std::vector<HASH_CTX> records_after_blocks(const Bytes& message) {
    HASH_CTX record = {};
    constexpr std::uint32_t kInitial[] = {0x67452301, 0xEFCDAB89, 0x98BADCFE, 0x10325476,
                                          0xC3D2E1F0};
    std::copy_n(kInitial, 5, record.state);
    std::vector<HASH_CTX> records = {record};
    for (std::size_t at = 0; at + 64 <= message.size(); at += 64) {
        compress(record, &message[at]);
        records.push_back(record);
    }
    return records;
}

// The record after `size` bytes. Each byte of the incomplete block is shifted into the word that
// the previous block left in this place.
inline HASH_CTX record_after(const std::vector<HASH_CTX>& after_blocks, const Bytes& message,
                             std::uint32_t size) {
    HASH_CTX record = after_blocks[size / 64];
    for (std::uint32_t at = size / 64 * 64; at < size; ++at) {
        std::uint32_t& word = record.data[at % 64 / 4];
        word = word << 8 | message[at];
    }
    record.count = size;
    record.index = size % 64 / 4;
    record.left = 4 - size % 4;
    return record;
}

// Returns the record after EndHash, for the record after the whole blocks. `count` may differ from
// the size of the message.
inline HASH_CTX finished_record(HASH_CTX record, const Bytes& message, std::uint32_t count) {
    const std::size_t size = message.size();
    Bytes padded(message.end() - size % 64, message.end());
    padded.push_back(0x80);
    padded.resize(size % 64 < 56 ? 64 : 128);
    for (int i = 1; i <= 4; ++i)
        padded.end()[-i] = static_cast<unsigned char>(count * 8 >> 8 * (i - 1));
    for (std::size_t at = 0; at < padded.size(); at += 64) compress(record, &padded[at]);
    record.count = count;
    record.index = size % 64 / 4 + 1;
    record.left = 3 - size % 4;
    return record;
}

// Splits the message into arrays of the given sizes and one array for the rest.
inline std::vector<Bytes> pieces_of(const Bytes& message, const std::vector<std::size_t>& sizes) {
    std::vector<Bytes> pieces;
    auto at = message.begin();
    for (const std::size_t size : sizes) {
        const auto end = at + std::min<long>(size, message.end() - at);
        pieces.emplace_back(at, end);
        at = end;
    }
    pieces.emplace_back(at, message.end());
    return pieces;
}

// `before` is the count of the record before the message.
inline void check_sha(const Bytes& message, const std::vector<std::size_t>& sizes,
                      std::uint32_t before = 0) {
    const std::vector<HASH_CTX> after_blocks = records_after_blocks(message);
    HASH_CTX ctx;
    std::memset(&ctx, 0xA5, sizeof ctx);
    InitHash(&ctx);
    require(ctx == record_after(after_blocks, message, 0), "InitHash");
    ctx.count = before;
    std::uint32_t size = 0;
    for (Bytes& piece : pieces_of(message, sizes)) {
        HashBuf(piece.data(), piece.size(), &ctx);
        size += piece.size();
        HASH_CTX expected = record_after(after_blocks, message, size);
        expected.count += before;
        require(ctx == expected, "HashBuf");
    }
    EndHash(&ctx);
    require(ctx == finished_record(after_blocks.back(), message, before + size), "EndHash");
}

// Checks that all functions of MD5 compute the same digest of 16 bytes.
inline void check_md5(const Bytes& message, const std::vector<std::size_t>& sizes) {
    MD5_CTX ctx = {{}, {}, "kept"};
    MD5Init(&ctx);
    require(std::memcmp(ctx.buffer, "kept", 5) == 0, "MD5Init keeps the buffer");
    vantu::MD5_CTX other;
    MD5_Init(&other);
    for (const Bytes& piece : pieces_of(message, sizes)) {
        MD5Update(&ctx, piece.data(), piece.size());
        MD5_Update(&other, piece.data(), piece.size());
    }
    const auto* const text = reinterpret_cast<const char*>(message.data());
    std::vector<Bytes> digests(4, Bytes(17, '#'));
    require(GetBufferMD5(digests[0].data(), message.data(), message.size()) == 1, "GetBufferMD5");
    require(vantu::MD5(text, message.size(), digests[1].data()) == 1, "MD5");
    MD5Final(digests[2].data(), &ctx);
    MD5_Final(digests[3].data(), &other);
    for (const Bytes& digest : digests) require(digest == digests[0], "the digests");
    require(digests[0].back() == '#', "the size of the digest");
    const MD5_CTX wiped = {};
    require(std::memcmp(&ctx, &wiped, sizeof wiped) == 0, "the wipe of MD5's record");
    require(std::memcmp(&other, &wiped, sizeof wiped) == 0, "the wipe of vantu's record");
}

#endif
