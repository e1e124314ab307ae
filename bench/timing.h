// Measures candidates for the same work in one process.
#ifndef KTBASE_BENCH_TIMING_H
#define KTBASE_BENCH_TIMING_H

#include <functional>
#include <string>
#include <vector>

struct Candidate {
    std::string name;
    std::function<void()> run;
};

// Times each candidate once in every round. Prints for each the ratio of its time to that of the
// first candidate: the median over the rounds, the 10 % quantile and the 90 % quantile.
void compare(const std::string& kernel, const std::vector<Candidate>& candidates);

#endif
