// Which routes the two-dimensional functions and the correlations take, written once
// more and in another way than in the library: wide integers, sums instead of
// formulas, and the reasons behind the conditions.

#ifndef RVX_TEST_ROUTE2D_H
#define RVX_TEST_ROUTE2D_H

#include <algorithm>
#include <cmath>
#include <string>

namespace reference {

struct Shape {
    long rows, cols;
};

// ---- two-dimensional convolution --------------------------------------------

// Whether `big` reaches as far as `small` in both directions and at least twice as
// far in one.
inline bool coversTwice(Shape big, Shape small)
{
    const bool covers = big.rows >= small.rows && big.cols >= small.cols;
    return covers && (big.rows >= 2 * small.rows || big.cols >= 2 * small.cols);
}

inline bool within(Shape shape, long limit)
{
    return std::max(shape.rows, shape.cols) < limit;
}

// "direct", "1-d", "overlap" or "whole".
inline std::string conv2dRoute(Shape x, Shape h)
{
    if ((within(x, 17) && within(h, 17)) || within(x, 8) || within(h, 8))
        return "direct";
    if (x.rows * h.rows == 1 || x.cols * h.cols == 1)
        return "1-d";
    // The conditions as they stand have two sides that differ: where h is the larger
    // operand, "twice" is asked in the other words 2 x - h < 1.
    const bool xCovers = coversTwice(x, h);
    const bool hCovers =
        (2 * x.rows <= h.rows && x.cols <= h.cols) || (x.rows <= h.rows && 2 * x.cols <= h.cols);
    return xCovers || hCovers ? "overlap" : "whole";
}

inline long powerNotBelow(long n)
{
    long power = 1;
    while (power < n)
        power += power;
    return power;
}

inline long doubledPower(long n)
{
    return n < 2 ? 2 : 2 * powerNotBelow(n);
}

// The transforms' rows and columns.
inline Shape conv2dBlock(Shape x, Shape h)
{
    if (conv2dRoute(x, h) == "whole")
        return {std::max(2L, powerNotBelow(2 * std::max(x.rows, h.rows))),
                std::max(2L, powerNotBelow(2 * std::max(x.cols, h.cols)))};
    const bool exchanged = x.rows * x.cols < h.rows * h.cols;
    const Shape big = exchanged ? h : x, small = exchanged ? x : h;
    const Shape pBig = {doubledPower(big.rows), doubledPower(big.cols)};
    const Shape pSmall = {doubledPower(small.rows), doubledPower(small.cols)};
    const long rowsRatio = pBig.rows / pSmall.rows, colsRatio = pBig.cols / pSmall.cols;
    if (std::min(rowsRatio, colsRatio) >= 2)
        return pSmall;
    const bool keepRows =
        rowsRatio == colsRatio ? pSmall.rows > pSmall.cols : rowsRatio > colsRatio;
    if (keepRows)
        return {pSmall.rows, std::max(pBig.cols, pSmall.cols)};
    return {std::max(pBig.rows, pSmall.rows), pSmall.cols};
}

// ---- operation counts of the transforms -------------------------------------

inline long log2Of(long power)
{
    long log = 0;
    for (; power > 1; power /= 2)
        ++log;
    return log;
}

inline double transformCount(long n)
{
    return 24.0 * static_cast<double>(log2Of(n) * n / 2);
}

// Of the split of a line of n values, at `perPair` for each pair.
inline double splitCount(long n, double perPair)
{
    return n == 1 ? 8.0 : 8.0 + perPair * static_cast<double>(n / 2 - 1);
}

inline double real(long n)
{
    return static_cast<double>(n);
}

// ---- two-dimensional filter -------------------------------------------------

inline Shape filter2dBlock(Shape h)
{
    return {doubledPower(h.rows), doubledPower(h.cols)};
}

inline bool filter2dTransforms(Shape x, Shape h)
{
    const Shape block = filter2dBlock(h);
    const Shape step = {block.rows - h.rows + 1, block.cols - h.cols + 1};
    const auto tiles = [](long image, long stepLen) {
        return real(image / stepLen + (image % stepLen != 0));
    };
    const double blocks = tiles(x.rows, step.rows) * tiles(x.cols, step.cols);

    // Rows, columns of slots, the two packed rows, the pairs of the other rows.
    const long slots = block.cols / 2;
    double forward = real(block.rows) * transformCount(slots);
    for (long slot = 0; slot < slots; ++slot)
        forward += transformCount(block.rows);
    forward += 2.0 * splitCount(block.cols, 40.0);
    for (long pair = 1; pair < block.rows / 2; ++pair)
        forward += 36.0 * real(block.cols);
    const double packedRow = 7.0 * real(block.cols - 2) + 6.0;
    const double product = 2.0 * packedRow + 7.0 * real(block.rows - 2) * real(block.cols);

    const double perTile = 2.0 * real(step.rows * step.cols) + 2.0 * forward + product +
                           2.0 * real(block.rows * block.cols);
    const double transforms = blocks * perTile + forward;
    const double direct = 4.0 * real(x.rows * x.cols) * real(h.rows * h.cols);
    return transforms < direct;
}

// ---- correlations -----------------------------------------------------------

enum class CorrForm { Real, Complex, Mixed };

inline bool crossCorrTransforms(CorrForm form, long len1, long lags)
{
    const long half = powerNotBelow(lags), whole = 2 * half;
    const double blocks = real(len1 / half + (len1 % half != 0));
    const double perLag = form == CorrForm::Real ? 4.0 : form == CorrForm::Mixed ? 8.0 : 14.0;
    const double direct = perLag * real(lags) * real(len1);
    double once, perBlock;
    switch (form) {
    case CorrForm::Real:
        once = 0.75 * transformCount(half) + splitCount(half, 36.0);
        perBlock = 16.0 * real(half) + 0.75 * transformCount(whole) + 14.0 * real(half);
        break;
    case CorrForm::Mixed:
        once = transformCount(whole);
        perBlock = transformCount(whole) + splitCount(half, 40.0) + transformCount(half) +
                   14.0 * real(whole);
        break;
    default:
        once = transformCount(whole);
        perBlock = 2.0 * transformCount(whole) + 14.0 * real(whole);
    }
    return once + blocks * perBlock < direct;
}

inline bool autoCorrTransforms(CorrForm form, long len, long lags)
{
    const long half = powerNotBelow(lags), whole = 2 * half;
    const double blocks = real(len / half + (len % half != 0));
    double direct = 0;
    for (long lag = 0; lag < lags; ++lag)
        direct += real(len - lag) * (form == CorrForm::Real ? 4.0 : 11.0);
    if (form == CorrForm::Real)
        return splitCount(half, 36.0) + transformCount(half) * (1.0 + blocks) +
                   blocks * (splitCount(half, 40.0) + 20.0 * real(half)) <
               direct;
    return transformCount(whole) * (1.0 + blocks) + (blocks - 1.0) * 20.0 * real(whole) +
               6.0 * real(whole) <
           direct;
}

} // namespace reference

#endif
