// Real and conjugate-symmetric Fourier transforms: their values.

#include <climits>
#include <cmath>
#include <limits>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "reference/dft.h"
#include "support/guarded.h"
#include "support/real_fronts.h"
#include "support/reports.h"
#include "support/worse.h"
#include "transform/rvxfftd.h"

namespace {

std::vector<ZExtended> exactSpectrum(const std::vector<double> &samples)
{
    std::vector<ZExtended> z;
    for (double x : samples)
        z.push_back({x, 0.0L});
    return dftInHalves(z, 1);
}

std::vector<ZExtended> exactSamples(const std::vector<double> &ccs)
{
    const std::size_t n = ccs.size() - 2;
    std::vector<ZExtended> z(n);
    for (std::size_t k = 0; k <= n / 2; ++k) {
        const long double im = k == 0 || k == n / 2 ? 0.0L : ccs[2 * k + 1];
        z[(n - k) % n] = {ccs[2 * k], -im};
        z[k % n] = {ccs[2 * k], im};
    }
    return dftInHalves(z, 1);
}

// The largest distance measured, on uniform noise at all orders, was 0.63 for
// spectra and 1.11 for samples, times the order and half a unit of the last place.
double spectrumBound(int order)
{
    return 0.75 * order * 0x1p-53;
}

double samplesBound(int order)
{
    return 1.25 * order * 0x1p-53;
}

// The largest distance from the exact spectrum over its root mean square.
double relativeError(const std::vector<double> &ccs, const std::vector<ZExtended> &exact,
                     long double factor)
{
    long double worst = 0.0L;
    long double energy = 0.0L;
    for (std::size_t k = 0; 2 * k < ccs.size(); ++k) {
        const long double re = exact[k].re * factor;
        const long double im = exact[k].im * factor;
        worst = worse(worst, worse(std::fabs(ccs[2 * k] - re), std::fabs(ccs[2 * k + 1] - im)));
        energy += re * re + im * im;
    }
    return static_cast<double>(worst /
                               std::sqrt(energy / static_cast<long double>(ccs.size() / 2)));
}

} // namespace

TEST(Dft, InHalvesEqualsTheDefinition)
{
    for (std::size_t n = 1; n <= 256; n *= 2) {
        std::vector<ZCplx> x(n);
        const std::vector<double> parts = noise(static_cast<int>(2 * n), 19);
        for (std::size_t i = 0; i < n; ++i)
            x[i] = {parts[2 * i], parts[2 * i + 1]};
        for (int direction : {1, -1}) {
            const std::vector<ZExtended> fast = dftInHalves(extended(x), direction);
            const std::vector<ZExtended> slow = dftByDefinition(extended(x), direction);
            for (std::size_t k = 0; k < n; ++k) {
                EXPECT_LT(std::fabs(fast[k].re - slow[k].re), 1e-16L) << n << " at " << k;
                EXPECT_LT(std::fabs(fast[k].im - slow[k].im), 1e-16L) << n << " at " << k;
            }
        }
    }
}

// Flag 2 gives the conjugate, over N.
TEST(RealFft, EqualsTheDftAtEveryOrder)
{
    Reports reports;
    for (int order = 1; order <= 20; ++order) {
        const int n = 1 << order;
        const std::vector<double> samples = noise(n, 1);
        std::vector<ZExtended> exact = exactSpectrum(samples);
        EXPECT_LT(relativeError(realFft(samples, order, 1), exact, 1.0L), spectrumBound(order))
            << order;

        for (ZExtended &bin : exact)
            bin.im = -bin.im;
        const std::vector<double> scaled = realFft(samples, order, 2);
        EXPECT_LT(relativeError(scaled, exact, 1.0L / n), spectrumBound(order)) << order;
        std::vector<double> unscaled = realFft(samples, order, 2 | 16);
        for (double &x : unscaled)
            x *= 1.0 / n;
        expectSameBits(scaled, unscaled, "order " + std::to_string(order));
    }
    EXPECT_TRUE(reports.take().empty());
}

