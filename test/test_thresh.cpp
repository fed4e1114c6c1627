// Thresholds, absolute values, squares; reciprocals with a threshold.

#include <cmath>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <limits>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <mpfr.h>

#include "reference/correct.h"
#include "reference/threshold.h"
#include "support/vec_forms.h"

namespace {

const char *const zeroElement = "zero element and zero thresh";

const Forms<double> realSquare{"rvxdbSqr", rvxdbSqr1, rvxdbSqr2, nullptr};
const Forms<ZCplx> cplxSquare{"rvxzbSqr", rvxzbSqr1, rvxzbSqr2, nullptr};
const Forms<double> absolute{"rvxdbAbs", rvxdbAbs1, rvxdbAbs2, nullptr};

Forms<double> realThresh(double thresh, int relOp)
{
    return {"rvxdbThresh", [=](double *vec, int len) { rvxdbThresh1(vec, len, thresh, relOp); },
            [=](const double *src, double *dst, int len) {
                rvxdbThresh2(src, dst, len, thresh, relOp);
            },
            nullptr};
}

Forms<ZCplx> cplxThresh(double thresh, int relOp)
{
    return {
        "rvxzbThresh", [=](ZCplx *vec, int len) { rvxzbThresh1(vec, len, thresh, relOp); },
        [=](const ZCplx *src, ZCplx *dst, int len) { rvxzbThresh2(src, dst, len, thresh, relOp); },
        nullptr};
}

Forms<double> realInverse(double thresh)
{
    return {
        "rvxdbInvThresh", [=](double *vec, int len) { rvxdbInvThresh1(vec, len, thresh); },
        [=](const double *src, double *dst, int len) { rvxdbInvThresh2(src, dst, len, thresh); },
        zeroElement};
}

Forms<ZCplx> cplxInverse(double thresh)
{
    return {"rvxzbInvThresh", [=](ZCplx *vec, int len) { rvxzbInvThresh1(vec, len, thresh); },
            [=](const ZCplx *src, ZCplx *dst, int len) { rvxzbInvThresh2(src, dst, len, thresh); },
            zeroElement};
}

template <typename T, typename Op>
Steps<T> each(Op op)
{
    return [=](const T *src, T *dst, int n) {
        for (int i = 0; i < n; ++i)
            dst[i] = op(src[i]);
        return false;
    };
}

const Steps<double> squareSteps = each<double>([](double x) { return x * x; });
const Steps<double> absoluteSteps =
    each<double>([](double x) { return fromBits(bitsOf(x) & ~(1ULL << 63)); });
const Steps<ZCplx> cplxSquareSteps = each<ZCplx>([](ZCplx z) -> ZCplx {
    const double sum = z.re + z.im, difference = z.re - z.im, product = z.re * z.im;
    return {sum * difference, product + product};
});

Steps<double> threshSteps(double thresh, int relOp)
{
    return each<double>([=](double x) { return reference::limited(x, thresh, relOp); });
}

Steps<ZCplx> cplxThreshSteps(double thresh, int relOp)
{
    return each<ZCplx>([=](ZCplx z) { return reference::limited(z, thresh, relOp); });
}

Steps<double> inverseSteps(double thresh)
{
    if (!(thresh > 0.0))
        return
            [](const double *src, double *dst, int n) { return reference::inverted(src, dst, n); };
    return each<double>([=](double x) { return reference::invertedBounded(x, thresh); });
}

Steps<ZCplx> cplxInverseSteps(double thresh)
{
    return [=](const ZCplx *src, ZCplx *dst, int n) {
        return reference::inverted(src, dst, n, thresh);
    };
}

std::vector<double> drawn(Draw &draw, int n, double (Draw::*kind)(), double)
{
    return draw.block(n, kind);
}

std::vector<ZCplx> drawn(Draw &draw, int n, double (Draw::*kind)(), ZCplx)
{
    return draw.cplxBlock(n, kind);
}

// Every length and alignment on ordinary numbers.
template <typename T>
void expectEveryShape(const Forms<T> &forms, const Steps<T> &steps, unsigned seed,
                      bool (*agree)(T, T) = static_cast<bool (*)(T, T)>(same))
{
    Draw draw(seed);
    for (int n = 1; n <= 80; ++n)
        for (int at = 0; at < 16; ++at) {
            expectForms<T>(forms, drawn(draw, n, &Draw::ordinary, T{}), steps, at / 4, at % 4,
                           agree);
            if (::testing::Test::HasFatalFailure())
                return;
        }
}

// Blocks of 1 to 40 elements of mixed kinds and of any pattern.
template <typename T>
void expectPatterns(const Forms<T> &forms, const Steps<T> &steps, unsigned seed, int rounds,
                    bool (*agree)(T, T) = static_cast<bool (*)(T, T)>(same))
{
    Draw draw(seed);
    for (int round = 0; round < rounds; ++round) {
        const int n = 1 + draw.below(40);
        const auto kind = round % 2 == 0 ? &Draw::mixed : &Draw::pattern;
        expectForms<T>(forms, drawn(draw, n, kind, T{}), steps, 0, 0, agree);
        if (::testing::Test::HasFatalFailure())
            return;
    }
}

// One special element at every position of blocks of ordinary ones.
template <typename T>
void expectAtEveryPosition(const Forms<T> &forms, const Steps<T> &steps, T special,
                           bool (*agree)(T, T) = static_cast<bool (*)(T, T)>(same),
                           int longest = longestBlock)
{
    Draw draw(9);
    for (int n = 1; n <= longest; ++n)
        for (int at = 0; at < n; ++at) {
            std::vector<T> src = drawn(draw, n, &Draw::ordinary, T{});
            src[static_cast<std::size_t>(at)] = special;
            expectForms<T>(forms, src, steps, at % 4, n % 4, agree);
            if (::testing::Test::HasFatalFailure())
                return;
        }
}

// Pairs of parts that the complex functions treat in ways of their own.
std::vector<ZCplx> specialPairs()
{
    std::vector<ZCplx> pairs = {{1e-200, 0.0},   {1e-200, -1e-200}, {1e200, 1.0},
                                {-1e160, 1e160}, {1e-160, 0.0},     {0.0, 3.0}};
    // The largest number whose high word is zero, and the smallest whose is not.
    const double below = fromBits(0xffffffffULL), above = fromBits(0x100000000ULL);
    pairs.insert(pairs.end(), {{below, 0.0}, {0.0, below}, {above, 0.0}, {0.0, above}});
    const double parts[] = {0.0, -0.0, 1.0, -1e-310, 4e-324, -4e-324, INF, -INF, QUIET, -QUIET};
    for (double re : parts)
        for (double im : parts)
            pairs.push_back({re, im});
    return pairs;
}

// Each of many pairs in short blocks, some of them in long ones.
void expectPairsAtEveryPosition(const Forms<ZCplx> &forms, const Steps<ZCplx> &steps)
{
    for (ZCplx z : specialPairs())
        expectAtEveryPosition<ZCplx>(forms, steps, z, same, 9);
    for (ZCplx z : {ZCplx{0.0, 0.0}, ZCplx{-0.0, 0.0}, ZCplx{1e-200, -1e-200}, ZCplx{INF, 1.0},
                    ZCplx{1.0, QUIET}, ZCplx{-QUIET, 0.0}})
        expectAtEveryPosition<ZCplx>(forms, steps, z);
}

const double limits[] = {0.0, -0.0, 0.5,   -0.5,   1e-310, -1e-310,
                         INF, -INF, QUIET, -QUIET, 1e300,  fromBits(0x3fe0000080000001ULL)};
const double positiveLimits[] = {0.0, -0.0, 0.75, 1e-310, 4e-324, 1e-160, 1e160, INF, 1e-200};

} // namespace

