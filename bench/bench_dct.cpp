// Cosine transforms: powers of two beside FFTW's, other lengths beside the same transform
// as a product of a matrix by OpenBLAS.
//
// All work from one array of noise into another. The peers' plans and matrix are made
// beforehand; ours has its tables from the first call, takes a copy in each, and scales
// the results to an orthonormal transform, which FFTW's are not.

#include "compare.h"

#include <algorithm>
#include <cmath>
#include <memory>
#include <new>

#ifdef RVX_HAVE_FFTW
#include <fftw3.h>
#endif
#ifdef RVX_HAVE_OPENBLAS
#include <cblas.h>
#endif

#include "rvx.h"

namespace {

struct Release {
    void operator()(double *p) const { operator delete[](p, std::align_val_t{64}); }
};

using Samples = std::shared_ptr<double>;

Samples noise(int n)
{
    const auto count = static_cast<std::size_t>(n);
    auto *p = static_cast<double *>(operator new[](sizeof(double) * count, std::align_val_t{64}));
    for (int i = 0; i < n; ++i)
        p[i] = std::sin(1.0 + 1.7 * i);
    return Samples(p, Release{});
}

// Each thread's tables are for one length at a time: whatever ran before, the measured
// calls find theirs.
Contender ours(int len, int flags)
{
    const Samples src = noise(len), dst = noise(len);
    return {"rvx", [=] { rvxdDct(src.get(), dst.get(), len, flags); }};
}

#ifdef RVX_HAVE_FFTW
Contender fftw(int len, fftw_r2r_kind kind)
{
    const Samples src = noise(len), dst = noise(len);
    const unsigned effort = len <= 4096 ? FFTW_PATIENT : FFTW_MEASURE;
    const std::shared_ptr<fftw_plan_s> plan(
        fftw_plan_r2r_1d(len, src.get(), dst.get(), kind, effort), fftw_destroy_plan);
    const Samples data = noise(len); // planning overwrites
    std::copy(data.get(), data.get() + len, src.get());
    return {"FFTW", [=] {
                (void)src, (void)dst;
                fftw_execute(plan.get());
            }};
}
#endif

#ifdef RVX_HAVE_OPENBLAS
Contender matrix(int len, bool forward)
{
    const Samples src = noise(len), dst = noise(len), a = noise(len * len);
    for (int k = 0; k < len; ++k)
        for (int n = 0; n < len; ++n)
            a.get()[k * len + n] = std::sqrt((k == 0 ? 1.0 : 2.0) / len) *
                                   std::cos((2 * n + 1) * k * M_PI / (2 * len));
    return {"OpenBLAS", [=] {
                cblas_dgemv(CblasRowMajor, forward ? CblasNoTrans : CblasTrans, len, len, 1.0,
                            a.get(), len, src.get(), 1, 0.0, dst.get(), 1);
            }};
}
#endif

std::string task(const std::string &what, bool forward)
{
    return what + (forward ? ", forward" : ", inverse");
}

void comparePower(int len, bool forward)
{
    std::vector<Contender> contenders = {ours(len, forward ? RVX_FFT_FORWARD : RVX_FFT_INVERSE)};
#ifdef RVX_HAVE_FFTW
    contenders.push_back(fftw(len, forward ? FFTW_REDFT10 : FFTW_REDFT01));
#endif
    compare(task("cosine transform", forward), std::to_string(len), contenders);
}

void compareSums(int len, bool forward)
{
    std::vector<Contender> contenders = {ours(len, forward ? RVX_FFT_FORWARD : RVX_FFT_INVERSE)};
#ifdef RVX_HAVE_OPENBLAS
    contenders.push_back(matrix(len, forward));
#endif
    compare(task("cosine transform by sums", forward), std::to_string(len), contenders);
}

} // namespace

void registerComparisons()
{
    rvxSetErrMode(1);
    for (bool forward : {true, false}) {
        const std::string powers = task("cosine transform", forward);
        limit(powers, 0.7,
              "Stores, and the reversals and transpositions of the first and the last step; from "
              "8192 on the second cache. At 8 and 16 the private copy's allocation and release: "
              "half of the call at 8.");
        bar(powers, "8", 2.0);
        bar(powers, "16", 1.1);
        limit(task("cosine transform by sums", forward), 0.9,
              "At 1000 a load for each cosine, next to no two of which are neighbours: 0.19 ns a "
              "product forward. The inverse takes 0.30 and walks both halves of the table at once, "
              "80 KB, which the first cache does not hold; but at 300, where it does, it takes "
              "0.26.");
    }
    for (bool forward : {true, false}) {
        for (int len = 8; len <= 65536; len *= 2)
            comparePower(len, forward);
        for (int len : {100, 1000})
            compareSums(len, forward);
    }
}
