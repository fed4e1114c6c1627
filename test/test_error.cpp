// Status, error mode and the reporting path.

#include <climits>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <string>

#include <gtest/gtest.h>

#include "rvx.h"
#include "support/reports.h"

namespace {

constexpr const char *UNKNOWN = "Unknown error or status code";

struct Seen {
    int calls;
    int status;
    const char *func;
    const char *context;
    const char *file;
    int line;
};

Seen seen;

int rememberReport(int status, const char *func, const char *context, const char *file, int line)
{
    seen = {seen.calls + 1, status, func, context, file, line};
    return 4711;
}

// Has the calling thread report to rememberReport while it stands.
class OwnHandler {
public:
    OwnHandler()
    {
        seen = {};
        rvxGetThreadContext()->errHandler = rememberReport;
    }
    ~OwnHandler() { rvxGetThreadContext()->errHandler = rvxDefaultErrHandler; }
};

// Returning mode and a clear status, back to a new thread's state afterwards.
class ErrorPath : public ::testing::Test {
protected:
    void SetUp() override
    {
        rvxSetErrMode(1);
        rvxSetErrStatus(RVX_STATUS_OK);
    }
    void TearDown() override
    {
        rvxSetErrMode(0);
        rvxSetErrStatus(RVX_STATUS_OK);
    }
};

using ErrorPathDeathTest = ErrorPath;

int report(int status)
{
    return rvxError(status, "func", "context", "file", 1);
}

} // namespace

TEST(ErrorStr, NamesEveryStatusAndNoOther)
{
    const std::map<int, std::string> messages = {
        {0, "No Error"},
        {-1, "Backtrace"},
        {-3, "Internal error (bad state)"},
        {-4, "Out of memory"},
        {-5, "Bad argument"},
        {-6, "Unsupported function"},
        {-7, "Iteration convergence failed"},
        {-8, "Autotrace call"},
        {-10, "Null pointer"},
        {-12, "Bad pointer"},
        {-13, "Bad data structure"},
        {-14, "Bad vector length"},
    };
    for (int status = -40; status <= 40; ++status) {
        const auto found = messages.find(status);
        EXPECT_EQ(std::string(rvxErrorStr(status)),
                  found != messages.end() ? found->second : UNKNOWN)
            << status;
    }
    for (int status : {INT_MIN, INT_MIN + 13, INT_MIN + 14, INT_MAX, INT_MAX - 14})
        EXPECT_STREQ(rvxErrorStr(status), UNKNOWN) << status;
}

TEST(ErrorStr, ConstantsHaveTheirValues)
{
    EXPECT_EQ(RVX_STATUS_OK, 0);
    EXPECT_EQ(RVX_STATUS_BACKTRACE, -1);
    EXPECT_EQ(RVX_STATUS_BAD_STATE, -3);
    EXPECT_EQ(RVX_STATUS_NO_MEMORY, -4);
    EXPECT_EQ(RVX_STATUS_BAD_ARGUMENT, -5);
    EXPECT_EQ(RVX_STATUS_UNSUPPORTED, -6);
    EXPECT_EQ(RVX_STATUS_NO_CONVERGENCE, -7);
    EXPECT_EQ(RVX_STATUS_AUTOTRACE, -8);
    EXPECT_EQ(RVX_STATUS_NULL_POINTER, -10);
    EXPECT_EQ(RVX_STATUS_BAD_POINTER, -12);
    EXPECT_EQ(RVX_STATUS_BAD_DATA_STRUCTURE, -13);
    EXPECT_EQ(RVX_STATUS_BAD_LENGTH, -14);
}

TEST_F(ErrorPath, StoresAndReturnsAnyStatusButTheTwoThatPassAFailureOn)
{
    for (int status : {-2, -3, -4, -5, -6, -7, -9, -10, -14, -15, 1, 77, INT_MIN, INT_MAX}) {
        rvxSetErrStatus(RVX_STATUS_OK);
        EXPECT_EQ(report(status), status);
        EXPECT_EQ(rvxGetErrStatus(), status);
    }
    for (int status : {RVX_STATUS_BACKTRACE, RVX_STATUS_AUTOTRACE})
        for (int before : {0, -5, 33}) {
            rvxSetErrStatus(before);
            EXPECT_EQ(report(status), status);
            EXPECT_EQ(rvxGetErrStatus(), before);
        }
}

TEST_F(ErrorPath, ZeroClearsTheStatusWithoutTheHandler)
{
    OwnHandler handler;
    rvxSetErrStatus(RVX_STATUS_NO_MEMORY);
    EXPECT_EQ(report(RVX_STATUS_OK), 0);
    EXPECT_EQ(rvxGetErrStatus(), RVX_STATUS_OK);
    EXPECT_EQ(seen.calls, 0);
}

