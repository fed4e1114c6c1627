// Tables of the Fourier transforms: contents, caches, release.

#include <climits>
#include <cmath>
#include <cstdint>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "frame/rvxbuffer.h"
#include "frame/rvxthread.h"
#include "rvx.h"
#include "support/allocations.h"
#include "support/guarded.h"
#include "support/held_tables.h"
#include "support/reports.h"
#include "transform/rvxmisc.h"
#include "transform/rvxtwd.h"
#include "transform/rvxtwd_circle.h"
#include "transform/rvxtwd_circle_turns.h"

namespace {

std::uint32_t reversedBits(std::uint32_t i, int order)
{
    std::uint32_t result = 0;
    for (int bit = 0; bit < order; ++bit)
        if ((i >> bit & 1) != 0)
            result |= 1u << (order - 1 - bit);
    return result;
}

// The quarter wave, entry by entry from its definition.
double sineQuarter(int order, std::int64_t i)
{
    const std::int64_t n = std::int64_t{1} << order;
    const double step = 6.283185307179586 / static_cast<double>(n);
    if (i <= n / 8)
        return static_cast<double>(std::sin(static_cast<long double>(i) * step));
    return static_cast<double>(std::cos(static_cast<long double>(n / 4 - i) * step));
}

ZCplx rootByQuarter(int order, std::int64_t k)
{
    const std::int64_t n = std::int64_t{1} << order;
    const auto s = [order](std::int64_t i) { return sineQuarter(order, i); };
    if (k <= n / 4)
        return {s(n / 4 - k), -s(k)};
    if (k <= n / 2)
        return {-s(k - n / 4), -s(n / 2 - k)};
    return {-s(3 * (n / 4) - k), s(k - n / 2)};
}

::testing::AssertionResult sameBits(ZCplx a, ZCplx b)
{
    if (bitsOf(a.re) == bitsOf(b.re) && bitsOf(a.im) == bitsOf(b.im))
        return ::testing::AssertionSuccess();
    return ::testing::AssertionFailure()
           << "(" << a.re << ", " << a.im << ") and (" << b.re << ", " << b.im << ")";
}

using Getter = const void *(*)(int);

const Getter tableGetters[] = {
    [](int order) -> const void * { return rvxGetBitRevSwapTbl(order); },
    [](int order) -> const void * { return rvxGetFftTwdLarge(order); },
    [](int order) -> const void * { return rvxGetFftTwdDit(order); },
    [](int order) -> const void * { return rvxGetFftTwdDif(order); },
    [](int order) -> const void * { return rvxGetRealTwistTbl(order); },
    [](int order) -> const void * { return rvxGetCcsTwistTbl(order); },
};

const Getter statusGetters[] = {
    [](int order) -> const void * { return rvxGetBitRevTbl(order); },
    [](int order) -> const void * { return rvxzGetFftTwdTbl(order); },
};

} // namespace

// ---- bit reversal -----------------------------------------------------------

TEST(BitReversalTable, HoldsTheReversalOfEveryIndex)
{
    for (int order = 0; order <= 16; ++order) {
        const int n = 1 << order;
        Guarded<std::uint32_t> tbl(n);
        rvxCalcBitRevTbl(tbl.data(), order);
        for (int i = 0; i < n; ++i)
            ASSERT_EQ(tbl[i], reversedBits(static_cast<std::uint32_t>(i), order)) << order;
        EXPECT_TRUE(tbl.intact()) << order;
    }
}

TEST(BitReversalTable, ChecksInTheirOrder)
{
    Reports reports;
    std::uint32_t word = 7;
    rvxCalcBitRevTbl(nullptr, -1);
    EXPECT_EQ(reports.take(), badArgument("rvxCalcBitRevTbl", "order<0", "rvxmisc"));
    rvxCalcBitRevTbl(nullptr, 32);
    EXPECT_EQ(reports.take(), badArgument("rvxCalcBitRevTbl", "order>31", "rvxmisc"));
    rvxCalcBitRevTbl(nullptr, 0);
    EXPECT_EQ(reports.take(), badArgument("rvxCalcBitRevTbl", "tbl==0", "rvxmisc"));
    rvxCalcBitRevTbl(&word, 32);
    EXPECT_EQ(word, 7u);
}

