// Tones.

#include <climits>
#include <cmath>
#include <cstddef>
#include <cstring>
#include <vector>

#include <gtest/gtest.h>

#include "reference/correct.h"
#include "rvx.h"
#include "support/bits.h"
#include "support/guarded.h"
#include "support/reports.h"
#include "support/worse.h"

namespace {

constexpr double twoPi = 6.283185307179586;

// The two forms under one name.

struct Real {
    using State = rvxdToneState;
    using Sample = double;
    static constexpr const char *initName = "rvxdToneInit";
    static constexpr const char *scalarName = "rvxdTone";
    static constexpr const char *blockName = "rvxdbTone";
    static void init(double freq, double phase, double mag, State *state)
    {
        rvxdToneInit(freq, phase, mag, state);
    }
    static Sample next(State *state) { return rvxdTone(state); }
    static void block(State *state, Sample *samps, int sampsLen)
    {
        rvxdbTone(state, samps, sampsLen);
    }
    static double part(Sample x, int) { return x; }
    static constexpr int parts = 1;
};

struct Cplx {
    using State = rvxzToneState;
    using Sample = ZCplx;
    static constexpr const char *initName = "rvxzToneInit";
    static constexpr const char *scalarName = "rvxzTone";
    static constexpr const char *blockName = "rvxzbTone";
    static void init(double freq, double phase, double mag, State *state)
    {
        rvxzToneInit(freq, phase, mag, state);
    }
    static Sample next(State *state) { return rvxzTone(state); }
    static void block(State *state, Sample *samps, int sampsLen)
    {
        rvxzbTone(state, samps, sampsLen);
    }
    static double part(Sample x, int i) { return i == 0 ? x.re : x.im; }
    static constexpr int parts = 2;
};

template <typename Form>
class Tone : public ::testing::Test {
};
using Forms = ::testing::Types<Real, Cplx>;
TYPED_TEST_SUITE(Tone, Forms, );

// A record full of one byte, to see what was written.
template <typename State>
State filled(int byte)
{
    State state;
    std::memset(static_cast<void *>(&state), byte, sizeof state);
    return state;
}

template <typename State>
bool sameRecord(const State &a, const State &b)
{
    return std::memcmp(static_cast<const void *>(&a), static_cast<const void *>(&b), sizeof a) == 0;
}

template <typename Form>
typename Form::State ready(double freq, double phase, double mag)
{
    auto state = filled<typename Form::State>(0);
    Form::init(freq, phase, mag, &state);
    return state;
}

const double frequencies[] = {0.0, 4e-324, 1e-9, 1e-3, 0.1, 0.2, 0.25, 0.3, 0.4999, 0.5 - 0x1p-54};
const double phases[] = {0.0, 4e-324, 0.5, 1.5707963267948966, 3.0, 4.5, 6.283185307179585};
const double magnitudes[] = {0.0, -0.0, 4e-324, 1.0, 0.7, 32767.0, 1e300, 1.7e308, INF, QUIET};

// One part of the samples, written a second time, from y1 and y2 on.
std::vector<double> bySteps(double doubled, double y1, double y2, int n)
{
    std::vector<double> past = {y2, y1};
    for (int i = 0; i < n; ++i) {
        const volatile double product = doubled * past[past.size() - 1];
        past.push_back(product - past[past.size() - 2]);
    }
    return {past.begin() + 2, past.end()};
}

// Two parts that are expected of n samples.
template <typename Form>
std::vector<double> expectedPart(const typename Form::State &at, int part, int n)
{
    return bySteps(at.twoCos, Form::part(at.y1, part), Form::part(at.y2, part), n);
}

TEST(ToneRecord, HasItsFieldsInOrder)
{
    EXPECT_EQ(offsetof(rvxdToneState, twoCos), 0u);
    EXPECT_EQ(offsetof(rvxdToneState, y1), 8u);
    EXPECT_EQ(offsetof(rvxdToneState, y2), 16u);
    EXPECT_EQ(offsetof(rvxdToneState, mag), 24u);
    EXPECT_EQ(offsetof(rvxdToneState, freq), 32u);
    EXPECT_EQ(offsetof(rvxdToneState, phase), 40u);
    EXPECT_EQ(offsetof(rvxdToneState, marker), 48u);
    EXPECT_EQ(sizeof(rvxdToneState::marker), 4u);
    EXPECT_EQ(sizeof(rvxdToneState), 56u);
    EXPECT_EQ(offsetof(rvxzToneState, twoCos), 0u);
    EXPECT_EQ(offsetof(rvxzToneState, y1), 8u);
    EXPECT_EQ(offsetof(rvxzToneState, y2), 24u);
    EXPECT_EQ(offsetof(rvxzToneState, mag), 40u);
    EXPECT_EQ(offsetof(rvxzToneState, freq), 48u);
    EXPECT_EQ(offsetof(rvxzToneState, phase), 56u);
    EXPECT_EQ(offsetof(rvxzToneState, marker), 64u);
    EXPECT_EQ(sizeof(rvxzToneState::marker), 4u);
    EXPECT_EQ(sizeof(rvxzToneState), 72u);
}

// A value of a record: mag times a cosine or sine that is within 0.501 units in the last
// place, so the nearest double or, where that is a tie almost, its neighbour.
void expectPoint(double value, double mag, reference::OfOne function, double angle)
{
    const double nearest = reference::correct(function, angle);
    EXPECT_TRUE(same(value, mag * nearest) || same(value, mag * std::nextafter(nearest, 2.0)) ||
                same(value, mag * std::nextafter(nearest, -2.0)))
        << mag << ' ' << angle;
    if (mag == 1.0) {
        EXPECT_LE(reference::ulps(value, function, angle), 0.501) << angle;
    }
}

TYPED_TEST(Tone, InitStoresWhatItIsGivenAndTheTwoPointsBeforeTheFirst)
{
    Reports reports;
    for (double freq : frequencies) {
        for (double phase : phases) {
            for (double mag : magnitudes) {
                auto state = filled<typename TypeParam::State>(0x5a);
                TypeParam::init(freq, phase, mag, &state);
                EXPECT_TRUE(same(state.mag, mag));
                EXPECT_TRUE(sameBits(state.freq, freq));
                EXPECT_TRUE(sameBits(state.phase, phase));
                EXPECT_STREQ(state.marker, "RVT");
                const double w = twoPi * freq;
                EXPECT_LE(reference::ulps(0.5 * state.twoCos, mpfr_cos, w), 0.501) << freq;
                const double first = phase - w, second = (phase - w) - w;
                expectPoint(TypeParam::part(state.y1, 0), mag, mpfr_cos, first);
                expectPoint(TypeParam::part(state.y2, 0), mag, mpfr_cos, second);
                if (TypeParam::parts == 2) {
                    expectPoint(TypeParam::part(state.y1, 1), mag, mpfr_sin, first);
                    expectPoint(TypeParam::part(state.y2, 1), mag, mpfr_sin, second);
                }
            }
        }
    }
    EXPECT_TRUE(reports.take().empty());
}

TYPED_TEST(Tone, InitChecksMagnitudeThenFrequencyThenPhaseThenState)
{
    Reports reports;
    const auto refusal = [](const char *context) {
        return badArgument(TypeParam::initName, context, "rvxtone");
    };
    const auto before = filled<typename TypeParam::State>(0x5a);
    auto state = before;
    for (auto *record : {&state, static_cast<typename TypeParam::State *>(nullptr)}) {
        for (double mag : {-4e-324, -1.0, -INF}) {
            TypeParam::init(0.7, 7.0, mag, record);
            EXPECT_EQ(reports.take(), refusal("Invalid magnitude value")) << mag;
        }
        for (double freq : {-4e-324, -0.1, 0.5, 1.0, INF, -INF, QUIET, -QUIET}) {
            TypeParam::init(freq, 7.0, 1.0, record);
            EXPECT_EQ(reports.take(), refusal("Invalid freq value")) << freq;
        }
        for (double phase : {-4e-324, -1.0, twoPi, 7.0, INF, -INF, QUIET, -QUIET}) {
            TypeParam::init(0.1, phase, 1.0, record);
            EXPECT_EQ(reports.take(), refusal("Invalid phase value")) << phase;
        }
    }
    TypeParam::init(0.1, 1.0, 1.0, nullptr);
    EXPECT_EQ(reports.take(), refusal("Null pointer to state"));
    TypeParam::init(0.1, 1.0, QUIET, nullptr);
    EXPECT_EQ(reports.take(), refusal("Null pointer to state"));
    EXPECT_TRUE(sameRecord(state, before));
}

TYPED_TEST(Tone, AFailedInitLeavesALiveStateGoingOn)
{
    Reports reports;
    auto state = ready<TypeParam>(0.1, 1.0, 1.0);
    const auto before = state;
    TypeParam::init(0.5, 1.0, 1.0, &state);
    EXPECT_TRUE(sameRecord(state, before));
}

TYPED_TEST(Tone, ScalarChecksStateThenMarkAndGivesZero)
{
    Reports reports;
    const typename TypeParam::Sample zero = {};
    const auto refusal = [](const char *context) {
        return badArgument(TypeParam::scalarName, context, "rvxtone");
    };
    EXPECT_TRUE(sameBits(TypeParam::next(nullptr), zero));
    EXPECT_EQ(reports.take(), refusal("Null pointer to state"));
    for (const char *mark : {"\0\0\0", "RV\0", "RVU", "rVT", "RvT", "XVT", "RXT", "T\0\0"}) {
        auto state = ready<TypeParam>(0.1, 1.0, 1.0);
        std::memcpy(state.marker, mark, 4);
        const auto before = state;
        EXPECT_TRUE(sameBits(TypeParam::next(&state), zero));
        EXPECT_EQ(reports.take(), refusal("Structure initialization need")) << mark;
        EXPECT_TRUE(sameRecord(state, before));
    }
    // A longer string that begins like the mark is another one.
    auto state = ready<TypeParam>(0.1, 1.0, 1.0);
    state.marker[3] = '1';
    EXPECT_TRUE(sameBits(TypeParam::next(&state), zero));
    EXPECT_EQ(reports.take(), refusal("Structure initialization need"));
    for (int byte : {0, 0x5a, 0xff}) {
        state = filled<typename TypeParam::State>(byte);
        EXPECT_TRUE(sameBits(TypeParam::next(&state), zero));
        EXPECT_EQ(reports.take(), refusal("Structure initialization need"));
    }
}

TYPED_TEST(Tone, BlockChecksStateThenBufferThenLengthThenMark)
{
    Reports reports;
    const auto refusal = [](const char *context) {
        return badArgument(TypeParam::blockName, context, "rvxtone");
    };
    auto unready = filled<typename TypeParam::State>(0x5a);
    const auto before = unready;
    Guarded<typename TypeParam::Sample> samples(3);
    std::memset(static_cast<void *>(samples.data()), 0x33, 3 * sizeof samples[0]);
    const auto untouched = samples.values();

    TypeParam::block(nullptr, nullptr, 0);
    EXPECT_EQ(reports.take(), refusal("Null pointer to state"));
    TypeParam::block(nullptr, samples.data(), 3);
    EXPECT_EQ(reports.take(), refusal("Null pointer to state"));
    TypeParam::block(&unready, nullptr, 0);
    EXPECT_EQ(reports.take(), refusal("Null input buffer pointer"));
    for (int len : {0, -1, INT_MIN}) {
        TypeParam::block(&unready, samples.data(), len);
        EXPECT_EQ(reports.take(), refusal("Bad number of items")) << len;
    }
    TypeParam::block(&unready, samples.data(), 3);
    EXPECT_EQ(reports.take(), refusal("Structure initialization need"));
    EXPECT_TRUE(sameRecord(unready, before));

    auto state = ready<TypeParam>(0.1, 1.0, 1.0);
    const auto live = state;
    TypeParam::block(&state, samples.data(), 0);
    EXPECT_EQ(reports.take(), refusal("Bad number of items"));
    EXPECT_TRUE(sameRecord(state, live));
    for (int i = 0; i < 3; ++i)
        EXPECT_TRUE(sameBits(samples[i], untouched[static_cast<std::size_t>(i)]));
    EXPECT_TRUE(samples.intact());
}

TYPED_TEST(Tone, SamplesHaveTheBitsOfTheStepsOneByOneAndInBlocksOfEveryLength)
{
    Reports reports;
    for (double freq : frequencies) {
        for (double mag : magnitudes) {
            for (int n = 1; n <= 40; ++n) {
                const auto fresh = ready<TypeParam>(freq, 2.0, mag);
                auto byOne = fresh, byBlock = fresh;
                Guarded<typename TypeParam::Sample> samples(n, n % 4);
                TypeParam::block(&byBlock, samples.data(), n);
                std::vector<typename TypeParam::Sample> single;
                single.reserve(static_cast<std::size_t>(n));
                for (int i = 0; i < n; ++i)
                    single.push_back(TypeParam::next(&byOne));
                for (int part = 0; part < TypeParam::parts; ++part) {
                    const std::vector<double> expected = expectedPart<TypeParam>(fresh, part, n);
                    for (int i = 0; i < n; ++i) {
                        const auto at = static_cast<std::size_t>(i);
                        ASSERT_TRUE(same(TypeParam::part(samples[i], part), expected[at]));
                        ASSERT_TRUE(same(TypeParam::part(single[at], part), expected[at]));
                    }
                }
                EXPECT_TRUE(samples.intact());
                EXPECT_TRUE(same(byOne.y1, byBlock.y1) && same(byOne.y2, byBlock.y2));
                EXPECT_TRUE(same(byOne.y1, single.back()));
                // The rest of the record is not touched.
                auto rest = byBlock;
                rest.y1 = fresh.y1;
                rest.y2 = fresh.y2;
                EXPECT_TRUE(sameRecord(rest, fresh));
            }
        }
    }
    EXPECT_TRUE(reports.take().empty());
}

TYPED_TEST(Tone, BlocksCutAnywhereAndMixedWithSingleSamplesEqualOneBlock)
{
    Reports reports;
    constexpr int n = 50;
    for (double freq : frequencies) {
        const auto fresh = ready<TypeParam>(freq, 1.0, 0.7);
        auto whole = fresh;
        std::vector<typename TypeParam::Sample> expected(n), samples(n);
        TypeParam::block(&whole, expected.data(), n);
        for (int first = 1; first < n - 1; ++first) {
            auto state = fresh;
            TypeParam::block(&state, samples.data(), first);
            samples[static_cast<std::size_t>(first)] = TypeParam::next(&state);
            if (first + 1 < n)
                TypeParam::block(&state, samples.data() + first + 1, n - first - 1);
            for (std::size_t i = 0; i < n; ++i)
                ASSERT_TRUE(sameBits(samples[i], expected[i])) << freq << ' ' << first << ' ' << i;
            EXPECT_TRUE(sameRecord(state, whole));
        }
    }
    EXPECT_TRUE(reports.take().empty());
}

TYPED_TEST(Tone, TheInformationFieldsAreNotReadAgain)
{
    Reports reports;
    auto plain = ready<TypeParam>(0.1, 1.0, 1.0), changed = plain;
    changed.mag = changed.freq = changed.phase = QUIET;
    for (int i = 0; i < 20; ++i)
        EXPECT_TRUE(sameBits(TypeParam::next(&plain), TypeParam::next(&changed)));
}

TYPED_TEST(Tone, StatesDoNotMeet)
{
    Reports reports;
    auto one = ready<TypeParam>(0.1, 1.0, 1.0), other = ready<TypeParam>(0.3, 2.0, 3.0);
    auto alone = one;
    for (int i = 0; i < 20; ++i) {
        const auto sample = TypeParam::next(&one);
        TypeParam::next(&other);
        EXPECT_TRUE(sameBits(sample, TypeParam::next(&alone)));
    }
}

TYPED_TEST(Tone, FrequencyZeroIsConstantAndMagnitudeZeroIsSilent)
{
    Reports reports;
    for (double phase : phases) {
        auto state = ready<TypeParam>(0.0, phase, 3.0);
        EXPECT_EQ(state.twoCos, 2.0);
        const auto start = state.y1;
        for (int i = 0; i < 1000; ++i)
            ASSERT_TRUE(sameBits(TypeParam::next(&state), start));
        for (double mag : {0.0, -0.0}) {
            state = ready<TypeParam>(0.123, phase, mag);
            for (int i = 0; i < 1000; ++i) {
                const auto sample = TypeParam::next(&state);
                for (int part = 0; part < TypeParam::parts; ++part)
                    ASSERT_EQ(TypeParam::part(sample, part), 0.0);
            }
        }
    }
    EXPECT_TRUE(reports.take().empty());
}

TYPED_TEST(Tone, FirstSampleIsAtThePhase)
{
    Reports reports;
    for (double freq : {0.0, 0.01, 0.1, 0.3, 0.49}) {
        for (double phase : phases) {
            auto state = ready<TypeParam>(freq, phase, 1.0);
            const auto sample = TypeParam::next(&state);
            EXPECT_NEAR(TypeParam::part(sample, 0), std::cos(phase), 1.5e-15) << freq;
            if (TypeParam::parts == 2) {
                EXPECT_NEAR(TypeParam::part(sample, 1), std::sin(phase), 1.5e-15) << freq;
            }
        }
    }
}

// mag cos(2 pi freq n + phase) or its sine beside a sample, in units of 2^-53 mag; freq
// and phase are exact, pi is not rounded.
double errorOfPart(double sample, int part, double freq, double phase, double mag, int n)
{
    constexpr mpfr_prec_t precision = 160;
    MPFR_DECL_INIT(angle, precision);
    MPFR_DECL_INIT(value, precision);
    mpfr_const_pi(angle, MPFR_RNDN);
    mpfr_mul_d(angle, angle, freq, MPFR_RNDN);
    mpfr_mul_si(angle, angle, 2L * n, MPFR_RNDN);
    mpfr_add_d(angle, angle, phase, MPFR_RNDN);
    (part == 0 ? mpfr_cos : mpfr_sin)(value, angle, MPFR_RNDN);
    mpfr_mul_d(value, value, mag, MPFR_RNDN);
    mpfr_d_sub(value, sample, value, MPFR_RNDN);
    return std::fabs(mpfr_get_d(value, MPFR_RNDN)) / (mag * 0x1p-53);
}

// Two roundings a step go on with the weight sin(k w) / sin(w) for k steps, and so does
// the rounding of twoCos.
TYPED_TEST(Tone, SamplesDriftFromTheCosineNoFasterThanRoundingsAddUp)
{
    Reports reports;
    constexpr int blocks = 200, blockLen = 101;
    double worst = 0.0;
    for (double freq :
         {1e-5, 1e-4, 1e-3, 0.01, 0.05, 0.1, 0.125, 0.2, 0.25, 0.3, 0.4, 0.49, 0.499}) {
        for (double phase : {0.0, 0.3, 3.0}) {
            auto state = ready<TypeParam>(freq, phase, 0.7);
            std::vector<typename TypeParam::Sample> samples(blockLen);
            for (int block = 0; block < blocks; ++block) {
                TypeParam::block(&state, samples.data(), blockLen);
                const int at = block * 7 % blockLen, n = block * blockLen + at;
                const double turn = std::sin(twoPi * freq);
                const double allowed = (n + 2) * std::fmin(n + 2, 1.0 / turn);
                for (int part = 0; part < TypeParam::parts; ++part) {
                    const double sample =
                        TypeParam::part(samples[static_cast<std::size_t>(at)], part);
                    worst = worse(worst, errorOfPart(sample, part, freq, phase, 0.7, n) / allowed);
                }
            }
        }
    }
    EXPECT_LT(worst, 1.7);
}

TEST(ToneDeath, AFailureEndsTheProcessInModeZero)
{
    EXPECT_EXIT(rvxdToneInit(0.5, 0.0, 1.0, nullptr), ::testing::ExitedWithCode(1), "");
    EXPECT_EXIT(rvxzTone(nullptr), ::testing::ExitedWithCode(1), "");
}

} // namespace
