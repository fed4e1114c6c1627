// rvxmed: running median, the ends repeated beyond the edges.
//
// Masks of 3 and 5 are networks of minima and maxima, four outputs side by side.
// Wider masks up to RVX_MEDIAN_IN_LANES keep the window sorted: four windows slide
// along four stretches of the block, one in each lane, where removing a sample from a
// sorted window and putting another in are a comparison, a choice, a minimum and a
// maximum per place, without a branch. Still wider ones sort a line of samples at once.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "filter/rvxmed.h"
#include "frame/rvxbuffer.h"
#include "frame/rvxcheck.h"
#include "frame/rvxkernel.h"
#include "frame/rvxlanes.h"
#include "rvx.h"

RVX_MODULE("rvxmed")

namespace {

constexpr std::ptrdiff_t RVX_MEDIAN_IN_LANES = 111; // the widest mask of this kind
constexpr std::ptrdiff_t RVX_MEDIAN_CHUNK = 4096;   // outputs per filling of the line

// x[i], where the ends go on beyond the edges.
RVX_INLINE double atOrEnd(const double *x, std::ptrdiff_t len, std::ptrdiff_t i)
{
    return x[i < 0 ? 0 : i >= len ? len - 1 : i];
}

// ---------------------------------------------------------------------------
// Masks of 3 and 5.

RVX_INLINE Lanes middle(Lanes a, Lanes b, Lanes c)
{
    return maxLanes(minLanes(a, b), minLanes(maxLanes(a, b), c));
}

// Each sample and the one behind it, in order.
struct Pairs {
    Lanes low, high;
};

RVX_INLINE Pairs sortedPairs(const double *x)
{
    const Lanes a = loadLanesOnce(x), b = loadLanesOnce(x + 1);
    return {minLanes(a, b), maxLanes(a, b)};
}

// The pairs on either side of the sample in the middle.
RVX_INLINE Lanes middleOfFive(const Pairs &before, Lanes x, const Pairs &behind)
{
    return middle(maxLanes(before.low, behind.low), minLanes(before.high, behind.high), x);
}

// The medians about x[0] to x[3].
template <int mask>
RVX_INLINE Lanes networkMedians(const double *x)
{
    if (mask == 3)
        return middle(loadLanesOnce(x - 1), loadLanesOnce(x), loadLanesOnce(x + 1));
    return middleOfFive(sortedPairs(x - 2), loadLanes(x), sortedPairs(x + 1));
}

// The medians of n places from x[0] on go to y, which may be x; mask / 2 samples
// stand on either side, and n is 4 at least. The last four are made first, for their
// samples may be overwritten.

// A vector leaves after the next one has been read.
RVX_INLINE void filterByThree(const double *x, double *y, std::ptrdiff_t n)
{
    const Lanes last = networkMedians<3>(x + n - 4);
    Lanes now = networkMedians<3>(x);
    std::ptrdiff_t i = 4;
    for (; i < n - 8; i += 8) {
        const Lanes next = networkMedians<3>(x + i);
        storeLanes(y + i - 4, now);
        now = networkMedians<3>(x + i + 4);
        storeLanes(y + i, next);
    }
    for (; i < n - 4; i += 4) {
        const Lanes next = networkMedians<3>(x + i);
        storeLanes(y + i - 4, now);
        now = next;
    }
    storeLanes(y + i - 4, now);
    storeLanes(y + n - 4, last);
}

// Of the pairs that four medians need all but three come from the four before.
RVX_INLINE void filterByFive(const double *x, double *y, std::ptrdiff_t n)
{
    const Lanes last = networkMedians<5>(x + n - 4);
    Pairs before = sortedPairs(x - 2);
    for (std::ptrdiff_t i = 0; i < n - 4; i += 4) {
        const Pairs next = sortedPairs(x + i + 2);
        const Pairs behind = {lastLaneThen(before.low, next.low),
                              lastLaneThen(before.high, next.high)};
        storeLanes(y + i, middleOfFive(before, loadLanes(x + i), behind));
        before = next;
    }
    storeLanes(y + n - 4, last);
}

// The median about any x[i] of len samples.
template <int mask>
RVX_INLINE double networkMedian(const double *x, std::ptrdiff_t len, std::ptrdiff_t i)
{
    double around[mask + 3];
    for (int k = 0; k < mask + 3; ++k)
        around[k] = atOrEnd(x, len, i - mask / 2 + k);
    return firstLane(networkMedians<mask>(around + mask / 2));
}

// y[0] to y[len - 1] become the filtered x; y is x, or does not overlap it.
template <int mask>
RVX_INLINE void filterNarrow(const double *x, double *y, std::ptrdiff_t len)
{
    const std::ptrdiff_t inner = len - (mask - 1); // outputs whose window has no edge in it
    y[0] = x[0];
    y[len - 1] = x[len - 1];
    if (inner < 4) {
        double medians[mask];
        for (std::ptrdiff_t i = 1; i < len - 1; ++i)
            medians[i - 1] = networkMedian<mask>(x, len, i);
        for (std::ptrdiff_t i = 1; i < len - 1; ++i)
            y[i] = medians[i - 1];
        return;
    }
    const double first = networkMedian<mask>(x, len, 1);
    const double last = networkMedian<mask>(x, len, len - 2);
    if (mask == 3)
        filterByThree(x + 1, y + 1, inner);
    else
        filterByFive(x + 2, y + 2, inner);
    y[1] = first;
    y[len - 2] = last;
}

RVX_KERNEL void medianOfThree(const double *x, double *y, int len)
{
    filterNarrow<3>(x, y, len);
}

RVX_KERNEL void medianOfFive(const double *x, double *y, int len)
{
    filterNarrow<5>(x, y, len);
}

bool isNarrow(int len, int masksize)
{
    return len >= 3 && masksize >= 3 && masksize < 7;
}

void medianNarrow(const double *x, double *y, int len, int masksize)
{
    if (masksize < 5)
        medianOfThree(x, y, len);
    else
        medianOfFive(x, y, len);
}

bool areApart(const double *x, const double *y, int len)
{
    const auto from = reinterpret_cast<std::uintptr_t>(x);
    const auto to = reinterpret_cast<std::uintptr_t>(y);
    const std::uintptr_t bytes = static_cast<std::uintptr_t>(len) * sizeof(double);
    return from + bytes <= to || to + bytes <= from;
}

// ---------------------------------------------------------------------------
// Wider masks.

// The three samples from each of four places on, sorted.
struct Triples {
    Lanes low, mid, high;
};

RVX_INLINE Triples sortedTriples(const double *x)
{
    const Lanes a = loadLanes(x), b = loadLanes(x + 1), c = loadLanes(x + 2);
    const Lanes small = minLanes(a, b), large = maxLanes(a, b);
    const Lanes below = minLanes(large, c);
    return {minLanes(small, below), maxLanes(small, below), maxLanes(large, c)};
}

// The middle of the largest low, the middle mid and the smallest high of three
// sorted triples.
RVX_INLINE Lanes middleOfNine(const Triples &a, const Triples &b, const Triples &c)
{
    return middle(maxLanes(maxLanes(a.low, b.low), c.low), middle(a.mid, b.mid, c.mid),
                  minLanes(minLanes(a.high, b.high), c.high));
}

// Four outputs at a time but three places on each time, so that two of the three
// triples are those of the two times before.
RVX_KERNEL void medianOfNine(const Windows &windows, double *out)
{
    const double *line = windows.line;
    const std::ptrdiff_t n = windows.n;
    Triples a = sortedTriples(line), b = sortedTriples(line + 3);
    std::ptrdiff_t i = 0;
    for (; i <= n - 4; i += 3) {
        const Triples c = sortedTriples(line + i + 6);
        storeLanes(out + i, middleOfNine(a, b, c));
        a = b;
        b = c;
    }
    line += n - 4;
    storeLanes(out + n - 4,
               middleOfNine(sortedTriples(line), sortedTriples(line + 3), sortedTriples(line + 6)));
}

// One step of four sorted windows: `old` leaves, `fresh` comes in. Behind the
// window stands infinity. The number of places is odd.
RVX_INLINE void slideSorted(double *sorted, std::ptrdiff_t mask, Lanes old, Lanes fresh)
{
    const Lanes first = loadLanes(sorted);
    Lanes at = loadLanes(sorted + 4);
    Lanes below = choose(isBelow(first, old), first, at); // without the old one
    storeLanes(sorted, minLanes(below, fresh));
    // Two places at a time, so that nothing is moved from register to register.
    for (std::ptrdiff_t j = 1; j < mask; j += 2) {
        const Lanes next = loadLanes(sorted + 4 * j + 4);
        const Lanes left = choose(isBelow(at, old), at, next);
        storeLanes(sorted + 4 * j, minLanes(left, maxLanes(below, fresh)));
        at = loadLanes(sorted + 4 * j + 8);
        below = choose(isBelow(next, old), next, at);
        storeLanes(sorted + 4 * j + 4, minLanes(below, maxLanes(left, fresh)));
    }
}

// Puts one into windows that have n places filled.
RVX_INLINE void growSorted(double *sorted, std::ptrdiff_t n, Lanes fresh)
{
    Lanes below = allLanes(-__builtin_inf());
    for (std::ptrdiff_t j = 0; j < n; ++j) {
        const Lanes at = loadLanes(sorted + 4 * j);
        storeLanes(sorted + 4 * j, minLanes(at, maxLanes(below, fresh)));
        below = at;
    }
    storeLanes(sorted + 4 * n, maxLanes(below, fresh));
}

// Each lane has its stretch of the outputs; where they do not divide by four the
// last stretch lies partly over the one before it and gives the same again.
RVX_KERNEL void medianInLanes(const Windows &windows, double *out)
{
    const std::ptrdiff_t mask = windows.mask;
    const std::ptrdiff_t stretch = (windows.n + 3) / 4;
    const std::ptrdiff_t limit = windows.n - stretch;
    const std::ptrdiff_t s1 = stretch < limit ? stretch : limit;
    const std::ptrdiff_t s2 = 2 * stretch < limit ? 2 * stretch : limit;
    const std::ptrdiff_t s3 = limit;
    const double *line = windows.line;
    double *sorted = windows.scratch;
    for (std::ptrdiff_t q = 0; q < mask; ++q)
        growSorted(sorted, q, lanesOf(line[q], line[s1 + q], line[s2 + q], line[s3 + q]));
    storeLanes(sorted + 4 * mask, allLanes(__builtin_inf()));
    for (std::ptrdiff_t t = 0;; ++t) {
        const double *median = sorted + 4 * (mask / 2);
        out[t] = median[0];
        out[s1 + t] = median[1];
        out[s2 + t] = median[2];
        out[s3 + t] = median[3];
        if (t == stretch - 1)
            return;
        const double *old = line + t;
        const double *fresh = old + mask;
        slideSorted(sorted, mask, lanesOf(old[0], old[s1], old[s2], old[s3]),
                    lanesOf(fresh[0], fresh[s1], fresh[s2], fresh[s3]));
    }
}

// x[1] to x[len - 2] become their medians, a chunk at a time. The line keeps the
// samples that the results overwrite.
void filterWide(double *x, std::ptrdiff_t len, std::ptrdiff_t mask, std::ptrdiff_t chunk,
                double *scratch)
{
    const std::ptrdiff_t half = mask / 2;
    double *line = scratch;
    double *rest = scratch + chunk + mask - 1;
    for (std::ptrdiff_t k = 0; k < mask - 1; ++k)
        line[k] = atOrEnd(x, len, 1 - half + k);
    for (std::ptrdiff_t i = 1; i < len - 1; i += chunk) {
        const std::ptrdiff_t n = std::min(chunk, len - 1 - i);
        const std::ptrdiff_t there = std::clamp<std::ptrdiff_t>(len - (i + half), 0, n);
        if (there > 0)
            std::copy(x + i + half, x + i + half + there, line + mask - 1);
        std::fill(line + mask - 1 + there, line + mask - 1 + n, x[len - 1]);
        const Windows windows = {line, n, mask, rest};
        if (mask == 9 && n >= 4)
            medianOfNine(windows, x + i);
        else if (mask <= RVX_MEDIAN_IN_LANES)
            medianInLanes(windows, x + i);
        else
            medianByRanks(windows, x + i);
        std::copy(line + n, line + n + mask - 1, line);
    }
}

// False where there is no memory.
bool medianWide(double *x, int len, int masksize)
{
    // A window that reaches over both ends has more copies of the two end samples
    // than others; further copies, as many of each, leave its middle where it is.
    const std::ptrdiff_t half = std::min((masksize - 1) / 2, len - 2);
    const std::ptrdiff_t mask = 2 * half + 1;
    const std::ptrdiff_t chunk = std::min<std::ptrdiff_t>(std::max(RVX_MEDIAN_CHUNK, mask), len);
    const std::ptrdiff_t samples = chunk + mask - 1;
    const std::ptrdiff_t doubles =
        samples + (mask <= RVX_MEDIAN_IN_LANES ? 4 * (mask + 1) : rankScratch(samples));
    if (doubles > static_cast<std::ptrdiff_t>(UINT32_MAX))
        return false;
    double *scratch = rvxAllocDoubles(static_cast<std::uint32_t>(doubles));
    if (scratch == nullptr)
        return false;
    filterWide(x, len, mask, chunk, scratch);
    rvxFreeAligned(scratch);
    return true;
}

} // namespace

void rvxdbMedianFilter1(double *inout, int len, int masksize)
{
    RVX_REJECT_IF(len <= 0, "len<=0");
    RVX_REJECT_IF(inout == nullptr, "inout==0");
    RVX_REJECT_IF(masksize <= 0, "masksize<=0");
    if (isNarrow(len, masksize))
        medianNarrow(inout, inout, len, masksize);
    else if (len >= 3 && masksize >= 7 && !medianWide(inout, len, masksize))
        RVX_REPORT(RVX_STATUS_NO_MEMORY, "out of memory");
}

void rvxdbMedianFilter2(const double *in, double *out, int len, int masksize)
{
    RVX_REJECT_IF(len <= 0, "len<=0");
    RVX_REJECT_IF(in == nullptr, "in==0");
    RVX_REJECT_IF(out == nullptr, "out==0");
    RVX_REJECT_IF(masksize <= 0, "masksize<=0");
    if (isNarrow(len, masksize) && areApart(in, out, len)) {
        medianNarrow(in, out, len, masksize);
        return;
    }
    rvxdbCopy(in, out, len);
    rvxdbMedianFilter1(out, len, masksize);
}
