// rvxwlt: one level of decomposition by the filters of a state,
//   low[k] = sum over j of t0[j] x[2k + o0 - j], high[k] the same of filter 1,
// with x periodic in n, or in n + 1 with its last value twice where n is odd.
//
// Chunk by chunk the samples are parted into even and odd ones, in the first cache. Then
// neighbouring outputs meet neighbouring samples, and both filters run over them in
// lanes. The ends of the signal differ only in where the chunk is filled from.

#include "frame/rvxkernel.h"
#include "frame/rvxlanes.h"
#include "transform/rvxwlt_levels.h"
#include "transform/rvxwlt_sums.h"

namespace {

constexpr int chunkLen = 256; // outputs of each filter
constexpr int planeLen = chunkLen + RVX_WT_TAPS_IN_LANES / 2 + 2;

// A filter: its taps and the positions, relative to 2k, that it meets.
struct Filter {
    const double *taps;
    std::ptrdiff_t len;
    std::ptrdiff_t newest; // the position of tap 0
    std::ptrdiff_t oldest() const { return newest - len + 1; }
};

Filter filterOf(const rvxWtState &state, int f)
{
    return {state.tap_filt[f], state.len_filt[f], state.ofs_filt[f]};
}

// A place in the periodic extension of n samples.
struct Place {
    std::ptrdiff_t n;
    std::ptrdiff_t period;
    std::ptrdiff_t at; // 0 to period - 1
};

Place placeOf(std::ptrdiff_t position, int n)
{
    const std::ptrdiff_t period = std::ptrdiff_t{n} + n % 2;
    const std::ptrdiff_t rest = position % period;
    return {n, period, rest < 0 ? rest + period : rest};
}

RVX_INLINE void partPairs(const double *x, std::ptrdiff_t pairs, double *even, double *odd)
{
    std::ptrdiff_t i = 0;
    for (; i <= pairs - 4; i += 4) {
        const Lanes a = loadLanes(x + 2 * i), b = loadLanes(x + 2 * i + 4);
        storeLanes(even + i, evenElements(a, b));
        storeLanes(odd + i, oddElements(a, b));
    }
    for (; i < pairs; ++i) {
        even[i] = x[2 * i];
        odd[i] = x[2 * i + 1];
    }
}

// count values from a place on, by turns to even and odd.
RVX_KERNEL void partPeriodic(const double *x, Place place, std::ptrdiff_t count, double *even,
                             double *odd)
{
    std::ptrdiff_t i = 0;
    while (i < count) {
        const std::ptrdiff_t run = std::min(count - i, place.n - place.at);
        if (run >= 2 && i % 2 == 0) {
            partPairs(x + place.at, run / 2, even + i / 2, odd + i / 2);
            i += run / 2 * 2;
            place.at += run / 2 * 2;
        } else {
            (i % 2 == 0 ? even : odd)[i / 2] = x[std::min(place.at, place.n - 1)];
            ++i;
            ++place.at;
        }
        if (place.at == place.period)
            place.at = 0;
    }
}

RVX_KERNEL void filterParted(RvxWtSums sums, std::ptrdiff_t count, double *low, double *high)
{
    std::ptrdiff_t k = 0;
    for (; k <= count - 16; k += 16) {
        const SumsInLanes<4> s = twoSums<4>(sums, k);
#pragma GCC unroll 4
        for (int v = 0; v < 4; ++v) {
            storeLanes(low + k + 4 * v, s.a[v]);
            storeLanes(high + k + 4 * v, s.b[v]);
        }
    }
    for (; k < count; k += 4) {
        const SumsInLanes<1> s = twoSums<1>(sums, k);
        storeAtMost(low + k, s.a[0], count - k);
        storeAtMost(high + k, s.b[0], count - k);
    }
}

// The two filters over parted samples, of which `last` is the newest that output 0
// meets: taps ascend, so positions go backwards, by turns through both planes.
RvxWtSums sumsOf(const Filter &f0, const Filter &f1, std::ptrdiff_t last, const double *even,
                 const double *odd)
{
    const std::ptrdiff_t newest = std::max(f0.newest, f1.newest);
    const bool lastIsEven = last % 2 == 0;
    RvxWtSums sums;
    sums.walk.even = lastIsEven ? even + last / 2 : odd + last / 2;
    sums.walk.odd = lastIsEven ? odd + last / 2 - 1 : even + last / 2;
    sums.walk.step = -1;
    const auto begin0 = static_cast<int>(newest - f0.newest);
    const auto begin1 = static_cast<int>(newest - f1.newest);
    sums.a = {f0.taps, 1, begin0, begin0 + static_cast<int>(f0.len)};
    sums.b = {f1.taps, 1, begin1, begin1 + static_cast<int>(f1.len)};
    return sums;
}

void splitInLanes(const Filter &f0, const Filter &f1, const double *x, int n, double *low,
                  double *high)
{
    double planes[2 * planeLen]; // the odd samples behind the even ones
    const std::ptrdiff_t oldest = std::min(f0.oldest(), f1.oldest());
    const std::ptrdiff_t span = std::max(f0.newest, f1.newest) - oldest + 1;
    const RvxWtSums sums = sumsOf(f0, f1, span - 1, planes, planes + planeLen);
    const std::ptrdiff_t outputs = n / 2 + n % 2;
    for (std::ptrdiff_t k = 0; k < outputs; k += chunkLen) {
        const std::ptrdiff_t count = std::min<std::ptrdiff_t>(outputs - k, chunkLen);
        const std::ptrdiff_t inLanes = (count + 3) / 4 * 4;
        partPeriodic(x, placeOf(2 * k + oldest, n), 2 * (inLanes - 1) + span, planes,
                     planes + planeLen);
        filterParted(sums, count, low + k, high + k);
    }
}

// A filter of any length, one output at a time.
void filterPlain(const Filter &f, const double *x, int n, double *dst)
{
    const std::ptrdiff_t outputs = n / 2 + n % 2;
    for (std::ptrdiff_t k = 0; k < outputs; ++k) {
        const Place newest = placeOf(2 * k + f.newest, n);
        std::ptrdiff_t at = newest.at;
        double sum = 0.0;
        for (std::ptrdiff_t j = 0; j < f.len; ++j) {
            sum = sum + x[std::min(at, newest.n - 1)] * f.taps[j];
            at = at == 0 ? newest.period - 1 : at - 1;
        }
        dst[k] = sum;
    }
}

} // namespace

void rvxWtSplitByFilters(const rvxWtState &state, const double *x, int n, double *low, double *high)
{
    const Filter f0 = filterOf(state, 0), f1 = filterOf(state, 1);
    const std::ptrdiff_t span =
        std::max(f0.newest, f1.newest) - std::min(f0.oldest(), f1.oldest()) + 1;
    if (span <= RVX_WT_TAPS_IN_LANES) {
        splitInLanes(f0, f1, x, n, low, high);
    } else {
        filterPlain(f0, x, n, low);
        filterPlain(f1, x, n, high);
    }
}
