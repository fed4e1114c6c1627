// rvxcnv2d: two-dimensional convolution as the sum that defines it.
//
// The stated order is that of adding the walked operand's coefficients one after the
// other to all of y. The order inside one output is all that shows of it, so y is
// made in tiles that stay in registers, where one load serves all the rows that a value
// counts in.

#include <algorithm>
#include <cmath>

#include "convolution/rvxcnv2d.h"
#include "frame/rvxkernel.h"
#include "frame/rvxlanes.h"

namespace {

// The narrower operand is walked. It has no more columns than this, and no more rows
// either but where the wider one is the one below 8 by 8.
enum { RVX_WALKED_MAX = 16 };

// The coefficients with which a row of A counts in the two rows of a tile.
struct Pair {
    double upper;
    double lower;
};

// The walked operand, column by column from top to bottom; 0.0 for what is passed
// over. Each coefficient stands with the one below it.
struct Coefficients {
    Pair pair[RVX_WALKED_MAX * RVX_WALKED_MAX];
    double spread[3 * RVX_WALKED_MAX][4]; // each in four lanes, where columns have three
    std::int64_t rows;
    std::int64_t cols;
    bool plain; // all are finite and none is zero
};

void setColumns(Coefficients &k, Matrix b)
{
    k.rows = b.rows;
    k.cols = b.cols;
    k.plain = true;
    for (std::int64_t c = 0; c < b.cols; ++c)
        for (std::int64_t r = 0; r < b.rows; ++r) {
            const double value = b.data[r * b.cols + c];
            Pair *pair = k.pair + c * b.rows + r;
            pair->upper = std::isnan(value) ? 0.0 : value;
            if (r > 0)
                pair[-1].lower = pair->upper;
            if (b.rows == 3)
                std::fill_n(k.spread[c * 3 + r], 4, pair->upper);
            k.plain = k.plain && std::isfinite(value) && value != 0.0;
        }
}

// ---------------------------------------------------------------------------
// One tile

// Rows of A. at(k) is the value that the first coefficient of all meets in row k of the
// tile, in its first output; rows above the tile's count from -1 on.
struct InnerRows {
    const double *a;
    std::int64_t stride;

    RVX_INLINE const double *at(std::int64_t k) const { return a + k * stride; }
};

// The same where some rows are not A's but zeros that stand elsewhere.
struct EdgeRows {
    const double *row[RVX_WALKED_MAX + 3];
    std::int64_t above;

    RVX_INLINE const double *at(std::int64_t k) const { return row[above + k]; }
};

template <int tileRows, int vectors>
struct TileSums {
    Lanes row[tileRows][vectors];
};

// The values from `a` on count in one row of the tile.
template <int vectors>
RVX_INLINE void addToRow(Lanes *row, const double *a, double coefficient)
{
    const Lanes factor = allLanes(coefficient);
    for (int v = 0; v < vectors; ++v)
        row[v] = row[v] + loadLanes(a + 4 * v) * factor;
}

// Two rows of 24 outputs, for any number of coefficients.
struct LowTile {
    static constexpr int rows = 2, cols = 24, vectors = cols / 4;
    using Sums = TileSums<rows, vectors>;

    static RVX_INLINE void addToBoth(Sums &sums, const double *a, Pair pair)
    {
        const Lanes upper = allLanes(pair.upper), lower = allLanes(pair.lower);
        for (int v = 0; v < vectors; ++v) {
            const Lanes values = loadLanesOnce(a + 4 * v);
            sums.row[0][v] = sums.row[0][v] + values * upper;
            sums.row[1][v] = sums.row[1][v] + values * lower;
        }
    }

    // All that column c of the coefficients gives. Rows are walked upwards, so that each
    // output takes its coefficients downwards.
    template <typename Rows>
    static RVX_INLINE void addColumn(Sums &sums, const Rows &a, const Coefficients &k,
                                     std::int64_t c)
    {
        const Pair *pair = k.pair + c * k.rows;
        addToRow<vectors>(sums.row[1], a.at(1) - c, pair->upper);
        for (std::int64_t r = 0; r < k.rows - 1; ++r)
            addToBoth(sums, a.at(-r) - c, pair[r]);
        addToRow<vectors>(sums.row[0], a.at(1 - k.rows) - c, pair[k.rows - 1].upper);
    }
};

// Four rows of 8 outputs, for columns of three coefficients: all stay in registers.
struct HighTile {
    static constexpr int rows = 4, cols = 8, vectors = cols / 4;
    using Sums = TileSums<rows, vectors>;

