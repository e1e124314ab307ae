// Digests of a drawn message in pieces of drawn sizes.
#include <fuzzer/FuzzedDataProvider.h>

#include "../digest/digest_model.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    FuzzedDataProvider input(data, size);
    const auto before = input.ConsumeIntegral<std::uint32_t>() << 6;  // whole blocks
    std::vector<std::size_t> sizes(input.ConsumeIntegralInRange(0, 7));
    for (std::size_t& piece : sizes) piece = input.ConsumeIntegral<std::uint8_t>();
    const auto message = input.ConsumeRemainingBytes<unsigned char>();
    check_sha(message, sizes, before);
    check_md5(message, sizes);
    return 0;
}
