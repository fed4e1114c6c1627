// Complex block forms: conjugates, extensions, parts, power.

#include <algorithm>
#include <climits>
#include <vector>

#include "support/arith_values.h"
#include "support/reports.h"

namespace {

// Values whose every bit must come through: quiet and signalling NaNs of either sign
// with payloads, zeros, infinities, subnormals.
const double marks[] = {fromBits(0x7ff4000000abcdefULL),
                        fromBits(0xfff4000000abcdefULL),
                        fromBits(0x7ff8000012345678ULL),
                        fromBits(0xfff8000012345678ULL),
                        0.0,
                        -0.0,
                        INF,
                        -INF,
                        TINY,
                        -TINY,
                        HUGE_VALUE,
                        -1.5};
constexpr int marksLen = static_cast<int>(std::size(marks));

// Numbers with every mark somewhere, in either part.
std::vector<ZCplx> markedNumbers(int n, int seed)
{
    std::vector<ZCplx> block = cplxNumbers(n, seed);
    for (int i = 0; i < n; ++i) {
        ZCplx &z = block[static_cast<std::size_t>(i)];
        if (i % 3 == 0)
            z.re = marks[(i / 3 + seed) % marksLen];
        if (i % 5 == 1)
            z.im = marks[(i / 5 + seed) % marksLen];
    }
    return block;
}

std::vector<double> markedReals(int n, int seed)
{
    std::vector<double> block;
    for (const ZCplx &z : markedNumbers(n, seed))
        block.push_back(z.re);
    return block;
}

ZCplx turned(ZCplx z)
{
    return {z.re, fromBits(bitsOf(z.im) ^ 0x8000000000000000ULL)};
}

// Exactly these bits, and nothing outside.
template <typename T>
void expectBits(Guarded<T> &block, const std::vector<T> &expected, const char *what)
{
    ASSERT_EQ(static_cast<std::size_t>(block.size()), expected.size());
    for (int i = 0; i < block.size(); ++i)
        ASSERT_TRUE(sameBits(block[i], expected[static_cast<std::size_t>(i)]))
            << what << ", element " << i << " of " << block.size();
    ASSERT_TRUE(block.intact()) << what << " wrote outside its " << block.size() << " elements";
}

// dst[i] = function of src[i], for every shape; also with dst where src begins.
void expectPart(const char *name, void (*call)(const ZCplx *, double *, int), double (*part)(ZCplx))
{
    forEveryShape([&](int n, int dstAt, int srcAt) {
        const std::vector<ZCplx> elements = markedNumbers(n, dstAt);
        std::vector<double> expected(elements.size());
        std::transform(elements.begin(), elements.end(), expected.begin(), part);
        Guarded<ZCplx> src(elements, srcAt);
        Guarded<double> dst(n, dstAt);
        call(src.data(), dst.data(), n);
        expectBits(dst, expected, name);
        expectBits(src, elements, name);

        call(src.data(), reinterpret_cast<double *>(src.data()), n);
        ASSERT_EQ(std::memcmp(src.data(), expected.data(), expected.size() * sizeof(double)), 0)
            << name << " in place, " << n;
        ASSERT_TRUE(src.intact());
    });
}

} // namespace

// --- Checks ----------------------------------------------------------------------

