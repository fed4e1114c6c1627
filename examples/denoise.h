// The chapter on noise taken out by wavelets: what its parts hand to each other.

#ifndef DENOISE_H
#define DENOISE_H

#include <string>
#include <vector>

#include "rvx.h"
#include "support/section.h"

namespace denoise {

using Signal = std::vector<double>; // in millivolts

constexpr double rate = 360.0; // samples per second
constexpr int pieceOrder = 13;
constexpr int pieceLen = 1 << pieceOrder;
constexpr int levels = 6;

struct Bank {
    std::string name;
    int type, par1, par2;
};

// In the order in which they are told and drawn.
enum { haar, daubechies, symlet, coiflet, spline };
std::vector<Bank> allBanks();

// The coefficients of a bank. The transform takes a signal for periodic and would see a step from
// its end to its beginning, so a piece is followed by its mirror image. Coefficients are those of
// both.
class Transform {
public:
    explicit Transform(const Bank &bank);
    ~Transform() { rvxWtFree(&state_); }
    Transform(const Transform &) = delete;
    Transform &operator=(const Transform &) = delete;

    Signal decompose(const Signal &piece);
    Signal reconstruct(const Signal &coefficients); // without the mirror image

    // The deviation of the details of a level, 1 being the finest, for white noise of deviation 1.
    double gain(int level) const { return gains_[static_cast<std::size_t>(level)]; }

    // The details of a level in the units of the samples, as they have the noise, each at the time
    // at which it acts and zeros between.
    Signal spread(const Signal &coefficients, int level);

private:
    int placeOf(int level);

    rvxWtState state_;
    Signal gains_; // by level
};

// Where the details of a level are among the coefficients, and how many.
constexpr int detailsStart(int level)
{
    return 2 * pieceLen >> level;
}
constexpr int detailsLen(int level)
{
    return 2 * pieceLen >> level;
}

Signal detailsOf(const Signal &coefficients, int level);

// The deviation of white noise, as the details of the finest level show it.
double noiseIn(const Transform &transform, const Signal &coefficients);

// How the thresholds are chosen: one for all levels that noise alone does not pass, or one for each
// level at which the error is expected to be least.
enum { universal, leastRisk };
constexpr int rules = 2;

double universalThreshold(double noise);

// What the square of the error is expected to be behind the threshold, from values with noise
// alone.
double riskOf(const Signal &x, double threshold, double noise);

// For the details of each level, from level 1 on.
Signal thresholdsFor(const Transform &transform, const Signal &coefficients, double noise,
                     int rule);

// Values within the threshold become zero and all others come nearer to zero by as much.
Signal softened(const Signal &x, double threshold);

// All details through their level's threshold; the approximation stays.
Signal cleaned(const Signal &coefficients, const Signal &thresholds);

// The signal of one level alone: the details of levels 1 to 6, and the approximation as level 7.
constexpr int approximation = levels + 1;
Signal partOf(Transform &transform, const Signal &coefficients, int level);

// How far a signal is above its error, before and after, for falling noise.
struct Curves {
    Signal before;                    // dB
    std::vector<Signal> after[rules]; // dB, bank by bank
    Signal lowPass;                   // dB
    Signal added;                     // the noise, mV
    std::vector<Signal> estimated;    // mV, bank by bank
};

// The errors behind a threshold, in parts of the noise, of the details of one level.
struct Risk {
    Signal thresholds;          // in parts of the noise
    Signal measured, estimated; // a square for each value
    double chosen, expected;    // the threshold taken, and the error estimated there
};

// The piece with noise of one level, and what becomes of it.
struct Example {
    Signal piece, noisy, lowPass;
    std::vector<Signal> denoised[rules]; // bank by bank
    // With the symlet, and thresholds of the least risk, level by level:
    Signal thresholds;                           // mV
    std::vector<Signal> parts, cleanParts;       // up to the approximation
    std::vector<Signal> details, cleanedDetails; // spread
    std::vector<Risk> risks;
};

// How far the piece is above what x is off it, in dB.
double ratioOf(const Signal &piece, const Signal &x);

void drawTraces(const Example &example, demo::Section &section);
void drawParts(const Example &example, demo::Section &section);
void drawDetails(const Example &example, demo::Section &section);
void drawThresholds(const Example &example, demo::Section &section);
void drawCurves(const std::vector<Bank> &banks, const Curves &curves, double ownRatio,
                demo::Section &section);

} // namespace denoise

#endif