TEST(CcsFft, EqualsTheDftOfTheWholeSpectrumAtEveryOrder)
{
    Reports reports;
    for (int order = 1; order <= 20; ++order) {
        const int n = 1 << order;
        std::vector<double> spectrum = noise(n + 2, 3);
        const std::vector<ZExtended> exact = exactSamples(spectrum);
        // Flag 2 sums with the conjugate kernel: the same samples the other way round.
        const std::vector<double> forward = ccsFft(spectrum, order, 1);
        const std::vector<double> inverse = ccsFft(spectrum, order, 2);
        std::vector<double> unscaled = ccsFft(spectrum, order, 2 | 16);
        long double worst = 0.0L;
        long double energy = 0.0L;
        for (int i = 0; i < n; ++i) {
            const long double x = exact[static_cast<std::size_t>(i)].re;
            const std::size_t at = static_cast<std::size_t>(i);
            const std::size_t mirrored = static_cast<std::size_t>((n - i) % n);
            worst = worse(worst, std::fabs(forward[at] - x));
            worst = worse(worst, std::fabs(inverse[mirrored] * n - x));
            energy += x * x;
        }
        EXPECT_LT(static_cast<double>(worst / std::sqrt(energy / n)), samplesBound(order)) << order;
        for (int i = 0; i < n; ++i)
            unscaled[static_cast<std::size_t>(i)] *= 1.0 / n;
        expectSameBits(inverse, unscaled, "order " + std::to_string(order));
    }
    EXPECT_TRUE(reports.take().empty());
}

TEST(RealFft, ForwardAndCcsInverseUndoEachOther)
{
    for (int order = 0; order <= 16; ++order) {
        const int n = 1 << order;
        const std::vector<double> samples = noise(n, 4);
        const std::vector<double> back = ccsFft(realFft(samples, order, 1), order, 2);
        double worst = 0.0;
        for (int i = 0; i < n; ++i)
            worst = worse(worst, std::fabs(back[static_cast<std::size_t>(i)] -
                                           samples[static_cast<std::size_t>(i)]));
        EXPECT_LE(worst, 0.6 * samplesBound(order)) << order;
    }
}

// The forms share their arithmetic: what one test shows of one form holds for all.
TEST(RealFft, AllFormsGiveTheSameBits)
{
    for (int order = 1; order <= 16; ++order) {
        const int n = 1 << order;
        const std::string at = "order " + std::to_string(order);
        const std::vector<double> samples = noise(n, 5);
        for (int flags : {1, 2, 2 | 16}) {
            const std::vector<double> ccs = realFft(samples, order, flags);

            std::vector<double> input = samples;
            std::vector<double> output(samples.size() + 2);
            rvxdRealFftNip(input.data(), output.data(), order, flags);
            expectSameBits(output, ccs, "not in place, " + at);
            expectSameBits(input, samples, "its input, " + at);

            std::vector<double> pack = samples;
            rvxdRealFftl(pack.data(), order, flags | 256);
            expectSameBits(pack, toPack(ccs), "RCPack, " + at);

            std::vector<double> perm = samples;
            rvxdRealFftl(perm.data(), order, flags | 512);
            expectSameBits(perm, toPerm(ccs), "RCPerm, " + at);
        }
    }
}

TEST(CcsFft, AllFormsGiveTheSameBits)
{
    for (int order = 1; order <= 16; ++order) {
        const int n = 1 << order;
        const std::string at = "order " + std::to_string(order);
        const std::vector<double> spectrum = noise(n + 2, 6);
        for (int flags : {1, 2, 2 | 16}) {
            std::vector<double> samples = ccsFft(spectrum, order, flags);
            samples.resize(static_cast<std::size_t>(n));

            std::vector<double> input = spectrum;
            std::vector<double> output(static_cast<std::size_t>(n));
            rvxdCcsFftNip(input.data(), output.data(), order, flags);
            expectSameBits(output, samples, "not in place, " + at);
            expectSameBits(input, spectrum, "its input, " + at);

            rvxdCcsFftNip(input.data(), input.data(), order, flags);
            input.resize(static_cast<std::size_t>(n));
            expectSameBits(input, samples, "output over the input, " + at);

            std::vector<double> pack = toPack(spectrum);
            rvxdCcsFftl(pack.data(), order, flags | 1024);
            expectSameBits(pack, samples, "RCPack, " + at);

            std::vector<double> perm = toPerm(spectrum);
            rvxdCcsFftl(perm.data(), order, flags | 4096);
            expectSameBits(perm, samples, "RCPerm, " + at);
        }
    }
}

