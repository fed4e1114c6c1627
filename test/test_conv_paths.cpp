// The choice of paths in one and two dimensions, against a second writing of it.

#include <cstdint>
#include <random>
#include <string>

#include <gtest/gtest.h>

#include "convolution/rvxcnv2d.h"
#include "convolution/rvxconvd.h"
#include "reference/conv_costs.h"
#include "reference/route2d.h"

namespace {

struct Form {
    ConvForm library;
    reference::ConvForm reference;
};

const Form forms[] = {{RVX_CONV_D, reference::ConvForm::Real},
                      {RVX_CONV_Z, reference::ConvForm::Complex},
                      {RVX_CONV_ZD, reference::ConvForm::ComplexReal},
                      {RVX_CONV_DZ, reference::ConvForm::RealComplex}};

std::string nameOf(ConvChoice choice)
{
    if (choice.core == RVX_CONV_DIRECT)
        return "direct";
    return choice.core == RVX_CONV_WHOLE ? "whole" : "block " + std::to_string(choice.mode);
}

const char *nameOf(Conv2dRoute route)
{
    switch (route) {
    case Conv2dRoute::direct:
        return "direct";
    case Conv2dRoute::oneDimensional:
        return "1-d";
    case Conv2dRoute::overlap:
        return "overlap";
    default:
        return "whole";
    }
}

// Sizes of all magnitudes up to 2^maxBits.
class Sizes {
public:
    explicit Sizes(unsigned seed) : random(seed) {}
    int upTo(int maxBits)
    {
        const int bits = std::uniform_int_distribution<int>(0, maxBits)(random);
        return std::uniform_int_distribution<int>(1, 1 << bits)(random);
    }

private:
    std::mt19937 random;
};

void expectSamePath(const Form &form, int longer, int shorter)
{
    const reference::ConvPath path = reference::convPath(form.reference, longer, shorter);
    ASSERT_EQ(nameOf(rvxChooseConv(form.library, longer, shorter)), path)
        << longer << " and " << shorter;
    if (path.compare(0, 5, "block") == 0) {
        const int order = rvxConvBlockOrder(longer, shorter, path.back() - '0');
        ASSERT_EQ(1L << order, reference::convBlockLen(path, longer, shorter));
    }
}

} // namespace

TEST(ConvPaths, EveryThresholdHasTheDirectCoreBelowAndTheModelFromItOn)
{
    for (const Form &form : forms) {
        const reference::ConvLimits limits = reference::convLimits(form.reference);
        for (long shorter = 1; shorter < limits.upper + 20; ++shorter) {
            const long entry = shorter - limits.lower;
            const long threshold = entry >= 0 && shorter < limits.upper
                                       ? limits.longest[static_cast<std::size_t>(entry)]
                                       : 1000;
            for (long longer = threshold - 2; longer <= threshold + 2; ++longer)
                if (longer >= shorter)
                    expectSamePath(form, static_cast<int>(longer), static_cast<int>(shorter));
        }
    }
}

TEST(ConvPaths, TheModelChoosesAsItsSecondWritingForAnyLengths)
{
    Sizes sizes(51);
    for (int i = 0; i < 60000; ++i) {
        const int a = sizes.upTo(26), b = sizes.upTo(20);
        expectSamePath(forms[i % 4], std::max(a, b), std::min(a, b));
    }
}

TEST(ConvPaths, TheModelChoosesAsItsSecondWritingForAllShortLengths)
{
    for (const Form &form : forms)
        for (int shorter = 1; shorter <= 140; ++shorter)
            for (int longer = shorter; longer <= 700; ++longer)
                expectSamePath(form, longer, shorter);
}

TEST(Conv2dPaths, RoutesAndBlocksAreThoseOfTheSecondWriting)
{
    Sizes sizes(52);
    int routes = 0;
    for (int i = 0; i < 200000; ++i) {
        const int bits = 2 + i % 9;
        const reference::Shape x = {sizes.upTo(bits), sizes.upTo(bits)};
        const reference::Shape h = {sizes.upTo(bits), sizes.upTo(bits)};
        const Matrix xMatrix = {nullptr, x.cols, x.rows}, hMatrix = {nullptr, h.cols, h.rows};
        const Conv2dRoute route = rvxChooseConv2dRoute(xMatrix, hMatrix);
        ASSERT_EQ(nameOf(route), reference::conv2dRoute(x, h))
            << x.rows << "x" << x.cols << " and " << h.rows << "x" << h.cols;
        routes |= 1 << static_cast<int>(route);
        if (route == Conv2dRoute::overlap) {
            const bool exchanged = x.rows * x.cols < h.rows * h.cols;
            const Conv2dBlock block = rvxChooseConv2dBlock(exchanged ? xMatrix : hMatrix);
            const reference::Shape expected = reference::conv2dBlock(x, h);
            ASSERT_EQ(block.rows, expected.rows);
            ASSERT_EQ(block.cols, expected.cols);
        }
    }
    EXPECT_EQ(routes, 15) << "all four routes were met";
}
