#include "taps.h"

#include <cmath>

namespace demo {

std::vector<double> idealLowPass(int tapsLen, double cutoff)
{
    constexpr double pi = 3.14159265358979323846;
    std::vector<double> taps;
    for (int i = 0; i < tapsLen; ++i) {
        const double t = pi * (i - tapsLen / 2);
        taps.push_back(i == tapsLen / 2 ? 2.0 * cutoff : std::sin(2.0 * cutoff * t) / t);
    }
    return taps;
}

} // namespace demo
