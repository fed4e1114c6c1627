// The pictures of the electrocardiogram's chapter.

#include "ecg.h"

#include <string>

namespace ecg {
namespace {

using demo::panel;
using demo::ramp;

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

std::string row(double bottom, double top)
{
    return panel(0.07, 0.985, bottom, top);
}

} // namespace

void drawSteps(const Steps &s, demo::Section &section)
{
    section.data("steps.txt", "time/s recorded hummed wander level adaptive notched smooth (mV)",
                 {ramp(s.recorded.size(), 0.0, 1.0 / rate), s.recorded, s.hummed, s.wander, s.level,
                  s.adaptive, s.notched, s.smooth});
    section.data("resampled.txt", "time/s resampled/mV",
                 {ramp(s.resampled.size(), 0.0, 1.0 / newRate), s.resampled});

    section.picture("before-after", 1600, 640,
                    styles +
                        demo::format("set xrange [0:%g]\n",
                                     static_cast<double>(s.recorded.size()) / rate) +
                        R"(
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
     'spectrum-resampled.txt' using 1:(1000*sqrt($2)) with lines linestyle 8 title 'at 250 Hz', \
     'spectra.txt' using 1:(1000*sqrt($6)) with lines linestyle 5 title 'low-pass'
)",
                    "The spectrum behind each step.");
}

void drawResponses(const Responses &r, demo::Section &section)
{
    section.data("responses.txt", "frequency/Hz median adaptive notch low-pass (dB)",
                 {ramp(r.median.size(), 0.0, r.step), r.median, r.adaptive, r.notch, r.smooth});
    section.data("responses-rate.txt", "frequency/Hz gain/dB",
                 {ramp(r.changeOfRate.size(), 0.0, r.changeStep), r.changeOfRate});
    section.data("responses-median.txt", "frequency/Hz gain/dB", {r.sines, r.medianOfSines});

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

} // namespace ecg
