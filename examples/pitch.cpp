// How high is a voice, and when? Pitch by autocorrelation: a voice repeats itself from
// period to period, so a frame of it is most like itself one period later.
//
//     pitch INPUT OUTPUT_FOLDER
//
// Frames under a window, their autocorrelation divided by that of the window, and a small
// price on long periods (Boersma, Proc. Inst. Phonetic Sciences Amsterdam 17, 1993).

#include <algorithm>
#include <cmath>
#include <string>
#include <vector>

#include "rvx.h"
#include "support/recording.h"
#include "support/section.h"
#include "support/spectrogram.h"
#include "support/spectrum.h"
#include "support/status.h"

namespace {

using demo::decibels;
using demo::requireSuccess;
using Signal = std::vector<double>;

constexpr double lowestPitch = 60.0;   // Hz
constexpr double highestPitch = 400.0; // Hz
constexpr double frameTime = 0.05;     // s, three periods of the lowest pitch
constexpr double hopTime = 0.01;       // s, from the start of a frame to that of the next
constexpr double voicedFrom = 0.6;     // how much alike two periods of a voice are at least
constexpr double silentBelow = -50.0;  // dBFS, level of a frame
constexpr double loudAbove = -35.0;    // dBFS, level of a frame to show
constexpr double octavePrice = 0.05;   // taken off for a period twice as long
constexpr int smoothFrames = 7;        // width of the median over estimates
constexpr double lowestRate = 4000.0;  // samples per second

// What the analysis goes by, in samples.
struct Frames {
    int len, hop;
    int shortest, longest; // period
    Signal window;
    Signal windowLikeness; // autocorrelation of the window, 1 at lag 0
};

// What was found in a frame.
struct Estimate {
    double time;      // s, of the middle of the frame
    double level;     // dBFS
    double period;    // samples, also where there is no voice
    double strength;  // how much alike two periods are, 1 being the same
    double frequency; // Hz; 0 without a voice
    double pitch;     // Hz, the median of the frequencies around
};

// --- the method --------------------------------------------------------------

// The autocorrelation up to a lag, divided by its value at lag 0. Silence is not like
// anything.
Signal likenessOf(const Signal &frame, int longestLag)
{
    Signal r(static_cast<std::size_t>(longestLag) + 1);
    const int lags = static_cast<int>(r.size());
    rvxdAutoCorr(frame.data(), static_cast<int>(frame.size()), r.data(), lags, RVX_AUTOCORR_NORMAL);
    const double energy = r[0];
    if (energy > 0.0)
        rvxdbMpy1(1.0 / energy, r.data(), lags);
    return r;
}

Frames framesFor(double samplesPerSecond)
{
    Frames f;
    f.len = static_cast<int>(std::lround(frameTime * samplesPerSecond));
    f.hop = static_cast<int>(std::lround(hopTime * samplesPerSecond));
    f.shortest = static_cast<int>(std::ceil(samplesPerSecond / highestPitch));
    f.longest = static_cast<int>(std::floor(samplesPerSecond / lowestPitch));

    // A window function applied to ones gives the window itself.
    f.window.resize(static_cast<std::size_t>(f.len));
    rvxdbSet(1.0, f.window.data(), f.len);
    rvxdWinHann(f.window.data(), f.len);
    f.windowLikeness = likenessOf(f.window, f.longest + 1);
    requireSuccess("window");
    return f;
}

// How much a frame is like itself, lag after lag. The window makes it less so with every lag,
// which the division undoes.
Signal frameLikeness(const double *samples, const Frames &f)
{
    Signal frame(static_cast<std::size_t>(f.len));
    rvxdbCopy(samples, frame.data(), f.len);
    rvxdbSub1(rvxdMean(samples, f.len), frame.data(), f.len);
    rvxdbMpy2(f.window.data(), frame.data(), f.len);
    Signal likeness = likenessOf(frame, f.longest + 1);
    for (std::size_t lag = 0; lag < likeness.size(); ++lag)
        likeness[lag] /= f.windowLikeness[lag];
    return likeness;
}

// The top of the parabola through three neighbours, of which the middle one is the highest.
struct Peak {
    double lag, height;
};

Peak peakAt(const Signal &likeness, int lag)
{
    const double *middle = likeness.data() + lag;
    const double slope = 0.5 * (middle[1] - middle[-1]);
    const double bend = 2.0 * middle[0] - middle[1] - middle[-1];
    if (!(bend > 0.0))
        return {static_cast<double>(lag), middle[0]};
    return {lag + slope / bend, middle[0] + 0.5 * slope * slope / bend};
}

// The best of all peaks. Two periods are a period as well: so of peaks that are nearly as
// high the first one is to win, and doubling the lag costs a little.
Peak bestPeak(const Signal &likeness, const Frames &f)
{
    Peak best{static_cast<double>(f.longest), 0.0};
    double bestScore = 0.0;
    for (int lag = f.shortest; lag <= f.longest; ++lag) {
        const double *middle = likeness.data() + lag;
        if (middle[0] < middle[-1] || middle[0] <= middle[1])
            continue;
        const Peak peak = peakAt(likeness, lag);
        const double score = peak.height - octavePrice * std::log2(peak.lag / f.shortest);
        if (score > bestScore) {
            best = peak;
            bestScore = score;
        }
    }
    return best;
}

Estimate estimate(const demo::Recording &voice, int start, const Frames &f)
{
    const double *samples = voice.samples.data() + start;
    const double rms = rvxdNorm(samples, nullptr, f.len, RVX_NORM_L2) / std::sqrt(f.len);
    const Peak peak = bestPeak(frameLikeness(samples, f), f);

    Estimate e{(start + 0.5 * f.len) / voice.rate,
               decibels(std::max(rms, 1e-6)),
               peak.lag,
               peak.height,
               0.0,
               0.0};
    if (e.strength >= voicedFrom && e.level >= silentBelow)
        e.frequency = voice.rate / e.period;
    return e;
}

// A running median takes out what lasts for three frames or less (Rabiner, Sambur and Schmidt, IEEE
// Trans. Acoust. Speech Signal Process. 23, 1975).
void smooth(std::vector<Estimate> &estimates)
{
    Signal pitch;
    for (const Estimate &e : estimates)
        pitch.push_back(e.frequency);
    rvxdbMedianFilter1(pitch.data(), static_cast<int>(pitch.size()), smoothFrames);
    requireSuccess("median");
    for (std::size_t i = 0; i < pitch.size(); ++i)
        estimates[i].pitch = pitch[i];
}

std::vector<Estimate> estimatesOf(const demo::Recording &voice, const Frames &f)
{
    std::vector<Estimate> estimates;
    for (int start = 0; start + f.len <= static_cast<int>(voice.samples.size()); start += f.hop)
        estimates.push_back(estimate(voice, start, f));
    requireSuccess("pitch");
    smooth(estimates);
    return estimates;
}

// --- what is told and drawn --------------------------------------------------

void tellPitch(const std::vector<Estimate> &estimates, const Frames &f, double samplesPerSecond,
               demo::Section &section)
{
    Signal pitches;
    for (const Estimate &e : estimates) {
        if (e.pitch > 0.0)
            pitches.push_back(e.pitch);
    }
    std::sort(pitches.begin(), pitches.end());
    const auto quantile = [&](double part) {
        return pitches[static_cast<std::size_t>(part * static_cast<double>(pitches.size() - 1))];
    };

    const double all = static_cast<double>(estimates.size());
    section.table({
        {"Frames",
         demo::format("%.0f of %g ms, one every %g ms", all, 1000.0 * f.len / samplesPerSecond,
                      1000.0 * f.hop / samplesPerSecond)},
        {"Voiced", demo::format("%d frames (%.0f %%)", static_cast<int>(pitches.size()),
                                100.0 * static_cast<double>(pitches.size()) / all)},
        {"Pitch", pitches.empty() ? "none"
                                  : demo::format("median %.0f Hz, nine tenths from %.0f to %.0f Hz",
                                                 quantile(0.5), quantile(0.05), quantile(0.95))},
    });
}

constexpr int spectrumOrder = 9; // transforms of 512 samples, to tell harmonics apart

// Pitch is drawn as dots with a rim, so that they stand out from light and dark alike; 0 is
// no number to gnuplot and is left out.
constexpr const char *pitchDots =
    " with image, \\\n"
    "     'pitch.txt' using 1:($6 > 0 ? $6 : NaN) with points pointtype 7 pointsize dot "
    "linecolor rgb '#07071d' title '', \\\n"
    "     '' using 1:($6 > 0 ? $6 : NaN) with points pointtype 7 pointsize 0.6*dot "
    "linecolor rgb '#4fe3ff' title 'pitch'\n";

void drawTrack(const demo::Recording &voice, const std::vector<Estimate> &estimates,
               demo::Section &section)
{
    std::vector<Signal> columns(6);
    for (const Estimate &e : estimates) {
        const double row[] = {e.time, e.level, e.period, e.strength, e.frequency, e.pitch};
        for (std::size_t i = 0; i < columns.size(); ++i)
            columns[i].push_back(row[i]);
    }
    section.data("pitch.txt", "time/s level/dBFS period/samples strength frequency/Hz pitch/Hz",
                 columns);

    const int hop = static_cast<int>(std::lround(hopTime * voice.rate));
    const demo::Spectrogram frames = demo::spectrogramOf(voice, spectrumOrder, hop);
    const std::string plot =
        "plot " +
        section.grid("spectrogram.bin", frames.levels, frames.frames, frames.firstTime,
                     frames.timeStep, 0.0, frames.frequencyStep) +
        pitchDots;
    const std::string axes = std::string(demo::spectrogramAxes) + R"(
set ylabel 'Frequency in Hz' offset 1.5,0
set ytics 200
)";