TEST(CplxChecks, FirstFailedCheckIsTheOnlyReportAndNothingIsWritten)
{
    Guarded<double> real(numbers(8, 1));
    Guarded<ZCplx> cplx(cplxNumbers(8, 2));
    double *d = real.data();
    ZCplx *z = cplx.data();
    double *noD = nullptr;
    ZCplx *noZ = nullptr;

    std::vector<BadCall> conjugates = {
        {"rvxzbConj1", "vec==0", [=] { rvxzbConj1(noZ, 8); }},
        {"rvxzbConj2", "src==0", [=] { rvxzbConj2(noZ, noZ, 8); }},
        {"rvxzbConj2", "src==0", [=] { rvxzbConj2(noZ, z, 8); }},
        {"rvxzbConj2", "dst==0", [=] { rvxzbConj2(z, noZ, 8); }},
        {"rvxzbConjFlip2", "src==0", [=] { rvxzbConjFlip2(noZ, noZ, 8); }},
        {"rvxzbConjFlip2", "src==0", [=] { rvxzbConjFlip2(noZ, z, 8); }},
        {"rvxzbConjFlip2", "dst==0", [=] { rvxzbConjFlip2(z, noZ, 8); }},
        {"rvxzbConjExtend1", "vec==0", [=] { rvxzbConjExtend1(noZ, 4); }},
        {"rvxzbConjExtend2", "src==0", [=] { rvxzbConjExtend2(noZ, noZ, 4); }},
        {"rvxzbConjExtend2", "src==0", [=] { rvxzbConjExtend2(noZ, z, 4); }},
        {"rvxzbConjExtend2", "dst==0", [=] { rvxzbConjExtend2(z, noZ, 4); }},
    };
    std::vector<BadCall> parts = {
        {"rvxzbReal", "src==0", [=] { rvxzbReal(noZ, noD, 8); }},
        {"rvxzbReal", "src==0", [=] { rvxzbReal(noZ, d, 8); }},
        {"rvxzbReal", "dst==0", [=] { rvxzbReal(z, noD, 8); }},
        {"rvxzbImag", "src==0", [=] { rvxzbImag(noZ, noD, 8); }},
        {"rvxzbImag", "src==0", [=] { rvxzbImag(noZ, d, 8); }},
        {"rvxzbImag", "dst==0", [=] { rvxzbImag(z, noD, 8); }},
        {"rvxzbCplxTo2Real", "src==0", [=] { rvxzbCplxTo2Real(noZ, noD, noD, 8); }},
        {"rvxzbCplxTo2Real", "src==0", [=] { rvxzbCplxTo2Real(noZ, d, d, 8); }},
        {"rvxzbCplxTo2Real", "dstReal==0", [=] { rvxzbCplxTo2Real(z, noD, noD, 8); }},
        {"rvxzbCplxTo2Real", "dstReal==0", [=] { rvxzbCplxTo2Real(z, noD, d, 8); }},
        {"rvxzbCplxTo2Real", "dstImag==0", [=] { rvxzbCplxTo2Real(z, d, noD, 8); }},
        {"rvxzb2RealToCplx", "dst==0", [=] { rvxzb2RealToCplx(noD, noD, noZ, 8); }},
        {"rvxzb2RealToCplx", "dst==0", [=] { rvxzb2RealToCplx(d, d, noZ, 8); }},
        // The result before the source.
        {"rvxzbPowerSpectr", "spectr==0", [=] { rvxzbPowerSpectr(noZ, noD, 8); }},
        {"rvxzbPowerSpectr", "spectr==0", [=] { rvxzbPowerSpectr(z, noD, 8); }},
        {"rvxzbPowerSpectr", "src==0", [=] { rvxzbPowerSpectr(noZ, d, 8); }},
    };
    // The length stands before every pointer, whether those are good or not.
    for (int n : {0, -1, INT_MIN}) {
        for (ZCplx *p : {noZ, z}) {
            double *q = p == nullptr ? noD : d;
            conjugates.push_back({"rvxzbConj1", "n<=0", [=] { rvxzbConj1(p, n); }});
            conjugates.push_back({"rvxzbConj2", "n<=0", [=] { rvxzbConj2(p, p, n); }});
            conjugates.push_back({"rvxzbConjFlip2", "n<=0", [=] { rvxzbConjFlip2(p, p, n); }});
            conjugates.push_back({"rvxzbConjExtend1", "n<=0", [=] { rvxzbConjExtend1(p, n); }});
            conjugates.push_back({"rvxzbConjExtend2", "n<=0", [=] { rvxzbConjExtend2(p, p, n); }});
            parts.push_back({"rvxzbReal", "length<=0", [=] { rvxzbReal(p, q, n); }});
            parts.push_back({"rvxzbImag", "length<=0", [=] { rvxzbImag(p, q, n); }});
            parts.push_back(
                {"rvxzbCplxTo2Real", "length<=0", [=] { rvxzbCplxTo2Real(p, q, q, n); }});
            parts.push_back(
                {"rvxzb2RealToCplx", "length<=0", [=] { rvxzb2RealToCplx(q, q, p, n); }});
            parts.push_back({"rvxzbPowerSpectr", "length<=0", [=] { rvxzbPowerSpectr(p, q, n); }});
        }
    }

    Reports reports;
    expectRefused(conjugates, "rvxarith", reports);
    expectRefused(parts, "rvxcvrtd", reports);
    expectBits(real, numbers(8, 1), "a refused call");
    expectBits(cplx, cplxNumbers(8, 2), "a refused call");
}

