// The pictures of the chapter on dialling tones.

#include "dial.h"

#include <cmath>
#include <string>

#include "rvx.h"
#include "support/spectrogram.h"
#include "support/spectrum.h"
#include "support/status.h"

namespace dial {
namespace {

using demo::panel;

// The same colours for the frequencies of each group, from low to high.
constexpr const char *colours = R"(
array tone[8] = ['#12365f', '#2f6db5', '#7a4fa3', '#d9532c', \
                 '#12365f', '#2f6db5', '#7a4fa3', '#d9532c']
array hertz[8] = [697, 770, 852, 941, 1209, 1336, 1477, 1633]
grey = '#5a626c'
)";

// A key over the middle of each tone, in a line of the picture.
std::string keysAt(const std::string &keys, const Signal &times, double height,
                   const std::string &colour)
{
    std::string labels;
    for (std::size_t i = 0; i < keys.size(); ++i)
        labels += demo::format("set label '%c' at first %.6g, graph %g center textcolor rgb '%s'\n",
                               keys[i], times[i], height, colour.c_str());
    return labels;
}

double timeIn(const Mix &mix, double samples, const Timing &timing)
{
    return mix.start + samples / timing.rate;
}

// The middles of the tones.
Signal timesDialled(const Mix &mix, const Timing &timing)
{
    return demo::ramp(mix.keys.size(), timeIn(mix, mix.firstTone + 0.5 * timing.toneLen, timing),
                      timing.slot() / timing.rate);
}

// Pale bands while the tones sound.
std::string bands(const Mix &mix, const Timing &timing)
{
    const double half = 0.5 * timing.toneLen / timing.rate;
    std::string objects;
    for (const double time : timesDialled(mix, timing))
        objects += demo::format("set object rectangle from first %.6g, graph 0 to first %.6g, "
                                "graph 1 behind fillcolor rgb '#eceff3' fillstyle solid noborder\n",
                                time - half, time + half);
    return objects;
}

std::string timeAxis(double from, double to)
{
    return demo::format("set xrange [%.6g:%.6g]\nset xlabel 'Time in seconds'\n", from, to);
}

} // namespace

void drawMix(const Mix &mix, const std::vector<Digit> &digits, const Timing &timing,
             demo::Section &section)
{
    section.data("mix.txt", "time/s dialled voice mix",
                 {demo::ramp(mix.samples.size(), mix.start, 1.0 / timing.rate), mix.dialled,
                  mix.voice, mix.samples});

    Signal times;
    for (const Digit &digit : digits)
        times.push_back(timeIn(mix, digit.time, timing));
    const int hop = static_cast<int>(std::lround(0.004 * timing.rate));
    int order = 0;
    while (1 << order < 0.03 * timing.rate)
        ++order;
    const demo::Spectrogram frames = demo::spectrogramOf({mix.samples, timing.rate}, order, hop);
    const double first = mix.start + frames.firstTime;
    section.picture(
        "mix", 1600, 760,
        std::string(demo::spectrogramAxes) +
            timeAxis(first, first + frames.timeStep * (frames.frames - 1)) +
            keysAt(mix.keys, timesDialled(mix, timing), 1.105, "#30343a") +
            keysAt(keysOf(digits), times, 1.04, "#d9532c") + R"(
set label 'dialled' at graph 1.01, graph 1.105 textcolor rgb '#30343a'
set label 'decoded' at graph 1.01, graph 1.04 textcolor rgb '#d9532c'
set tmargin at screen 0.88
set bmargin at screen 0.1
set yrange [0:2000]
set ytics (0, 500, 697, 770, 852, 941, 1209, 1336, 1477, 1633, 2000)
set ylabel 'Frequency in Hz' offset 1,0
set cbrange [-70:-15]
set cbtics 10
plot )" +
            section.grid("spectrogram.bin", frames.levels, frames.frames, first, frames.timeStep,
                         0.0, frames.frequencyStep) +
            " with image\n",
        "Sixteen digits in the voice and in noise: each is a row's tone and a column's. What was "
        "decoded stands at the first block that said it.");
}

