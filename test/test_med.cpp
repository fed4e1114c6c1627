// Median filter.

#include <algorithm>
#include <climits>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <random>
#include <vector>

#include <gtest/gtest.h>

#include "reference/median.h"
#include "rvx.h"
#include "support/allocations.h"
#include "support/blocks.h"
#include "support/guarded.h"
#include "support/reports.h"
#include "support/walled.h"

namespace {

constexpr double INF = std::numeric_limits<double>::infinity();
constexpr double QUIET = std::numeric_limits<double>::quiet_NaN();

// Either sign of zero may come out.
bool sameValue(double a, double b)
{
    return bitsOf(a) == bitsOf(b) || (a == 0.0 && b == 0.0);
}

bool sameValues(const std::vector<double> &a, const std::vector<double> &b)
{
    bool same = a.size() == b.size();
    for (std::size_t i = 0; same && i < a.size(); ++i)
        same = sameValue(a[i], b[i]);
    return same;
}

// Both forms, at every alignment in turn, against the windows sorted anew.
void expectMedians(const std::vector<double> &x, int masksize)
{
    const auto len = static_cast<int>(x.size());
    const std::vector<double> expected = reference::runningMedian(x, masksize);
    Guarded<double> inPlace(x, len % 4);
    rvxdbMedianFilter1(inPlace.data(), len, masksize);
    EXPECT_TRUE(sameValues(inPlace.values(), expected)) << "len " << len << " mask " << masksize;
    EXPECT_TRUE(inPlace.intact());
    Guarded<double> in(x, (len + 1) % 4);
    Guarded<double> out(len, (len + 2) % 4);
    rvxdbMedianFilter2(in.data(), out.data(), len, masksize);
    EXPECT_TRUE(sameValues(out.values(), expected)) << "len " << len << " mask " << masksize;
    EXPECT_TRUE(sameValues(in.values(), x));
    EXPECT_TRUE(out.intact() && in.intact());
}

double doubleOf(std::uint64_t bits)
{
    double x;
    std::memcpy(&x, &bits, sizeof x);
    return x;
}

// Few different values: many equal ones in each window.
std::vector<double> steps(int len, unsigned seed)
{
    std::vector<double> x = makeBlock(Temper::uniform, len, seed);
    for (double &value : x)
        value = std::floor(4.0 * value);
    return x;
}

} // namespace

TEST(MedianChecks, EachInItsOrderAndNothingWritten)
{
    Reports reports;
    double x[4] = {4.0, 1.0, 3.0, 2.0};
    for (int len : {0, -1, INT_MIN}) {
        rvxdbMedianFilter1(nullptr, len, 0);
        EXPECT_EQ(reports.take(), badArgument("rvxdbMedianFilter1", "len<=0", "rvxmed"));
        rvxdbMedianFilter2(nullptr, nullptr, len, 0);
        EXPECT_EQ(reports.take(), badArgument("rvxdbMedianFilter2", "len<=0", "rvxmed"));
    }
    rvxdbMedianFilter1(nullptr, 4, 0);
    EXPECT_EQ(reports.take(), badArgument("rvxdbMedianFilter1", "inout==0", "rvxmed"));
    rvxdbMedianFilter2(nullptr, nullptr, 4, 0);
    EXPECT_EQ(reports.take(), badArgument("rvxdbMedianFilter2", "in==0", "rvxmed"));
    rvxdbMedianFilter2(x, nullptr, 4, 0);
    EXPECT_EQ(reports.take(), badArgument("rvxdbMedianFilter2", "out==0", "rvxmed"));
    for (int masksize : {0, -1, -3, INT_MIN}) {
        double out[4] = {9.0, 9.0, 9.0, 9.0};
        rvxdbMedianFilter1(x, 4, masksize);
        EXPECT_EQ(reports.take(), badArgument("rvxdbMedianFilter1", "masksize<=0", "rvxmed"));
        rvxdbMedianFilter2(x, out, 4, masksize);
        EXPECT_EQ(reports.take(), badArgument("rvxdbMedianFilter2", "masksize<=0", "rvxmed"));
        for (double value : out)
            EXPECT_EQ(value, 9.0);
    }
    EXPECT_EQ(x[0] * 1000 + x[1] * 100 + x[2] * 10 + x[3], 4132.0);
    EXPECT_EQ(rvxGetErrStatus(), RVX_STATUS_BAD_ARGUMENT);
}

TEST(MedianChecks, EndTheProcessInModeZero)
{
    EXPECT_EXIT(rvxdbMedianFilter1(nullptr, 3, 3), ::testing::ExitedWithCode(1), "");
}

