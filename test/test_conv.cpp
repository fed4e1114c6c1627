// What the convolutions promise beside the order of their direct sums and the choice of
// their path: checks, values by transforms, statuses, memory.

#include <algorithm>
#include <climits>
#include <type_traits>

#include "convolution/rvxconvd.h"
#include "reference/conv.h"
#include "support/allocations.h"
#include "support/conv_forms.h"
#include "support/reports.h"
#include "support/worse.h"
#include "transform/rvxtwd.h"

namespace {

template <typename Form>
class Conv : public ::testing::Test {
};
TYPED_TEST_SUITE(Conv, ConvForms, ConvFormNames);

template <typename Element>
double squaredNorm(const std::vector<Element> &v, std::int64_t from, std::int64_t to)
{
    double sum = 0.0;
    for (std::int64_t i = std::max<std::int64_t>(from, 0);
         i < std::min(to, static_cast<std::int64_t>(v.size())); ++i) {
        const reference::Wide z = reference::widen(v[static_cast<std::size_t>(i)]);
        sum += static_cast<double>(std::norm(z));
    }
    return sum;
}

// The error of an output in units of order * 2^-53 * |x| |h|, where x is the longer
// operand in the N values that the block with that output is made of.
template <typename Form>
double unitsOff(const std::vector<typename Form::X> &x, const std::vector<typename Form::H> &h,
                const std::vector<typename Form::Y> &y, int order, std::int64_t n)
{
    const std::int64_t N = std::int64_t{1} << order;
    const std::int64_t history = static_cast<std::int64_t>(h.size()) - 1;
    const std::int64_t step = N - history;
    const bool single = static_cast<std::int64_t>(y.size()) <= N;
    const std::int64_t start = single || n < step ? 0 : n / step * step - history;
    const std::int64_t end = single ? N : start == 0 ? step : start + N;
    const auto at = static_cast<std::size_t>(n);
    const reference::Wide error = reference::widen(y[at]) - reference::convAt(x, h, at);
    const double size = std::sqrt(squaredNorm(x, start, end) *
                                  squaredNorm(h, 0, static_cast<std::int64_t>(h.size())));
    return static_cast<double>(std::abs(error)) / (order * 0x1p-53 * size);
}

// Runs a core into guarded memory and looks at outputs: all of a short result, of a
// longer one those about the seams of the blocks and some between.
template <typename Form>
void expectConvolved(int longLen, int shortLen, int mode)
{
    const auto seed = static_cast<unsigned>(longLen + 7 * shortLen + mode);
    const auto x = noiseOf<typename Form::X>(longLen, seed);
    const auto h = noiseOf<typename Form::H>(shortLen, seed + 1);
    Guarded<typename Form::Y> ys(longLen + shortLen - 1, shortLen % 4);
    rvxSetErrStatus(0);
    int order;
    if (mode == 0) {
        order = rvxConvWholeOrder(longLen, shortLen);
        Form::whole(x.data(), longLen, h.data(), shortLen, ys.data());
    } else {
        order = rvxConvBlockOrder(longLen, shortLen, mode);
        Form::blocks(x.data(), longLen, h.data(), shortLen, ys.data(), mode);
    }
    EXPECT_EQ(rvxGetErrStatus(), 0);
    EXPECT_TRUE(ys.intact());
    const auto y = ys.values();
    const std::int64_t total = longLen + shortLen - 1;
    const std::int64_t step = (std::int64_t{1} << order) - shortLen + 1;
    double worst = 0.0;
    for (std::int64_t n = 0; n < total; ++n) {
        const std::int64_t phase = n % step;
        const bool looked = total < 700 || phase < 2 || phase > step - 3 || n > total - 3 ||
                            (n * 7919) % total < 100;
        if (looked)
            worst = worse(worst, unitsOff<Form>(x, h, y, order, n));
    }
    // Measured: 0.63, and 0.30 where blocks are complex; the shortest transforms are worst.
    EXPECT_LT(worst, Form::form == RVX_CONV_D ? 0.7 : 0.35)
        << longLen << " by " << shortLen << ", mode " << mode;
}

} // namespace

