// Block arithmetic; the checks of fill, copy and arithmetic.

#include <climits>
#include <vector>

#include "support/arith_values.h"
#include "support/reports.h"
#include "vector/rvxarith.h"

namespace {

// Reference operations, one value at a time.
double addRef(double a, double b)
{
    return a + b;
}

double subRef(double a, double b)
{
    return a - b;
}

double mpyRef(double a, double b)
{
    return a * b;
}

ZCplx addRef(ZCplx a, ZCplx b)
{
    return {a.re + b.re, a.im + b.im};
}

ZCplx mpyRef(ZCplx p, ZCplx q)
{
    volatile double rr = p.re * q.re;
    volatile double ii = p.im * q.im;
    volatile double ir = p.im * q.re;
    volatile double ri = p.re * q.im;
    return {rr - ii, ir + ri};
}

// Form 1: dst[i] = op(dst[i], val).
template <typename T>
void expectScalarForm(const char *name, void (*call)(T, T *, int), T (*op)(T, T), T val,
                      std::vector<T> (*make)(int, int))
{
    forEveryShape([&](int n, int dstAt, int srcAt) {
        if (srcAt != 0)
            return;
        std::vector<T> expected = make(n, 1);
        Guarded<T> dst(expected, dstAt);
        for (T &x : expected)
            x = op(x, val);
        call(val, dst.data(), n);
        expectBlock(dst, expected, name);
    });
}

// Form 2: dst[i] = op(dst[i], src[i]), with dst apart from src and equal to it.
template <typename T>
void expectInPlaceForm(const char *name, void (*call)(const T *, T *, int), T (*op)(T, T),
                       std::vector<T> (*make)(int, int))
{
    forEveryShape([&](int n, int dstAt, int srcAt) {
        std::vector<T> expected = make(n, 1);
        Guarded<T> src(make(n, 2), srcAt);
        Guarded<T> dst(expected, dstAt);
        for (int i = 0; i < n; ++i)
            expected[static_cast<std::size_t>(i)] =
                op(expected[static_cast<std::size_t>(i)], src[i]);
        call(src.data(), dst.data(), n);
        expectBlock(dst, expected, name);
        expectBlock(src, make(n, 2), name);

        for (T &x : expected)
            x = op(x, x);
        call(dst.data(), dst.data(), n);
        expectBlock(dst, expected, name);
    });
}

// Form 3: dst[i] = op(a[i], b[i]), with dst apart and equal to a, b and both.
template <typename T>
void expectResultForm(const char *name, void (*call)(const T *, const T *, T *, int), T (*op)(T, T),
                      std::vector<T> (*make)(int, int))
{
    forEveryShape([&](int n, int dstAt, int srcAt) {
        const std::vector<T> a = make(n, 1);
        const std::vector<T> b = make(n, 2);
        std::vector<T> expected;
        std::vector<T> squared;
        for (std::size_t i = 0; i < a.size(); ++i) {
            expected.push_back(op(a[i], b[i]));
            squared.push_back(op(a[i], a[i]));
        }
        Guarded<T> inA(a, srcAt);
        Guarded<T> inB(b, (srcAt + dstAt) % 4);
        Guarded<T> dst(n, dstAt);
        call(inA.data(), inB.data(), dst.data(), n);
        expectBlock(dst, expected, name);
        expectBlock(inA, a, name);
        expectBlock(inB, b, name);

        call(inA.data(), inB.data(), inA.data(), n);
        expectBlock(inA, expected, name);
        Guarded<T> again(a, srcAt);
        call(again.data(), inB.data(), inB.data(), n);
        expectBlock(inB, expected, name);
        call(again.data(), again.data(), again.data(), n);
        expectBlock(again, squared, name);
    });
}

} // namespace

// --- Checks ----------------------------------------------------------------------

