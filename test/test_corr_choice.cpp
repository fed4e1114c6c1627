// Which path the correlations take: against a second writing of the operation counts,
// and as it shows from outside.

#include <climits>
#include <cmath>
#include <cstdint>
#include <limits>
#include <random>

#include "convolution/rvxcorr_blocks.h"
#include "support/corr_forms.h"

namespace {

template <typename Form>
class CrossChoice : public ::testing::Test {
};
TYPED_TEST_SUITE(CrossChoice, CrossForms, ConvFormNames);

template <typename Form>
class AutoChoice : public ::testing::Test {
};
TYPED_TEST_SUITE(AutoChoice, AutoForms, ConvFormNames);

// A length or a number of lags of any size up to 2^maxBits.
std::int64_t anySize(std::mt19937 &random, int maxBits)
{
    const int bits = 1 + static_cast<int>(random() % static_cast<unsigned>(maxBits));
    return 1 + static_cast<std::int64_t>(random() % (1u << bits));
}

// Whether a transform was taken: at lag -1 the first element of src1 meets nothing, and
// its NaN comes there through a transform alone.
template <typename Form>
bool crossSpreads(int len1, int lags)
{
    auto src1 = noiseOf<typename Form::A>(len1, 1);
    const auto src2 = noiseOf<typename Form::B>(9, 2);
    setParts(src1[0], std::nan(""), std::nan(""));
    const auto dst = crossOf<Form>(src1, src2, -1, lags - 2);
    return std::isnan(partsOf(dst)[0]);
}

// Positive samples and an infinity have infinite sums; a transform makes NaNs of it.
template <typename Form>
bool autoSpreads(int len, int lags)
{
    std::vector<typename Form::Sample> src(static_cast<std::size_t>(len));
    for (auto &sample : src)
        setParts(sample, 0.75, 0.5);
    setParts(src[static_cast<std::size_t>(len / 2)], std::numeric_limits<double>::infinity(), 0.5);
    const double first = partsOf(autoOf<Form>(src, lags, RVX_AUTOCORR_NORMAL))[0];
    EXPECT_FALSE(std::isfinite(first));
    return std::isnan(first);
}

} // namespace

TYPED_TEST(CrossChoice, EverySmallSizeIsTheReferences)
{
    int changes = 0;
    for (int lags = 1; lags <= 90; ++lags) {
        bool before = false;
        for (int len1 = 1; len1 <= 3000; ++len1) {
            const bool transforms = crossTransforms<TypeParam>(len1, lags);
            ASSERT_EQ(transforms, reference::crossCorrTransforms(TypeParam::form, len1, lags))
                << len1 << " samples, " << lags << " lags";
            changes += transforms != before;
            before = transforms;
        }
    }
    EXPECT_GT(changes, 200) << "borders that were crossed";
}

TYPED_TEST(CrossChoice, RandomSizesAreTheReferences)
{
    std::mt19937 random(3);
    int transforms = 0;
    for (int run = 0; run < 20000; ++run) {
        const std::int64_t len1 = anySize(random, 31), lags = anySize(random, 31);
        const bool chosen = crossTransforms<TypeParam>(len1, lags);
        ASSERT_EQ(chosen, reference::crossCorrTransforms(TypeParam::form, len1, lags))
            << len1 << " samples, " << lags << " lags";
        transforms += chosen;
    }
    EXPECT_GT(transforms, 4000);
    EXPECT_LT(transforms, 16000);
}

TYPED_TEST(CrossChoice, FewLagsAreSummedHoweverLongTheSequence)
{
    // What the counts come to at any length.
    const int fewest = TypeParam::form == reference::CorrForm::Real      ? 40
                       : TypeParam::form == reference::CorrForm::Complex ? 23
                                                                         : 32;
    for (std::int64_t len1 = 1; len1 <= INT_MAX; len1 += 1 + len1 / 7)
        EXPECT_FALSE(crossTransforms<TypeParam>(len1, fewest - 1)) << len1;
    EXPECT_TRUE(crossTransforms<TypeParam>(1 << 20, fewest));
}

