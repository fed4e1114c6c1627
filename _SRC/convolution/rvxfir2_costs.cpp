// The operation counts that choose the way of filtering. They are part of what the
// library promises: a call on the same sizes always goes the same way.

#include "convolution/rvxconv_counts.h"
#include "convolution/rvxfir2_paths.h"

namespace {

// Sides of blocks are powers of two, 2 and more; areas pass 64 bits.

double areaOf(std::int64_t rows, std::int64_t cols)
{
    return static_cast<double>(rows) * static_cast<double>(cols);
}

// The product of two packed lines of n values.
double lineProductCount(std::int64_t n)
{
    return 14.0 * static_cast<double>(n - 2) / 2.0 + 3.0 + 3.0;
}

double linesCount(std::int64_t rows, std::int64_t cols)
{
    return static_cast<double>(rows) * ownTransformCount(cols) +
           static_cast<double>(cols) * ownTransformCount(rows);
}

double splitsCount(std::int64_t rows, std::int64_t cols)
{
    return ownSplitCount(cols, 40.0) + areaOf(rows / 2 - 1, cols) * 36.0 +
           ownSplitCount(cols, 40.0);
}

// A transform of a real block.
double transformCount(std::int64_t rows, std::int64_t cols)
{
    return linesCount(rows, cols / 2) + splitsCount(rows, cols);
}

double productCount(std::int64_t rows, std::int64_t cols)
{
    return lineProductCount(cols) + lineProductCount(cols) + 14.0 * areaOf(rows - 2, cols) / 2.0;
}

} // namespace

std::int64_t ownFilter2dBlockLen(std::int64_t n)
{
    return std::int64_t{2} << ownOrderFor(n);
}

Filter2dCosts ownFilter2dCosts(std::int64_t xCols, std::int64_t xRows, std::int64_t hCols,
                               std::int64_t hRows)
{
    const std::int64_t blockRows = ownFilter2dBlockLen(hRows);
    const std::int64_t blockCols = ownFilter2dBlockLen(hCols);
    const std::int64_t stepRows = blockRows - hRows + 1;
    const std::int64_t stepCols = blockCols - hCols + 1;
    const std::int64_t across = (xCols + blockCols - hCols) / stepCols;
    const std::int64_t down = (xRows + blockRows - hRows) / stepRows;
    const double copies = 2.0 * areaOf(stepRows, stepCols) + 2.0 * areaOf(blockRows, blockCols);
    const double transform = transformCount(blockRows, blockCols);
    return {areaOf(xRows, xCols) * 4.0 * areaOf(hRows, hCols),
            areaOf(down, across) *
                    (copies + transform + productCount(blockRows, blockCols) + transform) +
                transform};
}
