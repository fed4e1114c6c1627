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
    std::int64_t rows;
    std::int64_t cols;
    bool plain; // all are finite and none is zero
};

Coefficients columnsOf(Matrix b)
{
    Coefficients k = {};
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
            k.plain = k.plain && std::isfinite(value) && value != 0.0;
        }
    return k;
}

// ---------------------------------------------------------------------------
// One tile

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

    // All that one column of coefficients gives, where `a` is the value that meets the
    // first of them in the tile's first output. Rows are walked upwards, so that each
    // output takes its coefficients downwards.
    static RVX_INLINE void addColumn(Sums &sums, const double *a, std::int64_t stride,
                                     const Pair *pair, std::int64_t count)
    {
        addToRow<vectors>(sums.row[1], a + stride, pair->upper);
        for (std::int64_t r = 0; r < count - 1; ++r)
            addToBoth(sums, a - r * stride, pair[r]);
        addToRow<vectors>(sums.row[0], a - (count - 1) * stride, pair[count - 1].upper);
    }
};

// Four rows of 12 outputs, for columns of three coefficients, which stay in registers.
struct HighTile {
    static constexpr int rows = 4, cols = 12, vectors = cols / 4;
    using Sums = TileSums<rows, vectors>;

    // Row k of A, counted from the tile's first one.
    template <int k>
    static RVX_INLINE void addRow(Sums &sums, const double *a, std::int64_t stride, Lanes first,
                                  Lanes second, Lanes third)
    {
        for (int v = 0; v < vectors; ++v) {
            const Lanes values = loadLanesOnce(a + k * stride + 4 * v);
            if constexpr (k >= 0)
                sums.row[k][v] = sums.row[k][v] + values * first;
            if constexpr (k >= -1 && k < rows - 1)
                sums.row[k + 1][v] = sums.row[k + 1][v] + values * second;
            if constexpr (k < rows - 2)
                sums.row[k + 2][v] = sums.row[k + 2][v] + values * third;
        }
    }

    static RVX_INLINE void addColumn(Sums &sums, const double *a, std::int64_t stride,
                                     const Pair *pair, std::int64_t)
    {
        const Lanes first = allLanes(pair[0].upper), second = allLanes(pair[1].upper);
        const Lanes third = allLanes(pair[2].upper);
        addRow<3>(sums, a, stride, first, second, third);
        addRow<2>(sums, a, stride, first, second, third);
        addRow<1>(sums, a, stride, first, second, third);
        addRow<0>(sums, a, stride, first, second, third);
        addRow<-1>(sums, a, stride, first, second, third);
        addRow<-2>(sums, a, stride, first, second, third);
    }
};

// The tile of outputs whose first one has its first product at `a`.
template <typename Tile>
RVX_INLINE typename Tile::Sums tileSums(const double *a, std::int64_t stride, const Coefficients &k)
{
    typename Tile::Sums sums;
    for (int r = 0; r < Tile::rows; ++r)
        for (int v = 0; v < Tile::vectors; ++v)
            sums.row[r][v] = allLanes(0.0);
    for (std::int64_t c = 0; c < k.cols; ++c)
        Tile::addColumn(sums, a - c, stride, k.pair + c * k.rows, k.rows);
    return sums;
}

