// The choice of a path: its constants, both sides of each of its borders, and what is
// seen of it from outside.

#include <algorithm>
#include <climits>
#include <cstdint>

#include "convolution/rvxconvd_costs.h"
#include "reference/conv_costs.h"
#include "support/conv_forms.h"

namespace {

const ConvForm forms[] = {RVX_CONV_D, RVX_CONV_Z, RVX_CONV_ZD, RVX_CONV_DZ};

bool operator==(ConvChoice a, ConvChoice b)
{
    return a.core == b.core && a.mode == b.mode;
}

struct Border {
    ConvForm form;
    int shortLen;
    int longLen; // the last on the near side
    ConvChoice here;
    ConvChoice beyond;
};

// Worked out apart from the library.
const Border borders[] = {
    {RVX_CONV_D, 16, 1984, {RVX_CONV_DIRECT, 1}, {RVX_CONV_BLOCKS, 3}},
    {RVX_CONV_D, 31, 611, {RVX_CONV_DIRECT, 1}, {RVX_CONV_BLOCKS, 2}},
    {RVX_CONV_D, 31, 992, {RVX_CONV_BLOCKS, 2}, {RVX_CONV_BLOCKS, 3}},
    {RVX_CONV_D, 64, 178, {RVX_CONV_DIRECT, 1}, {RVX_CONV_WHOLE, 1}},
    {RVX_CONV_D, 64, 323, {RVX_CONV_BLOCKS, 1}, {RVX_CONV_WHOLE, 1}},
    {RVX_CONV_D, 64, 1733, {RVX_CONV_BLOCKS, 2}, {RVX_CONV_BLOCKS, 1}},
    {RVX_CONV_D, 100, 412, {RVX_CONV_WHOLE, 1}, {RVX_CONV_BLOCKS, 1}},
    {RVX_CONV_D, 100, 529, {RVX_CONV_BLOCKS, 1}, {RVX_CONV_BLOCKS, 2}},
    {RVX_CONV_D, 100, 1628, {RVX_CONV_BLOCKS, 1}, {RVX_CONV_BLOCKS, 2}},
    {RVX_CONV_D, 109, 1224, {RVX_CONV_BLOCKS, 1}, {RVX_CONV_BLOCKS, 2}},
    {RVX_CONV_D, 109, 1520, {RVX_CONV_BLOCKS, 1}, {RVX_CONV_BLOCKS, 2}},
    {RVX_CONV_D, 109, 3932, {RVX_CONV_BLOCKS, 2}, {RVX_CONV_BLOCKS, 3}},
    {RVX_CONV_D, 257, 767, {RVX_CONV_WHOLE, 1}, {RVX_CONV_BLOCKS, 1}},
    {RVX_CONV_D, 257, 8224, {RVX_CONV_BLOCKS, 1}, {RVX_CONV_BLOCKS, 2}},
    {RVX_CONV_D, 1000, 1048, {RVX_CONV_WHOLE, 1}, {RVX_CONV_BLOCKS, 1}},
    {RVX_CONV_D, 1000, 3096, {RVX_CONV_WHOLE, 1}, {RVX_CONV_BLOCKS, 1}},
    {RVX_CONV_D, 1000, 32000, {RVX_CONV_BLOCKS, 2}, {RVX_CONV_BLOCKS, 3}},
    {RVX_CONV_D, 5000, 11384, {RVX_CONV_WHOLE, 1}, {RVX_CONV_BLOCKS, 1}},
    {RVX_CONV_D, 5000, 17771, {RVX_CONV_BLOCKS, 1}, {RVX_CONV_WHOLE, 1}},
    {RVX_CONV_D, 5000, 160000, {RVX_CONV_BLOCKS, 2}, {RVX_CONV_BLOCKS, 3}},
    {RVX_CONV_D, 20000, 45536, {RVX_CONV_WHOLE, 1}, {RVX_CONV_BLOCKS, 1}},
    {RVX_CONV_D, 20000, 640000, {RVX_CONV_BLOCKS, 1}, {RVX_CONV_BLOCKS, 3}},
    {RVX_CONV_D, 100000, 162144, {RVX_CONV_WHOLE, 1}, {RVX_CONV_BLOCKS, 1}},
    {RVX_CONV_D, 100000, 424288, {RVX_CONV_WHOLE, 1}, {RVX_CONV_BLOCKS, 1}},
    {RVX_CONV_D, 100000, 3200000, {RVX_CONV_BLOCKS, 2}, {RVX_CONV_BLOCKS, 3}},
    {RVX_CONV_Z, 16, 370, {RVX_CONV_DIRECT, 1}, {RVX_CONV_BLOCKS, 1}},
    {RVX_CONV_Z, 16, 426, {RVX_CONV_BLOCKS, 1}, {RVX_CONV_BLOCKS, 2}},
    {RVX_CONV_Z, 16, 512, {RVX_CONV_BLOCKS, 1}, {RVX_CONV_BLOCKS, 2}},
    {RVX_CONV_Z, 31, 264, {RVX_CONV_BLOCKS, 2}, {RVX_CONV_BLOCKS, 1}},
    {RVX_CONV_Z, 31, 276, {RVX_CONV_BLOCKS, 1}, {RVX_CONV_BLOCKS, 2}},
    {RVX_CONV_Z, 31, 378, {RVX_CONV_BLOCKS, 1}, {RVX_CONV_BLOCKS, 2}},
    {RVX_CONV_Z, 64, 146, {RVX_CONV_DIRECT, 1}, {RVX_CONV_WHOLE, 1}},
    {RVX_CONV_Z, 64, 192, {RVX_CONV_WHOLE, 1}, {RVX_CONV_BLOCKS, 1}},
    {RVX_CONV_Z, 64, 2048, {RVX_CONV_BLOCKS, 1}, {RVX_CONV_BLOCKS, 2}},
    {RVX_CONV_Z, 100, 156, {RVX_CONV_WHOLE, 1}, {RVX_CONV_BLOCKS, 1}},
    {RVX_CONV_Z, 100, 3200, {RVX_CONV_BLOCKS, 1}, {RVX_CONV_BLOCKS, 2}},
    {RVX_CONV_Z, 109, 147, {RVX_CONV_WHOLE, 1}, {RVX_CONV_BLOCKS, 1}},
    {RVX_CONV_Z, 109, 3488, {RVX_CONV_BLOCKS, 1}, {RVX_CONV_BLOCKS, 2}},
    {RVX_CONV_Z, 257, 1280, {RVX_CONV_BLOCKS, 1}, {RVX_CONV_WHOLE, 1}},
    {RVX_CONV_Z, 257, 1791, {RVX_CONV_WHOLE, 1}, {RVX_CONV_BLOCKS, 1}},
    {RVX_CONV_Z, 257, 8224, {RVX_CONV_BLOCKS, 1}, {RVX_CONV_BLOCKS, 2}},
    {RVX_CONV_Z, 1000, 1048, {RVX_CONV_WHOLE, 1}, {RVX_CONV_BLOCKS, 1}},
    {RVX_CONV_Z, 1000, 3096, {RVX_CONV_WHOLE, 1}, {RVX_CONV_BLOCKS, 1}},
    {RVX_CONV_Z, 1000, 4246, {RVX_CONV_BLOCKS, 1}, {RVX_CONV_BLOCKS, 2}},
    {RVX_CONV_Z, 5000, 11384, {RVX_CONV_WHOLE, 1}, {RVX_CONV_BLOCKS, 1}},
    {RVX_CONV_Z, 5000, 160000, {RVX_CONV_BLOCKS, 1}, {RVX_CONV_BLOCKS, 2}},
    {RVX_CONV_Z, 20000, 45536, {RVX_CONV_WHOLE, 1}, {RVX_CONV_BLOCKS, 1}},
    {RVX_CONV_Z, 20000, 71075, {RVX_CONV_BLOCKS, 1}, {RVX_CONV_WHOLE, 1}},
    {RVX_CONV_Z, 20000, 111072, {RVX_CONV_WHOLE, 1}, {RVX_CONV_BLOCKS, 1}},
    {RVX_CONV_Z, 100000, 162144, {RVX_CONV_WHOLE, 1}, {RVX_CONV_BLOCKS, 1}},
    {RVX_CONV_Z, 100000, 424288, {RVX_CONV_WHOLE, 1}, {RVX_CONV_BLOCKS, 1}},
    {RVX_CONV_ZD, 16, 1033, {RVX_CONV_DIRECT, 1}, {RVX_CONV_BLOCKS, 2}},
    {RVX_CONV_ZD, 31, 297, {RVX_CONV_DIRECT, 1}, {RVX_CONV_BLOCKS, 2}},
    {RVX_CONV_ZD, 64, 142, {RVX_CONV_DIRECT, 1}, {RVX_CONV_WHOLE, 1}},
    {RVX_CONV_ZD, 64, 192, {RVX_CONV_WHOLE, 1}, {RVX_CONV_BLOCKS, 1}},
    {RVX_CONV_ZD, 64, 2048, {RVX_CONV_BLOCKS, 1}, {RVX_CONV_BLOCKS, 2}},
    {RVX_CONV_ZD, 100, 156, {RVX_CONV_WHOLE, 1}, {RVX_CONV_BLOCKS, 1}},
    {RVX_CONV_ZD, 100, 372, {RVX_CONV_BLOCKS, 1}, {RVX_CONV_WHOLE, 1}},
    {RVX_CONV_ZD, 100, 3200, {RVX_CONV_BLOCKS, 1}, {RVX_CONV_BLOCKS, 2}},
    {RVX_CONV_ZD, 109, 336, {RVX_CONV_BLOCKS, 1}, {RVX_CONV_WHOLE, 1}},
    {RVX_CONV_ZD, 109, 403, {RVX_CONV_WHOLE, 1}, {RVX_CONV_BLOCKS, 1}},
    {RVX_CONV_ZD, 109, 3488, {RVX_CONV_BLOCKS, 1}, {RVX_CONV_BLOCKS, 2}},
    {RVX_CONV_ZD, 257, 767, {RVX_CONV_WHOLE, 1}, {RVX_CONV_BLOCKS, 1}},
    {RVX_CONV_ZD, 257, 1280, {RVX_CONV_BLOCKS, 1}, {RVX_CONV_WHOLE, 1}},
    {RVX_CONV_ZD, 257, 8224, {RVX_CONV_BLOCKS, 1}, {RVX_CONV_BLOCKS, 2}},
    {RVX_CONV_ZD, 1000, 1048, {RVX_CONV_WHOLE, 1}, {RVX_CONV_BLOCKS, 1}},
    {RVX_CONV_ZD, 1000, 4246, {RVX_CONV_BLOCKS, 1}, {RVX_CONV_BLOCKS, 2}},
    {RVX_CONV_ZD, 1000, 5195, {RVX_CONV_BLOCKS, 2}, {RVX_CONV_BLOCKS, 1}},
    {RVX_CONV_ZD, 5000, 11384, {RVX_CONV_WHOLE, 1}, {RVX_CONV_BLOCKS, 1}},
    {RVX_CONV_ZD, 5000, 17771, {RVX_CONV_BLOCKS, 1}, {RVX_CONV_WHOLE, 1}},
    {RVX_CONV_ZD, 5000, 27768, {RVX_CONV_WHOLE, 1}, {RVX_CONV_BLOCKS, 1}},
    {RVX_CONV_ZD, 20000, 45536, {RVX_CONV_WHOLE, 1}, {RVX_CONV_BLOCKS, 1}},
    {RVX_CONV_ZD, 20000, 71075, {RVX_CONV_BLOCKS, 1}, {RVX_CONV_WHOLE, 1}},
    {RVX_CONV_ZD, 20000, 111072, {RVX_CONV_WHOLE, 1}, {RVX_CONV_BLOCKS, 1}},
    {RVX_CONV_ZD, 100000, 162144, {RVX_CONV_WHOLE, 1}, {RVX_CONV_BLOCKS, 1}},
    {RVX_CONV_ZD, 100000, 424288, {RVX_CONV_WHOLE, 1}, {RVX_CONV_BLOCKS, 1}},
    {RVX_CONV_ZD, 100000, 948576, {RVX_CONV_WHOLE, 1}, {RVX_CONV_BLOCKS, 1}},
    {RVX_CONV_DZ, 16, 526, {RVX_CONV_DIRECT, 1}, {RVX_CONV_BLOCKS, 2}},
    {RVX_CONV_DZ, 16, 550, {RVX_CONV_BLOCKS, 2}, {RVX_CONV_BLOCKS, 3}},
    {RVX_CONV_DZ, 31, 308, {RVX_CONV_DIRECT, 1}, {RVX_CONV_BLOCKS, 2}},
    {RVX_CONV_DZ, 31, 992, {RVX_CONV_BLOCKS, 2}, {RVX_CONV_BLOCKS, 3}},
    {RVX_CONV_DZ, 64, 192, {RVX_CONV_WHOLE, 1}, {RVX_CONV_BLOCKS, 1}},
    {RVX_CONV_DZ, 64, 3529, {RVX_CONV_BLOCKS, 2}, {RVX_CONV_BLOCKS, 3}},
    {RVX_CONV_DZ, 64, 3781, {RVX_CONV_BLOCKS, 3}, {RVX_CONV_BLOCKS, 2}},
    {RVX_CONV_DZ, 100, 372, {RVX_CONV_BLOCKS, 1}, {RVX_CONV_WHOLE, 1}},
    {RVX_CONV_DZ, 100, 3205, {RVX_CONV_BLOCKS, 2}, {RVX_CONV_BLOCKS, 3}},
    {RVX_CONV_DZ, 100, 3601, {RVX_CONV_BLOCKS, 3}, {RVX_CONV_BLOCKS, 2}},
    {RVX_CONV_DZ, 109, 147, {RVX_CONV_WHOLE, 1}, {RVX_CONV_BLOCKS, 1}},
    {RVX_CONV_DZ, 109, 336, {RVX_CONV_BLOCKS, 1}, {RVX_CONV_WHOLE, 1}},
    {RVX_CONV_DZ, 109, 3556, {RVX_CONV_BLOCKS, 3}, {RVX_CONV_BLOCKS, 2}},
    {RVX_CONV_DZ, 257, 767, {RVX_CONV_WHOLE, 1}, {RVX_CONV_BLOCKS, 1}},
    {RVX_CONV_DZ, 257, 8224, {RVX_CONV_BLOCKS, 1}, {RVX_CONV_BLOCKS, 2}},
    {RVX_CONV_DZ, 1000, 1048, {RVX_CONV_WHOLE, 1}, {RVX_CONV_BLOCKS, 1}},
    {RVX_CONV_DZ, 1000, 5195, {RVX_CONV_BLOCKS, 2}, {RVX_CONV_BLOCKS, 1}},
    {RVX_CONV_DZ, 1000, 7393, {RVX_CONV_BLOCKS, 1}, {RVX_CONV_BLOCKS, 2}},
    {RVX_CONV_DZ, 5000, 11384, {RVX_CONV_WHOLE, 1}, {RVX_CONV_BLOCKS, 1}},
    {RVX_CONV_DZ, 5000, 160000, {RVX_CONV_BLOCKS, 1}, {RVX_CONV_BLOCKS, 3}},
    {RVX_CONV_DZ, 20000, 71075, {RVX_CONV_BLOCKS, 1}, {RVX_CONV_WHOLE, 1}},
    {RVX_CONV_DZ, 20000, 111072, {RVX_CONV_WHOLE, 1}, {RVX_CONV_BLOCKS, 1}},
    {RVX_CONV_DZ, 20000, 640000, {RVX_CONV_BLOCKS, 2}, {RVX_CONV_BLOCKS, 3}},
    {RVX_CONV_DZ, 100000, 162144, {RVX_CONV_WHOLE, 1}, {RVX_CONV_BLOCKS, 1}},
    {RVX_CONV_DZ, 100000, 424288, {RVX_CONV_WHOLE, 1}, {RVX_CONV_BLOCKS, 1}},
    {RVX_CONV_DZ, 100000, 3200000, {RVX_CONV_BLOCKS, 2}, {RVX_CONV_BLOCKS, 3}},
};

} // namespace

