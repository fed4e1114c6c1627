// Adaptive filters.

#include <climits>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "filter/rvxlmsh.h"
#include "filter/rvxlmsl.h"
#include "reference/lms.h"
#include "rvx.h"
#include "support/allocations.h"
#include "support/blocks.h"
#include "support/guarded.h"
#include "support/reports.h"

namespace {

constexpr double INF = std::numeric_limits<double>::infinity();
constexpr double QUIET = std::numeric_limits<double>::quiet_NaN();

// The three families under one set of names.

struct D {
    using Tap = double;
    using Sample = double;
    static constexpr auto init = rvxdLmsInit;
    static constexpr auto initMr = rvxdLmsInitMr;
    static constexpr auto one = rvxdLms;
    static constexpr auto block = rvxdbLms;
    static constexpr const char *names[4] = {"rvxdLmsInit", "rvxdLmsInitMr", "rvxdLms", "rvxdbLms"};
};

struct Z {
    using Tap = ZCplx;
    using Sample = ZCplx;
    static constexpr auto init = rvxzLmsInit;
    static constexpr auto initMr = rvxzLmsInitMr;
    static constexpr auto one = rvxzLms;
    static constexpr auto block = rvxzbLms;
    static constexpr const char *names[4] = {"rvxzLmsInit", "rvxzLmsInitMr", "rvxzLms", "rvxzbLms"};
};

struct DZ {
    using Tap = ZCplx;
    using Sample = double;
    static constexpr auto init = rvxdzLmsInit;
    static constexpr auto initMr = rvxdzLmsInitMr;
    static constexpr auto one = rvxdzLms;
    static constexpr auto block = rvxdzbLms;
    static constexpr const char *names[4] = {"rvxdzLmsInit", "rvxdzLmsInitMr", "rvxdzLms",
                                             "rvxdzbLms"};
};

template <typename Family>
class Lms : public ::testing::Test {
};
using Families = ::testing::Types<D, Z, DZ>;
TYPED_TEST_SUITE(Lms, Families, );

bool same(double a, double b)
{
    return bitsOf(a) == bitsOf(b) || (std::isnan(a) && std::isnan(b));
}

bool same(ZCplx a, ZCplx b)
{
    return same(a.re, b.re) && same(a.im, b.im);
}

template <typename Value>
std::vector<Value> valuesOf(Temper temper, int n, unsigned seed)
{
    const auto size = static_cast<std::size_t>(n);
    const std::vector<double> parts =
        makeBlock(temper, n * static_cast<int>(sizeof(Value) / sizeof(double)), seed);
    std::vector<Value> values(size);
    if (n > 0)
        std::memcpy(static_cast<void *>(values.data()), parts.data(), size * sizeof(Value));
    return values;
}

template <typename Family>
using Reference = reference::Lms<typename Family::Tap, typename Family::Sample>;

template <typename Family>
bool sameTaps(const rvxLmsState &state, const Reference<Family> &expected)
{
    const auto *taps = static_cast<const typename Family::Tap *>(state.tapState.taps);
    for (std::size_t i = 0; i < expected.taps.size(); ++i)
        if (!same(taps[i], expected.taps[i]))
            return false;
    return true;
}

template <typename Family>
bool sameLine(const rvxLmsState &state, const Reference<Family> &expected)
{
    const auto *line = static_cast<const typename Family::Sample *>(state.dlyState.dlyl);
    for (int i = 0; i < state.dlyState.dlylLen; ++i)
        if (!same(line[i], expected.ago(i)))
            return false;
    return true;
}

struct Shape {
    int tapsLen, errDly, downFactor, downPhase; // downFactor 0 for a single rate
    bool given;                                 // taps and earlier samples, not null
};

// A state of that shape, filled with what no initialiser may look at before.
template <typename Family>
rvxLmsState makeState(const Shape &shape, float step, float leak, Temper temper,
                      Reference<Family> &expected)
{
    using Tap = typename Family::Tap;
    using Sample = typename Family::Sample;
    const int before = shape.tapsLen + shape.errDly + shape.downFactor - 1;
    auto taps = valuesOf<Tap>(temper, shape.tapsLen, 1);
    const auto samples = valuesOf<Sample>(temper, before, 2);
    rvxLmsState state;
    std::memset(&state, 0xa5, sizeof state);
    const Tap *tapVals = shape.given ? taps.data() : nullptr;
    const Sample *dlyVals = shape.given ? samples.data() : nullptr;
    if (shape.downFactor == 0)
        Family::init(7, tapVals, shape.tapsLen, dlyVals, step, leak, shape.errDly, &state);
    else
        Family::initMr(7, tapVals, shape.tapsLen, dlyVals, step, leak, shape.errDly,
                       shape.downFactor, shape.downPhase, &state);
    if (!shape.given)
        taps.assign(taps.size(), Tap{});
    expected = {taps, shape.given ? samples : std::vector<Sample>{}, step, leak, shape.errDly};
    return state;
}

// Steps of both forms in turn, each output, all taps and the delay line compared bit
// by bit.
template <typename Family>
void expectSteps(const Shape &shape, float step, float leak, Temper temper)
{
    using Tap = typename Family::Tap;
    using Sample = typename Family::Sample;
    const std::string text = std::to_string(shape.tapsLen) + " taps, delay " +
                             std::to_string(shape.errDly) + ", factor " +
                             std::to_string(shape.downFactor) + ", phase " +
                             std::to_string(shape.downPhase);
    Reference<Family> expected;
    rvxLmsState state = makeState<Family>(shape, step, leak, temper, expected);
    const int factor = shape.downFactor == 0 ? 1 : shape.downFactor;
    const auto errors = valuesOf<Tap>(temper, 24, 3);
    for (unsigned k = 0; k < 24; ++k) {
        Tap output, expectedOutput;
        if (k / 6 % 2 == (shape.downFactor == 0 ? 0 : 1)) {
            const auto x = valuesOf<Sample>(temper, 1, 100 + k);
            output = Family::one(&state, x[0], errors[k]);
            expectedOutput = expected.take(x, 0, errors[k]);
        } else {
            const auto x = valuesOf<Sample>(temper, factor, 100 + k);
            Guarded<Sample> guarded(x, static_cast<int>(k % 4));
            output = Family::block(&state, guarded.data(), errors[k]);
            expectedOutput = expected.take(x, factor - 1 - shape.downPhase, errors[k]);
        }
        ASSERT_TRUE(same(output, expectedOutput)) << text << ", step " << k;
        ASSERT_TRUE(sameTaps<Family>(state, expected)) << text << ", step " << k;
        ASSERT_TRUE(sameLine<Family>(state, expected)) << text << ", step " << k;
    }
    rvxLmsFree(&state);
}

} // namespace