    const double end = static_cast<double>(voice.samples.size()) / voice.rate;
    section.picture("track", 1600, 560,
                    axes + demo::format("dot = 0.7\nset xrange [0:%g]\nset yrange [0:800]\n", end) +
                        plot,
                    "The pitch of every voiced frame, over a spectrogram of 64 ms frames: it lies "
                    "on the lowest line.");

    // A second and a half around the loudest moment.
    const auto loudest =
        std::max_element(estimates.begin(), estimates.end(),
                         [](const Estimate &a, const Estimate &b) { return a.level < b.level; });
    section.picture(
        "closeup", 1600, 900,
        axes +
            demo::format("dot = 1.1\nset xrange [%g:%g]\n", loudest->time - 0.75,
                         loudest->time + 0.75) +
            R"(
set multiplot
set bmargin at screen 0.11
set tmargin at screen 0.68
set yrange [0:1000]
)" + plot + R"(
set bmargin at screen 0.72
set tmargin at screen 0.97
set yrange [0:1.1]
set ytics 0.5
set grid
set format x ''
unset xlabel
set ylabel 'Likeness' offset 0.5,0
)" + demo::format("limit = %g\n", voicedFrom) +
            R"(
set label 'voiced above' at graph 1.01, first limit textcolor rgb '#5a626c'
plot limit with lines linewidth 2 dashtype 2 linecolor rgb '#d9532c', \
     'pitch.txt' using 1:4 with linespoints pointtype 7 pointsize 0.4 linewidth 1.5 \
        linecolor rgb '#2f6db5'
unset multiplot
)",
        "A second and a half. Above, how much alike two periods of a frame are; below, the pitch "
        "where that is enough.");
}

