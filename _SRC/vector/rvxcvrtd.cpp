// rvxcvrtd: doubles from and to integers and fixed-point numbers.
//
// The fronts; the loops stand in rvxcvrtd_toint.cpp and rvxcvrtd_fromint.cpp. Unlike
// other families these functions clear the status first, and make all their checks
// before they look at it: one call may report several times.

#include "frame/rvxcheck.h"
#include "frame/rvxkernel.h"
#include "frame/rvxthread.h"
#include "rvx.h"
#include "vector/rvxcvrtd_int.h"

RVX_MODULE("rvxcvrtd")

namespace {

const char *const misfit = "A float exceeds an integer";

void report(const char *func, const char *message)
{
    RVX_REPORT_AS(func, RVX_STATUS_BAD_ARGUMENT, message);
}

RVX_INLINE void reportIf(bool failed, const char *func, const char *message)
{
    if (failed)
        report(func, message);
}

RVX_INLINE void checkBlocks(const char *func, const void *src, const void *dst, int len)
{
    rvxGetThreadContext()->errStatus = RVX_STATUS_OK;
    reportIf(len <= 0, func, "len<=0");
    reportIf(src == nullptr, func, "src==0");
    reportIf(dst == nullptr, func, "dst==0");
}

RVX_INLINE void checkSize(const char *func, int size, const char *message)
{
    reportIf(size != 8 && size != 16 && size != 32, func, message);
}

RVX_INLINE void checkRounding(const char *func, int flags)
{
    const int mode = flags & (RVX_CVT_NEAREST | RVX_CVT_TRUNC | RVX_CVT_FLOOR | RVX_CVT_CEIL);
    reportIf(mode != RVX_CVT_NEAREST && mode != RVX_CVT_TRUNC && mode != RVX_CVT_FLOOR &&
                 mode != RVX_CVT_CEIL,
             func, "Invalid conversion flag");
}

RVX_INLINE void checkSignedness(const char *func, int flags)
{
    reportIf(flags != 0 && flags != RVX_CVT_UNSIGNED, func, "Invalid conversion flag");
}

RVX_INLINE void checkFractBits(const char *func, int fractBits, int size, int flags)
{
    const bool tooMany = (flags & RVX_CVT_UNSIGNED) != 0 ? fractBits > size : fractBits >= size;
    reportIf(fractBits < 0 || tooMany, func, "Invalid fractBits");
}

bool hasFailed()
{
    return rvxGetThreadContext()->errStatus < 0;
}

IntFormat formatOf(int size, int fractBits, int flags)
{
    return {size, fractBits, (flags & RVX_CVT_UNSIGNED) != 0};
}

IntRounding roundingOf(int flags)
{
    if ((flags & RVX_CVT_NEAREST) != 0)
        return IntRounding::nearest;
    if ((flags & RVX_CVT_TRUNC) != 0)
        return IntRounding::trunc;
    return (flags & RVX_CVT_FLOOR) != 0 ? IntRounding::floor : IntRounding::ceil;
}

// Deliberate: unsigned words that are truncated and reported, and not clipped, are
// rounded down, so that numbers between -1 and 0 count as not fitting.
IntRounding variableRoundingOf(int size, int flags)
{
    constexpr int downwards = RVX_CVT_REPORT | RVX_CVT_UNSIGNED | RVX_CVT_TRUNC;
    return size == 32 && flags == downwards ? IntRounding::floor : roundingOf(flags);
}

void toInts(const char *func, const double *src, void *dst, int len, const IntFormat &format,
            IntRounding rounding, int flags)
{
    const bool report = (flags & RVX_CVT_REPORT) != 0;
    reportIf(rvxDoublesToInts(src, dst, len, format, rounding, (flags & RVX_CVT_CLIP) != 0, report),
             func, misfit);
}

void toFixedFormat(const char *func, const double *src, void *dst, int len, int size, int fractBits,
                   int flags)
{
    checkBlocks(func, src, dst, len);
    checkRounding(func, flags);
    if (hasFailed())
        return;
    toInts(func, src, dst, len, formatOf(size, fractBits, flags), roundingOf(flags), flags);
}

// These do not touch the status unless they report, and return at the first report.
void fromFixedFormat(const char *func, const void *src, double *dst, int len, int size,
                     int fractBits)
{
    RVX_REJECT_AS(func, len <= 0, "len<=0");
    RVX_REJECT_AS(func, src == nullptr, "src==0");
    RVX_REJECT_AS(func, dst == nullptr, "dst==0");
    rvxIntsToDoubles(src, dst, len, formatOf(size, fractBits, 0));
}

} // namespace

