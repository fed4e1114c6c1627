// What the Fourier tables and the complex transforms promise beside their values:
// contents and lifetime of each table, checks and flags of each front.

#include <climits>
#include <cmath>
#include <cstring>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "frame/rvxbuffer.h"
#include "frame/rvxthread.h"
#include "reference/dft.h"
#include "support/allocations.h"
#include "support/guarded.h"
#include "support/reports.h"
#include "transform/rvxfftd.h"
#include "transform/rvxmisc.h"
#include "transform/rvxtwd.h"

namespace {

using Words = std::vector<std::uint32_t>;
using Names = std::vector<std::string>;

std::uint32_t reversed(std::uint32_t i, int bits)
{
    std::uint32_t result = 0;
    for (int bit = 0; bit < bits; ++bit)
        if ((i >> bit) & 1)
            result |= std::uint32_t{1} << (bits - 1 - bit);
    return result;
}

// The slots that are filled, "large 10" and so on, by order and then by kind.
Names cachedTables()
{
    const rvxThreadContext *context = rvxGetThreadContext();
    Names cached;
    for (int order = 0; order < RVX_ORDERS; ++order) {
        const auto note = [&](const void *slot, const char *name) {
            if (slot != nullptr)
                cached.push_back(name + std::to_string(order));
        };
        note(context->twdTable[order], "circle ");
        note(context->bitRevTable[order], "reversal ");
        note(context->shortBitRevTable[order], "swap ");
        note(context->fftTableA[order], "large ");
        note(context->fftTableB[order], "dit ");
        note(context->fftTableC[order], "dif ");
        note(context->realFftTableA[order], "real ");
        note(context->realFftTableB[order], "ccs ");
    }
    return cached;
}

void dropTables()
{
    rvxFreeTwdTables();
    rvxFreeBitRevTables();
    ASSERT_EQ(cachedTables(), Names{});
}

// sin(2 pi i / N), a quarter of a circle, as the tables are made of.
std::vector<double> sineQuarter(int order)
{
    const long n = 1L << order;
    const long quarter = n / 4;
    const double step = 6.283185307179586 / static_cast<double>(n);
    std::vector<double> sine;
    for (long i = 0; i <= quarter; ++i)
        sine.push_back(static_cast<double>(
            i <= n / 8 ? std::sin(static_cast<long double>(i) * step)
                       : std::cos(static_cast<long double>(quarter - i) * step)));
    return sine;
}

// W(N,k) by symmetry from the quarter, for k up to three quarters.
ZCplx root(const std::vector<double> &sine, long k)
{
    const auto at = [&](long i) { return sine[static_cast<std::size_t>(i)]; };
    const long quarter = static_cast<long>(sine.size()) - 1;
    const long half = 2 * quarter;
    if (k <= quarter)
        return {at(quarter - k), -at(k)};
    if (k <= half)
        return {-at(k - quarter), -at(half - k)};
    return {-at(3 * quarter - k), at(k - half)};
}

void expectEntry(const ZCplx &actual, const ZCplx &expected, const char *table, int order, long k)
{
    EXPECT_EQ(bitsOf(actual.re), bitsOf(expected.re)) << table << " " << order << " re " << k;
    EXPECT_EQ(bitsOf(actual.im), bitsOf(expected.im)) << table << " " << order << " im " << k;
}

} // namespace

// ---- contents -------------------------------------------------------------

TEST(FftTables, SineQuarterIsTheSineToTheLastBitOrTwo)
{
    for (int order : {3, 5, 9, 14})
        for (std::size_t i = 0; i < sineQuarter(order).size(); ++i) {
            const long double exact =
                std::sin(2.0L * std::acos(-1.0L) * static_cast<long double>(i) / (1L << order));
            EXPECT_NEAR(sineQuarter(order)[i], static_cast<double>(exact), 0x1p-53);
        }
    EXPECT_EQ(sineQuarter(2)[1], 1.0);
}

TEST(FftTables, DitTriples)
{
    for (int order = 2; order <= 9; ++order) {
        const std::vector<double> sine = sineQuarter(order);
        const ZCplx *table = rvxGetFftTwdDit(order);
        EXPECT_EQ(table, rvxGetThreadContext()->fftTableB[order]);
        for (long k = 0; k < static_cast<long>(sine.size()); ++k) {
            expectEntry(table[3 * k], root(sine, k), "W(k)", order, k);
            expectEntry(table[3 * k + 1], root(sine, 2 * k), "W(2k)", order, k);
            expectEntry(table[3 * k + 2], root(sine, 3 * k), "W(3k)", order, k);
        }
    }
    // The ends of the last triple: -1 and j.
    const ZCplx *table = rvxGetFftTwdDit(6);
    EXPECT_EQ(table[3 * 16 + 1].re, -1.0);
    EXPECT_EQ(table[3 * 16 + 1].im, 0.0);
    EXPECT_EQ(table[3 * 16 + 2].re, 0.0);
    EXPECT_EQ(table[3 * 16 + 2].im, 1.0);
    EXPECT_NE(rvxGetFftTwdDit(0), nullptr);
    EXPECT_NE(rvxGetFftTwdDit(1), nullptr);
}

