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

namespace {

void digestScalarForm(Digest &digest, void (*op)(double, double *, int))
{
    FixedData data(6);
    for (int n : lengths) {
        std::vector<double> block = data.samples(n + 1);
        op(data.sample(), block.data(), n);
        digest.add(block);
        for (double &x : block)
            x = data.pattern();
        op(data.pattern(), block.data(), n);
        digest.add(block);
    }
}

void digestInPlaceForm(Digest &digest, void (*op)(const double *, double *, int))
{
    FixedData data(7);
    for (int n : lengths) {
        const std::vector<double> src = data.samples(n);
        std::vector<double> block = data.samples(n + 1);
        op(src.data(), block.data(), n);
        digest.add(block);
        op(block.data(), block.data(), n);
        digest.add(block);
    }
}

void digestResultForm(Digest &digest, void (*op)(const double *, const double *, double *, int))
{
    FixedData data(8);
    for (int n : lengths) {
        const std::vector<double> a = data.samples(n);
        const std::vector<double> b = data.samples(n);
        std::vector<double> block = data.samples(n + 1);
        op(a.data(), b.data(), block.data(), n);
        digest.add(block);
    }
}

void digestCplxScalarForm(Digest &digest, void (*op)(ZCplx, ZCplx *, int))
{
    FixedData data(9);
    for (int n : lengths) {
        std::vector<ZCplx> block = data.cplxSamples(n + 1);
        op({data.sample(), data.sample()}, block.data(), n);
        digest.add(block);
        for (ZCplx &z : block)
            z = {data.pattern(), data.pattern()};
        op({data.pattern(), data.pattern()}, block.data(), n);
        digest.add(block);
    }
}

} // namespace

RVX_DIGEST(rvxdbAdd1)
{
    digestScalarForm(digest, rvxdbAdd1);
}

RVX_DIGEST(rvxdbAdd2)
{
    digestInPlaceForm(digest, rvxdbAdd2);
}

RVX_DIGEST(rvxdbAdd3)
{
    digestResultForm(digest, rvxdbAdd3);
}

RVX_DIGEST(rvxdbSub1)
{
    digestScalarForm(digest, rvxdbSub1);
}

RVX_DIGEST(rvxdbSub2)
{
    digestInPlaceForm(digest, rvxdbSub2);
}

RVX_DIGEST(rvxdbSub3)
{
    digestResultForm(digest, rvxdbSub3);
}

RVX_DIGEST(rvxdbMpy1)
{
    digestScalarForm(digest, rvxdbMpy1);
}

RVX_DIGEST(rvxdbMpy2)
{
    digestInPlaceForm(digest, rvxdbMpy2);
}

RVX_DIGEST(rvxdbMpy3)
{
    digestResultForm(digest, rvxdbMpy3);
}

RVX_DIGEST(rvxzbAdd1)
{
    digestCplxScalarForm(digest, rvxzbAdd1);
}

RVX_DIGEST(rvxzbMpy1)
{
    digestCplxScalarForm(digest, rvxzbMpy1);
}

RVX_DIGEST(rvxzbMpy2)
{
    FixedData data(10);
    for (int n : lengths) {
        const std::vector<ZCplx> src = data.cplxSamples(n);
        std::vector<ZCplx> block = data.cplxSamples(n + 1);
        rvxzbMpy2(src.data(), block.data(), n);
        digest.add(block);
        rvxzbMpy2(block.data(), block.data(), n);
        digest.add(block);
    }
}

RVX_DIGEST(rvxzbMpy3)
{
    FixedData data(11);
    for (int n : lengths) {
        const std::vector<ZCplx> a = data.cplxSamples(n);
        const std::vector<ZCplx> b = data.cplxSamples(n);
        std::vector<ZCplx> block = data.cplxSamples(n + 1);
        rvxzbMpy3(a.data(), b.data(), block.data(), n);
        digest.add(block);
    }
}
