// Polar forms: angles, sines and cosines of blocks, and magnitudes beside angles.

#include <algorithm>
#include <climits>
#include <random>
#include <vector>

#include "reference/correct.h"
#include "support/arith_values.h"
#include "support/float_environment.h"
#include "support/polar_values.h"
#include "support/reports.h"

namespace {

const double RVX_PI = fromBits(0x400921FB54442D18ULL);

#ifdef RVX_TEST_SANITIZED
constexpr int PATTERNS = 20000;
#else
constexpr int PATTERNS = 1000000;
#endif
constexpr int EXACT_PATTERNS = PATTERNS / 50;

// The header's bounds.
constexpr double CIRCLE_BOUND = 0.9;
constexpr double ANGLE_BOUND = 0.85;

// |result - exact| in units in the last place, for what extended precision tells
// within 0.002 of them.
double roughUlps(double result, long double exact)
{
    if (!std::isfinite(result) || std::isnan(exact))
        return std::isnan(result) && std::isnan(exact) ? 0.0 : INF;
    const int exponent = exact == 0.0L ? -1022 : std::max(std::ilogb(exact), -1022);
    return static_cast<double>(std::fabs(std::ldexp(result - exact, 52 - exponent)));
}

bool isOnAxis(ZCplx z)
{
    return z.im == 0.0 || std::isnan(z.im);
}

double phaseOf(ZCplx z)
{
    double phase = -1.0;
    rvxzbPhase(&z, &phase, 1);
    return phase;
}

ZCplx polarOf(ZCplx z)
{
    double mag = -1.0, phase = -1.0;
    rvxzbCartToPolar(&z, &mag, &phase, 1);
    return {mag, phase};
}

ZCplx cartOf(double mag, double phase)
{
    ZCplx z{-1.0, -1.0};
    rvxzbPolarToCart(&mag, &phase, &z, 1);
    return z;
}

// Numbers for tests of accuracy, the same in every run.
class Numbers {
public:
    explicit Numbers(unsigned seed) : bits(seed) {}
    double pattern() { return fromBits(bits()); }
    double even() { return static_cast<double>(bits() >> 11) * 0x1p-52 - 1.0; }
    int below(int limit) { return static_cast<int>(bits() % static_cast<unsigned>(limit)); }
    double scaled(int lowest, int count) { return std::ldexp(even(), lowest + below(count)); }

private:
    std::mt19937_64 bits;
};

// The worst errors of cosine and sine over phases.
void expectCircles(const std::vector<double> &phases, const char *what)
{
    const std::vector<double> ones(phases.size(), 1.0);
    std::vector<ZCplx> z(phases.size());
    rvxzbPolarToCart(ones.data(), phases.data(), z.data(), static_cast<int>(phases.size()));
    for (std::size_t i = 0; i < phases.size(); ++i) {
        const double x = phases[i];
        if (!std::isfinite(x)) {
            ASSERT_TRUE(std::isnan(z[i].re) && std::isnan(z[i].im)) << x;
            continue;
        }
        const bool isExact = i < EXACT_PATTERNS;
        const double cosine = isExact ? reference::ulps(z[i].re, mpfr_cos, x)
                                      : roughUlps(z[i].re, std::cos(static_cast<long double>(x)));
        const double sine = isExact ? reference::ulps(z[i].im, mpfr_sin, x)
                                    : roughUlps(z[i].im, std::sin(static_cast<long double>(x)));
        ASSERT_LT(cosine, CIRCLE_BOUND) << what << ": cosine of " << std::hexfloat << x;
        ASSERT_LT(sine, CIRCLE_BOUND) << what << ": sine of " << std::hexfloat << x;
    }
}

// The worst error of angles off the real axis; that the other function has the same.
void expectAngles(const std::vector<ZCplx> &points, const char *what)
{
    std::vector<double> phases(points.size()), again(points.size()), mags(points.size());
    const int n = static_cast<int>(points.size());
    rvxzbPhase(points.data(), phases.data(), n);
    rvxzbCartToPolar(points.data(), mags.data(), again.data(), n);
    for (std::size_t i = 0; i < points.size(); ++i) {
        const ZCplx z = points[i];
        if (isOnAxis(z))
            continue;
        const double error =
            i < EXACT_PATTERNS
                ? reference::ulps(phases[i], mpfr_atan2, z.im, z.re)
                : roughUlps(phases[i], std::atan2(static_cast<long double>(z.im), z.re));
        ASSERT_LT(error, ANGLE_BOUND) << what << std::hexfloat << ": " << z.re << ", " << z.im;
        ASSERT_TRUE(same(again[i], phases[i])) << std::hexfloat << z.re << ", " << z.im;
        ASSERT_TRUE(same(mags[i], plainMagnitude(z))) << std::hexfloat << z.re << ", " << z.im;
    }
}

template <typename Make>
auto many(Make make)
{
    std::vector<decltype(make())> values(PATTERNS);
    std::generate(values.begin(), values.end(), make);
    return values;
}

} // namespace

