// What the engines of the median filter share.

#ifndef RVXMED_H
#define RVXMED_H

#include <cstddef>

// A block of outputs and the samples that they need: line[k] and the m - 1 behind
// it are the window of output k.
struct Windows {
    const double *line;
    std::ptrdiff_t n;
    std::ptrdiff_t mask;
    double *scratch;
};

// out[0] to out[n - 1] become the medians, by ranks. The scratch memory is as long
// as the next function says of a line of so many samples.
void medianByRanks(const Windows &windows, double *out);
std::ptrdiff_t rankScratch(std::ptrdiff_t samples);

#endif
