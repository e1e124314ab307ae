#include "peers.h"

#include <dlfcn.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <stdexcept>

namespace {

constexpr int kMd5 = 1;  // libgcrypt's numbers of the algorithms
constexpr int kSha1 = 2;

// A loaded library. It is never unloaded.
class Library {
public:
    Library(const std::string& folder, const char* name, int scope = RTLD_LOCAL)
        : handle_(dlopen((folder + "/" + name).c_str(), RTLD_NOW | scope)) {
        if (handle_ == nullptr) throw std::runtime_error(dlerror());
    }
    template <class Function>
    Function* get(const char* name) const {
        void* const symbol = dlsym(handle_, name);
        if (symbol == nullptr) throw std::runtime_error(dlerror());
        return reinterpret_cast<Function*>(symbol);
    }

private:
    void* handle_;
};

using Any = void*;

PeerDigest libcrypto_digest(const Library& library, const std::string& name,
                            const std::string& prefix) {
    const auto init = library.get<int(Any)>((prefix + "_Init").c_str());
    const auto update =
        library.get<int(Any, const void*, std::size_t)>((prefix + "_Update").c_str());
    const auto final = library.get<int(unsigned char*, Any)>((prefix + "_Final").c_str());
    return {name, [=](const unsigned char* data, std::size_t size, std::size_t piece,
                      unsigned char* digest) {
                alignas(16) char context[512];
                init(context);
                for (std::size_t at = 0; at < size; at += piece)
                    update(context, data + at, std::min(piece, size - at));
                final(digest, context);
            }};
}

PeerDigest nettle_digest(const Library& library, const std::string& name, unsigned size_of_digest) {
    const auto init = library.get<void(Any)>(("nettle_" + name + "_init").c_str());
    const auto update = library.get<void(Any, std::size_t, const unsigned char*)>(
        ("nettle_" + name + "_update").c_str());
    const auto final =
        library.get<void(Any, std::size_t, unsigned char*)>(("nettle_" + name + "_digest").c_str());
    return {"nettle", [=](const unsigned char* data, std::size_t size, std::size_t piece,
                          unsigned char* digest) {
                alignas(16) char context[512];
                init(context);
                for (std::size_t at = 0; at < size; at += piece)
                    update(context, std::min(piece, size - at), data + at);
                final(context, size_of_digest, digest);
            }};
}

PeerDigest libgcrypt_digest(const std::string& folder, int algorithm) {
    const Library errors(folder, "libgpg-error.so.0", RTLD_GLOBAL);
    const Library library(folder, "libgcrypt.so.20");
    constexpr int kInitializationFinished = 38;
    library.get<const char*(const char*)>("gcry_check_version")(nullptr);
    library.get<int(int, ...)>("gcry_control")(kInitializationFinished, 0);
    const auto hash = library.get<void(int, Any, const void*, std::size_t)>("gcry_md_hash_buffer");
    Any context = nullptr;
    library.get<unsigned(Any*, int, unsigned)>("gcry_md_open")(&context, algorithm, 0);
    const auto reset = library.get<void(Any)>("gcry_md_reset");
    const auto write = library.get<void(Any, const void*, std::size_t)>("gcry_md_write");
    const auto read = library.get<const unsigned char*(Any, int)>("gcry_md_read");
    const std::size_t digest_bytes = algorithm == kMd5 ? 16 : 20;
    return {"libgcrypt", [=](const unsigned char* data, std::size_t size, std::size_t piece,
                             unsigned char* digest) {
                if (piece >= size) return hash(algorithm, digest, data, size);
                reset(context);
                for (std::size_t at = 0; at < size; at += piece)
                    write(context, data + at, std::min(piece, size - at));
                std::memcpy(digest, read(context, algorithm), digest_bytes);
            }};
}

// A second copy of libcrypto, configured for a processor without SHA instructions.
Library libcrypto_without_sha(const std::string& folder) {
    setenv("OPENSSL_ia32cap", ":~0x20000000", 1);
    Library library(folder, "libcrypto-without-sha.so.3");
    unsetenv("OPENSSL_ia32cap");
    return library;
}

Any big_number(const Library& libcrypto, const std::string& hex) {
    Any number = nullptr;
    libcrypto.get<int(Any*, const char*)>("BN_hex2bn")(&number, hex.c_str());
    return number;
}

PeerWork libcrypto_product(const Library& libcrypto, const std::string& a, const std::string& b,
                           const std::string& modulus) {
    const Any context = libcrypto.get<Any()>("BN_CTX_new")();
    const Any montgomery = libcrypto.get<Any()>("BN_MONT_CTX_new")();
    libcrypto.get<int(Any, Any, Any)>("BN_MONT_CTX_set")(montgomery, big_number(libcrypto, modulus),
                                                         context);
    const Any x = big_number(libcrypto, a);
    const Any y = big_number(libcrypto, b);
    const Any out = big_number(libcrypto, "0");
    const auto multiply = libcrypto.get<int(Any, Any, Any, Any, Any)>("BN_mod_mul_montgomery");
    return {"libcrypto", [=] { multiply(out, x, y, montgomery, context); }};
}

struct GmpNumber {
    int room, size;
    std::uint32_t* words;
};

PeerWork gmp_product(const Library& gmp, const std::string& a, const std::string& b,
                     const std::string& modulus) {
    const auto number = [&](const std::string& hex) {
        GmpNumber z;
        gmp.get<int(GmpNumber*, const char*, int)>("__gmpz_init_set_str")(&z, hex.c_str(), 16);
        return z;
    };
    const GmpNumber x = number(a);
    const GmpNumber y = number(b);
    const GmpNumber m = number(modulus);
    if (x.size != m.size || y.size != m.size) throw std::runtime_error("operands of two sizes");
    std::uint32_t inverse = 1;
    for (int bits = 1; bits < 32; bits *= 2) inverse *= 2 - m.words[0] * inverse;
    const auto multiply =
        gmp.get<void(std::uint32_t*, const std::uint32_t*, const std::uint32_t*, long)>(
            "__gmpn_mul_n");
    const auto reduce = gmp.get<std::uint32_t(std::uint32_t*, std::uint32_t*, const std::uint32_t*,
                                              long, std::uint32_t)>("__gmpn_redc_1");
    return {"gmp", [=, wide = std::vector<std::uint32_t>(64)]() mutable {
                multiply(wide.data(), x.words, y.words, m.size);
                reduce(wide.data(), wide.data(), m.words, m.size, 0 - inverse);
            }};
}

PeerInversion libcrypto_inversion(const Library& libcrypto, const std::string& x_hex,
                                  const std::string& modulus) {
    const Any context = libcrypto.get<Any()>("BN_CTX_new")();
    const Any x = big_number(libcrypto, x_hex);
    const Any m = big_number(libcrypto, modulus);
    const Any out = big_number(libcrypto, "0");
    const auto invert = libcrypto.get<Any(Any, Any, Any, Any)>("BN_mod_inverse");
    const auto to_hex = libcrypto.get<char*(Any)>("BN_bn2hex");
    const auto run = [=] { invert(out, x, m, context); };
    return {"libcrypto", run, [=] {
                run();
                const std::string digits = to_hex(out);
                return std::string(modulus.size() - digits.size(), '0') + digits;
            }};
}

PeerInversion gmp_inversion(const Library& gmp, const std::string& x_hex,
                            const std::string& modulus) {
    const auto number = [&](const std::string& hex) {
        auto* const z = new GmpNumber;  // never released
        gmp.get<int(GmpNumber*, const char*, int)>("__gmpz_init_set_str")(z, hex.c_str(), 16);
        return z;
    };
    GmpNumber* const x = number(x_hex);
    GmpNumber* const m = number(modulus);
    GmpNumber* const out = number("0");
    const auto invert =
        gmp.get<int(GmpNumber*, const GmpNumber*, const GmpNumber*)>("__gmpz_invert");
    const auto to_hex = gmp.get<char*(char*, int, const GmpNumber*)>("__gmpz_get_str");
    const auto run = [=] { invert(out, x, m); };
    return {"gmp", run, [=] {
                run();
                const std::string digits = to_hex(nullptr, 16, out);
                return std::string(modulus.size() - digits.size(), '0') + digits;
            }};
}

}  // namespace

