// Dot products.

#include <cmath>
#include <complex>
#include <limits>
#include <vector>

#include <gtest/gtest.h>

#include "reference/exact.h"
#include "rvx.h"
#include "support/blocks.h"
#include "support/guarded.h"
#include "support/reports.h"

namespace {

constexpr double INF = std::numeric_limits<double>::infinity();
constexpr double QUIET = std::numeric_limits<double>::quiet_NaN();

// The stated sums, with every element's terms listed first.

long double stated(const std::vector<double> &a, const std::vector<double> &b)
{
    std::vector<long double> products;
    for (std::size_t i = 0; i < a.size(); ++i)
        products.push_back(static_cast<long double>(a[i]) * static_cast<long double>(b[i]));
    long double sum = 0.0L;
    for (long double product : products)
        sum = sum + product;
    return sum;
}

struct CplxTerms {
    std::vector<double> reA, reB, imA, imB; // pairs whose products are added

    void add(double a, double b, double c, double d)
    {
        reA.push_back(a);
        reB.push_back(b);
        imA.push_back(c);
        imB.push_back(d);
    }
};

Exact exactSum(const std::vector<double> &a, const std::vector<double> &b)
{
    Exact sum;
    for (std::size_t i = 0; i < a.size(); ++i)
        sum.addProduct(a[i], b[i]);
    return sum;
}

bool same(double a, double b)
{
    return (a != a && b != b) || bitsOf(a) == bitsOf(b);
}

// A result is the stated sum or the correctly rounded one, and never further from
// the exact sum than the stated sum is.
::testing::AssertionResult asGoodAs(double chain, double result, const std::vector<double> &a,
                                    const std::vector<double> &b)
{
    if (same(chain, result))
        return ::testing::AssertionSuccess();
    if (!allFinite(a) || !allFinite(b) || !std::isfinite(chain) || !std::isfinite(result))
        return ::testing::AssertionFailure() << result << " for " << chain;
    const Exact sum = exactSum(a, b), one(1.0);
    if (distance(chain, sum, one) < distance(result, sum, one))
        return ::testing::AssertionFailure() << "the stated sum is nearer";
    if (!same(result, nearest(sum)))
        return ::testing::AssertionFailure() << "neither stated nor correctly rounded";
    return ::testing::AssertionSuccess();
}

std::vector<ZCplx> cplxOf(const std::vector<double> &parts)
{
    std::vector<ZCplx> block;
    for (std::size_t i = 0; i + 1 < parts.size(); i += 2)
        block.push_back({parts[i], parts[i + 1]});
    return block;
}

std::vector<ZCplx> makeCplx(Temper temper, int n, unsigned seed)
{
    return cplxOf(makeBlock(temper, 2 * n, seed));
}

// The form under test with the sums that it stands for.
struct CplxResult {
    ZCplx result, chain;
    CplxTerms terms;
};

void collect(CplxResult &out, ZCplx a, ZCplx b, long double &re, long double &im)
{
    const long double ar = a.re, ai = a.im, br = b.re, bi = b.im;
    re += ar * br - ai * bi;
    im += ai * br + bi * ar;
    out.terms.add(a.re, b.re, a.im, b.re);
    out.terms.add(-a.im, b.im, b.im, a.re);
    out.chain = {static_cast<double>(re), static_cast<double>(im)};
}

CplxResult cplxDot(const std::vector<ZCplx> &a, const std::vector<ZCplx> &b)
{
    CplxResult out = {};
    long double re = 0.0L, im = 0.0L;
    for (std::size_t i = 0; i < a.size(); ++i)
        collect(out, a[i], b[i], re, im);
    out.result = rvxzDotProd(a.data(), b.data(), static_cast<int>(a.size()));
    return out;
}

CplxResult mixedDot(const std::vector<ZCplx> &z, const std::vector<double> &x)
{
    CplxResult out = {};
    long double re = 0.0L, im = 0.0L;
    for (std::size_t i = 0; i < z.size(); ++i) {
        re += static_cast<long double>(z[i].re) * static_cast<long double>(x[i]);
        im += static_cast<long double>(z[i].im) * static_cast<long double>(x[i]);
        out.terms.add(z[i].re, x[i], z[i].im, x[i]);
        out.chain = {static_cast<double>(re), static_cast<double>(im)};
    }
    const int n = static_cast<int>(z.size());
    out.result = rvxzdDotProd(z.data(), x.data(), n);
    const ZCplx other = rvxdzDotProd(x.data(), z.data(), n);
    EXPECT_TRUE(same(out.result.re, other.re) && same(out.result.im, other.im));
    return out;
}

} // namespace

