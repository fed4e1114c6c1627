// The thread records: their layout, what a new one holds, when they come and go.

#include <csignal>
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <thread>
#include <type_traits>

#include <pthread.h>

#include <gtest/gtest.h>

#include "frame/rvxthread.h"
#include "rvx.h"
#include "support/allocations.h"

namespace {

// A program's own initialisers may call before main.
rvxThreadContext *const recordBeforeMain = rvxGetThreadContext();
const int modeBeforeMain = rvxGetErrMode();

void inThread(const std::function<void()> &body)
{
    std::thread(body).join();
}

// --- The layout, field by field ---

template <typename Actual, typename Expected>
constexpr bool is = std::is_same<Actual, Expected>::value;

using Context = rvxThreadContext;

static_assert(is<decltype(Context::errStatus), std::int32_t>, "");
static_assert(is<decltype(Context::errMode), std::int32_t>, "");
static_assert(
    is<decltype(Context::errHandler), int (*)(int, const char *, const char *, const char *, int)>,
    "");
static_assert(is<decltype(Context::reservedInit), std::int32_t>, "");
static_assert(is<decltype(Context::sizedTableCount), std::int32_t>, "");
static_assert(is<decltype(Context::dctCosLen), std::int32_t>, "");
static_assert(is<decltype(Context::dctCosTable), double *>, "");
static_assert(is<decltype(Context::dctStageCount), std::int32_t>, "");
static_assert(is<decltype(Context::dctStageTables), double **>, "");
static_assert(is<decltype(Context::dctScale), double>, "");
static_assert(is<decltype(Context::dctStageScale), double>, "");
static_assert(is<decltype(Context::sizedTableKey), std::uint32_t[96]>, "");
static_assert(is<decltype(Context::sizedTable), void *[96]>, "");
static_assert(is<decltype(Context::smallTableKey), std::uint32_t[5]>, "");
static_assert(is<decltype(Context::smallTable), void *[5]>, "");

} // namespace

TEST(ThreadRecord, FieldsStandInTheirOrder)
{
    const std::size_t offsets[] = {
        offsetof(Context, errStatus),       offsetof(Context, errMode),
        offsetof(Context, errHandler),      offsetof(Context, reservedInit),
        offsetof(Context, sizedTableCount), offsetof(Context, dctCosLen),
        offsetof(Context, dctCosTable),     offsetof(Context, dctStageCount),
        offsetof(Context, dctStageTables),  offsetof(Context, dctScale),
        offsetof(Context, dctStageScale),   offsetof(Context, sizedTableKey),
        offsetof(Context, sizedTable),      offsetof(Context, twdTable),
        offsetof(Context, bitRevTable),     offsetof(Context, shortBitRevTable),
        offsetof(Context, fftTableA),       offsetof(Context, fftTableB),
        offsetof(Context, fftTableC),       offsetof(Context, realFftTableA),
        offsetof(Context, realFftTableB),   offsetof(Context, smallTableKey),
        offsetof(Context, smallTable),      sizeof(Context),
    };
    EXPECT_EQ(offsets[0], 0u);
    for (std::size_t i = 1; i < sizeof offsets / sizeof offsets[0]; ++i)
        EXPECT_LT(offsets[i - 1], offsets[i]) << "field " << i;
}

TEST(ThreadRecord, TablesByOrderHave32Slots)
{
    const Context *context = rvxGetThreadContext();
    for (std::size_t bytes :
         {sizeof context->twdTable, sizeof context->bitRevTable, sizeof context->shortBitRevTable,
          sizeof context->fftTableA, sizeof context->fftTableB, sizeof context->fftTableC,
          sizeof context->realFftTableA, sizeof context->realFftTableB})
        EXPECT_EQ(bytes, 32 * sizeof(void *));
}

TEST(ThreadRecord, InitSetsTheDefaultsAndLeavesTheTableSlots)
{
    Context context;
    std::memset(&context, 0x5a, sizeof context);
    rvxInitThreadContext(&context);
    EXPECT_EQ(context.errStatus, 0);
    EXPECT_EQ(context.errMode, 0);
    EXPECT_EQ(context.errHandler, rvxDefaultErrHandler);
    EXPECT_EQ(context.reservedInit, 32);
    EXPECT_EQ(context.sizedTableCount, 0);
    EXPECT_EQ(context.dctCosLen, 0);
    EXPECT_EQ(context.dctCosTable, nullptr);
    EXPECT_EQ(context.dctStageCount, 0);
    EXPECT_EQ(context.dctStageTables, nullptr);
    EXPECT_EQ(context.dctScale, 0.0);
    EXPECT_EQ(context.dctStageScale, 0.0);
    const auto *bytes = reinterpret_cast<const unsigned char *>(&context);
    for (std::size_t i = offsetof(Context, sizedTableKey); i < sizeof context; ++i)
        ASSERT_EQ(bytes[i], 0x5a) << "byte " << i;
}

TEST(ThreadRecord, InitOfNullDoesNothing)
{
    rvxInitThreadContext(nullptr);
}

TEST(ThreadRecord, NewOneIsZeroButForTheHandlerAndOneWord)
{
    inThread([] {
        Context expected;
        std::memset(&expected, 0, sizeof expected);
        expected.errHandler = rvxDefaultErrHandler;
        expected.reservedInit = 32;
        EXPECT_EQ(std::memcmp(rvxGetThreadContext(), &expected, sizeof expected), 0);
    });
}

TEST(ThreadRecord, CallsBeforeMainWorkOnTheMainThreadsRecord)
{
    EXPECT_EQ(modeBeforeMain, 0);
    EXPECT_EQ(rvxGetThreadContext(), recordBeforeMain);
}