TEST(Square, ChecksItsArgumentsInOrder)
{
    expectChecks(realSquare);
    expectChecks(cplxSquare);
}

TEST(Square, OfEveryShapeAndPattern)
{
    expectEveryShape<double>(realSquare, squareSteps, 1);
    expectPatterns<double>(realSquare, squareSteps, 2, patternBlocks);
    expectEveryShape<ZCplx>(cplxSquare, cplxSquareSteps, 3);
    expectPatterns<ZCplx>(cplxSquare, cplxSquareSteps, 4, patternBlocks);
    for (double x : specialValues())
        expectAtEveryPosition<double>(realSquare, squareSteps, x);
    expectPairsAtEveryPosition(cplxSquare, cplxSquareSteps);
}

TEST(Square, OfComplexValuesIsAProductOfSumAndDifference)
{
    // By a difference of squares the first would be infinite minus infinite.
    ZCplx vec[2] = {{1e200, 1e200}, {3.0, 4.0}};
    rvxzbSqr1(vec, 2);
    EXPECT_EQ(vec[0].re, 0.0);
    EXPECT_EQ(vec[0].im, INF);
    EXPECT_EQ(vec[1].re, -7.0);
    EXPECT_EQ(vec[1].im, 24.0);
}

TEST(Absolute, ChecksItsArgumentsInOrder)
{
    expectChecks(absolute);
}