TEST(FftTables, DifPairs)
{
    for (int order = 3; order <= 9; ++order) {
        const std::vector<double> sine = sineQuarter(order);
        const ZCplx *table = rvxGetFftTwdDif(order);
        EXPECT_EQ(table, rvxGetThreadContext()->fftTableC[order]);
        for (long k = 1; k < static_cast<long>(sine.size()) - 1; ++k) {
            expectEntry(table[2 * k - 2], root(sine, k), "W(k)", order, k);
            expectEntry(table[2 * k - 1], root(sine, 3 * k), "W(3k)", order, k);
        }
    }
    for (int order : {0, 1, 2})
        EXPECT_NE(rvxGetFftTwdDif(order), nullptr);
}

TEST(FftTables, LargeQuarterCircleAndFromOrder14TheCoarseOne)
{
    for (int order : {10, 13, 14, 16}) {
        const std::vector<double> sine = sineQuarter(order);
        const ZCplx *table = rvxGetFftTwdLarge(order);
        EXPECT_EQ(table, rvxGetThreadContext()->fftTableA[order]);
        const long quarter = 1L << (order - 2);
        for (long k = 0; k < quarter; ++k)
            expectEntry(table[k], root(sine, k), "large", order, k);
        for (long k = 0; order >= 14 && k < 2048; ++k)
            expectEntry(table[quarter + k], root(sine, k << (order - 13)), "coarse", order, k);
    }
    dropTables();
}

TEST(FftTables, TwistsOfTheRealTransforms)
{
    for (int order = 2; order <= 12; ++order) {
        const std::vector<double> sine = sineQuarter(order);
        const std::size_t quarter = sine.size() - 1;
        const ZCplx *post = rvxGetRealTwistTbl(order);
        const ZCplx *pre = rvxGetCcsTwistTbl(order);
        for (std::size_t k = 0; k < quarter; ++k) {
            expectEntry(post[k], {0.5 * sine[quarter - k], 0.5 - 0.5 * sine[k]}, "post", order,
                        static_cast<long>(k));
            expectEntry(pre[k], {sine[quarter - k], -sine[k]}, "pre", order, static_cast<long>(k));
        }
        expectEntry(post[0], {0.5, 0.5}, "post", order, 0);
    }
    dropTables();
}

TEST(FftTables, FullCircleEntryByEntry)
{
    for (int order = 0; order <= 10; ++order) {
        const ZCplx *table = rvxzGetFftTwdTbl(order);
        const double step = 6.283185307179586 / static_cast<double>(1L << order);
        for (long k = 0; k < 1L << order; ++k) {
            const long double angle = static_cast<long double>(k) * step;
            expectEntry(
                table[k],
                {static_cast<double>(std::cos(angle)), -static_cast<double>(std::sin(angle))},
                "circle", order, k);
        }
    }
    dropTables();
}

TEST(FftTables, ReversalOfEveryIndex)
{
    for (int order = 0; order <= 14; ++order) {
        const int n = 1 << order;
        Guarded<std::uint32_t> table(n);
        rvxCalcBitRevTbl(table.data(), order);
        EXPECT_TRUE(table.intact());
        const std::uint32_t *cached = rvxGetBitRevTbl(order);
        for (int i = 0; i < n; ++i) {
            EXPECT_EQ(table[i], reversed(static_cast<std::uint32_t>(i), order)) << order;
            EXPECT_EQ(cached[i], table[i]) << order;
        }
    }
    dropTables();
}

TEST(FftTables, SwapList)
{
    EXPECT_NE(rvxGetBitRevSwapTbl(0), nullptr);
    EXPECT_NE(rvxGetBitRevSwapTbl(1), nullptr);
    for (int order = 2; order <= 14; ++order) {
        const std::uint32_t fields = std::uint32_t{1} << (order - 2);
        Words expected;
        for (std::uint32_t m = 1; m < fields; ++m)
            if (m < reversed(m, order - 2)) {
                expected.push_back(4 * m);
                expected.push_back(4 * reversed(m, order - 2));
            }
        expected.push_back(0);
        for (std::uint32_t m = fields - 1; m > 0; --m)
            if (m == reversed(m, order - 2))
                expected.push_back(4 * m);
        expected.push_back(0);
        ASSERT_EQ(expected.size(), fields + 1);
        const std::uint32_t *table = rvxGetBitRevSwapTbl(order);
        EXPECT_EQ(Words(table, table + fields + 1), expected) << order;
    }
    dropTables();
}

// ---- lifetime -------------------------------------------------------------

