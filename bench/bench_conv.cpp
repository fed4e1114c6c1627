// Convolutions: by transforms beside overlap-save on FFTW with the block length that
// is best here, direct sums beside loops that fuse products and sums.
//
// The peer's plans, buffers and block length are made beforehand; ours takes its
// buffers in each call. Both transform the taps anew each time.

#include "compare.h"
#include "peer_conv.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstring>
#include <map>

#ifdef RVX_HAVE_FFTW
#include <fftw3.h>
#endif

namespace {

void fill(double &x, int i)
{
    x = std::sin(0.1 * i) + 0.5 * std::cos(1.7 * i);
}

void fill(ZCplx &z, int i)
{
    fill(z.re, 2 * i);
    fill(z.im, 2 * i + 1);
}

template <typename Element>
Element *signal(int n)
{
    auto *elements = new std::vector<Element>(static_cast<std::size_t>(n)); // for good
    for (int i = 0; i < n; ++i)
        fill((*elements)[static_cast<std::size_t>(i)], i);
    return elements->data();
}

#ifdef RVX_HAVE_FFTW

// A transform of n points to bins and back, of real or of complex samples.
struct RealPlans {
    int n, bins;
    double *block;
    ZCplx *spectrum;
    fftw_plan forward, inverse;

    explicit RealPlans(int length) : n(length), bins(length / 2 + 1)
    {
        block = fftw_alloc_real(static_cast<std::size_t>(n));
        spectrum = reinterpret_cast<ZCplx *>(fftw_alloc_complex(static_cast<std::size_t>(bins)));
        auto *z = reinterpret_cast<fftw_complex *>(spectrum);
        forward = fftw_plan_dft_r2c_1d(n, block, z, FFTW_MEASURE);
        inverse = fftw_plan_dft_c2r_1d(n, z, block, FFTW_MEASURE);
    }
};

struct CplxPlans {
    int n, bins;
    ZCplx *block;
    ZCplx *spectrum;
    fftw_plan forward, inverse;

    explicit CplxPlans(int length) : n(length), bins(length)
    {
        auto *z = fftw_alloc_complex(static_cast<std::size_t>(n));
        block = spectrum = reinterpret_cast<ZCplx *>(z);
        forward = fftw_plan_dft_1d(n, z, z, FFTW_FORWARD, FFTW_MEASURE);
        inverse = fftw_plan_dft_1d(n, z, z, FFTW_BACKWARD, FFTW_MEASURE);
    }
};

// Measured plans; of long ones as many as a quarter of a second allows.
template <typename Plans>
const Plans &plansOf(int n)
{
    static std::map<int, Plans> known;
    fftw_set_timelimit(0.25);
    const auto found = known.find(n);
    return found != known.end() ? found->second : known.emplace(n, n).first->second;
}

template <typename Plans, typename Element>
struct OverlapSave {
    const Plans &plans;
    std::vector<ZCplx> filter;

    explicit OverlapSave(int n)
        : plans(plansOf<Plans>(n)), filter(static_cast<std::size_t>(plans.bins))
    {
    }

    void load(const Element *src, int len)
    {
        std::memcpy(plans.block, src, static_cast<unsigned>(len) * sizeof(Element));
        std::memset(plans.block + len, 0, static_cast<unsigned>(plans.n - len) * sizeof(Element));
    }

