// The pictures of the chapter on pitch.

#include "pitch.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <string>

#include "support/spectrogram.h"

namespace pitch {
namespace {

constexpr double loudAbove = -35.0; // dBFS, level of a frame to show

// Pitch is drawn as dots with a rim, so that they stand out from light and dark alike. Where it
// is 0 there is none.
constexpr const char *pitchDots =
    " with image, \\\n"
    "     'pitch.txt' using 1:($6 > 0 ? $6 : NaN) with points pointtype 7 pointsize dot "
    "linecolor rgb '#07071d' title '', \\\n"
    "     '' using 1:($6 > 0 ? $6 : NaN) with points pointtype 7 pointsize 0.6*dot "
    "linecolor rgb '#4fe3ff' title 'pitch'\n";

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
if (labelled) set xlabel 'Time in ms'
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
if (labelled) set xlabel 'Lag in ms'
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

} // namespace

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
                    demo::format("limit = %g\nlabelled = 0\n", voicedFrom) + R"(
set label 1 '' at graph 0.02, graph 0.93 textcolor rgb '#30343a'
set key top right horizontal Right samplen 1.5
set autoscale xfix
set multiplot
)" + row(0.58, 0.98) + framePanels(voice, *voiced, f, "voiced", section) +
                        row(0.1, 0.5) + R"(
set label 1 '' at graph 0.02, graph 0.93 textcolor rgb '#30343a'
labelled = 1
)" + framePanels(voice, *unvoiced, f, "unvoiced", section) +
                        "unset multiplot\n",
                    "The loudest frame with a voice, and a noise: left the samples, right how much "
                    "the frame is like itself that much later.");
}

} // namespace pitch
