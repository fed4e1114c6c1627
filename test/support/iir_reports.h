// What recursive filters report, level by level.

#ifndef RVX_TEST_IIR_REPORTS_H
#define RVX_TEST_IIR_REPORTS_H

#include <vector>

#include "rvx.h"
#include "support/guarded.h"
#include "support/reports.h"

constexpr const char *LOW = "rvxiirl";
constexpr const char *FRONT = "rvxiirh";
constexpr const char *NO_TAPS = "structure *tapStPtr wasn't initialized";
constexpr const char *NO_LINE = "structure *dlyStPtr wasn't initialized";

using Expected = std::vector<Report>;

inline Report bad(const char *func, const char *context)
{
    return {RVX_STATUS_BAD_ARGUMENT, func, context, LOW};
}

inline Report backtrace(const char *func)
{
    return {RVX_STATUS_BACKTRACE, func, "(null)", FRONT};
}

inline bool isZero(double x)
{
    return bitsOf(x) == 0;
}

inline bool isZero(ZCplx z)
{
    return isZero(z.re) && isZero(z.im);
}

#endif