TEST(CplxChecks, ModeZeroEndsTheProcess)
{
    rvxSetErrMode(0);
    EXPECT_EXIT(rvxzbConj1(nullptr, 1), ::testing::ExitedWithCode(1), "");
    EXPECT_EXIT(rvxzbReal(nullptr, nullptr, 1), ::testing::ExitedWithCode(1), "");
}

TEST(CplxChecks, SuccessReportsNothingAndLeavesAStaleStatus)
{
    Reports reports;
    rvxSetErrStatus(-77);
    ZCplx z{1.0, 2.0};
    double x = 0.0;
    rvxzbConj1(&z, 1);
    rvxzb2RealToCplx(nullptr, nullptr, &z, 1);
    rvxzbPowerSpectr(&z, &x, 1);
    EXPECT_TRUE(reports.take().empty());
    EXPECT_EQ(rvxGetErrStatus(), -77);
}

// --- Conjugates --------------------------------------------------------------------

TEST(Conjugates, SignBitsTurnAndEveryOtherBitStays)
{
    forEveryShape([&](int n, int dstAt, int srcAt) {
        const std::vector<ZCplx> elements = markedNumbers(n, dstAt);
        std::vector<ZCplx> expected(elements.size());
        std::transform(elements.begin(), elements.end(), expected.begin(), turned);
        Guarded<ZCplx> src(elements, srcAt);
        Guarded<ZCplx> dst(n, dstAt);
        rvxzbConj2(src.data(), dst.data(), n);
        expectBits(dst, expected, "rvxzbConj2");
        expectBits(src, elements, "rvxzbConj2");
        rvxzbConj2(src.data(), src.data(), n);
        expectBits(src, expected, "rvxzbConj2 in place");
        rvxzbConj1(dst.data(), n);
        expectBits(dst, elements, "rvxzbConj1");
    });
}

TEST(Conjugates, FlipReversesAndConjugatesTheMiddleTooWhenThereIsOne)
{
    forEveryShape([&](int n, int dstAt, int srcAt) {
        const std::vector<ZCplx> elements = markedNumbers(n, dstAt);
        std::vector<ZCplx> expected(elements.rbegin(), elements.rend());
        for (ZCplx &z : expected)
            z = turned(z);
        Guarded<ZCplx> src(elements, srcAt);
        Guarded<ZCplx> dst(n, dstAt);
        rvxzbConjFlip2(src.data(), dst.data(), n);
        expectBits(dst, expected, "rvxzbConjFlip2");
        expectBits(src, elements, "rvxzbConjFlip2");
    });
}

namespace {

// The spectrum of 2n - 2 elements that its first n make; n of 2 at least.
std::vector<ZCplx> extended(const std::vector<ZCplx> &half)
{
    std::vector<ZCplx> whole = half;
    for (std::size_t k = half.size() - 2; k >= 1; --k)
        whole.push_back(turned(half[k]));
    return whole;
}

} // namespace

