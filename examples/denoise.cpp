// How much noise do wavelets take out of an electrocardiogram? Noise of a known level is added to
// the recording; what is left of it behind a soft threshold on the details is measured, for five
// banks of filters and many levels, beside a low-pass.
//
//     denoise INPUT OUTPUT_FOLDER
//
// denoise_wavelets.cpp has the coefficients and the threshold, denoise_pictures.cpp draws.

#include "denoise.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <memory>
#include <string>
#include <utility>

#include "support/file.h"
#include "support/series.h"
#include "support/spectrum.h"
#include "support/status.h"
#include "support/taps.h"

namespace denoise {
namespace {

using demo::decibels;
using demo::requireSuccess;
using demo::rms;

constexpr int pieceStart = 18 * 360;  // before the recording jumps, at 42 s
constexpr double quietest = 42.0;     // dB, signal over noise
constexpr double levelStep = 3.0;     // dB
constexpr int seeds = 6;              // of the noise of each level
constexpr double exampleLevel = 12.0; // dB
constexpr double passBand = 40.0;     // Hz, where the low-pass is at one half
constexpr int lowPassTaps = 101;

int length(const Signal &x)
{
    return static_cast<int>(x.size());
}

// The transforms clear the status when they begin, so nothing may be left unseen before them.
double energy(const Signal &x)
{
    const double sum = rvxdNorm(x.data(), nullptr, length(x), RVX_NORM_L2SQ);
    requireSuccess("energy");
    return sum;
}

double energyOfDifference(const Signal &x, const Signal &y)
{
    const double sum = rvxdNorm(x.data(), y.data(), length(x), RVX_NORM_L2SQ);
    requireSuccess("energy of a difference");
    return sum;
}

// --- signal and noise --------------------------------------------------------

Signal withoutMean(Signal x)
{
    rvxdbSub1(rvxdMean(x.data(), length(x)), x.data(), length(x));
    requireSuccess("mean");
    return x;
}

// The wander of the baseline, as the chapter on cleaning finds it.
Signal wanderOf(const Signal &x)
{
    Signal wander(x.size());
    rvxdbMedianFilter2(x.data(), wander.data(), length(x), 73);
    rvxdbMedianFilter1(wander.data(), length(x), 217);
    requireSuccess("wander");
    return wander;
}

Signal noisy(const Signal &piece, double deviation, int seed)
{
    rvxRandGausState state;
    Signal x(piece.size());
    rvxdRandGausInit(seed, 0.0, deviation, &state);
    rvxdbRandGaus(&state, x.data(), static_cast<unsigned>(x.size()));
    rvxdbAdd2(piece.data(), x.data(), length(x));
    requireSuccess("noise");
    return x;
}

// The deviation of noise that a piece is so many dB above.
double deviationAt(const Signal &piece, double level)
{
    return rms(piece) * std::pow(10.0, -level / 20.0);
}

// --- the filter to compare with ----------------------------------------------

// The low-pass of the chapter on cleaning, with mirror images before and behind the piece.
Signal lowPassed(const Signal &x)
{
    Signal taps = demo::idealLowPass(lowPassTaps, passBand / rate);
    rvxdWinHamming(taps.data(), lowPassTaps);
    rvxdbMpy1(1.0 / (lowPassTaps * rvxdMean(taps.data(), lowPassTaps)), taps.data(), lowPassTaps);

    constexpr int delay = lowPassTaps / 2;
    Signal in(x.rend() - delay, x.rend());
    in.insert(in.end(), x.begin(), x.end());
    in.insert(in.end(), x.rbegin(), x.rbegin() + delay);
    Signal out(in.size());
    rvxFirState state{}; // the record must not look like one in use
    rvxdFirInit(taps.data(), lowPassTaps, nullptr, &state);
    requireSuccess("low-pass");
    rvxdbFir(&state, in.data(), out.data(), length(in));
    rvxFirFree(&state);
    requireSuccess("low-pass");
    out.erase(out.begin(), out.begin() + 2 * delay);
    return out;
}

// --- measuring ---------------------------------------------------------------

using Transforms = std::vector<std::unique_ptr<Transform>>;

Transforms transformsOf(const std::vector<Bank> &banks)
{
    Transforms transforms;
    for (const Bank &bank : banks)
        transforms.push_back(std::make_unique<Transform>(bank));
    return transforms;
}

Signal denoised(Transform &transform, const Signal &coefficients, double noise, int rule)
{
    return transform.reconstruct(
        cleaned(coefficients, thresholdsFor(transform, coefficients, noise, rule)));
}

// Sums over the sequences of noise of one level.
struct Sums {
    double before = 0.0, lowPass = 0.0;
    Signal after[rules], variances; // bank by bank
};

Sums measure(const Signal &piece, double deviation, const Transforms &transforms)
{
    Sums sums;
    sums.variances.resize(transforms.size());
    for (Signal &after : sums.after)
        after.resize(transforms.size());
    for (int seed = 1; seed <= seeds; ++seed) {
        const Signal x = noisy(piece, deviation, seed);
        sums.before += energyOfDifference(x, piece);
        sums.lowPass += energyOfDifference(lowPassed(x), piece);
        for (std::size_t bank = 0; bank < transforms.size(); ++bank) {
            const Signal coefficients = transforms[bank]->decompose(x);
            const double noise = noiseIn(*transforms[bank], coefficients);
            sums.variances[bank] += noise * noise;
            for (int rule = 0; rule < rules; ++rule)
                sums.after[rule][bank] += energyOfDifference(
                    denoised(*transforms[bank], coefficients, noise, rule), piece);
        }
    }
    return sums;
}

Curves curvesOf(const Signal &piece, const Transforms &transforms)
{
    Curves c;
    for (auto &after : c.after)
        after.resize(transforms.size());
    c.estimated.resize(transforms.size());
    const double power = seeds * energy(piece);
    for (int i = 0; levelStep * i <= quietest; ++i) {
        c.added.push_back(deviationAt(piece, levelStep * i));
        const Sums sums = measure(piece, c.added.back(), transforms);
        c.before.push_back(0.5 * decibels(power / sums.before));
        c.lowPass.push_back(0.5 * decibels(power / sums.lowPass));
        for (std::size_t bank = 0; bank < transforms.size(); ++bank) {
            for (int rule = 0; rule < rules; ++rule)
                c.after[rule][bank].push_back(0.5 * decibels(power / sums.after[rule][bank]));
            c.estimated[bank].push_back(std::sqrt(sums.variances[bank] / seeds));
        }
    }
    return c;
}

// --- one level of noise, in detail --------------------------------------------

// Of the details of a level: without noise they would be clean, with it they are x.
Risk riskCurve(const Signal &clean, const Signal &x, double noise, double threshold)
{
    Risk risk;
    const double whole = noise * noise * length(x);
    risk.chosen = threshold / noise;
    risk.expected = riskOf(x, threshold, noise) / whole;
    risk.thresholds = demo::ramp(91, 0.0, 0.05);
    for (const double part : risk.thresholds) {
        const Signal y = softened(x, part * noise);
        risk.measured.push_back(energyOfDifference(y, clean) / whole);
        risk.estimated.push_back(riskOf(x, part * noise, noise) / whole);
    }
    return risk;
}

void lookInside(Transform &transform, Example &e)
{
    const Signal clean = transform.decompose(e.piece), coefficients = transform.decompose(e.noisy);
    const double noise = noiseIn(transform, coefficients);
    const Signal thresholds = thresholdsFor(transform, coefficients, noise, leastRisk);
    const Signal kept = cleaned(coefficients, thresholds);
    for (int level = 1; level <= approximation; ++level) {
        e.parts.push_back(partOf(transform, coefficients, level));
        e.cleanParts.push_back(partOf(transform, kept, level));
    }
    for (int level = 1; level <= levels; ++level) {
        const double gain = transform.gain(level);
        const double threshold = thresholds[static_cast<std::size_t>(level - 1)];
        e.thresholds.push_back(threshold / gain);
        e.details.push_back(transform.spread(coefficients, level));
        e.cleanedDetails.push_back(transform.spread(kept, level));
        e.risks.push_back(riskCurve(detailsOf(clean, level), detailsOf(coefficients, level),
                                    gain * noise, threshold));
    }
}

Example exampleOf(const Signal &piece, const Transforms &transforms)
{
    Example e;
    e.piece = piece;
    e.noisy = noisy(piece, deviationAt(piece, exampleLevel), 1);
    e.lowPass = lowPassed(e.noisy);
    for (const auto &transform : transforms) {
        const Signal coefficients = transform->decompose(e.noisy);
        const double noise = noiseIn(*transform, coefficients);
        for (int rule = 0; rule < rules; ++rule)
            e.denoised[rule].push_back(denoised(*transform, coefficients, noise, rule));
    }
    lookInside(*transforms[symlet], e);
    return e;
}

// How far the sum of all parts is off the piece at most.
double sumError(Transform &transform, const Signal &piece)
{
    const Signal coefficients = transform.decompose(piece);
    Signal sum(piece.size());
    for (int level = 1; level <= approximation; ++level) {
        rvxdbAdd2(partOf(transform, coefficients, level).data(), sum.data(), length(sum));
        requireSuccess("sum of parts");
    }
    const double error = rvxdNorm(sum.data(), piece.data(), length(sum), RVX_NORM_C);
    requireSuccess("sum of parts");
    return error;
}

// --- what is told ------------------------------------------------------------

using Rows = std::vector<std::pair<std::string, std::string>>;

// Of a curve, what it is at 6, 12, 24 and 36 dB before.
std::string atLevels(const Signal &curve, double unit, const char *name)
{
    const auto at = [&](double level) {
        return unit * curve[static_cast<std::size_t>(std::lround(level / levelStep))];
    };
    return demo::format("%.1f, %.1f, %.1f, %.1f %s", at(6.0), at(12.0), at(24.0), at(36.0), name);
}

void tellPiece(const Signal &piece, demo::Section &section)
{
    const double all = rms(piece),
                 beats = std::sqrt(energyOfDifference(piece, wanderOf(piece)) / length(piece));
    section.table({
        {"Piece", demo::format("%.1f s (%d samples at %g Hz) from %.0f s on", pieceLen / rate,
                               pieceLen, rate, pieceStart / rate)},
        {"Signal", demo::format("%.0f \u00b5V RMS, of which without the wander %.0f \u00b5V "
                                "(%.1f dB less)",
                                1000.0 * all, 1000.0 * beats, decibels(all / beats))},
    });
}

void tellRatios(const std::vector<Bank> &banks, const Curves &c, demo::Section &section)
{
    Rows rows{{"Signal/noise", atLevels(c.before, 1.0, "dB before")},
              {"Low-pass", atLevels(c.lowPass, 1.0, "dB after")}};
    for (std::size_t i = 0; i < banks.size(); ++i)
        rows.push_back({banks[i].name, atLevels(c.after[leastRisk][i], 1.0, "dB") +
                                           " (universal threshold " +
                                           atLevels(c.after[universal][i], 1.0, "dB") + ")"});
    section.table(rows);
}

void tellNoise(const std::vector<Bank> &banks, const Signal &own, const Curves &c,
               demo::Section &section)
{
    Rows rows{{"Noise added", atLevels(c.added, 1000.0, "\u00b5V")}};
    for (std::size_t i = 0; i < banks.size(); ++i)
        rows.push_back({banks[i].name, atLevels(c.estimated[i], 1000.0, "\u00b5V estimated") +
                                           demo::format(", %.1f \u00b5V in the recording itself",
                                                        1000.0 * own[i])});
    section.table(rows);
}

// How many of the piece's coefficients are not zero; there are as many as samples.
int keptOf(const Example &e)
{
    int kept = pieceLen >> levels;
    for (const Signal &details : e.cleanedDetails)
        kept += length(details) - static_cast<int>(std::count(details.begin(), details.end(), 0.0));
    return kept;
}

void tellParts(const std::vector<Bank> &banks, const Transforms &transforms, const Example &e,
               demo::Section &section)
{
    Rows rows;
    for (std::size_t i = 0; i < banks.size(); ++i)
        rows.push_back({banks[i].name, demo::format("%.0e mV from the sum of parts to the piece",
                                                    sumError(*transforms[i], e.noisy))});
    rows.push_back({"Kept", demo::format("%d of %d coefficients", keptOf(e), pieceLen)});
    section.table(rows);
}

void chapter(const std::string &input, const std::string &output)
{
    // Every thread starts in mode 0, in which a failed call ends the process.
    rvxSetErrMode(1);

    const Signal recorded = demo::readSeries(input, pieceStart + pieceLen);
    const auto first = recorded.begin() + pieceStart;
    const Signal piece = withoutMean(Signal(first, first + pieceLen));
    const double smallest = 1e-4; // mV
    if (rms(piece) < smallest)
        demo::refuse(input, demo::format("is flat from %g to %.1f s", pieceStart / rate,
                                         (pieceStart + pieceLen) / rate));

    const std::vector<Bank> banks = allBanks();
    const Transforms transforms = transformsOf(banks);
    Signal own;
    for (const auto &transform : transforms)
        own.push_back(noiseIn(*transform, transform->decompose(piece)));
    const Curves curves = curvesOf(piece, transforms);
    const Example example = exampleOf(piece, transforms);

    demo::Section section(output, "denoise", "Noise taken out by wavelets");
    section.text(
        "Noise of a known level is added to the electrocardiogram. Wavelets split it into octaves, "
        "in which a beat is a few large values and noise many small ones. A soft threshold makes "
        "the small ones zero and takes as much off the large ones. The universal threshold "
        "is what noise alone does not pass; a threshold for each level may be chosen, too, so that "
        "the error is expected to be least. That can be done without knowing the signal: all "
        "that is needed is the noise, which the finest level shows. The recording is taken for the "
        "signal, with all the noise of its own; so what is taken out of that counts as "
        "error.");
    tellPiece(piece, section);
    drawTraces(example, section);
    tellRatios(banks, curves, section);
    drawCurves(banks, curves, decibels(rms(piece) / own[symlet]), section);
    drawThresholds(example, section);
    tellNoise(banks, own, curves, section);
    drawParts(example, section);
    tellParts(banks, transforms, example, section);
    drawDetails(example, section);
    section.finish();
}

} // namespace

double ratioOf(const Signal &piece, const Signal &x)
{
    return 0.5 * decibels(energy(piece) / energyOfDifference(x, piece));
}

} // namespace denoise

int main(int argc, char **argv)
{
    return demo::runChapter(argc, argv, "denoise", denoise::chapter);
}
