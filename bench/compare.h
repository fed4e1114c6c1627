// A benchmark program registers comparisons: one task at one size, ours and each
// peer's. bench/run.sh measures them interleaved and makes the table.

#ifndef RVX_BENCH_COMPARE_H
#define RVX_BENCH_COMPARE_H

#include <functional>
#include <string>
#include <vector>

struct Contender {
    std::string who; // "rvx", or the peer's name: "FFTW", "OpenBLAS", "Eigen", "loop"
    std::function<void()> run;
};

// Adds a row to the table. The first contender is "rvx". Sizes read as a user
// would say them: "order 10", "4096".
void compare(const std::string &task, const std::string &size,
             const std::vector<Contender> &contenders);

// Says of a task which ratio to the strongest peer it is meant to stay below and
// what stops it from being faster: bandwidth, divider, latency of a chain.
void limit(const std::string &task, double bar, const std::string &reason);

// Another bar for one size of the task.
void bar(const std::string &task, const std::string &size, double value);

// Each benchmark program's own part: registers its rows.
void registerComparisons();

// Makes the compiler believe that the memory behind p is read and written.
inline void escape(void *p)
{
    asm volatile("" : : "g"(p) : "memory");
}

#endif