// --- Checks ----------------------------------------------------------------------

TEST(PolarChecks, FirstFailedCheckIsTheOnlyReportAndNothingIsWritten)
{
    Guarded<double> first(numbers(8, 1)), second(numbers(8, 2));
    Guarded<ZCplx> cplx(cplxNumbers(8, 3));
    double *d = first.data(), *e = second.data(), *noD = nullptr;
    ZCplx *z = cplx.data(), *noZ = nullptr;

    std::vector<BadCall> calls = {
        {"rvxzbCartToPolar", "src==0", [=] { rvxzbCartToPolar(noZ, noD, noD, 8); }},
        {"rvxzbCartToPolar", "src==0", [=] { rvxzbCartToPolar(noZ, d, e, 8); }},
        {"rvxzbCartToPolar", "mag==0", [=] { rvxzbCartToPolar(z, noD, noD, 8); }},
        {"rvxzbCartToPolar", "mag==0", [=] { rvxzbCartToPolar(z, noD, e, 8); }},
        {"rvxzbCartToPolar", "phase==0", [=] { rvxzbCartToPolar(z, d, noD, 8); }},
        {"rvxzbPolarToCart", "mag==0", [=] { rvxzbPolarToCart(noD, noD, noZ, 8); }},
        {"rvxzbPolarToCart", "mag==0", [=] { rvxzbPolarToCart(noD, d, z, 8); }},
        {"rvxzbPolarToCart", "phase==0", [=] { rvxzbPolarToCart(d, noD, noZ, 8); }},
        {"rvxzbPolarToCart", "phase==0", [=] { rvxzbPolarToCart(d, noD, z, 8); }},
        {"rvxzbPolarToCart", "dst==0", [=] { rvxzbPolarToCart(d, e, noZ, 8); }},
        // The result before the source.
        {"rvxzbMag", "mag==0", [=] { rvxzbMag(noZ, noD, 8); }},
        {"rvxzbMag", "mag==0", [=] { rvxzbMag(z, noD, 8); }},
        {"rvxzbMag", "src==0", [=] { rvxzbMag(noZ, d, 8); }},
        {"rvxzbPhase", "phase==0", [=] { rvxzbPhase(noZ, noD, 8); }},
        {"rvxzbPhase", "phase==0", [=] { rvxzbPhase(z, noD, 8); }},
        {"rvxzbPhase", "src==0", [=] { rvxzbPhase(noZ, d, 8); }},
    };
    for (int n : {0, -1, INT_MIN})
        for (bool isGood : {false, true}) {
            double *p = isGood ? d : noD, *q = isGood ? e : noD;
            ZCplx *c = isGood ? z : noZ;
            const char *length = "length<=0";
            calls.push_back({"rvxzbCartToPolar", length, [=] { rvxzbCartToPolar(c, p, q, n); }});
            calls.push_back({"rvxzbPolarToCart", length, [=] { rvxzbPolarToCart(p, q, c, n); }});
            calls.push_back({"rvxzbMag", length, [=] { rvxzbMag(c, p, n); }});
            calls.push_back({"rvxzbPhase", length, [=] { rvxzbPhase(c, p, n); }});
        }

    Reports reports;
    expectRefused(calls, "rvxcvrtd", reports);
    expectBlock(first, numbers(8, 1), "a refused call");
    expectBlock(second, numbers(8, 2), "a refused call");
    expectBlock(cplx, cplxNumbers(8, 3), "a refused call");
}