TEST(FftTables, GettersCacheAndRefuseOrdersWithoutAWord)
{
    Reports reports;
    dropTables();
    for (int order : {-1, 32, INT_MIN, INT_MAX}) {
        EXPECT_EQ(rvxGetFftTwdLarge(order), nullptr);
        EXPECT_EQ(rvxGetFftTwdDit(order), nullptr);
        EXPECT_EQ(rvxGetFftTwdDif(order), nullptr);
        EXPECT_EQ(rvxGetRealTwistTbl(order), nullptr);
        EXPECT_EQ(rvxGetCcsTwistTbl(order), nullptr);
        EXPECT_EQ(rvxGetBitRevSwapTbl(order), nullptr);
        rvxFreeFftTwdLarge(order);
        rvxFreeFftTwdDit(order);
        rvxFreeFftTwdDif(order);
        rvxFreeRealTwistTbl(order);
        rvxFreeCcsTwistTbl(order);
        rvxFreeBitRevSwapTbl(order);
        rvxFreeSmallTable(order);
    }
    EXPECT_EQ(cachedTables(), Names{});
    EXPECT_TRUE(reports.take().empty());
    for (int order : {0, 5, 9, 11}) {
        EXPECT_EQ(rvxGetFftTwdDit(order), rvxGetFftTwdDit(order));
        EXPECT_EQ(rvxGetFftTwdDif(order), rvxGetFftTwdDif(order));
        EXPECT_EQ(rvxGetRealTwistTbl(order), rvxGetRealTwistTbl(order));
        EXPECT_EQ(rvxGetCcsTwistTbl(order), rvxGetCcsTwistTbl(order));
        EXPECT_EQ(rvxGetBitRevSwapTbl(order), rvxGetBitRevSwapTbl(order));
    }
    dropTables();
}

TEST(FftTables, AboveOrder9AFormRestsOnTheLargeTableAndItsOrder9)
{
    dropTables();
    EXPECT_EQ(rvxGetFftTwdDit(10), rvxGetFftTwdLarge(10));
    EXPECT_EQ(cachedTables(), (Names{"dit 9", "large 10"}));
    EXPECT_EQ(rvxGetFftTwdDif(10), rvxGetFftTwdLarge(10));
    EXPECT_EQ(cachedTables(), (Names{"dit 9", "dif 9", "large 10"}));
    rvxFreeFftTwdDit(10);
    EXPECT_EQ(cachedTables(), (Names{"dif 9"}));
    rvxGetFftTwdDif(10);
    rvxGetFftTwdDit(10);
    rvxFreeFftTwdDif(10);
    EXPECT_EQ(cachedTables(), (Names{"dit 9"}));
    rvxGetFftTwdLarge(10);
    rvxGetFftTwdDif(9);
    rvxFreeFftTwdDit(9);
    EXPECT_EQ(cachedTables(), (Names{"dif 9", "large 10"}));
    rvxFreeFftTwdDif(9);
    rvxFreeFftTwdLarge(10);
    EXPECT_EQ(cachedTables(), Names{});
}

TEST(FftTables, EachReleaseDropsWhatItNames)
{
    AllocationWatch watch;
    rvxThreadContext *context = rvxGetThreadContext();
    const auto fill = [] {
        rvxGetFftTwdDit(5);
        rvxGetFftTwdDif(5);
        rvxGetFftTwdLarge(11);
        rvxGetRealTwistTbl(5);
        rvxGetCcsTwistTbl(5);
        rvxGetBitRevSwapTbl(5);
        rvxGetBitRevTbl(5);
        rvxzGetFftTwdTbl(5);
    };
    fill();
    rvxFreeRealTwistTbl(5);
    rvxFreeCcsTwistTbl(5);
    rvxFreeBitRevSwapTbl(5);
    EXPECT_EQ(cachedTables(), (Names{"circle 5", "reversal 5", "dit 5", "dif 5", "large 11"}));
    fill();
    rvxFreeFftTables();
    EXPECT_EQ(cachedTables(), (Names{"circle 5", "reversal 5"}));
    fill();
    rvxFreeBitRevTables();
    EXPECT_EQ(cachedTables(), (Names{"circle 5", "dit 5", "dif 5", "real 5", "ccs 5", "large 11"}));
    fill();
    for (int i = 0; i < RVX_SMALL_TABLES; ++i) {
        context->smallTable[i] = rvxAllocDoubles(3);
        context->smallTableKey[i] = 7;
    }
    context->sizedTableCount = 2;
    for (int i = 0; i < 2; ++i) {
        context->sizedTable[i] = rvxAllocDoubles(3);
        context->sizedTableKey[i] = 7;
    }
    rvxFreeTwdTables();
    EXPECT_EQ(cachedTables(), (Names{"reversal 5"}));
    EXPECT_EQ(context->sizedTableCount, 0);
    for (int i = 0; i < 2; ++i) {
        EXPECT_EQ(context->sizedTable[i], nullptr);
        EXPECT_EQ(context->sizedTableKey[i], 0u);
    }
    // The last small table is not visited.
    for (int i = 0; i < RVX_SMALL_TABLES; ++i) {
        EXPECT_EQ(context->smallTable[i] == nullptr, i < 4) << i;
        EXPECT_EQ(context->smallTableKey[i] == 0, i < 4) << i;
    }
    rvxFreeSmallTable(4);
    EXPECT_EQ(context->smallTable[4], nullptr);
    EXPECT_EQ(context->smallTableKey[4], 0u);
    rvxFreeBitRevTables();
    EXPECT_EQ(watch.live(), 0);
}