// --- Steps ---------------------------------------------------------------------

TYPED_TEST(Lms, EveryNumberOfTapsAndDelay)
{
    for (int tapsLen = 1; tapsLen <= 40; ++tapsLen)
        for (int errDly : {0, 1, 2, 3, 4, 7, 40})
            for (bool given : {false, true})
                expectSteps<TypeParam>({tapsLen, errDly, 0, 0, given}, 0.01f, 0.001f,
                                       Temper::uniform);
    expectSteps<TypeParam>({1000, 300, 0, 0, true}, 0.01f, 0.001f, Temper::uniform);
}

TYPED_TEST(Lms, EveryFactorAndPhase)
{
    for (int tapsLen : {1, 2, 3, 4, 5, 8, 9, 15, 16, 33})
        for (int errDly : {0, 1, 5})
            for (int factor = 1; factor <= 9; ++factor)
                for (int phase = 0; phase < factor; ++phase)
                    expectSteps<TypeParam>({tapsLen, errDly, factor, phase, phase % 2 == 0}, 0.01f,
                                           0.001f, Temper::uniform);
    expectSteps<TypeParam>({5, 2, 100, 60, true}, 0.01f, 0.001f, Temper::uniform);
    // Around the number of samples that a step fetches ahead.
    for (int tapsLen : {1, 7, 18, 40, 67})
        for (int errDly : {0, 3, 33})
            for (int factor : {10, 15, 16, 17, 23, 40})
                for (int phase : {0, factor / 2, factor - 1})
                    expectSteps<TypeParam>({tapsLen, errDly, factor, phase, true}, 0.01f, 0.001f,
                                           Temper::uniform);
}