TEST(DotProduct, IsTheStatedSumOrTheCorrectlyRoundedOneForEveryBlock)
{
    for (Temper temper : allTempers) {
        for (Temper other : {temper, Temper::uniform, Temper::wideRange}) {
            for (int n : sumLengths()) {
                const auto a = makeBlock(temper, n, static_cast<unsigned>(n));
                const auto b = makeBlock(other, n, static_cast<unsigned>(n) + 7);
                const double result = rvxdDotProd(a.data(), b.data(), n);
                ASSERT_TRUE(asGoodAs(static_cast<double>(stated(a, b)), result, a, b))
                    << temper << " by " << other << ", n " << n;
            }
        }
    }
}

TEST(DotProduct, IsTheStatedSumOrTheCorrectlyRoundedOneForEveryComplexBlock)
{
    for (Temper temper : allTempers) {
        for (Temper other : {temper, Temper::uniform}) {
            for (int n : sumLengths()) {
                const auto a = makeCplx(temper, n, static_cast<unsigned>(n));
                const auto b = makeCplx(other, n, static_cast<unsigned>(n) + 7);
                const auto x = makeBlock(other, n, static_cast<unsigned>(n) + 9);
                for (const CplxResult &r : {cplxDot(a, b), mixedDot(a, x)}) {
                    ASSERT_TRUE(asGoodAs(r.chain.re, r.result.re, r.terms.reA, r.terms.reB))
                        << temper << " by " << other << ", n " << n;
                    ASSERT_TRUE(asGoodAs(r.chain.im, r.result.im, r.terms.imA, r.terms.imB))
                        << temper << " by " << other << ", n " << n;
                }
            }
        }
    }
}

TEST(DotProduct, IsCorrectlyRoundedForWellConditionedBlocks)
{
    int misroundedChains = 0;
    for (unsigned seed = 0; seed < 1000; ++seed) {
        const auto a = makeBlock(Temper::positive, 3000, seed);
        const auto b = makeBlock(Temper::positive, 3000, seed + 1000);
        const double expected = nearest(exactSum(a, b));
        ASSERT_EQ(rvxdDotProd(a.data(), b.data(), 3000), expected) << seed;
        misroundedChains += static_cast<double>(stated(a, b)) != expected;
    }
    // Else the above would not show that the sum is better than the stated one.
    EXPECT_GT(misroundedChains, 0);
}

// Where the bound leaves it open the stated sum stands in, which may be the next
// double: at most a few in a hundred, or the bound is too wide.
TEST(DotProduct, ComplexFormsAreCorrectlyRoundedForWellConditionedBlocks)
{
    int results = 0, misrounded = 0, misroundedChains = 0;
    for (unsigned seed = 0; seed < 500; ++seed) {
        auto a = makeCplx(Temper::positive, 1000, seed);
        const auto b = makeCplx(Temper::positive, 1000, seed + 1000);
        for (ZCplx &z : a)
            z.im *= 0.125; // keeps the real part from cancelling
        for (const CplxResult &r :
             {cplxDot(a, b), mixedDot(a, makeBlock(Temper::positive, 1000, seed + 2000))}) {
            const double re = nearest(exactSum(r.terms.reA, r.terms.reB));
            const double im = nearest(exactSum(r.terms.imA, r.terms.imB));
            results += 2;
            misrounded += (r.result.re != re) + (r.result.im != im);
            misroundedChains += (r.chain.re != re) + (r.chain.im != im);
        }
    }
    EXPECT_GT(misroundedChains, results / 500);
    EXPECT_LT(4 * misrounded, misroundedChains);
}

// The products of noise cancel, to about the root of their number: such sums must
// not be left to the stated one for want of a close bound.
TEST(DotProduct, OfLongNoiseIsCorrectlyRounded)
{
    int misrounded = 0, misroundedChains = 0;
    for (unsigned seed = 0; seed < 200; ++seed) {
        const auto a = makeBlock(Temper::uniform, 20000, seed);
        const auto b = makeBlock(Temper::uniform, 20000, seed + 1000);
        const double expected = nearest(exactSum(a, b));
        misrounded += rvxdDotProd(a.data(), b.data(), 20000) != expected;
        misroundedChains += static_cast<double>(stated(a, b)) != expected;
    }
    EXPECT_GE(misroundedChains, 5);
    EXPECT_LE(misrounded, 1);
}

