// Cleaning an electrocardiogram: a running median takes the wander of the baseline out,
// an adaptive filter (and, to compare, a notch) the hum of the mains, a low-pass the
// noise of the muscles, and a filter of two rates brings 360 samples per second to 250.
//
//     ecg INPUT OUTPUT_FOLDER
//
// The functions from removeWander to resample are the chain; what follows measures it.
// ecg_pictures.cpp draws it.

#include "ecg.h"

#include <cmath>
#include <string>
#include <vector>

#include "rvx.h"
#include "support/section.h"
#include "support/series.h"
#include "support/spectrum.h"
#include "support/status.h"
#include "support/taps.h"

namespace ecg {
namespace {

using demo::bandLevel;
using demo::decibels;
using demo::requireSuccess;
using demo::Spectrum;
using demo::spectrumOf;

constexpr double pi = 3.14159265358979323846;
constexpr double mains = 60.0;       // Hz
constexpr double mainsWander = 0.1;  // Hz, to either side
constexpr double humAmplitude = 0.1; // mV
constexpr double stopBand = 1.0;     // Hz, between the points of -3 dB around the mains
constexpr double passBand = 40.0;    // Hz, where the low-pass is at one half
constexpr int smoothTaps = 101;
constexpr int rateTaps = 50 * down + 1; // a delay of 25 results
constexpr double rateBand = 110.0;      // Hz, where the change of rate is at one half
constexpr int settled = 5 * 360;        // samples after which the hum is measured

int length(const Signal &x)
{
    return static_cast<int>(x.size());
}

// --- the chain ---------------------------------------------------------------

// What stays when all that is shorter than a beat is gone: a median over 0.2 s drops the
// spike of each beat, a second one over 0.6 s the slower wave behind it (de Chazal et al.,
// IEEE Trans. Biomed. Eng. 51, 2004). A median delays nothing.
Signal wanderOf(const Signal &x)
{
    Signal wander(x.size());
    rvxdbMedianFilter2(x.data(), wander.data(), length(x), 73);
    rvxdbMedianFilter1(wander.data(), length(x), 217);
    requireSuccess("median");
    return wander;
}

Signal removeWander(const Signal &x)
{
    const Signal wander = wanderOf(x);
    Signal level(x.size());
    rvxdbSub3(x.data(), wander.data(), level.data(), length(x));
    requireSuccess("difference");
    return level;
}

// The adaptive filter makes of the reference what comes nearest to x. That is the hum, for
// nothing else in x is like the reference; what it leaves over, its error, is the result.
// The taps span one period of the mains. With a sine of amplitude 1 as reference this is a notch
// as wide as step * taps / 2 (radians per sample) that follows the mains wherever they go
// (Glover, IEEE Trans. Acoust. Speech Signal Process. 25, 1977).
Signal removeHumAdaptively(const Signal &x, const Signal &reference)
{
    constexpr int taps = 6;
    const float step = static_cast<float>(2.0 / taps * 2.0 * pi * stopBand / rate);

    Signal rest(x.size());
    rvxLmsState state;
    rvxdLmsInit(0, nullptr, taps, nullptr, step, 0.0f, 0, &state);
    requireSuccess("adaptive filter");
    double error = 0.0;
    for (std::size_t n = 0; n < x.size(); ++n) {
        // The error of the last output adapts the taps for this one.
        error = x[n] - rvxdLms(&state, reference[n], error);
        rest[n] = error;
    }
    rvxLmsFree(&state);
    requireSuccess("adaptive filter");
    return rest;
}

// The same notch at a frequency that stays: zeros on the unit circle, poles behind them.
Signal removeHumByNotch(const Signal &x)
{
    const double angle = 2.0 * pi * mains / rate;
    const double radius = 1.0 - pi * stopBand / rate;
    const double a1 = -2.0 * radius * std::cos(angle), a2 = radius * radius;
    const double b1 = -2.0 * std::cos(angle);
    const double gain = (1.0 + a1 + a2) / (2.0 + b1); // 1 at frequency 0
    const double taps[6] = {gain, gain * b1, gain, 1.0, a1, a2};

    Signal rest(x.size());
    rvxIirState state{}; // the record must not look like one in use
    rvxdIirInitBq(0, taps, 1, &state);
    requireSuccess("notch");
    rvxdbIir(&state, x.data(), rest.data(), length(x));
    rvxIirFree(&state);
    requireSuccess("notch");
    return rest;
}

void setSum(Signal &taps, double sum)
{
    rvxdbMpy1(sum / (length(taps) * rvxdMean(taps.data(), length(taps))), taps.data(),
              length(taps));
}

// A filter of symmetric taps delays by half their length. So the last sample is held for
// as long, and as many results are dropped at the start.
Signal removeMuscleNoise(const Signal &x)
{
    Signal taps = demo::idealLowPass(smoothTaps, passBand / rate);
    rvxdWinHamming(taps.data(), smoothTaps);
    setSum(taps, 1.0);

    constexpr int delay = smoothTaps / 2;
    const Signal earlier(smoothTaps - 1, x.front()); // as if it had always been so
    Signal in = x;
    in.resize(x.size() + delay, x.back());
    Signal out(in.size());

    rvxFirState state{};
    rvxdFirInit(taps.data(), smoothTaps, earlier.data(), &state);
    requireSuccess("low-pass");
    rvxdbFir(&state, in.data(), out.data(), length(in));
    rvxFirFree(&state);
    requireSuccess("low-pass");
    out.erase(out.begin(), out.begin() + delay);
    return out;
}

// 25 samples for every 36. The taps work at 25 times the rate of x, and must keep all that
// is above half the new rate from folding down. Only what is needed of that is computed.
Signal resample(const Signal &x)
{
    Signal taps = demo::idealLowPass(rateTaps, rateBand / (rate * up));
    rvxdWinBlackman(taps.data(), rateTaps, -0.16);
    setSum(taps, up); // of 25 samples at the high rate 24 are zeros

    constexpr int delay = rateTaps / 2 / down;
    const int steps = (length(x) + down - 1) / down + 1; // one more, for the delay
    const Signal earlier((rateTaps + up - 1) / up, x.front());
    Signal in = x;
    in.resize(static_cast<std::size_t>(steps) * down, x.back());
    Signal out(static_cast<std::size_t>(steps) * up);

    rvxFirState state{};
    rvxdFirInitMr(taps.data(), rateTaps, earlier.data(), up, 0, down, 0, &state);
    requireSuccess("change of rate");
    rvxdbFir(&state, in.data(), out.data(), steps);
    rvxFirFree(&state);
    requireSuccess("change of rate");
    out.erase(out.begin(), out.begin() + delay);
    out.resize(x.size() * up / down);
    return out;
}

// --- hum to add --------------------------------------------------------------

// The voltage of mains whose frequency wanders once around 60 Hz in 20 seconds.
Signal mainsVoltage(std::size_t n, double wander)
{
    Signal voltage(n);
    double phase = 0.0;
    for (std::size_t i = 0; i < n; ++i) {
        voltage[i] = std::sin(phase);
        const double t = static_cast<double>(i) / rate;
        phase += 2.0 * pi / rate * (mains + wander * std::sin(2.0 * pi * t / 20.0));
    }
    return voltage;
}

// The hum comes through the skin and the cables, later than the reference and with a level
// of its own.
Signal addHum(const Signal &x, const Signal &reference)
{
    constexpr std::size_t lag = 2;
    Signal sum = x;
    for (std::size_t i = lag; i < x.size(); ++i)
        sum[i] += humAmplitude * reference[i - lag];
    return sum;
}

// --- measuring ---------------------------------------------------------------

// In microvolts.
double level(const Spectrum &spectrum, double from, double to)
{
    return 1000.0 * bandLevel(spectrum, from, to);
}

double humLevel(const Spectrum &spectrum)
{
    return level(spectrum, mains - 0.5, mains + 0.5);
}

// The filter of two rates answers an impulse by every 36th of its taps. An impulse at each
// of 36 successive samples, one at a time, gives them all: result m of the impulse at sample k
// is tap 36 m - 25 k.
Signal rateResponse()
{
    Signal response(rateTaps);
    constexpr int first = 360, tapOfZero = rateTaps / 2;
    for (int k = 0; k < down; ++k) {
        Signal impulse(2 * first);
        impulse[static_cast<std::size_t>(first + k)] = 1.0;
        const Signal out = resample(impulse);
        for (int m = 0; m < length(out); ++m) {
            const int tap = down * m - up * (first + k) + tapOfZero;
            if (tap >= 0 && tap < rateTaps)
                response[static_cast<std::size_t>(tap)] = out[static_cast<std::size_t>(m)] / up;
        }
    }
    return response;
}

// A running median has no response in the sense of the other filters: a lone impulse never is
// the middle value. So: what is left of a sine, for one frequency after the other.
Signal medianGain(const Signal &frequencies)
{
    Signal gain;
    for (const double frequency : frequencies) {
        Signal sine(60 * 360);
        for (std::size_t i = 0; i < sine.size(); ++i)
            sine[i] = std::sin(2.0 * pi * frequency / rate * static_cast<double>(i));
        const Signal rest = removeWander(sine);
        gain.push_back(
            demo::gainInDecibels(rvxdNorm(rest.data(), nullptr, length(rest), RVX_NORM_L2) /
                                 rvxdNorm(sine.data(), nullptr, length(sine), RVX_NORM_L2)));
    }
    requireSuccess("response of the median");
    return gain;
}

Responses measureResponses()
{
    constexpr std::size_t n = 1 << 14;
    Signal impulse(n);
    impulse[360] = 1.0;

    Responses r;
    r.median = demo::gainOf(removeWander(impulse));
    r.adaptive = demo::gainOf(removeHumAdaptively(impulse, mainsVoltage(n, 0.0)));
    r.notch = demo::gainOf(removeHumByNotch(impulse));
    r.smooth = demo::gainOf(removeMuscleNoise(impulse));
    r.step = rate / n;

    Signal changed = rateResponse();
    changed.resize(n); // to have the curve finer
    r.changeOfRate = demo::gainOf(changed);
    r.changeStep = up * rate / n;

    for (double frequency = 0.05; frequency < 20.0; frequency *= 1.08)
        r.sines.push_back(frequency);
    r.medianOfSines = medianGain(r.sines);
    return r;
}

void tellLevels(const Steps &s, const Spectra &p, demo::Section &section)
{
    const auto microvolts = [](double from, double to) {
        return demo::format("%.3g \u00b5V before, %.3g \u00b5V after", from, to);
    };
    section.table({
        {"Recording", demo::format("%.1f s (%d samples at %g Hz)", length(s.recorded) / rate,
                                   length(s.recorded), rate)},
        {"Wander",
         microvolts(level(p.hummed, 0.0, 0.5), level(p.level, 0.0, 0.5)) + ", below 0.5 Hz"},
        {"Hum added", demo::format("%.1f \u00b5V at %g Hz, give or take %g Hz",
                                   1000.0 * humAmplitude / std::sqrt(2.0), mains, mainsWander)},
        {"Around 60 Hz", demo::format("%.1f \u00b5V as recorded, %.1f \u00b5V with hum",
                                      humLevel(p.recorded), humLevel(p.level))},
        {"Adaptive filter",
         demo::format("%.1f \u00b5V left, suppressed by %.1f dB", humLevel(p.adaptive),
                      decibels(humLevel(p.level) / humLevel(p.adaptive)))},
        {"Notch", demo::format("%.1f \u00b5V left, suppressed by %.1f dB", humLevel(p.notched),
                               decibels(humLevel(p.level) / humLevel(p.notched)))},
        {"Muscle noise",
         microvolts(level(p.adaptive, 50.0, rate / 2), level(p.smooth, 50.0, rate / 2)) +
             ", above 50 Hz"},
        {"Resampled", demo::format("%.1f s (%d samples at %g Hz)", length(s.resampled) / newRate,
                                   length(s.resampled), newRate)},
    });
}

void chapter(const std::string &input, const std::string &output)
{
    // Every thread starts in mode 0, in which a failed call ends the process.
    rvxSetErrMode(1);

    Steps s;
    s.recorded = demo::readSeries(input, settled + 3 * Spectrum::frameLen / 2);
    const Signal reference = mainsVoltage(s.recorded.size(), mainsWander);
    s.hummed = addHum(s.recorded, reference);

    s.wander = wanderOf(s.hummed);
    s.level = removeWander(s.hummed);
    s.adaptive = removeHumAdaptively(s.level, reference);
    s.notched = removeHumByNotch(s.level);
    s.smooth = removeMuscleNoise(s.adaptive);
    s.resampled = resample(s.smooth);

    Spectra p;
    p.recorded = spectrumOf(s.recorded, rate, settled);
    p.hummed = spectrumOf(s.hummed, rate, settled);
    p.level = spectrumOf(s.level, rate, settled);
    p.adaptive = spectrumOf(s.adaptive, rate, settled);
    p.notched = spectrumOf(s.notched, rate, settled);
    p.smooth = spectrumOf(s.smooth, rate, settled);
    p.resampled = spectrumOf(s.resampled, newRate, settled * up / down);

    demo::Section section(output, "ecg", "An electrocardiogram, cleaned");
    section.text(
        "Wander of the baseline and noise of the muscles are in the recording. There is little "
        "hum in it, so some is added: 60 Hz with an amplitude of 0.1 mV, from mains that wander "
        "by 0.1 Hz to either side once in 20 seconds. Two medians find the wander, which "
        "is subtracted. An adaptive filter takes out the hum with the mains as its "
        "reference, a notch does it beside it. A low-pass of 101 taps under a Hamming "
        "window takes out the noise above 40 Hz; and a filter of two rates makes 250 "
        "samples per second of 360.");
    tellLevels(s, p, section);
    drawSteps(s, section);
    drawSpectra(p, section);
    drawResponses(measureResponses(), section);
    section.finish();
}

} // namespace
} // namespace ecg

int main(int argc, char **argv)
{
    return demo::runChapter(argc, argv, "ecg", ecg::chapter);
}