    // Four values of row r of A, counted from the tile's first one.
    template <int r>
    static RVX_INLINE void addRow(Sums &sums, int v, const double *a, Lanes first, Lanes second,
                                  Lanes third)
    {
        const Lanes values = loadLanes(a + 4 * v);
        if constexpr (r >= 0)
            sums.row[r][v] = sums.row[r][v] + values * first;
        if constexpr (r >= -1 && r < rows - 1)
            sums.row[r + 1][v] = sums.row[r + 1][v] + values * second;
        if constexpr (r < rows - 2)
            sums.row[r + 2][v] = sums.row[r + 2][v] + values * third;
    }

    template <typename Rows>
    static RVX_INLINE void addColumn(Sums &sums, const Rows &a, const Coefficients &k,
                                     std::int64_t c)
    {
        const Lanes first = loadLanesOnce(k.spread[3 * c]);
        const Lanes second = loadLanesOnce(k.spread[3 * c + 1]);
        const Lanes third = loadLanesOnce(k.spread[3 * c + 2]);
        for (int v = 0; v < vectors; ++v) {
            addRow<3>(sums, v, a.at(3) - c, first, second, third);
            addRow<2>(sums, v, a.at(2) - c, first, second, third);
            addRow<1>(sums, v, a.at(1) - c, first, second, third);
            addRow<0>(sums, v, a.at(0) - c, first, second, third);
            addRow<-1>(sums, v, a.at(-1) - c, first, second, third);
            addRow<-2>(sums, v, a.at(-2) - c, first, second, third);
        }
    }
};

template <typename Tile, typename Rows>
RVX_INLINE typename Tile::Sums tileSums(const Rows &a, const Coefficients &k, std::int64_t kCols)
{
    typename Tile::Sums sums;
    for (int r = 0; r < Tile::rows; ++r)
        for (int v = 0; v < Tile::vectors; ++v)
            sums.row[r][v] = allLanes(0.0);
    for (std::int64_t c = 0; c < kCols; ++c)
        Tile::addColumn(sums, a, k, c);
    return sums;
}

// The first `count` rows.
template <int tileRows, int vectors>
RVX_INLINE void storeTile(const TileSums<tileRows, vectors> &sums, double *y, std::int64_t stride,
                          std::int64_t count = tileRows)
{
    for (int r = 0; r < tileRows && r < count; ++r)
        for (int v = 0; v < vectors; ++v)
            storeLanes(y + r * stride + 4 * v, sums.row[r][v]);
}

template <int tileRows, int vectors>
RVX_INLINE bool allFinite(const TileSums<tileRows, vectors> &sums)
{
    Lanes zero = allLanes(0.0);
    for (int r = 0; r < tileRows; ++r)
        for (int v = 0; v < vectors; ++v)
            zero = zero + (sums.row[r][v] - sums.row[r][v]);
    return everyLane(isEqual(zero, allLanes(0.0)));
}

// ---------------------------------------------------------------------------
// Tiles at any place

struct Sum {
    Matrix a;
    Matrix b;
    const Coefficients *coefficients;
    double *y;
    std::int64_t yCols;
    std::int64_t yRows;
};

// One output as the sum is stated.
double oneOutput(const Sum &sum, std::int64_t row, std::int64_t col)
{
    double output = 0.0;
    for (std::int64_t c = std::max<std::int64_t>(0, col - sum.a.cols + 1);
         c < sum.b.cols && c <= col; ++c)
        for (std::int64_t r = std::max<std::int64_t>(0, row - sum.a.rows + 1);
             r < sum.b.rows && r <= row; ++r) {
            const double coefficient = sum.b.data[r * sum.b.cols + c];
            if (coefficient < 0.0 || coefficient > 0.0)
                output = output + sum.a.data[(row - r) * sum.a.cols + col - c] * coefficient;
        }
    return output;
}

// `rows` by `cols` outputs from (row, col) on, one by one.
void someOutputs(const Sum &sum, std::int64_t row, std::int64_t col, std::int64_t rows,
                 std::int64_t cols)
{
    for (std::int64_t r = row; r < row + rows; ++r)
        for (std::int64_t c = col; c < col + cols; ++c)
            sum.y[r * sum.yCols + c] = oneOutput(sum, r, c);
}

// A band is a row of tiles. All of its outputs whose products lie between A's left and
// right edges come straight from A; a row above or below A reads as zeros. Products with
// zeros add nothing to sums, which are never -0.0.
template <typename Tile>
RVX_INLINE EdgeRows edgeRows(const Sum &sum, std::int64_t row, std::int64_t col)
{
    static const double zeros[RVX_WALKED_MAX - 1 + Tile::cols] = {};
    EdgeRows rows;
    rows.above = sum.b.rows - 1;
    for (std::int64_t k = -rows.above; k < Tile::rows; ++k) {
        const bool inA = row + k >= 0 && row + k < sum.a.rows;
        rows.row[rows.above + k] =
            inA ? sum.a.data + (row + k) * sum.a.cols + col : zeros + sum.b.cols - 1;
    }
    return rows;
}

// All rows of the tiles lie in y, and all that they need in A. The last tile ends with
// A, and counts outputs again that the one before it has.
template <typename Tile>
RVX_INLINE void innerBand(const Sum &sum, std::int64_t row)
{
    // For all that a compiler knows a store may change these, so the loops have copies.
    const Coefficients &k = *sum.coefficients;
    const std::int64_t stride = sum.a.cols, yStride = sum.yCols, kCols = k.cols;
    const double *a = sum.a.data + row * stride;
    double *y = sum.y + row * yStride;
    const std::int64_t first = kCols - 1, last = stride - Tile::cols;
    if (k.plain) {
        for (std::int64_t col = first; col < last; col += Tile::cols)
            storeTile(tileSums<Tile>(InnerRows{a + col, stride}, k, kCols), y + col, yStride);
        storeTile(tileSums<Tile>(InnerRows{a + last, stride}, k, kCols), y + last, yStride);
        return;
    }
    for (std::int64_t next = first; next < stride; next += Tile::cols) {
        const std::int64_t col = std::min(next, last);
        const auto sums = tileSums<Tile>(InnerRows{a + col, stride}, k, kCols);
        if (allFinite(sums))
            storeTile(sums, y + col, yStride);
        else // a coefficient of zero may have met an infinity or a NaN
            someOutputs(sum, row, col, Tile::rows, Tile::cols);
    }
}

template <typename Tile>
RVX_INLINE void edgeBand(const Sum &sum, std::int64_t row)
{
    const std::int64_t last = sum.a.cols - Tile::cols;
    const std::int64_t count = std::min<std::int64_t>(Tile::rows, sum.yRows - row);
    for (std::int64_t next = sum.b.cols - 1; next < sum.a.cols; next += Tile::cols) {
        const std::int64_t col = std::min(next, last);
        const auto sums =
            tileSums<Tile>(edgeRows<Tile>(sum, row, col), *sum.coefficients, sum.b.cols);
        if (sum.coefficients->plain || allFinite(sums))
            storeTile(sums, sum.y + row * sum.yCols + col, sum.yCols, count);
        else
            someOutputs(sum, row, col, count, Tile::cols);
    }
}

// ---------------------------------------------------------------------------
// The left and the right margin

// A without its middle, for the rows of one band: zeros, the first `head` columns, the
// last `tail` ones, zeros. The outputs of both margins are among its own. Where A is
// narrow all of it is head and there is no tail.
template <typename Tile>
struct Margins {
    static constexpr std::int64_t widest = RVX_WALKED_MAX - 1;
    static constexpr std::int64_t stride = 3 * widest + 2 * Tile::cols;
    double value[(widest + Tile::rows) * stride];
    double output[Tile::rows * stride];
    std::int64_t head;
    std::int64_t tail;
};

// Few values: a call would take longer than they do.
RVX_INLINE void copyFew(const double *src, double *dst, std::int64_t n)
{
    for (std::int64_t i = 0; i < n; ++i)
        dst[i] = *static_cast<const volatile double *>(src + i);
}

template <typename Tile>
RVX_INLINE bool hasMiddle(const Sum &sum)
{
    return sum.a.cols >= sum.b.cols - 1 + Tile::cols;
}

template <typename Tile>
RVX_INLINE void setMargins(Margins<Tile> &margins, const Sum &sum)
{
    margins.head = hasMiddle<Tile>(sum) ? sum.b.cols - 1 : sum.a.cols;
    margins.tail = hasMiddle<Tile>(sum) ? sum.b.cols - 1 : 0;
    std::fill_n(margins.value, (sum.b.rows - 1 + Tile::rows) * margins.stride, 0.0);
}

template <typename Tile>
RVX_INLINE void loadMargins(Margins<Tile> &margins, const Sum &sum, std::int64_t row)
{
    double *to = margins.value + sum.b.cols - 1;
    for (std::int64_t r = row - sum.b.rows + 1; r < row + Tile::rows; ++r) {
        if (r >= 0 && r < sum.a.rows) {
            const double *from = sum.a.data + r * sum.a.cols;
            copyFew(from, to, margins.head);
            copyFew(from + sum.a.cols - margins.tail, to + margins.head, margins.tail);
        } else {
            std::fill_n(to, margins.head + margins.tail, 0.0);
        }
        to += margins.stride;
    }
}

// Both margins of the band from `row` on, or all of it where A has no middle.
template <typename Tile>
RVX_INLINE void sumMargins(Margins<Tile> &margins, const Sum &sum, std::int64_t row)
{
    loadMargins(margins, sum, row);
    const std::int64_t kept = margins.head + margins.tail, right = sum.b.cols - 1;
    const double *first = margins.value + (sum.b.rows - 1) * margins.stride + sum.b.cols - 1;
    bool good = true;
    std::int64_t col = 0;
    do {
        const auto sums =
            tileSums<Tile>(InnerRows{first + col, margins.stride}, *sum.coefficients, sum.b.cols);
        good = good && (sum.coefficients->plain || allFinite(sums));
        storeTile(sums, margins.output + col, margins.stride);
        col += Tile::cols;
    } while (col < kept + right);
    const std::int64_t count = std::min<std::int64_t>(Tile::rows, sum.yRows - row);
    if (!good) {
        someOutputs(sum, row, 0, count, margins.head);
        someOutputs(sum, row, sum.a.cols, count, right);
        return;
    }
    for (std::int64_t r = 0; r < count; ++r) {
        const double *from = margins.output + r * margins.stride;
        double *to = sum.y + (row + r) * sum.yCols;
        copyFew(from, to, margins.head);
        copyFew(from + kept, to + sum.a.cols, right);
    }
}

// ---------------------------------------------------------------------------
// All bands

RVX_KERNEL void conv2dLowInner(const Sum &sum, std::int64_t row)
{
    innerBand<LowTile>(sum, row);
}

RVX_KERNEL void conv2dLowEdge(const Sum &sum, std::int64_t row)
{
    edgeBand<LowTile>(sum, row);
}

RVX_KERNEL void conv2dLowMargins(Margins<LowTile> &margins, const Sum &sum, std::int64_t row)
{
    sumMargins(margins, sum, row);
}

RVX_KERNEL void conv2dHighInner(const Sum &sum, std::int64_t row)
{
    innerBand<HighTile>(sum, row);
}

RVX_KERNEL void conv2dHighEdge(const Sum &sum, std::int64_t row)
{
    edgeBand<HighTile>(sum, row);
}

RVX_KERNEL void conv2dHighMargins(Margins<HighTile> &margins, const Sum &sum, std::int64_t row)
{
    sumMargins(margins, sum, row);
}

template <typename Tile>
struct Kernels {
    void (*inner)(const Sum &sum, std::int64_t row);
    void (*edge)(const Sum &sum, std::int64_t row);
    void (*margins)(Margins<Tile> &margins, const Sum &sum, std::int64_t row);
};

template <typename Tile>
void sumBands(const Sum &sum, Kernels<Tile> kernel)
{
    Margins<Tile> margins;
    setMargins(margins, sum);
    for (std::int64_t row = 0; row < sum.yRows; row += Tile::rows) {
        const bool inner = row >= sum.b.rows - 1 && row + Tile::rows <= sum.a.rows;
        if (hasMiddle<Tile>(sum))
            (inner ? kernel.inner : kernel.edge)(sum, row);
        kernel.margins(margins, sum, row);
    }
}

// ---------------------------------------------------------------------------
// High narrow operands: as the sum is stated.

RVX_KERNEL void conv2dByCoefficients(const Sum &sum)
{
    std::fill_n(sum.y, sum.yRows * sum.yCols, 0.0);
    for (std::int64_t c = 0; c < sum.b.cols; ++c)
        for (std::int64_t r = 0; r < sum.b.rows; ++r) {
            const double coefficient = sum.b.data[r * sum.b.cols + c];
            if (!(coefficient < 0.0 || coefficient > 0.0))
                continue;
            for (std::int64_t i = 0; i < sum.a.rows; ++i) {
                double *to = sum.y + (r + i) * sum.yCols + c;
                const double *from = sum.a.data + i * sum.a.cols;
                for (std::int64_t j = 0; j < sum.a.cols; ++j)
                    to[j] = to[j] + from[j] * coefficient;
            }
        }
}

} // namespace

void rvxdConv2DDirect(Matrix x, Matrix h, double *y)
{
    const Matrix a = x.cols < h.cols ? h : x;
    const Matrix b = x.cols < h.cols ? x : h;
    Sum sum = {a, b, nullptr, y, a.cols + b.cols - 1, a.rows + b.rows - 1};
    if (b.rows > RVX_WALKED_MAX) {
        conv2dByCoefficients(sum);
        return;
    }
    Coefficients coefficients;
    setColumns(coefficients, b);
    sum.coefficients = &coefficients;
    if (b.rows == 3)
        sumBands<HighTile>(sum, {conv2dHighInner, conv2dHighEdge, conv2dHighMargins});
    else
        sumBands<LowTile>(sum, {conv2dLowInner, conv2dLowEdge, conv2dLowMargins});
}
