// rvxfirh, engine: the sums of all FIR filters.
//
// The order inside one sum is fixed, so outputs stand side by side in lanes and
// every tap is broadcast to them. For that a tile of samples is dealt into planes,
// one for each part of each sample of a decimation step: there, consecutive steps
// of a row meet consecutive doubles, whatever the rate and the element type.

#include "filter/rvxfirh_engine.h"

#include <algorithm>
#include <cstdint>

#include "filter/rvxfirh_sums.h"
#include "frame/rvxcplx.h"
#include "frame/rvxkernel.h"
#include "frame/rvxlanes.h"

namespace {

// The doubles of a tile's planes, in the first cache beside taps and outputs: of
// both sets where there are two.
constexpr int RVX_TILE = 2048;
// Planes begin at cache lines.
constexpr int RVX_LINE = 8;
// The planes once more, half a line further: of a vector that would cross a line
// in the one set, the other has it inside a line. Crossing costs a second load,
// and where one load serves one product, loads are the limit.
constexpr int RVX_SHIFT = RVX_TILE / 2 + RVX_LINE / 2;
// Registers that hold sums; complex taps and samples want some for themselves.
constexpr int RVX_GROUP = 12;

// Real filters longer than this gain from the second set more than planes cost.
constexpr int RVX_SLIDE_LIMIT = 64;

// Whether one load serves one product, so that there are two sets of planes.
template <typename Tap, typename Sample>
constexpr bool hasTwoSets = partsOf<Tap> == 1 && partsOf<Sample> == 1;

// A tile: `steps` steps from `src` on, of whose windows it holds the positions from
// `begin` up to `end`. The sums are continued from `out` unless `begin` is 0.
template <typename Tap, typename Sample>
struct FirTile {
    const RvxFirShape &shape;
    const Tap *taps;
    const Sample *src;
    RvxFirOut<Tap, Sample> *out;
    int steps;
    int begin;
    int end;
    int stride;   // from plane to plane
    bool isPlane; // src is the only plane, and the steps are a multiple of four
};

// The first `count` of four sums, to or from outputs that stand rowCount apart.
template <typename Out, typename Sums>
RVX_INLINE void storeSums(Sums sums, Out *out, int rowCount, int count)
{
    Out four[4];
    storeFourSums(sums, four);
    for (int k = 0; k < std::min(count, 4); ++k)
        out[std::ptrdiff_t{k} * rowCount] = four[k];
}

template <typename Out>
RVX_INLINE auto loadSums(const Out *out, int rowCount, int count)
{
    Out four[4] = {};
    for (int k = 0; k < std::min(count, 4); ++k)
        four[k] = out[std::ptrdiff_t{k} * rowCount];
    return loadFourSums(four);
}

// Where the sums of a row begin in a tile: its taps there, their number, and the
// plane and column of the sample that meets the first in step 0.
template <typename Tap>
struct RowPart {
    const Tap *taps;
    int numTaps;
    int phase;
    int column;
};

template <typename Tap, typename Sample>
RVX_INLINE RowPart<Tap> partOf(const rvxFirPhaseRow &row, const FirTile<Tap, Sample> &tile)
{
    const int first = std::max(0, tile.begin - row.dlyOffset);
    const int past = std::min(row.numTaps, tile.end - row.dlyOffset);
    const int position = row.dlyOffset + first - tile.begin, down = tile.shape.downFactor;
    return {tile.taps + row.tapOffset + first, past - first, position % down, position / down};
}

// sums[k] += tap * the four samples from at + 4 * k on
template <int Vectors, typename Tap, typename Sample, typename Sums>
RVX_INLINE void addTap(const FirTile<Tap, Sample> &tile, Tap value, const double *at, Sums *sums)
{
    const auto tap = broadcast(value);
    if constexpr (hasTwoSets<Tap, Sample>) {
        const bool late = (reinterpret_cast<std::uintptr_t>(at) & 32) != 0;
        const double *even = at + (late ? RVX_SHIFT : 0);
        const double *odd = at + (late ? 0 : RVX_SHIFT);
        for (int k = 0; k < Vectors; ++k)
            sums[k] = sums[k] + tap * loadLanes((k % 2 == 0 ? even : odd) + 4 * k);
    } else {
        for (int k = 0; k < Vectors; ++k)
            sums[k] = sums[k] + tap * loadSamples(at + 4 * k, tile.stride,
                                                  static_cast<const Sample *>(nullptr));
    }
}

// The outputs of a row for 4 * Vectors steps from step m on, of which up to three
// may lie behind the tile's last step; rowOut is where those of step 0 belong.
// Gives the step to go on with.
template <int Vectors, typename Tap, typename Sample, typename Out>
RVX_INLINE int sumGroup(const FirTile<Tap, Sample> &tile, const RowPart<Tap> &part,
                        const double *planes, int m, Out *rowOut)
{
    const int rowCount = tile.shape.rowCount, down = tile.shape.downFactor;
    const int count = tile.steps - m;
    Out *out = rowOut + std::ptrdiff_t{m} * rowCount;
    using Sums = decltype(startSums(out));
    Sums sums[Vectors];
    for (int k = 0; k < Vectors; ++k)
        sums[k] = tile.begin == 0
                      ? startSums(out)
                      : loadSums(out + std::ptrdiff_t{4 * k} * rowCount, rowCount, count - 4 * k);

    int phase = part.phase;
    const int nextPhase = partsOf<Sample> * tile.stride;
    const int nextStep = 1 - down * nextPhase;
    const double *at = planes + phase * nextPhase + part.column + m;
    if (down == 1) {
        for (int i = 0; i < part.numTaps; ++i)
            addTap<Vectors>(tile, part.taps[i], at + i, sums);
    } else {
        for (int i = 0; i < part.numTaps; ++i) {
            addTap<Vectors>(tile, part.taps[i], at, sums);
            at += nextPhase;
            if (++phase == down) {
                phase = 0;
                at += nextStep;
            }
        }
    }

    if (rowCount == 1 && count >= 4 * Vectors) {
        for (int k = 0; k < Vectors; ++k)
            storeFourSums(sums[k], out + 4 * k);
        return m + 4 * Vectors;
    }
    for (int k = 0; k < Vectors; ++k)
        storeSums(sums[k], out + std::ptrdiff_t{4 * k} * rowCount, rowCount, count - 4 * k);
    return m + 4 * Vectors;
}

// To one set of planes, or to both.
template <bool TwoSets>
RVX_INLINE void storePlanes(double *at, Lanes values)
{
    storeLanes(at, values);
    if (TwoSets)
        storeLanes(at + RVX_SHIFT, values);
}

template <bool TwoSets>
RVX_INLINE void storePlanes(double *at, double value)
{
    *at = value;
    if (TwoSets)
        at[RVX_SHIFT] = value;
}

// planes[(i % period) * stride + i / period] = src[i] for i below n, and zeros
// behind the last, as far as vectors reach.
template <bool TwoSets>
RVX_INLINE void dealPlanes(const double *src, int n, int period, double *planes, int stride)
{
    const int columns = n / period;
    int done = 0;
    if (period == 1) {
        for (; done + 4 <= columns; done += 4)
            storePlanes<TwoSets>(planes + done, loadLanes(src + done));
    } else if (period == 2) {
        for (; done + 4 <= columns; done += 4) {
            const Lanes low = loadLanes(src + 2 * done), high = loadLanes(src + 2 * done + 4);
            storePlanes<TwoSets>(planes + done, evenElements(low, high));
            storePlanes<TwoSets>(planes + stride + done, oddElements(low, high));
        }
    }
    for (int r = 0; r < period; ++r) {
        double *plane = planes + r * stride;
        const int length = columns + (r < n % period ? 1 : 0);
        for (int q = done; q < length; ++q)
            storePlanes<TwoSets>(plane + q, src[q * period + r]);
        for (int q = length; q < columns + 4; ++q)
            storePlanes<TwoSets>(plane + q, 0.0);
    }
}

template <typename Tap, typename Sample>
RVX_INLINE void filterTile(const FirTile<Tap, Sample> &tile)
{
    alignas(64) double planes[RVX_TILE + RVX_LINE];
    const RvxFirShape &shape = tile.shape;
    const int samples = (tile.steps - 1) * shape.downFactor + tile.end - tile.begin;
    // Parts of a complex value are two doubles in a row.
    const auto *src = reinterpret_cast<const double *>(tile.src);
    if (!tile.isPlane)
        dealPlanes<hasTwoSets<Tap, Sample>>(src, samples * partsOf<Sample>,
                                            shape.downFactor * partsOf<Sample>, planes,
                                            tile.stride);
    constexpr int widest = partsOf<Sample> == 2 ? 4 : RVX_GROUP / partsOf<Tap>;
    for (int i = 0; i < shape.rowCount; ++i) {
        const RowPart<Tap> part = partOf(shape.rows[i], tile);
        if (part.numTaps <= 0 && tile.begin > 0)
            continue;
        RvxFirOut<Tap, Sample> *out = tile.out + i;
        const double *first = tile.isPlane ? src : planes;
        const int vectors = (tile.steps + 3) / 4;
        int m = 0;
        while (4 * vectors - m >= 4 * widest)
            m = sumGroup<widest>(tile, part, first, m, out);
        while (4 * vectors - m >= 16)
            m = sumGroup<4>(tile, part, first, m, out);
        if (4 * vectors - m >= 8)
            m = sumGroup<2>(tile, part, first, m, out);
        if (4 * vectors - m >= 4)
            sumGroup<1>(tile, part, first, m, out);
    }
}

RVX_KERNEL void firTileReal(const FirTile<double, double> &tile)
{
    filterTile(tile);
}

RVX_KERNEL void firTileCplx(const FirTile<ZCplx, ZCplx> &tile)
{
    filterTile(tile);
}

RVX_KERNEL void firTileRealCplx(const FirTile<ZCplx, double> &tile)
{
    filterTile(tile);
}

RVX_KERNEL void firTileCplxReal(const FirTile<double, ZCplx> &tile)
{
    filterTile(tile);
}

void runTile(const FirTile<double, double> &tile)
{
    firTileReal(tile);
}

void runTile(const FirTile<ZCplx, ZCplx> &tile)
{
    firTileCplx(tile);
}

void runTile(const FirTile<ZCplx, double> &tile)
{
    firTileRealCplx(tile);
}

void runTile(const FirTile<double, ZCplx> &tile)
{
    firTileCplxReal(tile);
}

// Real filters at a single rate need no planes. Up to eight taps stay in registers
// and the sums pass by, each a vector behind the next: a vector of samples then
// serves as many taps as sums are on their way.
template <int Taps>
struct Slide {
    static constexpr int shifts = std::min(Taps, 4);
    static constexpr int stages = Taps / shifts;
    Lanes taps[Taps];
    Lanes sums[stages];

