// Runs a fuzzer without libFuzzer: on the files of folders, and on changed copies of each.
// usage: replay_FUZZER FOLDER...
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>

#include "fuzz.h"

int main(int argc, char** argv) {
    constexpr int kCopies = 500;
    std::mt19937 random;
    for (int i = 1; i < argc; ++i)
        for (const auto& file : std::filesystem::directory_iterator(argv[i])) {
            std::ifstream stream(file.path(), std::ios::binary);
            const Bytes input(std::istreambuf_iterator<char>(stream), {});
            LLVMFuzzerTestOneInput(input.data(), input.size());
            for (int copy = 0; copy < kCopies; ++copy) {
                Bytes changed = input;
                changed.resize(1 + random() % (2 * input.size() + 64));
                for (std::size_t changes = random() % changed.size(); changes != 0; --changes)
                    changed[random() % changed.size()] = static_cast<unsigned char>(random());
                LLVMFuzzerTestOneInput(changed.data(), changed.size());
            }
        }
    return 0;
}
