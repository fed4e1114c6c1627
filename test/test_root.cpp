// Square roots of real and of complex blocks.

#include <cmath>
#include <cstdlib>
#include <functional>
#include <vector>

#include <gtest/gtest.h>
#include <mpfr.h>

#include "reference/correct.h"
#include "reference/root.h"
#include "support/vec_forms.h"
#include "vector/rvxvec.h"

namespace {

const char *const negativeElement = "Element of input vector is negative";

const Forms<double> realRoot{"rvxdbSqrt", rvxdbSqrt1, rvxdbSqrt2, negativeElement};
const Forms<ZCplx> cplxRoot{"rvxzbSqrt", rvxzbSqrt1, rvxzbSqrt2, nullptr};

bool isNormal(double x)
{
    const int field = reference::exponentField(x);
    return field != 0 && field != 2047;
}

// sqrt(1.fraction) * 2^exponent, rounded once.
double rootOfFraction(double x, double factor, double scale)
{
    const double f = fromBits((bitsOf(x) & 0xfffffffffffff) | 0x3ff0000000000000ULL);
    return reference::correct(mpfr_sqrt, f * factor) * scale;
}

// What the header says of an element of a triple, rounded once.
double tripleRootCorrect(double x, bool ofSquares)
{
    if (isNormal(x))
        return reference::correct(mpfr_sqrt, std::fabs(x));
    if (reference::exponentField(x) == 2047)
        return rootOfFraction(x, 1.0, 0x1p512);
    if (ofSquares || bitsOf(x) >> 32 == 0)
        return 0.0;
    return rootOfFraction(x, 2.0, 0x1p-512);
}

bool realSteps(const double *src, double *dst, int n)
{
    bool failed = false;
    for (int i = 0; i < n; ++i) {
        failed = failed || std::signbit(src[i]);
        if (i < n / 3 * 3)
            dst[i] = tripleRootCorrect(src[i], false);
        else if (!std::signbit(src[i]))
            dst[i] = reference::correct(mpfr_sqrt, src[i]);
    }
    return failed;
}

// A complex root to 128 bits, its parts rounded once, for a finite element.
ZCplx cplxRootCorrect(ZCplx z)
{
    MPFR_DECL_INIT(re, 256);
    MPFR_DECL_INIT(im, 256);
    MPFR_DECL_INIT(t, 256);
    MPFR_DECL_INIT(w, 256);
    mpfr_set_d(re, z.re, MPFR_RNDN);
    mpfr_set_d(im, z.im, MPFR_RNDN);
    mpfr_abs(re, re, MPFR_RNDN);
    mpfr_abs(im, im, MPFR_RNDN);
    mpfr_hypot(t, re, im, MPFR_RNDN);
    mpfr_add(t, t, re, MPFR_RNDN);
    mpfr_div_2ui(t, t, 1, MPFR_RNDN);
    mpfr_sqrt(t, t, MPFR_RNDN);
    if (mpfr_zero_p(t) != 0)
        return {0.0, 0.0};
    mpfr_div(w, im, t, MPFR_RNDN);
    mpfr_div_2ui(w, w, 1, MPFR_RNDN);
    const double larger = mpfr_get_d(t, MPFR_RNDN), other = mpfr_get_d(w, MPFR_RNDN);
    ZCplx result = std::signbit(z.re) ? ZCplx{other, larger} : ZCplx{larger, other};
    result.im = reference::exponentField(result.im) == 0 ? 0.0 : std::copysign(result.im, z.im);
    return result;
}

bool isFinite(ZCplx z)
{
    return std::isfinite(z.re) && std::isfinite(z.im);
}

// Extended precision rounds twice: once in two thousand results may be the other
// neighbour of the exact value, which lies half-way between the two but for that.
bool isNear(double a, double b)
{
    return same(a, b) || std::fabs(a - b) <= 0x1.8p-52 * std::fabs(b);
}

bool isNear(ZCplx a, ZCplx b)
{
    return isNear(a.re, b.re) && isNear(a.im, b.im);
}

ZCplx tripleStepsOf(ZCplx z)
{
    return reference::cplxRootBySteps(z, [](double x) { return tripleRootCorrect(x, true); });
}

// The remainder of special elements by the same steps on real roots; their sums are
// infinite or NaN at any precision.
ZCplx remainderOf(ZCplx z)
{
    if (isFinite(z))
        return cplxRootCorrect(z);
    return reference::cplxRootBySteps(z, [](double x) { return std::sqrt(x); });
}

bool cplxSteps(const ZCplx *src, ZCplx *dst, int n)
{
    for (int i = 0; i < n; ++i)
        dst[i] = i < n / 3 * 3 ? tripleStepsOf(src[i]) : remainderOf(src[i]);
    return false;
}

// Ulps between two finite doubles of one sign.
std::uint64_t ulpsApart(double a, double b)
{
    const std::uint64_t p = bitsOf(a), q = bitsOf(b);
    return p > q ? p - q : q - p;
}

} // namespace

