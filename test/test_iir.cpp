// What recursive filters compute: direct form and cascades, four families, samples
// and blocks.

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <vector>

#include <gtest/gtest.h>

#include "reference/iir.h"
#include "rvx.h"
#include "support/guarded.h"
#include "support/iir_families.h"
#include "support/reports.h"
#include "support/worse.h"

namespace {

constexpr double INF = std::numeric_limits<double>::infinity();
constexpr double QUIET = std::numeric_limits<double>::quiet_NaN();

template <typename Family>
class Iir : public ::testing::Test {
};

using Families = ::testing::Types<Real, Cplx, CplxTaps, RealTaps>;
TYPED_TEST_SUITE(Iir, Families, );

bool sameValue(double a, double b)
{
    return (a != a && b != b) || bitsOf(a) == bitsOf(b);
}

bool same(double a, Parts b)
{
    return sameValue(a, b.re);
}

bool same(ZCplx a, Parts b)
{
    return sameValue(a.re, b.re) && sameValue(a.im, b.im);
}

template <typename T>
std::vector<Parts> partsOf(const std::vector<T> &values)
{
    return std::vector<Parts>(values.begin(), values.end());
}

template <typename Tap, typename Sample>
std::vector<Parts> reference(Shape shape, const std::vector<Tap> &taps,
                             const std::vector<Sample> &x)
{
    return shape.mode == 0 ? referenceDirect(partsOf(taps), partsOf(x))
                           : referenceCascade(partsOf(taps), partsOf(x));
}

template <typename T>
int lengthOf(const std::vector<T> &x)
{
    return static_cast<int>(x.size());
}

template <typename Out>
testing::AssertionResult equals(const std::vector<Out> &found, const std::vector<Parts> &expected)
{
    if (found.size() != expected.size())
        return testing::AssertionFailure() << "lengths differ";
    for (std::size_t i = 0; i < found.size(); ++i)
        if (!same(found[i], expected[i]))
            return testing::AssertionFailure() << "sample " << i << " of " << found.size();
    return testing::AssertionSuccess();
}

template <typename T>
bool sameBits(const std::vector<T> &a, const std::vector<T> &b)
{
    return a.size() == b.size() &&
           (a.empty() || std::memcmp(a.data(), b.data(), a.size() * sizeof(T)) == 0);
}

template <typename Family>
std::vector<typename Family::Out> delayLine(const rvxIirState &state)
{
    const auto *d = static_cast<const typename Family::Out *>(state.dlySt.dlyl);
    return std::vector<typename Family::Out>(d, d + state.tapSt.order);
}

template <typename Family>
std::vector<typename Family::Out> sampleBySample(rvxIirState *state,
                                                 const std::vector<typename Family::Sample> &x)
{
    std::vector<typename Family::Out> y;
    for (typename Family::Sample sample : x)
        y.push_back(Family::one(state, sample));
    return y;
}

template <typename Family>
std::vector<typename Family::Out> inOneBlock(rvxIirState *state,
                                             const std::vector<typename Family::Sample> &x)
{
    std::vector<typename Family::Out> y(x.size());
    Family::block(state, x.data(), y.data(), lengthOf(x));
    return y;
}

// ---------------------------------------------------------------------------
// Results.

TYPED_TEST(Iir, SamplesHaveTheBitsOfTheStatedOperations)
{
    using Tap = typename TypeParam::Tap;
    Reports reports;
    for (Shape shape : allShapes()) {
        const std::vector<Tap> taps = tapsFor<Tap>(shape.mode, shape.len, 1);
        const auto x = IirSource(2).make<typename TypeParam::Sample>(60);
        rvxIirState state = start<TypeParam>(shape, taps);
        EXPECT_TRUE(equals(sampleBySample<TypeParam>(&state, x), reference(shape, taps, x)))
            << shape;
        rvxIirFree(&state);
    }
    EXPECT_TRUE(reports.take().empty());
}

TYPED_TEST(Iir, BlocksOfEveryLengthHaveTheBitsOfSamples)
{
    using Tap = typename TypeParam::Tap;
    Reports reports;
    std::vector<int> lengths;
    for (int n = 1; n <= 21; ++n)
        lengths.push_back(n);
    for (int n : {31, 32, 39, 40, 65, 66, 67, 200})
        lengths.push_back(n);
    for (Shape shape : allShapes()) {
        const std::vector<Tap> taps = tapsFor<Tap>(shape.mode, shape.len, 3);
        for (int n : lengths) {
            const auto x = IirSource(4).make<typename TypeParam::Sample>(n);
            rvxIirState block = start<TypeParam>(shape, taps);
            rvxIirState single = start<TypeParam>(shape, taps);
            EXPECT_TRUE(equals(inOneBlock<TypeParam>(&block, x), reference(shape, taps, x)))
                << shape << " n " << n;
            sampleBySample<TypeParam>(&single, x);
            EXPECT_TRUE(sameBits(delayLine<TypeParam>(block), delayLine<TypeParam>(single)))
                << shape << " n " << n;
            rvxIirFree(&block);
            rvxIirFree(&single);
        }
    }
    EXPECT_TRUE(reports.take().empty());
}

TYPED_TEST(Iir, BlockCutAnywhereAndMixedWithSamplesIsOneBlock)
{
    using Tap = typename TypeParam::Tap;
    using Out = typename TypeParam::Out;
    IirSource source(5);
    for (Shape shape : allShapes()) {
        const std::vector<Tap> taps = tapsFor<Tap>(shape.mode, shape.len, 6);
        const auto x = source.make<typename TypeParam::Sample>(300);
        rvxIirState state = start<TypeParam>(shape, taps);
        std::vector<Out> y(x.size());
        for (int done = 0; done < lengthOf(x);) {
            const auto at = static_cast<std::size_t>(done);
            const int n = std::min(lengthOf(x) - done, source.below(30));
            if (n == 0)
                y[at] = TypeParam::one(&state, x[at]);
            else
                TypeParam::block(&state, x.data() + done, y.data() + done, n);
            done += n == 0 ? 1 : n;
        }
        EXPECT_TRUE(equals(y, reference(shape, taps, x))) << shape;
        rvxIirFree(&state);
    }
}

TYPED_TEST(Iir, BlocksStayInsideTheirArraysAtEveryAlignment)
{
    using Tap = typename TypeParam::Tap;
    using Out = typename TypeParam::Out;
    for (Shape shape : {Shape{0, 0}, Shape{0, 1}, Shape{0, 2}, Shape{0, 7}, Shape{0, 8},
                        Shape{0, 13}, Shape{2, 1}, Shape{2, 3}, Shape{2, 16}, Shape{2, 18}})
        for (int misalignment = 0; misalignment < 4; ++misalignment)
            for (int n = 1; n <= 20; ++n) {
                const std::vector<Tap> taps = tapsFor<Tap>(shape.mode, shape.len, 7);
                const auto x = IirSource(8).make<typename TypeParam::Sample>(n);
                Guarded<typename TypeParam::Sample> in(x, misalignment);
                Guarded<Out> out(n, (misalignment + n) % 4);
                Guarded<Tap> given(taps, misalignment);
                rvxIirState state = start<TypeParam>(shape, given.values());
                TypeParam::block(&state, in.data(), out.data(), n);
                EXPECT_TRUE(equals(out.values(), reference(shape, taps, x))) << shape;
                EXPECT_TRUE(out.intact() && in.intact());
                EXPECT_TRUE(sameBits(in.values(), x));
                rvxIirFree(&state);
            }
}

TEST(IirInPlace, BlocksOfEveryLengthGiveTheSame)
{
    for (Shape shape : allShapes())
        for (int n = 1; n <= 20; ++n) {
            const std::vector<double> taps = tapsFor<double>(shape.mode, shape.len, 9);
            const std::vector<ZCplx> cplxTaps = tapsFor<ZCplx>(shape.mode, shape.len, 9);
            const auto x = IirSource(10).make<double>(n);
            const auto z = IirSource(11).make<ZCplx>(n);
            std::vector<double> xInPlace = x;
            rvxIirState state = start<Real>(shape, taps);
            rvxdbIir(&state, xInPlace.data(), xInPlace.data(), n);
            EXPECT_TRUE(equals(xInPlace, reference(shape, taps, x))) << shape << " n " << n;
            rvxIirFree(&state);
            std::vector<ZCplx> zInPlace = z;
            state = start<Cplx>(shape, cplxTaps);
            rvxzbIir(&state, zInPlace.data(), zInPlace.data(), n);
            EXPECT_TRUE(equals(zInPlace, reference(shape, cplxTaps, z))) << shape << " n " << n;
            rvxIirFree(&state);
            zInPlace = z;
            state = start<RealTaps>(shape, taps);
            rvxzdbIir(&state, zInPlace.data(), zInPlace.data(), n);
            EXPECT_TRUE(equals(zInPlace, reference(shape, taps, z))) << shape << " n " << n;
            rvxIirFree(&state);
        }
}

void setSpecial(double *x, double value, bool)
{
    *x = value;
}

void setSpecial(ZCplx *z, double value, bool imaginary)
{
    (imaginary ? z->im : z->re) = value;
}

TYPED_TEST(Iir, SpecialValuesGoTheWayOfTheStatedOperations)
{
    using Tap = typename TypeParam::Tap;
    for (Shape shape : allShapes())
        for (double value : {QUIET, INF, -INF, -0.0, 5e-324, -1e-310, 1.7e308})
            for (int at : {0, 1, 9, 13, 27})
                for (bool imaginary : {false, true}) {
                    const std::vector<Tap> taps = tapsFor<Tap>(shape.mode, shape.len, 12);
                    // The rest is zeros of both signs, so that nothing hides.
                    std::vector<typename TypeParam::Sample> x(41);
                    for (std::size_t i = 0; i < x.size(); i += 3)
                        setSpecial(&x[i], -0.0, imaginary);
                    setSpecial(&x[static_cast<std::size_t>(at)], value, imaginary);
                    rvxIirState block = start<TypeParam>(shape, taps);
                    rvxIirState single = start<TypeParam>(shape, taps);
                    const auto expected = reference(shape, taps, x);
                    EXPECT_TRUE(equals(inOneBlock<TypeParam>(&block, x), expected))
                        << shape << " value " << value << " at " << at;
                    EXPECT_TRUE(equals(sampleBySample<TypeParam>(&single, x), expected))
                        << shape << " value " << value << " at " << at;
                    // Signs of zeros may show in no output and yet be there.
                    EXPECT_TRUE(
                        equals(delayLine<TypeParam>(block), partsOf(delayLine<TypeParam>(single))))
                        << shape << " value " << value << " at " << at;
                    rvxIirFree(&block);
                    rvxIirFree(&single);
                }
}

TEST(IirMixed, PartsOfTheSignalStayApartUnderRealTaps)
{
    for (Shape shape : {Shape{0, 0}, Shape{0, 2}, Shape{0, 9}, Shape{2, 5}}) {
        const std::vector<double> taps = tapsFor<double>(shape.mode, shape.len, 13);
        std::vector<ZCplx> z = IirSource(14).make<ZCplx>(40);
        std::vector<double> re;
        for (ZCplx &value : z) {
            re.push_back(value.re);
            value.im = QUIET;
        }
        rvxIirState state = start<RealTaps>(shape, taps);
        std::vector<double> found;
        for (ZCplx y : inOneBlock<RealTaps>(&state, z)) {
            found.push_back(y.re);
            EXPECT_TRUE(std::isnan(y.im));
        }
        EXPECT_TRUE(equals(found, reference(shape, taps, re))) << shape;
        rvxIirFree(&state);
    }
}

// ---------------------------------------------------------------------------
// Accuracy.

double errorOf(double y, Wide exact)
{
    return static_cast<double>(std::abs(static_cast<long double>(y) - exact));
}

double errorOf(ZCplx y, Wide exact)
{
    return static_cast<double>(
        std::abs(Wide(static_cast<long double>(y.re), static_cast<long double>(y.im)) - exact));
}

template <typename Sample>
std::vector<Wide> widened(const std::vector<Sample> &x)
{
    std::vector<Wide> wide;
    for (Sample sample : x)
        wide.push_back(widened(Parts(sample)));
    return wide;
}

TYPED_TEST(Iir, DirectFormIsNearTheDifferenceEquation)
{
    using Tap = typename TypeParam::Tap;
    for (int order = 0; order <= 12; ++order) {
        const std::vector<Tap> taps = tapsFor<Tap>(0, order, 15);
        const auto x = IirSource(16).make<typename TypeParam::Sample>(500);
        const std::vector<Parts> parts = partsOf(taps);
        const auto exact = wideFilter({parts.begin(), parts.begin() + order + 1},
                                      {parts.begin() + order + 1, parts.end()}, widened(x));
        rvxIirState state = start<TypeParam>({0, order}, taps);
        const auto y = inOneBlock<TypeParam>(&state, x);
        double worst = 0.0;
        for (std::size_t i = 0; i < y.size(); ++i)
            worst = worse(worst, errorOf(y[i], exact[i]));
        EXPECT_LE(worst, 2e-17 * (order + 4)) << order;
        rvxIirFree(&state);
    }
}

TYPED_TEST(Iir, CascadeIsNearItsDifferenceEquations)
{
    using Tap = typename TypeParam::Tap;
    for (int quads = 1; quads <= 9; ++quads) {
        const std::vector<Tap> taps = tapsFor<Tap>(2, quads, 17);
        const auto x = IirSource(18).make<typename TypeParam::Sample>(500);
        std::vector<Wide> exact = widened(x);
        const std::vector<Parts> parts = partsOf(taps);
        for (auto quad = parts.begin(); quad != parts.end(); quad += 6)
            exact = wideFilter({quad, quad + 3}, {quad + 3, quad + 6}, exact);
        rvxIirState state = start<TypeParam>({2, quads}, taps);
        const auto y = inOneBlock<TypeParam>(&state, x);
        double worst = 0.0, largest = 0.0;
        for (std::size_t i = 0; i < y.size(); ++i) {
            worst = worse(worst, errorOf(y[i], exact[i]));
            largest = std::max(largest, static_cast<double>(std::abs(exact[i])));
        }
        EXPECT_LE(worst / largest, 1e-16 * (quads + 4)) << quads;
        rvxIirFree(&state);
    }
}

TEST(IirFilter, NotchStopsItsFrequencyAndPassesZero)
{
    // Zeros on the unit circle at a tenth of the sampling rate, poles close by.
    const double c = 0.80901699437494742; // cos(2 pi / 10)
    const double taps[] = {1.0, -2.0 * c, 1.0, 1.0, -2.0 * 0.95 * c, 0.95 * 0.95};
    rvxIirState direct = {}, cascade = {};
    rvxdIirInit(0, taps, 2, &direct);
    rvxdIirInitBq(0, taps, 1, &cascade);
    const double cosines[] = {1.0,  c,  0.30901699437494742,  -0.30901699437494742, -c,
                              -1.0, -c, -0.30901699437494742, 0.30901699437494742,  c};
    double yDirect = 0.0, yCascade = 0.0;
    for (int i = 0; i < 1000; ++i) {
        yDirect = rvxdIir(&direct, cosines[i % 10]);
        yCascade = rvxdIir(&cascade, cosines[i % 10]);
    }
    EXPECT_NEAR(yDirect, 0.0, 2e-15);
    EXPECT_NEAR(yCascade, 0.0, 2e-15);
    for (int i = 0; i < 1000; ++i) {
        yDirect = rvxdIir(&direct, 1.0);
        yCascade = rvxdIir(&cascade, 1.0);
    }
    const double atZero = (2.0 - 2.0 * c) / (1.0 - 1.9 * c + 0.9025);
    EXPECT_NEAR(yDirect, atZero, 5e-16);
    EXPECT_NEAR(yCascade, atZero, 5e-16);
    rvxIirFree(&direct);
    rvxIirFree(&cascade);
}

} // namespace