TYPED_TEST(Lms, StepsAndLeaksOfAllKinds)
{
    const auto nan = std::numeric_limits<float>::quiet_NaN();
    const auto infinity = std::numeric_limits<float>::infinity();
    for (float step : {0.0f, -0.0f, -1.0f, nan, -infinity, 0.1f, 1e-40f, infinity})
        for (float leak : {0.0f, 1.0f, 0.1f, 2.0f, -0.5f, nan})
            expectSteps<TypeParam>({9, 1, 0, 0, true}, step, leak, Temper::uniform);
}

TYPED_TEST(Lms, EveryTemper)
{
    for (Temper temper : allTempers) {
        expectSteps<TypeParam>({13, 1, 0, 0, true}, 0.5f, 0.25f, temper);
        expectSteps<TypeParam>({13, 1, 3, 1, true}, 0.5f, 0.25f, temper);
    }
}

TYPED_TEST(Lms, WithoutAStepTheTapsStay)
{
    Reference<TypeParam> expected;
    rvxLmsState state =
        makeState<TypeParam>({6, 1, 0, 0, true}, 0.0f, 0.5f, Temper::uniform, expected);
    const auto x = valuesOf<typename TypeParam::Sample>(Temper::uniform, 10, 4);
    const auto e = valuesOf<typename TypeParam::Tap>(Temper::infinities, 10, 4);
    for (std::size_t k = 0; k < 10; ++k)
        TypeParam::one(&state, x[k], e[k]);
    EXPECT_TRUE(sameTaps<TypeParam>(state, expected));
    rvxLmsFree(&state);
}

TEST(LmsCases, FirstCallAdaptsWithSilence)
{
    const double taps[2] = {3.0, 5.0};
    rvxLmsState state;
    rvxdLmsInit(0, taps, 2, nullptr, 0.5f, 0.0f, 0, &state);
    EXPECT_EQ(rvxdLms(&state, 7.0, 100.0), 21.0);
    // Error 2 belongs to that output: tap 0 moves by 0.5 * 2 * 7.
    EXPECT_EQ(rvxdLms(&state, 0.0, 2.0), 35.0);
    EXPECT_EQ(static_cast<double *>(state.tapState.taps)[0], 10.0);
    EXPECT_EQ(static_cast<double *>(state.tapState.taps)[1], 5.0);
    rvxLmsFree(&state);
}

TEST(LmsCases, FullLeakageLeavesTheLatestUpdateAlone)
{
    const double taps[1] = {3.0};
    const double silence[1] = {4.0};
    rvxLmsState state;
    rvxdLmsInit(0, taps, 1, silence, 0.5f, 1.0f, 1, &state);
    // The line has two places and one sample was given: the older place is zero.
    rvxdLms(&state, 1.0, 2.0);
    EXPECT_EQ(*static_cast<double *>(state.tapState.taps), 0.0);
    rvxdLms(&state, 1.0, 2.0);
    EXPECT_EQ(*static_cast<double *>(state.tapState.taps), 4.0);
    rvxLmsFree(&state);
}

TEST(LmsCases, ThePhaseChoosesTheNewestSampleOfTheOutput)
{
    const double tap[1] = {1.0};
    const double block[4] = {10.0, 20.0, 30.0, 40.0};
    for (int phase = 0; phase < 4; ++phase) {
        rvxLmsState state;
        rvxdLmsInitMr(0, tap, 1, nullptr, 0.0f, 0.0f, 0, 4, phase, &state);
        EXPECT_EQ(rvxdbLms(&state, block, 0.0), block[phase]);
        EXPECT_EQ(static_cast<double *>(state.dlyState.dlyl)[3], 10.0);
        rvxLmsFree(&state);
    }
}

