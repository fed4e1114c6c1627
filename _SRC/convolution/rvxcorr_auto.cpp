// Autocorrelation by block transforms.
//
// A block meets itself and its right neighbour, whose spectrum, shifted by half the
// transform's length, changes sign at the odd frequencies; so each block is
// transformed once, going from the last to the first. In bit-reversed order the odd
// frequencies are the upper half of the slots.

#include <algorithm>
#include <utility>

#include "convolution/rvxcorr_blocks.h"
#include "convolution/rvxcorr_paths.h"
#include "convolution/rvxfir2.h"
#include "frame/rvxbuffer.h"
#include "frame/rvxcplx.h"
#include "transform/rvxfftd.h"
#include "transform/rvxmisc.h"
#include "transform/rvxtwd.h"

namespace {

// acc[i] = |y[i]|^2
RVX_KERNEL void setPowers(const ZCplx *y, ZCplx *acc, std::int64_t n)
{
    for (std::int64_t i = 0; i < n; ++i)
        acc[i] = {y[i].re * y[i].re + y[i].im * y[i].im, 0.0};
}

// acc[i] += conj(x[i]) * (x[i] + y[i]) in the lower half, (x[i] - y[i]) in the upper.
RVX_KERNEL void addNeighbours(const ZCplx *x, const ZCplx *y, ZCplx *acc, std::int64_t n)
{
    for (std::int64_t i = 0; i < n / 2; i += 2) {
        const Lanes own = loadLanesOnce(x + i);
        const Lanes sum = own + loadLanes(y + i);
        storeLanes(acc + i, loadLanes(acc + i) + conjugateProduct(own, sum));
    }
    for (std::int64_t i = n / 2; i < n; i += 2) {
        const Lanes own = loadLanesOnce(x + i);
        const Lanes difference = own - loadLanes(y + i);
        storeLanes(acc + i, loadLanes(acc + i) + conjugateProduct(own, difference));
    }
}

// The same for packed spectra, whose first slot holds two real values.
void setPackedPowers(const ZCplx *y, ZCplx *acc, std::int64_t n)
{
    setPowers(y, acc, n);
    acc[0] = {y[0].re * y[0].re, y[0].im * y[0].im};
}

void addPackedNeighbours(const ZCplx *x, const ZCplx *y, ZCplx *acc, std::int64_t n)
{
    const ZCplx first = {acc[0].re + (y[0].re + x[0].re) * x[0].re,
                         acc[0].im + (y[0].im + x[0].im) * x[0].im};
    addNeighbours(x, y, acc, n);
    acc[0] = first;
}

// What differs between the forms: the transforms' order for blocks of 2^order values,
// and what a block's samples and their spectrum are.
struct RealForm {
    static constexpr int shorter = 1;
    using Tables = CorrTables;

    static bool obtain(int order, Tables *tables)
    {
        return ownObtainTables(order + 1, {false, true, true}, tables);
    }

    static void drop(const Tables &tables) { ownDropTables(tables); }

    static void transform(const AutoTask<double> &task, std::int64_t begin, std::int64_t end,
                          int order, const Tables &tables, ZCplx *dst)
    {
        const int n = 1 << order;
        ownCopyPiece(task.src, 0, end, begin, &dst->re, 2 * std::int64_t{n});
        rvxFftDifByFactors(dst, n, 1, tables.half, 1.0);
        rvxSplitReversed(dst, order, tables.firstQuarter);
    }

    static void set(const ZCplx *y, ZCplx *acc, std::int64_t n) { setPackedPowers(y, acc, n); }

    static void add(const ZCplx *x, const ZCplx *y, ZCplx *acc, std::int64_t n)
    {
        addPackedNeighbours(x, y, acc, n);
    }

    static const double *finish(ZCplx *acc, int order, const Tables &tables)
    {
        rvxJoinReversed(acc, order, tables.circleEnd);
        rvxFftDitByFactors(acc, 1 << order, -1, tables.half, 1.0);
        return &acc->re;
    }
};

struct ComplexForm {
    static constexpr int shorter = 0;
    struct Tables {
        const ZCplx *forward, *back;
    };

    // They stay in the thread, but for those of bit reversal: deliberate.
    static bool obtain(int order, Tables *tables)
    {
        *tables = {rvxGetFftTwdDif(order), rvxGetFftTwdDit(order)};
        return tables->forward != nullptr && tables->back != nullptr;
    }

    static void drop(const Tables &) { rvxFreeBitRevTables(); }

    static void transform(const AutoTask<ZCplx> &task, std::int64_t begin, std::int64_t end,
                          int order, const Tables &tables, ZCplx *dst)
    {
        const int n = 1 << order;
        ownCopyPiece(task.src, 0, end, begin, dst, n);
        rvxFftDif(dst, n, 1, tables.forward);
    }

    static void set(const ZCplx *y, ZCplx *acc, std::int64_t n) { setPowers(y, acc, n); }

    static void add(const ZCplx *x, const ZCplx *y, ZCplx *acc, std::int64_t n)
    {
        addNeighbours(x, y, acc, n);
    }

    static const ZCplx *finish(ZCplx *acc, int order, const Tables &tables)
    {
        rvxFftDit(acc, 1 << order, -1, tables.back);
        return acc;
    }
};

double weight(double scale, std::int64_t len, std::int64_t k, int corrType)
{
    if (corrType == RVX_AUTOCORR_BIASED)
        return scale / static_cast<double>(len);
    return corrType == RVX_AUTOCORR_UNBIASED ? scale / static_cast<double>(len - k) : scale;
}

template <typename Form, typename Sample>
bool autoBlocks(const AutoTask<Sample> &task, int corrType)
{
    const CorrBlocks blocks = ownCorrBlocks(task.len, task.lags);
    const int order = blocks.order - Form::shorter;
    CorrBuffers buffers;
    if (blocks.order > RVX_CORR_MAX_ORDER)
        return false;
    const std::int64_t n = std::int64_t{1} << order;
    if (!ownObtainBuffers(n, n, n, &buffers))
        return false;
    typename Form::Tables tables;
    const bool there = Form::obtain(order, &tables);
    if (there) {
        std::int64_t begin = (blocks.count - 1) * blocks.half;
        Form::transform(task, begin, task.len, order, tables, buffers.y);
        Form::set(buffers.y, buffers.acc, n);
        for (; begin > 0; begin -= blocks.half) {
            Form::transform(task, begin - blocks.half, begin, order, tables, buffers.x);
            Form::add(buffers.x, buffers.y, buffers.acc, n);
            std::swap(buffers.x, buffers.y);
        }
        const Sample *sums = Form::finish(buffers.acc, order, tables);
        const double scale = 1.0 / static_cast<double>(blocks.whole);
        for (std::int64_t k = 0; k < task.lags; ++k)
            task.dst[k] = sums[k] * weight(scale, task.len, k, corrType);
    }
    Form::drop(tables);
    ownReleaseBuffers(buffers);
    return there;
}

} // namespace

template <>
bool ownAutoBlocks(const AutoTask<double> &task, int corrType)
{
    return autoBlocks<RealForm>(task, corrType);
}

template <>
bool ownAutoBlocks(const AutoTask<ZCplx> &task, int corrType)
{
    return autoBlocks<ComplexForm>(task, corrType);
}
