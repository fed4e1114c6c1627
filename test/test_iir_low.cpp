// The low level of recursive filters by itself: its checks, what it stores, and how
// taps lie once they are normalised.

#include <cstring>
#include <vector>

#include <gtest/gtest.h>

#include "filter/rvxiirl.h"
#include "rvx.h"
#include "support/iir_families.h"
#include "support/iir_reports.h"
#include "support/reports.h"

namespace {

template <typename Family>
class IirLow : public ::testing::Test {
};

using Families = ::testing::Types<Real, Cplx, CplxTaps, RealTaps>;
TYPED_TEST_SUITE(IirLow, Families, );

TYPED_TEST(IirLow, InitialisersStopAtTheFirstFailure)
{
    using Tap = typename TypeParam::Tap;
    Reports reports;
    rvxIirTapState tapSt = {};
    std::vector<Tap> taps = tapsFor<Tap>(2, 1, 40);
    const char *direct = TypeParam::lowInitName;
    TypeParam::lowInit(2, nullptr, -1, nullptr);
    EXPECT_EQ(reports.take(), Expected{bad(direct, "tapStPtr==0")});
    TypeParam::lowInit(2, nullptr, -1, &tapSt);
    EXPECT_EQ(reports.take(), Expected{bad(direct, "taps==0")});
    TypeParam::lowInit(2, taps.data(), -1, &tapSt);
    EXPECT_EQ(reports.take(), Expected{bad(direct, "order < 0")});
    TypeParam::lowInit(2, taps.data(), 1, &tapSt);
    EXPECT_EQ(reports.take(), Expected{bad(direct, "iirType is out of range")});
    TypeParam::lowInit(-1, taps.data(), 1, &tapSt);
    EXPECT_EQ(reports.take(), Expected{bad(direct, "iirType is out of range")});
    const char *cascade = TypeParam::lowInitBqName;
    TypeParam::lowInitBq(2, nullptr, 0, nullptr);
    EXPECT_EQ(reports.take(), Expected{bad(cascade, "tapStPtr==0")});
    TypeParam::lowInitBq(2, nullptr, 0, &tapSt);
    EXPECT_EQ(reports.take(), Expected{bad(cascade, "taps==0")});
    TypeParam::lowInitBq(2, taps.data(), 0, &tapSt);
    EXPECT_EQ(reports.take(), Expected{bad(cascade, "numQuads <= 0")});
    TypeParam::lowInitBq(2, taps.data(), 1, &tapSt);
    EXPECT_EQ(reports.take(), Expected{bad(cascade, "iirType is out of range")});
    EXPECT_EQ(tapSt.taps, nullptr);
}

TYPED_TEST(IirLow, DelayLineReportsByGroups)
{
    using Tap = typename TypeParam::Tap;
    using Out = typename TypeParam::Out;
    Reports reports;
    std::vector<Tap> taps = tapsFor<Tap>(0, 3, 41);
    rvxIirTapState tapSt = {};
    rvxIirDlyState dlySt = {};
    std::vector<Out> line = IirSource(42).make<Out>(3);
    const char *func = TypeParam::lowDelayName;
    TypeParam::lowDelay(nullptr, nullptr, nullptr);
    EXPECT_EQ(reports.take(), (Expected{bad(func, "tapStPtr==0"), bad(func, "dlyStPtr==0")}));
    rvxSetErrStatus(0);
    tapSt = {3, nullptr, 0, 4};
    TypeParam::lowDelay(&tapSt, nullptr, &dlySt);
    EXPECT_EQ(reports.take(),
              (Expected{bad(func, NO_TAPS), bad(func, NO_TAPS), bad(func, "dlyl==0")}));
    rvxSetErrStatus(0);
    TypeParam::lowInit(0, taps.data(), 3, &tapSt);
    rvxSetErrStatus(-3);
    TypeParam::lowDelay(&tapSt, line.data(), &dlySt);
    EXPECT_EQ(dlySt.dlyl, nullptr);
    rvxSetErrStatus(0);
    TypeParam::lowDelay(&tapSt, line.data(), &dlySt);
    EXPECT_EQ(dlySt.dlyl, line.data());
    for (const Out &element : line)
        EXPECT_TRUE(isZero(element));
    // An empty delay line may be null and is not handed to the block fill.
    tapSt.order = 0;
    TypeParam::lowDelay(&tapSt, nullptr, &dlySt);
    EXPECT_EQ(dlySt.dlyl, nullptr);
    EXPECT_TRUE(reports.take().empty());
}

TYPED_TEST(IirLow, FiltersReportByGroups)
{
    using Tap = typename TypeParam::Tap;
    using Out = typename TypeParam::Out;
    Reports reports;
    std::vector<Tap> taps = tapsFor<Tap>(0, 3, 43);
    rvxIirTapState tapSt = {};
    rvxIirDlyState dlySt = {};
    const typename TypeParam::Sample x[2] = {};
    Out y[2];
    const char *one = TypeParam::lowOneName;
    const char *block = TypeParam::lowBlockName;
    EXPECT_TRUE(isZero(TypeParam::lowOne(nullptr, nullptr, x[0])));
    EXPECT_EQ(reports.take(), (Expected{bad(one, "tapStPtr==0"), bad(one, "dlyStPtr==0")}));
    rvxSetErrStatus(0);
    TypeParam::lowBlock(nullptr, nullptr, nullptr, nullptr, -1);
    EXPECT_EQ(reports.take(), (Expected{bad(block, "tapStPtr==0"), bad(block, "dlyStPtr==0"),
                                        bad(block, "inSamps==0"), bad(block, "outSamps==0")}));
    for (int mode : {4, -1}) {
        tapSt = {3, nullptr, 0, mode};
        rvxSetErrStatus(0);
        EXPECT_TRUE(isZero(TypeParam::lowOne(&tapSt, &dlySt, x[0])));
        EXPECT_EQ(reports.take(),
                  (Expected{bad(one, NO_TAPS), bad(one, NO_TAPS), bad(one, NO_LINE)}));
        rvxSetErrStatus(0);
        TypeParam::lowBlock(&tapSt, &dlySt, x, y, -1);
        EXPECT_EQ(reports.take(), (Expected{bad(block, NO_TAPS), bad(block, NO_TAPS),
                                            bad(block, NO_LINE), bad(block, "numIters < 0")}));
        // Taps that are there leave the mode alone to be reported.
        tapSt.taps = taps.data();
        rvxSetErrStatus(0);
        TypeParam::lowBlock(&tapSt, &dlySt, x, y, 1);
        EXPECT_EQ(reports.take(), (Expected{bad(block, NO_TAPS), bad(block, NO_LINE)}));
    }
}

TYPED_TEST(IirLow, ModesOneAndThreeRunAsDirectForm)
{
    using Tap = typename TypeParam::Tap;
    using Out = typename TypeParam::Out;
    Reports reports;
    const auto x = IirSource(44).make<typename TypeParam::Sample>(30);
    std::vector<Out> expected;
    for (int mode : {0, 1, 3}) {
        std::vector<Tap> taps = tapsFor<Tap>(0, 4, 45);
        std::vector<Out> line(4), y(x.size());
        rvxIirTapState tapSt = {};
        rvxIirDlyState dlySt = {};
        TypeParam::lowInit(0, taps.data(), 4, &tapSt);
        TypeParam::lowDelay(&tapSt, line.data(), &dlySt);
        tapSt.mode = mode;
        y[0] = TypeParam::lowOne(&tapSt, &dlySt, x[0]);
        TypeParam::lowBlock(&tapSt, &dlySt, x.data() + 1, y.data() + 1, 29);
        if (mode == 0)
            expected = y;
        EXPECT_EQ(std::memcmp(y.data(), expected.data(), y.size() * sizeof(Out)), 0);
    }
    EXPECT_TRUE(reports.take().empty());
}

TEST(IirLowTaps, NormalisedTapsLieAsDescribed)
{
    Reports reports;
    // b0 b1 b2 a0 a1 a2; powers of two, so that all is exact
    double direct[] = {2.0, 4.0, 6.0, 2.0, 10.0, 12.0};
    rvxIirTapState tapSt = {};
    rvxdIirlInit(0, direct, 2, &tapSt);
    const double directExpected[] = {1.0, 2.0, 3.0, 5.0, 6.0, 12.0};
    EXPECT_EQ(std::memcmp(direct, directExpected, sizeof direct), 0);
    double quads[] = {2.0, 4.0, 6.0, 4.0, 8.0, 20.0, 8.0, 24.0, 40.0, 2.0, 6.0, 14.0};
    rvxdIirlInitBq(0, quads, 2, &tapSt);
    const double quadsExpected[] = {2.0, 2.0, 5.0, 2.0, 3.0, 3.0, 7.0, 3.0, 5.0, 2.0, 6.0, 14.0};
    EXPECT_EQ(std::memcmp(quads, quadsExpected, sizeof quads), 0);
    EXPECT_TRUE(reports.take().empty());
}

} // namespace
