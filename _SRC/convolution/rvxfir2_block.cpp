// The transforms of a block: its rows, its columns over whole rows at a time, then
// the split, which joins each row with its mirror row.
//
// Two slots fill a register. The split, the product and the way back of the split
// are one pass over a pair of rows. In bit-reversed order mirror rows, and the slots
// k and n-k within them, are mirror images within their groups.

#include "convolution/rvxfir2_block.h"

#include "convolution/rvxfir2.h"
#include "convolution/rvxfir2_split.h"
#include "frame/rvxcplx.h"
#include "transform/rvxfftd.h"
#include "transform/rvxfftd_quads.h"

namespace {

// ---------------------------------------------------------------------------
// Columns

// What stands side by side in a register: two slots, or the one of a row that has no
// more.
struct TwoSlots {
    static constexpr std::int64_t count = 2;
    static RVX_INLINE Lanes load(const ZCplx *p) { return loadLanes(p); }
    static RVX_INLINE void store(ZCplx *p, Lanes a) { storeLanes(p, a); }
};

struct OneSlot {
    static constexpr std::int64_t count = 1;
    static RVX_INLINE Lanes load(const ZCplx *p) { return allLanes(*p); }
    static RVX_INLINE void store(ZCplx *p, Lanes a) { storeFirst(p, a); }
};

// A factor of a whole row.
struct RowFactor {
    Lanes re;
    Lanes im;
};

RVX_INLINE RowFactor rowFactor(ZCplx w)
{
    return {allLanes(w.re), allLanes(w.im)};
}

RVX_INLINE RowFactor conjugateFactor(ZCplx w)
{
    return {allLanes(w.re), allLanes(-w.im)};
}

RVX_INLINE Lanes operator*(Lanes a, RowFactor w)
{
    return subAdd(a * w.re, swapParts(a) * w.im);
}

RVX_INLINE void sumDifference(Lanes &a, Lanes &b)
{
    const Lanes sum = a + b;
    b = a - b;
    a = sum;
}

// What is done where rows of a column transform meet: down the columns (Split), and the
// mirror images of that with conjugate factors (Merge).

struct SplitTwo {
    RowFactor w;

    RVX_INLINE void turn(Lanes &a, Lanes &b) const
    {
        sumDifference(a, b);
        b = b * w;
    }
};

struct MergeTwo {
    RowFactor w;

    RVX_INLINE void turn(Lanes &a, Lanes &b) const
    {
        b = b * w;
        sumDifference(a, b);
    }
};

// Two radix-2 steps at once: over the distance of two strides with the factors `first`
// and `firstNext`, and over one with `second`.
struct SplitFour {
    RowFactor first, firstNext, second;

    RVX_INLINE void turn(Lanes &a, Lanes &b, Lanes &c, Lanes &d) const
    {
        sumDifference(a, c);
        sumDifference(b, d);
        c = c * first;
        d = d * firstNext;
        sumDifference(a, b);
        sumDifference(c, d);
        b = b * second;
        d = d * second;
    }
};

struct MergeFour {
    RowFactor first, firstNext, second;

