// The larger of two errors, where an error that is not a number is larger than any: std::max
// may drop it and std::fmax does, so that outputs of NaNs would meet every bound.

#ifndef RVX_TEST_WORSE_H
#define RVX_TEST_WORSE_H

#include <cmath>

template <typename Real>
Real worse(Real a, Real b)
{
    return std::isnan(a) || a > b ? a : b;
}

#endif
