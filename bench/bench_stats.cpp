// Dot products, statistics and norms beside OpenBLAS, Eigen and plain loops.

#include <cstddef>
#include <random>
#include <string>
#include <vector>

#include "compare.h"
#include "peer_stats.h"
#include "rvx.h"

#ifdef RVX_HAVE_OPENBLAS
#include <cblas.h>
#endif

namespace {

struct Blocks {
    std::vector<double> a, b, result;
    std::vector<ZCplx> za, zb;
};

// Noise, and a second block that resembles the first by half.
Blocks &blocks()
{
    static Blocks all = [] {
        constexpr std::size_t len = 1 << 20;
        std::mt19937_64 random(1);
        std::normal_distribution<double> noise;
        Blocks made;
        for (std::size_t i = 0; i < len; ++i) {
            const double u = noise(random), v = noise(random);
            made.a.push_back(u);
            made.b.push_back(0.5 * u + v);
            made.za.push_back({u, v});
            made.zb.push_back({v, 0.5 * u + v});
        }
        made.result.resize(len);
        return made;
    }();
    return all;
}

template <typename Result>
void keep(Result result)
{
    escape(&result);
}

void addDots(int n, const std::string &size)
{
    const double *a = blocks().a.data(), *b = blocks().b.data();
    const ZCplx *za = blocks().za.data(), *zb = blocks().zb.data();
    std::vector<Contender> real = {{"rvx", [=] { keep(rvxdDotProd(a, b, n)); }}};
    std::vector<Contender> cplx = {{"rvx", [=] { keep(rvxzDotProd(za, zb, n)); }}};
#ifdef RVX_HAVE_OPENBLAS
    openblas_set_num_threads(1);
    real.push_back({"OpenBLAS", [=] { keep(cblas_ddot(n, a, 1, b, 1)); }});
    cplx.push_back({"OpenBLAS", [=] {
                        ZCplx result;
                        cblas_zdotu_sub(n, za, 1, zb, 1, &result);
                        keep(result);
                    }});
#endif
    real.push_back({"loop, extended", [=] { keep(extendedDot(a, b, n)); }});
    const std::string where = n > 100000 ? ", memory" : "";
    compare("dot product" + where, size, real);
    compare("dot product, complex" + where, size, cplx);
}

// ours and the peers of one kind of reduction
void addReduction(const std::string &task, int n, const std::string &size, double (*ours)(int),
                  double (*fast)(const double *, int), double (*eigen)(const double *, int))
{
    const double *a = blocks().a.data();
    std::vector<Contender> contenders = {{"rvx", [=] { keep(ours(n)); }},
                                         {"loop", [=] { keep(fast(a, n)); }}};
#ifdef RVX_HAVE_EIGEN
    contenders.push_back({"Eigen", [=] { keep(eigen(a, n)); }});
#else
    (void)eigen;
#endif
    compare(task + (n > 100000 ? ", memory" : ""), size, contenders);
}

double ourMean(int n)
{
    return rvxdMean(blocks().a.data(), n);
}

double ourDeviation(int n)
{
    return rvxdStdDev(blocks().a.data(), n);
}

double ourL1(int n)
{
    return rvxdNorm(blocks().a.data(), nullptr, n, RVX_NORM_L1);
}

double ourL2(int n)
{
    return rvxdNorm(blocks().a.data(), nullptr, n, RVX_NORM_L2);
}

double ourLargest(int n)
{
    return rvxdNorm(blocks().a.data(), nullptr, n, RVX_NORM_C);
}

double ourMax(int n)
{
    return rvxdMax(blocks().a.data(), n);
}

double ourMaxExt(int n)
{
    int position = 0;
    return rvxdMaxExt(blocks().a.data(), n, &position) + position;
}

double ourMinExt(int n)
{
    int position = 0;
    return rvxdMinExt(blocks().a.data(), n, &position) + position;
}

void addSums(int n, const std::string &size)
{
    addReduction("mean", n, size, ourMean, loopMean, eigenMean);
    addReduction("standard deviation", n, size, ourDeviation, loopDeviation, eigenDeviation);
    addReduction("L1 norm", n, size, ourL1, loopL1, eigenL1);
    addReduction("L2 norm", n, size, ourL2, loopL2, eigenL2);
    addReduction("C norm", n, size, ourLargest, loopLargest, eigenLargest);
    addReduction("largest element", n, size, ourMax, loopMax, eigenMax);
    addReduction("largest element with position", n, size, ourMaxExt, loopMaxPosition,
                 eigenMaxPosition);
    addReduction("smallest element with position", n, size, ourMinExt, loopMinPosition,
                 eigenMinPosition);
    const double *a = blocks().a.data();
    double *result = blocks().result.data();
    std::vector<Contender> normalize = {{"rvx", [=] { rvxdbNormalize(a, result, n, 0.25, 3.0); }},
                                        {"loop", [=] { loopNormalize(a, result, n, 0.25, 3.0); }}};
#ifdef RVX_HAVE_EIGEN
    normalize.push_back({"Eigen", [=] { eigenNormalize(a, result, n, 0.25, 3.0); }});
#endif
    compare("normalize", size, normalize);
}

} // namespace

void registerComparisons()
{
    addDots(4096, "4096");
    addDots(1 << 20, "1048576");
    addSums(4096, "4096");
    addSums(1 << 20, "1048576");
    const char *const adds = "eight additions for each product, which carry twice the precision";
    limit("dot product", 5, adds);
    limit("dot product, complex", 8, adds);
    limit("dot product, memory", 2.1, adds);
    limit("dot product, complex, memory", 2.1, adds);
    limit("mean", 4, "four additions for each element instead of one");
    limit("mean, memory", 2.5, "the same");
    limit("standard deviation", 5, "eleven additions for each element instead of three");
    limit("standard deviation, memory", 2.5, "the same");
    limit("L1 norm", 8, "four additions for each element instead of one");
    limit("L1 norm, memory", 2.5, "the same");
    limit("L2 norm", 7, "seven additions for each element instead of one");
    limit("L2 norm, memory", 2.5, "the same; a million elements are in the last-level cache");
    limit("largest element", 1.3, "loads, and one integer comparison more than the peer");
    limit("largest element, memory", 1.3, "bandwidth");
    limit("largest element with position", 0.3, "loads");
    limit("largest element with position, memory", 0.3, "bandwidth");
    limit("smallest element with position", 0.3, "loads, and the watch for NaNs");
    limit("smallest element with position, memory", 0.3, "bandwidth");
    limit("C norm", 1.05, "loads");
    limit("C norm, memory", 1.15, "bandwidth");
    limit("normalize", 1.05, "loads and stores");
}
