// The chapter on the telephone: what its pictures show, and who draws them.

#ifndef PHONE_H
#define PHONE_H

#include <string>
#include <vector>

#include "support/recording.h"
#include "support/section.h"

namespace phone {

using Signal = std::vector<double>; // full scale is 1.0

constexpr int lineRate = 8000;       // samples per second
constexpr double lowestTone = 300.0; // Hz, where the line is at one half
constexpr double highestTone = 3400.0;

// A way to write samples down in few bits.
struct Format {
    std::string name;
    int bits; // of a sample
    Signal (*thereAndBack)(const Signal &x);
    double (*noise)(double amplitude); // by theory: the power of its error around an amplitude
};

// In the order in which they are told and drawn.
enum { aLaw, muLaw, bits8, bits16, bits32 };
std::vector<Format> allFormats();

// How far a signal is above the error that each format makes, at rising levels of its peak.
struct Curves {
    Signal levels;                        // dBFS
    std::vector<Signal> measured, theory; // dB, format by format
};

// How loud a voice and its errors are, block after block.
struct Loudness {
    double step;                // s, from block to block
    Signal voice;               // dBFS
    std::vector<Signal> errors; // dBFS, format by format
};

// A short piece of a voice, taken apart and put together again.
struct Frame {
    double start; // s
    Signal samples;
    Signal magnitudes; // dB, beside the largest
    Signal phases;     // radians, counted from the middle of the frame
    Signal rebuilt, fromMagnitudes;
};

void drawSpectra(const demo::Recording &voice, const Signal &line,
                 const std::vector<Signal> &returned, demo::Section &section);
void drawRatios(const Curves &sine, const Curves &voice, demo::Section &section);
void drawLoudness(const Loudness &loudness, demo::Section &section);

// A moment at which the voice is about as quiet as the steps of 8 bits, if there is one.
void drawQuiet(const Signal &line, const std::vector<Signal> &returned, demo::Section &section);

void drawFrame(const Frame &frame, demo::Section &section);

} // namespace phone

#endif
