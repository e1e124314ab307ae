// The library's kernels beside their own variants and beside general libraries.
// usage: ktbench [PEERS]    PEERS: a folder with 32-bit libraries, as script/bench makes it
#include <ktbase/digest.h>
#include <ktbase/longarith.h>

#include <cstdio>
#include <cstring>
#include <stdexcept>

#include "domain/fips186_example.h"
#include "kernels/montgomery_product.h"
#include "kernels/sha_blocks.h"
#include "peers.h"
#include "timing.h"

namespace {

using Bytes = std::vector<unsigned char>;

struct Size {
    const char* name;
    unsigned bytes;
};
constexpr Size kSizes[] = {{"1 KiB", 1 << 10}, {"64 KiB", 1 << 16}, {"16 MiB", 1 << 24}};

constexpr DsaExample kExample = {
    "8df2a494492276aa3d25759bb06869cbeac0d83afb8d0cf7cbb8324f0d7882e5"
    "d0762fc5b7210eafc2e9adac32ab7aac49693dfbf83724c2ec0736ee31c80291",
    fips186::kQ,
    "626d027839ea0a13413163a55b4cb500299d5522956cefcb3bff10f399ce2c2e"
    "71cb9de5fa24babf58e5b79521925c9cc42e9f6f464b088cc572af53e6d78802",
    "19131871d75b1612a819f29d78d1b0d7346f7aa77bb62a859bfd6c5675da9d21"
    "2d3a36ef1672ef660b8c7c255cc0ec74858fba33f44c06699630a76b030ee333",
    fips186::kR,
    fips186::kS,
    fips186::kDigest};

void check(bool right, const char* what) {
    if (!right) throw std::runtime_error(std::string("wrong result: ") + what);
}

Bytes some_data(std::size_t size) {
    Bytes data(size);
    std::uint32_t state = 1;
    for (unsigned char& byte : data) {
        state = state * 1664525 + 1013904223;
        byte = static_cast<unsigned char>(state >> 24);
    }
    return data;
}

void bench_md5(const Peers& peers, Bytes& data) {
    for (const Size& size : kSizes) {
        unsigned char ours[16];
        std::vector<Contestant> contestants = {
            {"library", [&] { GetBufferMD5(ours, data.data(), size.bytes); }}};
        unsigned char theirs[20];
        for (const PeerDigest& peer : peers.md5()) {
            contestants.push_back({peer.name, [&data, &theirs, peer, size] {
                                       peer.run(data.data(), size.bytes, theirs);
                                   }});
            contestants.front().run();
            contestants.back().run();
            check(std::memcmp(ours, theirs, sizeof(ours)) == 0, "MD5");
        }
        compare(std::string("MD5 ") + size.name, contestants);
    }
}

std::vector<std::pair<std::string, ShaBlocks*>> sha_variants() {
    const CpuFeatures cpu = detect_cpu_features();
    std::vector<std::pair<std::string, ShaBlocks*>> variants = {{"plain", sha_blocks_plain}};
    if (cpu.sse2) variants.emplace_back("sse2", sha_blocks_sse2);
    if (cpu.sha) variants.emplace_back("shani", sha_blocks_shani);
    return variants;
}

// No general library has SHA-0: SHA-1 is the same work, and a rotation for each word.
void bench_sha(const Peers& peers, Bytes& data) {
    for (const Size& size : kSizes) {
        std::vector<Contestant> contestants = {{"library", [&] {
                                                    HASH_CTX ctx;
                                                    InitHash(&ctx);
                                                    HashBuf(data.data(), size.bytes, &ctx);
                                                    EndHash(&ctx);
                                                }}};
        // The blocks alone, from and to one state.
        HASH_CTX start;
        InitHash(&start);
        HASH_CTX expected = start;
        HASH_CTX ctx;
        sha_blocks_plain(expected.state, expected.data, data.data(), size.bytes / kShaBlockBytes);
        for (const auto& [name, blocks] : sha_variants()) {
            contestants.push_back({name, [&, blocks = blocks] {
                                       ctx = start;
                                       blocks(ctx.state, ctx.data, data.data(),
                                              size.bytes / kShaBlockBytes);
                                   }});
            contestants.back().run();
            check(std::memcmp(ctx.state, expected.state, sizeof(ctx.state)) == 0, name.c_str());
        }
        unsigned char theirs[20];
        for (const PeerDigest& peer : peers.sha1())
            contestants.push_back({peer.name + ", SHA-1", [&data, &theirs, peer, size] {
                                       peer.run(data.data(), size.bytes, theirs);
                                   }});
        compare(std::string("SHA ") + size.name, contestants);
    }
}

void bench_verification(const Peers& peers) {
    Bytes key = fips186::key();
    Bytes signature = fips186::signature();
    const Bytes integer = fips186::little_endian(fips186::kDigest);
    HASH_CTX digest = {};
    std::memcpy(digest.state, integer.data(), sizeof digest.state);
    if (CheckSignature(key.data(), signature.data(), &digest) != 0) {
        std::puts("verification  left out: the library is built for another domain");
        return;
    }
    std::vector<Contestant> contestants = {
        {"library", [&] { CheckSignature(key.data(), signature.data(), &digest); }}};
    for (const PeerWork& peer : peers.verification(kExample))
        contestants.push_back({peer.name, peer.run});
    compare("verification", contestants);
}

struct Number {
    std::uint16_t limb[kMaxProductLimbs];

