// What the fronts of the complex Fourier transforms promise beside their values:
// their checks, and the tables that they build and release.

#include <chrono>
#include <climits>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "frame/rvxbuffer.h"
#include "frame/rvxthread.h"
#include "rvx.h"
#include "support/allocations.h"
#include "support/complex_fronts.h"
#include "support/held_tables.h"
#include "support/reports.h"
#include "transform/rvxtwd.h"

// ---- checks -----------------------------------------------------------------------

namespace {

// Calls with the pointers from the nullAt-th on (from 1) null; 0 has none null.
void call(Front front, Signal &data, int order, int flags, int nullAt = 0)
{
    double *p = &data[0].re;
    const auto pointer = [p, nullAt](int place) {
        return nullAt != 0 && place >= nullAt ? nullptr : p + 32 * (place - 1);
    };
    if (front == Front::inPlace)
        rvxzFft(reinterpret_cast<ZCplx *>(pointer(1)), order, flags);
    else if (front == Front::notInPlace)
        rvxzFftNip(reinterpret_cast<ZCplx *>(pointer(1)), reinterpret_cast<ZCplx *>(pointer(2)),
                   order, flags);
    else
        rvxzrFftNip(pointer(1), pointer(2), pointer(3), pointer(4), order, flags);
}

std::vector<const char *> pointerNames(Front front)
{
    if (front == Front::inPlace)
        return {"samps==0"};
    if (front == Front::notInPlace)
        return {"inSamps==0", "outSamps==0"};
    return {"reInSamps==0", "imInSamps==0", "reOutSamps==0", "imOutSamps==0"};
}

} // namespace

TEST(FftChecks, OrderThenPointersThenFlags)
{
    for (Front front : fronts) {
        Reports reports;
        const Signal before = noise(64, 21);
        Signal data = before;
        const auto expect = [&](int order, int flags, int nullAt, const char *context) {
            call(front, data, order, flags, nullAt);
            EXPECT_EQ(reports.take(), badArgument(nameOf(front), context, "rvxfftd"));
            EXPECT_EQ(rvxGetErrStatus(), RVX_STATUS_BAD_ARGUMENT);
            EXPECT_TRUE(sameBits(data, before));
        };
        expect(-1, 3, 1, "order<0");
        expect(INT_MIN, 4, 1, "order<0");
        expect(32, 3, 1, "order>31");
        expect(INT_MAX, 4, 1, "order>31");
        const auto names = pointerNames(front);
        for (std::size_t i = 0; i < names.size(); ++i)
            expect(4, 3, static_cast<int>(i) + 1, names[i]);
        expect(4, 3 | 64 | 128 | 32, 0, "(flags & 1) && (flags & 2)");
        expect(4, 0 | 64 | 128 | 32, 0, "(flags & 1)==0 && (flags & 2)==0");
        expect(4, 32, 0, "(flags & 1)==0 && (flags & 2)==0");
        expect(4, 1 | 64 | 128 | 32, 0, "(flags & 64) && (flags & 128)");
        expect(4, 2 | 64 | 128, 0, "(flags & 64) && (flags & 128)");
        expect(4, 1 | 64 | 32, 0, "(flags & 64) && (flags & 32)");
        expect(4, 2 | 128 | 32, 0, "(flags & 32) && (flags & 128)");
        expect(0, 0, 0, "(flags & 1)==0 && (flags & 2)==0");
        expect(0, 1, 1, names[0]);
    }
}

TEST(FftChecks, AStaleStatusIsNeitherObeyedNorCleared)
{
    for (Front front : fronts) {
        Reports reports;
        rvxSetErrStatus(-5);
        const Signal x = noise(16, 22);
        const Signal out = transformed(front, x, 4, 1);
        EXPECT_EQ(rvxGetErrStatus(), -5);
        rvxSetErrStatus(0);
        EXPECT_TRUE(sameBits(out, transformed(front, x, 4, 1)));
        EXPECT_TRUE(reports.take().empty());
    }
}

