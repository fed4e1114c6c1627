// The cosine transform.

#include <algorithm>
#include <climits>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <thread>
#include <vector>

#include <gtest/gtest.h>
#include <mpfr.h>

#include "frame/rvxbuffer.h"
#include "frame/rvxthread.h"
#include "reference/correct.h"
#include "reference/dct.h"
#include "rvx.h"
#include "support/allocations.h"
#include "support/bits.h"
#include "support/blocks.h"
#include "support/guarded.h"
#include "support/reports.h"

namespace {

using reference::Reals;

const char *const NULL_DATA = "\nNull pointer to data buffer\n";
const char *const BAD_SIZE = "\nBad value of data buffer size\n";
const char *const BAD_FLAG = "\nBad value of the transform flag\n";
const char *const NO_MEMORY = "\nMemory allocation problem\n";

const int directions[] = {RVX_FFT_FORWARD, RVX_FFT_INVERSE};

constexpr double UNWRITTEN = -12345.678;

// Every test starts with a record as a new thread has it, and leaves no tables behind.
class Dct : public ::testing::Test {
protected:
    void SetUp() override
    {
        rvxGetThreadContext()->dctScale = 0.0;
        rvxGetThreadContext()->dctStageScale = 0.0;
    }
    void TearDown() override { release(); }

    static void release() { rvxdDct(nullptr, nullptr, 0, RVX_FFT_FREE_TABLES); }

    Reports reports;
};

bool isPowerOfTwo(int n)
{
    return (n & (n - 1)) == 0;
}

std::vector<int> lengths(int longestSum, int longestPower)
{
    std::vector<int> all;
    for (int len = 1; len <= longestSum; ++len)
        all.push_back(len);
    for (int len = 1; len <= longestPower; len *= 2)
        if (len > longestSum)
            all.push_back(len);
    return all;
}

Reals noise(int n, unsigned seed)
{
    return makeBlock(Temper::uniform, n, seed);
}

Reals transformed(const Reals &x, int flags)
{
    Reals y(x.size(), UNWRITTEN);
    rvxdDct(x.data(), y.data(), static_cast<int>(x.size()), flags);
    return y;
}

// What the results are bound to, bit by bit.
Reals bySteps(const Reals &x, int flags)
{
    const bool forward = flags == RVX_FFT_FORWARD;
    if (x.size() > 1 && x.size() < 16 && isPowerOfTwo(static_cast<int>(x.size())))
        return forward ? reference::shortForward(x) : reference::shortInverse(x);
    if (x.size() > 1 && isPowerOfTwo(static_cast<int>(x.size())))
        return forward ? reference::halvedForward(x) : reference::halvedInverse(x);
    return forward ? reference::summedForward(x) : reference::summedInverse(x);
}

// The first element that differs, or -1.
int firstDifference(const Reals &a, const Reals &b)
{
    for (std::size_t i = 0; i < a.size(); ++i)
        if (!same(a[i], b[i]))
            return static_cast<int>(i);
    return -1;
}

double rootMeanSquare(const Reals &x)
{
    double sum = 0.0;
    for (double v : x)
        sum += v * v;
    return std::sqrt(sum / static_cast<double>(x.size()));
}

// The largest error of the results at these places, in units of 2^-53 of the input's root
// mean square, which is also the exact results'.
double worstError(const Reals &x, int flags, const std::vector<std::size_t> &places)
{
    const reference::CosineSums exact(x.size());
    const Reals y = transformed(x, flags);
    double worst = 0.0;
    for (std::size_t k : places) {
        const long double right =
            flags == RVX_FFT_FORWARD ? exact.forward(x, k) : exact.inverse(x, k);
        worst = std::max(worst, static_cast<double>(std::fabs(y[k] - right)));
    }
    return worst / rootMeanSquare(x) * 0x1p53;
}

// Measured with 40 signals of each length to 130 and four beyond: 2.24 (2 + sqrt(L)) for
// sums and 13.7 sqrt(L) for halvings, where the last secants are large. With 200000 of
// each of the straight lines: 2.40 sqrt(L) for 2 and 4 points, 7.9 sqrt(L) for 8.
double errorBound(int len)
{
    const double root = std::sqrt(static_cast<double>(len));
    if (len == 2 || len == 4)
        return 2.5 * root;
    if (len == 8)
        return 8.0 * root;
    return isPowerOfTwo(len) ? 14.0 * root : 2.3 * (2.0 + root);
}

std::vector<std::size_t> allPlaces(int len)
{
    std::vector<std::size_t> places;
    for (std::size_t k = 0; k < static_cast<std::size_t>(len); ++k)
        places.push_back(k);
    return places;
}

} // namespace