TEST(BlockChecks, FirstFailedCheckIsTheOnlyReportAndNothingIsWritten)
{
    Guarded<double> real(numbers(8, 1));
    Guarded<ZCplx> cplx(cplxNumbers(8, 2));
    double *d = real.data();
    ZCplx *z = cplx.data();
    double *noD = nullptr;
    ZCplx *noZ = nullptr;
    const ZCplx v{1.0, 2.0};

    std::vector<BadCall> calls = {
        {"rvxdbZero", "dst==0", [=] { rvxdbZero(noD, 8); }},
        {"rvxdbSet", "dst==0", [=] { rvxdbSet(1.0, noD, 8); }},
        {"rvxzbSet", "dst==0", [=] { rvxzbSet(v, noZ, 8); }},
        {"rvxzbZero", "dst==0", [=] { rvxzbZero(noZ, 8); }},
        {"rvxdbCopy", "src==0", [=] { rvxdbCopy(noD, noD, 8); }},
        {"rvxdbCopy", "src==0", [=] { rvxdbCopy(noD, d, 8); }},
        {"rvxdbCopy", "dst==0", [=] { rvxdbCopy(d, noD, 8); }},
        {"rvxzbCopy", "src==0", [=] { rvxzbCopy(noZ, noZ, 8); }},
        {"rvxzbCopy", "src==0", [=] { rvxzbCopy(noZ, z, 8); }},
        {"rvxzbCopy", "dst==0", [=] { rvxzbCopy(z, noZ, 8); }},
        {"rvxdbAdd1", "dst==0", [=] { rvxdbAdd1(1.0, noD, 8); }},
        {"rvxdbAdd2", "src==0", [=] { rvxdbAdd2(noD, noD, 8); }},
        {"rvxdbAdd2", "src==0", [=] { rvxdbAdd2(noD, d, 8); }},
        {"rvxdbAdd2", "dst==0", [=] { rvxdbAdd2(d, noD, 8); }},
        {"rvxdbAdd3", "srcA==0", [=] { rvxdbAdd3(noD, noD, noD, 8); }},
        {"rvxdbAdd3", "srcA==0", [=] { rvxdbAdd3(noD, d, d, 8); }},
        {"rvxdbAdd3", "srcB==0", [=] { rvxdbAdd3(d, noD, noD, 8); }},
        {"rvxdbAdd3", "srcB==0", [=] { rvxdbAdd3(d, noD, d, 8); }},
        {"rvxdbAdd3", "dst==0", [=] { rvxdbAdd3(d, d, noD, 8); }},
        {"rvxdbSub1", "dst==0", [=] { rvxdbSub1(1.0, noD, 8); }},
        {"rvxdbSub2", "val==0", [=] { rvxdbSub2(noD, noD, 8); }},
        {"rvxdbSub2", "val==0", [=] { rvxdbSub2(noD, d, 8); }},
        {"rvxdbSub2", "dst==0", [=] { rvxdbSub2(d, noD, 8); }},
        {"rvxdbSub3", "src==0", [=] { rvxdbSub3(noD, noD, noD, 8); }},
        {"rvxdbSub3", "src==0", [=] { rvxdbSub3(noD, d, d, 8); }},
        {"rvxdbSub3", "val==0", [=] { rvxdbSub3(d, noD, noD, 8); }},
        {"rvxdbSub3", "val==0", [=] { rvxdbSub3(d, noD, d, 8); }},
        {"rvxdbSub3", "dst==0", [=] { rvxdbSub3(d, d, noD, 8); }},
        {"rvxdbMpy1", "dst==0", [=] { rvxdbMpy1(1.0, noD, 8); }},
        {"rvxdbMpy2", "src==0", [=] { rvxdbMpy2(noD, noD, 8); }},
        {"rvxdbMpy2", "src==0", [=] { rvxdbMpy2(noD, d, 8); }},
        {"rvxdbMpy2", "dst==0", [=] { rvxdbMpy2(d, noD, 8); }},
        {"rvxdbMpy3", "srcA==0", [=] { rvxdbMpy3(noD, noD, noD, 8); }},
        {"rvxdbMpy3", "srcA==0", [=] { rvxdbMpy3(noD, d, d, 8); }},
        {"rvxdbMpy3", "srcB==0", [=] { rvxdbMpy3(d, noD, noD, 8); }},
        {"rvxdbMpy3", "srcB==0", [=] { rvxdbMpy3(d, noD, d, 8); }},
        {"rvxdbMpy3", "dst==0", [=] { rvxdbMpy3(d, d, noD, 8); }},
        {"rvxzbAdd1", "dst==0", [=] { rvxzbAdd1(v, noZ, 8); }},
        {"rvxzbMpy1", "dst==0", [=] { rvxzbMpy1(v, noZ, 8); }},
        {"rvxzbMpy2", "src==0", [=] { rvxzbMpy2(noZ, noZ, 8); }},
        {"rvxzbMpy2", "src==0", [=] { rvxzbMpy2(noZ, z, 8); }},
        {"rvxzbMpy2", "dst==0", [=] { rvxzbMpy2(z, noZ, 8); }},
        {"rvxzbMpy3", "srcA==0", [=] { rvxzbMpy3(noZ, noZ, noZ, 8); }},
        {"rvxzbMpy3", "srcA==0", [=] { rvxzbMpy3(noZ, z, z, 8); }},
        {"rvxzbMpy3", "srcB==0", [=] { rvxzbMpy3(z, noZ, noZ, 8); }},
        {"rvxzbMpy3", "srcB==0", [=] { rvxzbMpy3(z, noZ, z, 8); }},
        {"rvxzbMpy3", "dst==0", [=] { rvxzbMpy3(z, z, noZ, 8); }},
    };
    // The length stands before every pointer, whether those are good or not.
    for (int n : {0, -1, INT_MIN}) {
        for (double *p : {noD, d}) {
            calls.push_back({"rvxdbZero", "n<=0", [=] { rvxdbZero(p, n); }});
            calls.push_back({"rvxdbSet", "n<=0", [=] { rvxdbSet(1.0, p, n); }});
            calls.push_back({"rvxdbCopy", "n<=0", [=] { rvxdbCopy(p, p, n); }});
            calls.push_back({"rvxdbAdd1", "n<=0", [=] { rvxdbAdd1(1.0, p, n); }});
            calls.push_back({"rvxdbAdd2", "n<=0", [=] { rvxdbAdd2(p, p, n); }});
            calls.push_back({"rvxdbAdd3", "n<=0", [=] { rvxdbAdd3(p, p, p, n); }});
            calls.push_back({"rvxdbSub1", "n<=0", [=] { rvxdbSub1(1.0, p, n); }});
            calls.push_back({"rvxdbSub2", "n<=0", [=] { rvxdbSub2(p, p, n); }});
            calls.push_back({"rvxdbSub3", "n<=0", [=] { rvxdbSub3(p, p, p, n); }});
            calls.push_back({"rvxdbMpy1", "n<=0", [=] { rvxdbMpy1(1.0, p, n); }});
            calls.push_back({"rvxdbMpy2", "n<=0", [=] { rvxdbMpy2(p, p, n); }});
            calls.push_back({"rvxdbMpy3", "n<=0", [=] { rvxdbMpy3(p, p, p, n); }});
        }
        for (ZCplx *p : {noZ, z}) {
            calls.push_back({"rvxzbZero", "n<=0", [=] { rvxzbZero(p, n); }});
            calls.push_back({"rvxzbSet", "n<=0", [=] { rvxzbSet(v, p, n); }});
            calls.push_back({"rvxzbCopy", "n<=0", [=] { rvxzbCopy(p, p, n); }});
            calls.push_back({"rvxzbAdd1", "n<=0", [=] { rvxzbAdd1(v, p, n); }});
            calls.push_back({"rvxzbMpy1", "n<=0", [=] { rvxzbMpy1(v, p, n); }});
            calls.push_back({"rvxzbMpy2", "n<=0", [=] { rvxzbMpy2(p, p, n); }});
            calls.push_back({"rvxzbMpy3", "n<=0", [=] { rvxzbMpy3(p, p, p, n); }});
        }
    }

    Reports reports;
    expectRefused(calls, "rvxarith", reports);
    expectBlock(real, numbers(8, 1), "a refused call");
    expectBlock(cplx, cplxNumbers(8, 2), "a refused call");
}

