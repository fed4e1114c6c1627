// What the fronts of the real Fourier transforms promise beside their values: their
// checks, and the tables that they build and release.

#include <climits>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "rvx.h"
#include "support/allocations.h"
#include "support/real_fronts.h"
#include "support/reports.h"
#include "transform/rvxfftd.h"
#include "transform/rvxtwd.h"

// ---- checks ---------------------------------------------------------------

TEST(RealFft, ChecksInTheirOrder)
{
    for (Form form : allForms) {
        Reports reports;
        const std::vector<double> data = noise(66, 11);
        std::vector<double> in = data;
        std::vector<double> out = data;
        const auto refused = [&](double *inSamps, double *outSamps, int order, int flags,
                                 const char *message) {
            call(form, inSamps, outSamps, order, flags);
            EXPECT_EQ(reports.take(), badArgument(nameOf(form), message, "rvxfftd"));
            EXPECT_EQ(rvxGetErrStatus(), RVX_STATUS_BAD_ARGUMENT);
            expectSameBits(in, data, nameOf(form));
            expectSameBits(out, data, nameOf(form));
        };
        // Each call is wrong in everything that is checked later too.
        refused(nullptr, nullptr, -1, 3, "order<0");
        refused(nullptr, nullptr, INT_MIN, 4, "order<0");
        refused(nullptr, nullptr, 32, 3, "order>31");
        refused(nullptr, nullptr, INT_MAX, 4, "order>31");
        if (notInPlace(form)) {
            refused(nullptr, nullptr, 6, 3, "inSamps==0");
            refused(in.data(), nullptr, 6, 3, "outSamps==0");
        } else {
            refused(nullptr, nullptr, 6, 3, "samps==0");
        }
        refused(in.data(), out.data(), 6, 3, "(flags & 1) && (flags & 2)");
        refused(in.data(), out.data(), 6, 3 | 256 | 1024, "(flags & 1) && (flags & 2)");
        refused(in.data(), out.data(), 6, 0, "(flags & 1)==0 && (flags & 2)==0");
        refused(in.data(), out.data(), 6, 16 | 32 | 256 | 512 | 1024 | 4096,
                "(flags & 1)==0 && (flags & 2)==0");
        // Order 0 is checked like any other.
        refused(in.data(), out.data(), 0, 0, "(flags & 1)==0 && (flags & 2)==0");
        refused(nullptr, out.data(), 0, 1, notInPlace(form) ? "inSamps==0" : "samps==0");
    }
}

TEST(RealFft, PackedFormsNeedOneFormat)
{
    Reports reports;
    std::vector<double> samps = noise(64, 12);
    const std::vector<double> data = samps;
    const auto refused = [&](Form form, int order, int flags, const char *message) {
        call(form, samps.data(), nullptr, order, flags);
        EXPECT_EQ(reports.take(), badArgument(nameOf(form), message, "rvxfftd"));
        expectSameBits(samps, data, nameOf(form));
    };
    for (int order : {0, 1, 6}) {
        refused(RealFftl, order, 1 | 256 | 512, "(flags & 256) && (flags & 512)");
        refused(RealFftl, order, 2, "(flags & 256)==0 && (flags & 512)==0");
        refused(RealFftl, order, 2 | 1024 | 4096, "(flags & 256)==0 && (flags & 512)==0");
        refused(CcsFftl, order, 1 | 1024 | 4096, "(flags & 1024) && (flags & 4096)");
        refused(CcsFftl, order, 2, "(flags & 1024)==0 && (flags & 4096)==0");
        refused(CcsFftl, order, 2 | 256 | 512, "(flags & 1024)==0 && (flags & 4096)==0");
    }
}

TEST(RealFft, ARefusedCallHasBuiltItsTables)
{
    for (Form form : allForms) {
        const Names tables = tablesOf(form, 5);
        std::vector<double> samps(34, 1.0);
        Reports reports;
        for (int flags : {3, 0, packed(form) ? 1 : 3}) {
            rvxFreeFftTables();
            call(form, samps.data(), samps.data(), 5, flags);
            EXPECT_EQ(reports.take().size(), 1u);
            EXPECT_EQ(cachedTables(), tables) << nameOf(form);
        }
        rvxFreeFftTables();
        call(form, nullptr, nullptr, 5, 1);
        EXPECT_EQ(cachedTables(), tables) << nameOf(form);
        rvxFreeFftTables();
        call(form, samps.data(), samps.data(), 32, 1);
        EXPECT_EQ(cachedTables(), Names{}) << nameOf(form);
    }
}