TEST(Absolute, ClearsTheSignBitAndNothingElse)
{
    expectEveryShape<double>(absolute, absoluteSteps, 5, sameBits);
    expectPatterns<double>(absolute, absoluteSteps, 6, patternBlocks, sameBits);
    for (double x : specialValues())
        expectAtEveryPosition<double>(absolute, absoluteSteps, x, sameBits);
}

TEST(RealThreshold, ChecksItsArgumentsInOrder)
{
    for (double thresh : limits)
        expectChecks(realThresh(thresh, 0));
}

TEST(RealThreshold, ComparesBitPatterns)
{
    for (double thresh : limits)
        for (int relOp : {0, 1, -1, 256}) {
            const Forms<double> forms = realThresh(thresh, relOp);
            const Steps<double> steps = threshSteps(thresh, relOp);
            expectEveryShape<double>(forms, steps, 7, sameBits);
            expectPatterns<double>(forms, steps, 8, patternBlocks / 25, sameBits);
            for (double x : specialValues())
                expectForms<double>(forms, std::vector<double>(7, x), steps, 0, 0, sameBits);
        }
}

TEST(RealThreshold, KnowsSpecialValuesAtEveryPosition)
{
    for (double thresh : {0.25, -0.25, 0.0, -0.0})
        for (double x : specialValues())
            for (int relOp : {0, 1})
                expectAtEveryPosition<double>(realThresh(thresh, relOp), threshSteps(thresh, relOp),
                                              x, sameBits);
}

TEST(RealThreshold, ComparesAllBitsOfRandomPairs)
{
    Draw draw(10);
    for (int round = 0; round < patternBlocks; ++round) {
        const double thresh = draw.pattern();
        std::vector<double> src = draw.block(16, &Draw::pattern);
        // Neighbours, and patterns that differ in the low word alone.
        for (std::size_t i = 0; i < 8; ++i)
            src[i] = fromBits(bitsOf(thresh) + (i < 4 ? i - 1 : draw.bits() >> 32));
        src[8] = fromBits(bitsOf(thresh) ^ 0x80000000U);
        src[9] = fromBits(bitsOf(thresh) ^ (1ULL << 63));
        const int relOp = round % 2;
        expectForms<double>(realThresh(thresh, relOp), src, threshSteps(thresh, relOp), 0, 0,
                            sameBits);
        if (HasFatalFailure())
            return;
    }
}

TEST(RealThreshold, NamedCases)
{
    double vec[3] = {-0.0, QUIET, -1.0};
    rvxdbThresh1(vec, 3, 0.0, RVX_THRESH_RAISE);
    EXPECT_EQ(bitsOf(vec[0]), 0U);
    EXPECT_EQ(bitsOf(vec[1]), bitsOf(QUIET));
    EXPECT_EQ(vec[2], 0.0);
    vec[2] = -1.0;
    rvxdbThresh1(vec, 3, 5.0, RVX_THRESH_LOWER);
    EXPECT_EQ(vec[1], 5.0);
    EXPECT_EQ(vec[2], -1.0);
}

