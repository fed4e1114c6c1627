// Cleaning an electrocardiogram: a running median takes the wander of the baseline out,
// an adaptive filter (and, to compare, a notch) the hum of the mains, a low-pass the
// noise of the muscles, and a filter of two rates brings 360 samples per second to 250.
//
//     ecg INPUT OUTPUT_FOLDER
//
// The functions from removeWander to resample are the chain; what follows measures and
// draws it.

#include <algorithm>
#include <cmath>
#include <stdexcept>
#include <string>
#include <vector>

#include "rvx.h"
#include "support/section.h"
#include "support/series.h"

namespace {

using Signal = std::vector<double>; // in millivolts

constexpr double pi = 3.14159265358979323846;
constexpr double rate = 360.0;       // of the recording, samples per second
constexpr double mains = 60.0;       // Hz
constexpr double mainsWander = 0.1;  // Hz, to either side
constexpr double humAmplitude = 0.1; // mV
constexpr double stopBand = 1.0;     // Hz, between the points of -3 dB around the mains
constexpr double passBand = 40.0;    // Hz, where the low-pass is at one half
constexpr int smoothTaps = 101;
constexpr int up = 25, down = 36;       // 360 * 25 / 36 = 250
constexpr int rateTaps = 50 * down + 1; // a delay of 25 results
constexpr double rateBand = 110.0;      // Hz, where the change of rate is at one half
constexpr int settled = 5 * 360;        // samples after which the hum is measured

int length(const Signal &x)
{
    return static_cast<int>(x.size());
}

// Failed calls return, and leave a status behind that stays until it is cleared:
// one look after a group of calls is enough.
void requireSuccess(const char *task)
{
    if (rvxGetErrStatus() != RVX_STATUS_OK)
        throw std::runtime_error(std::string(task) + ": " + rvxErrorStr(rvxGetErrStatus()));
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

// The ideal low-pass cut to an odd number of taps, which the caller tapers by a window.
// The band ends at cutoff, as a part of the sampling rate.
Signal idealLowPass(int tapsLen, double cutoff)
{
    Signal taps;
    for (int i = 0; i < tapsLen; ++i) {
        const double t = pi * (i - tapsLen / 2);
        taps.push_back(i == tapsLen / 2 ? 2.0 * cutoff : std::sin(2.0 * cutoff * t) / t);
    }
    return taps;
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
    Signal taps = idealLowPass(smoothTaps, passBand / rate);
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
    Signal taps = idealLowPass(rateTaps, rateBand / (rate * up));
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

// The power spectrum, in mV^2/Hz: the mean over frames of 4096 samples, each half a frame after
// the other and under a Hann window (Welch, IEEE Trans. Audio Electroacoust. 15, 1967).
struct Spectrum {
    static constexpr int order = 12;
    static constexpr int frameLen = 1 << order;
    Signal density;
    double step; // Hz, from one value to the next
};

Spectrum spectrumOf(const Signal &x, double samplesPerSecond, int from)
{
    constexpr int n = Spectrum::frameLen, bins = n / 2 + 1;
    Signal window(n), frame(2 * bins), magnitude(bins), sum(bins);
    rvxdbSet(1.0, window.data(), n);
    rvxdWinHann(window.data(), n);
    int frames = 0;
    for (int start = from; start + n <= length(x); start += n / 2, ++frames) {
        rvxdbMpy3(x.data() + start, window.data(), frame.data(), n);
        rvxdRealFft(frame.data(), Spectrum::order, RVX_FFT_FORWARD);
        for (std::size_t k = 0; k < bins; ++k)
            magnitude[k] = std::hypot(frame[2 * k], frame[2 * k + 1]);
        rvxdbMpy3(magnitude.data(), magnitude.data(), magnitude.data(), bins);
        rvxdbAdd3(sum.data(), magnitude.data(), sum.data(), bins);
    }
    rvxdRealFft(nullptr, Spectrum::order, RVX_FFT_FREE_TABLES);
    const double windowNorm = rvxdNorm(window.data(), nullptr, n, RVX_NORM_L2);
    rvxdbMpy1(2.0 / (frames * samplesPerSecond * windowNorm * windowNorm), sum.data(), bins);
    requireSuccess("spectrum");
    return {sum, samplesPerSecond / n};
}

// The level of what lies between two frequencies, as a root mean square in microvolts.
double bandLevel(const Spectrum &spectrum, double from, double to)
{
    double power = 0.0;
    for (std::size_t k = 0; k < spectrum.density.size(); ++k) {
        const double frequency = static_cast<double>(k) * spectrum.step;
        if (frequency >= from && frequency < to)
            power += spectrum.density[k] * spectrum.step;
    }
    return 1000.0 * std::sqrt(power);
}

double humLevel(const Spectrum &spectrum)
{
    return bandLevel(spectrum, mains - 0.5, mains + 0.5);
}

double decibels(double ratio)
{
    return 20.0 * std::log10(std::max(ratio, 1e-7));
}

// The gain in dB at every bin of what came out of a filter for an impulse. It does not matter
// when the impulse was.
Signal gainOf(Signal response)
{
    int order = 0;
    while (1 << order < length(response))
        ++order;
    response.resize((std::size_t{1} << order) + 2); // room for the last bin
    rvxdRealFft(response.data(), order, RVX_FFT_FORWARD);
    rvxdRealFft(nullptr, order, RVX_FFT_FREE_TABLES);
    requireSuccess("response");

    Signal gain;
    for (std::size_t k = 0; k + 1 < response.size(); k += 2)
        gain.push_back(decibels(std::hypot(response[k], response[k + 1])));
    return gain;
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
        gain.push_back(decibels(rvxdNorm(rest.data(), nullptr, length(rest), RVX_NORM_L2) /
                                rvxdNorm(sine.data(), nullptr, length(sine), RVX_NORM_L2)));
    }
    requireSuccess("response of the median");
    return gain;
}

// first, first + step, first + 2 step ...
Signal ramp(std::size_t n, double first, double step)
{
    Signal values;
    for (std::size_t i = 0; i < n; ++i)
        values.push_back(first + step * static_cast<double>(i));
    return values;
}

// --- tables and pictures -----------------------------------------------------

struct Steps {
    Signal recorded, hummed;
    Signal wander, level;
    Signal adaptive, notched; // two ways to take the hum out of level
    Signal smooth, resampled;
};

struct Spectra {
    Spectrum recorded, hummed, level, adaptive, notched, smooth, resampled;
};

void tellLevels(const Steps &s, const Spectra &p, demo::Section &section)
{
    const double newRate = rate * up / down;
    const auto microvolts = [](double from, double to) {
        return demo::format("%.3g \u00b5V before, %.3g \u00b5V after", from, to);
    };
    section.table({
        {"Recording", demo::format("%.1f s (%d samples at %g Hz)", length(s.recorded) / rate,
                                   length(s.recorded), rate)},
        {"Wander", microvolts(bandLevel(p.hummed, 0.0, 0.5), bandLevel(p.level, 0.0, 0.5)) +
                       ", below 0.5 Hz"},
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
         microvolts(bandLevel(p.adaptive, 50.0, rate / 2), bandLevel(p.smooth, 50.0, rate / 2)) +
             ", above 50 Hz"},
        {"Resampled", demo::format("%.1f s (%d samples at %g Hz)", length(s.resampled) / newRate,
                                   length(s.resampled), newRate)},
    });
}

// The same line for the same thing in every picture.
constexpr const char *styles = R"(
set style line 1 linewidth 1.5 linecolor rgb '#8d96a3' # recorded, with hum
set style line 2 linewidth 2.5 linecolor rgb '#d9532c' # wander
set style line 3 linewidth 1.5 linecolor rgb '#7a4fa3' # adaptive filter
set style line 4 linewidth 1.5 linecolor rgb '#e08a3c' # notch
set style line 5 linewidth 1.5 linecolor rgb '#2f6db5' # low-pass
set style line 6 linewidth 1.5 linecolor rgb '#12365f' pointtype 7 pointsize 0.45 # new rate
set style line 7 linewidth 2 linecolor rgb '#6b7480' # recorded, without hum
set style line 8 linewidth 5 linecolor rgb '#f0c49a' # what another line lies on
)";

