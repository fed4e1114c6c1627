// The shared library as a program meets it that loads it while it runs: threads
// that were there before, unloading, the records' lives, no memory.
//
// The program has a malloc of its own, which the loader gives to the library too.
// It knows the thread records by their size.

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <condition_variable>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

#include <dlfcn.h>
#include <limits.h>
#include <pthread.h>

#include <gtest/gtest.h>

#include "frame/rvxthread.h"
#include "rvx.h"

namespace {

// ---------------------------------------------------------------------------
// Thread records, as the program's own malloc sees them
// ---------------------------------------------------------------------------

constexpr std::size_t recordBytes = sizeof(rvxThreadContext);
constexpr int recordsMax = 4096;

std::atomic<void *> records[recordsMax];
std::atomic<bool> recordsFail{false};
std::atomic<bool> mallocFails{false};

bool isRecord(std::size_t n, std::size_t bytes)
{
    return n == 1 && bytes == recordBytes;
}

bool replaceRecord(void *from, void *to)
{
    for (auto &record : records) {
        void *expected = from;
        if (record.load(std::memory_order_relaxed) == from &&
            record.compare_exchange_strong(expected, to))
            return true;
    }
    return false;
}

} // namespace

#ifndef RVX_TEST_SANITIZED

extern "C" {

void *__libc_malloc(std::size_t);
void *__libc_calloc(std::size_t, std::size_t);
void __libc_free(void *);

void *malloc(std::size_t bytes) noexcept
{
    if (mallocFails) {
        errno = ENOMEM;
        return nullptr;
    }
    return __libc_malloc(bytes);
}

void *calloc(std::size_t n, std::size_t bytes) noexcept
{
    if (!isRecord(n, bytes))
        return __libc_calloc(n, bytes);
    if (recordsFail) {
        errno = ENOMEM;
        return nullptr;
    }
    void *record = __libc_calloc(n, bytes);
    replaceRecord(nullptr, record);
    return record;
}

void free(void *block) noexcept
{
    if (block != nullptr)
        replaceRecord(block, nullptr);
    __libc_free(block);
}

} // extern "C"

#endif

namespace {

int liveRecords()
{
    return static_cast<int>(std::count_if(std::begin(records), std::end(records),
                                          [](const auto &record) { return record != nullptr; }));
}

// Without the program's own malloc there is nothing to count.
#ifdef RVX_TEST_SANITIZED
constexpr bool counting = false;
#else
constexpr bool counting = true;
#endif

// ---------------------------------------------------------------------------
// The library, loaded for as long as this stands
// ---------------------------------------------------------------------------

class Library {
public:
    Library() : handle(dlopen(RVX_LIBRARY, RTLD_NOW | RTLD_LOCAL))
    {
        if (handle == nullptr) {
            ADD_FAILURE() << dlerror();
            std::abort();
        }
        find(getStatus, "rvxGetErrStatus");
        find(setStatus, "rvxSetErrStatus");
        find(getMode, "rvxGetErrMode");
        find(setMode, "rvxSetErrMode");
        find(setBlock, "rvxdbSet");
        find(transform, "rvxzFft");
    }
    ~Library() { dlclose(handle); }
    Library(const Library &) = delete;
    Library &operator=(const Library &) = delete;

    int (*getStatus)();
    void (*setStatus)(int);
    int (*getMode)();
    void (*setMode)(int);
    void (*setBlock)(double, double *, int);
    void (*transform)(ZCplx *, int, int);

private:
    template <typename Function>
    void find(Function &function, const char *name)
    {
        function = reinterpret_cast<Function>(dlsym(handle, name));
        if (function == nullptr) {
            ADD_FAILURE() << dlerror();
            std::abort();
        }
    }
    void *handle;
};

bool isLoaded()
{
    void *handle = dlopen(RVX_LIBRARY, RTLD_NOW | RTLD_NOLOAD);
    if (handle != nullptr)
        dlclose(handle);
    return handle != nullptr;
}

// A thread that runs what it is given, piece by piece.
class Worker {
public:
    Worker() : thread([this] { work(); }) {}
    ~Worker()
    {
        hand(nullptr);
        thread.join();
    }
    // Returns when the thread is done with the piece.
    void run(const std::function<void()> &piece) { hand(&piece); }

private:
    void hand(const std::function<void()> *piece)
    {
        std::unique_lock<std::mutex> lock(mutex);
        next = piece;
        waiting = true;
        changed.notify_all();
        changed.wait(lock, [this] { return !waiting; });
    }
    void work()
    {
        std::unique_lock<std::mutex> lock(mutex);
        for (bool more = true; more;) {
            changed.wait(lock, [this] { return waiting; });
            more = next != nullptr;
            if (more)
                (*next)();
            waiting = false;
            changed.notify_all();
        }
    }
    std::mutex mutex;
    std::condition_variable changed;
    const std::function<void()> *next = nullptr;
    bool waiting = false;
    std::thread thread;
};

std::vector<pthread_key_t> takeAllKeys()
{
    std::vector<pthread_key_t> keys;
    pthread_key_t key;
    while (pthread_key_create(&key, nullptr) == 0)
        keys.push_back(key);
    return keys;
}

void giveBack(const std::vector<pthread_key_t> &keys)
{
    for (pthread_key_t key : keys)
        pthread_key_delete(key);
}

std::size_t freeKeys()
{
    const auto keys = takeAllKeys();
    giveBack(keys);
    return keys.size();
}

constexpr const char *fatalMessage = "^Problem to allocate memory for TLS RVX context\\.\n$";

} // namespace

