// The pictures of the telephone's chapter.

#include "phone.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <string>
#include <utility>

#include "rvx.h"
#include "support/spectrum.h"
#include "support/status.h"

namespace phone {
namespace {

using demo::panel;
using demo::ramp;

// The same line for the same thing in every picture. A dash stands for theory.
constexpr const char *styles = R"(
set style line 1 linewidth 2 linecolor rgb '#2f6db5' # A-law
set style line 2 linewidth 2 linecolor rgb '#7a4fa3' # mu-law
set style line 3 linewidth 2 linecolor rgb '#d9532c' # 8 bits
set style line 4 linewidth 2 linecolor rgb '#e08a3c' # 16 bits
set style line 5 linewidth 2 linecolor rgb '#12365f' # 32 bits
set style line 6 linewidth 2 linecolor rgb '#8d96a3' # the voice
set style line 7 linewidth 7 linecolor rgb '#d5dae1' # theory, on which another line lies
set style line 8 linewidth 2 dashtype 2 linecolor rgb '#5a626c' # theory
)";

// Names beside lines, in the lines' colours.
constexpr const char *colours = R"(
blue = '#2f6db5'
violet = '#7a4fa3'
red = '#d9532c'
orange = '#c0701f'
dark = '#12365f'
grey = '#5a626c'
)";

// Per Hz, in dB.
Signal densityLevels(const Signal &x, double samplesPerSecond)
{
    return demo::levelsOf(demo::spectrumOf(x, samplesPerSecond, 0).density);
}

Signal errorOf(const Signal &x, const Signal &y)
{
    Signal error(x.size());
    rvxdbSub3(y.data(), x.data(), error.data(), static_cast<int>(error.size()));
    demo::requireSuccess("error");
    return error;
}

constexpr int quietLen = lineRate / 40; // 25 ms

// Where a block's peak is about two of the 256 steps of 8 bits. Of all such blocks the smoothest:
// that is a voice rather than a hiss. -1 if there is none.
int quietStart(const Signal &line)
{
    int found = -1;
    double smoothest = 1.0;
    for (int start = 0; start + quietLen <= static_cast<int>(line.size()); start += quietLen) {
        const double *x = line.data() + start;
        const double steps = 128.0 * rvxdNorm(x, nullptr, quietLen, RVX_NORM_C);
        const double change = rvxdNorm(x + 1, x, quietLen - 1, RVX_NORM_L2 | RVX_NORM_RELATIVE);
        if (steps > 1.5 && steps < 2.5 && change < smoothest) {
            smoothest = change;
            found = start;
        }
    }
    demo::requireSuccess("quiet moment");
    return found;
}

} // namespace

void drawSpectra(const demo::Recording &voice, const Signal &line,
                 const std::vector<Signal> &returned, demo::Section &section)
{
    std::vector<Signal> columns{{}, densityLevels(line, lineRate)};
    for (const Signal &y : returned)
        columns.push_back(densityLevels(errorOf(line, y), lineRate));
    const auto bins = columns[1].size();
    columns[0] = ramp(bins, 0.0, 0.5 * lineRate / static_cast<double>(bins - 1));
    section.data("spectra.txt", "frequency/Hz line A-law mu-law 8-bits 16-bits 32-bits (dBFS/Hz)",
                 columns);
    const Signal recorded = densityLevels(voice.samples, voice.rate);
    section.data(
        "spectrum-recorded.txt", "frequency/Hz recorded/(dBFS/Hz)",
        {ramp(recorded.size(), 0.0, 0.5 * voice.rate / static_cast<double>(recorded.size() - 1)),
         recorded});

    section.picture("spectra", 1600, 700, std::string(styles) + colours + R"(
set xrange [0:4000]
set xtics 500
set yrange [-150:-30]
set ytics 20
set xlabel 'Frequency in Hz'
set ylabel 'Level in dBFS per Hz'
unset key
theory(bits) = -20*log10(2)*bits - 10*log10(3) - 10*log10(4000)
set label 'as recorded' at 3620,-66 center textcolor rgb grey
set label 'on the line' at 640,-47 textcolor rgb '#2a2f36'
set label 'error of' at graph 1.01, first -82 textcolor rgb grey
set label '8 bits' at graph 1.01, first theory(8) textcolor rgb red
set label "A-law, \316\274-law" at graph 1.01, first -94.6 textcolor rgb blue
set label '16 bits' at graph 1.01, first theory(16) textcolor rgb orange
set label 'dashed: even steps, by theory' at 2500,theory(16)+5 center front textcolor rgb grey
)" + panel(0.07, 0.88, 0.13, 0.97) + R"(
plot 'spectrum-recorded.txt' with filledcurves x1 fillcolor rgb '#e3e6ea', \
     'spectra.txt' using 1:2 with lines linewidth 2 linecolor rgb '#4a5158', \
     '' using 1:5 with lines linestyle 3, \
     '' using 1:4 with lines linestyle 2, \
     '' using 1:3 with lines linestyle 1, \
     '' using 1:6 with lines linestyle 4, \
     theory(8) with lines linestyle 8, \
     theory(16) with lines linestyle 8
)",
                    "The voice as recorded (grey), what the line carries of it, and the errors of "
                    "the formats, which are noise of the same strength at all frequencies. The "
                    "same 8 bits make less of it by the laws than in even steps.");
}

