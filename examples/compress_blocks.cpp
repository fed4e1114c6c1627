// Blocks of a photograph, their cosine transforms, and what quantised ones take.

#include <algorithm>
#include <cmath>
#include <cstdint>

#include "compress.h"
#include "rvx.h"
#include "support/spectrum.h"
#include "support/status.h"

namespace compress {
namespace {

constexpr double white = 255.0;
constexpr double middle = 128.0; // the grey that is coded as 0
constexpr int toNearest = RVX_CVT_NEAREST | RVX_CVT_CLIP;

int length(const Values &x)
{
    return static_cast<int>(x.size());
}

void transpose(Block &block)
{
    for (std::size_t row = 0; row < side; ++row) {
        for (std::size_t col = 0; col < row; ++col)
            std::swap(block[side * row + col], block[side * col + row]);
    }
}

struct Entropy {
    double bits; // of all integers together
    double missing;
    double zeros; // how many are 0
};

// -log2 of its frequency for each integer: what an ideal code takes that knows how often each
// occurs. From few integers that comes out too low, to first order by 1/(2 ln 2) bits in all for
// each kind beyond the first (Miller, Note on the bias of information estimates, 1955).
Entropy entropyOf(const std::vector<std::int32_t> &integers)
{
    const auto [least, most] = std::minmax_element(integers.begin(), integers.end());
    Values counts(static_cast<std::size_t>(*most - *least) + 1);
    for (const std::int32_t integer : integers)
        counts[static_cast<std::size_t>(integer - *least)] += 1.0;
    const double zeros =
        *least <= 0 && *most >= 0 ? counts[static_cast<std::size_t>(-*least)] : 0.0;

    counts.erase(std::remove(counts.begin(), counts.end(), 0.0), counts.end());
    Values logarithms(counts.size());
    rvxdbLn2(counts.data(), logarithms.data(), length(counts));
    const auto total = static_cast<double>(integers.size());
    const double nats =
        total * std::log(total) - rvxdDotProd(counts.data(), logarithms.data(), length(counts));
    return {nats / std::log(2.0), 0.5 * (length(counts) - 1) / std::log(2.0), zeros};
}

// Values to whole numbers of steps, and back.
Entropy quantise(Values &x, double step)
{
    std::vector<std::int32_t> integers(x.size());
    rvxdbMpy1(1.0 / step, x.data(), length(x));
    rvxdbFloatToInt(x.data(), integers.data(), length(x), 32, toNearest);
    rvxdbIntToFloat(integers.data(), x.data(), length(x), 32, 0);
    rvxdbMpy1(step, x.data(), length(x));
    return entropyOf(integers);
}

// Greys about 0 for pixels, and back. What comes back beyond black and white is black and white.
Values greysOf(const Image &image)
{
    Values greys = image.pixels;
    rvxdbMpy1(white, greys.data(), length(greys));
    rvxdbSub1(middle, greys.data(), length(greys));
    return greys;
}

void setGreys(Image &image, Values greys)
{
    image.pixels = std::move(greys);
    const int n = length(image.pixels);
    rvxdbAdd1(middle, image.pixels.data(), n);
    rvxdbMpy1(1.0 / white, image.pixels.data(), n);
    rvxdbThresh1(image.pixels.data(), n, 0.0, RVX_THRESH_RAISE);
    rvxdbThresh1(image.pixels.data(), n, 1.0, RVX_THRESH_LOWER);
}

} // namespace

void transform(Block &block, int direction)
{
    for (int lines = 0; lines < 2; ++lines) { // rows, then columns
        for (int line = 0; line < side; ++line) {
            double *x = block.data() + side * line;
            rvxdDct(x, x, side, direction);
        }
        transpose(block);
    }
}

// Blocks at the right and at the bottom that the photograph does not fill go on with its rim.
Coefficients coefficientsOf(const Image &image)
{
    const Image greys{image.cols, image.rows, greysOf(image)};
    Coefficients coefficients{image.cols, image.rows, std::vector<Values>(positions)};
    Block block(positions);
    for (int top = 0; top < image.rows; top += side) {
        for (int left = 0; left < image.cols; left += side) {
            for (int i = 0; i < positions; ++i)
                block[static_cast<std::size_t>(i)] =
                    greys.at(std::min(left + i % side, image.cols - 1),
                             std::min(top + i / side, image.rows - 1));
            transform(block, RVX_FFT_FORWARD);
            for (std::size_t i = 0; i < block.size(); ++i)
                coefficients.at[i].push_back(block[i]);
        }
    }
    demo::requireSuccess("cosine transform");
    return coefficients;
}

Image imageOf(const Coefficients &coefficients)
{
    Image image = demo::blackImage(coefficients.cols, coefficients.rows);
    Values greys(image.pixels.size());
    Block block(positions);
    std::size_t number = 0; // of the block
    for (int top = 0; top < image.rows; top += side) {
        for (int left = 0; left < image.cols; left += side) {
            for (std::size_t i = 0; i < block.size(); ++i)
                block[i] = coefficients.at[i][number];
            ++number;
            transform(block, RVX_FFT_INVERSE);
            const int cols = std::min(side, image.cols - left);
            for (int row = 0; row < std::min(side, image.rows - top); ++row)
                std::copy_n(block.begin() + side * row, cols,
                            greys.begin() + image.cols * (top + row) + left);
        }
    }
    setGreys(image, std::move(greys));
    demo::requireSuccess("inverse cosine transform");
    return image;
}

Coded coded(const Coefficients &coefficients, const Values &steps)
{
    Coefficients quantised = coefficients;
    Coded result{};
    for (std::size_t i = 0; i < steps.size(); ++i) {
        const Entropy entropy = quantise(quantised.at[i], steps[i]);
        result.rate += entropy.bits;
        result.missing += entropy.missing;
        result.zeros += entropy.zeros;
    }
    demo::requireSuccess("quantisation");
    const double pixels = static_cast<double>(coefficients.cols) * coefficients.rows;
    result.rate /= pixels;
    result.missing /= pixels;
    result.zeros /= static_cast<double>(coefficients.at[0].size()) * positions;
    result.image = imageOf(quantised);
    return result;
}

Coded codedPixels(const Image &image, double step)
{
    Values greys = greysOf(image);
    const double pixels = length(greys);
    const Entropy entropy = quantise(greys, step);
    Coded result{image, entropy.bits / pixels, entropy.missing / pixels, entropy.zeros / pixels};
    setGreys(result.image, std::move(greys));
    demo::requireSuccess("quantisation");
    return result;
}

double peakRatio(const Image &original, const Image &image)
{
    const int n = length(original.pixels);
    const double error =
        rvxdNorm(original.pixels.data(), image.pixels.data(), n, RVX_NORM_L2SQ) / n;
    demo::requireSuccess("peak signal-to-noise ratio");
    return -demo::levelsOf({error})[0];
}

Values evenSteps(double step)
{
    return Values(positions, step);
}

// ITU-T T.81, Digital compression and coding of continuous-tone still images, 1992, table K.1:
// what the eye lets pass of each frequency in greys. There steps are whole numbers, and the
// table is used as it is or halved.
Values tableSteps(double scale)
{
    Values steps{
        16, 11, 10, 16, 24,  40,  51,  61,  // no half wave down, 0 to 7 across
        12, 12, 14, 19, 26,  58,  60,  55,  // 1 down
        14, 13, 16, 24, 40,  57,  69,  56,  // 2
        14, 17, 22, 29, 51,  87,  80,  62,  // 3
        18, 22, 37, 56, 68,  109, 103, 77,  // 4
        24, 35, 55, 64, 81,  104, 113, 92,  // 5
        49, 64, 78, 87, 103, 121, 120, 101, // 6
        72, 92, 95, 98, 112, 100, 103, 99,  // 7
    };
    rvxdbMpy1(scale, steps.data(), length(steps));
    return steps;
}

} // namespace compress
