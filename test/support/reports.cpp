#include "support/reports.h"

#include "support/allocations.h"

namespace {

thread_local std::vector<Report> recorded;

int recordReport(int status, const char *func, const char *context, const char *file, int)
{
    const AllocationPause pause;
    recorded.push_back({status, func, context != nullptr ? context : "(null)", file});
    return status;
}

} // namespace

std::ostream &operator<<(std::ostream &out, const Report &report)
{
    return out << "{" << report.status << ", " << report.func << ", \"" << report.context << "\", "
               << report.file << "}";
}

Reports::Reports()
    : handlerBefore(rvxGetThreadContext()->errHandler), modeBefore(rvxGetThreadContext()->errMode)
{
    rvxGetThreadContext()->errHandler = recordReport;
    rvxSetErrMode(1);
    rvxSetErrStatus(RVX_STATUS_OK);
    recorded.clear();
}

Reports::~Reports()
{
    rvxGetThreadContext()->errHandler = handlerBefore;
    rvxSetErrMode(modeBefore);
    rvxSetErrStatus(RVX_STATUS_OK);
}

std::vector<Report> Reports::take()
{
    std::vector<Report> taken;
    taken.swap(recorded);
    return taken;
}

void expectRefused(const std::vector<BadCall> &calls, const char *file, Reports &reports)
{
    for (const BadCall &bad : calls) {
        rvxSetErrStatus(RVX_STATUS_OK);
        bad.call();
        EXPECT_EQ(reports.take(), badArgument(bad.func, bad.context, file));
        EXPECT_EQ(rvxGetErrStatus(), RVX_STATUS_BAD_ARGUMENT);
    }
}