    RVX_INLINE void turn(Lanes &a, Lanes &b, Lanes &c, Lanes &d) const
    {
        b = b * second;
        d = d * second;
        sumDifference(a, b);
        sumDifference(c, d);
        c = c * first;
        d = d * firstNext;
        sumDifference(a, c);
        sumDifference(b, d);
    }
};

// The same where the factors are 1, -i and 1.
struct SplitFourFirst {
    RVX_INLINE void turn(Lanes &a, Lanes &b, Lanes &c, Lanes &d) const
    {
        sumDifference(a, c);
        sumDifference(b, d);
        d = conjugated(swapParts(d));
        sumDifference(a, b);
        sumDifference(c, d);
    }
};

struct MergeFourFirst {
    RVX_INLINE void turn(Lanes &a, Lanes &b, Lanes &c, Lanes &d) const
    {
        sumDifference(a, b);
        sumDifference(c, d);
        d = negateEven(swapParts(d));
        sumDifference(a, c);
        sumDifference(b, d);
    }
};

// Rows of n slots, `stride` slots apart.
template <typename Slots, typename Work>
RVX_INLINE void overTwoRows(ZCplx *row, std::int64_t n, std::int64_t stride, Work work)
{
    for (std::int64_t s = 0; s < n; s += Slots::count) {
        ZCplx *p = row + s;
        Lanes a = Slots::load(p);
        Lanes b = Slots::load(p + stride);
        work.turn(a, b);
        Slots::store(p, a);
        Slots::store(p + stride, b);
    }
}

template <typename Slots, typename Work>
RVX_INLINE void overFourRows(ZCplx *row, std::int64_t n, std::int64_t stride, Work work)
{
    for (std::int64_t s = 0; s < n; s += Slots::count) {
        ZCplx *p = row + s;
        Lanes a = Slots::load(p);
        Lanes b = Slots::load(p + stride);
        Lanes c = Slots::load(p + 2 * stride);
        Lanes d = Slots::load(p + 3 * stride);
        work.turn(a, b, c, d);
        Slots::store(p, a);
        Slots::store(p + stride, b);
        Slots::store(p + 2 * stride, c);
        Slots::store(p + 3 * stride, d);
    }
}

// Decimation in frequency down the columns, from natural to bit-reversed rows.
template <typename Slots>
RVX_INLINE void splitColumns(ZCplx *data, std::int64_t rows, std::int64_t n, bool oddOrder,
                             const ZCplx *table)
{
    std::int64_t len = rows;
    if (oddOrder) {
        len /= 2;
        for (std::int64_t i = 0; i < len; ++i)
            overTwoRows<Slots>(data + i * n, n, len * n, SplitTwo{rowFactor(table[i])});
    }
    for (; len > 1; len /= 4) {
        const std::int64_t stride = len / 4;
        for (std::int64_t start = 0; start < rows; start += len) {
            overFourRows<Slots>(data + start * n, n, stride * n, SplitFourFirst{});
            for (std::int64_t i = 1; i < stride; ++i) {
                const ZCplx *w = table + i * (rows / len);
                const SplitFour work = {rowFactor(w[0]), rowFactor(w[rows / 4]),
                                        rowFactor(w[i * (rows / len)])};
                overFourRows<Slots>(data + (start + i) * n, n, stride * n, work);
            }
        }
    }
}

// Decimation in time, back to natural rows, with the conjugate kernel.
template <typename Slots>
RVX_INLINE void mergeColumns(ZCplx *data, std::int64_t rows, std::int64_t n, bool oddOrder,
                             const ZCplx *table)
{
    std::int64_t len = 4;
    for (; len <= rows; len *= 4) {
        const std::int64_t stride = len / 4;
        for (std::int64_t start = 0; start < rows; start += len) {
            overFourRows<Slots>(data + start * n, n, stride * n, MergeFourFirst{});
            for (std::int64_t i = 1; i < stride; ++i) {
                const ZCplx *w = table + i * (rows / len);
                const MergeFour work = {conjugateFactor(w[0]), conjugateFactor(w[rows / 4]),
                                        conjugateFactor(w[i * (rows / len)])};
                overFourRows<Slots>(data + (start + i) * n, n, stride * n, work);
            }
        }
    }
    if (oddOrder)
        for (std::int64_t i = 0; i < rows / 2; ++i)
            overTwoRows<Slots>(data + i * n, n, rows / 2 * n, MergeTwo{conjugateFactor(table[i])});
}

RVX_KERNEL void filterSplitColumns(ZCplx *data, std::int64_t rows, std::int64_t n, bool oddOrder,
                                   const ZCplx *table)
{
    if (n > 1)
        splitColumns<TwoSlots>(data, rows, n, oddOrder, table);
    else
        splitColumns<OneSlot>(data, rows, n, oddOrder, table);
}

RVX_KERNEL void filterMergeColumns(ZCplx *data, std::int64_t rows, std::int64_t n, bool oddOrder,
                                   const ZCplx *table)
{
    if (n > 1)
        mergeColumns<TwoSlots>(data, rows, n, oddOrder, table);
    else
        mergeColumns<OneSlot>(data, rows, n, oddOrder, table);
}

// ---------------------------------------------------------------------------
// Pairs of rows

// Four slots of a row, and the four of the mirror row that belong to them, from the
// last one down. The first four are one and one, and then a group of two. From rows of
// four slots on the filter's spectrum is arranged as such quads, real before imaginary
// parts, those of a mirror row where the row's own stand; it is half as large there, so
// that the tile's bins need not be halved.

RVX_INLINE Quad loadSlots(const ZCplx *first)
{
    const Lanes low = loadLanesOnce(first);
    const Lanes high = loadLanesOnce(first + 2);
    return quadOf(low, high);
}

RVX_INLINE void storeSlots(ZCplx *first, Quad a)
{
    storeLanes(first, firstTwo(a));
    storeLanes(first + 2, lastTwo(a));
}

RVX_INLINE Quad loadMirror(const ZCplx *last)
{
    const Lanes high = swapHalves(loadLanesOnce(last - 1));
    const Lanes low = swapHalves(loadLanesOnce(last - 3));
    return quadOf(high, low);
}

RVX_INLINE void storeMirror(ZCplx *last, Quad a)
{
    storeLanes(last - 1, swapHalves(firstTwo(a)));
    storeLanes(last - 3, swapHalves(lastTwo(a)));
}

RVX_INLINE Quad loadMirrorFront(const ZCplx *row)
{
    const Lanes low = loadLanesOnce(row);
    const Lanes high = swapHalves(loadLanesOnce(row + 2));
    return quadOf(low, high);
}

RVX_INLINE void storeMirrorFront(ZCplx *row, Quad a)
{
    storeLanes(row, firstTwo(a));
    storeLanes(row + 2, swapHalves(lastTwo(a)));
}

RVX_INLINE Quad arranged(const ZCplx *p)
{
    return {loadLanesOnce(&p->re), loadLanesOnce(&p->re + 4)};
}

RVX_INLINE void storeArranged(ZCplx *p, Quad a)
{
    storeLanes(&p->re, a.re);
    storeLanes(&p->re + 4, a.im);
}

// As splitRows, twice as large.
RVX_INLINE void splitQuads(Quad &k, Quad &m, Quad w)
{
    const Quad ab = {k.re + m.re, k.im - m.im};
    const Quad cd = {k.re - m.re, k.im + m.im};
    const Lanes t = cd.re * w.im + w.re * cd.im;
    const Lanes u = cd.re * w.re - cd.im * w.im;
    k = {ab.re + t, ab.im - u};
    m = {ab.re - t, ab.im + u};
}

// As joinRows.
RVX_INLINE void joinQuads(Quad &k, Quad &m, Quad w)
{
    const Quad ab = k + m;
    const Quad cd = k - m;
    const Lanes t = cd.re * w.im - w.re * cd.im;
    const Lanes u = cd.re * w.re + cd.im * w.im;
    k = {ab.re + t, ab.im + u};
    m = {ab.re - t, u - ab.im};
}

// What is done with a row and its mirror row: they are taken apart, for the filter;
// or taken apart, multiplied and put together again. Bins of the mirror row come
// backwards.
struct Split {
    RVX_INLINE Split rows(std::int64_t, std::int64_t) const { return *this; }
    template <typename Slots>
    RVX_INLINE void few(Lanes &k, Lanes &m, Lanes w) const
    {
        splitRows(k, m, w);
    }
    RVX_INLINE void quad(Quad &k, Quad &m, std::int64_t, Quad w) const
    {
        splitQuads(k, m, w);
        k = k * allLanes(0.5);
        m = m * allLanes(0.5);
    }
};

struct Convolve {
    const ZCplx *upper;
    const ZCplx *lower;