// ---- results -------------------------------------------------------------------

TEST_F(Dct, EveryLengthTo130IsTheSumOfItsDefinition)
{
    for (int len = 1; len <= 130; ++len)
        for (int flags : directions)
            for (unsigned seed = 0; seed < 4; ++seed) {
                EXPECT_LE(worstError(noise(len, seed), flags, allPlaces(len)), errorBound(len))
                    << len << ", flags " << flags;
            }
}

TEST_F(Dct, LongPowersOfTwoAreTheSumsOfTheirDefinition)
{
    for (int len = 256; len <= 65536; len *= 4)
        for (int flags : directions) {
            std::vector<std::size_t> places;
            const auto L = static_cast<std::size_t>(len);
            for (std::size_t k : {std::size_t{0}, std::size_t{1}, std::size_t{2}, L / 4, L / 2 - 1,
                                  L / 2, L / 3, L - 3, L - 2, L - 1})
                places.push_back(k);
            EXPECT_LE(worstError(noise(len, 7), flags, places), errorBound(len))
                << len << ", flags " << flags;
        }
}

TEST_F(Dct, OtherLengthsAboveThoseLaidOutAreTheStatedSums)
{
    for (int len : {131, 140, 151, 255, 500, 513, 999, 1000})
        for (int flags : directions) {
            const Reals x = noise(len, 9);
            ASSERT_EQ(firstDifference(transformed(x, flags), bySteps(x, flags)), -1)
                << len << ", flags " << flags;
            EXPECT_LE(worstError(x, flags, {0, 1, 2, 50, 99, 130}), errorBound(len)) << len;
        }
}

TEST_F(Dct, ArraysMayOverlapInAnyWay)
{
    for (int len : {2, 4, 8, 16, 32, 128, 100, 101, 150})
        for (int flags : directions)
            for (int shift : {1, len / 4, len / 2, len - 1, -1, -len / 2, 1 - len}) {
                const Reals x = noise(len, 4), expected = transformed(x, flags);
                const int from = std::max(-shift, 0), to = std::max(shift, 0);
                Reals room(2 * x.size());
                std::copy(x.begin(), x.end(), room.begin() + from);
                rvxdDct(room.data() + from, room.data() + to, len, flags);
                room.erase(room.begin(), room.begin() + to);
                room.resize(x.size());
                ASSERT_EQ(firstDifference(room, expected), -1) << len << ", " << shift;
            }
}

TEST_F(Dct, TheInverseUndoesTheForwardTransform)
{
    for (int len : lengths(130, 16384)) {
        Reals x = noise(len, 6);
        const Reals before = x;
        rvxdDct(x.data(), x.data(), len, RVX_FFT_FORWARD);
        rvxdDct(x.data(), x.data(), len, RVX_FFT_INVERSE);
        double worst = 0.0;
        for (std::size_t n = 0; n < x.size(); ++n)
            worst = std::max(worst, std::fabs(x[n] - before[n]));
        EXPECT_LE(worst * 0x1p53 / rootMeanSquare(before), 2.5 * errorBound(len)) << len;
    }
}

TEST_F(Dct, ShortLinesKeepZerosAndSpreadWhatIsNotFinite)
{
    for (int len : {1, 2, 4, 8})
        for (int flags : directions) {
            const auto L = static_cast<std::size_t>(len);
            for (double y : transformed(Reals(L, 0.0), flags))
                EXPECT_EQ(bitsOf(y), bitsOf(0.0)) << len;
            for (std::size_t at = 0; at < L; ++at) {
                Reals x(L, 1.0);
                x[at] = QUIET;
                for (double y : transformed(x, flags))
                    EXPECT_TRUE(std::isnan(y)) << len;
            }
        }
}

