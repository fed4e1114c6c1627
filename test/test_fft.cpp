// Complex Fourier transforms: their values.

#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

#include <gtest/gtest.h>

#include "reference/dft.h"
#include "rvx.h"
#include "support/complex_fronts.h"
#include "support/guarded.h"
#include "support/worse.h"
#include "transform/rvxfftd.h"
#include "transform/rvxmisc.h"
#include "transform/rvxtwd.h"

namespace {

Signal reversed(const Signal &x)
{
    Signal result(x.size());
    int order = 0;
    while ((std::size_t{1} << order) < x.size())
        ++order;
    for (std::size_t i = 0; i < x.size(); ++i) {
        std::size_t j = 0;
        for (int bit = 0; bit < order; ++bit)
            j |= (i >> bit & 1) << (order - 1 - bit);
        result[j] = x[i];
    }
    return result;
}

struct Error {
    double rms;     // relative to the root mean square of the reference
    double largest; // of any part, in the same unit
};

Error errorOf(const Signal &x, const std::vector<ZExtended> &reference, long double scale)
{
    long double sum = 0, power = 0, largest = 0;
    for (std::size_t i = 0; i < x.size(); ++i) {
        const long double re = x[i].re - reference[i].re * scale;
        const long double im = x[i].im - reference[i].im * scale;
        sum += re * re + im * im;
        power +=
            (reference[i].re * reference[i].re + reference[i].im * reference[i].im) * scale * scale;
        largest = worse(largest, worse(std::fabs(re), std::fabs(im)));
    }
    const auto n = static_cast<long double>(x.size());
    return {static_cast<double>(std::sqrt(sum / power)),
            static_cast<double>(largest / std::sqrt(power / n))};
}

// Each radix-2 pass adds rounding errors of its own to those before it, so the
// square grows with the order. Measured on noise, per root of the order: 7.0e-17 in
// the mean, 2.95e-16 in the worst part.
double rmsBound(int order)
{
    return 7.5e-17 * std::sqrt(order);
}

double largestBound(int order)
{
    return 3.3e-16 * std::sqrt(order);
}

} // namespace

// ---- results ------------------------------------------------------------------

TEST(Fft, EqualsTheDftAtEveryOrderInEveryForm)
{
    for (int order = 0; order <= 20; ++order) {
        const int n = 1 << order;
        const Signal x = noise(n, static_cast<unsigned>(order));
        for (int direction : {1, 2}) {
            const int sign = direction == 1 ? 1 : -1;
            const auto reference =
                order <= 8 ? dftByDefinition(extended(x), sign) : dftInHalves(extended(x), sign);
            for (int field : {0, 32, 64, 128})
                for (int unscaled : {0, int{RVX_FFT_NO_SCALE}}) {
                    if (order > 14 && (unscaled != 0 || field == RVX_FFT_NATURAL_ORDER))
                        continue;
                    const int flags = direction | field | unscaled;
                    const Signal in = field == RVX_FFT_IN_BIT_REV ? reversed(x) : x;
                    const bool scaled = direction == 2 && unscaled == 0;
                    Signal out = transformed(Front::inPlace, in, order, flags);
                    for (Front front : {Front::notInPlace, Front::split})
                        EXPECT_TRUE(sameBits(transformed(front, in, order, flags), out))
                            << nameOf(front) << " " << order << " flags " << flags;
                    if (field == RVX_FFT_OUT_BIT_REV)
                        out = reversed(out);
                    const Error error = errorOf(out, reference, scaled ? 1.0L / n : 1.0L);
                    EXPECT_LE(error.rms, rmsBound(order)) << order << " flags " << flags;
                    EXPECT_LE(error.largest, largestBound(order)) << order << " flags " << flags;
                }
        }
    }
}

TEST(Fft, OneElementIsCopiedAndNeverScaled)
{
    const Signal x = {{std::numeric_limits<double>::quiet_NaN(), -0.0}};
    for (Front front : fronts)
        for (int flags : {1, 2, 18, 65, 66, 129, 130})
            EXPECT_TRUE(sameBits(transformed(front, x, 0, flags), x)) << nameOf(front);
}