// The halves of a small subnormal factor are not small against it, which tells beside
// a huge one.
TEST(DotProduct, OfSubnormalAndHugeFactorsIsTheStatedSumOrTheCorrectlyRoundedOne)
{
    for (int exponent : {200, 299, 400, 600, 900, 1000}) {
        for (unsigned seed = 0; seed < 20; ++seed) {
            const int n = 500;
            auto a = makeBlock(Temper::uniform, n, seed),
                 b = makeBlock(Temper::uniform, n, seed + 1);
            for (std::size_t i = 0; i < a.size(); ++i) {
                a[i] = std::ldexp(a[i], -1047);
                b[i] = std::ldexp(std::copysign(b[i], a[i]), exponent);
            }
            ASSERT_TRUE(asGoodAs(static_cast<double>(stated(a, b)),
                                 rvxdDotProd(a.data(), b.data(), n), a, b))
                << exponent;
        }
    }
}

TEST(DotProduct, LosesNothingBetweenHugeTermsThatCancel)
{
    const std::vector<double> a = {1e300, -1e300, 1e200, -1e200, 1.0};
    for (int copies : {1, 10, 1000}) {
        std::vector<double> x, y;
        for (int i = 0; i < copies; ++i)
            x.insert(x.end(), a.begin(), a.end());
        y.assign(x.size(), 1.0);
        const int n = static_cast<int>(x.size());
        EXPECT_TRUE(
            asGoodAs(static_cast<double>(stated(x, y)), rvxdDotProd(x.data(), y.data(), n), x, y));
    }
}

TEST(DotProduct, OfZerosIsPlusZero)
{
    for (int n : sumLengths()) {
        const auto zeros = makeBlock(Temper::zeros, 2 * n, 1);
        const auto ones = makeBlock(Temper::uniform, 2 * n, 2);
        EXPECT_EQ(bitsOf(rvxdDotProd(zeros.data(), ones.data(), n)), bitsOf(0.0));
        const ZCplx z = rvxzDotProd(cplxOf(ones).data(), cplxOf(zeros).data(), n);
        EXPECT_EQ(bitsOf(z.re), bitsOf(0.0));
        EXPECT_EQ(bitsOf(z.im), bitsOf(0.0));
    }
}

// What is left after the terms cancel is too small for a double, and negative.
TEST(DotProduct, ThatVanishesByRoundingKeepsItsSignAtEveryLength)
{
    for (int n : {3, 8, 127, 128, 500}) {
        std::vector<double> a(static_cast<std::size_t>(n), 0.0), b = a;
        a[0] = b[0] = b[1] = 0x1p-545;
        a[1] = -a[0];
        b[2] = 0x1p-600;
        for (double sign : {1.0, -1.0}) {
            a[2] = sign * 0x1p-600;
            EXPECT_EQ(bitsOf(rvxdDotProd(a.data(), b.data(), n)), bitsOf(sign * 0.0)) << n;
        }
    }
}

TEST(DotProduct, OfRealSignalsInComplexFormHasImaginaryPartPlusZero)
{
    const auto x = makeBlock(Temper::positive, 500, 1), y = makeBlock(Temper::positive, 500, 2);
    std::vector<ZCplx> a, b;
    for (std::size_t i = 0; i < 500; ++i) {
        a.push_back({x[i], 0.0});
        b.push_back({y[i], -0.0});
    }
    const ZCplx z = rvxzDotProd(a.data(), b.data(), 500);
    EXPECT_EQ(z.re, rvxdDotProd(x.data(), y.data(), 500));
    EXPECT_EQ(bitsOf(z.im), bitsOf(0.0));
}

TEST(DotProduct, SpreadsInfinitiesAndNans)
{
    for (int n : {1, 2, 7, 31, 100, 600, 1025}) {
        for (int at : {0, n / 2, n - 1}) {
            const auto size = static_cast<std::size_t>(n);
            std::vector<double> a(size, 1.0), b(size, 1.0);
            a[static_cast<std::size_t>(at)] = INF;
            EXPECT_EQ(rvxdDotProd(a.data(), b.data(), n), INF);
            b[static_cast<std::size_t>(at)] = -1.0;
            EXPECT_EQ(rvxdDotProd(a.data(), b.data(), n), -INF);
            b[static_cast<std::size_t>(at)] = 0.0;
            EXPECT_TRUE(std::isnan(rvxdDotProd(a.data(), b.data(), n)));
            a[static_cast<std::size_t>(at)] = QUIET;
            EXPECT_TRUE(std::isnan(rvxdDotProd(a.data(), b.data(), n)));
        }
    }
}

