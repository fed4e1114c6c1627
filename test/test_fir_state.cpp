// FIR filters: their checks, memory and lives.

#include <climits>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "rvx.h"
#include "support/allocations.h"
#include "support/fir_families.h"
#include "support/guarded.h"
#include "support/reports.h"

namespace {

template <typename Family>
class FirState : public ::testing::Test {
protected:
    std::vector<Report> refused(const std::string &func, const char *context)
    {
        return badArgument(func.c_str(), context, "rvxfirh");
    }

    Reports reports;
    Noise noise{2};
};

TYPED_TEST_SUITE(FirState, AllFamilies, FamilyNames);

TYPED_TEST(FirState, SingleRateChecksInOrder)
{
    const std::string name = initName<TypeParam>();
    rvxFirState state = {};
    TypeParam::init(nullptr, 0, nullptr, nullptr);
    EXPECT_EQ(this->reports.take(), this->refused(name, "Null state pointer"));
    for (int tapsLen : {0, -1, INT_MIN}) {
        TypeParam::init(nullptr, tapsLen, nullptr, &state);
        EXPECT_EQ(this->reports.take(), this->refused(name, "Invalid value"));
    }
    EXPECT_EQ(state.self, nullptr);
}

TYPED_TEST(FirState, MultiRateChecksInOrder)
{
    const std::string name = initMrName<TypeParam>();
    TypeParam::initMr(nullptr, 0, nullptr, 0, 0, 0, 0, nullptr);
    EXPECT_EQ(this->reports.take(), this->refused(name, "Null state pointer"));
    // tapsLen, upFactor, upPhase, downFactor, downPhase; one of them bad
    const int bad[][5] = {{4, 0, 0, 1, 0},  {4, -2, 0, 1, 0}, {4, 1, 0, 0, 0},  {4, 1, 0, -1, 0},
                          {4, 2, -1, 2, 0}, {4, 2, 2, 2, 0},  {4, 2, 0, 2, -1}, {4, 2, 0, 2, 2},
                          {0, 2, 0, 2, 0},  {-1, 1, 0, 1, 0}, {4, 1, 1, 1, 0},  {4, 1, 0, 1, 1}};
    rvxFirState state = {};
    for (const int *a : bad) {
        TypeParam::initMr(nullptr, a[0], nullptr, a[1], a[2], a[3], a[4], &state);
        EXPECT_EQ(this->reports.take(), this->refused(name, "Invalid value"))
            << a[0] << " " << a[1] << " " << a[2] << " " << a[3] << " " << a[4];
        EXPECT_EQ(state.self, nullptr);
    }
}

TYPED_TEST(FirState, OneSampleChecksInOrder)
{
    using Out = typename TypeParam::Out;
    const std::string name = oneName<TypeParam>();
    const Out zero = {};
    Out out = TypeParam::one(nullptr, {});
    EXPECT_EQ(this->reports.take(), this->refused(name, "Null state pointer"));
    EXPECT_EQ(std::memcmp(&out, &zero, sizeof out), 0);
    rvxFirState state;
    std::memset(&state, 0xa5, sizeof state);
    const rvxFirState before = state;
    out = TypeParam::one(&state, {});
    EXPECT_EQ(this->reports.take(), this->refused(name, "Must have been initialized"));
    EXPECT_EQ(std::memcmp(&out, &zero, sizeof out), 0);
    EXPECT_EQ(std::memcmp(&state, &before, sizeof state), 0);
}

TYPED_TEST(FirState, BlockChecksInOrder)
{
    using Sample = typename TypeParam::Sample;
    using Out = typename TypeParam::Out;
    const std::string name = blockName<TypeParam>();
    const Sample in[4] = {};
    Guarded<Out> out(4);
    const auto before = out.values();
    rvxFirState dead;
    std::memset(&dead, 0xa5, sizeof dead);
    TypeParam::block(nullptr, nullptr, nullptr, 0);
    EXPECT_EQ(this->reports.take(), this->refused(name, "Null state pointer"));
    TypeParam::block(&dead, nullptr, nullptr, 0);
    EXPECT_EQ(this->reports.take(), this->refused(name, "Must have been initialized"));

    Filter<TypeParam> filter(3, {}, this->noise);
    TypeParam::one(&filter.state, in[0]); // off the start of the buffer
    const rvxFirState live = filter.state;
    const auto window = filter.window();
    TypeParam::block(&filter.state, nullptr, out.data(), 4);
    EXPECT_EQ(this->reports.take(), this->refused(name, "Null buffer pointer"));
    TypeParam::block(&filter.state, in, nullptr, 4);
    EXPECT_EQ(this->reports.take(), this->refused(name, "Null buffer pointer"));
    // A null pointer is seen before the length.
    TypeParam::block(&filter.state, nullptr, out.data(), 0);
    EXPECT_EQ(this->reports.take(), this->refused(name, "Null buffer pointer"));
    TypeParam::block(&filter.state, in, nullptr, 0);
    EXPECT_EQ(this->reports.take(), this->refused(name, "Null buffer pointer"));
    for (int n : {0, -1, INT_MIN}) {
        TypeParam::block(&filter.state, in, out.data(), n);
        EXPECT_EQ(this->reports.take(), this->refused(name, "Invalid value"));
    }
    EXPECT_TRUE(sameBytes(out.values(), before));
    EXPECT_TRUE(sameBytes(filter.window(), window));
    EXPECT_EQ(std::memcmp(&filter.state, &live, sizeof live), 0);
}

TEST(FirFree, ChecksUnderItsOddName)
{
    Reports reports;
    rvxFirFree(nullptr);
    EXPECT_EQ(reports.take(), badArgument("rvxFirrvxFree", "Null state pointer", "rvxfirh"));
    rvxFirState state;
    std::memset(&state, 0xa5, sizeof state);
    rvxFirFree(&state);
    EXPECT_EQ(reports.take(),
              badArgument("rvxFirrvxFree", "Must have been initialized", "rvxfirh"));
}

TEST(FirFree, TwiceIsRefused)
{
    Reports reports;
    rvxFirState state = {};
    rvxdFirInitMr(nullptr, 4, nullptr, 2, 0, 1, 0, &state);
    const void *taps = state.taps, *base = state.dlylBase, *end = state.dlylEnd;
    rvxFirFree(&state);
    EXPECT_EQ(state.self, nullptr);
    EXPECT_EQ(state.phaseTable, nullptr);
    EXPECT_EQ(state.taps, taps);
    EXPECT_EQ(state.dlylBase, base);
    EXPECT_EQ(state.dlylEnd, end);
    EXPECT_TRUE(reports.take().empty());
    rvxFirFree(&state);
    EXPECT_EQ(reports.take(),
              badArgument("rvxFirrvxFree", "Must have been initialized", "rvxfirh"));
}

TEST(FirFree, CopyOfARecordIsNotLive)
{
    Reports reports;
    rvxFirState state = {};
    rvxdFirInit(nullptr, 4, nullptr, &state);
    rvxFirState copy = state;
    rvxFirFree(&copy);
    EXPECT_EQ(reports.take(),
              badArgument("rvxFirrvxFree", "Must have been initialized", "rvxfirh"));
    rvxFirFree(&state);
    EXPECT_TRUE(reports.take().empty());
}

TYPED_TEST(FirState, LiveStateIsReleasedByAnyInitialiser)
{
    AllocationWatch watch;
    rvxFirState state = {};
    rvxzFirInitMr(nullptr, 40, nullptr, 3, 0, 2, 0, &state);
    EXPECT_EQ(watch.live(), 3);
    TypeParam::init(nullptr, 10, nullptr, &state);
    EXPECT_EQ(watch.live(), 2);
    TypeParam::initMr(nullptr, 10, nullptr, 1, 0, 2, 0, &state);
    EXPECT_EQ(watch.live(), 3);
    rvxFirFree(&state);
    EXPECT_EQ(watch.live(), 0);
}

TYPED_TEST(FirState, RefusedInitialiserLeavesTheLiveFilterWorking)
{
    for (const reference::FirRates &rates :
         {reference::FirRates{}, reference::FirRates{2, 1, 3, 2}}) {
        Filter<TypeParam> filter(9, rates, this->noise);
        const rvxFirState before = filter.state;
        TypeParam::init(nullptr, 0, nullptr, &filter.state);
        const int bad[][5] = {{4, 0, 0, 1, 0},  {4, 1, 0, 0, 0}, {4, 2, 2, 1, 0}, {4, 2, -1, 1, 0},
                              {4, 1, 0, 2, -1}, {4, 1, 0, 2, 2}, {0, 2, 1, 2, 1}};
        for (const int *a : bad)
            TypeParam::initMr(nullptr, a[0], nullptr, a[1], a[2], a[3], a[4], &filter.state);
        EXPECT_EQ(this->reports.take().size(), 8u);
        EXPECT_EQ(std::memcmp(&filter.state, &before, sizeof before), 0);
        const auto in = this->noise.template block<typename TypeParam::Sample>(30);
        const int steps = 30 / rates.down;
        std::vector<typename TypeParam::Out> out(static_cast<std::size_t>(steps * rates.up));
        TypeParam::block(&filter.state, in.data(), out.data(), steps);
        EXPECT_TRUE(sameBytes(out, filter.expected(in)));
    }
}

TYPED_TEST(FirState, EveryFailedAllocationIsReportedAndLeavesNothing)
{
    const std::vector<Report> single = {
        {RVX_STATUS_NO_MEMORY, initName<TypeParam>(), "Allocation failure", "rvxfirh"}};
    const std::vector<Report> multi = {
        {RVX_STATUS_NO_MEMORY, initMrName<TypeParam>(), "Allocation failure", "rvxfirh"}};
    for (bool isMulti : {false, true}) {
        for (long k = 1; k <= (isMulti ? 3 : 2); ++k) {
            rvxFirState state = {};
            TypeParam::init(nullptr, 5, nullptr, &state);
            {
                AllocationWatch watch(k);
                if (isMulti)
                    TypeParam::initMr(nullptr, 20, nullptr, 2, 0, 3, 0, &state);
                else
                    TypeParam::init(nullptr, 20, nullptr, &state);
                EXPECT_EQ(watch.failures(), 1) << k;
                EXPECT_EQ(watch.live(), -2) << k; // those of the filter before
            }
            EXPECT_EQ(this->reports.take(), isMulti ? multi : single) << k;
            EXPECT_EQ(state.self, nullptr);
            EXPECT_EQ(state.phaseTable, nullptr);
            rvxFirFree(&state);
            EXPECT_EQ(this->reports.take(),
                      this->refused("rvxFirrvxFree", "Must have been initialized"));
        }
    }
}

// What stands in a record that never was live is no pointer to release.
TYPED_TEST(FirState, FailedAllocationsReleaseNothingOfAnUnknownRecord)
{
    const auto taps = this->noise.template block<typename TypeParam::Tap>(20);
    for (long k = 1; k <= 3; ++k) {
        rvxFirState state;
        std::memset(&state, 0xa5, sizeof state);
        {
            AllocationWatch watch(k);
            TypeParam::initMr(taps.data(), 20, nullptr, 2, 0, 3, 0, &state);
            EXPECT_EQ(watch.failures(), 1) << k;
            EXPECT_EQ(watch.live(), 0) << k;
        }
        EXPECT_EQ(rvxGetErrStatus(), RVX_STATUS_NO_MEMORY);
        EXPECT_EQ(this->reports.take().size(), 1u);
        EXPECT_EQ(state.self, nullptr);
        // The record serves again as soon as there is memory.
        TypeParam::init(taps.data(), 20, nullptr, &state);
        EXPECT_EQ(state.self, &state);
        EXPECT_TRUE(this->reports.take().empty());
        rvxFirFree(&state);
    }
}

TYPED_TEST(FirState, LengthsBeyondAnyMemoryAreReported)
{
    const std::vector<Report> single = {
        {RVX_STATUS_NO_MEMORY, initName<TypeParam>(), "Allocation failure", "rvxfirh"}};
    const std::vector<Report> multi = {
        {RVX_STATUS_NO_MEMORY, initMrName<TypeParam>(), "Allocation failure", "rvxfirh"}};
    rvxFirState state = {};
    TypeParam::init(nullptr, INT_MAX, nullptr, &state);
    EXPECT_EQ(this->reports.take(), single);
    EXPECT_EQ(state.self, nullptr);
    const int factors[][2] = {{INT_MAX, INT_MAX}, {1, INT_MAX}, {INT_MAX, 1}, {2, 1 << 30}};
    for (const int *f : factors) {
        for (int tapsLen : {1, 100, INT_MAX}) {
            TypeParam::initMr(nullptr, tapsLen, nullptr, f[0], f[0] - 1, f[1], f[1] - 1, &state);
            EXPECT_EQ(this->reports.take(), multi) << f[0] << " " << f[1] << " " << tapsLen;
            EXPECT_EQ(state.self, nullptr);
        }
    }
}

TYPED_TEST(FirState, CallsAllocateNothing)
{
    Filter<TypeParam> filter(40, {}, this->noise);
    const auto in = this->noise.template block<typename TypeParam::Sample>(300);
    std::vector<typename TypeParam::Out> out(300);
    AllocationWatch watch;
    TypeParam::block(&filter.state, in.data(), out.data(), 300);
    for (int i = 0; i < 200; ++i)
        TypeParam::one(&filter.state, in[0]);
    EXPECT_EQ(watch.allocations(), 0);
}

// What one-sample calls give on a multi-rate state means nothing, but they stay
// inside its arrays, and blocks go on working on the start of the buffer.
TYPED_TEST(FirState, OneSampleCallsOnMultiRateStatesStayInside)
{
    using Sample = typename TypeParam::Sample;
    for (int up : {1, 2, 5}) {
        for (int down : {2, 3}) {
            for (int tapsLen : {1, 4, 150, 400}) {
                Filter<TypeParam> filter(tapsLen, {up, 0, down, 0}, this->noise);
                const Sample *base = static_cast<Sample *>(filter.state.dlylBase);
                const auto in = this->noise.template block<Sample>(1000);
                for (const Sample &x : in) {
                    TypeParam::one(&filter.state, x);
                    const auto at = static_cast<Sample *>(filter.state.dlylCur) - base;
                    ASSERT_TRUE(at >= 0 && at < filter.state.bufLen);
                }
                std::vector<typename TypeParam::Out> out(static_cast<std::size_t>(20 * up));
                filter.past = taken<Sample>(filter.state.dlylBase, filter.state.dlylLen);
                const std::vector<Sample> block(in.begin(), in.begin() + 20 * down);
                TypeParam::block(&filter.state, block.data(), out.data(), 20);
                EXPECT_TRUE(sameBytes(out, filter.expected(block)));
                EXPECT_EQ(filter.state.dlylCur, filter.state.dlylBase);
            }
        }
    }
    EXPECT_TRUE(this->reports.take().empty());
}

TEST(FirDeath, FailedChecksEndTheProcessInModeZero)
{
    rvxSetErrMode(0);
    rvxFirState state = {};
    const double x[1] = {};
    double y[1];
    EXPECT_EXIT(rvxdFirInit(x, 0, nullptr, &state), ::testing::ExitedWithCode(1), "");
    EXPECT_EXIT(rvxdFirInitMr(x, 1, nullptr, 0, 0, 1, 0, &state), ::testing::ExitedWithCode(1), "");
    EXPECT_EXIT(rvxdFirInit(x, INT_MAX, nullptr, &state), ::testing::ExitedWithCode(1), "");
    EXPECT_EXIT(rvxdFir(&state, 1.0), ::testing::ExitedWithCode(1), "");
    EXPECT_EXIT(rvxdbFir(&state, x, y, 1), ::testing::ExitedWithCode(1), "");
    EXPECT_EXIT(rvxFirFree(&state), ::testing::ExitedWithCode(1), "");
}

} // namespace