// ---- checks ---------------------------------------------------------------

TYPED_TEST(Conv, ChecksInTheirOrder)
{
    Reports reports;
    typename TypeParam::X x[4] = {};
    typename TypeParam::H h[4] = {};
    std::vector<typename TypeParam::Y> y(7);
    for (auto &value : y)
        setParts(value, 5.0, 6.0);
    const auto before = y;
    const auto refused = [&](const typename TypeParam::X *px, int xLen,
                             const typename TypeParam::H *ph, int hLen, typename TypeParam::Y *py,
                             const char *message) {
        EXPECT_EQ(TypeParam::conv(px, xLen, ph, hLen, py), RVX_STATUS_BAD_ARGUMENT);
        EXPECT_EQ(reports.take(), badArgument(TypeParam::name().c_str(), message, "rvxconvd"));
        EXPECT_EQ(rvxGetErrStatus(), RVX_STATUS_BAD_ARGUMENT);
        EXPECT_TRUE(sameBits(y, before));
    };
    // Each call is wrong in everything that is checked later too.
    refused(nullptr, 0, nullptr, 0, nullptr, "x==0");
    for (int bad : {0, -1, INT_MIN}) {
        refused(x, bad, nullptr, bad, nullptr, "xLen<=0");
        refused(x, 4, h, bad, nullptr, "hLen<=0");
        refused(x, 4, h, bad, y.data(), "hLen<=0");
    }
    refused(x, 4, nullptr, 0, nullptr, "h==0");
    refused(x, 4, h, 4, nullptr, "y==0");
    refused(x, 1, h, 4, nullptr, "y==0");
}

TYPED_TEST(Conv, CoresMakeTheChecksUnderTheirOwnNames)
{
    Reports reports;
    typename TypeParam::X x[9] = {};
    typename TypeParam::H h[9] = {};
    typename TypeParam::Y y[17] = {};
    const auto tryAll = [&](const char *core, const auto &run) {
        const auto refused = [&](const char *message) {
            EXPECT_EQ(reports.take(),
                      badArgument((TypeParam::name() + core).c_str(), message, "rvxconvd"));
        };
        run(nullptr, 0, nullptr, 0, nullptr);
        refused("x==0");
        run(x, 0, nullptr, 0, nullptr);
        refused("xLen<=0");
        run(x, 9, nullptr, 0, nullptr);
        refused("h==0");
        run(x, 9, h, 0, nullptr);
        refused("hLen<=0");
        run(x, 9, h, 9, nullptr);
        refused("y==0");
    };
    using X = typename TypeParam::X;
    using H = typename TypeParam::H;
    using Y = typename TypeParam::Y;
    if (TypeParam::form != RVX_CONV_Z) // which is without, deliberately
        tryAll("0", TypeParam::direct);
    tryAll("1", TypeParam::whole);
    tryAll("m", [](const X *px, int xLen, const H *ph, int hLen, Y *py) {
        TypeParam::blocks(px, xLen, ph, hLen, py, 2);
    });
    EXPECT_EQ(rvxGetErrStatus(), RVX_STATUS_BAD_ARGUMENT);
    static_cast<void>(y);
}

// Which is without the checks, deliberately: no x is a result of hLen - 1 values.
TEST(ConvCores, TheDirectOneOfComplexOperandsReportsNothing)
{
    Reports reports;
    const ZCplx value = {1.0, 2.0};
    ZCplx y = {5.0, 6.0};
    rvxzConv0(&value, 0, &value, 1, &y);
    rvxzConv0(nullptr, 0, &value, 1, nullptr);
    EXPECT_TRUE(reports.take().empty());
    EXPECT_EQ(y.re, 5.0);
    EXPECT_EQ(y.im, 6.0);
}

