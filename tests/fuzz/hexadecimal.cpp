// Conversions of drawn text and bytes.
#include <fuzzer/FuzzedDataProvider.h>

#include "../text/text_model.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    FuzzedDataProvider input(data, size);
    check_hexadecimal_reading(input.ConsumeRandomLengthString().c_str());
    check_hexadecimal_writing(input.ConsumeRemainingBytes<unsigned char>());
    return 0;
}
