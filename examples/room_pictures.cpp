// The pictures of the room's chapter.

#include "room.h"

#include <algorithm>
#include <cstddef>
#include <string>

namespace room {
namespace {

using demo::ramp;

constexpr double shownTime = 0.09; // s, of the response and the correlations

Signal firstOf(const Signal &x, std::size_t n)
{
    return Signal(x.begin(), x.begin() + static_cast<std::ptrdiff_t>(std::min(n, x.size())));
}

void writeArrivals(const std::string &file, const std::vector<Arrival> &arrivals, double rate,
                   const demo::Section &section)
{
    Signal delay, milliseconds, gain;
    for (const Arrival &arrival : arrivals) {
        delay.push_back(arrival.delay);
        milliseconds.push_back(1000.0 * arrival.delay / rate);
        gain.push_back(arrival.gain);
    }
    section.data(file, "delay/ms gain delay/samples", {milliseconds, gain, delay});
}

std::string row(double bottom, double top)
{
    return demo::format("set bmargin at screen %g\nset tmargin at screen %g\n", bottom, top);
}

// The names of the arrivals, each beside the tip of its line.
std::string names(const std::vector<Arrival> &arrivals, double rate)
{
    std::string labels;
    for (const Arrival &arrival : arrivals)
        labels += demo::format("set label '%s' at %g,%g offset 0.6,%g textcolor rgb '#30343a'\n",
                               arrival.by.c_str(), 1000.0 * arrival.delay / rate, arrival.gain,
                               arrival.gain > 0 ? 0.4 : -0.4);
    return labels;
}

constexpr const char *margins = R"(
set lmargin at screen 0.07
set rmargin at screen 0.985
)";

} // namespace

void drawResponse(const Sound &sound, const std::vector<Arrival> &putIn, demo::Section &section)
{
    section.data("response.txt", "time/ms response",
                 {ramp(sound.response.size(), 0.0, 1000.0 / sound.rate), sound.response});
    writeArrivals("put-in.txt", putIn, sound.rate, section);
    section.picture("response", 1600, 480,
                    margins + names(putIn, sound.rate) +
                        demo::format("set xrange [0:%g]\n", 1000.0 * shownTime) + R"(
set yrange [-0.5:1.2]
set xlabel 'Time in ms'
set ylabel 'Response'
set xzeroaxis linecolor rgb '#9aa0a8'
unset key
plot 'response.txt' with impulses linewidth 1.5 linecolor rgb '#a9c4e6', \
     'put-in.txt' with impulses linewidth 3 linecolor rgb '#2f6db5', \
     '' with points pointtype 7 pointsize 0.9 linecolor rgb '#2f6db5'
)",
                    "What a clap would sound like in the room, at first: the arrivals one by one, "
                    "and behind them the tail, which goes on for half a second.");
}

void drawVoice(const Sound &sound, demo::Section &section)
{
    section.data("dry.txt", "time/s amplitude",
                 {ramp(sound.dry.size(), 0.0, 1.0 / sound.rate), sound.dry});
    section.data("echoed.txt", "time/s amplitude",
                 {ramp(sound.echoed.size(), 0.0, 1.0 / sound.rate), sound.echoed});
    const double end = static_cast<double>(sound.dry.size()) / sound.rate;
    const double from = std::min(7.5, std::max(0.0, end - 2.5));
    section.picture("voice", 1600, 560,
                    margins + demo::format("set xrange [%g:%g]\n", from, from + 2.5) + R"(
set yrange [-1.2:1.2]
set ytics 0.5
set ylabel 'Amplitude'
set key top left Left reverse samplen 1.5
set multiplot
set format x ''
)" + row(0.58, 0.97) + R"(
plot 'dry.txt' with lines linewidth 1 linecolor rgb '#2f6db5' title 'dry'
set format x '%g'
set xlabel 'Time in seconds'
)" + row(0.15, 0.54) + R"(
plot 'echoed.txt' with lines linewidth 1 linecolor rgb '#7a4fa3' title 'in the room'
unset multiplot
)",
                    "The voice before and after: the room fills its pauses.");
}

void drawCorrelations(const Sound &sound, const Correlations &voice, const Correlations &sharp,
                      const std::vector<Arrival> &putIn, const std::vector<Arrival> &found,
                      demo::Section &section)
{
    const auto n = static_cast<std::size_t>(shownTime * sound.rate) + 1;
    const Signal asItIs = firstOf(voice.cross, n), sharpened = firstOf(sharp.cross, n);
    section.data("correlation.txt", "lag/ms voice second-differences",
                 {ramp(asItIs.size(), 0.0, 1000.0 / sound.rate), asItIs, sharpened});
    writeArrivals("found.txt", found, sound.rate, section);
    section.picture(
        "correlation", 1600, 900,
        margins + demo::format("set xrange [0:%g]\n", 1000.0 * shownTime) + R"(
set xzeroaxis linecolor rgb '#9aa0a8'
set ylabel 'Cross-correlation'
set key top right Right samplen 1.5
set multiplot
set format x ''
set yrange [-0.9:1.3]
)" + row(0.55, 0.98) +
            R"(
plot 'put-in.txt' using 1:(-0.9):(0):(2.2) with vectors nohead linewidth 1 dashtype 2 linecolor rgb '#9aa0a8' \
        title '', \
     'correlation.txt' using 1:2 with lines linewidth 2 linecolor rgb '#8d96a3' \
        title 'the voice as it is'
set format x '%g'
set xlabel 'Lag in ms'
)" + row(0.09, 0.52) +
            names(putIn, sound.rate) +
            R"(
plot 'correlation.txt' using 1:3 with lines linewidth 2 linecolor rgb '#2f6db5' \
        title 'its second differences', \
     'put-in.txt' with points pointtype 2 pointsize 1.4 linewidth 2 linecolor rgb '#8d96a3' \
        title 'put in', \
     'found.txt' with points pointtype 6 pointsize 2 linewidth 2 linecolor rgb '#d9532c' \
        title 'found'
unset multiplot
)",
        "The echoed voice with the dry one, the arrivals that were put in dashed. Above, each "
        "brings the periods of the voice along; below, those of the second differences "
        "stand apart.");
}

} // namespace room
