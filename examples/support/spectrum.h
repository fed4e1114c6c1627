// What a signal holds at which frequency, and what a filter lets pass.

#ifndef DEMO_SPECTRUM_H
#define DEMO_SPECTRUM_H

#include <vector>

namespace demo {

// A power spectrum, in squares of the signal's unit per Hz.
struct Spectrum {
    static constexpr int order = 12;
    static constexpr int frameLen = 1 << order; // samples that are needed
    std::vector<double> density;                // from 0 Hz on
    double step;                                // Hz, from one value to the next
};

// The mean over frames, each half a frame after the other and under a Hann window, of x from
// a sample on (Welch, IEEE Trans. Audio Electroacoust. 15, 1967).
Spectrum spectrumOf(const std::vector<double> &x, double samplesPerSecond, int from);

// The level of what lies between two frequencies, as a root mean square in the signal's unit.
double bandLevel(const Spectrum &spectrum, double from, double to);

// The root of the mean of the squares.
double rms(const std::vector<double> &x);

double decibels(double ratio);

// Powers as levels in dB, those below -300 dB as -300 dB.
std::vector<double> levelsOf(std::vector<double> powers);

// A gain in dB, and no less than -140 dB.
double gainInDecibels(double gain);

// The gain in dB at the frequencies 0, 1/n, 2/n ... 1/2 of the sampling rate, of what came out
// of a filter for an impulse; n is the length of the response, or the power of two above it.
// It does not matter when the impulse was.
std::vector<double> gainOf(std::vector<double> response);

} // namespace demo

#endif
