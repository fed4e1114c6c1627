// rvxcnv2d: full linear convolution of two real matrices.
//
// One of four routes, by the sizes alone: a direct sum, one-dimensional convolution,
// one Hartley transform of everything, or tiles of the larger operand, each
// convolved by Hartley transforms of the smaller operand's size, overlapped and
// added (after Stockham 1966). The transforms are real throughout, so no work goes
// into imaginary parts.

#include "convolution/rvxcnv2d.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "convolution/rvxconv_counts.h"
#include "frame/rvxbuffer.h"
#include "frame/rvxcheck.h"
#include "rvx.h"

RVX_MODULE("rvxcnv2d")

namespace {

constexpr const char *RVX_NO_MEMORY_TEXT = "\nMemory allocation problem\n";

// The smallest k with 2^k not below n, and 1 at least.
int orderFor(std::int64_t n)
{
    return std::max(1, ownOrderFor(n));
}

// Buffers count their elements in 32 bits; more than that is taken as more than
// there is.
double *allocArray(std::int64_t rows, std::int64_t cols)
{
    if (rows > UINT32_MAX / cols)
        return nullptr;
    return rvxAllocDoubles(static_cast<std::uint32_t>(rows * cols));
}

// Three arrays of one size, or none.
struct Arrays {
    double *a;
    double *b;
    double *c;
};

void freeArrays(Arrays &arrays)
{
    rvxDropBuffer(arrays.c);
    rvxDropBuffer(arrays.b);
    rvxDropBuffer(arrays.a);
}

bool allocArrays(Arrays &arrays, std::int64_t rows, std::int64_t cols)
{
    arrays = {allocArray(rows, cols), nullptr, nullptr};
    if (arrays.a != nullptr)
        arrays.b = allocArray(rows, cols);
    if (arrays.b != nullptr)
        arrays.c = allocArray(rows, cols);
    if (arrays.c != nullptr)
        return true;
    freeArrays(arrays);
    return false;
}

// ---------------------------------------------------------------------------
// Everything in one transform

// The matrix times the factor, top left in an array of zeros.
void embed(Matrix m, double factor, double *array, std::int64_t rows, std::int64_t cols)
{
    for (std::int64_t r = 0; r < m.rows; ++r) {
        const double *from = m.data + r * m.cols;
        double *to = array + r * cols;
        for (std::int64_t c = 0; c < m.cols; ++c)
            to[c] = from[c] * factor;
        std::fill(to + m.cols, to + cols, 0.0);
    }
    std::fill(array + m.rows * cols, array + rows * cols, 0.0);
}

void convolveWhole(Matrix x, Matrix h, const char *func, double *y)
{
    const int rowOrder = orderFor(2 * std::max(x.rows, h.rows));
    const int colOrder = orderFor(2 * std::max(x.cols, h.cols));
    const std::int64_t rows = std::int64_t{1} << rowOrder;
    const std::int64_t cols = std::int64_t{1} << colOrder;
    Arrays arrays;
    if (!allocArrays(arrays, rows, cols)) {
        RVX_REPORT_AS(func, RVX_STATUS_NO_MEMORY, RVX_NO_MEMORY_TEXT);
        return;
    }
    embed(x, 1.0, arrays.a, rows, cols);
    embed(h, 0.5 / static_cast<double>(rows * cols), arrays.b, rows, cols);
    owndHftConv2d(arrays.a, arrays.b, rowOrder, colOrder, arrays.c);
    const std::int64_t outCols = x.cols + h.cols - 1;
    for (std::int64_t r = 0; r < x.rows + h.rows - 1; ++r)
        std::copy_n(arrays.c + r * cols, outCols, y + r * outCols);
    freeArrays(arrays);
}

// The rows up to the last one that has an element other than +0.0.
std::int64_t rowsInUse(const double *array, std::int64_t rows, std::int64_t cols)
{
    const auto isZero = [](double x) { return x == 0.0 && !std::signbit(x); };
    while (rows > 0 && std::all_of(array + (rows - 1) * cols, array + rows * cols, isZero))
        --rows;
    return rows;
}

// ---------------------------------------------------------------------------
// Tiles

// Twice the smallest power of two not below n.
std::int64_t paddedLen(std::int64_t n)
{
    return n < 2 ? 2 : std::int64_t{2} << orderFor(n);
}

// Adds what a tile shares with the tiles above it and to its left, stores the rest.
struct TileOutput {
    double *y;
    std::int64_t stride;
    std::int64_t rows;
    std::int64_t cols;
    std::int64_t sharedRows;
    std::int64_t sharedCols;
};

void putTile(const double *result, std::int64_t resultStride, const TileOutput &out)
{
    for (std::int64_t r = 0; r < out.rows; ++r) {
        const double *from = result + r * resultStride;
        double *to = out.y + r * out.stride;
        const std::int64_t shared = r < out.sharedRows ? out.cols : out.sharedCols;
        for (std::int64_t c = 0; c < shared; ++c)
            to[c] = to[c] + from[c];
        std::copy(from + shared, from + out.cols, to + shared);
    }
}

// arrays.b holds the transform of the smaller operand.
void convolveTiles(Matrix big, Matrix small, const HartleyPlan &plan, Arrays arrays, double *y)
{
    const std::int64_t rows = plan.rows(), cols = plan.cols();
    const std::int64_t tileRows = rows / 2, tileCols = cols / 2;
    const std::int64_t outCols = big.cols + small.cols - 1;
    for (std::int64_t i = 0; i < big.rows; i += tileRows) {
        const std::int64_t high = std::min(tileRows, big.rows - i);
        for (std::int64_t j = 0; j < big.cols; j += tileCols) {
            const std::int64_t wide = std::min(tileCols, big.cols - j);
            const double *tile = big.data + i * big.cols + j;
            rvxHartley2d(plan, {tile, big.cols, high, wide, 1.0}, arrays.a);
            rvxHartleyProduct(arrays.a, arrays.b, arrays.c, rows, cols);
            rvxHartley2d(plan, {arrays.c, cols, rows, cols, 1.0}, arrays.c);
            rvxHartleyUnfold(arrays.c, rows, cols);
            putTile(arrays.c, cols,
                    {y + i * outCols + j, outCols, high + small.rows - 1, wide + small.cols - 1,
                     i > 0 ? small.rows - 1 : 0, j > 0 ? small.cols - 1 : 0});
        }
    }
}

} // namespace

