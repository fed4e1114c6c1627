// rvxmisc: bit-reversed order, as a table, as a swap list, and applied to an
// array.
//
// The list comes from a counter that runs in reversed order: where a counter
// carries upward from the lowest bit, the reversed one carries downward from the
// highest. The table doubles: a bit more at one end is a bit more at the other.

#include "transform/rvxmisc.h"

#include <utility>

#include "frame/rvxbuffer.h"
#include "frame/rvxcheck.h"
#include "frame/rvxthread.h"
#include "transform/rvxfftd.h"

RVX_MODULE("rvxmisc")

namespace {

// The successor of j in reversed order among words of `half` * 2 values.
std::uint32_t nextReversed(std::uint32_t j, std::uint32_t half)
{
    while ((j & half) != 0) {
        j ^= half;
        half >>= 1;
    }
    return j | half;
}

// The middle fields m of an index (top bit, m, bottom bit), times 4: the pairs
// that reversal exchanges, a zero, the fields that it leaves alone, a zero.
void fillSwapList(std::uint32_t *list, std::uint32_t fields)
{
    std::uint32_t front = 0;
    std::uint32_t back = fields;
    std::uint32_t reversed = 0;
    for (std::uint32_t m = 1; m < fields; ++m) {
        reversed = nextReversed(reversed, fields >> 1);
        if (m < reversed) {
            list[front++] = 4 * m;
            list[front++] = 4 * reversed;
        } else if (m == reversed) {
            list[--back] = 4 * m;
        }
    }
    list[front] = 0;
    list[fields] = 0;
}

// The reversal of an array without its list: slower, but it needs no memory.
void reverseByCounter(ZCplx *vec, int order)
{
    const std::uint32_t n = std::uint32_t{1} << order;
    std::uint32_t reversed = 0;
    for (std::uint32_t i = 1; i < n - 1; ++i) {
        reversed = nextReversed(reversed, n >> 1);
        if (i < reversed)
            std::swap(vec[i], vec[reversed]);
    }
}

} // namespace

void rvxCalcBitRevTbl(std::uint32_t *tbl, int order)
{
    RVX_REJECT_IF(order < 0, "order<0");
    RVX_REJECT_IF(order > 31, "order>31");
    RVX_REJECT_IF(tbl == nullptr, "tbl==0");
    const std::uint32_t n = std::uint32_t{1} << order;
    tbl[0] = 0;
    for (std::uint32_t len = 1; len < n; len *= 2)
        for (std::uint32_t i = 0; i < len; ++i)
            tbl[len + i] = tbl[i] + n / (2 * len);
}

const std::uint32_t *rvxGetBitRevTbl(int order)
{
    // A bad order is reported and seen again in the status, as any older failure is.
    if (order < 0)
        RVX_REPORT(RVX_STATUS_BAD_ARGUMENT, "order<0");
    if (order > 31)
        RVX_REPORT(RVX_STATUS_BAD_ARGUMENT, "order>31");
    rvxThreadContext *context = rvxGetThreadContext();
    if (context->errStatus < 0 || order < 0 || order > 31)
        return nullptr;
    std::uint32_t *&slot = context->bitRevTable[order];
    if (slot == nullptr) {
        std::uint32_t *tbl = rvxAllocWords(std::uint32_t{1} << order);
        if (tbl == nullptr) {
            RVX_REPORT(RVX_STATUS_NO_MEMORY, "NULL Pointer");
            return nullptr;
        }
        rvxCalcBitRevTbl(tbl, order);
        slot = tbl;
    }
    return slot;
}

const std::uint32_t *rvxGetBitRevSwapTbl(int order)
{
    if (order < 0 || order > 31)
        return nullptr;
    std::uint32_t *&slot = rvxGetThreadContext()->shortBitRevTable[order];
    if (slot != nullptr)
        return slot;
    if (order < 2)
        return slot = rvxAllocWords(1);
    const std::uint32_t fields = std::uint32_t{1} << (order - 2);
    std::uint32_t *list = rvxAllocWords(fields + 1);
    if (list != nullptr)
        fillSwapList(list, fields);
    return slot = list;
}

void rvxFreeBitRevSwapTbl(int order)
{
    if (order < 0 || order > 31)
        return;
    rvxDropBuffer(rvxGetThreadContext()->shortBitRevTable[order]);
}

void rvxFreeBitRevTables()
{
    rvxThreadContext *context = rvxGetThreadContext();
    rvxDropBuffers(context->bitRevTable);
    rvxDropBuffers(context->shortBitRevTable);
}

void rvxzbBitRev1(ZCplx *vec, int order)
{
    RVX_REJECT_IF(order < 0, "order<0");
    RVX_REJECT_IF(order > 31, "order>31");
    RVX_REJECT_IF(vec == nullptr, "vec==0");
    if (order < 2)
        return;
    const std::uint32_t *swapTbl = order > 2 ? rvxGetBitRevSwapTbl(order) : nullptr;
    if (swapTbl != nullptr)
        rvxBitRevInPlace(vec, 1 << order, swapTbl);
    else
        reverseByCounter(vec, order);
}
