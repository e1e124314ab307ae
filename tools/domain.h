// DSA domains as libcrypto's numbers: the built-in domain, and the domains of keys and files.
#ifndef KTBASE_TOOLS_DOMAIN_H
#define KTBASE_TOOLS_DOMAIN_H

#include <string>

#include "libcrypto.h"

struct DomainNumbers {
    Number p;
    Number q;
    Number g;
};

const DomainNumbers& built_in_domain();
bool operator==(const DomainNumbers& a, const DomainNumbers& b);

// True if p has 512 bits, q has 160 and g at most 512.
bool has_the_size(const DomainNumbers& domain);

// SHA-256 of p (64 bytes), q (20) and g (64), each most significant byte first, in hexadecimal.
std::string fingerprint(const DomainNumbers& domain);

// Parses and checks the text of a domain file with the code of the build. Throws Failure.
DomainNumbers parse_domain_file(const std::string& name, const std::string& text);

// Generates p, q and g, and returns the text of a domain file. Throws Failure.
std::string generate_domain_file();

#endif
