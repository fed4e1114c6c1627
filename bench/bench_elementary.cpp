// Elementary functions beside the C library's vector functions, SLEEF's, and the C
// library's one call for each element.

#include <cstddef>
#include <random>
#include <string>
#include <vector>

#include "compare.h"
#include "peer_elementary.h"
#include "rvx.h"

namespace {

using Function = void (*)(const double *, double *, int);

constexpr int longest = 1 << 20;

std::vector<double> noise(double least, double greatest)
{
    std::mt19937_64 random(1);
    std::uniform_real_distribution<double> uniform(least, greatest);
    std::vector<double> block(longest);
    for (double &x : block)
        x = uniform(random);
    return block;
}

void addFunction(const std::string &task, const std::vector<double> &source, double libmvecBar,
                 const std::string &reason, Function ours, Function vector, Function sleef,
                 Function scalar)
{
    static std::vector<double> result(longest);
    const double *x = source.data();
    double *y = result.data();
    for (int n : {256, 4096, 65536, longest})
        compare(task, std::to_string(n),
                {{"rvx", [=] { ours(x, y, n); }}, {"libmvec", [=] { vector(x, y, n); }}});
    limit(task, libmvecBar, reason);
#if defined(RVX_HAVE_SLEEF)
    compare(task + " beside SLEEF", "4096",
            {{"rvx", [=] { ours(x, y, 4096); }}, {"SLEEF", [=] { sleef(x, y, 4096); }}});
    limit(task + " beside SLEEF", 0.6, reason);
#else
    (void)sleef;
#endif
    compare(task + ", one by one", "4096",
            {{"rvx", [=] { ours(x, y, 4096); }}, {"C library", [=] { scalar(x, y, 4096); }}});
    limit(task + ", one by one", 0.2, reason);
}

void addDivisions()
{
    static const std::vector<double> numerators = noise(-1.0, 1.0), divisors = noise(1.0, 2.0);
    static std::vector<double> result(longest);
    const double *a = numerators.data(), *b = divisors.data();
    double *y = result.data();
    for (int n : {256, 4096, 65536, longest})
        compare(
            "division", std::to_string(n),
            {{"rvx", [=] { rvxdbDiv3(a, b, y, n); }}, {"loop", [=] { vectorDivide(a, b, y, n); }}});
    limit(
        "division", 0.95,
        "the divider: 4.5 cycles for four quotients in 256 bits, 9.0 for eight in 512, so that "
        "neither side can be ahead; ours takes 4.6 in the first cache and 4.8 beyond, with a test "
        "for zeros that the loop has not. A million elements take the memory's time");
}

} // namespace

void registerComparisons()
{
    static const std::vector<double> powers = noise(-20.0, 20.0);
    static const std::vector<double> positive = noise(0.01, 100.0);
    static const std::vector<double> slopes = noise(-4.0, 4.0);
    // What limits them: vector operations for four elements, of which four can run in a
    // cycle. The peer has fused ones and vectors of eight, each in two slots of a unit.
    // Cycles against a chain of additions of known length in the same run, on a Zen 4;
    // operations counted in the machine code, libmvec's by single steps.
    addFunction("exponential", powers, 0.95,
                "31 vector operations for four elements: 7.8 cycles at least, 11.8 taken. libmvec "
                "takes 11.2, with 25 for eight, 6 of them fused.",
                rvxdbExp2, vectorExp, sleefExp, scalarExp);
    addFunction(
        "natural logarithm", positive, 1.15,
        "43 vector operations for four elements: 10.6 cycles at least, 15.2 taken. libmvec "
        "takes 13.9, with 39 for eight, 6 of them fused; the C library one by one 60 to 67.",
        rvxdbLn2, vectorLn, sleefLn, scalarLn);
    addFunction("common logarithm", positive, 1.2,
                "46 vector operations for four elements: 11.5 cycles at least, 18.4 taken. libmvec "
                "takes 9.6, with 36 for eight, 11 of them fused: the least that the stated formula "
                "allows is the bar.",
                rvxdbLg2, vectorLg, sleefLg, scalarLg);
    addFunction("arctangent", slopes, 1.2,
                "52 vector operations for four elements: 13 cycles at least, 20.9 taken. libmvec "
                "takes 16.5, with 52 for eight, 12 of them fused.",
                rvxdbArctan2, vectorArctan, sleefArctan, scalarArctan);
    addDivisions();
}
