// Up and down sampling.

#include <climits>
#include <cstring>
#include <numeric>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "rvx.h"
#include "support/blocks.h"
#include "support/guarded.h"
#include "support/reports.h"
#include "support/walled.h"

namespace {

void up(const double *src, int srcLen, double *dst, int *dstLen, int factor, int *phase)
{
    rvxdUpSample(src, srcLen, dst, dstLen, factor, phase);
}

void up(const ZCplx *src, int srcLen, ZCplx *dst, int *dstLen, int factor, int *phase)
{
    rvxzUpSample(src, srcLen, dst, dstLen, factor, phase);
}

void down(const double *src, int srcLen, double *dst, int *dstLen, int factor, int *phase)
{
    rvxdDownSample(src, srcLen, dst, dstLen, factor, phase);
}

void down(const ZCplx *src, int srcLen, ZCplx *dst, int *dstLen, int factor, int *phase)
{
    rvxzDownSample(src, srcLen, dst, dstLen, factor, phase);
}

// Samples of any bit pattern, NaNs among them: they are copied, not computed with.
template <typename Sample>
std::vector<Sample> signal(int n)
{
    const int doubles = n * static_cast<int>(sizeof(Sample) / sizeof(double));
    const std::vector<double> parts = makeBlock(Temper::specials, doubles, 3);
    std::vector<Sample> x(static_cast<std::size_t>(n));
    if (n > 0)
        std::memcpy(static_cast<void *>(x.data()), parts.data(), x.size() * sizeof(Sample));
    return x;
}

template <typename Sample>
bool sameBits(const std::vector<Sample> &a, const std::vector<Sample> &b)
{
    return a.size() == b.size() && (a.empty() || std::memcmp(static_cast<const void *>(a.data()),
                                                             static_cast<const void *>(b.data()),
                                                             a.size() * sizeof(Sample)) == 0);
}

template <typename Sample>
std::vector<Sample> spread(const std::vector<Sample> &x, int factor, int phase)
{
    std::vector<Sample> y;
    for (const Sample &sample : x)
        for (int i = 0; i < factor; ++i)
            y.push_back(i == phase ? sample : Sample{});
    return y;
}

template <typename Sample>
std::vector<Sample> kept(const std::vector<Sample> &x, int factor, int phase)
{
    std::vector<Sample> y;
    for (std::size_t i = 0; i < x.size(); ++i)
        if (static_cast<int>(i) % factor == phase)
            y.push_back(x[i]);
    return y;
}

template <typename Sample>
void expectUp(int n, int factor, int phase)
{
    const std::vector<Sample> x = signal<Sample>(n);
    const std::vector<Sample> expected = spread(x, factor, phase);
    Guarded<Sample> src(x, n % 4);
    Guarded<Sample> dst(n * factor, (n + factor) % 4);
    int dstLen = -1, kept = phase;
    up(src.data(), n, dst.data(), &dstLen, factor, &kept);
    EXPECT_TRUE(sameBits(dst.values(), expected)) << n << " by " << factor << " at " << phase;
    EXPECT_TRUE(dst.intact() && src.intact() && sameBits(src.values(), x));
    EXPECT_EQ(dstLen, n * factor);
    EXPECT_EQ(kept, phase);
    // In place.
    Guarded<Sample> both(n * factor, n % 4);
    std::memcpy(static_cast<void *>(both.data()), x.data(), x.size() * sizeof(Sample));
    up(both.data(), n, both.data(), &dstLen, factor, &kept);
    EXPECT_TRUE(sameBits(both.values(), expected)) << n << " by " << factor << " at " << phase;
    EXPECT_TRUE(both.intact());
}

template <typename Sample>
void expectDown(int n, int factor, int phase)
{
    const std::vector<Sample> x = signal<Sample>(n);
    const std::vector<Sample> expected = kept(x, factor, phase);
    const auto count = static_cast<int>(expected.size());
    Guarded<Sample> src(x, n % 4);
    Guarded<Sample> dst(count, (n + factor) % 4);
    int dstLen = -1, next = phase;
    down(src.data(), n, dst.data(), &dstLen, factor, &next);
    EXPECT_TRUE(sameBits(dst.values(), expected)) << n << " by " << factor << " at " << phase;
    EXPECT_TRUE(dst.intact() && src.intact() && sameBits(src.values(), x));
    EXPECT_EQ(dstLen, count);
    EXPECT_EQ(next, phase + count * factor - n);
    // In place: what is behind the results stays.
    next = phase;
    down(src.data(), n, src.data(), &dstLen, factor, &next);
    std::vector<Sample> after = expected;
    after.insert(after.end(), x.begin() + count, x.end());
    EXPECT_TRUE(sameBits(src.values(), after)) << n << " by " << factor << " at " << phase;
    EXPECT_TRUE(src.intact());
}

// Between walls: one element read or written outside the arrays ends the program.
template <typename Sample>
void expectInsideWalls(int n, int factor, int phase, Wall wall)
{
    const std::vector<Sample> x = signal<Sample>(n);
    const std::vector<Sample> raised = spread(x, factor, phase), lowered = kept(x, factor, phase);
    const int apart = (n + n / 4) % 4; // any place in a vector, for any n
    Walled<Sample> src(x, wall, apart);
    Walled<Sample> longer(std::vector<Sample>(raised.size()), wall, (apart + 1) % 4);
    Walled<Sample> shorter(std::vector<Sample>(lowered.size()), wall, (apart + 2) % 4);
    int dstLen = 0, carried = phase;
    up(src.data(), n, longer.data(), &dstLen, factor, &carried);
    EXPECT_TRUE(sameBits(longer.values(), raised)) << n << " by " << factor << " at " << phase;
    down(src.data(), n, shorter.data(), &dstLen, factor, &carried);
    EXPECT_TRUE(sameBits(shorter.values(), lowered)) << n << " by " << factor << " at " << phase;
}

template <typename Sample>
void expectCutAnywhere()
{
    const std::vector<Sample> x = signal<Sample>(200);
    for (int factor : {1, 2, 3, 5, 17, 250})
        for (int cut : {1, 2, 3, 7, 50}) {
            std::vector<Sample> pieces, raised;
            int phase = factor / 2, upPhase = factor / 2;
            for (int from = 0; from < 200; from += cut) {
                const int n = std::min(cut, 200 - from);
                std::vector<Sample> dst(static_cast<std::size_t>(n) * 250);
                int dstLen = 0;
                down(x.data() + from, n, dst.data(), &dstLen, factor, &phase);
                pieces.insert(pieces.end(), dst.begin(), dst.begin() + dstLen);
                EXPECT_TRUE(phase >= 0 && phase < factor);
                up(x.data() + from, n, dst.data(), &dstLen, factor, &upPhase);
                raised.insert(raised.end(), dst.begin(), dst.begin() + dstLen);
            }
            EXPECT_TRUE(sameBits(pieces, kept(x, factor, factor / 2)));
            EXPECT_TRUE(sameBits(raised, spread(x, factor, factor / 2)));
        }
}

template <typename Sample>
using Sampler = void (*)(const Sample *, int, Sample *, int *, int, int *);

template <typename Sample>
void expectChecks(const char *func, Sampler<Sample> sampler)
{
    Reports reports;
    const Sample src[2] = {};
    Sample dst[4];
    std::memset(static_cast<void *>(dst), 0x55, sizeof dst);
    int dstLen = 77, phase = 0, negative = -1, large = 3;
    const auto expect = [&](const char *context) {
        EXPECT_EQ(reports.take(), badArgument(func, context, "rvxsampl")) << func;
    };
    for (int srcLen : {0, -1, INT_MIN}) {
        sampler(nullptr, srcLen, nullptr, nullptr, 0, nullptr);
        expect("Invalid src array length");
    }
    sampler(nullptr, 2, dst, nullptr, 0, nullptr);
    expect("Null buffer pointer");
    sampler(src, 2, nullptr, nullptr, 0, nullptr);
    expect("Null buffer pointer");
    sampler(src, 2, dst, nullptr, 0, nullptr);
    expect("Null dstLen pointer");
    sampler(src, 2, dst, &dstLen, 0, nullptr);
    expect("Null phase pointer");
    for (int factor : {0, -1, INT_MIN}) {
        sampler(src, 2, dst, &dstLen, factor, &negative);
        expect("Invalid factor value");
    }
    sampler(src, 2, dst, &dstLen, 2, &negative);
    expect("Invalid phase value");
    for (int factor : {1, 2, 3}) {
        sampler(src, 2, dst, &dstLen, factor, &large);
        expect("Invalid factor value");
    }
    EXPECT_EQ(dstLen, 77);
    EXPECT_TRUE(phase == 0 && negative == -1 && large == 3);
    for (std::size_t i = 0; i < sizeof dst; ++i)
        EXPECT_EQ(reinterpret_cast<const unsigned char *>(dst)[i], 0x55);
    EXPECT_EQ(rvxGetErrStatus(), RVX_STATUS_BAD_ARGUMENT);
}

// The arrays are far too short for the product: nothing may be touched.
template <typename Sample>
void expectTooLongRefused(const char *func, Sampler<Sample> sampler)
{
    Reports reports;
    const Sample src[1] = {};
    Sample dst[1];
    std::memset(static_cast<void *>(dst), 0x55, sizeof dst);
    const std::vector<Sample> before(dst, dst + 1);
    int dstLen = 77;
    const auto expect = [&](int factor, int phase, const char *context) {
        const int given = phase;
        sampler(src, 1 << 15, dst, &dstLen, factor, &phase);
        EXPECT_EQ(reports.take(), badArgument(func, context, "rvxsampl"));
        EXPECT_EQ(phase, given);
    };
    expect(1 << 16, 1, "Invalid src array length");
    expect(INT_MAX, 1, "Invalid src array length");
    // All other checks come first.
    expect(INT_MAX, -1, "Invalid phase value");
    expect(1 << 16, 1 << 16, "Invalid factor value");
    EXPECT_EQ(dstLen, 77);
    EXPECT_TRUE(sameBits(std::vector<Sample>(dst, dst + 1), before));
}

} // namespace