TEST(ConvTables, HoldWhatWasPutIn)
{
    struct Expected {
        int lower, upper, sum, weighted;
    };
    const Expected expected[] = {{8, 103, 269435, 1845722},
                                 {5, 96, 52730, 715550},
                                 {5, 107, 192798, 1264779},
                                 {7, 109, 75928, 1000773}};
    for (ConvForm form : forms) {
        const ConvThresholds &t = rvxConvThresholds(form);
        int sum = 0, weighted = 0;
        for (int s = t.lower; s < t.upper; ++s) {
            sum += t.longest[s - t.lower];
            weighted += (s - t.lower + 1) * t.longest[s - t.lower];
        }
        EXPECT_EQ(t.lower, expected[form].lower);
        EXPECT_EQ(t.upper, expected[form].upper);
        EXPECT_EQ(sum, expected[form].sum);
        EXPECT_EQ(weighted, expected[form].weighted);
    }
    long double sums[4] = {};
    for (int order = RVX_CONV_LOWEST_ORDER; order <= RVX_CONV_HIGHEST_ORDER; ++order) {
        const ConvCosts &c = rvxConvCosts(order);
        sums[0] += c.Td;
        sums[1] += c.Ud;
        sums[2] += c.Tz;
        sums[3] += c.Uz;
    }
    const long double expectedSums[] = {597704.265286982016L, 849232.837113209201L,
                                        454222.991148942177L, 579666.30246269631L};
    for (int column = 0; column < 4; ++column)
        EXPECT_NEAR(static_cast<double>((sums[column] - expectedSums[column]) * 1e9L), 0.0, 0.1);
    EXPECT_EQ(rvxConvCosts(4).Td, 5.398316e-06);
    EXPECT_EQ(rvxConvCosts(32).Uz, 327660.9);
}