template <int tileRows, int vectors>
RVX_INLINE void storeTile(const TileSums<tileRows, vectors> &sums, double *y, std::int64_t stride)
{
    for (int r = 0; r < tileRows; ++r)
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

// What of the tile at (row, col) lies in y, output by output.
void tileByOutputs(const Sum &sum, std::int64_t row, std::int64_t col, std::int64_t tileRows,
                   std::int64_t tileCols)
{
    for (std::int64_t r = row; r < std::min(row + tileRows, sum.yRows); ++r)
        for (std::int64_t c = col; c < std::min(col + tileCols, sum.yCols); ++c)
            sum.y[r * sum.yCols + c] = oneOutput(sum, r, c);
}

// All values of A that count in the tile at (row, col), zeros where there are none.
template <typename Tile>
struct Patch {
    static constexpr std::int64_t stride = RVX_WALKED_MAX - 1 + Tile::cols;
    double value[(RVX_WALKED_MAX - 1 + Tile::rows) * stride];
};

template <typename Tile>
RVX_INLINE void fillPatch(Patch<Tile> &patch, const Sum &sum, std::int64_t row, std::int64_t col)
{
    constexpr std::int64_t stride = Patch<Tile>::stride;
    const std::int64_t top = row - sum.b.rows + 1, left = col - sum.b.cols + 1;
    const std::int64_t high = sum.b.rows - 1 + Tile::rows;
    const std::int64_t wide = sum.b.cols - 1 + Tile::cols;
    std::fill_n(patch.value, high * stride, 0.0);
    const std::int64_t from = std::max<std::int64_t>(0, -left);
    const std::int64_t end = std::min(wide, sum.a.cols - left);
    const std::int64_t rowsEnd = std::min(high, sum.a.rows - top);
    for (std::int64_t r = std::max<std::int64_t>(0, -top); r < rowsEnd; ++r)
        std::copy(sum.a.data + (top + r) * sum.a.cols + left + from,
                  sum.a.data + (top + r) * sum.a.cols + left + end,
                  patch.value + r * stride + from);
}

// A tile that reaches beyond y or needs values beyond A. Products with zeros add
// nothing to sums, which are never -0.0.
template <typename Tile>
RVX_INLINE void edgeTile(const Sum &sum, std::int64_t row, std::int64_t col)
{
    constexpr std::int64_t stride = Patch<Tile>::stride;
    Patch<Tile> patch;
    fillPatch(patch, sum, row, col);
    const auto sums = tileSums<Tile>(patch.value + (sum.b.rows - 1) * stride + sum.b.cols - 1,
                                     stride, *sum.coefficients);
    if (!sum.coefficients->plain && !allFinite(sums)) {
        tileByOutputs(sum, row, col, Tile::rows, Tile::cols);
        return;
    }
    double tile[Tile::rows * Tile::cols];
    storeTile(sums, tile, Tile::cols);
    const std::int64_t wide = std::min<std::int64_t>(Tile::cols, sum.yCols - col);
    for (std::int64_t r = 0; r < std::min<std::int64_t>(Tile::rows, sum.yRows - row); ++r)
        std::copy_n(tile + r * Tile::cols, wide, sum.y + (row + r) * sum.yCols + col);
}

template <typename Tile>
RVX_INLINE void innerTile(const Sum &sum, std::int64_t row, std::int64_t col)
{
    const auto sums =
        tileSums<Tile>(sum.a.data + row * sum.a.cols + col, sum.a.cols, *sum.coefficients);
    if (sum.coefficients->plain || allFinite(sums))
        storeTile(sums, sum.y + row * sum.yCols + col, sum.yCols);
    else // a coefficient of zero may have met an infinity or a NaN
        tileByOutputs(sum, row, col, Tile::rows, Tile::cols);
}

template <typename Tile>
RVX_INLINE void sumTiles(const Sum &sum)
{
    for (std::int64_t row = 0; row < sum.yRows; row += Tile::rows) {
        const bool innerRows = row >= sum.b.rows - 1 && row + Tile::rows <= sum.a.rows;
        for (std::int64_t col = 0; col < sum.yCols; col += Tile::cols)
            if (innerRows && col >= sum.b.cols - 1 && col + Tile::cols <= sum.a.cols)
                innerTile<Tile>(sum, row, col);
            else
                edgeTile<Tile>(sum, row, col);
    }
}

RVX_KERNEL void conv2dLowTiles(const Sum &sum)
{
    sumTiles<LowTile>(sum);
}

RVX_KERNEL void conv2dHighTiles(const Sum &sum)
{
    sumTiles<HighTile>(sum);
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
    const Coefficients coefficients = columnsOf(b);
    sum.coefficients = &coefficients;
    if (b.rows == 3)
        conv2dHighTiles(sum);
    else
        conv2dLowTiles(sum);
}