TEST(SwapList, IsPairsThenZeroThenSelfReversedFieldsThenZero)
{
    for (int order = 2; order <= 16; ++order) {
        const std::uint32_t fields = 1u << (order - 2);
        std::vector<std::uint32_t> expected;
        for (std::uint32_t m = 1; m < fields; ++m)
            if (m < reversedBits(m, order - 2)) {
                expected.push_back(4 * m);
                expected.push_back(4 * reversedBits(m, order - 2));
            }
        expected.push_back(0);
        // From the end of the table backwards, so the largest comes first.
        for (std::uint32_t m = fields - 1; m >= 1 && m < fields; --m)
            if (m == reversedBits(m, order - 2))
                expected.push_back(4 * m);
        expected.push_back(0);
        if (fields == 1)
            expected = {0, 0};
        const std::uint32_t *list = rvxGetBitRevSwapTbl(order);
        ASSERT_NE(list, nullptr);
        EXPECT_EQ(std::vector<std::uint32_t>(list, list + fields + 1), expected) << order;
    }
}

TEST(SwapList, ExistsForOrdersThatNeedNone)
{
    EXPECT_NE(rvxGetBitRevSwapTbl(0), nullptr);
    EXPECT_NE(rvxGetBitRevSwapTbl(1), nullptr);
    EXPECT_EQ(held(), "s0 s1");
}

TEST(BitReversal, InPlaceTakesEachElementToItsPlace)
{
    for (int order = 0; order <= 14; ++order)
        for (int misalignment = 0; misalignment < 4; ++misalignment) {
            const int n = 1 << order;
            Guarded<ZCplx> vec(n, misalignment);
            for (int i = 0; i < n; ++i)
                vec[i] = {i + 0.25, -i - 0.5};
            rvxzbBitRev1(vec.data(), order);
            for (int i = 0; i < n; ++i) {
                const double from = reversedBits(static_cast<std::uint32_t>(i), order);
                ASSERT_EQ(vec[i].re, from + 0.25) << order;
                ASSERT_EQ(vec[i].im, -from - 0.5) << order;
            }
            EXPECT_TRUE(vec.intact());
        }
}

TEST(BitReversal, WithoutMemoryForItsListGivesTheSameAndSaysNothing)
{
    Reports reports;
    for (int status : {0, -5})
        for (int order = 2; order <= 14; ++order) {
            const int n = 1 << order;
            Guarded<ZCplx> vec(n, order % 4);
            for (int i = 0; i < n; ++i)
                vec[i] = {i + 0.25, -i - 0.5};
            rvxSetErrStatus(status);
            {
                AllocationWatch watch(1);
                rvxzbBitRev1(vec.data(), order);
                EXPECT_EQ(watch.failures(), order == 2 ? 0 : 1);
                EXPECT_EQ(watch.live(), 0);
            }
            EXPECT_EQ(rvxGetErrStatus(), status);
            EXPECT_EQ(held(), "");
            for (int i = 0; i < n; ++i) {
                const double from = reversedBits(static_cast<std::uint32_t>(i), order);
                ASSERT_EQ(vec[i].re, from + 0.25) << order;
                ASSERT_EQ(vec[i].im, -from - 0.5) << order;
            }
            EXPECT_TRUE(vec.intact());
        }
    EXPECT_TRUE(reports.take().empty());
}

TEST(BitReversal, ChecksInTheirOrder)
{
    Reports reports;
    rvxzbBitRev1(nullptr, -1);
    EXPECT_EQ(reports.take(), badArgument("rvxzbBitRev1", "order<0", "rvxmisc"));
    rvxzbBitRev1(nullptr, 32);
    EXPECT_EQ(reports.take(), badArgument("rvxzbBitRev1", "order>31", "rvxmisc"));
    rvxzbBitRev1(nullptr, 3);
    EXPECT_EQ(reports.take(), badArgument("rvxzbBitRev1", "vec==0", "rvxmisc"));
}

