// Division of blocks.

#include <cmath>
#include <cstdint>
#include <limits>
#include <random>
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

constexpr double INF = std::numeric_limits<double>::infinity();
constexpr double LARGEST = std::numeric_limits<double>::max();
constexpr const char *FILE_NAME = "rvxdiv";
constexpr const char *BY_ZERO = "(Divide_by_Zero)";

#ifdef RVX_TEST_SANITIZED
constexpr int PATTERNS = 40000;
#else
constexpr int PATTERNS = 1000000;
#endif

class Source {
public:
    explicit Source(unsigned seed) : bits(seed) {}
    double pattern() { return doubleOf(bits()); }
    double ordinary() { return (static_cast<double>(bits() >> 11) * 0x1p-52 - 1.0) * 100.0; }
    int below(int limit) { return static_cast<int>(bits() % static_cast<unsigned>(limit)); }
    Block ordinaries(int n)
    {
        Block block(static_cast<std::size_t>(n));
        for (double &x : block)
            x = ordinary();
        return block;
    }
    Block patterns(int n)
    {
        Block block(static_cast<std::size_t>(n));
        for (double &x : block)
            x = pattern();
        return block;
    }

private:
    std::mt19937_64 bits;
};

const Block specials = {0.0,
                        -0.0,
                        1.0,
                        -1.0,
                        INF,
                        -INF,
                        LARGEST,
                        -LARGEST,
                        std::numeric_limits<double>::min(),
                        std::numeric_limits<double>::denorm_min(),
                        -std::numeric_limits<double>::denorm_min(),
                        1e-100,
                        1e300,
                        doubleOf(0x7ff8000000000000),
                        doubleOf(0xfff8000000000000),
                        doubleOf(0x7ff0000000abcdef)};

// A NaN that was worked out is just a NaN; one that was left is the one it was.
void expectQuotients(const Block &expected, const Block &actual, const Block &numerators,
                     const Block &divisors, bool isKept)
{
    for (std::size_t i = 0; i < expected.size(); ++i) {
        const bool isLeft = isKept && reference::countsAsZero(divisors[i]);
        if (std::isnan(expected[i]) && !isLeft)
            ASSERT_TRUE(std::isnan(actual[i])) << numerators[i] << " / " << divisors[i];
        else
            ASSERT_EQ(bitsOf(actual[i]), bitsOf(expected[i]))
                << numerators[i] << " / " << divisors[i] << " at " << i << " of "
                << expected.size();
    }
}

void expectReport(Reports &reports, bool isFailure, const char *function, int result)
{
    EXPECT_EQ(result, isFailure ? -9 : 0);
    const auto expected =
        isFailure ? badArgument(function, BY_ZERO, FILE_NAME) : std::vector<Report>{};
    EXPECT_EQ(reports.take(), expected);
}

void expectDivisions(Reports &reports, const Block &a, const Block &b, int aAt = 0, int bAt = 0)
{
    const int n = static_cast<int>(a.size());
    const reference::Quotients kept = reference::divide(a, b, true);
    Guarded<double> num(a, aAt), den(b, bAt), to(n, (aAt + bAt) % 4);
    expectReport(reports, kept.isFailure, "rvxdbDiv2", rvxdbDiv2(den.data(), num.data(), n));
    expectQuotients(kept.block, num.values(), a, b, true);

    const reference::Quotients apart = reference::divide(a, b, false);
    const Guarded<double> again(a, aAt);
    expectReport(reports, apart.isFailure, "rvxdbDiv3",
                 rvxdbDiv3(a.data(), den.data(), to.data(), n));
    expectQuotients(apart.block, to.values(), a, b, false);

    // dst may be either source.
    Block inA = a, inB = b;
    expectReport(reports, apart.isFailure, "rvxdbDiv3",
                 rvxdbDiv3(inA.data(), b.data(), inA.data(), n));
    expectReport(reports, apart.isFailure, "rvxdbDiv3",
                 rvxdbDiv3(a.data(), inB.data(), inB.data(), n));
    expectQuotients(apart.block, inA, a, b, false);
    expectQuotients(apart.block, inB, a, b, false);
    ASSERT_TRUE(num.intact() && den.intact() && to.intact());
}

