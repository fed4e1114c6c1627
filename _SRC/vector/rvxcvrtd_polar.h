// Blocks between cartesian and polar form. None of these touches the status.

#ifndef RVXCVRTD_POLAR_H
#define RVXCVRTD_POLAR_H

#include <cstddef>

#include "rvx.h"

// dst[i] = (cos(phase[i]) * mag[i], sin(phase[i]) * mag[i])
void rvxJoinPolar(const double *mag, const double *phase, ZCplx *dst, std::ptrdiff_t n);

// phase[i] = atan2(src[i].im, src[i].re), with the real axis as rvxzbPhase has it.
void rvxFindPhases(const ZCplx *src, double *phase, std::ptrdiff_t n);

// The same and magnitudes, with the real axis as rvxzbCartToPolar has it.
void rvxSplitPolar(const ZCplx *src, double *mag, double *phase, std::ptrdiff_t n);

#endif
