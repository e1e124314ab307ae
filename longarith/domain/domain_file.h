// A DSA domain as text: lines `p = HEX`, `q = HEX`, `g = HEX`, each once, in any order. The numbers
// are big-endian hexadecimal of either case. `#` begins a comment. Blank lines are allowed.
#ifndef KTBASE_LONGARITH_DOMAIN_DOMAIN_FILE_H
#define KTBASE_LONGARITH_DOMAIN_DOMAIN_FILE_H

#include <stdexcept>
#include <string>
#include <vector>

using Limbs = std::vector<unsigned short>;  // a number, least significant limb first

struct Domain {
    Limbs p;  // kLimbsP limbs
    Limbs q;  // kLimbsQ limbs
    Limbs g;  // kLimbsP limbs
};

// What is wrong with a domain, in one line.
struct DomainError : std::runtime_error {
    using std::runtime_error::runtime_error;
};

// Parses a domain. Checks that every number is present once and has its width. Throws DomainError.
Domain parse_domain(const std::string& text);

// Reads and parses a domain file. Throws DomainError, also when the file cannot be read.
Domain read_domain_file(const std::string& path);

#endif
