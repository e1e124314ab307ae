// Runs a fuzzer on the inputs in directories, without libFuzzer: the seeds and what ever found a
// fault.
#include <filesystem>
#include <fstream>
#include <iterator>

#include "fuzz.h"

int main(int argc, char** argv) {
    int inputs = 0;
    for (int i = 1; i < argc; ++i)
        for (const auto& file : std::filesystem::directory_iterator(argv[i])) {
            std::ifstream stream(file.path(), std::ios::binary);
            const Bytes input{std::istreambuf_iterator<char>(stream), {}};
            std::printf("%s\n", file.path().c_str());
            std::fflush(stdout);
            LLVMFuzzerTestOneInput(input.data(), input.size());
            ++inputs;
        }
    return inputs > 0 ? 0 : 1;
}
