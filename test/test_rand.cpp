// Noise: the sequences.

#include <cmath>
#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "generation/rvxrand.h"
#include "generation/rvxrand_ln.h"
#include "reference/correct.h"
#include "reference/noise.h"
#include "rvx.h"
#include "support/bits.h"
#include "support/float_environment.h"
#include "support/guarded.h"
#include "support/reports.h"

namespace {

constexpr const char *noState = "Null pointer to state structure";
constexpr const char *noData = "Null pointer to data buffer";
constexpr const char *noLength = "Null length of buffer";

// What the module takes, within its own bound of the nearest double.
double ownLn(double w)
{
    return firstLane(lnBelowOne(allLanes(w)));
}

double nearestLn(double w)
{
    return reference::correct(mpfr_log, w);
}

// Every size of seed, both signs, and what is no number.
std::vector<double> seeds()
{
    std::vector<double> all = {0.0,  -0.0, 0.9,    1.0,    -1.0,   1.5,     -1.5,   2.0,
                               77.0, 1e-3, 1e-310, INF,    -INF,   QUIET,   -QUIET, 1e300,
                               1e10, 1e15, -3e9,   0x1p31, 0x1p32, -0x1p32, 0x1p63, 0x1p64};
    for (int exponent = -2; exponent < 140; ++exponent)
        for (double significand : {1.0, 1.75, 0x1.fffffffffffffp0, 0x1.23456789abcdep0})
            all.push_back(std::ldexp(significand, exponent) * (exponent % 3 == 0 ? -1.0 : 1.0));
    return all;
}

rvxRandUniState uniform(double seed, double low = -1.0, double high = 1.0)
{
    rvxRandUniState state;
    std::memset(&state, 0xa5, sizeof state);
    rvxdRandUniInit(seed, low, high, &state);
    return state;
}

rvxRandGausState gaussian(double seed, double mean = 0.0, double stDev = 1.0)
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

bool sameRecord(const rvxRandUniState &a, const rvxRandUniState &b)
{
    return std::memcmp(&a, &b, sizeof a) == 0;
}

bool sameRecord(const rvxRandGausState &a, const rvxRandGausState &b)
{
    return bitsOf(a.mean) == bitsOf(b.mean) && bitsOf(a.stDev) == bitsOf(b.stDev) &&
           bitsOf(a.spare) == bitsOf(b.spare) && a.haveSpare == b.haveSpare &&
           a.seedCong == b.seedCong && a.carry == b.carry && a.x1 == b.x1 && a.x2 == b.x2 &&
           a.x3 == b.x3 && a.seedInit == b.seedInit;
}

// What real and complex blocks of one kind of noise are called.
struct UniformKind {
    static constexpr const char *name = "Uniform";
    using State = rvxRandUniState;
    static State begin(double seed) { return uniform(seed, -3.0, 10.0); }
    static double one(State *state) { return rvxdRandUni(state); }
    static ZCplx oneCplx(State *state) { return rvxzRandUni(state); }
    static void block(State *state, double *samps, unsigned n) { rvxdbRandUni(state, samps, n); }
    static void block(State *state, ZCplx *samps, unsigned n) { rvxzbRandUni(state, samps, n); }
};

struct GaussianKind {
    static constexpr const char *name = "Gaussian";
    using State = rvxRandGausState;
    static State begin(double seed) { return gaussian(seed, 0.7, 2.5); }
    static double one(State *state) { return rvxdRandGaus(state); }
    static ZCplx oneCplx(State *state) { return rvxzRandGaus(state); }
    static void block(State *state, double *samps, unsigned n) { rvxdbRandGaus(state, samps, n); }
    static void block(State *state, ZCplx *samps, unsigned n) { rvxzbRandGaus(state, samps, n); }
};

template <typename Kind>
class Noise : public testing::Test {
};
using Kinds = testing::Types<UniformKind, GaussianKind>;

struct KindNames {
    template <typename Kind>
    static std::string GetName(int)
    {
        return Kind::name;
    }
};

TYPED_TEST_SUITE(Noise, Kinds, KindNames);

std::uint64_t bitsOfPart(const ZCplx &z, int part)
{
    return bitsOf(part == 0 ? z.re : z.im);
}

} // namespace