TEST(CplxThreshold, ChecksItsArgumentsInOrder)
{
    for (double thresh : {-1.0, QUIET, 1.0})
        expectChecks(cplxThresh(thresh, 0));
    Reports reports;
    Guarded<ZCplx> src(3), dst(3);
    const std::vector<ZCplx> before = dst.values();
    for (double thresh : {-1e-320, -INF, QUIET, -QUIET})
        for (int relOp : {0, 1}) {
            rvxzbThresh1(dst.data(), 3, thresh, relOp);
            EXPECT_EQ(reports.take(), badArgument("rvxzbThresh1", "thresh<0.0", "rvxvec"));
            rvxzbThresh2(src.data(), dst.data(), 3, thresh, relOp);
            EXPECT_EQ(reports.take(), badArgument("rvxzbThresh2", "thresh<0.0", "rvxvec"));
        }
    EXPECT_EQ(std::memcmp(dst.data(), before.data(), before.size() * sizeof(ZCplx)), 0);
}

TEST(CplxThreshold, FollowsItsSteps)
{
    for (double thresh : positiveLimits)
        for (int relOp : {0, 1, -7}) {
            const Forms<ZCplx> forms = cplxThresh(thresh, relOp);
            const Steps<ZCplx> steps = cplxThreshSteps(thresh, relOp);
            expectEveryShape<ZCplx>(forms, steps, 11);
            expectPatterns<ZCplx>(forms, steps, 12, patternBlocks / 20);
        }
}

TEST(CplxThreshold, KnowsSpecialValuesAtEveryPosition)
{
    for (double thresh : {0.75, 0.0})
        for (int relOp : {0, 1})
            expectPairsAtEveryPosition(cplxThresh(thresh, relOp), cplxThreshSteps(thresh, relOp));
}

TEST(CplxThreshold, NamedCases)
{
    const auto one = [](ZCplx z, double thresh, int relOp) {
        rvxzbThresh1(&z, 1, thresh, relOp);
        return z;
    };
    EXPECT_TRUE(same(one({0.0, 3.0}, 5.0, 0), {0.0, 5.0}));
    EXPECT_TRUE(same(one({0.0, 0.0}, 5.0, 0), {5.0, 0.0}));
    EXPECT_TRUE(same(one({1e-170, -1e-170}, 5.0, 0), {5.0, -1e-170}));
    // A subnormal p just below the normal range, and the smallest normal one.
    EXPECT_TRUE(same(one({0.0, -0x1.ffffffp-512}, 0.5, 0), {0.5, -0x1.ffffffp-512}));
    EXPECT_TRUE(same(one({0.0, -0x1p-511}, 0.5, 0), {0.0, -0.5}));
    EXPECT_TRUE(same(one({3.0, -4.0}, 10.0, 0), {6.0, -8.0}));
    EXPECT_TRUE(same(one({3.0, -4.0}, 2.5, 1), {1.5, -2.0}));
    EXPECT_TRUE(same(one({3.0, -4.0}, 5.0, 0), {3.0, -4.0}));
    EXPECT_TRUE(same(one({3.0, -4.0}, 5.0, 1), {3.0, -4.0}));
    EXPECT_TRUE(same(one({INF, 1.0}, 5.0, 1), {QUIET, 0.0}));
    // A NaN moves up with a sign bit and down without one, with both its parts.
    EXPECT_TRUE(same(one({std::fabs(QUIET), 1.0}, 5.0, 0), {QUIET, 1.0}));
    EXPECT_TRUE(same(one({std::fabs(QUIET), 1.0}, 5.0, 1), {QUIET, QUIET}));
    EXPECT_TRUE(same(one({1.0, -std::fabs(QUIET)}, 5.0, 0), {QUIET, QUIET}));
    EXPECT_TRUE(same(one({1.0, -std::fabs(QUIET)}, 5.0, 1), {1.0, QUIET}));
}