TYPED_TEST(Conv, EndsTheProcessInModeZero)
{
    typename TypeParam::X x[1] = {};
    typename TypeParam::H h[1] = {};
    typename TypeParam::Y y[1];
    EXPECT_EXIT(TypeParam::conv(x, 1, h, 0, y), ::testing::ExitedWithCode(1), "");
}

TYPED_TEST(Conv, ReturnsTheStatusOfTheThread)
{
    Reports reports;
    typename TypeParam::X x[1] = {};
    typename TypeParam::H h[1] = {};
    typename TypeParam::Y y[1];
    EXPECT_EQ(TypeParam::conv(x, 1, h, 1, y), 0);
    rvxSetErrStatus(7);
    EXPECT_EQ(TypeParam::conv(x, 1, h, 1, y), 7);
    EXPECT_TRUE(reports.take().empty());
}

// ---- values ---------------------------------------------------------------

TYPED_TEST(Conv, OneTransformGivesTheSums)
{
    for (int shortLen : {8, 9, 15, 16, 17, 40, 63, 64, 65, 130})
        for (int extra : {0, 1, 2, 3, 31, 200, 640})
            expectConvolved<TypeParam>(shortLen + extra, shortLen, 0);
    // Results of exactly a power of two, one less and one more.
    for (int total : {63, 64, 65, 255, 256, 257, 1023, 1024, 1025})
        for (int shortLen : {8, 13, 30})
            expectConvolved<TypeParam>(total - shortLen + 1, shortLen, 0);
}

TYPED_TEST(Conv, BlocksGiveTheSumsWhateverTheLastOneHolds)
{
    for (int mode : {1, 2, 3})
        for (int shortLen : {8, 9, 15, 16, 17, 31, 60}) {
            const int n = 1 << rvxConvBlockOrder(100000, shortLen, mode);
            const int step = n - shortLen + 1;
            for (int blocks : {1, 2, 3, 5})
                // About the ends of x and of the result.
                for (int rest : {-shortLen, 1 - shortLen, 2 - shortLen, 3 - shortLen, -2, -1, 0, 1,
                                 2, shortLen - 2, shortLen - 1, shortLen, shortLen + 1, step / 2,
                                 step - shortLen}) {
                    const int longLen = blocks * step + rest;
                    if (longLen >= shortLen)
                        expectConvolved<TypeParam>(longLen, shortLen, mode);
                }
        }
}

TYPED_TEST(Conv, LongOperands)
{
    expectConvolved<TypeParam>(40000, 3000, 0);
    expectConvolved<TypeParam>(40000, 3000, 1);
    expectConvolved<TypeParam>(100000, 1000, 2);
    expectConvolved<TypeParam>(100000, 1023, 3);
    expectConvolved<TypeParam>(100000, 1024, 3);
    expectConvolved<TypeParam>(300000, 50000, 2);
}

TYPED_TEST(Conv, ExchangedOperandsGiveTheSameResult)
{
    using X = typename TypeParam::X;
    using H = typename TypeParam::H;
    // One size for each core.
    const int sizes[][2] = {{30, 6}, {300, 110}, {5000, 150}};
    for (const auto &size : sizes) {
        const auto x = noiseOf<X>(size[1], 31);
        const auto h = noiseOf<H>(size[0], 32);
        std::vector<typename TypeParam::Y> y(x.size() + h.size() - 1), exchanged(y.size());
        EXPECT_EQ(TypeParam::conv(x.data(), size[1], h.data(), size[0], y.data()), 0);
        if constexpr (TypeParam::form == RVX_CONV_ZD)
            rvxdzConv(h.data(), size[0], x.data(), size[1], exchanged.data());
        else if constexpr (TypeParam::form == RVX_CONV_DZ)
            rvxzdConv(h.data(), size[0], x.data(), size[1], exchanged.data());
        else
            TypeParam::conv(h.data(), size[0], x.data(), size[1], exchanged.data());
        EXPECT_TRUE(sameBits(y, exchanged)) << size[0] << " by " << size[1];
    }
}