TEST(ConvChoice, ThresholdsDivideOnBothSides)
{
    for (ConvForm form : forms) {
        const ConvThresholds &t = rvxConvThresholds(form);
        for (int s = t.lower; s < t.upper; ++s) {
            const int limit = t.longest[s - t.lower];
            EXPECT_EQ(rvxChooseConv(form, limit - 1, s).core, RVX_CONV_DIRECT) << s;
            EXPECT_NE(rvxChooseConv(form, limit, s).core, RVX_CONV_DIRECT) << s;
        }
        for (int s = 1; s < t.lower; ++s)
            for (int longLen : {s, 1000000, INT_MAX})
                EXPECT_EQ(rvxChooseConv(form, longLen, s).core, RVX_CONV_DIRECT) << s;
        for (int s = t.upper; s < 300; ++s)
            for (int longLen : {s, s + 1, 1000, INT_MAX})
                EXPECT_NE(rvxChooseConv(form, longLen, s).core, RVX_CONV_DIRECT) << s;
    }
}

TEST(ConvChoice, CostsDivideOnBothSides)
{
    for (const Border &b : borders) {
        EXPECT_TRUE(rvxChooseConv(b.form, b.longLen, b.shortLen) == b.here)
            << b.form << ": " << b.longLen << " by " << b.shortLen;
        EXPECT_TRUE(rvxChooseConv(b.form, b.longLen + 1, b.shortLen) == b.beyond)
            << b.form << ": " << b.longLen + 1 << " by " << b.shortLen;
    }
}

