// Two-dimensional convolution without memory and with an old status.

#include <array>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "reference/hartley.h"
#include "rvx.h"
#include "support/allocations.h"
#include "support/conv2d.h"
#include "support/reports.h"

namespace {

struct Shape {
    int xCols, xRows, hCols, hRows;
};

std::ostream &operator<<(std::ostream &out, const Shape &s)
{
    return out << s.xCols << " x " << s.xRows << " and " << s.hCols << " x " << s.hRows;
}

std::vector<Report> memoryReports(const std::vector<std::string> &reporters)
{
    std::vector<Report> reports;
    for (const std::string &func : reporters)
        reports.push_back(
            {RVX_STATUS_NO_MEMORY, func, "\nMemory allocation problem\n", "rvxcnv2d"});
    return reports;
}

class Conv2DMemory : public ::testing::TestWithParam<Shape> {
protected:
    void SetUp() override
    {
        const Shape s = GetParam();
        x = noise(s.xCols, s.xRows, 1);
        h = noise(s.hCols, s.hRows, 2);
    }

    // One call with refusals as in `memory`, against the reference with the same.
    void expectTheSameWithout(reference::Memory memory)
    {
        const std::vector<double> wanted = reference2d(x, h, memory);
        std::vector<double> y(outputsOf(x, h), RVX_UNWRITTEN);
        long live = 0;
        {
            AllocationWatch watch(memory.refusedFrom);
            if (!memory.onlyOne)
                watch.failAllFrom(memory.refusedFrom);
            convolve(x, h, y.data());
            live = watch.live();
            EXPECT_EQ(watch.allocations(), memory.asked);
        }
        EXPECT_EQ(live, 0);
        EXPECT_EQ(reports.take(), memoryReports(memory.reporters));
        EXPECT_EQ(rvxGetErrStatus(), memory.reporters.empty() ? 0 : RVX_STATUS_NO_MEMORY);
        EXPECT_TRUE(sameBits(y, wanted)) << describe(x, h, y, wanted);
        rvxSetErrStatus(0);
    }

    Reports reports;
    Grid x, h;
};

TEST_P(Conv2DMemory, EachRefusalIsReportedAndNothingIsLeft)
{
    reference::Memory whole;
    reference2d(x, h, whole);
    expectTheSameWithout(reference::Memory());
    for (long k = 1; k <= whole.asked + 1; ++k) {
        SCOPED_TRACE(k);
        for (bool onlyOne : {true, false}) {
            reference::Memory memory;
            memory.refusedFrom = k;
            memory.onlyOne = onlyOne;
            expectTheSameWithout(memory);
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Shapes, Conv2DMemory,
                         ::testing::Values(Shape{5, 4, 3, 3},     // a sum: takes none
                                           Shape{20, 20, 20, 20}, // one square transform
                                           Shape{20, 10, 20, 10}, // wider than high
                                           Shape{10, 20, 10, 20}, // higher: twice
                                           Shape{10, 40, 10, 30}, // four times
                                           Shape{2, 40, 2, 30},   // by far
                                           Shape{4, 30, 4, 20},   // its square
                                           Shape{1, 40, 3, 30},   // columns of one value
                                           Shape{1, 20, 2, 20},   // the transform's smallest width
                                           Shape{40, 40, 20, 20}, // square tiles
                                           Shape{40, 40, 20, 10}, // wide ones
                                           Shape{20, 40, 6, 20},  // high ones
                                           Shape{20, 40, 2, 20},  // four times
                                           Shape{5, 70, 4, 20},   // one column of tiles
                                           Shape{20, 10, 40, 40})); // operands exchanged

TEST(Conv2DStatus, AnOldOneChangesNothingButInOneDimension)
{
    Reports reports;
    for (int status : {-1, -4, -5, 7})
        for (const Shape s :
             {Shape{5, 4, 3, 3}, {20, 20, 20, 20}, {40, 40, 20, 20}, {10, 40, 10, 30}}) {
            const Grid x = noise(s.xCols, s.xRows, 1), h = noise(s.hCols, s.hRows, 2);
            const std::vector<double> wanted = reference2d(x, h);
            rvxSetErrStatus(status);
            EXPECT_TRUE(sameBits(convolved(x, h, 1), wanted)) << s;
            EXPECT_EQ(rvxGetErrStatus(), status);
            EXPECT_TRUE(reports.take().empty());
        }
}

TEST(Conv2DStatus, OneDimensionalRowsAnswerAsTheOneDimensionalConvolutionDoes)
{
    Reports reports;
    for (const Shape s : {Shape{50, 1, 20, 1}, {2000, 1, 300, 1}, {1, 2000, 1, 300}}) {
        const Grid x = noise(s.xCols, s.xRows, 1), h = noise(s.hCols, s.hRows, 2);
        std::vector<double> wanted(outputsOf(x, h), RVX_UNWRITTEN);
        rvxSetErrStatus(-4);
        rvxdConv(x.values.data(), static_cast<int>(x.values.size()), h.values.data(),
                 static_cast<int>(h.values.size()), wanted.data());
        const std::vector<Report> wantedReports = reports.take();
        const int wantedStatus = rvxGetErrStatus();
        rvxSetErrStatus(-4);
        EXPECT_TRUE(sameBits(convolved(x, h, 0), wanted)) << s;
        EXPECT_EQ(reports.take(), wantedReports);
        EXPECT_EQ(rvxGetErrStatus(), wantedStatus);
    }
}

// Sizes whose arrays no machine has end in a report, not in a wrapped product. The
// operands are never read.
TEST(Conv2DMemoryOfGiants, IsRefused)
{
    Reports reports;
    std::vector<double> y(1, RVX_UNWRITTEN);
    const int most = 2147483647;
    const double x = 1.0;
    rvxdConv2D(&x, most, 20, &x, 20, most, y.data());
    EXPECT_EQ(reports.take(), memoryReports({"rvxdConv2D"}));
    rvxdConv2D(&x, most, most, &x, most, most, y.data());
    EXPECT_EQ(reports.take(), memoryReports({"rvxdConv2D"}));
    rvxdConv2D(&x, most, most, &x, 1 << 29, 1 << 29, y.data());
    EXPECT_EQ(reports.take(), memoryReports({"owndOverlapConv2d"}));
    EXPECT_EQ(y[0], RVX_UNWRITTEN);
}

} // namespace