TEST_F(Dct, ASingleSampleStaysAsItIs)
{
    for (double x : {1.5, 0.0, -0.0, 5e-324, -1e308, INF, -INF})
        for (int flags : directions)
            EXPECT_EQ(bitsOf(transformed({x}, flags)[0]), bitsOf(x)) << x << ", flags " << flags;
}

TEST_F(Dct, ResultsAreTheStatedSumsBitByBit)
{
    const Temper tempers[] = {Temper::uniform, Temper::wideRange, Temper::subnormal,
                              Temper::zeros,   Temper::specials,  Temper::nearOverflow};
    for (int len : lengths(130, 4096))
        for (int flags : directions)
            for (Temper temper : tempers) {
                if (len > 200 && temper != Temper::uniform)
                    continue;
                const Reals x = makeBlock(temper, len, 3);
                ASSERT_EQ(firstDifference(transformed(x, flags), bySteps(x, flags)), -1)
                    << len << ", flags " << flags << ", " << temper;
            }
}

// The last result of a D4 is a sum without a neighbour: it keeps the sign of a zero.
TEST_F(Dct, ZerosOfAllSignsAreTheStatedSumsBitByBit)
{
    std::uint32_t signs = 1;
    for (int len : {16, 32, 64})
        for (int flags : directions)
            for (int i = 0; i < 2000; ++i) {
                Reals x(static_cast<std::size_t>(len));
                for (double &v : x) {
                    signs = signs * 1664525u + 1013904223u;
                    v = (signs >> 30) == 0 ? -0.0 : 0.0;
                }
                ASSERT_EQ(firstDifference(transformed(x, flags), bySteps(x, flags)), -1)
                    << len << ", flags " << flags << ", " << i;
            }
}

TEST_F(Dct, InPlaceAndAtAnyAlignmentAllIsTheSameAndNothingElseIsTouched)
{
    for (int len : lengths(70, 2048))
        for (int flags : directions) {
            const Reals x = noise(len, 5), expected = transformed(x, flags);
            for (int at = 0; at < 4; ++at) {
                Guarded<double> src(x, at), dst(len, (at + 1) % 4), both(x, at);
                rvxdDct(src.data(), dst.data(), len, flags);
                rvxdDct(both.data(), both.data(), len, flags);
                ASSERT_EQ(firstDifference(dst.values(), expected), -1) << len;
                ASSERT_EQ(firstDifference(both.values(), expected), -1) << len;
                ASSERT_EQ(firstDifference(src.values(), x), -1) << len;
                ASSERT_TRUE(src.intact() && dst.intact() && both.intact()) << len;
            }
        }
}

// ---- arguments -----------------------------------------------------------------

TEST_F(Dct, ChecksInTheirOrder)
{
    double x[4] = {1.0, 2.0, 3.0, 4.0}, y[4] = {UNWRITTEN, UNWRITTEN, UNWRITTEN, UNWRITTEN};
    const auto refused = [&](const double *src, double *dst, int len, int flags,
                             const char *message) {
        rvxdDct(src, dst, len, flags);
        EXPECT_EQ(reports.take(), badArgument("rvxdDct", message, "rvxdct"));
        for (double v : y)
            EXPECT_EQ(v, UNWRITTEN);
    };
    refused(nullptr, y, 0, 0, NULL_DATA);
    refused(x, nullptr, 0, 0, NULL_DATA);
    refused(nullptr, y, 4, RVX_FFT_FORWARD, NULL_DATA);
    refused(nullptr, nullptr, 4, RVX_FFT_FREE_TABLES | RVX_FFT_INIT_TABLES, NULL_DATA);
    refused(x, y, 0, 0, BAD_SIZE);
    refused(x, y, 0, RVX_FFT_FORWARD, BAD_SIZE);
    refused(x, y, -1, RVX_FFT_FORWARD, BAD_SIZE);
    refused(x, y, INT_MIN, RVX_FFT_INVERSE, BAD_SIZE);
    for (int flags : {0, 3, 4, 11, 12, 16, 8 | 16, 8 | 32, 8 | INT_MIN, -1, -4})
        refused(x, y, 4, flags, BAD_FLAG);
    EXPECT_EQ(rvxGetThreadContext()->dctCosTable, nullptr);
    EXPECT_EQ(rvxGetThreadContext()->dctStageTables, nullptr);
}

