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
    // What limits them, in vector operations for four elements, of which four can run in a
    // cycle. The peer has fused ones and vectors of eight.
    addFunction("exponential", powers, 0.95, "31 vector operations for four elements", rvxdbExp2,
                vectorExp, sleefExp, scalarExp);
    addFunction("natural logarithm", positive, 1.15, "39 vector operations for four elements",
                rvxdbLn2, vectorLn, sleefLn, scalarLn);
    addFunction("common logarithm", positive, 1.2, "42 vector operations for four elements",
                rvxdbLg2, vectorLg, sleefLg, scalarLg);
    addFunction("arctangent", slopes, 1.2, "52 vector operations for four elements", rvxdbArctan2,
                vectorArctan, sleefArctan, scalarArctan);
    addDivisions();
}
