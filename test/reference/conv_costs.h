// Which core a one-dimensional convolution takes, written once more and in another
// way than in the library: from plans that know what they cost.

#ifndef RVX_TEST_CONV_COSTS_H
#define RVX_TEST_CONV_COSTS_H

#include <cmath>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace reference {

enum class ConvForm { Real, Complex, ComplexReal, RealComplex };

// What is done: "direct", "whole", or "block" with the mode, 1 to 3, behind it.
using ConvPath = std::string;

// The limits of the long operand below which the direct core is taken, the first for
// the lower limit of the short operand.
inline const std::vector<long> realThresholds = {
    80900, 48132, 41989, 17413, 20480, 12226, 8129, 4033, 1985, 2102, 1397, 1013, 952, 825,
    869,   785,   831,   746,   747,   772,   707,  631,  685,  612,  658,  593,  595, 582,
    583,   573,   574,   557,   578,   545,   545,  535,  537,  526,  527,  519,  519, 511,
    514,   491,   495,   475,   520,   455,   478,  333,  333,  193,  193,  186,  187, 179,
    179,   171,   171,   165,   167,   161,   163,  158,  159,  155,  155,  151,  151, 147,
    147,   143,   145,   141,   141,   137,   139,  133,  133,  131,  131,  127,  127, 123,
    125,   121,   115,   113,   113,   111,   111,  107,  108,  105,  105};

inline const std::vector<long> complexThresholds = {
    16890, 8698, 4602, 2554, 1530, 1413, 645, 819, 499, 492, 372, 371, 349, 369, 287, 289,
    273,   275,  264,  279,  267,  267,  257, 259, 243, 247, 251, 253, 237, 237, 225, 232,
    215,   218,  205,  207,  199,  199,  191, 189, 181, 183, 175, 174, 166, 167, 155, 155,
    149,   149,  145,  151,  158,  165,  157, 158, 151, 151, 147, 147, 141, 143, 137, 137,
    133,   133,  130,  131,  127,  127,  123, 123, 121, 121, 117, 119, 115, 115, 113, 115,
    111,   111,  107,  109,  105,  107,  103, 105, 103, 99,  97};

inline const std::vector<long> complexRealThresholds = {
    71476, 38708, 22324, 14132, 7988, 7922, 4850, 3312, 1776, 1260, 1004, 1034, 363, 383, 345,
    363,   345,   351,   336,   341,  324,  324,  314,  315,  306,  306,  298,  298, 291, 291,
    285,   286,   278,   280,   274,  275,  271,  271,  267,  266,  208,  208,  186, 190, 183,
    182,   180,   180,   171,   173,  165,  167,  159,  161,  153,  155,  149,  149, 143, 143,
    136,   139,   133,   133,   131,  133,  126,  129,  125,  128,  123,  123,  119, 121, 117,
    119,   115,   115,   114,   115,  111,  107,  105,  107,  106,  109,  112,  115, 118, 121,
    117,   117,   115,   115,   114,  115,  111,  112,  111,  111,  108,  109};

inline const std::vector<long> realComplexThresholds = {
    20094, 11902, 7806, 6782, 4734, 2687, 1151, 575, 511, 527, 485, 487, 469, 469, 409, 441, 395,
    434,   353,   359,  331,  341,  332,  315,  309, 309, 301, 302, 293, 293, 281, 283, 275, 275,
    270,   271,   265,  266,  261,  262,  257,  258, 247, 271, 237, 237, 217, 229, 209, 211, 205,
    210,   193,   195,  147,  147,  143,  143,  137, 139, 133, 135, 129, 131, 127, 127, 123, 125,
    121,   121,   119,  119,  116,  117,  114,  115, 112, 113, 114, 115, 116, 117, 118, 119, 120,
    121,   122,   123,  121,  121,  119,  119,  116, 117, 115, 115, 113, 113, 111, 111, 109, 109};

struct ConvLimits {
    long lower, upper;
    const std::vector<long> &longest;
};

inline ConvLimits convLimits(ConvForm form)
{
    switch (form) {
    case ConvForm::Real:
        return {8, 103, realThresholds};
    case ConvForm::Complex:
        return {5, 96, complexThresholds};
    case ConvForm::ComplexReal:
        return {5, 107, complexRealThresholds};
    default:
        return {7, 109, realComplexThresholds};
    }
}

// By order: a real transform, a product and real inverse, and both of complex ones.
struct ConvCosts {
    double realForward, realBack, complexForward, complexBack;
};

