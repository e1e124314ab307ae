// Digests of messages in pieces: SHA's record against a model that takes every byte and every round
// by itself, MD5 against the digest of the whole.
#include <ktbase/digest.h>

#include <array>
#include <bit>
#include <cstring>
#include <tuple>

#include "fuzz.h"

namespace {

// The record as FIPS 180 (1993) drives it, with the schedule in the sixteen words of the block.
struct Model {
    HASH_CTX r = {{0x67452301, 0xefcdab89, 0x98badcfe, 0x10325476, 0xc3d2e1f0}, 0, 0, {}, 4};

    void compress() {
        auto [a, b, c, d, e] = std::to_array(r.state);
        for (int t = 0; t < 80; ++t) {
            std::uint32_t& w = r.data[t & 15];
            if (t > 15) w ^= r.data[(t - 3) & 15] ^ r.data[(t - 8) & 15] ^ r.data[(t - 14) & 15];
            const std::uint32_t f[] = {(b & c) | (~b & d), b ^ c ^ d, (b & c) | (b & d) | (c & d),
                                       b ^ c ^ d};
            const std::uint32_t k[] = {0x5a827999, 0x6ed9eba1, 0x8f1bbcdc, 0xca62c1d6};
            e += std::rotl(a, 5) + f[t / 20] + w + k[t / 20];
            std::tie(a, b, c, d, e) = std::tuple(e, a, std::rotl(b, 30), c, d);
        }
        const std::uint32_t sums[] = {a, b, c, d, e};
        for (int i = 0; i < 5; ++i) r.state[i] += sums[i];
    }
    void take(const Bytes& bytes) {
        r.count += bytes.size();
        for (const unsigned char byte : bytes) {
            r.data[r.index] = (r.data[r.index] << 8) + byte;
            if (--r.left != 0) continue;
            r.left = 4;
            if (++r.index == 16) compress(), r.index = 0;
        }
    }
    void end() {
        const std::uint32_t w = r.data[r.index] << 8 | 0x80;
        r.left -= 1;
        r.data[r.index++] = w << 8 * r.left;
        for (unsigned j = r.index; j < 16; ++j) r.data[j] = 0;
        if (r.index > 14) compress(), std::memset(r.data, 0, sizeof r.data);
        r.data[15] = r.count << 3;
        compress();
    }
    bool operator==(const HASH_CTX& ctx) const { return std::memcmp(&r, &ctx, sizeof r) == 0; }
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Input input(data, size);
    Bytes cuts = input.bytes(input.byte() % 16);
    cuts.push_back(255);
    const Bytes message = input.bytes(input.left.size());
    HASH_CTX sha;
    std::memset(&sha, 0xA5, sizeof sha);
    InitHash(&sha);
    Model model;
    require(model == sha, "InitHash");
    sha.count = model.r.count = 0x9E3779B9 * size;  // of all sizes, and such as wrap
    MD5_CTX md5 = {{}, {}, {'l', 'e', 'f', 't'}};
    MD5Init(&md5);
    require(std::string(md5.buffer, md5.buffer + 5) == std::string("left\0", 5), "MD5Init");
    vantu::MD5_CTX same;
    MD5_Init(&same);
    auto at = message.begin();
    for (unsigned char& cut : cuts) {
        const auto left = message.end() - at;
        Bytes piece(at, at + (&cut == &cuts.back() ? left : std::min<long>(cut, left)));
        HashBuf(piece.data(), piece.size(), &sha);
        model.take(piece);
        require(model == sha, "HashBuf");
        MD5Update(&md5, piece.data(), piece.size());
        MD5_Update(&same, piece.data(), piece.size());
        at += static_cast<long>(piece.size());
    }
    EndHash(&sha);
    model.end();
    require(model == sha, "EndHash");

    Bytes digests[4] = {Bytes(17, '#'), Bytes(17, '#'), Bytes(17, '#'), Bytes(17, '#')};
    GetBufferMD5(digests[0].data(), message.data(), message.size());
    const auto* const chars = reinterpret_cast<const char*>(message.data());
    require(vantu::MD5(chars, message.size(), digests[1].data()) == 1, "MD5's result");
    MD5Final(digests[2].data(), &md5);
    MD5_Final(digests[3].data(), &same);
    for (const Bytes& digest : digests)
        require(digest == digests[0] && digest[16] == '#', "MD5 by all its names");
    const MD5_CTX wiped = {};
    require(std::memcmp(&md5, &wiped, sizeof wiped) == 0, "the wipe of MD5's record");
    require(std::memcmp(&same, &wiped, sizeof wiped) == 0, "the wipe of the other record");
    return 0;
}
