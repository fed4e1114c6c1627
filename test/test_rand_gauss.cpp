// Gaussian noise: its sequences.

#include <cmath>
#include <cstdint>
#include <vector>

#include <gtest/gtest.h>

#include "generation/rvxrand_ln.h"
#include "reference/correct.h"
#include "reference/noise.h"
#include "rvx.h"
#include "support/bits.h"
#include "support/guarded.h"
#include "support/noise_records.h"

namespace {

// What the module takes, within its own bound of the nearest double.
double ownLn(double w)
{
    return firstLane(lnBelowOne(allLanes(w)));
}

double nearestLn(double w)
{
    return reference::correct(mpfr_log, w);
}

// A record whose next two words, with those of the congruential sequence, are u and v.
rvxRandGausState recordBefore(unsigned u, unsigned v)
{
    rvxRandGausState state = gaussian(8.0);
    state.spare = 0.0;
    state.carry = 0;
    state.x3 = 0;
    for (state.seedCong = 1;; ++state.seedCong) {
        const unsigned c1 = state.seedCong * 69069 + 1013904243, c2 = c1 * 69069 + 1013904243;
        state.x2 = u - c1;
        const unsigned second = v - c2;
        state.x1 = second + state.x2;
        // Nothing is borrowed from differences above 0.
        if (static_cast<int>(state.x2) > 0 && static_cast<int>(second) > 0)
            return state;
    }
}

// Of few pairs, which are drawn one by one, and of many.
void expectSequence(const rvxRandGausState &from)
{
    for (unsigned n : {1U, 9U, 25U, 200U}) {
        rvxRandGausState state = from;
        reference::Gaussian right(8.0, 0.0, 1.0, ownLn);
        right.cong = state.seedCong;
        right.carry = state.carry;
        right.x1 = state.x1;
        right.x2 = state.x2;
        right.x3 = state.x3;
        std::vector<double> samps(n);
        rvxdbRandGaus(&state, samps.data(), n);
        for (double sample : samps)
            ASSERT_EQ(bitsOf(sample), bitsOf(right.next())) << n;
        expectWords(state, right);
    }
}

} // namespace

TEST(GaussianNoise, IsTheSequenceOfASecondWriting)
{
    for (double seed : seeds()) {
        reference::Gaussian right(seed, -0.3, 0.9, ownLn);
        rvxRandGausState state = gaussian(seed, -0.3, 0.9);
        Guarded<double> samps(1001, 1);
        rvxdbRandGaus(&state, samps.data(), 1001);
        for (int i = 0; i < 1001; ++i)
            ASSERT_EQ(bitsOf(samps[i]), bitsOf(right.next())) << seed << " at " << i;
        expectWords(state, right);
        EXPECT_EQ(state.haveSpare, 1U);
        EXPECT_EQ(bitsOf(state.spare), bitsOf(right.spare));
        EXPECT_TRUE(samps.intact());
    }
}

// Where the logarithm is not the nearest double, the sample is the next one or the same.
TEST(GaussianNoise, HardlyEverDiffersFromThatOfAnExactLogarithm)
{
    constexpr int n = 10000;
    for (double seed : {0.0, 5.0, -1e9}) {
        reference::Gaussian right(seed, 0.0, 1.0, nearestLn);
        rvxRandGausState state = gaussian(seed);
        std::vector<double> samps(n);
        rvxdbRandGaus(&state, samps.data(), n);
        int differ = 0;
        for (double sample : samps) {
            const double exact = right.next();
            differ += bitsOf(sample) == bitsOf(exact) ? 0 : 1;
            ASSERT_NEAR(sample, exact, std::fabs(exact) * 0x1p-51);
        }
        EXPECT_LE(differ, 4) << seed;
    }
}