void rvxdbFloatToInt(const double *src, void *dst, int len, int size, int flags)
{
    checkBlocks(__func__, src, dst, len);
    checkSize(__func__, size, "Invalid size of an integer");
    checkRounding(__func__, flags);
    if (hasFailed())
        return;
    toInts(__func__, src, dst, len, formatOf(size, 0, flags), variableRoundingOf(size, flags),
           flags);
}

void rvxdbIntToFloat(const void *src, double *dst, int len, int size, int flags)
{
    checkBlocks(__func__, src, dst, len);
    checkSize(__func__, size, "Invalid size of an integer");
    checkSignedness(__func__, flags);
    if (hasFailed())
        return;
    rvxIntsToDoubles(src, dst, len, formatOf(size, 0, flags));
}

void rvxdbFloatToFix(const double *src, void *dst, int len, int size, int fractBits, int flags)
{
    checkBlocks(__func__, src, dst, len);
    checkSize(__func__, size, "Invalid size of a fix-point");
    checkRounding(__func__, flags);
    checkFractBits(__func__, fractBits, size, flags);
    if (hasFailed())
        return;
    toInts(__func__, src, dst, len, formatOf(size, fractBits, flags),
           variableRoundingOf(size, flags), flags);
}

void rvxdbFixToFloat(const void *src, double *dst, int len, int size, int fractBits, int flags)
{
    checkBlocks(__func__, src, dst, len);
    checkSize(__func__, size, "Invalid size of a fix-point");
    checkSignedness(__func__, flags);
    checkFractBits(__func__, fractBits, size, flags);
    if (hasFailed())
        return;
    rvxIntsToDoubles(src, dst, len, formatOf(size, fractBits, flags));
}

void rvxdbFloatToS7Fix(const double *src, signed char *dst, int len, int flags)
{
    toFixedFormat(__func__, src, dst, len, 8, 7, flags);
}

// The names that this and the next report under are deliberate.
void rvxdbFloatToS15Fix(const double *src, short *dst, int len, int flags)
{
    toFixedFormat("rvxdbFloaToS15Fix", src, dst, len, 16, 15, flags);
}

void rvxdbFloatToS31Fix(const double *src, int *dst, int len, int flags)
{
    toFixedFormat("rvxdbFloaToS31Fix", src, dst, len, 32, 31, flags);
}

void rvxdbFloatToS1516Fix(const double *src, int *dst, int len, int flags)
{
    toFixedFormat(__func__, src, dst, len, 32, 16, flags);
}

void rvxdbS7FixToFloat(const signed char *src, double *dst, int len)
{
    fromFixedFormat(__func__, src, dst, len, 8, 7);
}

void rvxdbS15FixToFloat(const short *src, double *dst, int len)
{
    fromFixedFormat(__func__, src, dst, len, 16, 15);
}

void rvxdbS31FixToFloat(const int *src, double *dst, int len)
{
    fromFixedFormat(__func__, src, dst, len, 32, 31);
}

void rvxdbS1516FixToFloat(const int *src, double *dst, int len)
{
    fromFixedFormat(__func__, src, dst, len, 32, 16);
}
