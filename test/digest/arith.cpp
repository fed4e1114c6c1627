// Block fill and copy, complex scalars, block arithmetic.

#include "digest.h"

namespace {

const int lengths[] = {1, 2, 3, 4, 7, 8, 9, 15, 16, 17, 31, 33, 100};

} // namespace

RVX_DIGEST(rvxdbZero)
{
    for (int n : lengths) {
        std::vector<double> block = FixedData(1).samples(n + 1);
        rvxdbZero(block.data(), n);
        digest.add(block);
    }
}

RVX_DIGEST(rvxdbSet)
{
    FixedData data(2);
    for (int n : lengths) {
        std::vector<double> block = data.samples(n + 1);
        rvxdbSet(data.pattern(), block.data(), n);
        for (double x : block)
            digest.addBits(x);
    }
}

RVX_DIGEST(rvxdbCopy)
{
    FixedData data(3);
    for (int n : lengths) {
        std::vector<double> block = data.samples(3 * n);
        rvxdbCopy(block.data(), block.data() + n / 2, n);
        rvxdbCopy(block.data() + n, block.data() + n - n / 2, n);
        digest.add(block);
    }
}

RVX_DIGEST(rvxzbSet)
{
    FixedData data(4);
    for (int n : lengths) {
        std::vector<ZCplx> block = data.cplxSamples(n + 1);
        rvxzbSet({data.sample(), data.sample()}, block.data(), n);
        digest.add(block);
    }
}

namespace {

void digestBinary(Digest &digest, ZCplx (*op)(ZCplx, ZCplx))
{
    FixedData data(5);
    for (int i = 0; i < 1000; ++i) {
        const ZCplx a{data.sample(), data.sample()};
        const ZCplx b{data.sample(), data.sample()};
        digest.add(op(a, b));
        const ZCplx c{data.pattern(), data.pattern()};
        const ZCplx d{data.pattern(), data.pattern()};
        digest.add(op(c, d));
    }
}

} // namespace

RVX_DIGEST(rvxzAdd)
{
    digestBinary(digest, rvxzAdd);
}

RVX_DIGEST(rvxzSub)
{
    digestBinary(digest, rvxzSub);
}

RVX_DIGEST(rvxzMpy)
{
    digestBinary(digest, rvxzMpy);
}

RVX_DIGEST(rvxzDiv)
{
    digestBinary(digest, rvxzDiv);
    digest.add(rvxzDiv({1.0, 2.0}, {0.0, -0.0}));
    digest.add(rvxGetErrStatus());
}

RVX_DIGEST(rvxzConj)
{
    digest.add(rvxzConj({1.5, 0.0}));
    digest.add(rvxzConj({-1.5, -2.5}));
}

RVX_DIGEST(rvxzSet)
{
    digest.add(rvxzSet(1.5, -2.5));
}
