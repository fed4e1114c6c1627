// Mean, standard deviation, largest and smallest element with and without position.

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <random>
#include <vector>

#include <gtest/gtest.h>

#include "reference/exact.h"
#include "rvx.h"
#include "support/blocks.h"
#include "support/guarded.h"
#include "support/reports.h"

namespace {

constexpr double INF = std::numeric_limits<double>::infinity();
constexpr double QUIET = std::numeric_limits<double>::quiet_NaN();

double fromBits(std::uint64_t bits)
{
    double x;
    std::memcpy(&x, &bits, sizeof x);
    return x;
}

bool same(double a, double b)
{
    return (a != a && b != b) || bitsOf(a) == bitsOf(b);
}

int lengthOf(const std::vector<double> &x)
{
    return static_cast<int>(x.size());
}

double mean(const std::vector<double> &x)
{
    return rvxdMean(x.data(), lengthOf(x));
}

double deviation(const std::vector<double> &x)
{
    return rvxdStdDev(x.data(), lengthOf(x));
}

// The stated sums: eight of them, which change places after each group.
double statedMean(const std::vector<double> &x)
{
    std::vector<long double> s(8, 0.0L);
    const std::size_t whole = x.size() / 8 * 8;
    for (std::size_t i = 0; i < whole; ++i) {
        s[i % 8] += static_cast<long double>(x[i]);
        if (i % 8 == 7)
            std::rotate(s.begin(), s.end() - 1, s.end());
    }
    for (std::size_t i = whole; i < x.size(); ++i)
        s[0] += static_cast<long double>(x[i]);
    const long double sum = ((s[7] + s[3]) + (s[5] + s[1])) + ((s[6] + s[2]) + (s[4] + s[0]));
    return static_cast<double>(sum / static_cast<long double>(x.size()));
}

// The stated variance: sums over even and odd positions of the groups of four.
double statedVariance(const std::vector<double> &x)
{
    long double sum[2] = {0.0L, 0.0L}, squares[2] = {0.0L, 0.0L};
    const std::size_t whole = x.size() / 4 * 4;
    for (std::size_t i = 0; i < whole; ++i) {
        const long double wide = x[i];
        sum[i % 2] += wide;
        squares[i % 2] += wide * wide;
    }
    long double s = sum[0] + sum[1], t = squares[0] + squares[1];
    for (std::size_t i = whole; i < x.size(); ++i) {
        const long double wide = x[i];
        s += wide;
        t += wide * wide;
    }
    const long double n = static_cast<long double>(x.size());
    return static_cast<double>((t * n - s * s) / (n * (n - 1.0L)));
}

double rootOf(double variance)
{
    return std::signbit(variance) ? 0.0 : std::sqrt(variance);
}

Exact sumOf(const std::vector<double> &x)
{
    Exact sum;
    for (double value : x)
        sum.add(value);
    return sum;
}

double exactMean(const std::vector<double> &x)
{
    return nearest(sumOf(x), Exact(static_cast<double>(x.size())));
}

// The variance's quotient; the block's magnitudes are within 2^-400 .. 2^400.
struct Quotient {
    Exact numerator, denominator;
};

Quotient exactVariance(const std::vector<double> &x)
{
    const double n = static_cast<double>(x.size());
    Exact squares;
    for (double value : x)
        squares.addProduct(value, value);
    const Exact sum = sumOf(x);
    return {squares * Exact(n) - sum * sum, Exact().addProduct(n, n - 1.0)};
}

bool isConstant(const std::vector<double> &x)
{
    return std::equal(x.begin() + 1, x.end(), x.begin());
}

} // namespace

TEST(Mean, IsTheStatedMeanOrTheCorrectlyRoundedOneForEveryBlock)
{
    for (Temper temper : allTempers) {
        for (int n : sumLengths()) {
            const auto x = makeBlock(temper, n, static_cast<unsigned>(n));
            const double chain = statedMean(x), result = mean(x);
            if (same(chain, result))
                continue;
            ASSERT_TRUE(allFinite(x) && std::isfinite(chain)) << temper << ", n " << n;
            const Exact sum = sumOf(x), len(static_cast<double>(n));
            ASSERT_FALSE(distance(chain, sum, len) < distance(result, sum, len))
                << temper << ", n " << n;
            ASSERT_EQ(result, exactMean(x)) << temper << ", n " << n;
        }
    }
}

