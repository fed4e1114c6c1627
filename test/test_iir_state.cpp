// How recursive filters begin, end and fail: checks, statuses, memory, records.

#include <climits>
#include <cstring>
#include <limits>
#include <vector>

#include <gtest/gtest.h>

#include "rvx.h"
#include "support/allocations.h"
#include "support/guarded.h"
#include "support/iir_families.h"
#include "support/iir_reports.h"
#include "support/reports.h"

namespace {

constexpr double QUIET = std::numeric_limits<double>::quiet_NaN();
constexpr const char *LIVE =
    "IIR filter state structure is already initialized! Use rvxIirFree to free it";
constexpr const char *DEAD = "IIR filter wasn't initialized";

template <typename Family>
class IirState : public ::testing::Test {
};

using Families = ::testing::Types<Real, Cplx, CplxTaps, RealTaps>;
TYPED_TEST_SUITE(IirState, Families, );

// Two taps of one sample, enough for order 0 and for failures.
template <typename Family>
std::vector<typename Family::Tap> someTaps()
{
    return tapsFor<typename Family::Tap>(2, 3, 30);
}

// ---------------------------------------------------------------------------
// Initialisers.

TYPED_TEST(IirState, DirectInitialiserChecksItsArgumentsInOrder)
{
    Reports reports;
    const auto taps = someTaps<TypeParam>();
    const auto init = TypeParam::init;
    const char *func = TypeParam::initName;
    rvxIirState live = {};
    live.dlySt.initMark = RVX_IIR_INIT_MARK;
    init(2, nullptr, -1, nullptr);
    EXPECT_EQ(reports.take(), badArgument(func, "statePtr==0", FRONT));
    init(2, nullptr, -1, &live);
    EXPECT_EQ(reports.take(), badArgument(func, "tapVals==0", FRONT));
    init(2, taps.data(), -1, &live);
    EXPECT_EQ(reports.take(), badArgument(func, "order < 0", FRONT));
    for (int iirType : {2, -1, INT_MAX, INT_MIN}) {
        init(iirType, taps.data(), 0, &live);
        EXPECT_EQ(reports.take(), badArgument(func, "iirType is out of range", FRONT));
    }
    init(0, taps.data(), 0, &live);
    EXPECT_EQ(reports.take(), badArgument(func, LIVE, FRONT));
    EXPECT_EQ(rvxGetErrStatus(), RVX_STATUS_BAD_ARGUMENT);
    EXPECT_EQ(live.tapSt.taps, nullptr);
}

TYPED_TEST(IirState, CascadeInitialiserChecksItsArgumentsInOrder)
{
    Reports reports;
    const auto taps = someTaps<TypeParam>();
    const auto init = TypeParam::initBq;
    const char *func = TypeParam::initBqName;
    rvxIirState live = {};
    live.dlySt.initMark = RVX_IIR_INIT_MARK;
    init(2, nullptr, 0, nullptr);
    EXPECT_EQ(reports.take(), badArgument(func, "statePtr==0", FRONT));
    init(2, nullptr, 0, &live);
    EXPECT_EQ(reports.take(), badArgument(func, "tapVals==0", FRONT));
    for (int numQuads : {0, -1, INT_MIN}) {
        init(2, taps.data(), numQuads, &live);
        EXPECT_EQ(reports.take(), badArgument(func, "numQuads <= 0", FRONT));
    }
    for (int iirType : {2, -1}) {
        init(iirType, taps.data(), 1, &live);
        EXPECT_EQ(reports.take(), badArgument(func, "iirType is out of range", FRONT));
    }
    init(0, taps.data(), 1, &live);
    EXPECT_EQ(reports.take(), badArgument(func, LIVE, FRONT));
}

TYPED_TEST(IirState, InitialiserLeavesTheRecordItDescribes)
{
    using Tap = typename TypeParam::Tap;
    Reports reports;
    for (int iirType : {0, 1})
        for (int order : {0, 1, 2, 9}) {
            const std::vector<Tap> taps = tapsFor<Tap>(0, order, 31);
            const std::vector<Tap> before = taps;
            rvxIirState state = {};
            TypeParam::init(iirType, taps.data(), order, &state);
            EXPECT_EQ(state.tapSt.order, order);
            EXPECT_EQ(state.tapSt.iirType, iirType);
            EXPECT_EQ(state.tapSt.mode, 0);
            EXPECT_EQ(state.dlySt.initMark, 31725);
            EXPECT_NE(state.tapSt.taps, taps.data());
            EXPECT_EQ(std::memcmp(taps.data(), before.data(), taps.size() * sizeof(Tap)), 0);
            const auto *d = static_cast<const typename TypeParam::Out *>(state.dlySt.dlyl);
            for (int i = 0; i < order; ++i)
                EXPECT_TRUE(isZero(d[i]));
            rvxIirFree(&state);
            EXPECT_EQ(state.dlySt.initMark, 0);
        }
    const std::vector<Tap> taps = tapsFor<Tap>(2, 3, 32);
    rvxIirState state = {};
    TypeParam::initBq(1, taps.data(), 3, &state);
    EXPECT_EQ(state.tapSt.order, 6);
    EXPECT_EQ(state.tapSt.iirType, 1);
    EXPECT_EQ(state.tapSt.mode, 2);
    EXPECT_EQ(state.dlySt.initMark, 31725);
    rvxIirFree(&state);
    EXPECT_TRUE(reports.take().empty());
}

TYPED_TEST(IirState, EachFailedAllocationIsReportedAndNothingStays)
{
    Reports reports;
    const auto taps = someTaps<TypeParam>();
    for (int failing : {1, 2})
        for (int mode : {0, 2}) {
            rvxSetErrStatus(0);
            rvxIirState state = {};
            state.dlySt.initMark = 5;
            long asked, live;
            {
                AllocationWatch watch(failing);
                (mode == 0 ? TypeParam::init : TypeParam::initBq)(0, taps.data(), 2, &state);
                asked = watch.allocations();
                AllocationPause pause;
                const Expected expected = {{RVX_STATUS_NO_MEMORY,
                                            mode == 0 ? TypeParam::initName : TypeParam::initBqName,
                                            "insufficiency of memory for IIR filter state", FRONT}};
                EXPECT_EQ(reports.take(), expected);
            }
            EXPECT_GE(asked, 2); // the second is asked for although the first failed
            {
                AllocationWatch watch(failing);
                rvxSetErrStatus(0);
                (mode == 0 ? TypeParam::init : TypeParam::initBq)(0, taps.data(), 2, &state);
                AllocationPause pause;
                reports.take();
                live = watch.live();
            }
            EXPECT_EQ(live, 0);
            EXPECT_EQ(state.dlySt.initMark, 5);
        }
}

// How often an initialiser asks for memory on a machine that has none.
template <typename Family>
long asked(Shape shape, const std::vector<typename Family::Tap> &taps)
{
    rvxIirState state = {};
    AllocationWatch watch;
    watch.failAllFrom(1);
    (shape.mode == 0 ? Family::init : Family::initBq)(0, taps.data(), shape.len, &state);
    EXPECT_EQ(state.dlySt.initMark, 0);
    return watch.allocations();
}

TYPED_TEST(IirState, LengthsBeyondInt32AreMissingMemoryThatIsNotAskedFor)
{
    Reports reports;
    const auto taps = someTaps<TypeParam>();
    const struct {
        Shape shape;
        long taps, delayLine; // 1 where the length is in range
    } lengths[] = {{{0, (INT_MAX - 1) / 2 - 1}, 1, 1},
                   {{0, (INT_MAX - 1) / 2}, 0, 1},
                   {{0, INT_MAX}, 0, 1},
                   {{2, INT_MAX / 6}, 1, 1},
                   {{2, INT_MAX / 6 + 1}, 0, 1},
                   {{2, INT_MAX / 2}, 0, 1},
                   {{2, INT_MAX / 2 + 1}, 0, 0},
                   {{2, (INT_MAX / 3) * 2}, 0, 0},
                   {{2, INT_MAX}, 0, 0}};
    for (const auto &length : lengths) {
        EXPECT_EQ(asked<TypeParam>(length.shape, taps), length.taps + length.delayLine)
            << length.shape;
        const char *func = length.shape.mode == 0 ? TypeParam::initName : TypeParam::initBqName;
        EXPECT_EQ(reports.take(),
                  (Expected{{RVX_STATUS_NO_MEMORY, func,
                             "insufficiency of memory for IIR filter state", FRONT}}));
    }
}

void setBoth(double *x, double re, double)
{
    *x = re;
}

void setBoth(ZCplx *z, double re, double im)
{
    *z = {re, im};
}

TYPED_TEST(IirState, ZeroLeadingTapIsRefusedAndReleased)
{
    using Tap = typename TypeParam::Tap;
    Reports reports;
    for (double re : {0.0, -0.0, QUIET})
        for (double im : {0.0, QUIET})
            for (int mode : {0, 2})
                for (int at : mode == 0 ? std::vector<int>{4} : std::vector<int>{0, 3, 12, 15}) {
                    std::vector<Tap> taps = tapsFor<Tap>(mode, 3, 33);
                    setBoth(&taps[static_cast<std::size_t>(at)], re, im);
                    rvxIirState state = {};
                    rvxSetErrStatus(0);
                    long live;
                    {
                        AllocationWatch watch;
                        (mode == 0 ? TypeParam::init : TypeParam::initBq)(0, taps.data(), 3,
                                                                          &state);
                        AllocationPause pause;
                        const Expected expected =
                            mode == 0
                                ? Expected{bad(TypeParam::lowInitName, "taps[order+1] equals zero"),
                                           backtrace(TypeParam::initName)}
                                : Expected{bad(TypeParam::lowInitBqName, "taps[?] equals zero"),
                                           backtrace(TypeParam::initBqName)};
                        EXPECT_EQ(reports.take(), expected);
                    }
                    EXPECT_EQ(rvxGetErrStatus(), RVX_STATUS_BAD_ARGUMENT);
                    EXPECT_EQ(state.dlySt.initMark, 0);
                    {
                        rvxSetErrStatus(0);
                        AllocationWatch watch;
                        (mode == 0 ? TypeParam::init : TypeParam::initBq)(0, taps.data(), 3,
                                                                          &state);
                        AllocationPause pause;
                        reports.take();
                        live = watch.live();
                    }
                    EXPECT_EQ(live, 0);
                }
}

TEST(IirInit, ComplexLeadingTapNeedsOneGoodPartAlone)
{
    Reports reports;
    const ZCplx taps[] = {{1.0, 0.0}, {0.0, 2.0}};
    rvxIirState state = {};
    rvxzIirInit(0, taps, 0, &state);
    const ZCplx y = rvxzIir(&state, {6.0, 0.0});
    EXPECT_EQ(y.re, 0.0);
    EXPECT_EQ(y.im, -3.0);
    rvxIirFree(&state);
    EXPECT_TRUE(reports.take().empty());
}

TEST(IirInit, ZeroB0IsFineInDirectForm)
{
    Reports reports;
    const double taps[] = {0.0, 1.0, 2.0, 0.0};
    rvxIirState state = {};
    rvxdIirInit(0, taps, 1, &state);
    EXPECT_EQ(rvxdIir(&state, 4.0), 0.0);
    EXPECT_EQ(rvxdIir(&state, 0.0), 2.0);
    rvxIirFree(&state);
    EXPECT_TRUE(reports.take().empty());
}

// ---------------------------------------------------------------------------
// Live and dead records.

TYPED_TEST(IirState, SecondInitialisationIsRefusedAndTheFilterGoesOn)
{
    using Tap = typename TypeParam::Tap;
    Reports reports;
    const std::vector<Tap> taps = tapsFor<Tap>(0, 5, 34);
    const auto x = IirSource(35).make<typename TypeParam::Sample>(20);
    rvxIirState state = {}, other = {};
    TypeParam::init(0, taps.data(), 5, &state);
    TypeParam::init(0, taps.data(), 5, &other);
    for (std::size_t i = 0; i < x.size(); ++i) {
        if (i == 7) {
            TypeParam::initBq(0, taps.data(), 2, &state);
            EXPECT_EQ(reports.take(), badArgument(TypeParam::initBqName, LIVE, FRONT));
            rvxSetErrStatus(0);
        }
        const auto y = TypeParam::one(&state, x[i]);
        const auto expected = TypeParam::one(&other, x[i]);
        EXPECT_EQ(std::memcmp(&y, &expected, sizeof y), 0);
    }
    rvxIirFree(&state);
    rvxIirFree(&other);
    EXPECT_TRUE(reports.take().empty());
}

TYPED_TEST(IirState, FreeReleasesAllAndRecordsMayBeUsedAgain)
{
    Reports reports;
    const auto taps = someTaps<TypeParam>();
    long live;
    {
        AllocationWatch watch;
        rvxIirState state = {};
        for (int round = 0; round < 3; ++round) {
            TypeParam::init(0, taps.data(), round, &state);
            rvxIirFree(&state);
            TypeParam::initBq(0, taps.data(), round + 1, &state);
            rvxIirFree(&state);
        }
        live = watch.live();
    }
    EXPECT_EQ(live, 0);
    EXPECT_TRUE(reports.take().empty());
}

TYPED_TEST(IirState, DeadRecordIsRefusedByEveryFunction)
{
    Reports reports;
    rvxIirState state;
    std::memset(&state, 0x5a, sizeof state); // neither live nor cleared
    const rvxIirState before = state;
    const typename TypeParam::Sample x[1] = {};
    typename TypeParam::Out y[1];
    std::memset(y, 0x11, sizeof y);
    const typename TypeParam::Out untouched = y[0];
    EXPECT_TRUE(isZero(TypeParam::one(nullptr, x[0])));
    EXPECT_EQ(reports.take(), badArgument(TypeParam::oneName, "statePtr==0", FRONT));
    EXPECT_TRUE(isZero(TypeParam::one(&state, x[0])));
    EXPECT_EQ(reports.take(), badArgument(TypeParam::oneName, DEAD, FRONT));
    TypeParam::block(nullptr, nullptr, nullptr, -1);
    EXPECT_EQ(reports.take(), badArgument(TypeParam::blockName, "statePtr==0", FRONT));
    TypeParam::block(&state, x, y, 1);
    EXPECT_EQ(reports.take(), badArgument(TypeParam::blockName, DEAD, FRONT));
    EXPECT_EQ(std::memcmp(&y[0], &untouched, sizeof untouched), 0);
    rvxIirFree(nullptr);
    EXPECT_EQ(reports.take(), badArgument("rvxIirFree", "statePtr==0", FRONT));
    rvxIirFree(&state);
    EXPECT_EQ(reports.take(), badArgument("rvxIirFree", DEAD, FRONT));
    EXPECT_EQ(std::memcmp(&state, &before, sizeof state), 0);
}

TYPED_TEST(IirState, FreeingTwiceReleasesOnce)
{
    Reports reports;
    const auto taps = someTaps<TypeParam>();
    rvxIirState state = {};
    TypeParam::init(0, taps.data(), 2, &state);
    rvxIirFree(&state);
    rvxIirFree(&state);
    EXPECT_EQ(reports.take(), badArgument("rvxIirFree", DEAD, FRONT));
}

// ---------------------------------------------------------------------------
// Blocks that fail, and blocks of nothing.

template <typename Family>
void seedDelayLine(rvxIirState *state)
{
    for (int i = 0; i < 5; ++i)
        Family::one(state, IirSource(static_cast<unsigned>(i)).make<typename Family::Sample>(1)[0]);
}

template <typename Family>
std::vector<unsigned char> delayBytes(const rvxIirState &state)
{
    const auto *d = static_cast<const unsigned char *>(state.dlySt.dlyl);
    const auto bytes = static_cast<std::size_t>(state.tapSt.order) * sizeof(typename Family::Out);
    return std::vector<unsigned char>(d, d + bytes);
}

TYPED_TEST(IirState, BlockReportsAllThatIsWrongInAGroup)
{
    Reports reports;
    const auto taps = someTaps<TypeParam>();
    rvxIirState state = {};
    TypeParam::init(0, taps.data(), 3, &state);
    const typename TypeParam::Sample x[2] = {};
    typename TypeParam::Out y[2];
    const char *low = TypeParam::lowBlockName;
    const Report passedOn = backtrace(TypeParam::blockName);
    TypeParam::block(&state, nullptr, nullptr, -1);
    EXPECT_EQ(reports.take(),
              (Expected{bad(low, "inSamps==0"), bad(low, "outSamps==0"), passedOn}));
    rvxSetErrStatus(0);
    TypeParam::block(&state, nullptr, y, 1);
    EXPECT_EQ(reports.take(), (Expected{bad(low, "inSamps==0"), passedOn}));
    rvxSetErrStatus(0);
    TypeParam::block(&state, x, nullptr, 1);
    EXPECT_EQ(reports.take(), (Expected{bad(low, "outSamps==0"), passedOn}));
    rvxSetErrStatus(0);
    TypeParam::block(&state, x, y, -1);
    EXPECT_EQ(reports.take(), (Expected{bad(low, "numIters < 0"), passedOn}));
    EXPECT_EQ(rvxGetErrStatus(), RVX_STATUS_BAD_ARGUMENT);
    rvxIirFree(&state);
}

TYPED_TEST(IirState, NoSamplesAreOneSampleButForOrders0And1)
{
    using Tap = typename TypeParam::Tap;
    using Out = typename TypeParam::Out;
    Reports reports;
    for (Shape shape : allShapes()) {
        const std::vector<Tap> taps = tapsFor<Tap>(shape.mode, shape.len, 36);
        const auto init = shape.mode == 0 ? TypeParam::init : TypeParam::initBq;
        rvxIirState state = {}, other = {};
        init(0, taps.data(), shape.len, &state);
        init(0, taps.data(), shape.len, &other);
        seedDelayLine<TypeParam>(&state);
        seedDelayLine<TypeParam>(&other);
        const auto x = IirSource(37).make<typename TypeParam::Sample>(1);
        Guarded<Out> y(1);
        Out expected = y[0];
        if (shape.mode == 2 || shape.len >= 2)
            expected = TypeParam::one(&other, x[0]);
        TypeParam::block(&state, x.data(), y.data(), 0);
        EXPECT_EQ(std::memcmp(&y[0], &expected, sizeof expected), 0) << shape;
        EXPECT_EQ(delayBytes<TypeParam>(state), delayBytes<TypeParam>(other)) << shape;
        EXPECT_TRUE(y.intact());
        rvxIirFree(&state);
        rvxIirFree(&other);
    }
    EXPECT_TRUE(reports.take().empty());
}

// ---------------------------------------------------------------------------
// A status from before the call.

TYPED_TEST(IirState, InitialiserFailsUnderAnyStatusFromBefore)
{
    Reports reports;
    const auto taps = someTaps<TypeParam>();
    for (int stale : {-5, -1, -1000, 1, 7})
        for (int mode : {0, 2}) {
            rvxIirState state = {};
            rvxSetErrStatus(stale);
            (mode == 0 ? TypeParam::init : TypeParam::initBq)(0, taps.data(), 2, &state);
            EXPECT_EQ(reports.take(),
                      Expected{backtrace(mode == 0 ? TypeParam::initName : TypeParam::initBqName)});
            EXPECT_EQ(rvxGetErrStatus(), stale);
            EXPECT_EQ(state.dlySt.initMark, 0);
        }
}

TYPED_TEST(IirState, NegativeStatusFromBeforeStopsSamplesAndBlocks)
{
    using Out = typename TypeParam::Out;
    Reports reports;
    const auto taps = someTaps<TypeParam>();
    for (int mode : {0, 2}) {
        rvxSetErrStatus(0);
        rvxIirState state = {};
        (mode == 0 ? TypeParam::init : TypeParam::initBq)(0, taps.data(), 2, &state);
        seedDelayLine<TypeParam>(&state);
        const auto before = delayBytes<TypeParam>(state);
        const auto x = IirSource(38).make<typename TypeParam::Sample>(4);
        Guarded<Out> y(4);
        const std::vector<Out> untouched = y.values();
        rvxSetErrStatus(-4);
        EXPECT_TRUE(isZero(TypeParam::one(&state, x[0])));
        EXPECT_TRUE(reports.take().empty());
        TypeParam::block(&state, x.data(), y.data(), 4);
        EXPECT_EQ(reports.take(), Expected{backtrace(TypeParam::blockName)});
        // The first group is still looked at, the second is not.
        TypeParam::block(&state, x.data(), y.data(), -1);
        EXPECT_EQ(reports.take(), Expected{backtrace(TypeParam::blockName)});
        EXPECT_EQ(rvxGetErrStatus(), -4);
        TypeParam::block(&state, nullptr, y.data(), -1);
        EXPECT_EQ(reports.take(), (Expected{bad(TypeParam::lowBlockName, "inSamps==0"),
                                            backtrace(TypeParam::blockName)}));
        EXPECT_EQ(rvxGetErrStatus(), RVX_STATUS_BAD_ARGUMENT);
        EXPECT_EQ(std::memcmp(y.data(), untouched.data(), 4 * sizeof(Out)), 0);
        EXPECT_EQ(delayBytes<TypeParam>(state), before);
        rvxIirFree(&state);
        EXPECT_EQ(state.dlySt.initMark, 0);
        EXPECT_TRUE(reports.take().empty());
    }
}

TYPED_TEST(IirState, PositiveStatusFromBeforeStopsNothingAndIsPassedOnByBlocks)
{
    using Out = typename TypeParam::Out;
    Reports reports;
    const auto taps = someTaps<TypeParam>();
    rvxIirState state = {}, other = {};
    TypeParam::init(0, taps.data(), 2, &state);
    TypeParam::init(0, taps.data(), 2, &other);
    const auto x = IirSource(39).make<typename TypeParam::Sample>(4);
    Out y[4], expected[4];
    TypeParam::block(&other, x.data(), expected, 4);
    const Out nextExpected = TypeParam::one(&other, x[0]);
    rvxSetErrStatus(3);
    TypeParam::block(&state, x.data(), y, 4);
    EXPECT_EQ(reports.take(), Expected{backtrace(TypeParam::blockName)});
    EXPECT_EQ(std::memcmp(y, expected, sizeof y), 0);
    const Out next = TypeParam::one(&state, x[0]);
    EXPECT_EQ(std::memcmp(&next, &nextExpected, sizeof next), 0);
    EXPECT_FALSE(isZero(next));
    EXPECT_TRUE(reports.take().empty());
    EXPECT_EQ(rvxGetErrStatus(), 3);
    rvxIirFree(&state);
    rvxIirFree(&other);
}

TEST(IirDeath, FailedChecksEndTheProcessInModeZero)
{
    const double taps[] = {1.0, 0.0};
    rvxIirState state = {};
    EXPECT_EXIT(rvxdIirInit(0, nullptr, 0, &state), ::testing::ExitedWithCode(1), "");
    EXPECT_EXIT(rvxdIirInit(0, taps, 0, &state), ::testing::ExitedWithCode(1), "");
    EXPECT_EXIT(rvxdIir(&state, 1.0), ::testing::ExitedWithCode(1), "");
    EXPECT_EXIT(rvxIirFree(&state), ::testing::ExitedWithCode(1), "");
}

} // namespace
