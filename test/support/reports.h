// Sees what the library reports. While a Reports stands, the calling thread is
// in error mode 1 with a clear status, and every report is recorded.

#ifndef RVX_TEST_REPORTS_H
#define RVX_TEST_REPORTS_H

#include <functional>
#include <ostream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "frame/rvxthread.h"

struct Report {
    int status;
    std::string func;
    std::string context; // "(null)" for a null context
    std::string file;

    bool operator==(const Report &other) const
    {
        return status == other.status && func == other.func && context == other.context &&
               file == other.file;
    }
};

std::ostream &operator<<(std::ostream &out, const Report &report);

class Reports {
public:
    Reports();
    ~Reports();
    Reports(const Reports &) = delete;
    Reports &operator=(const Reports &) = delete;

    // What has been reported since the last take.
    std::vector<Report> take();

private:
    rvxErrHandler handlerBefore;
    int modeBefore;
};

// The one report of a failed argument check.
inline std::vector<Report> badArgument(const char *func, const char *context, const char *file)
{
    return {{RVX_STATUS_BAD_ARGUMENT, func, context, file}};
}

// A call that an argument check refuses, and what the check says.
struct BadCall {
    const char *func;
    const char *context;
    std::function<void()> call;
};

// Each call makes its one report, in the name of the module `file`, and leaves its status.
void expectRefused(const std::vector<BadCall> &calls, const char *file, Reports &reports);

#endif