TEST(ConjugateExtension, InPlaceLeavesTheFirstHalfAndFillsTheSecond)
{
    for (int n = 2; n <= longest; ++n)
        for (int at = 0; at < 4; ++at) {
            const std::vector<ZCplx> half = markedNumbers(n, at);
            std::vector<ZCplx> begun = half;
            begun.resize(static_cast<std::size_t>(2 * n - 2), ZCplx{9.0, 9.0});
            Guarded<ZCplx> vec(begun, at);
            rvxzbConjExtend1(vec.data(), n);
            expectBits(vec, extended(half), "rvxzbConjExtend1");
        }
}

TEST(ConjugateExtension, IntoAnotherBlockWritesTheWholeSpectrumOrTheSameInPlace)
{
    for (int n = 2; n <= longest; ++n)
        for (int at = 0; at < 4; ++at) {
            const std::vector<ZCplx> half = markedNumbers(n, at);
            Guarded<ZCplx> src(half, (at + 1) % 4);
            Guarded<ZCplx> dst(2 * n - 2, at);
            rvxzbConjExtend2(src.data(), dst.data(), n);
            expectBits(dst, extended(half), "rvxzbConjExtend2");
            expectBits(src, half, "rvxzbConjExtend2");

            std::vector<ZCplx> begun = half;
            begun.resize(static_cast<std::size_t>(2 * n - 2), ZCplx{9.0, 9.0});
            Guarded<ZCplx> vec(begun, at);
            rvxzbConjExtend2(vec.data(), vec.data(), n);
            expectBits(vec, extended(half), "rvxzbConjExtend2 in place");
        }
}

TEST(ConjugateExtension, OneAndTwoElementsHaveNoMirror)
{
    for (int n : {1, 2}) {
        const std::vector<ZCplx> elements = markedNumbers(n, 3);
        Guarded<ZCplx> vec(elements);
        rvxzbConjExtend1(vec.data(), n);
        expectBits(vec, elements, "rvxzbConjExtend1");
    }
}

TEST(ConjugateExtension, OneElementCopiesItsNeighbourToo)
{
    const std::vector<ZCplx> two = {{1.0, -2.0}, {3.0, 4.0}};
    Guarded<ZCplx> src(two);
    Guarded<ZCplx> dst(2);
    rvxzbConjExtend2(src.data(), dst.data(), 1);
    expectBits(dst, two, "rvxzbConjExtend2");
}

TEST(ConjugateExtension, ThreeElementsMirrorTheMiddleOneAlone)
{
    std::vector<ZCplx> vec = {{1.0, 2.0}, {3.0, 4.0}, {5.0, 6.0}, {0.0, 0.0}};
    rvxzbConjExtend1(vec.data(), 3);
    EXPECT_TRUE(sameBits(vec[2], ZCplx{5.0, 6.0}));
    EXPECT_TRUE(sameBits(vec[3], ZCplx{3.0, -4.0}));
}

// --- Parts ---------------------------------------------------------------------------

TEST(Parts, RealAndImaginaryPartsMoveBitForBit)
{
    expectPart("rvxzbReal", rvxzbReal, [](ZCplx z) { return z.re; });
    expectPart("rvxzbImag", rvxzbImag, [](ZCplx z) { return z.im; });
}

