// Sine and cosine of one angle.
//
// The C library's double forms have different last bits on machines with and without
// fused operations; its extended forms do not, and are rounded once.

#ifndef RVXSINE_H
#define RVXSINE_H

#include <cmath>

#include "frame/rvxkernel.h"

inline double cosine(double x)
{
    return static_cast<double>(std::cos(static_cast<Extended>(x)));
}

inline double sine(double x)
{
    return static_cast<double>(std::sin(static_cast<Extended>(x)));
}

#endif
