#include "compare.h"

#include <benchmark/benchmark.h>

void compare(const std::string &task, const std::string &size,
             const std::vector<Contender> &contenders)
{
    for (const Contender &contender : contenders) {
        const std::function<void()> run = contender.run;
        benchmark::RegisterBenchmark((task + "|" + size + "|" + contender.who).c_str(),
                                     [run](benchmark::State &state) {
                                         for (auto _ : state)
                                             run();
                                     });
    }
}

void limit(const std::string &task, double bar, const std::string &reason)
{
    benchmark::AddCustomContext("limit|" + task, std::to_string(bar) + "|" + reason);
}

int main(int argc, char **argv)
{
    registerComparisons();
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
