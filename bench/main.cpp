// Compares the library with its limits, its kernel variants and general libraries.
// usage: ktbench [PEERS]    PEERS: a folder with 32-bit libraries, as script/bench makes it
#include <cstdio>

#include "groups.h"

Bytes test_data(std::size_t size) {
    Bytes data(size);
    std::uint32_t state = 1;
    for (unsigned char& byte : data) {
        state = state * 1664525 + 1013904223;
        byte = static_cast<unsigned char>(state >> 24);
    }
    return data;
}

int main(int argc, char** argv) {
    if (argc > 2) {
        std::fprintf(stderr, "usage: ktbench [PEERS]\n");
        return 2;
    }
    try {
        const Peers peers(argc == 2 ? argv[1] : "");
        std::puts("time of the other / time of the library: median, [first to last decile]");
        bench_digests(peers);
        bench_arithmetic(peers);
        bench_conversions();
        bench_platform();
    } catch (const std::exception& error) {
        std::fprintf(stderr, "ktbench: %s\n", error.what());
        return 1;
    }
    return 0;
}