TEST(NoiseSeed, BecomesTheWordThatItsBitsSay)
{
    const struct {
        double seed;
        unsigned word;
    } known[] = {
        {0.0, 0},
        {0.9, 0},
        {-0.999, 0},
        {1e-310, 0},
        {1.0, 1},
        {1.5, 1},
        {-1.0, 0xffffffff},
        {-1.5, 0xffffffff},
        {1234567.9, 1234567},
        {2147483647.0, 0x7fffffff},
        {2147483648.0, 0x80000000},
        {-2147483648.0, 0x80000000},
        {4294967295.0, 0xffffffff},
        {-4294967295.0, 1},
        {4294967296.0, 1}, // the shift is 31 again
        {6442450944.0, 1},
        {8589934592.0, 2},
        {0x1.8p63, 0xc0000000},
        {INF, 0x80000000 >> 31},
        {QUIET, 0xc0000000 >> 31},
    };
    for (const auto &k : known) {
        const rvxRandGausState state = gaussian(k.seed);
        EXPECT_EQ(state.x1, k.word) << k.seed;
    }
    for (double seed : seeds())
        EXPECT_EQ(gaussian(seed).x1, reference::seedWord(seed)) << seed;
}

TEST(NoiseSeed, ZeroGivesTheKnownRecord)
{
    const rvxRandGausState state = gaussian(0.0, 5.0, 2.0);
    EXPECT_EQ(state.mean, 5.0);
    EXPECT_EQ(state.stDev, 2.0);
    EXPECT_EQ(bitsOf(state.spare), 0xa5a5a5a5a5a5a5a5U); // as it was
    EXPECT_EQ(state.haveSpare, 0U);
    EXPECT_EQ(state.seedCong, 1131199209U);
    EXPECT_EQ(state.carry, 1U);
    EXPECT_EQ(state.x1, 0U);
    EXPECT_EQ(state.x2, 38U);
    EXPECT_EQ(state.x3, 7719U);
    EXPECT_EQ(state.seedInit, 0x1e278e7aU);
}

TEST(NoiseSeed, OfAllSizesGivesTheRecordsOfASecondWriting)
{
    for (double seed : seeds()) {
        const reference::Uniform words(seed, 2.0, 12.0);
        rvxRandUniState state = uniform(seed, 2.0, 12.0);
        expectWords(state, words);
        EXPECT_EQ(state.mean, 7.0);
        EXPECT_EQ(state.scale, 10.0 * 2.328306436539e-10);
        rvxRandUniState other;
        rvxzRandUniInit(seed, 2.0, 12.0, &other);
        EXPECT_TRUE(sameRecord(state, other));

        rvxRandGausState normal = gaussian(seed), same = normal;
        expectWords(normal, reference::Gaussian(seed, 0.0, 1.0, ownLn));
        rvxzRandGausInit(seed, 0.0, 1.0, &same);
        EXPECT_TRUE(sameRecord(normal, same));
    }
}

TEST(UniformNoise, IsTheSequenceOfASecondWriting)
{
    for (double seed : seeds()) {
        reference::Uniform right(seed, -0.3, 0.9);
        rvxRandUniState state = uniform(seed, -0.3, 0.9);
        Guarded<double> samps(1000, 1);
        rvxdbRandUni(&state, samps.data(), 1000);
        for (int i = 0; i < 1000; ++i)
            ASSERT_EQ(bitsOf(samps[i]), bitsOf(right.next())) << seed << " at " << i;
        expectWords(state, right);
        EXPECT_TRUE(samps.intact());
    }
}

