// The windows of a drawn exponent.
#include "../longarith/longarith_model.h"
#include "fuzz.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Input input(data, size);
    const auto width = static_cast<short>(1 + input.byte() % 8);
    const unsigned above = input.byte() % 8;  // bits of the last byte that are not read
    const Bytes exponent = input.bytes(1 + input.left.size() % 80);
    check_windows(exponent, static_cast<short>(8 * exponent.size() - above), width);
    return 0;
}
