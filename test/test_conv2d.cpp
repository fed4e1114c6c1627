// Two-dimensional convolution: checks, routes, and the bits of every route.

#include <array>
#include <cmath>
#include <cstring>
#include <limits>
#include <random>
#include <vector>

#include <gtest/gtest.h>

#include "convolution/rvxcnv2d.h"
#include "reference/hartley.h"
#include "rvx.h"
#include "support/conv2d.h"
#include "support/guarded.h"
#include "support/reports.h"
#include "support/walled.h"
#include "support/worse.h"

namespace {

using reference::Route2d;

constexpr double INF = std::numeric_limits<double>::infinity();
constexpr double QUIET = std::numeric_limits<double>::quiet_NaN();

// ---------------------------------------------------------------------------
// Checks

TEST(Conv2DChecks, ComeInTheirOrderAndWriteNothing)
{
    Reports reports;
    const double x[4] = {1, 2, 3, 4};
    double y[9] = {7, 7, 7, 7, 7, 7, 7, 7, 7};
    const char *null = "\nNull pointer to data buffer\n";
    const char *size = "\nBad value of data buffer size\n";
    const auto rejected = [&](const char *context) {
        const bool alike = reports.take() == badArgument("rvxdConv2D", context, "rvxcnv2d");
        for (double value : y)
            EXPECT_EQ(value, 7.0);
        return alike;
    };
    rvxdConv2D(nullptr, 0, 0, nullptr, 0, 0, nullptr);
    EXPECT_TRUE(rejected(null));
    rvxdConv2D(nullptr, 0, 2, x, 2, 2, y);
    EXPECT_TRUE(rejected(null));
    rvxdConv2D(x, 2, -1, nullptr, 2, 2, y);
    EXPECT_TRUE(rejected(null));
    rvxdConv2D(x, 2, 2, x, 0, 0, nullptr);
    EXPECT_TRUE(rejected(null));
    for (int bad : {0, -1, std::numeric_limits<int>::min()}) {
        rvxdConv2D(x, bad, 2, x, 2, 2, y);
        EXPECT_TRUE(rejected(size));
        rvxdConv2D(x, 2, bad, x, 2, 2, y);
        EXPECT_TRUE(rejected(size));
        rvxdConv2D(x, 2, 2, x, bad, 2, y);
        EXPECT_TRUE(rejected(size));
        rvxdConv2D(x, 2, 2, x, 2, bad, y);
        EXPECT_TRUE(rejected(size));
        rvxdConv2D(x, bad, bad, x, bad, bad, y);
        EXPECT_TRUE(rejected(size));
    }
    EXPECT_EQ(rvxGetErrStatus(), RVX_STATUS_BAD_ARGUMENT);
}

TEST(Conv2DChecks, EndTheProcessInModeZero)
{
    double x = 1.0;
    rvxSetErrMode(0);
    EXPECT_EXIT(rvxdConv2D(&x, 0, 1, &x, 1, 1, &x), ::testing::ExitedWithCode(1), "");
    EXPECT_EXIT(rvxdConv2D(nullptr, 1, 1, &x, 1, 1, &x), ::testing::ExitedWithCode(1), "");
}

// ---------------------------------------------------------------------------
// The choice of a route and of a block

Route2d chosen(int xCols, int xRows, int hCols, int hRows)
{
    switch (rvxChooseConv2dRoute({nullptr, xCols, xRows}, {nullptr, hCols, hRows})) {
    case Conv2dRoute::direct:
        return Route2d::direct;
    case Conv2dRoute::oneDimensional:
        return Route2d::oneDimensional;
    case Conv2dRoute::overlap:
        return Route2d::overlap;
    default:
        return Route2d::whole;
    }
}

Route2d expected(int xCols, int xRows, int hCols, int hRows)
{
    return reference::routeOf(sized(xCols, xRows), sized(hCols, hRows));
}

TEST(Conv2DRoute, ChangesAtEachBorder)
{
    // All below 17.
    EXPECT_EQ(chosen(16, 16, 16, 16), Route2d::direct);
    EXPECT_EQ(chosen(17, 16, 8, 8), Route2d::overlap);
    EXPECT_EQ(chosen(16, 17, 8, 8), Route2d::overlap);
    EXPECT_EQ(chosen(16, 16, 17, 16), Route2d::whole);
    EXPECT_EQ(chosen(16, 16, 16, 17), Route2d::whole);
    EXPECT_EQ(chosen(16, 17, 17, 16), Route2d::whole);
    // One below 8 by 8.
    EXPECT_EQ(chosen(1000, 1000, 7, 7), Route2d::direct);
    EXPECT_EQ(chosen(7, 7, 1000, 1000), Route2d::direct);
    EXPECT_EQ(chosen(1000, 1000, 8, 7), Route2d::overlap);
    EXPECT_EQ(chosen(1000, 1000, 7, 8), Route2d::overlap);
    EXPECT_EQ(chosen(8, 7, 1000, 1000), Route2d::overlap);
    EXPECT_EQ(chosen(7, 8, 1000, 1000), Route2d::overlap);
    // Rows and columns.
    EXPECT_EQ(chosen(1000, 1, 50, 1), Route2d::oneDimensional);
    EXPECT_EQ(chosen(1, 1000, 1, 50), Route2d::oneDimensional);
    EXPECT_EQ(chosen(1000, 1, 7, 1), Route2d::direct);
    EXPECT_EQ(chosen(1000, 1, 8, 1), Route2d::oneDimensional);
    EXPECT_EQ(chosen(1000, 1, 1, 50), Route2d::whole);
    EXPECT_EQ(chosen(1, 1000, 50, 1), Route2d::whole);
    EXPECT_EQ(chosen(1000, 2, 50, 1), Route2d::overlap);
    // x covers h, twice in one dimension.
    EXPECT_EQ(chosen(20, 20, 20, 20), Route2d::whole);
    EXPECT_EQ(chosen(20, 40, 20, 20), Route2d::overlap);
    EXPECT_EQ(chosen(20, 39, 20, 20), Route2d::whole);
    EXPECT_EQ(chosen(19, 40, 20, 20), Route2d::whole);
    EXPECT_EQ(chosen(40, 20, 20, 20), Route2d::overlap);
    EXPECT_EQ(chosen(39, 20, 20, 20), Route2d::whole);
    EXPECT_EQ(chosen(40, 19, 20, 20), Route2d::whole);
    // h covers x.
    EXPECT_EQ(chosen(20, 20, 40, 40), Route2d::overlap);
    EXPECT_EQ(chosen(20, 20, 20, 40), Route2d::overlap);
    EXPECT_EQ(chosen(20, 20, 20, 39), Route2d::whole);
    EXPECT_EQ(chosen(20, 20, 19, 40), Route2d::whole);
    EXPECT_EQ(chosen(20, 20, 40, 20), Route2d::overlap);
    EXPECT_EQ(chosen(20, 20, 39, 20), Route2d::whole);
    EXPECT_EQ(chosen(20, 20, 40, 19), Route2d::whole);
}

TEST(Conv2DRoute, IsTheSameInAnotherWritingForAllSmallSizes)
{
    for (int xCols = 1; xCols < 36; ++xCols)
        for (int xRows = 1; xRows < 36; ++xRows)
            for (int hCols = 1; hCols < 36; ++hCols)
                for (int hRows = 1; hRows < 36; ++hRows)
                    ASSERT_EQ(chosen(xCols, xRows, hCols, hRows),
                              expected(xCols, xRows, hCols, hRows))
                        << xCols << " x " << xRows << ", " << hCols << " x " << hRows;
}

TEST(Conv2DRoute, DoesNotOverflow)
{
    const int most = std::numeric_limits<int>::max();
    EXPECT_EQ(chosen(most, most, 20, 20), Route2d::overlap);
    EXPECT_EQ(chosen(20, 20, most, most), Route2d::overlap);
    EXPECT_EQ(chosen(most, most, most, most), Route2d::whole);
    EXPECT_EQ(chosen(most, 20, 20, most), Route2d::whole);
}

TEST(Conv2DBlock, IsThatOfTheLongRuleOverBothOperands)
{
    const auto block = [](int smallCols, int smallRows) {
        const Conv2dBlock b = rvxChooseConv2dBlock({nullptr, smallCols, smallRows});
        return std::make_pair(b.rows, b.cols);
    };
    using Size = std::pair<std::int64_t, std::int64_t>;
    EXPECT_EQ(block(31, 32), Size(64, 64));
    EXPECT_EQ(block(32, 33), Size(128, 64));
    EXPECT_EQ(block(50, 1), Size(2, 128)); // one row: transforms of sum and difference
    EXPECT_EQ(block(2, 16), Size(32, 4));
    for (int n = 0; n < 20000; ++n) {
        std::mt19937 bits(static_cast<unsigned>(n));
        const auto upTo = [&bits](int most) { return 1 + static_cast<int>(bits() >> 1) % most; };
        const int bigCols = upTo(600), bigRows = upTo(600);
        const int smallCols = upTo(bigCols), smallRows = upTo(bigRows);
        if (expected(bigCols, bigRows, smallCols, smallRows) != Route2d::overlap)
            continue;
        const auto mine = block(smallCols, smallRows);
        const auto theirs =
            reference::overlapBlock(sized(bigCols, bigRows), sized(smallCols, smallRows));
        ASSERT_EQ(static_cast<std::size_t>(mine.first), theirs.first);
        ASSERT_EQ(static_cast<std::size_t>(mine.second), theirs.second);
    }
}

// ---------------------------------------------------------------------------
// Bits

// One convolution at some alignment against the reference, bit by bit.
void expectBits(const Grid &x, const Grid &h, int misalignment)
{
    const std::vector<double> result = convolved(x, h, misalignment);
    const std::vector<double> wanted = reference2d(x, h);
    ASSERT_TRUE(sameBits(result, wanted)) << describe(x, h, result, wanted);
}

void expectBits(int xCols, int xRows, int hCols, int hRows, unsigned seed)
{
    expectBits(noise(xCols, xRows, seed), noise(hCols, hRows, seed + 1),
               static_cast<int>(seed % 4));
}

TEST(Conv2DBits, OfTheDirectSum)
{
    for (int xCols = 1; xCols <= 16; ++xCols)
        for (int xRows = 1; xRows <= 16; xRows += 3)
            for (int hCols = 1; hCols <= 16; hCols += 2)
                for (int hRows = 1; hRows <= 16; hRows += 3)
                    expectBits(xCols, xRows, hCols, hRows,
                               static_cast<unsigned>(xCols * 64 + xRows));
}

TEST(Conv2DBits, OfTheDirectSumOverLargeMatrices)
{
    for (int kernelCols = 1; kernelCols <= 7; ++kernelCols)
        for (int kernelRows = 1; kernelRows <= 7; ++kernelRows)
            for (int n = 0; n < 6; ++n) {
                const unsigned seed = static_cast<unsigned>(kernelCols * 8 + kernelRows) * 8u +
                                      static_cast<unsigned>(n);
                std::mt19937 bits(seed);
                const int cols = 1 + static_cast<int>(bits() % 90);
                const int rows = 1 + static_cast<int>(bits() % 60);
                expectBits(cols, rows, kernelCols, kernelRows, seed);
                expectBits(kernelCols, kernelRows, cols, rows, seed + 7);
            }
}

// Every array touches memory that may not be used, on one side or the other.
void expectBitsBetweenWalls(int xCols, int xRows, int hCols, int hRows)
{
    const Grid x = noise(xCols, xRows, 3), h = noise(hCols, hRows, 4);
    const std::vector<double> wanted = reference2d(x, h);
    for (Wall wall : {Wall::before, Wall::behind}) {
        Walled<double> xs(x.values, wall), hs(h.values, wall);
        Walled<double> y(std::vector<double>(outputsOf(x, h), RVX_UNWRITTEN), wall);
        rvxdConv2D(xs.data(), xCols, xRows, hs.data(), hCols, hRows, y.data());
        ASSERT_TRUE(sameBits(y.values(), wanted)) << describe(x, h, y.values(), wanted);
    }
}

// Tiles are 8 columns by 4 rows for kernels of three rows, else 24 by 2. They begin
// behind the left margin, which is as wide as the kernel but one.
TEST(Conv2DBits, OfTheDirectSumWhereTilesBeginAndEndBetweenWalls)
{
    for (int hRows : {1, 2, 3, 4, 7})
        for (int hCols : {1, 2, 3, 6, 7}) {
            const int tile = hRows == 3 ? 8 : 24;
            for (int middle : {tile - 1, tile, tile + 1, 2 * tile - 1, 2 * tile, 2 * tile + 1})
                for (int xRows = 1; xRows <= 9; ++xRows)
                    expectBitsBetweenWalls(hCols - 1 + middle, xRows, hCols, hRows);
        }
    for (int cols = 1; cols <= 16; ++cols)
        expectBitsBetweenWalls(cols, 16, 16, 3 + 13 * (cols % 2));
}

TEST(Conv2DBits, OfOneTransform)
{
    for (const auto &s : {std::array<int, 4>{20, 20, 20, 20},
                          {17, 8, 8, 17},
                          {33, 9, 20, 17},
                          {9, 33, 17, 20},
                          {1, 40, 30, 1},
                          {40, 1, 1, 30},
                          {65, 64, 64, 65},
                          {100, 3, 60, 5},
                          {3, 100, 5, 60},
                          {1, 300, 9, 299},
                          {300, 1, 299, 9},
                          {130, 70, 129, 129},
                          {2, 200, 9, 120},
                          {512, 300, 300, 200}})
        expectBits(s[0], s[1], s[2], s[3], static_cast<unsigned>(s[0]));
}

TEST(Conv2DBits, OfTiles)
{
    for (const auto &s : {std::array<int, 4>{40, 40, 20, 20},
                          {20, 20, 40, 40},
                          {100, 100, 50, 1},
                          {100, 100, 1, 50},
                          {200, 10, 9, 9},
                          {10, 200, 9, 9},
                          {64, 64, 32, 32},
                          {63, 65, 31, 33},
                          {300, 200, 8, 64},
                          {300, 200, 64, 8},
                          {17, 16, 8, 8},
                          {128, 33, 2, 9},
                          {33, 128, 9, 2},
                          {9, 500, 8, 20},
                          {500, 9, 20, 8},
                          {256, 256, 31, 31},
                          {1000, 2, 50, 1},
                          {2, 1000, 1, 50}})
        expectBits(s[0], s[1], s[2], s[3], static_cast<unsigned>(s[1]));
}

TEST(Conv2DBits, OfThousandsOfShapes)
{
    std::mt19937 bits(5);
    int taken[4] = {};
    for (int n = 0; n < 4000; ++n) {
        // Sizes of every magnitude: few are large.
        const auto size = [&bits] {
            const int limit = 2 << (bits() % 7);
            return 1 + static_cast<int>(bits() % static_cast<unsigned>(limit));
        };
        const int xCols = size(), xRows = size(), hCols = size(), hRows = size();
        ++taken[static_cast<int>(expected(xCols, xRows, hCols, hRows))];
        expectBits(xCols, xRows, hCols, hRows, static_cast<unsigned>(n));
    }
    for (int route : {0, 2, 3})
        EXPECT_GT(taken[route], 300) << "route " << route;
    EXPECT_GT(taken[1], 15);
}

TEST(Conv2DBits, SignsOfZeroAndSpecialValuesGoThroughTransformsAlike)
{
    std::mt19937 bits(6);
    const double specials[] = {0.0, -0.0, 5e-324, -1e-310, 1e308, -1e300, 1.0};
    for (int n = 0; n < 120; ++n) {
        Grid x = noise(40, 20 + n % 60, static_cast<unsigned>(n));
        Grid h = noise(20, 15, 77);
        if (n >= 60) { // all in one transform
            x = noise(40, 20 + n % 30, static_cast<unsigned>(n));
            h = noise(30, 25, 77);
        }
        for (Grid *m : {&x, &h})
            for (double &value : m->values)
                if (bits() % 3 != 0)
                    value = specials[bits() % 7];
        if (n % 4 == 0)
            x.values.assign(x.values.size(), -0.0);
        if (n % 5 == 0)
            std::fill(x.values.begin() + 80, x.values.end(), -0.0);
        expectBits(x, h, n % 4);
    }
}

// ---------------------------------------------------------------------------
// What the direct sum passes over

TEST(Conv2DDirect, ZeroAndNanCoefficientsArePassedOver)
{
    Grid x = noise(30, 20, 1);
    for (std::size_t i = 0; i < x.values.size(); i += 7)
        x.values[i] = i % 2 == 0 ? INF : QUIET;
    for (double passedOver : {0.0, -0.0, QUIET, -QUIET}) {
        const Grid h = {std::vector<double>(15, passedOver), 5, 3};
        for (double value : convolved(x, h, 0))
            EXPECT_EQ(bitsOf(value), bitsOf(0.0));
        Grid one = h;
        one.values[7] = 2.5;
        expectBits(x, one, 1);
        expectBits(one, x, 2); // the narrower one is walked, whichever it is
    }
}

TEST(Conv2DDirect, CoefficientsOfZeroMeetNoInfinityInsideLargeMatrices)
{
    Grid x = noise(90, 40, 1);
    for (std::size_t i = 0; i < x.values.size(); i += 331)
        x.values[i] = i % 2 == 0 ? INF : QUIET;
    for (int rows = 1; rows <= 7; ++rows)
        for (int cols = 1; cols <= 7; ++cols) {
            Grid h = noise(cols, rows, 2);
            for (std::size_t i = 0; i < h.values.size(); i += 2)
                h.values[i] = i % 4 == 0 ? 0.0 : QUIET;
            expectBits(x, h, rows % 4);
        }
}

TEST(Conv2DDirect, AmongEquallyWideOperandsHGivesTheCoefficients)
{
    Grid x = noise(5, 4, 1), h = noise(5, 6, 2);
    h.values[3] = QUIET;
    for (double value : convolved(x, h, 0))
        EXPECT_TRUE(std::isfinite(value));
    h = noise(5, 6, 2);
    x.values[3] = QUIET;
    int nans = 0;
    for (double value : convolved(x, h, 0))
        nans += std::isnan(value) ? 1 : 0;
    EXPECT_EQ(nans, 30);
    expectBits(x, h, 0);
}

TEST(Conv2DDirect, TheNarrowerOperandGivesTheCoefficientsEvenIfItIsHigher)
{
    Grid x = noise(4, 300, 1);
    const Grid h = noise(7, 7, 2);
    x.values[100] = QUIET;
    for (double value : convolved(x, h, 0))
        EXPECT_TRUE(std::isfinite(value));
    expectBits(x, h, 0);
}

TEST(Conv2DDirect, InfiniteCoefficientsReachTheirOutputsAlone)
{
    for (double special : {INF, -INF}) {
        Grid x = noise(70, 40, 3);
        x.values[500] = 0.0;
        x.values[900] = special;
        Grid h = noise(7, 5, 4);
        h.values[11] = special;
        expectBits(x, h, 0);
        expectBits(h, x, 3);
    }
}

TEST(Conv2DDirect, TinyAndHugeProductsRoundAsTheyShould)
{
    std::mt19937 bits(8);
    for (int n = 0; n < 20; ++n) {
        Grid x = noise(50, 30, static_cast<unsigned>(n)), h = noise(6, 6, 99);
        for (double &value : x.values)
            value = std::ldexp(value, static_cast<int>(bits() % 1200) - 1070);
        for (double &value : h.values)
            value = std::ldexp(value, static_cast<int>(bits() % 100) - 50);
        expectBits(x, h, n % 4);
    }
}

TEST(Conv2DTransforms, ANanOfAnInputMakesEverythingNan)
{
    Grid x = noise(20, 20, 1);
    const Grid h = noise(20, 20, 2);
    x.values[123] = QUIET;
    for (double value : convolved(x, h, 0))
        EXPECT_TRUE(std::isnan(value));
    for (double value : convolved(h, x, 0))
        EXPECT_TRUE(std::isnan(value));
    Grid small = noise(9, 9, 3);
    small.values[5] = QUIET;
    for (double value : convolved(noise(60, 50, 4), small, 0))
        EXPECT_TRUE(std::isnan(value));
}

TEST(Conv2DTransforms, ANanSpoilsItsTileAlone)
{
    Grid x = noise(64, 16, 1);
    const Grid h = noise(8, 8, 2);
    x.values[0] = QUIET; // tiles of 8 by 8: outputs 0 to 14 by 0 to 14
    const std::vector<double> y = convolved(x, h, 0);
    for (int r = 0; r < 23; ++r)
        for (int c = 0; c < 71; ++c)
            EXPECT_EQ(std::isnan(y[static_cast<std::size_t>(r * 71 + c)]), r < 15 && c < 15);
}

// ---------------------------------------------------------------------------
// One row or one column each

TEST(Conv2DOneDimensional, IsTheOneDimensionalConvolution)
{
    for (int xLen : {9, 17, 100, 1000, 5000})
        for (int hLen : {8, 17, 50, 300}) {
            const Grid x = noise(xLen, 1, 1), h = noise(hLen, 1, 2);
            std::vector<double> wanted(static_cast<std::size_t>(xLen + hLen - 1));
            if (xLen < 17 && hLen < 17)
                continue;
            rvxdConv(x.values.data(), xLen, h.values.data(), hLen, wanted.data());
            EXPECT_TRUE(sameBits(convolved(x, h, xLen % 4), wanted));
            const Grid xColumn = {x.values, 1, x.cols}, hColumn = {h.values, 1, h.cols};
            EXPECT_TRUE(sameBits(convolved(xColumn, hColumn, hLen % 4), wanted));
        }
}

// ---------------------------------------------------------------------------
// One array as both operands

TEST(Conv2DOperands, MayBeOneArrayOrPartOfEachOther)
{
    // Each route; h begins where x does.
    for (const auto &s : {std::array<int, 4>{9, 12, 9, 12},
                          {40, 30, 5, 6},
                          {300, 1, 300, 1},
                          {1, 300, 1, 40},
                          {20, 20, 20, 20},
                          {7, 40, 7, 40},
                          {40, 30, 15, 10},
                          {15, 10, 40, 30}}) {
        const Grid all = noise(s[0] * s[1] + s[2] * s[3], 1, 9);
        const auto firstOf = [&all](int cols, int rows) {
            return Grid{
                {all.values.begin(), all.values.begin() + cols * rows}, asSize(cols), asSize(rows)};
        };
        const Grid x = firstOf(s[0], s[1]), h = firstOf(s[2], s[3]);
        std::vector<double> y(outputsOf(x, h), RVX_UNWRITTEN);
        rvxdConv2D(all.values.data(), s[0], s[1], all.values.data(), s[2], s[3], y.data());
        EXPECT_TRUE(sameBits(y, convolved(x, h, 0))) << s[0] << " x " << s[1];
    }
}

// ---------------------------------------------------------------------------
// Accuracy

// The largest error, over the root of the mean square of the outputs, of noise with
// noise; a sample of the outputs is looked at.
double transformError(int xCols, int xRows, int hCols, int hRows)
{
    const Grid x = noise(xCols, xRows, 21), h = noise(hCols, hRows, 22);
    const std::vector<double> y = convolved(x, h, 0);
    const std::size_t outCols = x.cols + h.cols - 1;
    long double largest = 0.0L, squares = 0.0L;
    std::size_t looked = 0;
    const std::size_t step = 1 + y.size() / 500; // no multiple of a row
    for (std::size_t i = 0; i < y.size(); i += step, ++looked) {
        const std::size_t r = i / outCols, c = i % outCols;
        long double sum = 0.0L;
        for (std::size_t k = 0; k < h.rows; ++k)
            for (std::size_t m = 0; m < h.cols; ++m)
                if (k <= r && r - k < x.rows && m <= c && c - m < x.cols)
                    sum += static_cast<long double>(h.at(k, m)) * x.at(r - k, c - m);
        largest = worse(largest, std::fabs(sum - y[i]));
        squares += sum * sum;
    }
    return static_cast<double>(largest / std::sqrt(squares / static_cast<long double>(looked)));
}

// In units of n 2^-53 for transforms whose longer side is n; the bounds are a tenth
// above what is seen.
TEST(Conv2DAccuracy, FallsWithTheLengthOfTransforms)
{
    const struct {
        int n;
        double strip, square, tiles;
    } bounds[] = {{32, 0.60, 0.65, 0.70}, {64, 0.85, 1.2, 1.0},   {128, 0.45, 0.42, 0.43},
                  {256, 0.85, 1.7, 1.4},  {512, 1.3, 2.5, 1.8},   {1024, 1.2, 2.4, 2.1},
                  {4096, 1.4, 0.0, 0.0},  {16384, 2.0, 0.0, 0.0}, {32768, 2.5, 0.0, 0.0}};
    for (const auto &bound : bounds) {
        const int n = bound.n;
        const double unit = n * 0x1p-53;
        EXPECT_LT(transformError(n / 2, 4, n / 2 - 2, 17), bound.strip * unit) << n;
        EXPECT_LT(transformError(4, n / 2, 17, n / 2 - 2), bound.strip * unit) << n;
        if (n > 1024)
            continue;
        EXPECT_LT(transformError(n / 2, n / 2, n / 2 - 1, n / 2 - 2), bound.square * unit) << n;
        EXPECT_LT(transformError(2 * n, n, n / 2, n / 2), bound.tiles * unit) << n;
    }
}

} // namespace
