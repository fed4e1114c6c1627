// The chapter on the electrocardiogram: what its pictures show, and who draws them.

#ifndef ECG_H
#define ECG_H

#include <vector>

#include "support/section.h"
#include "support/spectrum.h"

namespace ecg {

using Signal = std::vector<double>; // in millivolts

constexpr double rate = 360.0;    // of the recording, samples per second
constexpr int up = 25, down = 36; // 360 * 25 / 36 = 250
constexpr double newRate = rate * up / down;

// The signal behind each step of the chain.
struct Steps {
    Signal recorded, hummed;
    Signal wander, level;
    Signal adaptive, notched; // two ways to take the hum out of level
    Signal smooth, resampled;
};

struct Spectra {
    demo::Spectrum recorded, hummed, level, adaptive, notched, smooth, resampled;
};

// Gains in dB, from the answers to an impulse.
struct Responses {
    Signal median, adaptive, notch, smooth;
    double step; // Hz, from one value to the next
    Signal changeOfRate;
    double changeStep;
    Signal sines, medianOfSines; // frequencies in Hz, and gains
};

void drawSteps(const Steps &s, demo::Section &section);
void drawSpectra(const Spectra &p, demo::Section &section);
void drawResponses(const Responses &r, demo::Section &section);

} // namespace ecg

#endif