// Of the frames that are loud enough to show: the loudest voiced one.
const Estimate *clearestVoice(const std::vector<Estimate> &estimates)
{
    const Estimate *found = nullptr;
    for (const Estimate &e : estimates) {
        if (e.level > loudAbove && e.pitch > 0.0 && (found == nullptr || e.level > found->level))
            found = &e;
    }
    return found;
}

// And the one that is least like itself: an s, most likely.
const Estimate *clearestNoise(const std::vector<Estimate> &estimates)
{
    const Estimate *found = nullptr;
    for (const Estimate &e : estimates) {
        if (e.level > loudAbove && e.pitch == 0.0 &&
            (found == nullptr || e.strength < found->strength))
            found = &e;
    }
    return found;
}

// The two panels of one frame: its samples, and how much it is like itself lag after lag.
std::string framePanels(const demo::Recording &voice, const Estimate &e, const Frames &f,
                        const std::string &name, const demo::Section &section)
{
    const double msPerSample = 1000.0 / voice.rate;
    const auto start = static_cast<std::size_t>(std::lround(e.time * voice.rate - 0.5 * f.len));
    Signal time, samples;
    for (std::size_t i = 0; i < static_cast<std::size_t>(f.len); ++i) {
        time.push_back(static_cast<double>(i) * msPerSample);
        samples.push_back(voice.samples[start + i]);
    }
    section.data("frame-" + name + ".txt", "time/ms amplitude", {time, samples});

    const Signal likeness = frameLikeness(voice.samples.data() + start, f);
    Signal lag;
    for (std::size_t i = 0; i < likeness.size(); ++i)
        lag.push_back(static_cast<double>(i) * msPerSample);
    section.data("likeness-" + name + ".txt", "lag/ms likeness", {lag, likeness});
    section.data("best-" + name + ".txt", "lag/ms likeness",
                 {{e.period * msPerSample}, {e.strength}});

    return demo::format("set label 1 '%s, at %.2f s'\n", name.c_str(), e.time) + R"(
set lmargin at screen 0.075
set rmargin at screen 0.475
set ylabel 'Amplitude'
set xrange [0:*]
set yrange [*:*]
set offsets 0,0,graph 0.15,0
plot 'frame-)" +
           name + R"(.txt' with lines linewidth 1.5 linecolor rgb '#2f6db5' title ''
unset label 1
set offsets
set lmargin at screen 0.575
set rmargin at screen 0.985
set ylabel 'Likeness'
set yrange [-1:1.45]
set ytics -1,0.5,1
plot limit with lines linewidth 2 dashtype 2 linecolor rgb '#d9532c' title 'voiced above', \
     'likeness-)" +
           name + R"(.txt' with lines linewidth 2 linecolor rgb '#2f6db5' title '', \
     'best-)" +
           name +
           ".txt' with points pointtype 6 pointsize 1.8 linewidth 2 linecolor rgb "
           "'#12365f' title '" +
           demo::format("best period %.2f ms", e.period * msPerSample) + "'\nset ytics autofreq\n";
}

