// The four convolutions by their names, for tests that hold for all of them.

#ifndef RVX_TEST_CONV_FORMS_H
#define RVX_TEST_CONV_FORMS_H

#include <cmath>
#include <cstdint>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "convolution/rvxconvd.h"
#include "rvx.h"
#include "support/guarded.h"

#define RVX_CONV_FORM(NAME, FORM, LONG, SHORT, OUT)                                                \
    struct NAME {                                                                                  \
        using X = LONG;                                                                            \
        using H = SHORT;                                                                           \
        using Y = OUT;                                                                             \
        static constexpr ConvForm form = FORM;                                                     \
        static std::string name() { return "rvx" #NAME; }                                          \
        static int conv(const X *x, int xLen, const H *h, int hLen, Y *y)                          \
        {                                                                                          \
            return rvx##NAME(x, xLen, h, hLen, y);                                                 \
        }                                                                                          \
        static void direct(const X *x, int xLen, const H *h, int hLen, Y *y)                       \
        {                                                                                          \
            rvx##NAME##0(x, xLen, h, hLen, y);                                                     \
        }                                                                                          \
        static void whole(const X *x, int xLen, const H *h, int hLen, Y *y)                        \
        {                                                                                          \
            rvx##NAME##1(x, xLen, h, hLen, y);                                                     \
        }                                                                                          \
        static void blocks(const X *x, int xLen, const H *h, int hLen, Y *y, int mode)             \
        {                                                                                          \
            rvx##NAME##m(x, xLen, h, hLen, y, mode);                                               \
        }                                                                                          \
    }

RVX_CONV_FORM(dConv, RVX_CONV_D, double, double, double);
RVX_CONV_FORM(zConv, RVX_CONV_Z, ZCplx, ZCplx, ZCplx);
RVX_CONV_FORM(zdConv, RVX_CONV_ZD, ZCplx, double, ZCplx);
RVX_CONV_FORM(dzConv, RVX_CONV_DZ, double, ZCplx, ZCplx);

#undef RVX_CONV_FORM

using ConvForms = ::testing::Types<dConv, zConv, zdConv, dzConv>;

struct ConvFormNames {
    template <typename Form>
    static std::string GetName(int)
    {
        return Form::name();
    }
};

// What a mixed form becomes when its operands are exchanged.
template <typename Form>
std::string exchangedName()
{
    return Form::form == RVX_CONV_ZD   ? "rvxdzConv"
           : Form::form == RVX_CONV_DZ ? "rvxzdConv"
                                       : Form::name();
}

inline std::vector<double> partsOf(const std::vector<double> &v)
{
    return v;
}

inline std::vector<double> partsOf(const std::vector<ZCplx> &v)
{
    std::vector<double> parts;
    for (const ZCplx &z : v) {
        parts.push_back(z.re);
        parts.push_back(z.im);
    }
    return parts;
}

inline void setParts(double &x, double re, double)
{
    x = re;
}

inline void setParts(ZCplx &z, double re, double im)
{
    z = {re, im};
}

template <typename Element>
std::vector<Element> noiseOf(int n, unsigned seed)
{
    std::mt19937_64 bits(seed);
    const auto draw = [&bits] { return static_cast<double>(bits() >> 11) * 0x1p-52 - 1.0; };
    std::vector<Element> v(static_cast<std::size_t>(n));
    for (Element &e : v) {
        const double re = draw();
        const double im = draw();
        setParts(e, re, im);
    }
    return v;
}

// Every bit alike, where NaNs are NaNs.
template <typename Element>
::testing::AssertionResult sameBits(const std::vector<Element> &a, const std::vector<Element> &b)
{
    const std::vector<double> p = partsOf(a), q = partsOf(b);
    if (p.size() != q.size())
        return ::testing::AssertionFailure() << p.size() << " and " << q.size() << " parts";
    for (std::size_t i = 0; i < p.size(); ++i)
        if (bitsOf(p[i]) != bitsOf(q[i]) && !(std::isnan(p[i]) && std::isnan(q[i])))
            return ::testing::AssertionFailure()
                   << "part " << i << " of " << p.size() << ": " << p[i] << " and " << q[i];
    return ::testing::AssertionSuccess();
}

template <typename Form>
std::vector<typename Form::Y> convOf(const std::vector<typename Form::X> &x,
                                     const std::vector<typename Form::H> &h)
{
    std::vector<typename Form::Y> y(x.size() + h.size() - 1);
    Form::conv(x.data(), static_cast<int>(x.size()), h.data(), static_cast<int>(h.size()),
               y.data());
    return y;
}

#endif