    explicit Number(const std::string& hex) {
        Bytes bytes = fips186::little_endian(hex);
        packLAN(bytes.data(), limb, static_cast<short>(bytes.size()));
    }
};

void bench_product(const Peers& peers, const char* kernel, const std::string& a_hex,
                   const std::string& b_hex, const std::string& m_hex) {
    Number a(a_hex);
    Number b(b_hex);
    Number m(m_hex);
    const int n = static_cast<int>(m_hex.size() / 4);
    unsigned inverse = 1;
    for (int bits = 1; bits < 16; bits *= 2) inverse *= 2 - m.limb[0] * inverse;
    const auto mont = static_cast<std::uint16_t>(0 - inverse);

    const CpuFeatures cpu = detect_cpu_features();
    std::vector<std::pair<std::string, MontgomeryProduct*>> variants = {
        {"plain", montgomery_product_plain}};
    if (cpu.sse2) variants.emplace_back("sse2", montgomery_product_sse2);
    if (cpu.avx2) variants.emplace_back("avx2", montgomery_product_avx2);
    std::uint16_t ours[kMaxProductLimbs];
    std::uint16_t theirs[kMaxProductLimbs];
    std::vector<Contestant> contestants = {
        {"library",
         [&] { multmodLAN(a.limb, b.limb, ours, m.limb, mont, static_cast<short>(n)); }}};
    contestants.front().run();
    for (const auto& [name, product] : variants) {
        contestants.push_back(
            {name, [&, product = product] { product(a.limb, b.limb, theirs, m.limb, mont, n); }});
        contestants.back().run();
        check(std::equal(ours, ours + n, theirs), name.c_str());
    }
    for (const PeerWork& peer : peers.product(a_hex, b_hex, m_hex))
        contestants.push_back({peer.name, peer.run});
    compare(kernel, contestants);
}

void bench_all(const Peers& peers) {
    Bytes data = some_data(kSizes[2].bytes);
    bench_md5(peers, data);
    bench_sha(peers, data);
    bench_verification(peers);
    bench_product(peers, "product 512", kExample.g, kExample.y, kExample.p);
    bench_product(peers, "product 160", fips186::kR, fips186::kS, fips186::kQ);
}

}  // namespace

int main(int argc, char** argv) {
    if (argc > 2) {
        std::fprintf(stderr, "usage: ktbench [PEERS]\n");
        return 2;
    }
    try {
        std::puts("how many times as long as the library: median, and first to last tenth");
        bench_all(Peers(argc == 2 ? argv[1] : ""));
    } catch (const std::exception& error) {
        std::fprintf(stderr, "ktbench: %s\n", error.what());
        return 1;
    }
    return 0;
}
