// Candidates for one piece of work, timed side by side.
#ifndef KTBASE_BENCH_TIMING_H
#define KTBASE_BENCH_TIMING_H

#include <functional>
#include <string>
#include <vector>

struct Candidate {
    std::string name;
    std::function<void()> run;
};

// Times the candidates in turn, round after round, and prints for each how many times as long as
// the first one it took: the median over the rounds, and the range between the first and the last
// tenth of them.
void compare(const std::string& kernel, const std::vector<Candidate>& candidates);

#endif
