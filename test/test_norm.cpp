// Norms and normalization.

#include <cfloat>
#include <climits>
#include <cmath>
#include <functional>
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

bool same(double a, double b)
{
    return (a != a && b != b) || bitsOf(a) == bitsOf(b);
}

std::vector<ZCplx> cplxOf(const std::vector<double> &parts)
{
    std::vector<ZCplx> block;
    for (std::size_t i = 0; i + 1 < parts.size(); i += 2)
        block.push_back({parts[i], parts[i + 1]});
    return block;
}

std::vector<double> differences(const std::vector<double> &a, const std::vector<double> &b)
{
    std::vector<double> d;
    for (std::size_t i = 0; i < a.size(); ++i)
        d.push_back(a[i] - b[i]);
    return d;
}

// The stated norms of a block, real or given by the parts of complex elements.

double statedLargest(const std::vector<double> &d, bool cplx)
{
    double largest = 0.0;
    for (std::size_t i = 0; i < d.size(); i += cplx ? 2 : 1) {
        const double size = cplx ? d[i + 1] * d[i + 1] + d[i] * d[i] : std::fabs(d[i]);
        if (size > largest)
            largest = size;
    }
    return cplx ? std::sqrt(largest) : largest;
}

long double wideSquare(double x)
{
    return static_cast<long double>(x) * static_cast<long double>(x);
}

double statedSum(const std::vector<double> &d, bool cplx)
{
    long double sum = 0.0L;
    for (std::size_t i = 0; i < d.size(); i += cplx ? 2 : 1)
        sum += cplx ? std::sqrt(wideSquare(d[i + 1]) + wideSquare(d[i]))
                    : static_cast<long double>(std::fabs(d[i]));
    return static_cast<double>(sum);
}

double statedSquares(const std::vector<double> &d, bool cplx)
{
    long double sum = 0.0L;
    for (std::size_t i = 0; i < d.size(); i += cplx ? 2 : 1)
        sum += cplx ? wideSquare(d[i + 1]) + wideSquare(d[i]) : wideSquare(d[i]);
    return static_cast<double>(sum);
}

double norm(const std::vector<double> &a, const std::vector<double> *b, bool cplx, int flag)
{
    if (cplx) {
        const auto za = cplxOf(a);
        const auto zb = b != nullptr ? cplxOf(*b) : std::vector<ZCplx>();
        return rvxzNorm(za.data(), b != nullptr ? zb.data() : nullptr, static_cast<int>(za.size()),
                        flag);
    }
    return rvxdNorm(a.data(), b != nullptr ? b->data() : nullptr, static_cast<int>(a.size()), flag);
}

// The stated result or the correctly rounded one, and never further off.
::testing::AssertionResult asGoodAs(double chain, double result, const std::vector<double> &d,
                                    const std::function<Exact()> &exact)
{
    if (same(chain, result))
        return ::testing::AssertionSuccess();
    if (!allFinite(d) || !std::isfinite(chain))
        return ::testing::AssertionFailure() << result << " for " << chain;
    const Exact sum = exact(), one(1.0);
    if (distance(chain, sum, one) < distance(result, sum, one))
        return ::testing::AssertionFailure() << "the stated sum is nearer";
    if (!same(result, nearest(sum)))
        return ::testing::AssertionFailure() << "neither stated nor correctly rounded";
    return ::testing::AssertionSuccess();
}

Exact exactMagnitudes(const std::vector<double> &d)
{
    Exact sum;
    for (double x : d)
        sum.add(std::fabs(x));
    return sum;
}

Exact exactSquares(const std::vector<double> &d)
{
    Exact sum;
    for (double x : d)
        sum.addProduct(x, x);
    return sum;
}

void expectPlainNorms(const std::vector<double> &a, const std::vector<double> *b, bool cplx)
{
    const std::vector<double> d = b != nullptr ? differences(a, *b) : a;
    ASSERT_TRUE(same(norm(a, b, cplx, RVX_NORM_C), statedLargest(d, cplx)));
    const double sum = norm(a, b, cplx, RVX_NORM_L1);
    if (!cplx)
        ASSERT_TRUE(asGoodAs(statedSum(d, cplx), sum, d, [&d] { return exactMagnitudes(d); }));
    else
        ASSERT_TRUE(same(statedSum(d, cplx), sum));
    const double squares = norm(a, b, cplx, RVX_NORM_L2SQ);
    ASSERT_TRUE(asGoodAs(statedSquares(d, cplx), squares, d, [&d] { return exactSquares(d); }));
    ASSERT_TRUE(same(norm(a, b, cplx, RVX_NORM_L2), std::sqrt(squares)));
}

