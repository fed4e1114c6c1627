#include "spectrogram.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

#include "rvx.h"
#include "spectrum.h"
#include "status.h"

namespace demo {

Spectrogram spectrogramOf(const Recording &recording, int order, int hop)
{
    const int n = static_cast<int>(recording.samples.size());
    const int frameLen = 1 << order;
    const std::size_t bins = static_cast<std::size_t>(frameLen) / 2 + 1;

    // A window function applied to ones gives the window itself.
    std::vector<double> window(static_cast<std::size_t>(frameLen));
    rvxdbSet(1.0, window.data(), frameLen);
    rvxdWinHann(window.data(), frameLen);
    const double fullScale = 0.5 * frameLen * rvxdMean(window.data(), frameLen);

    // The spectrum takes the place of the frame: one complex value for each bin.
    std::vector<double> frame(2 * bins);
    Spectrogram result{
        {}, 0, 0.5 * frameLen / recording.rate, hop / recording.rate, recording.rate / frameLen};
    for (int start = 0; start + frameLen <= n; start += hop, ++result.frames) {
        rvxdbMpy3(recording.samples.data() + start, window.data(), frame.data(), frameLen);
        rvxdRealFft(frame.data(), order, RVX_FFT_FORWARD);
        for (std::size_t k = 0; k < bins; ++k) {
            const double amplitude = std::hypot(frame[2 * k], frame[2 * k + 1]) / fullScale;
            result.levels.push_back(static_cast<float>(decibels(std::max(amplitude, 1e-6))));
        }
    }

    // The transform keeps its tables for the next call of the same order, until it
    // is told to release them.
    rvxdRealFft(nullptr, order, RVX_FFT_FREE_TABLES);
    requireSuccess("spectrogram");
    return result;
}

const char *const spectrogramAxes = R"(
set lmargin at screen 0.07
set rmargin at screen 0.87
set cbrange [-100:-20]
set cbtics 20
set cblabel 'Level in dBFS'
set ytics 1
set xlabel 'Time in seconds'
set ylabel 'Frequency in kHz'
unset key
unset grid
)";

} // namespace demo
