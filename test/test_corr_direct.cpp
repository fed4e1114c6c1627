// Correlations as sums: the order of each lag's additions, what is read and written, and
// where a NaN goes.

#include <climits>
#include <cmath>
#include <cstdint>
#include <limits>

#include "support/corr_forms.h"
#include "support/guarded.h"
#include "support/walled.h"

namespace {

template <typename Form>
class CrossSums : public ::testing::Test {
};
TYPED_TEST_SUITE(CrossSums, CrossForms, ConvFormNames);

template <typename Form>
class AutoSums : public ::testing::Test {
};
TYPED_TEST_SUITE(AutoSums, AutoForms, ConvFormNames);

// The path itself, whatever the counts would choose; lags to both sides, into guarded
// memory.
template <typename Form>
std::vector<typename Form::Value> direct(const std::vector<typename Form::A> &src1,
                                         const std::vector<typename Form::B> &src2, int loLag,
                                         int hiLag)
{
    const int lags = hiLag - loLag + 1;
    Guarded<typename Form::Value> dst(lags, lags % 4);
    ownCrossDirect<typename Form::A, typename Form::B>(
        {src1.data(), static_cast<std::int64_t>(src1.size()), src2.data(),
         static_cast<std::int64_t>(src2.size()), dst.data(), loLag, lags});
    EXPECT_TRUE(dst.intact());
    return dst.values();
}

template <typename Form>
void expectSums(const std::vector<typename Form::A> &src1,
                const std::vector<typename Form::B> &src2, int loLag, int hiLag)
{
    EXPECT_TRUE(
        sameBits(direct<Form>(src1, src2, loLag, hiLag), crossSums<Form>(src1, src2, loLag, hiLag)))
        << src1.size() << " and " << src2.size() << ", lags " << loLag << " to " << hiLag;
}

} // namespace

TYPED_TEST(CrossSums, AllRangesOfShortSequences)
{
    for (int len1 = 1; len1 <= 7; ++len1)
        for (int len2 = 1; len2 <= 7; ++len2) {
            const auto src1 = noiseOf<typename TypeParam::A>(len1, 1);
            const auto src2 = noiseOf<typename TypeParam::B>(len2, 2);
            for (int loLag = -len1 - 2; loLag <= len2 + 2; ++loLag)
                for (int hiLag = loLag; hiLag <= len2 + 2; ++hiLag)
                    expectSums<TypeParam>(src1, src2, loLag, hiLag);
        }
}

TYPED_TEST(CrossSums, EveryWidthOfATileAtEveryOverlap)
{
    for (int len1 : {1, 2, 3, 5, 9, 31, 40})
        for (int len2 : {1, 2, 4, 7, 13, 33, 41}) {
            const auto src1 = noiseOf<typename TypeParam::A>(len1, 3);
            const auto src2 = noiseOf<typename TypeParam::B>(len2, 4);
            for (int lags = 1; lags <= 70; lags += 1 + lags / 18)
                for (int loLag : {-len1 - lags, -len1 - lags + 1, -len1 - 3, -len1, 1 - len1, -lags,
                                  1 - lags, -lags / 2, -1, 0, 1, len2 / 2, len2 - 1, len2})
                    expectSums<TypeParam>(src1, src2, loLag, loLag + lags - 1);
        }
}

TYPED_TEST(CrossSums, LongSequences)
{
    const auto src1 = noiseOf<typename TypeParam::A>(5003, 5);
    const auto src2 = noiseOf<typename TypeParam::B>(4801, 6);
    expectSums<TypeParam>(src1, src2, -9, 24);
    expectSums<TypeParam>(src1, src2, -5010, -4950);
    expectSums<TypeParam>(src1, src2, 4750, 4810);
    expectSums<TypeParam>(src1, src2, -200, 200);
}

TYPED_TEST(CrossSums, TheOrderShowsInTheLastBits)
{
    // Sums of parts of very different size, which come out otherwise in another order.
    auto src1 = noiseOf<typename TypeParam::A>(300, 7);
    const auto src2 = noiseOf<typename TypeParam::B>(310, 8);
    for (std::size_t i = 0; i < src1.size(); ++i) {
        const double size = std::ldexp(1.0, static_cast<int>(i * 37 % 60));
        const auto z = reference::widen(src1[i]);
        setParts(src1[i], size * static_cast<double>(z.real()),
                 size * static_cast<double>(z.imag()));
    }
    expectSums<TypeParam>(src1, src2, -40, 40);
}