TEST(ConvChoice, HasAnAnswerForTheLongestOperands)
{
    // Past the tables' end nothing is read; the sanitizers look on.
    for (ConvForm form : forms)
        for (int s : {1 << 26, (1 << 26) + 1, 1 << 29, 1 << 30, INT_MAX})
            for (int longLen : {s, INT_MAX})
                EXPECT_NE(rvxChooseConv(form, longLen, s).core, RVX_CONV_DIRECT);
    EXPECT_EQ(rvxConvWholeOrder(INT_MAX, INT_MAX), 32);
    EXPECT_EQ(rvxConvWholeOrder(INT_MAX, 1), 31);
}

TEST(ConvChoice, OneTransformHoldsTheWholeResult)
{
    EXPECT_EQ(rvxConvWholeOrder(1, 1), 0);
    EXPECT_EQ(rvxConvWholeOrder(9, 8), 4); // exactly 16
    EXPECT_EQ(rvxConvWholeOrder(10, 8), 5);
    EXPECT_EQ(rvxConvWholeOrder(1000, 25), 10);
    EXPECT_EQ(rvxConvWholeOrder(1000, 26), 11);
}

TEST(ConvChoice, BlocksDoubleTwiceAtMostAndOnlyWhileTheResultIsLonger)
{
    struct Plan {
        int longLen, shortLen, mode, order;
    };
    const Plan plans[] = {
        {1000, 8, 1, 5},
        {1000, 8, 2, 6},
        {1000, 8, 3, 6}, // above 8 is 16
        {1000, 15, 1, 5},
        {1000, 15, 2, 6},
        {1000, 15, 3, 6},
        {1000, 16, 1, 6},
        {1000, 16, 2, 7},
        {1000, 16, 3, 7}, // above 16 is 32
        {9, 8, 1, 4},
        {9, 8, 3, 4}, // 16 hold all
        {10, 8, 1, 5},
        {10, 8, 3, 5}, // 17 values: one doubling
        {25, 8, 2, 5},
        {26, 8, 2, 6}, // 32 and 33 values
        {1000000, 100000, 2, 19},
    };
    for (const Plan &p : plans)
        EXPECT_EQ(rvxConvBlockOrder(p.longLen, p.shortLen, p.mode), p.order)
            << p.longLen << " by " << p.shortLen << ", mode " << p.mode;
}

