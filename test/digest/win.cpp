// Windows.

#include "digest.h"

namespace {

const int lengths[] = {3, 4, 5, 6, 7, 8, 9, 16, 17, 18, 19, 20, 100, 1001};

void digestWindow(Digest &digest, void (*window)(double *, int))
{
    FixedData data(20);
    for (int n : lengths) {
        std::vector<double> block = data.samples(n + 1);
        window(block.data(), n);
        digest.add(block);
    }
}

void digestWindow(Digest &digest, void (*window)(ZCplx *, int))
{
    FixedData data(21);
    for (int n : lengths) {
        std::vector<ZCplx> block = data.cplxSamples(n + 1);
        window(block.data(), n);
        digest.add(block);
    }
}

template <typename Element, void (*window)(Element *, int, double)>
void usual(Element *vec, int n)
{
    window(vec, n, -0.16);
}

template <typename Element, void (*window)(Element *, int, double)>
void steep(Element *vec, int n)
{
    window(vec, n, 1.7);
}

} // namespace

RVX_DIGEST(rvxdWinBartlett)
{
    digestWindow(digest, rvxdWinBartlett);
}

RVX_DIGEST(rvxzWinBartlett)
{
    digestWindow(digest, rvxzWinBartlett);
}

RVX_DIGEST(rvxdWinHann)
{
    digestWindow(digest, rvxdWinHann);
}

RVX_DIGEST(rvxzWinHann)
{
    digestWindow(digest, rvxzWinHann);
}

RVX_DIGEST(rvxdWinHamming)
{
    digestWindow(digest, rvxdWinHamming);
}

RVX_DIGEST(rvxzWinHamming)
{
    digestWindow(digest, rvxzWinHamming);
}

RVX_DIGEST(rvxdWinBlackman)
{
    digestWindow(digest, usual<double, rvxdWinBlackman>);
    digestWindow(digest, steep<double, rvxdWinBlackman>);
}

RVX_DIGEST(rvxzWinBlackman)
{
    digestWindow(digest, usual<ZCplx, rvxzWinBlackman>);
    digestWindow(digest, steep<ZCplx, rvxzWinBlackman>);
}

RVX_DIGEST(rvxdWinBlackmanOpt)
{
    digestWindow(digest, rvxdWinBlackmanOpt);
}

RVX_DIGEST(rvxzWinBlackmanOpt)
{
    digestWindow(digest, rvxzWinBlackmanOpt);
}