TYPED_TEST(Conv, OperandsAreNotWritten)
{
    const auto x = noiseOf<typename TypeParam::X>(5000, 33);
    const auto h = noiseOf<typename TypeParam::H>(150, 34);
    auto xUsed = x;
    auto hUsed = h;
    convOf<TypeParam>(xUsed, hUsed);
    EXPECT_TRUE(sameBits(x, xUsed));
    EXPECT_TRUE(sameBits(h, hUsed));
}

TYPED_TEST(Conv, OperandsMayBeOneArrayOrShareSomeOfIt)
{
    if constexpr (std::is_same_v<typename TypeParam::X, typename TypeParam::H>) {
        // Two sizes for each core, one of them the whole array twice.
        const int sizes[][3] = {{30, 30, 0},   {40, 6, 11},    {109, 109, 0},
                                {120, 110, 5}, {5000, 150, 7}, {5000, 150, 4850}};
        for (const auto &[longLen, shortLen, from] : sizes) {
            const auto x = noiseOf<typename TypeParam::X>(longLen, 35);
            const std::vector<typename TypeParam::H> h(x.begin() + from,
                                                       x.begin() + from + shortLen);
            auto y = convOf<TypeParam>(x, h);
            const auto expected = y;
            EXPECT_EQ(TypeParam::conv(x.data(), longLen, x.data() + from, shortLen, y.data()), 0);
            EXPECT_TRUE(sameBits(y, expected)) << longLen << " by " << shortLen;
            EXPECT_EQ(TypeParam::conv(x.data() + from, shortLen, x.data(), longLen, y.data()), 0);
            EXPECT_TRUE(sameBits(y, convOf<TypeParam>(h, x))) << shortLen << " by " << longLen;
        }
    }
}

// ---- statuses -------------------------------------------------------------

namespace {

// A call that takes each core in turn, with the core's name.
struct CoreSize {
    int longLen, shortLen;
    ConvCore core;
    const char *suffix;
};

const CoreSize coreSizes[] = {{40, 6, RVX_CONV_DIRECT, "0"},
                              {120, 110, RVX_CONV_WHOLE, "1"},
                              {5000, 150, RVX_CONV_BLOCKS, "m"}};

Report backtrace(const std::string &func)
{
    return {RVX_STATUS_BACKTRACE, func, "(null)", "rvxconvd"};
}

} // namespace

TYPED_TEST(Conv, AnOldStatusStopsTransformsAfterTheirTables)
{
    for (const CoreSize &size : coreSizes)
        for (bool exchanged : {false, true}) {
            ASSERT_EQ(rvxChooseConv(TypeParam::form, size.longLen, size.shortLen).core, size.core);
            Reports reports;
            rvxFreeFftTables();
            // Exchanged, a mixed form is the other one; each core of it is like this one's.
            const std::string name = exchanged ? exchangedName<TypeParam>() : TypeParam::name();
            const int xLen = exchanged ? size.shortLen : size.longLen;
            const int hLen = exchanged ? size.longLen : size.shortLen;
            const auto x = noiseOf<typename TypeParam::X>(xLen, 41);
            const auto h = noiseOf<typename TypeParam::H>(hLen, 42);
            std::vector<typename TypeParam::Y> y(x.size() + h.size() - 1);
            for (auto &value : y)
                setParts(value, 5.0, 6.0);
            const auto before = y;
            rvxSetErrStatus(RVX_STATUS_BAD_STATE);
            AllocationWatch watch;
            EXPECT_EQ(TypeParam::conv(x.data(), xLen, h.data(), hLen, y.data()),
                      RVX_STATUS_BACKTRACE);
            EXPECT_EQ(rvxGetErrStatus(), RVX_STATUS_BAD_STATE);
            std::vector<Report> expected = {backtrace(name)};
            if (size.core == RVX_CONV_DIRECT) {
                EXPECT_FALSE(sameBits(y, before));
            } else {
                expected.insert(expected.begin(), backtrace(name + size.suffix));
                EXPECT_TRUE(sameBits(y, before));
                EXPECT_GT(watch.live(), 0) << "the tables";
            }
            EXPECT_EQ(reports.take(), expected) << size.suffix;
            rvxFreeFftTables();
            EXPECT_EQ(watch.live(), 0);
        }
}