TEST(SharedLibrary, ThreadFromBeforeTheLoadGetsARecordOnItsFirstCall)
{
    auto worker = std::make_unique<Worker>();
    worker->run([] {}); // it runs
    const Library library;
    library.setMode(1);
    library.setStatus(-4);
    worker->run([&] {
        EXPECT_EQ(library.getStatus(), 0);
        EXPECT_EQ(library.getMode(), 0);
        library.setMode(3);
        library.setBlock(0.0, nullptr, 8);
        EXPECT_EQ(library.getStatus(), RVX_STATUS_BAD_ARGUMENT);
    });
    EXPECT_EQ(library.getStatus(), -4);
    EXPECT_EQ(library.getMode(), 1);
    worker.reset();
}

// Deliberate: nobody frees the record of a thread that outlives the library.
TEST(SharedLibrary, ThreadThatOutlivesTheLibraryEndsInPeaceAndLeavesItsRecord)
{
    if (!counting)
        GTEST_SKIP() << "the sanitizer would report the record";
    const int before = liveRecords();
    {
        Worker worker;
        const Library library;
        worker.run([&] { library.setMode(1); });
    }
    EXPECT_FALSE(isLoaded());
    EXPECT_EQ(liveRecords(), before + 1);
}

TEST(SharedLibrary, UnloadingGivesTheThreadSlotBack)
{
    const std::size_t before = freeKeys();
    {
        const Library library;
        EXPECT_EQ(freeKeys(), before - 1);
    }
    ASSERT_FALSE(isLoaded());
    EXPECT_EQ(freeKeys(), before);
}

TEST(SharedLibrary, CanBeLoadedMoreOftenThanThereAreSlots)
{
    const int loads = 2 * PTHREAD_KEYS_MAX;
    for (int i = 0; i < loads; ++i) {
        const Library library;
        ASSERT_EQ(library.getMode(), 0); // a new record each time
        library.setMode(i + 1);
        ASSERT_EQ(library.getMode(), i + 1);
    }
    EXPECT_FALSE(isLoaded());
}

TEST(SharedLibrary, LoadingMakesTheLoadingThreadsRecordAndUnloadingFreesIt)
{
    if (!counting)
        GTEST_SKIP() << "the sanitizer owns malloc";
    const int before = liveRecords();
    {
        const Library library;
        EXPECT_EQ(liveRecords(), before + 1);
        library.setMode(1);
        EXPECT_EQ(liveRecords(), before + 1);
    }
    EXPECT_EQ(liveRecords(), before);
}

TEST(SharedLibrary, ThreadsRecordLivesFromItsFirstCallToItsEnd)
{
    if (!counting)
        GTEST_SKIP() << "the sanitizer owns malloc";
    const Library library;
    const int before = liveRecords();
    for (int i = 0; i < 100; ++i) {
        {
            Worker worker;
            worker.run([] {});
            EXPECT_EQ(liveRecords(), before);
            worker.run([&] { library.getStatus(); });
            EXPECT_EQ(liveRecords(), before + 1);
            worker.run([&] { library.getStatus(); });
            EXPECT_EQ(liveRecords(), before + 1);
        }
        EXPECT_EQ(liveRecords(), before);
    }
}

