// A sound file in memory.

#ifndef DEMO_RECORDING_H
#define DEMO_RECORDING_H

#include <string>
#include <vector>

namespace demo {

struct Recording {
    std::vector<double> samples; // full scale is 1.0
    double rate;                 // samples per second
};

// Reads a WAV file of one channel, at least atLeast samples long. Throws
// std::runtime_error, with the file's name and what is wrong with it, on a file
// that cannot be read, is no WAV file, is cut short or has several channels.
Recording readRecording(const std::string &path, int atLeast);

// Throws std::runtime_error, with the file's name, on a recording with fewer samples per second
// or fewer seconds than a chapter can work with.
void requireRecording(const std::string &path, const Recording &recording, double lowestRate,
                      double shortestTime);

} // namespace demo

#endif