TEST(Mean, IsCorrectlyRoundedForWellConditionedBlocks)
{
    int misroundedChains = 0;
    for (unsigned seed = 0; seed < 2000; ++seed) {
        auto x = makeBlock(Temper::positive, 1500 + static_cast<int>(seed % 7), seed);
        for (std::size_t i = 1; i < x.size(); i += 2)
            x[i] = -0.999 * x[i - 1]; // cancels a few bits
        const double expected = exactMean(x);
        ASSERT_EQ(mean(x), expected) << seed;
        misroundedChains += statedMean(x) != expected;
    }
    EXPECT_GT(misroundedChains, 0);
}

TEST(Mean, DividesAndDoesNotMultiplyByAReciprocal)
{
    for (int n = 1; n < 300; ++n) {
        EXPECT_EQ(mean(std::vector<double>(static_cast<std::size_t>(n), 0.1)), 0.1);
        std::vector<double> x(static_cast<std::size_t>(n), 0.0);
        x[0] = 1.0;
        EXPECT_EQ(mean(x), 1.0 / n);
    }
}

TEST(Mean, OfHugeNumbersDoesNotOverflow)
{
    const double huge = std::numeric_limits<double>::max();
    for (int n : {1, 2, 3, 8, 9, 100})
        EXPECT_EQ(mean(std::vector<double>(static_cast<std::size_t>(n), huge)), huge);
}

TEST(Mean, OfZerosIsPlusZero)
{
    for (int n : sumLengths())
        EXPECT_EQ(bitsOf(mean(makeBlock(Temper::zeros, n, 3))), bitsOf(0.0));
}

TEST(Mean, SpreadsInfinitiesAndNans)
{
    for (int n : {1, 7, 8, 9, 100, 1025}) {
        for (int at : {0, n / 2, n - 1}) {
            std::vector<double> x(static_cast<std::size_t>(n), 1.0);
            x[static_cast<std::size_t>(at)] = -INF;
            EXPECT_EQ(mean(x), -INF);
            x.push_back(INF);
            EXPECT_TRUE(std::isnan(mean(x)));
            x[static_cast<std::size_t>(at)] = QUIET;
            EXPECT_TRUE(std::isnan(mean(x)));
        }
    }
}

TEST(Mean, Checks)
{
    Reports reports;
    const double x = 1.0;
    for (int len : {0, -1}) {
        EXPECT_EQ(rvxdMean(nullptr, len), 0.0);
        EXPECT_EQ(reports.take(), badArgument("rvxdMean", "len<=0", "rvxvec"));
        EXPECT_EQ(rvxdMean(&x, len), 0.0);
        EXPECT_EQ(reports.take(), badArgument("rvxdMean", "len<=0", "rvxvec"));
    }
    EXPECT_EQ(rvxdMean(nullptr, 1), 0.0);
    EXPECT_EQ(reports.take(), badArgument("rvxdMean", "vec==0", "rvxvec"));
}

TEST(StdDev, IsTheStatedOneOrTheRootOfTheCorrectlyRoundedVariance)
{
    for (Temper temper : allTempers) {
        for (int n : sumLengths()) {
            if (n < 2)
                continue;
            const auto x = makeBlock(temper, n, static_cast<unsigned>(n));
            const double chain = rootOf(statedVariance(x)), result = deviation(x);
            if (same(chain, result))
                continue;
            ASSERT_TRUE(allFinite(x) && std::isfinite(chain)) << temper << ", n " << n;
            if (isConstant(x)) {
                ASSERT_EQ(bitsOf(result), bitsOf(0.0)) << temper << ", n " << n;
                continue;
            }
            const Quotient v = exactVariance(x);
            ASSERT_EQ(result, std::sqrt(nearest(v.numerator, v.denominator)))
                << temper << ", n " << n;
        }
    }
}

TEST(StdDev, IsTheRootOfTheCorrectlyRoundedVarianceForWellConditionedBlocks)
{
    int misroundedChains = 0;
    for (unsigned seed = 0; seed < 600; ++seed) {
        auto x = makeBlock(Temper::positive, 700 + static_cast<int>(seed % 5), seed);
        for (double &value : x)
            value += 2.0; // cancels four bits in the formula
        const Quotient v = exactVariance(x);
        const double variance = nearest(v.numerator, v.denominator);
        ASSERT_EQ(deviation(x), std::sqrt(variance)) << seed;
        misroundedChains += statedVariance(x) != variance;
    }
    EXPECT_GT(misroundedChains, 0);
}

