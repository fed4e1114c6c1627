// The status path: one function through which every failure goes, the thread's
// last status and the mode that says whether a failure returns.

#include <cstdlib>

#include "frame/rvxthread.h"

namespace {

constexpr int RVX_STATUS_LOWEST = -14;
constexpr const char *RVX_UNKNOWN = "Unknown error or status code";

constexpr const char *messages[] = {
    "Bad vector length",            // -14
    "Bad data structure",           // -13
    "Bad pointer",                  // -12
    RVX_UNKNOWN,                    // -11
    "Null pointer",                 // -10
    RVX_UNKNOWN,                    // -9
    "Autotrace call",               // -8
    "Iteration convergence failed", // -7
    "Unsupported function",         // -6
    "Bad argument",                 // -5
    "Out of memory",                // -4
    "Internal error (bad state)",   // -3
    RVX_UNKNOWN,                    // -2
    "Backtrace",                    // -1
    "No Error",                     // 0
};

} // namespace

int rvxError(int status, const char *func, const char *context, const char *file, int line)
{
    rvxThreadContext *thread = rvxGetThreadContext();
    // These two pass an inner failure on and leave its status in place.
    if (status != RVX_STATUS_BACKTRACE && status != RVX_STATUS_AUTOTRACE) {
        thread->errStatus = status;
        if (status == RVX_STATUS_OK)
            return RVX_STATUS_OK;
    }
    return thread->errHandler(status, func, context, file, line);
}

const char *rvxErrorStr(int status)
{
    if (status < RVX_STATUS_LOWEST || status > 0)
        return RVX_UNKNOWN;
    return messages[status - RVX_STATUS_LOWEST];
}

int rvxGetErrStatus(void)
{
    return rvxGetThreadContext()->errStatus;
}

void rvxSetErrStatus(int status)
{
    rvxGetThreadContext()->errStatus = status;
}

int rvxGetErrMode(void)
{
    return rvxGetThreadContext()->errMode;
}

void rvxSetErrMode(int mode)
{
    rvxGetThreadContext()->errMode = mode;
}

int rvxDefaultErrHandler(int status, const char *, const char *, const char *, int)
{
    if (rvxGetErrMode() == 0)
        std::exit(1);
    return status;
}