// Panels of a picture, placed in parts of its width and height.
std::string panel(double left, double right, double bottom, double top)
{
    return demo::format("set lmargin at screen %g\nset rmargin at screen %g\n"
                        "set bmargin at screen %g\nset tmargin at screen %g\n",
                        left, right, bottom, top);
}

std::string row(double bottom, double top)
{
    return panel(0.07, 0.985, bottom, top);
}

void drawSteps(const Steps &s, demo::Section &section)
{
    section.data("steps.txt", "time/s recorded hummed wander level adaptive notched smooth (mV)",
                 {ramp(s.recorded.size(), 0.0, 1.0 / rate), s.recorded, s.hummed, s.wander, s.level,
                  s.adaptive, s.notched, s.smooth});
    section.data("resampled.txt", "time/s resampled/mV",
                 {ramp(s.resampled.size(), 0.0, down / (rate * up)), s.resampled});

    section.picture("before-after", 1600, 640,
                    styles + demo::format("set xrange [0:%g]\n", length(s.recorded) / rate) + R"(
set ytics 1
set ylabel 'mV'
set yrange [-2:4.3]
set key top left horizontal Left reverse samplen 1.5
set multiplot
set format x ''
)" + row(0.57, 0.98) + R"(
plot 'steps.txt' using 1:3 with lines linestyle 1 title 'recorded, with hum', \
     '' using 1:4 with lines linestyle 2 title 'wander'
set format x '%g'
set xlabel 'Time in seconds'
)" + row(0.14, 0.55) + R"(
plot 'resampled.txt' with lines linestyle 5 title 'cleaned, at 250 Hz'
unset multiplot
)",
                    "Before and after: above, the recording with hum added, and its wander; below, "
                    "what the whole chain makes of it.");

    section.picture("steps", 1600, 1150, std::string(styles) + R"(
set xrange [20:24]
set ytics 1
set ylabel 'mV'
set yrange [-1.5:3.2]
set key top right horizontal Right samplen 1.5
set multiplot
set format x ''
)" + row(0.76, 0.985) + R"(
plot 'steps.txt' using 1:3 with lines linestyle 1 title 'recorded, with hum', \
     '' using 1:4 with lines linestyle 2 title 'wander'
)" + row(0.525, 0.75) + R"(
plot 'steps.txt' using 1:5 with lines linestyle 1 title 'wander subtracted'
)" + row(0.29, 0.515) + R"(
plot 'steps.txt' using 1:6 with lines linestyle 3 title 'hum taken out by the adaptive filter'
set format x '%g'
set xlabel 'Time in seconds'
)" + row(0.065, 0.28) + R"(
plot 'steps.txt' using 1:8 with lines linestyle 5 title 'low-pass', \
     'resampled.txt' with points linestyle 6 title 'at 250 Hz'
unset multiplot
)",
                    "Four seconds, step by step.");
}