TEST(DctInModeZero, ABadArgumentEndsTheProcess)
{
    EXPECT_EXIT(rvxdDct(nullptr, nullptr, 1, RVX_FFT_FORWARD), ::testing::ExitedWithCode(1), "");
}

// ---- tables --------------------------------------------------------------------

namespace {

// The tables as the thread's record has them.
struct Held {
    std::int32_t cosineCount, stageCount;
    const double *cosines;
    double *const *stages;
    double scale, stageScale;
};

Held held()
{
    const rvxThreadContext *thread = rvxGetThreadContext();
    return {thread->dctCosLen,      thread->dctStageCount, thread->dctCosTable,
            thread->dctStageTables, thread->dctScale,      thread->dctStageScale};
}

void run(int len, int flags = RVX_FFT_FORWARD)
{
    transformed(noise(len, 1), flags);
}

int halvings(int len)
{
    int count = 0;
    for (; len > 8; len /= 2)
        ++count;
    return count;
}

double oneOverRoot(int len)
{
    return 1.0 / std::sqrt(static_cast<double>(len));
}

// How far a table's entry is from cos(i * step), or from 0.5 over that, in units in the
// last place.
double entryError(double entry, int i, double step, bool secant)
{
    MPFR_DECL_INIT(value, 160);
    mpfr_set_d(value, step, MPFR_RNDN);
    mpfr_mul_si(value, value, i, MPFR_RNDN);
    mpfr_cos(value, value, MPFR_RNDN);
    if (secant)
        mpfr_d_div(value, 0.5, value, MPFR_RNDN);
    return reference::ulpsBetween(entry, value);
}

constexpr double ROUNDED_ONCE = 0.502;

} // namespace

TEST_F(Dct, TheCosineTableHasFourTimesTheLength)
{
    for (int len : {1, 3, 6, 12, 100, 999}) {
        run(len);
        const Held now = held();
        ASSERT_EQ(now.cosineCount, 4 * len);
        EXPECT_EQ(now.scale, oneOverRoot(len));
        EXPECT_EQ(reinterpret_cast<std::uintptr_t>(now.cosines) % 32, 0u);
        const double step = reference::PI_AS_DOUBLE / (2 * len);
        for (int i = 0; i < 4 * len; ++i)
            ASSERT_LE(entryError(now.cosines[i], i, step, false), ROUNDED_ONCE) << len << ", " << i;
        EXPECT_EQ(now.stages, nullptr);
        EXPECT_EQ(now.stageCount, 0);
        EXPECT_EQ(now.stageScale, 0.0);
    }
}

TEST_F(Dct, TheStageTablesAreSecantsOfEveryHalfLengthFrom8)
{
    for (int len : {16, 32, 1024, 64, 16384}) {
        run(len, RVX_FFT_INVERSE);
        const Held now = held();
        ASSERT_EQ(now.stageCount, halvings(len));
        EXPECT_EQ(now.stageScale, oneOverRoot(len));
        for (int place = 0; place < now.stageCount; ++place) {
            const int m = 8 << place;
            const double step = reference::PI_AS_DOUBLE / (4 * m);
            EXPECT_EQ(reinterpret_cast<std::uintptr_t>(now.stages[place]) % 32, 0u);
            for (int n = 0; n < m; ++n)
                ASSERT_LE(entryError(now.stages[place][n], 2 * n + 1, step, true), ROUNDED_ONCE)
                    << len << ", " << m << ", " << n;
        }
        EXPECT_EQ(now.cosines, nullptr);
        EXPECT_EQ(now.cosineCount, 0);
        EXPECT_EQ(now.scale, 0.0);
    }
}

TEST_F(Dct, LengthsOf2And4TouchNoTables)
{
    run(2);
    run(4);
    EXPECT_EQ(held().stages, nullptr);
    EXPECT_EQ(held().stageScale, 0.0);
    run(32);
    const Held before = held();
    run(4, RVX_FFT_INVERSE);
    run(2, RVX_FFT_INVERSE);
    EXPECT_EQ(held().stages, before.stages);
    EXPECT_EQ(held().stageCount, 2);
    EXPECT_EQ(held().stageScale, oneOverRoot(32));
}

