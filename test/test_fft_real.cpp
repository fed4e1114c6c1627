// Real and conjugate-symmetric Fourier transforms.

#include <climits>
#include <cmath>
#include <cstring>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "frame/rvxthread.h"
#include "reference/dft.h"
#include "support/allocations.h"
#include "support/guarded.h"
#include "support/reports.h"
#include "transform/rvxfftd.h"
#include "transform/rvxmisc.h"
#include "transform/rvxtwd.h"

namespace {

constexpr double RVX_NAN = std::numeric_limits<double>::quiet_NaN();
constexpr double RVX_INF = std::numeric_limits<double>::infinity();

std::vector<double> noise(int n, unsigned seed)
{
    std::mt19937_64 generator(seed);
    std::uniform_real_distribution<double> uniform(-1.0, 1.0);
    std::vector<double> block(static_cast<std::size_t>(n));
    for (double &x : block)
        x = uniform(generator);
    return block;
}

// Equal bits, except that any NaN equals any other.
void expectSameBits(const std::vector<double> &actual, const std::vector<double> &expected,
                    const std::string &what)
{
    ASSERT_EQ(actual.size(), expected.size()) << what;
    for (std::size_t i = 0; i < actual.size(); ++i) {
        if (std::isnan(expected[i]))
            ASSERT_TRUE(std::isnan(actual[i])) << what << " at " << i;
        else
            ASSERT_EQ(bitsOf(actual[i]), bitsOf(expected[i]))
                << what << " at " << i << ": " << actual[i] << " is not " << expected[i];
    }
}

// All six fronts behind one signature; in-place ones work on a copy of `in` with
// room for a whole CCS spectrum. N + 2 doubles come back.
enum Form { RealFft, RealFftNip, RealFftl, CcsFft, CcsFftNip, CcsFftl };

const Form allForms[] = {RealFft, RealFftNip, RealFftl, CcsFft, CcsFftNip, CcsFftl};

const char *nameOf(Form form)
{
    const char *const names[] = {"rvxdRealFft", "rvxdRealFftNip", "rvxdRealFftl",
                                 "rvxdCcsFft",  "rvxdCcsFftNip",  "rvxdCcsFftl"};
    return names[form];
}

bool notInPlace(Form form)
{
    return form == RealFftNip || form == CcsFftNip;
}

bool fromReal(Form form)
{
    return form == RealFft || form == RealFftNip || form == RealFftl;
}

bool packed(Form form)
{
    return form == RealFftl || form == CcsFftl;
}

// A format that the front accepts, 0 where it takes none.
int formatOf(Form form)
{
    return form == RealFftl ? 256 : form == CcsFftl ? 1024 : 0;
}

void call(Form form, double *in, double *out, int order, int flags)
{
    switch (form) {
    case RealFft:
        return rvxdRealFft(in, order, flags);
    case RealFftNip:
        return rvxdRealFftNip(in, out, order, flags);
    case RealFftl:
        return rvxdRealFftl(in, order, flags);
    case CcsFft:
        return rvxdCcsFft(in, order, flags);
    case CcsFftNip:
        return rvxdCcsFftNip(in, out, order, flags);
    case CcsFftl:
        return rvxdCcsFftl(in, order, flags);
    }
}

std::vector<double> realFft(const std::vector<double> &samples, int order, int flags)
{
    std::vector<double> buffer = samples;
    buffer.resize(samples.size() + 2, RVX_NAN);
    rvxdRealFft(buffer.data(), order, flags);
    return buffer;
}

std::vector<double> ccsFft(std::vector<double> spectrum, int order, int flags)
{
    rvxdCcsFft(spectrum.data(), order, flags);
    return spectrum;
}

// N samples as bins 0..N/2 in CCS.
std::vector<double> toPack(const std::vector<double> &ccs)
{
    std::vector<double> pack = {ccs[0]};
    pack.insert(pack.end(), ccs.begin() + 2, ccs.end() - 1);
    return pack;
}

std::vector<double> toPerm(const std::vector<double> &ccs)
{
    std::vector<double> perm(ccs.begin(), ccs.end() - 2);
    if (perm.size() > 1)
        perm[1] = ccs[ccs.size() - 2];
    return perm;
}

// The table slots that the fronts of this file may fill, by name, sorted.
std::vector<std::string> cachedTables()
{
    const rvxThreadContext *context = rvxGetThreadContext();
    std::vector<std::string> cached;
    for (int order = 0; order < RVX_ORDERS; ++order) {
        const std::string number = std::to_string(order);
        if (context->fftTableA[order] != nullptr)
            cached.push_back("large " + number);
        if (context->fftTableB[order] != nullptr)
            cached.push_back("dit " + number);
        if (context->fftTableC[order] != nullptr)
            cached.push_back("dif " + number);
        if (context->realFftTableA[order] != nullptr)
            cached.push_back("real " + number);
        if (context->realFftTableB[order] != nullptr)
            cached.push_back("ccs " + number);
        if (context->shortBitRevTable[order] != nullptr)
            cached.push_back("swap " + number);
    }
    return cached;
}

// What a call of the front at this order leaves in an empty cache.
std::vector<std::string> tablesOf(Form form, int order)
{
    Reports reports;
    rvxFreeFftTables();
    call(form, nullptr, nullptr, order, 4);
    EXPECT_TRUE(reports.take().empty());
    std::vector<std::string> cached = cachedTables();
    rvxFreeFftTables();
    return cached;
}

using Names = std::vector<std::string>;

} // namespace