TEST(BitReversal, TakesATableFromOrder3OnOnly)
{
    ZCplx vec[8] = {};
    for (int order = 0; order < 3; ++order)
        rvxzbBitRev1(vec, order);
    EXPECT_EQ(held(), "");
    rvxzbBitRev1(vec, 3);
    EXPECT_EQ(held(), "s3");
}

// ---- contents of the twiddle tables --------------------------------------------

TEST(TwiddleTables, KernelTablesHoldTriplesAndPairs)
{
    for (int order = 0; order <= 9; ++order) {
        const ZCplx *triples = rvxGetFftTwdDit(order);
        const ZCplx *pairs = rvxGetFftTwdDif(order);
        ASSERT_TRUE(triples && pairs);
        const std::int64_t quarter = (1 << order) / 4;
        for (std::int64_t k = 0; k <= quarter; ++k)
            for (std::int64_t power = 1; power <= 3; ++power)
                ASSERT_TRUE(sameBits(*triples++, rootByQuarter(order, power * k))) << order;
        for (std::int64_t k = 1; k < quarter; ++k)
            for (std::int64_t power = 1; power <= 3; power += 2)
                ASSERT_TRUE(sameBits(*pairs++, rootByQuarter(order, power * k))) << order;
    }
}

TEST(TwiddleTables, LastTripleIsAQuarterAHalfAndThreeQuarters)
{
    for (int order = 2; order <= 9; ++order) {
        const ZCplx *last = rvxGetFftTwdDit(order) + 3 * ((1 << order) / 4);
        EXPECT_EQ(last[0].re, 0.0);
        EXPECT_EQ(last[0].im, -1.0);
        EXPECT_EQ(last[1].re, -1.0);
        EXPECT_EQ(last[1].im, 0.0);
        EXPECT_EQ(last[2].re, 0.0);
        EXPECT_EQ(last[2].im, 1.0);
    }
}

TEST(TwiddleTables, LargeTableIsAQuarterCircleAndFromOrder14ACoarseOne)
{
    for (int order = 0; order <= 17; ++order) {
        const ZCplx *tbl = rvxGetFftTwdLarge(order);
        ASSERT_NE(tbl, nullptr);
        const std::int64_t quarter = (std::int64_t{1} << order) / 4;
        for (std::int64_t k = 0; k < quarter; ++k)
            ASSERT_TRUE(sameBits(tbl[k], rootByQuarter(order, k))) << order;
        if (order < 14)
            continue;
        for (std::int64_t k = 0; k < 2048; ++k) {
            const std::int64_t stride = std::int64_t{1} << (order - 13);
            ASSERT_TRUE(sameBits(tbl[quarter + k], rootByQuarter(order, stride * k))) << order;
        }
    }
}

TEST(TwiddleTables, TwistTablesHoldTheirFactors)
{
    for (int order = 0; order <= 14; ++order) {
        const ZCplx *real = rvxGetRealTwistTbl(order);
        const ZCplx *ccs = rvxGetCcsTwistTbl(order);
        ASSERT_TRUE(real && ccs);
        const std::int64_t quarter = (std::int64_t{1} << order) / 4;
        for (std::int64_t k = 0; k < quarter; ++k) {
            const ZCplx w = rootByQuarter(order, k);
            ASSERT_TRUE(sameBits(real[k], {0.5 * w.re, 0.5 - 0.5 * -w.im})) << order;
            ASSERT_TRUE(sameBits(ccs[k], w)) << order;
        }
    }
    EXPECT_EQ(rvxGetRealTwistTbl(4)[0].re, 0.5);
    EXPECT_EQ(rvxGetRealTwistTbl(4)[0].im, 0.5);
}

