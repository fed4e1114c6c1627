// The running median by sorting every window anew.

#ifndef RVX_TEST_REFERENCE_MEDIAN_H
#define RVX_TEST_REFERENCE_MEDIAN_H

#include <algorithm>
#include <cstddef>
#include <vector>

namespace reference {

inline std::vector<double> runningMedian(const std::vector<double> &x, int masksize)
{
    const auto len = static_cast<long long>(x.size());
    const long long mask = masksize % 2 != 0 ? masksize : masksize - 1;
    std::vector<double> medians = x;
    for (long long i = 1; i < len - 1; ++i) {
        std::vector<double> window;
        for (long long j = i - mask / 2; j <= i + mask / 2; ++j)
            window.push_back(x[static_cast<std::size_t>(std::clamp(j, 0LL, len - 1))]);
        std::sort(window.begin(), window.end());
        medians[static_cast<std::size_t>(i)] = window[static_cast<std::size_t>(mask / 2)];
    }
    return medians;
}

} // namespace reference

#endif
