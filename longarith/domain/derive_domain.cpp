// Derives the library's built-in domain parameters from a domain file, with the library's own limb
// arithmetic, and refuses a file that is not a DSA domain the library can work in.
#include <ktbase/longarith.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <iomanip>
#include <iostream>
#include <random>
#include <sstream>
#include <utility>

#include "domain_file.h"

namespace {

constexpr int kLimbBits = 16;
constexpr int kPrimalityRounds = 64;  // each lets a composite through with a chance below 1/4

short count(const Limbs& a) {
    return static_cast<short>(a.size());
}
int bits(const Limbs& a) {
    return kLimbBits * count(a);
}
bool bit(const Limbs& a, int position) {
    return (a[position / kLimbBits] >> position % kLimbBits & 1) != 0;
}
bool less(const Limbs& a, const Limbs& b) {
    return std::lexicographical_compare(a.rbegin(), a.rend(), b.rbegin(), b.rend());
}
Limbs number(unsigned short value, std::size_t limbs) {
    Limbs a(limbs);
    a[0] = value;
    return a;
}

// Arithmetic modulo an odd number. "Form" means Montgomery form, fully reduced.
class Modulus {
public:
    explicit Modulus(Limbs m) : m_(std::move(m)) {
        // Newton: each step doubles the low bits in which m * inverse is 1; it starts with one.
        unsigned inverse = 1;
        for (int correct = 1; correct < kLimbBits; correct *= 2) inverse *= 2 - m_[0] * inverse;
        mont_ = static_cast<unsigned short>(0 - inverse);
        one_ = power_of_two(bits(m_));
    }

    unsigned short montgomery_constant() const { return mont_; }
    const Limbs& one() const { return one_; }  // in form

    // 2^exponent, not in form.
    Limbs power_of_two(int exponent) const {
        Limbs r = number(1, m_.size());
        for (int i = 0; i < exponent; ++i) append_bit(r, false);
        return r;
    }
    // The residue of a number of any width, not in form.
    Limbs residue(const Limbs& a) const {
        Limbs r(m_.size());
        for (int i = bits(a) - 1; i >= 0; --i) append_bit(r, bit(a, i));
        return r;
    }

    Limbs multiply(Limbs a, Limbs b) const {
        multmodLAN(a.data(), b.data(), a.data(), limbs(), mont_, count(m_));
        while (!less(a, m_)) subtract(a);
        return a;
    }
    Limbs square(const Limbs& a) const { return multiply(a, a); }
    Limbs form(const Limbs& a) const { return multiply(a, power_of_two(2 * bits(m_))); }
    Limbs power(const Limbs& base, const Limbs& exponent) const {
        Limbs result = one_;
        for (int i = bits(exponent) - 1; i >= 0; --i) {
            result = square(result);
            if (bit(exponent, i)) result = multiply(result, base);
        }
        return result;
    }

    // Miller-Rabin. The bases are drawn from the number itself, so that a build can be repeated.
    bool is_prime() const {
        std::seed_seq seed(m_.begin(), m_.end());
        std::mt19937 random(seed);
        for (int round = 0; round < kPrimalityRounds; ++round) {
            Limbs base(m_.size());
            std::generate(base.begin(), base.end(),
                          [&] { return static_cast<unsigned short>(random() & 0xFFFF); });
            base = residue(base);
            if (base != Limbs(m_.size()) && is_witness(base)) return false;
        }
        return true;
    }

private:
    unsigned short* limbs() const { return const_cast<unsigned short*>(m_.data()); }
    void subtract(Limbs& a) const { subtLAN(a.data(), limbs(), count(m_)); }

    // r = 2r + bit mod m.
    void append_bit(Limbs& r, bool low) const {
        bool carry = low;
        for (unsigned short& limb : r) {
            const unsigned t = limb * 2U + (carry ? 1 : 0);
            limb = static_cast<unsigned short>(t);
            carry = t >> kLimbBits != 0;
        }
        // 2r + 1 < 2m, so one subtraction does, and it takes the carry away with it.
        if (carry || !less(r, m_)) subtract(r);
    }

