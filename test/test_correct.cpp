// The reference for functions of one and two numbers, beside roots and quotients, which
// every processor rounds correctly.

#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <random>

#include <gtest/gtest.h>

#include "reference/correct.h"
#include "support/guarded.h"

namespace {

constexpr int TRIALS = 200000;

class AnyDouble {
public:
    double operator()()
    {
        const std::uint64_t pattern = bits();
        double x;
        std::memcpy(&x, &pattern, sizeof x);
        return x;
    }

private:
    std::mt19937_64 bits{1};
};

void expectSame(double actual, double expected)
{
    if (std::isnan(expected))
        EXPECT_TRUE(std::isnan(actual));
    else
        EXPECT_EQ(bitsOf(actual), bitsOf(expected)) << actual << " is not " << expected;
}

TEST(Correct, RootsAreTheProcessors)
{
    AnyDouble next;
    for (int i = 0; i < TRIALS; ++i) {
        const double x = next();
        const double root = std::sqrt(x);
        expectSame(reference::correct(mpfr_sqrt, x), root);
        EXPECT_LE(reference::ulps(root, mpfr_sqrt, x), 0.5);
    }
}

// Exponents of all sizes meet: many quotients are subnormal, zero or infinite.
TEST(Correct, QuotientsAreTheProcessors)
{
    AnyDouble next;
    for (int i = 0; i < TRIALS; ++i) {
        const double x = next(), y = next();
        const double quotient = x / y;
        expectSame(reference::correct(mpfr_div, x, y), quotient);
        EXPECT_LE(reference::ulps(quotient, mpfr_div, x, y), 0.5) << x << " / " << y;
    }
}

TEST(Correct, SignedZerosInfinitiesAndNaN)
{
    const double inf = std::numeric_limits<double>::infinity();
    expectSame(reference::correct(mpfr_atan, -0.0), -0.0);
    expectSame(reference::correct(mpfr_exp, -inf), 0.0);
    expectSame(reference::correct(mpfr_log, -0.0), -inf);
    expectSame(reference::correct(mpfr_atan2, -0.0, 1.0), -0.0);
    expectSame(reference::correct(mpfr_log, -1.0), std::nan(""));
    expectSame(reference::correct(mpfr_exp, 709.9), inf);
    EXPECT_EQ(reference::ulps(inf, mpfr_exp, 709.9), 0.0);
    EXPECT_EQ(reference::ulps(0.0, mpfr_exp, inf), inf);
    EXPECT_EQ(reference::ulps(0.0, mpfr_exp, -inf), 0.0);
}

// One unit off is measured as one unit: at 1.0, inside the subnormals, at a power of two
// from below.
TEST(Correct, NeighboursAreOneUnitAway)
{
    EXPECT_EQ(reference::ulps(std::nextafter(1.5, 2.0), mpfr_div, 3.0, 2.0), 1.0);
    EXPECT_EQ(reference::ulps(5e-324, mpfr_div, 0.0, 1.0), 1.0);
    EXPECT_EQ(reference::ulps(0x1.8p-1073, mpfr_div, 0x1p-1073, 1.0), 1.0);
    EXPECT_EQ(reference::ulps(std::nextafter(1.0, 0.0), mpfr_sqrt, 1.0), 0.5);
}

} // namespace
