// Thresholds, absolute values, squares, roots, reciprocals.

#include "digest.h"

namespace {

const int lengths[] = {1, 2, 3, 4, 5, 6, 7, 8, 9, 16, 17, 31, 33, 100, 301};

void fillWith(FixedData &data, double &x, int kind)
{
    x = kind == 2 ? data.pattern() : data.sample();
}

void fillWith(FixedData &data, ZCplx &z, int kind)
{
    fillWith(data, z.re, kind);
    fillWith(data, z.im, kind);
}

void makeSpecial(FixedData &data, double &x)
{
    const double values[] = {0.0,    -0.0,  5e-324,          -1e-310,
                             1e-200, 1e200, __builtin_inf(), __builtin_nan("")};
    x = values[data.word() % 8];
}

void makeSpecial(FixedData &data, ZCplx &z)
{
    makeSpecial(data, z.re);
    makeSpecial(data, z.im);
}

// Both forms on ordinary numbers, the same with a special value among them, and any
// bit patterns; the status behind each.
template <typename T, typename... Further>
void digestForms(Digest &digest, void (*function)(T *, int, Further...), Further... further)
{
    FixedData data(30);
    for (int n : lengths)
        for (int kind = 0; kind < 3; ++kind) {
            std::vector<T> block(static_cast<std::size_t>(n) + 1);
            for (T &element : block)
                fillWith(data, element, kind);
            if (kind == 1)
                makeSpecial(data, block[data.word() % static_cast<unsigned>(n)]);
            rvxSetErrStatus(0);
            function(block.data(), n, further...);
            digest.add(block);
            digest.add(rvxGetErrStatus());
        }
}

template <typename T, typename... Further>
void digestForms(Digest &digest, void (*function)(const T *, T *, int, Further...),
                 Further... further)
{
    FixedData data(31);
    for (int n : lengths)
        for (int kind = 0; kind < 3; ++kind) {
            std::vector<T> src(static_cast<std::size_t>(n)), dst(src.size() + 1);
            for (T &element : src)
                fillWith(data, element, kind);
            if (kind == 1)
                makeSpecial(data, src[data.word() % static_cast<unsigned>(n)]);
            for (T &element : dst)
                fillWith(data, element, 0);
            rvxSetErrStatus(0);
            function(src.data(), dst.data(), n, further...);
            digest.add(dst);
            digest.add(rvxGetErrStatus());
        }
}

} // namespace

RVX_DIGEST(rvxdbSqr1)
{
    digestForms(digest, rvxdbSqr1);
}

RVX_DIGEST(rvxdbSqr2)
{
    digestForms(digest, rvxdbSqr2);
}

RVX_DIGEST(rvxzbSqr1)
{
    digestForms(digest, rvxzbSqr1);
}

RVX_DIGEST(rvxzbSqr2)
{
    digestForms(digest, rvxzbSqr2);
}

RVX_DIGEST(rvxdbAbs1)
{
    digestForms(digest, rvxdbAbs1);
}

RVX_DIGEST(rvxdbAbs2)
{
    digestForms(digest, rvxdbAbs2);
}

RVX_DIGEST(rvxdbSqrt1)
{
    digestForms(digest, rvxdbSqrt1);
}

RVX_DIGEST(rvxdbSqrt2)
{
    digestForms(digest, rvxdbSqrt2);
}

RVX_DIGEST(rvxzbSqrt1)
{
    digestForms(digest, rvxzbSqrt1);
}

RVX_DIGEST(rvxzbSqrt2)
{
    digestForms(digest, rvxzbSqrt2);
}

RVX_DIGEST(rvxdbThresh1)
{
    for (int relOp : {RVX_THRESH_RAISE, RVX_THRESH_LOWER})
        for (double thresh : {0.25, 0.0, -0.0, -0.25})
            digestForms(digest, rvxdbThresh1, thresh, relOp);
}

RVX_DIGEST(rvxdbThresh2)
{
    for (int relOp : {RVX_THRESH_RAISE, RVX_THRESH_LOWER})
        for (double thresh : {0.25, 0.0, -0.0, -0.25})
            digestForms(digest, rvxdbThresh2, thresh, relOp);
}

RVX_DIGEST(rvxzbThresh1)
{
    for (int relOp : {RVX_THRESH_RAISE, RVX_THRESH_LOWER})
        for (double thresh : {0.75, 0.0, 1e-160, 1e200})
            digestForms(digest, rvxzbThresh1, thresh, relOp);
}

RVX_DIGEST(rvxzbThresh2)
{
    for (int relOp : {RVX_THRESH_RAISE, RVX_THRESH_LOWER})
        for (double thresh : {0.75, 0.0, 1e-160, 1e200})
            digestForms(digest, rvxzbThresh2, thresh, relOp);
}

RVX_DIGEST(rvxdbInvThresh1)
{
    for (double thresh : {0.0, 0.25, 1e-160, 1e200})
        digestForms(digest, rvxdbInvThresh1, thresh);
}

RVX_DIGEST(rvxdbInvThresh2)
{
    for (double thresh : {0.0, 0.25, 1e-160, 1e200})
        digestForms(digest, rvxdbInvThresh2, thresh);
}

RVX_DIGEST(rvxzbInvThresh1)
{
    for (double thresh : {0.0, 0.25, 1e-160, 1e200})
        digestForms(digest, rvxzbInvThresh1, thresh);
}

RVX_DIGEST(rvxzbInvThresh2)
{
    for (double thresh : {0.0, 0.25, 1e-160, 1e200})
        digestForms(digest, rvxzbInvThresh2, thresh);
}
