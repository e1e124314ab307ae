// Every form of the Montgomery product that the CPU has, against the plain one.
#include "montgomery_product.h"

#include <gtest/gtest.h>
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <fstream>
#include <random>
#include <sstream>
#include <string>
#include <vector>

namespace {

using Limbs = std::vector<std::uint16_t>;

struct Form {
    const char* name;
    MontgomeryProduct* product;
};

std::vector<Form> vector_forms() {
    std::vector<Form> forms;
    if (cpu_has_sse2()) forms.push_back({"sse2", montgomery_product_sse2});
    if (cpu_has_avx2()) forms.push_back({"avx2", montgomery_product_avx2});
    return forms;
}

// A page between two that cannot be touched, for vectors that start or end at its edges.
class GuardedPage {
public:
    GuardedPage() : size_(static_cast<std::size_t>(sysconf(_SC_PAGESIZE))) {
        void* const pages = mmap(nullptr, 3 * size_, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
        if (pages == MAP_FAILED) throw std::bad_alloc();
        page_ = static_cast<unsigned char*>(pages) + size_;
        mprotect(page_, size_, PROT_READ | PROT_WRITE);
    }
    ~GuardedPage() { munmap(page_ - size_, 3 * size_); }
    GuardedPage(const GuardedPage&) = delete;
    GuardedPage& operator=(const GuardedPage&) = delete;

    std::uint16_t* place(const Limbs& limbs, bool at_end) {
        const std::size_t start = at_end ? size_ - 2 * limbs.size() : 0;
        auto* const to = reinterpret_cast<std::uint16_t*>(page_ + start);
        std::copy(limbs.begin(), limbs.end(), to);
        return to;
    }

private:
    std::size_t size_;
    unsigned char* page_;
};

// Numbers that carry far: few limbs are anything but all ones or all zeros, in half of them.
Limbs draw(std::mt19937& random, int n) {
    const unsigned kind = random() % 6;
    Limbs limbs(static_cast<std::size_t>(n));
    for (std::uint16_t& limb : limbs) {
        const bool rare = random() % 8 == 0;
        limb = static_cast<std::uint16_t>(random());
        if (kind == 0) limb = 0xFFFF;
        if (kind == 1) limb = rare ? 0 : 0xFFFF;
        if (kind == 2) limb = rare ? 1 : 0;
    }
    return limbs;
}

std::uint16_t montgomery_constant(std::uint16_t m) {
    unsigned inverse = 1;
    for (int bits = 1; bits < 16; bits *= 2) inverse *= 2 - m * inverse;
    return static_cast<std::uint16_t>(0 - inverse);
}

struct Operands {
    Limbs a, b, m;
    std::uint16_t mont;

    explicit Operands(const Limbs& all) : a(all), b(all), m(all), mont(0) {}
    Operands(std::mt19937& random, int n)
        : a(draw(random, n)), b(draw(random, n)), m(draw(random, n)) {
        m[0] |= 1;
        mont = montgomery_constant(m[0]);
    }
};

enum Place { kApart, kIsA, kIsB, kIsBoth };

// The product with the operands at a page's edge and the result where `place` says.
Limbs run(MontgomeryProduct* product, const Operands& x, Place place, bool at_end) {
    static GuardedPage pages[4];
    std::uint16_t* const a = pages[0].place(x.a, at_end);
    std::uint16_t* const b = place == kIsBoth ? a : pages[1].place(x.b, at_end);
    std::uint16_t* const m = pages[2].place(x.m, at_end);
    std::uint16_t* const apart = pages[3].place(Limbs(x.a.size(), 0xA5A5), at_end);
    std::uint16_t* const out = place == kApart ? apart : place == kIsB ? b : a;
    product(a, b, out, m, x.mont, static_cast<int>(x.a.size()));
    EXPECT_TRUE(std::equal(x.m.begin(), x.m.end(), m));
    EXPECT_TRUE(out == a || std::equal(x.a.begin(), x.a.end(), a));
    EXPECT_TRUE(out == b || b == a || std::equal(x.b.begin(), x.b.end(), b));
    return Limbs(out, out + x.a.size());
}

TEST(MontgomeryProductForms, equal_the_plain_one_limb_for_limb_at_every_size_and_place) {
    std::mt19937 random(1);
    for (const Form& form : vector_forms()) {
        for (int n = 1; n <= kMaxProductLimbs; ++n) {
            for (int i = 0; i < 400; ++i) {
                const Operands x(random, n);
                const Place place = static_cast<Place>(i % 4);
                const bool at_end = i % 8 < 4;
                ASSERT_EQ(run(form.product, x, place, at_end),
                          run(montgomery_product_plain, x, place, at_end))
                    << form.name << ", " << n << " limbs, case " << i;
            }
        }
    }
}

TEST(MontgomeryProductForms, hold_the_largest_sums_of_columns) {
    for (const Form& form : vector_forms()) {
        for (int n = 1; n <= kMaxProductLimbs; ++n) {
            // a and b are all ones, m nearly so, and U is 1/e mod R: for many e that is large, too.
            for (unsigned e = 1; e < 64; e += 2) {
                Operands x(Limbs(static_cast<std::size_t>(n), 0xFFFF));
                x.m[0] = static_cast<std::uint16_t>(0 - e);
                x.mont = montgomery_constant(x.m[0]);
                ASSERT_EQ(run(form.product, x, kApart, true),
                          run(montgomery_product_plain, x, kApart, true))
                    << form.name << ", " << n << " limbs, e " << e;
            }
        }
    }
}

TEST(MontgomeryProductForms, are_offered_when_the_system_says_so) {
    std::ifstream cpuinfo("/proc/cpuinfo");
    std::string line;
    while (std::getline(cpuinfo, line) && line.rfind("flags", 0) != 0) continue;
    if (line.empty()) GTEST_SKIP() << "no flags in /proc/cpuinfo";
    std::istringstream words(line);
    const std::vector<std::string> flags{std::istream_iterator<std::string>(words), {}};
    const auto has = [&](const char* flag) {
        return std::find(flags.begin(), flags.end(), flag) != flags.end();
    };
    EXPECT_EQ(cpu_has_sse2(), has("sse2"));
    EXPECT_EQ(cpu_has_avx2(), has("avx2"));
}

}  // namespace