TEST(BlockChecks, SuccessReportsNothingAndLeavesAStaleStatus)
{
    Reports reports;
    rvxSetErrStatus(-77);
    double x = 1.0;
    rvxdbAdd1(2.0, &x, 1);
    EXPECT_EQ(x, 3.0);
    EXPECT_TRUE(reports.take().empty());
    EXPECT_EQ(rvxGetErrStatus(), -77);
}

// --- Block arithmetic ---------------------------------------------------------------

TEST(BlockArithmetic, EveryRealFormAtEveryShape)
{
    expectScalarForm<double>("rvxdbAdd1", rvxdbAdd1, addRef, number(9), numbers);
    expectScalarForm<double>("rvxdbSub1", rvxdbSub1, subRef, number(9), numbers);
    expectScalarForm<double>("rvxdbMpy1", rvxdbMpy1, mpyRef, number(9), numbers);
    expectInPlaceForm<double>("rvxdbAdd2", rvxdbAdd2, addRef, numbers);
    expectInPlaceForm<double>("rvxdbSub2", rvxdbSub2, subRef, numbers);
    expectInPlaceForm<double>("rvxdbMpy2", rvxdbMpy2, mpyRef, numbers);
    expectResultForm<double>("rvxdbAdd3", rvxdbAdd3, addRef, numbers);
    expectResultForm<double>("rvxdbSub3", rvxdbSub3, subRef, numbers);
    expectResultForm<double>("rvxdbMpy3", rvxdbMpy3, mpyRef, numbers);
}

TEST(BlockArithmetic, EveryComplexFormAtEveryShape)
{
    const ZCplx val{number(9), number(10)};
    expectScalarForm<ZCplx>("rvxzbAdd1", rvxzbAdd1, addRef, val, cplxNumbers);
    expectScalarForm<ZCplx>("rvxzbMpy1", rvxzbMpy1, mpyRef, val, cplxNumbers);
    expectInPlaceForm<ZCplx>("rvxzbMpy2", rvxzbMpy2, mpyRef, cplxNumbers);
    expectResultForm<ZCplx>("rvxzbMpy3", rvxzbMpy3, mpyRef, cplxNumbers);
}

