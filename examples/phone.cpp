// What does a telephone make of a voice? It is brought to 8000 samples a second from 300 to
// 3400 Hz, and each sample to 8 bits by one of the two laws of digital telephony (ITU-T G.711),
// or, to compare, to 8, 16 or 32 bits in even steps. How far is it above the error of that?
//
//     phone INPUT OUTPUT_FOLDER
//
// phone_formats.cpp has the formats, phone_pictures.cpp draws.

#include "phone.h"

#include <algorithm>
#include <cmath>
#include <numeric>
#include <string>
#include <utility>

#include "rvx.h"
#include "support/file.h"
#include "support/spectrum.h"
#include "support/status.h"
#include "support/taps.h"

namespace phone {
namespace {

using demo::decibels;
using demo::levelsOf;
using demo::requireSuccess;
using demo::rms;

constexpr double pi = 3.14159265358979323846;
constexpr double highestRate = 192000.0; // samples per second, of a recording
constexpr double shortestTime = 1.0;     // s
constexpr double silentBelow = -90.0;    // dBFS, peak on the line
constexpr double lowestLevel = -60.0;    // dBFS, of the curves
constexpr double levelStep = 0.5;        // dB
constexpr double tone = 1013.7;          // Hz, meets 80000 different places of its period
constexpr int toneLen = 16384;           // samples
constexpr int blockLen = lineRate / 50;  // 20 ms
constexpr int frameOrder = 8;
constexpr int frameLen = 1 << frameOrder; // 32 ms

int length(const Signal &x)
{
    return static_cast<int>(x.size());
}

// --- the line ----------------------------------------------------------------

// The voice at 8000 samples a second, from 300 to 3400 Hz. The filter works at the rate that is
// a multiple of both, and its taps span 20 ms there, so that it delays by 80 results. They are
// dropped at the start, and silence is read for as long.
Signal throughTheLine(const demo::Recording &voice)
{
    const int voiceRate = static_cast<int>(std::lround(voice.rate));
    const int common = std::gcd(voiceRate, lineRate);
    const int up = lineRate / common, down = voiceRate / common;
    constexpr int delay = lineRate / 100;
    const int tapsLen = 2 * delay * down + 1;

    const double tapsRate = static_cast<double>(voiceRate) * up;
    Signal taps = demo::idealLowPass(tapsLen, highestTone / tapsRate);
    const Signal below = demo::idealLowPass(tapsLen, lowestTone / tapsRate);
    rvxdbSub2(below.data(), taps.data(), tapsLen);
    rvxdWinHamming(taps.data(), tapsLen);
    rvxdbMpy1(up, taps.data(), tapsLen); // of up samples at that rate all but one are zeros
    requireSuccess("taps");

    const auto results = voice.samples.size() * lineRate / static_cast<std::size_t>(voiceRate);
    const int steps = static_cast<int>((results + delay) / static_cast<std::size_t>(up)) + 1;
    Signal in = voice.samples;
    in.resize(static_cast<std::size_t>(steps) * static_cast<std::size_t>(down));
    Signal out(static_cast<std::size_t>(steps) * static_cast<std::size_t>(up));

    rvxFirState state{}; // the record must not look like one in use
    rvxdFirInitMr(taps.data(), tapsLen, nullptr, up, 0, down, 0, &state);
    requireSuccess("line");
    rvxdbFir(&state, in.data(), out.data(), steps);
    rvxFirFree(&state);
    requireSuccess("line");
    out.erase(out.begin(), out.begin() + delay);
    out.resize(results);
    return out;
}

// --- levels ------------------------------------------------------------------

Signal scaled(const Signal &x, double factor)
{
    Signal y = x;
    rvxdbMpy1(factor, y.data(), length(y));
    return y;
}

Signal difference(const Signal &x, const Signal &y)
{
    Signal d(x.size());
    rvxdbSub3(x.data(), y.data(), d.data(), length(d));
    requireSuccess("difference");
    return d;
}

// Block after block.
Signal loudnessOf(const Signal &x)
{
    Signal powers;
    for (int start = 0; start + blockLen <= length(x); start += blockLen)
        powers.push_back(rvxdNorm(x.data() + start, nullptr, blockLen, RVX_NORM_L2SQ) / blockLen);
    requireSuccess("loudness");
    return levelsOf(powers);
}

// --- signal and noise --------------------------------------------------------

Signal sine()
{
    Signal x;
    for (int i = 0; i < toneLen; ++i)
        x.push_back(std::sin(2.0 * pi * tone / lineRate * i));
    return x;
}

// By theory: the mean over all samples of the power of the error around each.
double noisePower(const Format &format, const Signal &x)
{
    double sum = 0.0;
    for (const double value : x)
        sum += format.noise(std::fabs(value));
    return sum / static_cast<double>(x.size());
}

// The power of x in parts of that of its error, for a peak of x from -60 to 0 dBFS.
Curves ratiosOf(const Signal &x, const std::vector<Format> &formats)
{
    const double peak = rvxdNorm(x.data(), nullptr, length(x), RVX_NORM_C);
    Curves c;
    for (int i = 0; lowestLevel + levelStep * i <= 0.0; ++i)
        c.levels.push_back(lowestLevel + levelStep * i);
    for (const Format &format : formats) {
        Signal measured, theory;
        for (const double level : c.levels) {
            const Signal in = scaled(x, std::pow(10.0, level / 20.0) / peak);
            const Signal out = format.thereAndBack(in);
            const double power = rvxdNorm(in.data(), nullptr, length(in), RVX_NORM_L2SQ);
            measured.push_back(power / rvxdNorm(in.data(), out.data(), length(in), RVX_NORM_L2SQ));
            theory.push_back(power / length(in) / noisePower(format, in));
        }
        requireSuccess("ratios");
        c.measured.push_back(levelsOf(measured));
        c.theory.push_back(levelsOf(theory));
    }
    return c;
}

// --- magnitudes and phases ---------------------------------------------------

// From a spectrum of magnitudes and phases to the frame.
Signal frameOf(const Signal &magnitudes, const Signal &phases)
{
    Signal frame(2 * magnitudes.size());
    rvxzbPolarToCart(magnitudes.data(), phases.data(), reinterpret_cast<ZCplx *>(frame.data()),
                     length(magnitudes));
    rvxdCcsFft(frame.data(), frameOrder, RVX_FFT_INVERSE);
    requireSuccess("frame");
    frame.resize(frameLen);
    // Its middle stood first.
    std::rotate(frame.begin(), frame.begin() + frameLen / 2, frame.end());
    return frame;
}

// A frame under a Hann window, what its magnitudes and phases give together, and what the
// magnitudes give without the phases.
Frame takeApart(const Signal &line, int start)
{
    Frame f;
    f.start = static_cast<double>(start) / lineRate;
    f.samples.assign(line.begin() + start, line.begin() + start + frameLen);
    rvxdWinHann(f.samples.data(), frameLen);

    // The middle goes first, for phases to count from there. The spectrum is real and imaginary
    // part of bin after bin.
    Signal spectrum = f.samples;
    std::rotate(spectrum.begin(), spectrum.begin() + frameLen / 2, spectrum.end());
    constexpr int bins = frameLen / 2 + 1;
    spectrum.resize(2 * bins);
    rvxdRealFft(spectrum.data(), frameOrder, RVX_FFT_FORWARD);
    Signal magnitudes(bins);
    f.phases.resize(bins);
    rvxzbCartToPolar(reinterpret_cast<const ZCplx *>(spectrum.data()), magnitudes.data(),
                     f.phases.data(), bins);
    requireSuccess("magnitudes and phases");

    const double largest = rvxdMax(magnitudes.data(), bins);
    Signal powers = scaled(magnitudes, 1.0 / largest);
    rvxdbSqr1(powers.data(), bins);
    f.magnitudes = levelsOf(powers);

    f.rebuilt = frameOf(magnitudes, f.phases);
    f.fromMagnitudes = frameOf(magnitudes, Signal(bins, 0.0));
    rvxdRealFft(nullptr, frameOrder, RVX_FFT_FREE_TABLES);
    rvxdCcsFft(nullptr, frameOrder, RVX_FFT_FREE_TABLES);
    requireSuccess("frame");
    return f;
}

// Where the frame around the loudest block starts.
int loudestStart(const Signal &line, const Signal &loudness)
{
    int loudest = 0;
    rvxdMaxExt(loudness.data(), length(loudness), &loudest);
    requireSuccess("loudest block");
    const int start = loudest * blockLen + blockLen / 2 - frameLen / 2;
    return std::clamp(start, 0, length(line) - frameLen);
}

// --- what is told ------------------------------------------------------------

double valueAt(const Curves &c, const Signal &curve, double level)
{
    const double index = (level - c.levels.front()) / levelStep;
    return curve[static_cast<std::size_t>(std::lround(index))];
}

std::string atLevels(const Curves &c, const Signal &curve)
{
    return demo::format("%.1f, %.1f, %.1f, %.1f dB", valueAt(c, curve, 0.0),
                        valueAt(c, curve, -20.0), valueAt(c, curve, -40.0),
                        valueAt(c, curve, -60.0));
}

// From the lowest to the highest ratio of sines from -30 to 0 dBFS.
std::string plateau(const Curves &c, int format)
{
    const Signal &curve = c.measured[static_cast<std::size_t>(format)];
    const Signal loud(curve.end() - std::lround(30.0 / levelStep) - 1, curve.end());
    return demo::format("%.1f to %.1f dB", rvxdMin(loud.data(), length(loud)),
                        rvxdMax(loud.data(), length(loud)));
}

using Rows = std::vector<std::pair<std::string, std::string>>;

void tellLine(const demo::Recording &voice, const Signal &line, demo::Section &section)
{
    section.table({
        {"Recording",
         demo::format("%.2f s (%d samples at %g Hz), %.1f dBFS", length(voice.samples) / voice.rate,
                      length(voice.samples), voice.rate, decibels(rms(voice.samples)))},
        {"On the line",
         demo::format("%d samples at %d Hz, %.1f dBFS from %g to %g Hz", length(line), lineRate,
                      decibels(rms(line)), lowestTone, highestTone)},
    });
}

void tellRatios(const std::vector<Format> &formats, const Signal &line,
                const std::vector<Signal> &errors, const Curves &sines, demo::Section &section)
{
    Rows rows;
    for (std::size_t i = 0; i < formats.size(); ++i)
        rows.push_back(
            {formats[i].name,
             demo::format("%d kbit/s, voice %.1f dB over noise of %.1f dBFS (theory "
                          "%.1f dBFS)",
                          formats[i].bits * lineRate / 1000, decibels(rms(line) / rms(errors[i])),
                          decibels(rms(errors[i])), 0.5 * decibels(noisePower(formats[i], line)))});
    section.table(rows);

    rows = {{"Sines of", "0, -20, -40, -60 dBFS, over their noise"}};
    for (std::size_t i = 0; i < formats.size(); ++i)
        rows.push_back({formats[i].name, atLevels(sines, sines.measured[i]) + " (theory " +
                                             atLevels(sines, sines.theory[i]) + ")"});
    // Of smooth laws, A being 87.6 and mu 255 (Jayant and Noll, Digital Coding of Waveforms, 1984).
    const double even = decibels(256.0 * std::sqrt(3.0));
    rows.push_back(
        {"Loud sines",
         demo::format("A-law %s (smooth law %.1f dB), mu-law %s (smooth law %.1f dB)",
                      plateau(sines, aLaw).c_str(), even - decibels(1.0 + std::log(87.6)),
                      plateau(sines, muLaw).c_str(), even - decibels(std::log(256.0)))});
    section.table(rows);
}

void tellFrame(const Frame &frame, demo::Section &section)
{
    section.table({{"Frame", demo::format("%d ms at %.2f s, back from magnitudes and phases to "
                                          "within %.1e",
                                          1000 * frameLen / lineRate, frame.start,
                                          rvxdNorm(frame.samples.data(), frame.rebuilt.data(),
                                                   frameLen, RVX_NORM_C))}});
    requireSuccess("frame");
}

void chapter(const std::string &input, const std::string &output)
{
    // Every thread starts in mode 0, in which a failed call ends the process.
    rvxSetErrMode(1);

    const demo::Recording voice = demo::readRecording(input, demo::Spectrum::frameLen);
    demo::requireRecording(input, voice, lineRate, shortestTime);
    if (voice.rate > highestRate)
        demo::refuse(input, demo::format("has %g samples per second, %g at most can be taken",
                                         voice.rate, highestRate));
    const Signal line = throughTheLine(voice);
    if (decibels(rvxdNorm(line.data(), nullptr, length(line), RVX_NORM_C)) < silentBelow)
        demo::refuse(input, "is silent from 300 to 3400 Hz");

    const std::vector<Format> formats = allFormats();
    std::vector<Signal> returned, errors;
    Loudness loudness{static_cast<double>(blockLen) / lineRate, loudnessOf(line), {}};
    for (const Format &format : formats) {
        returned.push_back(format.thereAndBack(line));
        errors.push_back(difference(returned.back(), line));
        loudness.errors.push_back(loudnessOf(errors.back()));
    }
    const Curves sines = ratiosOf(sine(), formats), voices = ratiosOf(line, formats);
    const Frame frame = takeApart(line, loudestStart(line, loudness.voice));

    demo::Section section(output, "phone", "A voice on the telephone");
    section.text(
        "What a telephone line makes of the voice: 8000 samples a second, 300 to 3400 Hz, and 8 "
        "bits a sample. With n bits in even steps, a sine of full scale is 6.02 n + 1.76 dB over "
        "its noise, and one that is quieter by a dB is a dB less over it. The steps of A-law and "
        "mu-law grow with the amplitude, so that the noise goes with the voice. Theory takes "
        "errors for spread evenly over each step.");
    tellLine(voice, line, section);
    drawSpectra(voice, line, returned, section);
    tellRatios(formats, line, errors, sines, section);
    drawLoudness(loudness, section);
    drawQuiet(line, returned, section);
    drawRatios(sines, voices, section);
    section.text(
        "A frame of the voice as magnitudes and phases: together they give it back, and the "
        "magnitudes alone give something of the same sound that is the same on both sides of its "
        "middle.");
    tellFrame(frame, section);
    drawFrame(frame, section);
    section.finish();
}

} // namespace
} // namespace phone

int main(int argc, char **argv)
{
    return demo::runChapter(argc, argv, "phone", phone::chapter);
}
