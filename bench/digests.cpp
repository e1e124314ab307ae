// Times MD5 and SHA. No general library has the SHA of 1993. SHA-1 needs one more rotation for each
// word of the schedule.
#include <ktbase/digest.h>

#include <cstring>

#include "groups.h"
#include "kernels/sha_blocks.h"
#include "limits.h"
#include "timing.h"

namespace {

struct Size {
    const char* name;
    unsigned bytes;
};
constexpr Size kMd5Sizes[] = {
    {"55 B", 55}, {"1 KiB", 1 << 10}, {"64 KiB", 1 << 16}, {"16 MiB", 1 << 24}};
constexpr Size kShaSizes[] = {{"20 B", 20},       {"55 B", 55},        {"100 B", 100},
                              {"1 KiB", 1 << 10}, {"64 KiB", 1 << 16}, {"16 MiB", 1 << 24}};
constexpr unsigned kMd5BlockBytes = 64;
constexpr unsigned kManyBlocks = 1 << 10;

void bench_md5(const Peers& peers, const Bytes& data) {
    for (const Size& size : kMd5Sizes) {
        unsigned char ours[16];
        unsigned char theirs[20];
        std::vector<Candidate> candidates = {
            {"library", [&] { GetBufferMD5(ours, data.data(), size.bytes); }}};
        candidates.front().run();
        for (const PeerDigest& peer : peers.md5()) {
            candidates.push_back({peer.name, [&data, &theirs, peer, size] {
                                      peer.run(data.data(), size.bytes, theirs);
                                  }});
            candidates.back().run();
            check(std::memcmp(ours, theirs, sizeof ours) == 0, "MD5 by " + peer.name);
        }
        compare(std::string("MD5 ") + size.name, candidates);
    }
    std::uint32_t state[4] = {};
    compare("MD5 a block", {{"library",
                             [&] {
                                 for (unsigned i = 0; i < kManyBlocks; ++i)
                                     MD5Transform(state, data.data() + kMd5BlockBytes * i);
                             }},
                            {"chain of steps (limit)", [] { md5_step_chain(kManyBlocks); }}});
}

// Absorbs the message in pieces of `piece` bytes.
void digest(Bytes& data, unsigned size, unsigned piece) {
    HASH_CTX ctx;
    InitHash(&ctx);
    for (unsigned at = 0; at < size; at += piece)
        HashBuf(data.data() + at, std::min(piece, size - at), &ctx);
    EndHash(&ctx);
}

void bench_sha_messages(const Peers& peers, Bytes& data) {
    for (const Size& size : kShaSizes) {
        unsigned char theirs[20];
        std::vector<Candidate> candidates = {
            {"library", [&] { digest(data, size.bytes, size.bytes); }}};
        for (const PeerDigest& peer : peers.sha1())
            candidates.push_back({peer.name + ", SHA-1", [&data, &theirs, peer, size] {
                                      peer.run(data.data(), size.bytes, theirs);
                                  }});
        compare(std::string("SHA ") + size.name, candidates);
    }
    constexpr unsigned kMessageBytes = 1 << 12;
    for (const unsigned piece : {20U, 55U, 100U}) {
        unsigned char theirs[20];
        std::vector<Candidate> candidates = {
            {"library", [&, piece] { digest(data, kMessageBytes, piece); }}};
        for (const PeerDigest& peer : peers.sha1())
            candidates.push_back({peer.name + ", SHA-1", [&data, &theirs, peer, piece] {
                                      peer.run_in_pieces(data.data(), kMessageBytes, piece, theirs);
                                  }});
        compare("SHA 4 KiB by " + std::to_string(piece) + " B", candidates);
    }
}

// Times the variants on the same blocks, compared with the chain of rounds.
void bench_sha_blocks(const Bytes& data) {
    const CpuFeatures cpu = detect_cpu_features();
    std::vector<std::pair<std::string, ShaBlocks*>> variants = {{"plain", sha_blocks_plain}};
    if (cpu.sse2) variants.emplace_back("sse2", sha_blocks_sse2);
    if (cpu.sha) variants.emplace_back("shani", sha_blocks_shani);

    HASH_CTX start;
    InitHash(&start);
    HASH_CTX expected = start;
    HASH_CTX ctx = start;
    sha_blocks_plain(expected.state, expected.data, data.data(), kManyBlocks);
    std::vector<Candidate> candidates = {
        {"library", [&] { kernels().sha_blocks(ctx.state, ctx.data, data.data(), kManyBlocks); }}};
    for (const auto& [name, blocks] : variants) {
        candidates.push_back({name, [&, blocks = blocks] {
                                  ctx = start;
                                  blocks(ctx.state, ctx.data, data.data(), kManyBlocks);
                              }});
        candidates.back().run();
        check(std::memcmp(&ctx, &expected, sizeof ctx) == 0, "SHA, variant " + name);
    }
    if (cpu.sha)
        candidates.push_back({"chain of rounds (limit)", [] { sha_round_chain(kManyBlocks); }});
    compare("SHA a block", candidates);
}

}  // namespace

void bench_digests(const Peers& peers) {
    Bytes data = test_data(1 << 24);
    bench_md5(peers, data);
    bench_sha_messages(peers, data);
    bench_sha_blocks(data);
}
