// The chapter on compression: a photograph as quantised cosine transforms of its blocks.
// Greys are counted from 0 (black) to 255 (white), as in its file.

#ifndef COMPRESS_H
#define COMPRESS_H

#include <string>
#include <utility>
#include <vector>

#include "support/image.h"
#include "support/section.h"

namespace compress {

using demo::Image;
using Values = std::vector<double>;

constexpr int side = 8; // pixels, of a block
constexpr int positions = side * side;

// --- compress_blocks.cpp -----------------------------------------------------

using Block = Values; // row by row

// The cosine transform of the rows, then of the columns; or back.
void transform(Block &block, int direction);

// What stands at each position of all blocks. Position side * v + u is that of u half waves
// across and v down.
struct Coefficients {
    int cols, rows; // of the photograph; blocks reach beyond that if they must
    std::vector<Values> at;
};
Coefficients coefficientsOf(const Image &image);
Image imageOf(const Coefficients &coefficients);

// What is left of a photograph, and what it takes.
struct Coded {
    Image image;
    double rate;    // bits per pixel: the entropy of the integers
    double missing; // bits per pixel: by how much, about, it is too low
    double zeros;   // what part of the integers is 0
};

// The steps are those of each position.
Coded coded(const Coefficients &coefficients, const Values &steps);

// The pixels themselves in steps, without a transform.
Coded codedPixels(const Image &image, double step);

// Of white to the error's RMS, in dB; 300 dB where there is no error.
double peakRatio(const Image &original, const Image &image);

Values evenSteps(double step);
Values tableSteps(double scale);

// --- compress_theory.cpp -----------------------------------------------------

// The mean square and the mean magnitude at each position; at the first, about its mean.
Values energiesOf(const Coefficients &coefficients);
Values magnitudesOf(const Coefficients &coefficients);

// The same by theory, for a photograph whose pixels have this variance, and whose neighbours
// are this much alike.
Values modelEnergies(double variance, double alikeAcross, double alikeDown);

// The mean of energies over their geometric mean, in dB.
double codingGain(const Values &energies);

// Positions from the lowest frequencies to the highest.
std::vector<int> zigzag();

// Rate (bits per pixel) and PSNR (dB) in even steps by theory: of Laplacian coefficients with
// these mean magnitudes.
std::pair<double, double> laplacian(const Values &magnitudes, double step);

// --- compress_pictures.cpp ---------------------------------------------------

struct Curve {
    Values steps, rates, ratios; // from fine to coarse
};

struct Curves {
    Curve table, even, pixels, theory;
};

struct Shown {
    std::string name;
    double scale; // of the table
    Coded coded;
    double ratio; // dB
};

struct Energies {
    Values measured, model; // at each position
};

void drawRates(const Image &original, const std::vector<Shown> &shown, demo::Section &section);
void drawCurves(const Curves &curves, const std::vector<Shown> &shown, demo::Section &section);
void drawEnergies(const Energies &energies, demo::Section &section);

} // namespace compress

#endif
