// rvxconvd: convolution of two sequences, by whichever of three cores fixed tables
// name for their lengths.

#include "convolution/rvxconvd.h"

#include "convolution/rvxconvd_checks.h"

namespace {

// What a front returns when its core is done, be a negative status the core's or older.
int result(const char *func)
{
    const int status = rvxGetErrStatus();
    return status < 0 ? RVX_REPORT_AS(func, RVX_STATUS_BACKTRACE, nullptr) : status;
}

template <typename Long, typename Short, typename Out>
struct Cores {
    void (*direct)(const Long *, int, const Short *, int, Out *);
    void (*whole)(const Long *, int, const Short *, int, Out *);
    void (*blocks)(const Long *, int, const Short *, int, Out *, int mode);
};

// xLen >= hLen
template <typename Long, typename Short, typename Out>
void convolve(ConvForm form, const Cores<Long, Short, Out> &cores, const Long *x, int xLen,
              const Short *h, int hLen, Out *y)
{
    const ConvChoice choice = rvxChooseConv(form, xLen, hLen);
    if (choice.core == RVX_CONV_DIRECT)
        cores.direct(x, xLen, h, hLen, y);
    else if (choice.core == RVX_CONV_WHOLE)
        cores.whole(x, xLen, h, hLen, y);
    else
        cores.blocks(x, xLen, h, hLen, y, choice.mode);
}

// Operands of one type, the longer one first.
template <typename Element>
void convolveOrdered(ConvForm form, const Cores<Element, Element, Element> &cores, const Element *x,
                     int xLen, const Element *h, int hLen, Element *y)
{
    if (xLen < hLen)
        convolve(form, cores, h, hLen, x, xLen, y);
    else
        convolve(form, cores, x, xLen, h, hLen, y);
}

} // namespace

int rvxdConv(const double *x, int xLen, const double *h, int hLen, double *y)
{
    if (!rvxConvArgumentsGood(__func__, x, xLen, h, hLen, y))
        return RVX_STATUS_BAD_ARGUMENT;
    convolveOrdered<double>(RVX_CONV_D, {rvxdConv0, rvxdConv1, rvxdConvm}, x, xLen, h, hLen, y);
    return result(__func__);
}

int rvxzConv(const ZCplx *x, int xLen, const ZCplx *h, int hLen, ZCplx *y)
{
    if (!rvxConvArgumentsGood(__func__, x, xLen, h, hLen, y))
        return RVX_STATUS_BAD_ARGUMENT;
    convolveOrdered<ZCplx>(RVX_CONV_Z, {rvxzConv0, rvxzConv1, rvxzConvm}, x, xLen, h, hLen, y);
    return result(__func__);
}

// The mixed forms know the longer operand first: with the shorter one there, the call
// is one of the other form, under its name.

int rvxzdConv(const ZCplx *x, int xLen, const double *h, int hLen, ZCplx *y)
{
    if (!rvxConvArgumentsGood(__func__, x, xLen, h, hLen, y))
        return RVX_STATUS_BAD_ARGUMENT;
    if (xLen < hLen)
        return rvxdzConv(h, hLen, x, xLen, y);
    convolve<ZCplx, double, ZCplx>(RVX_CONV_ZD, {rvxzdConv0, rvxzdConv1, rvxzdConvm}, x, xLen, h,
                                   hLen, y);
    return result(__func__);
}

int rvxdzConv(const double *x, int xLen, const ZCplx *h, int hLen, ZCplx *y)
{
    if (!rvxConvArgumentsGood(__func__, x, xLen, h, hLen, y))
        return RVX_STATUS_BAD_ARGUMENT;
    if (xLen < hLen)
        return rvxzdConv(h, hLen, x, xLen, y);
    convolve<double, ZCplx, ZCplx>(RVX_CONV_DZ, {rvxdzConv0, rvxdzConv1, rvxdzConvm}, x, xLen, h,
                                   hLen, y);
    return result(__func__);
}