TEST(UniformNoise, IsTheSequenceOfASecondWritingFromAnyRecord)
{
    // Words at the borders of what the difference and the borrow look at.
    const unsigned words[] = {0, 1, 2, 17, 18, 19, 0x7fffffff, 0x80000000, 0x80000001, 0xffffffff};
    for (unsigned carry : {0U, 1U})
        for (unsigned x1 : words)
            for (unsigned x2 : words)
                for (unsigned x3 : words) {
                    reference::Uniform right(0.0, -1.0, 1.0);
                    rvxRandUniState state = uniform(0.0);
                    right.carry = state.carry = carry;
                    right.x1 = state.x1 = x1;
                    right.x2 = state.x2 = x2;
                    right.x3 = state.x3 = x3;
                    double samps[37];
                    rvxdbRandUni(&state, samps, 37);
                    for (double sample : samps)
                        ASSERT_EQ(bitsOf(sample), bitsOf(right.next()));
                    expectWords(state, right);
                }
}

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

// A record that a caller has filled.
TEST(UniformNoise, TakesACarryThatIsNeitherZeroNorOne)
{
    for (unsigned carry : {2U, 3U, 5U, 0x7fffffffU, 0x80000000U, 0xffffffffU})
        for (unsigned n : {1U, 15U, 16U, 40U}) {
            reference::Uniform right(3.0, -1.0, 1.0);
            rvxRandUniState state = uniform(3.0);
            right.carry = state.carry = carry;
            std::vector<double> samps(n);
            rvxdbRandUni(&state, samps.data(), n);
            for (double sample : samps)
                ASSERT_EQ(bitsOf(sample), bitsOf(right.next())) << carry;
            expectWords(state, right);
        }
}

TYPED_TEST(Noise, IsTheSameInBlocksCutAnywhere)
{
    using Kind = TypeParam;
    for (unsigned n = 1; n <= 300; ++n) {
        typename Kind::State ones = Kind::begin(n), blocks = ones;
        for (unsigned block : {n, 1U, n / 2 + 1, 2 * n}) {
            Guarded<double> samps(static_cast<int>(block), static_cast<int>(n % 4));
            Kind::block(&blocks, samps.data(), block);
            for (unsigned i = 0; i < block; ++i)
                ASSERT_EQ(bitsOf(samps[static_cast<int>(i)]), bitsOf(Kind::one(&ones)))
                    << "sample " << i << " of " << block;
            ASSERT_TRUE(sameRecord(blocks, ones)) << block;
            ASSERT_TRUE(samps.intact());
        }
    }
}

TYPED_TEST(Noise, IsTheSameInOneLongBlock)
{
    using Kind = TypeParam;
    const unsigned n = 20001;
    typename Kind::State ones = Kind::begin(5.0), whole = ones;
    std::vector<double> samps(n);
    Kind::block(&whole, samps.data(), n);
    for (double sample : samps)
        ASSERT_EQ(bitsOf(sample), bitsOf(Kind::one(&ones)));
    EXPECT_TRUE(sameRecord(whole, ones));
}

TYPED_TEST(Noise, IsComplexFromTheSameSequence)
{
    using Kind = TypeParam;
    typename Kind::State real = Kind::begin(11.0), cplx = real, ones = real;
    for (unsigned n : {1U, 2U, 3U, 7U, 16U, 33U, 500U}) {
        // An odd number of real samples leaves a spare behind.
        ASSERT_EQ(bitsOf(Kind::one(&real)), bitsOf(Kind::one(&cplx)));
        Kind::one(&ones);
        Guarded<ZCplx> samps(static_cast<int>(n), 1);
        Kind::block(&cplx, samps.data(), n);
        for (unsigned i = 0; i < n; ++i) {
            const ZCplx one = Kind::oneCplx(&ones);
            for (int part = 0; part < 2; ++part) {
                const std::uint64_t right = bitsOf(Kind::one(&real));
                ASSERT_EQ(bitsOfPart(samps[static_cast<int>(i)], part), right);
                ASSERT_EQ(bitsOfPart(one, part), right);
            }
        }
        EXPECT_TRUE(sameRecord(real, cplx));
        EXPECT_TRUE(sameRecord(real, ones));
        EXPECT_TRUE(samps.intact());
    }
}