TEST(GaussianNoise, WithoutDeviationIsItsMeanAndStillDrawsWords)
{
    rvxRandGausState flat = gaussian(4.0, 1.5, 0.0), other = gaussian(4.0, 0.0, 1.0);
    double samps[31], others[31];
    rvxdbRandGaus(&flat, samps, 31);
    rvxdbRandGaus(&other, others, 31);
    for (double sample : samps)
        EXPECT_EQ(sample, 1.5);
    EXPECT_EQ(flat.x1, other.x1);
    EXPECT_EQ(flat.seedCong, other.seedCong);
    EXPECT_EQ(flat.haveSpare, 1U);
    EXPECT_EQ(flat.spare, 1.5);
}

TEST(GaussianNoise, TakesParametersThatAreNoNumbers)
{
    for (double mean : {0.0, QUIET, INF})
        for (double stDev : {1.0, -1.0, QUIET, INF}) {
            rvxRandGausState state = gaussian(4.0, mean, stDev), plain = gaussian(4.0);
            double samps[31], others[31];
            rvxdbRandGaus(&state, samps, 31);
            rvxdbRandGaus(&plain, others, 31);
            for (int i = 0; i < 31; ++i) {
                const double right = others[i] * stDev + mean;
                if (std::isnan(right))
                    EXPECT_TRUE(std::isnan(samps[i]));
                else
                    EXPECT_EQ(samps[i], right);
            }
            EXPECT_EQ(state.x1, plain.x1);
        }
}

TEST(GaussianNoise, KeepsTheSecondOfAPairForLater)
{
    rvxRandGausState state = gaussian(8.0);
    double first, second;
    rvxdbRandGaus(&state, &first, 1);
    EXPECT_EQ(state.haveSpare, 1U);
    const rvxRandGausState between = state;
    rvxdbRandGaus(&state, &second, 1);
    EXPECT_EQ(state.haveSpare, 0U);
    EXPECT_EQ(bitsOf(second), bitsOf(between.spare));
    EXPECT_EQ(bitsOf(state.spare), bitsOf(between.spare));
    EXPECT_EQ(state.x1, between.x1); // no words were drawn
    EXPECT_EQ(state.seedCong, between.seedCong);
}

TEST(GaussianNoise, TakesAnyMarkOfASpare)
{
    for (unsigned mark : {1U, 2U, 0x80000000U, 0xffffffffU})
        for (unsigned n : {1U, 2U, 3U, 200U}) {
            rvxRandGausState state = gaussian(8.0), plain = state;
            state.haveSpare = mark;
            state.spare = 123.0;
            std::vector<double> samps(n), others(n);
            rvxdbRandGaus(&state, samps.data(), n);
            EXPECT_EQ(samps[0], 123.0);
            EXPECT_EQ(state.haveSpare, n % 2 == 0 ? 1U : 0U);
            if (n == 1) {
                EXPECT_EQ(state.x1, plain.x1);
                continue;
            }
            rvxdbRandGaus(&plain, others.data(), n - 1);
            for (unsigned i = 1; i < n; ++i)
                EXPECT_TRUE(sameBits(samps[i], others[i - 1])) << i << " of " << n;
            EXPECT_TRUE(sameRecord(state, plain));
        }
}

// The words 0 and 0 are the centre of the circle.
TEST(GaussianNoise, PassesOverAPairOfZeros)
{
    expectSequence(recordBefore(0, 0));
}

// A pair whose w is exactly 1 is outside. There is one in some ten million on the circle.
TEST(GaussianNoise, PassesOverAPairOnTheCircle)
{
    const unsigned found[][2] = {
        {721247881, 2022742572},
        {721772243, 2022555524},
        {731972857, 2018886266},
        {734879489, 2017830061},
    };
    for (const auto &pair : found) {
        const volatile double u = pair[0] * 4.656612873077e-10, v = pair[1] * 4.656612873077e-10;
        const volatile double uu = u * u, vv = v * v;
        ASSERT_EQ(uu + vv, 1.0);
        expectSequence(recordBefore(pair[0], pair[1]));
        expectSequence(recordBefore(0 - pair[0], pair[1]));
        expectSequence(recordBefore(pair[1], 0 - pair[0]));
    }
}
