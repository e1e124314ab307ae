// CheckSignature over a valid key, signature and digest with bytes changed: only the original is
// accepted, and the numbers of the key with p added to them, which stand for the same residues.
#include <ktbase/longarith.h>

#include "../longarith/fips186_example.h"
#include "domain_numbers.h"
#include "fuzz.h"

namespace {

// Adds p to the 64-byte number; false, with the number as it was, when it would not fit.
bool add_p(unsigned char* number) {
    const Bytes p = fips186::little_endian(kDomainP);
    Bytes sum(64);
    unsigned carry = 0;
    for (int i = 0; i < 64; ++i) {
        carry += number[i] + p[i];
        sum[i] = static_cast<unsigned char>(carry);
        carry >>= 8;
    }
    if (carry == 0) std::copy(sum.begin(), sum.end(), number);
    return carry == 0;
}

int range_code(const Bytes& signature) {
    for (const auto from : {signature.begin(), signature.begin() + 20}) {
        const Bytes number(std::make_reverse_iterator(from + 20), std::make_reverse_iterator(from));
        const Bytes q = fips186::little_endian(kDomainQ);
        if (number >= Bytes(q.rbegin(), q.rend())) return 0x7707;
        if (number == Bytes(20)) return 0x707;
    }
    return 0;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Input input(data, size);
    Bytes parts[] = {fips186::key(), fips186::signature(),
                     fips186::little_endian(fips186::kDigest)};
    auto& [key, signature, message] = parts;
    for (unsigned j = 0, raised = input.byte(); j < 4; ++j)
        if ((raised >> j & 1) != 0) add_p(key.data() + 64 * j);
    const Bytes original[] = {key, signature, message};
    while (!input.empty()) {
        const unsigned kind = input.byte();
        Bytes& part = parts[kind % 3];
        const std::size_t at = input.byte() % part.size();
        const std::size_t run = kind < 128 ? 1 : input.byte();
        const auto value = static_cast<unsigned char>(input.byte());
        std::fill(part.begin() + at, part.begin() + std::min(at + run, part.size()), value);
    }
    HASH_CTX digest = fips186::digest(message);
    const int code = CheckSignature(key.data(), signature.data(), &digest);
    const int expected = range_code(signature);
    const bool same = std::equal(parts, parts + 3, original);
    require(code == (expected != 0 ? expected : same ? 0 : 0xF0F), "result code");
    return 0;
}