Conv2dRoute rvxChooseConv2dRoute(Matrix x, Matrix h)
{
    if (std::max(x.rows, h.rows) < 17 && std::max(x.cols, h.cols) < 17)
        return Conv2dRoute::direct;
    if ((x.cols < 8 && x.rows < 8) || (h.cols < 8 && h.rows < 8))
        return Conv2dRoute::direct;
    if ((x.rows == 1 && h.rows == 1) || (x.cols == 1 && h.cols == 1))
        return Conv2dRoute::oneDimensional;
    // One covers the other in both dimensions, and at least twice in one.
    const std::int64_t dRows = x.rows - h.rows;
    const std::int64_t dCols = x.cols - h.cols;
    if ((dRows >= h.rows && dCols >= 0) || (dRows >= 0 && dCols >= h.cols) ||
        (2 * x.rows - h.rows < 1 && dCols < 1) || (dRows < 1 && 2 * x.cols - h.cols < 1))
        return Conv2dRoute::overlap;
    return Conv2dRoute::whole;
}

Conv2dBlock rvxChooseConv2dBlock(Matrix small)
{
    return {paddedLen(small.rows), paddedLen(small.cols)};
}

void owndHftConv2d(double *a, double *b, int rowOrder, int colOrder, double *c)
{
    HartleyPlan plan;
    const std::int64_t rows = std::int64_t{1} << rowOrder;
    const std::int64_t cols = std::int64_t{1} << colOrder;
    if (!rvxMakeHartleyPlan(plan, rowOrder, colOrder)) {
        std::fill_n(c, rows * cols, 0.0);
        RVX_REPORT(RVX_STATUS_NO_MEMORY, RVX_NO_MEMORY_TEXT);
        return;
    }
    for (double *operand : {a, b})
        rvxHartley2d(plan, {operand, cols, rowsInUse(operand, rows, cols), cols, 1.0}, operand);
    rvxHartleyProduct(a, b, c, rows, cols);
    rvxHartley2d(plan, {c, cols, rows, cols, 1.0}, c);
    rvxHartleyUnfold(c, rows, cols);
    rvxFreeHartleyPlan(plan);
}

void owndOverlapConv2d(const double *x, int xCols, int xRows, const double *h, int hCols, int hRows,
                       double *y)
{
    Matrix big = {x, xCols, xRows};
    Matrix small = {h, hCols, hRows};
    if (big.rows * big.cols < small.rows * small.cols)
        std::swap(big, small);
    const Conv2dBlock block = rvxChooseConv2dBlock(small);
    HartleyPlan plan;
    Arrays arrays;
    bool ready = rvxMakeHartleyPlan(plan, orderFor(block.rows), orderFor(block.cols));
    if (ready && !allocArrays(arrays, block.rows, block.cols)) {
        rvxFreeHartleyPlan(plan);
        ready = false;
    }
    if (!ready) {
        RVX_REPORT(RVX_STATUS_NO_MEMORY, RVX_NO_MEMORY_TEXT);
        return;
    }
    const double factor = 0.5 / static_cast<double>(block.rows * block.cols);
    rvxHartley2d(plan, {small.data, small.cols, small.rows, small.cols, factor}, arrays.b);
    convolveTiles(big, small, plan, arrays, y);
    freeArrays(arrays);
    rvxFreeHartleyPlan(plan);
}

// The routes of transforms do not look at the status: after a failure inside them y
// holds what has been made.
void rvxdConv2D(const double *x, int xCols, int xRows, const double *h, int hCols, int hRows,
                double *y)
{
    RVX_REJECT_IF(x == nullptr || h == nullptr || y == nullptr, "\nNull pointer to data buffer\n");
    RVX_REJECT_IF(xRows < 1 || xCols < 1, "\nBad value of data buffer size\n");
    RVX_REJECT_IF(hRows < 1 || hCols < 1, "\nBad value of data buffer size\n");
    const Matrix xs = {x, xCols, xRows};
    const Matrix hs = {h, hCols, hRows};
    switch (rvxChooseConv2dRoute(xs, hs)) {
    case Conv2dRoute::direct:
        rvxdConv2DDirect(xs, hs, y);
        break;
    case Conv2dRoute::oneDimensional:
        rvxdConv(x, std::max(xCols, xRows), h, std::max(hCols, hRows), y);
        break;
    case Conv2dRoute::overlap:
        owndOverlapConv2d(x, xCols, xRows, h, hCols, hRows, y);
        break;
    case Conv2dRoute::whole:
        convolveWhole(xs, hs, __func__, y);
        break;
    }
}
