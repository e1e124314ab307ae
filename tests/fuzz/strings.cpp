// The string helpers and the memory routines on drawn texts.
#include "../text/text_model.h"
#include "fuzz.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Input input(data, size);
    const unsigned n = input.byte() % 24;
    const unsigned code = input.byte();
    const unsigned common = input.byte();  // characters; the code is signed where it is odd
    const int ch = common % 2 == 0 ? static_cast<int>(code) : static_cast<signed char>(code);
    const std::string s = input.chars(input.byte() % 48);
    std::string t = s.substr(0, common % 16) + input.chars(80);
    check_comparisons(s, t, n);
    check_comparisons(t, s, n);
    check_copies(s, n);
    check_edits(s);
    t.resize(s.size());
    check_memory_comparisons(s, t);
    check_searches(s, ch);
    check_moves(s, s.empty() ? 0 : code % 8 % s.size(), ch);
    return 0;
}