TEST(SharedLibrary, ThreadsKeepModeAndStatusApart)
{
    const Library library;
    constexpr int threadsLen = 32;
    std::atomic<int> ready{0};
    std::atomic<int> wrong{0};
    std::vector<std::thread> threads;
    for (int t = 0; t < threadsLen; ++t) {
        threads.emplace_back([&, t] {
            ++ready;
            while (ready < threadsLen)
                std::this_thread::yield();
            for (int i = 0; i < 1000; ++i) {
                library.setMode(t + 1 + i);
                library.setStatus(-t - i);
                if (i % 100 == 0)
                    std::this_thread::yield();
                if (library.getMode() != t + 1 + i || library.getStatus() != -t - i)
                    ++wrong;
            }
        });
    }
    for (std::thread &thread : threads)
        thread.join();
    EXPECT_EQ(wrong, 0);
    EXPECT_EQ(library.getMode(), 0);
    EXPECT_EQ(library.getStatus(), 0);
}

TEST(SharedLibrary, CallFromALaterThreadDestructorGetsANewRecordThatIsFreedToo)
{
    static const Library *lib = nullptr;
    static int modeSeen = -1;
    const Library library;
    const int before = liveRecords();
    lib = &library;
    pthread_key_t key; // made after the library's own: its destructor runs later
    ASSERT_EQ(pthread_key_create(&key, [](void *) { modeSeen = lib->getMode(); }), 0);
    std::thread([&] {
        library.setMode(5);
        pthread_setspecific(key, &key);
    }).join();
    pthread_key_delete(key);
    EXPECT_EQ(modeSeen, 0);
    if (counting) {
        EXPECT_EQ(liveRecords(), before);
    }
}

TEST(SharedLibrary, ItsAllocationsAreTheProgramsOwnAndMayFail)
{
    if (!counting)
        GTEST_SKIP() << "the sanitizer owns malloc";
    const Library library;
    library.setMode(1);
    constexpr int order = 6;
    std::vector<ZCplx> samps(1 << order, ZCplx{1.0, 0.0});
    mallocFails = true;
    library.transform(samps.data(), order, RVX_FFT_FORWARD);
    mallocFails = false;
    EXPECT_EQ(library.getStatus(), RVX_STATUS_NO_MEMORY);
    EXPECT_EQ(samps[0].re, 1.0);
    library.setStatus(0);
    library.transform(samps.data(), order, RVX_FFT_FORWARD);
    EXPECT_EQ(library.getStatus(), 0);
    EXPECT_EQ(samps[0].re, 64.0);
    library.transform(nullptr, order, RVX_FFT_FREE_TABLES);
}

TEST(SharedLibraryDeathTest, FailedCheckInModeZeroEndsTheProcessByExit)
{
    const auto fail = [] {
        std::atexit([] { std::fputs("exit handlers ran", stderr); });
        const Library library;
        library.setBlock(0.0, nullptr, 8);
    };
    EXPECT_EXIT(fail(), ::testing::ExitedWithCode(1), "^exit handlers ran$");
}

TEST(SharedLibraryDeathTest, ThreadWithoutMemoryForItsRecordEndsTheProcess)
{
    if (!counting)
        GTEST_SKIP() << "the sanitizer owns malloc";
    const auto fail = [] {
        const Library library;
        std::thread([&] {
            recordsFail = true;
            library.getStatus();
        }).join();
    };
    EXPECT_EXIT(fail(), ::testing::KilledBySignal(SIGABRT), fatalMessage);
}

TEST(SharedLibraryDeathTest, LoadWithoutMemoryIsMadeUpForOrFatalAtTheFirstCall)
{
    if (!counting)
        GTEST_SKIP() << "the sanitizer owns malloc";
    const int before = liveRecords();
    {
        recordsFail = true;
        const Library library;
        EXPECT_EQ(liveRecords(), before);
        recordsFail = false;
        EXPECT_EQ(library.getStatus(), 0);
        EXPECT_EQ(liveRecords(), before + 1);
    }
    EXPECT_EQ(liveRecords(), before);
    const auto fail = [] {
        recordsFail = true;
        const Library library;
        library.getStatus();
    };
    EXPECT_EXIT(fail(), ::testing::KilledBySignal(SIGABRT), fatalMessage);
}

TEST(SharedLibraryDeathTest, LoadWithoutAThreadSlotIsFatalAtTheFirstCall)
{
    const int before = liveRecords();
    const auto keys = takeAllKeys();
    {
        const Library library; // loads, does nothing, unloads
    }
    const auto fail = [] {
        const Library library;
        library.getStatus();
    };
    EXPECT_EXIT(fail(), ::testing::KilledBySignal(SIGABRT), fatalMessage);
    giveBack(keys);
    if (counting) {
        EXPECT_EQ(liveRecords(), before);
    }
}