TEST(RealRoot, ChecksItsArgumentsInOrder)
{
    expectChecks(realRoot);
}

TEST(CplxRoot, ChecksItsArgumentsInOrder)
{
    expectChecks(cplxRoot);
}

TEST(RealRoot, IsCorrectlyRoundedAtEveryLengthAndAlignment)
{
    Draw draw(1);
    for (int n = 1; n <= 100; ++n)
        for (int srcAt = 0; srcAt < 4; ++srcAt)
            for (int dstAt = 0; dstAt < 4; ++dstAt) {
                std::vector<double> src = draw.block(n, &Draw::ordinary);
                for (double &x : src)
                    x = std::fabs(x);
                expectForms<double>(realRoot, src, realSteps, srcAt, dstAt);
                if (HasFatalFailure())
                    return;
            }
}

TEST(RealRoot, KnowsSpecialValuesAtEveryPosition)
{
    Draw draw(2);
    for (double special : specialValues())
        for (int n = 1; n <= longestBlock; ++n)
            for (int at = 0; at < n; ++at) {
                std::vector<double> src = draw.block(n, &Draw::ordinary);
                for (double &x : src)
                    x = std::fabs(x);
                src[static_cast<std::size_t>(at)] = special;
                expectForms<double>(realRoot, src, realSteps, at % 4, n % 4);
                if (HasFatalFailure())
                    return;
            }
}

TEST(RealRoot, OfAnyBitPattern)
{
    Draw draw(3);
    for (int round = 0; round < patternBlocks; ++round) {
        expectForms<double>(realRoot, draw.block(1 + draw.below(64), &Draw::pattern), realSteps);
        expectForms<double>(realRoot, draw.block(1 + draw.below(64), &Draw::mixed), realSteps);
        if (HasFatalFailure())
            return;
    }
}

TEST(RealRoot, OfATripleIsWhatHeronStepsGive)
{
    Draw draw(4);
    Reports reports;
    for (int round = 0; round < patternBlocks; ++round) {
        const std::vector<double> src = draw.block(30, &Draw::pattern);
        double dst[30];
        rvxdbSqrt2(src.data(), dst, 30);
        for (int i = 0; i < 30; ++i) {
            const double x = src[static_cast<std::size_t>(i)];
            ASSERT_LE(ulpsApart(dst[i], reference::tripleRootByHeron(x, false)), 1U) << x;
        }
    }
    for (double x : specialValues()) {
        double vec[3] = {1.0, x, 4.0};
        rvxdbSqrt1(vec, 3);
        EXPECT_LE(ulpsApart(vec[1], reference::tripleRootByHeron(x, false)), 1U) << x;
    }
}

TEST(RealRoot, NamedCases)
{
    Reports reports;
    double three[3] = {4.0, 4.0, 4.0};
    rvxdbSqrt1(three, 3);
    EXPECT_EQ(three[1], 2.0);
    EXPECT_EQ(rvxGetErrStatus(), RVX_STATUS_OK);

    double inTriple[4] = {1.0, -4.0, 1.0, 9.0};
    rvxdbSqrt1(inTriple, 4);
    EXPECT_EQ(inTriple[1], 2.0);
    EXPECT_EQ(inTriple[3], 3.0);
    EXPECT_EQ(reports.take(), badArgument("rvxdbSqrt1", negativeElement, "rvxvec"));

    double inRemainder[4] = {1.0, 16.0, 1.0, -4.0};
    rvxdbSqrt1(inRemainder, 4);
    EXPECT_EQ(inRemainder[1], 4.0);
    EXPECT_EQ(inRemainder[3], -4.0);
    EXPECT_EQ(reports.take(), badArgument("rvxdbSqrt1", negativeElement, "rvxvec"));

    const double src[2] = {-1.0, 4.0};
    double dst[2] = {7.0, 7.0};
    rvxdbSqrt2(src, dst, 2);
    EXPECT_EQ(dst[0], 7.0);
    EXPECT_EQ(dst[1], 2.0);
    EXPECT_EQ(reports.take(), badArgument("rvxdbSqrt2", negativeElement, "rvxvec"));

    for (int len : {1, 2, 3, 4, 5})
        for (int at = 0; at < len; ++at) {
            double vec[5] = {0.0, 0.0, 0.0, 0.0, 0.0};
            rvxdbSqrt1(vec, len);
            EXPECT_EQ(bitsOf(vec[at]), 0U);
            EXPECT_TRUE(reports.take().empty());
            vec[at] = -0.0;
            rvxdbSqrt1(vec, len);
            EXPECT_EQ(reports.take(), badArgument("rvxdbSqrt1", negativeElement, "rvxvec"));
            EXPECT_EQ(vec[at], at < len / 3 * 3 ? 0x1p-511 * std::sqrt(0.5) : 0.0);
        }
    const double unbounded[4] = {INF, QUIET, -INF, INF};
    double finite[4];
    rvxdbSqrt2(unbounded, finite, 4);
    EXPECT_EQ(finite[0], 0x1p512);
    EXPECT_EQ(finite[1], std::sqrt(1.5) * 0x1p512);
    EXPECT_EQ(finite[2], 0x1p512);
    EXPECT_EQ(finite[3], INF);
}

