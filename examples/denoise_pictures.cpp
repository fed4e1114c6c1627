// The pictures of the chapter on noise taken out by wavelets.

#include "denoise.h"

#include <cstddef>
#include <string>

namespace denoise {
namespace {

using demo::panel;
using demo::ramp;

// The same line for the same thing in every picture.
constexpr const char *styles = R"(
set style line 1 linewidth 2 linecolor rgb '#2f6db5' # symlet
set style line 2 linewidth 2 linecolor rgb '#d9532c' # Haar
set style line 3 linewidth 2 linecolor rgb '#7a4fa3' # Daubechies
set style line 4 linewidth 2 linecolor rgb '#e08a3c' # coiflet
set style line 5 linewidth 2 linecolor rgb '#3d8f5f' # spline
set style line 6 linewidth 1.2 linecolor rgb '#8d96a3' # with noise
set style line 7 linewidth 6 linecolor rgb '#f0c49a' # as recorded
set style line 8 linewidth 2 linecolor rgb '#4a5158' # low-pass
set style line 9 linewidth 1.5 dashtype 2 linecolor rgb '#d9532c' # thresholds
)";

// Names beside lines, in the lines' colours.
constexpr const char *colours = R"(
blue = '#2f6db5'
red = '#d9532c'
violet = '#7a4fa3'
orange = '#c0701f'
green = '#3d8f5f'
grey = '#5a626c'
)";

constexpr double firstTime = 18.0, windowFrom = 24.0, windowTo = 27.0; // s

Signal times()
{
    return ramp(pieceLen, firstTime, 1.0 / rate);
}

std::string name(int level)
{
    const double top = rate / (1 << level);
    if (level == approximation)
        return demo::format("approximation: 0 to %.3g Hz", top);
    return demo::format("level %d: %.3g to %.3g Hz", level, 0.5 * top, top);
}

// Panels one below the other, the last one with the time.
std::string row(int index, int count)
{
    const double height = 0.925 / count, top = 0.99 - height * index;
    return panel(0.07, 0.985, top - height + 0.012, top) +
           (index == count - 1 ? "set format x '%g'\nset xlabel 'Time in seconds' offset 0,0.3\n"
                               : "set format x ''\n");
}

std::string window()
{
    return demo::format("set xrange [%g:%g]\n", windowFrom, windowTo);
}

} // namespace

void drawTraces(const Example &e, demo::Section &section)
{
    const Signal &wavelets = e.denoised[leastRisk][symlet];
    const Signal &smooth = e.denoised[universal][symlet];
    section.data("piece.txt",
                 "time/s piece with-noise low-pass symlet symlet-universal Haar Haar-universal "
                 "(mV)",
                 {times(), e.piece, e.noisy, e.lowPass, wavelets, smooth,
                  e.denoised[leastRisk][haar], e.denoised[universal][haar]});

    std::string script = std::string(styles) + window() + R"(
set yrange [-1.2:2.9]
set ytics 1
set ylabel 'mV'
set key top left horizontal Left reverse samplen 1.5
set multiplot
)";
    const struct {
        const char *title;
        int column, style;
        const Signal &signal;
    } traces[] = {{"with noise", 3, 6, e.noisy},
                  {"low-pass, 40 Hz", 4, 8, e.lowPass},
                  {"symlet, universal threshold", 6, 1, smooth},
                  {"symlet, thresholds of the least risk", 5, 1, wavelets}};
    int index = 0;
    for (const auto &trace : traces) {
        script += row(index, 4) +
                  demo::format("plot 'piece.txt' using 1:2 with lines linestyle 7 title '%s', "
                               "'' using 1:%d with lines linestyle %d title '%s: %.1f dB'\n",
                               index == 0 ? "recorded" : "", trace.column, trace.style, trace.title,
                               ratioOf(e.piece, trace.signal));
        ++index;
    }
    section.picture("traces", 1600, 950, script + "unset multiplot\n",
                    "Three seconds with noise, and what is made of them. The low-pass leaves the "
                    "noise that is in its band; one threshold for all levels takes the peaks down; "
                    "those chosen level by level keep them.");
}