TEST(StdDev, OfAConstantBlockIsZero)
{
    for (double value : {0.0, -0.0, 0.1, -1e9 / 3.0, 1e300, 5e-324})
        for (int n = 2; n < 300; ++n)
            ASSERT_EQ(bitsOf(deviation(std::vector<double>(static_cast<std::size_t>(n), value))),
                      bitsOf(0.0))
                << value << " " << n;
}

TEST(StdDev, HasTheValuesOfTheFormula)
{
    EXPECT_EQ(deviation({1.0, 3.0}), std::sqrt(2.0));
    EXPECT_EQ(deviation({2.0, 4.0, 4.0, 4.0, 5.0, 5.0, 7.0, 9.0}), std::sqrt(32.0 / 7.0));
    EXPECT_EQ(deviation({1e200, -1e200}), INF); // the variance is beyond the range
}

// The sign bit of the variance decides, also that of a NaN; the invalid operations
// of the extended type give one with the sign bit set.
TEST(StdDev, OfInfinitiesIsZeroAndOfANanIsANanUnlessItsSignIsSet)
{
    for (int n : {2, 5, 100, 1025}) {
        std::vector<double> x(static_cast<std::size_t>(n), 1.0);
        x[1] = INF;
        EXPECT_EQ(bitsOf(deviation(x)), bitsOf(0.0));
        x[1] = fromBits(0x7ff8000000000000);
        EXPECT_TRUE(std::isnan(deviation(x)));
        x[1] = fromBits(0xfff8000000000000);
        EXPECT_EQ(bitsOf(deviation(x)), bitsOf(0.0));
    }
}

TEST(StdDev, Checks)
{
    Reports reports;
    const double x = 1.0;
    for (int len : {0, -1}) {
        EXPECT_EQ(rvxdStdDev(nullptr, len), 0.0);
        EXPECT_EQ(reports.take(), badArgument("rvxdStdDev", "len<=0", "rvxvec"));
    }
    EXPECT_EQ(rvxdStdDev(nullptr, 1), 0.0);
    EXPECT_EQ(reports.take(), badArgument("rvxdStdDev", "vec==0", "rvxvec"));
    EXPECT_EQ(rvxdStdDev(&x, 1), -1.0);
    EXPECT_EQ(reports.take(), badArgument("rvxdStdDev", "len<2", "rvxvec"));
}

namespace {

const double ordered[] = {fromBits(0xffffffffffffffff),
                          fromBits(0xfff8000000000001),
                          fromBits(0xfff8000000000000),
                          -INF,
                          -1.5,
                          -5e-324,
                          -0.0,
                          0.0,
                          5e-324,
                          1.0,
                          INF,
                          fromBits(0x7ff0000000000001),
                          fromBits(0x7ff8000000000000),
                          fromBits(0x7fffffffffffffff)};

// Whether a stands before b, from the definition: sign, then magnitude.
bool before(double a, double b)
{
    const bool negativeA = std::signbit(a), negativeB = std::signbit(b);
    if (negativeA != negativeB)
        return negativeA;
    const std::uint64_t mask = 0x7fffffffffffffff;
    const std::uint64_t magnitudeA = bitsOf(a) & mask, magnitudeB = bitsOf(b) & mask;
    return negativeA ? magnitudeB < magnitudeA : magnitudeA < magnitudeB;
}

// The walks with a position, straight from their definition.

double walkLargest(const std::vector<double> &x, int &position)
{
    position = 0;
    for (int i = 1; i < lengthOf(x); ++i)
        if (x[static_cast<std::size_t>(i)] > x[static_cast<std::size_t>(position)])
            position = i;
    return x[static_cast<std::size_t>(position)];
}

double walkSmallest(const std::vector<double> &x, int &position)
{
    position = 0;
    for (int i = 1; i < lengthOf(x); ++i)
        if (!(x[static_cast<std::size_t>(i)] >= x[static_cast<std::size_t>(position)]))
            position = i;
    return x[static_cast<std::size_t>(position)];
}

void expectAllExtremes(const std::vector<double> &x)
{
    const int n = lengthOf(x);
    const auto largest = std::max_element(x.begin(), x.end(), before);
    const auto smallest = std::min_element(x.begin(), x.end(), before);
    Guarded<double> block(x, n % 4);
    ASSERT_EQ(bitsOf(rvxdMax(block.data(), n)), bitsOf(*largest)) << n;
    ASSERT_EQ(bitsOf(rvxdMin(block.data(), n)), bitsOf(*smallest)) << n;
    ASSERT_EQ(bitsOf(rvxdMaxExt(block.data(), n, nullptr)), bitsOf(*largest)) << n;
    ASSERT_EQ(bitsOf(rvxdMinExt(block.data(), n, nullptr)), bitsOf(*smallest)) << n;
    int position = -1, expected = -1;
    const double top = rvxdMaxExt(block.data(), n, &position);
    ASSERT_EQ(bitsOf(top), bitsOf(walkLargest(x, expected))) << n;
    ASSERT_EQ(position, expected) << n;
    const double bottom = rvxdMinExt(block.data(), n, &position);
    ASSERT_EQ(bitsOf(bottom), bitsOf(walkSmallest(x, expected))) << n;
    ASSERT_EQ(position, expected) << n;
}

} // namespace

