#include "compare.h"

#include <benchmark/benchmark.h>

namespace {

#if defined(__clang__)
constexpr const char *compilerName = "Clang " __clang_version__;
#else
constexpr const char *compilerName = "GCC " __VERSION__;
#endif

// What the table's head tells, beside what the benchmark library knows itself.
void describe()
{
    benchmark::AddCustomContext("compiler", compilerName);
#ifdef RVX_HAVE_FFTW
    benchmark::AddCustomContext("peer|FFTW", RVX_HAVE_FFTW);
#else
    benchmark::AddCustomContext("peer|FFTW", "");
#endif
#ifdef RVX_HAVE_OPENBLAS
    benchmark::AddCustomContext("peer|OpenBLAS", RVX_HAVE_OPENBLAS);
#else
    benchmark::AddCustomContext("peer|OpenBLAS", "");
#endif
#ifdef RVX_HAVE_EIGEN
    benchmark::AddCustomContext("peer|Eigen", RVX_HAVE_EIGEN);
#else
    benchmark::AddCustomContext("peer|Eigen", "");
#endif
#ifdef RVX_HAVE_GSL
    benchmark::AddCustomContext("peer|GSL", RVX_HAVE_GSL);
#else
    benchmark::AddCustomContext("peer|GSL", "");
#endif
#ifdef RVX_HAVE_OPENCV
    benchmark::AddCustomContext("peer|OpenCV", RVX_HAVE_OPENCV);
#else
    benchmark::AddCustomContext("peer|OpenCV", "");
#endif
}

} // namespace

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

void bar(const std::string &task, const std::string &size, double value)
{
    benchmark::AddCustomContext("bar|" + task + "|" + size, std::to_string(value));
}

int main(int argc, char **argv)
{
    describe();
    registerComparisons();
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
