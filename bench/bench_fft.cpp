// Complex Fourier transforms beside FFTW's measured plans.
//
// Both sides work on arrays of their own, aligned alike. Rows in place work on
// zeros, which stay what they are however often they are transformed; the time of
// these transforms does not depend on the values.

#include "compare.h"

#include <cstring>
#include <memory>
#include <new>

#ifdef RVX_HAVE_FFTW
#include <fftw3.h>
#endif

#include "rvx.h"

namespace {

struct Release {
    void operator()(double *p) const { operator delete[](p, std::align_val_t{64}); }
};

using Samples = std::shared_ptr<double>;

Samples zeros(int n)
{
    const auto count = static_cast<std::size_t>(n);
    auto *p = static_cast<double *>(operator new[](sizeof(double) * count, std::align_val_t{64}));
    std::memset(p, 0, sizeof(double) * count);
    return Samples(p, Release{});
}

ZCplx *cplx(const Samples &samples)
{
    return reinterpret_cast<ZCplx *>(samples.get());
}

#ifdef RVX_HAVE_FFTW
using Plan = std::shared_ptr<fftw_plan_s>;

fftw_complex *fftw(const Samples &samples)
{
    return reinterpret_cast<fftw_complex *>(samples.get());
}

// Planning overwrites the arrays; what it leaves there is cleared.
void clear(const Samples &samples, int n)
{
    std::memset(samples.get(), 0, sizeof(double) * static_cast<std::size_t>(n));
}

Plan plan(int n, const Samples &in, const Samples &out, int sign)
{
    Plan made(fftw_plan_dft_1d(n, fftw(in), fftw(out), sign, FFTW_MEASURE), fftw_destroy_plan);
    clear(in, 2 * n);
    clear(out, 2 * n);
    return made;
}

Plan splitPlan(int n, const Samples &re, const Samples &im, const Samples &reOut,
               const Samples &imOut)
{
    const fftw_iodim length{n, 1, 1};
    Plan made(fftw_plan_guru_split_dft(1, &length, 0, nullptr, re.get(), im.get(), reOut.get(),
                                       imOut.get(), FFTW_MEASURE),
              fftw_destroy_plan);
    for (const Samples &samples : {re, im, reOut, imOut})
        clear(samples, n);
    return made;
}
#endif

std::string size(int order)
{
    return "order " + std::to_string(order);
}

// Short and long transforms have limits, and bars, of their own.
std::string task(const std::string &what, int order)
{
    return order < 6 ? "short " + what : order < 19 ? what : "long " + what;
}

void compareNotInPlace(int order)
{
    const int n = 1 << order;
    std::vector<Contender> contenders;
    const Samples in = zeros(2 * n);
    const Samples out = zeros(2 * n);
    contenders.push_back({"rvx", [=] { rvxzFftNip(cplx(in), cplx(out), order, RVX_FFT_FORWARD); }});
#ifdef RVX_HAVE_FFTW
    const Samples peerIn = zeros(2 * n);
    const Samples peerOut = zeros(2 * n);
    const Plan peer = plan(n, peerIn, peerOut, FFTW_FORWARD);
    contenders.push_back({"FFTW", [=] {
                              (void)peerIn, (void)peerOut;
                              fftw_execute(peer.get());
                          }});
#endif
    compare(task("complex FFT, not in place", order), size(order), contenders);
}

void compareInPlace(int order)
{
    const int n = 1 << order;
    std::vector<Contender> contenders;
    const Samples data = zeros(2 * n);
    contenders.push_back({"rvx", [=] { rvxzFft(cplx(data), order, RVX_FFT_FORWARD); }});
#ifdef RVX_HAVE_FFTW
    const Samples peerData = zeros(2 * n);
    const Plan peer = plan(n, peerData, peerData, FFTW_FORWARD);
    contenders.push_back({"FFTW", [=] {
                              (void)peerData;
                              fftw_execute(peer.get());
                          }});
#endif
    compare(task("complex FFT, in place", order), size(order), contenders);
}

// There and back on one array; the other library may have a second one.
void compareThereAndBack(int order)
{
    const int n = 1 << order;
    std::vector<Contender> contenders;
    const Samples data = zeros(2 * n);
    contenders.push_back({"rvx", [=] {
                              rvxzFft(cplx(data), order, RVX_FFT_FORWARD | RVX_FFT_OUT_BIT_REV);
                              rvxzFft(cplx(data), order, RVX_FFT_INVERSE | RVX_FFT_IN_BIT_REV);
                          }});
#ifdef RVX_HAVE_FFTW
    const Samples peerData = zeros(2 * n);
    const Samples spectrum = zeros(2 * n);
    const Plan forward = plan(n, peerData, spectrum, FFTW_FORWARD);
    const Plan back = plan(n, spectrum, peerData, FFTW_BACKWARD);
    contenders.push_back({"FFTW", [=] {
                              (void)peerData, (void)spectrum;
                              fftw_execute(forward.get());
                              fftw_execute(back.get());
                          }});
    const Plan forwardInPlace = plan(n, peerData, peerData, FFTW_FORWARD);
    const Plan backInPlace = plan(n, peerData, peerData, FFTW_BACKWARD);
    contenders.push_back({"FFTW in place", [=] {
                              (void)peerData;
                              fftw_execute(forwardInPlace.get());
                              fftw_execute(backInPlace.get());
                          }});
#endif
    compare("complex FFT to bit-reversed order and back", size(order), contenders);
}

void compareSplit(int order)
{
    const int n = 1 << order;
    std::vector<Contender> contenders;
    const Samples re = zeros(n);
    const Samples im = zeros(n);
    const Samples reOut = zeros(n);
    const Samples imOut = zeros(n);
    contenders.push_back({"rvx", [=] {
                              rvxzrFftNip(re.get(), im.get(), reOut.get(), imOut.get(), order,
                                          RVX_FFT_FORWARD);
                          }});
#ifdef RVX_HAVE_FFTW
    const Samples peerRe = zeros(n);
    const Samples peerIm = zeros(n);
    const Samples peerReOut = zeros(n);
    const Samples peerImOut = zeros(n);
    const Plan peer = splitPlan(n, peerRe, peerIm, peerReOut, peerImOut);
    contenders.push_back({"FFTW", [=] {
                              (void)peerRe, (void)peerIm, (void)peerReOut, (void)peerImOut;
                              fftw_execute(peer.get());
                          }});
#endif
    compare("complex FFT, split", size(order), contenders);
}

} // namespace

void registerComparisons()
{
    rvxSetErrMode(1);
    const char *calls =
        "the checks, the look-up of the tables and the choice of a path, 120 to 145 "
        "instructions in front of 43 for 4 points and 156 for 16";
    limit("short complex FFT, not in place", 1.5, calls);
    limit("short complex FFT, in place", 1.5, calls);
    limit("complex FFT, not in place", 1.0,
          "up to order 9 the two addition pipes, which shuffles share; above, the second cache");
    limit("complex FFT, in place", 1.15, "as not in place; the reversal rides on the first pass");
    const char *sweeps = "memory: a sweep for the first pass, one for the stretches of 8192 points "
                         "and one for every two or three radix-2 passes beyond them";
    limit("long complex FFT, not in place", 1.0, sweeps);
    limit("long complex FFT, in place", 1.0, sweeps);
    limit("complex FFT to bit-reversed order and back", 0.85,
          "up to order 10 the shuffles that put four neighbours into lanes");
    limit("complex FFT, split", 1.0, "as interleaved");
    for (int order = 2; order <= 20; ++order) {
        compareNotInPlace(order);
        compareInPlace(order);
        if (order >= 6) {
            compareThereAndBack(order);
            compareSplit(order);
        }
    }
}