namespace {

std::string pathOf(ConvChoice choice)
{
    return choice.core == RVX_CONV_DIRECT  ? "direct"
           : choice.core == RVX_CONV_WHOLE ? "whole"
                                           : "block " + std::to_string(choice.mode);
}

} // namespace

TEST(ConvChoice, AgreesWithAnotherWritingOfTheCosts)
{
    const reference::ConvForm theirs[] = {reference::ConvForm::Real, reference::ConvForm::Complex,
                                          reference::ConvForm::ComplexReal,
                                          reference::ConvForm::RealComplex};
    std::mt19937 random(6);
    // Lengths of every size alike.
    const auto length = [&random](int orders) {
        const int order = static_cast<int>(random() % static_cast<unsigned>(orders));
        return (1 << order) + static_cast<int>(random() % (1u << order));
    };
    for (int run = 0; run < 50000; ++run) {
        const int a = length(run % 2 == 0 ? 12 : 27), b = length(run % 3 == 0 ? 9 : 22);
        const int longLen = std::max(a, b), shortLen = std::min(a, b);
        for (ConvForm form : forms) {
            const ConvChoice choice = rvxChooseConv(form, longLen, shortLen);
            const std::string path = pathOf(choice);
            ASSERT_EQ(path, reference::convPath(theirs[form], longLen, shortLen))
                << form << ": " << longLen << " by " << shortLen;
            if (choice.core == RVX_CONV_BLOCKS) {
                ASSERT_EQ(1L << rvxConvBlockOrder(longLen, shortLen, choice.mode),
                          reference::convBlockLen(path, longLen, shortLen));
            }
        }
    }
}

