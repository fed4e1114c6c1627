// The sums of FIR filters, single-rate and multi-rate, over the element types.

#ifndef RVXFIRH_ENGINE_H
#define RVXFIRH_ENGINE_H

#include <cstddef>
#include <type_traits>

#include "rvx.h"

template <typename Tap, typename Sample>
using RvxFirOut =
    std::conditional_t<std::is_same<Tap, double>::value && std::is_same<Sample, double>::value,
                       double, ZCplx>;

// What a filter is but for its element types. A step reads downFactor samples and
// writes an output per row; its window begins dlylLen samples before the first
// that it reads.
struct RvxFirShape {
    const rvxFirPhaseRow *rows;
    int rowCount;
    int downFactor;
    int tapsLen;
    int dlylLen;
};

// out[m * rowCount + i] = sum over k of taps[tapOffset + k] *
// window[m * downFactor + dlyOffset + k] for each row i and each step m, from +0.0
// and with k ascending.
template <typename Tap, typename Sample>
void rvxFirRun(const RvxFirShape &shape, const Tap *taps, const Sample *window,
               RvxFirOut<Tap, Sample> *out, std::ptrdiff_t steps);

// One such sum, continued: sum + the taps[k] * window[k] over k below n.
template <typename Tap, typename Sample>
RvxFirOut<Tap, Sample> rvxFirSum(RvxFirOut<Tap, Sample> sum, const Tap *taps, const Sample *window,
                                 int n);

#endif