TEST(RealFft, SameBitsAtEveryAlignmentAndNothingOutsideIsWritten)
{
    for (int order = 0; order <= 13; ++order) {
        const int n = 1 << order;
        const std::vector<double> data = noise(n + 2, 7);
        for (Form form : allForms) {
            std::vector<double> first;
            for (int misalignment = 0; misalignment < 4; ++misalignment) {
                const std::string at = std::string(nameOf(form)) + " order " +
                                       std::to_string(order) + " + " + std::to_string(misalignment);
                const bool room = !packed(form);
                const std::size_t length = static_cast<std::size_t>(room ? n + 2 : n);
                std::vector<double> input(data.begin(),
                                          data.begin() + static_cast<std::ptrdiff_t>(length));
                if (form == RealFftNip)
                    input.resize(static_cast<std::size_t>(n));
                Guarded<double> in(input, misalignment);
                Guarded<double> out(form == CcsFftNip ? n : n + 2, (misalignment + 1) % 4);
                call(form, in.data(), out.data(), order, 2 | formatOf(form));
                EXPECT_TRUE(in.intact()) << at;
                EXPECT_TRUE(out.intact()) << at;
                const std::vector<double> result = notInPlace(form) ? out.values() : in.values();
                if (misalignment == 0)
                    first = result;
                expectSameBits(result, first, at);
            }
        }
    }
}

TEST(RealFft, OrderBitsAndUnknownBitsChangeNothing)
{
    const std::vector<double> data = noise(66, 8);
    for (Form form : allForms) {
        std::vector<std::vector<double>> results;
        for (int extra : {0, 32, 64, 128, 32 | 64 | 128, 2048, 1 << 20, INT_MIN}) {
            Reports reports;
            std::vector<double> in = data;
            std::vector<double> out(66, 0.0);
            call(form, in.data(), out.data(), 6, 1 | extra | formatOf(form));
            EXPECT_TRUE(reports.take().empty()) << nameOf(form) << " " << extra;
            results.push_back(notInPlace(form) ? out : in);
            expectSameBits(results.back(), results.front(), nameOf(form));
        }
    }
}

// The exported fronts do not look at the formats of the internal ones.
TEST(RealFft, FormatBitsChangeNothingInTheExportedFronts)
{
    const std::vector<double> data = noise(66, 8);
    for (Form form : {RealFft, RealFftNip, CcsFft, CcsFftNip}) {
        std::vector<std::vector<double>> results;
        for (int extra : {0, 256 | 512, 1024 | 4096, 256, 4096}) {
            Reports reports;
            std::vector<double> in = data;
            std::vector<double> out(66, 0.0);
            call(form, in.data(), out.data(), 6, 1 | extra);
            EXPECT_TRUE(reports.take().empty()) << nameOf(form) << " " << extra;
            results.push_back(notInPlace(form) ? out : in);
            expectSameBits(results.back(), results.front(), nameOf(form));
        }
    }
}

// ---- small orders ---------------------------------------------------------

TEST(RealFft, OneSample)
{
    for (int flags : {1, 2, 2 | 16}) {
        std::vector<double> samps = {3.5, 9.0, 8.0};
        rvxdRealFft(samps.data(), 0, flags);
        expectSameBits(samps, {3.5, 0.0, 8.0}, "in place");

        std::vector<double> in = {-2.5};
        std::vector<double> out = {7.0, 7.0, 7.0};
        rvxdRealFftNip(in.data(), out.data(), 0, flags);
        expectSameBits(out, {-2.5, 0.0, 7.0}, "not in place");

        for (int format : {256, 512}) {
            samps = {3.5, 9.0};
            rvxdRealFftl(samps.data(), 0, flags | format);
            expectSameBits(samps, {3.5, 9.0}, "packed");
        }
        for (int format : {1024, 4096}) {
            samps = {3.5, 9.0};
            rvxdCcsFftl(samps.data(), 0, flags | format);
            expectSameBits(samps, {3.5, 9.0}, "from packed");
        }
        samps = {3.5, 9.0, 8.0};
        rvxdCcsFft(samps.data(), 0, flags);
        expectSameBits(samps, {3.5, 9.0, 8.0}, "from CCS");

        out = {7.0, 7.0, 7.0};
        rvxdCcsFftNip(in.data(), out.data(), 0, flags);
        expectSameBits(out, {-2.5, 7.0, 7.0}, "from CCS, not in place");
    }
}

