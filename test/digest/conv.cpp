// Convolutions: each core of each form.

#include "digest.h"

namespace {

struct Size {
    int xLen, hLen;
};

// Direct, exchanged, one transform, blocks of each mode.
const Size sizes[] = {{1, 1},    {20, 1},    {33, 3},     {9, 14},    {64, 64},    {700, 13},
                      {3, 500},  {120, 110}, {300, 110},  {110, 300}, {500, 500},  {2000, 60},
                      {999, 35}, {40, 3000}, {5000, 150}, {9000, 33}, {20000, 700}};

template <typename X, typename H, typename Y>
void digestConv(Digest &digest, int (*conv)(const X *, int, const H *, int, Y *))
{
    FixedData data(70);
    for (const Size &size : sizes) {
        const auto x = data.block<X>(size.xLen);
        const auto h = data.block<H>(size.hLen);
        std::vector<Y> y(x.size() + h.size() - 1);
        digest.add(conv(x.data(), size.xLen, h.data(), size.hLen, y.data()));
        digest.add(y);
    }
}

} // namespace

RVX_DIGEST(rvxdConv)
{
    digestConv(digest, rvxdConv);
}

RVX_DIGEST(rvxzConv)
{
    digestConv(digest, rvxzConv);
}

RVX_DIGEST(rvxzdConv)
{
    digestConv(digest, rvxzdConv);
}

RVX_DIGEST(rvxdzConv)
{
    digestConv(digest, rvxdzConv);
}
