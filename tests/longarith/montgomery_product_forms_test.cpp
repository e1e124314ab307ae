// Every form of the Montgomery product that the CPU has, against the plain one.
#include "montgomery_product.h"

#include <gtest/gtest.h>

#include <fstream>
#include <random>
#include <string>
#include <vector>

namespace {

// A number behind a limb that puts it off every alignment; the address sanitizer sees its ends.
using Skewed = std::vector<std::uint16_t>;

// Random limbs, or nearly all of them ones or zeros, so that carries go far.
Skewed draw(std::mt19937& random, int n) {
    const unsigned kind = random() % 4;
    Skewed number(static_cast<std::size_t>(n) + 1);
    for (std::uint16_t& limb : number)
        limb = static_cast<std::uint16_t>(kind > 1 || random() % 8 == 0 ? random() : 0 - kind);
    return number;
}

void compare_with_plain(MontgomeryProduct* form) {
    std::mt19937 random(1);
    for (int n = 1; n <= kMaxProductLimbs; ++n) {
        for (int i = 0; i < 400; ++i) {
            Skewed numbers[] = {draw(random, n), draw(random, n), draw(random, n), draw(random, n)};
            auto& [a, b, m, apart] = numbers;
            m[1] |= 1;
            if (i < 64) {
                // The largest sums of columns: all ones, and U is 1/e mod R for the odd e.
                a = b = m = Skewed(a.size(), 0xFFFF);
                m[1] = static_cast<std::uint16_t>(0 - (i | 1));
            }
            unsigned mont = 0U - m[1];  // -1/m, right in 3 bits, and then in 6, 12 and 24
            for (int bits = 3; bits < 16; bits *= 2) mont *= 2 + m[1] * mont;
            Skewed& factor = i % 4 < 2 ? b : a;
            Skewed expected = a;
            montgomery_product_plain(&a[1], &factor[1], &expected[1], &m[1],
                                     static_cast<std::uint16_t>(mont), n);
            Skewed& out = i % 2 == 0 ? apart : factor;
            expected[0] = out[0];
            form(&a[1], &factor[1], &out[1], &m[1], static_cast<std::uint16_t>(mont), n);
            ASSERT_EQ(out, expected) << n << " limbs, case " << i;
        }
    }
}

TEST(MontgomeryProductForms, equal_the_plain_one_and_are_offered_when_the_system_says_so) {
    std::ifstream cpuinfo("/proc/cpuinfo");
    std::string line;
    while (std::getline(cpuinfo, line) && line.rfind("flags", 0) != 0) continue;
    const auto has = [&line](const char* flag) { return (line + ' ').find(flag) != line.npos; };
    EXPECT_EQ(cpu_has_sse2(), has(" sse2 "));
    EXPECT_EQ(cpu_has_avx2(), has(" avx2 "));
    if (cpu_has_sse2()) compare_with_plain(montgomery_product_sse2);
    if (cpu_has_avx2()) compare_with_plain(montgomery_product_avx2);
}

}  // namespace