void drawCurves(const std::vector<Bank> &banks, const Curves &c, double ownRatio,
                demo::Section &section)
{
    std::vector<Signal> columns{c.before, c.lowPass};
    for (const auto &after : c.after)
        columns.insert(columns.end(), after.begin(), after.end());
    std::string names;
    for (const Bank &bank : banks)
        names += " " + bank.name;
    section.data("ratios.txt",
                 "before low-pass and with universal thresholds" + names +
                     " and with those of the least risk (dB)",
                 columns);
    columns.assign({c.added});
    columns.insert(columns.end(), c.estimated.begin(), c.estimated.end());
    section.data("noise.txt", "added" + names + " (mV)", columns);

    section.picture("ratios", 1600, 700,
                    std::string(styles) + colours + demo::format("own = %.3g\n", ownRatio) + R"(
unset key
set xrange [0:42]
set xtics 6
set xlabel 'Signal over noise before, in dB'
set title offset 0,-0.5 textcolor rgb '#30343a'
set multiplot
set title 'signal over noise after, in dB'
set yrange [0:48]
set ytics 6
set label 'as before' at 3,1.5 textcolor rgb grey
set label 'own noise of the recording' at 1,own+1.3 textcolor rgb grey
set label 'low-pass, 40 Hz' at 41,20.3 right textcolor rgb '#4a5158'
set label 'symlet, least risk' at 19,30 right textcolor rgb blue
set label 'universal' at 20,13 textcolor rgb blue
)" + panel(0.045, 0.325, 0.13, 0.93) +
                        R"(
plot x with lines linewidth 1.5 dashtype 2 linecolor rgb '#8d96a3', \
     own with lines linewidth 1.5 dashtype 3 linecolor rgb '#8d96a3', \
     'ratios.txt' using 1:2 with lines linestyle 8, \
     '' using 1:5 with lines linestyle 1 dashtype 4, \
     '' using 1:10 with lines linestyle 1
unset label
set title 'gained by the banks, in dB'
set yrange [-20:12]
set ytics 4
set key bottom left Left reverse samplen 1.5
)" + panel(0.375, 0.655, 0.13, 0.93) +
                        R"(
plot 0 with lines linewidth 1.5 dashtype 2 linecolor rgb '#8d96a3' notitle, \
     'ratios.txt' using 1:($3-$1) with lines linestyle 2 dashtype 4 notitle, \
     '' using 1:($4-$1) with lines linestyle 3 dashtype 4 notitle, \
     '' using 1:($6-$1) with lines linestyle 4 dashtype 4 notitle, \
     '' using 1:($7-$1) with lines linestyle 5 dashtype 4 notitle, \
     '' using 1:($5-$1) with lines linestyle 1 dashtype 4 notitle, \
     '' using 1:($10-$1) with lines linestyle 1 title 'Symlet 8', \
     '' using 1:($11-$1) with lines linestyle 4 title 'Coiflet 2', \
     '' using 1:($9-$1) with lines linestyle 3 title 'Daubechies 4', \
     '' using 1:($12-$1) with lines linestyle 5 title 'Spline 2, 4', \
     '' using 1:($8-$1) with lines linestyle 2 title 'Haar'
unset key
set title "noise estimated, in \302\265V"
set logscale xy
set xrange [4:500]
set yrange [4:500]
set xtics (5,10,20,50,100,200,500)
set ytics (5,10,20,50,100,200,500)
set xlabel "Noise added, in \302\265V"
)" + panel(0.705, 0.98, 0.13, 0.93) +
                        R"(
plot x with lines linewidth 1.5 dashtype 2 linecolor rgb '#8d96a3', \
     for [i=1:5] 'noise.txt' using (1000*$1):(1000*column(i+1)) with lines \
        linestyle word("2 3 1 4 5", i)+0
unset multiplot
)",
                    "Left, how far the signal is above its error before and after. Middle, what "
                    "each bank gains, with thresholds of the least risk and, dashed, universal "
                    "ones. Right, the noise as the finest level shows it.");
}