TEST(RealFft, TwoSamples)
{
    std::vector<double> samps = {3.0, 5.0, RVX_NAN, RVX_NAN};
    rvxdRealFft(samps.data(), 1, 1);
    expectSameBits(samps, {8.0, 0.0, -2.0, 0.0}, "forward");
    samps = {3.0, 5.0, RVX_NAN, RVX_NAN};
    rvxdRealFft(samps.data(), 1, 2);
    expectSameBits(samps, {4.0, 0.0, -1.0, 0.0}, "inverse");
    samps = {3.0, 5.0, RVX_NAN, RVX_NAN};
    rvxdRealFft(samps.data(), 1, 2 | 16);
    expectSameBits(samps, {8.0, 0.0, -2.0, 0.0}, "inverse, not scaled");
    for (int format : {256, 512}) {
        samps = {3.0, 5.0, 9.0};
        rvxdRealFftl(samps.data(), 1, 2 | format);
        expectSameBits(samps, {4.0, -1.0, 9.0}, "packed");
    }
    for (int format : {1024, 4096}) {
        samps = {3.0, 5.0, 9.0};
        rvxdCcsFftl(samps.data(), 1, 2 | format);
        expectSameBits(samps, {4.0, -1.0, 9.0}, "from packed");
    }
    samps = {3.0, RVX_NAN, 5.0, RVX_NAN};
    rvxdCcsFft(samps.data(), 1, 2);
    expectSameBits(samps, {4.0, -1.0, 5.0, RVX_NAN}, "from CCS");
    samps = {3.0, RVX_NAN, 5.0, RVX_NAN};
    rvxdCcsFft(samps.data(), 1, 1);
    expectSameBits(samps, {8.0, -2.0, 5.0, RVX_NAN}, "from CCS, forward");
}

// No pair of bins but the middle one, whose conjugation turns the sign of a zero.
TEST(RealFft, FourSamples)
{
    std::vector<double> samps = {1.0, 2.0, 4.0, 8.0, RVX_NAN, RVX_NAN};
    rvxdRealFft(samps.data(), 2, 1);
    expectSameBits(samps, {15.0, 0.0, -3.0, 6.0, -5.0, 0.0}, "forward");
    samps = {1.0, 2.0, 4.0, 8.0, RVX_NAN, RVX_NAN};
    rvxdRealFft(samps.data(), 2, 2);
    expectSameBits(samps, {3.75, 0.0, -0.75, -1.5, -1.25, 0.0}, "inverse");

    expectSameBits(realFft({1.0, 0.0, 0.0, 0.0}, 2, 1), {1.0, 0.0, 1.0, -0.0, 1.0, 0.0}, "+0");
    expectSameBits(realFft({1.0, 0.0, 0.0, 0.0}, 2, 2 | 16), {1.0, 0.0, 1.0, 0.0, 1.0, 0.0}, "+0");

    expectSameBits(ccsFft({15.0, 0.0, -3.0, 6.0, -5.0, 0.0}, 2, 2), {1.0, 2.0, 4.0, 8.0, -5.0, 0.0},
                   "back");
    expectSameBits(ccsFft({15.0, 0.0, -3.0, 6.0, -5.0, 0.0}, 2, 1),
                   {4.0, 32.0, 16.0, 8.0, -5.0, 0.0}, "forward from CCS");
}

// ---- special values -------------------------------------------------------

TEST(CcsFft, IgnoresTheTwoImaginaryPartsThatAreZeroAndKeepsTheLastTwoDoubles)
{
    for (int order = 1; order <= 12; ++order) {
        const std::size_t n = std::size_t{1} << order;
        std::vector<double> spectrum = noise(static_cast<int>(n) + 2, 9);
        for (int flags : {1, 2}) {
            spectrum[1] = spectrum[n + 1] = 0.0;
            const std::vector<double> clean = ccsFft(spectrum, order, flags);
            spectrum[1] = spectrum[n + 1] = RVX_NAN;
            std::vector<double> marked = ccsFft(spectrum, order, flags);
            EXPECT_TRUE(std::isnan(marked[n + 1]));
            EXPECT_EQ(marked[n], spectrum[n]);
            marked[n + 1] = 0.0;
            expectSameBits(marked, clean, "order " + std::to_string(order));

            std::vector<double> out(n);
            rvxdCcsFftNip(spectrum.data(), out.data(), order, flags);
            marked.resize(n);
            expectSameBits(out, marked, "not in place, order " + std::to_string(order));
        }
    }
}

