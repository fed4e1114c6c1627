// rvxwlt: one level of reconstruction by the filters of a state,
//   y[t] = sum over k of low[k] t2[t + o2 - 2k] + sum over k of high[k] t3[t + o3 - 2k],
// with both bands periodic. k ascends in each sum; the low band's is complete before the
// high band's is added to it.
//
// Even and odd t each have every other tap, so no inserted zero is multiplied. Both
// kinds meet the same values of a band: these are loaded once, neighbours in lanes, and
// the two kinds are interleaved when they are stored. Only outputs near the ends, where
// the period shows, work on a copy of what they meet.

#include "frame/rvxkernel.h"
#include "frame/rvxlanes.h"
#include "transform/rvxwlt_levels.h"
#include "transform/rvxwlt_sums.h"

namespace {

constexpr int chunkLen = 256; // values of each band
constexpr int windowLen = chunkLen + RVX_WT_TAPS_IN_LANES / 2 + 4;

struct Filter {
    const double *taps;
    std::ptrdiff_t len;
    std::ptrdiff_t ofs;
};

Filter filterOf(const rvxWtState &state, int f)
{
    return {state.tap_filt[f], state.len_filt[f], state.ofs_filt[f]};
}

// Halves rounded down and up, of negative numbers too.
constexpr std::ptrdiff_t halfDown(std::ptrdiff_t i)
{
    return i >> 1;
}

constexpr std::ptrdiff_t halfUp(std::ptrdiff_t i)
{
    return (i + 1) >> 1;
}

// Output t meets the values of the band from firstOf to lastOf. With t = 2u and
// t = 2u + 1 together these are u + reach.first to u + reach.last.
std::ptrdiff_t firstOf(const Filter &f, std::ptrdiff_t t)
{
    return halfUp(t + f.ofs - f.len + 1);
}

std::ptrdiff_t lastOf(const Filter &f, std::ptrdiff_t t)
{
    return halfDown(t + f.ofs);
}

struct Reach {
    std::ptrdiff_t first;
    std::ptrdiff_t last;
};

Reach reachOf(const Filter &f)
{
    return {firstOf(f, 0), lastOf(f, 1)};
}

// The weights in outputs t, 0 or 1, of what stands at reach.first and behind it.
RvxWtTaps tapsOf(const Filter &f, int t)
{
    const std::ptrdiff_t first = firstOf(f, t), last = lastOf(f, t), start = reachOf(f).first;
    const std::ptrdiff_t weight = first <= last ? t + f.ofs - 2 * first : 0; // or no tap at all
    return {f.taps + weight, -2, static_cast<int>(first - start),
            static_cast<int>(last - start + 1)};
}

RvxWtSums sumsOf(const Filter &f, const double *band)
{
    return {{band, band + 1, 2}, tapsOf(f, 0), tapsOf(f, 1)};
}

template <int vectors>
RVX_INLINE SumsInLanes<vectors> bothBands(const RvxWtSums *bands, std::ptrdiff_t u)
{
    SumsInLanes<vectors> sums[2];
    for (int band = 0; band < 2; ++band) // one copy of the code for both
        sums[band] = twoSums<vectors>(bands[band], u);
    SumsInLanes<vectors> y;
#pragma GCC unroll 8
    for (int v = 0; v < vectors; ++v) {
        y.a[v] = sums[0].a[v] + sums[1].a[v];
        y.b[v] = sums[0].b[v] + sums[1].b[v];
    }
    return y;
}

RVX_KERNEL void joinBands(RvxWtSums low, RvxWtSums high, std::ptrdiff_t outputs, double *y)
{
    const RvxWtSums bands[2] = {low, high};
    std::ptrdiff_t t = 0;
    for (; t <= outputs - 32; t += 32) {
        const SumsInLanes<4> s = bothBands<4>(bands, t / 2);
#pragma GCC unroll 4
        for (int v = 0; v < 4; ++v) {
            storeLanes(y + t + 8 * v, interleaveLow(s.a[v], s.b[v]));
            storeLanes(y + t + 8 * v + 4, interleaveHigh(s.a[v], s.b[v]));
        }
    }
    for (; t < outputs; t += 8) {
        const SumsInLanes<1> s = bothBands<1>(bands, t / 2);
        storeAtMost(y + t, interleaveLow(s.a[0], s.b[0]), outputs - t);
        storeAtMost(y + t + 4, interleaveHigh(s.a[0], s.b[0]), outputs - t - 4);
    }
}

// count values of a band of period m from a place on, which may be outside it.
void copyPeriodic(const double *band, std::ptrdiff_t m, std::ptrdiff_t from, std::ptrdiff_t count,
                  double *dst)
{
    const std::ptrdiff_t rest = from % m;
    std::ptrdiff_t at = rest < 0 ? rest + m : rest;
    for (std::ptrdiff_t i = 0; i < count;) {
        const std::ptrdiff_t run = std::min(count - i, m - at);
        std::copy_n(band + at, run, dst + i);
        i += run;
        at = 0;
    }
}

// Both bands, n outputs.
struct Level {
    Filter f2, f3;
    Reach reach2, reach3;
    const double *low, *high;
    std::ptrdiff_t m, n;
};

// Outputs from 2u on, of count values of each band, by way of copies.
void joinAround(const Level &level, std::ptrdiff_t u, std::ptrdiff_t count, double *y)
{
    double lowWindow[windowLen], highWindow[windowLen];
    const std::ptrdiff_t inLanes = (count + 3) / 4 * 4;
    const Reach &reach2 = level.reach2, &reach3 = level.reach3;
    copyPeriodic(level.low, level.m, u + reach2.first, inLanes + reach2.last - reach2.first,
                 lowWindow);
    copyPeriodic(level.high, level.m, u + reach3.first, inLanes + reach3.last - reach3.first,
                 highWindow);
    joinBands(sumsOf(level.f2, lowWindow), sumsOf(level.f3, highWindow),
              std::min(2 * count, level.n - 2 * u), y + 2 * u);
}

// The same where all that they meet is in the bands; count is a multiple of 4.
void joinInside(const Level &level, std::ptrdiff_t u, std::ptrdiff_t count, double *y)
{
    joinBands(sumsOf(level.f2, level.low + u + level.reach2.first),
              sumsOf(level.f3, level.high + u + level.reach3.first),
              std::min(2 * count, level.n - 2 * u), y + 2 * u);
}

void joinInLanes(const Level &level, double *y)
{
    const std::ptrdiff_t first = std::min(level.reach2.first, level.reach3.first);
    const std::ptrdiff_t last = std::max(level.reach2.last, level.reach3.last);
    // Outputs of values from begin to end - 1 meet nothing outside the bands.
    const std::ptrdiff_t begin = std::max<std::ptrdiff_t>(-first, 0);
    const std::ptrdiff_t end = level.m - std::max<std::ptrdiff_t>(last, 0);
    for (std::ptrdiff_t u = 0, count; u < level.m; u += count) {
        if (u >= begin && end - u >= 4) {
            count = (end - u) / 4 * 4;
            joinInside(level, u, count, y);
        } else {
            const std::ptrdiff_t rest = u < begin ? std::min(begin, level.m) - u : level.m - u;
            count = std::min<std::ptrdiff_t>(rest, chunkLen);
            joinAround(level, u, count, y);
        }
    }
}

double sumPlain(const Filter &f, const double *band, std::ptrdiff_t m, std::ptrdiff_t t)
{
    const std::ptrdiff_t first = firstOf(f, t), last = lastOf(f, t);
    std::ptrdiff_t at = first % m;
    at = at < 0 ? at + m : at;
    double sum = 0.0;
    for (std::ptrdiff_t k = first; k <= last; ++k) {
        sum = sum + band[at] * f.taps[t + f.ofs - 2 * k];
        at = at == m - 1 ? 0 : at + 1;
    }
    return sum;
}

} // namespace

void rvxWtJoinByFilters(const rvxWtState &state, const double *low, const double *high, int n,
                        double *y)
{
    const Filter f2 = filterOf(state, 2), f3 = filterOf(state, 3);
    const std::ptrdiff_t m = n / 2 + n % 2;
    if (std::max(f2.len, f3.len) <= RVX_WT_TAPS_IN_LANES) {
        joinInLanes({f2, f3, reachOf(f2), reachOf(f3), low, high, m, n}, y);
        return;
    }
    for (std::ptrdiff_t t = 0; t < n; ++t)
        y[t] = sumPlain(f2, low, m, t) + sumPlain(f3, high, m, t);
}
