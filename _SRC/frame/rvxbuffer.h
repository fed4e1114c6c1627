// Heap memory aligned for vector loads. All work buffers and tables come from
// here. The caller reports a null result with its own message.

#ifndef RVXBUFFER_H
#define RVXBUFFER_H

#include <cstddef>
#include <cstdint>

#include "rvx.h"

// Each gives a buffer whose address is a multiple of 32, uncleared, or null when
// there is no memory; n may be 0.
unsigned char *rvxAllocBytes(std::uint32_t n);
std::uint32_t *rvxAllocWords(std::uint32_t n);
double *rvxAllocDoubles(std::uint32_t n);
ZCplx *rvxAllocZCplx(std::uint32_t n);

// Releases a buffer of the above; null does nothing.
void rvxFreeAligned(void *buffer);

// Releases the buffer of a slot and empties the slot.
template <typename Entry>
inline void rvxDropBuffer(Entry *&slot)
{
    rvxFreeAligned(slot);
    slot = nullptr;
}

// The same for an array of slots, few of which hold anything.
template <typename Entry, std::size_t count>
inline void rvxDropBuffers(Entry *(&slots)[count])
{
    for (Entry *&slot : slots)
        if (slot != nullptr)
            rvxDropBuffer(slot);
}

#endif