std::vector<PeerDigest> Peers::md5() const {
    if (folder_.empty()) return {};
    return {libcrypto_digest(Library(folder_, "libcrypto.so.3"), "libcrypto", "MD5"),
            nettle_digest(Library(folder_, "libnettle.so.8"), "md5", 16),
            libgcrypt_digest(folder_, kMd5)};
}

std::vector<PeerDigest> Peers::sha1() const {
    if (folder_.empty()) return {};
    return {
        libcrypto_digest(Library(folder_, "libcrypto.so.3"), "libcrypto", "SHA1"),
        libgcrypt_digest(folder_, kSha1),
        libcrypto_digest(libcrypto_without_sha(folder_), "libcrypto, no SHA instructions", "SHA1"),
        nettle_digest(Library(folder_, "libnettle.so.8"), "sha1", 20)};
}

std::vector<PeerWork> Peers::verification(const DsaExample& example) const {
    if (folder_.empty()) return {};
    const Library libcrypto(folder_, "libcrypto.so.3");
    const Any dsa = libcrypto.get<Any()>("DSA_new")();
    const Any signature = libcrypto.get<Any()>("DSA_SIG_new")();
    libcrypto.get<int(Any, Any, Any, Any)>("DSA_set0_pqg")(dsa, big_number(libcrypto, example.p),
                                                           big_number(libcrypto, example.q),
                                                           big_number(libcrypto, example.g));
    libcrypto.get<int(Any, Any, Any)>("DSA_set0_key")(dsa, big_number(libcrypto, example.y),
                                                      nullptr);
    libcrypto.get<int(Any, Any, Any)>("DSA_SIG_set0")(signature, big_number(libcrypto, example.r),
                                                      big_number(libcrypto, example.s));
    const std::string hex = example.digest;
    std::vector<unsigned char> digest;
    for (std::size_t i = 0; i < hex.size(); i += 2)
        digest.push_back(static_cast<unsigned char>(std::stoul(hex.substr(i, 2), nullptr, 16)));
    const auto verify = libcrypto.get<int(const unsigned char*, int, Any, Any)>("DSA_do_verify");
    const auto run = [=] { return verify(digest.data(), 20, signature, dsa); };
    if (run() != 1) throw std::runtime_error("libcrypto refuses the signature");
    return {{"libcrypto", run}};
}

std::vector<PeerWork> Peers::product(const std::string& a, const std::string& b,
                                     const std::string& modulus) const {
    if (folder_.empty()) return {};
    return {libcrypto_product(Library(folder_, "libcrypto.so.3"), a, b, modulus),
            gmp_product(Library(folder_, "libgmp.so.10"), a, b, modulus)};
}

std::vector<PeerInversion> Peers::inversion(const std::string& x,
                                            const std::string& modulus) const {
    if (folder_.empty()) return {};
    return {libcrypto_inversion(Library(folder_, "libcrypto.so.3"), x, modulus),
            gmp_inversion(Library(folder_, "libgmp.so.10"), x, modulus)};
}