TEST(SamplingChecks, EachInItsOrderAndNothingWritten)
{
    expectChecks<double>("rvxdUpSample", rvxdUpSample);
    expectChecks<ZCplx>("rvxzUpSample", rvxzUpSample);
    expectChecks<double>("rvxdDownSample", rvxdDownSample);
    expectChecks<ZCplx>("rvxzDownSample", rvxzDownSample);
}

TEST(SamplingChecks, EndTheProcessInModeZero)
{
    EXPECT_EXIT(rvxdUpSample(nullptr, 1, nullptr, nullptr, 1, nullptr),
                ::testing::ExitedWithCode(1), "");
}

TEST(SamplingChecks, ResultsBeyondAnIntAreRefused)
{
    expectTooLongRefused<double>("rvxdUpSample", rvxdUpSample);
    expectTooLongRefused<ZCplx>("rvxzUpSample", rvxzUpSample);
}

// A length of 2^31 - 1 is none of these. By a factor of 1 and in place nothing but
// the length is written.
TEST(SamplingChecks, TheLongestResultIsAllowed)
{
    Reports reports;
    Guarded<double> x(std::vector<double>{1.0, 2.0});
    Guarded<ZCplx> z(std::vector<ZCplx>{{1.0, 2.0}});
    int lens[4] = {}, phase = 0;
    rvxdUpSample(x.data(), INT_MAX, x.data(), &lens[0], 1, &phase);
    rvxzUpSample(z.data(), INT_MAX, z.data(), &lens[1], 1, &phase);
    rvxdDownSample(x.data(), INT_MAX, x.data(), &lens[2], 1, &phase);
    rvxzDownSample(z.data(), INT_MAX, z.data(), &lens[3], 1, &phase);
    for (int len : lens)
        EXPECT_EQ(len, INT_MAX);
    EXPECT_EQ(phase, 0);
    EXPECT_TRUE(x.intact() && x[0] == 1.0 && x[1] == 2.0);
    EXPECT_TRUE(z.intact() && z[0].re == 1.0 && z[0].im == 2.0);
    EXPECT_TRUE(reports.take().empty());
}