TEST(Threads, StartInModeZeroWithAClearStatusWhateverOthersSet)
{
    rvxSetErrMode(1);
    rvxSetErrStatus(-5);
    inThread([] {
        EXPECT_EQ(rvxGetErrStatus(), 0);
        EXPECT_EQ(rvxGetErrMode(), 0);
        rvxSetErrMode(7);
        rvxdbZero(nullptr, 0);
        EXPECT_EQ(rvxGetErrStatus(), RVX_STATUS_BAD_ARGUMENT);
        rvxSetErrStatus(-99);
    });
    EXPECT_EQ(rvxGetErrMode(), 1);
    EXPECT_EQ(rvxGetErrStatus(), -5);
    rvxSetErrStatus(0);
    rvxSetErrMode(0);
}

TEST(Threads, KeepStatusesApartWhileTheyRun)
{
    constexpr int count = 8;
    std::thread threads[count];
    int wrong[count] = {};
    for (int t = 0; t < count; ++t)
        threads[t] = std::thread([t, &wrong] {
            rvxSetErrMode(t + 1);
            for (int i = 0; i < 2000; ++i) {
                rvxError(-1000 - t, "func", "context", "file", i);
                if (rvxGetErrStatus() != -1000 - t || rvxGetErrMode() != t + 1)
                    ++wrong[t];
            }
        });
    for (std::thread &thread : threads)
        thread.join();
    for (int t = 0; t < count; ++t)
        EXPECT_EQ(wrong[t], 0) << "thread " << t;
}

TEST(Threads, FirstCallMakesOneRecordAndLaterCallsFindIt)
{
    inThread([] {
        AllocationWatch watch;
        EXPECT_EQ(rvxSlotGet(), nullptr);
        Context *first = rvxGetThreadContext();
        EXPECT_EQ(watch.allocations(), 1);
        EXPECT_EQ(rvxGetThreadContext(), first);
        rvxSetErrStatus(1);
        EXPECT_EQ(watch.allocations(), 1);
    });
}

namespace {

// What a thread still holds when its record has been destroyed: destructors of
// keys run in the order of the keys, and the library's was there first.
struct Watched {
    std::function<void()> body;
    pthread_key_t later;
    AllocationWatch *watch;
    long live;
};

void lookAtTheEnd(void *argument)
{
    auto *watched = static_cast<Watched *>(argument);
    watched->live = watched->watch->live();
    delete watched->watch;
}

void *runWatched(void *argument)
{
    auto *watched = static_cast<Watched *>(argument);
    pthread_setspecific(watched->later, watched);
    watched->watch = new AllocationWatch; // looks from here on
    watched->body();
    return nullptr;
}

// By hand, since std::thread releases memory of its own when the body is over.
long liveAfterThread(const std::function<void()> &body)
{
    Watched watched{body, 0, nullptr, -1};
    EXPECT_EQ(pthread_key_create(&watched.later, lookAtTheEnd), 0);
    pthread_t thread;
    EXPECT_EQ(pthread_create(&thread, nullptr, runWatched, &watched), 0);
    EXPECT_EQ(pthread_join(thread, nullptr), 0);
    pthread_key_delete(watched.later);
    return watched.live;
}

} // namespace

TEST(Threads, EndFreesTheRecord)
{
    EXPECT_EQ(liveAfterThread([] { EXPECT_EQ(rvxGetErrMode(), 0); }), 0);
}

TEST(Threads, EndLeavesTheTablesOfTheRecord)
{
    void *table = nullptr;
    EXPECT_EQ(liveAfterThread([&] {
                  table = std::malloc(32);
                  rvxGetThreadContext()->twdTable[5] = static_cast<ZCplx *>(table);
              }),
              1);
    std::free(table);
}

TEST(Threads, AttachMakesTheRecordAndDetachFreesItAndLeavesTheSlot)
{
    inThread([] {
        AllocationWatch watch;
        EXPECT_TRUE(rvxThreadAttach());
        Context *context = rvxSlotGet();
        EXPECT_NE(context, nullptr);
        EXPECT_EQ(rvxGetThreadContext(), context);
        EXPECT_EQ(watch.live(), 1);
        rvxThreadDetach();
        EXPECT_EQ(watch.live(), 0);
        EXPECT_NE(rvxSlotGet(), nullptr);
        rvxSlotSet(nullptr);
        rvxThreadDetach();
        EXPECT_EQ(watch.live(), 0);
    });
}

TEST(Threads, AttachWithoutMemoryLeavesTheSlotEmptyForTheFirstCall)
{
    inThread([] {
        AllocationWatch watch(1);
        EXPECT_FALSE(rvxThreadAttach());
        EXPECT_EQ(rvxSlotGet(), nullptr);
        EXPECT_EQ(rvxGetErrStatus(), 0);
        EXPECT_NE(rvxSlotGet(), nullptr);
    });
}

TEST(ThreadsDeathTest, FailedCheckInANewThreadEndsTheProcessThoughMainReturns)
{
    EXPECT_EXIT(
        {
            rvxSetErrMode(1);
            inThread([] { rvxdbZero(nullptr, 1); });
            std::_Exit(99);
        },
        ::testing::ExitedWithCode(1), "^$");
}

TEST(ThreadsDeathTest, FirstCallWithoutMemoryAbortsWithAMessage)
{
    EXPECT_EXIT(inThread([] {
                    AllocationWatch watch(1);
                    rvxGetErrStatus();
                }),
                ::testing::KilledBySignal(SIGABRT),
                "^Problem to allocate memory for TLS RVX context\\.\n$");
}