void expectRelativeNorms(const std::vector<double> &a, const std::vector<double> &b, bool cplx)
{
    for (int kind : {RVX_NORM_C, RVX_NORM_L1, RVX_NORM_L2, RVX_NORM_L2SQ}) {
        const int plain = kind == RVX_NORM_L2 ? RVX_NORM_L2SQ : kind;
        double expected = norm(a, &b, cplx, plain);
        if (expected < DBL_MIN) {
            expected = 0.0;
        } else {
            const double denominator = norm(a, nullptr, cplx, plain);
            expected = denominator < DBL_MIN ? DBL_MAX : expected / denominator;
            if (kind == RVX_NORM_L2 && !(denominator < DBL_MIN))
                expected = std::sqrt(expected);
        }
        ASSERT_TRUE(same(norm(a, &b, cplx, kind | RVX_NORM_RELATIVE), expected)) << kind;
        ASSERT_EQ(norm(a, nullptr, cplx, kind | RVX_NORM_RELATIVE), 1.0);
    }
}

} // namespace

TEST(Norm, IsTheStatedOneOrTheCorrectlyRoundedOneForEveryBlock)
{
    for (Temper temper : allTempers) {
        for (int n : sumLengths()) {
            SCOPED_TRACE(::testing::Message() << temper << ", n " << n);
            for (bool cplx : {false, true}) {
                const int parts = cplx ? 2 * n : n;
                const auto a = makeBlock(temper, parts, static_cast<unsigned>(n));
                const auto b = makeBlock(Temper::uniform, parts, static_cast<unsigned>(n) + 3);
                expectPlainNorms(a, nullptr, cplx);
                expectPlainNorms(b, &a, cplx);
                expectRelativeNorms(a, b, cplx);
                if (HasFatalFailure())
                    return;
            }
        }
    }
}

TEST(Norm, SumsAreCorrectlyRounded)
{
    int misroundedSums = 0, misroundedSquares = 0;
    for (unsigned seed = 0; seed < 1000; ++seed) {
        const auto d = makeBlock(Temper::positive, 3001, seed);
        const double sum = nearest(exactMagnitudes(d)), squares = nearest(exactSquares(d));
        ASSERT_EQ(norm(d, nullptr, false, RVX_NORM_L1), sum);
        ASSERT_EQ(norm(d, nullptr, false, RVX_NORM_L2SQ), squares);
        misroundedSums += statedSum(d, false) != sum;
        misroundedSquares += statedSquares(d, false) != squares;
    }
    EXPECT_GT(misroundedSums, 0);
    EXPECT_GT(misroundedSquares, 0);
}

TEST(Norm, LargestPassesOverNansAndTheSumsDoNot)
{
    for (int n : {2, 17, 600}) {
        for (bool cplx : {false, true}) {
            std::vector<double> x(static_cast<std::size_t>(n) * (cplx ? 2 : 1), 3.0);
            x[0] = QUIET;
            EXPECT_EQ(norm(x, nullptr, cplx, RVX_NORM_C), cplx ? std::sqrt(18.0) : 3.0);
            EXPECT_TRUE(std::isnan(norm(x, nullptr, cplx, RVX_NORM_L1)));
            EXPECT_TRUE(std::isnan(norm(x, nullptr, cplx, RVX_NORM_L2)));
            EXPECT_TRUE(std::isnan(norm(x, nullptr, cplx, RVX_NORM_L2SQ)));
            EXPECT_TRUE(std::isnan(norm(x, &x, cplx, RVX_NORM_L2 | RVX_NORM_RELATIVE)));
        }
    }
    EXPECT_EQ(norm({QUIET, QUIET}, nullptr, false, RVX_NORM_C), 0.0);
}

TEST(Norm, ComplexLargestSquaresInDoubleAndSumsDoNot)
{
    const std::vector<double> huge = {1e200, 0.0};
    EXPECT_EQ(norm(huge, nullptr, true, RVX_NORM_C), INF);
    EXPECT_EQ(norm(huge, nullptr, true, RVX_NORM_L1), 1e200);
    EXPECT_EQ(norm(huge, nullptr, true, RVX_NORM_L2), INF);
}