TEST(SamplingChecks, AStaleStatusPlaysNoPart)
{
    Reports reports;
    rvxSetErrStatus(RVX_STATUS_NO_MEMORY);
    const std::vector<double> x = signal<double>(20);
    const std::vector<ZCplx> z = signal<ZCplx>(20);
    std::vector<double> y(60);
    std::vector<ZCplx> w(60);
    int dstLen = 0, phase = 1;
    rvxdUpSample(x.data(), 20, y.data(), &dstLen, 3, &phase);
    EXPECT_TRUE(sameBits(y, spread(x, 3, 1)));
    rvxzUpSample(z.data(), 20, w.data(), &dstLen, 3, &phase);
    EXPECT_TRUE(sameBits(w, spread(z, 3, 1)));
    rvxdDownSample(x.data(), 20, y.data(), &dstLen, 3, &phase);
    y.resize(static_cast<std::size_t>(dstLen));
    EXPECT_TRUE(sameBits(y, kept(x, 3, 1)));
    phase = 1;
    rvxzDownSample(z.data(), 20, w.data(), &dstLen, 3, &phase);
    w.resize(static_cast<std::size_t>(dstLen));
    EXPECT_TRUE(sameBits(w, kept(z, 3, 1)));
    EXPECT_EQ(rvxGetErrStatus(), RVX_STATUS_NO_MEMORY);
    EXPECT_TRUE(reports.take().empty());
}