void drawLevels(const Mix &mix, const std::vector<Block> &blocks, const Timing &timing,
                demo::Section &section)
{
    std::vector<Signal> columns(tones + 3);
    std::vector<Signal> powers(tones);
    for (const Block &block : blocks) {
        columns[0].push_back(timeIn(mix, block.time, timing));
        const double row = rvxdMax(block.powers.data(), groupLen);
        const double column = rvxdMax(block.powers.data() + groupLen, groupLen);
        columns[tones + 1].push_back(block.power > 0.0 ? (row + column) / block.power : 0.0);
        const char key = keyOf(block, {});
        columns[tones + 2].push_back(
            key == '\0' ? -1.0 : static_cast<double>(std::string(keypad).find(key)));
        for (std::size_t i = 0; i < tones; ++i)
            powers[i].push_back(2.0 * block.powers[i]); // squares of amplitudes
    }
    for (std::size_t i = 0; i < tones; ++i)
        columns[i + 1] = demo::levelsOf(powers[i]);
    demo::requireSuccess("levels");
    section.data("levels.txt", "time/s 697 770 852 941 1209 1336 1477 1633 (Hz, dBFS) share key",
                 columns);

    const std::string lines = R"(
plot for [i=first:first+3] 'levels.txt' using 1:(column(i+1)) with histeps linewidth 1.8 \
        linecolor rgb tone[i], \
     -40 with lines dashtype 2 linecolor rgb grey
)";
    const auto names = [](int first) {
        std::string labels;
        for (int i = first; i < first + groupLen; ++i)
            labels += demo::format("set label %d sprintf('%%d Hz', hertz[%d]) at graph 1.01, "
                                   "graph %g textcolor rgb tone[%d]\n",
                                   100 + i - first, i, 0.6 + 0.11 * (i - first), i);
        return labels;
    };
    section.picture("levels", 1600, 900,
                    std::string(colours) + timeAxis(columns[0].front(), columns[0].back()) +
                        bands(mix, timing) + R"(
unset key
set grid noxtics
set multiplot
set yrange [-50:-8]
set ytics 10
set ylabel 'Level in dBFS' offset 1,0
unset xlabel
set format x ''
set label 'columns' at graph 1.01, graph 0.4 textcolor rgb grey
)" + keysAt(mix.keys, timesDialled(mix, timing), 1.05, "#30343a") +
                        names(5) + panel(0.06, 0.91, 0.655, 0.955) + "first = 5\n" + lines + R"(
unset label
set label 'rows' at graph 1.01, graph 0.4 textcolor rgb grey
)" + names(1) + panel(0.06, 0.91, 0.325, 0.625) +
                        "first = 1\n" + lines + R"(
unset label
set format x '%g'
set xlabel 'Time in seconds' textcolor rgb '#30343a'
set yrange [0:1.05]
set ytics 0.25
set ylabel 'Share' offset 0.2,0
)" + demo::format("limit = %g\n", Limits{}.share) +
                        panel(0.06, 0.91, 0.085, 0.295) + R"(
set label 'enough' at graph 1.01, first limit textcolor rgb grey
plot 'levels.txt' using 1:10 with histeps linewidth 1.8 linecolor rgb '#c0c6ce', \
     '' using 1:($11 < 0 ? NaN : $10) with points pointtype 7 pointsize 0.9 \
        linecolor rgb '#2f6db5', \
     limit with lines dashtype 2 linecolor rgb grey
unset multiplot
)",
                    "The levels of the eight tones, block after block, and what part of the "
                    "block's power the strongest two are. Dots: blocks that say a key. Grey: while "
                    "the tones sound.");
}

