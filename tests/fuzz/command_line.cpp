// Command lines of drawn programs, names and texts.
#include "../platform/command_line_model.h"
#include "fuzz.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Input input(data, size);
    const std::string program = input.text();
    const std::string name = input.text();
    check_command_line(program, name, input.text().substr(0, 4097));
    return 0;
}
