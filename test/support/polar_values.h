// Parts of complex numbers for the tests of polar forms, and magnitudes by the definition.

#ifndef RVX_TEST_POLAR_VALUES_H
#define RVX_TEST_POLAR_VALUES_H

#include <cmath>

#include "support/arith_values.h"

// Every temper of a double: zeros, the ends of the ranges, where paths meet.
inline const double parts[] = {0.0,        -0.0,
                               1.0,        -1.0,
                               3.0,        -0.5,
                               INF,        -INF,
                               QUIET,      -QUIET,
                               TINY,       -TINY,
                               1e-310,     0x1p-1022,
                               HUGE_VALUE, -HUGE_VALUE,
                               0x1p-500,   0x1.fffffffffffffp-501,
                               0x1p500,    0x1.fffffffffffffp499,
                               -1e-200,    1e200,
                               -1e-20,     0.25};

// As a plain loop over the definition would have it, each operation rounded.
inline double plainMagnitude(ZCplx z)
{
    volatile double im = z.im * z.im;
    volatile double re = z.re * z.re;
    volatile double sum = im + re;
    return std::sqrt(sum);
}

#endif
