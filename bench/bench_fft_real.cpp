// Real transforms and their inverses beside FFTW's measured plans.
//
// Spectra and in-place data are all zeros, which stay zeros however often a
// transform runs over them; no time here depends on the values.

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

#include "compare.h"
#include "rvx.h"

#ifdef RVX_HAVE_FFTW
#include <fftw3.h>
#endif

namespace {

constexpr int RVX_UNSCALED_INVERSE = RVX_FFT_INVERSE | RVX_FFT_NO_SCALE; // as FFTW's is

// Room for a spectrum, each array on a cache line of its own.
struct alignas(64) Line {
    double values[8];
};

std::shared_ptr<Line[]> zeros(int order)
{
    const std::size_t doubles = (std::size_t{1} << order) + 2;
    return std::shared_ptr<Line[]>(new Line[doubles / 8 + 1]());
}

// What a contender works on. Each has its own, so that none finds the caches
// filled by another.
struct Arrays {
    explicit Arrays(int order) : inBlock(zeros(order)), outBlock(zeros(order)) {}

    double *in() const { return inBlock[0].values; }
    double *out() const { return outBlock[0].values; }

    std::shared_ptr<Line[]> inBlock;
    std::shared_ptr<Line[]> outBlock;
};

#ifdef RVX_HAVE_FFTW

fftw_complex *bins(double *spectrum)
{
    return reinterpret_cast<fftw_complex *>(spectrum);
}

Contender fftw(const char *who, const Arrays &arrays, fftw_plan plan)
{
    return {who, [arrays, plan] { fftw_execute(plan); }};
}

#endif

void compareOrder(int order)
{
    const std::string size = "order " + std::to_string(order);
    const Arrays ours(order);
    std::vector<Contender> realNip = {
        {"rvx", [=] { rvxdRealFftNip(ours.in(), ours.out(), order, RVX_FFT_FORWARD); }}};
    std::vector<Contender> real = {
        {"rvx", [=] { rvxdRealFft(ours.in(), order, RVX_FFT_FORWARD); }}};
    std::vector<Contender> ccsNip = {
        {"rvx", [=] { rvxdCcsFftNip(ours.in(), ours.out(), order, RVX_UNSCALED_INVERSE); }}};
    std::vector<Contender> ccsLoses = ccsNip;
    std::vector<Contender> ccs = {
        {"rvx", [=] { rvxdCcsFft(ours.in(), order, RVX_UNSCALED_INVERSE); }}};
#ifdef RVX_HAVE_FFTW
    const Arrays theirs(order);
    const int n = 1 << order;
    double *in = theirs.in();
    double *out = theirs.out();
    realNip.push_back(fftw("FFTW", theirs, fftw_plan_dft_r2c_1d(n, in, bins(out), FFTW_MEASURE)));
    real.push_back(fftw("FFTW", theirs, fftw_plan_dft_r2c_1d(n, in, bins(in), FFTW_MEASURE)));
    // Like ours, this one keeps its input.
    ccsNip.push_back(
        fftw("FFTW", theirs,
             fftw_plan_dft_c2r_1d(n, bins(in), out, FFTW_MEASURE | FFTW_PRESERVE_INPUT)));
    ccsNip.push_back(
        fftw("FFTW, input lost", theirs, fftw_plan_dft_c2r_1d(n, bins(in), out, FFTW_MEASURE)));
    ccs.push_back(fftw("FFTW", theirs, fftw_plan_dft_c2r_1d(n, bins(in), in, FFTW_MEASURE)));
    // Measuring has left values of its own.
    std::fill(in, in + n + 2, 0.0);
    std::fill(out, out + n + 2, 0.0);
#endif
    compare("real to spectrum", size, realNip);
    compare("real to spectrum, in place", size, real);
    compare("spectrum to real", size, ccsNip);
    compare("spectrum to real, in place", size, ccs);
    compare("spectrum to real, the peer's input lost", size, ccsLoses);
}

} // namespace

void registerComparisons()
{
    const char *const reason =
        "half a complex transform and one pass of 26 operations per 8 values";
    for (const char *task : {"real to spectrum", "real to spectrum, in place", "spectrum to real",
                             "spectrum to real, in place"})
        limit(task, 1.0, reason);
    limit("spectrum to real, the peer's input lost", 1.1,
          "the same calls; ours keep their input and write all of the output once more");
    // FFTW measures for most of a minute what it makes of the largest.
    for (int order = 6; order <= 20; ++order)
        compareOrder(order);
}
