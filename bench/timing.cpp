#include "timing.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <ctime>

namespace {

constexpr int kRounds = 31;
constexpr double kSlice = 1.5e6;  // nanoseconds for each candidate in a round; at least one call

// Thread time, which contains less of the other load of the machine than wall time.
double now() {
    timespec t;
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &t);
    return static_cast<double>(t.tv_sec) * 1e9 + static_cast<double>(t.tv_nsec);
}

double time_of(const Candidate& candidate, long calls) {
    const double start = now();
    for (long i = 0; i < calls; ++i) candidate.run();
    return now() - start;
}

// The number of calls that fill a slice.
long calls_in_slice(const Candidate& candidate) {
    for (long calls = 1;; calls *= 2) {
        const double time = time_of(candidate, calls);
        if (time > kSlice / 4)
            return std::max(1L, static_cast<long>(static_cast<double>(calls) * kSlice / time));
    }
}

double quantile(std::vector<double> values, double part) {
    std::sort(values.begin(), values.end());
    return values[static_cast<std::size_t>(
        std::lround(part * static_cast<double>(values.size() - 1)))];
}

}  // namespace

void compare(const std::string& kernel, const std::vector<Candidate>& candidates) {
    const std::size_t count = candidates.size();
    std::vector<long> calls;
    calls.reserve(count);
    for (const Candidate& candidate : candidates) calls.push_back(calls_in_slice(candidate));
    std::vector<std::vector<double>> times(count);
    for (std::size_t round = 0; round < kRounds; ++round) {
        for (std::size_t i = 0; i < count; ++i) {
            const std::size_t k = (i + round) % count;
            times[k].push_back(time_of(candidates[k], calls[k]) / static_cast<double>(calls[k]));
        }
    }
    for (std::size_t k = 1; k < count; ++k) {
        std::vector<double> ratios;
        for (std::size_t round = 0; round < kRounds; ++round)
            ratios.push_back(times[k][round] / times[0][round]);
        std::printf("%-24s %-38s %6.2f  [%.2f..%.2f]\n", kernel.c_str(), candidates[k].name.c_str(),
                    quantile(ratios, 0.5), quantile(ratios, 0.1), quantile(ratios, 0.9));
    }
    std::fflush(stdout);
}