// ---- values ---------------------------------------------------------------

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
        worst =
            std::fmax(worst, std::fmax(std::fabs(ccs[2 * k] - re), std::fabs(ccs[2 * k + 1] - im)));
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
            worst = std::fmax(worst, std::fabs(forward[at] - x));
            worst = std::fmax(worst, std::fabs(inverse[mirrored] * n - x));
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
            worst = std::fmax(worst, std::fabs(back[static_cast<std::size_t>(i)] -
                                               samples[static_cast<std::size_t>(i)]));
        EXPECT_LE(worst, 2.0 * samplesBound(order)) << order;
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

// ---- the passes -----------------------------------------------------------

namespace {

// The passes' formulas as they are printed, one bin after the other.
std::vector<ZCplx> plainPost(std::vector<ZCplx> z, int direction, double scale, const ZCplx *table)
{
    const std::size_t h = z.size();
    for (std::size_t k = 1; k < h / 2; ++k) {
        const double tr = table[k].re;
        const double ti = table[k].im;
        const ZCplx a = z[k];
        const ZCplx b = z[h - k];
        if (direction == 1) {
            const double P = ti * (a.re - b.re) + tr * (a.im + b.im);
            const double Q = ti * (a.im + b.im) - tr * (a.re - b.re);
            z[k] = {b.re + P, Q - b.im};
            z[h - k] = {a.re - P, Q - a.im};
        } else {
            const double P = tr * (a.im + b.im) - ti * (a.re - b.re);
            const double Q = tr * (a.re - b.re) + ti * (a.im + b.im);
            z[k] = {a.re + P, a.im - Q};
            z[h - k] = {b.re - P, b.im - Q};
        }
    }
    if (h > 1 && direction == 1)
        z[h / 2].im = -z[h / 2].im;
    if (direction == -1)
        for (std::size_t k = 1; k < h; ++k)
            z[k] = {z[k].re * scale, z[k].im * scale};
    return z;
}

// Elements 1..h-1; element 0 is left as dst has it.
std::vector<ZCplx> plainPre(const std::vector<ZCplx> &src, std::vector<ZCplx> dst, int direction,
                            const ZCplx *table)
{
    const std::size_t h = src.size();
    for (std::size_t k = 1; k < h / 2; ++k) {
        const double tr = table[k].re;
        const double ti = table[k].im;
        const ZCplx a = src[k];
        const ZCplx b = src[h - k];
        if (direction == -1) {
            const double D = ti * (a.re - b.re) - tr * (a.im + b.im);
            const double E = ti * (a.im + b.im) + tr * (a.re - b.re);
            dst[k] = {(a.re + b.re) + D, E + (a.im - b.im)};
            dst[h - k] = {(a.re + b.re) - D, E - (a.im - b.im)};
        } else {
            const double F = ti * (a.re - b.re) + tr * (a.im + b.im);
            const double G = tr * (a.re - b.re) - ti * (a.im + b.im);
            dst[k] = {(a.re + b.re) - F, G + (a.im - b.im)};
            dst[h - k] = {(a.re + b.re) + F, G - (a.im - b.im)};
        }
    }
    if (h > 1)
        dst[h / 2] = {2.0 * src[h / 2].re,
                      direction == 1 ? 2.0 * src[h / 2].im : -2.0 * src[h / 2].im};
    return dst;
}

std::vector<double> flat(const std::vector<ZCplx> &z)
{
    std::vector<double> doubles;
    for (const ZCplx &value : z) {
        doubles.push_back(value.re);
        doubles.push_back(value.im);
    }
    return doubles;
}

// Ordinary numbers with infinities, NaNs and zeros of both signs among them.
std::vector<ZCplx> mixedValues(std::size_t n, unsigned seed)
{
    const double special[] = {0.0, -0.0, RVX_INF, -RVX_INF, RVX_NAN, 0x1p-1074, 0x1.fp1023};
    std::mt19937_64 generator(seed);
    std::vector<ZCplx> z(n);
    for (ZCplx &value : z)
        for (double *part : {&value.re, &value.im})
            *part = generator() % 6 == 0 ? special[generator() % 7]
                                         : static_cast<double>(generator() % 1000) / 7.0 - 70.0;
    return z;
}

} // namespace

