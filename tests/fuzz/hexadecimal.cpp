// Conversions of drawn text and bytes.
#include "../text/text_model.h"
#include "fuzz.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Input input(data, size);
    check_hexadecimal_reading(input.text());
    check_hexadecimal_writing(input.bytes(input.left.size()));
    return 0;
}
