// A DSA domain as text: lines `p = HEX`, `q = HEX`, `g = HEX`, each once, in any order, big-endian
// hexadecimal of either case; `#` begins a comment, and blank lines mean nothing.
#ifndef KTBASE_LONGARITH_DOMAIN_DOMAIN_FILE_H
#define KTBASE_LONGARITH_DOMAIN_DOMAIN_FILE_H

#include <stdexcept>
#include <string>
#include <vector>

using Limbs = std::vector<unsigned short>;

struct Domain {
    Limbs p;  // 32 limbs
    Limbs q;  // 10 limbs
    Limbs g;  // 32 limbs
};

// What is wrong with a domain, in one line.
struct DomainError : std::runtime_error {
    using std::runtime_error::runtime_error;
};

// Reads a domain and checks all that can be seen without arithmetic: that every number is there
// once and has its width. Throws DomainError.
Domain parse_domain(const std::string& text);

#endif