TEST(TwiddleTables, EntriesAreNextToTheCircle)
{
    const long double pi = std::acos(-1.0L);
    const ZCplx *tbl = rvxGetFftTwdLarge(16);
    for (int k = 0; k < 16384; ++k) {
        const long double angle = 2 * pi * k / 65536;
        EXPECT_LE(std::fabs(tbl[k].re - std::cos(angle)), 0x1p-53L * 1.01L);
        EXPECT_LE(std::fabs(tbl[k].im + std::sin(angle)), 0x1p-53L * 1.01L);
    }
}

TEST(TwiddleTables, QuarterWaveIsTheExtendedValueRoundedOnce)
{
    for (int order = 0; order <= 21; ++order) {
        const int len = (1 << order) / 4 + 1;
        Guarded<double> sine(len);
        rvxFillSineQuarter(sine.data(), order);
        for (int i = 0; i < len; ++i)
            ASSERT_EQ(bitsOf(sine[i]), bitsOf(sineQuarter(order, i))) << order << " " << i;
        EXPECT_TRUE(sine.intact());
    }
}

TEST(TwiddleTables, ConstantsOfTheDigitsAreTheExtendedValues)
{
    for (int q = 0; q < MAX_DIGITS; ++q)
        for (int d = 0; d < DIGIT_VALUES; ++d) {
            const Digit &digit = RVX_DIGIT_TURNS[q];
            const long double step =
                std::ldexp(static_cast<long double>(6.283185307179586), -7 - 4 * q);
            EXPECT_EQ(static_cast<long double>(digit.cosineHead[d]) + digit.cosineTail[d],
                      std::cos(d * step));
            EXPECT_EQ(static_cast<long double>(digit.sineHead[d]) + digit.sineTail[d],
                      std::sin(d * step));
            for (double head : {digit.cosineHead[d], digit.sineHead[d]})
                EXPECT_EQ(bitsOf(head) & 0x7FFFFFF, 0u) << "heads have exact products";
        }
}

// The double 2 pi is taken for the circle, so no entry but the first has a part
// that is exactly 0. Up to order 14 the angle is exact in long double.
TEST(TwiddleTables, FullCircleIsWithinHalfAUnitInTheLastPlace)
{
    const auto units = [](double value, long double exact) {
        const double next = std::nextafter(std::fabs(value), HUGE_VAL);
        return std::fabs(value - exact) / (next - std::fabs(value));
    };
    for (int order = 0; order <= 14; ++order) {
        const int n = 1 << order;
        Guarded<ZCplx> tbl(n);
        rvxzCalcFftTwdTbl(tbl.data(), order);
        const double step = 6.283185307179586 / n;
        for (int k = 0; k < n; ++k) {
            const long double angle = static_cast<long double>(k) * step;
            ASSERT_LE(units(tbl[k].re, std::cos(angle)), 0.5015L) << order << " " << k;
            ASSERT_LE(units(tbl[k].im, -std::sin(angle)), 0.5015L) << order << " " << k;
        }
        EXPECT_TRUE(tbl.intact());
    }
}

TEST(TwiddleTables, FullCircleChecksInTheirOrder)
{
    Reports reports;
    ZCplx value = {3.0, 4.0};
    rvxzCalcFftTwdTbl(nullptr, -1);
    EXPECT_EQ(reports.take(), badArgument("rvxzCalcFftTwdTbl", "order<0", "rvxtwd"));
    rvxzCalcFftTwdTbl(nullptr, 32);
    EXPECT_EQ(reports.take(), badArgument("rvxzCalcFftTwdTbl", "order>31", "rvxtwd"));
    rvxzCalcFftTwdTbl(nullptr, 0);
    EXPECT_EQ(reports.take(), badArgument("rvxzCalcFftTwdTbl", "tbl==0", "rvxtwd"));
    rvxzCalcFftTwdTbl(&value, 32);
    EXPECT_EQ(value.re, 3.0);
}

