// The logarithm of Gaussian noise.

#include <cmath>
#include <cstdint>
#include <functional>
#include <random>

#include <gtest/gtest.h>

#include "generation/rvxrand_ln.h"
#include "reference/correct.h"
#include "support/bits.h"
#include "support/worse.h"

namespace {

#ifdef RVX_TEST_SANITIZED
constexpr int patterns = 2000;
#else
constexpr int patterns = 25000;
#endif

using Random = std::mt19937_64;

// 0 to 1
double fraction(Random &random)
{
    return static_cast<double>(random() >> 12) * 0x1p-52;
}

double lnOf(double w)
{
    return firstLane(lnBelowOne(allLanes(w)));
}

struct Seen {
    double worst = 0.0;
    int notNearest = 0, count = 0;
};

Seen seenOf(const std::function<double(Random &)> &next)
{
    Random random(1);
    Seen seen;
    while (seen.count < patterns) {
        const double w = next(random);
        if (!(w > 0.0 && w < 1.0))
            continue;
        const double error = reference::ulps(lnOf(w), mpfr_log, w);
        seen.worst = worse(seen.worst, error);
        seen.notNearest += error > 0.5 ? 1 : 0;
        ++seen.count;
    }
    return seen;
}

} // namespace

TEST(NoiseLogarithm, OfPairsOfWordsIsTheNearestDoubleButForSomeInAHundredThousand)
{
    const Seen seen = seenOf([](Random &random) {
        const std::uint64_t words = random();
        const double u = static_cast<std::int32_t>(words >> 32) * 4.656612873077e-10;
        const double v = static_cast<std::int32_t>(words) * 4.656612873077e-10;
        return u * u + v * v;
    });
    EXPECT_LE(seen.worst, 0.507);
    EXPECT_LE(seen.notNearest, 2);
}

TEST(NoiseLogarithm, IsWithinItsBoundWhereItIsWorst)
{
    const Seen seen = seenOf([](Random &random) { return 1.0 - fraction(random) * 0x1p-8; });
    EXPECT_LE(seen.worst, 0.507);
    EXPECT_LE(seen.notNearest, patterns / 1000);
}

TEST(NoiseLogarithm, IsWithinItsBoundHoweverNearToOne)
{
    const Seen seen = seenOf([](Random &random) {
        const int exponent = -9 - static_cast<int>(random() % 45);
        return 1.0 - std::ldexp(1.0 + fraction(random), exponent);
    });
    EXPECT_LE(seen.worst, 0.507);
    EXPECT_EQ(lnOf(1.0 - 0x1p-53), reference::correct(mpfr_log, 1.0 - 0x1p-53));
}

TEST(NoiseLogarithm, IsWithinItsBoundForEveryExponent)
{
    const Seen seen = seenOf([](Random &random) {
        const int exponent = -1 - static_cast<int>(random() % 1022);
        return std::ldexp(1.0 + fraction(random), exponent);
    });
    EXPECT_LE(seen.worst, 0.501);
}

TEST(NoiseLogarithm, IsWithinItsBoundAtBothEndsOfEveryRow)
{
    for (int exponent = -1; exponent > -64; --exponent)
        for (int row = 0; row < 128; ++row) {
            const double first = std::ldexp(1.0 + row / 128.0, exponent);
            const double last = std::nextafter(std::ldexp(1.0 + (row + 1) / 128.0, exponent), 0.0);
            ASSERT_LE(reference::ulps(lnOf(first), mpfr_log, first), 0.507) << first;
            ASSERT_LE(reference::ulps(lnOf(last), mpfr_log, last), 0.507) << last;
        }
}

TEST(NoiseLogarithm, IsTheSameInEveryLane)
{
    Random random(2);
    for (int i = 0; i < 1000; ++i) {
        double w[4], logs[4];
        for (double &x : w)
            x = std::ldexp(0.5 + 0.5 * fraction(random), -static_cast<int>(random() % 3));
        storeLanes(logs, lnBelowOne(loadLanes(w)));
        for (int lane = 0; lane < 4; ++lane)
            ASSERT_EQ(bitsOf(logs[lane]), bitsOf(lnOf(w[lane])));
    }
}

TEST(NoiseLogarithm, RowsHoldReciprocalsAndTheirLogarithms)
{
    for (int row = 0; row < 128; ++row) {
        const RvxLnRow &r = rvxLnRows[row];
        const double middle = 0.5 + (row + 0.5) / 256.0;
        EXPECT_EQ(r.c, row == 127 ? 1.0 : std::nearbyint(512.0 / middle) / 512.0) << row;
        EXPECT_EQ(std::ldexp(r.high, 41), std::nearbyint(std::ldexp(r.high, 41))) << row;
        // low = -ln c - high, rounded
        const double rest = reference::nearestDouble([&](mpfr_ptr value) {
            MPFR_DECL_INIT(log, 200);
            mpfr_set_d(log, r.c, MPFR_RNDN);
            mpfr_log(log, log, MPFR_RNDN);
            mpfr_neg(log, log, MPFR_RNDN);
            return mpfr_sub_d(value, log, r.high, MPFR_RNDN);
        });
        EXPECT_EQ(r.low, rest) << row;
        EXPECT_LE(std::fabs(r.low), 0x1p-42) << row;
    }
}
