// The elementary functions once more, one element and one group after the other in plain
// double arithmetic, and exact elements by MPFR.

#ifndef RVX_TEST_REFERENCE_ELEMENTARY_H
#define RVX_TEST_REFERENCE_ELEMENTARY_H

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>
#include <utility>
#include <vector>

#include "reference/correct.h"

namespace reference {

using Block = std::vector<double>;

// The results, and which of them are not made by the stated steps but are the exact
// value, here rounded once.
struct Results {
    Block value;
    std::vector<bool> isExact;

    explicit Results(Block block) : value(std::move(block)), isExact(value.size(), false) {}
    void setExact(std::size_t at, double exact)
    {
        value[at] = exact;
        isExact[at] = true;
    }
};

inline std::uint64_t wordOf(double x)
{
    std::uint64_t word;
    std::memcpy(&word, &x, sizeof word);
    return word;
}

inline double doubleOf(std::uint64_t word)
{
    double x;
    std::memcpy(&x, &word, sizeof x);
    return x;
}

inline std::uint32_t highWord(double x)
{
    return static_cast<std::uint32_t>(wordOf(x) >> 32);
}

inline constexpr double HALF_PI = 1.5707963267948966;
inline constexpr double LN2_HIGH = 0.6931471803691238;
inline constexpr double LN2_LOW = 1.9082149292705877e-10;
inline constexpr double INFINITE = std::numeric_limits<double>::infinity();
inline constexpr double LARGEST = std::numeric_limits<double>::max();

// Arctangent.

inline double arctanNumerator(double z)
{
    return ((((((3.2828074051574014e-05 * z + 0.001443255490489221) * z + 0.016666208496175557) *
                   z +
               0.07740968919218316) *
                  z +
              0.1665219024781521) *
                 z +
             0.16562803159089803) *
                z +
            0.06152589308173906) *
               z +
           2.949220131364055e-20;
}

inline double arctanDenominator(double z)
{
    return ((((((3.5869490790335996e-05 * z + 0.0019179513216930214) * z + 0.027756313845352945) *
                   z +
               0.16837663361034763) *
                  z +
              0.5043654480105728) *
                 z +
             0.7850394091498596) *
                z +
            0.6076307023198234) *
               z +
           0.18457767924521717;
}

inline bool hasFullExponent(double x)
{
    return (wordOf(x) >> 52 & 0x7ff) == 0x7ff;
}

inline bool hasSmallExponent(double x)
{
    return (wordOf(x) >> 52 & 0x7ff) < 0x3ff;
}

inline double arctanArgument(double x)
{
    return hasSmallExponent(x) ? x : 1.0 / x;
}

inline double arctanFrom(double x, double quotient)
{
    const double t = arctanArgument(x);
    const double small = t - t * quotient;
    if (hasSmallExponent(x))
        return x == 0.0 ? x : small;
    return (std::signbit(x) ? -HALF_PI : HALF_PI) - small;
}

inline double arctanOfSpecial(double x, bool isFirstScan)
{
    const bool isQuietNan = std::isnan(x) && (wordOf(x) >> 51 & 1) != 0;
    if (isQuietNan && !(isFirstScan && std::signbit(x)))
        return doubleOf(wordOf(x) >> 32 << 32);
    return std::signbit(x) ? -HALF_PI : HALF_PI;
}

inline Results arctan(const Block &source)
{
    Results results(source);
    Block &block = results.value;
    const std::size_t len = block.size();
    if (len < 4) {
        for (double &x : block) {
            const double z = arctanArgument(x) * arctanArgument(x);
            x = hasFullExponent(x) ? arctanOfSpecial(x, false)
                                   : arctanFrom(x, arctanNumerator(z) / arctanDenominator(z));
        }
        return results;
    }
    std::size_t left = len;
    bool isFirst = true;
    while (left >= 4) {
        std::vector<std::size_t> group;
        while (group.size() < 4 && left > 0) {
            --left;
            if (hasFullExponent(block[left]))
                block[left] = arctanOfSpecial(block[left], isFirst && group.empty());
            else
                group.push_back(left);
        }
        isFirst = false;
        if (group.size() < 4) {
            for (std::size_t at : group)
                results.setExact(at, correct(mpfr_atan2, block[at], 1.0));
            break;
        }
        double p[4], q[4];
        for (std::size_t j = 0; j < 4; ++j) {
            const double t = arctanArgument(block[group[j]]);
            p[j] = arctanNumerator(t * t);
            q[j] = arctanDenominator(t * t);
        }
        const double r = 1.0 / ((q[0] * q[1]) * (q[2] * q[3]));
        const double quotient[4] = {
            p[0] * (q[1] * ((q[2] * q[3]) * r)), p[1] * (q[0] * ((q[2] * q[3]) * r)),
            p[2] * (q[3] * ((q[0] * q[1]) * r)), p[3] * (q[2] * ((q[0] * q[1]) * r))};
        for (std::size_t j = 0; j < 4; ++j)
            block[group[j]] = arctanFrom(block[group[j]], quotient[j]);
    }
    // Fewer than four elements are left for which no scan was begun.
    while (left > 0) {
        --left;
        results.setExact(left, correct(mpfr_atan2, block[left], 1.0));
    }
    return results;
}

// Division.

struct Quotients {
    Block block;
    bool isFailure;
};

inline bool countsAsZero(double x)
{
    return !(x < 0.0 || x > 0.0);
}

inline double largestFor(double numerator)
{
    return numerator <= 0.0 ? -LARGEST : LARGEST;
}

inline Quotients divideByOne(double divisor, Block block)
{
    const double r = 1.0 / divisor;
    for (double &x : block)
        if (!countsAsZero(divisor))
            x = x * r;
        else if (!countsAsZero(x))
            x = largestFor(x);
    return {block, countsAsZero(divisor)};
}

inline Quotients divide(Block numerators, const Block &divisors, bool isKept)
{
    bool isFailure = false;
    for (std::size_t i = 0; i < numerators.size(); ++i) {
        double &a = numerators[i];
        const double b = divisors[i];
        if (!countsAsZero(b)) {
            a = a / b;
            continue;
        }
        isFailure = true;
        if (!countsAsZero(a))
            a = largestFor(a);
        else if (!isKept)
            a = 0.0;
    }
    return {numerators, isFailure};
}

// Logarithms.

struct LogParts {
    double k, m;
};

inline LogParts logParts(double x)
{
    const std::uint32_t fraction = highWord(x) & 0xfffff;
    const int exponent = static_cast<int>(highWord(x) >> 20 & 0x7ff);
    const std::uint64_t bits = wordOf(x) & 0xfffffffffffff;
    if (fraction < 0x6a09e)
        return {exponent - 1023.0, doubleOf(bits | wordOf(1.0))};
    return {exponent - 1022.0, doubleOf(bits | wordOf(0.5))};
}

// others is what the share has to be multiplied by to give 1 / (m + 1).
inline double logOfElement(double x, double others, double share)
{
    if (std::signbit(x))
        return doubleOf(0xfff8000000000000);
    if (x == 0.0)
        return -INFINITE;
    const LogParts parts = logParts(x);
    const double g = parts.m - 1.0;
    const double s = g * others * share;
    const double w = s * s;
    const double r =
        w * (0.6666666666666734 +
             w * (0.399999999994167 +
                  w * (0.28571428742008753 +
                       w * (0.22222198607186278 +
                            w * (0.18183562745289936 +
                                 w * (0.15314087275331442 + w * 0.14795612545334175))))));
    const double h = 0.5 * g * g;
    return (g + ((parts.k * LN2_LOW + (r + h) * s) - h)) + parts.k * LN2_HIGH;
}

inline double exactLn(double x)
{
    if (x == 0.0)
        return -INFINITE;
    return std::isnan(x) ? x : correct(mpfr_log, x);
}

inline Results ln(const Block &source)
{
    Results results(source);
    Block &block = results.value;
    std::size_t i = 0;
    for (; i + 1 < block.size(); i += 2) {
        const double d0 = logParts(block[i]).m + 1.0, d1 = logParts(block[i + 1]).m + 1.0;
        const double share = 1.0 / (d0 * d1);
        block[i] = logOfElement(block[i], d1, share);
        block[i + 1] = logOfElement(block[i + 1], d0, share);
    }
    if (i < block.size())
        results.setExact(i, exactLn(block[i]));
    return results;
}

inline Results lg(const Block &source)
{
    Results results(source);
    Block &block = results.value;
    const double lgOfE = 0.4342944819032518;
    std::size_t left = block.size();
    while (left >= 4) {
        left -= 4;
        double d[4];
        for (std::size_t j = 0; j < 4; ++j)
            d[j] = logParts(block[left + j]).m + 1.0;
        const double first = d[0] * d[1], last = d[2] * d[3];
        const double share = 1.0 / (first * last);
        for (std::size_t j = 0; j < 4; ++j)
            block[left + j] =
                logOfElement(block[left + j], d[j ^ 1], (j < 2 ? last : first) * share) * lgOfE;
    }
    while (left > 0) {
        --left;
        results.setExact(left, exactLn(block[left]) * lgOfE);
    }
    return results;
}

// Exponential.

inline bool isFinishedExp(double x, double &result)
{
    const std::uint32_t size = highWord(x) & 0x7fffffff;
    const bool isNegative = std::signbit(x);
    if (size <= 0x3c000000)
        result = 1.0;
    else if (isNegative && size >= 0x40862326)
        result = 0.0;
    else if (!isNegative && size >= 0x40862e42)
        result = INFINITE;
    else
        return false;
    return true;
}

struct ExpFraction {
    double n, a, d;
};

inline ExpFraction expFraction(double x)
{
    const double magic = std::copysign(4503599627370496.0, x);
    const volatile double shifted = x * 1.4426950408889634 + magic;
    const double n = shifted - magic;
    const double r = (x - n * LN2_HIGH) - n * LN2_LOW;
    const double z = r * r;
    const double a = r * ((1.6520330026827912e-05 * z + 0.006943600015117929) * z + 0.25);
    const double b = (0.0004958628849054413 * z + 0.05555386669690012) * z + 0.5;
    return {n, a, b - a};
}

inline double expFrom(ExpFraction own, double otherD, double share)
{
    const auto field = static_cast<std::uint64_t>(static_cast<int>(own.n) + 1023);
    return (1.0 + own.a * otherD * share) * doubleOf(field << 52);
}

inline double expAlone(double x)
{
    if (!std::signbit(x) && highWord(x) >= 0x40862e42)
        return INFINITE;
    if ((highWord(x) & 0x7fffffff) >= 0x40862326)
        return 0.0;
    return correct(mpfr_exp, x);
}

inline Results exp(const Block &source)
{
    Results results(source);
    Block &block = results.value;
    std::vector<std::size_t> waiting;
    for (std::size_t i = block.size(); i-- > 0;) {
        double result;
        if (isFinishedExp(block[i], result)) {
            block[i] = result;
            continue;
        }
        waiting.push_back(i);
        if (waiting.size() < 2)
            continue;
        double &x = block[waiting[0]], &y = block[waiting[1]];
        const ExpFraction fx = expFraction(x), fy = expFraction(y);
        const double share = 2.0 / (fx.d * fy.d);
        x = expFrom(fx, fy.d, share);
        y = expFrom(fy, fx.d, share);
        waiting.clear();
    }
    if (!waiting.empty())
        results.setExact(waiting[0], expAlone(block[waiting[0]]));
    return results;
}

} // namespace reference

#endif
