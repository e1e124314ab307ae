// Times verification, the Montgomery product and the inversion.
#include <ktbase/longarith.h>

#include <cstdio>
#include <cstring>

#include "domain/fips186_example.h"
#include "groups.h"
#include "kernels/montgomery_product.h"
#include "timing.h"

namespace {

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

// False if the library has another domain than the example.
bool bench_verification(const Peers& peers) {
    Bytes key = fips186::key();
    Bytes signature = fips186::signature();
    const Bytes integer = fips186::little_endian(fips186::kDigest);
    HASH_CTX digest = {};
    std::memcpy(digest.state, integer.data(), sizeof digest.state);
    if (CheckSignature(key.data(), signature.data(), &digest) != 0) return false;
    std::vector<Candidate> candidates = {
        {"library", [&] { CheckSignature(key.data(), signature.data(), &digest); }}};
    for (const PeerWork& peer : peers.verification(kExample))
        candidates.push_back({peer.name, peer.run});
    compare("verification", candidates);
    return true;
}

void bench_inversion(const Peers& peers) {
    Bytes x = fips186::little_endian(fips186::kS);
    std::uint16_t inverse[10];
    std::vector<Candidate> candidates = {{"library", [&] { invertLAN(x.data(), inverse); }}};
    candidates.front().run();
    for (const PeerInversion& peer : peers.inversion(fips186::kS, fips186::kQ)) {
        const Bytes theirs = fips186::little_endian(peer.result());
        check(std::memcmp(inverse, theirs.data(), sizeof inverse) == 0, "inverse by " + peer.name);
        candidates.push_back({peer.name, peer.run});
    }
    compare("inversion", candidates);
}

struct Operand {
    std::uint16_t limb[kMaxProductLimbs];

    explicit Operand(const std::string& hex) {
        Bytes bytes = fips186::little_endian(hex);
        packLAN(bytes.data(), limb, static_cast<short>(bytes.size()));
    }
};

// -1/m mod 2^16, by Newton's steps.
std::uint16_t montgomery_constant(std::uint16_t m) {
    unsigned inverse = 1;
    for (int bits = 1; bits < 16; bits *= 2) inverse *= 2 - m * inverse;
    return static_cast<std::uint16_t>(0 - inverse);
}

void bench_product(const Peers& peers, const char* kernel, const std::string& a_hex,
                   const std::string& b_hex, const std::string& m_hex) {
    Operand a(a_hex);
    Operand b(b_hex);
    Operand m(m_hex);
    const int n = static_cast<int>(m_hex.size() / 4);
    const std::uint16_t mont = montgomery_constant(m.limb[0]);
    std::uint16_t ours[kMaxProductLimbs];
    std::uint16_t theirs[kMaxProductLimbs];

    const CpuFeatures cpu = detect_cpu_features();
    std::vector<std::pair<std::string, MontgomeryProduct*>> variants = {
        {"plain", montgomery_product_plain}};
    if (cpu.sse2) variants.emplace_back("sse2", montgomery_product_sse2);
    if (cpu.avx2) variants.emplace_back("avx2", montgomery_product_avx2);
    std::vector<Candidate> candidates = {
        {"library",
         [&] { multmodLAN(a.limb, b.limb, ours, m.limb, mont, static_cast<short>(n)); }}};
    candidates.front().run();
    for (const auto& [name, product] : variants) {
        candidates.push_back(
            {name, [&, product = product] { product(a.limb, b.limb, theirs, m.limb, mont, n); }});
        candidates.back().run();
        check(std::memcmp(ours, theirs, sizeof(std::uint16_t) * n) == 0, "product, " + name);
    }
    for (const PeerWork& peer : peers.product(a_hex, b_hex, m_hex))
        candidates.push_back({peer.name, peer.run});
    compare(kernel, candidates);
}

}  // namespace

void bench_arithmetic(const Peers& peers) {
    if (bench_verification(peers))
        bench_inversion(peers);
    else
        std::puts("verification, inversion: left out; the library has another domain");
    bench_product(peers, "product 512 bit", kExample.g, kExample.y, kExample.p);
    bench_product(peers, "product 160 bit", fips186::kR, fips186::kS, fips186::kQ);
}
