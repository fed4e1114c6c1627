// rvxcnv2d: two-dimensional convolution as the sum that defines it.
//
// The stated order is that of adding the walked operand's coefficients one after the
// other to all of y. The order inside one output is all that shows of it, so y is
// made in tiles that stay in registers: four rows of eight outputs, where one load
// serves all the rows that a value counts in.

#include <algorithm>
#include <cmath>

#include "convolution/rvxcnv2d.h"
#include "frame/rvxkernel.h"
#include "frame/rvxlanes.h"

namespace {

enum { RVX_TILE_ROWS = 4, RVX_TILE_COLS = 8 };

// The narrower operand is walked. It has no more columns than this, and no more rows
// either but where the wider one is the one below 8 by 8.
enum { RVX_WALKED_MAX = 16 };

// The walked operand, column by column.
struct Coefficients {
    double value[RVX_WALKED_MAX * RVX_WALKED_MAX]; // 0.0 where it is passed over
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
            k.value[c * b.rows + r] = std::isnan(value) ? 0.0 : value;
            k.plain = k.plain && std::isfinite(value) && value != 0.0;
        }
    return k;
}

// ---------------------------------------------------------------------------
// One tile

struct TileSums {
    Lanes left[RVX_TILE_ROWS];
    Lanes right[RVX_TILE_ROWS];
};

// The values at `a` and the seven behind it, which count in the tile's rows from
// `first` on, in each with a coefficient of its own.
template <int first, int end>
RVX_INLINE void addRow(TileSums &sums, const double *a, const double *coefficient)
{
    const Lanes left = loadLanesOnce(a), right = loadLanesOnce(a + 4);
    for (int k = first; k < end; ++k) {
        const Lanes factor = allLanes(coefficient[k]);
        sums.left[k] = sums.left[k] + left * factor;
        sums.right[k] = sums.right[k] + right * factor;
    }
}

// All that one column of coefficients gives, where `a` is the value that meets the
// first of them in the tile's first output. Rows are walked upwards, so that each
// output takes its coefficients downwards; in the tile's row k it is number k - row.
RVX_INLINE void addColumn(TileSums &sums, const double *a, std::int64_t stride,
                          const double *coefficient, std::int64_t rows)
{
    if (rows >= 3) {
        addRow<3, 4>(sums, a + 3 * stride, coefficient - 3);
        addRow<2, 4>(sums, a + 2 * stride, coefficient - 2);
        addRow<1, 4>(sums, a + stride, coefficient - 1);
        for (std::int64_t up = 0; up < rows - 3; ++up)
            addRow<0, 4>(sums, a - up * stride, coefficient + up);
        addRow<0, 3>(sums, a - (rows - 3) * stride, coefficient + rows - 3);
        addRow<0, 2>(sums, a - (rows - 2) * stride, coefficient + rows - 2);
        addRow<0, 1>(sums, a - (rows - 1) * stride, coefficient + rows - 1);
    } else if (rows == 2) {
        addRow<3, 4>(sums, a + 3 * stride, coefficient - 3);
        addRow<2, 4>(sums, a + 2 * stride, coefficient - 2);
        addRow<1, 3>(sums, a + stride, coefficient - 1);
        addRow<0, 2>(sums, a, coefficient);
        addRow<0, 1>(sums, a - stride, coefficient + 1);
    } else {
        addRow<3, 4>(sums, a + 3 * stride, coefficient - 3);
        addRow<2, 3>(sums, a + 2 * stride, coefficient - 2);
        addRow<1, 2>(sums, a + stride, coefficient - 1);
        addRow<0, 1>(sums, a, coefficient);
    }
}

// The tile of outputs whose first one has its first product at `a`.
RVX_INLINE TileSums tileSums(const double *a, std::int64_t stride, const Coefficients &k,
                             std::int64_t rows, std::int64_t cols)
{
    TileSums sums;
    for (int row = 0; row < RVX_TILE_ROWS; ++row)
        sums.left[row] = sums.right[row] = allLanes(0.0);
    for (std::int64_t c = 0; c < cols; ++c)
        addColumn(sums, a - c, stride, k.value + c * rows, rows);
    return sums;
}

RVX_INLINE void storeTile(const TileSums &sums, double *y, std::int64_t stride)
{
    for (int row = 0; row < RVX_TILE_ROWS; ++row) {
        storeLanes(y + row * stride, sums.left[row]);
        storeLanes(y + row * stride + 4, sums.right[row]);
    }
}

