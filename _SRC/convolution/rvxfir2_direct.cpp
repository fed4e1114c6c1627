// The direct sum: output columns in lanes, as many registers of sums at once as cover
// the latency of an addition. The kernel is read backwards.
//
// Sums add their products in one order, whichever columns share a register. At the
// edges registers reach beyond the row; the products there are masked out, since a
// kernel may hold infinities, and a sum that began at +0.0 is not changed by one more
// +0.0.

#include <algorithm>

#include "convolution/rvxfir2_paths.h"
#include "frame/rvxlanes.h"

namespace {

constexpr std::int64_t RVX_LANES = 4;
// Registers of sums: enough to cover the latency of an addition, or what narrow images
// have room for.
constexpr int RVX_MANY = 4;
constexpr int RVX_FEW = 2;

struct Image : Filter2d {
    explicit Image(const Filter2d &task)
        : Filter2d(task), anchorRow((hRows - 1) >> 1), anchorCol((hCols - 1) >> 1)
    {
    }

    // Row i of the turned kernel, whose values stand downwards from here.
    RVX_INLINE const double *taps(std::int64_t i) const { return h + ((hRows - i) * hCols - 1); }
    // What meets the first tap of a row for column c, which may lie before the row.
    RVX_INLINE std::int64_t under(std::int64_t row, std::int64_t c) const
    {
        return row * xCols + c - anchorCol;
    }

    // Whether the kernel on row r lies between the first and the last row.
    RVX_INLINE bool hasWholeRows(std::int64_t r) const
    {
        return r >= anchorRow && r - anchorRow + hRows <= xRows;
    }

    std::int64_t anchorRow;
    std::int64_t anchorCol;
};

// Sums of one output row.
template <int vectors>
struct Sums {
    Lanes at[vectors];

    RVX_INLINE void clear()
    {
        for (int v = 0; v < vectors; ++v)
            at[v] = allLanes(0.0);
    }
};

// Columns that have every tap within the row.
template <int vectors>
struct Inner {
    Inner(const Image &, std::int64_t c) : column(c) {}

    RVX_INLINE void add(const Image &im, std::int64_t row, const double *taps,
                        Sums<vectors> &sums) const
    {
        const double *x = im.x + im.under(row, column);
        for (std::int64_t j = 0; j < im.hCols; ++j) {
            const Lanes tap = allLanes(taps[-j]);
            for (int v = 0; v < vectors; ++v)
                sums.at[v] = sums.at[v] + tap * loadLanes(x + (j + RVX_LANES * v));
        }
    }

    RVX_INLINE void addTwo(const Image &im, std::int64_t row, const double *upperTaps,
                           const double *lowerTaps, Sums<vectors> &upper,
                           Sums<vectors> &lower) const
    {
        const double *x = im.x + im.under(row, column);
        for (std::int64_t j = 0; j < im.hCols; ++j) {
            const Lanes upperTap = allLanes(upperTaps[-j]);
            const Lanes lowerTap = allLanes(lowerTaps[-j]);
            for (int v = 0; v < vectors; ++v) {
                const Lanes values = loadLanesOnce(x + (j + RVX_LANES * v));
                upper.at[v] = upper.at[v] + upperTap * values;
                lower.at[v] = lower.at[v] + lowerTap * values;
            }
        }
    }

    RVX_INLINE void store(const Image &, double *y, const Sums<vectors> &sums) const
    {
        for (int v = 0; v < vectors; ++v)
            storeLanes(y + (column + RVX_LANES * v), sums.at[v]);
    }

    std::int64_t column;
};

// All ones from element 4 to 7: four lanes from element 4 + s are those at which
// 0 <= lane + s < 4.
constexpr std::int64_t maskRamp[] = {0, 0, 0, 0, -1, -1, -1, -1, 0, 0, 0, 0};

// Four columns, some taps of which may lie beside the row.
struct Edge {
    // Taps from `first` to `last` reach a lane, from `full` to `fullEnd` all of them.
    Edge(const Image &im, std::int64_t c) : column(c), offset(c - im.anchorCol)
    {
        first = std::max<std::int64_t>(0, -offset - (RVX_LANES - 1));
        last = std::min(im.hCols, im.xCols - offset);
        full = std::min(last, std::max<std::int64_t>(0, -offset));
        fullEnd = std::max(full, std::min(im.hCols, im.xCols - offset - (RVX_LANES - 1)));
    }

    RVX_INLINE LaneMask mask(const Image &im, std::int64_t j) const
    {
        const std::int64_t start = offset + j;
        return rampAt(std::min<std::int64_t>(start, 0)) &
               rampAt(std::max<std::int64_t>(0, start - im.xCols + RVX_LANES));
    }

    static RVX_INLINE LaneMask rampAt(std::int64_t shift)
    {
        LaneMask mask;
        __builtin_memcpy(&mask.b, maskRamp + RVX_LANES + shift, sizeof mask.b);
        return mask;
    }