TEST(UpSampling, EveryLengthFactorAndPhase)
{
    for (int factor = 1; factor <= 19; ++factor)
        for (int phase = 0; phase < factor; ++phase)
            for (int n = 1; n <= 22; ++n) {
                expectUp<double>(n, factor, phase);
                expectUp<ZCplx>(n, factor, phase);
            }
}

TEST(DownSampling, EveryLengthFactorAndPhase)
{
    for (int factor = 1; factor <= 19; ++factor)
        for (int phase = 0; phase < factor; ++phase)
            for (int n = 1; n <= 90; ++n) {
                expectDown<double>(n, factor, phase);
                expectDown<ZCplx>(n, factor, phase);
            }
}

TEST(Sampling, NothingOutsideTheArraysIsTouched)
{
    for (Wall wall : {Wall::before, Wall::behind})
        for (int factor : {1, 2, 3, 4, 5, 8, 9, 50})
            for (int phase = 0; phase < factor; phase += 1 + factor / 5)
                for (int n = 1; n <= 40; ++n) {
                    expectInsideWalls<double>(n, factor, phase, wall);
                    expectInsideWalls<ZCplx>(n, factor, phase, wall);
                }
}

TEST(DownSampling, AFactorBeyondTheBlockOnlyMovesThePhase)
{
    double x[3] = {1.0, 2.0, 3.0};
    double y[3] = {};
    int dstLen = -1, phase = INT_MAX - 1;
    rvxdDownSample(x, 3, y, &dstLen, INT_MAX, &phase);
    EXPECT_EQ(dstLen, 0);
    EXPECT_EQ(phase, INT_MAX - 4);
    phase = 2;
    rvxdDownSample(x, 3, y, &dstLen, INT_MAX, &phase);
    EXPECT_EQ(dstLen, 1);
    EXPECT_EQ(y[0], 3.0);
    EXPECT_EQ(phase, INT_MAX - 1);
}

TEST(Sampling, KnownCases)
{
    const double x[5] = {1.0, 2.0, 3.0, 4.0, 5.0};
    double y[6];
    int dstLen = 0, phase = 1;
    rvxdUpSample(x, 2, y, &dstLen, 3, &phase);
    EXPECT_EQ(std::vector<double>(y, y + 6), (std::vector<double>{0, 1, 0, 0, 2, 0}));
    EXPECT_EQ(dstLen, 6);
    EXPECT_EQ(phase, 1);
    rvxdDownSample(x, 5, y, &dstLen, 2, &phase);
    EXPECT_EQ(dstLen, 2);
    EXPECT_EQ(y[0] * 10 + y[1], 24.0);
    EXPECT_EQ(phase, 0);
    rvxdDownSample(x, 5, y, &dstLen, 2, &phase);
    EXPECT_EQ(dstLen, 3);
    EXPECT_EQ(y[0] * 100 + y[1] * 10 + y[2], 135.0);
    EXPECT_EQ(phase, 1);
}

TEST(Sampling, BlocksCutAnywhereEqualOneCall)
{
    expectCutAnywhere<double>();
    expectCutAnywhere<ZCplx>();
}