TEST(FftTables, AFailedAllocationLeavesNoTableAndNoBlock)
{
    using Getter = const void *(*)();
    const Getter getters[] = {
        [] { return static_cast<const void *>(rvxGetFftTwdLarge(11)); },
        [] { return static_cast<const void *>(rvxGetFftTwdDit(6)); },
        [] { return static_cast<const void *>(rvxGetFftTwdDif(6)); },
        [] { return static_cast<const void *>(rvxGetRealTwistTbl(6)); },
        [] { return static_cast<const void *>(rvxGetCcsTwistTbl(6)); },
        [] { return static_cast<const void *>(rvxGetBitRevSwapTbl(6)); },
        [] { return static_cast<const void *>(rvxGetBitRevSwapTbl(1)); },
    };
    for (Getter get : getters) {
        Reports reports;
        dropTables();
        long allocations;
        {
            AllocationWatch watch;
            EXPECT_NE(get(), nullptr);
            allocations = watch.allocations();
        }
        for (long k = 1; k <= allocations; ++k) {
            dropTables();
            AllocationWatch watch(k);
            EXPECT_EQ(get(), nullptr);
            EXPECT_EQ(watch.live(), 0);
            EXPECT_EQ(cachedTables(), Names{});
            EXPECT_NE(get(), nullptr);
        }
        EXPECT_TRUE(reports.take().empty());
    }
    dropTables();
}

// ---- the tables with checks of their own ----------------------------------

TEST(FftTables, NamedFunctionsCheckInTheirOrder)
{
    Reports reports;
    std::uint32_t word = 9;
    ZCplx value = {7.0, 8.0};
    const auto refused = [&](const char *func, const char *message, const char *file) {
        EXPECT_EQ(reports.take(), badArgument(func, message, file));
        EXPECT_EQ(word, 9u);
        EXPECT_EQ(value.re, 7.0);
        rvxSetErrStatus(RVX_STATUS_OK);
    };
    rvxCalcBitRevTbl(nullptr, -1);
    refused("rvxCalcBitRevTbl", "order<0", "rvxmisc");
    rvxCalcBitRevTbl(nullptr, 32);
    refused("rvxCalcBitRevTbl", "order>31", "rvxmisc");
    rvxCalcBitRevTbl(nullptr, 0);
    refused("rvxCalcBitRevTbl", "tbl==0", "rvxmisc");
    EXPECT_EQ(rvxGetBitRevTbl(-1), nullptr);
    refused("rvxGetBitRevTbl", "order<0", "rvxmisc");
    EXPECT_EQ(rvxGetBitRevTbl(32), nullptr);
    refused("rvxGetBitRevTbl", "order>31", "rvxmisc");
    rvxzbBitRev1(nullptr, -1);
    refused("rvxzbBitRev1", "order<0", "rvxmisc");
    rvxzbBitRev1(nullptr, 32);
    refused("rvxzbBitRev1", "order>31", "rvxmisc");
    rvxzbBitRev1(nullptr, 0);
    refused("rvxzbBitRev1", "vec==0", "rvxmisc");
    EXPECT_EQ(rvxzGetFftTwdTbl(-1), nullptr);
    refused("rvxzGetFftTwdTbl", "order<0", "rvxtwd");
    EXPECT_EQ(rvxzGetFftTwdTbl(32), nullptr);
    refused("rvxzGetFftTwdTbl", "order>31", "rvxtwd");
    rvxzCalcFftTwdTbl(nullptr, -1);
    refused("rvxzCalcFftTwdTbl", "order<0", "rvxtwd");
    rvxzCalcFftTwdTbl(nullptr, 32);
    refused("rvxzCalcFftTwdTbl", "order>31", "rvxtwd");
    rvxzCalcFftTwdTbl(nullptr, 0);
    refused("rvxzCalcFftTwdTbl", "tbl==0", "rvxtwd");
    rvxCalcBitRevTbl(&word, 0);
    EXPECT_EQ(word, 0u);
}

TEST(FftTables, ANegativeStatusHidesTheNamedTablesUntilItIsCleared)
{
    Reports reports;
    dropTables();
    const std::uint32_t *words = rvxGetBitRevTbl(4);
    const ZCplx *roots = rvxzGetFftTwdTbl(4);
    for (int order : {4, 5}) {
        rvxSetErrStatus(RVX_STATUS_BACKTRACE);
        EXPECT_EQ(rvxGetBitRevTbl(order), nullptr);
        EXPECT_EQ(rvxzGetFftTwdTbl(order), nullptr);
        EXPECT_EQ(rvxGetErrStatus(), RVX_STATUS_BACKTRACE);
    }
    EXPECT_EQ(cachedTables(), (Names{"circle 4", "reversal 4"}));
    // A positive status hides nothing.
    rvxSetErrStatus(1);
    EXPECT_EQ(rvxGetBitRevTbl(4), words);
    EXPECT_EQ(rvxzGetFftTwdTbl(4), roots);
    EXPECT_TRUE(reports.take().empty());
    dropTables();
}

TEST(FftTables, NamedTablesReportMissingMemory)
{
    Reports reports;
    dropTables();
    {
        AllocationWatch watch(1);
        EXPECT_EQ(rvxGetBitRevTbl(5), nullptr);
        EXPECT_EQ(reports.take(), (std::vector<Report>{{RVX_STATUS_NO_MEMORY, "rvxGetBitRevTbl",
                                                        "NULL Pointer", "rvxmisc"}}));
    }
    rvxSetErrStatus(RVX_STATUS_OK);
    {
        AllocationWatch watch(1);
        EXPECT_EQ(rvxzGetFftTwdTbl(5), nullptr);
        EXPECT_EQ(reports.take(), (std::vector<Report>{{RVX_STATUS_NO_MEMORY, "rvxzGetFftTwdTbl",
                                                        "NULL Pointer", "rvxtwd"}}));
    }
    EXPECT_EQ(cachedTables(), Names{});
    rvxSetErrStatus(RVX_STATUS_OK);
    EXPECT_NE(rvxGetBitRevTbl(5), nullptr);
    EXPECT_NE(rvxzGetFftTwdTbl(5), nullptr);
    dropTables();
}