TEST(Fft, TwoElementsAreSumAndDifference)
{
    const Signal x = {{3.0, 5.0}, {0.25, 8.0}};
    for (Front front : fronts)
        for (int field : {0, 64, 128}) {
            const Signal sums = {{3.25, 13.0}, {2.75, -3.0}};
            const Signal halves = {{1.625, 6.5}, {1.375, -1.5}};
            EXPECT_TRUE(sameBits(transformed(front, x, 1, 1 | field), sums));
            EXPECT_TRUE(sameBits(transformed(front, x, 1, 2 | field), halves));
            EXPECT_TRUE(sameBits(transformed(front, x, 1, 18 | field), sums));
        }
}

TEST(Fft, AnImpulseGivesTheRootsOfUnity)
{
    for (int order = 1; order <= 14; ++order) {
        const int n = 1 << order;
        for (int at : {0, 1, n / 2, n - 1}) {
            Signal x(static_cast<std::size_t>(n));
            x[static_cast<std::size_t>(at)] = {1.0, 0.0};
            for (Front front : fronts) {
                const Signal spectrum = transformed(front, x, order, RVX_FFT_FORWARD);
                const auto roots = unitRoots(static_cast<std::size_t>(n), 1);
                for (int k = 0; k < n; ++k) {
                    const ZExtended w =
                        roots[static_cast<std::size_t>(static_cast<long long>(k) * at % n)];
                    const ZCplx got = spectrum[static_cast<std::size_t>(k)];
                    ASSERT_NEAR(got.re, static_cast<double>(w.re), 6e-16) << order << " " << at;
                    ASSERT_NEAR(got.im, static_cast<double>(w.im), 6e-16) << order << " " << at;
                }
            }
        }
        Signal x(static_cast<std::size_t>(n));
        x[0] = {1.0, -2.0};
        for (const ZCplx &bin : transformed(Front::inPlace, x, order, RVX_FFT_FORWARD)) {
            EXPECT_EQ(bin.re, 1.0);
            EXPECT_EQ(bin.im, -2.0);
        }
    }
}

TEST(Fft, EachFrequencyComesToItsBin)
{
    for (int order : {3, 5, 8, 10, 13}) {
        const int n = 1 << order;
        const auto roots = unitRoots(static_cast<std::size_t>(n), 1);
        for (int frequency = 0; frequency < n; frequency += order < 8 ? 1 : n / 16 + 1) {
            Signal x;
            for (int i = 0; i < n; ++i) {
                const ZExtended w =
                    roots[static_cast<std::size_t>(static_cast<long long>(i) * frequency % n)];
                x.push_back({static_cast<double>(w.re), -static_cast<double>(w.im)});
            }
            const Signal spectrum = transformed(Front::notInPlace, x, order, RVX_FFT_FORWARD);
            for (int k = 0; k < n; ++k) {
                const ZCplx bin = spectrum[static_cast<std::size_t>(k)];
                ASSERT_NEAR(bin.re, k == frequency ? n : 0.0, 4e-16 * n) << order << " " << k;
                ASSERT_NEAR(bin.im, 0.0, 4e-16 * n) << order << " " << k;
            }
        }
    }
}

TEST(Fft, KeepsThePowerOfTheSignal)
{
    for (int order = 1; order <= 16; ++order) {
        const Signal x = noise(1 << order, 77);
        const auto power = [](const Signal &signal) {
            long double sum = 0;
            for (const ZCplx &z : signal)
                sum +=
                    static_cast<long double>(z.re) * z.re + static_cast<long double>(z.im) * z.im;
            return sum;
        };
        const long double before = power(x);
        const long double after = power(transformed(Front::inPlace, x, order, 1)) / (1 << order);
        EXPECT_NEAR(static_cast<double>(after / before), 1.0, 4e-16 * std::sqrt(order));
    }
}

TEST(Fft, ForwardAndInverseUndoEachOther)
{
    for (int order = 0; order <= 16; ++order) {
        const Signal x = noise(1 << order, 5);
        const auto pairOf = [&x, order](Front front, int there, int back) {
            return transformed(front, transformed(front, x, order, there), order, back);
        };
        for (Front front : fronts) {
            for (const Signal &back : {pairOf(front, 1, 2), pairOf(front, 129, 66)}) {
                const Error error = errorOf(back, extended(x), 1.0L);
                EXPECT_LE(error.rms, 1.5 * rmsBound(order)) << nameOf(front) << " " << order;
            }
            // The inverse without its factor and the forward give N times the start.
            const Signal grown = pairOf(front, 18, 1);
            const Error error = errorOf(grown, extended(x), static_cast<long double>(1 << order));
            EXPECT_LE(error.rms, 1.5 * rmsBound(order)) << nameOf(front) << " " << order;
        }
    }
}