// Beside elements that move, and also where an element is a signalling NaN.
TEST(CplxThreshold, KeepsTheBitsOfWhatStays)
{
    const double payload = fromBits(0x7ff0000000abcdefULL);
    for (int n = 2; n <= 20; ++n)
        for (int at = 0; at < n; ++at)
            for (int relOp : {0, 1}) {
                // Positive NaNs are above every magnitude, negative ones below.
                const double kept = relOp == 0 ? payload : -payload;
                const ZCplx moves = relOp == 0 ? ZCplx{0.5, 0.5} : ZCplx{3.0, 4.0};
                for (bool isReal : {false, true}) {
                    std::vector<ZCplx> vec(static_cast<std::size_t>(n), moves);
                    ZCplx &stays = vec[static_cast<std::size_t>(at)];
                    stays = isReal ? ZCplx{kept, -1.5} : ZCplx{-1.5, kept};
                    rvxzbThresh1(vec.data(), n, 1.0, relOp);
                    ASSERT_EQ(bitsOf(isReal ? stays.re : stays.im), bitsOf(kept))
                        << at << " of " << n;
                    ASSERT_EQ(isReal ? stays.im : stays.re, -1.5);
                }
            }
}

TEST(RealReciprocal, ChecksItsArgumentsInOrder)
{
    for (double thresh : {-1.0, QUIET, 1.0})
        expectChecks(realInverse(thresh));
    Reports reports;
    Guarded<double> src(3), dst(3);
    const std::vector<double> before = dst.values();
    for (double thresh : {-1e-320, -INF}) {
        rvxdbInvThresh1(dst.data(), 3, thresh);
        EXPECT_EQ(reports.take(), badArgument("rvxdbInvThresh1", "thresh<0.0", "rvxvec"));
        rvxdbInvThresh2(src.data(), dst.data(), 3, thresh);
        EXPECT_EQ(reports.take(), badArgument("rvxdbInvThresh2", "thresh<0.0", "rvxvec"));
    }
    EXPECT_EQ(std::memcmp(dst.data(), before.data(), before.size() * sizeof(double)), 0);
}

TEST(RealReciprocal, FollowsItsSteps)
{
    for (double thresh : {0.0, -0.0, QUIET, -QUIET, 0.75, 1e-310, 4e-324, 1e-200, 1e300, INF}) {
        expectEveryShape<double>(realInverse(thresh), inverseSteps(thresh), 13);
        expectPatterns<double>(realInverse(thresh), inverseSteps(thresh), 14, patternBlocks / 10);
    }
}

TEST(RealReciprocal, KnowsSpecialValuesAtEveryPosition)
{
    for (double thresh : {0.0, 0.75})
        for (double x : specialValues())
            expectAtEveryPosition<double>(realInverse(thresh), inverseSteps(thresh), x);
}

TEST(RealReciprocal, IsCorrectlyRounded)
{
    Draw draw(15);
    Reports reports;
    for (int round = 0; round < patternBlocks; ++round) {
        std::vector<double> src = draw.block(40, &Draw::pattern), dst = src;
        rvxdbInvThresh1(dst.data(), 40, 0.0);
        for (std::size_t i = 0; i < 40; ++i)
            if (!std::isnan(src[i]) && src[i] != 0.0) {
                ASSERT_EQ(bitsOf(dst[i]), bitsOf(reference::correct(mpfr_div, 1.0, src[i])))
                    << src[i];
            }
    }
}

TEST(RealReciprocal, NamedCases)
{
    Reports reports;
    double eight[8] = {1.0, 2.0, 0.0, 4.0, 5.0, 8.0, -16.0, 0.25};
    const double inverse[8] = {1.0, 0.5, INF, 0.25, 0.2, 0.125, -0.0625, 4.0};
    rvxdbInvThresh1(eight, 8, 0.0);
    for (int i = 0; i < 8; ++i)
        EXPECT_EQ(eight[i], inverse[i]) << i;
    EXPECT_EQ(reports.take(), badArgument("rvxdbInvThresh1", zeroElement, "rvxvec"));

    double three[3] = {1.0, -1.0, 0.0};
    rvxdbInvThresh1(three, 3, 2.0);
    EXPECT_EQ(three[0], 0.5);
    EXPECT_EQ(three[1], -0.5);
    EXPECT_EQ(three[2], 0.5);
    EXPECT_TRUE(reports.take().empty());

    // Products of these leave the range.
    for (double x : {1e-100, 1e-308, 1e100, 1e308, 1e-320}) {
        double group[4] = {x, x, x, x};
        rvxdbInvThresh1(group, 4, 0.0);
        for (double r : group)
            EXPECT_EQ(r, 1.0 / x);
        double pair[2] = {x, x};
        rvxdbInvThresh1(pair, 2, 1e-321);
        EXPECT_EQ(pair[0], 1.0 / x);
        EXPECT_EQ(pair[1], 1.0 / x);
    }
    EXPECT_TRUE(reports.take().empty());

    // A NaN counts as zero, as an element and as the threshold.
    double group[4] = {1.0, QUIET, -0.0, 2.0};
    rvxdbInvThresh1(group, 4, QUIET);
    EXPECT_EQ(group[1], INF);
    EXPECT_EQ(group[2], INF);
    EXPECT_EQ(group[3], 0.5);
    EXPECT_EQ(reports.take(), badArgument("rvxdbInvThresh1", zeroElement, "rvxvec"));
    double bounded[1] = {QUIET};
    rvxdbInvThresh1(bounded, 1, 2.0);
    EXPECT_EQ(bounded[0], -0.5);
}

