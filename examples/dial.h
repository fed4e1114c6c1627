// The chapter on dialling tones: what the decoder and the pictures share.

#ifndef DIAL_H
#define DIAL_H

#include <array>
#include <cstddef>
#include <string>
#include <vector>

#include "support/recording.h"
#include "support/section.h"

namespace dial {

using Signal = std::vector<double>; // full scale is 1.0

// The keys, row by row. One of the first four frequencies says the row, one of the others the
// column (ITU-T Q.23).
constexpr int groupLen = 4;
constexpr std::size_t tones = 2 * groupLen;
constexpr std::array<double, tones> frequencies{697, 770, 852, 941, 1209, 1336, 1477, 1633}; // Hz
constexpr const char *keypad = "123A456B789C*0#D";
constexpr int keyCount = groupLen * groupLen;

// Lengths in samples.
struct Timing {
    double rate;        // samples per second
    int blockLen, hop;  // of the decoder
    int toneLen, pause; // of a digit
    int slot() const { return toneLen + pause; }
};

// --- the decoder -------------------------------------------------------------

// What a block holds.
struct Block {
    double time;                      // samples, of its middle
    std::array<double, tones> powers; // of the eight tones
    double power;                     // of everything
};

// What two tones must be like to count as a key.
struct Limits {
    double level = -40.0;   // dB at least, the amplitude of each
    double lowTwist = -8.0; // dB, column over row, from ...
    double highTwist = 4.0; // ... to
    double lead = 8.0;      // dB at least, over the others of the group
    double share = 0.38;    // of the block's power at least, both together
    int blocks = 3;         // in a row that say the same, to begin a digit
    int others = 2;         // in a row that do not, to end it
};

struct Digit {
    char key;
    double time; // samples, of the middle of its first block
};

std::vector<Block> blocksOf(const Signal &x, const Timing &timing);

// The key that a block says; 0 if it says none.
char keyOf(const Block &block, const Limits &limits);

std::vector<Digit> decoded(const std::vector<Block> &blocks, const Limits &limits);
std::string keysOf(const std::vector<Digit> &digits);

// The levels in dB of the eight tones, when a block hears a lone tone of amplitude 1.
std::array<double, tones> levelsOfTone(double frequency, const Timing &timing);

// --- what is shown -----------------------------------------------------------

// Digits in a voice and in noise.
struct Mix {
    std::string keys; // as dialled
    double start;     // s, of the recording
    int firstTone;    // samples, from the start of the mix to that of the first tone
    Signal dialled, voice, samples;
};

// Digits that are found, and others that nobody dialled, of a hundred dialled, against the ratio of
// the tones to the noise.
struct Rates {
    Signal ratios; // dB
    std::vector<Signal> right, wrong;
};

// The order of rates: the decoder, and one that takes any two tones.
enum { alone, withVoice, anyAlone, anyWithVoice, variants };

void drawMix(const Mix &mix, const std::vector<Digit> &digits, const Timing &timing,
             demo::Section &section);
void drawLevels(const Mix &mix, const std::vector<Block> &blocks, const Timing &timing,
                demo::Section &section);
void drawResponse(const Timing &timing, demo::Section &section);
void drawRates(const Rates &rates, demo::Section &section);

} // namespace dial

#endif