TEST(RealPass, SameBitsAsTheFormulaAtEveryBin)
{
    for (int order = 1; order <= 11; ++order) {
        const std::size_t h = std::size_t{1} << (order - 1);
        const ZCplx *table = rvxGetRealTwistTbl(order);
        for (unsigned seed = 0; seed < 20; ++seed) {
            const std::vector<ZCplx> values = mixedValues(h, seed);
            for (int direction : {1, -1}) {
                const double scale = direction == 1 ? 1.0 : 1.0 / static_cast<double>(h);
                Guarded<ZCplx> z(values, static_cast<int>(seed % 4));
                rvxRealFftPost(z.data(), static_cast<int>(h), direction, scale, table);
                EXPECT_TRUE(z.intact());
                expectSameBits(flat(z.values()), flat(plainPost(values, direction, scale, table)),
                               "h " + std::to_string(h) + " " + std::to_string(direction));
            }
        }
    }
}

TEST(CcsPass, SameBitsAsTheFormulaAtEveryBin)
{
    for (int order = 1; order <= 11; ++order) {
        const std::size_t h = std::size_t{1} << (order - 1);
        const ZCplx *table = rvxGetCcsTwistTbl(order);
        for (unsigned seed = 0; seed < 20; ++seed) {
            const std::vector<ZCplx> values = mixedValues(h, seed);
            for (int direction : {1, -1}) {
                const std::string at = "h " + std::to_string(h) + " " + std::to_string(direction);
                Guarded<ZCplx> src(values, static_cast<int>(seed % 4));
                Guarded<ZCplx> dst(std::vector<ZCplx>(h, ZCplx{1.0, 2.0}), 1);
                rvxCcsFftPre(src.data(), dst.data(), static_cast<int>(h), direction, table);
                EXPECT_TRUE(src.intact() && dst.intact());
                expectSameBits(flat(src.values()), flat(values), "source, " + at);
                expectSameBits(flat(dst.values()),
                               flat(plainPre(values, std::vector<ZCplx>(h, ZCplx{1.0, 2.0}),
                                             direction, table)),
                               at);
                rvxCcsFftPre(src.data(), src.data(), static_cast<int>(h), direction, table);
                expectSameBits(flat(src.values()), flat(plainPre(values, values, direction, table)),
                               "in place, " + at);
            }
        }
    }
}

// ---- checks ---------------------------------------------------------------