void expectDivisionByOne(Reports &reports, double val, const Block &a, int at = 0)
{
    const int n = static_cast<int>(a.size());
    const reference::Quotients expected = reference::divideByOne(val, a);
    Guarded<double> block(a, at);
    expectReport(reports, expected.isFailure, "rvxdbDiv1", rvxdbDiv1(val, block.data(), n));
    expectQuotients(expected.block, block.values(), a, Block(a.size(), val), true);
    ASSERT_TRUE(block.intact());
}

TEST(Div, EveryLengthAndAlignment)
{
    Reports reports;
    Source random(1);
    for (int n = 1; n <= 70; ++n)
        for (int at = 0; at < 16; ++at) {
            expectDivisions(reports, random.ordinaries(n), random.ordinaries(n), at / 4, at % 4);
            expectDivisionByOne(reports, random.ordinary(), random.ordinaries(n), at / 4);
        }
}

TEST(Div, EverySpecialPairAtEveryPosition)
{
    Reports reports;
    Source random(2);
    for (int n = 1; n <= 40; ++n) {
        const Block a = random.ordinaries(n), b = random.ordinaries(n);
        for (std::size_t at = 0; at < a.size(); ++at) {
            for (double num : specials) {
                for (double den : specials) {
                    // Every pair in short blocks, some of them in long ones.
                    if (n > 9 && random.below(16) != 0)
                        continue;
                    Block someA = a, someB = b;
                    someA[at] = num;
                    someB[at] = den;
                    expectDivisions(reports, someA, someB);
                }
                Block someA = a;
                someA[at] = num;
                for (double val : {0.0, -0.0, doubleOf(0x7ff8000000000000), 3.0, INF, 1e-310})
                    expectDivisionByOne(reports, val, someA);
            }
        }
    }
}

TEST(Div, AnyBitPattern)
{
    Reports reports;
    Source random(3);
    for (int done = 0; done < PATTERNS;) {
        const int n = 1 + random.below(500);
        expectDivisions(reports, random.patterns(n), random.patterns(n));
        expectDivisionByOne(reports, random.pattern(), random.patterns(n));
        done += n;
    }
}

TEST(Div, QuotientsAreTheNearestDoubles)
{
    Source random(4);
    for (int done = 0; done < PATTERNS / 4; done += 100) {
        const Block a = random.patterns(100), b = random.patterns(100);
        Reports reports;
        Block result(100);
        rvxdbDiv3(a.data(), b.data(), result.data(), 100);
        for (std::size_t i = 0; i < 100; ++i) {
            const double expected = reference::correct(mpfr_div, a[i], b[i]);
            if (!std::isnan(expected)) {
                ASSERT_EQ(bitsOf(result[i]), bitsOf(expected)) << a[i] << " / " << b[i];
            }
        }
    }
}

TEST(Div, ReadsNothingOutsideTheBlocks)
{
    Source random(5);
    Reports reports;
    for (int n = 1; n <= 20; ++n) {
        const Block a = random.ordinaries(n), b = random.ordinaries(n);
        for (Wall wall : {Wall::before, Wall::behind}) {
            Walled<double> num(a, wall), den(b, wall), to(a, wall);
            EXPECT_EQ(rvxdbDiv3(num.data(), den.data(), to.data(), n), 0);
            EXPECT_EQ(rvxdbDiv2(den.data(), num.data(), n), 0);
            EXPECT_EQ(rvxdbDiv1(3.0, to.data(), n), 0);
        }
    }
}

TEST(Div, ZeroDivisors)
{
    Reports reports;
    Block one = {-1.0, 0.0, 1.0};
    EXPECT_EQ(rvxdbDiv1(0.0, one.data(), 3), -9);
    EXPECT_EQ(one, (Block{-LARGEST, 0.0, LARGEST}));
    EXPECT_EQ(bitsOf(one[0]), 0xffefffffffffffffu);
    EXPECT_EQ(bitsOf(one[2]), 0x7fefffffffffffffu);

    const Block zero = {0.0};
    Block result = {7.0};
    EXPECT_EQ(rvxdbDiv3(zero.data(), zero.data(), result.data(), 1), -9);
    EXPECT_EQ(bitsOf(result[0]), 0u);
    for (int n : {3, 4}) {
        Block a(4, 6.0);
        const Block b(4, 3.0);
        EXPECT_EQ(rvxdbDiv2(b.data(), a.data(), n), 0);
        EXPECT_EQ(a[2], 2.0);
    }
    EXPECT_EQ(rvxGetErrStatus(), RVX_STATUS_BAD_ARGUMENT);
}

