#include "domain.h"
#include "domain_numbers.h"

const DomainNumbers& built_in_domain() {
    static const DomainNumbers domain = {number_from_hexadecimal(kDomainP),
                                         number_from_hexadecimal(kDomainQ),
                                         number_from_hexadecimal(kDomainG)};
    return domain;
}