TEST(Norm, RelativeEdges)
{
    const std::vector<double> a = {1.0, -2.0}, zero = {0.0, 0.0}, tiny = {1e-309, 0.0};
    for (bool cplx : {false, true}) {
        for (int kind : {RVX_NORM_C, RVX_NORM_L1, RVX_NORM_L2, RVX_NORM_L2SQ}) {
            const int flag = kind | RVX_NORM_RELATIVE;
            EXPECT_EQ(bitsOf(norm(a, &a, cplx, flag)), bitsOf(0.0));
            EXPECT_EQ(norm(zero, &a, cplx, flag), DBL_MAX);
            EXPECT_EQ(bitsOf(norm(zero, &tiny, cplx, flag)), bitsOf(0.0));
            EXPECT_EQ(norm(a, &zero, cplx, flag), 1.0);
        }
    }
    // The squares of these are below the smallest normal number, their sums are not.
    const std::vector<double> small = {1e-160, 0.0};
    EXPECT_EQ(norm(zero, &small, false, RVX_NORM_L2 | RVX_NORM_RELATIVE), 0.0);
    EXPECT_EQ(norm(zero, &small, false, RVX_NORM_L1 | RVX_NORM_RELATIVE), DBL_MAX);
}

TEST(Norm, TakesExactlyOneKind)
{
    Reports reports;
    const double x = 2.0;
    const ZCplx z = {2.0, 0.0};
    for (int flag = -70; flag < 200; ++flag) {
        const int kind = flag & ~8;
        const bool good = flag > 0 && (kind == 1 || kind == 2 || kind == 4 || kind == 16);
        const double real = rvxdNorm(&x, nullptr, 1, flag);
        EXPECT_EQ(reports.take(), good ? std::vector<Report>()
                                       : badArgument("rvxdNorm", "flag is wrong", "rvxnorm"))
            << flag;
        const double cplx = rvxzNorm(&z, nullptr, 1, flag);
        EXPECT_EQ(reports.take(), good ? std::vector<Report>()
                                       : badArgument("rvxzNorm", "flag is wrong", "rvxnorm"))
            << flag;
        const double expected = !good ? 0.0 : (flag & 8) != 0 ? 1.0 : kind == 16 ? 4.0 : 2.0;
        EXPECT_EQ(real, expected) << flag;
        EXPECT_EQ(cplx, expected) << flag;
    }
}

TEST(Norm, ChecksLengthThenPointerThenFlag)
{
    Reports reports;
    const double x = 2.0;
    const ZCplx z = {2.0, 0.0};
    for (int n : {0, -1, INT_MIN}) {
        EXPECT_EQ(rvxdNorm(nullptr, &x, n, 0), 0.0);
        EXPECT_EQ(reports.take(), badArgument("rvxdNorm", "n<=0", "rvxnorm"));
        EXPECT_EQ(rvxzNorm(nullptr, &z, n, 0), 0.0);
        EXPECT_EQ(reports.take(), badArgument("rvxzNorm", "n<=0", "rvxnorm"));
    }
    EXPECT_EQ(rvxdNorm(nullptr, &x, 1, 0), 0.0);
    EXPECT_EQ(reports.take(), badArgument("rvxdNorm", "srcA==0", "rvxnorm"));
    EXPECT_EQ(rvxzNorm(nullptr, &z, 1, 0), 0.0);
    EXPECT_EQ(reports.take(), badArgument("rvxzNorm", "srcA==0", "rvxnorm"));
}

TEST(Norm, ReadsNoFurtherThanTheBlocks)
{
    for (int n : {1, 3, 15, 16, 17, 100, 515}) {
        Guarded<double> a(makeBlock(Temper::uniform, n, 1), 1),
            b(makeBlock(Temper::uniform, n, 2), 2);
        for (int kind : {RVX_NORM_C, RVX_NORM_L1, RVX_NORM_L2}) {
            EXPECT_EQ(rvxdNorm(a.data(), b.data(), n, kind),
                      rvxdNorm(a.values().data(), b.values().data(), n, kind));
        }
        EXPECT_TRUE(a.intact() && b.intact());
    }
}

TEST(Normalize, SubtractsThenMultipliesByTheReciprocal)
{
    for (int n : {1, 2, 3, 4, 5, 7, 8, 9, 15, 16, 17, 33, 100}) {
        for (Temper temper : {Temper::uniform, Temper::fullRange, Temper::specials}) {
            const auto src = makeBlock(temper, 2 * n, static_cast<unsigned>(n));
            const double factor = 3.0;
            const double r = 1.0 / factor;
            Guarded<double> real(n, 1);
            Guarded<ZCplx> cplx(n, 1);
            const ZCplx offset = {0.25, -0.5};
            rvxdbNormalize(src.data(), real.data(), n, offset.re, factor);
            const auto zsrc = cplxOf(src);
            rvxzbNormalize(zsrc.data(), cplx.data(), n, offset, factor);
            for (int i = 0; i < n; ++i) {
                const auto at = static_cast<std::size_t>(i);
                EXPECT_TRUE(same(real[i], (src[at] - offset.re) * r));
                EXPECT_TRUE(same(cplx[i].re, (zsrc[at].re - offset.re) * r));
                EXPECT_TRUE(same(cplx[i].im, (zsrc[at].im - offset.im) * r));
            }
            EXPECT_TRUE(real.intact() && cplx.intact());
        }
    }
}