// --- Angles -------------------------------------------------------------------------

TEST(Phases, OnTheRealAxisAreZeroOrPi)
{
    for (double im : {0.0, -0.0, QUIET, -QUIET}) {
        for (double re : {1.0, TINY, HUGE_VALUE, INF, 0.0, -0.0}) {
            EXPECT_TRUE(sameBits(phaseOf({re, im}), 0.0)) << re;
            EXPECT_TRUE(sameBits(polarOf({re, im}).im, 0.0)) << re;
            EXPECT_TRUE(sameBits(polarOf({re, im}).re, std::fabs(re))) << re;
        }
        for (double re : {-1.0, -TINY, -HUGE_VALUE, -INF}) {
            EXPECT_TRUE(sameBits(phaseOf({re, im}), RVX_PI)) << re;
            EXPECT_TRUE(sameBits(polarOf({re, im}).im, RVX_PI)) << re;
            EXPECT_TRUE(sameBits(polarOf({re, im}).re, -re)) << re;
        }
    }
}

TEST(Phases, ANanOnTheRealAxisIsNegativeForPhasesAndZeroForPolarForms)
{
    for (double im : {0.0, -0.0, QUIET})
        for (double re : {QUIET, -QUIET}) {
            EXPECT_TRUE(sameBits(phaseOf({re, im}), RVX_PI));
            EXPECT_TRUE(sameBits(polarOf({re, im}).re, 0.0));
            EXPECT_TRUE(sameBits(polarOf({re, im}).im, 0.0));
        }
}

TEST(Phases, OffTheAxisANanGivesNan)
{
    for (double im : {1.0, -TINY, INF, -INF, 1e300})
        for (double re : {QUIET, -QUIET}) {
            EXPECT_TRUE(std::isnan(phaseOf({re, im})));
            EXPECT_TRUE(std::isnan(polarOf({re, im}).re));
            EXPECT_TRUE(std::isnan(polarOf({re, im}).im));
        }
}

TEST(Phases, InfinitiesStandOnAxesAndDiagonals)
{
    const double eighth = RVX_PI / 4.0;
    for (double sign : {1.0, -1.0}) {
        EXPECT_TRUE(sameBits(phaseOf({INF, sign * INF}), sign * eighth));
        EXPECT_TRUE(sameBits(phaseOf({-INF, sign * INF}),
                             sign * reference::correct(mpfr_atan2, 1.0, -1.0)));
        EXPECT_TRUE(sameBits(phaseOf({INF, sign * 3.0}), sign * 0.0));
        EXPECT_TRUE(sameBits(phaseOf({-INF, sign * 3.0}), sign * RVX_PI));
        for (double re : {0.0, -0.0, 3.0, -HUGE_VALUE})
            EXPECT_TRUE(sameBits(phaseOf({re, sign * INF}), sign * RVX_PI / 2.0));
    }
}

