// What the tests of two-dimensional convolution share.

#ifndef RVX_TEST_CONV2D_H
#define RVX_TEST_CONV2D_H

#include <cstring>
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "reference/hartley.h"
#include "rvx.h"
#include "support/blocks.h"
#include "support/guarded.h"

using reference::Grid;

inline std::size_t asSize(int n)
{
    return static_cast<std::size_t>(n);
}

// A matrix that has a size alone.
inline Grid sized(int cols, int rows)
{
    return {{}, asSize(cols), asSize(rows)};
}

inline Grid noise(int cols, int rows, unsigned seed)
{
    return {makeBlock(Temper::uniform, cols * rows, seed), asSize(cols), asSize(rows)};
}

inline std::size_t outputsOf(const Grid &x, const Grid &h)
{
    return (x.cols + h.cols - 1) * (x.rows + h.rows - 1);
}

// What no convolution here gives: y before the call.
constexpr double RVX_UNWRITTEN = -12345.678;

inline void convolve(const Grid &x, const Grid &h, double *y)
{
    rvxdConv2D(x.values.data(), static_cast<int>(x.cols), static_cast<int>(x.rows), h.values.data(),
               static_cast<int>(h.cols), static_cast<int>(h.rows), y);
}

// The library's result; operands and y stand between guards.
inline std::vector<double> convolved(const Grid &x, const Grid &h, int misalignment)
{
    Guarded<double> xs(x.values, misalignment), hs(h.values, (misalignment + 1) % 4);
    Guarded<double> y(std::vector<double>(outputsOf(x, h), RVX_UNWRITTEN), (misalignment + 2) % 4);
    rvxdConv2D(xs.data(), static_cast<int>(x.cols), static_cast<int>(x.rows), hs.data(),
               static_cast<int>(h.cols), static_cast<int>(h.rows), y.data());
    EXPECT_TRUE(xs.intact() && hs.intact() && y.intact());
    EXPECT_EQ(std::memcmp(xs.data(), x.values.data(), x.values.size() * sizeof(double)), 0);
    EXPECT_EQ(std::memcmp(hs.data(), h.values.data(), h.values.size() * sizeof(double)), 0);
    return y.values();
}

// The reference's, with memory that may be refused.
inline std::vector<double> reference2d(const Grid &x, const Grid &h, reference::Memory &memory)
{
    std::vector<double> y(outputsOf(x, h), RVX_UNWRITTEN);
    switch (reference::routeOf(x, h)) {
    case reference::Route2d::direct:
        reference::directConvolution(x, h, y.data());
        break;
    case reference::Route2d::oneDimensional:
        rvxdConv(x.values.data(), static_cast<int>(x.values.size()), h.values.data(),
                 static_cast<int>(h.values.size()), y.data());
        break;
    case reference::Route2d::overlap:
        reference::overlapConvolution(x, h, memory, y.data());
        break;
    default:
        reference::wholeConvolution(x, h, memory, y.data());
    }
    return y;
}

inline std::vector<double> reference2d(const Grid &x, const Grid &h)
{
    reference::Memory memory;
    return reference2d(x, h, memory);
}

// Any NaN is like any other.
inline bool sameBits(double a, double b)
{
    return bitsOf(a) == bitsOf(b) || (a != a && b != b);
}

inline bool sameBits(const std::vector<double> &a, const std::vector<double> &b)
{
    bool same = a.size() == b.size();
    for (std::size_t i = 0; same && i < a.size(); ++i)
        same = sameBits(a[i], b[i]);
    return same;
}

// Sizes and the first difference.
inline std::string describe(const Grid &x, const Grid &h, const std::vector<double> &result,
                            const std::vector<double> &wanted)
{
    std::ostringstream text;
    text << x.cols << " x " << x.rows << " and " << h.cols << " x " << h.rows;
    const std::size_t cols = x.cols + h.cols - 1;
    for (std::size_t i = 0; i < result.size(); ++i)
        if (!sameBits(result[i], wanted[i])) {
            text.precision(17);
            text << ", row " << i / cols << " column " << i % cols << ": " << result[i]
                 << " and not " << wanted[i];
            break;
        }
    return text.str();
}

#endif