TEST_F(Dct, ALengthOf8KeepsAnEmptySetInPlaceOfAnother)
{
    run(8);
    EXPECT_EQ(held().stages, nullptr); // none are wanted and none are there
    EXPECT_EQ(held().stageScale, 0.0);
    run(16);
    run(8);
    EXPECT_NE(held().stages, nullptr);
    EXPECT_EQ(held().stageCount, 0);
    EXPECT_EQ(held().stageScale, oneOverRoot(8));
    const Held before = held();
    run(8, RVX_FFT_INVERSE);
    EXPECT_EQ(held().stages, before.stages);
    const Reals x = noise(16, 2);
    EXPECT_EQ(firstDifference(transformed(x, RVX_FFT_FORWARD), bySteps(x, RVX_FFT_FORWARD)), -1);
    EXPECT_EQ(held().stageCount, 1);
    EXPECT_EQ(held().stageScale, oneOverRoot(16));
}

TEST_F(Dct, TablesAreKeptForTheLengthThatCameLast)
{
    for (int first : {100, 64}) {
        run(first);
        {
            double x[100] = {};
            AllocationWatch watch;
            rvxdDct(x, x, first, RVX_FFT_INVERSE);
            EXPECT_EQ(watch.allocations(), 1); // the copy
            EXPECT_EQ(watch.live(), 0);
        }
        const Reals x = noise(first, 2), y = transformed(x, RVX_FFT_FORWARD);
        run(first == 100 ? 99 : 256);
        EXPECT_EQ(firstDifference(transformed(x, RVX_FFT_FORWARD), y), -1);
    }
    EXPECT_EQ(held().cosineCount, 400);
    EXPECT_EQ(held().stageCount, 3);
}

TEST_F(Dct, TheSingleFlag8ReleasesBothSetsAndNoOtherDoes)
{
    AllocationWatch watch;
    run(100);
    run(32);
    EXPECT_EQ(watch.live(), 4); // cosines; the list and two tables
    double x[32] = {}, y[32];
    for (int flags : {9, 10, 8 | 16 | 1}) {
        rvxdDct(x, y, 32, flags);
        EXPECT_EQ(held().stageCount, 2);
        EXPECT_EQ(held().cosineCount, 400);
    }
    const Held before = held();
    rvxdDct(x, x, 32, RVX_FFT_FREE_TABLES); // looks at nothing else
    EXPECT_EQ(held().cosines, nullptr);
    EXPECT_EQ(held().cosineCount, 0);
    EXPECT_EQ(held().stages, nullptr);
    EXPECT_EQ(held().stageCount, 0);
    EXPECT_EQ(held().scale, before.scale);
    EXPECT_EQ(held().stageScale, before.stageScale);
    EXPECT_EQ(watch.live(), 0);
    release(); // of nothing
    EXPECT_EQ(reports.take(), std::vector<Report>());
    run(16);
    run(8);
    release(); // an empty set
    EXPECT_EQ(held().stages, nullptr);
    EXPECT_EQ(watch.live(), 0);
}

