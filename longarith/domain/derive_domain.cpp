// Derives the library's built-in domain parameters from a domain file, with the library's own limb
// arithmetic. Refuses a file that is not a DSA domain the library can work in, and then writes
// nothing.
#include <cerrno>
#include <cstring>
#include <fstream>
#include <iomanip>
#include <iostream>
#include <sstream>

#include "../domain_shape.h"
#include "domain_check.h"
#include "domain_file.h"
#include "modulus.h"

namespace {

// The first kPowersG odd powers of g^(2^(kChunkBits * j)) for every chunk j, in Montgomery form.
Limbs base_table(const Domain& domain) {
    const Modulus p(domain.p);
    Limbs table;
    Limbs base = p.to_montgomery_form(domain.g);
    for (int j = 0; j < kChunks; ++j) {
        const Limbs square = p.square(base);
        Limbs power = base;
        for (int k = 0; k < kPowersG; ++k) {
            table.insert(table.end(), power.begin(), power.end());
            power = p.multiply(power, square);
        }
        for (int i = 0; i < kChunkBits; ++i) base = p.square(base);
    }
    return table;
}

void write_limbs(std::ostream& out, const std::string& name, const Limbs& limbs) {
    out << "\nconst unsigned short " << name << "[] = {" << std::hex << std::setfill('0');
    for (std::size_t i = 0; i < limbs.size(); ++i)
        out << (i % 8 == 0 ? "\n    " : " ") << "0x" << std::setw(4) << limbs[i] << ',';
    out << std::dec << "\n};\n";
}

std::string tables_source(const Domain& domain) {
    const Modulus p(domain.p);
    const Modulus q(domain.q);
    std::ostringstream out;
    out << "// The built-in domain. Derived from its domain file by the build.\n"
           "#include \"domain_parameters.h\"\n\n"
        << "const unsigned short DsaMontP = " << p.montgomery_constant() << ";\n"
        << "const unsigned short DsaMontQ = " << q.montgomery_constant() << ";\n";
    write_limbs(out, "DsaP", domain.p);
    write_limbs(out, "DsaQ", domain.q);
    write_limbs(out, "DsaR2Q", q.power_of_two(kExponentR2Q));
    write_limbs(out, "DsaFoldQ", q.power_of_two(kExponentFoldQ));
    write_limbs(out, "DsaBaseTable", base_table(domain));
    return out.str();
}

std::string hexadecimal(const Limbs& a) {
    std::ostringstream out;
    out << std::hex << std::setfill('0');
    for (auto limb = a.rbegin(); limb != a.rend(); ++limb) out << std::setw(4) << *limb;
    return out.str();
}

std::string numbers_header(const Domain& domain) {
    return "// The built-in domain, in hexadecimal. Derived from its domain file by the build.\n"
           "#ifndef KTBASE_DOMAIN_NUMBERS_H\n#define KTBASE_DOMAIN_NUMBERS_H\n\n"
           "constexpr char kDomainP[] =\n    \"" +
           hexadecimal(domain.p) +
           "\";\n"
           "constexpr char kDomainQ[] = \"" +
           hexadecimal(domain.q) +
           "\";\n"
           "constexpr char kDomainG[] =\n    \"" +
           hexadecimal(domain.g) + "\";\n\n#endif\n";
}

// After a failure the build tool makes the outputs again, so a partial file does no harm.
void write_file(const std::string& path, const std::string& text) {
    std::ofstream file(path, std::ios::binary);
    if (!(file << text << std::flush)) throw std::runtime_error(path + ": " + std::strerror(errno));
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 4) {
        std::cerr << "usage: derive_domain DOMAIN_FILE TABLES_SOURCE NUMBERS_HEADER\n";
        return 2;
    }
    try {
        const Domain domain = read_domain_file(argv[1]);
        check_domain(domain);
        write_file(argv[2], tables_source(domain));
        write_file(argv[3], numbers_header(domain));
    } catch (const DomainError& error) {
        const std::string path = argv[1];
        std::cerr << "derive_domain: " << (path.empty() ? "\"\"" : path) << ": " << error.what()
                  << '\n';
        return 1;
    } catch (const std::exception& error) {
        std::cerr << "derive_domain: " << error.what() << '\n';
        return 1;
    }
    return 0;
}