// An unknown filter is found from its output, to rounding: nothing else disturbs.
TYPED_TEST(Lms, AnUnknownFilterIsFound)
{
    using Tap = typename TypeParam::Tap;
    const auto unknown = valuesOf<Tap>(Temper::uniform, 8, 5);
    Reference<TypeParam> plant = {unknown, {}, 0.0f, 0.0f, 0};
    rvxLmsState state;
    TypeParam::init(0, nullptr, 8, nullptr, 0.125f, 0.0f, 0, &state);
    Tap error = {};
    for (unsigned k = 0; k < 4000; ++k) {
        const auto x = valuesOf<typename TypeParam::Sample>(Temper::uniform, 1, 1000 + k);
        Tap wanted = plant.take(x, 0, Tap{});
        const Tap output = TypeParam::one(&state, x[0], error);
        const auto *w = reinterpret_cast<const double *>(&wanted);
        const auto *y = reinterpret_cast<const double *>(&output);
        for (std::size_t part = 0; part < sizeof(Tap) / sizeof(double); ++part)
            reinterpret_cast<double *>(&error)[part] = w[part] - y[part];
    }
    const auto *found = static_cast<const double *>(state.tapState.taps);
    for (std::size_t i = 0; i < 8 * sizeof(Tap) / sizeof(double); ++i)
        EXPECT_NEAR(found[i], reinterpret_cast<const double *>(unknown.data())[i], 4e-16);
    rvxLmsFree(&state);
}

// Leaves NaN in released memory, where the next blocks of that size come from.
void spoilHeap(std::size_t bytes)
{
    void *blocks[2];
    for (void *&block : blocks) {
        block = std::malloc(bytes);
        std::memset(block, 0xff, bytes);
        asm volatile("" : : "r"(block) : "memory");
    }
    for (void *block : blocks)
        std::free(block);
}

// They are not refused and give nothing of use, but nothing undefined either.
TYPED_TEST(Lms, NegativeDelaysStayInsideTheArrays)
{
    for (int errDly : {-1, -3, -9, -1000, INT_MIN}) {
        for (int factor : {0, 1, 4}) {
            Reports reports;
            rvxLmsState state;
            const std::vector<typename TypeParam::Sample> before(8);
            rvxLmsTapState shape = {};
            shape.tapsLen = 6;
            shape.downFactor = factor == 0 ? 1 : factor;
            spoilHeap(static_cast<std::size_t>(rvxLmslRoom(&shape)) *
                      sizeof(typename TypeParam::Sample));
            if (factor == 0)
                TypeParam::init(0, nullptr, 6, before.data(), 0.5f, 0.0f, errDly, &state);
            else
                TypeParam::initMr(0, nullptr, 6, before.data(), 0.5f, 0.0f, errDly, factor, 0,
                                  &state);
            const auto x = valuesOf<typename TypeParam::Sample>(Temper::uniform, 4, 6);
            const auto e = valuesOf<typename TypeParam::Tap>(Temper::uniform, 4, 6);
            for (std::size_t k = 0; k < 4; ++k) {
                TypeParam::one(&state, x[k], e[k]);
                TypeParam::block(&state, x.data(), e[k]);
            }
            const auto *taps = static_cast<const double *>(state.tapState.taps);
            for (std::size_t i = 0; i < 6 * sizeof(typename TypeParam::Tap) / sizeof(double); ++i)
                EXPECT_TRUE(std::isfinite(taps[i])) << errDly << ", tap " << i;
            rvxLmsFree(&state);
            EXPECT_TRUE(reports.take().empty());
        }
    }
}

// --- Records -------------------------------------------------------------------

TYPED_TEST(Lms, TheRecordHoldsWhatWasGiven)
{
    for (int factor : {0, 1, 2, 5}) {
        Reference<TypeParam> expected;
        rvxLmsState state = makeState<TypeParam>({4, 3, factor, factor / 2, true}, 0.5f, 0.25f,
                                                 Temper::uniform, expected);
        const rvxLmsTapState &taps = state.tapState;
        EXPECT_EQ(taps.tapsLen, 4);
        EXPECT_EQ(taps.upFactor, 1);
        EXPECT_EQ(taps.upPhase, 0);
        EXPECT_EQ(taps.downFactor, factor == 0 ? 1 : factor);
        EXPECT_EQ(taps.downPhase, factor / 2);
        EXPECT_EQ(taps.isMultiRate, factor >= 2 ? 1 : 0);
        EXPECT_EQ(taps.tapsReady, 1);
        EXPECT_EQ(taps.leak, 0.25f);
        EXPECT_EQ(taps.step, 0.5f);
        EXPECT_EQ(taps.errDly, 3);
        EXPECT_EQ(taps.lmsType, 7);
        EXPECT_EQ(state.dlyState.dlylLen, 4 + 3 + factor);
        EXPECT_EQ(state.dlyState.dlyReady, 1);
        EXPECT_TRUE(same(state.errVal, ZCplx{0.0, 0.0}));
        EXPECT_TRUE(sameTaps<TypeParam>(state, expected));
        EXPECT_TRUE(sameLine<TypeParam>(state, expected));
        rvxLmsFree(&state);
    }
}