TYPED_TEST(CrossChoice, HasAnAnswerForTheWidestRanges)
{
    const std::int64_t widest = std::int64_t{1} << 32;
    for (std::int64_t lags : {widest, widest - 1, widest / 2 + 1})
        for (std::int64_t len1 : {1, 2, 100, INT_MAX})
            EXPECT_EQ(crossTransforms<TypeParam>(len1, lags),
                      reference::crossCorrTransforms(TypeParam::form, len1, lags));
    const CorrBlocks blocks = ownCorrBlocks(INT_MAX, widest);
    EXPECT_EQ(blocks.order, 33);
    EXPECT_EQ(blocks.half, widest);
    EXPECT_EQ(blocks.count, 1);
}

TYPED_TEST(CrossChoice, SeenFromOutsideOnBothSidesOfBorders)
{
    rvxSetErrStatus(0);
    int crossed = 0;
    for (int lags : {15, 16, 17, 23, 31, 32, 33, 39, 40, 41, 63, 64, 65, 100, 128, 129, 500})
        for (int len1 = 1; len1 < 1400; ++len1) {
            const bool here = reference::crossCorrTransforms(TypeParam::form, len1, lags);
            if (here == reference::crossCorrTransforms(TypeParam::form, len1 + 1, lags))
                continue;
            EXPECT_EQ(crossSpreads<TypeParam>(len1, lags), here) << len1 << ", " << lags;
            EXPECT_EQ(crossSpreads<TypeParam>(len1 + 1, lags), !here) << len1 << ", " << lags;
            ++crossed;
        }
    EXPECT_GT(crossed, 20);
}

TYPED_TEST(CrossChoice, SeenFromOutsideAtRandomSizes)
{
    rvxSetErrStatus(0);
    std::mt19937 random(4);
    for (int run = 0; run < 1500; ++run) {
        const auto len1 = static_cast<int>(anySize(random, 12));
        const auto lags = static_cast<int>(anySize(random, 9));
        EXPECT_EQ(crossSpreads<TypeParam>(len1, lags),
                  reference::crossCorrTransforms(TypeParam::form, len1, lags))
            << len1 << " samples, " << lags << " lags";
    }
}

TYPED_TEST(CrossChoice, TheSecondLengthAndTheLagsPlaceHaveNoSay)
{
    rvxSetErrStatus(0);
    for (int len1 : {300, 301, 700})
        for (int lags : {22, 23, 31, 32, 39, 40, 60}) {
            const bool transforms = reference::crossCorrTransforms(TypeParam::form, len1, lags);
            for (int len2 : {1, 40, 5000})
                for (int loLag : {-len1 + 1, -lags + 1, 0}) {
                    // No lag has all elements of src1 but where src2 is the longer.
                    auto src1 = noiseOf<typename TypeParam::A>(len1, 5);
                    const auto src2 = noiseOf<typename TypeParam::B>(len2, 6);
                    const auto sums = crossSums<TypeParam>(src1, src2, loLag, loLag + lags - 1);
                    const auto values = crossOf<TypeParam>(src1, src2, loLag, loLag + lags - 1);
                    EXPECT_EQ(!sameBits(values, sums), transforms)
                        << len1 << ", " << len2 << ", " << lags << ", " << loLag;
                }
        }
}

