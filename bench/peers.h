// General libraries with the same functions, loaded at run time from a folder.
#ifndef KTBASE_BENCH_PEERS_H
#define KTBASE_BENCH_PEERS_H

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

struct PeerDigest {
    std::string name;
    // Digests `size` bytes of `data` in pieces of `piece` bytes. `digest` takes up to 20 bytes.
    std::function<void(const unsigned char* data, std::size_t size, std::size_t piece,
                       unsigned char* digest)>
        run_in_pieces;

    void run(const unsigned char* data, std::size_t size, unsigned char* digest) const {
        run_in_pieces(data, size, size, digest);
    }
};

struct PeerWork {
    std::string name;
    std::function<void()> run;
};

struct PeerInversion {
    std::string name;
    std::function<void()> run;
    std::function<std::string()> result;  // in hexadecimal, 40 digits
};

// A DSA domain, key, signature and digest in hexadecimal.
struct DsaExample {
    const char *p, *q, *g, *y, *r, *s, *digest;
};

// Every list is empty if `folder` is empty.
class Peers {
public:
    explicit Peers(std::string folder) : folder_(std::move(folder)) {}

    std::vector<PeerDigest> md5() const;
    std::vector<PeerDigest> sha1() const;
    std::vector<PeerWork> verification(const DsaExample& example) const;
    // The Montgomery product of two numbers below the odd modulus, all in hexadecimal.
    std::vector<PeerWork> product(const std::string& a, const std::string& b,
                                  const std::string& modulus) const;

    // The inverse of a number modulo an odd prime of 160 bits, both in hexadecimal.
    std::vector<PeerInversion> inversion(const std::string& x, const std::string& modulus) const;

private:
    std::string folder_;
};

#endif
