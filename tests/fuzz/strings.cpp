// The string helpers and the memory routines on drawn texts.
#include <fuzzer/FuzzedDataProvider.h>

#include "../text/text_model.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    FuzzedDataProvider input(data, size);
    const auto n = input.ConsumeIntegralInRange(0U, 23U);
    const auto ch = input.ConsumeIntegralInRange(-128, 255);
    const auto common = input.ConsumeIntegralInRange(0U, 15U);
    const std::string s = input.ConsumeRandomLengthString(47);
    std::string t = s.substr(0, common) + input.ConsumeRandomLengthString(80);
    check_comparisons(s, t, n);
    check_comparisons(t, s, n);
    check_copies(s, n);
    check_edits(s);
    t.resize(s.size());
    check_memory_comparisons(s, t);
    check_searches(s, ch);
    check_moves(s, std::min<std::size_t>(n, s.size()), ch);
    return 0;
}