TYPED_TEST(Lms, NothingIsAllocatedAfterInitialisationAndAllIsReleased)
{
    AllocationWatch watch;
    rvxLmsState state;
    TypeParam::initMr(0, nullptr, 10, nullptr, 0.5f, 0.0f, 2, 3, 1, &state);
    EXPECT_EQ(watch.allocations(), 2);
    const typename TypeParam::Sample x[3] = {};
    TypeParam::one(&state, x[0], {});
    TypeParam::block(&state, x, {});
    EXPECT_EQ(watch.allocations(), 2);
    rvxLmsFree(&state);
    EXPECT_EQ(watch.live(), 0);
    EXPECT_EQ(state.tapState.taps, nullptr);
    EXPECT_EQ(state.dlyState.dlyl, nullptr);
    EXPECT_EQ(state.tapState.tapsReady, 1);
    EXPECT_EQ(state.dlyState.dlyReady, 1);
    EXPECT_EQ(state.tapState.tapsLen, 10);
    rvxLmsFree(&state);
    EXPECT_EQ(watch.live(), 0);
}

TEST(LmsRecord, FreeingNothingIsSilent)
{
    Reports reports;
    rvxLmsFree(nullptr);
    rvxLmsState state = {};
    rvxLmsFree(&state);
    EXPECT_TRUE(reports.take().empty());
    EXPECT_EQ(rvxGetErrStatus(), 0);
}

TEST(LmsRecord, ALiveStateIsNotLookedAt)
{
    rvxLmsState first, second;
    rvxdLmsInit(0, nullptr, 4, nullptr, 0.5f, 0.0f, 0, &first);
    second = first;
    rvxzLmsInit(0, nullptr, 2, nullptr, 0.5f, 0.0f, 0, &second);
    EXPECT_NE(first.tapState.taps, second.tapState.taps);
    EXPECT_EQ(rvxdLms(&first, 1.0, 0.0), 0.0);
    rvxLmsFree(&first);
    rvxLmsFree(&second);
}

TYPED_TEST(Lms, EachFailedAllocationIsReportedAndLeavesNothing)
{
    using Sample = typename TypeParam::Sample;
    Reports reports;
    const std::vector<Sample> before(20);
    for (long failAt = 1; failAt <= 3; ++failAt)
        for (bool multiRate : {false, true}) {
            rvxLmsState state;
            std::memset(&state, 0x11, sizeof state);
            {
                AllocationWatch watch(failAt == 3 ? 1 : failAt);
                if (failAt == 3)
                    watch.failAllFrom(1);
                if (multiRate)
                    TypeParam::initMr(0, nullptr, 5, before.data(), 0.5f, 0.0f, 1, 2, 1, &state);
                else
                    TypeParam::init(0, nullptr, 5, before.data(), 0.5f, 0.0f, 1, &state);
                EXPECT_EQ(watch.allocations(), 2);
                EXPECT_EQ(watch.live(), 0);
            }
            const std::vector<Report> expected = {{RVX_STATUS_NO_MEMORY,
                                                   TypeParam::names[multiRate ? 1 : 0],
                                                   "Problem to allocate memory", "rvxlmsh"}};
            EXPECT_EQ(reports.take(), expected);
            EXPECT_EQ(state.tapState.taps, nullptr);
            EXPECT_EQ(state.dlyState.dlyl, nullptr);
            EXPECT_EQ(state.tapState.tapsReady, failAt == 2 ? 1 : 0);
            EXPECT_EQ(state.dlyState.dlyReady, failAt == 1 ? 1 : 0);
            // The guard of the steps notices that.
            TypeParam::one(&state, Sample{}, {});
            EXPECT_EQ(reports.take(),
                      badArgument(TypeParam::names[2],
                                  failAt == 2 ? "Delay line state structure is not initialized"
                                              : "Taps state structure is not initialized",
                                  "rvxlmsh"));
            rvxLmsFree(&state);
        }
}