TYPED_TEST(Noise, IsTheSameUnderAnyModeOfTheProcessor)
{
    using Kind = TypeParam;
    typename Kind::State right = Kind::begin(3.0), state;
    std::vector<double> expected(99), samps(99);
    Kind::block(&right, expected.data(), 99);
    underEveryEnvironment(
        [&] {
            state = Kind::begin(3.0);
            Kind::block(&state, samps.data(), 98);
            samps[98] = Kind::one(&state);
        },
        [&] {
            ASSERT_EQ(std::memcmp(samps.data(), expected.data(), 99 * sizeof(double)), 0);
            ASSERT_TRUE(sameRecord(state, right));
        });
}

TEST(UniformNoise, StaysInItsRangeAndComesNearBothEnds)
{
    rvxRandUniState state = uniform(9.0, 4.0, 6.0);
    std::vector<double> samps(100000);
    rvxdbRandUni(&state, samps.data(), 100000);
    double least = 5.0, most = 5.0;
    for (double sample : samps) {
        least = std::fmin(least, sample);
        most = std::fmax(most, sample);
    }
    EXPECT_GE(least, 4.0);
    EXPECT_LT(most, 6.0);
    // The chance that no sample of n comes so near is exp(-n 1e-4) = exp(-10).
    EXPECT_LT(least, 4.0002);
    EXPECT_GT(most, 5.9998);
}

TEST(UniformNoise, OfNoRangeIsOneValue)
{
    for (double value : {0.0, 3.25, -1e300, 0x1p-1074}) {
        rvxRandUniState state = uniform(1.0, value, value);
        double samps[50];
        rvxdbRandUni(&state, samps, 50);
        for (double sample : samps)
            EXPECT_EQ(sample, value);
    }
}

TEST(UniformNoise, OfSwappedBoundsIsMirrored)
{
    rvxRandUniState up = uniform(1.0, -2.0, 2.0), down = uniform(1.0, 2.0, -2.0);
    EXPECT_EQ(up.scale, -down.scale);
    for (int i = 0; i < 100; ++i)
        EXPECT_EQ(rvxdRandUni(&up), -rvxdRandUni(&down));
}

TEST(UniformNoise, TakesBoundsThatAreNoNumbers)
{
    const struct {
        double low, high;
        bool isNan;
    } cases[] = {{QUIET, 1.0, true},
                 {0.0, QUIET, true},
                 {0.0, INF, true}, // infinite mean and scale: inf - inf or inf
                 {-INF, INF, true},
                 {-1e308, 1e308, true}};
    for (const auto &c : cases) {
        rvxRandUniState state = uniform(1.0, c.low, c.high), plain = uniform(1.0);
        double samps[64], others[64];
        rvxdbRandUni(&state, samps, 64);
        rvxdbRandUni(&plain, others, 64);
        for (int i = 0; i < 64; ++i) {
            const double right = (others[i] / plain.scale) * state.scale + state.mean;
            EXPECT_EQ(std::isnan(samps[i]), std::isnan(right));
            if (!std::isnan(right)) {
                EXPECT_EQ(samps[i], right);
            }
        }
        EXPECT_EQ(state.x1, plain.x1); // the words go on as ever
        EXPECT_EQ(state.seedCong, plain.seedCong);
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
            EXPECT_EQ(std::memcmp(samps.data() + 1, others.data(), (n - 1) * sizeof(double)), 0);
            EXPECT_TRUE(sameRecord(state, plain));
        }
}

TEST(GaussianNoise, PassesOverAPairOfZeros)
{
    // Words whose sums with the congruential sequence are 0 twice.
    rvxRandGausState state = gaussian(8.0);
    const auto negative = [](unsigned x) { return 0 - x; };
    unsigned c1 = 0, c2 = 0;
    for (state.seedCong = 1;; ++state.seedCong) {
        c1 = state.seedCong * 69069 + 1013904243;
        c2 = c1 * 69069 + 1013904243;
        if (c1 > 0x80000000 && c2 > 0x80000000)
            break; // both differences are to be above 0
    }
    state.carry = 0;
    state.x3 = 0;
    state.x2 = negative(c1);
    state.x1 = negative(c2) + state.x2;
    reference::Gaussian right(8.0, 0.0, 1.0, ownLn);
    right.cong = state.seedCong;
    right.carry = 0;
    right.x1 = state.x1;
    right.x2 = state.x2;
    right.x3 = 0;
    reference::Words look = right;
    EXPECT_EQ(look.nextSigned(), 0);
    EXPECT_EQ(look.nextSigned(), 0);
    double samps[9];
    rvxdbRandGaus(&state, samps, 9);
    for (double sample : samps)
        EXPECT_EQ(bitsOf(sample), bitsOf(right.next()));
    expectWords(state, right);
}

