// Noise: seeds, the sequences of uniform noise, what both kinds have in common.

#include <cmath>
#include <cstdint>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "generation/rvxrand.h"
#include "generation/rvxrand_words.h"
#include "reference/noise.h"
#include "rvx.h"
#include "support/bits.h"
#include "support/float_environment.h"
#include "support/guarded.h"
#include "support/noise_records.h"
#include "support/reports.h"
#include "support/walled.h"

namespace {

constexpr const char *noState = "Null pointer to state structure";
constexpr const char *noData = "Null pointer to data buffer";
constexpr const char *noLength = "Null length of buffer";

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
        expectWords(normal, reference::Gaussian(seed, 0.0, 1.0, nullptr));
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
                    const reference::Uniform start = right;
                    const rvxRandUniState from = state;
                    double samps[37];
                    for (unsigned n : {5U, 37U}) { // word by word, and in runs
                        right = start;
                        state = from;
                        rvxdbRandUni(&state, samps, n);
                        for (unsigned i = 0; i < n; ++i)
                            ASSERT_EQ(bitsOf(samps[i]), bitsOf(right.next()));
                    }
                    expectWords(state, right);
                }
}

// The processor's carry on one kind of machine, arithmetic on all others.
TEST(NoiseWords, AreTheSameInEitherWritingOfARun)
{
    const unsigned words[] = {0,          1,          2,          17,         18,        19,
                              0x7fffffee, 0x7fffffff, 0x80000000, 0x80000001, 0xffffffff};
    const auto expectSameRuns = [](const RandWords &from) {
        BorrowChain chain = beginChain(from), plain = chain;
        for (int run = 0; run < 3; ++run) {
            Guarded<std::uint32_t> drawn(wordRun, 1), right(wordRun, 1);
            drawRun(chain, drawn.data());
            drawRunPlainly(plain, right.data());
            ASSERT_EQ(drawn.values(), right.values());
            ASSERT_TRUE(drawn.intact());
            ASSERT_EQ(chain.a, plain.a);
            ASSERT_EQ(chain.b, plain.b);
            ASSERT_EQ(chain.c, plain.c);
            ASSERT_EQ(chain.borrow, plain.borrow);
        }
    };
    for (unsigned carry : {0U, 1U})
        for (unsigned x1 : words)
            for (unsigned x2 : words)
                for (unsigned x3 : words)
                    expectSameRuns({0, carry, x1, x2, x3});
    for (double seed : seeds()) {
        const rvxRandUniState state = uniform(seed);
        expectSameRuns(takeWords(state));
    }
}

// From a record, the same words as one by one, and the record as that leaves it.
TEST(NoiseWords, OfAPlainRunAreThoseOfThePlainSequence)
{
    for (double seed : seeds()) {
        reference::Uniform right(seed, -1.0, 1.0);
        rvxRandUniState state = uniform(seed, -1.0, 1.0);
        RandWords words = takeWords(state);
        BorrowChain chain = beginChain(words);
        std::uint32_t drawn[wordRun];
        drawRunPlainly(chain, drawn);
        for (std::uint32_t word : drawn) {
            right.next();
            ASSERT_EQ(word + 1, right.x1);
        }
        endChain(chain, words);
        words.cong = static_cast<std::uint32_t>(right.cong);
        giveWords(words, state);
        expectWords(state, right);
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
            for (std::size_t i = 0; i < samps.size(); ++i)
                ASSERT_TRUE(sameBits(samps[i], expected[i])) << i;
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
    for (std::size_t i = 0; i < content.size(); ++i)
        EXPECT_TRUE(sameBits(samps.data()[i], content[i])) << i;
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

// A block that is as long as said does not end before the wall behind a short array.
TEST(NoiseDeathTest, LengthsCountWithoutASignAndPastThirtyTwoBits)
{
    Walled<ZCplx> cplx(std::vector<ZCplx>(100), Wall::behind);
    double *real = &cplx.data()->re;
    rvxRandUniState uni = uniform(1.0);
    rvxRandGausState gaus = gaussian(1.0);
    for (unsigned n : {0x80000000U, 0xffffffffU}) {
        EXPECT_DEATH(rvxdbRandUni(&uni, real, n), "");
        EXPECT_DEATH(rvxzbRandUni(&uni, cplx.data(), n), "");
        EXPECT_DEATH(rvxdbRandGaus(&gaus, real, n), "");
        EXPECT_DEATH(rvxzbRandGaus(&gaus, cplx.data(), n), "");
    }
}