TYPED_TEST(Lms, DelayLinesBeyondAnIntAreMissingMemory)
{
    Reports reports;
    for (int extra : {0, 1}) {
        AllocationWatch watch;
        rvxLmsState state;
        if (extra == 0)
            TypeParam::init(0, nullptr, 1, nullptr, 0.5f, 0.0f, INT_MAX, &state);
        else
            TypeParam::initMr(0, nullptr, 1, nullptr, 0.5f, 0.0f, INT_MAX, INT_MAX, 0, &state);
        EXPECT_EQ(watch.live(), 0);
        const AllocationPause pause;
        const std::vector<Report> expected = {{RVX_STATUS_NO_MEMORY, TypeParam::names[extra],
                                               "Problem to allocate memory", "rvxlmsh"}};
        EXPECT_EQ(reports.take(), expected);
    }
}

// --- Checks --------------------------------------------------------------------

TYPED_TEST(Lms, InitialisersCheckInOrderAndWriteNothing)
{
    Reports reports;
    rvxLmsState state, before;
    std::memset(&state, 0x33, sizeof state);
    std::memcpy(&before, &state, sizeof state);
    const auto expect = [&](int form, const char *context) {
        EXPECT_EQ(reports.take(), badArgument(TypeParam::names[form], context, "rvxlmsh"));
        EXPECT_EQ(std::memcmp(&state, &before, sizeof state), 0);
    };
    TypeParam::init(0, nullptr, 0, nullptr, 0.5f, 0.0f, 0, nullptr);
    expect(0, "Null buffer pointer");
    TypeParam::initMr(0, nullptr, 0, nullptr, 0.5f, 0.0f, 0, -1, -1, nullptr);
    expect(1, "Null buffer pointer");
    for (int tapsLen : {0, -1, INT_MIN}) {
        TypeParam::init(0, nullptr, tapsLen, nullptr, 0.5f, 0.0f, 0, &state);
        expect(0, "Invalid buffer length");
        TypeParam::initMr(0, nullptr, tapsLen, nullptr, 0.5f, 0.0f, 0, -1, -1, &state);
        expect(1, "Invalid buffer length");
    }
    for (int phase : {-1, INT_MIN}) {
        TypeParam::initMr(0, nullptr, 1, nullptr, 0.5f, 0.0f, 0, phase, phase, &state);
        expect(1, "Invalid phase value");
    }
    for (int factor : {0, -1, 3, 2, INT_MIN}) {
        TypeParam::initMr(0, nullptr, 1, nullptr, 0.5f, 0.0f, 0, factor, 3, &state);
        expect(1, "Invalid factor value");
    }
}

TYPED_TEST(Lms, StepsCheckInOrder)
{
    Reports reports;
    rvxLmsState state;
    std::memset(&state, 0, sizeof state);
    const typename TypeParam::Sample x[1] = {};
    const typename TypeParam::Tap zero = {};
    const auto expect = [&](int form, typename TypeParam::Tap result, const char *context) {
        EXPECT_EQ(reports.take(), badArgument(TypeParam::names[form], context, "rvxlmsh"));
        EXPECT_TRUE(same(result, zero));
    };
    expect(2, TypeParam::one(nullptr, x[0], zero), "Null buffer pointer");
    expect(3, TypeParam::block(nullptr, nullptr, zero), "Null buffer pointer");
    expect(3, TypeParam::block(&state, nullptr, zero), "Null buffer pointer");
    expect(2, TypeParam::one(&state, x[0], zero), "Taps state structure is not initialized");
    expect(3, TypeParam::block(&state, x, zero), "Taps state structure is not initialized");
    state.tapState.tapsReady = 1;
    expect(2, TypeParam::one(&state, x[0], zero), "Delay line state structure is not initialized");
    expect(3, TypeParam::block(&state, x, zero), "Delay line state structure is not initialized");
    state.tapState.tapsReady = 0;
    state.dlyState.dlyReady = 1;
    expect(2, TypeParam::one(&state, x[0], zero), "Taps state structure is not initialized");
}

TEST(LmsChecks, EndTheProcessInModeZero)
{
    EXPECT_EXIT(rvxdLms(nullptr, 0.0, 0.0), ::testing::ExitedWithCode(1), "");
}

