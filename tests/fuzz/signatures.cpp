// Verification over the worked example of FIPS 186, Appendix 5, with bytes changed: only the
// original is accepted, and a number out of range is told before anything else.
#include <ktbase/longarith.h>

#include <array>
#include <cstring>

#include "../../longarith/domain/fips186_example.h"
#include "fuzz.h"

namespace {

const Bytes kQ = fips186::little_endian(fips186::kQ);
using Parts = std::array<Bytes, 3>;  // key, signature, and a digest's state or a message

const Parts kByDigest = {fips186::key(), fips186::signature(),
                         fips186::little_endian(fips186::kDigest)};
const Parts kByMessage = {fips186::key(), fips186::signature(fips186::kSOfAbc), {'a', 'b', 'c'}};

int range_code(const Bytes& signature) {
    for (const auto from : {signature.begin(), signature.begin() + 20}) {
        if (!std::lexicographical_compare(std::make_reverse_iterator(from + 20),
                                          std::make_reverse_iterator(from), kQ.rbegin(), kQ.rend()))
            return 0x7707;
        if (std::count(from, from + 20, 0) == 20) return 0x707;
    }
    return 0;
}

void judge(const Parts& given, const Parts& original) {
    Parts parts = given;
    int expected = range_code(parts[1]);
    if (expected == 0 && parts != original) expected = 0xF0F;
    auto& [key, signature, signed_bytes] = parts;
    if (&original == &kByDigest) {
        // The record ends after its state.
        auto* const digest = reinterpret_cast<HASH_CTX*>(signed_bytes.data());
        require(CheckSignature(key.data(), signature.data(), digest) == expected, "result code");
    } else {
        const auto size = static_cast<long>(signed_bytes.size());
        const int result = CheckBufferSign(signed_bytes.data(), size, key.data(), signature.data());
        require(result == (expected == 0 ? 0 : -1), "result");
    }
    require(parts == given, "what it reads stays as it is");
    const HASH_CTX zero = {};
    require(std::memcmp(&Hash, &zero, sizeof zero) == 0, "the exported record is left alone");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Input input(data, size);
    const unsigned mode = input.byte();
    const Parts& original = mode % 2 == 0 ? kByDigest : kByMessage;
    Parts parts = original;
    while (!input.left.empty()) {
        const unsigned kind = input.byte();
        Bytes& part = parts[kind % 3];
        if (part.empty()) break;
        const std::size_t at = input.byte() % part.size();
        const std::size_t run = kind < 128 ? 1 : input.byte();
        std::fill_n(part.begin() + at, std::min(run, part.size() - at), input.byte());
        if (kind == 255 && mode % 2 != 0) parts[2].clear();
    }
    judge(parts, original);
    if (mode < 254 || size > 1) return 0;
    for (const int part : {1, 2})  // every bit
        for (unsigned bit = 0; bit < 8 * parts[part].size(); ++bit) {
            parts[part][bit / 8] ^= 1U << bit % 8;
            judge(parts, original);
            parts[part][bit / 8] ^= 1U << bit % 8;
        }
    return 0;
}
