// Command lines of drawn programs, names and texts.
#include <fuzzer/FuzzedDataProvider.h>

#include "../platform/command_line_model.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    FuzzedDataProvider input(data, size);
    const std::string program = input.ConsumeRandomLengthString();
    const std::string name = input.ConsumeRandomLengthString();
    check_command_line(program.c_str(), name.c_str(), input.ConsumeRandomLengthString(4097));
    return 0;
}
