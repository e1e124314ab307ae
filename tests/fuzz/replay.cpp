// Runs a fuzzer without libFuzzer: on the inputs in directories (the seeds and what ever found a
// fault), and on each of them with some bytes drawn anew.
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>

#include "fuzz.h"

namespace {

constexpr int kVariants = 40;  // of each input

Bytes variant(Bytes input, std::mt19937& random) {
    for (unsigned more = random() % 64; more != 0; --more) input.push_back(0);
    for (std::size_t changes = 1 + random() % (input.size() + 1); changes != 0; --changes)
        if (!input.empty()) input[random() % input.size()] = static_cast<unsigned char>(random());
    return input;
}

}  // namespace

int main(int argc, char** argv) {
    int inputs = 0;
    for (int i = 1; i < argc; ++i)
        for (const auto& file : std::filesystem::directory_iterator(argv[i])) {
            std::ifstream stream(file.path(), std::ios::binary);
            const Bytes input{std::istreambuf_iterator<char>(stream), {}};
            std::printf("%s\n", file.path().c_str());
            std::fflush(stdout);
            LLVMFuzzerTestOneInput(input.data(), input.size());
            std::mt19937 random(static_cast<unsigned>(input.size()));
            for (int k = 0; k < kVariants; ++k) {
                const Bytes changed = variant(input, random);
                LLVMFuzzerTestOneInput(changed.data(), changed.size());
            }
            ++inputs;
        }
    return inputs > 0 ? 0 : 1;
}