TEST(Phases, EveryPairOfSpecialsAtEveryPositionIsWithinTheBound)
{
    for (double re : parts)
        for (double im : parts) {
            const ZCplx z{re, im};
            const double phase = phaseOf(z);
            const ZCplx polar = polarOf(z);
            if (!isOnAxis(z)) {
                EXPECT_LT(reference::ulps(phase, mpfr_atan2, im, re), ANGLE_BOUND)
                    << re << ", " << im;
                EXPECT_TRUE(std::isnan(phase) || std::signbit(phase) == std::signbit(im));
                EXPECT_TRUE(same(polar.im, phase)) << re << ", " << im;
                EXPECT_TRUE(same(polar.re, plainMagnitude(z))) << re << ", " << im;
            }
            for (int n = 1; n <= 40; ++n) {
                std::vector<ZCplx> src = cplxNumbers(n, 7);
                std::vector<double> before(src.size()), mag(src.size()), found(src.size());
                rvxzbPhase(src.data(), before.data(), n);
                const int at = (n * 7 + static_cast<int>(bitsOf(re) >> 52)) % n;
                const auto place = static_cast<std::size_t>(at);
                src[place] = z;
                rvxzbPhase(src.data(), found.data(), n);
                for (std::size_t i = 0; i < src.size(); ++i)
                    ASSERT_TRUE(same(found[i], i == place ? phase : before[i]))
                        << re << ", " << im << " at " << at << " of " << n;
                rvxzbCartToPolar(src.data(), mag.data(), found.data(), n);
                for (std::size_t i = 0; i < src.size(); ++i) {
                    ASSERT_TRUE(same(found[i], i == place ? polar.im : before[i]));
                    ASSERT_TRUE(same(mag[i], i == place ? polar.re : plainMagnitude(src[i])));
                }
            }
        }
}

TEST(Phases, DoNotDependOnTheSpecialsBesideThem)
{
    std::vector<ZCplx> points;
    for (double re : parts)
        for (double im : parts)
            points.push_back({re, im});
    Numbers r(6);
    for (int round = 0; round < 50; ++round) {
        for (std::size_t i = points.size() - 1; i > 0; --i)
            std::swap(points[i],
                      points[static_cast<std::size_t>(r.below(static_cast<int>(i) + 1))]);
        std::vector<double> phase(points.size()), mag(phase), again(phase);
        rvxzbPhase(points.data(), phase.data(), static_cast<int>(points.size()));
        rvxzbCartToPolar(points.data(), mag.data(), again.data(), static_cast<int>(points.size()));
        for (std::size_t i = 0; i < points.size(); ++i) {
            ASSERT_TRUE(same(phase[i], phaseOf(points[i])))
                << std::hexfloat << points[i].re << ", " << points[i].im;
            ASSERT_TRUE(same({mag[i], again[i]}, polarOf(points[i])))
                << std::hexfloat << points[i].re << ", " << points[i].im;
        }
    }
}

TEST(Phases, EveryShapeAsElementByElement)
{
    forEveryShape([&](int n, int dstAt, int srcAt) {
        const std::vector<ZCplx> points = cplxNumbers(n, 5);
        std::vector<double> phases, mags;
        for (ZCplx z : points) {
            phases.push_back(phaseOf(z));
            mags.push_back(plainMagnitude(z));
        }
        Guarded<ZCplx> src(points, srcAt);
        Guarded<double> phase(n, dstAt), mag(n, (dstAt + srcAt) % 4), both(n, dstAt);
        rvxzbPhase(src.data(), phase.data(), n);
        rvxzbCartToPolar(src.data(), mag.data(), both.data(), n);
        expectBlock(phase, phases, "rvxzbPhase");
        expectBlock(both, phases, "rvxzbCartToPolar, phases");
        expectBlock(mag, mags, "rvxzbCartToPolar, magnitudes");
        expectBlock(src, points, "a source");

        std::vector<double> inPlace(static_cast<std::size_t>(2 * n));
        std::memcpy(inPlace.data(), points.data(), points.size() * sizeof(ZCplx));
        rvxzbPhase(reinterpret_cast<ZCplx *>(inPlace.data()), inPlace.data(), n);
        ASSERT_TRUE(std::equal(phases.begin(), phases.end(), inPlace.begin())) << n;
        std::memcpy(inPlace.data(), points.data(), points.size() * sizeof(ZCplx));
        rvxzbCartToPolar(reinterpret_cast<ZCplx *>(inPlace.data()), inPlace.data(), both.data(), n);
        ASSERT_TRUE(std::equal(mags.begin(), mags.end(), inPlace.begin())) << n;
    });
}