TEST(MedianChecks, AStaleStatusPlaysNoPart)
{
    Reports reports;
    rvxSetErrStatus(RVX_STATUS_NO_MEMORY);
    const std::vector<double> x = makeBlock(Temper::uniform, 90, 1);
    for (int masksize : {1, 3, 5, 7, 9, 31, 601})
        expectMedians(x, masksize);
    EXPECT_EQ(rvxGetErrStatus(), RVX_STATUS_NO_MEMORY);
    EXPECT_TRUE(reports.take().empty());
}

// What the others compare with.
TEST(MedianReference, SlidingGivesTheMiddleOfEachWindow)
{
    for (int masksize : {1, 2, 3, 4, 5, 7, 8, 31, 113, 200})
        for (int len : {1, 2, 3, 4, 5, 30, 57, 58, 150}) {
            const std::vector<double> x = makeBlock(Temper::uniform, len, 20);
            EXPECT_EQ(reference::runningMedian(x, masksize),
                      reference::runningMedianAnew(x, masksize));
            const std::vector<double> y = steps(len, 21);
            EXPECT_EQ(reference::runningMedian(y, masksize),
                      reference::runningMedianAnew(y, masksize));
        }
}

TEST(Median, EveryLengthAndMaskUpToTwenty)
{
    Reports reports;
    for (int masksize = 1; masksize <= 20; ++masksize)
        for (int len = 1; len <= 80; ++len) {
            expectMedians(makeBlock(Temper::uniform, len, static_cast<unsigned>(len)), masksize);
            expectMedians(steps(len, static_cast<unsigned>(len)), masksize);
        }
    EXPECT_TRUE(reports.take().empty());
}

TEST(Median, WideMasksAndTheChangeBetweenWaysOfSorting)
{
    for (int masksize : {31, 32, 101, 109, 110, 111, 112, 113, 114, 115, 301, 503})
        for (int len : {3, 4, 29, 56, 57, 58, 59, 110, 111, 112, 113, 114, 252, 253, 504, 700}) {
            expectMedians(makeBlock(Temper::uniform, len, 5), masksize);
            expectMedians(steps(len, 6), masksize);
        }
}

TEST(Median, LongBlocksGoThroughInChunks)
{
    for (int masksize : {3, 5, 7, 9, 31})
        for (int len : {4097, 4098, 4099, 4100, 4101, 4102, 8194, 8195, 12301})
            expectMedians(makeBlock(Temper::uniform, len, 7), masksize);
    for (int len : {4098, 4099, 8195})
        expectMedians(makeBlock(Temper::uniform, len, 7), 113);
    // Wider than a chunk would be: the chunks grow with the mask.
    expectMedians(makeBlock(Temper::uniform, 4700, 8), 4201);
}

// The wide masks sort by the leading bits of what the samples do not share: samples
// alike in these, and again alike in the next ones, must come out sorted too.
TEST(Median, SamplesAlikeInTheirLeadingBits)
{
    const std::vector<double> noise = makeBlock(Temper::uniform, 2600, 17);
    const double fine[] = {1e-3, 1e-9, 1e-15};
    for (int spread = 0; spread < 3; ++spread) {
        std::vector<double> x = noise;
        for (std::size_t i = 0; i < x.size(); ++i) {
            x[i] = 1000.0 + fine[spread] * x[i];
            if (i % 97 == 0)
                x[i] = i % 2 == 0 ? 1e300 : -1e300;
            else if (i % 5 == 0)
                x[i] += 1.0;
        }
        for (int masksize : {113, 301, 1001})
            expectMedians(x, masksize);
    }
    std::vector<double> integers(2600), tiny(2600);
    for (std::size_t i = 0; i < 2600; ++i) {
        const std::uint64_t low = static_cast<std::uint64_t>(std::fabs(noise[i]) * 0x1p20);
        const std::uint64_t middle = i % 3 * (std::uint64_t{1} << 30);
        const std::uint64_t high = i % 41 == 0 ? std::uint64_t{1} << 62 : 0;
        integers[i] = doubleOf(low + middle + high);
        tiny[i] = i % 2 == 0 ? doubleOf(low) : -doubleOf(low);
    }
    for (int masksize : {113, 1001}) {
        expectMedians(integers, masksize);
        expectMedians(tiny, masksize);
    }
}

// However many bits it takes to tell the samples apart, the last of them counts.
TEST(Median, SamplesThatDifferInAnyNumberOfBits)
{
    std::mt19937_64 random(22);
    for (int bits = 1; bits <= 63; ++bits) {
        const std::uint64_t all = (std::uint64_t{1} << bits) - 1;
        const std::uint64_t base = bits < 40 ? bitsOf(-1.0) : 0;
        std::vector<double> x(600);
        for (std::size_t i = 0; i < x.size(); ++i) {
            const std::uint64_t high = std::uint64_t{i / 150} << 62 >> (64 - bits);
            const std::uint64_t ends = (high | random() % 256) & all;
            x[i] = doubleOf(base + ends % 0x7ff0000000000000);
        }
        x[100] = doubleOf(base);
        x[200] = doubleOf(base + all % 0x7ff0000000000000);
        expectMedians(x, 113);
        for (double &value : x)
            value = -value;
        expectMedians(x, 299);
    }
}

