// FIR filters: their results, at every rate and cut.

#include <cmath>
#include <limits>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "rvx.h"
#include "support/fir_families.h"
#include "support/guarded.h"
#include "support/reports.h"
#include "support/walled.h"

namespace {

using reference::FirRates;

constexpr double INF = std::numeric_limits<double>::infinity();
constexpr double QUIET = std::numeric_limits<double>::quiet_NaN();

bool same(double a, double b)
{
    return bitsOf(a) == bitsOf(b) || (std::isnan(a) && std::isnan(b));
}

bool same(ZCplx a, ZCplx b)
{
    return same(a.re, b.re) && same(a.im, b.im);
}

// The first place where two blocks differ in a bit, or -1.
template <typename Element>
long firstDifference(const std::vector<Element> &a, const std::vector<Element> &b)
{
    if (a.size() != b.size())
        return static_cast<long>(std::min(a.size(), b.size()));
    for (std::size_t i = 0; i < a.size(); ++i)
        if (!same(a[i], b[i]))
            return static_cast<long>(i);
    return -1;
}

double re(double x)
{
    return x;
}

double re(ZCplx z)
{
    return z.re;
}

double im(double)
{
    return 0.0;
}

double im(ZCplx z)
{
    return z.im;
}

template <typename Family>
class Fir : public ::testing::Test {
protected:
    // One block call, with guards about both arrays at some misalignment.
    static std::vector<typename Family::Out>
    runBlock(Filter<Family> &filter, const std::vector<typename Family::Sample> &in,
             int misalignment = 0)
    {
        const int steps = static_cast<int>(in.size()) / filter.rates.down;
        Guarded<typename Family::Sample> source(in, misalignment);
        Guarded<typename Family::Out> result(steps * filter.rates.up, (misalignment + 1) % 4);
        Family::block(&filter.state, source.data(), result.data(), steps);
        EXPECT_TRUE(source.intact());
        EXPECT_TRUE(result.intact());
        EXPECT_EQ(firstDifference(source.values(), in), -1) << "the input has changed";
        return result.values();
    }

    // Runs a filter on `steps` steps in one call and compares outputs, past and window.
    static void expectFilters(int tapsLen, FirRates rates, int steps, Noise &noise)
    {
        Filter<Family> filter(tapsLen, rates, noise);
        const auto in = noise.block<typename Family::Sample>(steps * rates.down);
        const auto out = runBlock(filter, in, noise.below(4));
        const std::string what =
            std::to_string(tapsLen) + " taps, " + std::to_string(rates.up) + "/" +
            std::to_string(rates.down) + " phases " + std::to_string(rates.upPhase) + " " +
            std::to_string(rates.downPhase) + ", " + std::to_string(steps) + " steps";
        ASSERT_EQ(firstDifference(out, filter.expected(in)), -1) << what;
        ASSERT_EQ(firstDifference(filter.window(), filter.pastAfter(in)), -1) << what;
        ASSERT_EQ(filter.state.dlylCur, filter.state.dlylBase) << what;
    }