TEST(Fft, TheInverseIsTheUnscaledOneTimesOneOverN)
{
    for (int order = 1; order <= 13; ++order)
        for (int field : {0, 64, 128}) {
            const Signal x = noise(1 << order, 9);
            Signal expected = transformed(Front::inPlace, x, order, 18 | field);
            for (ZCplx &z : expected)
                z = {z.re * (1.0 / (1 << order)), z.im * (1.0 / (1 << order))};
            for (Front front : fronts)
                EXPECT_TRUE(sameBits(transformed(front, x, order, 2 | field), expected));
        }
}

// A factor of a power of two shows nowhere but at the ends of the range: applied
// earlier it would lose the smallest number, and save the largest from overflow.
TEST(Fft, TheScaleComesTooLateForTheEndsOfTheRange)
{
    const double tiny = std::numeric_limits<double>::denorm_min();
    const double big = std::numeric_limits<double>::max();
    for (Front front : fronts)
        for (int field : {0, 64, 128})
            for (int order = 1; order <= 10; ++order) {
                const std::size_t n = std::size_t{1} << order;
                const Signal faint(n, ZCplx{tiny, -tiny});
                const Signal mean = transformed(front, faint, order, 2 | field);
                EXPECT_EQ(mean[0].re, tiny) << nameOf(front) << " " << order;
                EXPECT_EQ(mean[0].im, -tiny) << nameOf(front) << " " << order;
                const Signal loud(n, ZCplx{big, 0.0});
                EXPECT_FALSE(std::isfinite(transformed(front, loud, order, 2 | field)[0].re));
            }
}

TEST(Fft, SameBitsAtEveryAlignmentAndNothingOutsideIsWritten)
{
    for (int order = 0; order <= 13; ++order)
        for (int flags : {1, 2, 65, 66, 129, 130}) {
            const Signal x = noise(1 << order, 3);
            for (Front front : fronts) {
                const Signal expected = transformed(front, x, order, flags, 0);
                for (int misalignment = 1; misalignment < 4; ++misalignment)
                    EXPECT_TRUE(
                        sameBits(transformed(front, x, order, flags, misalignment), expected))
                        << nameOf(front) << " " << order << " flags " << flags;
            }
        }
}

TEST(Fft, SameBitsWhateverIsCached)
{
    for (int order : {4, 9, 10, 14}) {
        const Signal x = noise(1 << order, 4);
        for (int flags : {1, 129}) {
            rvxFreeFftTables();
            const Signal fresh = transformed(Front::inPlace, x, order, flags);
            for (int other = 0; other <= 14; ++other)
                for (int warm : {4, 132})
                    rvxzFft(nullptr, other, warm);
            EXPECT_TRUE(sameBits(transformed(Front::inPlace, x, order, flags), fresh));
        }
    }
}

TEST(Fft, BitReversedOrdersWorkOnOneArray)
{
    for (int order : {0, 1, 3, 6, 9, 11})
        for (int flags : {65, 66, 129, 130}) {
            const Signal x = noise(1 << order, 8);
            const Signal expected = transformed(Front::inPlace, x, order, flags);
            Signal same = x;
            rvxzFftNip(same.data(), same.data(), order, flags);
            EXPECT_TRUE(sameBits(same, expected)) << order;
            std::vector<double> re, im;
            for (const ZCplx &z : x) {
                re.push_back(z.re);
                im.push_back(z.im);
            }
            rvxzrFftNip(re.data(), im.data(), re.data(), im.data(), order, flags);
            for (std::size_t i = 0; i < x.size(); ++i) {
                EXPECT_EQ(bitsOf(re[i]), bitsOf(expected[i].re));
                EXPECT_EQ(bitsOf(im[i]), bitsOf(expected[i].im));
            }
        }
}

TEST(Fft, UnknownFlagBitsChangeNothing)
{
    const int unknown = 256 | 512 | 1024 | 2048 | 4096 | 1 << 20;
    for (int order : {2, 7, 10}) {
        const Signal x = noise(1 << order, 2);
        for (Front front : fronts)
            EXPECT_TRUE(sameBits(transformed(front, x, order, 2 | unknown),
                                 transformed(front, x, order, 2)));
    }
}