TEST(CplxReciprocal, ChecksItsArgumentsInOrder)
{
    for (double thresh : {-1.0, QUIET, 1.0})
        expectChecks(cplxInverse(thresh));
    Reports reports;
    Guarded<ZCplx> src(3), dst(3);
    const std::vector<ZCplx> before = dst.values();
    for (double thresh : {-1e-320, -INF, QUIET, -QUIET}) {
        rvxzbInvThresh1(dst.data(), 3, thresh);
        EXPECT_EQ(reports.take(), badArgument("rvxzbInvThresh1", "thresh<0.0", "rvxvec"));
        rvxzbInvThresh2(src.data(), dst.data(), 3, thresh);
        EXPECT_EQ(reports.take(), badArgument("rvxzbInvThresh2", "thresh<0.0f", "rvxvec"));
    }
    EXPECT_EQ(std::memcmp(dst.data(), before.data(), before.size() * sizeof(ZCplx)), 0);
}

TEST(CplxReciprocal, FollowsItsSteps)
{
    for (double thresh : positiveLimits) {
        expectEveryShape<ZCplx>(cplxInverse(thresh), cplxInverseSteps(thresh), 16);
        expectPatterns<ZCplx>(cplxInverse(thresh), cplxInverseSteps(thresh), 17,
                              patternBlocks / 10);
    }
}

TEST(CplxReciprocal, KnowsSpecialValuesAtEveryPosition)
{
    for (double thresh : {0.0, 0.75, 1e200, -0.0, 4e-324})
        expectPairsAtEveryPosition(cplxInverse(thresh), cplxInverseSteps(thresh));
}

TEST(CplxReciprocal, KnowsTwoSpecialValuesInAGroup)
{
    Draw draw(18);
    for (double thresh : {0.0, 0.75})
        for (ZCplx first : specialPairs())
            for (ZCplx second : specialPairs()) {
                std::vector<ZCplx> src = draw.cplxBlock(11, &Draw::ordinary);
                src[static_cast<std::size_t>(draw.below(4))] = first;
                src[static_cast<std::size_t>(draw.below(11))] = second;
                expectForms<ZCplx>(cplxInverse(thresh), src, cplxInverseSteps(thresh));
                if (HasFatalFailure())
                    return;
            }
}

