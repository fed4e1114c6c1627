// Aligned buffers: a block of the standard heap, its address rounded up to 32,
// and the block's own pointer in the word below the rounded address.

#include "frame/rvxbuffer.h"

#include <cstdlib>

namespace {

constexpr std::uint64_t RVX_ALIGNMENT = 32;
constexpr std::uint64_t RVX_ROUND_UP = RVX_ALIGNMENT - 1 + sizeof(void *);
constexpr std::uint64_t RVX_SLACK = RVX_ALIGNMENT + sizeof(void *);

// The product is formed in 64 bits and cannot wrap: at most 2^36.
void *allocAligned(std::uint32_t n, std::uint64_t elementBytes)
{
    const std::uint64_t bytes = n * elementBytes + RVX_SLACK;
    void *block = std::malloc(bytes);
    if (block == nullptr)
        return nullptr;
    const auto address = reinterpret_cast<std::uintptr_t>(block);
    void *buffer = static_cast<unsigned char *>(block) + RVX_ROUND_UP -
                   (address + RVX_ROUND_UP) % RVX_ALIGNMENT;
    static_cast<void **>(buffer)[-1] = block;
    return buffer;
}

} // namespace

unsigned char *rvxAllocBytes(std::uint32_t n)
{
    return static_cast<unsigned char *>(allocAligned(n, 1));
}

std::uint32_t *rvxAllocWords(std::uint32_t n)
{
    return static_cast<std::uint32_t *>(allocAligned(n, sizeof(std::uint32_t)));
}

double *rvxAllocDoubles(std::uint32_t n)
{
    return static_cast<double *>(allocAligned(n, sizeof(double)));
}

ZCplx *rvxAllocZCplx(std::uint32_t n)
{
    return static_cast<ZCplx *>(allocAligned(n, sizeof(ZCplx)));
}

void rvxFreeAligned(void *buffer)
{
    if (buffer != nullptr)
        std::free(static_cast<void **>(buffer)[-1]);
}