// ---- reversal -------------------------------------------------------------

TEST(BitReversal, InPlaceAndCopiesAtEveryOrder)
{
    for (int order = 0; order <= 14; ++order) {
        const int n = 1 << order;
        std::vector<ZCplx> natural;
        std::vector<double> doubles;
        for (int i = 0; i < n; ++i) {
            natural.push_back({static_cast<double>(i), -static_cast<double>(i)});
            doubles.push_back(i);
        }
        Guarded<ZCplx> one(natural, order % 4);
        rvxzbBitRev1(one.data(), order);
        Guarded<ZCplx> inPlace(natural, 1);
        rvxBitRevInPlace(inPlace.data(), n, rvxGetBitRevSwapTbl(order));
        Guarded<ZCplx> source(natural, 2);
        Guarded<ZCplx> copy(n, 3);
        rvxBitRevCopy(source.data(), copy.data(), n, rvxGetBitRevSwapTbl(order));
        Guarded<double> realSource(doubles, 3);
        Guarded<double> realCopy(n, 1);
        rvxBitRevCopyDoubles(realSource.data(), realCopy.data(), n, rvxGetBitRevSwapTbl(order));
        EXPECT_TRUE(one.intact() && inPlace.intact() && source.intact() && copy.intact());
        EXPECT_TRUE(realSource.intact() && realCopy.intact());
        for (int i = 0; i < n; ++i) {
            const double expected = reversed(static_cast<std::uint32_t>(i), order);
            EXPECT_EQ(one[i].re, expected) << order << " at " << i;
            EXPECT_EQ(one[i].im, -expected) << order << " at " << i;
            EXPECT_EQ(inPlace[i].re, expected) << order << " at " << i;
            EXPECT_EQ(copy[i].re, expected) << order << " at " << i;
            EXPECT_EQ(copy[i].im, -expected) << order << " at " << i;
            EXPECT_EQ(realCopy[i], expected) << order << " at " << i;
            EXPECT_EQ(source[i].re, i);
            EXPECT_EQ(realSource[i], i);
        }
    }
}

// ---- the complex fronts ---------------------------------------------------

namespace {

enum Form { InPlace, NotInPlace, Split };

const Form allForms[] = {InPlace, NotInPlace, Split};

const char *nameOf(Form form)
{
    const char *const names[] = {"rvxzFft", "rvxzFftNip", "rvxzrFftNip"};
    return names[form];
}

// Calls the front with data, or with null pointers.
void callWithout(Form form, int order, int flags)
{
    switch (form) {
    case InPlace:
        return rvxzFft(nullptr, order, flags);
    case NotInPlace:
        return rvxzFftNip(nullptr, nullptr, order, flags);
    case Split:
        return rvxzrFftNip(nullptr, nullptr, nullptr, nullptr, order, flags);
    }
}

std::vector<ZCplx> transformed(Form form, const std::vector<ZCplx> &x, int order, int flags,
                               int misalignment = 0)
{
    const int n = static_cast<int>(x.size());
    Guarded<ZCplx> in(x, misalignment);
    Guarded<ZCplx> out(n, (misalignment + 1) % 4);
    if (form == InPlace) {
        rvxzFft(in.data(), order, flags);
        EXPECT_TRUE(in.intact());
        return in.values();
    }
    if (form == NotInPlace) {
        rvxzFftNip(in.data(), out.data(), order, flags);
        EXPECT_EQ(std::memcmp(in.data(), x.data(), x.size() * sizeof(ZCplx)), 0);
        EXPECT_TRUE(in.intact() && out.intact());
        return out.values();
    }
    Guarded<double> reIn(n, misalignment), imIn(n, 3 - misalignment);
    Guarded<double> reOut(n, 1), imOut(n, misalignment);
    for (int i = 0; i < n; ++i) {
        reIn[i] = x[static_cast<std::size_t>(i)].re;
        imIn[i] = x[static_cast<std::size_t>(i)].im;
    }
    rvxzrFftNip(reIn.data(), imIn.data(), reOut.data(), imOut.data(), order, flags);
    EXPECT_TRUE(reIn.intact() && imIn.intact() && reOut.intact() && imOut.intact());
    std::vector<ZCplx> result;
    for (int i = 0; i < n; ++i) {
        EXPECT_EQ(bitsOf(reIn[i]), bitsOf(x[static_cast<std::size_t>(i)].re));
        EXPECT_EQ(bitsOf(imIn[i]), bitsOf(x[static_cast<std::size_t>(i)].im));
        result.push_back({reOut[i], imOut[i]});
    }
    return result;
}

std::vector<ZCplx> noise(int n)
{
    std::mt19937_64 generator(static_cast<unsigned>(n));
    std::uniform_real_distribution<double> uniform(-1.0, 1.0);
    std::vector<ZCplx> x(static_cast<std::size_t>(n));
    for (ZCplx &z : x) {
        z.re = uniform(generator);
        z.im = uniform(generator);
    }
    return x;
}

std::vector<ZCplx> inReversedOrder(const std::vector<ZCplx> &x, int order)
{
    std::vector<ZCplx> result(x.size());
    for (std::size_t i = 0; i < x.size(); ++i)
        result[reversed(static_cast<std::uint32_t>(i), order)] = x[i];
    return result;
}

void expectSameBits(const std::vector<ZCplx> &actual, const std::vector<ZCplx> &expected,
                    const std::string &what)
{
    ASSERT_EQ(actual.size(), expected.size()) << what;
    for (std::size_t i = 0; i < actual.size(); ++i) {
        ASSERT_EQ(bitsOf(actual[i].re), bitsOf(expected[i].re)) << what << " at " << i;
        ASSERT_EQ(bitsOf(actual[i].im), bitsOf(expected[i].im)) << what << " at " << i;
    }
}

// Largest distance over the root mean square of what is expected.
double distance(const std::vector<ZCplx> &actual, const std::vector<ZExtended> &exact,
                long double factor)
{
    long double worst = 0.0L;
    long double energy = 0.0L;
    for (std::size_t i = 0; i < actual.size(); ++i) {
        const long double re = exact[i].re * factor;
        const long double im = exact[i].im * factor;
        worst = std::fmax(worst, std::hypot(actual[i].re - re, actual[i].im - im));
        energy += re * re + im * im;
    }
    return static_cast<double>(worst / std::sqrt(energy / static_cast<long double>(actual.size())));
}

} // namespace

