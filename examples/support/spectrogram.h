// The spectrum of a recording, frame by frame.

#ifndef DEMO_SPECTROGRAM_H
#define DEMO_SPECTROGRAM_H

#include <vector>

#include "recording.h"

namespace demo {

struct Spectrogram {
    std::vector<float> levels; // dBFS, frame by frame, from 0 Hz to half the sampling rate
    int frames;
    double firstTime, timeStep; // s, of the middle of a frame
    double frequencyStep;       // Hz
};

// Frames of 2^order samples, each hop samples after the other and under a Hann window. A sine
// of full scale on a bin comes out at 0 dBFS. The recording has a frame at least.
Spectrogram spectrogramOf(const Recording &recording, int order, int hop);

// How a spectrogram is drawn, whatever part of it: lines of a gnuplot script.
extern const char *const spectrogramAxes;

} // namespace demo

#endif