TEST(Extremes, FollowTheirOrderForEveryPairOfSpecialValues)
{
    for (double a : ordered)
        for (double b : ordered)
            for (double c : ordered)
                expectAllExtremes({a, b, c});
    for (std::size_t i = 0; i + 1 < std::size(ordered); ++i) {
        const double pair[] = {ordered[i + 1], ordered[i]};
        EXPECT_EQ(bitsOf(rvxdMax(pair, 2)), bitsOf(ordered[i + 1]));
        EXPECT_EQ(bitsOf(rvxdMin(pair, 2)), bitsOf(ordered[i]));
    }
}

TEST(Extremes, AreFoundInEveryBlock)
{
    for (Temper temper : allTempers)
        for (int n : sumLengths())
            expectAllExtremes(makeBlock(temper, n, static_cast<unsigned>(n)));
}

TEST(Extremes, AreFoundAtEveryPosition)
{
    for (int n : {1, 3, 16, 17, 63, 515, 1040}) {
        for (int at = 0; at < n; ++at) {
            for (double value : {2.0, -2.0, INF, -INF, QUIET, -QUIET}) {
                std::vector<double> x(static_cast<std::size_t>(n), 1.0);
                x[static_cast<std::size_t>(at)] = value;
                expectAllExtremes(x);
            }
        }
    }
}

// A packed file in memory may hold doubles at any address. The sanitizer would end
// the test for that alone.
#ifndef RVX_TEST_SANITIZED
TEST(Extremes, AreFoundAtAnyAddress)
{
    for (std::size_t shift = 1; shift < 32; ++shift) {
        for (int n : {1, 15, 255, 256, 600}) {
            const std::vector<double> x = makeBlock(Temper::uniform, n, 5);
            alignas(32) unsigned char bytes[600 * sizeof(double) + 32];
            std::memcpy(bytes + shift, x.data(), x.size() * sizeof(double));
            const auto *block = reinterpret_cast<const double *>(bytes + shift);
            int position = -1, expected = -1;
            const double largest = walkLargest(x, expected);
            ASSERT_EQ(rvxdMax(block, n), largest) << n << ' ' << shift;
            ASSERT_EQ(rvxdMaxExt(block, n, &position), largest) << n << ' ' << shift;
            ASSERT_EQ(position, expected) << n << ' ' << shift;
            const double smallest = walkSmallest(x, expected);
            ASSERT_EQ(rvxdMin(block, n), smallest) << n << ' ' << shift;
            ASSERT_EQ(rvxdMinExt(block, n, &position), smallest) << n << ' ' << shift;
            ASSERT_EQ(position, expected) << n << ' ' << shift;
        }
    }
}
#endif

TEST(Extremes, AreFoundAmongManySpecialValues)
{
    std::mt19937_64 random(1);
    for (int round = 0; round < 3000; ++round) {
        const std::size_t n = 1 + random() % 1300;
        const std::size_t kinds = 1 + random() % std::size(ordered);
        const std::size_t first = random() % std::size(ordered);
        std::vector<double> x;
        for (std::size_t i = 0; i < n; ++i)
            x.push_back(ordered[(first + random() % kinds) % std::size(ordered)]);
        expectAllExtremes(x);
    }
}

