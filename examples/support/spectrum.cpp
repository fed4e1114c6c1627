#include "spectrum.h"

#include <algorithm>
#include <cmath>

#include "rvx.h"
#include "status.h"

namespace demo {

Spectrum spectrumOf(const std::vector<double> &x, double samplesPerSecond, int from)
{
    constexpr int n = Spectrum::frameLen, bins = n / 2 + 1;
    std::vector<double> window(n), frame(2 * bins), magnitude(bins), sum(bins);
    rvxdbSet(1.0, window.data(), n);
    rvxdWinHann(window.data(), n);
    int frames = 0;
    for (int start = from; start + n <= static_cast<int>(x.size()); start += n / 2, ++frames) {
        rvxdbMpy3(x.data() + start, window.data(), frame.data(), n);
        rvxdRealFft(frame.data(), Spectrum::order, RVX_FFT_FORWARD);
        for (std::size_t k = 0; k < bins; ++k)
            magnitude[k] = std::hypot(frame[2 * k], frame[2 * k + 1]);
        rvxdbMpy3(magnitude.data(), magnitude.data(), magnitude.data(), bins);
        rvxdbAdd3(sum.data(), magnitude.data(), sum.data(), bins);
    }
    rvxdRealFft(nullptr, Spectrum::order, RVX_FFT_FREE_TABLES);
    const double windowNorm = rvxdNorm(window.data(), nullptr, n, RVX_NORM_L2);
    rvxdbMpy1(2.0 / (frames * samplesPerSecond * windowNorm * windowNorm), sum.data(), bins);
    requireSuccess("spectrum");
    return {sum, samplesPerSecond / n};
}

double bandLevel(const Spectrum &spectrum, double from, double to)
{
    double power = 0.0;
    for (std::size_t k = 0; k < spectrum.density.size(); ++k) {
        const double frequency = static_cast<double>(k) * spectrum.step;
        if (frequency >= from && frequency < to)
            power += spectrum.density[k] * spectrum.step;
    }
    return std::sqrt(power);
}

double rms(const std::vector<double> &x)
{
    const int n = static_cast<int>(x.size());
    return rvxdNorm(x.data(), nullptr, n, RVX_NORM_L2) / std::sqrt(n);
}

double decibels(double ratio)
{
    return 20.0 * std::log10(ratio);
}

// Zeros have no logarithm.
std::vector<double> levelsOf(std::vector<double> powers)
{
    const int n = static_cast<int>(powers.size());
    rvxdbThresh1(powers.data(), n, 1e-30, RVX_THRESH_RAISE);
    rvxdbLg1(powers.data(), n);
    rvxdbMpy1(10.0, powers.data(), n);
    requireSuccess("logarithm");
    return powers;
}

double gainInDecibels(double gain)
{
    return decibels(std::max(gain, 1e-7));
}

std::vector<double> gainOf(std::vector<double> response)
{
    int order = 0;
    while (std::size_t{1} << order < response.size())
        ++order;
    response.resize((std::size_t{1} << order) + 2); // room for the last bin
    rvxdRealFft(response.data(), order, RVX_FFT_FORWARD);
    rvxdRealFft(nullptr, order, RVX_FFT_FREE_TABLES);
    requireSuccess("response");

    std::vector<double> gain;
    for (std::size_t k = 0; k + 1 < response.size(); k += 2)
        gain.push_back(gainInDecibels(std::hypot(response[k], response[k + 1])));
    return gain;
}

} // namespace demo
