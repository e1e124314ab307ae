// Digests of messages in pieces against the digest of the whole, and the two forms of MD5's block
// function against each other.
#include <ktbase/digest.h>

#include <cstring>

#include "fuzz.h"

namespace {

void check_transforms(const Bytes& block) {
    std::uint32_t state[4];
    std::memcpy(state, block.data() + 7, sizeof state);
    std::uint32_t reversed[4];
    std::reverse_copy(state, state + 4, reversed);
    MD5Transform(state, block.data());
    MD5Transform2(reversed, block.data());
    std::reverse(reversed, reversed + 4);
    require(std::equal(state, state + 4, reversed), "MD5Transform2");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Input input(data, size);
    const Bytes cuts = input.bytes(input.byte() % 16);
    Bytes message = input.rest();
    HASH_CTX sha;
    HASH_CTX whole_sha;
    MD5_CTX md5;
    InitHash(&sha);
    InitHash(&whole_sha);
    MD5Init(&md5);
    auto at = message.begin();
    for (std::size_t i = 0; i <= cuts.size(); ++i) {
        const auto left = message.end() - at;
        Bytes piece(at, at + (i < cuts.size() ? std::min<long>(cuts[i], left) : left));
        HashBuf(piece.data(), piece.size(), &sha);
        MD5Update(&md5, piece.data(), piece.size());
        at += static_cast<long>(piece.size());
    }
    HashBuf(message.data(), message.size(), &whole_sha);
    require(std::memcmp(&sha, &whole_sha, sizeof sha) == 0, "SHA record before the end");
    EndHash(&sha);
    EndHash(&whole_sha);
    require(std::memcmp(&sha, &whole_sha, sizeof sha) == 0, "SHA record");

    Bytes digest(16);
    Bytes whole(16);
    MD5Final(digest.data(), &md5);
    vantu::MD5(reinterpret_cast<const char*>(message.data()), message.size(), whole.data());
    require(digest == whole, "MD5");
    if (message.size() >= 64) check_transforms(message);
    return 0;
}
