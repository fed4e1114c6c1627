// The pictures of the chapter on compression.

#include "compress.h"

#include <algorithm>
#include <string>

#include "rvx.h"
#include "support/panels.h"
#include "support/spectrum.h"
#include "support/status.h"

namespace compress {
namespace {

using demo::format;
using demo::panel;

constexpr int panelSide = 512;  // pixels, of one of three
constexpr int closeupSide = 96; // pixels of the photograph
constexpr int closeupZoom = 4;

// A square that begins with a block.
Image part(const Image &image, int left, int top, int length)
{
    left = left / side * side;
    top = top / side * side;
    Image square{length, length, {}};
    for (int row = top; row < top + length; ++row) {
        for (int col = left; col < left + length; ++col)
            square.pixels.push_back(image.at(col, row));
    }
    return square;
}

// Half as wide as the shorter side, at the bottom right.
Image quarter(const Image &image)
{
    const int length = std::min(image.cols, image.rows) / 2;
    return part(image, image.cols - length, image.rows - length, length);
}

Image closeup(const Image &image)
{
    const int length = std::min({closeupSide, image.cols, image.rows});
    return part(image, (image.cols - length) * 49 / 52, (image.rows - length) * 15 / 26, length);
}

std::string inBits(const Shown &shown)
{
    return format("%.2f bits per pixel, %.1f dB", shown.coded.rate, shown.ratio);
}

void write(const std::string &file, const Curve &curve, const std::string &first,
           const demo::Section &section)
{
    section.data(file, first + " bits-per-pixel PSNR/dB", {curve.steps, curve.rates, curve.ratios});
}

// What part of the energy is not in the first n positions, in order of frequency, in %.
Values leftOut(const Values &energies)
{
    Values left(positions);
    double sum = 0.0;
    const std::vector<int> order = zigzag();
    for (std::size_t n = left.size(); n-- > 0;) { // from the smallest on
        left[n] = sum;
        sum += energies[static_cast<std::size_t>(order[n])];
    }
    rvxdbMpy1(100.0 / sum, left.data(), positions);
    demo::requireSuccess("energies");
    return left;
}

} // namespace

void drawRates(const Image &original, const std::vector<Shown> &shown, demo::Section &section)
{
    std::vector<Image> quarters, closeups;
    for (const Shown &s : shown) {
        quarters.push_back(quarter(s.coded.image));
        closeups.push_back(closeup(s.coded.image));
    }
    const Image plain = closeup(original);
    std::vector<demo::ImagePanel> coarser;
    std::vector<demo::ImagePanel> nearer{{"closeup-original", "the photograph", &plain, 0.0, 1.0}};
    for (std::size_t i = 0; i < shown.size(); ++i) {
        coarser.push_back({shown[i].name, inBits(shown[i]), &quarters[i], 0.0, 1.0});
        nearer.push_back({"closeup-" + shown[i].name, inBits(shown[i]), &closeups[i], 0.0, 1.0});
    }
    demo::drawImages("rates", panelSide, coarser,
                     "A quarter of the photograph in steps of the table, and in steps 4 and 16 "
                     "times as large. As it came it has 8 bits per pixel.",
                     section);
    demo::drawImages("closeup", closeupSide * closeupZoom, nearer,
                     "A part of it, four times as large. Beside edges there are waves, and "
                     "where steps are coarse the blocks no longer meet.",
                     section);
}

void drawCurves(const Curves &curves, const std::vector<Shown> &shown, demo::Section &section)
{
    write("table.txt", curves.table, "scale", section);
    write("even.txt", curves.even, "step", section);
    write("pixels.txt", curves.pixels, "step", section);
    write("laplacian.txt", curves.theory, "step", section);
    Curve pictures;
    for (const Shown &s : shown) {
        pictures.steps.push_back(s.scale);
        pictures.rates.push_back(s.coded.rate);
        pictures.ratios.push_back(s.ratio);
    }
    write("shown.txt", pictures, "scale", section);

    const std::string plots = R"(
plot 'laplacian.txt' using 2:3 with lines linestyle 4, \
     'pixels.txt' using 2:3 with lines linestyle 3, \
     'table.txt' using 2:3 with lines linestyle 2, \
     'even.txt' using 2:3 with lines linestyle 1, \
     'shown.txt' using 2:3 with points pointtype 7 pointsize 1.4 linecolor rgb '#d9532c'
unset label
)";
    section.picture(
        "curves", 1600, 700,
        R"(
set style line 1 linewidth 2 linecolor rgb '#2f6db5' # even steps
set style line 2 linewidth 2 linecolor rgb '#d9532c' # the table
set style line 3 linewidth 2 linecolor rgb '#8d96a3' # pixels
set style line 4 linewidth 9 linecolor rgb '#d5dae1' # theory, on which another line lies
set style line 5 linewidth 2 dashtype 2 linecolor rgb '#5a626c'
blue = '#2f6db5'
red = '#d9532c'
grey = '#5a626c'
unset key
set title offset 0,-0.5 textcolor rgb '#30343a'
set multiplot
set xrange [0:5]
set xtics 1
set xlabel 'Bits per pixel'
set yrange [15:60]
set ytics 5
set ylabel 'PSNR in dB' offset 1.5,0
set title 'ratio and rate'
set label 'even steps' at 1.9,46 right textcolor rgb blue
set label 'the table' at 2.5,41 textcolor rgb red
set label 'pixels' at 3.6,32 textcolor rgb grey
)" + panel(0.055, 0.335, 0.13, 0.93) +
            plots + R"(
unset ylabel
set xrange [0:1]
set xtics 0.2
set yrange [18:38]
set ytics 4
set title 'nearer'
set label 'even steps' at 0.72,35.5 right textcolor rgb blue
set label 'the table' at 0.76,31.5 textcolor rgb red
set label "pale: Laplacian\ncoefficients, by theory" at 0.42,25 textcolor rgb grey
)" + panel(0.385, 0.665, 0.13, 0.93) +
            plots + R"(