TEST(Normalize, WorksInPlace)
{
    for (int n : {1, 3, 4, 9, 40}) {
        auto x = makeBlock(Temper::uniform, n, 1);
        std::vector<double> expected(x.size());
        rvxdbNormalize(x.data(), expected.data(), n, 0.5, -7.0);
        rvxdbNormalize(x.data(), x.data(), n, 0.5, -7.0);
        EXPECT_EQ(x, expected);
        auto z = cplxOf(makeBlock(Temper::uniform, 2 * n, 1));
        std::vector<ZCplx> zExpected(z.size());
        rvxzbNormalize(z.data(), zExpected.data(), n, {0.5, 0.25}, -7.0);
        rvxzbNormalize(z.data(), z.data(), n, {0.5, 0.25}, -7.0);
        for (std::size_t i = 0; i < z.size(); ++i) {
            EXPECT_EQ(z[i].re, zExpected[i].re);
            EXPECT_EQ(z[i].im, zExpected[i].im);
        }
    }
}

TEST(Normalize, ByExtremeFactors)
{
    const double x = 3.0;
    double y = 0.0;
    rvxdbNormalize(&x, &y, 1, 1.0, INF);
    EXPECT_EQ(bitsOf(y), bitsOf(0.0));
    rvxdbNormalize(&x, &y, 1, 1.0, 5e-324);
    EXPECT_EQ(y, INF);
}

TEST(Normalize, ChecksAndWritesNothing)
{
    Reports reports;
    const double x = 1.0;
    double y = 5.0;
    const ZCplx z = {1.0, 2.0};
    ZCplx w = {5.0, 6.0};
    const auto rejected = [&](const char *func, const char *context) {
        EXPECT_EQ(reports.take(), badArgument(func, context, "rvxnorm"));
        EXPECT_EQ(y, 5.0);
        EXPECT_EQ(w.re, 5.0);
        EXPECT_EQ(w.im, 6.0);
    };
    for (int n : {0, -1}) {
        rvxdbNormalize(nullptr, nullptr, n, 0.0, 0.0);
        rejected("rvxdbNormalize", "n<=0");
        rvxzbNormalize(nullptr, nullptr, n, z, 0.0);
        rejected("rvxzbNormalize", "n<=0");
    }
    rvxdbNormalize(nullptr, nullptr, 1, 0.0, 0.0);
    rejected("rvxdbNormalize", "src==0");
    rvxzbNormalize(nullptr, nullptr, 1, z, 0.0);
    rejected("rvxzbNormalize", "src==0");
    rvxdbNormalize(&x, nullptr, 1, 0.0, 0.0);
    rejected("rvxdbNormalize", "dst==0");
    rvxzbNormalize(&z, nullptr, 1, z, 0.0);
    rejected("rvxzbNormalize", "dst==0");
    for (double factor : {0.0, -0.0, QUIET, -QUIET}) {
        rvxdbNormalize(&x, &y, 1, 0.0, factor);
        rejected("rvxdbNormalize", "factor == 0");
        rvxzbNormalize(&z, &w, 1, z, factor);
        rejected("rvxzbNormalize", "factor == 0");
    }
}

TEST(NormDeathTest, FailuresInModeZeroEndTheProcess)
{
    double y = 0.0;
    EXPECT_EXIT(rvxdNorm(nullptr, nullptr, 1, 1), ::testing::ExitedWithCode(1), "");
    EXPECT_EXIT(rvxzNorm(nullptr, nullptr, 1, 1), ::testing::ExitedWithCode(1), "");
    EXPECT_EXIT(rvxdbNormalize(&y, &y, 1, 0.0, 0.0), ::testing::ExitedWithCode(1), "");
    EXPECT_EXIT(rvxzbNormalize(nullptr, nullptr, 1, ZCplx{0.0, 0.0}, 1.0),
                ::testing::ExitedWithCode(1), "");
}
