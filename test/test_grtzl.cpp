// Goertzel.

#include <climits>
#include <cmath>
#include <cstddef>
#include <cstring>
#include <type_traits>
#include <vector>

#include <gtest/gtest.h>

#include "reference/correct.h"
#include "rvx.h"
#include "support/bits.h"
#include "support/blocks.h"
#include "support/reports.h"
#include "support/walled.h"
#include "support/worse.h"

namespace {

// The two forms under one name.

struct Real {
    using State = rvxdGoertzState;
    using Sample = double;
    static constexpr const char *initName = "rvxdGoertzInit";
    static constexpr const char *resetName = "rvxdGoertzReset";
    static constexpr const char *blockName = "rvxdbGoertz";
    static void init(double rFreq, State *state) { rvxdGoertzInit(rFreq, state); }
    static void reset(State *state) { rvxdGoertzReset(state); }
    static ZCplx block(State *state, const Sample *src, int len)
    {
        return rvxdbGoertz(state, src, len);
    }
    static std::vector<Sample> samples(Temper temper, int n, unsigned seed)
    {
        return makeBlock(temper, n, seed);
    }
    static double im(Sample) { return 0.0; }
    static double re(Sample x) { return x; }
};

struct Cplx {
    using State = rvxzGoertzState;
    using Sample = ZCplx;
    static constexpr const char *initName = "rvxzGoertzInit";
    static constexpr const char *resetName = "rvxzGoertzReset";
    static constexpr const char *blockName = "rvxzbGoertz";
    static void init(double rFreq, State *state) { rvxzGoertzInit(rFreq, state); }
    static void reset(State *state) { rvxzGoertzReset(state); }
    static ZCplx block(State *state, const Sample *src, int len)
    {
        return rvxzbGoertz(state, src, len);
    }
    static std::vector<Sample> samples(Temper temper, int n, unsigned seed)
    {
        const std::vector<double> parts = makeBlock(temper, 2 * n, seed);
        std::vector<Sample> block;
        for (std::size_t i = 0; i < parts.size(); i += 2)
            block.push_back({parts[i], parts[i + 1]});
        return block;
    }
    static double im(Sample x) { return x.im; }
    static double re(Sample x) { return x.re; }
};

template <typename Form>
class Goertzel : public ::testing::Test {
};
using Forms = ::testing::Types<Real, Cplx>;
TYPED_TEST_SUITE(Goertzel, Forms, );

// A record full of one byte, to see what was written.
template <typename State>
State filled(int byte)
{
    State state;
    std::memset(&state, byte, sizeof state);
    return state;
}

template <typename State>
bool sameRecord(const State &a, const State &b)
{
    return std::memcmp(static_cast<const void *>(&a), static_cast<const void *>(&b), sizeof a) == 0;
}

template <typename Form>
typename Form::State ready(double rFreq)
{
    typename Form::State state;
    Form::init(rFreq, &state);
    return state;
}

const double frequencies[] = {0.0,  4e-324, 1e-9,      1e-3,   1.0 / 16.0, 0.1, 0.2,
                              0.25, 0.3,    1.0 / 3.0, 0.4999, 0.5,        0.7, 1.0 - 0x1p-53};

// The steps for one chain of real numbers, each rounded by itself.
struct Chain {
    double prev2 = 0.0;
    double prev1 = 0.0;
    void take(double x, double twoCos)
    {
        const volatile double difference = x - prev2;
        const volatile double product = twoCos * prev1;
        prev2 = prev1;
        prev1 = difference + product;
    }
};

// The recurrence and its result, written a second time: parts apart.
template <typename Form>
ZCplx bySteps(const typename Form::State &at, const std::vector<typename Form::Sample> &x)
{
    Chain re, im;
    for (const auto &sample : x) {
        re.take(Form::re(sample), at.twoCos);
        im.take(Form::im(sample), at.twoCos);
    }
    const volatile double cosRe = at.cosV * re.prev1, sinRe = at.sinV * re.prev1;
    if (std::is_same<Form, Real>::value)
        return {cosRe - re.prev2, sinRe};
    const volatile double cosIm = at.cosV * im.prev1, sinIm = at.sinV * im.prev1;
    const volatile double first = cosRe - sinIm, second = cosIm + sinRe;
    return {first - re.prev2, second - im.prev2};
}

// |result - e^(j omega M) sum of x[m] e^(-j omega m)| over the root of the sum of
// squares of x, with omega = 2 pi numerator / denominator exactly.
template <typename Form>
double errorOfBin(ZCplx result, const std::vector<typename Form::Sample> &x, unsigned numerator,
                  unsigned denominator)
{
    constexpr mpfr_prec_t precision = 160;
    MPFR_DECL_INIT(angle, precision);
    MPFR_DECL_INIT(cosine, precision);
    MPFR_DECL_INIT(sine, precision);
    MPFR_DECL_INIT(term, precision);
    MPFR_DECL_INIT(re, precision);
    MPFR_DECL_INIT(im, precision);
    mpfr_set_d(re, -result.re, MPFR_RNDN);
    mpfr_set_d(im, -result.im, MPFR_RNDN);
    long double squares = 0.0L;
    for (std::size_t m = 0; m < x.size(); ++m) {
        const unsigned long turns = numerator * (x.size() - m) % denominator;
        mpfr_const_pi(angle, MPFR_RNDN);
        mpfr_mul_ui(angle, angle, 2 * turns, MPFR_RNDN);
        mpfr_div_ui(angle, angle, denominator, MPFR_RNDN);
        mpfr_sin_cos(sine, cosine, angle, MPFR_RNDN);
        const double xRe = Form::re(x[m]), xIm = Form::im(x[m]);
        mpfr_mul_d(term, cosine, xRe, MPFR_RNDN);
        mpfr_add(re, re, term, MPFR_RNDN);
        mpfr_mul_d(term, sine, -xIm, MPFR_RNDN);
        mpfr_add(re, re, term, MPFR_RNDN);
        mpfr_mul_d(term, cosine, xIm, MPFR_RNDN);
        mpfr_add(im, im, term, MPFR_RNDN);
        mpfr_mul_d(term, sine, xRe, MPFR_RNDN);
        mpfr_add(im, im, term, MPFR_RNDN);
        squares += static_cast<long double>(xRe) * xRe + static_cast<long double>(xIm) * xIm;
    }
    return std::hypot(mpfr_get_d(re, MPFR_RNDN), mpfr_get_d(im, MPFR_RNDN)) /
           static_cast<double>(std::sqrt(squares));
}

TEST(GoertzelRecord, HasItsFieldsInOrder)
{
    EXPECT_EQ(offsetof(rvxdGoertzState, rFreq), 0u);
    EXPECT_EQ(offsetof(rvxdGoertzState, cosV), 8u);
    EXPECT_EQ(offsetof(rvxdGoertzState, sinV), 16u);
    EXPECT_EQ(offsetof(rvxdGoertzState, twoCos), 24u);
    EXPECT_EQ(offsetof(rvxdGoertzState, prev2), 32u);
    EXPECT_EQ(offsetof(rvxdGoertzState, prev1), 40u);
    EXPECT_EQ(sizeof(rvxdGoertzState), 48u);
    EXPECT_EQ(offsetof(rvxzGoertzState, rFreq), 0u);
    EXPECT_EQ(offsetof(rvxzGoertzState, cosV), 8u);
    EXPECT_EQ(offsetof(rvxzGoertzState, sinV), 16u);
    EXPECT_EQ(offsetof(rvxzGoertzState, twoCos), 24u);
    EXPECT_EQ(offsetof(rvxzGoertzState, prev2), 32u);
    EXPECT_EQ(offsetof(rvxzGoertzState, prev1), 48u);
    EXPECT_EQ(sizeof(rvxzGoertzState), 64u);
}

TYPED_TEST(Goertzel, InitStoresFrequencyCosineAndSineAndClearsDelays)
{
    Reports reports;
    for (double rFreq : frequencies) {
        auto state = filled<typename TypeParam::State>(0x5a);
        TypeParam::init(rFreq, &state);
        const double omega = rFreq * 6.283185307179586;
        EXPECT_TRUE(sameBits(state.rFreq, rFreq));
        EXPECT_LE(reference::ulps(state.cosV, mpfr_cos, omega), 0.501) << rFreq;
        EXPECT_LE(reference::ulps(state.sinV, mpfr_sin, omega), 0.501) << rFreq;
        EXPECT_TRUE(sameBits(state.twoCos, 2.0 * state.cosV));
        EXPECT_TRUE(sameBits(state.prev1, typename TypeParam::Sample{}));
        EXPECT_TRUE(sameBits(state.prev2, typename TypeParam::Sample{}));
    }
    EXPECT_TRUE(reports.take().empty());
}

TYPED_TEST(Goertzel, InitAtTheQuarterTurnsIsThatOfTheRoundedAngles)
{
    Reports reports;
    EXPECT_EQ(ready<TypeParam>(0.0).twoCos, 2.0);
    EXPECT_EQ(ready<TypeParam>(0.0).sinV, 0.0);
    EXPECT_EQ(ready<TypeParam>(0.25).cosV, 6.123233995736766e-17);
    EXPECT_EQ(ready<TypeParam>(0.5).cosV, -1.0);
    EXPECT_EQ(ready<TypeParam>(0.5).twoCos, -2.0);
    EXPECT_EQ(ready<TypeParam>(0.5).sinV, 1.2246467991473532e-16);
    EXPECT_TRUE(sameBits(ready<TypeParam>(-0.0).rFreq, -0.0));
    EXPECT_TRUE(reports.take().empty());
}

TYPED_TEST(Goertzel, InitRefusesANullStateBeforeTheFrequency)
{
    Reports reports;
    for (double rFreq : {0.1, -1.0, QUIET}) {
        TypeParam::init(rFreq, nullptr);
        EXPECT_EQ(reports.take(),
                  badArgument(TypeParam::initName, "Null state pointer", "rvxgrtzl"));
    }
}

TYPED_TEST(Goertzel, InitRefusesFrequenciesOutsideTheRangeAndLeavesTheRecord)
{
    Reports reports;
    const auto before = filled<typename TypeParam::State>(0x5a);
    for (double rFreq : {1.0, -0.1, -4e-324, 2.0, INF, -INF, QUIET, -QUIET}) {
        auto state = before;
        TypeParam::init(rFreq, &state);
        EXPECT_EQ(reports.take(),
                  badArgument(TypeParam::initName, "Invalid frequency value", "rvxgrtzl"))
            << rFreq;
        EXPECT_TRUE(sameRecord(state, before)) << rFreq;
    }
}

TYPED_TEST(Goertzel, ResetClearsDelaysAloneAndRefusesANullState)
{
    Reports reports;
    const auto x = TypeParam::samples(Temper::uniform, 50, 1);
    const auto fresh = ready<TypeParam>(0.123);
    auto state = fresh;
    const ZCplx first = TypeParam::block(&state, x.data(), 50);
    EXPECT_FALSE(sameRecord(state, fresh));
    TypeParam::reset(&state);
    EXPECT_TRUE(sameRecord(state, fresh));
    EXPECT_TRUE(same(TypeParam::block(&state, x.data(), 50), first));
    EXPECT_TRUE(reports.take().empty());
    TypeParam::reset(nullptr);
    EXPECT_EQ(reports.take(), badArgument(TypeParam::resetName, "Null state pointer", "rvxgrtzl"));
}

TYPED_TEST(Goertzel, BlockChecksStateThenSourceThenLength)
{
    Reports reports;
    const auto x = TypeParam::samples(Temper::uniform, 8, 2);
    auto state = ready<TypeParam>(0.2);
    TypeParam::block(&state, x.data(), 8);
    const auto before = state;
    const ZCplx zero = {0.0, 0.0};

    const auto refusal = [](const char *context) {
        return badArgument(TypeParam::blockName, context, "rvxgrtzl");
    };
    EXPECT_TRUE(sameBits(TypeParam::block(nullptr, nullptr, 0), zero));
    EXPECT_EQ(reports.take(), refusal("Null state pointer"));
    EXPECT_TRUE(sameBits(TypeParam::block(nullptr, x.data(), 8), zero));
    EXPECT_EQ(reports.take(), refusal("Null state pointer"));
    EXPECT_TRUE(sameBits(TypeParam::block(&state, nullptr, 0), zero));
    EXPECT_EQ(reports.take(), refusal("Null buffer pointer"));
    for (int len : {0, -1, INT_MIN}) {
        EXPECT_TRUE(sameBits(TypeParam::block(&state, x.data(), len), zero));
        EXPECT_EQ(reports.take(), refusal("Invalid array length"));
    }
    EXPECT_TRUE(sameRecord(state, before));
}

TYPED_TEST(Goertzel, ResultHasTheBitsOfTheStepsForEveryLengthAndReadsNothingElse)
{
    Reports reports;
    for (double rFreq : frequencies) {
        for (int n = 1; n <= 40; ++n) {
            for (Wall wall : {Wall::before, Wall::behind}) {
                const auto x = TypeParam::samples(Temper::uniform, n, 3);
                Walled<typename TypeParam::Sample> source(x, wall);
                auto state = ready<TypeParam>(rFreq);
                const ZCplx result = TypeParam::block(&state, source.data(), n);
                EXPECT_TRUE(sameBits(result, bySteps<TypeParam>(state, x))) << rFreq << ' ' << n;
            }
        }
    }
    EXPECT_TRUE(reports.take().empty());
}

TYPED_TEST(Goertzel, ResultHasTheBitsOfTheStepsForSamplesOfEveryTemper)
{
    Reports reports;
    for (Temper temper : allTempers) {
        for (double rFreq : frequencies) {
            for (unsigned seed = 0; seed < 5; ++seed) {
                const auto x = TypeParam::samples(temper, 61, seed);
                auto state = ready<TypeParam>(rFreq);
                const ZCplx result = TypeParam::block(&state, x.data(), 61);
                EXPECT_TRUE(same(result, bySteps<TypeParam>(state, x))) << temper << ' ' << rFreq;
            }
        }
    }
    EXPECT_TRUE(reports.take().empty());
}

TYPED_TEST(Goertzel, BlocksCutAnywhereEqualOneCall)
{
    Reports reports;
    constexpr int n = 37;
    const auto x = TypeParam::samples(Temper::uniform, n, 4);
    for (double rFreq : frequencies) {
        auto whole = ready<TypeParam>(rFreq);
        const ZCplx result = TypeParam::block(&whole, x.data(), n);
        for (int first = 1; first < n; ++first) {
            auto state = ready<TypeParam>(rFreq);
            TypeParam::block(&state, x.data(), first);
            EXPECT_TRUE(sameBits(TypeParam::block(&state, x.data() + first, n - first), result));
            EXPECT_TRUE(sameRecord(state, whole)) << rFreq << ' ' << first;
        }
        auto state = ready<TypeParam>(rFreq);
        ZCplx last = {};
        for (const auto &sample : x)
            last = TypeParam::block(&state, &sample, 1);
        EXPECT_TRUE(sameBits(last, result)) << rFreq;
        EXPECT_TRUE(sameRecord(state, whole)) << rFreq;
    }
    EXPECT_TRUE(reports.take().empty());
}

TYPED_TEST(Goertzel, StatesDoNotMeet)
{
    Reports reports;
    const auto x = TypeParam::samples(Temper::uniform, 20, 5);
    auto one = ready<TypeParam>(0.1), other = ready<TypeParam>(0.3);
    for (int i = 0; i < 20; ++i) {
        TypeParam::block(&one, &x[static_cast<std::size_t>(i)], 1);
        TypeParam::block(&other, &x[static_cast<std::size_t>(19 - i)], 1);
    }
    auto alone = ready<TypeParam>(0.1);
    TypeParam::block(&alone, x.data(), 20);
    EXPECT_TRUE(sameRecord(one, alone));
}

TYPED_TEST(Goertzel, FrequencyZeroSumsAndOneHalfSumsWithSigns)
{
    Reports reports;
    const auto samples = TypeParam::samples(Temper::small16, 100, 6);
    for (int n = 1; n <= 100; ++n) {
        ZCplx sum = {0.0, 0.0}, signedSum = {0.0, 0.0};
        for (int m = 0; m < n; ++m) {
            const auto x = samples[static_cast<std::size_t>(m)];
            const double sign = (n - m) % 2 == 0 ? 1.0 : -1.0; // (-1)^M (-1)^m
            sum.re += TypeParam::re(x);
            sum.im += TypeParam::im(x);
            signedSum.re += sign * TypeParam::re(x);
            signedSum.im += sign * TypeParam::im(x);
        }
        auto state = ready<TypeParam>(0.0);
        const ZCplx result = TypeParam::block(&state, samples.data(), n);
        EXPECT_EQ(result.re, sum.re) << n;
        EXPECT_EQ(result.im, sum.im) << n;

        state = ready<TypeParam>(0.5);
        const ZCplx alternating = TypeParam::block(&state, samples.data(), n);
        // The sine of the rounded pi is 1.2e-16: so much of the other part comes in, and in
        // the complex form the rounding of that sum.
        const double size =
            std::fabs(TypeParam::re(state.prev1)) + std::fabs(TypeParam::im(state.prev1));
        EXPECT_NEAR(alternating.re, signedSum.re, 2.4e-16 * size) << n;
        EXPECT_NEAR(alternating.im, signedSum.im, 2.4e-16 * size) << n;
    }
    EXPECT_TRUE(reports.take().empty());
}

// Each rounding of the recurrence, and that of twoCos, goes into the result with a
// weight of at most the smaller of M and 1 / |sin omega|; that of omega, which is up to
// 3 units of 2^-53, with the weight of M turns.
TYPED_TEST(Goertzel, BinsAreThoseOfTheDiscreteFourierTransform)
{
    Reports reports;
    double worst = 0.0;
    for (int n : {1, 2, 3, 5, 8, 16, 30, 64}) {
        for (int k = 0; k < n; ++k) {
            const auto x = TypeParam::samples(Temper::uniform, n, 7);
            auto state = ready<TypeParam>(static_cast<double>(k) / n);
            const ZCplx result = TypeParam::block(&state, x.data(), n);
            const double error = errorOfBin<TypeParam>(result, x, static_cast<unsigned>(k),
                                                       static_cast<unsigned>(n));
            const double turn = std::fabs(std::sin(6.283185307179586 * k / n));
            const double weight = std::fmin(n, 1.0 / turn);
            worst = worse(worst, error / (n * weight * 0x1p-53));
        }
    }
    EXPECT_LT(worst, 3.3);
}

TYPED_TEST(Goertzel, ResultsBetweenBinsAreSumsTurnedByTheirLength)
{
    Reports reports;
    double worst = 0.0;
    for (unsigned numerator : {1u, 17u, 100u, 333u, 499u, 750u, 1023u}) {
        for (int n : {7, 100, 300}) {
            const auto x = TypeParam::samples(Temper::uniform, n, 8);
            auto state = ready<TypeParam>(numerator / 1024.0);
            const ZCplx result = TypeParam::block(&state, x.data(), n);
            const double turn = std::fabs(std::sin(6.283185307179586 * numerator / 1024.0));
            const double weight = std::fmin(n, 1.0 / turn);
            worst = worse(worst, errorOfBin<TypeParam>(result, x, numerator, 1024) /
                                     (n * weight * 0x1p-53));
        }
    }
    EXPECT_LT(worst, 2.0);
}

TEST(GoertzelComplex, FormTellsAFrequencyFromItsMirrorImage)
{
    Reports reports;
    std::vector<ZCplx> x;
    x.reserve(64);
    for (int m = 0; m < 64; ++m)
        x.push_back(
            {std::cos(6.283185307179586 * 5 * m / 64), std::sin(6.283185307179586 * 5 * m / 64)});
    auto here = ready<Cplx>(5.0 / 64.0), there = ready<Cplx>(59.0 / 64.0);
    EXPECT_NEAR(rvxzbGoertz(&here, x.data(), 64).re, 64.0, 1e-12);
    EXPECT_NEAR(rvxzbGoertz(&there, x.data(), 64).re, 0.0, 1e-12);
}

TEST(GoertzelDeath, AFailureEndsTheProcessInModeZero)
{
    EXPECT_EXIT(rvxdGoertzInit(1.0, nullptr), ::testing::ExitedWithCode(1), "");
    EXPECT_EXIT(rvxzbGoertz(nullptr, nullptr, 0), ::testing::ExitedWithCode(1), "");
}

} // namespace