TEST(Fft, InfinitiesAndNaNsSpreadAndDoNotCrash)
{
    const double infinity = std::numeric_limits<double>::infinity();
    const double nan = std::numeric_limits<double>::quiet_NaN();
    for (int order = 1; order <= 11; ++order)
        for (double bad : {infinity, -infinity, nan})
            for (int flags : {1, 2, 65, 66, 129, 130})
                for (Front front : fronts) {
                    Signal x = noise(1 << order, 6);
                    x[x.size() / 3].re = bad;
                    // Every result contains every element.
                    for (const ZCplx &z : transformed(front, x, order, flags))
                        ASSERT_FALSE(std::isfinite(z.re) && std::isfinite(z.im));
                }
}

TEST(Fft, ZerosStayZeros)
{
    for (int order = 0; order <= 12; ++order)
        for (Front front : fronts)
            for (int flags : {1, 2, 65, 66, 129, 130})
                for (const ZCplx &z :
                     transformed(front, Signal(std::size_t{1} << order), order, flags)) {
                    ASSERT_EQ(z.re, 0.0);
                    ASSERT_EQ(z.im, 0.0);
                }
}

// ---- engines --------------------------------------------------------------------

TEST(FftEngines, GiveWhatTheFrontsGiveUnscaled)
{
    for (int order = 0; order <= 12; ++order)
        for (int direction : {1, -1}) {
            const int n = 1 << order;
            const Signal x = noise(n, 12);
            const int bits = direction > 0 ? 1 : 18;
            const auto split = [&x](std::vector<double> &re, std::vector<double> &im) {
                for (const ZCplx &z : x) {
                    re.push_back(z.re);
                    im.push_back(z.im);
                }
            };
            Signal dit = x;
            rvxFftDit(dit.data(), n, direction, rvxGetFftTwdDit(order));
            EXPECT_TRUE(sameBits(dit, transformed(Front::inPlace, x, order, bits | 64)));
            Signal dif = x;
            rvxFftDif(dif.data(), n, direction, rvxGetFftTwdDif(order));
            EXPECT_TRUE(sameBits(dif, transformed(Front::inPlace, x, order, bits | 128)));
            std::vector<double> re, im, reDif, imDif;
            split(re, im);
            rvxrFftDit(re.data(), im.data(), n, direction, rvxGetFftTwdDit(order));
            split(reDif, imDif);
            rvxrFftDif(reDif.data(), imDif.data(), n, direction, rvxGetFftTwdDif(order));
            for (std::size_t i = 0; i < x.size(); ++i) {
                EXPECT_EQ(bitsOf(re[i]), bitsOf(dit[i].re));
                EXPECT_EQ(bitsOf(im[i]), bitsOf(dit[i].im));
                EXPECT_EQ(bitsOf(reDif[i]), bitsOf(dif[i].re));
                EXPECT_EQ(bitsOf(imDif[i]), bitsOf(dif[i].im));
            }
        }
}

TEST(FftEngines, ReversingCopiesTakeEachElementToItsPlace)
{
    for (int order = 0; order <= 12; ++order) {
        const int n = 1 << order;
        const Signal x = noise(n, 13);
        const Signal expected = reversed(x);
        Guarded<ZCplx> out(n, 1);
        rvxBitRevCopy(x.data(), out.data(), n, rvxGetBitRevSwapTbl(order));
        EXPECT_TRUE(sameBits(out.values(), expected));
        EXPECT_TRUE(out.intact());
        Signal inPlace = x;
        rvxBitRevInPlace(inPlace.data(), n, rvxGetBitRevSwapTbl(order));
        EXPECT_TRUE(sameBits(inPlace, expected));
        std::vector<double> re;
        for (const ZCplx &z : x)
            re.push_back(z.re);
        Guarded<double> reOut(n, 1);
        rvxBitRevCopyDoubles(re.data(), reOut.data(), n, rvxGetBitRevSwapTbl(order));
        for (int i = 0; i < n; ++i)
            EXPECT_EQ(reOut[i], expected[static_cast<std::size_t>(i)].re);
        EXPECT_TRUE(reOut.intact());
    }
}
