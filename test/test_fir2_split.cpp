// The step between the transform of pairs of real values and the real spectrum.

#include <cmath>
#include <cstdint>
#include <vector>

#include <gtest/gtest.h>

#include "convolution/rvxfir2.h"
#include "reference/dft.h"
#include "support/allocations.h"
#include "support/complex_fronts.h"
#include "support/guarded.h"
#include "support/reports.h"
#include "transform/rvxmisc.h"
#include "transform/rvxtwd.h"

namespace {

constexpr int topOrder = 11;

struct Positions {
    Positions(int order, bool reversed) : table(std::size_t{1} << order)
    {
        for (std::size_t k = 0; k < table.size(); ++k)
            table[k] = static_cast<std::uint32_t>(k);
        if (reversed)
            rvxCalcBitRevTbl(table.data(), order);
    }
    std::size_t operator()(std::size_t k) const { return table[k]; }

    std::vector<std::uint32_t> table;
};

// One bin after the other, each product and each sum as written; `inverse` is the
// sense, `back` tells the two functions apart.
Signal plainTurn(Signal z, int order, bool back, bool inverse, bool reversed)
{
    const std::size_t n = z.size();
    const Positions at(order, reversed);
    std::vector<ZCplx> table(2 * n);
    rvxzCalcFftTwdTbl(table.data(), order + 1);
    z[0] = {z[0].re + z[0].im, z[0].re - z[0].im};
    if (n < 2)
        return z;
    for (std::size_t k = 1; k < n / 2; ++k) {
        ZCplx &p = z[at(k)];
        ZCplx &q = z[at(n - k)];
        const ZCplx w = inverse ? table[2 * n - k] : table[k];
        double a = p.re + q.re;
        double b = p.im - q.im;
        double c = p.re - q.re;
        double d = p.im + q.im;
        if (!back) {
            a *= 0.5;
            b *= 0.5;
            c *= 0.5;
            d *= 0.5;
        }
        const double t = -c * w.im - w.re * d;
        const double u = c * w.re - d * w.im;
        if (back) {
            p = {t + a, b + u};
            q = {a - t, -b + u};
        } else {
            p = {a - t, b - u};
            q = {t + a, -b - u};
        }
    }
    ZCplx &middle = z[at(n / 2)];
    if (back)
        middle = {2.0 * middle.re, 2.0 * middle.im};
    if (back == inverse)
        middle.im = -middle.im;
    return z;
}

Signal turned(const Signal &z, int order, bool back, bool inverse, bool reversed, int misalignment)
{
    int flags = inverse ? RVX_FFT_INVERSE : RVX_FFT_FORWARD;
    if (reversed)
        flags |= back ? RVX_FFT_IN_BIT_REV : RVX_FFT_OUT_BIT_REV;
    Guarded<ZCplx> data(z, misalignment);
    (back ? rvxRealSplitInv : rvxRealSplitFwd)(data.data(), order, flags);
    EXPECT_TRUE(data.intact());
    return data.values();
}

void expectPlain(const Signal &z, int order)
{
    for (int form = 0; form < 8; ++form) {
        const bool back = (form & 1) != 0;
        const bool inverse = (form & 2) != 0;
        const bool reversed = (form & 4) != 0;
        EXPECT_TRUE(sameBits(turned(z, order, back, inverse, reversed, order % 4),
                             plainTurn(z, order, back, inverse, reversed)))
            << "order " << order << " form " << form;
    }
}

TEST(RealSplit, EveryBinHasTheBitsOfItsFormula)
{
    for (int order = 0; order <= topOrder; ++order)
        expectPlain(noise(1 << order, static_cast<unsigned>(order)), order);
}

TEST(RealSplit, SignedZerosAreThoseOfTheFormula)
{
    for (int order = 0; order <= 6; ++order)
        for (int signs = 0; signs < 16; ++signs) {
            Signal z(std::size_t{1} << order);
            for (std::size_t i = 0; i < z.size(); ++i)
                z[i] = {(signs & (i % 2 == 0 ? 1 : 2)) != 0 ? -0.0 : 0.0,
                        (signs & (i % 2 == 0 ? 4 : 8)) != 0 ? -0.0 : 0.0};
            expectPlain(z, order);
        }
}

TEST(RealSplit, HugeAndTinyValuesGoThroughUnchecked)
{
    for (int order = 1; order <= 6; ++order)
        for (double scale : {0x1p1023, 0x1p-1060}) {
            Signal z = noise(1 << order, 5);
            for (ZCplx &value : z)
                value = {value.re * scale, value.im * scale};
            // Infinities that meet make NaNs, whose bits nobody promises.
            for (int reversed = 0; reversed < 2; ++reversed) {
                const Signal is = turned(z, order, false, false, reversed != 0, 1);
                const Signal expected = plainTurn(z, order, false, false, reversed != 0);
                for (std::size_t i = 0; i < z.size(); ++i) {
                    EXPECT_TRUE(is[i].re == expected[i].re ||
                                (std::isnan(is[i].re) && std::isnan(expected[i].re)));
                    EXPECT_TRUE(is[i].im == expected[i].im ||
                                (std::isnan(is[i].im) && std::isnan(expected[i].im)));
                }
            }
        }
}

// The bins of the real values whose pairs z holds.
std::vector<ZExtended> realBins(const Signal &z)
{
    std::vector<ZExtended> values;
    for (const ZCplx &pair : z) {
        values.push_back({pair.re, 0.0L});
        values.push_back({pair.im, 0.0L});
    }
    return dftInHalves(values, 1);
}

void expectNear(double re, double im, ZExtended bin, double bound)
{
    EXPECT_NEAR(re, static_cast<double>(bin.re), bound);
    EXPECT_NEAR(im, static_cast<double>(bin.im), bound);
}

TEST(RealSplit, TransformAndSplitGiveTheSpectrumOfTheRealValues)
{
    for (int order = 0; order <= 8; ++order)
        for (int reversed = 0; reversed < 2; ++reversed) {
            const Signal x = noise(1 << order, 77);
            const std::size_t n = x.size();
            const Positions at(order, reversed != 0);
            const int flags = RVX_FFT_FORWARD | (reversed != 0 ? RVX_FFT_OUT_BIT_REV : 0);
            Signal z = x;
            rvxzFft(z.data(), order, flags);
            rvxRealSplitFwd(z.data(), order, flags);
            // Measured: at most 3.2e-16 times the root of the length, of values below 1.
            const double bound = 4e-16 * std::sqrt(2.0 * static_cast<double>(n));
            const std::vector<ZExtended> bins = realBins(x);
            expectNear(z[0].re, z[0].im, {bins[0].re, bins[n].re}, bound);
            for (std::size_t k = 1; k < n; ++k)
                expectNear(z[at(k)].re, z[at(k)].im, bins[k], bound);
        }
}

TEST(RealSplit, TheWayBackGivesTwiceTheValues)
{
    for (int order = 0; order <= topOrder; ++order)
        for (int reversed = 0; reversed < 2; ++reversed) {
            const Signal x = noise(1 << order, 78);
            const int forward = RVX_FFT_FORWARD | (reversed != 0 ? RVX_FFT_OUT_BIT_REV : 0);
            const int inverse = RVX_FFT_INVERSE | (reversed != 0 ? RVX_FFT_IN_BIT_REV : 0);
            Signal z = x;
            rvxzFft(z.data(), order, forward);
            rvxRealSplitFwd(z.data(), order, forward);
            rvxRealSplitInv(z.data(), order, inverse);
            rvxzFft(z.data(), order, inverse);
            for (std::size_t i = 0; i < x.size(); ++i) {
                EXPECT_NEAR(z[i].re, 2.0 * x[i].re, 2e-15) << i << " order " << order;
                EXPECT_NEAR(z[i].im, 2.0 * x[i].im, 2e-15) << i << " order " << order;
            }
        }
}

TEST(RealSplit, WithoutMemoryForItsTableTheLineStaysAsItIs)
{
    for (int back = 0; back < 2; ++back) {
        const auto turn = back != 0 ? rvxRealSplitInv : rvxRealSplitFwd;
        Reports reports;
        rvxFreeTwdTables();
        const Signal x = noise(16, 3);
        Signal z = x;
        {
            AllocationWatch watch(1);
            turn(z.data(), 4, RVX_FFT_FORWARD);
            EXPECT_EQ(watch.failures(), 1);
        }
        EXPECT_TRUE(sameBits(z, x));
        const std::vector<Report> expected = {{RVX_STATUS_NO_MEMORY,
                                               back != 0 ? "rvxRealSplitInv" : "rvxRealSplitFwd",
                                               "NULL Pointer", "rvxfir2"}};
        EXPECT_EQ(reports.take(), expected);
        EXPECT_EQ(rvxGetErrStatus(), RVX_STATUS_NO_MEMORY);
    }
}

TEST(RealSplit, AnOldFailureDoesNotMatter)
{
    Reports reports;
    rvxFreeTwdTables();
    rvxSetErrStatus(RVX_STATUS_BAD_ARGUMENT);
    const Signal x = noise(16, 4);
    EXPECT_TRUE(sameBits(turned(x, 4, false, false, true, 0), plainTurn(x, 4, false, false, true)));
    EXPECT_EQ(rvxGetErrStatus(), RVX_STATUS_BAD_ARGUMENT);
    EXPECT_TRUE(reports.take().empty());
}

} // namespace
