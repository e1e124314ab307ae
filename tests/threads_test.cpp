// The reentrant services from eight threads at once, each thread's results against those of the
// same work done alone. Built a second time natively, from the sources, under ThreadSanitizer,
// which knows no 32-bit programs.
#include <ktbase/digest.h>
#include <ktbase/longarith.h>
#include <ktbase/text.h>

#include <cstdio>
#include <random>
#include <string>
#include <thread>
#include <vector>

#include "longarith/fips186_example.h"

namespace {

constexpr unsigned kThreads = 8;
constexpr int kRounds = 40;

// All results of the services on data drawn from `seed`, as text.
std::string work(unsigned seed) {
    std::mt19937 random(seed);
    std::vector<unsigned char> bytes(300);
    for (unsigned char& byte : bytes) byte = static_cast<unsigned char>(random());
    const unsigned size = 200 + seed;
    std::string results;
    const auto add = [&](const void* data, std::size_t length) {
        results.append(static_cast<const char*>(data), length);
    };

    HASH_CTX sha;
    InitHash(&sha);
    HashBuf(bytes.data(), size, &sha);
    EndHash(&sha);
    add(sha.state, sizeof sha.state);
    unsigned char md5[16];
    GetBufferMD5(md5, bytes.data(), size);
    add(md5, sizeof md5);

    unsigned short limbs[3][32];
    for (int i = 0; i < 3; ++i) packLAN(bytes.data() + 64 * i, limbs[i], 64);
    limbs[2][0] = 0xFFFF;  // a modulus whose Montgomery constant is 1
    multmodLAN(limbs[0], limbs[1], limbs[0], limbs[2], 1, 32);
    privLAN(limbs[0], limbs[2], 1, 32, 32, 16);
    subtLAN(limbs[0], limbs[1], 32);
    add(limbs, sizeof limbs);
    invertLAN(bytes.data(), limbs[1]);
    add(limbs[1], 20);

    auto key = fips186::key();
    auto signature = fips186::signature();
    HASH_CTX digest = fips186::digest(fips186::little_endian(fips186::kDigest));
    signature[seed % 40] ^= static_cast<unsigned char>(seed % 2);  // every other one is valid
    results += std::to_string(CheckSignature(key.data(), signature.data(), &digest));
    results += std::to_string(
        CheckBufferSign(bytes.data(), static_cast<long>(size), key.data(), signature.data()));

    char hex[64];
    BufToHexString(bytes.data(), 20, hex);
    std::string text = " " + std::string(hex) + "\t";
    Trim(text);
    ConvertToLowerCase(text);
    char* const copy = KsStrdup(text);
    results += copy;
    results += std::to_string(KsStrcasecmp(hex, text) + 3 * KsStrcmp(hex, text));
    HexStringToBuf(copy, bytes.data());
    delete[] copy;
    e_memmove(bytes.data() + 1, bytes.data(), 100);
    q_memcpy(bytes.data(), bytes.data() + 50, 21);
    add(bytes.data(), bytes.size());
    return results;
}

}  // namespace

int main() {
    std::string alone[kThreads];
    for (unsigned i = 0; i < kThreads; ++i) alone[i] = work(i);
    int failures[kThreads] = {};
    std::vector<std::thread> threads;
    for (unsigned i = 0; i < kThreads; ++i)
        threads.emplace_back([&, i] {
            for (int round = 0; round < kRounds; ++round) failures[i] += work(i) != alone[i];
        });
    for (std::thread& thread : threads) thread.join();

    int failed = 0;
    for (unsigned i = 0; i < kThreads; ++i) {
        if (failures[i] != 0) std::printf("FAILED: thread %u, %d times\n", i, failures[i]);
        failed += failures[i];
    }
    return failed == 0 ? 0 : 1;
}
