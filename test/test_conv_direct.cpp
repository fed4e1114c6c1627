// The direct sums: their order of additions to the last bit, and what special values
// become in them.

#include <limits>

#include "reference/conv.h"
#include "support/blocks.h"
#include "support/conv_forms.h"

namespace {

template <typename Form>
class ConvDirect : public ::testing::Test {
};
TYPED_TEST_SUITE(ConvDirect, ConvForms, ConvFormNames);

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();

// Runs the core into guarded memory.
template <typename Form>
std::vector<typename Form::Y> directOf(const std::vector<typename Form::X> &x,
                                       const std::vector<typename Form::H> &h, int misalignment)
{
    Guarded<typename Form::X> xs(x, misalignment);
    Guarded<typename Form::H> hs(h, (misalignment + 1) % 4);
    Guarded<typename Form::Y> ys(static_cast<int>(x.size() + h.size() - 1), (misalignment + 2) % 4);
    Form::direct(xs.data(), xs.size(), hs.data(), hs.size(), ys.data());
    EXPECT_TRUE(ys.intact());
    return ys.values();
}

template <typename Element>
std::vector<Element> tempered(Temper temper, int n, unsigned seed)
{
    const std::vector<double> re = makeBlock(temper, n, seed);
    const std::vector<double> im = makeBlock(temper, n, seed + 1000);
    std::vector<Element> v(static_cast<std::size_t>(n));
    for (std::size_t i = 0; i < v.size(); ++i)
        setParts(v[i], re[i], im[i]);
    return v;
}

} // namespace

TYPED_TEST(ConvDirect, AddsInTheStatedOrderForAllShortLengths)
{
    using X = typename TypeParam::X;
    using H = typename TypeParam::H;
    for (int xLen = 1; xLen <= 72; ++xLen)
        for (int hLen = 1; hLen <= 72; ++hLen) {
            const auto seed = static_cast<unsigned>(100 * xLen + hLen);
            const auto x = noiseOf<X>(xLen, seed);
            const auto h = noiseOf<H>(hLen, seed + 50000);
            ASSERT_TRUE(sameBits(directOf<TypeParam>(x, h, (xLen + hLen) % 4),
                                 reference::convInStatedOrder(x, h)))
                << xLen << " by " << hLen;
        }
}

TYPED_TEST(ConvDirect, AddsInTheStatedOrderForRandomLengths)
{
    using X = typename TypeParam::X;
    using H = typename TypeParam::H;
    std::mt19937 random(7);
    for (unsigned run = 0; run < 400; ++run) {
        const int xLen = 1 + static_cast<int>(random() % 1400);
        const int hLen = 1 + static_cast<int>(random() % RVX_CONV_DIRECT_MAX);
        const auto x = noiseOf<X>(xLen, run);
        const auto h = noiseOf<H>(hLen, run + 1000);
        ASSERT_TRUE(sameBits(directOf<TypeParam>(x, h, static_cast<int>(run % 4)),
                             reference::convInStatedOrder(x, h)))
            << xLen << " by " << hLen;
    }
}

TYPED_TEST(ConvDirect, TreatsSpecialValuesAsTheSumsDo)
{
    using X = typename TypeParam::X;
    using H = typename TypeParam::H;
    unsigned seed = 1;
    for (Temper temper : allTempers)
        for (Temper taps : {temper, Temper::uniform, Temper::zeros, Temper::specials})
            for (int xLen : {1, 2, 5, 8, 31, 100, 300})
                for (int hLen : {1, 2, 3, 4, 7, 8, 15, 40}) {
                    const auto x = tempered<X>(temper, xLen, ++seed);
                    const auto h = tempered<H>(taps, hLen, seed + 7);
                    ASSERT_TRUE(
                        sameBits(directOf<TypeParam>(x, h, 1), reference::convInStatedOrder(x, h)))
                        << temper << ", taps " << taps << ", " << xLen << " by " << hLen;
                }
}

TYPED_TEST(ConvDirect, EqualLengthsAreNotExchanged)
{
    using X = typename TypeParam::X;
    using H = typename TypeParam::H;
    // Sizes that are direct, with data for which the exchanged sums differ.
    for (int n : {3, 5, 16, 33, 64}) {
        const auto x = noiseOf<X>(n, 11);
        const auto h = noiseOf<H>(n, 12);
        const auto expected = reference::convInStatedOrder(x, h);
        ASSERT_EQ(rvxChooseConv(TypeParam::form, n, n).core, RVX_CONV_DIRECT);
        EXPECT_TRUE(sameBits(convOf<TypeParam>(x, h), expected)) << n;
        if (n > 3) {
            EXPECT_FALSE(sameBits(reference::convInStatedOrder(h, x), expected)) << n;
        }
    }
}

TYPED_TEST(ConvDirect, TheLongerOperandComesFirst)
{
    using X = typename TypeParam::X;
    using H = typename TypeParam::H;
    for (int xLen : {1, 2, 3, 6, 20, 45})
        for (int hLen : {xLen + 1, xLen + 2, xLen + 25}) {
            const auto x = noiseOf<X>(xLen, 13);
            const auto h = noiseOf<H>(hLen, 14);
            EXPECT_TRUE(sameBits(convOf<TypeParam>(x, h), reference::convInStatedOrder(h, x)))
                << xLen << " by " << hLen;
        }
}

TYPED_TEST(ConvDirect, OneTapGivesPositiveZeroForNegative)
{
    typename TypeParam::X x[3];
    typename TypeParam::H h;
    setParts(x[0], -0.0, -0.0);
    setParts(x[1], 1.0, 0.0);
    setParts(x[2], -0.0, -0.0);
    setParts(h, 2.0, 0.0);
    typename TypeParam::Y y[3];
    EXPECT_EQ(TypeParam::conv(x, 3, &h, 1, y), 0);
    for (double part : partsOf(std::vector<typename TypeParam::Y>{y[0], y[2]}))
        EXPECT_EQ(bitsOf(part), bitsOf(0.0));
    EXPECT_EQ(partsOf(std::vector<typename TypeParam::Y>{y[1]})[0], 2.0);
}

TEST(ConvDirectMixed, RealFactorsMultiplyEachPartAlone)
{
    const ZCplx x[2] = {{infinity, 1.0}, {2.0, notANumber}};
    const double h[2] = {3.0, 0.0};
    ZCplx y[3];
    for (int exchanged = 0; exchanged < 2; ++exchanged) {
        if (exchanged == 0)
            rvxzdConv(x, 2, h, 2, y);
        else
            rvxdzConv(h, 2, x, 2, y);
        EXPECT_EQ(y[0].re, infinity);
        EXPECT_EQ(y[0].im, 3.0);
        EXPECT_TRUE(std::isnan(y[1].re)) << "infinity times the zero tap";
        EXPECT_TRUE(std::isnan(y[1].im));
        EXPECT_EQ(y[2].re, 0.0);
        EXPECT_TRUE(std::isnan(y[2].im));
    }
}