    // Lets `entering` in, and gives the sum that is complete.
    RVX_INLINE Lanes advance(Lanes entering, const double *x)
    {
        for (int j = stages - 1; j > 0; --j)
            sums[j] = sums[j - 1];
        sums[0] = entering;
        for (int s = 0; s < shifts; ++s) {
            const Lanes sample = loadLanesOnce(x + s);
            for (int j = 0; j < stages; ++j)
                sums[j] = sums[j] + taps[j * shifts + s] * sample;
        }
        return sums[stages - 1];
    }
};

// out[i] += sum of taps[k] * x[i + k] over k below Taps, for i below n, a multiple
// of 4; out counts as 0.0 if `first`.
template <int Taps>
RVX_INLINE void slidePass(const double *taps, const double *x, double *out, int n, bool first)
{
    Slide<Taps> slide;
    for (int k = 0; k < Taps; ++k)
        slide.taps[k] = allLanes(taps[k]);
    const Lanes zero = allLanes(0.0);
    for (Lanes &sum : slide.sums)
        sum = zero;
    constexpr int ahead = 4 * (slide.stages - 1);
    int i = 0;
    for (; i < std::min(ahead, n); i += 4)
        slide.advance(first ? zero : loadLanes(out + i), x + i);
    for (; i < ahead; i += 4) // where there are fewer sums than stages
        slide.advance(zero, x + i);
    if (first) {
        for (; i < n; i += 4)
            storeLanes(out + i - ahead, slide.advance(zero, x + i));
    } else {
        for (; i < n; i += 4)
            storeLanes(out + i - ahead, slide.advance(loadLanes(out + i), x + i));
    }
    for (; i < n + ahead; i += 4)
        storeLanes(out + i - ahead, slide.advance(zero, x + i));
}

// out[i] = sum of taps[k] * x[i + k], for i below n, a multiple of 4.
RVX_KERNEL void firSlide(const double *taps, int numTaps, const double *x, double *out, int n)
{
    constexpr int tile = 512;
    for (int from = 0; from < n; from += tile) {
        const int part = std::min(tile, n - from);
        int k = 0;
        for (; k + 8 <= numTaps; k += 8)
            slidePass<8>(taps + k, x + from + k, out + from, part, k == 0);
        for (; k + 4 <= numTaps; k += 4)
            slidePass<4>(taps + k, x + from + k, out + from, part, k == 0);
        for (; k + 2 <= numTaps; k += 2)
            slidePass<2>(taps + k, x + from + k, out + from, part, k == 0);
        for (; k < numTaps; ++k)
            slidePass<1>(taps + k, x + from + k, out + from, part, k == 0);
    }
}

// The tap in all lanes, by a load of its own: compilers would load several in a row
// as one vector and spread them by shuffles, in the units that multiply and add.
RVX_INLINE Lanes loadTap(const double *tap)
{
    return allLanes(*static_cast<const volatile double *>(tap));
}

// Complex samples with real taps are doubles two of which belong to one tap: a
// vector of samples meets a tap of one sum and, two taps before, of the next. Four
// taps at a time, so that it is loaded once for both.
template <int Vectors>
RVX_INLINE void pairedSums(const double *taps, int numTaps, const double *x, double *out)
{
    Lanes sums[Vectors];
    for (Lanes &sum : sums)
        sum = allLanes(0.0);
    int k = 0;
    for (; k + 4 <= numTaps; k += 4, x += 8) {
        const Lanes tap0 = loadTap(taps + k), tap1 = loadTap(taps + k + 1);
        const Lanes tap2 = loadTap(taps + k + 2), tap3 = loadTap(taps + k + 3);
        Lanes even = loadLanesOnce(x), odd = loadLanesOnce(x + 2);
        for (int v = 0; v < Vectors; ++v) {
            const Lanes nextEven = loadLanesOnce(x + 4 * v + 4);
            const Lanes nextOdd = loadLanesOnce(x + 4 * v + 6);
            sums[v] = sums[v] + tap0 * even;
            sums[v] = sums[v] + tap1 * odd;
            sums[v] = sums[v] + tap2 * nextEven;
            sums[v] = sums[v] + tap3 * nextOdd;
            even = nextEven;
            odd = nextOdd;
        }
    }
    for (; k < numTaps; ++k, x += 2)
        for (int v = 0; v < Vectors; ++v)
            sums[v] = sums[v] + allLanes(taps[k]) * loadLanesOnce(x + 4 * v);
    for (int v = 0; v < Vectors; ++v)
        storeLanes(out + 4 * v, sums[v]);
}

// out[i] = sum of taps[k] * x[i + 2 * k], for i below n, a multiple of 4.
RVX_KERNEL void firPaired(const double *taps, int numTaps, const double *x, double *out, int n)
{
    int i = 0;
    for (; i + 32 <= n; i += 32)
        pairedSums<8>(taps, numTaps, x + i, out + i);
    for (; i + 8 <= n; i += 8)
        pairedSums<2>(taps, numTaps, x + i, out + i);
    for (; i < n; i += 4)
        pairedSums<1>(taps, numTaps, x + i, out + i);
}

// Four steps of a row side by side, without planes.
template <typename Tap, typename Sample, typename Out>
void sumFour(const Tap *taps, int numTaps, const Sample *window, int down, Out *out,
             std::ptrdiff_t rowCount)
{
    Out sum0 = {}, sum1 = {}, sum2 = {}, sum3 = {};
    const std::ptrdiff_t next = down;
    for (int k = 0; k < numTaps; ++k) {
        sum0 = sum0 + taps[k] * window[k];
        sum1 = sum1 + taps[k] * window[k + next];
        sum2 = sum2 + taps[k] * window[k + 2 * next];
        sum3 = sum3 + taps[k] * window[k + 3 * next];
    }
    out[0] = sum0;
    out[rowCount] = sum1;
    out[2 * rowCount] = sum2;
    out[3 * rowCount] = sum3;
}

// The same outputs without planes: for steps too few or too long, and for rows too
// short, to pay for dealing samples. A few steps at a time, so that inputs and
// outputs of all rows stay in the cache.
template <typename Tap, typename Sample, typename Out>
void runPlainly(const RvxFirShape &shape, const Tap *taps, const Sample *window, Out *out,
                std::ptrdiff_t steps)
{
    constexpr std::ptrdiff_t band = 8;
    const std::ptrdiff_t down = shape.downFactor, up = shape.rowCount;
    for (std::ptrdiff_t from = 0; from < steps; from += band) {
        const std::ptrdiff_t past = std::min(from + band, steps);
        for (int i = 0; i < shape.rowCount; ++i) {
            const rvxFirPhaseRow &row = shape.rows[i];
            const Tap *rowTaps = taps + row.tapOffset;
            const Sample *first = window + row.dlyOffset;
            std::ptrdiff_t m = from;
            for (; m + 4 <= past; m += 4)
                sumFour(rowTaps, row.numTaps, first + m * down, shape.downFactor, out + m * up + i,
                        up);
            for (; m < past; ++m)
                out[m * up + i] = rvxFirSum(Out{}, rowTaps, first + m * down, row.numTaps);
        }
    }
}

// Single-rate filters with real taps; the last outputs, too few for a vector, one by
// one.
template <typename Tap, typename Sample, typename Out>
void runSliding(const RvxFirShape &shape, const Tap *taps, const Sample *window, Out *out,
                std::ptrdiff_t steps)
{
    if constexpr (partsOf<Tap> == 1) {
        constexpr int band = 1 << 16;
        constexpr int parts = partsOf<Sample>;
        std::ptrdiff_t m = 0;
        while (steps - m >= 4 / parts) {
            const int n = static_cast<int>(std::min<std::ptrdiff_t>(steps - m, band)) * parts & ~3;
            const auto *x = reinterpret_cast<const double *>(window + m);
            auto *y = reinterpret_cast<double *>(out + m);
            if (parts == 1)
                firSlide(taps, shape.tapsLen, x, y, n);
            else
                firPaired(taps, shape.tapsLen, x, y, n);
            m += n / parts;
        }
        for (; m < steps; ++m)
            out[m] = rvxFirSum(Out{}, taps, window + m, shape.tapsLen);
    }
}

// How many steps and window positions, in steps, a tile holds.
struct TileSize {
    int steps;
    int span;
    int stride;
};

TileSize tileSize(int period, int sets, int viewSpan)
{
    const int stride = RVX_TILE / sets / period / RVX_LINE * RVX_LINE;
    const int span = std::min(viewSpan, stride / 2);
    const int steps = stride - span - 3;
    constexpr int widest = 4 * RVX_GROUP;
    return {steps >= widest ? steps / widest * widest : steps / 4 * 4, span, stride};
}

} // namespace

