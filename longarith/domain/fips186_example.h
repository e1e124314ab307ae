// A signature in the domain of fips186.domain: the worked example of FIPS 186, Appendix 5, in this
// library's encodings. For tests and benchmarks.
#ifndef KTBASE_LONGARITH_DOMAIN_FIPS186_EXAMPLE_H
#define KTBASE_LONGARITH_DOMAIN_FIPS186_EXAMPLE_H

#include <string>
#include <vector>

namespace fips186 {

using Bytes = std::vector<unsigned char>;

// The little-endian bytes of a big-endian hexadecimal number.
inline Bytes little_endian(const std::string& hex) {
    Bytes bytes;
    for (std::size_t end = hex.size(); end != 0; end -= 2)
        bytes.push_back(
            static_cast<unsigned char>(std::stoul(hex.substr(end - 2, 2), nullptr, 16)));
    return bytes;
}

constexpr const char* kQ = "c773218c737ec8ee993b4f2ded30f48edace915f";
constexpr const char* kR = "8bac1ab66410435cb7181f95b16ab97c92b341c0";
constexpr const char* kS = "41e2345f1f56df2458f426d155b4ba2db6dcd8c8";
// s of the example's message, key and nonce with the SHA of 1993.
constexpr const char* kSOfAbc = "1272cde7ff6c85740593c4a88cc229b22c0670d2";
constexpr const char* kDigest = "a9993e364706816aba3e25717850c26c9cd0d89d";

// y^(2^(40j)) * 2^512 mod p. The most significant digits come first, so j runs from 3 to 0.
inline Bytes key() {
    return little_endian(
        "03233f6965dfb9b39362a0e2f6f43d15993a5441d0be27201ba6562022434c5e"
        "156f96955fa7f61e11b8d16a11ab442db0d35670e7353217d55e1d1c48037cf3"
        "7c3c4f62d0382bb12bdee62e6acfb56d627eb31f2fe17f691562a6c9e776a2f8"
        "5d9f7b441e587839d3b82ee0e4c6b428d82816debfb7d6ffa742d1092baadb93"
        "16c28c8c747c11e5af4370293bd2e7a1c0dee4f509d6eced23714ef32346ed0e"
        "4f8b0b99e95853f46524e67a4dc7c6e2131ca0fe31fa8869ed2fe943e94276e3"
        "42be8cbad780456768b71a8334f6ed0f5080daa40505b7d590bab5782118449a"
        "d8daa8dc3ad2b83040b6b1f1f3e73623cca50a58bb183b39350e543ffa6a793c");
}
inline Bytes signature(const std::string& s = kS) {
    return little_endian(s + kR);
}

}  // namespace fips186

#endif