TEST(CplxReciprocal, NamedCases)
{
    Reports reports;
    const ZCplx src[6] = {{3.0, 4.0}, {0.0, 0.0}, {1.0, 0.0}, {0.0, -2.0}, {2.0, 2.0}, {0.0, 0.0}};
    const ZCplx expected[6] = {
        {3.0 * 0.04, -4.0 * 0.04}, {INF, 0.0}, {1.0, 0.0}, {0.0, 0.5}, {0.25, -0.25}, {INF, 0.0}};
    ZCplx dst[6];
    rvxzbInvThresh2(src, dst, 6, 0.0);
    for (int i = 0; i < 6; ++i)
        EXPECT_TRUE(dst[i].re == expected[i].re && dst[i].im == expected[i].im) << i;
    EXPECT_EQ(reports.take(), badArgument("rvxzbInvThresh2", zeroElement, "rvxvec"));

    // Lifted to the magnitude 1 / thresh, with the angle of the reciprocal.
    rvxzbInvThresh2(src, dst, 6, 10.0);
    EXPECT_DOUBLE_EQ(dst[0].re, 0.06);
    EXPECT_DOUBLE_EQ(dst[0].im, -0.08);
    EXPECT_DOUBLE_EQ(dst[1].re, 0.1);
    EXPECT_EQ(dst[1].im, 0.0);
    EXPECT_TRUE(reports.take().empty());

    // At the threshold an element is not lifted: d * g would leave the range here.
    ZCplx atThresh = {1e-100, 0.0};
    rvxzbInvThresh1(&atThresh, 1, 1e-100);
    EXPECT_DOUBLE_EQ(atThresh.re, 1e100);

    // Squared magnitudes whose product leaves the range.
    for (double x : {1e-100, 1e100}) {
        ZCplx group[4] = {{x, 0.0}, {0.0, x}, {x, 0.0}, {0.0, x}};
        rvxzbInvThresh1(group, 4, 0.0);
        EXPECT_DOUBLE_EQ(group[0].re, 1.0 / x);
        EXPECT_DOUBLE_EQ(group[3].im, -1.0 / x);
    }
    EXPECT_TRUE(reports.take().empty());

    // A threshold is zero when its high word is.
    ZCplx zeros[2] = {};
    rvxzbInvThresh1(zeros, 1, fromBits(0x100000000ULL));
    EXPECT_TRUE(reports.take().empty());
    rvxzbInvThresh1(zeros + 1, 1, fromBits(0xffffffffULL));
    EXPECT_EQ(reports.take(), badArgument("rvxzbInvThresh1", zeroElement, "rvxvec"));
    EXPECT_EQ(zeros[1].re, INF);

    // A zero with a sign is none: alone it spoils itself, in a group all four.
    ZCplx signedZero[5] = {{1.0, 0.0}, {1.0, 0.0}, {-0.0, 0.0}, {1.0, 0.0}, {1.0, 0.0}};
    rvxzbInvThresh1(signedZero, 5, 0.0);
    for (int i = 0; i < 5; ++i)
        EXPECT_EQ(std::isnan(signedZero[i].re), i < 4) << i;
    ZCplx besideZero[4] = {{1.0, 0.0}, {0.0, 0.0}, {-0.0, 0.0}, {1.0, 0.0}};
    rvxzbInvThresh1(besideZero, 4, 2.0);
    EXPECT_EQ(besideZero[0].re, 0.5);
    EXPECT_TRUE(std::isnan(besideZero[2].re));
    EXPECT_EQ(besideZero[3].re, 0.5);
    EXPECT_TRUE(reports.take().empty());
}

TEST(Reciprocal, ReportsAfterTheWork)
{
    static double real[5] = {4.0, 0.0, 16.0, 0.5, 2.0};
    static ZCplx cplx[2] = {{0.0, 0.0}, {2.0, 0.0}};
    const auto lookAndLeave = [](int, const char *, const char *, const char *, int) {
        std::_Exit(real[0] == 0.25 && real[4] == 0.5 ? 3 : cplx[1].re == 0.5 ? 5 : 4);
        return 0;
    };
    EXPECT_EXIT(
        {
            rvxGetThreadContext()->errHandler = lookAndLeave;
            rvxSetErrMode(1);
            rvxdbInvThresh1(real, 5, 0.0);
        },
        ::testing::ExitedWithCode(3), "");
    EXPECT_EXIT(
        {
            rvxGetThreadContext()->errHandler = lookAndLeave;
            rvxSetErrMode(1);
            rvxzbInvThresh1(cplx, 2, 0.0);
        },
        ::testing::ExitedWithCode(5), "");
    EXPECT_EXIT(
        {
            rvxSetErrMode(0);
            rvxdbInvThresh1(real, 5, 0.0);
        },
        ::testing::ExitedWithCode(1), "");
    EXPECT_EXIT(
        {
            rvxSetErrMode(0);
            rvxzbInvThresh1(cplx, 2, 0.0);
        },
        ::testing::ExitedWithCode(1), "");
}
