// The operation counts that choose between the paths of the correlations.
//
// The counts are the contract: they decide alone, whatever a machine is fast at.

#include "convolution/rvxconv_counts.h"
#include "convolution/rvxcorr_blocks.h"
#include "convolution/rvxcorr_paths.h"

namespace {

double pairsOf(std::int64_t len, std::int64_t lags)
{
    return static_cast<double>(lags) * static_cast<double>(len);
}

// The sum of len - k over all lags k.
double overlapsOf(std::int64_t len, std::int64_t lags)
{
    const double first = static_cast<double>(len), count = static_cast<double>(lags);
    return count * first - count * (count - 1.0) * 0.5;
}

CorrCosts mixedCosts(std::int64_t len1, std::int64_t lags)
{
    const CorrBlocks b = ownCorrBlocks(len1, lags);
    const double count = static_cast<double>(b.count);
    return {pairsOf(len1, lags) * 8.0,
            ownTransformCount(b.whole) +
                count * (ownTransformCount(b.whole) + ownSplitCount(b.half, 40.0) +
                         ownTransformCount(b.half) + 14.0 * static_cast<double>(b.whole))};
}

} // namespace

template <>
CorrCosts ownCrossCosts<double, double>(std::int64_t len1, std::int64_t lags)
{
    const CorrBlocks b = ownCorrBlocks(len1, lags);
    const double count = static_cast<double>(b.count);
    const double half = static_cast<double>(b.half);
    return {pairsOf(len1, lags) * 4.0,
            0.75 * ownTransformCount(b.half) +
                count * (2.0 * 8.0 * half + 0.75 * ownTransformCount(b.whole) + 14.0 * half) +
                ownSplitCount(b.half, 36.0)};
}

template <>
CorrCosts ownCrossCosts<ZCplx, ZCplx>(std::int64_t len1, std::int64_t lags)
{
    const CorrBlocks b = ownCorrBlocks(len1, lags);
    const double count = static_cast<double>(b.count);
    return {pairsOf(len1, lags) * 14.0,
            ownTransformCount(b.whole) +
                count * (2.0 * ownTransformCount(b.whole) + 14.0 * static_cast<double>(b.whole))};
}

template <>
CorrCosts ownCrossCosts<double, ZCplx>(std::int64_t len1, std::int64_t lags)
{
    return mixedCosts(len1, lags);
}

template <>
CorrCosts ownCrossCosts<ZCplx, double>(std::int64_t len1, std::int64_t lags)
{
    return mixedCosts(len1, lags);
}

template <>
CorrCosts ownAutoCosts<double>(std::int64_t len, std::int64_t lags)
{
    const CorrBlocks b = ownCorrBlocks(len, lags);
    const double count = static_cast<double>(b.count);
    const double half = static_cast<double>(b.half);
    return {overlapsOf(len, lags) * 4.0,
            ownTransformCount(b.half) +
                count * (ownSplitCount(b.half, 40.0) + ownTransformCount(b.half) + 6.0 * half +
                         14.0 * half) +
                ownSplitCount(b.half, 36.0)};
}

template <>
CorrCosts ownAutoCosts<ZCplx>(std::int64_t len, std::int64_t lags)
{
    const CorrBlocks b = ownCorrBlocks(len, lags);
    const double count = static_cast<double>(b.count);
    const double whole = static_cast<double>(b.whole);
    return {overlapsOf(len, lags) * 11.0,
            ownTransformCount(b.whole) +
                (count - 1.0) * (ownTransformCount(b.whole) + 4.0 * whole + 16.0 * whole) +
                ownTransformCount(b.whole) + 12.0 * whole * 0.5};
}