void drawResponse(const Timing &timing, demo::Section &section)
{
    std::vector<Signal> columns(tones + 1);
    for (int frequency = 600; frequency <= 1800; frequency += 2) {
        const auto levels = levelsOfTone(frequency, timing);
        columns[0].push_back(frequency);
        for (std::size_t i = 0; i < tones; ++i)
            columns[i + 1].push_back(levels[i]);
    }
    section.data("response.txt", "frequency/Hz, and what the eight tones make of it in dB",
                 columns);
    section.picture("response", 1600, 560,
                    std::string(colours) + R"(
unset key
set xrange [600:1800]
set xtics 200
set yrange [-30:3]
set ytics 10
set xlabel 'Frequency in Hz'
set ylabel 'Level in dB'
do for [i=1:8] {
    set object rectangle from first hertz[i]*0.982, graph 0 to first hertz[i]*1.018, graph 1 \
        behind fillcolor rgb '#eceff3' fillstyle solid noborder
    set label sprintf('%d', hertz[i]) at first hertz[i], graph 1.04 center textcolor rgb tone[i]
}
)" + panel(0.06, 0.975, 0.16, 0.93) +
                        R"(
plot for [i=1:8] 'response.txt' using 1:(column(i+1)) with lines linewidth 2 linecolor rgb tone[i]
)",
                    "What each of the eight makes of a lone tone of any frequency. Grey: as far as "
                    "a telephone's tones may be off, 1.8 % (ITU-T Q.23).");
}

void drawRates(const Rates &rates, demo::Section &section)
{
    std::vector<Signal> columns{rates.ratios};
    columns.insert(columns.end(), rates.right.begin(), rates.right.end());
    columns.insert(columns.end(), rates.wrong.begin(), rates.wrong.end());
    section.data("rates.txt",
                 "ratio/dB right/% alone, in the voice, any two tones alone, in the voice; wrong/% "
                 "so",
                 columns);
    const double share = Limits{}.share;
    section.picture(
        "rates", 1600, 620,
        demo::format("edge = %g\n", 10.0 * std::log10(share / (1.0 - share))) +
            demo::format("set xrange [%g:%g]\n", rates.ratios.front(), rates.ratios.back()) + R"(
blue = '#2f6db5'
red = '#d9532c'
set xtics 3
set xlabel 'Tones over noise in dB'
set title offset 0,-0.5 textcolor rgb '#30343a'
set multiplot
set yrange [0:104]
set ytics 20
set ylabel '% of the digits dialled' offset 1,0
set title 'found'
set key bottom right Left reverse samplen 2.5
set arrow from first edge, graph 0 to first edge, graph 1 nohead dashtype 2 linecolor rgb '#5a626c'
)" +
            demo::format(
                "set label 'tones are %g %%' at first edge-0.2, graph 0.55 right textcolor rgb "
                "'#5a626c'\nset label 'of the power' at first edge-0.2, graph 0.49 right "
                "textcolor rgb '#5a626c'\n",
                100.0 * share) +
            panel(0.06, 0.485, 0.14, 0.93) + R"(
plot 'rates.txt' using 1:4 with lines linewidth 6 linecolor rgb '#c4d6ec' title 'any two tones', \
     '' using 1:5 with lines linewidth 2 dashtype 2 linecolor rgb '#f0b49f' \
        title 'any two tones, in the voice', \
     '' using 1:2 with linespoints linewidth 2 pointtype 7 linecolor rgb blue title 'decoder', \
     '' using 1:3 with linespoints linewidth 2 pointtype 7 linecolor rgb red \
        title 'decoder, in the voice'
unset label
unset arrow
set yrange [-0.1:3<*]
set ytics 1
set title 'not dialled, but found'
set key top right
)" + panel(0.565, 0.985, 0.14, 0.93) +
            R"(
plot 'rates.txt' using 1:8 with linespoints linewidth 2 pointtype 7 linecolor rgb '#9fbfe6' \
        title 'any two tones', \
     '' using 1:9 with linespoints linewidth 2 pointtype 7 linecolor rgb '#f0b49f' \
        title 'any two tones, in the voice', \
     '' using 1:6 with linespoints linewidth 2 pointtype 7 linecolor rgb blue title 'decoder', \
     '' using 1:7 with linespoints linewidth 2 pointtype 7 linecolor rgb red \
        title 'decoder, in the voice'
unset multiplot
)",
        "How many digits are found in noise, with and without the voice 10 dB below them, and how "
        "many that nobody dialled. Pale: without limits on what two tones must be like.");
}

} // namespace dial