void drawRatios(const Curves &sine, const Curves &voice, demo::Section &section)
{
    for (const auto &[name, curves] : {std::pair<std::string, const Curves &>{"sine", sine},
                                       std::pair<std::string, const Curves &>{"voice", voice}}) {
        std::vector<Signal> columns{curves.levels};
        columns.insert(columns.end(), curves.measured.begin(), curves.measured.end());
        columns.insert(columns.end(), curves.theory.begin(), curves.theory.end());
        section.data("ratios-" + name + ".txt",
                     "peak/dBFS A-law mu-law 8-bits 16-bits 32-bits (dB), and so by theory",
                     columns);
    }

    const std::string curves = R"(
plot for [i=7:11] file using 1:i with lines linestyle 7, \
     for [i=4:0:-1] file using 1:(column(i+2)) with lines linestyle i+1
unset label
)";
    section.picture(
        "ratios", 1600, 700,
        std::string(styles) + colours + R"(
set xrange [-60:0]
set xtics 20
set mxtics 2
set xlabel 'Peak in dBFS'
unset key
set title offset 0,-0.5 textcolor rgb '#30343a'
set multiplot
file = 'ratios-sine.txt'
set yrange [0:200]
set ytics 20
set ylabel 'Signal over noise in dB' offset 1.5,0
set title 'a sine'
set label '32 bits' at -50,152 right textcolor rgb dark
set label '16 bits' at -36,71 right textcolor rgb orange
set label 'the laws' at -59,6 textcolor rgb blue
set label '8 bits' at -20,20 textcolor rgb red
)" + panel(0.055, 0.335, 0.13, 0.93) +
            curves + R"(
unset ylabel
set yrange [0:52]
set ytics 10
set title 'a sine, nearer'
set label '16 bits' at -50,44 textcolor rgb orange
set label "\316\274-law" at -50,32 right textcolor rgb violet
set label 'A-law' at -46,23 textcolor rgb blue
set label '8 bits' at -19,26 textcolor rgb red
)" + panel(0.385, 0.665, 0.13, 0.93) +
            curves + R"(
file = 'ratios-voice.txt'
set title 'the voice'
set label '16 bits' at -44,44 right textcolor rgb orange
set label "\316\274-law" at -40,28 right textcolor rgb violet
set label 'A-law' at -36,16 textcolor rgb blue
set label '8 bits' at -13,18 textcolor rgb red
)" + panel(0.71, 0.99, 0.13, 0.93) +
            curves + R"(
unset multiplot
)",
        "How far a sine and the voice are over the noise, from loud (right) to quiet: "
        "with even steps each dB costs a dB, while the laws hold what they have down to "
        "about \u221235 dBFS. Pale: theory.");
}

void drawLoudness(const Loudness &loudness, demo::Section &section)
{
    std::vector<Signal> columns{ramp(loudness.voice.size(), 0.5 * loudness.step, loudness.step),
                                loudness.voice};
    columns.insert(columns.end(), loudness.errors.begin(), loudness.errors.end());
    section.data("loudness.txt", "time/s voice A-law mu-law 8-bits 16-bits 32-bits (dBFS)",
                 columns);
    const double end = loudness.step * static_cast<double>(loudness.voice.size());
    const double from = std::min(7.5, std::max(0.0, end - 5.0));
    section.picture("loudness", 1600, 640,
                    std::string(styles) + colours +
                        demo::format("set xrange [%g:%g]\n", from, std::min(end, from + 5.0)) + R"(
set yrange [-120:0]
set ytics 20
set xlabel 'Time in seconds'
set ylabel 'Level in dBFS'
unset key
set label 'the voice' at graph 1.01, first -28 textcolor rgb grey
set label 'error of' at graph 1.01, first -45 textcolor rgb grey
set label '8 bits' at graph 1.01, first -53 textcolor rgb red
set label "\316\274-law" at graph 1.01, first -82 textcolor rgb violet
set label 'A-law' at graph 1.01, first -75 textcolor rgb blue
set label '16 bits' at graph 1.01, first -101 textcolor rgb orange
)" + panel(0.07, 0.88, 0.14, 0.97) +
                        R"(
plot 'loudness.txt' using 1:2 with filledcurves x1 fillcolor rgb '#e3e6ea', \
     '' using 1:2 with lines linestyle 6, \
     '' using 1:5 with lines linestyle 3, \
     '' using 1:4 with lines linestyle 2, \
     '' using 1:3 with lines linestyle 1, \
     '' using 1:6 with lines linestyle 4
)",
                    "How loud the voice and the errors are, every 20 ms. In even steps the noise "
                    "stays where it is, and quiet sounds drown; by the laws it goes up and down "
                    "with the voice.");
}