TEST(TableChecksDeathTest, AFailedCheckEndsTheProcessInModeZero)
{
    EXPECT_EXIT(rvxCalcBitRevTbl(nullptr, 1), ::testing::ExitedWithCode(1), "");
    EXPECT_EXIT(rvxzCalcFftTwdTbl(nullptr, 1), ::testing::ExitedWithCode(1), "");
    EXPECT_EXIT(rvxzbBitRev1(nullptr, 1), ::testing::ExitedWithCode(1), "");
}

// ---- caches -----------------------------------------------------------------

TEST(TableCache, EachGetterFillsItsOwnSlotOnce)
{
    for (const Getter get : tableGetters) {
        const void *table = get(7);
        ASSERT_NE(table, nullptr);
        AllocationWatch watch;
        EXPECT_EQ(get(7), table);
        EXPECT_EQ(watch.allocations(), 0);
    }
    EXPECT_EQ(held(), "A7 B7 C7 r7 c7 s7");
    const rvxThreadContext *context = rvxGetThreadContext();
    EXPECT_EQ(rvxGetFftTwdLarge(7), context->fftTableA[7]);
    EXPECT_EQ(rvxGetFftTwdDit(7), context->fftTableB[7]);
    EXPECT_EQ(rvxGetFftTwdDif(7), context->fftTableC[7]);
}

TEST(TableCache, AboveOrder9BothFormsRestOnTheLargeTableAndTheirOrder9)
{
    const ZCplx *dit = rvxGetFftTwdDit(10);
    EXPECT_EQ(held(), "A10 B9");
    EXPECT_EQ(dit, rvxGetThreadContext()->fftTableA[10]);
    EXPECT_EQ(rvxGetFftTwdDif(10), dit);
    EXPECT_EQ(held(), "A10 B9 C9");
}

TEST(TableCache, OrdersOutOfRangeGiveNullWithoutAReport)
{
    Reports reports;
    for (const Getter get : tableGetters)
        for (int order : {-1, 32, INT_MIN, INT_MAX})
            EXPECT_EQ(get(order), nullptr);
    EXPECT_TRUE(reports.take().empty());
    EXPECT_EQ(held(), "");
}

TEST(TableCache, AFailedAllocationLeavesNothingBehind)
{
    Reports reports;
    for (const Getter get : tableGetters)
        for (int order : {0, 3, 9, 10, 14}) {
            rvxFreeFftTables();
            long allocations = 0;
            {
                AllocationWatch watch;
                ASSERT_NE(get(order), nullptr);
                allocations = watch.allocations();
            }
            for (long k = 1; k <= allocations; ++k) {
                rvxFreeFftTables();
                AllocationWatch watch(k);
                EXPECT_EQ(get(order), nullptr) << k;
                // A table of order 9 that was there in time stays.
                const AllocationPause pause;
                EXPECT_TRUE(held() == "" || held() == "B9" || held() == "C9") << held();
                EXPECT_EQ(watch.live(), held() == "" ? 0 : 1);
                EXPECT_NE(get(order), nullptr);
            }
        }
    EXPECT_TRUE(reports.take().empty());
    EXPECT_EQ(rvxGetErrStatus(), 0);
}

TEST(TableCache, TablesThatA32BitByteCountCannotHoldAreRefusedAtOnce)
{
    Reports reports;
    for (int order : {30, 31}) {
        AllocationWatch watch;
        EXPECT_EQ(rvxGetFftTwdLarge(order), nullptr);
        EXPECT_EQ(rvxGetRealTwistTbl(order), nullptr);
        EXPECT_EQ(watch.allocations(), 0);
    }
    EXPECT_TRUE(reports.take().empty());
    EXPECT_EQ(held(), "");
}