TEST(DotProduct, PassesBeyondTheRangeOfDoubleOnTheWay)
{
    const std::vector<double> a = {1e200, -1e200, 3.0}, b = {1e200, 1e200, 2.0};
    EXPECT_EQ(rvxdDotProd(a.data(), b.data(), 3), 6.0);
    EXPECT_EQ(rvxdDotProd(a.data(), b.data(), 1), INF);
    const std::vector<double> c = {1e-200, 1e-200}, d = {1e-100, 1e-100};
    EXPECT_EQ(rvxdDotProd(c.data(), d.data(), 2), 2e-300);
}

TEST(DotProduct, ReadsNoFurtherThanTheBlock)
{
    for (int n : {1, 5, 23, 24, 25, 40, 515}) {
        Guarded<double> a(makeBlock(Temper::uniform, n, 1), 1),
            b(makeBlock(Temper::uniform, n, 2), 3);
        Guarded<ZCplx> z(makeCplx(Temper::uniform, n, 3), 1), w(makeCplx(Temper::uniform, n, 4), 2);
        const auto first = rvxdDotProd(a.data(), b.data(), n);
        EXPECT_EQ(first, rvxdDotProd(a.values().data(), b.values().data(), n));
        const ZCplx second = rvxzDotProd(z.data(), w.data(), n);
        EXPECT_EQ(second.re, rvxzDotProd(z.values().data(), w.values().data(), n).re);
        const ZCplx third = rvxzdDotProd(z.data(), a.data(), n);
        EXPECT_EQ(third.im, rvxzdDotProd(z.values().data(), a.values().data(), n).im);
        EXPECT_TRUE(a.intact() && b.intact() && z.intact() && w.intact());
    }
}

TEST(DotProduct, OfAnEmptyBlockIsZero)
{
    Reports reports;
    const double x = 1.0;
    const ZCplx z = {1.0, 1.0};
    EXPECT_EQ(bitsOf(rvxdDotProd(&x, &x, 0)), bitsOf(0.0));
    for (ZCplx r : {rvxzDotProd(&z, &z, 0), rvxdzDotProd(&x, &z, 0), rvxzdDotProd(&z, &x, 0)}) {
        EXPECT_EQ(bitsOf(r.re), bitsOf(0.0));
        EXPECT_EQ(bitsOf(r.im), bitsOf(0.0));
    }
    EXPECT_TRUE(reports.take().empty());
}

TEST(DotProduct, ChecksPointersThenLength)
{
    Reports reports;
    const double x = 1.0;
    const ZCplx z = {1.0, 1.0};
    const auto rejects = [&reports](ZCplx result, const char *func, const char *context) {
        EXPECT_EQ(result.re, 0.0);
        EXPECT_EQ(result.im, 0.0);
        EXPECT_EQ(reports.take(), badArgument(func, context, "rvxdotp"));
    };
    const char *const buffer = "Null buffer pointer";
    for (int len : {-1, 0, 1}) {
        rejects({rvxdDotProd(nullptr, &x, len), 0.0}, "rvxdDotProd", buffer);
        rejects({rvxdDotProd(&x, nullptr, len), 0.0}, "rvxdDotProd", buffer);
        rejects({rvxdDotProd(nullptr, nullptr, len), 0.0}, "rvxdDotProd", buffer);
        rejects(rvxzDotProd(nullptr, &z, len), "rvxzDotProd", buffer);
        rejects(rvxzDotProd(&z, nullptr, len), "rvxzDotProd", buffer);
        rejects(rvxdzDotProd(nullptr, &z, len), "rvxdzDotProd", buffer);
        rejects(rvxdzDotProd(&x, nullptr, len), "rvxdzDotProd", buffer);
        rejects(rvxzdDotProd(nullptr, &x, len), "rvxzdDotProd", buffer);
        rejects(rvxzdDotProd(&z, nullptr, len), "rvxzdDotProd", buffer);
    }
    rejects({rvxdDotProd(&x, &x, -1), 0.0}, "rvxdDotProd", "Invalid value");
    rejects(rvxzDotProd(&z, &z, -1), "rvxzDotProd", "Invalid value");
    rejects(rvxdzDotProd(&x, &z, -1), "rvxdzDotProd", "Invalid value");
    rejects(rvxzdDotProd(&z, &x, -1), "rvxzdDotProd", "Invalid value");
    EXPECT_EQ(rvxGetErrStatus(), RVX_STATUS_BAD_ARGUMENT);
}

TEST(DotProductDeathTest, FailureInModeZeroEndsTheProcess)
{
    EXPECT_EXIT(rvxdDotProd(nullptr, nullptr, 1), ::testing::ExitedWithCode(1), "");
}