TEST(RealFft, ChecksInTheirOrder)
{
    for (Form form : allForms) {
        Reports reports;
        const std::vector<double> data = noise(66, 11);
        std::vector<double> in = data;
        std::vector<double> out = data;
        const auto refused = [&](double *inSamps, double *outSamps, int order, int flags,
                                 const char *message) {
            call(form, inSamps, outSamps, order, flags);
            EXPECT_EQ(reports.take(), badArgument(nameOf(form), message, "rvxfftd"));
            EXPECT_EQ(rvxGetErrStatus(), RVX_STATUS_BAD_ARGUMENT);
            expectSameBits(in, data, nameOf(form));
            expectSameBits(out, data, nameOf(form));
        };
        // Each call is wrong in everything that is checked later too.
        refused(nullptr, nullptr, -1, 3, "order<0");
        refused(nullptr, nullptr, INT_MIN, 4, "order<0");
        refused(nullptr, nullptr, 32, 3, "order>31");
        refused(nullptr, nullptr, INT_MAX, 4, "order>31");
        if (notInPlace(form)) {
            refused(nullptr, nullptr, 6, 3, "inSamps==0");
            refused(in.data(), nullptr, 6, 3, "outSamps==0");
        } else {
            refused(nullptr, nullptr, 6, 3, "samps==0");
        }
        refused(in.data(), out.data(), 6, 3, "(flags & 1) && (flags & 2)");
        refused(in.data(), out.data(), 6, 3 | 256 | 1024, "(flags & 1) && (flags & 2)");
        refused(in.data(), out.data(), 6, 0, "(flags & 1)==0 && (flags & 2)==0");
        refused(in.data(), out.data(), 6, 16 | 32 | 256 | 512 | 1024 | 4096,
                "(flags & 1)==0 && (flags & 2)==0");
        // Order 0 is checked like any other.
        refused(in.data(), out.data(), 0, 0, "(flags & 1)==0 && (flags & 2)==0");
        refused(nullptr, out.data(), 0, 1, notInPlace(form) ? "inSamps==0" : "samps==0");
    }
}

TEST(RealFft, PackedFormsNeedOneFormat)
{
    Reports reports;
    std::vector<double> samps = noise(64, 12);
    const std::vector<double> data = samps;
    const auto refused = [&](Form form, int order, int flags, const char *message) {
        call(form, samps.data(), nullptr, order, flags);
        EXPECT_EQ(reports.take(), badArgument(nameOf(form), message, "rvxfftd"));
        expectSameBits(samps, data, nameOf(form));
    };
    for (int order : {0, 1, 6}) {
        refused(RealFftl, order, 1 | 256 | 512, "(flags & 256) && (flags & 512)");
        refused(RealFftl, order, 2, "(flags & 256)==0 && (flags & 512)==0");
        refused(RealFftl, order, 2 | 1024 | 4096, "(flags & 256)==0 && (flags & 512)==0");
        refused(CcsFftl, order, 1 | 1024 | 4096, "(flags & 1024) && (flags & 4096)");
        refused(CcsFftl, order, 2, "(flags & 1024)==0 && (flags & 4096)==0");
        refused(CcsFftl, order, 2 | 256 | 512, "(flags & 1024)==0 && (flags & 4096)==0");
    }
}

TEST(RealFft, ARefusedCallHasBuiltItsTables)
{
    for (Form form : allForms) {
        const Names tables = tablesOf(form, 5);
        std::vector<double> samps(34, 1.0);
        Reports reports;
        for (int flags : {3, 0, packed(form) ? 1 : 3}) {
            rvxFreeFftTables();
            call(form, samps.data(), samps.data(), 5, flags);
            EXPECT_EQ(reports.take().size(), 1u);
            EXPECT_EQ(cachedTables(), tables) << nameOf(form);
        }
        rvxFreeFftTables();
        call(form, nullptr, nullptr, 5, 1);
        EXPECT_EQ(cachedTables(), tables) << nameOf(form);
        rvxFreeFftTables();
        call(form, samps.data(), samps.data(), 32, 1);
        EXPECT_EQ(cachedTables(), Names{}) << nameOf(form);
    }
}

TEST(RealFft, AStaleStatusIsNeitherObeyedNorCleared)
{
    for (Form form : allForms) {
        Reports reports;
        rvxFreeFftTables();
        std::vector<double> in = noise(34, 13);
        std::vector<double> expected = in;
        std::vector<double> out(34, 0.0);
        std::vector<double> expectedOut = out;
        call(form, expected.data(), expectedOut.data(), 5, 2 | formatOf(form));
        rvxFreeFftTables();
        rvxSetErrStatus(RVX_STATUS_BAD_STATE);
        call(form, in.data(), out.data(), 5, 2 | formatOf(form));
        EXPECT_EQ(rvxGetErrStatus(), RVX_STATUS_BAD_STATE);
        EXPECT_TRUE(reports.take().empty());
        expectSameBits(in, expected, nameOf(form));
        expectSameBits(out, expectedOut, nameOf(form));
    }
}

