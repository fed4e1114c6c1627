// The operation counts that choose between the paths of the correlations.
//
// The counts are the contract: they decide alone, whatever a machine is fast at.

#include "convolution/rvxcorr_paths.h"

namespace {

std::int64_t powerNotBelow(std::int64_t n)
{
    std::int64_t power = 1;
    while (power < n)
        power *= 2;
    return power;
}

// A complex transform of n points, n a power of two.
double transformCost(std::int64_t n)
{
    std::int64_t log = 0;
    while (n >> (log + 1) != 0)
        ++log;
    const std::int64_t butterflies = log * n / 2;
    return static_cast<double>(butterflies) * 24.0;
}

// The split of n complex values into the spectrum of 2n real ones, or back.
double splitCost(std::int64_t n, double pairCost)
{
    const std::int64_t pairs = n / 2 - 1;
    return n == 1 ? 8.0 : static_cast<double>(pairs) * pairCost + 8.0;
}

// Half a block, which the lags fit in, the block, and how many blocks there are.
struct Blocks {
    std::int64_t half;
    std::int64_t whole;
    double count;
};

Blocks blocksOf(std::int64_t len, std::int64_t lags)
{
    const std::int64_t half = powerNotBelow(lags);
    const std::int64_t count = (len + half - 1) / half;
    return {half, 2 * half, static_cast<double>(count)};
}

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
    const Blocks b = blocksOf(len1, lags);
    return {pairsOf(len1, lags) * 8.0,
            transformCost(b.whole) +
                b.count * (transformCost(b.whole) + splitCost(b.half, 40.0) +
                           transformCost(b.half) + 14.0 * static_cast<double>(b.whole))};
}

} // namespace

template <>
CorrCosts ownCrossCosts<double, double>(std::int64_t len1, std::int64_t lags)
{
    const Blocks b = blocksOf(len1, lags);
    const double half = static_cast<double>(b.half);
    return {pairsOf(len1, lags) * 4.0,
            0.75 * transformCost(b.half) +
                b.count * (2.0 * 8.0 * half + 0.75 * transformCost(b.whole) + 14.0 * half) +
                splitCost(b.half, 36.0)};
}

template <>
CorrCosts ownCrossCosts<ZCplx, ZCplx>(std::int64_t len1, std::int64_t lags)
{
    const Blocks b = blocksOf(len1, lags);
    return {pairsOf(len1, lags) * 14.0,
            transformCost(b.whole) +
                b.count * (2.0 * transformCost(b.whole) + 14.0 * static_cast<double>(b.whole))};
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
    const Blocks b = blocksOf(len, lags);
    const double half = static_cast<double>(b.half);
    return {overlapsOf(len, lags) * 4.0,
            transformCost(b.half) +
                b.count *
                    (splitCost(b.half, 40.0) + transformCost(b.half) + 6.0 * half + 14.0 * half) +
                splitCost(b.half, 36.0)};
}

template <>
CorrCosts ownAutoCosts<ZCplx>(std::int64_t len, std::int64_t lags)
{
    const Blocks b = blocksOf(len, lags);
    const double whole = static_cast<double>(b.whole);
    return {overlapsOf(len, lags) * 11.0,
            transformCost(b.whole) +
                (b.count - 1.0) * (transformCost(b.whole) + 4.0 * whole + 16.0 * whole) +
                transformCost(b.whole) + 12.0 * whole * 0.5};
}