// The median jumps between the lower and the upper samples, over many ranks.
TEST(Median, TwoGroupsFarApart)
{
    std::vector<double> x = makeBlock(Temper::uniform, 3000, 18);
    for (std::size_t i = 0; i < x.size(); i += 2)
        x[i] += 1e9;
    for (int masksize : {9, 31, 113, 999, 1001})
        expectMedians(x, masksize);
    std::vector<double> rising(3000), falling(3000);
    for (std::size_t i = 0; i < x.size(); ++i) {
        rising[i] = static_cast<double>(i);
        falling[i] = -rising[i];
    }
    for (int masksize : {31, 113, 1001}) {
        expectMedians(rising, masksize);
        expectMedians(falling, masksize);
    }
}

TEST(Median, MasksFarWiderThanTheBlock)
{
    for (int len = 3; len <= 24; ++len)
        for (int masksize : {2 * len - 5, 2 * len - 3, 2 * len - 1, 2 * len + 1, 4 * len, 1001})
            for (unsigned seed = 0; seed < 20; ++seed) {
                if (masksize < 1)
                    continue;
                expectMedians(makeBlock(Temper::uniform, len, seed), masksize);
                expectMedians(steps(len, seed), masksize);
            }
    // Only the two end samples count any more.
    std::vector<double> x = {1.0, 9.0, 4.0, 0.0, 7.0, 5.0};
    const std::vector<double> expected = reference::runningMedian(x, 100001);
    rvxdbMedianFilter1(x.data(), 6, INT_MAX);
    EXPECT_EQ(x, expected);
}

// Lengths and masks at random, between walls: one element read or written outside the
// arrays ends the program.
TEST(Median, AnyLengthAndMaskInsideTheArrays)
{
    std::mt19937 bits(17);
    const auto upTo = [&bits](unsigned limit) { return 1 + static_cast<int>(bits() % limit); };
    for (unsigned trial = 0; trial < 300; ++trial) {
        const int len = upTo(trial % 20 == 0 ? 1200 : 200);
        const int masksize = upTo(trial % 3 == 0 ? 700 : 60);
        const Wall wall = trial % 2 == 0 ? Wall::before : Wall::behind;
        const std::vector<double> x =
            trial % 5 == 0 ? steps(len, trial) : makeBlock(Temper::uniform, len, trial);
        const std::vector<double> expected = reference::runningMedian(x, masksize);
        Walled<double> inPlace(x, wall), in(x, wall);
        Walled<double> out(std::vector<double>(x.size()), wall);
        rvxdbMedianFilter1(inPlace.data(), len, masksize);
        rvxdbMedianFilter2(in.data(), out.data(), len, masksize);
        EXPECT_TRUE(sameValues(inPlace.values(), expected)) << "len " << len << " " << masksize;
        EXPECT_TRUE(sameValues(out.values(), expected)) << "len " << len << " " << masksize;
        EXPECT_TRUE(sameValues(in.values(), x));
    }
}

TEST(Median, KnownCases)
{
    double x[3] = {5.0, 1.0, 2.0};
    rvxdbMedianFilter1(x, 3, 5); // of 5, 5, 1, 2, 2
    EXPECT_EQ(x[1], 2.0);
    double spike[7] = {0.0, 0.0, 0.0, 99.0, 0.0, 0.0, -99.0};
    rvxdbMedianFilter1(spike, 7, 3);
    EXPECT_EQ(spike[3], 0.0);
    EXPECT_EQ(spike[6], -99.0); // ends stay
    double edge[6] = {1.0, 1.0, 1.0, 2.0, 2.0, 2.0};
    rvxdbMedianFilter1(edge, 6, 5);
    EXPECT_EQ(edge[2], 1.0);
    EXPECT_EQ(edge[3], 2.0);
}

TEST(Median, EvenMasksAreNarrowed)
{
    const std::vector<double> x = makeBlock(Temper::uniform, 600, 11);
    for (int masksize : {2, 4, 6, 8, 10, 32, 110, 112, 114, 504}) {
        std::vector<double> even = x, odd = x;
        rvxdbMedianFilter1(even.data(), 600, masksize);
        rvxdbMedianFilter1(odd.data(), 600, masksize - 1);
        EXPECT_EQ(even, odd);
    }
}

