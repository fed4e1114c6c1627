// The constants by which a convolution chooses its path.

#ifndef RVXCONVD_COSTS_H
#define RVXCONVD_COSTS_H

#include "convolution/rvxconvd.h"

// Below `upper`, and with the longer operand below longest[shortLen - lower], the
// direct sum is taken; below `lower` always, from `upper` on never.
struct ConvThresholds {
    int lower;
    int upper;
    const int *longest;
};

// Of a transform of one order, in one arbitrary unit: T forward, U the product of
// spectra and the way back; d real, z complex.
struct ConvCosts {
    double Td;
    double Ud;
    double Tz;
    double Uz;
};

enum { RVX_CONV_LOWEST_ORDER = 4, RVX_CONV_HIGHEST_ORDER = 32 };

const ConvThresholds &rvxConvThresholds(ConvForm form);
const ConvCosts &rvxConvCosts(int order); // 4 to 32

#endif