TEST(RealFftDeathTest, AFailedCheckEndsTheProcessInModeZero)
{
    double samps[6] = {};
    for (Form form : allForms)
        EXPECT_EXIT(call(form, samps, samps, 2, 0), ::testing::ExitedWithCode(1), "");
    EXPECT_EXIT(rvxdMpyRCPack2(samps, samps, -1), ::testing::ExitedWithCode(1), "");
}

// ---- tables ---------------------------------------------------------------

TEST(RealFftTables, AreThoseOfTheHalfLengthAndTheFrontsOwn)
{
    for (Form form : allForms) {
        const std::string own = fromReal(form) ? "real " : "ccs ";
        EXPECT_EQ(tablesOf(form, 0), Names{});
        EXPECT_EQ(tablesOf(form, 1), Names{});
        EXPECT_EQ(tablesOf(form, 2), (Names{"dit 1", "swap 1", own + "2"}));
        EXPECT_EQ(tablesOf(form, 10), (Names{"dit 9", "swap 9", own + "10"}));
        EXPECT_EQ(tablesOf(form, 12), (Names{"dit 9", "large 11", "swap 11", own + "12"}));
    }
}

TEST(RealFftTables, WarmUpNeedsNeitherDataNorGoodFlags)
{
    for (Form form : allForms) {
        Reports reports;
        const Names tables = tablesOf(form, 7);
        for (int flags : {4, 4 | 1, 4 | 3, 4 | 256 | 512 | 1024 | 4096, -9}) {
            rvxFreeFftTables();
            call(form, nullptr, nullptr, 7, flags);
            EXPECT_EQ(cachedTables(), tables) << nameOf(form);
        }
        std::vector<double> data = noise(130, 14);
        const std::vector<double> before = data;
        call(form, data.data(), data.data(), 7, 4 | 1 | formatOf(form));
        expectSameBits(data, before, nameOf(form));
        EXPECT_TRUE(reports.take().empty());
        call(form, nullptr, nullptr, 32, 4);
        EXPECT_EQ(reports.take(), badArgument(nameOf(form), "order>31", "rvxfftd"));
    }
    rvxFreeFftTables();
}

TEST(RealFftTables, ReleaseWinsOverAllOtherBitsAndReportsNothing)
{
    for (Form form : allForms) {
        Reports reports;
        AllocationWatch watch;
        for (int order : {2, 7, 10, 11, 13})
            for (int flags : {8, 8 | 4, 8 | 3, -1}) {
                call(form, nullptr, nullptr, order, 4);
                call(form, nullptr, nullptr, order, flags);
                EXPECT_EQ(cachedTables(), Names{}) << nameOf(form) << " order " << order;
            }
        for (int order : {0, 1, -1, 32, 33, INT_MIN, INT_MAX})
            call(form, nullptr, nullptr, order, 8);
        EXPECT_EQ(watch.live(), 0);
        EXPECT_TRUE(reports.take().empty());
    }
}

TEST(RealFftTables, ReleaseLeavesOtherOrdersAndTheOtherFamily)
{
    Reports reports;
    rvxFreeFftTables();
    rvxdRealFft(nullptr, 6, 4);
    rvxdRealFft(nullptr, 7, 4);
    rvxdCcsFft(nullptr, 7, 4);
    rvxdRealFft(nullptr, 7, 8);
    EXPECT_EQ(cachedTables(), (Names{"dit 5", "swap 5", "real 6", "ccs 7"}));
    rvxdCcsFftNip(nullptr, nullptr, 7, 8);
    EXPECT_EQ(cachedTables(), (Names{"dit 5", "swap 5", "real 6"}));
    rvxdRealFftl(nullptr, 6, 8);
    EXPECT_EQ(cachedTables(), Names{});
    EXPECT_TRUE(reports.take().empty());
}

