// The orders of transforms, and the operation counts of the steps in which they are
// used. Choices of paths rest on them, so they are part of what the library promises.

#ifndef RVXCONV_COUNTS_H
#define RVXCONV_COUNTS_H

#include <cstdint>

// floor(log2(n)), n >= 1
inline int ownLog2(std::int64_t n)
{
    return 63 - __builtin_clzll(static_cast<unsigned long long>(n));
}

// The smallest k with 2^k not below n, n >= 1
inline int ownOrderFor(std::int64_t n)
{
    return n == 1 ? 0 : ownLog2(n - 1) + 1;
}

// Counts are double, which is exact for all lengths that have memory: those of images
// pass 64 bits.

// A complex transform of n points, n a power of two.
inline double ownTransformCount(std::int64_t n)
{
    return ownLog2(n) * static_cast<double>(n) / 2.0 * 24.0;
}

// The split of n complex values into the spectrum of 2n real ones, or back.
inline double ownSplitCount(std::int64_t n, double ofPair)
{
    return n == 1 ? 8.0 : (static_cast<double>(n) / 2.0 - 1.0) * ofPair + 8.0;
}

#endif