TEST(FftFronts, EveryFormOrderingAndDirectionIsTheDft)
{
    Reports reports;
    for (int order = 1; order <= 15; ++order) {
        const std::vector<ZCplx> x = noise(1 << order);
        for (int direction : {1, 2}) {
            const std::vector<ZExtended> exact = dftInHalves(extended(x), direction == 1 ? 1 : -1);
            const long double factor = direction == 1 ? 1.0L : 1.0L / (1 << order);
            for (Form form : allForms)
                for (int ordering : {0, 32, 64, 128}) {
                    const bool reversedIn = ordering == 64;
                    std::vector<ZCplx> result =
                        transformed(form, reversedIn ? inReversedOrder(x, order) : x, order,
                                    direction | ordering);
                    if (ordering == 128)
                        result = inReversedOrder(result, order);
                    EXPECT_LT(distance(result, exact, factor), 0x1p-53 * order)
                        << nameOf(form) << " order " << order << " flags "
                        << (direction | ordering);
                }
        }
    }
    EXPECT_TRUE(reports.take().empty());
}

TEST(FftFronts, SameBitsAtEveryAlignmentWhateverIsCached)
{
    for (int order = 0; order <= 14; ++order) {
        const std::vector<ZCplx> x = noise(1 << order);
        for (Form form : allForms)
            for (int flags : {1, 2, 2 | 64, 1 | 128}) {
                dropTables();
                const std::vector<ZCplx> first = transformed(form, x, order, flags);
                rvxzFft(nullptr, 12, 4 | 128);
                rvxzFft(nullptr, 9, 4);
                for (int misalignment = 1; misalignment < 4; ++misalignment)
                    expectSameBits(transformed(form, x, order, flags, misalignment), first,
                                   std::string(nameOf(form)) + " order " + std::to_string(order));
            }
    }
    dropTables();
}

TEST(FftFronts, UnscaledInverseTimesOneOverNIsTheScaledOne)
{
    for (int order = 1; order <= 13; ++order) {
        const std::vector<ZCplx> x = noise(1 << order);
        for (Form form : allForms)
            for (int ordering : {0, 64, 128}) {
                std::vector<ZCplx> unscaled = transformed(form, x, order, 2 | 16 | ordering);
                for (ZCplx &z : unscaled)
                    z = {z.re * (1.0 / (1 << order)), z.im * (1.0 / (1 << order))};
                expectSameBits(transformed(form, x, order, 2 | ordering), unscaled, nameOf(form));
                // The forward direction never scales.
                expectSameBits(transformed(form, x, order, 1 | 16 | ordering),
                               transformed(form, x, order, 1 | ordering), nameOf(form));
            }
    }
}

TEST(FftFronts, OneAndTwoPoints)
{
    const double nan = std::numeric_limits<double>::quiet_NaN();
    for (Form form : allForms) {
        for (int flags : {1, 2, 2 | 16, 1 | 128, 2 | 64})
            expectSameBits(transformed(form, {{-0.0, nan}}, 0, flags), {{-0.0, nan}}, nameOf(form));
        const std::vector<ZCplx> two = {{3.0, -1.0}, {5.0, 4.0}};
        for (int ordering : {0, 32, 64, 128}) {
            expectSameBits(transformed(form, two, 1, 1 | ordering), {{8.0, 3.0}, {-2.0, -5.0}},
                           nameOf(form));
            expectSameBits(transformed(form, two, 1, 2 | ordering), {{4.0, 1.5}, {-1.0, -2.5}},
                           nameOf(form));
        }
    }
}