TEST(Phases, RandomPointsAreWithinTheBound)
{
    Numbers r(1);
    expectAngles(many([&] { return ZCplx{r.pattern(), r.pattern()}; }), "bit patterns");
    expectAngles(many([&] { return ZCplx{r.even(), r.even()}; }), "the unit square");
    expectAngles(many([&] { return ZCplx{1.0, 0.42 * r.even()}; }), "next to the real axis");
    expectAngles(many([&] {
                     return ZCplx{r.scaled(-520, 1040), r.scaled(-520, 1040)};
                 }),
                 "the range of the lanes");
    expectAngles(many([&] {
                     return ZCplx{r.scaled(-1074, 60), r.scaled(-1074, 60)};
                 }),
                 "subnormals");
    // About the quotient from which on angles are counted from the diagonal, the one at
    // which the difference begins to be exact, and the diagonal.
    expectAngles(many([&] {
                     const double a = r.scaled(-3, 6);
                     const double limits[] = {0.41421356237309503, 0.5, 1.0};
                     const double b = a * limits[r.below(3)] * (1.0 + std::ldexp(r.even(), -45));
                     return r.below(2) == 0 ? ZCplx{a, b} : ZCplx{-b, a};
                 }),
                 "where segments meet");
}

// --- Sines and cosines ----------------------------------------------------------------

TEST(Circles, RandomPhasesAreWithinTheBound)
{
    Numbers r(2);
    expectCircles(many([&] { return r.pattern(); }), "bit patterns");
    expectCircles(many([&] { return 0.7854 * r.even(); }), "an eighth of a turn");
    expectCircles(many([&] { return 10.0 * r.even(); }), "some turns");
    expectCircles(many([&] { return r.scaled(4, 19); }), "about the end of the lanes' range");
}

TEST(Circles, NextToMultiplesOfARightAngleAreWithinTheBound)
{
    Numbers r(3);
    expectCircles(many([&] {
                      const double quarters = std::floor(700000.0 * r.even());
                      return quarters * (RVX_PI / 2.0) * (1.0 + r.below(5) * 0x1p-53);
                  }),
                  "multiples of a right angle");
}

namespace {

// Doubles that come nearest to multiples of pi/2: denominators of the convergents of
// 2^e 2/pi. (W. Kahan's way to the worst cases of argument reduction.)
std::vector<double> worstPhases()
{
    std::vector<double> worst;
    mpfr_t x, whole;
    mpfr_inits2(2400, x, whole, static_cast<mpfr_ptr>(nullptr));
    for (int e = -60; e <= 971; ++e) {
        mpfr_const_pi(x, MPFR_RNDN);
        mpfr_ui_div(x, 2, x, MPFR_RNDN);
        mpfr_mul_2si(x, x, e, MPFR_RNDN);
        double q0 = 1.0, q1 = 0.0; // of the convergent, and of the one before
        for (int step = 0; step < 120; ++step) {
            mpfr_floor(whole, x);
            mpfr_sub(x, x, whole, MPFR_RNDN);
            if (step > 0) {
                const double next = mpfr_get_d(whole, MPFR_RNDN) * q0 + q1;
                q1 = q0;
                q0 = next;
            }
            if (q0 >= 0x1p53)
                break;
            if (q0 >= 0x1p40)
                worst.push_back(std::ldexp(q0, e));
            mpfr_ui_div(x, 1, x, MPFR_RNDN);
        }
    }
    mpfr_clears(x, whole, static_cast<mpfr_ptr>(nullptr));
    return worst;
}

} // namespace