TEST(TableCache, StatusGettersReportOrders)
{
    const char *func[] = {"rvxGetBitRevTbl", "rvxzGetFftTwdTbl"};
    const char *file[] = {"rvxmisc", "rvxtwd"};
    for (int i = 0; i < 2; ++i) {
        Reports reports;
        EXPECT_EQ(statusGetters[i](-1), nullptr);
        EXPECT_EQ(reports.take(), badArgument(func[i], "order<0", file[i]));
        EXPECT_EQ(statusGetters[i](32), nullptr);
        EXPECT_EQ(reports.take(), badArgument(func[i], "order>31", file[i]));
    }
}

TEST(TableCache, StatusGettersObeyAStaleFailure)
{
    for (const Getter get : statusGetters) {
        Reports reports;
        const void *table = get(5);
        ASSERT_NE(table, nullptr);
        for (int status : {-1, -5, -1000}) {
            rvxSetErrStatus(status);
            EXPECT_EQ(get(5), nullptr);
            EXPECT_EQ(get(6), nullptr);
            EXPECT_EQ(rvxGetErrStatus(), status);
        }
        rvxSetErrStatus(17); // not a failure
        EXPECT_EQ(get(5), table);
        rvxSetErrStatus(0);
        EXPECT_EQ(get(5), table);
        EXPECT_TRUE(reports.take().empty());
    }
    EXPECT_EQ(held(), "t5 p5");
}

TEST(TableCache, StatusGettersReportMissingMemory)
{
    const char *func[] = {"rvxGetBitRevTbl", "rvxzGetFftTwdTbl"};
    const char *file[] = {"rvxmisc", "rvxtwd"};
    for (int i = 0; i < 2; ++i) {
        Reports reports;
        AllocationWatch watch(1);
        EXPECT_EQ(statusGetters[i](6), nullptr);
        {
            const AllocationPause pause;
            EXPECT_EQ(reports.take(), (std::vector<Report>{{RVX_STATUS_NO_MEMORY, func[i],
                                                            "NULL Pointer", file[i]}}));
            EXPECT_EQ(held(), "");
        }
        EXPECT_EQ(watch.live(), 0);
        rvxSetErrStatus(0);
        EXPECT_NE(statusGetters[i](6), nullptr);
        rvxFreeTwdTables();
        rvxFreeBitRevTables();
    }
}

TEST(TableCache, StatusGettersHoldWhatTheCalculatorsWrite)
{
    const auto *words = rvxGetBitRevTbl(8);
    const auto *circle = rvxzGetFftTwdTbl(8);
    std::uint32_t expectedWords[256];
    ZCplx expectedCircle[256];
    rvxCalcBitRevTbl(expectedWords, 8);
    rvxzCalcFftTwdTbl(expectedCircle, 8);
    for (int i = 0; i < 256; ++i) {
        EXPECT_EQ(words[i], expectedWords[i]);
        EXPECT_TRUE(sameBits(circle[i], expectedCircle[i]));
    }
    EXPECT_EQ(rvxGetBitRevTbl(8), words);
    EXPECT_EQ(rvxzGetFftTwdTbl(8), circle);
}

// ---- release ------------------------------------------------------------------

namespace {

void fillAll(int order)
{
    for (const Getter get : tableGetters)
        get(order);
    for (const Getter get : statusGetters)
        get(order);
}

} // namespace

TEST(TableRelease, EachDropsItsOwnTableAlone)
{
    fillAll(6);
    rvxFreeBitRevSwapTbl(6);
    EXPECT_EQ(held(), "A6 B6 C6 r6 c6 t6 p6");
    rvxFreeFftTwdLarge(6);
    EXPECT_EQ(held(), "B6 C6 r6 c6 t6 p6");
    rvxFreeFftTwdDit(6);
    EXPECT_EQ(held(), "C6 r6 c6 t6 p6");
    rvxFreeFftTwdDif(6);
    EXPECT_EQ(held(), "r6 c6 t6 p6");
    rvxFreeRealTwistTbl(6);
    EXPECT_EQ(held(), "c6 t6 p6");
    rvxFreeCcsTwistTbl(6);
    EXPECT_EQ(held(), "t6 p6");
}

