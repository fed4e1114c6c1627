// Blocks in which most elements are worked on in groups, from the end of the block
// towards its beginning, and special ones between them are finished apart.

#ifndef RVXGATHER_H
#define RVXGATHER_H

#include "frame/rvxkernel.h"

constexpr int gatherLen = 64;

// Fetches a chunk of what will be written some chunks below dst[n]. Chunks go down and
// stores within each go up, which no prefetcher follows by itself.
template <int chunk>
RVX_INLINE void fetchBelow(const double *dst, int n)
{
    constexpr int ahead = 4 * chunk;
    if (n >= ahead)
        for (int i = 0; i < chunk; i += 8)
            __builtin_prefetch(dst + n - ahead + i, 1);
}

struct Gathered {
    double value[gatherLen];
    int at[gatherLen];
    int count;
};

// Goes down from src[n - 1] and finishes special elements; gathers the others in the
// order in which they are met. finish(x, result) says whether x is special and sets
// the result if it is. A group is begun where at least `least` elements remain, or is
// begun already; once begun the search for its elements goes on to the end. Gives the
// number of elements that remain.
//
// It stops between groups as soon as gatherLen elements have been seen: the next ones
// may all be ordinary again.
template <int group, int least, typename Finish>
RVX_INLINE int gatherDown(const double *src, double *dst, int n, bool isBegun, Gathered &list,
                          Finish finish)
{
    const int pause = n - gatherLen;
    int i = n, count = 0;
    while (i > 0) {
        if (!isBegun && (i < least || i <= pause))
            break;
        --i;
        const double x = src[i];
        double result = x;
        const bool isSpecial = finish(x, result);
        dst[i] = result;
        list.value[count] = x;
        list.at[count] = i;
        count += isSpecial ? 0 : 1;
        isBegun = isSpecial || count % group != 0;
    }
    list.count = count;
    return i;
}

#endif
