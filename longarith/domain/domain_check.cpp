#include "domain_check.h"

#include "modulus.h"

namespace {

void check_prime(const Limbs& a, const std::string& name) {
    if (!test_bit(a, bit_count(a) - 1)) throw DomainError("the top bit of " + name + " is clear");
    if (!test_bit(a, 0)) throw DomainError(name + " is even");
    if (!Modulus(a).is_prime()) throw DomainError(name + " is composite");
}

}  // namespace

void check_domain(const Domain& domain) {
    if (domain.p.back() == 0xFFFF) throw DomainError("the top limb of p is 0xFFFF");
    check_prime(domain.p, "p");
    check_prime(domain.q, "q");
    if (Modulus(domain.q).residue(domain.p) != number(1, domain.q.size()))
        throw DomainError("q does not divide p - 1");
    if (domain.g == Limbs(domain.g.size()) || !less(domain.g, domain.p))
        throw DomainError("g is out of range");
    if (domain.g == number(1, domain.g.size())) throw DomainError("g is 1");
    const Modulus p(domain.p);
    if (p.power(p.to_montgomery_form(domain.g), domain.q) != p.one())
        throw DomainError("g^q is not 1 modulo p");
}
