// Thresholds, absolute values, squares, roots and reciprocals, beside the loops that
// compilers vectorise, and Eigen.

#include <cstddef>
#include <functional>
#include <random>
#include <string>
#include <vector>

#include "compare.h"
#include "peer_thresh.h"

namespace {

struct Blocks {
    std::vector<double> real, positive, dst;
    std::vector<ZCplx> cplx, zdst;
};

// Gaussian noise; of the complex values the parts are.
Blocks &blocks()
{
    static Blocks all = [] {
        constexpr std::size_t len = 1000000;
        std::mt19937_64 random(1);
        std::normal_distribution<double> noise;
        Blocks made;
        for (std::size_t i = 0; i < len; ++i) {
            const double u = noise(random);
            made.real.push_back(u);
            made.positive.push_back(u * u + 0.01);
            made.cplx.push_back({u, noise(random)});
        }
        made.dst.resize(len);
        made.zdst.resize(len);
        return made;
    }();
    return all;
}

// A row of calls that differ in their names alone: rvx, both loops, and Eigen where
// it has the function.
#define PEERS(ours, peer, ...)                                                                     \
    {                                                                                              \
        {"rvx", [=] { ours; }}, {"loop", [=] { loop::peer(__VA_ARGS__); }},                        \
        {                                                                                          \
            "fast-math loop", [=] { fast::peer(__VA_ARGS__); }                                     \
        }                                                                                          \
    }

void row(const char *task, int n, std::vector<Contender> contenders,
         const std::function<void()> &eigen = nullptr)
{
    if (eigen)
        contenders.push_back({"Eigen", eigen});
    compare(task, std::to_string(n), contenders);
}

#ifdef RVX_HAVE_EIGEN
#define EIGEN(...) [=] { eigen::__VA_ARGS__; }
#else
#define EIGEN(...) nullptr
#endif

void compareReal(int n)
{
    const double *src = blocks().real.data(), *positive = blocks().positive.data();
    double *dst = blocks().dst.data();
    row("square root", n, PEERS(rvxdbSqrt2(positive, dst, n), root, positive, dst, n));
#ifdef RVX_HAVE_EIGEN
    compare("square root, beside an estimate", std::to_string(n),
            {{"rvx", [=] { rvxdbSqrt2(positive, dst, n); }},
             {"Eigen", [=] { eigen::root(positive, dst, n); }}});
#endif
    row("absolute value", n, PEERS(rvxdbAbs2(src, dst, n), magnitude, src, dst, n),
        EIGEN(magnitude(src, dst, n)));
    row("square", n, PEERS(rvxdbSqr2(src, dst, n), square, src, dst, n),
        EIGEN(square(src, dst, n)));
    row("threshold, raise", n,
        PEERS(rvxdbThresh2(src, dst, n, 0.5, RVX_THRESH_RAISE), raise, src, dst, n, 0.5),
        EIGEN(raise(src, dst, n, 0.5)));
    row("threshold, lower to a negative one", n,
        PEERS(rvxdbThresh2(src, dst, n, -0.5, RVX_THRESH_LOWER), lower, src, dst, n, -0.5),
        EIGEN(lower(src, dst, n, -0.5)));
    row("reciprocal", n, PEERS(rvxdbInvThresh2(src, dst, n, 0.0), invert, src, dst, n),
        EIGEN(invert(src, dst, n)));
    row("reciprocal with threshold", n,
        PEERS(rvxdbInvThresh2(src, dst, n, 0.1), invert, src, dst, n, 0.1));
}

void compareCplx(int n)
{
    const ZCplx *src = blocks().cplx.data();
    ZCplx *dst = blocks().zdst.data();
    row("square root, complex", n, PEERS(rvxzbSqrt2(src, dst, n), root, src, dst, n),
        EIGEN(root(src, dst, n)));
    row("square, complex", n, PEERS(rvxzbSqr2(src, dst, n), square, src, dst, n),
        EIGEN(square(src, dst, n)));
    row("threshold, complex, one in fifty raised", n,
        PEERS(rvxzbThresh2(src, dst, n, 0.2, RVX_THRESH_RAISE), raise, src, dst, n, 0.2));
    row("threshold, complex, half of them lowered", n,
        PEERS(rvxzbThresh2(src, dst, n, 1.1774, RVX_THRESH_LOWER), lower, src, dst, n, 1.1774));
    row("reciprocal with threshold, complex", n,
        PEERS(rvxzbInvThresh2(src, dst, n, 0.2), invert, src, dst, n, 0.2));
}

} // namespace

void registerComparisons()
{
    limit("square root", 1.1,
          "The divider: 8.9 cycles for the roots of four numbers in 256 bits, of which ours takes "
          "9.0. Those of eight in the 512 bits of the fast-math loop take 15.8, 1.13 times less, "
          "and it looks neither for signs nor for special values.");
    limit("square root, beside an estimate", 1.6,
          "The divider. Eigen improves an estimate by Newton's method, which is up to 2.4 units "
          "in the last place off; ours is correctly rounded.");
    limit(
        "square root, complex", 0.9,
        "The divider: two roots and a division of four numbers take 22.3 cycles in 256 bits and "
        "20.3 in the 512 of the fast-math loop, which has no ways for squares out of range; ours "
        "takes 23.5. The last elements of a length that is no multiple of three are made in "
        "extended precision, 40 cycles each: 3 per cent at 256. One division for several elements "
        "would make results depend on their neighbours.");
    for (const char *task : {"reciprocal", "reciprocal with threshold"})
        limit(
            task, 0.95,
            "The divider: 4.5 cycles for four numbers in 256 bits, 9.0 for eight in 512: ours and "
            "the loops take that and no more, so that none is ahead of another. One division for "
            "several elements would make results depend on their neighbours.");
    limit("reciprocal with threshold, complex", 0.95, "The divider, and loads and stores.");
    for (const char *task : {"absolute value", "square", "square, complex", "threshold, raise",
                             "threshold, lower to a negative one"})
        limit(task, 1.05,
              "Loads and stores: a store of four numbers a cycle. A call costs 10 to 14 cycles on "
              "top, that of a loop 7 to 9, of 80 at 256 elements.");
    limit("threshold, complex, one in fifty raised", 1.05,
          "Loads and stores; divisions and roots where one of four moves.");
    limit("threshold, complex, half of them lowered", 1.05, "The divider.");
    for (int n : {256, 4096, 65536, 1000000}) {
        compareReal(n);
        compareCplx(n);
    }
}