TYPED_TEST(Conv, AnOldStatusLeavesTheDirectResultRight)
{
    Reports reports;
    const auto x = noiseOf<typename TypeParam::X>(40, 43);
    const auto h = noiseOf<typename TypeParam::H>(6, 44);
    rvxSetErrStatus(RVX_STATUS_NO_MEMORY);
    EXPECT_TRUE(sameBits(convOf<TypeParam>(x, h), reference::convInStatedOrder(x, h)));
}

TYPED_TEST(Conv, GoesOnWhereTheHandlerSaysSo)
{
    for (const CoreSize &size : coreSizes) {
        const auto x = noiseOf<typename TypeParam::X>(size.longLen, 45);
        const auto h = noiseOf<typename TypeParam::H>(size.shortLen, 46);
        rvxSetErrStatus(0);
        const auto expected = convOf<TypeParam>(x, h);
        Reports reports;
        rvxThreadContext *context = rvxGetThreadContext();
        context->errHandler = [](int, const char *, const char *, const char *, int) { return 0; };
        rvxSetErrStatus(RVX_STATUS_BAD_STATE);
        EXPECT_TRUE(sameBits(convOf<TypeParam>(x, h), expected)) << size.suffix;
        rvxSetErrStatus(0);
    }
}

// ---- memory ---------------------------------------------------------------

TYPED_TEST(Conv, DirectSumsNeedNoMemory)
{
    const auto x = noiseOf<typename TypeParam::X>(300, 51);
    const auto h = noiseOf<typename TypeParam::H>(7, 52);
    ASSERT_EQ(rvxChooseConv(TypeParam::form, 250, 7).core, RVX_CONV_DIRECT);
    std::vector<typename TypeParam::Y> y(256);
    AllocationWatch watch;
    TypeParam::conv(x.data(), 250, h.data(), 7, y.data());
    EXPECT_EQ(watch.allocations(), 0);
}

TYPED_TEST(Conv, WithTheTablesThereTwoBuffersAreTaken)
{
    for (const CoreSize &size : coreSizes) {
        if (size.core == RVX_CONV_DIRECT)
            continue;
        const auto x = noiseOf<typename TypeParam::X>(size.longLen, 53);
        const auto h = noiseOf<typename TypeParam::H>(size.shortLen, 54);
        auto y = convOf<TypeParam>(x, h);
        const auto expected = y;
        const std::string core = TypeParam::name() + size.suffix;
        for (long k : {1, 2, 3}) {
            Reports reports;
            for (auto &value : y)
                setParts(value, 5.0, 6.0);
            const auto before = y;
            int status;
            {
                AllocationWatch watch(k);
                status = TypeParam::conv(x.data(), size.longLen, h.data(), size.shortLen, y.data());
                EXPECT_EQ(watch.live(), 0);
                EXPECT_EQ(watch.failures(), k < 3 ? 1 : 0) << "two, and none in the loop";
                EXPECT_EQ(watch.allocations(), std::min(k, 2L));
            }
            if (k == 3) {
                EXPECT_EQ(status, 0);
                EXPECT_TRUE(sameBits(y, expected));
                continue;
            }
            EXPECT_EQ(status, RVX_STATUS_BACKTRACE);
            EXPECT_EQ(rvxGetErrStatus(), RVX_STATUS_NO_MEMORY);
            EXPECT_EQ(reports.take(),
                      (std::vector<Report>{{RVX_STATUS_NO_MEMORY, core, "NULL Pointer", "rvxconvd"},
                                           backtrace(TypeParam::name())}));
            EXPECT_TRUE(sameBits(y, before));
        }
    }
}

