// What theory has to say of the coefficients: where their energy is, and what steps make of it.

#include <algorithm>
#include <cmath>
#include <numeric>

#include "compress.h"
#include "rvx.h"
#include "support/spectrum.h"
#include "support/status.h"

namespace compress {
namespace {

int length(const Values &x)
{
    return static_cast<int>(x.size());
}

// The values of a position; of the first, without their mean.
Values centred(const Coefficients &coefficients, std::size_t position)
{
    Values x = coefficients.at[position];
    if (position == 0)
        rvxdbSub1(rvxdMean(x.data(), length(x)), x.data(), length(x));
    return x;
}

// Bits of a choice of two.
double choice(double p)
{
    return p > 0.0 && p < 1.0 ? -(p * std::log2(p) + (1.0 - p) * std::log2(1.0 - p)) : 0.0;
}

struct Quantised {
    double bits, error;
};

// Laplacian values of this mean magnitude, to the nearest whole number of steps. Zero takes those
// below half a step; beyond, each step has exp(-step / mean) times what the one before has, and
// within a step the density falls off as within any other (Sullivan, Efficient scalar quantization
// of exponential and Laplacian random variables, 1996).
Quantised quantisedLaplacian(double mean, double step)
{
    if (!(mean > 0.0))
        return {0.0, 0.0};
    const double half = 0.5 * step, twice = 2.0 * mean * mean;
    const double beyond = std::exp(-half / mean), next = beyond * beyond;
    const double within = -std::expm1(-step / mean);
    const double atZero = twice - beyond * (half * half + 2.0 * mean * half + twice);
    const double atOthers = (half * half - 2.0 * mean * half + twice -
                             next * (half * half + 2.0 * mean * half + twice)) /
                            within;
    return {choice(beyond) + beyond * (1.0 + choice(next) / within), atZero + beyond * atOthers};
}

} // namespace

Values energiesOf(const Coefficients &coefficients)
{
    Values energies;
    for (std::size_t i = 0; i < coefficients.at.size(); ++i) {
        const Values x = centred(coefficients, i);
        energies.push_back(rvxdNorm(x.data(), nullptr, length(x), RVX_NORM_L2SQ) / length(x));
    }
    demo::requireSuccess("energies");
    return energies;
}

Values magnitudesOf(const Coefficients &coefficients)
{
    Values magnitudes;
    for (std::size_t i = 0; i < coefficients.at.size(); ++i) {
        const Values x = centred(coefficients, i);
        magnitudes.push_back(rvxdNorm(x.data(), nullptr, length(x), RVX_NORM_L1) / length(x));
    }
    demo::requireSuccess("magnitudes");
    return magnitudes;
}

// As if likeness fell off by the same factor from pixel to pixel, across and down each by itself:
// a Markov process (Ahmed, Natarajan and Rao, Discrete cosine transform, 1974). The covariances of
// the pixels of a line are a matrix; transformed as a block, it is that of the coefficients, and
// their energies stand on its diagonal.
Values modelEnergies(double variance, double alikeAcross, double alikeDown)
{
    Block across, down;
    for (int i = 0; i < positions; ++i) {
        const int apart = std::abs(i / side - i % side);
        across.push_back(std::pow(alikeAcross, apart));
        down.push_back(std::pow(alikeDown, apart));
    }
    transform(across, RVX_FFT_FORWARD);
    transform(down, RVX_FFT_FORWARD);
    demo::requireSuccess("model");
    Values energies;
    for (std::size_t v = 0; v < side; ++v) {
        for (std::size_t u = 0; u < side; ++u)
            energies.push_back(variance * across[(side + 1) * u] * down[(side + 1) * v]);
    }
    return energies;
}

// What a transform is worth at fine steps (Jayant and Noll, Digital coding of waveforms, 1984).
double codingGain(const Values &energies)
{
    const double mean = rvxdMean(energies.data(), length(energies));
    const Values levels = demo::levelsOf(energies);
    return demo::levelsOf({mean})[0] - rvxdMean(levels.data(), length(levels));
}

std::vector<int> zigzag()
{
    std::vector<int> order(positions);
    std::iota(order.begin(), order.end(), 0);
    std::sort(order.begin(), order.end(), [](int a, int b) {
        const int diagonalA = a / side + a % side, diagonalB = b / side + b % side;
        if (diagonalA != diagonalB)
            return diagonalA < diagonalB;
        return diagonalA % 2 == 1 ? a < b : a > b; // downwards and upwards in turn
    });
    return order;
}

std::pair<double, double> laplacian(const Values &magnitudes, double step)
{
    double bits = 0.0, error = 0.0;
    for (const double mean : magnitudes) {
        const Quantised quantised = quantisedLaplacian(mean, step);
        bits += quantised.bits / positions;
        error += quantised.error / positions;
    }
    return {bits, -demo::levelsOf({error / (255.0 * 255.0)})[0]};
}

} // namespace compress