TEST(Parts, TakenApartAndJoinedAgain)
{
    forEveryShape([&](int n, int dstAt, int srcAt) {
        const std::vector<ZCplx> elements = markedNumbers(n, srcAt);
        std::vector<double> reals, imags;
        for (ZCplx z : elements) {
            reals.push_back(z.re);
            imags.push_back(z.im);
        }
        Guarded<ZCplx> src(elements, srcAt);
        Guarded<double> re(n, dstAt), im(n, (dstAt + srcAt) % 4);
        rvxzbCplxTo2Real(src.data(), re.data(), im.data(), n);
        expectBits(re, reals, "rvxzbCplxTo2Real, real parts");
        expectBits(im, imags, "rvxzbCplxTo2Real, imaginary parts");
        expectBits(src, elements, "rvxzbCplxTo2Real");

        Guarded<ZCplx> dst(n, dstAt);
        rvxzb2RealToCplx(re.data(), im.data(), dst.data(), n);
        expectBits(dst, elements, "rvxzb2RealToCplx");
        expectBits(re, reals, "rvxzb2RealToCplx");
        expectBits(im, imags, "rvxzb2RealToCplx");
    });
}

TEST(Parts, AMissingSourceStandsForPositiveZeros)
{
    Reports reports;
    forEveryShape([&](int n, int dstAt, int srcAt) {
        const std::vector<double> reals = markedReals(n, srcAt);
        Guarded<double> part(reals, srcAt);
        std::vector<ZCplx> realOnly, imagOnly, none;
        for (double x : reals) {
            realOnly.push_back({x, 0.0});
            imagOnly.push_back({0.0, x});
            none.push_back({0.0, 0.0});
        }
        Guarded<ZCplx> dst(n, dstAt);
        rvxzb2RealToCplx(part.data(), nullptr, dst.data(), n);
        expectBits(dst, realOnly, "rvxzb2RealToCplx without imaginary parts");
        rvxzb2RealToCplx(nullptr, part.data(), dst.data(), n);
        expectBits(dst, imagOnly, "rvxzb2RealToCplx without real parts");
        rvxzb2RealToCplx(nullptr, nullptr, dst.data(), n);
        expectBits(dst, none, "rvxzb2RealToCplx without parts");
    });
    EXPECT_TRUE(reports.take().empty());
}

TEST(PowerSpectrum, EachProductAndTheSumAreRoundedOnce)
{
    forEveryShape([&](int n, int dstAt, int srcAt) {
        const std::vector<ZCplx> elements = markedNumbers(n, srcAt);
        std::vector<double> expected;
        for (ZCplx z : elements) {
            volatile double im = z.im * z.im;
            volatile double re = z.re * z.re;
            expected.push_back(im + re);
        }
        Guarded<ZCplx> src(elements, srcAt);
        Guarded<double> dst(n, dstAt);
        rvxzbPowerSpectr(src.data(), dst.data(), n);
        expectBlock(dst, expected, "rvxzbPowerSpectr");
        expectBits(src, elements, "rvxzbPowerSpectr");

        std::vector<double> inPlace(static_cast<std::size_t>(2 * n));
        std::memcpy(inPlace.data(), elements.data(), elements.size() * sizeof(ZCplx));
        rvxzbPowerSpectr(reinterpret_cast<ZCplx *>(inPlace.data()), inPlace.data(), n);
        for (int i = 0; i < n; ++i) {
            const auto at = static_cast<std::size_t>(i);
            ASSERT_TRUE(same(inPlace[at], expected[at])) << i << " of " << n;
        }
    });
}

TEST(PowerSpectrum, EverySpecialPairAtEveryPosition)
{
    for (int n = 1; n <= 40; ++n)
        for (int at = 0; at < n; ++at)
            for (double re : specials)
                for (double im : specials) {
                    std::vector<ZCplx> src(static_cast<std::size_t>(n), ZCplx{3.0, 4.0});
                    src[static_cast<std::size_t>(at)] = {re, im};
                    std::vector<double> spectr(src.size());
                    rvxzbPowerSpectr(src.data(), spectr.data(), n);
                    for (int i = 0; i < n; ++i)
                        ASSERT_TRUE(same(spectr[static_cast<std::size_t>(i)],
                                         i == at ? im * im + re * re : 25.0))
                            << re << ", " << im << " at " << at << " of " << n;
                }
}