template <typename Tap, typename Sample>
void rvxFirRun(const RvxFirShape &shape, const Tap *taps, const Sample *window,
               RvxFirOut<Tap, Sample> *out, std::ptrdiff_t steps)
{
    constexpr int minStride = 2 * RVX_LINE;
    constexpr int sets = hasTwoSets<Tap, Sample> ? 2 : 1;
    const std::int64_t period = std::int64_t{partsOf<Sample>} * shape.downFactor;
    const bool slides = partsOf<Tap> == 1 && shape.downFactor == 1 && shape.rowCount == 1;
    if (slides && (partsOf<Sample> == 2 || shape.tapsLen <= RVX_SLIDE_LIMIT)) {
        runSliding(shape, taps, window, out, steps);
        return;
    }
    if (steps < 4 || period * sets * minStride > RVX_TILE || shape.tapsLen < 4 * shape.rowCount) {
        runPlainly(shape, taps, window, out, steps);
        return;
    }
    // Real samples that meet complex taps serve two products a load as they are.
    const bool isPlane =
        partsOf<Sample> == 1 && partsOf<Tap> == 2 && shape.downFactor == 1 && shape.rowCount == 1;
    if (isPlane && steps % 4 != 0) {
        runPlainly(shape, taps, window + steps / 4 * 4, out + steps / 4 * 4, steps % 4);
        steps -= steps % 4;
    }
    const int down = shape.downFactor;
    const int viewLen = shape.dlylLen + down;
    const TileSize size = tileSize(static_cast<int>(period), sets, (viewLen + down - 1) / down);
    for (std::ptrdiff_t m = 0; m < steps; m += size.steps) {
        const int tileSteps = static_cast<int>(std::min<std::ptrdiff_t>(steps - m, size.steps));
        for (std::int64_t begin = 0; begin < viewLen; begin += size.span * down) {
            const int end =
                static_cast<int>(std::min<std::int64_t>(viewLen, begin + size.span * down));
            runTile(FirTile<Tap, Sample>{shape, taps, window + m * down + begin,
                                         out + m * shape.rowCount, tileSteps,
                                         static_cast<int>(begin), end, size.stride, isPlane});
        }
    }
}

template <typename Tap, typename Sample>
RvxFirOut<Tap, Sample> rvxFirSum(RvxFirOut<Tap, Sample> sum, const Tap *taps, const Sample *window,
                                 int n)
{
    for (int k = 0; k < n; ++k)
        sum = sum + taps[k] * window[k];
    return sum;
}

template void rvxFirRun(const RvxFirShape &, const double *, const double *, double *,
                        std::ptrdiff_t);
template void rvxFirRun(const RvxFirShape &, const ZCplx *, const ZCplx *, ZCplx *, std::ptrdiff_t);
template void rvxFirRun(const RvxFirShape &, const ZCplx *, const double *, ZCplx *,
                        std::ptrdiff_t);
template void rvxFirRun(const RvxFirShape &, const double *, const ZCplx *, ZCplx *,
                        std::ptrdiff_t);
template double rvxFirSum(double, const double *, const double *, int);
template ZCplx rvxFirSum(ZCplx, const ZCplx *, const ZCplx *, int);
template ZCplx rvxFirSum(ZCplx, const ZCplx *, const double *, int);
template ZCplx rvxFirSum(ZCplx, const double *, const ZCplx *, int);