    // True when `base`, in form, proves the modulus composite.
    bool is_witness(const Limbs& base) const {
        Limbs minus_one = m_;
        subtLAN(minus_one.data(), const_cast<unsigned short*>(one_.data()), count(m_));
        // m - 1 = odd * 2^twos, and m is odd: its bits above 0 are those of m - 1.
        int twos = 1;
        while (!bit(m_, twos)) ++twos;
        Limbs x = one_;
        for (int i = bits(m_) - 1; i >= twos; --i) {
            x = square(x);
            if (bit(m_, i)) x = multiply(x, base);
        }
        if (x == one_) return false;
        for (int i = 0; i < twos; ++i, x = square(x))
            if (x == minus_one) return false;
        return true;
    }

    Limbs m_;
    unsigned short mont_;
    Limbs one_;
};

// Checks a prime's top bit and oddness, and that it is one.
void check_prime(const Limbs& a, const std::string& name) {
    if (!bit(a, bits(a) - 1)) throw DomainError("the top bit of " + name + " is clear");
    if (!bit(a, 0)) throw DomainError(name + " is even");
    if (!Modulus(a).is_prime()) throw DomainError(name + " is composite");
}

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
    if (p.power(p.form(domain.g), domain.q) != p.one()) throw DomainError("g^q is not 1 modulo p");
}

// The first 16 odd powers of g^(2^(40j)) for j = 0 to 3, in form.
Limbs base_table(const Domain& domain) {
    const Modulus p(domain.p);
    Limbs table;
    Limbs base = p.form(domain.g);
    for (int j = 0; j < 4; ++j) {
        const Limbs square = p.square(base);
        Limbs power = base;
        for (int k = 0; k < 16; ++k) {
            table.insert(table.end(), power.begin(), power.end());
            power = p.multiply(power, square);
        }
        for (int i = 0; i < 40; ++i) base = p.square(base);
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
    write_limbs(out, "DsaR2Q", q.power_of_two(320));
    write_limbs(out, "DsaFoldQ", q.power_of_two(672));
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

std::string read_file(const char* path) {
    std::ifstream file(path, std::ios::binary);
    std::ostringstream text;
    if (!(file && text << file.rdbuf())) throw DomainError(std::strerror(errno));
    return text.str();
}

// A file that takes its place when it is complete, and is gone otherwise.
class OutputFile {
public:
    OutputFile(const std::string& path, const std::string& text)
        : path_(path), beside_(path + ".tmp") {
        std::ofstream file(beside_, std::ios::binary);
        if (!(file << text << std::flush)) fail();
    }
    OutputFile(const OutputFile&) = delete;
    OutputFile& operator=(const OutputFile&) = delete;
    ~OutputFile() { std::remove(beside_.c_str()); }

    void put_in_place() const {
        if (std::rename(beside_.c_str(), path_.c_str()) == -1) fail();
    }

private:
    [[noreturn]] void fail() const {
        const std::string reason = std::strerror(errno);
        std::remove(beside_.c_str());
        throw std::runtime_error(path_ + ": " + reason);
    }

    std::string path_;
    std::string beside_;
};

}  // namespace

int main(int argc, char** argv) {
    if (argc != 4) {
        std::cerr << "usage: derive_domain DOMAIN_FILE TABLES_SOURCE NUMBERS_HEADER\n";
        return 2;
    }
    try {
        const Domain domain = parse_domain(read_file(argv[1]));
        check_domain(domain);
        const OutputFile tables(argv[2], tables_source(domain));
        const OutputFile numbers(argv[3], numbers_header(domain));
        tables.put_in_place();
        numbers.put_in_place();
    } catch (const DomainError& error) {
        std::cerr << "derive_domain: " << argv[1] << ": " << error.what() << '\n';
        return 1;
    } catch (const std::exception& error) {
        std::cerr << "derive_domain: " << error.what() << '\n';
        return 1;
    }
    return 0;
}