// Products of four divisors leave the range; the quotients do not.
TEST(Div, DivisorsOfAnySizeSideBySide)
{
    Reports reports;
    for (double size : {1e200, 1e-200, 1e-310, INF}) {
        const Block a = {size, size, size, 1.0}, b = {size, -size, 2.0, size};
        expectDivisions(reports, a, b);
    }
}

TEST(Div, ReciprocalIsRoundedOnceInTheFirstForm)
{
    Block block(9, 5.0);
    EXPECT_EQ(rvxdbDiv1(49.0, block.data(), 9), 0);
    for (double x : block)
        EXPECT_EQ(x, 5.0 * (1.0 / 49.0));
}

TEST(Div, ChecksInTheirOrder)
{
    Reports reports;
    double a[2] = {3.0, 4.0}, b[2] = {5.0, 6.0}, c[2] = {7.0, 8.0};
    const auto expect = [&](int result, int expected, const char *function, const char *message) {
        EXPECT_EQ(result, expected);
        EXPECT_EQ(reports.take(), badArgument(function, message, FILE_NAME));
        EXPECT_EQ(rvxGetErrStatus(), RVX_STATUS_BAD_ARGUMENT);
    };
    // The pointers come first, and zero as a divisor last.
    for (int n : {2, 0, -1}) {
        expect(rvxdbDiv1(0.0, nullptr, n), -10, "rvxdbDiv1", "dst==0");
        expect(rvxdbDiv2(nullptr, nullptr, n), -10, "rvxdbDiv2", "(double*)src==0");
        expect(rvxdbDiv2(a, nullptr, n), -10, "rvxdbDiv2", "dst==0");
        expect(rvxdbDiv3(nullptr, nullptr, nullptr, n), -10, "rvxdbDiv3", "(double*)srcA==0");
        expect(rvxdbDiv3(a, nullptr, nullptr, n), -10, "rvxdbDiv3", "(double*)srcB==0");
        expect(rvxdbDiv3(a, b, nullptr, n), -10, "rvxdbDiv3", "dst==0");
    }
    for (int n : {0, -1, std::numeric_limits<int>::min()}) {
        expect(rvxdbDiv1(0.0, a, n), -11, "rvxdbDiv1", "n<=0");
        expect(rvxdbDiv2(a, b, n), -11, "rvxdbDiv2", "n<=0");
        expect(rvxdbDiv3(a, b, c, n), -11, "rvxdbDiv3", "n<=0");
    }
    EXPECT_EQ(a[0], 3.0);
    EXPECT_EQ(b[0], 5.0);
    EXPECT_EQ(c[0], 7.0);
}

TEST(Div, FailedCheckEndsTheProcessInModeZero)
{
    double x[1] = {1.0};
    EXPECT_EXIT(rvxdbDiv1(1.0, nullptr, 1), ::testing::ExitedWithCode(1), "");
    EXPECT_EXIT(rvxdbDiv2(x, x, 0), ::testing::ExitedWithCode(1), "");
    EXPECT_EXIT(rvxdbDiv3(x, x, nullptr, 1), ::testing::ExitedWithCode(1), "");
}

// The block is whole before the report is made.
Block *watched;

int handler(int status, const char *, const char *, const char *, int)
{
    for (double x : *watched)
        EXPECT_EQ(x, LARGEST);
    return status;
}

TEST(Div, BlockIsWrittenBeforeTheReport)
{
    Reports reports;
    for (int n : {1, 3, 4, 9}) {
        Block block(static_cast<std::size_t>(n), 2.0);
        const Block zeros(block.size(), 0.0);
        watched = &block;
        rvxThreadContext *context = rvxGetThreadContext();
        const auto before = context->errHandler;
        context->errHandler = handler;
        rvxdbDiv1(0.0, block.data(), n);
        block.assign(block.size(), 2.0);
        rvxdbDiv2(zeros.data(), block.data(), n);
        block.assign(block.size(), 2.0);
        rvxdbDiv3(block.data(), zeros.data(), block.data(), n);
        context->errHandler = before;
    }
}

} // namespace