TYPED_TEST(Conv, EveryFailedAllocationEndsCleanly)
{
    for (const CoreSize &size : coreSizes)
        for (bool all : {false, true}) {
            const auto x = noiseOf<typename TypeParam::X>(size.longLen, 55);
            const auto h = noiseOf<typename TypeParam::H>(size.shortLen, 56);
            rvxSetErrStatus(0);
            rvxFreeFftTables();
            const auto expected = convOf<TypeParam>(x, h);
            rvxFreeFftTables();
            long needed = 0;
            {
                AllocationWatch watch;
                std::vector<typename TypeParam::Y> y;
                {
                    AllocationPause pause;
                    y.resize(expected.size());
                }
                TypeParam::conv(x.data(), size.longLen, h.data(), size.shortLen, y.data());
                needed = watch.allocations();
                AllocationPause pause;
                y = {};
            }
            for (long k = 1; k <= needed; ++k) {
                Reports reports;
                rvxFreeFftTables();
                auto y = expected;
                AllocationWatch watch(all ? 0 : k);
                if (all)
                    watch.failAllFrom(k);
                const int status =
                    TypeParam::conv(x.data(), size.longLen, h.data(), size.shortLen, y.data());
                {
                    AllocationPause pause;
                    const std::vector<Report> seen = reports.take();
                    if (status == 0) {
                        // A table that fails once is made at the second try.
                        EXPECT_FALSE(all);
                        EXPECT_TRUE(seen.empty());
                        EXPECT_EQ(rvxGetErrStatus(), 0);
                        EXPECT_TRUE(sameBits(y, expected)) << k;
                    } else {
                        EXPECT_EQ(status, RVX_STATUS_BACKTRACE);
                        EXPECT_EQ(rvxGetErrStatus(), RVX_STATUS_NO_MEMORY);
                        ASSERT_GE(seen.size(), 2u);
                        EXPECT_EQ(seen.front().status, RVX_STATUS_NO_MEMORY);
                        EXPECT_EQ(seen.back(), backtrace(TypeParam::name()));
                        if (seen.size() == 3) {
                            EXPECT_EQ(seen[1], backtrace(TypeParam::name() + size.suffix));
                        }
                    }
                }
                rvxFreeFftTables();
                EXPECT_EQ(watch.live(), 0) << k;
            }
        }
}

// Lengths whose sum does not fit a count, and transforms that no memory holds: nothing is
// read or written but the status.
TYPED_TEST(Conv, GiantsEndInReports)
{
    typename TypeParam::X x[1];
    typename TypeParam::H h[1];
    setParts(x[0], 1.0, 2.0);
    setParts(h[0], 3.0, 4.0);
    std::vector<typename TypeParam::Y> y(1);
    setParts(y[0], 5.0, 6.0);
    const auto before = y;
    const int giants[][2] = {{INT_MAX, INT_MAX}, {INT_MAX, 1 << 30}, {1 << 30, INT_MAX},
                             {1 << 30, 1 << 30}, {1 << 29, INT_MAX}, {INT_MAX, 1 << 27}};
    for (const auto &size : giants) {
        Reports reports;
        rvxFreeFftTables();
        int status;
        {
            AllocationWatch watch;
            watch.failAllFrom(1); // a machine may have this much
            status = TypeParam::conv(x, size[0], h, size[1], y.data());
            EXPECT_EQ(watch.live(), 0);
        }
        EXPECT_EQ(status, RVX_STATUS_BACKTRACE);
        EXPECT_LT(rvxGetErrStatus(), RVX_STATUS_BACKTRACE);
        const std::string name = size[0] < size[1] ? exchangedName<TypeParam>() : TypeParam::name();
        EXPECT_EQ(reports.take().back(), backtrace(name));
        EXPECT_TRUE(sameBits(y, before));
    }
}