TEST(RealFft, ScalesAfterTheLastAddition)
{
    const double big = std::numeric_limits<double>::max();
    expectSameBits(realFft({big, big}, 1, 2), {RVX_INF, 0.0, 0.0, 0.0}, "real");
    expectSameBits(ccsFft({big, 0.0, big, 0.0}, 1, 2), {RVX_INF, 0.0, big, 0.0}, "CCS");
    // Halving the smallest number first would lose it.
    const double tiny = std::numeric_limits<double>::denorm_min();
    expectSameBits(realFft({tiny, tiny}, 1, 2), {tiny, 0.0, 0.0, 0.0}, "real");
    expectSameBits(ccsFft({tiny, 0.0, tiny, 0.0}, 1, 2), {tiny, 0.0, tiny, 0.0}, "CCS");
}

// The two zeros of a spectrum are written and not computed.
TEST(RealFft, AnInfinityReachesTheRealBinsAndNotTheZeros)
{
    for (int order : {1, 2, 3, 5, 8, 11}) {
        const std::size_t n = std::size_t{1} << order;
        std::vector<double> samples = noise(static_cast<int>(n), 10);
        samples[1] = RVX_INF;
        for (int flags : {1, 2}) {
            const std::vector<double> ccs = realFft(samples, order, flags);
            EXPECT_FALSE(std::isfinite(ccs[0])) << order;
            EXPECT_FALSE(std::isfinite(ccs[n])) << order;
            EXPECT_EQ(bitsOf(ccs[1]), bitsOf(0.0)) << order;
            EXPECT_EQ(bitsOf(ccs[n + 1]), bitsOf(0.0)) << order;
        }
    }
}

// ---- products of packed spectra -------------------------------------------

TEST(MpyRCPack, ChecksInTheirOrder)
{
    Reports reports;
    double a[2] = {2.0, 3.0};
    double b[2] = {5.0, 7.0};
    const auto refused = [&](const double *src, double *dst, int order, const char *message) {
        rvxdMpyRCPack2(src, dst, order);
        EXPECT_EQ(reports.take(), badArgument("rvxdMpyRCPack2", message, "rvxfftd"));
        EXPECT_EQ(b[0], 5.0);
        EXPECT_EQ(b[1], 7.0);
    };
    refused(nullptr, nullptr, -1, "order<0");
    refused(nullptr, nullptr, 32, "order>31");
    refused(nullptr, nullptr, 1, "src==0");
    refused(a, nullptr, 1, "dst==0");
}

TEST(MpyRCPack, OneValueTwoValuesThenPairs)
{
    std::vector<double> src = {2.0, 3.0, 5.0, 7.0, 11.0};
    std::vector<double> dst = {1.5, 2.5, 3.5, 4.5, 5.5};
    rvxdMpyRCPack2(src.data(), dst.data(), 0);
    expectSameBits(dst, {3.0, 2.5, 3.5, 4.5, 5.5}, "order 0");
    rvxdMpyRCPack2(src.data(), dst.data(), 1);
    expectSameBits(dst, {6.0, 7.5, 3.5, 4.5, 5.5}, "order 1");
    // (3 + 5i)(7.5 + 3.5i) = 5 + 48i
    rvxdMpyRCPack2(src.data(), dst.data(), 2);
    expectSameBits(dst, {12.0, 5.0, 48.0, 31.5, 5.5}, "order 2");
}

TEST(MpyRCPack, IsTheCircularConvolutionOfTheSamples)
{
    for (int order = 0; order <= 9; ++order) {
        const std::size_t n = std::size_t{1} << order;
        std::vector<double> a = noise(static_cast<int>(n), 17);
        std::vector<double> b = noise(static_cast<int>(n), 18);
        std::vector<double> expected(n);
        for (std::size_t i = 0; i < n; ++i) {
            long double sum = 0.0L;
            for (std::size_t j = 0; j < n; ++j)
                sum += static_cast<long double>(a[j]) * b[(i - j) % n];
            expected[i] = static_cast<double>(sum);
        }
        rvxdRealFftl(a.data(), order, 257);
        rvxdRealFftl(b.data(), order, 257);
        rvxdMpyRCPack2(a.data(), b.data(), order);
        rvxdCcsFftl(b.data(), order, 1026);
        const double tolerance = 4.0 * samplesBound(order) * std::sqrt(static_cast<double>(n));
        for (std::size_t i = 0; i < n; ++i)
            EXPECT_NEAR(b[i], expected[i], tolerance) << "order " << order << " at " << i;
    }
}
