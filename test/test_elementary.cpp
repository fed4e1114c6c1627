// Arctangent, logarithms and exponential of blocks.

#include <cfenv>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <limits>
#include <ostream>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "reference/correct.h"
#include "reference/elementary.h"
#include "rvx.h"
#include "support/guarded.h"
#include "support/reports.h"
#include "support/walled.h"

namespace {

using reference::Block;
using reference::doubleOf;
using reference::Results;

constexpr double INF = std::numeric_limits<double>::infinity();
constexpr double HALF_PI = reference::HALF_PI;

#ifdef RVX_TEST_SANITIZED
constexpr int PATTERNS = 40000;
#else
constexpr int PATTERNS = 2000000;
#endif

struct Family {
    const char *name;
    const char *module;
    void (*inPlace)(double *, int);
    void (*apart)(const double *, double *, int);
    Results (*stated)(const Block &);
    reference::OfOne exact;
    long double (*wide)(long double);
    double bound;           // units in the last place, for elements of groups
    double exactBound;      // for the others
    double least, greatest; // ordinary arguments
};

const Family families[] = {
    {"Arctan", "rvxatan", rvxdbArctan1, rvxdbArctan2, reference::arctan, mpfr_atan, std::atan, 2.6,
     0.501, -4.0, 4.0},
    {"Ln", "rvxlnexp", rvxdbLn1, rvxdbLn2, reference::ln, mpfr_log, std::log, 0.9, 0.501, 1e-3,
     1e3},
    {"Exp", "rvxlnexp", rvxdbExp1, rvxdbExp2, reference::exp, mpfr_exp, std::exp, 2.1, 0.501, -30.0,
     30.0},
    {"Lg", "rvxlg", rvxdbLg1, rvxdbLg2, reference::lg, mpfr_log10, std::log10, 1.9, 1.7, 1e-3, 1e3},
};

std::ostream &operator<<(std::ostream &out, const Family &family)
{
    return out << family.name;
}

class Elementary : public ::testing::TestWithParam<Family> {};

INSTANTIATE_TEST_SUITE_P(All, Elementary, ::testing::ValuesIn(families),
                         [](const auto &test) { return std::string(test.param.name); });

// Logarithms and the exponential; the arctangent works in the caller's mode.
class ElementaryInItsOwnMode : public Elementary {};

INSTANTIATE_TEST_SUITE_P(All, ElementaryInItsOwnMode,
                         ::testing::ValuesIn(std::begin(families) + 1, std::end(families)),
                         [](const auto &test) { return std::string(test.param.name); });

class Source {
public:
    explicit Source(unsigned seed) : bits(seed) {}
    std::uint64_t word() { return bits(); }
    int below(int limit) { return static_cast<int>(bits() % static_cast<unsigned>(limit)); }
    double pattern() { return doubleOf(bits()); }
    double between(double least, double greatest)
    {
        const double unit = static_cast<double>(bits() >> 11) * 0x1p-53;
        return least + unit * (greatest - least);
    }
    Block ordinary(const Family &family, int n)
    {
        Block block;
        for (int i = 0; i < n; ++i)
            block.push_back(between(family.least, family.greatest));
        return block;
    }

private:
    std::mt19937_64 bits;
};

// Whatever some function treats in its own way, and the neighbours of each limit.
Block specialValues()
{
    Block values = {0.0,
                    1.0,
                    1000.0,
                    0.5,
                    2.0,
                    INF,
                    std::numeric_limits<double>::max(),
                    std::numeric_limits<double>::min(),
                    std::numeric_limits<double>::denorm_min(),
                    doubleOf(0x000fffffffffffff),
                    doubleOf(0x7ff8000000000000), // quiet NaN
                    doubleOf(0x7ff8123456789abc),
                    doubleOf(0x7fffffffffffffff),
                    doubleOf(0x7ff0000000000001), // signalling NaN
                    doubleOf(0x7ff4000089abcdef),
                    doubleOf(0x3c00000000000000), // where exponentials begin
                    doubleOf(0x3c000000ffffffff),
                    doubleOf(0x3c00000100000000),
                    doubleOf(0x40862325ffffffff), // where those of negative numbers end
                    doubleOf(0x4086232600000000),
                    doubleOf(0x40862e41ffffffff), // and of positive ones
                    doubleOf(0x40862e4200000000),
                    709.0,
                    709.43,
                    709.5,
                    doubleOf(0x3fe6a09dffffffff), // where a logarithm's exponent changes
                    doubleOf(0x3fe6a09e00000000),
                    doubleOf(0x3fefffffffffffff), // where the arctangent's argument turns
                    1e300};
    for (std::size_t i = 0, n = values.size(); i < n; ++i)
        values.push_back(-values[i]);
    return values;
}

::testing::AssertionResult isStated(const Family &family, const Block &source,
                                    const Results &expected, const Block &actual)
{
    for (std::size_t i = 0; i < source.size(); ++i) {
        const double value = expected.value[i];
        if (bitsOf(actual[i]) == bitsOf(value))
            continue;
        // An exact element may be rounded from 64 bits.
        if (expected.isExact[i] && std::isnan(value) && std::isnan(actual[i]))
            continue;
        if (expected.isExact[i] && std::fabs(value) < INF &&
            reference::ulps(actual[i], family.exact, source[i]) <= family.exactBound)
            continue;
        return ::testing::AssertionFailure()
               << family.name << " of element " << i << " of " << source.size() << ", "
               << std::hexfloat << source[i] << ": " << actual[i] << " is not " << value;
    }
    return ::testing::AssertionSuccess();
}

Block computed(const Family &family, const Block &source)
{
    Block result(source.size());
    family.apart(source.data(), result.data(), static_cast<int>(source.size()));
    return result;
}

void expectStated(const Family &family, const Block &source)
{
    ASSERT_TRUE(isStated(family, source, family.stated(source), computed(family, source)));
}

TEST_P(Elementary, BothFormsAtEveryLengthAndAlignment)
{
    const Family family = GetParam();
    Source random(1);
    for (int n = 1; n <= 150; ++n) {
        const Block source = random.ordinary(family, n);
        const Results expected = family.stated(source);
        for (int at = 0; at < 4; ++at) {
            Guarded<double> from(source, at), to(n, 3 - at), both(source, at);
            family.apart(from.data(), to.data(), n);
            family.inPlace(both.data(), n);
            ASSERT_TRUE(isStated(family, source, expected, to.values()));
            ASSERT_TRUE(isStated(family, source, expected, both.values()));
            for (int i = 0; i < n; ++i) {
                ASSERT_EQ(bitsOf(to[i]), bitsOf(both[i]));
                ASSERT_EQ(bitsOf(from[i]), bitsOf(source[static_cast<std::size_t>(i)]));
            }
            ASSERT_TRUE(from.intact() && to.intact() && both.intact());
        }
    }
}

TEST_P(Elementary, ReadsNothingOutsideTheBlock)
{
    const Family family = GetParam();
    Source random(2);
    for (int n = 1; n <= 40; ++n) {
        const Block source = random.ordinary(family, n);
        for (Wall wall : {Wall::before, Wall::behind}) {
            Walled<double> from(source, wall), to(source, wall);
            family.apart(from.data(), to.data(), n);
            ASSERT_TRUE(isStated(family, source, family.stated(source), to.values()));
        }
    }
}

TEST_P(Elementary, EverySpecialValueAtEveryPosition)
{
    const Family family = GetParam();
    Source random(3);
    for (int n = 1; n <= 40; ++n) {
        const Block ordinary = random.ordinary(family, n);
        for (double special : specialValues()) {
            for (std::size_t at = 0; at < ordinary.size(); ++at) {
                Block source = ordinary;
                source[at] = special;
                expectStated(family, source);
            }
        }
    }
}

TEST_P(Elementary, SpecialValuesOnEitherSideOfEachPosition)
{
    const Family family = GetParam();
    Source random(4);
    for (int n = 2; n <= 12; ++n) {
        const Block ordinary = random.ordinary(family, n);
        for (double first : specialValues()) {
            for (double second : specialValues()) {
                Block source = ordinary;
                const auto at = static_cast<std::size_t>(random.below(n));
                source[at] = first;
                source[static_cast<std::size_t>(random.below(n))] = second;
                expectStated(family, source);
            }
        }
    }
}

// Many, few and runs of them, so that the groups of the others shift in every way.
TEST_P(Elementary, SpecialValuesStrewnOverLongBlocks)
{
    const Family family = GetParam();
    const Block specials = specialValues();
    Source random(5);
    for (int trial = 0; trial < PATTERNS / 1000; ++trial) {
        Block source = random.ordinary(family, 1 + random.below(400));
        const int rarity = 1 << random.below(9), run = 1 << random.below(7);
        for (std::size_t i = 0; i < source.size(); ++i) {
            if (random.below(rarity) != 0)
                continue;
            const std::size_t end =
                std::min(i + static_cast<std::size_t>(random.below(run) + 1), source.size());
            for (; i < end; ++i)
                source[i] = specials[static_cast<std::size_t>(
                    random.below(static_cast<int>(specials.size())))];
        }
        expectStated(family, source);
    }
}

TEST_P(Elementary, AnyBitPattern)
{
    const Family family = GetParam();
    Source random(6);
    for (int done = 0; done < PATTERNS;) {
        Block source;
        const int n = 1 + random.below(500);
        for (int i = 0; i < n; ++i) {
            // Every other one of a size that matters to the exponential.
            const std::uint64_t word = random.word();
            const int field = 1023 - 68 + random.below(80);
            source.push_back(doubleOf(i % 2 == 0 ? word
                                                 : (word & 0x800fffffffffffff) |
                                                       static_cast<std::uint64_t>(field) << 52));
        }
        expectStated(family, source);
        done += n;
    }
}

// |result - exact| in units in the last place, for results that are normal numbers; the
// exact value in extended precision, which adds less than a thousandth of a unit.
double ulpsByExtended(double result, long double exact)
{
    int exponent = 0;
    std::frexp(exact, &exponent);
    return static_cast<double>(std::fabs(std::ldexp(result - exact, 53 - exponent)));
}

TEST_P(Elementary, WithinTheStatedBound)
{
    const Family family = GetParam();
    Source random(7);
    double worst = 0.0, worstExact = 0.0;
    // MPFR takes most of the time: it measures the elements that were themselves made
    // in extended precision, and a share of the others.
    constexpr int share = 16;
    int count = 0;
    const auto measure = [&](const Block &source) {
        const Block result = computed(family, source);
        const Results expected = family.stated(source);
        for (std::size_t i = 0; i < source.size(); ++i) {
            const bool isWideEnough =
                !expected.isExact[i] && ++count % share != 0 && std::fabs(result[i]) >= 0x1p-1000;
            const double error = isWideEnough ? ulpsByExtended(result[i], family.wide(source[i]))
                                              : reference::ulps(result[i], family.exact, source[i]);
            double &most = expected.isExact[i] ? worstExact : worst;
            most = std::max(most, error);
        }
    };
    const bool isLog = family.least > 0.0;
    for (int done = 0; done < PATTERNS; done += 31) {
        Block source;
        while (source.size() < 31) {
            double x = 0.0;
            switch (random.below(4)) {
            case 0: // the whole range of exponents
                x = isLog ? std::fabs(random.pattern()) : random.pattern();
                if (!std::isnormal(x))
                    x = 1.0;
                break;
            case 1:
                x = random.between(family.least, family.greatest);
                break;
            case 2: // where rounding does most
                x = random.between(0.7, 1.45);
                break;
            default: // where the result is small
                x = (isLog ? 1.0 : 0.0) + std::ldexp(random.between(-1.0, 1.0), -random.below(50));
                break;
            }
            if (family.exact == mpfr_exp && !(std::fabs(x) < 708.0))
                x = random.between(-708.0, 708.0);
            source.push_back(x);
        }
        measure(source);
    }
    RecordProperty("worst", std::to_string(worst));
    RecordProperty("worstExact", std::to_string(worstExact));
    EXPECT_LE(worst, family.bound);
    EXPECT_LE(worstExact, family.exactBound);
}

TEST_P(Elementary, ChecksInTheirOrder)
{
    const Family family = GetParam();
    const bool isArctan = std::string(family.name) == "Arctan";
    const std::string one = std::string("rvxdb") + family.name + "1";
    const std::string two = std::string("rvxdb") + family.name + "2";
    const char *noSrc = isArctan ? "Bad pointer on src vector" : "src==0";
    const char *noDst = isArctan ? "Bad pointer on dst vector" : "dst==0";
    const char *noVec = isArctan                     ? "Bad pointer on vector"
                        : family.inPlace == rvxdbLg1 ? "src==0"
                                                     : "vec==0";
    const char *shortVec = isArctan ? "Vector does not contain units" : "len<=0";
    const char *shortVecs = isArctan ? "Vectors does not contain units" : "len<=0";
    const auto report = [&](const std::string &function, const char *message) {
        return badArgument(function.c_str(), message, family.module);
    };
    Reports reports;
    double x[2] = {3.0, 4.0}, y[2] = {5.0, 6.0};

    for (int len : {0, -1, std::numeric_limits<int>::min()}) {
        family.inPlace(x, len);
        EXPECT_EQ(reports.take(), report(one, shortVec));
        family.apart(x, y, len);
        EXPECT_EQ(reports.take(), report(two, shortVecs));
        // Of several failures the first in order is told.
        family.inPlace(nullptr, len);
        EXPECT_EQ(reports.take(), report(one, isArctan ? noVec : shortVec));
        family.apart(nullptr, y, len);
        EXPECT_EQ(reports.take(), report(two, isArctan ? noSrc : shortVecs));
        family.apart(x, nullptr, len);
        EXPECT_EQ(reports.take(), report(two, isArctan ? noDst : shortVecs));
    }
    family.inPlace(nullptr, 2);
    EXPECT_EQ(reports.take(), report(one, noVec));
    family.apart(nullptr, y, 2);
    EXPECT_EQ(reports.take(), report(two, noSrc));
    family.apart(nullptr, nullptr, 2);
    EXPECT_EQ(reports.take(), report(two, noSrc));
    family.apart(x, nullptr, 2);
    EXPECT_EQ(reports.take(), report(two, noDst));
    EXPECT_EQ(rvxGetErrStatus(), RVX_STATUS_BAD_ARGUMENT);
    EXPECT_EQ(x[0], 3.0);
    EXPECT_EQ(x[1], 4.0);
    EXPECT_EQ(y[0], 5.0);
    EXPECT_EQ(y[1], 6.0);

    // The status of an earlier failure neither stops a call nor is cleared by it.
    family.inPlace(x, 2);
    EXPECT_NE(x[0], 3.0);
    EXPECT_EQ(rvxGetErrStatus(), RVX_STATUS_BAD_ARGUMENT);
    EXPECT_TRUE(reports.take().empty());
}

TEST_P(Elementary, FailedCheckEndsTheProcessInModeZero)
{
    const Family family = GetParam();
    EXPECT_EXIT(family.inPlace(nullptr, 1), ::testing::ExitedWithCode(1), "");
    EXPECT_EXIT(family.apart(nullptr, nullptr, 0), ::testing::ExitedWithCode(1), "");
}

TEST_P(ElementaryInItsOwnMode, RoundingModeAndFlagsAreTheCallersAgain)
{
    const Family family = GetParam();
    Source random(8);
    for (int n = 1; n <= 50; ++n) {
        Block source = random.ordinary(family, n);
        if (n % 3 == 0)
            source[0] = 709.5; // overflows
        if (n % 4 == 0)
            source[static_cast<std::size_t>(random.below(n))] = -0.0;
        const Block expected = computed(family, source);
        for (int mode : {FE_TONEAREST, FE_UPWARD, FE_DOWNWARD, FE_TOWARDZERO}) {
            for (int flags : {0, FE_INEXACT, FE_ALL_EXCEPT}) {
                std::feclearexcept(FE_ALL_EXCEPT);
                std::feraiseexcept(flags);
                const int before = std::fetestexcept(FE_ALL_EXCEPT);
                std::fesetround(mode);
                Block result(source.size());
                family.apart(source.data(), result.data(), n);
                Block inPlace = source;
                family.inPlace(inPlace.data(), n);
                const int modeAfter = std::fegetround();
                const int after = std::fetestexcept(FE_ALL_EXCEPT);
                std::fesetround(FE_TONEAREST);
                std::feclearexcept(FE_ALL_EXCEPT);
                ASSERT_EQ(modeAfter, mode);
                ASSERT_EQ(after, before);
                for (std::size_t i = 0; i < source.size(); ++i) {
                    ASSERT_EQ(bitsOf(result[i]), bitsOf(expected[i]));
                    ASSERT_EQ(bitsOf(inPlace[i]), bitsOf(expected[i]));
                }
            }
        }
    }
}

TEST(Arctan, ZerosKeepTheirSignsInEveryPosition)
{
    for (int n = 1; n <= 40; ++n) {
        Block positive(static_cast<std::size_t>(n), 0.0), negative(positive.size(), -0.0);
        rvxdbArctan1(positive.data(), n);
        rvxdbArctan1(negative.data(), n);
        for (std::size_t i = 0; i < positive.size(); ++i) {
            ASSERT_EQ(bitsOf(positive[i]), bitsOf(0.0));
            ASSERT_EQ(bitsOf(negative[i]), bitsOf(-0.0));
        }
    }
}

TEST(Arctan, InfinitiesGiveHalfPiInEveryPosition)
{
    for (int n = 1; n <= 40; ++n) {
        for (std::size_t at = 0; at < static_cast<std::size_t>(n); ++at) {
            Block block(static_cast<std::size_t>(n), 0.25), other = block;
            block[at] = INF;
            other[at] = -INF;
            rvxdbArctan1(block.data(), n);
            rvxdbArctan1(other.data(), n);
            ASSERT_EQ(block[at], HALF_PI);
            ASSERT_EQ(other[at], -HALF_PI);
        }
    }
}

TEST(Arctan, NegativeNanNearestToTheEndIsNotSeen)
{
    const double nan = doubleOf(0xfff8000000000000);
    Block last = {0.1, 0.2, 0.3, nan}, first = {nan, 0.1, 0.2, 0.3}, both = {0.1, 0.2, nan, nan};
    rvxdbArctan1(last.data(), 4);
    EXPECT_EQ(last[3], -HALF_PI);
    rvxdbArctan1(first.data(), 4);
    EXPECT_EQ(bitsOf(first[0]), bitsOf(nan));
    rvxdbArctan1(both.data(), 4);
    EXPECT_EQ(both[2], -HALF_PI);
    EXPECT_EQ(both[3], -HALF_PI);
    Block brief = {0.1, 0.2, nan};
    rvxdbArctan1(brief.data(), 3);
    EXPECT_EQ(bitsOf(brief[2]), bitsOf(nan));
    Block positive = {0.1, 0.2, 0.3, -nan};
    rvxdbArctan1(positive.data(), 4);
    EXPECT_EQ(bitsOf(positive[3]), bitsOf(-nan));
}

TEST(Arctan, QuietNanLosesItsLowerHalf)
{
    Block block = {doubleOf(0x7ff8123456789abc), doubleOf(0xfffabcde12345678),
                   doubleOf(0x7ff0000000000001)};
    rvxdbArctan1(block.data(), 3);
    EXPECT_EQ(bitsOf(block[0]), 0x7ff8123400000000u);
    EXPECT_EQ(bitsOf(block[1]), 0xfffabcde00000000u);
    EXPECT_EQ(block[2], HALF_PI);
}

// The search that passed special values at the end is over with the first group.
TEST(Arctan, NanLeftOverStaysOneAlsoBehindSpecialEnds)
{
    for (int grouped = 4; grouped <= 160; grouped += 4)
        for (std::size_t left : {1U, 2U, 3U})
            for (std::size_t at = 0; at < left; ++at)
                for (double end : {INF, doubleOf(0xfff8000000000000)}) {
                    Block source(left + static_cast<std::size_t>(grouped), 0.75);
                    source[at] = doubleOf(0x7ff0000000000001);
                    source.push_back(end);
                    expectStated(families[0], source);
                    rvxdbArctan1(source.data(), static_cast<int>(source.size()));
                    ASSERT_TRUE(std::isnan(source[at])) << grouped << " and " << left;
                    ASSERT_EQ(std::fabs(source.back()), HALF_PI);
                }
}

// Of such numbers the lower words, too, are no greater than those of an infinity.
TEST(Arctan, InfinityAmongRoundNumbersIsInNoGroup)
{
    for (std::size_t n = 16; n <= 40; ++n)
        for (std::size_t at = 0; at < n; ++at) {
            Block source;
            for (std::size_t i = 0; i < n; ++i)
                source.push_back(static_cast<double>(i * 37 % 29 + 1) / 16.0);
            source[at] = INF;
            expectStated(families[0], source);
        }
}

TEST(Ln, SpecialValuesOfPairsAndOfTheLastOfAnOddBlock)
{
    Block pair = {-0.0, 1.0};
    rvxdbLn1(pair.data(), 2);
    EXPECT_EQ(bitsOf(pair[0]), 0xfff8000000000000u);
    EXPECT_EQ(bitsOf(pair[1]), 0u);
    Block alone = {-0.0};
    rvxdbLn1(alone.data(), 1);
    EXPECT_EQ(alone[0], -INF);
    for (std::size_t at : {0U, 1U}) {
        Block infinite = {1.0, 1.0};
        infinite[at] = INF;
        rvxdbLn1(infinite.data(), 2);
        EXPECT_NEAR(infinite[at], 709.7827, 1e-4);
    }
    Block odd = {1.0, 2.0, INF};
    rvxdbLn1(odd.data(), 3);
    EXPECT_EQ(odd[2], INF);
    Block negative = {-1.0};
    rvxdbLn1(negative.data(), 1);
    EXPECT_EQ(bitsOf(negative[0]), 0xfff8000000000000u);
    Block tiny = {5e-324, 1.0, 5e-324};
    rvxdbLn1(tiny.data(), 3);
    EXPECT_NEAR(tiny[0], -709.0896, 1e-4); // as 2^-1023
    EXPECT_NEAR(tiny[2], -744.4401, 1e-4);
}

TEST(Lg, PowersOfTen)
{
    for (int n = 1; n <= 9; ++n) {
        Block block(static_cast<std::size_t>(n), 1000.0);
        rvxdbLg1(block.data(), n);
        for (double x : block)
            EXPECT_NEAR(x, 3.0, 5e-16);
    }
}

TEST(Exp, SmallValuesGiveOne)
{
    Block block = {0.0, 1e-20};
    rvxdbExp1(block.data(), 2);
    EXPECT_EQ(block[0], 1.0);
    EXPECT_EQ(block[1], 1.0);
}

TEST(Exp, ElementWithoutPartnerGivesZeroWhereAPairDoesNot)
{
    Block alone = {709.0}, pair = {709.0, 709.0}, beyond = {709.5, 709.5};
    rvxdbExp1(alone.data(), 1);
    EXPECT_EQ(bitsOf(alone[0]), 0u);
    rvxdbExp1(pair.data(), 2);
    EXPECT_LT(reference::ulps(pair[0], mpfr_exp, 709.0), 1.0);
    EXPECT_EQ(pair[0], pair[1]);
    rvxdbExp1(beyond.data(), 2);
    EXPECT_EQ(beyond[0], INF);
    EXPECT_EQ(beyond[1], INF);
    // The partner may stand behind special values.
    Block apart = {709.0, 0.0, INF, 709.0, -800.0};
    rvxdbExp1(apart.data(), 5);
    EXPECT_EQ(apart, (Block{pair[0], 1.0, INF, pair[0], 0.0}));
}

TEST(Exp, EndsOfTheRange)
{
    const Block source = {-800.0, INF, -INF};
    EXPECT_EQ(computed(families[2], source), (Block{0.0, INF, 0.0}));
}

} // namespace