    RVX_INLINE Convolve rows(std::int64_t a, std::int64_t b) const
    {
        return {upper + a, lower + b};
    }
    template <typename Slots>
    RVX_INLINE void few(Lanes &k, Lanes &m, Lanes w) const
    {
        splitRows(k, m, w);
        k = cplxProduct(k, Slots::load(upper));
        m = cplxProduct(m, Slots::load(lower));
        joinRows(k, m, w);
    }
    RVX_INLINE void quad(Quad &k, Quad &m, std::int64_t p, Quad w) const
    {
        splitQuads(k, m, w);
        k = k * arranged(upper + p);
        m = m * arranged(lower + p);
        joinQuads(k, m, w);
    }
};

// Rows of one or two slots, each of which is its own mirror image.
template <typename Slots, typename Work>
RVX_INLINE void turnFew(ZCplx *upper, ZCplx *lower, const ZCplx *factors, Work work)
{
    Lanes k = Slots::load(upper);
    Lanes m = Slots::load(lower);
    work.template few<Slots>(k, m, Slots::load(factors));
    Slots::store(upper, k);
    Slots::store(lower, m);
}

template <typename Work>
RVX_INLINE void turnQuads(ZCplx *upper, ZCplx *lower, std::int64_t n, const ZCplx *factors,
                          Work work)
{
    Quad row = loadSlots(upper);
    Quad mirror = loadMirrorFront(lower);
    work.quad(row, mirror, 0, arranged(factors));
    storeSlots(upper, row);
    storeMirrorFront(lower, mirror);
    for (std::int64_t group = 4; group < n; group *= 2)
        for (std::int64_t p = group; p < 2 * group; p += 4) {
            ZCplx *last = lower + (3 * group - 1 - p);
            row = loadSlots(upper + p);
            mirror = loadMirror(last);
            work.quad(row, mirror, p, arranged(factors + p));
            storeSlots(upper + p, row);
            storeMirror(last, mirror);
        }
}

// All rows but the first two positions, which are their own mirror images. Of two
// mirror rows the one at the even position has the lower frequency.
template <typename Work>
RVX_INLINE void turnRows(ZCplx *data, std::int64_t rows, std::int64_t n, const ZCplx *factors,
                         Work all)
{
    for (std::int64_t group = 2; group < rows; group *= 2)
        for (std::int64_t a = group; a < 2 * group; a += 2) {
            const std::int64_t b = 3 * group - 1 - a;
            const Work work = all.rows(a * n, b * n);
            if (n == 1)
                turnFew<OneSlot>(data + a * n, data + b * n, factors, work);
            else if (n == 2)
                turnFew<TwoSlots>(data + a * n, data + b * n, factors, work);
            else
                turnQuads(data + a * n, data + b * n, n, factors, work);
        }
}

RVX_KERNEL void filterSplitRows(ZCplx *data, std::int64_t rows, std::int64_t n,
                                const ZCplx *factors)
{
    turnRows(data, rows, n, factors, Split{});
}

RVX_KERNEL void filterConvolveRows(ZCplx *tile, const ZCplx *filter, std::int64_t rows,
                                   std::int64_t n, const ZCplx *factors)
{
    turnRows(tile, rows, n, factors, Convolve{filter, filter});
}

// A row of the filter's spectrum, or its mirror row, to the order in which the tile's
// bins come.
void arrangeRow(ZCplx *row, std::int64_t n, bool mirror)
{
    const Lanes half = allLanes(0.5);
    if (n >= 4)
        storeArranged(row, (mirror ? loadMirrorFront(row) : loadSlots(row)) * half);
    for (std::int64_t group = 4; group < n; group *= 2)
        for (std::int64_t first = group, last = 2 * group - 4; first <= last;
             first += 4, last -= 4) {
            const Quad a = mirror ? loadMirror(row + (last + 3)) : loadSlots(row + first);
            const Quad b = mirror ? loadMirror(row + (first + 3)) : loadSlots(row + last);
            storeArranged(row + first, a * half);
            storeArranged(row + last, b * half);
        }
}

// Packed spectra of real lines: two real bins and n - 1 complex ones.
RVX_KERNEL void filterProduct(ZCplx *line, const ZCplx *filter, std::int64_t n)
{
    line[0] = {line[0].re * filter[0].re, line[0].im * filter[0].im};
    for (std::int64_t s = 1; s < n; ++s)
        line[s] = line[s] * filter[s];
}

constexpr int forwardFlags = RVX_FFT_FORWARD | RVX_FFT_OUT_BIT_REV;
constexpr int inverseFlags = RVX_FFT_INVERSE | RVX_FFT_IN_BIT_REV;

// Rows and columns; rows from `used` on hold zeros, whose transform they are.
void transformLines(const Filter2dBlock &block, ZCplx *data, std::int64_t used)
{
    for (std::int64_t r = 0; r < used; ++r)
        rvxFftDif(data + r * block.n, static_cast<int>(block.n), 1, block.lineTblDif);
    filterSplitColumns(data, block.rows, block.n, block.rowsOrder % 2 != 0, block.columnTbl);
}

} // namespace

