// The running median: each window sorted anew, and, for many wide windows, one sorted
// window that loses a sample and gains one.

#ifndef RVX_TEST_REFERENCE_MEDIAN_H
#define RVX_TEST_REFERENCE_MEDIAN_H

#include <algorithm>
#include <cstddef>
#include <vector>

namespace reference {

inline double sampleAt(const std::vector<double> &x, long long i)
{
    const auto len = static_cast<long long>(x.size());
    return x[static_cast<std::size_t>(std::clamp(i, 0LL, len - 1))];
}

// The half samples on either side of place i and that one, in order.
inline std::vector<double> sortedWindow(const std::vector<double> &x, long long i, long long half)
{
    std::vector<double> window;
    for (long long j = i - half; j <= i + half; ++j)
        window.push_back(sampleAt(x, j));
    std::sort(window.begin(), window.end());
    return window;
}

inline std::vector<double> runningMedianAnew(const std::vector<double> &x, int masksize)
{
    const long long half = (masksize - 1) / 2;
    std::vector<double> medians = x;
    for (std::size_t i = 1; i + 1 < x.size(); ++i)
        medians[i] =
            sortedWindow(x, static_cast<long long>(i), half)[static_cast<std::size_t>(half)];
    return medians;
}

inline std::vector<double> runningMedian(const std::vector<double> &x, int masksize)
{
    const long long half = (masksize - 1) / 2;
    std::vector<double> medians = x;
    std::vector<double> window = sortedWindow(x, 0, half);
    for (std::size_t i = 1; i + 1 < x.size(); ++i) {
        const auto place = static_cast<long long>(i);
        const double old = sampleAt(x, place - half - 1), fresh = sampleAt(x, place + half);
        window.erase(std::lower_bound(window.begin(), window.end(), old));
        window.insert(std::upper_bound(window.begin(), window.end(), fresh), fresh);
        medians[i] = window[static_cast<std::size_t>(half)];
    }
    return medians;
}

} // namespace reference

#endif
