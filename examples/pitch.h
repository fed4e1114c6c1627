// The chapter on pitch: what its pictures show, and who draws them.

#ifndef PITCH_H
#define PITCH_H

#include <vector>

#include "support/recording.h"
#include "support/section.h"

namespace pitch {

using Signal = std::vector<double>;

constexpr double hopTime = 0.01;   // s, from the start of a frame to that of the next
constexpr double voicedFrom = 0.6; // how much alike two periods of a voice are at least
constexpr int spectrumOrder = 9;   // transforms of 512 samples, to tell harmonics apart

// What the analysis goes by, in samples.
struct Frames {
    int len, hop;
    int shortest, longest; // period
    Signal window;
    Signal windowLikeness; // autocorrelation of the window, 1 at lag 0
};

// What was found in a frame.
struct Estimate {
    double time;      // s, of the middle of the frame
    double level;     // dBFS
    double period;    // samples, also where there is no voice
    double strength;  // how much alike two periods are, 1 being the same
    double frequency; // Hz; 0 without a voice
    double pitch;     // Hz, the median of the frequencies around
};

// How much a frame is like itself, lag after lag.
Signal frameLikeness(const double *samples, const Frames &f);

// The track of all voiced frames, over a spectrogram, and a part of it.
void drawTrack(const demo::Recording &voice, const std::vector<Estimate> &estimates,
               demo::Section &section);

// A voiced frame and an unvoiced one.
void drawFrames(const demo::Recording &voice, const std::vector<Estimate> &estimates,
                const Frames &f, demo::Section &section);

} // namespace pitch

#endif