TEST(FftFronts, ScaleAfterTheLastAddition)
{
    const double tiny = std::numeric_limits<double>::denorm_min();
    const double big = std::numeric_limits<double>::max();
    for (Form form : allForms)
        for (int ordering : {0, 64, 128})
            for (int order = 1; order <= 10; ++order) {
                const std::size_t n = std::size_t{1} << order;
                const std::vector<ZCplx> faint(n, ZCplx{tiny, 0.0});
                EXPECT_EQ(transformed(form, faint, order, 2 | ordering)[0].re, tiny);
                const std::vector<ZCplx> loud(n, ZCplx{big, 0.0});
                EXPECT_FALSE(std::isfinite(transformed(form, loud, order, 2 | ordering)[0].re));
            }
}

TEST(FftFronts, BitReversedOrdersMayRunOverTheirInput)
{
    for (int order : {1, 3, 6, 10, 13}) {
        for (int flags : {1 | 128, 2 | 64}) {
            std::vector<ZCplx> x = noise(1 << order);
            const std::vector<ZCplx> expected = transformed(NotInPlace, x, order, flags);
            rvxzFftNip(x.data(), x.data(), order, flags);
            expectSameBits(x, expected, "order " + std::to_string(order));
        }
    }
}

TEST(FftFronts, ChecksInTheirOrder)
{
    Reports reports;
    std::vector<ZCplx> x = noise(16);
    const std::vector<ZCplx> before = x;
    double part[16] = {};
    const auto refused = [&](Form form, const char *message) {
        EXPECT_EQ(reports.take(), badArgument(nameOf(form), message, "rvxfftd"));
        EXPECT_EQ(rvxGetErrStatus(), RVX_STATUS_BAD_ARGUMENT);
        expectSameBits(x, before, nameOf(form));
    };
    const int everyWrongFlag = 3 | 32 | 64 | 128;
    for (Form form : allForms) {
        callWithout(form, -1, everyWrongFlag);
        refused(form, "order<0");
        callWithout(form, INT_MIN, 4);
        refused(form, "order<0");
        callWithout(form, 32, everyWrongFlag);
        refused(form, "order>31");
        callWithout(form, INT_MAX, 4);
        refused(form, "order>31");
    }
    for (int order : {0, 4}) {
        rvxzFft(nullptr, order, everyWrongFlag);
        refused(InPlace, "samps==0");
        rvxzFftNip(nullptr, nullptr, order, everyWrongFlag);
        refused(NotInPlace, "inSamps==0");
        rvxzFftNip(x.data(), nullptr, order, everyWrongFlag);
        refused(NotInPlace, "outSamps==0");
        rvxzrFftNip(nullptr, nullptr, nullptr, nullptr, order, everyWrongFlag);
        refused(Split, "reInSamps==0");
        rvxzrFftNip(part, nullptr, nullptr, nullptr, order, everyWrongFlag);
        refused(Split, "imInSamps==0");
        rvxzrFftNip(part, part, nullptr, nullptr, order, everyWrongFlag);
        refused(Split, "reOutSamps==0");
        rvxzrFftNip(part, part, part, nullptr, order, everyWrongFlag);
        refused(Split, "imOutSamps==0");
        const struct {
            int flags;
            const char *message;
        } bad[] = {
            {3 | 32 | 64 | 128, "(flags & 1) && (flags & 2)"},
            {32 | 64 | 128, "(flags & 1)==0 && (flags & 2)==0"},
            {32, "(flags & 1)==0 && (flags & 2)==0"},
            {16, "(flags & 1)==0 && (flags & 2)==0"},
            {1 | 32 | 64 | 128, "(flags & 64) && (flags & 128)"},
            {1 | 64 | 128, "(flags & 64) && (flags & 128)"},
            {2 | 32 | 64, "(flags & 64) && (flags & 32)"},
            {2 | 32 | 128, "(flags & 32) && (flags & 128)"},
        };
        for (const auto &row : bad) {
            rvxzFft(x.data(), order, row.flags);
            refused(InPlace, row.message);
            rvxzFftNip(x.data(), x.data(), order, row.flags);
            refused(NotInPlace, row.message);
            rvxzrFftNip(part, part, part, part, order, row.flags);
            refused(Split, row.message);
        }
    }
}

TEST(FftFronts, UnknownBitsChangeNothing)
{
    Reports reports;
    const std::vector<ZCplx> x = noise(64);
    for (Form form : allForms)
        for (int extra : {256 | 512 | 1024 | 4096, 2048, 1 << 20, INT_MIN})
            expectSameBits(transformed(form, x, 6, 1 | extra), transformed(form, x, 6, 1),
                           nameOf(form));
    EXPECT_TRUE(reports.take().empty());
}