void drawSpectra(const Spectra &p, demo::Section &section)
{
    section.data("spectra.txt", "frequency/Hz recorded level adaptive notched smooth (mV^2/Hz)",
                 {ramp(p.level.density.size(), 0.0, p.level.step), p.recorded.density,
                  p.level.density, p.adaptive.density, p.notched.density, p.smooth.density});
    section.data("spectrum-resampled.txt", "frequency/Hz resampled/(mV^2/Hz)",
                 {ramp(p.resampled.density.size(), 0.0, p.resampled.step), p.resampled.density});

    // The beats, each trace 1.5 mV below the one before.
    constexpr const char *traces = R"(
plot 'steps.txt' using 1:($5+3) with lines linestyle 1 title 'with hum', \
     '' using 1:($7+1.5) with lines linestyle 4 title 'notch', \
     '' using 1:6 with lines linestyle 3 title 'adaptive'
)";
    section.picture(
        "hum", 1600, 1000,
        std::string(styles) + R"(
set key top right horizontal Right samplen 1.5
set multiplot
set yrange [-0.6:6]
set ytics format '' 1.5
set xlabel 'Time in seconds'
set label 1 "mains at 60.1 Hz" at graph 0.02, graph 0.94 textcolor rgb '#5a626c'
set xrange [4:6]
)" + panel(0.545, 0.985, 0.53, 0.985) +
            traces + R"(
set label 1 "the first two seconds"
set xrange [0:2]
set ylabel '1.5 mV from line to line'
unset key
)" + panel(0.07, 0.51, 0.53, 0.985) +
            traces +
            R"(
unset label 1
set key
set logscale y
set yrange [1:700]
set ytics format '%g' (1,10,100)
set xrange [50:70]
set xlabel 'Frequency in Hz'
set ylabel "\302\265V per \342\210\232Hz"
)" + row(0.085, 0.425) +
            R"(
plot 'spectra.txt' using 1:(1000*sqrt($3)) with lines linestyle 1 title 'with hum', \
     '' using 1:(1000*sqrt($2)) with lines linestyle 7 title 'as recorded', \
     '' using 1:(1000*sqrt($5)) with lines linestyle 4 title 'notch', \
     '' using 1:(1000*sqrt($4)) with lines linestyle 3 title 'adaptive filter'