TEST_F(Dct, EachAllocationFailsOnce)
{
    for (int len : {1, 2, 4, 8, 16, 64, 1024, 3, 100})
        for (int before : {0, 16, 8, 128, 12})
            for (int flags : directions)
                for (long k = 1;; ++k) {
                    release();
                    if (before != 0)
                        run(before);
                    const Held kept = held();
                    const Reals x = noise(len, 3);
                    Reals y(x.size(), UNWRITTEN);
                    AllocationWatch watch(k);
                    rvxdDct(x.data(), y.data(), len, flags);
                    if (watch.failures() == 0) {
                        // One copy, and what was missing.
                        EXPECT_GE(k, 2);
                        EXPECT_LE(k, 4 + halvings(len));
                        EXPECT_EQ(reports.take(), std::vector<Report>());
                        break;
                    }
                    AllocationPause pause;
                    const std::vector<Report> expected = {
                        {RVX_STATUS_NO_MEMORY, "rvxdDct", NO_MEMORY, "rvxdct"}};
                    EXPECT_EQ(reports.take(), expected);
                    EXPECT_EQ(firstDifference(y, Reals(x.size(), UNWRITTEN)), -1);
                    const Held left = held();
                    if (k == 1) {
                        // Without the copy nothing was looked at.
                        EXPECT_EQ(left.stages, kept.stages);
                        EXPECT_EQ(left.cosines, kept.cosines);
                    } else if (isPowerOfTwo(len) && len > 1) {
                        EXPECT_EQ(left.stages, nullptr);
                        EXPECT_EQ(left.stageCount, 0);
                        EXPECT_EQ(left.cosines, kept.cosines);
                    } else {
                        EXPECT_EQ(left.cosines, nullptr);
                        EXPECT_EQ(left.cosineCount, 0);
                        EXPECT_EQ(left.stages, kept.stages);
                    }
                    rvxdDct(x.data(), y.data(), len, flags);
                    EXPECT_EQ(reports.take(), std::vector<Report>());
                    EXPECT_EQ(firstDifference(y, bySteps(x, flags)), -1);
                }
}

TEST_F(Dct, NothingStaysAllocatedAfterFailures)
{
    const double x[64] = {};
    double y[64];
    for (int len : {64, 60})
        for (long k = 1; k <= (len == 64 ? 5 : 2); ++k) { // the copy, the list, three tables
            rvxSetErrStatus(RVX_STATUS_OK);
            AllocationWatch watch;
            watch.failAllFrom(k);
            rvxdDct(x, y, len, RVX_FFT_FORWARD);
            EXPECT_EQ(watch.live(), 0) << len << ", " << k;
            EXPECT_EQ(rvxGetErrStatus(), RVX_STATUS_NO_MEMORY) << len << ", " << k;
        }
}

TEST_F(Dct, ATableThatTheRecordCannotCountIsMemoryThatIsNotThere)
{
    run(100);
    const std::vector<Report> expected = {{RVX_STATUS_NO_MEMORY, "rvxdDct", NO_MEMORY, "rvxdct"}};
    // Four times the first is more than an int; sixteen times the second more than 32 bits.
    for (int len : {536870913, 268435457}) {
        double x = 0.0;
        rvxdDct(&x, &x, len, RVX_FFT_FORWARD);
        EXPECT_EQ(reports.take(), expected) << len;
        EXPECT_EQ(x, 0.0);
    }
}

TEST_F(Dct, TablesBelongToAThreadAndOutliveIt)
{
    run(64);
    run(100);
    const Held ours = held();
    Held theirs{};
    std::thread([&theirs] {
        rvxSetErrMode(1);
        EXPECT_EQ(held().stages, nullptr);
        EXPECT_EQ(held().cosines, nullptr);
        run(64);
        run(100);
        theirs = held();
    }).join();
    EXPECT_NE(theirs.stages, ours.stages);
    EXPECT_NE(theirs.cosines, ours.cosines);
    EXPECT_EQ(std::memcmp(static_cast<const void *>(theirs.cosines),
                          static_cast<const void *>(ours.cosines), 400 * sizeof(double)),
              0);
    for (int place = 0; place < 3; ++place) {
        const auto bytes = static_cast<std::size_t>(8 << place) * sizeof(double);
        EXPECT_EQ(std::memcmp(theirs.stages[place], ours.stages[place], bytes), 0);
        rvxFreeAligned(theirs.stages[place]);
    }
    rvxFreeAligned(const_cast<double **>(theirs.stages));
    rvxFreeAligned(const_cast<double *>(theirs.cosines));
}

TEST_F(Dct, AStatusOfEarlierCallsPlaysNoPart)
{
    rvxSetErrStatus(RVX_STATUS_BAD_ARGUMENT);
    for (int len : {4, 16, 20}) {
        const Reals x = noise(len, 1);
        EXPECT_NE(transformed(x, RVX_FFT_FORWARD)[0], UNWRITTEN);
    }
    EXPECT_EQ(rvxGetErrStatus(), RVX_STATUS_BAD_ARGUMENT);
    rvxSetErrStatus(0);
}