TEST(LmsChecks, AStaleStatusPlaysNoPart)
{
    Reports reports;
    rvxSetErrStatus(RVX_STATUS_NO_MEMORY);
    const double tap = 2.0;
    rvxLmsState state;
    rvxdLmsInit(0, &tap, 1, nullptr, 0.0f, 0.0f, 0, &state);
    EXPECT_EQ(rvxdLms(&state, 3.0, 0.0), 6.0);
    EXPECT_EQ(rvxGetErrStatus(), RVX_STATUS_NO_MEMORY);
    rvxLmsFree(&state);
}

TEST(LmsChecks, StoresAndTheLowLevelReportUnderTheirOwnNames)
{
    Reports reports;
    const auto expect = [&](const char *func, const char *context, const char *file) {
        EXPECT_EQ(reports.take(), badArgument(func, context, file));
    };
    const char *null = "Null buffer pointer";
    const char *tapsNotReady = "Taps state structure is not initialized";
    const char *dlyNotReady = "Delay line state structure is not initialized";
    rvxdLmsSetTaps(nullptr, nullptr);
    expect("rvxdLmsSetTaps", null, "rvxlmsh");
    rvxzLmsSetTaps(nullptr, nullptr);
    expect("rvxzLmsSetTaps", null, "rvxlmsh");
    rvxdLmsSetDlyl(nullptr, nullptr);
    expect("rvxdLmsSetDlyl", null, "rvxlmsh");
    rvxzLmsSetDlyl(nullptr, nullptr);
    expect("rvxzLmsSetDlyl", null, "rvxlmsh");
    rvxdLmslSetTaps(nullptr, nullptr);
    expect("rvxdLmslSetTaps", null, "rvxlmsl");
    rvxzLmslSetTaps(nullptr, nullptr);
    expect("rvxzLmslSetTaps", null, "rvxlmsl");
    rvxdLmslSetDlyl(nullptr, nullptr);
    expect("rvxdLmslSetDlyl", null, "rvxlmsl");
    rvxzLmslSetDlyl(nullptr, nullptr);
    expect("rvxzLmslSetDlyl", null, "rvxlmsl");

    rvxLmsTapState taps = {};
    rvxLmsDlyState dly = {};
    const double x = 1.0;
    const ZCplx z = {1.0, 1.0};
    for (int level = 0; level < 5; ++level) {
        rvxLmsTapState *t = level == 0 ? nullptr : &taps;
        rvxLmsDlyState *d = level == 1 ? nullptr : &dly;
        const double *in = level == 2 ? nullptr : &x;
        const ZCplx *inz = level == 2 ? nullptr : &z;
        taps.tapsReady = level == 4 ? 1 : 0;
        const char *context = level < 3 ? null : level == 3 ? tapsNotReady : dlyNotReady;
        if (level != 2) {
            EXPECT_EQ(rvxdLmsl(t, d, x, x), 0.0);
            expect("rvxdLmsl", context, "rvxlmsl");
            EXPECT_TRUE(same(rvxzLmsl(t, d, z, z), ZCplx{0.0, 0.0}));
            expect("rvxzLmsl", context, "rvxlmsl");
            EXPECT_TRUE(same(rvxdzLmsl(t, d, x, z), ZCplx{0.0, 0.0}));
            expect("rvxdzLmsl", context, "rvxlmsl");
        }
        EXPECT_EQ(rvxdbLmsl(t, d, in, x), 0.0);
        expect("rvxdbLmsl", context, "rvxlmsl");
        EXPECT_TRUE(same(rvxzbLmsl(t, d, inz, z), ZCplx{0.0, 0.0}));
        expect("rvxzbLmsl", context, "rvxlmsl");
        EXPECT_TRUE(same(rvxdzbLmsl(t, d, in, z), ZCplx{0.0, 0.0}));
        expect("rvxdzbLmsl", context, "rvxlmsl");
    }
}

// A product of zero and infinity in one part leaves the other alone where samples
// are real.
TEST(LmsCases, RealSamplesKeepThePartsApart)
{
    const ZCplx tap = {INF, 2.0};
    rvxLmsState state;
    rvxdzLmsInit(0, &tap, 1, nullptr, 0.0f, 0.0f, 0, &state);
    const ZCplx y = rvxdzLms(&state, 0.0, {QUIET, 1.0});
    EXPECT_TRUE(std::isnan(y.re));
    EXPECT_EQ(y.im, 0.0);
    rvxLmsFree(&state);
}