TEST(FftChecksDeathTest, AFailedCheckEndsTheProcessInModeZero)
{
    Signal data(64);
    for (Front front : fronts)
        EXPECT_EXIT(
            {
                rvxSetErrMode(0);
                call(front, data, -1, 1);
            },
            ::testing::ExitedWithCode(1), "");
}

// ---- tables ---------------------------------------------------------------------

TEST(FftTables, AreThoseOfTheForm)
{
    for (Front front : fronts) {
        Signal data(64);
        const auto after = [&](int order, int flags) {
            rvxFreeFftTables();
            call(front, data, order, flags);
            return held();
        };
        EXPECT_EQ(after(4, 1), "B4 s4");
        EXPECT_EQ(after(4, 66), "B4 s4");
        EXPECT_EQ(after(4, 129), "C4 s4");
        EXPECT_EQ(after(0, 1), "B0 s0");
        EXPECT_EQ(after(0, 129), "C0 s0");
        EXPECT_EQ(after(10, 1 | 4), "A10 B9 s10");
        EXPECT_EQ(after(10, 129 | 4), "A10 C9 s10");
        EXPECT_EQ(after(10, 64 | 128 | 4), "A10 B9 s10");
    }
}

TEST(FftTables, WarmUpLooksAtNothingButTheOrder)
{
    for (Front front : fronts) {
        Reports reports;
        Signal data(64);
        for (int flags : {4, 4 | 3, 4 | 64 | 128 | 32}) {
            rvxFreeFftTables();
            call(front, data, 5, flags, 1);
            EXPECT_EQ(held(), "B5 s5");
        }
        call(front, data, 5, 4 | 128, 1);
        EXPECT_EQ(held(), "B5 C5 s5");
        EXPECT_TRUE(reports.take().empty());
        call(front, data, 32, 4, 1);
        EXPECT_EQ(reports.take(), badArgument(nameOf(front), "order>31", "rvxfftd"));
    }
}

TEST(FftTables, ARefusedCallHasBuiltItsTables)
{
    for (Front front : fronts) {
        Reports reports;
        Signal data(64);
        rvxFreeFftTables();
        call(front, data, 5, 1, 1);
        EXPECT_EQ(held(), "B5 s5");
        call(front, data, 4, 128, 0);
        EXPECT_EQ(held(), "B5 C4 s4 s5");
        EXPECT_EQ(reports.take().size(), 2u);
    }
}

TEST(FftTables, ReleaseWinsOverAllOtherBitsAndReportsNothing)
{
    for (Front front : fronts) {
        Reports reports;
        Signal data(64);
        for (int other : {0, 4, 1, 3, 4 | 32 | 64, 64 | 128, 0xff00}) {
            rvxFreeFftTables();
            rvxzFft(nullptr, 5, 4);
            rvxzFft(nullptr, 5, 132);
            rvxzFft(nullptr, 6, 4);
            call(front, data, 5, 8 | other, 1);
            EXPECT_EQ(held(), "B6 C5 s6") << other;
            call(front, data, 5, 8 | 128, 1);
            EXPECT_EQ(held(), "B6 s6");
        }
        for (int order : {-1, 32, 100})
            for (int flags : {8, 136})
                call(front, data, order, flags, 1);
        EXPECT_EQ(held(), "B6 s6");
        EXPECT_TRUE(reports.take().empty());
    }
}

TEST(FftTables, ReleaseTouchesSmallTable3)
{
    rvxThreadContext *context = rvxGetThreadContext();
    Signal data(64);
    for (Front front : fronts) {
        context->smallTable[3] = rvxAllocDoubles(1);
        context->smallTableKey[3] = 1;
        call(front, data, 5, 8);
        EXPECT_EQ(context->smallTable[3], nullptr);
        EXPECT_EQ(context->smallTableKey[3], 0u);
    }
}