void drawQuiet(const Signal &line, const std::vector<Signal> &returned, demo::Section &section)
{
    section.data("line.txt", "time/s line A-law mu-law 8-bits 16-bits",
                 {ramp(line.size(), 0.0, 1.0 / lineRate), line, returned[aLaw], returned[muLaw],
                  returned[bits8], returned[bits16]});
    const int quiet = quietStart(line);
    if (quiet < 0)
        return;
    section.picture(
        "quiet", 1600, 480,
        std::string(styles) + colours +
            demo::format("moment = 'every ::%d::%d'\n", quiet, quiet + quietLen - 1) +
            demo::format("set label 1 'at %.2f s' at graph 0.02, graph 0.92 textcolor rgb grey\n",
                         static_cast<double>(quiet) / lineRate) +
            R"(
set autoscale xfix
set yrange [-2.8:2.8]
set ytics 1
set xlabel 'Time in ms'
set ylabel 'Steps of 8 bits'
set key top right horizontal Right samplen 1.5
)" + panel(0.07, 0.985, 0.18, 0.97) +
            R"(
plot 'line.txt' @moment using ($0*0.125):($2*128) with lines linewidth 9 \
        linecolor rgb '#d5dae1' title 'the voice', \
     '' @moment using ($0*0.125):($5*128) with fsteps linestyle 3 title '8 bits', \
     '' @moment using ($0*0.125):($3*128) with linespoints linestyle 1 pointtype 7 \
        pointsize 0.7 title 'A-law'
)",
        "A quiet moment: of even steps there are too few to tell what it was, the small steps of "
        "A-law follow it.");
}

void drawFrame(const Frame &frame, demo::Section &section)
{
    const Signal error = errorOf(frame.samples, frame.rebuilt);
    section.data("frame.txt", "time/ms samples rebuilt error from-magnitudes",
                 {ramp(frame.samples.size(), 0.0, 1000.0 / lineRate), frame.samples, frame.rebuilt,
                  error, frame.fromMagnitudes});
    const auto bins = frame.magnitudes.size();
    section.data("polar.txt", "frequency/Hz magnitude/dB phase/radians",
                 {ramp(bins, 0.0, 0.5 * lineRate / static_cast<double>(bins - 1)), frame.magnitudes,
                  frame.phases});
    section.picture("frame", 1600, 900, std::string(styles) + R"(
unset key
set title offset 0,-0.5 textcolor rgb '#30343a'
set multiplot
set xrange [0:4000]
set xtics 500
set xlabel 'Frequency in Hz' offset 0,0.3
set ylabel 'Magnitude in dB' offset 0.5,0
set yrange [-80:5]
set ytics 20
set title 'magnitudes'
)" + panel(0.07, 0.485, 0.59, 0.95) + R"(
plot 'polar.txt' using 1:2 with linespoints linestyle 1 pointtype 7 pointsize 0.6
set ylabel "Phase in \317\200" offset 0.5,0
set yrange [-1.1:1.1]
set ytics 0.5
set title 'phases (dark: of magnitudes above -40 dB)'
)" + panel(0.565, 0.975, 0.59, 0.95) + R"(
plot 'polar.txt' using 1:($3/pi) with points pointtype 7 pointsize 0.9 linecolor rgb '#d3c6e0', \
     '' using 1:($2 > -40 ? $3/pi : NaN) with impulses linewidth 1 linecolor rgb '#b59ccf', \
     '' using 1:($2 > -40 ? $3/pi : NaN) with points pointtype 7 pointsize 1 linecolor rgb '#7a4fa3'
set xrange [0:32]
set xtics 8
set xlabel 'Time in ms'
set ylabel 'Amplitude' offset 0.5,0
set yrange [*:*]
set ytics autofreq
set title 'the frame, and from both'
)" + panel(0.07, 0.335, 0.09, 0.44) + R"(
plot 'frame.txt' using 1:2 with lines linestyle 7, '' using 1:3 with lines linestyle 1
unset ylabel
set title 'the difference, in 10^{-16}'
)" + panel(0.39, 0.655, 0.09, 0.44) + R"(
plot 'frame.txt' using 1:($4*1e16) with lines linestyle 3
set title 'from the magnitudes alone'
)" + panel(0.715, 0.975, 0.09, 0.44) + R"(
plot 'frame.txt' using 1:5 with lines linestyle 1
unset multiplot
)",
                    "Above, a frame of 32 ms as magnitudes and phases, counted from its middle. "
                    "Below, what they give together, how far that is from the frame, and what the "
                    "magnitudes give without the phases.");
}

} // namespace phone