RVX_INLINE bool allFinite(const TileSums &sums)
{
    Lanes zero = allLanes(0.0);
    for (int row = 0; row < RVX_TILE_ROWS; ++row)
        zero = zero + (sums.left[row] - sums.left[row]) + (sums.right[row] - sums.right[row]);
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
void tileByOutputs(const Sum &sum, std::int64_t row, std::int64_t col)
{
    for (std::int64_t r = row; r < std::min(row + RVX_TILE_ROWS, sum.yRows); ++r)
        for (std::int64_t c = col; c < std::min(col + RVX_TILE_COLS, sum.yCols); ++c)
            sum.y[r * sum.yCols + c] = oneOutput(sum, r, c);
}

// All values of A that count in the tile at (row, col), zeros where there are none.
struct Patch {
    static constexpr std::int64_t stride = RVX_WALKED_MAX - 1 + RVX_TILE_COLS;
    double value[(RVX_WALKED_MAX - 1 + RVX_TILE_ROWS) * stride];
};

RVX_INLINE void fillPatch(Patch &patch, const Sum &sum, std::int64_t row, std::int64_t col)
{
    const std::int64_t top = row - sum.b.rows + 1, left = col - sum.b.cols + 1;
    const std::int64_t high = sum.b.rows - 1 + RVX_TILE_ROWS;
    const std::int64_t wide = sum.b.cols - 1 + RVX_TILE_COLS;
    std::fill_n(patch.value, high * Patch::stride, 0.0);
    const std::int64_t from = std::max<std::int64_t>(0, -left);
    const std::int64_t end = std::min(wide, sum.a.cols - left);
    const std::int64_t rowsEnd = std::min(high, sum.a.rows - top);
    for (std::int64_t r = std::max<std::int64_t>(0, -top); r < rowsEnd; ++r)
        std::copy(sum.a.data + (top + r) * sum.a.cols + left + from,
                  sum.a.data + (top + r) * sum.a.cols + left + end,
                  patch.value + r * Patch::stride + from);
}

// A tile that reaches beyond y or needs values beyond A. Products with zeros add
// nothing to sums, which are never -0.0.
template <int someRows>
RVX_INLINE void edgeTile(const Sum &sum, std::int64_t row, std::int64_t col)
{
    Patch patch;
    fillPatch(patch, sum, row, col);
    const std::int64_t rows = someRows != 0 ? someRows : sum.b.rows;
    const TileSums sums = tileSums(patch.value + (rows - 1) * Patch::stride + sum.b.cols - 1,
                                   Patch::stride, *sum.coefficients, rows, sum.b.cols);
    if (!sum.coefficients->plain && !allFinite(sums)) {
        tileByOutputs(sum, row, col);
        return;
    }
    double tile[RVX_TILE_ROWS * RVX_TILE_COLS];
    storeTile(sums, tile, RVX_TILE_COLS);
    const std::int64_t wide = std::min<std::int64_t>(RVX_TILE_COLS, sum.yCols - col);
    for (std::int64_t r = 0; r < std::min<std::int64_t>(RVX_TILE_ROWS, sum.yRows - row); ++r)
        std::copy_n(tile + r * RVX_TILE_COLS, wide, sum.y + (row + r) * sum.yCols + col);
}

template <int someRows>
RVX_INLINE void innerTile(const Sum &sum, std::int64_t row, std::int64_t col)
{
    const std::int64_t rows = someRows != 0 ? someRows : sum.b.rows;
    const TileSums sums = tileSums(sum.a.data + row * sum.a.cols + col, sum.a.cols,
                                   *sum.coefficients, rows, sum.b.cols);
    if (sum.coefficients->plain || allFinite(sums))
        storeTile(sums, sum.y + row * sum.yCols + col, sum.yCols);
    else // a coefficient of zero may have met an infinity or a NaN
        tileByOutputs(sum, row, col);
}

// All tiles; someRows is the number of rows of B, or 0 for any.
template <int someRows>
RVX_INLINE void sumTiles(const Sum &sum)
{
    for (std::int64_t row = 0; row < sum.yRows; row += RVX_TILE_ROWS) {
        const bool innerRows = row >= sum.b.rows - 1 && row + RVX_TILE_ROWS <= sum.a.rows;
        for (std::int64_t col = 0; col < sum.yCols; col += RVX_TILE_COLS)
            if (innerRows && col >= sum.b.cols - 1 && col + RVX_TILE_COLS <= sum.a.cols)
                innerTile<someRows>(sum, row, col);
            else
                edgeTile<someRows>(sum, row, col);
    }
}

RVX_KERNEL void conv2dTiles(const Sum &sum)
{
    switch (sum.b.rows) {
    case 1:
        return sumTiles<1>(sum);
    case 2:
        return sumTiles<2>(sum);
    case 3:
        return sumTiles<3>(sum);
    default:
        return sumTiles<0>(sum);
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
    const Coefficients coefficients = columnsOf(b);
    sum.coefficients = &coefficients;
    conv2dTiles(sum);
}