TYPED_TEST(CrossSums, NoOverlapIsPositiveZero)
{
    const auto src1 = noiseOf<typename TypeParam::A>(5, 9);
    const auto src2 = noiseOf<typename TypeParam::B>(6, 10);
    for (int lag : {INT_MIN, INT_MIN + 1, -1000, -5, 6, 7, 1000, INT_MAX - 1, INT_MAX})
        for (double part : partsOf(crossOf<TypeParam>(src1, src2, lag, lag)))
            EXPECT_EQ(bitsOf(part), bitsOf(0.0)) << lag;
    for (int lag : {INT_MIN, INT_MAX - 90, -95, 6})
        for (double part : partsOf(crossOf<TypeParam>(src1, src2, lag, lag + 90)))
            EXPECT_EQ(bitsOf(part), bitsOf(0.0)) << lag;
}

TYPED_TEST(CrossSums, ReadNothingOutsideTheSequences)
{
    for (int len1 : {1, 2, 3, 17, 40})
        for (int len2 : {1, 2, 3, 18, 37}) {
            const auto src1 = noiseOf<typename TypeParam::A>(len1, 11);
            const auto src2 = noiseOf<typename TypeParam::B>(len2, 12);
            for (Wall wall : {Wall::before, Wall::behind}) {
                Walled<typename TypeParam::A> a(src1, wall);
                Walled<typename TypeParam::B> b(src2, wall);
                for (int lags : {1, 3, 8, 15, 40, 90})
                    for (int loLag = -len1 - 8; loLag <= len2 + 3; loLag += 3) {
                        std::vector<typename TypeParam::Value> dst(static_cast<std::size_t>(lags));
                        ownCrossDirect<typename TypeParam::A, typename TypeParam::B>(
                            {a.data(), len1, b.data(), len2, dst.data(), loLag, lags});
                        EXPECT_TRUE(sameBits(
                            dst, crossSums<TypeParam>(src1, src2, loLag, loLag + lags - 1)));
                    }
            }
        }
}

TYPED_TEST(CrossSums, NaNsAndInfinitiesStayInTheirLagsAndParts)
{
    const double infinity = std::numeric_limits<double>::infinity();
    for (double odd : {std::nan(""), infinity})
        for (int part = 0; part < 2; ++part)
            for (int at : {0, 7, 30}) {
                auto src1 = noiseOf<typename TypeParam::A>(31, 13);
                auto src2 = noiseOf<typename TypeParam::B>(33, 14);
                const auto z1 = reference::widen(src1[static_cast<std::size_t>(at)]);
                setParts(src1[static_cast<std::size_t>(at)],
                         part == 0 ? odd : static_cast<double>(z1.real()),
                         part == 1 ? odd : static_cast<double>(z1.imag()));
                expectSums<TypeParam>(src1, src2, -40, 40);
                src1 = noiseOf<typename TypeParam::A>(31, 13);
                const auto z2 = reference::widen(src2[static_cast<std::size_t>(at)]);
                setParts(src2[static_cast<std::size_t>(at)],
                         part == 0 ? odd : static_cast<double>(z2.real()),
                         part == 1 ? odd : static_cast<double>(z2.imag()));
                expectSums<TypeParam>(src1, src2, -40, 40);
            }
}

TYPED_TEST(CrossSums, AlignmentDoesNotShow)
{
    const auto src1 = noiseOf<typename TypeParam::A>(77, 15);
    const auto src2 = noiseOf<typename TypeParam::B>(81, 16);
    const auto expected = crossSums<TypeParam>(src1, src2, -20, 25);
    for (int first = 0; first < 4; ++first)
        for (int second = 0; second < 4; ++second)
            for (int out = 0; out < 4; ++out) {
                Guarded<typename TypeParam::A> a(src1, first);
                Guarded<typename TypeParam::B> b(src2, second);
                Guarded<typename TypeParam::Value> dst(46, out);
                ownCrossDirect<typename TypeParam::A, typename TypeParam::B>(
                    {a.data(), 77, b.data(), 81, dst.data(), -20, 46});
                EXPECT_TRUE(sameBits(dst.values(), expected));
                EXPECT_TRUE(dst.intact());
            }
}