TEST(FftFronts, TablesOfEachFormAreBuiltWarmedAndReleased)
{
    Reports reports;
    const struct {
        int flags; // beside a direction
        const char *form;
    } rows[] = {{0, "dit "},   {32, "dit "},       {64, "dit "},
                {128, "dif "}, {64 | 128, "dit "}, {32 | 128, "dif "}};
    for (Form form : allForms)
        for (const auto &row : rows)
            for (int order : {0, 1, 2, 7, 9, 11}) {
                const std::string number = std::to_string(order);
                Names expected = {"swap " + number, row.form + number};
                if (order == 11)
                    expected = {std::string(row.form) + "9", "swap 11", "large 11"};
                dropTables();
                // A warm-up looks at no data and at no direction.
                for (int direction : {0, 1, 3}) {
                    callWithout(form, order, 4 | direction | row.flags);
                    EXPECT_EQ(cachedTables(), expected) << nameOf(form) << " " << row.flags;
                }
                // The other form's tables stay, but for the swap list of both.
                callWithout(form, order, 8 | 4 | 3 | row.flags);
                EXPECT_EQ(cachedTables(), Names{}) << nameOf(form) << " " << row.flags;
            }
    EXPECT_TRUE(reports.take().empty());
    for (Form form : allForms) {
        callWithout(form, 6, 4);
        callWithout(form, 6, 4 | 128);
        callWithout(form, 7, 4);
        callWithout(form, 6, 8 | 128);
        EXPECT_EQ(cachedTables(), (Names{"dit 6", "swap 7", "dit 7"}));
        for (int order : {-1, 32, 33, INT_MIN, INT_MAX})
            callWithout(form, order, 8);
        EXPECT_EQ(cachedTables(), (Names{"dit 6", "swap 7", "dit 7"}));
        dropTables();
    }
    EXPECT_TRUE(reports.take().empty());
}

TEST(FftFronts, ARefusedCallHasBuiltItsTables)
{
    Reports reports;
    for (Form form : allForms) {
        dropTables();
        callWithout(form, 6, 1 | 128);
        EXPECT_EQ(cachedTables(), (Names{"swap 6", "dif 6"}));
        EXPECT_EQ(reports.take().size(), 1u);
    }
    dropTables();
}

TEST(FftFronts, ReleaseTouchesSmallTable3)
{
    rvxThreadContext *context = rvxGetThreadContext();
    for (Form form : allForms) {
        context->smallTable[3] = rvxAllocDoubles(1);
        context->smallTableKey[3] = 1;
        callWithout(form, 5, 8);
        EXPECT_EQ(context->smallTable[3], nullptr);
        EXPECT_EQ(context->smallTableKey[3], 0u);
    }
}

TEST(FftFronts, OneFailedAllocationCostsTheOtherTablesAndTheCallSucceeds)
{
    for (Form form : allForms)
        for (int ordering : {0, 128})
            for (int order : {1, 5, 11}) {
                const std::vector<ZCplx> x = noise(1 << order);
                dropTables();
                const std::vector<ZCplx> expected = transformed(form, x, order, 1 | ordering);
                const Names tables = cachedTables();
                dropTables();
                long allocations;
                {
                    AllocationWatch watch;
                    callWithout(form, order, 4 | ordering);
                    allocations = watch.allocations();
                }
                for (long k = 1; k <= allocations; ++k) {
                    Reports reports;
                    dropTables();
                    rvxGetFftTwdDit(3);
                    rvxGetCcsTwistTbl(4);
                    {
                        AllocationWatch watch(k);
                        callWithout(form, order, 4 | ordering);
                        EXPECT_EQ(watch.failures(), 1);
                    }
                    EXPECT_EQ(cachedTables(), tables) << nameOf(form) << " k " << k;
                    expectSameBits(transformed(form, x, order, 1 | ordering), expected,
                                   nameOf(form));
                    EXPECT_TRUE(reports.take().empty());
                }
            }
    dropTables();
}

TEST(FftFronts, WithoutMemoryTheCallIsRefusedAndNothingStaysOrLeaks)
{
    for (Form form : allForms)
        for (int ordering : {0, 128})
            for (int order : {0, 5, 11})
                for (long k = 1; k <= 2; ++k) {
                    Reports reports;
                    dropTables();
                    {
                        AllocationWatch watch;
                        watch.failAllFrom(k);
                        callWithout(form, order, 4 | ordering);
                        EXPECT_EQ(watch.live(), 0);
                    }
                    EXPECT_EQ(reports.take(),
                              (std::vector<Report>{{RVX_STATUS_NO_MEMORY, nameOf(form),
                                                    "No working Twd memory", "rvxfftd"}}));
                    EXPECT_EQ(cachedTables(), Names{});
                    callWithout(form, order, 4 | ordering);
                    EXPECT_TRUE(reports.take().empty());
                }
    dropTables();
}

// What is cached does not depend on what went wrong before.
TEST(FftFronts, AStaleStatusIsNeitherObeyedNorCleared)
{
    Reports reports;
    const std::vector<ZCplx> x = noise(64);
    for (Form form : allForms) {
        const std::vector<ZCplx> expected = transformed(form, x, 6, 2);
        dropTables();
        rvxSetErrStatus(RVX_STATUS_NO_MEMORY);
        expectSameBits(transformed(form, x, 6, 2), expected, nameOf(form));
        EXPECT_EQ(rvxGetErrStatus(), RVX_STATUS_NO_MEMORY);
    }
    EXPECT_TRUE(reports.take().empty());
}

TEST(FftFrontsDeathTest, AFailedCheckEndsTheProcessInModeZero)
{
    for (Form form : allForms)
        EXPECT_EXIT(callWithout(form, 3, 1), ::testing::ExitedWithCode(1), "");
    EXPECT_EXIT(rvxCalcBitRevTbl(nullptr, 1), ::testing::ExitedWithCode(1), "");
    EXPECT_EXIT(rvxzCalcFftTwdTbl(nullptr, 1), ::testing::ExitedWithCode(1), "");
}