set logscale x 2
set xrange [1:512]
set xtics 4
set xlabel 'Even step, of 255 greys'
set yrange [15:60]
set ytics 5
set title 'ratio and step'
set label "dashed: error\nspread evenly\nover a step" at 1.4,25 textcolor rgb grey
)" + panel(0.71, 0.99, 0.13, 0.93) +
            R"(
plot 'laplacian.txt' using 1:3 with lines linestyle 4, \
     10*log10(12*255**2) - 20*log10(x) with lines linestyle 5, \
     'even.txt' using 1:3 with lines linestyle 1
unset multiplot
)",
        "Left, how far white is over the error, at every rate: of coefficients in even "
        "steps, in steps of the table (the points are the pictures above), and of the "
        "pixels themselves. Pale: what Laplacian coefficients would give. Right: a step "
        "and its error.");
}

void drawEnergies(const Energies &energies, demo::Section &section)
{
    Values across, down;
    for (int v = 0; v < side; ++v) {
        for (int u = 0; u < side; ++u) {
            across.push_back(u);
            down.push_back(v);
        }
    }
    section.data("energies.txt", "half-waves-across half-waves-down measured/dB model/dB",
                 {across, down, demo::levelsOf(energies.measured), demo::levelsOf(energies.model)});
    section.data(
        "left-out.txt", "coefficients measured/% model/%",
        {demo::ramp(positions, 1.0, 1.0), leftOut(energies.measured), leftOut(energies.model)});

    const std::string plots = R"(
plot 'energies.txt' using 1:2:level with image, \
     '' using 1:2:(column(level) < 40 ? sprintf('%.0f', column(level)) : '') with labels \
        textcolor rgb '#ffffff', \
     '' using 1:2:(column(level) < 40 ? '' : sprintf('%.0f', column(level))) with labels \
        textcolor rgb '#22262b'
)";
    section.picture(
        "energies", 1600, 600,
        R"(
unset key
unset colorbox
set cbrange [0:56]
set title offset 0,-0.5 textcolor rgb '#30343a'
set multiplot
unset grid
set xrange [-0.5:7.5]
set yrange [7.5:-0.5]
set xtics 1 scale 0
set ytics 1 scale 0
set xlabel 'Half waves across'
set ylabel 'Half waves down' offset 1,0
set title 'coefficients, RMS in dB over a grey'
level = 3
)" + panel(0.05, 0.335, 0.15, 0.92) +
            plots + R"(
unset ylabel
set title 'by the Markov model'
level = 4
)" + panel(0.375, 0.66, 0.15, 0.92) +
            plots + R"(
set grid linecolor rgb '#e3e6ea' linewidth 1 linetype 1
set xrange [1:64]
set xtics ('1' 1, '8' 8, '16' 16, '24' 24, '32' 32, '40' 40, '48' 48, '56' 56, '64' 64) scale 1
set yrange [0.02:100]
set logscale y
set ytics autofreq
set format y '%g %%'
set xlabel 'Coefficients kept, in order of frequency'
set title 'energy that is not in them'
set label 'pixels' at 30,70 textcolor rgb '#5a626c'
set label 'coefficients' at 24,3.5 textcolor rgb '#2f6db5'
set label 'model' at 17,0.9 textcolor rgb '#5a626c'
)" + panel(0.73, 0.985, 0.15, 0.92) +
            R"(
plot 100*(1 - x/64) with lines linewidth 2 linecolor rgb '#8d96a3', \
     'left-out.txt' using 1:3 with lines linewidth 2 dashtype 2 linecolor rgb '#5a626c', \
     '' using 1:2 with lines linewidth 2 linecolor rgb '#2f6db5'
unset multiplot
)",
        "Left and middle: how large the coefficients are, from the mean of a block (top left; "
        "about "
        "the photograph's) to seven half waves across and down, and how large they would be if "
        "pixels far apart were alike by nothing but what neighbours have in common. Right: how "
        "much of the energy is beyond the lowest frequencies.");
}

} // namespace compress
