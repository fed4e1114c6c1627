// Uniform noise as a sequence of doubles.

#ifndef RVXRAND_UNI_H
#define RVXRAND_UNI_H

#include <cstdint>

#include "rvx.h"

// The next n samples.
void rvxFillUniform(rvxRandUniState *state, double *samps, std::uint64_t n);

#endif
