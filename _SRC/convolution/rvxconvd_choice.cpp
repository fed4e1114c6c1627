// The choice between a direct sum, one transform and blocks, by fixed tables. Nothing
// is measured at run time.

#include "convolution/rvxconv_counts.h"
#include "convolution/rvxconvd_costs.h"

namespace {

// What a form's transforms cost: the short operand's once, a block's, and a block's
// product and way back.
struct CostColumns {
    double ConvCosts::*once;
    double ConvCosts::*block;
    double ConvCosts::*back;
    bool blocksAreReal;
};

// In the order of ConvForm.
constexpr CostColumns columns[] = {
    {&ConvCosts::Td, &ConvCosts::Td, &ConvCosts::Ud, true},
    {&ConvCosts::Tz, &ConvCosts::Tz, &ConvCosts::Uz, false},
    {&ConvCosts::Td, &ConvCosts::Tz, &ConvCosts::Uz, false},
    {&ConvCosts::Tz, &ConvCosts::Td, &ConvCosts::Uz, true},
};

// Lengths of results do not always fit 32 bits.
std::int64_t resultLen(int longLen, int shortLen)
{
    return std::int64_t{longLen} + shortLen - 1;
}

double wholeCost(const CostColumns &c, int order)
{
    const ConvCosts &costs = rvxConvCosts(order);
    return costs.*c.once + costs.*c.block + costs.*c.back;
}

// Of blocks of an order, each of which yields `step` values of the result.
double blocksCost(const CostColumns &c, int order, std::int64_t step, std::int64_t total)
{
    const ConvCosts &costs = rvxConvCosts(order);
    const std::int64_t blocks = (step + total - 1) / step;
    return (costs.*c.block + costs.*c.back) * static_cast<double>(blocks) + costs.*c.once;
}

bool isDirect(const ConvThresholds &t, int longLen, int shortLen)
{
    return shortLen < t.upper && (shortLen < t.lower || longLen < t.longest[shortLen - t.lower]);
}

std::int64_t stepOf(int order, int shortLen)
{
    return (std::int64_t{1} << order) - shortLen + 1;
}

} // namespace

ConvChoice rvxChooseConv(ConvForm form, int longLen, int shortLen)
{
    if (isDirect(rvxConvThresholds(form), longLen, shortLen))
        return {RVX_CONV_DIRECT, 1};
    const CostColumns &c = columns[form];
    const std::int64_t total = resultLen(longLen, shortLen);
    const int k = ownLog2(shortLen) + 2;
    int mode = 1;
    double best;
    if (longLen > std::int64_t{32} * shortLen) {
        mode = 3;
        // Deliberate: twice the step counts where blocks are real, and there alone.
        const std::int64_t step = stepOf(k + 2, shortLen) * (c.blocksAreReal ? 2 : 1);
        best = blocksCost(c, k + 2, step, total);
    } else {
        best = blocksCost(c, k, stepOf(k, shortLen), total);
    }
    // Beyond the table are operands that no memory holds.
    if (k + 1 <= RVX_CONV_HIGHEST_ORDER) {
        const double longer = blocksCost(c, k + 1, stepOf(k + 1, shortLen), total);
        if (longer < best) {
            best = longer;
            mode = 2;
        }
    }
    // Deliberate: one order above what the result needs when its length is a power of two.
    if (wholeCost(c, ownLog2(total) + 1) <= best)
        return {RVX_CONV_WHOLE, 1};
    return {RVX_CONV_BLOCKS, mode};
}

int rvxConvWholeOrder(int longLen, int shortLen)
{
    return ownOrderFor(resultLen(longLen, shortLen));
}

int rvxConvBlockOrder(int longLen, int shortLen, int mode)
{
    const std::int64_t total = resultLen(longLen, shortLen);
    int order = ownLog2(shortLen) + 1;
    const int doublings = mode >= 2 ? 2 : 1; // deliberate: no third one in mode 3
    for (int i = 0; i < doublings && (std::int64_t{1} << order) < total; ++i)
        ++order;
    return order;
}
