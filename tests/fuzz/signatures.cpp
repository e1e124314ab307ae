// CheckSignature over a valid key, signature and digest with bytes changed.
#include "../longarith/fips186_example.h"

#include "fuzz.h"

namespace {

int range_code(const Bytes& signature) {
    const Bytes q = fips186::little_endian(fips186::kQ);
    for (const auto from : {signature.begin(), signature.begin() + 20}) {
        const Bytes number(std::make_reverse_iterator(from + 20), std::make_reverse_iterator(from));
        if (number >= Bytes(q.rbegin(), q.rend())) return 0x7707;
        if (number == Bytes(20)) return 0x707;
    }
    return 0;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Input input(data, size);
    const Bytes original[] = {fips186::key(), fips186::signature(),
                              fips186::little_endian(fips186::kDigest)};
    Bytes parts[] = {original[0], original[1], original[2]};
    while (!input.empty()) {
        const unsigned kind = input.byte();
        Bytes& part = parts[kind % 3];
        const std::size_t at = input.byte() % part.size();
        const std::size_t run = kind < 128 ? 1 : input.byte();
        std::fill_n(part.begin() + at, std::min(run, part.size() - at), input.byte());
    }
    int expected = range_code(parts[1]);
    if (expected == 0 && !std::equal(parts, parts + 3, original)) expected = 0xF0F;
    // The record ends after its state.
    auto* const digest = reinterpret_cast<HASH_CTX*>(parts[2].data());
    require(CheckSignature(parts[0].data(), parts[1].data(), digest) == expected, "result code");
    return 0;
}
