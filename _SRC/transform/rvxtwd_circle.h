// Sines and cosines of equal steps around the circle.

#ifndef RVXTWD_CIRCLE_H
#define RVXTWD_CIRCLE_H

#include "rvx.h"

// sine[i] = sin(2 pi i / N) for 0 <= i <= N/4, N being 2^order. Past the eighth it
// is the cosine of the complement, so sine[N/4] is 1.
void rvxFillSineQuarter(double *sine, int order);

// tbl[k] = W(N,k) for 0 <= k < N. Nothing is taken from symmetry: where the circle
// crosses an axis, the values show that the double 2 pi is not the true one.
void rvxFillCircle(ZCplx *tbl, int order);

// Parts of both, in one walk around the circle; null parts are left out.
struct CircleParts {
    double *sine;        // as above
    ZCplx *firstQuarter; // firstQuarter[j] = W(N, j), 0 < j < N/4
    ZCplx *lastQuarter;  // lastQuarter[j] = W(N, 3N/4 + j) likewise
};

void rvxFillCircleParts(const CircleParts &parts, int order);

#endif