TEST(Circles, TheHardestPhasesAreWithinTheBound)
{
    const std::vector<double> worst = worstPhases();
    ASSERT_GT(worst.size(), 5000U);
    // The best known of them all must be there.
    const double hardest = std::ldexp(6381956970095103.0, 797);
    ASSERT_NE(std::find(worst.begin(), worst.end(), hardest), worst.end());
    double nearest = 1.0;
    for (double x : worst) {
        const ZCplx z = cartOf(1.0, x);
        const ZCplx mirrored = cartOf(1.0, -x);
        ASSERT_LT(reference::ulps(z.re, mpfr_cos, x), CIRCLE_BOUND) << std::hexfloat << x;
        ASSERT_LT(reference::ulps(z.im, mpfr_sin, x), CIRCLE_BOUND) << std::hexfloat << x;
        ASSERT_TRUE(sameBits(mirrored, ZCplx{z.re, -z.im})) << std::hexfloat << x;
        nearest = std::min({nearest, std::fabs(z.re), std::fabs(z.im)});
    }
    EXPECT_LT(nearest, 0x1p-60);
}

TEST(Circles, ZerosAndTinyPhasesAreTheirOwnSines)
{
    for (double x : {0.0, -0.0, TINY, -TINY, 0x1p-1022, -1e-300, 1e-20}) {
        EXPECT_TRUE(sameBits(cartOf(1.0, x).im, x)) << x;
        EXPECT_TRUE(sameBits(cartOf(1.0, x).re, 1.0)) << x;
    }
}

TEST(Circles, MagnitudesAreFactorsAndAreRoundedOnce)
{
    Numbers r(4);
    for (int i = 0; i < EXACT_PATTERNS; ++i) {
        const double mag = r.pattern(), phase = r.scaled(-3, 6);
        const ZCplx unit = cartOf(1.0, phase);
        ASSERT_TRUE(same(cartOf(mag, phase), ZCplx{unit.re * mag, unit.im * mag}));
    }
    for (double mag : {INF, -INF, QUIET, 0.0, -0.0, TINY, HUGE_VALUE}) {
        const ZCplx unit = cartOf(1.0, 2.0);
        EXPECT_TRUE(same(cartOf(mag, 2.0), ZCplx{unit.re * mag, unit.im * mag}));
        EXPECT_TRUE(same(cartOf(mag, 0.0), ZCplx{1.0 * mag, 0.0 * mag}));
    }
}

TEST(Circles, InfiniteAndNanPhasesGiveNan)
{
    for (double phase : {INF, -INF, QUIET, -QUIET})
        for (double mag : {0.0, 1.0, INF}) {
            EXPECT_TRUE(std::isnan(cartOf(mag, phase).re));
            EXPECT_TRUE(std::isnan(cartOf(mag, phase).im));
        }
}

TEST(Circles, EverySpecialPhaseAtEveryPosition)
{
    for (double special : {0.0, -0.0, TINY, 1600.0, std::nextafter(-1600.0, -INF), 1e5, 0x1p20,
                           std::nextafter(0x1p20, INF), -0x1p20, -1e6 * RVX_PI, 1e22, -1e300,
                           HUGE_VALUE, INF, -INF, QUIET})
        for (int n = 1; n <= 40; ++n)
            for (int at = 0; at < n; ++at) {
                const auto place = static_cast<std::size_t>(at);
                const std::vector<double> mag = numbers(n, 1);
                std::vector<double> phase = numbers(n, 2);
                std::vector<ZCplx> before(mag.size()), found(mag.size());
                rvxzbPolarToCart(mag.data(), phase.data(), before.data(), n);
                phase[place] = special;
                before[place] = cartOf(mag[place], special);
                rvxzbPolarToCart(mag.data(), phase.data(), found.data(), n);
                for (std::size_t i = 0; i < mag.size(); ++i)
                    ASSERT_TRUE(same(found[i], before[i]))
                        << special << " at " << at << " of " << n;
            }
}

