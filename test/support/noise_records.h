// Records of noise for tests, begun and compared.

#ifndef RVX_TEST_NOISE_RECORDS_H
#define RVX_TEST_NOISE_RECORDS_H

#include <cmath>
#include <cstring>
#include <vector>

#include <gtest/gtest.h>

#include "reference/noise.h"
#include "rvx.h"
#include "support/bits.h"

// Every size of seed, both signs, and what is no number.
inline std::vector<double> seeds()
{
    std::vector<double> all = {0.0,  -0.0, 0.9,    1.0,    -1.0,   1.5,     -1.5,   2.0,
                               77.0, 1e-3, 1e-310, INF,    -INF,   QUIET,   -QUIET, 1e300,
                               1e10, 1e15, -3e9,   0x1p31, 0x1p32, -0x1p32, 0x1p63, 0x1p64};
    for (int exponent = -2; exponent < 140; ++exponent)
        for (double significand : {1.0, 1.75, 0x1.fffffffffffffp0, 0x1.23456789abcdep0})
            all.push_back(std::ldexp(significand, exponent) * (exponent % 3 == 0 ? -1.0 : 1.0));
    return all;
}

// In memory that held something else.
inline rvxRandUniState uniform(double seed, double low = -1.0, double high = 1.0)
{
    rvxRandUniState state;
    std::memset(&state, 0xa5, sizeof state);
    rvxdRandUniInit(seed, low, high, &state);
    return state;
}

inline rvxRandGausState gaussian(double seed, double mean = 0.0, double stDev = 1.0)
{
    rvxRandGausState state;
    std::memset(&state, 0xa5, sizeof state);
    rvxdRandGausInit(seed, mean, stDev, &state);
    return state;
}

template <typename State>
void expectWords(const State &state, const reference::Words &words)
{
    EXPECT_EQ(state.seedCong, words.cong);
    EXPECT_EQ(state.carry, words.carry);
    EXPECT_EQ(state.x1, words.x1);
    EXPECT_EQ(state.x2, words.x2);
    EXPECT_EQ(state.x3, words.x3);
    EXPECT_EQ(state.seedInit, words.seedInit);
}

inline bool sameRecord(const rvxRandUniState &a, const rvxRandUniState &b)
{
    return bitsOf(a.mean) == bitsOf(b.mean) && bitsOf(a.scale) == bitsOf(b.scale) &&
           a.seedCong == b.seedCong && a.carry == b.carry && a.x1 == b.x1 && a.x2 == b.x2 &&
           a.x3 == b.x3 && a.seedInit == b.seedInit;
}

inline bool sameRecord(const rvxRandGausState &a, const rvxRandGausState &b)
{
    return bitsOf(a.mean) == bitsOf(b.mean) && bitsOf(a.stDev) == bitsOf(b.stDev) &&
           bitsOf(a.spare) == bitsOf(b.spare) && a.haveSpare == b.haveSpare &&
           a.seedCong == b.seedCong && a.carry == b.carry && a.x1 == b.x1 && a.x2 == b.x2 &&
           a.x3 == b.x3 && a.seedInit == b.seedInit;
}

#endif