TEST(TableRelease, AboveOrder9DropsTheLargeTableAndThatFormsOrder9)
{
    rvxGetFftTwdDit(10);
    rvxGetFftTwdDif(10);
    rvxFreeFftTwdDit(10);
    EXPECT_EQ(held(), "C9");
    rvxGetFftTwdDit(10);
    rvxFreeFftTwdDif(10);
    EXPECT_EQ(held(), "B9");
    rvxFreeFftTwdDit(9);
    EXPECT_EQ(held(), "");
    rvxGetFftTwdDit(9);
    rvxGetFftTwdLarge(9);
    rvxFreeFftTwdDit(9);
    EXPECT_EQ(held(), "A9");
}

TEST(TableRelease, OrdersOutOfRangeAreIgnored)
{
    Reports reports;
    rvxGetFftTwdDit(9);
    rvxGetFftTwdDif(9);
    for (int order : {-1, 32, 33, INT_MIN, INT_MAX}) {
        rvxFreeBitRevSwapTbl(order);
        rvxFreeFftTwdLarge(order);
        rvxFreeFftTwdDit(order);
        rvxFreeFftTwdDif(order);
        rvxFreeRealTwistTbl(order);
        rvxFreeCcsTwistTbl(order);
    }
    EXPECT_EQ(held(), "B9 C9");
    EXPECT_TRUE(reports.take().empty());
}

TEST(TableRelease, FftTablesAreAllButFullCircleAndPermutation)
{
    AllocationWatch watch;
    for (int order : {0, 5, 9, 10})
        fillAll(order);
    rvxFreeFftTables();
    {
        const AllocationPause pause;
        EXPECT_EQ(held(), "t0 t5 t9 t10 p0 p5 p9 p10");
    }
    EXPECT_EQ(watch.live(), 8);
    rvxFreeTwdTables();
    rvxFreeBitRevTables();
    EXPECT_EQ(watch.live(), 0);
}

TEST(TableRelease, BitReversalTablesAreBothKinds)
{
    fillAll(5);
    rvxFreeBitRevTables();
    EXPECT_EQ(held(), "A5 B5 C5 r5 c5 t5");
}

TEST(TableRelease, TwdTablesLeavePermutationsAndTheLastSmallTable)
{
    rvxThreadContext *context = rvxGetThreadContext();
    fillAll(5);
    for (int i = 0; i < RVX_SMALL_TABLES; ++i) {
        context->smallTable[i] = rvxAllocBytes(1);
        context->smallTableKey[i] = 100;
    }
    for (int i = 0; i < 3; ++i) {
        context->sizedTable[i] = rvxAllocBytes(1);
        context->sizedTableKey[i] = 100;
    }
    context->sizedTableCount = 2;
    void *beyond = context->sizedTable[2];
    rvxFreeTwdTables();
    EXPECT_EQ(held(), "p5");
    for (int i = 0; i < 4; ++i) {
        EXPECT_EQ(context->smallTable[i], nullptr);
        EXPECT_EQ(context->smallTableKey[i], 0u);
    }
    EXPECT_NE(context->smallTable[4], nullptr);
    EXPECT_EQ(context->smallTableKey[4], 100u);
    EXPECT_EQ(context->sizedTableCount, 0);
    for (int i = 0; i < 2; ++i) {
        EXPECT_EQ(context->sizedTable[i], nullptr);
        EXPECT_EQ(context->sizedTableKey[i], 0u);
    }
    EXPECT_EQ(context->sizedTable[2], beyond);
    rvxFreeAligned(beyond);
    context->sizedTable[2] = nullptr;
    context->sizedTableKey[2] = 0;
    rvxFreeSmallTable(-1);
    rvxFreeSmallTable(5);
    EXPECT_NE(context->smallTable[4], nullptr);
    rvxFreeSmallTable(4);
    EXPECT_EQ(context->smallTable[4], nullptr);
    EXPECT_EQ(context->smallTableKey[4], 0u);
}