TEST(NoiseChecks, ChecksItsArgumentsInOrder)
{
    Reports reports;
    const auto expectReport = [&reports](const char *func, const char *context) {
        EXPECT_EQ(reports.take(), badArgument(func, context, "rvxrand"));
    };
    rvxdRandUniInit(1.0, 0.0, 1.0, nullptr);
    expectReport("rvxdRandUniInit", noState);
    rvxzRandUniInit(1.0, 0.0, 1.0, nullptr);
    expectReport("rvxzRandUniInit", noState);
    rvxdRandGausInit(1.0, 0.0, 1.0, nullptr);
    expectReport("rvxdRandGausInit", noState);
    rvxzRandGausInit(1.0, 0.0, 1.0, nullptr);
    expectReport("rvxzRandGausInit", noState);
    EXPECT_EQ(bitsOf(rvxdRandUni(nullptr)), 0U);
    expectReport("rvxdRandUni", noState);
    EXPECT_EQ(bitsOf(rvxdRandGaus(nullptr)), 0U);
    expectReport("rvxdRandGaus", noState);
    const ZCplx uni = rvxzRandUni(nullptr);
    expectReport("rvxzRandUni", noState);
    const ZCplx gaus = rvxzRandGaus(nullptr);
    expectReport("rvxzRandGaus", noState);
    for (double part : {uni.re, uni.im, gaus.re, gaus.im})
        EXPECT_EQ(bitsOf(part), 0U);
    EXPECT_EQ(rvxGetErrStatus(), RVX_STATUS_BAD_ARGUMENT);
}

namespace {

template <typename State, typename Sample>
void expectBlockChecks(const char *name, void (*block)(State *, Sample *, unsigned), State state)
{
    Reports reports;
    const State before = state;
    Guarded<Sample> samps(4);
    const std::vector<Sample> content = samps.values();
    block(nullptr, nullptr, 0);
    EXPECT_EQ(reports.take(), badArgument(name, noState, "rvxrand"));
    block(&state, nullptr, 0);
    EXPECT_EQ(reports.take(), badArgument(name, noData, "rvxrand"));
    block(&state, samps.data(), 0);
    EXPECT_EQ(reports.take(), badArgument(name, noLength, "rvxrand"));
    EXPECT_TRUE(sameRecord(state, before));
    EXPECT_EQ(std::memcmp(samps.data(), content.data(), 4 * sizeof(Sample)), 0);
    block(&state, samps.data(), 4);
    EXPECT_TRUE(reports.take().empty());
    EXPECT_TRUE(samps.intact());
}

} // namespace

TEST(NoiseChecks, BlocksCheckTheirArgumentsInOrder)
{
    expectBlockChecks("rvxdbRandUni", rvxdbRandUni, uniform(1.0));
    expectBlockChecks("rvxzbRandUni", rvxzbRandUni, uniform(1.0));
    expectBlockChecks("rvxdbRandGaus", rvxdbRandGaus, gaussian(1.0));
    expectBlockChecks("rvxzbRandGaus", rvxzbRandGaus, gaussian(1.0));
}

TEST(NoiseDeathTest, AFailedCheckEndsTheProcessInModeZero)
{
    double sample;
    rvxSetErrMode(0);
    EXPECT_EXIT(rvxdbRandUni(nullptr, &sample, 1), testing::ExitedWithCode(1), "");
    EXPECT_EXIT(rvxdbRandGaus(nullptr, &sample, 1), testing::ExitedWithCode(1), "");
    EXPECT_EXIT(rvxdRandGausInit(0.0, 0.0, 1.0, nullptr), testing::ExitedWithCode(1), "");
}
