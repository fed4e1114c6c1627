// Taps of filters.

#ifndef DEMO_TAPS_H
#define DEMO_TAPS_H

#include <vector>

namespace demo {

// The ideal low-pass cut to an odd number of taps, which the caller tapers by a window.
// The band ends at cutoff, as a part of the sampling rate.
std::vector<double> idealLowPass(int tapsLen, double cutoff);

} // namespace demo

#endif
