// Noise: its distributions. Seeds are fixed, so that a test passes always or never. The
// bounds are where the distribution of the statistic itself leaves 1 in 100,000 on either
// side, for noise that is ideal; some hundreds of them are looked at.

#include <cmath>
#include <cstdint>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "reference/noise.h"
#include "rvx.h"

namespace {

#ifdef RVX_TEST_SANITIZED
constexpr int count = 1 << 15;
#else
constexpr int count = 1 << 18;
#endif

// Of the standard normal distribution.
constexpr double quantile = 4.265;

// What is standard normal must be within it.
void expectNormal(double z, const std::string &what)
{
    EXPECT_LE(std::fabs(z), quantile) << what;
}

// Chi-square: its cube root is nearly normal (E. B. Wilson and M. M. Hilferty, The
// distribution of chi-square, 1931).
void expectChiSquare(const std::vector<int> &found, double expected, const std::string &what)
{
    double sum = 0.0;
    for (int n : found)
        sum += (n - expected) * (n - expected) / expected;
    const double freedom = static_cast<double>(found.size()) - 1.0, ninth = 2.0 / (9.0 * freedom);
    expectNormal((std::cbrt(sum / freedom) - (1.0 - ninth)) / std::sqrt(ninth), what);
}

// The mean of terms that have this mean and variance.
void expectMean(double sum, double n, double mean, double variance, const std::string &what)
{
    expectNormal((sum / n - mean) / std::sqrt(variance / n), what);
}

// Of samples with mean 0.
void expectNoCorrelation(const std::vector<double> &x, double variance, const std::string &what)
{
    for (std::size_t lag = 1; lag <= 50; ++lag) {
        double sum = 0.0;
        for (std::size_t i = 0; i + lag < x.size(); ++i)
            sum += x[i] * x[i + lag];
        expectMean(sum, static_cast<double>(x.size() - lag), 0.0, variance * variance,
                   what + ", lag " + std::to_string(lag));
    }
}

void expectMoments(const std::vector<double> &x, const double (&means)[4],
                   const double (&variances)[4], const std::string &what)
{
    double sums[4] = {};
    for (double sample : x) {
        double power = 1.0;
        for (double &sum : sums)
            sum += power *= sample;
    }
    for (int k = 0; k < 4; ++k)
        expectMean(sums[k], static_cast<double>(x.size()), means[k], variances[k],
                   what + ", moment " + std::to_string(k + 1));
}

const double seeds[] = {0.0, 20240229.0, -1.5, 0x1.91eb851eb851fp40};

std::string named(double seed)
{
    return "seed " + std::to_string(seed);
}

std::vector<double> uniformNoise(double seed)
{
    rvxRandUniState state;
    rvxdRandUniInit(seed, -1.0, 1.0, &state);
    std::vector<double> x(count);
    rvxdbRandUni(&state, x.data(), count);
    return x;
}

std::vector<double> gaussianNoise(double seed)
{
    rvxRandGausState state;
    rvxdRandGausInit(seed, 0.0, 1.0, &state);
    std::vector<double> x(count);
    rvxdbRandGaus(&state, x.data(), count);
    return x;
}

// Which of n equal parts of -1 to 1.
std::size_t partOf(double x, int n)
{
    return static_cast<std::size_t>((x + 1.0) * 0.5 * n);
}

} // namespace

TEST(UniformStatistics, MomentsAreThoseOfAnEvenSpread)
{
    for (double seed : seeds)
        expectMoments(uniformNoise(seed), {0.0, 1.0 / 3.0, 0.0, 0.2},
                      {1.0 / 3.0, 4.0 / 45.0, 1.0 / 7.0, 16.0 / 225.0}, named(seed));
}

TEST(UniformStatistics, PartsOfTheRangeAreEquallyFull)
{
    for (double seed : seeds) {
        std::vector<int> found(256);
        for (double x : uniformNoise(seed))
            ++found[partOf(x, 256)];
        expectChiSquare(found, count / 256.0, named(seed));
    }
}

// The upper eight bits of each word may hide what the others do.
TEST(UniformStatistics, LowBitsAreEquallyFullToo)
{
    for (double seed : seeds) {
        std::vector<int> found(256);
        for (double x : uniformNoise(seed)) {
            const double steps = std::nearbyint(x / (2.0 * 2.328306436539e-10));
            ++found[static_cast<std::size_t>(static_cast<std::int64_t>(steps) & 255)];
        }
        expectChiSquare(found, count / 256.0, named(seed));
    }
}

TEST(UniformStatistics, SamplesAreNotCorrelated)
{
    for (double seed : seeds)
        expectNoCorrelation(uniformNoise(seed), 1.0 / 3.0, named(seed));
}