// ---- from outside ---------------------------------------------------------

namespace {

template <typename Form>
class ConvSeen : public ::testing::Test {
};
TYPED_TEST_SUITE(ConvSeen, ConvForms, ConvFormNames);

// How far a NaN in the first element goes: over the taps' length in a direct sum, over
// the first block's outputs, or over all.
template <typename Form>
std::int64_t spreadOfNaN(int longLen, int shortLen)
{
    auto x = noiseOf<typename Form::X>(longLen, 21);
    const auto h = noiseOf<typename Form::H>(shortLen, 22);
    setParts(x[0], std::nan(""), std::nan(""));
    const std::vector<double> y = partsOf(convOf<Form>(x, h));
    const std::size_t parts = y.size() / (x.size() + h.size() - 1);
    std::size_t i = 0;
    while (i < y.size() && std::isnan(y[i]))
        ++i;
    for (std::size_t k = i; k < y.size(); ++k)
        EXPECT_FALSE(std::isnan(y[k])) << k;
    EXPECT_EQ(i % parts, 0u);
    return static_cast<std::int64_t>(i / parts);
}

std::int64_t expectedSpread(ConvForm form, int longLen, int shortLen)
{
    const ConvChoice choice = rvxChooseConv(form, longLen, shortLen);
    const std::int64_t total = std::int64_t{longLen} + shortLen - 1;
    if (choice.core == RVX_CONV_DIRECT)
        return shortLen;
    if (choice.core == RVX_CONV_WHOLE)
        return total;
    const std::int64_t n = std::int64_t{1} << rvxConvBlockOrder(longLen, shortLen, choice.mode);
    return total <= n ? total : n - shortLen + 1;
}

} // namespace

