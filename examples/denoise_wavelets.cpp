// Coefficients, the noise that they show, and the threshold.

#include "denoise.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

#include "support/status.h"

namespace denoise {
namespace {

using demo::requireSuccess;

constexpr int wholeLen = 2 * pieceLen;

int length(const Signal &x)
{
    return static_cast<int>(x.size());
}

Signal impulseAt(int place)
{
    Signal x(wholeLen);
    x[static_cast<std::size_t>(place)] = 1.0;
    return x;
}

} // namespace

std::vector<Bank> allBanks()
{
    return {{"Haar", RVX_WT_HAAR, 0, 0},
            {"Daubechies 4", RVX_WT_DAUBECHIES, 4, 0},
            {"Symlet 8", RVX_WT_SYMLET, 5, 0},
            {"Coiflet 2", RVX_WT_COIFLET, 2, 0},
            {"Spline 2, 4", RVX_WT_BSPLINE, 2, 4}};
}

// A coefficient is a weighted sum of samples, and an impulse at a sample shows the weight of
// that one. In a level the weights are the same from coefficient to coefficient, 2^level samples
// later: so the squares of all answers to as many impulses are those of one coefficient's
// weights.
Transform::Transform(const Bank &bank) : gains_(levels + 1)
{
    rvxdWtInit(bank.par1, bank.par2, pieceOrder + 1, levels, &state_, bank.type);
    requireSuccess(bank.name);
    constexpr int impulses = 1 << levels;
    Signal answer(wholeLen);
    for (int place = 0; place < impulses; ++place) {
        rvxdWtDecompose(&state_, impulseAt(place).data(), answer.data());
        requireSuccess("weights");
        for (int level = 1; level <= levels; ++level)
            gains_[static_cast<std::size_t>(level)] += rvxdNorm(
                answer.data() + detailsStart(level), nullptr, detailsLen(level), RVX_NORM_L2SQ);
    }
    for (int level = 1; level <= levels; ++level) {
        double &gain = gains_[static_cast<std::size_t>(level)];
        gain = std::sqrt(gain / (impulses >> level));
    }
}

// Each call of the transforms clears the status first, so each is looked at by itself.
Signal Transform::decompose(const Signal &piece)
{
    Signal whole = piece;
    whole.insert(whole.end(), piece.rbegin(), piece.rend());
    Signal coefficients(whole.size());
    rvxdWtDecompose(&state_, whole.data(), coefficients.data());
    requireSuccess("decomposition");
    return coefficients;
}

Signal Transform::reconstruct(const Signal &coefficients)
{
    Signal whole(coefficients.size());
    rvxdWtReconstruct(&state_, coefficients.data(), whole.data());
    requireSuccess("reconstruction");
    whole.resize(pieceLen);
    return whole;
}

// How many samples behind k 2^level the coefficient k of a level acts: where the wavelet of
// the middle one has its energy.
int Transform::placeOf(int level)
{
    const int k = detailsLen(level) / 2;
    Signal wavelet(wholeLen);
    rvxdWtReconstruct(&state_, impulseAt(detailsStart(level) + k).data(), wavelet.data());
    requireSuccess("wavelet");
    rvxdbSqr1(wavelet.data(), wholeLen);
    double moment = 0.0;
    for (int i = 0; i < wholeLen; ++i)
        moment += (i - (k << level)) * wavelet[static_cast<std::size_t>(i)];
    const double energy = wholeLen * rvxdMean(wavelet.data(), wholeLen);
    requireSuccess("wavelet");
    return static_cast<int>(std::lround(moment / energy));
}

Signal Transform::spread(const Signal &coefficients, int level)
{
    const int step = 1 << level;
    const int place = (placeOf(level) + wholeLen) % wholeLen;
    int phase = place % step, len = 0;
    Signal whole(wholeLen);
    rvxdUpSample(coefficients.data() + detailsStart(level), detailsLen(level), whole.data(), &len,
                 step, &phase);
    rvxdbMpy1(1.0 / gain(level), whole.data(), len);
    requireSuccess("coefficients over time");
    std::rotate(whole.begin(), whole.end() - (place - phase), whole.end());
    whole.resize(pieceLen);
    return whole;
}

// The finest details are noise nearly all of them, and the median of magnitudes does not mind
// the few that are not: for a normal distribution it is 0.6745 deviations (Donoho and Johnstone,
// Ideal spatial adaptation by wavelet shrinkage, Biometrika 81, 1994).
double noiseIn(const Transform &transform, const Signal &coefficients)
{
    constexpr int count = detailsLen(1) / 2 - 1; // not those of the mirror image; odd
    Signal magnitudes(count);
    rvxdbAbs2(coefficients.data() + detailsStart(1), magnitudes.data(), count);
    rvxdbMedianFilter1(magnitudes.data(), count, count);
    requireSuccess("median");
    return magnitudes[count / 2] / 0.6745 / transform.gain(1);
}

// The largest of n values of noise is hardly ever above that (the same source).
double universalThreshold(double noise)
{
    return noise * std::sqrt(2.0 * std::log(pieceLen));
}

namespace {

// min(x, threshold) for magnitudes, with the sign.
Signal clipped(const Signal &x, double threshold)
{
    Signal y(x.size());
    rvxdbThresh2(x.data(), y.data(), length(x), -threshold, RVX_THRESH_RAISE);
    rvxdbThresh1(y.data(), length(x), threshold, RVX_THRESH_LOWER);
    return y;
}

} // namespace

Signal detailsOf(const Signal &coefficients, int level)
{
    const auto first = coefficients.begin() + detailsStart(level);
    return Signal(first, first + detailsLen(level));
}

Signal softened(const Signal &x, double threshold)
{
    Signal y = x;
    rvxdbSub2(clipped(x, threshold).data(), y.data(), length(y));
    requireSuccess("threshold");
    return y;
}

// Stein's estimate of the risk (Donoho and Johnstone, Adapting to unknown smoothness via wavelet
// shrinkage, J. Am. Stat. Assoc. 90, 1995).
double riskOf(const Signal &x, double threshold, double noise)
{
    const Signal y = clipped(x, threshold);
    const auto within = std::count_if(
        x.begin(), x.end(), [threshold](double value) { return std::fabs(value) <= threshold; });
    const double squares = rvxdNorm(y.data(), nullptr, length(y), RVX_NORM_L2SQ);
    requireSuccess("risk");
    return squares + noise * noise * static_cast<double>(length(x) - 2 * within);
}

namespace {

// The risk is least at zero or at one of the magnitudes. Going through them from the smallest, the
// sum of the squares within the threshold grows by one each time.
double thresholdOfLeastRisk(const Signal &x, double noise)
{
    Signal magnitudes(x.size());
    rvxdbAbs2(x.data(), magnitudes.data(), length(x));
    requireSuccess("magnitudes");
    std::sort(magnitudes.begin(), magnitudes.end());

    const double variance = noise * noise;
    double threshold = 0.0, least = length(x) * variance, squares = 0.0;
    for (int i = 0; i < length(x); ++i) {
        const double magnitude = magnitudes[static_cast<std::size_t>(i)];
        if (magnitude > universalThreshold(noise))
            break;
        squares += magnitude * magnitude;
        const int within = i + 1, beyond = length(x) - within;
        const double risk =
            squares + beyond * magnitude * magnitude + variance * (length(x) - 2 * within);
        if (risk < least) {
            least = risk;
            threshold = magnitude;
        }
    }
    return threshold;
}

} // namespace

Signal thresholdsFor(const Transform &transform, const Signal &coefficients, double noise, int rule)
{
    Signal thresholds;
    for (int level = 1; level <= levels; ++level) {
        const double levelNoise = transform.gain(level) * noise;
        thresholds.push_back(
            rule == universal ? universalThreshold(levelNoise)
                              : thresholdOfLeastRisk(detailsOf(coefficients, level), levelNoise));
    }
    return thresholds;
}

Signal cleaned(const Signal &coefficients, const Signal &thresholds)
{
    Signal kept = coefficients;
    for (int level = 1; level <= levels; ++level) {
        const Signal details = softened(detailsOf(coefficients, level),
                                        thresholds[static_cast<std::size_t>(level - 1)]);
        std::copy(details.begin(), details.end(), kept.begin() + detailsStart(level));
    }
    return kept;
}

Signal partOf(Transform &transform, const Signal &coefficients, int level)
{
    const int start = level == approximation ? 0 : detailsStart(level);
    const int len = detailsLen(std::min(level, levels));
    Signal alone(coefficients.size());
    std::copy_n(coefficients.begin() + start, len, alone.begin() + start);
    return transform.reconstruct(alone);
}

} // namespace denoise