TEST_F(ErrorPath, HandlerOfTheRecordGetsTheArgumentsAndItsResultComesBack)
{
    OwnHandler handler;
    const char *func = "someFunction", *context = "n<=0", *file = "someModule";
    EXPECT_EQ(rvxError(RVX_STATUS_BAD_ARGUMENT, func, context, file, 123), 4711);
    EXPECT_EQ(seen.calls, 1);
    EXPECT_EQ(seen.status, RVX_STATUS_BAD_ARGUMENT);
    EXPECT_EQ(seen.func, func);
    EXPECT_EQ(seen.context, context);
    EXPECT_EQ(seen.file, file);
    EXPECT_EQ(seen.line, 123);

    EXPECT_EQ(rvxError(RVX_STATUS_BACKTRACE, func, nullptr, file, -1), 4711);
    EXPECT_EQ(seen.calls, 2);
    EXPECT_EQ(seen.status, RVX_STATUS_BACKTRACE);
    EXPECT_EQ(seen.context, nullptr);
    EXPECT_EQ(rvxGetErrStatus(), RVX_STATUS_BAD_ARGUMENT);

    EXPECT_EQ(rvxError(RVX_STATUS_AUTOTRACE, func, context, file, 0), 4711);
    EXPECT_EQ(seen.calls, 3);
}

TEST_F(ErrorPath, StatusIsSeenByTheHandlerAlready)
{
    OwnHandler handler;
    rvxGetThreadContext()->errHandler = [](int, const char *, const char *, const char *, int) {
        return rvxGetErrStatus();
    };
    EXPECT_EQ(report(-77), -77);
}

TEST_F(ErrorPath, EveryModeButZeroReturns)
{
    for (int mode : {1, 2, -1, INT_MIN, INT_MAX}) {
        rvxSetErrMode(mode);
        EXPECT_EQ(rvxGetErrMode(), mode);
        EXPECT_EQ(report(RVX_STATUS_NO_MEMORY), RVX_STATUS_NO_MEMORY);
    }
}

TEST_F(ErrorPath, AnyStatusCanBeSetAndStays)
{
    for (int status : {-5, 0, 5, -9999, INT_MIN, INT_MAX}) {
        rvxSetErrStatus(status);
        EXPECT_EQ(rvxGetErrStatus(), status);
        rvxErrorStr(status);
        EXPECT_EQ(rvxGetErrStatus(), status);
    }
}

TEST_F(ErrorPath, FailureOfACallStoresItsStatusUntilItIsCleared)
{
    double x = 1.0;
    rvxdbSet(2.0, &x, 0);
    EXPECT_EQ(rvxGetErrStatus(), RVX_STATUS_BAD_ARGUMENT);
    rvxdbSet(2.0, &x, 1);
    EXPECT_EQ(x, 2.0);
    EXPECT_EQ(rvxGetErrStatus(), RVX_STATUS_BAD_ARGUMENT);
    rvxSetErrStatus(RVX_STATUS_OK);
    EXPECT_EQ(rvxGetErrStatus(), RVX_STATUS_OK);
}

TEST_F(ErrorPath, CallersReportLeavesTheInnerFailuresStatus)
{
    rvxdbSet(2.0, nullptr, 1);
    rvxError(RVX_STATUS_BACKTRACE, "caller", nullptr, "module", 1);
    rvxError(RVX_STATUS_BACKTRACE, "callersCaller", nullptr, "module", 1);
    EXPECT_EQ(rvxGetErrStatus(), RVX_STATUS_BAD_ARGUMENT);
}

TEST_F(ErrorPathDeathTest, ModeZeroEndsTheProcessByExitWithoutAWord)
{
    for (int status : {-5, -1, -8, 77})
        EXPECT_EXIT(
            {
                rvxSetErrMode(0);
                report(status);
                std::fputs("came back", stderr);
            },
            ::testing::ExitedWithCode(1), "^$")
            << status;
}

TEST_F(ErrorPathDeathTest, ModeZeroRunsTheExitHandlers)
{
    EXPECT_EXIT(
        {
            std::atexit([] { std::fputs("handler ran", stderr); });
            rvxSetErrMode(0);
            report(RVX_STATUS_BAD_ARGUMENT);
        },
        ::testing::ExitedWithCode(1), "^handler ran$");
}

TEST_F(ErrorPathDeathTest, StatusZeroReturnsInModeZero)
{
    EXPECT_EXIT(
        {
            rvxSetErrMode(0);
            std::_Exit(report(RVX_STATUS_OK) == 0 ? 55 : 56);
        },
        ::testing::ExitedWithCode(55), "^$");
}