// The half-length release gets 31, and any order above 9 drops the table of
// order 9 that it rests on.
TEST(RealFftTables, ReleaseAtOrder32DropsTheTableOfOrder9)
{
    for (Form form : allForms) {
        Reports reports;
        rvxFreeFftTables();
        call(form, nullptr, nullptr, 10, 4);
        call(form, nullptr, nullptr, 33, 8);
        call(form, nullptr, nullptr, -1, 8);
        const std::string own = fromReal(form) ? "real 10" : "ccs 10";
        EXPECT_EQ(cachedTables(), (Names{"dit 9", "swap 9", own}));
        call(form, nullptr, nullptr, 32, 8);
        EXPECT_EQ(cachedTables(), (Names{"swap 9", own}));
        EXPECT_TRUE(reports.take().empty());
    }
    rvxFreeFftTables();
}

TEST(RealFftTables, OneFailedAllocationCostsTheOtherTablesAndTheCallSucceeds)
{
    for (Form form : allForms) {
        for (int order : {2, 8, 12}) {
            const std::size_t length = (std::size_t{1} << order) + 2;
            const std::vector<double> data = noise(static_cast<int>(length), 15);
            std::vector<double> expected = data;
            std::vector<double> expectedOut(length, 0.0);
            const Names tables = tablesOf(form, order);
            long allocations = 0;
            {
                AllocationWatch watch;
                call(form, expected.data(), expectedOut.data(), order, 1 | formatOf(form));
                allocations = watch.allocations();
            }
            ASSERT_GE(allocations, 3);
            for (long k = 1; k <= allocations; ++k) {
                Reports reports;
                rvxFreeFftTables();
                rvxdRealFft(nullptr, 5, 4);
                std::vector<double> in = data;
                std::vector<double> out(length, 0.0);
                {
                    AllocationWatch watch(k);
                    call(form, in.data(), out.data(), order, 1 | formatOf(form));
                    EXPECT_EQ(watch.failures(), 1);
                }
                EXPECT_TRUE(reports.take().empty());
                EXPECT_EQ(rvxGetErrStatus(), RVX_STATUS_OK);
                expectSameBits(in, expected, nameOf(form));
                expectSameBits(out, expectedOut, nameOf(form));
                EXPECT_EQ(cachedTables(), tables) << nameOf(form) << " k " << k;
            }
        }
    }
    rvxFreeFftTables();
}

TEST(RealFftTables, WithoutMemoryTheCallIsRefusedAndNothingStaysOrLeaks)
{
    for (Form form : allForms) {
        for (int order : {2, 8, 12}) {
            const std::size_t length = (std::size_t{1} << order) + 2;
            const std::vector<double> data = noise(static_cast<int>(length), 16);
            rvxFreeFftTables();
            for (long k = 1; k <= 3; ++k) {
                Reports reports;
                std::vector<double> in = data;
                std::vector<double> out = data;
                {
                    AllocationWatch watch;
                    watch.failAllFrom(k);
                    call(form, in.data(), out.data(), order, 1 | formatOf(form));
                    EXPECT_EQ(watch.live(), 0);
                }
                EXPECT_EQ(reports.take(),
                          (std::vector<Report>{{RVX_STATUS_NO_MEMORY, nameOf(form),
                                                "No working Twd memory", "rvxfftd"}}));
                EXPECT_EQ(rvxGetErrStatus(), RVX_STATUS_NO_MEMORY);
                expectSameBits(in, data, nameOf(form));
                expectSameBits(out, data, nameOf(form));
                EXPECT_EQ(cachedTables(), Names{}) << nameOf(form) << " k " << k;
            }
            // The next call works.
            Reports reports;
            call(form, nullptr, nullptr, order, 4);
            EXPECT_TRUE(reports.take().empty());
        }
    }
    rvxFreeFftTables();
}

TEST(RealFftTables, OrdersWithoutTablesNeedNoMemory)
{
    for (Form form : allForms) {
        Reports reports;
        rvxFreeFftTables();
        double in[4] = {1.0, 2.0, 3.0, 4.0};
        double out[4] = {};
        AllocationWatch watch(1);
        call(form, in, out, 0, 1 | formatOf(form));
        call(form, in, out, 1, 1 | formatOf(form));
        EXPECT_EQ(watch.allocations(), 0);
        EXPECT_TRUE(reports.take().empty());
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
