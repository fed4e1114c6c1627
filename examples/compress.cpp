// A photograph in fewer bits: the cosine transform of blocks of 8 by 8 pixels, and what is left
// of it in coarse steps. How much is lost, what does it take, and what would theory say?
//
//     compress INPUT OUTPUT_FOLDER
//
// compress_blocks.cpp has the transform and the steps, compress_theory.cpp the theory,
// compress_pictures.cpp draws.

#include "compress.h"

#include <algorithm>
#include <cmath>
#include <string>
#include <utility>

#include "rvx.h"
#include "support/file.h"
#include "support/status.h"

namespace compress {
namespace {

using demo::format;
using demo::requireSuccess;

constexpr int smallestSide = 64; // pixels, of a photograph
constexpr int stepsInOctave = 4; // of the curves

int length(const Values &x)
{
    return static_cast<int>(x.size());
}

// --- the photograph ----------------------------------------------------------

// How much a pixel is like the next: the correlation of neighbours, step pixels apart in memory,
// in count lines of len pixels that are lineStep apart.
double alike(const Image &image, double variance, int step, int len, int count, int lineStep)
{
    double sum = 0.0; // of squares of differences
    for (int line = 0; line < count; ++line) {
        const double *x = image.pixels.data() + static_cast<std::ptrdiff_t>(line) * lineStep;
        sum += rvxdNorm(x, x + step, len, RVX_NORM_L2SQ);
    }
    requireSuccess("neighbours");
    return 1.0 - 0.5 * sum / (static_cast<double>(len) * count * variance);
}

struct Statistics {
    double deviation; // greys
    double alikeAcross, alikeDown;
};

Statistics statisticsOf(const std::string &input, const Image &image)
{
    const int n = length(image.pixels);
    const double deviation = rvxdStdDev(image.pixels.data(), n);
    requireSuccess("deviation");
    if (!(deviation > 0.0))
        demo::refuse(input, "is of one grey: there is nothing to compress");
    const double variance = deviation * deviation;
    return {255.0 * deviation, alike(image, variance, 1, image.cols - 1, image.rows, image.cols),
            alike(image, variance, image.cols, n - image.cols, 1, 0)};
}

// --- rates and ratios --------------------------------------------------------

// first, and on by so many steps in each octave, up to last.
Values rising(double first, double last)
{
    Values values;
    for (int i = 0; first * std::exp2(static_cast<double>(i) / stepsInOctave) <= 1.001 * last; ++i)
        values.push_back(first * std::exp2(static_cast<double>(i) / stepsInOctave));
    return values;
}

void append(Curve &curve, double step, double rate, double ratio)
{
    curve.steps.push_back(step);
    curve.rates.push_back(rate);
    curve.ratios.push_back(ratio);
}

Curves curvesOf(const Image &original, const Coefficients &coefficients, const Values &magnitudes)
{
    Curves c;
    for (const double scale : rising(1.0 / 16.0, 32.0)) {
        const Coded result = coded(coefficients, tableSteps(scale));
        append(c.table, scale, result.rate, peakRatio(original, result.image));
    }
    for (const double step : rising(1.0, 512.0)) {
        const Coded result = coded(coefficients, evenSteps(step));
        append(c.even, step, result.rate, peakRatio(original, result.image));
        const auto [rate, ratio] = laplacian(magnitudes, step);
        append(c.theory, step, rate, ratio);
    }
    for (const double step : rising(std::sqrt(8.0), 256.0)) {
        const Coded result = codedPixels(original, step);
        append(c.pixels, step, result.rate, peakRatio(original, result.image));
    }
    return c;
}

// Where a curve of y over falling x is at x: straight from point to point. Beyond an end, what it
// has there.
double between(const Values &x, const Values &y, double at)
{
    if (at >= x[0])
        return y[0];
    for (std::size_t i = 1; i < x.size(); ++i) {
        if (at >= x[i])
            return y[i] + (at - x[i]) * (y[i - 1] - y[i]) / (x[i - 1] - x[i]);
    }
    return y.back();
}

std::vector<Shown> shownOf(const Image &original, const Coefficients &coefficients)
{
    std::vector<Shown> shown;
    for (const auto &[name, scale] :
         {std::pair<std::string, double>{"fine", 1.0}, {"middle", 4.0}, {"coarse", 16.0}}) {
        const Coded result = coded(coefficients, tableSteps(scale));
        shown.push_back({name, scale, result, peakRatio(original, result.image)});
    }
    return shown;
}

// --- what is told ------------------------------------------------------------

using Rows = std::vector<std::pair<std::string, std::string>>;

// What part of the energy the first positions have, in order of frequency.
double shareOfFirst(const Values &energies, int count)
{
    const std::vector<int> order = zigzag();
    double sum = 0.0;
    for (int i = 0; i < count; ++i)
        sum += energies[static_cast<std::size_t>(order[static_cast<std::size_t>(i)])];
    return sum / (positions * rvxdMean(energies.data(), positions));
}

std::string shares(const Values &energies)
{
    return format("%.2f, %.2f, %.2f, %.2f %%", 100.0 * shareOfFirst(energies, 1),
                  100.0 * shareOfFirst(energies, 3), 100.0 * shareOfFirst(energies, 10),
                  100.0 * shareOfFirst(energies, 21));
}

// How far some coefficients are from most at their position; 0 where all are 0.
std::string shapes(const Values &energies, Values magnitudes)
{
    Values ratios(positions);
    rvxdbSqrt2(energies.data(), ratios.data(), positions);
    rvxdbThresh1(magnitudes.data(), positions, 1e-30, RVX_THRESH_RAISE);
    rvxdbDiv2(magnitudes.data(), ratios.data(), positions);
    requireSuccess("RMS and mean magnitude");
    return format("%.2f times the mean magnitude at the first, %.2f to %.2f times at the others "
                  "(Laplacian 1.41, Gaussian 1.25)",
                  ratios[0], rvxdMin(ratios.data() + 1, positions - 1),
                  rvxdMax(ratios.data() + 1, positions - 1));
}

void tellEnergies(const Image &image, const Statistics &s, const Energies &energies,
                  const Values &magnitudes, demo::Section &section)
{
    section.table({
        {"Photograph",
         format("%d by %d pixels, deviation %.1f of 255", image.cols, image.rows, s.deviation)},
        {"Neighbours", format("correlation %.4f across, %.4f down", s.alikeAcross, s.alikeDown)},
        {"Energy", "of the first 1, 3, 10, 21 of 64 coefficients"},
        {"Measured", shares(energies.measured)},
        {"Markov model", shares(energies.model)},
        {"Coding gain", format("%.1f dB (Markov model %.1f dB)", codingGain(energies.measured),
                               codingGain(energies.model))},
        {"RMS", shapes(energies.measured, magnitudes)},
    });
}

// From steps of 2 to steps of 1: half the error's amplitude for each bit, if steps are fine.
std::string slope(const Curve &even)
{
    const double bits = even.rates[0] - even.rates[stepsInOctave];
    if (!(bits > 0.0))
        return "none";
    return format("%.2f dB", (even.ratios[0] - even.ratios[stepsInOctave]) / bits);
}

// At 4 bits per pixel.
double gainOver(const Curve &pixels, const Curve &curve)
{
    return between(curve.rates, curve.ratios, 4.0) - between(pixels.rates, pixels.ratios, 4.0);
}

void tellRates(const std::vector<Shown> &shown, const Curves &c, demo::Section &section)
{
    Rows rows;
    for (const Shown &s : shown) {
        rows.push_back(
            {format("Table times %g", s.scale),
             format("%.3f bits per pixel (about %.4f too low), PSNR %.2f dB, %.1f %% zeros",
                    s.coded.rate, s.coded.missing, s.ratio, 100.0 * s.coded.zeros)});
    }
    section.table(rows);

    rows = {{"Bits per pixel", "at 24, 28, 32, 36, 40 dB"}};
    for (const auto &[name, curve] : {std::pair<std::string, const Curve &>{"Table", c.table},
                                      {"Even steps", c.even},
                                      {"Laplacian", c.theory},
                                      {"Pixels", c.pixels}}) {
        std::string values;
        for (const double ratio : {24.0, 28.0, 32.0, 36.0, 40.0})
            values += format(", %.3f", between(curve.ratios, curve.rates, ratio));
        rows.push_back({name, values.substr(2)});
    }
    rows.push_back({"A bit more", slope(c.even) + " in even steps from 2 to 1 (theory 6.02 dB)"});
    rows.push_back({"At 4 bits", format("%.1f dB over pixels, Laplacian %.1f dB",
                                        gainOver(c.pixels, c.even), gainOver(c.pixels, c.theory))});
    section.table(rows);
}

void chapter(const std::string &input, const std::string &output)
{
    // Every thread starts in mode 0, in which a failed call ends the process.
    rvxSetErrMode(1);

    const Image original = demo::readImage(input, smallestSide);
    const Statistics s = statisticsOf(input, original);
    const Coefficients coefficients = coefficientsOf(original);
    const Energies energies{energiesOf(coefficients),
                            modelEnergies(s.deviation * s.deviation, s.alikeAcross, s.alikeDown)};
    const Values magnitudes = magnitudesOf(coefficients);
    const std::vector<Shown> shown = shownOf(original, coefficients);
    const Curves curves = curvesOf(original, coefficients, magnitudes);
    rvxdDct(nullptr, nullptr, 0, RVX_FFT_FREE_TABLES);
    requireSuccess("release of tables");

    demo::Section section(output, "compress", "A photograph, compressed");
    section.text(
        "The cosine transform takes each block of 8 by 8 pixels apart into waves, and most of what "
        "is in the photograph is in few and slow ones. Each coefficient is kept as a whole number "
        "of steps: those of a table made for the eye (ITU-T T.81), some times as large, or "
        "even ones. The rate is the entropy of these numbers, for each of the 64 positions by "
        "itself: what an ideal code takes that knows how often each number occurs at its position "
        "and nothing else. The error is measured against white (PSNR).");
    tellEnergies(original, s, energies, magnitudes, section);
    drawEnergies(energies, section);
    tellRates(shown, curves, section);
    drawRates(original, shown, section);
    drawCurves(curves, shown, section);
    section.finish();
}

} // namespace
} // namespace compress

int main(int argc, char **argv)
{
    return demo::runChapter(argc, argv, "compress", compress::chapter);
}
