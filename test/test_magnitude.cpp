// Magnitudes of complex blocks, alone and in runs.

#include <algorithm>
#include <cmath>
#include <cstring>
#include <vector>

#include "support/polar_values.h"
#include "support/reports.h"

namespace {

constexpr int RUN = 128;

// What rvxzbMag is to do: whole runs by way of the two other functions.
std::vector<double> magnitudesByRuns(const std::vector<ZCplx> &src, std::vector<double> mag)
{
    const int length = static_cast<int>(src.size());
    int i = 0;
    for (; length > RUN && length - i >= RUN; i += RUN) {
        double power[RUN];
        rvxzbPowerSpectr(src.data() + i, power, RUN);
        rvxdbSqrt2(power, mag.data() + i, RUN);
    }
    for (; i < length; ++i)
        mag[static_cast<std::size_t>(i)] = plainMagnitude(src[static_cast<std::size_t>(i)]);
    return mag;
}

const std::vector<Report> signFailure = {
    {RVX_STATUS_BAD_ARGUMENT, "rvxdbSqrt2", "Element of input vector is negative", "rvxvec"}};

} // namespace

TEST(Magnitudes, OrdinaryValuesAreRoundedStepByStepAtEveryLength)
{
    for (int n = 1; n <= 400; ++n) {
        const std::vector<ZCplx> points = cplxNumbers(n, 6);
        std::vector<double> expected(points.size());
        std::transform(points.begin(), points.end(), expected.begin(), plainMagnitude);
        Guarded<ZCplx> src(points, n % 4);
        Guarded<double> mag(n, n / 4 % 4);
        rvxzbMag(src.data(), mag.data(), n);
        expectBlock(mag, expected, "rvxzbMag");
        expectBlock(src, points, "rvxzbMag");

        std::vector<double> inPlace(static_cast<std::size_t>(2 * n));
        std::memcpy(inPlace.data(), points.data(), points.size() * sizeof(ZCplx));
        rvxzbMag(reinterpret_cast<ZCplx *>(inPlace.data()), inPlace.data(), n);
        ASSERT_TRUE(std::equal(expected.begin(), expected.end(), inPlace.begin())) << n;
    }
}

TEST(Magnitudes, SpecialValuesAsThePowerAndTheRootOfTheRunHaveThem)
{
    Reports reports;
    for (int n : {1, 2, 3, 4, 5, 40, 127, 128, 129, 130, 131, 255, 256, 257, 300, 383, 384, 385})
        for (double re : parts)
            for (double im : {0.0, 1e-161, -1e200, 1e-154, 2.0, INF}) {
                std::vector<ZCplx> src = cplxNumbers(n, 8);
                for (int at : {0, 1, n / 3, n / 2, n - 3, n - 2, n - 1, 125, 126, 127, 254, 255})
                    if (at >= 0 && at < n)
                        src[static_cast<std::size_t>(at)] = {re, im};
                const std::vector<double> begun(src.size(), -7.0);
                const std::vector<double> expected = magnitudesByRuns(src, begun);
                const std::vector<Report> expectedReports = reports.take();
                Guarded<double> mag(begun, n % 4);
                rvxzbMag(src.data(), mag.data(), n);
                expectBlock(mag, expected, "rvxzbMag");
                ASSERT_EQ(reports.take(), expectedReports) << re << ", " << im << ", " << n;
            }
}

TEST(Magnitudes, AnOverflowIsFiniteInARunAndInfiniteElsewhere)
{
    const ZCplx huge{1e200, 1e200};
    for (int n : {128, 129, 256, 260}) {
        std::vector<ZCplx> src(static_cast<std::size_t>(n), huge);
        std::vector<double> mag(src.size());
        rvxzbMag(src.data(), mag.data(), n);
        for (int i = 0; i < n; ++i) {
            const bool isInRun = n > 128 && i < n / 128 * 128;
            const bool isInTriple = isInRun && i % 128 < 126;
            EXPECT_EQ(mag[static_cast<std::size_t>(i)], isInTriple ? 0x1p512 : INF)
                << i << " of " << n;
        }
    }
}

TEST(Magnitudes, ASignedNanIsReportedByTheRootOncePerRun)
{
    Reports reports;
    const ZCplx bad{-QUIET, 1.0};
    ASSERT_TRUE(std::signbit(bad.re));
    for (int at : {0, 5, 125, 126, 127}) {
        const auto place = static_cast<std::size_t>(at);
        std::vector<ZCplx> src = cplxNumbers(256, 9);
        std::vector<double> mag(src.size(), -7.0);
        src[place] = bad;
        rvxSetErrStatus(RVX_STATUS_OK);
        rvxzbMag(src.data(), mag.data(), 256);
        EXPECT_EQ(reports.take(), signFailure) << at;
        EXPECT_EQ(rvxGetErrStatus(), RVX_STATUS_BAD_ARGUMENT);
        // The root leaves the last two of a run as they were.
        if (at >= 126)
            EXPECT_EQ(mag[place], -7.0);
        else
            EXPECT_TRUE(std::isfinite(mag[place]));
        EXPECT_EQ(mag[200], plainMagnitude(src[200]));

        src[place + 128] = bad;
        rvxzbMag(src.data(), mag.data(), 256);
        EXPECT_EQ(reports.take().size(), 2U) << at;
        rvxzbMag(src.data(), mag.data(), 128);
        EXPECT_TRUE(reports.take().empty()) << at;
        EXPECT_TRUE(std::isnan(mag[place]));
        src[place] = src[place + 128] = {QUIET, 1.0};
        rvxzbMag(src.data(), mag.data(), 256);
        EXPECT_TRUE(reports.take().empty()) << at;
    }
}

TEST(Magnitudes, OfTwoNansTheImaginaryOneIsReportedByItsSign)
{
    Reports reports;
    for (int at : {0, 1, 2, 3, 64, 125, 126, 127}) {
        const auto place = static_cast<std::size_t>(at);
        std::vector<ZCplx> src = cplxNumbers(129, 10);
        std::vector<double> mag(src.size(), -7.0);
        src[place] = {-QUIET, QUIET};
        rvxzbMag(src.data(), mag.data(), 129);
        EXPECT_TRUE(reports.take().empty()) << at;
        EXPECT_EQ(std::isnan(mag[place]), at >= 126) << at;
        mag[place] = -7.0;
        src[place] = {QUIET, -QUIET};
        rvxzbMag(src.data(), mag.data(), 129);
        EXPECT_EQ(reports.take(), signFailure) << at;
        EXPECT_EQ(mag[place] == -7.0, at >= 126) << at;
    }
}

TEST(Magnitudes, ASignedNanEndsTheProcessInModeZero)
{
    const std::vector<ZCplx> src(129, ZCplx{-QUIET, 1.0});
    std::vector<double> mag(src.size());
    rvxSetErrMode(0);
    EXPECT_EXIT(rvxzbMag(src.data(), mag.data(), 129), ::testing::ExitedWithCode(1), "");
    rvxzbMag(src.data(), mag.data(), 128);
}