inline const std::map<long, ConvCosts> convCosts = {
    {4, {5.398316e-06, 8.057471e-06, 4.843097e-06, 1.093372e-05}},
    {5, {1.043344e-05, 1.467876e-05, 1.024806e-05, 2.21271e-05}},
    {6, {1.811074e-05, 2.636239e-05, 2.303088e-05, 4.742079e-05}},
    {7, {4.080892e-05, 5.673848e-05, 5.623104e-05, 0.0001071151}},
    {8, {0.0001021414, 0.000140026, 0.0001436321, 0.0002562955}},
    {9, {0.0002282602, 0.0002971969, 0.000514218, 0.0008100301}},
    {10, {0.000715132, 0.0009204722, 0.002067499, 0.003040326}},
    {11, {0.002638852, 0.003091267, 0.00485157, 0.007062718}},
    {12, {0.006439515, 0.00737648, 0.0125676, 0.01754906}},
    {13, {0.01567738, 0.0177106, 0.03044082, 0.04114431}},
    {14, {0.04299938, 0.04810653, 0.07475035, 0.09865046}},
    {15, {0.09763217, 0.1107607, 0.1834327, 0.2416385}},
    {16, {0.2358705, 0.2727556, 0.4180463, 0.5466304}},
    {17, {0.5734969, 0.8148385, 0.9615959, 1.227161}},
    {18, {1.394403, 1.981203, 2.211876, 2.822733}},
    {19, {3.39036, 4.817107, 5.087788, 6.492889}},
    {20, {8.243339, 11.71234, 11.703, 14.93503}},
    {21, {20.0429, 28.47745, 26.9194, 34.35377}},
    {22, {48.73241, 69.24021, 61.92038, 79.02101}},
    {23, {118.4882, 168.351, 142.4301, 181.7652}},
    {24, {288.093, 409.3296, 327.6197, 418.0989}},
    {25, {700.4708, 995.2461, 753.5954, 961.7168}},
    {26, {1703.128, 2419.847, 1733.431, 2212.154}},
    {27, {4140.996, 5883.629, 3987.261, 5088.428}},
    {28, {10068.44, 14305.49, 9171.553, 11704.47}},
    {29, {24480.46, 34782.44, 21096.53, 26922.79}},
    {30, {59521.91, 84570.2, 48526.54, 61928.17}},
    {31, {144721.9, 205624.4, 111621.4, 142448.0}},
    {32, {351877.6, 499956.4, 256753.1, 327660.9}},
};

// What one form pays for its parts at one order.
struct ConvParts {
    double longOperand, shortOperand, back;
};

inline ConvParts convParts(ConvForm form, long order)
{
    const ConvCosts &c = convCosts.at(order);
    switch (form) {
    case ConvForm::Real:
        return {c.realForward, c.realForward, c.realBack};
    case ConvForm::Complex:
        return {c.complexForward, c.complexForward, c.complexBack};
    case ConvForm::ComplexReal:
        return {c.complexForward, c.realForward, c.complexBack};
    default:
        return {c.realForward, c.complexForward, c.complexBack};
    }
}

inline long bitLength(long n)
{
    return n == 0 ? 0 : 1 + bitLength(n / 2);
}

// The short operand's transform once, the rest for every block of 2^order values,
// of which `growth` times the useful ones are counted.
inline double blockCost(ConvForm form, long order, long total, long shorter, long growth)
{
    const long useful = growth * ((1L << order) - shorter + 1);
    const long blocks = total / useful + (total % useful != 0);
    const ConvParts parts = convParts(form, order);
    return (parts.longOperand + parts.back) * static_cast<double>(blocks) + parts.shortOperand;
}

// The path of a form whose first operand is at least as long as its second.
inline ConvPath convPath(ConvForm form, long longer, long shorter)
{
    const ConvLimits limits = convLimits(form);
    if (shorter < limits.lower)
        return "direct";
    if (shorter < limits.upper &&
        longer < limits.longest[static_cast<std::size_t>(shorter - limits.lower)])
        return "direct";

    const long total = longer + shorter - 1;
    const long smallest = bitLength(shorter) + 1; // twice to four times the short operand
    const bool realBlocks = form == ConvForm::Real || form == ConvForm::RealComplex;
    std::pair<double, ConvPath> best;
    if (longer > 32 * shorter)
        best = {blockCost(form, smallest + 2, total, shorter, realBlocks ? 2 : 1), "block 3"};
    else
        best = {blockCost(form, smallest, total, shorter, 1), "block 1"};
    const double second = blockCost(form, smallest + 1, total, shorter, 1);
    if (second < best.first)
        best = {second, "block 2"};

    const ConvParts whole = convParts(form, bitLength(total));
    return whole.shortOperand + whole.longOperand + whole.back <= best.first ? "whole"
                                                                             : best.second;
}

// The length of the blocks that a block plan runs with.
inline long convBlockLen(const ConvPath &path, long longer, long shorter)
{
    const long total = longer + shorter - 1;
    long len = 1L << bitLength(shorter);
    const int doublings = path == "block 1" ? 1 : 2;
    for (int i = 0; i < doublings && len < total; ++i)
        len *= 2;
    return len;
}

} // namespace reference

#endif