TEST(BlockArithmetic, EverySpecialPairAtEveryPosition)
{
    for (int n : {1, 3, 4, 7, 16, 21, 35})
        for (int at = 0; at < n; ++at)
            for (double a : specials)
                for (double b : specials) {
                    const auto place = static_cast<std::size_t>(at);
                    std::vector<double> first = numbers(n, 1), second = numbers(n, 2);
                    std::vector<double> sum(first), difference(first), product(first);
                    first[place] = a;
                    second[place] = b;
                    rvxdbAdd3(first.data(), second.data(), sum.data(), n);
                    rvxdbSub3(first.data(), second.data(), difference.data(), n);
                    rvxdbMpy3(first.data(), second.data(), product.data(), n);
                    ASSERT_TRUE(same(sum[place], a + b)) << a << " + " << b;
                    ASSERT_TRUE(same(difference[place], a - b)) << a << " - " << b;
                    ASSERT_TRUE(same(product[place], a * b)) << a << " * " << b;
                    rvxdbAdd1(b, first.data(), n);
                    ASSERT_TRUE(same(first[place], a + b));
                }
}

TEST(BlockArithmetic, EverySpecialComplexProductInLanesAndRemainder)
{
    for (double a : specials)
        for (double b : specials)
            for (double c : specials)
                for (double d : specials) {
                    const ZCplx p{a, b}, q{c, d}, expected = mpyRef(p, q);
                    std::vector<ZCplx> ps(7, p), qs(7, q), product(7), inPlace(ps), scaled(ps);
                    rvxzbMpy3(qs.data(), ps.data(), product.data(), 7);
                    rvxzbMpy2(qs.data(), inPlace.data(), 7);
                    rvxzbMpy1(q, scaled.data(), 7);
                    for (std::size_t i = 0; i < 7; ++i)
                        ASSERT_TRUE(same(product[i], expected) && same(inPlace[i], expected) &&
                                    same(scaled[i], expected))
                            << "(" << a << ", " << b << ") * (" << c << ", " << d << ") at " << i;
                }
}

TEST(BlockArithmetic, SubtractionTakesTheBlockNamedValAway)
{
    const double val[] = {1.0, 2.0, 3.0};
    double dst[] = {10.0, 20.0, 30.0};
    rvxdbSub2(val, dst, 3);
    EXPECT_EQ(dst[2], 27.0);
    const double src[] = {5.0, 5.0, 5.0};
    rvxdbSub3(src, val, dst, 3);
    EXPECT_EQ(dst[0], 4.0);
}

TEST(BlockArithmetic, ABlockLessItselfIsZeroButForInfinitiesAndNans)
{
    double dst[] = {1.5, INF, -INF, QUIET, -2.0, HUGE_VALUE};
    rvxdbSub2(dst, dst, 6);
    EXPECT_TRUE(sameBits(dst[0], 0.0));
    EXPECT_TRUE(std::isnan(dst[1]) && std::isnan(dst[2]) && std::isnan(dst[3]));
    EXPECT_TRUE(sameBits(dst[4], 0.0) && sameBits(dst[5], 0.0));
}

TEST(BlockArithmetic, NoFactorIsSkipped)
{
    double dst[] = {INF, -1.0, QUIET, 2.0, INF};
    rvxdbMpy1(0.0, dst, 5);
    EXPECT_TRUE(std::isnan(dst[0]) && std::isnan(dst[2]) && std::isnan(dst[4]));
    EXPECT_TRUE(sameBits(dst[1], -0.0) && sameBits(dst[3], 0.0));
    std::vector<ZCplx> cplx(5, ZCplx{INF, 1.0});
    rvxzbMpy1({0.0, 0.0}, cplx.data(), 5);
    for (ZCplx z : cplx)
        EXPECT_TRUE(std::isnan(z.re) && std::isnan(z.im));
    double negativeZero[] = {-0.0};
    rvxdbAdd1(0.0, negativeZero, 1);
    EXPECT_TRUE(sameBits(negativeZero[0], 0.0));
}

TEST(BlockArithmetic, ComplexProductOfWholeNumbers)
{
    const ZCplx a{3.0, 4.0}, b{5.0, 6.0};
    ZCplx dst;
    rvxzbMpy3(&a, &b, &dst, 1);
    EXPECT_EQ(dst.re, -9.0);
    EXPECT_EQ(dst.im, 38.0);
}

TEST(BlockArithmeticDeathTest, AFailedCheckEndsTheProcessInModeZero)
{
    EXPECT_EXIT(
        {
            rvxSetErrMode(0);
            rvxdbAdd1(1.0, nullptr, 1);
        },
        ::testing::ExitedWithCode(1), "^$");
}