TEST(RealFft, AStaleStatusIsNeitherObeyedNorCleared)
{
    for (Form form : allForms) {
        Reports reports;
        rvxFreeFftTables();
        std::vector<double> in = noise(34, 13);
        std::vector<double> expected = in;
        std::vector<double> out(34, 0.0);
        std::vector<double> expectedOut = out;
        call(form, expected.data(), expectedOut.data(), 5, 2 | formatOf(form));
        rvxFreeFftTables();
        rvxSetErrStatus(RVX_STATUS_BAD_STATE);
        call(form, in.data(), out.data(), 5, 2 | formatOf(form));
        EXPECT_EQ(rvxGetErrStatus(), RVX_STATUS_BAD_STATE);
        EXPECT_TRUE(reports.take().empty());
        expectSameBits(in, expected, nameOf(form));
        expectSameBits(out, expectedOut, nameOf(form));
    }
}

TEST(RealFftDeathTest, AFailedCheckEndsTheProcessInModeZero)
{
    double samps[6] = {};
    for (Form form : allForms)
        EXPECT_EXIT(call(form, samps, samps, 2, 0), ::testing::ExitedWithCode(1), "");
    EXPECT_EXIT(rvxdMpyRCPack2(samps, samps, -1), ::testing::ExitedWithCode(1), "");
}

// ---- tables ---------------------------------------------------------------

TEST(RealFftTables, AreThoseOfTheHalfLengthAndTheFrontsOwn)
{
    for (Form form : allForms) {
        const std::string own = fromReal(form) ? "real " : "ccs ";
        EXPECT_EQ(tablesOf(form, 0), Names{});
        EXPECT_EQ(tablesOf(form, 1), Names{});
        EXPECT_EQ(tablesOf(form, 2), (Names{"dit 1", "swap 1", own + "2"}));
        EXPECT_EQ(tablesOf(form, 10), (Names{"dit 9", "swap 9", own + "10"}));
        EXPECT_EQ(tablesOf(form, 12), (Names{"dit 9", "large 11", "swap 11", own + "12"}));
    }
}

TEST(RealFftTables, WarmUpNeedsNeitherDataNorGoodFlags)
{
    for (Form form : allForms) {
        Reports reports;
        const Names tables = tablesOf(form, 7);
        for (int flags : {4, 4 | 1, 4 | 3, 4 | 256 | 512 | 1024 | 4096, -9}) {
            rvxFreeFftTables();
            call(form, nullptr, nullptr, 7, flags);
            EXPECT_EQ(cachedTables(), tables) << nameOf(form);
        }
        std::vector<double> data = noise(130, 14);
        const std::vector<double> before = data;
        call(form, data.data(), data.data(), 7, 4 | 1 | formatOf(form));
        expectSameBits(data, before, nameOf(form));
        EXPECT_TRUE(reports.take().empty());
        call(form, nullptr, nullptr, 32, 4);
        EXPECT_EQ(reports.take(), badArgument(nameOf(form), "order>31", "rvxfftd"));
    }
    rvxFreeFftTables();
}

TEST(RealFftTables, ReleaseWinsOverAllOtherBitsAndReportsNothing)
{
    for (Form form : allForms) {
        Reports reports;
        AllocationWatch watch;
        for (int order : {2, 7, 10, 11, 13})
            for (int flags : {8, 8 | 4, 8 | 3, -1}) {
                call(form, nullptr, nullptr, order, 4);
                call(form, nullptr, nullptr, order, flags);
                EXPECT_EQ(cachedTables(), Names{}) << nameOf(form) << " order " << order;
            }
        for (int order : {0, 1, -1, 32, 33, INT_MIN, INT_MAX})
            call(form, nullptr, nullptr, order, 8);
        EXPECT_EQ(watch.live(), 0);
        EXPECT_TRUE(reports.take().empty());
    }
}

TEST(RealFftTables, ReleaseLeavesOtherOrdersAndTheOtherFamily)
{
    Reports reports;
    rvxFreeFftTables();
    rvxdRealFft(nullptr, 6, 4);
    rvxdRealFft(nullptr, 7, 4);
    rvxdCcsFft(nullptr, 7, 4);
    rvxdRealFft(nullptr, 7, 8);
    EXPECT_EQ(cachedTables(), (Names{"dit 5", "swap 5", "real 6", "ccs 7"}));
    rvxdCcsFftNip(nullptr, nullptr, 7, 8);
    EXPECT_EQ(cachedTables(), (Names{"dit 5", "swap 5", "real 6"}));
    rvxdRealFftl(nullptr, 6, 8);
    EXPECT_EQ(cachedTables(), Names{});
    EXPECT_TRUE(reports.take().empty());
}

