// The windows of a drawn exponent.
#include <fuzzer/FuzzedDataProvider.h>

#include "../longarith/longarith_model.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    FuzzedDataProvider input(data, size);
    const auto width = input.ConsumeIntegralInRange<short>(1, 8);
    const auto unread = input.ConsumeIntegralInRange<short>(0, 7);  // bits of the last byte
    Bytes exponent = input.ConsumeBytes<unsigned char>(80);
    exponent.resize(std::max<std::size_t>(exponent.size(), 1));
    check_windows(exponent, static_cast<short>(8 * exponent.size() - unread), width);
    return 0;
}
