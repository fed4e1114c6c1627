// Aligned buffers.

#include <cstdint>
#include <functional>

#include <gtest/gtest.h>

#include "frame/rvxbuffer.h"
#include "support/allocations.h"

namespace {

bool aligned(const void *p)
{
    return reinterpret_cast<std::uintptr_t>(p) % 32 == 0;
}

} // namespace

TEST(AlignedBuffer, EveryElementCanBeWrittenAtEverySize)
{
    for (std::uint32_t n = 0; n < 200; ++n) {
        auto *bytes = rvxAllocBytes(n);
        auto *words = rvxAllocWords(n);
        auto *doubles = rvxAllocDoubles(n);
        auto *cplx = rvxAllocZCplx(n);
        ASSERT_TRUE(bytes && words && doubles && cplx);
        EXPECT_TRUE(aligned(bytes) && aligned(words) && aligned(doubles) && aligned(cplx));
        for (std::uint32_t i = 0; i < n; ++i) {
            bytes[i] = 1;
            words[i] = 2;
            doubles[i] = 3.0;
            cplx[i] = {4.0, 5.0};
        }
        rvxFreeAligned(bytes);
        rvxFreeAligned(words);
        rvxFreeAligned(doubles);
        rvxFreeAligned(cplx);
    }
}

TEST(AlignedBuffer, NullIsReleasedWithoutEffect)
{
    AllocationWatch watch;
    rvxFreeAligned(nullptr);
    EXPECT_EQ(watch.live(), 0);
}

TEST(AlignedBuffer, ReleaseGivesTheBlockBack)
{
    AllocationWatch watch;
    void *buffer = rvxAllocDoubles(7);
    EXPECT_EQ(watch.live(), 1);
    rvxFreeAligned(buffer);
    EXPECT_EQ(watch.live(), 0);
}

TEST(AlignedBuffer, NullWithoutMemory)
{
    const std::function<void *()> allocators[] = {
        [] { return static_cast<void *>(rvxAllocBytes(8)); },
        [] { return static_cast<void *>(rvxAllocWords(8)); },
        [] { return static_cast<void *>(rvxAllocDoubles(8)); },
        [] { return static_cast<void *>(rvxAllocZCplx(8)); },
    };
    for (const auto &allocate : allocators) {
        AllocationWatch watch(1);
        EXPECT_EQ(allocate(), nullptr);
        EXPECT_EQ(watch.failures(), 1);
    }
}
