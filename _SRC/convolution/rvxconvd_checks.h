// The argument checks that fronts and cores share.

#ifndef RVXCONVD_CHECKS_H
#define RVXCONVD_CHECKS_H

#include "frame/rvxcheck.h"

RVX_MODULE("rvxconvd")

// False when a report was made, under the name `func`.
inline bool rvxConvArgumentsGood(const char *func, const void *x, int xLen, const void *h, int hLen,
                                 const void *y)
{
    RVX_REJECT_AS(func, x == nullptr, "x==0", false);
    RVX_REJECT_AS(func, xLen <= 0, "xLen<=0", false);
    RVX_REJECT_AS(func, h == nullptr, "h==0", false);
    RVX_REJECT_AS(func, hLen <= 0, "hLen<=0", false);
    RVX_REJECT_AS(func, y == nullptr, "y==0", false);
    return true;
}

#endif
