// A photograph blurred, sharpened and searched for edges with small kernels, and blurred
// with a large one: as a filter, whose result is as large as the photograph, and as a
// convolution, whose result is larger by the kernel.
//
//     stairs INPUT OUTPUT_FOLDER
//
// stairs_pictures.cpp draws it.

#include "stairs.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <string>
#include <utility>
#include <vector>

#include "rvx.h"
#include "support/status.h"

namespace stairs {
namespace {

using demo::blackImage;
using demo::requireSuccess;
using Kernel = Image; // its pixels are the weights

constexpr int blurSide = 7;         // pixels, of the small kernels
constexpr double blurWidth = 1.5;   // pixels, standard deviation
constexpr double sharpening = 1.5;  // how much of what the blur takes away is put on top
constexpr int discSide = 63;        // pixels, of the large kernel
constexpr double discRadius = 31.0; // pixels
constexpr int smallestSide = 64;    // pixels, of a photograph
constexpr int runs = 5;             // of a call, to time it

int size(const Image &image)
{
    return static_cast<int>(image.pixels.size());
}

// --- kernels -----------------------------------------------------------------

// So that they keep the mean.
void setSumToOne(Kernel &kernel)
{
    const double sum = size(kernel) * rvxdMean(kernel.pixels.data(), size(kernel));
    rvxdbMpy1(1.0 / sum, kernel.pixels.data(), size(kernel));
}

Kernel gaussian(int side, double width)
{
    Kernel kernel{side, side, {}};
    for (int row = 0; row < side; ++row) {
        for (int col = 0; col < side; ++col) {
            const double distance = std::hypot(row - side / 2, col - side / 2);
            kernel.pixels.push_back(std::exp(-0.5 * distance * distance / (width * width)));
        }
    }
    setSumToOne(kernel);
    return kernel;
}

// All alike within the radius, and softer over the one pixel of the rim.
Kernel disc(int side, double radius)
{
    Kernel kernel{side, side, {}};
    for (int row = 0; row < side; ++row) {
        for (int col = 0; col < side; ++col) {
            const double distance = std::hypot(row - side / 2, col - side / 2);
            kernel.pixels.push_back(std::clamp(radius + 0.5 - distance, 0.0, 1.0));
        }
    }
    setSumToOne(kernel);
    return kernel;
}

// Unsharp masking in one kernel: the pixel, and what a blur would take away once more.
Kernel unsharp(const Kernel &blur, double amount)
{
    Kernel kernel = blur;
    rvxdbMpy1(-amount, kernel.pixels.data(), size(kernel));
    kernel.pixels[kernel.pixels.size() / 2] += 1.0 + amount;
    return kernel;
}

// The rise of grey per pixel, smoothed across (Sobel and Feldman, 1968). A convolution takes
// the kernel the other way round: so the pixel on the right has the weight on the left.
Kernel sobelAcross()
{
    return {3, 3, {0.125, 0.0, -0.125, 0.25, 0.0, -0.25, 0.125, 0.0, -0.125}};
}

Kernel sobelDown()
{
    return {3, 3, {0.125, 0.25, 0.125, 0.0, 0.0, 0.0, -0.125, -0.25, -0.125}};
}

// --- the library at work -----------------------------------------------------

struct Result {
    Image image;
    double milliseconds; // in the library
};

class Stopwatch {
public:
    double milliseconds() const
    {
        return std::chrono::duration<double, std::milli>(Clock::now() - start_).count();
    }

private:
    using Clock = std::chrono::steady_clock;
    Clock::time_point start_ = Clock::now();
};

// The filter takes all around a picture for black. So the photograph gets margins, in which its
// rim goes on, and the result loses them. The kernel is a copy, as the call may turn it round
// while it lasts.
Result filtered(const Image &image, Kernel kernel)
{
    const int margin = kernel.cols / 2;
    const Image x = demo::extended(image, margin);
    Image y = blackImage(x.cols, x.rows);
    const Stopwatch stopwatch;
    rvxdFilter2D(x.pixels.data(), x.cols, x.rows, kernel.pixels.data(), kernel.cols, kernel.rows,
                 y.pixels.data());
    const double milliseconds = stopwatch.milliseconds();
    requireSuccess("filter");
    return {demo::withoutMargins(y, margin), milliseconds};
}

// All that the kernel makes of a picture: its sides are longer by the kernel's, less one.
Image fullConvolution(const Image &x, const Kernel &kernel)
{
    Image y = blackImage(x.cols + kernel.cols - 1, x.rows + kernel.rows - 1);
    rvxdConv2D(x.pixels.data(), x.cols, x.rows, kernel.pixels.data(), kernel.cols, kernel.rows,
               y.pixels.data());
    requireSuccess("convolution");
    return y;
}

// The same as filtered: of the convolution, the part in the middle.
Result convolved(const Image &image, Kernel kernel)
{
    const int margin = kernel.cols / 2;
    const Image x = demo::extended(image, margin);
    const Stopwatch stopwatch;
    const Image y = fullConvolution(x, kernel);
    const double milliseconds = stopwatch.milliseconds();
    return {demo::withoutMargins(y, 2 * margin), milliseconds};
}

// The tables of the filter's transforms stay with the thread, for the next call. An
// autocorrelation that is long enough for transforms releases all that there are at its end.
void releaseTables()
{
    constexpr int len = 1024, lags = 512;
    const std::vector<double> silence(len);
    std::vector<double> r(lags);
    rvxdAutoCorr(silence.data(), len, r.data(), lags, RVX_AUTOCORR_NORMAL);
    requireSuccess("release of tables");
}

// The root of the sum of squares, pixel by pixel.
Image magnitude(const Image &a, const Image &b)
{
    Image result = a;
    for (std::size_t i = 0; i < a.pixels.size(); ++i)
        result.pixels[i] = std::hypot(a.pixels[i], b.pixels[i]);
    return result;
}

// --- measuring ---------------------------------------------------------------

// How long the quickest of a few runs takes.
Result quickest(Result (*method)(const Image &, Kernel), const Image &image, const Kernel &kernel)
{
    Result best = method(image, kernel);
    for (int run = 1; run < runs; ++run)
        best.milliseconds = std::min(best.milliseconds, method(image, kernel).milliseconds);
    return best;
}

double rms(const Image &image)
{
    return rvxdNorm(image.pixels.data(), nullptr, size(image), RVX_NORM_L2) /
           std::sqrt(size(image));
}

Image steepnessOf(const Image &image)
{
    return magnitude(filtered(image, sobelAcross()).image, filtered(image, sobelDown()).image);
}

std::string greys(const Image &image)
{
    const double *pixels = image.pixels.data();
    return demo::format("mean %.4f, deviation %.4f, from %.3f to %.3f",
                        rvxdMean(pixels, size(image)), rvxdStdDev(pixels, size(image)),
                        rvxdMin(pixels, size(image)), rvxdMax(pixels, size(image)));
}

// Beside the photograph, if that has any edges.
std::string steepness(const Image &image, double ofOriginal)
{
    if (!(ofOriginal > 0.0))
        return "";
    return demo::format(", edges %.2f times as steep", rms(steepnessOf(image)) / ofOriginal);
}

// What part of the squares of the steepness the steepest tenth of all pixels has.
double shareOfSteepest(const Image &steepness)
{
    std::vector<double> squares(steepness.pixels.size());
    rvxdbMpy3(steepness.pixels.data(), steepness.pixels.data(), squares.data(), size(steepness));
    std::sort(squares.begin(), squares.end());
    const int tenth = size(steepness) / 10;
    const double all = size(steepness) * rvxdMean(squares.data(), size(steepness));
    const double steepest = tenth * rvxdMean(squares.data() + squares.size() - tenth, tenth);
    return all > 0.0 ? steepest / all : 0.0;
}

// Both ways to the same result: how far apart they are, and how long they take.
std::string bothWays(const Image &image, const Kernel &kernel)
{
    const Result filter = quickest(filtered, image, kernel);
    const Result convolution = quickest(convolved, image, kernel);
    const double apart = rvxdNorm(filter.image.pixels.data(), convolution.image.pixels.data(),
                                  size(image), RVX_NORM_C);
    return demo::format("filter %.2f ms, convolution %.2f ms, apart by %.1e at most",
                        filter.milliseconds, convolution.milliseconds, apart);
}

void tellViews(const Views &v, demo::Section &section)
{
    const double steep = rms(v.steepness);
    const std::vector<std::pair<std::string, std::string>> rows{
        {"Photograph",
         demo::format("%d by %d pixels, ", v.original.cols, v.original.rows) + greys(v.original)},
        {"Blurred", greys(v.blurred) + steepness(v.blurred, steep)},
        {"Sharpened", greys(v.sharpened) + steepness(v.sharpened, steep)},
        {"Disc", greys(v.disc) + steepness(v.disc, steep)},
        {"Edges", demo::format("%.4f per pixel from left to right, %.4f from top to bottom (RMS)",
                               rms(v.across), rms(v.down))},
        {"Steepest tenth",
         demo::format("%.0f %% of the edges' squares", 100.0 * shareOfSteepest(v.steepness))},
        {"7 by 7", bothWays(v.original, gaussian(blurSide, blurWidth))},
        {"63 by 63", bothWays(v.original, disc(discSide, discRadius))},
    };
    requireSuccess("greys");
    section.table(rows);
}

void chapter(const std::string &input, const std::string &output)
{
    // Every thread starts in mode 0, in which a failed call ends the process.
    rvxSetErrMode(1);

    const Kernel blur = gaussian(blurSide, blurWidth), large = disc(discSide, discRadius);
    Views v;
    v.original = demo::readImage(input, smallestSide);
    v.blurred = filtered(v.original, blur).image;
    v.sharpened = filtered(v.original, unsharp(blur, sharpening)).image;
    v.across = filtered(v.original, sobelAcross()).image;
    v.down = filtered(v.original, sobelDown()).image;
    v.steepness = magnitude(v.across, v.down);
    v.disc = convolved(v.original, large).image;
    v.full = fullConvolution(v.original, large);

    demo::Section section(output, "stairs", "A photograph, filtered");
    section.text(demo::format(
        "Kernels of %d by %d pixels blur and sharpen the photograph, two of 3 by 3 find its "
        "edges, and a disc of %d by %d blurs it as a lens far out of focus does. Black is 0 and "
        "white is 1. A filter gives a picture of the same size, a convolution all that the kernel "
        "reaches; the middle of the latter is the former.",
        blurSide, blurSide, discSide, discSide));
    tellViews(v, section);
    drawFilters(v, section);
    drawEdges(v, section);
    drawDisc(v, section);
    section.finish();
    releaseTables();
}

} // namespace
} // namespace stairs

int main(int argc, char **argv)
{
    return demo::runChapter(argc, argv, "stairs", stairs::chapter);
}