void drawFrames(const demo::Recording &voice, const std::vector<Estimate> &estimates,
                const Frames &f, demo::Section &section)
{
    const Estimate *voiced = clearestVoice(estimates);
    const Estimate *unvoiced = clearestNoise(estimates);
    if (voiced == nullptr || unvoiced == nullptr)
        return;
    const auto row = [](double bottom, double top) {
        return demo::format("set bmargin at screen %g\nset tmargin at screen %g\n", bottom, top);
    };
    section.picture("frames", 1600, 800,
                    demo::format("limit = %g\n", voicedFrom) + R"(
set label 1 '' at graph 0.02, graph 0.93 textcolor rgb '#30343a'
set key top right horizontal Right samplen 1.5
set autoscale xfix
set multiplot
)" + row(0.58, 0.98) + framePanels(voice, *voiced, f, "voiced", section) +
                        row(0.1, 0.5) + R"(
set label 1 '' at graph 0.02, graph 0.93 textcolor rgb '#30343a'
set xlabel 'Time in frame, lag in ms'
)" + framePanels(voice, *unvoiced, f, "unvoiced", section) +
                        "unset multiplot\n",
                    "The loudest frame with a voice, and a noise: left the samples, right how much "
                    "the frame is like itself that much later.");
}

void chapter(const std::string &input, const std::string &output)
{
    // Every thread starts in mode 0, in which a failed call ends the process.
    rvxSetErrMode(1);

    const demo::Recording voice = demo::readRecording(input, 1 << spectrumOrder);
    demo::requireRecording(input, voice, lowestRate, frameTime + hopTime);
    const Frames frames = framesFor(voice.rate);
    const std::vector<Estimate> estimates = estimatesOf(voice, frames);

    demo::Section section(output, "pitch", "The pitch of a voice");
    section.text(demo::format(
        "How high a voice is, and when. A voiced sound repeats itself from period to period: so "
        "the autocorrelation of a frame has a peak at the period, and is nearly as high there as "
        "at lag 0. Periods from 1/%g to 1/%g s are looked at. A frame counts as voiced where that "
        "likeness is %g at least, and a median over %d frames takes out what lasts for three or "
        "less.",
        highestPitch, lowestPitch, voicedFrom, smoothFrames));
    tellPitch(estimates, frames, voice.rate, section);
    drawTrack(voice, estimates, section);
    drawFrames(voice, estimates, frames, section);
    section.finish();
}

} // namespace

int main(int argc, char **argv)
{
    return demo::runChapter(argc, argv, "pitch", chapter);
}
