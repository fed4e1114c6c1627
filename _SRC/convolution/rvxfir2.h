// What the transform paths of filtering and correlation share: the step between a
// real line of 2n values, transformed as n complex ones, and its spectrum.

#ifndef RVXFIR2_H
#define RVXFIR2_H

#include "rvx.h"

// The transform of 2n real values, read as n = 2^order complex ones, becomes the
// packed real spectrum: bins 0 and n as the two parts of z[0], bins 1 to n-1 behind
// it. RVX_FFT_INVERSE takes the conjugate kernel; with RVX_FFT_OUT_BIT_REV the bins
// stand, and stood, in bit-reversed order.
//
// Both work whatever status is stored. Without memory for the table of order + 1
// they report it and leave z as it is.
void rvxRealSplitFwd(ZCplx *z, int order, int flags);

// The way back: a packed spectrum becomes twice what the inverse transform of n
// complex values takes. With RVX_FFT_IN_BIT_REV in bit-reversed order.
void rvxRealSplitInv(ZCplx *z, int order, int flags);

// The first with the forward kernel and the second with the conjugate one, both in
// bit-reversed order, for n of 4 and more, by factors that the caller has: W(2n,k) at
// firstQuarter[k] and at circleEnd[k - 2n], of a quarter of the circle each.
void rvxSplitReversed(ZCplx *z, int order, const ZCplx *firstQuarter);
void rvxJoinReversed(ZCplx *z, int order, const ZCplx *circleEnd);

#endif