void ownFilter2dSpectrum(const Filter2dBlock &block, ZCplx *data, std::int64_t used)
{
    transformLines(block, data, used);
    rvxRealSplitFwd(data, block.lineOrder, forwardFlags);
    rvxRealSplitFwd(data + block.n, block.lineOrder, forwardFlags);
    filterSplitRows(data, block.rows, block.n, block.factors);
    for (std::int64_t r = 2; r < block.rows; ++r)
        arrangeRow(data + r * block.n, block.n, r % 2 != 0);
}

void ownFilter2dFactors(const Filter2dBlock &block, const ZCplx *table, ZCplx *factors)
{
    const auto n = static_cast<std::uint32_t>(block.n);
    for (std::uint32_t p = 0, k = 0; p < n; ++p) {
        factors[p] = table[k];
        std::uint32_t bit = n >> 1; // the successor of k in reversed order
        for (; (k & bit) != 0; bit >>= 1)
            k ^= bit;
        k |= bit;
    }
    for (std::int64_t p = 0; p + 4 <= block.n; p += 4)
        storeArranged(factors + p, loadSlots(factors + p));
}

void ownFilter2dConvolve(const Filter2dBlock &block, ZCplx *tile, const ZCplx *filter,
                         std::int64_t wanted)
{
    transformLines(block, tile, block.rows);
    for (std::int64_t r = 0; r < 2; ++r) {
        ZCplx *line = tile + r * block.n;
        rvxRealSplitFwd(line, block.lineOrder, forwardFlags);
        filterProduct(line, filter + r * block.n, block.n);
        rvxRealSplitInv(line, block.lineOrder, inverseFlags);
    }
    filterConvolveRows(tile, filter, block.rows, block.n, block.factors);
    filterMergeColumns(tile, block.rows, block.n, block.rowsOrder % 2 != 0, block.columnTbl);
    for (std::int64_t r = wanted; r < block.rows; ++r)
        rvxFftDit(tile + r * block.n, static_cast<int>(block.n), -1, block.lineTblDit);
}
