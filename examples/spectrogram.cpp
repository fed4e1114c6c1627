// How loud is a recording, what does it look like, and which frequencies does it
// hold when? Level statistics, a waveform and a spectrogram.
//
//     spectrogram INPUT OUTPUT_FOLDER
//
// The spectrogram itself is computed in support/spectrogram.cpp, for the other chapters too.

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

constexpr int order = 8;             // of the transform
constexpr int frameLen = 1 << order; // samples in a frame
constexpr int hop = frameLen / 4;    // from the start of a frame to that of the next

void describeLevel(const demo::Recording &voice, demo::Section &section)
{
    const double *x = voice.samples.data();
    const int n = static_cast<int>(voice.samples.size());

    const double peak = rvxdNorm(x, nullptr, n, RVX_NORM_C);
    const double rms = rvxdNorm(x, nullptr, n, RVX_NORM_L2) / std::sqrt(n);
    const double mean = rvxdMean(x, n);
    requireSuccess("level");

    section.table({
        {"Length", demo::format("%.2f s (%d samples at %g Hz)", n / voice.rate, n, voice.rate)},
        {"Peak", demo::format("%.1f dBFS", decibels(peak))},
        {"RMS", demo::format("%.1f dBFS", decibels(rms))},
        {"Crest factor", rms > 0 ? demo::format("%.1f dB", decibels(peak / rms)) : "none"},
        {"DC", demo::format("%.1f dBFS", decibels(std::fabs(mean)))},
    });
}

// The waveform, drawn from the extremes and the RMS of short blocks. Gives the
// time of the loudest one.
double drawWaveform(const demo::Recording &voice, demo::Section &section)
{
    const int n = static_cast<int>(voice.samples.size());
    const int blockLen = std::max(1, n / 1500);

    std::vector<double> time, lowest, highest, rms;
    for (int start = 0; start + blockLen <= n; start += blockLen) {
        const double *block = voice.samples.data() + start;
        time.push_back((start + 0.5 * blockLen) / voice.rate);
        lowest.push_back(rvxdMin(block, blockLen));
        highest.push_back(rvxdMax(block, blockLen));
        rms.push_back(rvxdNorm(block, nullptr, blockLen, RVX_NORM_L2) / std::sqrt(blockLen));
    }
    int loudest = 0;
    rvxdMaxExt(rms.data(), static_cast<int>(rms.size()), &loudest);
    requireSuccess("waveform");

    section.data("waveform.txt", "time/s lowest highest rms", {time, lowest, highest, rms});
    section.picture("waveform", 1600, 420, demo::format("set xrange [0:%g]\n", n / voice.rate) + R"(
set lmargin at screen 0.07
set rmargin at screen 0.87
set yrange [-1:1]
set ytics 1
set xlabel 'Time in seconds'
set ylabel 'Amplitude'
set key outside right center reverse Left samplen 2
plot 'waveform.txt' using 1:2:3 with filledcurves linecolor rgb '#a9c4e6' title 'extremes', \
     '' using 1:(-$4):4 with filledcurves linecolor rgb '#2f6db5' title 'RMS'
)",
                    "The waveform: the extremes of each short block and, darker, its RMS.");
    return time[static_cast<std::size_t>(loudest)];
}

void drawSpectrogram(const demo::Recording &voice, double loudest, demo::Section &section)
{
    const demo::Spectrogram frames = demo::spectrogramOf(voice, order, hop);
    const std::string plot =
        demo::format("set yrange [0:%g]\n", 0.0005 * voice.rate) + "plot " +
        section.grid("spectrogram.bin", frames.levels, frames.frames, frames.firstTime,
                     frames.timeStep, 0.0, 0.001 * frames.frequencyStep) +
        " with image\n";

    const int n = static_cast<int>(voice.samples.size());
    section.picture("spectrogram", 1600, 560,
                    demo::spectrogramAxes + demo::format("set xrange [0:%g]\n", n / voice.rate) +
                        plot,
                    "The spectrogram: a Hann window of 256 samples every 64 samples, and a real "
                    "transform of each.");

    // A second and a half around the loudest moment.
    const int from = std::max(0, static_cast<int>((loudest - 0.75) * voice.rate));
    const int to = std::min(n, static_cast<int>((loudest + 0.75) * voice.rate));
    std::vector<double> time, amplitude;
    for (int i = from; i < to; ++i) {
        time.push_back(i / voice.rate);
        amplitude.push_back(voice.samples[static_cast<std::size_t>(i)]);
    }
    section.data("closeup.txt", "time/s amplitude", {time, amplitude});
    section.picture("closeup", 1600, 800,
                    demo::spectrogramAxes +
                        demo::format("set xrange [%g:%g]\n", from / voice.rate, to / voice.rate) +
                        R"(
set multiplot
set bmargin at screen 0.12
set tmargin at screen 0.68
)" + plot + R"(
set bmargin at screen 0.72
set tmargin at screen 0.97
set yrange [-1:1]
set ytics 1
set grid
set format x ''
unset xlabel
set ylabel 'Amplitude'
plot 'closeup.txt' using 1:2 with lines linewidth 1 linecolor rgb '#2f6db5'
unset multiplot
)",
                    "A second and a half around the loudest moment: the lines are the harmonics of "
                    "the voice, bent by its melody.");
}

void chapter(const std::string &input, const std::string &output)
{
    // Every thread starts in mode 0, in which a failed call ends the process.
    rvxSetErrMode(1);

    const demo::Recording voice = demo::readRecording(input, frameLen);
    demo::Section section(output, "spectrogram", "A voice and its spectrum");
    section.text("What level a recording has, what it looks like, and which frequencies it holds "
                 "when. Levels are relative to full scale: a sine of full scale has a peak of "
                 "0 dBFS and an RMS of \u22123 dBFS.");
    describeLevel(voice, section);
    const double loudest = drawWaveform(voice, section);
    drawSpectrogram(voice, loudest, section);
    section.finish();
}

} // namespace

int main(int argc, char **argv)
{
    return demo::runChapter(argc, argv, "spectrogram", chapter);
}