    Reports reports;
    Noise noise{1};
};

TYPED_TEST_SUITE(Fir, AllFamilies, FamilyNames);

TYPED_TEST(Fir, BlockOfEveryLengthIsTheSumInItsOrder)
{
    for (int tapsLen = 1; tapsLen <= 40; ++tapsLen)
        for (int steps = 1; steps <= 80; ++steps)
            this->expectFilters(tapsLen, {}, steps, this->noise);
    EXPECT_TRUE(this->reports.take().empty());
}

TYPED_TEST(Fir, LongFiltersAndBlocksAreTheSumInItsOrder)
{
    for (int tapsLen : {63, 64, 65, 66, 127, 256, 257, 511, 512, 513, 700, 1025, 1600})
        for (int steps : {1, 5, 62, 63, 64, 65, 66, 255, 256, 511, 512, 513, 700, 1500})
            this->expectFilters(tapsLen, {}, steps, this->noise);
}

TYPED_TEST(Fir, EveryRateAndPhaseIsTheFormula)
{
    for (int up = 1; up <= 5; ++up)
        for (int down = 1; down <= 5; ++down)
            for (int upPhase = 0; upPhase < up; ++upPhase)
                for (int downPhase = 0; downPhase < down; ++downPhase)
                    for (int tapsLen = 1; tapsLen <= 13; ++tapsLen)
                        this->expectFilters(tapsLen, {up, upPhase, down, downPhase},
                                            1 + this->noise.below(40), this->noise);
}

TYPED_TEST(Fir, LongFiltersAtManyRatesAreTheFormula)
{
    const FirRates all[] = {{1, 0, 2, 1},      {2, 1, 1, 0},   {3, 2, 2, 1},   {2, 0, 3, 2},
                            {1, 0, 16, 3},     {1, 0, 31, 30}, {1, 0, 33, 0},  {1, 0, 64, 63},
                            {1, 0, 65, 1},     {1, 0, 100, 5}, {1, 0, 128, 3}, {1, 0, 129, 0},
                            {147, 11, 160, 9}, {7, 3, 5, 2}};
    for (const FirRates &rates : all)
        for (int tapsLen : {31, 128, 600, 1300, 5000})
            for (int steps : {3, 4, 37, 90})
                this->expectFilters(tapsLen, rates, steps, this->noise);
}

TYPED_TEST(Fir, CutAnywhereEqualsOneCall)
{
    const FirRates all[] = {{}, {1, 0, 2, 1}, {2, 1, 1, 0}, {3, 1, 2, 1}, {4, 3, 7, 5}};
    for (const FirRates &rates : all) {
        for (int tapsLen : {1, 2, 7, 33, 64, 130}) {
            Filter<TypeParam> filter(tapsLen, rates, this->noise);
            const auto in =
                this->noise.template block<typename TypeParam::Sample>(150 * rates.down);
            const auto expected = filter.expected(in);
            for (int cut = 1; cut < 150; ++cut) {
                filter.restart();
                const auto at = in.begin() + cut * rates.down;
                auto out = this->runBlock(filter, {in.begin(), at});
                const auto rest = this->runBlock(filter, {at, in.end()});
                out.insert(out.end(), rest.begin(), rest.end());
                ASSERT_EQ(firstDifference(out, expected), -1) << tapsLen << " cut at " << cut;
            }
        }
    }
}

TYPED_TEST(Fir, OneSampleAndBlockCallsMixFreely)
{
    for (int tapsLen : {1, 2, 5, 31, 32, 33, 47, 48, 64, 65, 66, 100, 257}) {
        Filter<TypeParam> filter(tapsLen, {}, this->noise);
        const auto in = this->noise.template block<typename TypeParam::Sample>(2000);
        const auto expected = filter.expected(in);
        std::vector<typename TypeParam::Out> out;
        for (auto at = in.begin(); at != in.end();) {
            // Runs of either kind, some longer than the buffer.
            const long n = std::min<long>(1 + this->noise.below(200), in.end() - at);
            if (this->noise.below(2) == 0) {
                for (long i = 0; i < n; ++i)
                    out.push_back(TypeParam::one(&filter.state, at[i]));
            } else {
                const auto part = this->runBlock(filter, {at, at + n});
                out.insert(out.end(), part.begin(), part.end());
            }
            at += n;
            ASSERT_EQ(firstDifference(filter.window(), filter.pastAfter({in.begin(), at})), -1);
            ASSERT_LE(filter.state.dlylBase, filter.state.dlylCur);
            ASSERT_LT(filter.state.dlylCur, filter.state.dlylEnd);
        }
        ASSERT_EQ(firstDifference(out, expected), -1) << tapsLen;
    }
}

TYPED_TEST(Fir, WindowGoesBackAtTheEndOfTheBuffer)
{
    using Sample = typename TypeParam::Sample;
    for (int tapsLen : {1, 3, 64, 65, 100}) {
        Filter<TypeParam> filter(tapsLen, {}, this->noise);
        const Sample *base = static_cast<Sample *>(filter.state.dlylBase);
        for (int i = 1; i <= 3 * filter.state.bufLen; ++i) {
            TypeParam::one(&filter.state, Sample{});
            ASSERT_EQ(static_cast<Sample *>(filter.state.dlylCur) - base, i % filter.state.bufLen);
        }
    }
}

// Long filters work ahead in some calls: none may see a sample too early or too late.
TYPED_TEST(Fir, OneSampleCallsGiveTheSumInItsOrder)
{
    using Sample = typename TypeParam::Sample;
    for (int tapsLen = 1; tapsLen <= 140; tapsLen += tapsLen < 70 ? 1 : 9) {
        Filter<TypeParam> filter(tapsLen, {}, this->noise);
        auto in = this->noise.template block<Sample>(3 * filter.state.bufLen);
        const std::size_t last = in.size() - 1;
        for (std::size_t i : {std::size_t{5}, last / 2, last - 2})
            *reinterpret_cast<double *>(&in[i]) = i == 5 ? -0.0 : i == last - 2 ? QUIET : INF;
        std::vector<typename TypeParam::Out> out;
        for (const Sample &x : in)
            out.push_back(TypeParam::one(&filter.state, x));
        ASSERT_EQ(firstDifference(out, filter.expected(in)), -1) << tapsLen;
    }
}

TYPED_TEST(Fir, ShortBlocksBetweenOneSampleCallsAreSeen)
{
    using Sample = typename TypeParam::Sample;
    Filter<TypeParam> filter(80, {}, this->noise);
    const auto in = this->noise.template block<Sample>(1500);
    std::vector<typename TypeParam::Out> out;
    for (auto at = in.begin(); at != in.end();) {
        for (int i = this->noise.below(20); i > 0 && at != in.end(); --i, ++at)
            out.push_back(TypeParam::one(&filter.state, *at));
        const auto past = at + std::min<long>(this->noise.below(20), in.end() - at);
        if (at == past)
            continue;
        const auto part = this->runBlock(filter, {at, past});
        out.insert(out.end(), part.begin(), part.end());
        at = past;
    }
    ASSERT_EQ(firstDifference(out, filter.expected(in)), -1);
}

// Up to `limit`, small numbers more often than large ones.
int upTo(int limit, Noise &noise)
{
    return 1 + noise.below(1 + noise.below(limit));
}

FirRates ratesAtRandom(Noise &noise)
{
    FirRates rates;
    if (noise.below(3) == 0)
        return rates;
    rates.up = noise.below(3) == 0 ? 1 : upTo(noise.below(8) == 0 ? 200 : 9, noise);
    rates.down = upTo(noise.below(8) == 0 ? 200 : 9, noise);
    rates.upPhase = noise.below(rates.up);
    rates.downPhase = noise.below(rates.down);
    return rates;
}

// Puts some of the values in that sums treat in a way of their own.
template <typename Element>
void sprinkle(std::vector<Element> &block, Noise &noise)
{
    constexpr double special[] = {INF, -INF, QUIET, 0.0, -0.0, 0x1p-1074, 0x1.8p-1022, 0x1p1023};
    constexpr int parts = sizeof(Element) / sizeof(double);
    auto *doubles = reinterpret_cast<double *>(block.data());
    for (std::size_t i = 0; i < block.size() * parts; ++i)
        if (noise.below(12) == 0)
            doubles[i] = special[noise.below(8)];
}

// One call of either kind, between walls; appends its outputs.
template <typename Family>
void runPart(Filter<Family> &filter, const std::vector<typename Family::Sample> &in, bool byOne,
             Wall wall, std::vector<typename Family::Out> &out)
{
    using Out = typename Family::Out;
    if (byOne) {
        for (const auto &x : in)
            out.push_back(Family::one(&filter.state, x));
        return;
    }
    const int steps = static_cast<int>(in.size()) / filter.rates.down;
    const auto places = static_cast<std::size_t>(steps * filter.rates.up);
    Walled<typename Family::Sample> source(in, wall);
    Walled<Out> result(std::vector<Out>(places), wall);
    Family::block(&filter.state, source.data(), result.data(), steps);
    EXPECT_EQ(firstDifference(source.values(), in), -1) << "the input has changed";
    EXPECT_EQ(filter.state.dlylCur, filter.state.dlylBase);
    const auto values = result.values();
    out.insert(out.end(), values.begin(), values.end());
}

// Lengths, rates, phases, values and cuts at random, on a record that had a filter of
// another family before. After each call the past is that of the signal so far.
TYPED_TEST(Fir, AnyFilterInAnyCutsIsTheFormula)
{
    using Sample = typename TypeParam::Sample;
    Noise dice{3};
    for (int trial = 0; trial < 300; ++trial) {
        const FirRates rates = ratesAtRandom(dice);
        const int tapsLen = upTo(trial % 10 == 0 ? 900 : 150, dice);
        Filter<TypeParam> filter(tapsLen, rates, dice);
        const int steps = std::min(500, 1 + 60000 / (tapsLen * rates.up));
        auto in = dice.template block<Sample>(steps * rates.down);
        if (trial % 4 == 0) {
            sprinkle(filter.taps, dice);
            sprinkle(filter.past, dice);
            sprinkle(in, dice);
        }
        if (trial % 2 == 0)
            rvxzFirInitMr(nullptr, 5, nullptr, 2, 1, 3, 2, &filter.state);
        else
            rvxdFirInit(nullptr, 70, nullptr, &filter.state);
        filter.restart();

        std::vector<typename TypeParam::Out> out;
        const bool isSingle = rates.up == 1 && rates.down == 1;
        for (int from = 0; from < steps;) {
            const int past = std::min(steps, from + upTo(trial % 3 == 0 ? 5 : steps, dice));
            const auto at = in.begin();
            runPart(filter, {at + from * rates.down, at + past * rates.down},
                    isSingle && dice.below(2) == 0,
                    dice.below(2) == 0 ? Wall::before : Wall::behind, out);
            ASSERT_EQ(
                firstDifference(filter.window(), filter.pastAfter({at, at + past * rates.down})),
                -1)
                << "trial " << trial;
            from = past;
        }
        ASSERT_EQ(firstDifference(out, filter.expected(in)), -1)
            << "trial " << trial << ": " << tapsLen << " taps, " << rates.up << "/" << rates.down;
    }
    EXPECT_TRUE(this->reports.take().empty());
}

// The error of a sum of n products, each rounded and added in a row, is at most
// n units of 2^-53 times the sum of the products' sizes; a complex product has two
// more roundings. Twice that would be a wrong sum.
TYPED_TEST(Fir, ErrorIsThatOfRounding)
{
    for (int tapsLen : {1, 4, 32, 400}) {
        Filter<TypeParam> filter(tapsLen, {2, 1, 3, 2}, this->noise);
        const auto in = this->noise.template block<typename TypeParam::Sample>(600);
        const auto out = this->runBlock(filter, in);
        for (std::size_t m = 0; m < out.size(); ++m) {
            reference::WideSum real, imag;
            reference::visitTerms(tapsLen, filter.rates, static_cast<long>(m),
                                  [&](std::size_t j, long index) {
                                      const auto h = filter.taps[j];
                                      const auto x = reference::sampleAt(filter.past, in, index);
                                      real.add(re(h), re(x));
                                      real.add(-im(h), im(x));
                                      imag.add(re(h), im(x));
                                      imag.add(im(h), re(x));
                                  });
            const auto bound = [](const reference::WideSum &sum) {
                return (0.25L * sum.terms + 1.25) * 0x1p-53L * sum.size;
            };
            ASSERT_LE(std::fabs(re(out[m]) - real.value), bound(real)) << tapsLen << " at " << m;
            ASSERT_LE(std::fabs(im(out[m]) - imag.value), bound(imag)) << tapsLen << " at " << m;
        }
    }
}

TYPED_TEST(Fir, SpecialValuesStayInTheirSums)
{
    using Sample = typename TypeParam::Sample;
    const FirRates all[] = {{}, {1, 0, 2, 1}, {3, 1, 2, 0}};
    for (const FirRates &rates : all) {
        for (int tapsLen : {1, 6, 33}) {
            for (double special : {INF, -INF, QUIET, 0x1p-1074, -0.0, 0x1.fffffffffffffp1023}) {
                Filter<TypeParam> filter(tapsLen, rates, this->noise);
                auto in = this->noise.template block<Sample>(100 * rates.down);
                for (std::size_t i : {std::size_t{0}, std::size_t{17}, in.size() - 1})
                    *reinterpret_cast<double *>(&in[i]) = special;
                ASSERT_EQ(firstDifference(this->runBlock(filter, in), filter.expected(in)), -1);
            }
        }
    }
}

TYPED_TEST(Fir, SumsBeginAtPositiveZero)
{
    using Tap = typename TypeParam::Tap;
    using Sample = typename TypeParam::Sample;
    const std::vector<Tap> taps(5, Tap{});
    std::vector<Sample> in(40, Sample{});
    for (Sample &x : in)
        *reinterpret_cast<double *>(&x) = -1.0; // each product is -0.0
    rvxFirState state = {};
    TypeParam::init(taps.data(), 5, nullptr, &state);
    std::vector<typename TypeParam::Out> out(40);
    TypeParam::block(&state, in.data(), out.data(), 40);
    out.push_back(TypeParam::one(&state, in[0]));
    for (const auto &y : out) {
        EXPECT_EQ(bitsOf(re(y)), bitsOf(0.0));
        EXPECT_EQ(bitsOf(im(y)), bitsOf(0.0));
    }
    rvxFirFree(&state);
}

TYPED_TEST(Fir, OutputsWithoutTapsAreZero)
{
    using Sample = typename TypeParam::Sample;
    Filter<TypeParam> filter(2, {5, 1, 1, 0}, this->noise);
    std::vector<Sample> in(30, Sample{});
    for (Sample &x : in)
        *reinterpret_cast<double *>(&x) = QUIET;
    const auto out = this->runBlock(filter, in);
    int empty = 0;
    for (int i = 0; i < 5; ++i) {
        if (filter.state.phaseTable[i].numTaps != 0)
            continue;
        ++empty;
        for (int m = 0; m < 30; ++m) {
            const auto y = out[static_cast<std::size_t>(5 * m + i)];
            EXPECT_EQ(bitsOf(re(y)), bitsOf(0.0));
            EXPECT_EQ(bitsOf(im(y)), bitsOf(0.0));
        }
    }
    EXPECT_EQ(empty, 3);
}

TYPED_TEST(Fir, OneTapIsAProduct)
{
    Filter<TypeParam> filter(1, {}, this->noise);
    const auto in = this->noise.template block<typename TypeParam::Sample>(9);
    const auto out = this->runBlock(filter, in);
    for (std::size_t i = 0; i < in.size(); ++i) {
        const auto y = reference::plus(typename TypeParam::Out{}, filter.taps[0], in[i]);
        EXPECT_TRUE(same(out[i], y));
        EXPECT_TRUE(same(TypeParam::one(&filter.state, in[i]), y));
    }
}

// A real factor does not turn complex: the other part of a product stays clean.
TEST(FirMixed, InfinitiesAndNansStayInTheirPart)
{
    for (double special : {INF, QUIET}) {
        const ZCplx cplxTaps[2] = {{special, 1.0}, {1.0, 2.0}};
        const double samples[8] = {1.0, 2.0, 3.0, 4.0, 5.0, 6.0, 7.0, 8.0};
        rvxFirState state = {};
        ZCplx out[8];
        rvxdzFirInit(cplxTaps, 2, nullptr, &state);
        rvxdzbFir(&state, samples, out, 8);
        for (int i = 0; i < 8; ++i) {
            EXPECT_FALSE(std::isfinite(out[i].re));
            EXPECT_EQ(out[i].im, 2.0 * i + (i + 1));
        }
        EXPECT_EQ(rvxdzFir(&state, 9.0).im, 25.0);
        rvxFirFree(&state);

        const double realTaps[2] = {1.0, 2.0};
        std::vector<ZCplx> cplxSamples;
        for (int i = 1; i <= 8; ++i)
            cplxSamples.push_back({static_cast<double>(i), special});
        rvxzdFirInit(realTaps, 2, nullptr, &state);
        rvxzdbFir(&state, cplxSamples.data(), out, 8);
        for (int i = 0; i < 8; ++i) {
            EXPECT_EQ(out[i].re, 2.0 * i + (i + 1));
            EXPECT_FALSE(std::isfinite(out[i].im));
        }
        EXPECT_EQ(rvxzdFir(&state, {9.0, special}).re, 25.0);
        rvxFirFree(&state);
    }
}

TEST(FirExamples, TapsComeOutOfAnImpulse)
{
    const double taps[4] = {1.0, 2.0, 3.0, 4.0};
    const double impulse[6] = {1.0, 0.0, 0.0, 0.0, 0.0, 0.0};
    double out[6];
    rvxFirState state = {};
    rvxdFirInit(taps, 4, nullptr, &state);
    rvxdbFir(&state, impulse, out, 6);
    EXPECT_EQ(std::vector<double>(out, out + 6), (std::vector<double>{1, 2, 3, 4, 0, 0}));

    rvxdFirInitMr(taps, 4, nullptr, 2, 0, 1, 0, &state);
    rvxdbFir(&state, impulse, out, 3);
    EXPECT_EQ(std::vector<double>(out, out + 6), (std::vector<double>{1, 2, 3, 4, 0, 0}));
    rvxFirFree(&state);
}

TEST(FirExamples, DownPhaseSaysWhichSampleIsTheNewest)
{
    const double taps[4] = {1.0, 10.0, 100.0, 1000.0};
    const double in[4] = {1.0, 2.0, 3.0, 4.0};
    double out[2];
    rvxFirState state = {};
    rvxdFirInitMr(taps, 4, nullptr, 1, 0, 2, 0, &state);
    rvxdbFir(&state, in, out, 2);
    EXPECT_EQ(out[0], 1.0);
    EXPECT_EQ(out[1], 123.0);
    rvxdFirInitMr(taps, 4, nullptr, 1, 0, 2, 1, &state);
    rvxdbFir(&state, in, out, 2);
    EXPECT_EQ(out[0], 12.0);
    EXPECT_EQ(out[1], 1234.0);
    rvxFirFree(&state);
}

TYPED_TEST(Fir, StaleStatusPlaysNoPart)
{
    for (const FirRates &rates : {FirRates{}, FirRates{2, 1, 3, 2}}) {
        Filter<TypeParam> filter(9, rates, this->noise);
        const auto in = this->noise.template block<typename TypeParam::Sample>(60);
        const auto expected = filter.expected(in);
        rvxSetErrStatus(RVX_STATUS_NO_MEMORY);
        filter.restart();
        EXPECT_EQ(firstDifference(this->runBlock(filter, in), expected), -1);
        if (filter.state.isMultiRate == 0) {
            TypeParam::init(filter.taps.data(), 9, filter.past.data(), &filter.state);
            EXPECT_TRUE(same(TypeParam::one(&filter.state, in[0]), expected[0]));
        }
        rvxFirFree(&filter.state);
        EXPECT_EQ(rvxGetErrStatus(), RVX_STATUS_NO_MEMORY);
        EXPECT_TRUE(this->reports.take().empty());
    }
}

} // namespace