TEST(FftTables, ReleaseAboveOrder9TakesTheFormsOrder9AndTheSharedTable)
{
    rvxzFft(nullptr, 11, 4);
    rvxzFft(nullptr, 11, 132);
    rvxzFft(nullptr, 12, 4);
    rvxzFft(nullptr, 11, 8);
    EXPECT_EQ(held(), "A12 C9 s12");
    // The form whose order 9 is gone builds it again.
    const Signal x = noise(1 << 12, 31);
    const Signal out = transformed(Front::inPlace, x, 12, 1);
    EXPECT_EQ(held(), "A12 B9 C9 s12");
    rvxFreeFftTables();
    EXPECT_TRUE(sameBits(out, transformed(Front::inPlace, x, 12, 1)));
}

TEST(FftTables, OneFailedAllocationCostsTheOtherTablesAndTheCallSucceeds)
{
    for (Front front : fronts)
        for (int order : {0, 1, 4, 9, 10, 14})
            for (int flags : {1, 129}) {
                const Signal x = noise(1 << order, 32);
                const Signal expected = transformed(front, x, order, flags);
                rvxFreeFftTables();
                long allocations = 0;
                {
                    AllocationWatch watch;
                    rvxzFft(nullptr, order, flags | 4);
                    allocations = watch.allocations();
                }
                const std::string tables = held();
                for (long k = 1; k <= allocations; ++k) {
                    Reports reports;
                    rvxFreeFftTables();
                    rvxGetRealTwistTbl(7);
                    Signal none(64);
                    {
                        AllocationWatch watch(k);
                        call(front, none, order, flags | 4, 1);
                        EXPECT_EQ(watch.failures(), 1);
                    }
                    EXPECT_EQ(held(), tables) << "failed " << k;
                    EXPECT_TRUE(sameBits(transformed(front, x, order, flags), expected));
                    EXPECT_TRUE(reports.take().empty());
                    EXPECT_EQ(rvxGetErrStatus(), 0);
                }
            }
}

TEST(FftTables, WithoutMemoryTheCallIsRefusedAndNothingStaysOrLeaks)
{
    for (Front front : fronts)
        for (int order : {0, 4, 10})
            for (int flags : {1, 129})
                for (long k = 1; k <= 5; ++k) {
                    Reports reports;
                    rvxFreeFftTables();
                    const Signal before = noise(64, 33);
                    Signal data = before;
                    {
                        AllocationWatch watch;
                        watch.failAllFrom(k);
                        call(front, data, order == 10 ? 10 : 4, flags, order == 10 ? 1 : 0);
                        if (watch.failures() == 0)
                            continue;
                        EXPECT_EQ(watch.live(), 0);
                    }
                    EXPECT_EQ(reports.take(),
                              (std::vector<Report>{{RVX_STATUS_NO_MEMORY, nameOf(front),
                                                    "No working Twd memory", "rvxfftd"}}));
                    EXPECT_EQ(rvxGetErrStatus(), RVX_STATUS_NO_MEMORY);
                    EXPECT_EQ(held(), "");
                    EXPECT_TRUE(sameBits(data, before));
                    // Though the status stays, the next call works.
                    Signal next = before;
                    call(front, next, 4, flags);
                    EXPECT_FALSE(sameBits(next, before));
                }
}

TEST(FftTables, OrdersWhoseTablesCannotExistAreRefusedQuickly)
{
    for (Front front : fronts)
        for (int order : {29, 30, 31})
            for (int flags : {1, 129, 4}) {
                Reports reports;
                Signal data(64);
                const auto start = std::chrono::steady_clock::now();
                call(front, data, order, flags, 1);
                const auto took = std::chrono::steady_clock::now() - start;
                EXPECT_EQ(reports.take(),
                          (std::vector<Report>{{RVX_STATUS_NO_MEMORY, nameOf(front),
                                                "No working Twd memory", "rvxfftd"}}));
                EXPECT_EQ(held(), "");
                EXPECT_LT(took, std::chrono::seconds(1));
            }
}
