// Filtering an image.

#include <climits>
#include <cmath>
#include <cstring>
#include <limits>
#include <random>
#include <vector>

#include <gtest/gtest.h>

#include "convolution/rvxfir2_paths.h"
#include "reference/filter2d.h"
#include "reference/route2d.h"
#include "rvx.h"
#include "support/allocations.h"
#include "support/blocks.h"
#include "support/guarded.h"
#include "support/held_tables.h"
#include "support/reports.h"
#include "support/walled.h"
#include "support/worse.h"
#include "transform/rvxtwd.h"

namespace {

using reference::Array2d;

Array2d image(int rows, int cols, unsigned seed, Temper temper = Temper::uniform)
{
    return {rows, cols, makeBlock(temper, rows * cols, seed)};
}

struct Sizes {
    int xCols, xRows, hCols, hRows;
};

std::ostream &operator<<(std::ostream &out, const Sizes &s)
{
    return out << s.hCols << " x " << s.hRows << " over " << s.xCols << " x " << s.xRows;
}

enum class Way { exported, direct, blocks };

void run(const Filter2d &task, Way way)
{
    if (way == Way::exported)
        rvxdFilter2D(task.x, static_cast<int>(task.xCols), static_cast<int>(task.xRows), task.h,
                     static_cast<int>(task.hCols), static_cast<int>(task.hRows), task.y);
    else if (way == Way::direct)
        ownFilter2dDirect(task);
    else
        EXPECT_TRUE(ownFilter2dBlocks(task));
}

// The filtered image; what stands beside the arrays, and the sources, stay as they
// were.
std::vector<double> filtered(const Array2d &x, const Array2d &h, Way way = Way::exported)
{
    Guarded<double> xs(x.values, x.cols % 4);
    Guarded<double> hs(h.values, h.cols % 4);
    Guarded<double> y(x.rows * x.cols, (x.cols + h.cols) % 4);
    run({xs.data(), x.cols, x.rows, hs.data(), h.cols, h.rows, y.data()}, way);
    EXPECT_TRUE(xs.intact() && hs.intact() && y.intact());
    EXPECT_EQ(std::memcmp(xs.data(), x.values.data(), x.values.size() * sizeof(double)), 0);
    EXPECT_EQ(std::memcmp(hs.data(), h.values.data(), h.values.size() * sizeof(double)), 0);
    return y.values();
}

bool sameResults(const std::vector<double> &a, const std::vector<double> &b)
{
    for (std::size_t i = 0; i < a.size(); ++i)
        if (bitsOf(a[i]) != bitsOf(b[i]) && !(std::isnan(a[i]) && std::isnan(b[i])))
            return false;
    return a.size() == b.size();
}

double rootOfSquares(const std::vector<double> &values)
{
    double sum = 0.0;
    for (double v : values)
        sum += v * v;
    return std::sqrt(sum);
}

bool blocksChosen(const Sizes &s)
{
    const Filter2dCosts costs = ownFilter2dCosts(s.xCols, s.xRows, s.hCols, s.hRows);
    return costs.blocks < costs.direct;
}

// ---------------------------------------------------------------------------
// Checks

TEST(Filter2dChecks, ComeInTheirOrderAndLeaveTheResultAlone)
{
    const double x[] = {1.0};
    const double h[] = {1.0};
    struct Call {
        const char *message;
        bool hasX, hasH, hasY;
        Sizes sizes;
    };
    // Every call fails its own check and all that come later.
    const Call calls[] = {
        {"Null SRC buffer pointer", false, false, false, {0, 0, 0, 0}},
        {"Null SRC buffer pointer", true, false, false, {0, 0, 0, 0}},
        {"Null DST buffer pointer", true, true, false, {0, 0, 0, 0}},
        {"Invalid number of cols", true, true, true, {0, 0, 0, 0}},
        {"Inlalid number of rows", true, true, true, {1, 0, 0, 0}},
        {"Invalid number of cols", true, true, true, {1, 1, 0, 0}},
        {"Inlalid number of rows", true, true, true, {1, 1, 1, 0}},
        {"Invalid number of cols", true, true, true, {-1, 1, 1, 1}},
        {"Inlalid number of rows", true, true, true, {1, INT_MIN, 1, 1}},
        {"Invalid number of cols", true, true, true, {1, 1, INT_MIN, 1}},
        {"Inlalid number of rows", true, true, true, {1, 1, 1, -7}},
        {"Null SRC buffer pointer", true, false, true, {1, 1, 1, 1}},
    };
    Reports reports;
    for (const Call &call : calls) {
        double y[] = {7.0};
        const Sizes &s = call.sizes;
        rvxdFilter2D(call.hasX ? x : nullptr, s.xCols, s.xRows, call.hasH ? h : nullptr, s.hCols,
                     s.hRows, call.hasY ? y : nullptr);
        EXPECT_EQ(reports.take(), badArgument("rvxdFilter2D", call.message, "rvxfir2"));
        EXPECT_EQ(rvxGetErrStatus(), RVX_STATUS_BAD_ARGUMENT);
        EXPECT_EQ(y[0], 7.0);
    }
}

TEST(Filter2dChecksDeathTest, AFailedCheckEndsTheProcessInModeZero)
{
    double y[] = {0.0};
    EXPECT_EXIT(rvxdFilter2D(nullptr, 1, 1, y, 1, 1, y), ::testing::ExitedWithCode(1), "");
}

// ---------------------------------------------------------------------------
// Direct sums

TEST(Filter2dDirect, EverySumHasItsOrder)
{
    for (int cols = 1; cols <= 40; ++cols)
        for (int rows : {1, 2, 3, 6, 7})
            for (Sizes k : {Sizes{0, 0, 1, 1},
                            {0, 0, 2, 1},
                            {0, 0, 1, 2},
                            {0, 0, 3, 3},
                            {0, 0, 4, 4},
                            {0, 0, 5, 2},
                            {0, 0, 7, 7},
                            {0, 0, 12, 5},
                            {0, 0, 21, 3},
                            {0, 0, 50, 20}}) {
                const Array2d x = image(rows, cols, 1);
                const Array2d h = image(k.hRows, k.hCols, 2);
                EXPECT_TRUE(sameResults(filtered(x, h, Way::direct), filteredInOrder(x, h)))
                    << Sizes{cols, rows, k.hCols, k.hRows};
            }
}

TEST(Filter2dDirect, InfinitiesAndNansStayWhereTheyAre)
{
    for (Temper temper : {Temper::specials, Temper::infinities, Temper::zeros, Temper::nearOverflow,
                          Temper::subnormal})
        for (int cols : {1, 2, 3, 4, 5, 9, 23, 40})
            for (int hCols : {1, 2, 3, 6, 30}) {
                const Array2d x = image(5, cols, 3);
                const Array2d h = image(4, hCols, 4, temper);
                EXPECT_TRUE(sameResults(filtered(x, h, Way::direct), filteredInOrder(x, h)))
                    << temper << " kernel of " << hCols << " over " << cols;
                const Array2d x2 = image(5, cols, 3, temper);
                EXPECT_TRUE(sameResults(filtered(x2, h, Way::direct), filteredInOrder(x2, h)))
                    << temper << " both, " << hCols << " over " << cols;
            }
}

TEST(Filter2dDirect, OneTapMultiplies)
{
    const Array2d x = image(9, 31, 5);
    const std::vector<double> y = filtered(x, {1, 1, {-2.5}});
    for (std::size_t i = 0; i < y.size(); ++i)
        EXPECT_EQ(bitsOf(y[i]), bitsOf(-2.5 * x.values[i]));
}

// A sum begins at +0.0, so a product of -0.0 does not come out as such.
TEST(Filter2dDirect, ASumOfNegativeZeroIsPositive)
{
    const std::vector<double> y = filtered({1, 2, {-0.0, 3.0}}, {1, 1, {1.0}});
    EXPECT_EQ(bitsOf(y[0]), bitsOf(0.0));
}

TEST(Filter2dDirect, EvenKernelsAreAnchoredRightOfTheMiddle)
{
    EXPECT_EQ(filtered({1, 4, {1, 2, 3, 4}}, {1, 2, {10, 1}}),
              (std::vector<double>{21, 32, 43, 4}));
    EXPECT_EQ(filtered({4, 1, {1, 2, 3, 4}}, {2, 1, {10, 1}}),
              (std::vector<double>{21, 32, 43, 4}));
    EXPECT_EQ(filtered({2, 3, {1, 2, 3, 4, 5, 6}}, {3, 3, {0, 0, 0, 0, 0, 1, 0, 0, 0}}),
              (std::vector<double>{0, 1, 2, 0, 4, 5}));
}

TEST(Filter2dDirect, AKernelMayBeMuchLargerThanTheImage)
{
    std::vector<double> h(1 << 17);
    h[(1 << 16) - 1] = 2.0;
    EXPECT_EQ(filtered({1, 3, {1, 2, 3}}, {1, 1 << 17, h}), (std::vector<double>{4, 6, 0}));
    EXPECT_EQ(filtered({3, 1, {1, 2, 3}}, {1 << 17, 1, h}), (std::vector<double>{4, 6, 0}));
}

// ---------------------------------------------------------------------------
// Blocks

// The largest error, in units of the root of the sum of squares of the kernel times
// that of a block that is full of ones; images and kernels are below 1.
double blockError(const Sizes &s)
{
    const Array2d x = image(s.xRows, s.xCols, 11);
    const Array2d h = image(s.hRows, s.hCols, 12);
    const std::vector<double> y = filtered(x, h, Way::blocks);
    const double blockLen = static_cast<double>(ownFilter2dBlockLen(s.hRows)) *
                            static_cast<double>(ownFilter2dBlockLen(s.hCols));
    double worst = 0.0;
    for (int r = 0; r < s.xRows; ++r)
        for (int c = 0; c < s.xCols; ++c) {
            const auto exact = static_cast<double>(filteredValue(x, h, r, c));
            const double error = std::fabs(y[static_cast<std::size_t>(r * s.xCols + c)] - exact);
            worst = worse(worst, error);
        }
    return worst / (rootOfSquares(h.values) * std::sqrt(blockLen));
}

constexpr Sizes blockSizes[] = {
    {1, 1, 1, 1},     {1, 9, 1, 5},     {9, 1, 5, 1},     {30, 20, 1, 1},    {30, 20, 2, 1},
    {30, 20, 1, 2},   {30, 20, 2, 2},   {40, 30, 3, 3},   {40, 30, 4, 3},    {17, 40, 5, 8},
    {64, 50, 9, 9},   {31, 31, 16, 16}, {50, 45, 17, 7},  {5, 6, 11, 12},    {1, 200, 1, 64},
    {200, 1, 64, 1},  {3, 150, 2, 33},  {150, 3, 33, 2},  {120, 90, 31, 31}, {90, 70, 64, 64},
    {20, 300, 65, 3}, {600, 5, 300, 4}, {5, 600, 3, 300}, {40, 8, 600, 2}};

TEST(Filter2dBlocks, AgreeWithTheSumInExtendedPrecision)
{
    for (const Sizes &s : blockSizes)
        EXPECT_LT(blockError(s), 1.5e-16) << s; // measured: 1.19e-16
}

// Every place of a kernel's one tap and of an image's one sample.
TEST(Filter2dBlocks, AShiftIsAShift)
{
    const Array2d x = image(13, 19, 6);
    for (int tap = 0; tap < 5 * 6; ++tap) {
        Array2d h = {5, 6, std::vector<double>(30, 0.0)};
        h.values[static_cast<std::size_t>(tap)] = 1.0;
        const std::vector<double> y = filtered(x, h, Way::blocks);
        const std::vector<double> expected = filteredInOrder(x, h);
        for (std::size_t i = 0; i < y.size(); ++i)
            EXPECT_NEAR(y[i], expected[i], 7e-16) << "tap " << tap << " value " << i;
    }
}

TEST(Filter2dBlocks, SmallIntegersComeOutNextToIntegers)
{
    Array2d x = image(33, 47, 7);
    Array2d h = image(9, 10, 8);
    for (double &v : x.values)
        v = std::floor(v * 8.0);
    for (double &v : h.values)
        v = std::floor(v * 8.0);
    const std::vector<double> y = filtered(x, h, Way::blocks);
    const std::vector<double> exact = filteredInOrder(x, h);
    for (std::size_t i = 0; i < y.size(); ++i)
        EXPECT_NEAR(y[i], exact[i], 3e-13);
}

// The outputs of a tile are those of one block, and a NaN in it reaches them all; so NaNs
// show where tiles begin and which part of the image each is made from.
TEST(Filter2dBlocks, ANanReachesTheTilesWhoseBlocksHoldItAndNoOthers)
{
    struct Case {
        Sizes sizes;
        int blockCols, blockRows;
    };
    const Case cases[] = {{{23, 9, 1, 1}, 2, 2},   {{30, 21, 2, 2}, 4, 4},
                          {{29, 25, 3, 4}, 8, 8},  {{40, 22, 5, 3}, 16, 8},
                          {{33, 50, 4, 9}, 8, 32}, {{9, 60, 11, 16}, 32, 32},
                          {{50, 3, 17, 2}, 64, 4}};
    for (const Case &c : cases) {
        const Sizes &s = c.sizes;
        // Whether the tile with output `out` has input `in` in its block.
        const auto holds = [](int in, int out, int kernelLen, int blockLen) {
            const int step = blockLen - kernelLen + 1;
            const int start = out / step * step - (kernelLen - 1) + kernelLen / 2;
            return in >= start && in < start + blockLen;
        };
        const Array2d h = image(s.hRows, s.hCols, 14);
        for (int place = 0; place < s.xCols * s.xRows; place += 13) {
            Array2d x = image(s.xRows, s.xCols, 13);
            x.values[static_cast<std::size_t>(place)] = std::numeric_limits<double>::quiet_NaN();
            const std::vector<double> y = filtered(x, h, Way::blocks);
            for (int r = 0; r < s.xRows; ++r)
                for (int col = 0; col < s.xCols; ++col)
                    EXPECT_EQ(std::isnan(y[static_cast<std::size_t>(r * s.xCols + col)]),
                              holds(place / s.xCols, r, s.hRows, c.blockRows) &&
                                  holds(place % s.xCols, col, s.hCols, c.blockCols))
                        << s << ", from " << place << " to " << r << ", " << col;
        }
    }
}

// Registers that reach beyond a row borrow from its neighbours, never from outside.
TEST(Filter2dMemory, NothingOutsideTheArraysIsTouched)
{
    for (Wall wall : {Wall::before, Wall::behind})
        for (Way way : {Way::direct, Way::blocks})
            for (int cols : {1, 2, 3, 4, 5, 7, 8, 9, 13, 20, 33, 50})
                for (int rows : {1, 2, 5})
                    for (int hCols : {1, 2, 3, 6, 13, 40})
                        for (int hRows : {1, 2, 4}) {
                            const Array2d x = image(rows, cols, 51);
                            const Array2d h = image(hRows, hCols, 52);
                            Walled<double> xs(x.values, wall);
                            Walled<double> hs(h.values, wall);
                            Walled<double> y(x.values, wall);
                            run({xs.data(), cols, rows, hs.data(), hCols, hRows, y.data()}, way);
                            EXPECT_TRUE(sameResults(y.values(), filtered(x, h, way)));
                        }
}

TEST(Filter2dMemory, TheKernelMayBePartOfTheImage)
{
    for (Way way : {Way::direct, Way::blocks})
        for (Sizes s : {Sizes{20, 15, 20, 15}, {40, 30, 7, 6}, {9, 4, 3, 12}, {31, 1, 31, 1}}) {
            const Array2d x = image(s.xRows, s.xCols, 53);
            const Array2d h = {
                s.hRows, s.hCols, {x.values.begin(), x.values.begin() + s.hRows * s.hCols}};
            const std::vector<double> xBefore = x.values;
            std::vector<double> y(x.values.size());
            run({x.values.data(), s.xCols, s.xRows, x.values.data(), s.hCols, s.hRows, y.data()},
                way);
            EXPECT_TRUE(sameResults(y, filtered(x, h, way))) << s;
            EXPECT_TRUE(sameResults(x.values, xBefore));
        }
}

// ---------------------------------------------------------------------------
// The choice

TEST(Filter2dChoice, AgreesWithAnotherWriting)
{
    std::mt19937 bits(9);
    const auto below = [&bits](int limit) {
        return 1 + static_cast<int>(bits() % unsigned(limit));
    };
    int chosen = 0;
    for (int round = 0; round < 200000; ++round) {
        const int xLimit = 1 << below(11);
        const int hLimit = 1 << below(8);
        const Sizes s = {below(xLimit), below(xLimit), below(hLimit), below(hLimit)};
        ASSERT_EQ(blocksChosen(s),
                  reference::filter2dTransforms({s.xRows, s.xCols}, {s.hRows, s.hCols}))
            << s;
        chosen += blocksChosen(s);
    }
    EXPECT_GT(chosen, 40000);
    EXPECT_LT(chosen, 160000);
}

TEST(Filter2dChoice, CostsAreTheseNumbers)
{
    struct Case {
        Sizes sizes;
        double direct, blocks;
    };
    const Case cases[] = {
        {{94, 64, 9, 9}, 1949184.0, 1969024.0},    {{95, 64, 9, 9}, 1969920.0, 1969024.0},
        {{96, 64, 9, 9}, 1990656.0, 1969024.0},    {{97, 64, 9, 9}, 2011392.0, 2442832.0},
        {{12, 32, 16, 16}, 393216.0, 388516.0},    {{18, 32, 16, 16}, 589824.0, 703240.0},
        {{124, 130, 1, 64}, 4126720.0, 4126648.0}, {{125, 130, 1, 64}, 4160000.0, 4192960.0},
        {{92, 17, 17, 17}, 1807984.0, 1804192.0},  {{97, 17, 17, 17}, 1906244.0, 2534160.0},
        {{7, 100, 31, 31}, 2690800.0, 2527272.0},  {{2, 400, 3, 300}, 2880000.0, 2294156.0},
        {{18, 36, 6, 25}, 388800.0, 388800.0},     {{60, 20, 21, 7}, 705600.0, 705600.0},
    };
    for (const Case &c : cases) {
        const Sizes &s = c.sizes;
        const Filter2dCosts costs = ownFilter2dCosts(s.xCols, s.xRows, s.hCols, s.hRows);
        EXPECT_EQ(costs.direct, c.direct) << s;
        EXPECT_EQ(costs.blocks, c.blocks) << s;
    }
}

TEST(Filter2dChoice, SizesThatNoMemoryHoldsHaveCostsToo)
{
    const Filter2dCosts costs = ownFilter2dCosts(INT_MAX, INT_MAX, INT_MAX, INT_MAX);
    EXPECT_EQ(costs.direct, 4.0 * std::pow(static_cast<double>(INT_MAX), 4.0));
    EXPECT_GT(costs.blocks, 0.0);
    EXPECT_TRUE(blocksChosen({INT_MAX, INT_MAX, INT_MAX, INT_MAX}));
    EXPECT_FALSE(blocksChosen({INT_MAX, INT_MAX, 1, 1}));
}

// A NaN in the image's corner reaches a sum no further than the kernel does, but
// every value of a block. Seen from outside, on both sides of the borders.
TEST(Filter2dChoice, ShowsByHowFarANanSpreads)
{
    const Sizes direct[] = {{94, 64, 9, 9},    {97, 64, 9, 9},   {18, 32, 16, 16},
                            {125, 130, 1, 64}, {97, 17, 17, 17}, {18, 36, 6, 25},
                            {60, 20, 21, 7},   {6, 100, 31, 31}, {512, 512, 7, 7}};
    const Sizes blocks[] = {{95, 64, 9, 9},   {96, 64, 9, 9},   {12, 32, 16, 16}, {124, 130, 1, 64},
                            {92, 17, 17, 17}, {7, 100, 31, 31}, {2, 400, 3, 300}, {19, 36, 6, 25}};
    const auto reached = [](const Sizes &s) {
        Array2d x = image(s.xRows, s.xCols, 21);
        x.values[0] = std::numeric_limits<double>::quiet_NaN();
        const std::vector<double> y = filtered(x, image(s.hRows, s.hCols, 22));
        int count = 0;
        for (double v : y)
            count += std::isnan(v);
        return count;
    };
    // The NaN meets taps at distances up to hRows - 1 - hRows / 2 below and right.
    const auto underKernel = [](const Sizes &s) {
        return std::min(s.xRows, s.hRows - s.hRows / 2) * std::min(s.xCols, s.hCols - s.hCols / 2);
    };
    for (const Sizes &s : direct)
        EXPECT_EQ(reached(s), underKernel(s)) << s;
    for (const Sizes &s : blocks) {
        ASSERT_TRUE(blocksChosen(s)) << s;
        EXPECT_GT(reached(s), underKernel(s)) << s;
    }
}

TEST(Filter2dChoice, DirectCallsHaveTheBitsOfTheSums)
{
    std::mt19937 bits(31);
    const auto below = [&bits](int limit) {
        return 1 + static_cast<int>(bits() % unsigned(limit));
    };
    int sums = 0;
    for (int round = 0; round < 400; ++round) {
        const Array2d x = image(below(80), below(80), 32);
        const Array2d h = image(below(40), below(40), 33);
        const bool same = sameResults(filtered(x, h), filteredInOrder(x, h));
        const Sizes s = {x.cols, x.rows, h.cols, h.rows};
        // Of large results by transforms some always differ in the last bit.
        if (!blocksChosen(s) || x.rows * x.cols > 100) {
            EXPECT_EQ(same, !blocksChosen(s)) << s;
        }
        sums += !blocksChosen(s);
    }
    EXPECT_GT(sums, 50);
    EXPECT_LT(sums, 350);
}

// ---------------------------------------------------------------------------
// Memory and status

constexpr Sizes byBlocks = {60, 50, 17, 17};

// Each allocation of a call on a thread without tables fails once.
TEST(Filter2dMemory, EveryRefusalLeadsToTheSumsWithoutAReport)
{
    ASSERT_TRUE(blocksChosen(byBlocks));
    const Array2d x = image(byBlocks.xRows, byBlocks.xCols, 41);
    const Array2d h = image(byBlocks.hRows, byBlocks.hCols, 42);
    const std::vector<double> sums = filteredInOrder(x, h);
    const std::vector<double> transformed = filtered(x, h, Way::blocks);
    ASSERT_FALSE(sameResults(sums, transformed));
    Reports reports;
    std::vector<double> y(x.values.size());
    long failures = 0;
    for (long k = 1;; ++k) {
        rvxFreeTwdTables();
        AllocationWatch watch(k);
        rvxdFilter2D(x.values.data(), x.cols, x.rows, h.values.data(), h.cols, h.rows, y.data());
        rvxFreeTwdTables();
        EXPECT_EQ(watch.live(), 0) << "allocation " << k;
        EXPECT_EQ(rvxGetErrStatus(), RVX_STATUS_OK);
        EXPECT_TRUE(reports.take().empty());
        if (watch.failures() == 0)
            break;
        ++failures;
        EXPECT_TRUE(sameResults(y, sums)) << "allocation " << k;
    }
    EXPECT_TRUE(sameResults(y, transformed));
    EXPECT_GE(failures, 7); // three buffers and four tables at the least
}

TEST(Filter2dMemory, AnExhaustedHeapStillDelivers)
{
    const Array2d x = image(byBlocks.xRows, byBlocks.xCols, 43);
    const Array2d h = image(byBlocks.hRows, byBlocks.hCols, 44);
    const std::vector<double> sums = filteredInOrder(x, h);
    std::vector<double> y(x.values.size());
    Reports reports;
    rvxSetErrMode(0); // a report would end the process
    {
        AllocationWatch watch;
        watch.failAllFrom(1);
        rvxdFilter2D(x.values.data(), x.cols, x.rows, h.values.data(), h.cols, h.rows, y.data());
        EXPECT_GE(watch.failures(), 1);
        EXPECT_EQ(watch.live(), 0);
    }
    EXPECT_TRUE(sameResults(y, sums));
    EXPECT_EQ(rvxGetErrStatus(), RVX_STATUS_OK);
}

// A block of more values than a count can say: refused before any of it is written.
TEST(Filter2dMemory, BlocksThatNoBufferHoldsAreRefused)
{
    double y[] = {9.0};
    EXPECT_FALSE(ownFilter2dBlocks({y, 1, 1, y, INT_MAX, INT_MAX, y}));
    EXPECT_FALSE(ownFilter2dBlocks({y, 1, 1, y, 1 << 17, 1 << 16, y}));
    EXPECT_EQ(y[0], 9.0);
}

TEST(Filter2dMemory, OnlyTablesOutliveTheCall)
{
    rvxFreeTwdTables();
    const Array2d x = image(byBlocks.xRows, byBlocks.xCols, 45);
    const Array2d h = image(byBlocks.hRows, byBlocks.hCols, 46);
    filtered(x, h);
    EXPECT_EQ(held(), "B5 C5 t6"); // blocks of 64 by 64: lines of 32 values
    rvxFreeTwdTables();
    filtered(x, {3, 3, std::vector<double>(9, 1.0)});
    EXPECT_EQ(held(), "");
}

TEST(Filter2dStatus, AnOldFailureNeitherMattersNorChanges)
{
    const Array2d x = image(byBlocks.xRows, byBlocks.xCols, 47);
    const Array2d h = image(byBlocks.hRows, byBlocks.hCols, 48);
    const std::vector<double> transformed = filtered(x, h);
    Reports reports;
    for (int warm = 0; warm < 2; ++warm) {
        rvxFreeTwdTables();
        if (warm != 0)
            filtered(x, h);
        rvxSetErrStatus(RVX_STATUS_NO_MEMORY);
        EXPECT_TRUE(sameResults(filtered(x, h), transformed));
        EXPECT_EQ(rvxGetErrStatus(), RVX_STATUS_NO_MEMORY);
        rvxSetErrStatus(RVX_STATUS_OK);
    }
    EXPECT_TRUE(reports.take().empty());
}

} // namespace