void drawThresholds(const Example &e, demo::Section &section)
{
    std::vector<Signal> columns{e.risks[0].thresholds};
    for (const Risk &risk : e.risks) {
        columns.push_back(risk.measured);
        columns.push_back(risk.estimated);
    }
    section.data("risks.txt", "threshold, and of levels 1 to 6 the error measured and estimated",
                 columns);
    Signal chosen, expected;
    std::string labels;
    for (const Risk &risk : e.risks) {
        chosen.push_back(risk.chosen);
        expected.push_back(risk.expected);
        labels += demo::format("set label 'level %d' at graph 1.01, first %g textcolor rgb grey\n",
                               static_cast<int>(chosen.size()), risk.estimated.back());
    }
    section.data("thresholds.txt", "level threshold error-estimated",
                 {ramp(levels, 1.0, 1.0), chosen, expected});

    const Signal in = ramp(121, -3.0, 0.05), out = softened(in, 1.0);
    section.data("soft.txt", "in out", {in, out});

    section.picture("thresholds", 1600, 620, std::string(styles) + colours + R"(
unset key
set title offset 0,-0.5 textcolor rgb '#30343a'
set multiplot
set xrange [-3:3]
set yrange [-3:3]
set ytics 1
set title 'a soft threshold of 1'
set xlabel 'Before'
set label 'clipped' at -2.9,-0.75 textcolor rgb red
set label 'the rest' at 1.5,0.2 textcolor rgb blue
)" + panel(0.045, 0.315, 0.15, 0.92) + R"(
plot x with lines linewidth 1.5 dashtype 2 linecolor rgb '#8d96a3', \
     'soft.txt' using 1:($1-$2) with lines linestyle 9, \
     '' with lines linestyle 1
unset label
set xrange [0:4.5]
set xlabel 'Threshold in parts of the noise'
set logscale y
set yrange [0.006:30]
set ytics (0.01,0.03,0.1,0.3,1,3,10,30)
set title 'mean square of the error, in parts of that of the noise'
)" + panel(0.385, 0.925, 0.15, 0.92) + labels + R"(
plot for [i=1:6] 'risks.txt' using 1:(column(2*i)) with lines linewidth 6 \
        linecolor rgb '#d5dae1', \
     for [i=1:6] 'risks.txt' using 1:(column(2*i+1)) with lines linestyle 1, \
     'thresholds.txt' using 2:3 with points pointtype 7 pointsize 1.3 linecolor rgb red
unset multiplot
)",
                    "Left, a soft threshold: what is left when the clipped signal is subtracted. "
                    "Right, the error of the details of each level behind a threshold: pale, as "
                    "measured; blue, as estimated without knowing the signal; the points are the "
                    "thresholds taken. The universal one is 4.25.");
}

void drawParts(const Example &e, demo::Section &section)
{
    std::vector<Signal> columns{times()};
    for (std::size_t i = 0; i < e.parts.size(); ++i) {
        columns.push_back(e.parts[i]);
        columns.push_back(e.cleanParts[i]);
    }
    section.data("parts.txt",
                 "time/s, and of levels 1 to 6 and of the approximation the part of the piece "
                 "with noise and what the threshold leaves of it (mV)",
                 columns);

    std::string script = std::string(styles) + window() + R"(
set yrange [-1.15:1.6]
set ytics 1
set ylabel 'mV'
set key top left horizontal Left reverse samplen 1.5
set multiplot
)";
    for (int level = 1; level <= approximation; ++level)
        script += row(level - 1, approximation) +
                  demo::format("set label 1 '%s' at graph 0.99, graph 0.88 right front textcolor "
                               "rgb '#30343a'\n"
                               "plot 'parts.txt' using 1:%d with lines linestyle 6 title %s, "
                               "'' using 1:%d with lines linestyle 1 title %s\n",
                               name(level).c_str(), 2 * level, level == 1 ? "'with noise'" : "''",
                               2 * level + 1, level == 1 ? "'behind the threshold'" : "''");
    section.picture(
        "parts", 1600, 1100, script + "unset multiplot\n",
        "The details themselves, each at its time and in the units of the samples. Dashed, "
        "the threshold of the level; blue, what is left. The coarser the level, the "
        "fewer values there are and the more a beat stands out.");
}

void drawDetails(const Example &e, demo::Section &section)
{
    std::vector<Signal> columns{times()};
    for (std::size_t i = 0; i < e.details.size(); ++i) {
        columns.push_back(e.details[i]);
        columns.push_back(e.cleanedDetails[i]);
    }
    section.data("details.txt",
                 "time/s, and of levels 1 to 6 the details and what the threshold leaves (mV)",
                 columns);
    std::string script = std::string(styles) + window() + R"(
unset key
set label 2 'mV' at screen 0.014, graph 0.5 center rotate textcolor rgb '#30343a'
set multiplot
)";
    const double scales[levels] = {0.5, 0.5, 2.0, 4.0, 4.0, 4.0};
    for (int level = 1; level <= levels; ++level) {
        const double scale = scales[level - 1];
        script += row(level - 1, levels) +
                  demo::format("t = %g\nset yrange [%g:%g]\nset ytics %g,%g,%g\n",
                               e.thresholds[static_cast<std::size_t>(level - 1)], -scale, scale,
                               -0.5 * scale, 0.5 * scale, 0.5 * scale) +
                  demo::format("set label 1 'level %d, every %d samples' at graph 0.99, graph 0.88 "
                               "right front textcolor rgb '#30343a'\n"
                               "plot 'details.txt' using 1:%d with impulses linestyle 6, "
                               "'' using 1:%d with impulses linestyle 1 linewidth 3, "
                               "t with lines linestyle 9, -t with lines linestyle 9\n",
                               level, 1 << level, 2 * level, 2 * level + 1);
    }
    section.picture(
        "details", 1600, 1150, script + "unset multiplot\n",
        "The details themselves, each at its time and in the units of the samples. Dashed, "
        "the threshold of the level; blue, what is left. The coarser the level, the "
        "fewer values there are and the more a beat stands out.");
}

} // namespace denoise