TEST(RealRoot, ReportsAfterTheWork)
{
    // In the mode that ends the process the handler still sees a finished block.
    static double vec[5] = {-4.0, 9.0, 16.0, 25.0, -1.0};
    const auto lookAndLeave = [](int, const char *, const char *, const char *, int) {
        std::_Exit(vec[0] == 2.0 && vec[3] == 5.0 && vec[4] == -1.0 ? 3 : 4);
        return 0;
    };
    EXPECT_EXIT(
        {
            rvxGetThreadContext()->errHandler = lookAndLeave;
            rvxSetErrMode(1);
            rvxdbSqrt1(vec, 5);
        },
        ::testing::ExitedWithCode(3), "");
    EXPECT_EXIT(
        {
            rvxSetErrMode(0);
            rvxdbSqrt1(vec, 5);
        },
        ::testing::ExitedWithCode(1), "");
}

TEST(RealRoot, EngineTellsOfSignsAndReportsNothing)
{
    const double src[5] = {4.0, 9.0, -16.0, 25.0, 36.0};
    double dst[5];
    Reports reports;
    EXPECT_TRUE(rvxRootBlock(src, dst, 5));
    EXPECT_EQ(dst[2], 4.0);
    EXPECT_EQ(dst[4], 6.0);
    EXPECT_FALSE(rvxRootBlock(src, dst, 2));
    EXPECT_FALSE(rvxRootBlock(src + 3, dst, 2));
    EXPECT_TRUE(reports.take().empty());
    EXPECT_EQ(rvxGetErrStatus(), RVX_STATUS_OK);
}

TEST(CplxRoot, FollowsItsStepsAtEveryLengthAndAlignment)
{
    Draw draw(5);
    for (int n = 1; n <= 100; ++n)
        for (int srcAt = 0; srcAt < 4; ++srcAt)
            for (int dstAt = 0; dstAt < 4; ++dstAt) {
                expectForms<ZCplx>(cplxRoot, draw.cplxBlock(n, &Draw::ordinary), cplxSteps, srcAt,
                                   dstAt, isNear);
                if (HasFatalFailure())
                    return;
            }
}

TEST(CplxRoot, OfTriplesIsTheStepsBitForBit)
{
    Draw draw(6);
    for (int n = 3; n <= 99; n += 3)
        for (int round = 0; round < patternBlocks / 100; ++round) {
            expectForms<ZCplx>(cplxRoot, draw.cplxBlock(n, &Draw::ordinary), cplxSteps);
            expectForms<ZCplx>(cplxRoot, draw.cplxBlock(n, &Draw::mixed), cplxSteps);
            expectForms<ZCplx>(cplxRoot, draw.cplxBlock(n, &Draw::pattern), cplxSteps);
            if (HasFatalFailure())
                return;
        }
}

TEST(CplxRoot, KnowsSpecialValuesAtEveryPosition)
{
    Draw draw(7);
    std::vector<double> values = specialValues();
    for (double x : {1e-160, 1e-170, 1e-200, 1e160, 1e200, 2.0})
        for (double y : {x, -x})
            values.push_back(y);
    for (double re : values)
        for (double im : values)
            for (int n : {1, 2, 3, 4, 5, 6, 11, 40}) {
                const int at = draw.below(n);
                std::vector<ZCplx> src = draw.cplxBlock(n, &Draw::ordinary);
                src[static_cast<std::size_t>(at)] = {re, im};
                expectForms<ZCplx>(cplxRoot, src, cplxSteps, at % 4, n % 4, isNear);
                if (HasFatalFailure())
                    return;
            }
    for (int n = 1; n <= longestBlock; ++n)
        for (int at = 0; at < n; ++at)
            for (ZCplx special : {ZCplx{0.0, 0.0}, ZCplx{-4.0, -0.0}, ZCplx{INF, 1.0},
                                  ZCplx{1e-200, 1e-200}, ZCplx{1e200, -1e200}, ZCplx{1.0, QUIET}}) {
                std::vector<ZCplx> src = draw.cplxBlock(n, &Draw::ordinary);
                src[static_cast<std::size_t>(at)] = special;
                expectForms<ZCplx>(cplxRoot, src, cplxSteps, at % 4, n % 4, isNear);
                if (HasFatalFailure())
                    return;
            }
}