    // 1/n is part of the filter, so that no pass is made for it.
    void run(const Element *x, int xLen, const Element *h, int hLen, Element *y)
    {
        load(h, hLen);
        fftw_execute(plans.forward);
        const double scale = 1.0 / plans.n;
        for (int k = 0; k < plans.bins; ++k)
            filter[static_cast<std::size_t>(k)] = {plans.spectrum[k].re * scale,
                                                   plans.spectrum[k].im * scale};
        const int history = hLen - 1, total = xLen + hLen - 1;
        int done = 0;
        while (done < total) {
            // The first block has no history: its samples start the buffer.
            const int skip = done == 0 ? 0 : history;
            const int start = done - skip;
            const int step = plans.n - history;
            load(x + start, std::min(done == 0 ? step : plans.n, xLen - start));
            fftw_execute(plans.forward);
            fast::multiply(filter.data(), plans.spectrum, plans.bins);
            fftw_execute(plans.inverse);
            const int count = std::min(total <= plans.n ? total : step, total - done);
            std::memcpy(y + done, plans.block + skip,
                        static_cast<unsigned>(count) * sizeof(Element));
            done += count;
        }
    }
};

double seconds(const std::function<void()> &run)
{
    double best = 1e9;
    for (int i = 0; i < 3; ++i) {
        const auto start = std::chrono::steady_clock::now();
        run();
        const std::chrono::duration<double> took = std::chrono::steady_clock::now() - start;
        best = std::min(best, took.count());
    }
    return best;
}

// Powers of two and three times such, from short blocks to one that holds all.
template <typename Plans, typename Element>
Contender bestOverlapSave(const Element *x, int xLen, const Element *h, int hLen, Element *y)
{
    std::function<void()> best;
    double bestTime = 1e9;
    int tries = 0;
    for (int n = 2; tries < 6; n *= 2)
        for (int length : {n, n / 2 * 3}) {
            if (length < 2 * hLen)
                continue;
            auto *peer = new OverlapSave<Plans, Element>(length);
            const std::function<void()> run = [=] { peer->run(x, xLen, h, hLen, y); };
            const double took = seconds(run);
            if (took < bestTime) {
                bestTime = took;
                best = run;
            }
            tries += length >= xLen + hLen - 1 ? 6 : 1;
        }
    return {"FFTW", best};
}

#else

// Names for the calls below; nothing is made of them.
struct RealPlans;
struct CplxPlans;

#endif

template <typename Plans, typename Element>
void compareTransforms(const char *task, int xLen, int hLen,
                       int (*ours)(const Element *, int, const Element *, int, Element *))
{
    const Element *x = signal<Element>(xLen);
    const Element *h = signal<Element>(hLen);
    Element *y = signal<Element>(xLen + hLen - 1);
    std::vector<Contender> contenders = {{"rvx", [=] { ours(x, xLen, h, hLen, y); }}};
#ifdef RVX_HAVE_FFTW
    Element *theirs = signal<Element>(xLen + hLen - 1);
    contenders.push_back(bestOverlapSave<Plans>(x, xLen, h, hLen, theirs));
#endif
    compare(task, std::to_string(xLen) + " by " + std::to_string(hLen), contenders);
}

template <typename X, typename H, typename Y>
void compareDirect(const char *task, int xLen, int hLen,
                   int (*ours)(const X *, int, const H *, int, Y *))
{
    const X *x = signal<X>(xLen);
    const H *h = signal<H>(hLen);
    Y *y = signal<Y>(xLen + hLen - 1);
    X *scratch = signal<X>(xLen + 2 * hLen + 64);
    compare(task, std::to_string(xLen) + " by " + std::to_string(hLen),
            {{"rvx", [=] { ours(x, xLen, h, hLen, y); }},
             {"fast loop", [=] { fast::conv(x, xLen, h, hLen, y, scratch); }}});
}

} // namespace

void registerComparisons()
{
    rvxSetErrMode(1);
    const int sizes[][2] = {{64, 64},        {200, 150},       {1000, 100},
                            {10000, 64},     {10000, 1000},    {100000, 1000},
                            {1000000, 1000}, {1000000, 10000}, {1000000, 100000}};
    for (const auto &size : sizes) {
        compareTransforms<RealPlans>("real", size[0], size[1], rvxdConv);
        compareTransforms<CplxPlans>("complex", size[0], size[1], rvxzConv);
    }
    limit("real", 1.15,
          "Transforms, memory for the long ones. At 200 by 150 the fixed tables take one "
          "transform of 512 points where the peer takes 384.");
    limit("complex", 1.15,
          "Transforms, memory for the long ones. The fixed tables sum 64 by 64 directly; one "
          "transform, which they do not take, needs 0.57 of that time.");

    compareDirect("direct, real", 16, 16, rvxdConv);
    compareDirect("direct, real", 64, 64, rvxdConv);
    compareDirect("direct, real", 400, 50, rvxdConv);
    compareDirect("direct, real", 2000, 14, rvxdConv);
    compareDirect("direct, real", 10000, 5, rvxdConv);
    compareDirect("direct, complex", 16, 16, rvxzConv);
    compareDirect("direct, complex", 64, 64, rvxzConv);
    compareDirect("direct, complex", 300, 18, rvxzConv);
    compareDirect("direct, complex", 10000, 5, rvxzConv);
    compareDirect("direct, complex by real", 64, 64, rvxzdConv);
    compareDirect("direct, complex by real", 250, 35, rvxzdConv);
    compareDirect("direct, complex by real", 10000, 5, rvxzdConv);
    compareDirect("direct, real by complex", 64, 64, rvxdzConv);
    compareDirect("direct, real by complex", 250, 35, rvxdzConv);
    compareDirect("direct, real by complex", 10000, 5, rvxdzConv);
    for (const char *task :
         {"direct, real", "direct, complex", "direct, complex by real", "direct, real by complex"})
        limit(task, 1.0,
              "One product and one sum each for a fused operation of the loop, which changes "
              "results; short operands pay for parting even elements from odd ones, and a call "
              "of one by one takes 55 to 68 cycles where the loop takes 39 to 49. Few taps: "
              "memory.");
}
