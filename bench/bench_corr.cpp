// Correlations: by transforms beside blocks on FFTW, whose products are summed before one
// inverse transform, with the block length that is best here; few lags beside loops that
// fuse products and sums.
//
// The peer's plans, buffers and block length are made beforehand; ours takes its
// buffers, and builds its tables, in each call.

#include "compare.h"
#include "peer_corr.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstring>
#include <map>

#ifdef RVX_HAVE_FFTW
#include <fftw3.h>
#endif

#include "rvx.h"

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
    using Element = double;
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
    void transform(ZCplx *dst) const
    {
        fftw_execute_dft_r2c(forward, block, reinterpret_cast<fftw_complex *>(dst));
    }
};

struct CplxPlans {
    using Element = ZCplx;
    int n, bins;
    ZCplx *block;
    ZCplx *spectrum;
    fftw_plan forward, inverse;

    explicit CplxPlans(int length) : n(length), bins(length)
    {
        const auto points = static_cast<std::size_t>(n);
        auto *in = fftw_alloc_complex(points);
        auto *out = fftw_alloc_complex(points);
        block = reinterpret_cast<ZCplx *>(in);
        spectrum = reinterpret_cast<ZCplx *>(out);
        forward = fftw_plan_dft_1d(n, in, out, FFTW_FORWARD, FFTW_MEASURE);
        inverse = fftw_plan_dft_1d(n, out, in, FFTW_BACKWARD, FFTW_MEASURE);
    }
    void transform(ZCplx *dst) const
    {
        fftw_execute_dft(forward, reinterpret_cast<fftw_complex *>(block),
                         reinterpret_cast<fftw_complex *>(dst));
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

template <typename Element>
struct Task {
    const Element *src1;
    int len1;
    const Element *src2;
    int len2;
    Element *dst;
    int loLag, lags;
};

template <typename Plans>
struct SummedBlocks {
    using Element = typename Plans::Element;
    const Plans &plans;
    ZCplx *first, *second;

    explicit SummedBlocks(int n) : plans(plansOf<Plans>(n))
    {
        const auto bins = static_cast<std::size_t>(plans.bins);
        first = reinterpret_cast<ZCplx *>(fftw_alloc_complex(bins));
        second = reinterpret_cast<ZCplx *>(fftw_alloc_complex(bins));
    }

    // What there is of src from `begin` to `end`, zeros where there is nothing.
    void load(const Element *src, int len, int begin, int end)
    {
        const int from = std::clamp(-begin, 0, plans.n);
        const int to = std::clamp(std::min(len, end) - begin, from, plans.n);
        std::memset(plans.block, 0, static_cast<unsigned>(from) * sizeof(Element));
        std::memcpy(plans.block + from, src + begin + from,
                    static_cast<unsigned>(to - from) * sizeof(Element));
        std::memset(plans.block + to, 0, static_cast<unsigned>(plans.n - to) * sizeof(Element));
    }

    void run(const Task<Element> &task)
    {
        const int step = plans.n - task.lags + 1;
        std::memset(plans.spectrum, 0, static_cast<unsigned>(plans.bins) * sizeof(ZCplx));
        for (int begin = 0; begin < task.len1; begin += step) {
            const int begin2 = begin + task.loLag;
            if (begin2 >= task.len2 || begin2 + plans.n <= 0)
                continue;
            load(task.src1, task.len1, begin, begin + step);
            plans.transform(first);
            load(task.src2, task.len2, begin2, begin2 + plans.n);
            plans.transform(second);
            fast::addProducts(first, second, plans.spectrum, plans.bins);
        }
        fftw_execute(plans.inverse);
        const double scale = 1.0 / plans.n;
        const auto *values = reinterpret_cast<const double *>(plans.block);
        auto *dst = reinterpret_cast<double *>(task.dst);
        const int count = task.lags * static_cast<int>(sizeof(Element) / sizeof(double));
        for (int j = 0; j < count; ++j)
            dst[j] = values[j] * scale;
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
template <typename Plans>
Contender bestBlocks(const Task<typename Plans::Element> &task)
{
    std::function<void()> best;
    double bestTime = 1e9;
    for (int n = 16; n < 4 * (task.len1 + task.lags) && n <= 64 * task.lags; n *= 2)
        for (int length : {n, n / 2 * 3}) {
            if (length < task.lags + task.lags / 8)
                continue;
            auto *peer = new SummedBlocks<Plans>(length);
            const std::function<void()> run = [=] { peer->run(task); };
            const double took = seconds(run);
            if (took < bestTime) {
                bestTime = took;
                best = run;
            }
        }
    return {"FFTW", best};
}

#else

// Names for the calls below; nothing is made of them.
struct RealPlans;
struct CplxPlans;

#endif

std::string sizeOf(int len, int lags)
{
    return std::to_string(len) + ", " + std::to_string(lags) + " lags";
}

template <typename Plans, typename Element>
void compareCross(const char *name, int len, int lags,
                  void (*ours)(const Element *, int, const Element *, int, Element *, int, int))
{
    const int loLag = -lags / 2, hiLag = loLag + lags - 1;
    const Element *src1 = signal<Element>(len);
    const Element *src2 = signal<Element>(len);
    Element *dst = signal<Element>(lags);
    std::vector<Contender> contenders = {
        {"rvx", [=] { ours(src1, len, src2, len, dst, loLag, hiLag); }}};
#ifdef RVX_HAVE_FFTW
    contenders.push_back(
        bestBlocks<Plans>({src1, len, src2, len, signal<Element>(lags), loLag, lags}));
#endif
    compare(name, sizeOf(len, lags), contenders);
}

template <typename Plans, typename Element>
void compareAuto(const char *name, int len, int lags,
                 void (*ours)(const Element *, int, Element *, int, int))
{
    const Element *src = signal<Element>(len);
    Element *dst = signal<Element>(lags);
    std::vector<Contender> contenders = {
        {"rvx", [=] { ours(src, len, dst, lags, RVX_AUTOCORR_NORMAL); }}};
#ifdef RVX_HAVE_FFTW
    contenders.push_back(bestBlocks<Plans>({src, len, src, len, signal<Element>(lags), 0, lags}));
#endif
    compare(name, sizeOf(len, lags), contenders);
}

// src2 is the longer one, so that all lags have as many products.
template <typename A, typename B, typename Value>
void compareFew(const char *name, int len,
                void (*ours)(const A *, int, const B *, int, Value *, int, int))
{
    const A *src1 = signal<A>(len);
    const B *src2 = signal<B>(len + 15);
    Value *dst = signal<Value>(16);
    Value *theirs = signal<Value>(16);
    compare(name, sizeOf(len, 16),
            {{"rvx", [=] { ours(src1, len, src2, len + 15, dst, 0, 15); }},
             {"fast loop", [=] { fast::corr16(src1, src2, len, theirs); }}});
}

const char *const CROSS = "cross-correlation, real";
const char *const CROSS_COMPLEX = "cross-correlation, complex";
const char *const AUTO = "autocorrelation, real";
const char *const AUTO_COMPLEX = "autocorrelation, complex";
const char *const FEW = "16 lags, real";
const char *const FEW_COMPLEX = "16 lags, complex";
const char *const FEW_REAL_FIRST = "16 lags, real and complex";
const char *const FEW_COMPLEX_FIRST = "16 lags, complex and real";

} // namespace

void registerComparisons()
{
    rvxSetErrMode(1);
    const int sizes[][2] = {{1000, 60},      {1000, 1000},     {10000, 100},     {10000, 2000},
                            {100000, 100},   {100000, 10000},  {100000, 100000}, {1000000, 200},
                            {1000000, 5000}, {1000000, 200000}};
    for (const auto &size : sizes) {
        compareCross<RealPlans>(CROSS, size[0], size[1], rvxdCrossCorr);
        compareCross<CplxPlans>(CROSS_COMPLEX, size[0], size[1], rvxzCrossCorr);
        compareAuto<RealPlans>(AUTO, size[0], size[1], rvxdAutoCorr);
        compareAuto<CplxPlans>(AUTO_COMPLEX, size[0], size[1], rvxzAutoCorr);
    }
    for (const int len : {1000, 100000}) {
        compareFew(FEW, len, rvxdCrossCorr);
        compareFew(FEW_COMPLEX, len, rvxzCrossCorr);
        compareFew(FEW_REAL_FIRST, len, rvxdzCrossCorr);
        compareFew(FEW_COMPLEX_FIRST, len, rvxzdCrossCorr);
    }
    limit(CROSS, 1.0,
          "The block length, which the lags fix: the peer's best blocks are up to eight times as "
          "long where there are few lags. At our length FFTW takes 0.9 to 1.7 times our time from "
          "100000 samples on. Calls of 1000 to 10000 samples build tables, which go at their end: "
          "a third of the time at 1000 lags, 9000 of 28000 cycles.");
    limit(CROSS_COMPLEX, 1.0,
          "The block length, as for real sequences: at our length FFTW takes 0.8 to 0.95 of our "
          "time at up to 200 lags, and 1.1 to 2.4 times at more.");
    limit(AUTO, 0.6,
          "One transform for each block, where the peer makes two; the block length and the "
          "tables as for two sequences.");
    limit(AUTO_COMPLEX, 0.6, "As for real samples, but for the tables, which stay.");
    limit(FEW, 0.8,
          "Each sum is one chain of additions, three cycles for each sample: 3.6 are taken. The "
          "peer adds in two chains for each lag.");
    limit(FEW_COMPLEX, 0.8,
          "Two products, each rounded, and two additions for what the peer does with two fused "
          "operations: ten cycles for 16 lags where the pipes need eight.");
    limit(
        FEW_REAL_FIRST, 0.8,
        "Eight loads of the second sequence for each sample, a quarter of them across cache lines: "
        "five cycles of the six that are taken.");
    limit(FEW_COMPLEX_FIRST, 0.8,
          "Eight products and eight additions for each sample: four cycles of the 5.4 that are "
          "taken.");
}