TYPED_TEST(CrossSums, SmallCallsOfTheFunctionAreTheseSums)
{
    const auto src1 = noiseOf<typename TypeParam::A>(90, 17);
    const auto src2 = noiseOf<typename TypeParam::B>(70, 18);
    for (int lags : {1, 2, 7, 14})
        for (int loLag : {-95, -7, -1, 0, 60, 71}) {
            ASSERT_FALSE(crossTransforms<TypeParam>(90, lags));
            EXPECT_TRUE(sameBits(crossOf<TypeParam>(src1, src2, loLag, loLag + lags - 1),
                                 crossSums<TypeParam>(src1, src2, loLag, loLag + lags - 1)));
        }
}

TYPED_TEST(CrossSums, LagZeroIsTheDotProduct)
{
    const auto src1 = noiseOf<typename TypeParam::A>(64, 19);
    const auto src2 = noiseOf<typename TypeParam::B>(64, 20);
    const auto dot = reference::corrAt(src1, src2, 0);
    const auto value = reference::widen(crossOf<TypeParam>(src1, src2, 0, 0)[0]);
    EXPECT_NEAR(static_cast<double>(std::abs(value - dot)), 0.0, 1e-15);
}

TYPED_TEST(AutoSums, AllLagsOfShortSequencesInEachNormalisation)
{
    for (int len = 1; len <= 70; len += 1 + len / 20) {
        const auto src = noiseOf<typename TypeParam::Sample>(len, 21);
        Walled<typename TypeParam::Sample> walled(src, len % 2 == 0 ? Wall::before : Wall::behind);
        for (int lags = 1; lags <= len; ++lags) {
            if (autoTransforms<TypeParam>(len, lags))
                continue;
            for (int type = RVX_AUTOCORR_NORMAL; type <= RVX_AUTOCORR_UNBIASED; ++type) {
                Guarded<typename TypeParam::Sample> dst(lags, lags % 4);
                TypeParam::corr(walled.data(), len, dst.data(), lags, type);
                EXPECT_TRUE(
                    sameBits(dst.values(), reference::autoCorrInStatedOrder(src, lags, type)))
                    << len << " samples, " << lags << " lags, type " << type;
                EXPECT_TRUE(dst.intact());
            }
        }
    }
}

TYPED_TEST(AutoSums, NormalisationsOfTheRealFormDivideAndOthersMultiply)
{
    // Lengths at which the two differ in many lags.
    for (int len : {49, 98, 103, 1000}) {
        const auto src = noiseOf<typename TypeParam::Sample>(len, 22);
        const int lags = 13;
        ASSERT_FALSE(autoTransforms<TypeParam>(len, lags));
        const auto plain = partsOf(autoOf<TypeParam>(src, lags, RVX_AUTOCORR_NORMAL));
        const auto biased = partsOf(autoOf<TypeParam>(src, lags, RVX_AUTOCORR_BIASED));
        const auto unbiased = partsOf(autoOf<TypeParam>(src, lags, RVX_AUTOCORR_UNBIASED));
        const std::size_t parts = plain.size() / static_cast<std::size_t>(lags);
        const bool divides = parts == 1;
        int differing = 0;
        for (std::size_t i = 0; i < plain.size(); ++i) {
            const double left = static_cast<double>(static_cast<std::size_t>(len) - i / parts);
            EXPECT_EQ(biased[i], plain[i] * (1.0 / len));
            const double quotient = plain[i] / left, product = plain[i] * (1.0 / left);
            EXPECT_EQ(unbiased[i], divides ? quotient : product);
            differing += quotient != product;
        }
        EXPECT_GT(differing, 0) << len;
    }
}

TYPED_TEST(AutoSums, LagZeroIsReal)
{
    const auto src = noiseOf<typename TypeParam::Sample>(100, 23);
    const auto parts = partsOf(autoOf<TypeParam>(src, 1, RVX_AUTOCORR_NORMAL));
    EXPECT_GT(parts[0], 0.0);
    if (parts.size() > 1) {
        EXPECT_EQ(bitsOf(parts[1]), bitsOf(0.0));
    }
}
