// Digests of a drawn message in pieces of drawn sizes.
#include "../digest/digest_model.h"
#include "fuzz.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Input input(data, size);
    const std::uint32_t before = input.byte() << 22;  // up to 2^30
    std::vector<std::size_t> sizes(input.byte() % 8);
    for (std::size_t& piece : sizes) piece = input.byte();
    const Bytes message = input.bytes(input.left.size());
    check_sha(message, sizes, before);
    check_md5(message, sizes);
    return 0;
}