TEST(Circles, EveryShapeAsElementByElement)
{
    forEveryShape([&](int n, int dstAt, int srcAt) {
        const std::vector<double> mags = numbers(n, 3), phases = numbers(n, 4);
        std::vector<ZCplx> expected;
        for (std::size_t i = 0; i < mags.size(); ++i)
            expected.push_back(cartOf(mags[i], phases[i]));
        Guarded<double> mag(mags, srcAt), phase(phases, (srcAt + dstAt) % 4);
        Guarded<ZCplx> dst(n, dstAt);
        rvxzbPolarToCart(mag.data(), phase.data(), dst.data(), n);
        expectBlock(dst, expected, "rvxzbPolarToCart");
        expectBlock(mag, mags, "rvxzbPolarToCart");
        expectBlock(phase, phases, "rvxzbPolarToCart");
    });
}

TEST(Circles, ThereAndBack)
{
    Numbers r(5);
    const std::vector<ZCplx> points = many([&] { return ZCplx{r.scaled(-20, 40), r.even()}; });
    std::vector<double> mag(points.size()), phase(points.size());
    std::vector<ZCplx> back(points.size());
    const int n = static_cast<int>(points.size());
    rvxzbCartToPolar(points.data(), mag.data(), phase.data(), n);
    rvxzbPolarToCart(mag.data(), phase.data(), back.data(), n);
    for (std::size_t i = 0; i < points.size(); ++i) {
        ASSERT_LT(std::fabs(back[i].re - points[i].re), 8e-16 * mag[i]);
        ASSERT_LT(std::fabs(back[i].im - points[i].im), 8e-16 * mag[i]);
    }
}

// --- Rounding modes, flags, flushed subnormals ------------------------------------------

TEST(PolarForms, FloatingPointEnvironmentNeitherCountsNorChanges)
{
    std::vector<ZCplx> points;
    for (const double re : parts)
        for (const double im : parts)
            points.push_back({re, im});
    Numbers r(6);
    for (int i = 0; i < 1001; ++i)
        points.push_back({r.scaled(-5, 10), r.scaled(-5, 10)});
    std::vector<double> mags, phases;
    for (const ZCplx z : points) {
        mags.push_back(z.im);
        phases.push_back(r.below(4) == 0 ? r.scaled(0, 60) : z.re);
    }
    const int n = static_cast<int>(points.size());
    const auto cartesian = [&] {
        std::vector<ZCplx> z(points.size());
        rvxzbPolarToCart(mags.data(), phases.data(), z.data(), n);
        return z;
    };
    const std::vector<ZCplx> expected = cartesian();
    std::vector<ZCplx> found;
    underEveryEnvironment([&] { found = cartesian(); },
                          [&] {
                              for (std::size_t i = 0; i < points.size(); ++i) {
                                  ASSERT_TRUE(same(found[i].re, expected[i].re)) << phases[i];
                                  ASSERT_TRUE(same(found[i].im, expected[i].im)) << phases[i];
                              }
                          });
    std::vector<double> mag(points.size()), phase(points.size()), phaseAlone(points.size());
    underEveryEnvironment(
        [&] {
            rvxzbCartToPolar(points.data(), mag.data(), phase.data(), n);
            rvxzbPhase(points.data(), phaseAlone.data(), n);
        },
        [&] {
            for (std::size_t i = 0; i < points.size(); ++i) {
                const ZCplx z = points[i];
                ASSERT_TRUE(same(mag[i], polarOf(z).re)) << z.re << ", " << z.im;
                ASSERT_TRUE(same(phase[i], polarOf(z).im)) << z.re << ", " << z.im;
                ASSERT_TRUE(same(phaseAlone[i], phaseOf(z))) << z.re << ", " << z.im;
            }
        });
}
