// The operation counts that choose the way of filtering. They are part of what the
// library promises: a call on the same sizes always goes the same way.

#include "convolution/rvxfir2_paths.h"

namespace {

// n a power of two, as double since products of sides pass 64 bits.

double log2Of(double n)
{
    double log = 0.0;
    while (n >= 2.0) {
        n /= 2.0;
        log += 1.0;
    }
    return log;
}

// A complex transform of n points.
double lineCost(double n)
{
    return log2Of(n) * n / 2.0 * 24.0;
}

// The split of a line of n values.
double splitCost(double n)
{
    return n == 1.0 ? 8.0 : (n / 2.0 - 1.0) * 40.0 + 8.0;
}

// The product of two packed lines of n values.
double lineProductCost(double n)
{
    return n < 2.0 ? 3.0 : 14.0 * (n - 2.0) / 2.0 + 3.0 + 3.0;
}

double linesCost(double rows, double cols)
{
    return rows * lineCost(cols) + cols * lineCost(rows);
}

double splitsCost(double rows, double cols)
{
    if (rows <= 1.0)
        return splitCost(cols);
    return splitCost(cols) + (rows / 2.0 - 1.0) * cols * 36.0 + splitCost(cols);
}

// A transform of a real block.
double transformCost(double rows, double cols)
{
    return linesCost(rows, cols / 2.0) + splitsCost(rows, cols);
}

double productCost(double rows, double cols)
{
    if (rows <= 1.0)
        return lineProductCost(cols);
    return lineProductCost(cols) + lineProductCost(cols) + 14.0 * (rows - 2.0) * cols / 2.0;
}

} // namespace

std::int64_t ownFilter2dBlockLen(std::int64_t n)
{
    std::int64_t len = 2;
    while (len < 2 * n)
        len *= 2;
    return len;
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
    const double blocks = static_cast<double>(across) * static_cast<double>(down);
    const auto rows = static_cast<double>(blockRows);
    const auto cols = static_cast<double>(blockCols);
    const double copies =
        2.0 * static_cast<double>(stepRows) * static_cast<double>(stepCols) + 2.0 * rows * cols;
    const double transform = transformCost(rows, cols);
    return {static_cast<double>(xCols) * static_cast<double>(xRows) * 4.0 *
                (static_cast<double>(hCols) * static_cast<double>(hRows)),
            blocks * (copies + transform + productCost(rows, cols) + transform) + transform};
}
