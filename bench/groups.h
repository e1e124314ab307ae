// The groups of measurements, one source each.
#ifndef KTBASE_BENCH_GROUPS_H
#define KTBASE_BENCH_GROUPS_H

#include <stdexcept>
#include <string>
#include <vector>

#include "peers.h"

using Bytes = std::vector<unsigned char>;

void bench_digests(const Peers& peers);
void bench_arithmetic(const Peers& peers);
void bench_conversions();
void bench_platform();

// Throws if a result is wrong.
inline void check(bool right, const std::string& what) {
    if (!right) throw std::runtime_error("wrong result: " + what);
}

// Pseudo-random bytes, the same in every run.
Bytes test_data(std::size_t size);

#endif