// The largest error of the parts, in units in the last place of the exact ones.
double largestError(int len, int first, int count, double *worst)
{
    Draw draw(8);
    for (int round = 0; round < patternBlocks / 2; ++round) {
        const std::vector<ZCplx> src = draw.cplxBlock(len, &Draw::ordinary);
        std::vector<ZCplx> dst = src;
        rvxzbSqrt1(dst.data(), len);
        for (int i = first; i < first + count; ++i) {
            const ZCplx z = src[static_cast<std::size_t>(i)],
                        got = dst[static_cast<std::size_t>(i)];
            MPFR_DECL_INIT(re, 256);
            MPFR_DECL_INIT(im, 256);
            MPFR_DECL_INIT(r, 256);
            mpfr_set_d(re, z.re, MPFR_RNDN);
            mpfr_set_d(im, z.im, MPFR_RNDN);
            mpfr_hypot(r, re, im, MPFR_RNDN);
            mpfr_abs(re, re, MPFR_RNDN);
            mpfr_abs(im, im, MPFR_RNDN);
            mpfr_add(r, r, re, MPFR_RNDN);
            mpfr_div_2ui(r, r, 1, MPFR_RNDN);
            mpfr_sqrt(r, r, MPFR_RNDN);
            mpfr_div(im, im, r, MPFR_RNDN);
            mpfr_div_2ui(im, im, 1, MPFR_RNDN);
            const bool turned = std::signbit(z.re);
            *worst =
                std::fmax(*worst, reference::ulpsBetween(turned ? got.re : std::fabs(got.im), im));
            *worst =
                std::fmax(*worst, reference::ulpsBetween(turned ? std::fabs(got.im) : got.re, r));
        }
    }
    return *worst;
}

TEST(CplxRoot, IsAccurate)
{
    double worst = 0.0;
    // One rounding to double behind those in extended precision: 2^-64 each for a product
    // and a sum, halved by the root, then a root, a sum, halved by the root, a root and a
    // division, which make 3.5 2^-64 of the result.
    EXPECT_LE(largestError(5, 3, 2, &worst), 0.5 + 3.5 * 0x1p-11) << "remainder";
    worst = 0.0;
    EXPECT_LE(largestError(6, 0, 6, &worst), 2.0) << "triples";
}

TEST(CplxRoot, NamedCases)
{
    Reports reports;
    for (int len : {1, 2, 3, 4, 5}) {
        const ZCplx src[5] = {{-4.0, 0.0}, {-4.0, -0.0}, {0.0, 0.0}, {-4.0, -0.0}, {-0.0, 0.0}};
        const ZCplx expected[5] = {{0.0, 2.0}, {0.0, -2.0}, {0.0, 0.0}, {0.0, -2.0}, {0.0, 0.0}};
        ZCplx dst[5];
        rvxzbSqrt2(src, dst, len);
        for (int i = 0; i < len; ++i)
            EXPECT_TRUE(same(dst[i], expected[i])) << i << " of " << len << ": " << dst[i];
    }
    EXPECT_TRUE(reports.take().empty());
    EXPECT_EQ(rvxGetErrStatus(), RVX_STATUS_OK);
    // A subnormal imaginary part of the result loses its sign, a real one stays.
    for (int len : {1, 3}) {
        ZCplx vec[3] = {{1.0, -1e-310}, {1.0, 0.0}, {1.0, 0.0}};
        rvxzbSqrt1(vec, len);
        EXPECT_TRUE(same(vec[0], {1.0, 0.0}));
        vec[0] = {-1.0, -1e-310};
        rvxzbSqrt1(vec, len);
        EXPECT_TRUE(same(vec[0], {0.5e-310, -1.0}));
    }
    // Squares that leave the range: in a triple, and in the remainder.
    ZCplx large[4] = {{3e200, 4e200}, {3e-200, 4e-200}, {1.0, 0.0}, {3e200, 4e200}};
    rvxzbSqrt1(large, 4);
    EXPECT_EQ(large[0].re, std::sqrt((0x1p512 + 3e200) * 0.5));
    EXPECT_EQ(large[1].re, std::sqrt(1.5e-200));
    EXPECT_DOUBLE_EQ(large[3].re, 2e100);
    EXPECT_DOUBLE_EQ(large[3].im, 1e100);
}