unset multiplot
)",
        "The hum. Left, both filters learn in half a second. Right, the mains "
        "are at 60.1 Hz: the adaptive filter follows them, the notch stays where it is. "
        "Below, the spectra.");

    section.picture("spectra", 1600, 560, std::string(styles) + R"(
set key top right Right samplen 1.5
set xrange [0:180]
set xtics 20
set logscale y
set yrange [0.001:500]
set ytics (0.001,0.01,0.1,1,10,100)
set xlabel 'Frequency in Hz'
set ylabel "\302\265V per \342\210\232Hz" offset 2,0
)" + row(0.16, 0.975) + R"(
plot 'spectra.txt' using 1:(1000*sqrt($3)) with lines linestyle 1 title 'wander subtracted', \
     '' using 1:(1000*sqrt($4)) with lines linestyle 3 title 'hum taken out', \
     '' using 1:(1000*sqrt($6)) with lines linestyle 5 title 'low-pass', \
     'spectrum-resampled.txt' using 1:(1000*sqrt($2)) with lines linestyle 6 dashtype 2 \
        title 'at 250 Hz'
)",
                    "The spectrum behind each step.");
}

void drawResponses(demo::Section &section)
{
    constexpr std::size_t n = 1 << 14;
    Signal impulse(n);
    impulse[360] = 1.0;
    const Signal wander = gainOf(removeWander(impulse));
    const Signal adaptive = gainOf(removeHumAdaptively(impulse, mainsVoltage(n, 0.0)));
    const Signal notch = gainOf(removeHumByNotch(impulse));
    const Signal smooth = gainOf(removeMuscleNoise(impulse));
    section.data("responses.txt", "frequency/Hz median adaptive notch low-pass (dB)",
                 {ramp(n / 2 + 1, 0.0, rate / n), wander, adaptive, notch, smooth});

    // Padded, to have the curve finer.
    Signal changed = rateResponse();
    changed.resize(n);
    section.data("responses-rate.txt", "frequency/Hz gain/dB",
                 {ramp(n / 2 + 1, 0.0, up * rate / n), gainOf(changed)});

    Signal frequencies;
    for (double frequency = 0.05; frequency < 20.0; frequency *= 1.08)
        frequencies.push_back(frequency);
    section.data("responses-median.txt", "frequency/Hz gain/dB",
                 {frequencies, medianGain(frequencies)});

    section.picture("responses", 1600, 1000, std::string(styles) + R"(
set key bottom right Right samplen 1.5
set multiplot
set ylabel 'Gain in dB'
set xlabel 'Frequency in Hz' offset 0,0.3
set yrange [-48:6]
set ytics 12
set xrange [0.05:20]
set logscale x
set xtics (0.05,0.1,0.2,0.5,1,2,5,10,20)
)" + panel(0.07, 0.485, 0.59, 0.98) + R"(
plot 'responses.txt' using 1:2 every ::1 with lines linestyle 8 \
        title 'wander subtracted: an impulse', \
     'responses-median.txt' with lines linestyle 2 title 'a sine'
unset logscale x
set xtics autofreq
set xrange [56:64]
)" + panel(0.57, 0.985, 0.59, 0.98) + R"(
plot 'responses.txt' using 1:4 with lines linestyle 8 title 'notch', \
     '' using 1:3 with lines linestyle 3 title 'adaptive filter'
set yrange [-120:10]
set ytics 20
set xrange [0:180]
set xtics 20
)" + panel(0.07, 0.485, 0.085, 0.475) + R"(
set key top right
plot 'responses.txt' using 1:5 with lines linestyle 5 title 'low-pass'
set xrange [0:300]
set xtics 50
set arrow from 125, graph 0 to 125, graph 1 nohead linecolor rgb '#9aa0a8' dashtype 2
set label 'half the new rate' at 130, graph 0.8 textcolor rgb '#5a626c'
)" + panel(0.57, 0.985, 0.085, 0.475) + R"(
plot 'responses-rate.txt' with lines linestyle 6 title '360 to 250 Hz'
unset multiplot
)",
                    "The gain of each filter, from its answer to an impulse.");
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
    p.resampled = spectrumOf(s.resampled, rate * up / down, settled * up / down);

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
    drawResponses(section);
    section.finish();
}

} // namespace

int main(int argc, char **argv)
{
    return demo::runChapter(argc, argv, "ecg", chapter);
}
