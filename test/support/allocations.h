// The test program's own malloc and kin: they count what the code under test
// holds and can fail its k-th allocation. Only the thread that holds an
// AllocationWatch is looked at, and only while it does.

#ifndef RVX_TEST_ALLOCATIONS_H
#define RVX_TEST_ALLOCATIONS_H

class AllocationWatch {
public:
    // From here on the k-th allocation (from 1) fails, once; 0 fails none.
    explicit AllocationWatch(long failAt = 0);
    ~AllocationWatch();
    AllocationWatch(const AllocationWatch &) = delete;
    AllocationWatch &operator=(const AllocationWatch &) = delete;

    // Every allocation from the k-th on fails, and not just one.
    void failAllFrom(long k);

    long allocations() const; // asked for so far, the failed ones included
    long failures() const;    // failed on purpose so far
    long live() const;        // allocated less released since the watch began
};

// What the thread allocates while this stands, the test's own needs, neither
// counts nor fails.
class AllocationPause {
public:
    AllocationPause();
    ~AllocationPause();
    AllocationPause(const AllocationPause &) = delete;
    AllocationPause &operator=(const AllocationPause &) = delete;

private:
    bool armedBefore;
};

#endif
