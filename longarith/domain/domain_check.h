// The check that three numbers are a DSA domain (FIPS 186) that the library can work in.
#ifndef KTBASE_LONGARITH_DOMAIN_DOMAIN_CHECK_H
#define KTBASE_LONGARITH_DOMAIN_DOMAIN_CHECK_H

#include "domain_file.h"

// Throws DomainError unless p and q are odd primes with their top bits set, the top limb of p is
// below 0xFFFF, q divides p - 1, and g generates the subgroup of order q.
void check_domain(const Domain& domain);

#endif