TEST(Extremes, OfBlocksOfOneInfinityOrOneNanHaveAPosition)
{
    for (double value : {INF, -INF, QUIET})
        for (int n : {1, 2, 17, 600})
            expectAllExtremes(std::vector<double>(static_cast<std::size_t>(n), value));
}

TEST(Extremes, OfZerosAndANanAsDocumented)
{
    int position = -1;
    const double zeros[] = {-0.0, 0.0};
    EXPECT_EQ(bitsOf(rvxdMax(zeros, 2)), bitsOf(0.0));
    EXPECT_EQ(bitsOf(rvxdMaxExt(zeros, 2, &position)), bitsOf(-0.0));
    EXPECT_EQ(position, 0);
    const double nanBetween[] = {1.0, QUIET, 2.0};
    EXPECT_EQ(rvxdMinExt(nanBetween, 3, &position), 2.0);
    EXPECT_EQ(position, 2);
    EXPECT_EQ(rvxdMaxExt(nanBetween, 3, &position), 2.0);
    EXPECT_EQ(position, 2);
    const double nanFirst[] = {QUIET, 1.0, 2.0};
    EXPECT_TRUE(std::isnan(rvxdMaxExt(nanFirst, 3, &position)));
    EXPECT_EQ(position, 0);
    const double nanLast[] = {1.0, 2.0, QUIET};
    EXPECT_TRUE(std::isnan(rvxdMinExt(nanLast, 3, &position)));
    EXPECT_EQ(position, 2);
}

TEST(Extremes, Check)
{
    Reports reports;
    const double x = 1.0;
    int position = 77;
    for (int len : {0, -1}) {
        EXPECT_EQ(rvxdMax(nullptr, len), 0.0);
        EXPECT_EQ(reports.take(), badArgument("rvxdMax", "len<=0", "rvxvec"));
        EXPECT_EQ(rvxdMin(&x, len), 0.0);
        EXPECT_EQ(reports.take(), badArgument("rvxdMin", "len<=0", "rvxvec"));
        EXPECT_EQ(rvxdMaxExt(nullptr, len, &position), 0.0);
        EXPECT_EQ(reports.take(), badArgument("rvxdMaxExt", "len<=0", "rvxvece"));
        EXPECT_EQ(rvxdMinExt(nullptr, len, nullptr), 0.0);
        EXPECT_EQ(reports.take(), badArgument("rvxdMinExt", "len<=0", "rvxvece"));
    }
    EXPECT_EQ(rvxdMax(nullptr, 1), 0.0);
    EXPECT_EQ(reports.take(), badArgument("rvxdMax", "vec==0", "rvxvec"));
    EXPECT_EQ(rvxdMin(nullptr, 1), 0.0);
    EXPECT_EQ(reports.take(), badArgument("rvxdMin", "vec==0", "rvxvec"));
    EXPECT_EQ(rvxdMaxExt(nullptr, 1, nullptr), 0.0);
    EXPECT_EQ(reports.take(), badArgument("rvxdMaxExt", "vec==0", "rvxvece"));
    EXPECT_EQ(rvxdMinExt(nullptr, 1, &position), 0.0);
    EXPECT_EQ(reports.take(), badArgument("rvxdMinExt", "vec==0", "rvxvece"));
    EXPECT_EQ(position, 77);
}

TEST(StatisticsDeathTest, FailuresInModeZeroEndTheProcess)
{
    int position = 0;
    EXPECT_EXIT(rvxdMean(nullptr, 1), ::testing::ExitedWithCode(1), "");
    EXPECT_EXIT(rvxdStdDev(nullptr, 1), ::testing::ExitedWithCode(1), "");
    EXPECT_EXIT(rvxdMax(nullptr, 1), ::testing::ExitedWithCode(1), "");
    EXPECT_EXIT(rvxdMin(nullptr, 1), ::testing::ExitedWithCode(1), "");
    EXPECT_EXIT(rvxdMaxExt(nullptr, 1, &position), ::testing::ExitedWithCode(1), "");
    EXPECT_EXIT(rvxdMinExt(nullptr, 1, &position), ::testing::ExitedWithCode(1), "");
}