// The half-length release gets 31, and any order above 9 drops the table of
// order 9 that it rests on.
TEST(RealFftTables, ReleaseAtOrder32DropsTheTableOfOrder9)
{
    for (Form form : allForms) {
        Reports reports;
        rvxFreeFftTables();
        call(form, nullptr, nullptr, 10, 4);
        call(form, nullptr, nullptr, 33, 8);
        call(form, nullptr, nullptr, -1, 8);
        const std::string own = fromReal(form) ? "real 10" : "ccs 10";
        EXPECT_EQ(cachedTables(), (Names{"dit 9", "swap 9", own}));
        call(form, nullptr, nullptr, 32, 8);
        EXPECT_EQ(cachedTables(), (Names{"swap 9", own}));
        EXPECT_TRUE(reports.take().empty());
    }
    rvxFreeFftTables();
}

TEST(RealFftTables, OneFailedAllocationCostsTheOtherTablesAndTheCallSucceeds)
{
    for (Form form : allForms) {
        for (int order : {2, 8, 12}) {
            const std::size_t length = (std::size_t{1} << order) + 2;
            const std::vector<double> data = noise(static_cast<int>(length), 15);
            std::vector<double> expected = data;
            std::vector<double> expectedOut(length, 0.0);
            const Names tables = tablesOf(form, order);
            long allocations = 0;
            {
                AllocationWatch watch;
                call(form, expected.data(), expectedOut.data(), order, 1 | formatOf(form));
                allocations = watch.allocations();
            }
            ASSERT_GE(allocations, 3);
            for (long k = 1; k <= allocations; ++k) {
                Reports reports;
                rvxFreeFftTables();
                rvxdRealFft(nullptr, 5, 4);
                std::vector<double> in = data;
                std::vector<double> out(length, 0.0);
                {
                    AllocationWatch watch(k);
                    call(form, in.data(), out.data(), order, 1 | formatOf(form));
                    EXPECT_EQ(watch.failures(), 1);
                }
                EXPECT_TRUE(reports.take().empty());
                EXPECT_EQ(rvxGetErrStatus(), RVX_STATUS_OK);
                expectSameBits(in, expected, nameOf(form));
                expectSameBits(out, expectedOut, nameOf(form));
                EXPECT_EQ(cachedTables(), tables) << nameOf(form) << " k " << k;
            }
        }
    }
    rvxFreeFftTables();
}

TEST(RealFftTables, WithoutMemoryTheCallIsRefusedAndNothingStaysOrLeaks)
{
    for (Form form : allForms) {
        for (int order : {2, 8, 12}) {
            const std::size_t length = (std::size_t{1} << order) + 2;
            const std::vector<double> data = noise(static_cast<int>(length), 16);
            rvxFreeFftTables();
            for (long k = 1; k <= 3; ++k) {
                Reports reports;
                std::vector<double> in = data;
                std::vector<double> out = data;
                {
                    AllocationWatch watch;
                    watch.failAllFrom(k);
                    call(form, in.data(), out.data(), order, 1 | formatOf(form));
                    EXPECT_EQ(watch.live(), 0);
                }
                EXPECT_EQ(reports.take(),
                          (std::vector<Report>{{RVX_STATUS_NO_MEMORY, nameOf(form),
                                                "No working Twd memory", "rvxfftd"}}));
                EXPECT_EQ(rvxGetErrStatus(), RVX_STATUS_NO_MEMORY);
                expectSameBits(in, data, nameOf(form));
                expectSameBits(out, data, nameOf(form));
                EXPECT_EQ(cachedTables(), Names{}) << nameOf(form) << " k " << k;
            }
            // The next call works.
            Reports reports;
            call(form, nullptr, nullptr, order, 4);
            EXPECT_TRUE(reports.take().empty());
        }
    }
    rvxFreeFftTables();
}

TEST(RealFftTables, OrdersWithoutTablesNeedNoMemory)
{
    for (Form form : allForms) {
        Reports reports;
        rvxFreeFftTables();
        double in[4] = {1.0, 2.0, 3.0, 4.0};
        double out[4] = {};
        AllocationWatch watch(1);
        call(form, in, out, 0, 1 | formatOf(form));
        call(form, in, out, 1, 1 | formatOf(form));
        EXPECT_EQ(watch.allocations(), 0);
        EXPECT_TRUE(reports.take().empty());
    }
}