TEST(Median, EveryTemperWithoutNaN)
{
    expectMedians(makeBlock(Temper::fullRange, 2000, 12), 503);
    for (Temper temper : allTempers) {
        if (temper == Temper::specials)
            continue;
        for (int masksize : {3, 5, 7, 9, 33, 111, 113, 503})
            expectMedians(makeBlock(temper, 333, 12), masksize);
    }
    for (int masksize : {9, 31, 113}) {
        expectMedians(std::vector<double>(600, INF), masksize);
        expectMedians(std::vector<double>(600, -INF), masksize);
        std::vector<double> both = steps(600, 19);
        for (double &value : both)
            value = value == 0.0 ? -INF : value == 3.0 ? INF : value;
        expectMedians(both, masksize);
    }
}

// What comes out is not promised; that nothing else is touched is.
TEST(Median, NaNsLeadNowhereElse)
{
    for (int masksize : {3, 5, 7, 9, 31, 111, 113, 601})
        for (int len : {3, 8, 50, 700}) {
            for (int every : {1, 2, 7}) {
                std::vector<double> x = makeBlock(Temper::uniform, len, 13);
                for (int i = 0; i < len; i += every)
                    x[static_cast<std::size_t>(i)] = QUIET;
                Guarded<double> block(x);
                rvxdbMedianFilter1(block.data(), len, masksize);
                EXPECT_TRUE(block.intact());
                EXPECT_EQ(bitsOf(block[0]), bitsOf(x.front()));
                EXPECT_EQ(bitsOf(block[len - 1]), bitsOf(x.back()));
            }
        }
}

TEST(Median, ResultOverlappingTheSourceFromAbove)
{
    for (int len : {3, 8, 100})
        for (int masksize : {1, 3, 5, 7, 9, 31, 113})
            for (int above = 0; above <= len + 1; ++above) {
                const std::vector<double> x = makeBlock(Temper::uniform, len, 14);
                Guarded<double> block(2 * len + 1);
                std::copy(x.begin(), x.end(), block.data());
                double *out = block.data() + above;
                rvxdbMedianFilter2(block.data(), out, len, masksize);
                EXPECT_EQ(std::vector<double>(out, out + len),
                          reference::runningMedian(x, masksize))
                    << "len " << len << " mask " << masksize << " above " << above;
                EXPECT_TRUE(std::equal(x.begin(), x.begin() + std::min(above, len), block.data()));
                EXPECT_TRUE(block.intact());
            }
}

TEST(MedianMemory, OnlyWideMasksTakeItAndTheyGiveItBack)
{
    std::vector<double> x = makeBlock(Temper::uniform, 400, 15);
    for (int masksize : {1, 3, 5, 6, 7, 9, 111, 113, INT_MAX}) {
        AllocationWatch watch;
        rvxdbMedianFilter1(x.data(), 400, masksize);
        EXPECT_EQ(watch.allocations(), masksize >= 7 ? 1 : 0);
        EXPECT_EQ(watch.live(), 0);
    }
}

// More than the library can ask for at once is refused before a sample is read.
TEST(MedianMemory, TheLongestBlockByTheWidestMaskIsRefused)
{
    Reports reports;
    Guarded<double> x(std::vector<double>{3.0, 1.0, 2.0});
    AllocationWatch watch;
    rvxdbMedianFilter1(x.data(), INT_MAX, INT_MAX);
    EXPECT_EQ(watch.allocations(), 0);
    const std::vector<Report> expected = {
        {RVX_STATUS_NO_MEMORY, "rvxdbMedianFilter1", "out of memory", "rvxmed"}};
    EXPECT_EQ(reports.take(), expected);
    EXPECT_EQ(x.values(), (std::vector<double>{3.0, 1.0, 2.0}));
    EXPECT_TRUE(x.intact());
}

TEST(MedianMemory, RefusedMemoryIsReportedAndNothingChanged)
{
    Reports reports;
    const std::vector<double> x = makeBlock(Temper::uniform, 400, 16);
    for (int masksize : {7, 8, 9, 31, 111, 113, 1001, INT_MAX}) {
        std::vector<double> inPlace = x, out(400, 0.0);
        const std::vector<Report> expected = {
            {RVX_STATUS_NO_MEMORY, "rvxdbMedianFilter1", "out of memory", "rvxmed"}};
        {
            AllocationWatch watch(1);
            rvxdbMedianFilter1(inPlace.data(), 400, masksize);
            EXPECT_EQ(watch.failures(), 1);
        }
        EXPECT_EQ(reports.take(), expected);
        EXPECT_EQ(inPlace, x);
        {
            AllocationWatch watch(1);
            rvxdbMedianFilter2(x.data(), out.data(), 400, masksize);
        }
        EXPECT_EQ(reports.take(), expected);
        EXPECT_EQ(out, x);
    }
}
