// Triangle waves.

#include <climits>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <vector>

#include <gtest/gtest.h>

#include "reference/triangle.h"
#include "rvx.h"
#include "support/bits.h"
#include "support/guarded.h"
#include "support/reports.h"
#include "support/worse.h"

namespace {

// The two forms under one name. A state's places are its steps and values, part by part.

struct Real {
    using State = rvxdTrnglState;
    using Sample = double;
    static constexpr const char *initName = "rvxdTrnglInit";
    static constexpr const char *scalarName = "rvxdTrngl";
    static constexpr const char *blockName = "rvxdbTrngl";
    static void init(double freq, double phase, double mag, double asym, State *state)
    {
        rvxdTrnglInit(freq, phase, mag, asym, state);
    }
    static Sample next(State *state) { return rvxdTrngl(state); }
    static void block(State *state, Sample *samps, int sampsLen)
    {
        rvxdbTrngl(state, samps, sampsLen);
    }
    static constexpr int parts = 1;
    static double part(Sample x, int) { return x; }
    static double *step(State &state, int) { return &state.step; }
    static double *value(State &state, int) { return &state.value; }
};

struct Cplx {
    using State = rvxzTrnglState;
    using Sample = ZCplx;
    static constexpr const char *initName = "rvxzTrnglInit";
    static constexpr const char *scalarName = "rvxzTrngl";
    static constexpr const char *blockName = "rvxzbTrngl";
    static void init(double freq, double phase, double mag, double asym, State *state)
    {
        rvxzTrnglInit(freq, phase, mag, asym, state);
    }
    static Sample next(State *state) { return rvxzTrngl(state); }
    static void block(State *state, Sample *samps, int sampsLen)
    {
        rvxzbTrngl(state, samps, sampsLen);
    }
    static constexpr int parts = 2;
    static double part(Sample x, int i) { return i == 0 ? x.re : x.im; }
    static double *step(State &state, int i) { return i == 0 ? &state.stepRe : &state.stepIm; }
    static double *value(State &state, int i) { return i == 0 ? &state.valueRe : &state.valueIm; }
};

template <typename Form>
class Triangle : public ::testing::Test {
};
using Forms = ::testing::Types<Real, Cplx>;
TYPED_TEST_SUITE(Triangle, Forms, );

// A record full of one byte, to see what was written.
template <typename State>
State filled(int byte)
{
    State state;
    std::memset(static_cast<void *>(&state), byte, sizeof state);
    return state;
}

// Bit for bit: there is nothing between the fields.
template <typename State>
bool sameRecord(const State &a, const State &b)
{
    return std::memcmp(static_cast<const void *>(&a), static_cast<const void *>(&b), sizeof a) == 0;
}

template <typename Form>
typename Form::State ready(double freq, double phase, double mag, double asym)
{
    typename Form::State state;
    Form::init(freq, phase, mag, asym, &state);
    return state;
}

const double frequencies[] = {0.0,  4e-324, 1e-9, 1e-5, 1e-4,  1e-3,    0.0123,
                              0.05, 0.125,  0.2,  0.25, 0.333, 0.49999, 0.5 - 0x1p-54};
const double phases[] = {0.0, 4e-324, 0.5, PI, 3.5, 5.0, 6.283185307179585};
const double magnitudes[] = {0.0,     -0.0,  5e-324,  1e-310, 0.7,  1.0,
                             32767.0, 1e307, 1.7e308, INF,    QUIET};
const double asymmetries[] = {
    -3.1415926535897927, -3.14159, -3.0, -1.0, -1e-9, 0.0, 0.5, 2.0, 3.1, 3.14159,
    3.1415926535897927};

// ---------------------------------------------------------------------------
// Records and checks.

TEST(TriangleRecord, HasItsFieldsInOrder)
{
    const std::size_t real[] = {
        offsetof(rvxdTrnglState, mag),        offsetof(rvxdTrnglState, step),
        offsetof(rvxdTrnglState, stepDown),   offsetof(rvxdTrnglState, stepUp),
        offsetof(rvxdTrnglState, reflectTop), offsetof(rvxdTrnglState, reflectBottom),
        offsetof(rvxdTrnglState, spanUp),     offsetof(rvxdTrnglState, spanDown),
        offsetof(rvxdTrnglState, offsetTop),  offsetof(rvxdTrnglState, offsetBottom),
        offsetof(rvxdTrnglState, value),      sizeof(rvxdTrnglState)};
    for (std::size_t i = 0; i < std::size(real); ++i)
        EXPECT_EQ(real[i], i * sizeof(double));
    const std::size_t cplx[] = {
        offsetof(rvxzTrnglState, mag),           offsetof(rvxzTrnglState, stepRe),
        offsetof(rvxzTrnglState, stepIm),        offsetof(rvxzTrnglState, stepDown),
        offsetof(rvxzTrnglState, stepUp),        offsetof(rvxzTrnglState, reflectTop),
        offsetof(rvxzTrnglState, reflectBottom), offsetof(rvxzTrnglState, spanUp),
        offsetof(rvxzTrnglState, spanDown),      offsetof(rvxzTrnglState, offsetTop),
        offsetof(rvxzTrnglState, offsetBottom),  offsetof(rvxzTrnglState, valueRe),
        offsetof(rvxzTrnglState, valueIm),       sizeof(rvxzTrnglState)};
    for (std::size_t i = 0; i < std::size(cplx); ++i)
        EXPECT_EQ(cplx[i], i * sizeof(double));
}

TYPED_TEST(Triangle, InitStoresTheShapeAndTheStart)
{
    Reports reports;
    for (double freq : frequencies) {
        for (double phase : phases) {
            for (double mag : magnitudes) {
                for (double asym : asymmetries) {
                    auto state = filled<typename TypeParam::State>(0x5a);
                    TypeParam::init(freq, phase, mag, asym, &state);
                    const Shape shape = expectedShape(freq, mag, asym);
                    expectShape(shapeOf(state), shape);
                    for (int part = 0; part < TypeParam::parts; ++part) {
                        const Chain start =
                            expectedStart(shape, phaseOfPart(part, phase, asym), asym);
                        EXPECT_TRUE(same(*TypeParam::value(state, part), start.value))
                            << freq << ' ' << phase << ' ' << mag << ' ' << asym;
                        EXPECT_TRUE(same(*TypeParam::step(state, part), start.step));
                    }
                }
            }
        }
    }
    EXPECT_TRUE(reports.take().empty());
}

TYPED_TEST(Triangle, InitChecksMagnitudeThenFrequencyThenPhaseThenAsymmetryThenState)
{
    Reports reports;
    const auto refusal = [](const char *context) {
        return badArgument(TypeParam::initName, context, "rvxtrngl");
    };
    const auto before = filled<typename TypeParam::State>(0x5a);
    auto state = before;
    for (auto *record : {&state, static_cast<typename TypeParam::State *>(nullptr)}) {
        for (double mag : {-4e-324, -1.0, -INF}) {
            TypeParam::init(0.7, 7.0, mag, 4.0, record);
            EXPECT_EQ(reports.take(), refusal("Invalid magnitude value")) << mag;
        }
        for (double freq : {-4e-324, -0.1, 0.5, 1.0, INF, -INF, QUIET, -QUIET}) {
            TypeParam::init(freq, 7.0, 1.0, 4.0, record);
            EXPECT_EQ(reports.take(), refusal("Invalid frequence value")) << freq;
        }
        for (double phase : {-4e-324, -1.0, TWO_PI, 7.0, INF, -INF, QUIET, -QUIET}) {
            TypeParam::init(0.1, phase, 1.0, 4.0, record);
            EXPECT_EQ(reports.take(), refusal("Invalid phase value")) << phase;
        }
        for (double asym : {PI, -PI, 4.0, -4.0, INF, -INF, QUIET, -QUIET}) {
            TypeParam::init(0.1, 1.0, 1.0, asym, record);
            EXPECT_EQ(reports.take(), refusal("Invalid asymmetry value")) << asym;
        }
    }
    TypeParam::init(0.1, 1.0, 1.0, 0.0, nullptr);
    EXPECT_EQ(reports.take(), refusal("Null pointer to state"));
    TypeParam::init(0.1, 1.0, QUIET, 0.0, nullptr);
    EXPECT_EQ(reports.take(), refusal("Null pointer to state"));
    EXPECT_TRUE(sameRecord(state, before));
}

TYPED_TEST(Triangle, ScalarRefusesANullStateAndGivesZero)
{
    Reports reports;
    EXPECT_TRUE(sameBits(TypeParam::next(nullptr), typename TypeParam::Sample{}));
    EXPECT_EQ(reports.take(),
              badArgument(TypeParam::scalarName, "Null pointer to state", "rvxtrngl"));
}

TYPED_TEST(Triangle, BlockChecksStateThenBufferThenLength)
{
    Reports reports;
    const auto refusal = [](const char *context) {
        return badArgument(TypeParam::blockName, context, "rvxtrngl");
    };
    auto state = ready<TypeParam>(0.1, 1.0, 1.0, 0.0);
    const auto before = state;
    Guarded<typename TypeParam::Sample> samples(3);
    std::memset(static_cast<void *>(samples.data()), 0x33, 3 * sizeof samples[0]);
    const auto untouched = samples.values();

    TypeParam::block(nullptr, nullptr, 0);
    EXPECT_EQ(reports.take(), refusal("Null pointer to state"));
    TypeParam::block(nullptr, samples.data(), 3);
    EXPECT_EQ(reports.take(), refusal("Null pointer to state"));
    TypeParam::block(&state, nullptr, 0);
    EXPECT_EQ(reports.take(), refusal("Null pointer to buffer"));
    for (int len : {0, -1, INT_MIN}) {
        TypeParam::block(&state, samples.data(), len);
        EXPECT_EQ(reports.take(), refusal("Invalid number of items")) << len;
    }
    EXPECT_TRUE(sameRecord(state, before));
    for (int i = 0; i < 3; ++i)
        EXPECT_TRUE(sameBits(samples[i], untouched[static_cast<std::size_t>(i)]));
    EXPECT_TRUE(samples.intact());
}

// ---------------------------------------------------------------------------
// Samples.

// One after the other, against scalarStep.
template <typename Form>
void expectSingles(typename Form::State state, int n)
{
    const Shape shape = shapeOf(state);
    const auto fresh = state;
    Chain chains[2];
    for (int part = 0; part < Form::parts; ++part)
        chains[part] = {*Form::value(state, part), *Form::step(state, part)};
    for (int i = 0; i < n; ++i) {
        const auto sample = Form::next(&state);
        for (int part = 0; part < Form::parts; ++part) {
            ASSERT_TRUE(same(Form::part(sample, part), chains[part].value)) << i;
            scalarStep(shape, &chains[part]);
            ASSERT_TRUE(same(*Form::value(state, part), chains[part].value)) << i;
            ASSERT_TRUE(same(*Form::step(state, part), chains[part].step)) << i;
        }
    }
    expectShape(shapeOf(state), shapeOf(fresh));
}

// In blocks of the given lengths, against blockSteps.
template <typename Form>
void expectBlocks(typename Form::State state, std::initializer_list<int> lengths)
{
    const Shape shape = shapeOf(state);
    int misalignment = 0;
    for (int n : lengths) {
        Chain chains[2];
        std::vector<double> expected[2];
        for (int part = 0; part < Form::parts; ++part) {
            chains[part] = {*Form::value(state, part), *Form::step(state, part)};
            expected[part] = blockSteps(shape, n, &chains[part]);
        }
        Guarded<typename Form::Sample> samples(n, misalignment++ % 4);
        Form::block(&state, samples.data(), n);
        for (int part = 0; part < Form::parts; ++part) {
            for (int i = 0; i < n; ++i)
                ASSERT_TRUE(
                    same(Form::part(samples[i], part), expected[part][static_cast<std::size_t>(i)]))
                    << n << ' ' << i;
            ASSERT_TRUE(same(*Form::value(state, part), chains[part].value)) << n;
            ASSERT_TRUE(same(*Form::step(state, part), chains[part].step)) << n;
        }
        ASSERT_TRUE(samples.intact());
        expectShape(shapeOf(state), shape);
    }
}

TYPED_TEST(Triangle, SamplesHaveTheBitsOfTheStepsOneByOneAndInBlocks)
{
    Reports reports;
    branches = {};
    for (double freq : frequencies) {
        for (double mag : magnitudes) {
            for (double asym : asymmetries) {
                SCOPED_TRACE(testing::Message() << freq << ' ' << mag << ' ' << asym);
                const auto state = ready<TypeParam>(freq, 2.0, mag, asym);
                expectSingles<TypeParam>(state, 70);
                expectBlocks<TypeParam>(state, {1, 2, 3, 4, 5, 6, 7, 8, 9, 15, 16, 17, 31, 70});
            }
        }
    }
    // All ways were gone.
    EXPECT_GT(branches.tops, 1000);
    EXPECT_GT(branches.bottoms, 1000);
    EXPECT_GT(branches.spansUp, 1000);
    EXPECT_GT(branches.spansDown, 1000);
    EXPECT_TRUE(reports.take().empty());
}

TYPED_TEST(Triangle, LongBlocksHaveTheBitsOfTheSteps)
{
    Reports reports;
    for (double freq : {1e-9, 1e-5, 1e-4, 1.0 / 4096.0, 0.0007, 1e-3, 1.0 / 512.0, 0.003, 0.0123}) {
        for (double mag : {1.0, 0.7, 32767.0, 3e-310, 1e307}) {
            for (double asym : {-3.0, -1.0, 0.0, 0.123, 3.1}) {
                SCOPED_TRACE(testing::Message() << freq << ' ' << mag << ' ' << asym);
                expectBlocks<TypeParam>(ready<TypeParam>(freq, 2.0, mag, asym),
                                        {997, 3000, 1, 2100});
            }
        }
    }
}

// Steps that lie half-way between the doubles about a value, and steps of a few bits, are
// where sums of several steps at once could differ from one after the other; and so are
// values beyond the turning points, where a record was written by hand.
TYPED_TEST(Triangle, StepsThatRoundToEvenAddUpOneByOne)
{
    Reports reports;
    for (double step : {0x1p-10 + 0x1p-54, 0x1p-10 + 0x3p-55, 0x1p-11 + 0x1p-53, 0x3p-13 + 0x1p-54,
                        0x1.0000000000001p-10, 0x1.fffffffffffffp-11, 0x1p-54, 0x3p-55, 0x1p-53,
                        0x1p-60, 0x1.8p-12 + 0x1p-55}) {
        // The last two reach 1/2 with their first step, where doubles begin to stand apart
        // twice as far: one of them at an odd multiple.
        for (double start : {1.0, -1.0, 0.75, 0.5 + 0x1p-53, 0.0, -0.3, 0x1p-10, 1.5, -1.5,
                             0.5 - 0x1p-11 + 0x1p-54, 0.5 - 0x1p-11 + 0x3p-54}) {
            for (double sign : {1.0, -1.0}) {
                auto state = ready<TypeParam>(0.001, 0.0, 1.0, 0.0);
                state.stepDown = -step;
                state.stepUp = step;
                for (int part = 0; part < TypeParam::parts; ++part) {
                    *TypeParam::step(state, part) = part == 0 ? sign * step : -sign * step;
                    *TypeParam::value(state, part) = part == 0 ? start : -0.9 * start;
                }
                SCOPED_TRACE(testing::Message() << step << ' ' << start << ' ' << sign);
                expectBlocks<TypeParam>(state, {3000, 999, 2000});
            }
        }
    }
}

// Nothing marks a record that an initialiser filled, so that all steps are as stated
// whatever its fields hold.
TYPED_TEST(Triangle, RecordsWrittenByHandTakeTheSameSteps)
{
    Reports reports;
    using State = typename TypeParam::State;
    const double odd[] = {0.0,   -0.0,   1.0,    -1.0, 1.5,  -1.5,  1e-3,   -1e-3,
                          1e-20, -1e-20, 5e-324, INF,  -INF, QUIET, 1e+308, 0x1p-10 + 0x3p-55};
    std::uint32_t dice = 1;
    const auto below = [&dice](std::size_t n) {
        dice = dice * 1664525u + 1013904223u;
        return (dice >> 16) % n;
    };
    for (int i = 0; i < 4000; ++i) {
        State state = ready<TypeParam>(i % 3 == 0 ? 0.2 : 0.001, 2.0, 1.0, 0.5);
        double fields[sizeof(State) / sizeof(double)];
        std::memcpy(fields, &state, sizeof state);
        for (int k = 0; k <= i % 4; ++k)
            fields[below(sizeof(State) / sizeof(double))] = odd[below(sizeof odd / sizeof odd[0])];
        std::memcpy(&state, fields, sizeof state);
        SCOPED_TRACE(i);
        if (i % 64 == 1) // no slope goes the way of its name
            state.stepDown = -state.stepDown;
        if (i % 64 == 33)
            state.stepUp = -state.stepUp;
        if (i % 32 == 1)
            expectBlocks<TypeParam>(state, {3000});
        expectSingles<TypeParam>(state, 20);
        expectBlocks<TypeParam>(state, {150, 7, 60});
    }
}

TYPED_TEST(Triangle, BlocksCutAnywhereEqualOneBlock)
{
    Reports reports;
    constexpr int n = 60;
    for (double freq : {0.0, 1e-5, 0.0123, 0.05, 0.2, 0.49999}) {
        for (double asym : {-3.14159, -1.0, 0.0, 2.0, 3.14159}) {
            const auto fresh = ready<TypeParam>(freq, 1.0, 0.7, asym);
            auto whole = fresh;
            std::vector<typename TypeParam::Sample> expected(n), samples(n);
            TypeParam::block(&whole, expected.data(), n);
            for (int first = 1; first < n; ++first) {
                auto state = fresh;
                TypeParam::block(&state, samples.data(), first);
                TypeParam::block(&state, samples.data() + first, n - first);
                for (std::size_t i = 0; i < n; ++i)
                    ASSERT_TRUE(sameBits(samples[i], expected[i])) << freq << ' ' << first;
                EXPECT_TRUE(sameRecord(state, whole));
            }
        }
    }
    EXPECT_TRUE(reports.take().empty());
}

// Their folds round differently, and where that matters the two go apart by little.
TYPED_TEST(Triangle, SinglesAndBlocksDifferByTheirFoldsRoundingsAlone)
{
    Reports reports;
    constexpr int n = 2000;
    for (double freq : {0.001, 0.0123, 0.05, 0.2, 0.4}) {
        for (double asym : {-1.0, 0.0, 1.5}) {
            auto byOne = ready<TypeParam>(freq, 1.0, 1.0, asym), byBlock = byOne;
            std::vector<typename TypeParam::Sample> samples(n);
            TypeParam::block(&byBlock, samples.data(), n);
            for (const auto &sample : samples) {
                const auto single = TypeParam::next(&byOne);
                for (int part = 0; part < TypeParam::parts; ++part)
                    ASSERT_NEAR(TypeParam::part(single, part), TypeParam::part(sample, part),
                                1e-11);
            }
        }
    }
}

// The wave by its definition, at 2 pi freq n + p.
double waveAt(long double turns, double asym)
{
    const long double pi = std::acos(-1.0L), p = (turns - std::floor(turns)) * 2.0L * pi;
    const long double fall = pi + asym, rise = pi - asym;
    return static_cast<double>(p < fall ? 1.0L - 2.0L * p / fall : 2.0L * (p - fall) / rise - 1.0L);
}

TYPED_TEST(Triangle, SamplesFollowTheWave)
{
    Reports reports;
    double worst = 0.0;
    for (double freq : {0.0, 1e-5, 1e-3, 0.0123, 0.05, 0.125, 0.2, 0.25, 0.333, 0.49}) {
        for (double phase : {0.0, 0.5, 3.5, 5.0}) {
            for (double asym : {-2.5, -1.0, 0.0, 0.5, 2.0}) {
                auto state = ready<TypeParam>(freq, phase, 1.0, asym);
                auto other = state;
                std::vector<typename TypeParam::Sample> samples(1000);
                TypeParam::block(&other, samples.data(), 1000);
                for (int n = 0; n < 1000; ++n) {
                    const auto single = TypeParam::next(&state);
                    for (int part = 0; part < TypeParam::parts; ++part) {
                        const long double turns =
                            static_cast<long double>(freq) * n +
                            phaseOfPart(part, phase, asym) / (2.0L * std::acos(-1.0L));
                        const double wave = waveAt(turns, asym);
                        const double error = worse(
                            std::fabs(TypeParam::part(single, part) - wave),
                            std::fabs(TypeParam::part(samples[static_cast<std::size_t>(n)], part) -
                                      wave));
                        const double steeper = 1.0 / (1.0 - std::fabs(asym) / PI);
                        worst = worse(worst, error / ((n + 4) * steeper));
                    }
                }
            }
        }
    }
    EXPECT_LT(worst, 2.5e-16);
}

TYPED_TEST(Triangle, FrequencyZeroIsConstantAndMagnitudeZeroIsSilent)
{
    Reports reports;
    for (double phase : phases) {
        for (double asym : {-1.0, 0.0, 2.0}) {
            auto state = ready<TypeParam>(0.0, phase, 3.0, asym);
            std::vector<typename TypeParam::Sample> samples(100);
            const auto first = TypeParam::next(&state);
            for (int i = 0; i < 100; ++i)
                ASSERT_TRUE(sameBits(TypeParam::next(&state), first));
            TypeParam::block(&state, samples.data(), 100);
            for (const auto &sample : samples)
                ASSERT_TRUE(sameBits(sample, first));
            state = ready<TypeParam>(0.123, phase, 0.0, asym);
            TypeParam::block(&state, samples.data(), 50);
            for (int i = 50; i < 100; ++i)
                samples[static_cast<std::size_t>(i)] = TypeParam::next(&state);
            for (const auto &sample : samples)
                for (int part = 0; part < TypeParam::parts; ++part)
                    ASSERT_EQ(TypeParam::part(sample, part), 0.0);
        }
    }
}

TYPED_TEST(Triangle, StartsAtTheTopAndFallsAndAtTheBottomAndRises)
{
    Reports reports;
    auto state = ready<TypeParam>(1.0 / 64.0, 0.0, 2.0, 0.0);
    for (int n = 0; n <= 16; ++n)
        EXPECT_NEAR(TypeParam::part(TypeParam::next(&state), 0), 2.0 - 0.125 * n, 5e-15);
    for (double asym : {-1.0, 0.0, 0.5, 3.0}) {
        state = ready<TypeParam>(0.01, PI + asym, 1.0, asym);
        EXPECT_EQ(TypeParam::part(TypeParam::next(&state), 0), -1.0);
        EXPECT_GT(TypeParam::part(TypeParam::next(&state), 0), -1.0);
        EXPECT_GT(*TypeParam::step(state, 0), 0.0);
    }
}

// A step of 0 counts as falling: the turning point ahead is the lower one.
TYPED_TEST(Triangle, AStandingValueIsFoldedAtTheBottomAlone)
{
    Reports reports;
    for (double start : {-1.25, 1.25}) {
        for (double step : {0.0, -0.0}) {
            auto state = ready<TypeParam>(0.01, 0.0, 1.0, 0.0);
            for (int part = 0; part < TypeParam::parts; ++part) {
                *TypeParam::step(state, part) = step;
                *TypeParam::value(state, part) = start;
            }
            expectBlocks<TypeParam>(state, {1, 5, 40});
            std::vector<typename TypeParam::Sample> samples(2);
            TypeParam::block(&state, samples.data(), 2);
            EXPECT_EQ(TypeParam::part(samples[1], 0), start < 0.0 ? -0.75 : start);
        }
    }
}

TEST(TriangleComplex, ImaginaryPartIsThreeQuartersOfAPeriodAhead)
{
    Reports reports;
    auto state = ready<Cplx>(1.0 / 64.0, 0.0, 1.0, 0.0);
    EXPECT_NEAR(state.valueIm, 0.0, 1e-15);
    EXPECT_GT(state.stepIm, 0.0);
    std::vector<ZCplx> samples(256);
    rvxzbTrngl(&state, samples.data(), 256);
    for (std::size_t n = 0; n + 48 < samples.size(); ++n)
        EXPECT_NEAR(samples[n].im, samples[n + 48].re, 1e-13);
}

TEST(TriangleComplex, APhaseOfExactlyAWholeTurnAfterTheAdditionStays)
{
    Reports reports;
    // Somewhat before it, it, and the next double behind: only that is taken back.
    const double ahead = (TWO_PI + PI) * 0.5, phase = TWO_PI - ahead;
    ASSERT_EQ(phase + ahead, TWO_PI);
    for (double p : {phase - 0x1p-50, phase, phase + 0x1p-50}) {
        const auto state = ready<Cplx>(0.01, p, 1.0, 0.0);
        const bool isBeyond = p > phase;
        EXPECT_EQ(state.stepIm, isBeyond ? state.stepDown : state.stepUp);
        EXPECT_NEAR(state.valueIm, 1.0, 1e-15);
    }
}

TEST(TriangleComplex, PartsDoNotMeet)
{
    Reports reports;
    auto state = ready<Cplx>(0.0123, 1.0, 1.0, 0.5);
    state.valueRe = QUIET;
    state.stepRe = INF;
    auto real = ready<Real>(0.0123, 1.0, 1.0, 0.5);
    real.value = state.valueIm;
    real.step = state.stepIm;
    std::vector<ZCplx> samples(100);
    std::vector<double> expected(100);
    rvxzbTrngl(&state, samples.data(), 100);
    rvxdbTrngl(&real, expected.data(), 100);
    for (std::size_t n = 0; n < 100; ++n) {
        ASSERT_TRUE(sameBits(samples[n].im, expected[n]));
        ASSERT_TRUE(std::isnan(samples[n].re));
    }
}

TEST(TriangleDeath, AFailureEndsTheProcessInModeZero)
{
    EXPECT_EXIT(rvxdTrnglInit(0.5, 0.0, 1.0, 0.0, nullptr), ::testing::ExitedWithCode(1), "");
    EXPECT_EXIT(rvxzTrngl(nullptr), ::testing::ExitedWithCode(1), "");
}

} // namespace