TYPED_TEST(CrossChoice, TheFirstElementOfSrc2IsDroppedByComplexTransformsAlone)
{
    rvxSetErrStatus(0);
    const bool real = TypeParam::form == reference::CorrForm::Real;
    struct Case {
        int len1, lags;
    };
    for (const Case &c : {Case{30, 12}, Case{400, 14}, Case{2000, 60}, Case{700, 300}}) {
        const bool transforms = crossTransforms<TypeParam>(c.len1, c.lags);
        const auto src1 = noiseOf<typename TypeParam::A>(c.len1, 7);
        auto src2 = noiseOf<typename TypeParam::B>(500, 8);
        // From a lag at which src2[0] has a partner.
        const int loLag = -5, hiLag = loLag + c.lags - 1;
        const auto with = crossOf<TypeParam>(src1, src2, loLag, hiLag);
        src2[0] = {};
        const auto without = crossOf<TypeParam>(src1, src2, loLag, hiLag);
        setParts(src2[0], std::nan(""), std::nan(""));
        const auto odd = crossOf<TypeParam>(src1, src2, loLag, hiLag);
        const bool dropped = transforms && !real;
        EXPECT_EQ(static_cast<bool>(sameBits(with, without)), dropped) << c.len1;
        EXPECT_EQ(static_cast<bool>(sameBits(odd, without)), dropped) << c.len1;
    }
}

TYPED_TEST(AutoChoice, EverySmallSizeIsTheReferences)
{
    int changes = 0;
    for (int lags = 1; lags <= 90; ++lags) {
        bool before = false;
        for (int len = lags; len <= 1500; ++len) {
            const bool transforms = autoTransforms<TypeParam>(len, lags);
            ASSERT_EQ(transforms, reference::autoCorrTransforms(TypeParam::form, len, lags))
                << len << " samples, " << lags << " lags";
            changes += transforms != before;
            before = transforms;
        }
    }
    EXPECT_GT(changes, 200) << "borders that were crossed";
}

TYPED_TEST(AutoChoice, RandomSizesAreTheReferences)
{
    std::mt19937 random(5);
    int transforms = 0;
    for (int run = 0; run < 4000; ++run) {
        const std::int64_t lags = anySize(random, 13);
        const std::int64_t len = lags - 1 + anySize(random, 26);
        const bool chosen = autoTransforms<TypeParam>(len, lags);
        ASSERT_EQ(chosen, reference::autoCorrTransforms(TypeParam::form, len, lags))
            << len << " samples, " << lags << " lags";
        transforms += chosen;
    }
    EXPECT_GT(transforms, 800);
    EXPECT_LT(transforms, 3200);
}

TYPED_TEST(AutoChoice, FewLagsAreSummedHoweverLongTheSequence)
{
    const int fewest = TypeParam::form == reference::CorrForm::Real ? 25 : 15;
    for (std::int64_t len = fewest; len <= INT_MAX; len += 1 + len / 7)
        EXPECT_FALSE(autoTransforms<TypeParam>(len, fewest - 1)) << len;
    EXPECT_TRUE(autoTransforms<TypeParam>(1 << 20, fewest));
}

TYPED_TEST(AutoChoice, SeenFromOutsideOnBothSidesOfBorders)
{
    rvxSetErrStatus(0);
    int crossed = 0;
    for (int lags : {14, 15, 16, 17, 25, 26, 31, 32, 33, 34, 50, 63, 64, 65, 100, 128, 129, 300})
        for (int len = lags; len < 1400; ++len) {
            const bool here = reference::autoCorrTransforms(TypeParam::form, len, lags);
            if (here == reference::autoCorrTransforms(TypeParam::form, len + 1, lags))
                continue;
            EXPECT_EQ(autoSpreads<TypeParam>(len, lags), here) << len << ", " << lags;
            EXPECT_EQ(autoSpreads<TypeParam>(len + 1, lags), !here) << len << ", " << lags;
            ++crossed;
        }
    EXPECT_GT(crossed, 20);
}

TYPED_TEST(AutoChoice, SeenFromOutsideAtRandomSizes)
{
    rvxSetErrStatus(0);
    std::mt19937 random(6);
    for (int run = 0; run < 1500; ++run) {
        const auto lags = static_cast<int>(anySize(random, 9));
        const auto len = lags - 1 + static_cast<int>(anySize(random, 12));
        EXPECT_EQ(autoSpreads<TypeParam>(len, lags),
                  reference::autoCorrTransforms(TypeParam::form, len, lags))
            << len << " samples, " << lags << " lags";
    }
}
