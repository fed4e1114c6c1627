// The form of every argument check and of every other report.

#ifndef RVXCHECK_H
#define RVXCHECK_H

#include "rvx.h"

// Names the module in its reports; stands once, above the module's functions.
#define RVX_MODULE(name)                                                                           \
    namespace {                                                                                    \
    constexpr const char *rvxModuleName = name;                                                    \
    }

// RVX_REJECT_IF(condition, message, result…): when the condition holds, reports
// a bad argument under the name of the function that the check stands in and
// returns the result, which a function without one leaves out.
#define RVX_REJECT_IF(condition, ...) RVX_REJECT_AS(__func__, condition, __VA_ARGS__)

// The same under a given name: for checks that several functions share.
#define RVX_REJECT_AS(func, condition, ...)                                                        \
    do {                                                                                           \
        if (condition)                                                                             \
            return rvxReject(func, rvxModuleName, __LINE__, __VA_ARGS__);                          \
    } while (false)

// RVX_REPORT(status, message): a report that is not an argument check, such as
// missing memory; does not return from the function. Gives rvxError's result.
#define RVX_REPORT(status, message) RVX_REPORT_AS(__func__, status, message)
#define RVX_REPORT_AS(func, status, message)                                                       \
    rvxError(status, func, message, rvxModuleName, __LINE__)

inline void rvxReject(const char *func, const char *module, int line, const char *message)
{
    rvxError(RVX_STATUS_BAD_ARGUMENT, func, message, module, line);
}

template <typename Result>
inline Result rvxReject(const char *func, const char *module, int line, const char *message,
                        Result result)
{
    rvxError(RVX_STATUS_BAD_ARGUMENT, func, message, module, line);
    return result;
}

#endif