TEST(UniformStatistics, PairsFillTheSquareEvenly)
{
    for (double seed : seeds) {
        const std::vector<double> x = uniformNoise(seed);
        for (std::size_t lag : {1U, 2U, 3U}) {
            std::vector<int> found(64 * 64);
            int pairs = 0;
            // Pairs do not share samples, so that they are independent.
            for (std::size_t i = 0; i + 2 * lag <= x.size(); i += 2 * lag)
                for (std::size_t j = i; j < i + lag; ++j, ++pairs)
                    ++found[partOf(x[j], 64) * 64 + partOf(x[j + lag], 64)];
            expectChiSquare(found, pairs / 4096.0, named(seed) + ", lag " + std::to_string(lag));
        }
    }
}

// The recurrence under the sum joins three words. Without the other sequence the
// triples would lie in two planes.
TEST(UniformStatistics, TriplesOfTheRecurrenceFillTheCubeEvenly)
{
    for (double seed : seeds) {
        const std::vector<double> x = uniformNoise(seed);
        std::vector<int> found(16 * 16 * 16);
        int triples = 0;
        for (std::size_t i = 0; i + 4 <= x.size(); i += 4, ++triples)
            ++found[(partOf(x[i], 16) * 16 + partOf(x[i + 1], 16)) * 16 + partOf(x[i + 3], 16)];
        expectChiSquare(found, triples / 4096.0, named(seed));
    }
}

TEST(GaussianStatistics, MomentsAreThoseOfTheBellCurve)
{
    for (double seed : seeds)
        expectMoments(gaussianNoise(seed), {0.0, 1.0, 0.0, 3.0}, {1.0, 2.0, 15.0, 96.0},
                      named(seed));
}

TEST(GaussianStatistics, PartsOfEqualProbabilityAreEquallyFull)
{
    for (double seed : seeds) {
        std::vector<int> found(256);
        for (double x : gaussianNoise(seed))
            ++found[static_cast<std::size_t>(128.0 * std::erfc(-x / std::sqrt(2.0)))];
        expectChiSquare(found, count / 256.0, named(seed));
    }
}

TEST(GaussianStatistics, TailsAreAsFullAsTheyShouldBe)
{
    for (double seed : seeds) {
        const std::vector<double> noise = gaussianNoise(seed);
        for (double limit : {2.0, 2.5, 3.0, 3.5})
            for (double sign : {1.0, -1.0}) {
                const double share = 0.5 * std::erfc(limit / std::sqrt(2.0));
                double beyond = 0.0;
                for (double x : noise)
                    beyond += sign * x > limit ? 1.0 : 0.0;
                expectMean(beyond, count, share, share * (1.0 - share),
                           named(seed) + ", beyond " + std::to_string(sign * limit));
            }
    }
}

TEST(GaussianStatistics, SamplesAreNotCorrelated)
{
    for (double seed : seeds)
        expectNoCorrelation(gaussianNoise(seed), 1.0, named(seed));
}

TEST(GaussianStatistics, BothOfAPairAreIndependent)
{
    for (double seed : seeds) {
        const std::vector<double> x = gaussianNoise(seed);
        double product = 0.0, squares = 0.0;
        std::vector<int> angles(256);
        for (std::size_t i = 0; i < x.size(); i += 2) {
            product += x[i] * x[i + 1];
            squares += (x[i] * x[i] - 1.0) * (x[i + 1] * x[i + 1] - 1.0);
            const double turns = std::atan2(x[i], x[i + 1]) / (2.0 * std::acos(-1.0)) + 0.5;
            ++angles[static_cast<std::size_t>(turns * 256.0) % 256];
        }
        expectMean(product, count / 2.0, 0.0, 1.0, named(seed) + ", product");
        expectMean(squares, count / 2.0, 0.0, 4.0, named(seed) + ", product of squares");
        expectChiSquare(angles, count / 512.0, named(seed) + ", angles");
    }
}

TEST(GaussianStatistics, ShareOfDroppedPairsIsThatOutsideTheCircle)
{
    for (double seed : seeds) {
        rvxRandGausState state;
        rvxdRandGausInit(seed, 0.0, 1.0, &state);
        std::vector<ZCplx> x(count / 8);
        reference::Words words;
        words.carry = 1;
        words.plant(seed);
        rvxzbRandGaus(&state, x.data(), count / 8);
        double pairs = 0.0;
        do {
            words.nextSigned();
            words.nextSigned();
            pairs += 1.0;
        } while (words.cong != state.seedCong);
        const double share = std::acos(-1.0) / 4.0;
        expectMean(count / 8.0, pairs, share, share * (1.0 - share), named(seed));
    }
}

TEST(NoiseSeeds, ThatAreNearBeginAlikeAndPartWithinAHundredSamples)
{
    for (double seed : {0.0, 1.0, 1000.0, 1e6}) {
        const std::vector<double> a = uniformNoise(seed), b = uniformNoise(seed + 1.0);
        for (std::size_t i = 0; i < 8; ++i)
            EXPECT_NEAR(a[i], b[i], 1e-3) << seed; // said in the guide
        double product = 0.0;
        for (std::size_t i = 100; i < a.size(); ++i)
            product += a[i] * b[i];
        expectMean(product, count - 100.0, 0.0, 1.0 / 9.0, named(seed));
    }
}
