// Runs a fuzzer without libFuzzer, on the inputs in directories (the seeds and what ever found a
// fault) and on variants of each. With several threads each has variants of its own, and the model
// tells what one of them does to another.
// usage: replay_FUZZER THREADS VARIANTS DIRECTORY...
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <thread>

#include "fuzz.h"

namespace {

void replay(const std::vector<Bytes>& inputs, int variants, unsigned seed) {
    std::mt19937 random(seed);
    for (const Bytes& input : inputs) {
        LLVMFuzzerTestOneInput(input.data(), input.size());
        for (int i = 0; i < variants; ++i) {
            Bytes changed = input;
            changed.resize(1 + random() % (2 * input.size() + 64));
            for (std::size_t changes = random() % changed.size(); changes != 0; --changes)
                changed[random() % changed.size()] = static_cast<unsigned char>(random());
            LLVMFuzzerTestOneInput(changed.data(), changed.size());
        }
    }
}

}  // namespace

int main(int argc, char** argv) {
    std::vector<Bytes> inputs;
    for (int i = 3; i < argc; ++i)
        for (const auto& file : std::filesystem::directory_iterator(argv[i])) {
            std::ifstream stream(file.path(), std::ios::binary);
            inputs.emplace_back(std::istreambuf_iterator<char>(stream),
                                std::istreambuf_iterator<char>());
        }
    require(!inputs.empty(), "inputs");
    std::vector<std::thread> threads;
    for (int i = 0; i < std::atoi(argv[1]); ++i)
        threads.emplace_back(replay, inputs, std::atoi(argv[2]), i);
    for (std::thread& thread : threads) thread.join();
    return 0;
}
