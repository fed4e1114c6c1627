// The reversal of arrays by swap lists.
//
// An index is a top bit t, a middle field m and a bottom bit b; reversal takes
// (t, m, b) to (b, rev(m), t). The list holds middle fields times 4: pairs up to
// a zero, then fields that are their own reversal up to a zero; m = 0 is implied.

#include "transform/rvxfftd.h"

#include <utility>

namespace {

template <typename Element>
void reverseInPlace(Element *data, int N, const std::uint32_t *list)
{
    Element *high = data + N / 2;
    for (; *list != 0; list += 2) {
        const std::uint32_t m = list[0] / 2;
        const std::uint32_t r = list[1] / 2;
        std::swap(data[m], data[r]);
        std::swap(high[m + 1], high[r + 1]);
        std::swap(data[m + 1], high[r]);
        std::swap(high[m], data[r + 1]);
    }
    std::swap(data[1], high[0]);
    while (*++list != 0)
        std::swap(data[*list / 2 + 1], high[*list / 2]);
}

template <typename Element>
void reverseField(const Element *src, Element *dst, std::uint32_t half, std::uint32_t m,
                  std::uint32_t r)
{
    dst[r] = src[m];
    dst[r + half] = src[m + 1];
    dst[r + 1] = src[m + half];
    dst[r + half + 1] = src[m + half + 1];
}

template <typename Element>
void reverseCopy(const Element *src, Element *dst, int N, const std::uint32_t *list)
{
    if (N < 8) {
        dst[0] = src[0];
        dst[N - 1] = src[N - 1];
        if (N == 4) {
            dst[2] = src[1];
            dst[1] = src[2];
        }
        return;
    }
    const std::uint32_t half = static_cast<std::uint32_t>(N) / 2;
    for (; *list != 0; list += 2) {
        reverseField(src, dst, half, list[0] / 2, list[1] / 2);
        reverseField(src, dst, half, list[1] / 2, list[0] / 2);
    }
    reverseField(src, dst, half, 0, 0);
    while (*++list != 0)
        reverseField(src, dst, half, *list / 2, *list / 2);
}

} // namespace

void rvxBitRevInPlace(ZCplx *data, int N, const std::uint32_t *swapTbl)
{
    if (N == 4)
        std::swap(data[1], data[2]);
    if (N > 4)
        reverseInPlace(data, N, swapTbl);
}

void rvxBitRevCopy(const ZCplx *src, ZCplx *dst, int N, const std::uint32_t *swapTbl)
{
    reverseCopy(src, dst, N, swapTbl);
}

void rvxBitRevCopyDoubles(const double *src, double *dst, int N, const std::uint32_t *swapTbl)
{
    reverseCopy(src, dst, N, swapTbl);
}