TYPED_TEST(ConvSeen, EveryThresholdOnBothSides)
{
    rvxSetErrStatus(0);
    const ConvThresholds &t = rvxConvThresholds(TypeParam::form);
    for (int s = t.lower; s < t.upper; ++s) {
        const int limit = t.longest[s - t.lower];
        EXPECT_EQ(spreadOfNaN<TypeParam>(limit - 1, s), s);
        const std::int64_t beyond = spreadOfNaN<TypeParam>(limit, s);
        EXPECT_EQ(beyond, expectedSpread(TypeParam::form, limit, s)) << s;
        EXPECT_NE(beyond, s);
    }
}

TYPED_TEST(ConvSeen, TheBordersOfTheCosts)
{
    rvxSetErrStatus(0);
    for (const Border &b : borders) {
        if (b.form != TypeParam::form || b.longLen > 60000)
            continue;
        for (int longLen : {b.longLen, b.longLen + 1})
            EXPECT_EQ(spreadOfNaN<TypeParam>(longLen, b.shortLen),
                      expectedSpread(b.form, longLen, b.shortLen))
                << longLen << " by " << b.shortLen;
    }
}

TYPED_TEST(ConvSeen, RandomSizes)
{
    rvxSetErrStatus(0);
    std::mt19937 random(5);
    for (int run = 0; run < 1500; ++run) {
        const int shortLen = 1 + static_cast<int>(random() % (run % 4 == 0 ? 400 : 120));
        const int longLen = shortLen + static_cast<int>(random() % (run % 8 == 0 ? 9000 : 900));
        EXPECT_EQ(spreadOfNaN<TypeParam>(longLen, shortLen),
                  expectedSpread(TypeParam::form, longLen, shortLen))
            << longLen << " by " << shortLen;
    }
}