    // Neighbouring rows lend what lies beside this one; before the first and behind
    // the last there is nothing to read.
    static RVX_INLINE Lanes loadBeside(const Image &im, std::int64_t at)
    {
        const std::int64_t len = im.xCols * im.xRows;
        if (at >= 0 && at + RVX_LANES <= len)
            return loadLanes(im.x + at);
        double values[RVX_LANES];
        for (std::int64_t lane = 0; lane < RVX_LANES; ++lane)
            values[lane] = at + lane >= 0 && at + lane < len ? im.x[at + lane] : 0.0;
        return loadLanes(values);
    }

    RVX_INLINE void add(const Image &im, std::int64_t row, const double *taps, Sums<1> &sums) const
    {
        const std::int64_t start = im.under(row, column);
        Lanes sum = sums.at[0];
        for (std::int64_t j = first; j < full; ++j)
            sum = sum + onlyWhere(mask(im, j), allLanes(taps[-j]) * loadBeside(im, start + j));
        for (std::int64_t j = full; j < fullEnd; ++j)
            sum = sum + allLanes(taps[-j]) * loadLanes(im.x + (start + j));
        for (std::int64_t j = fullEnd; j < last; ++j)
            sum = sum + onlyWhere(mask(im, j), allLanes(taps[-j]) * loadBeside(im, start + j));
        sums.at[0] = sum;
    }

    RVX_INLINE void store(const Image &im, double *y, const Sums<1> &sums) const
    {
        if (column + RVX_LANES <= im.xCols)
            storeLanes(y + column, sums.at[0]);
        else
            for (std::int64_t lane = 0; column + lane < im.xCols; ++lane)
                y[column + lane] = sums.at[0].v[lane];
    }

    std::int64_t column;
    std::int64_t offset;
    std::int64_t first;
    std::int64_t full;
    std::int64_t fullEnd;
    std::int64_t last;
};

// One output row.
template <int vectors, typename Columns>
RVX_INLINE void filterRow(const Image &im, std::int64_t r, const Columns &columns)
{
    Sums<vectors> sums;
    sums.clear();
    std::int64_t row = std::max<std::int64_t>(0, r - im.anchorRow);
    std::int64_t i = row - r + im.anchorRow;
    for (; i < im.hRows && row < im.xRows; ++i, ++row)
        columns.add(im, row, im.taps(i), sums);
    columns.store(im, im.y + r * im.xCols, sums);
}

// Rows r and r + 1, which have all of their at least two kernel rows within the image.
// Each load serves both, the lower one's kernel a row behind.
template <int vectors, typename Columns>
RVX_INLINE void filterTwoRows(const Image &im, std::int64_t r, const Columns &columns)
{
    Sums<vectors> upper;
    Sums<vectors> lower;
    upper.clear();
    lower.clear();
    const std::int64_t row = r - im.anchorRow;
    columns.add(im, row, im.taps(0), upper);
    for (std::int64_t i = 1; i < im.hRows; ++i)
        columns.addTwo(im, row + i, im.taps(i), im.taps(i - 1), upper, lower);
    columns.add(im, row + im.hRows, im.taps(im.hRows - 1), lower);
    columns.store(im, im.y + r * im.xCols, upper);
    columns.store(im, im.y + (r + 1) * im.xCols, lower);
}

// Columns from c to end, which have every tap within the row; at least a tile of them.
// What does not fill a tile is covered by one that overlaps its neighbour: computed
// twice, the sums are the same twice.
template <int vectors>
RVX_INLINE void filterInner(const Image &im, std::int64_t r, std::int64_t c, std::int64_t end,
                            bool two)
{
    constexpr std::int64_t tile = vectors * RVX_LANES;
    for (; c < end; c += tile) {
        const Inner<vectors> columns(im, std::min(c, end - tile));
        if (two)
            filterTwoRows<vectors>(im, r, columns);
        else
            filterRow<vectors>(im, r, columns);
    }
}

RVX_INLINE void filterEdge(const Image &im, std::int64_t r, std::int64_t c, bool two)
{
    const std::int64_t inside = std::max<std::int64_t>(0, std::min(c, im.xCols - RVX_LANES));
    const Edge columns(im, inside);
    filterRow<1>(im, r, columns);
    if (two)
        filterRow<1>(im, r + 1, columns);
}

RVX_KERNEL void filterDirect(const Image &im)
{
    const std::int64_t innerEnd = im.xCols - im.hCols + im.anchorCol + 1;
    const std::int64_t innerLen = innerEnd - im.anchorCol;
    const std::int64_t inner = innerLen >= RVX_FEW * RVX_LANES ? im.anchorCol : im.xCols;
    bool two = false;
    for (std::int64_t r = 0; r < im.xRows; r += two ? 2 : 1) {
        two = im.hasWholeRows(r) && im.hasWholeRows(r + 1) && im.hRows > 1;
        for (std::int64_t c = 0; c < im.xCols;) {
            if (c != inner) {
                filterEdge(im, r, c, two);
                c = c < inner ? std::min(c + RVX_LANES, inner) : c + RVX_LANES;
                continue;
            }
            if (innerLen >= RVX_MANY * RVX_LANES)
                filterInner<RVX_MANY>(im, r, inner, innerEnd, two);
            else
                filterInner<RVX_FEW>(im, r, inner, innerEnd, two);
            c = innerEnd;
        }
    }
}

} // namespace

void ownFilter2dDirect(const Filter2d &task)
{
    filterDirect(Image(task));
}
