// Complex scalars.

#include <cmath>

#include "support/arith_values.h"
#include "support/reports.h"

TEST(CplxScalar, SumDifferenceConjugateAndSet)
{
    for (double a : specials)
        for (double b : specials) {
            EXPECT_TRUE(same(rvxzAdd({a, 1.0}, {b, a}), {a + b, 1.0 + a}));
            EXPECT_TRUE(same(rvxzSub({a, 1.0}, {b, a}), {a - b, 1.0 - a}));
            EXPECT_TRUE(sameBits(rvxzSet(a, b), {a, b}));
            EXPECT_TRUE(
                sameBits(rvxzConj({a, b}), {a, std::copysign(b, std::signbit(b) ? 1. : -1.)}));
        }
}

TEST(CplxScalar, ConjugateTurnsTheSignOfZero)
{
    EXPECT_TRUE(sameBits(rvxzConj({0.0, 0.0}), {0.0, -0.0}));
}

TEST(CplxScalar, ProductByItsDefinitionWithoutRepair)
{
    for (double a : specials)
        for (double b : specials)
            for (double c : specials)
                for (double d : specials) {
                    const ZCplx product = rvxzMpy({a, b}, {c, d});
                    EXPECT_TRUE(same(product.re, c * a - d * b));
                    EXPECT_TRUE(same(product.im, d * a + c * b));
                }
    const ZCplx lost = rvxzMpy({INF, INF}, {1.0, 0.0});
    EXPECT_TRUE(std::isnan(lost.re));
}

TEST(CplxScalar, ProductRoundsEachStepOnce)
{
    // A fused product would keep the 2^-60 here.
    const ZCplx a{1.0 + 0x1p-30, 1.0};
    const ZCplx b{1.0 + 0x1p-30, 1.0 + 0x1p-29};
    EXPECT_EQ(rvxzMpy(a, b).re, 0.0);
}

TEST(CplxScalar, QuotientByOneReciprocal)
{
    for (int i = 0; i < 1000; ++i) {
        const ZCplx a{number(4 * i), number(4 * i + 1)};
        const ZCplx b{number(4 * i + 2), number(4 * i + 3)};
        volatile double imim = b.im * b.im;
        volatile double rere = b.re * b.re;
        volatile double norm = imim + rere;
        volatile double t = 1.0 / norm;
        volatile double re1 = b.im * a.im, re2 = b.re * a.re;
        volatile double im1 = b.re * a.im, im2 = b.im * a.re;
        volatile double re = re1 + re2;
        volatile double im = im1 - im2;
        EXPECT_TRUE(sameBits(rvxzDiv(a, b), {re * t, im * t})) << i;
    }
}

TEST(CplxScalar, QuotientBySquaresOutOfRange)
{
    Reports reports;
    const ZCplx large = rvxzDiv({1.0, 2.0}, {1e200, 1e200});
    EXPECT_EQ(large.re, 0.0);
    EXPECT_EQ(large.im, 0.0);
    const ZCplx small = rvxzDiv({1.0, 2.0}, {1e-200, 0.0});
    EXPECT_EQ(small.re, INF);
    EXPECT_EQ(small.im, INF);
    EXPECT_TRUE(reports.take().empty());
}

TEST(CplxScalar, DivisorOfZerosOrNansReportsAndGivesZero)
{
    Reports reports;
    for (double re : {0.0, -0.0, QUIET})
        for (double im : {0.0, -0.0, QUIET}) {
            rvxSetErrStatus(RVX_STATUS_OK);
            EXPECT_TRUE(sameBits(rvxzDiv({1.0, 2.0}, {re, im}), {0.0, 0.0}));
            EXPECT_EQ(reports.take(),
                      badArgument("rvxzDiv", "(b.re==0.0)&&(b.im==0.0)", "rvxarith"));
            EXPECT_EQ(rvxGetErrStatus(), RVX_STATUS_BAD_ARGUMENT);
        }
    // One part that is neither zero nor NaN is enough.
    EXPECT_TRUE(same(rvxzDiv({1.0, 2.0}, {QUIET, 1.0}), {QUIET, QUIET}));
    const ZCplx byTiny = rvxzDiv({1.0, 2.0}, {TINY, 0.0}); // infinity times an underflow
    EXPECT_FALSE(byTiny.re == 0.0 && byTiny.im == 0.0);
    EXPECT_TRUE(reports.take().empty());
}

TEST(CplxScalarDeathTest, DivisionByZeroEndsTheProcessInModeZero)
{
    EXPECT_EXIT(
        {
            rvxSetErrMode(0);
            rvxzDiv({1.0, 0.0}, {0.0, 0.0});
        },
        ::testing::ExitedWithCode(1), "^$");
}
