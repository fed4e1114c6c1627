// Gaussian noise as a sequence of doubles.

#ifndef RVXRAND_GAUSS_H
#define RVXRAND_GAUSS_H

#include <cstdint>

#include "rvx.h"

// The next n samples.
void rvxFillGaussian(rvxRandGausState *state, double *samps, std::uint64_t n);

#endif
