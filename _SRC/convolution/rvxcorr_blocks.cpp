// Cross-correlation by block transforms.
//
// The spectra's products of all blocks are added up before the one inverse
// transform. Everything stays in bit-reversed order, where the frequencies k and
// N - k need no table of positions: with h <= j < 2h for a power of two h, slot j of
// half the length stands at 2j, and the opposite of its frequency at 6h - 1 - 2j.

#include "convolution/rvxcorr_blocks.h"

#include <algorithm>

#include "convolution/rvxconv_counts.h"
#include "convolution/rvxcorr_paths.h"
#include "convolution/rvxfir2.h"
#include "frame/rvxbuffer.h"
#include "transform/rvxfftd.h"
#include "transform/rvxtwd.h"
#include "vector/rvxarith.h"

namespace {

template <typename Sample>
void copyPiece(const Sample *src, std::int64_t first, std::int64_t len, std::int64_t begin,
               Sample *dst, std::int64_t n)
{
    const std::int64_t from = std::clamp<std::int64_t>(first - begin, 0, n);
    const std::int64_t to = std::clamp<std::int64_t>(len - begin, from, n);
    std::fill(dst, dst + from, Sample{});
    if (from < to) // elsewhere there are no such addresses
        std::copy(src + (begin + from), src + (begin + to), dst + from);
    std::fill(dst + to, dst + n, Sample{});
}

int lengthOf(std::int64_t n)
{
    return static_cast<int>(n);
}

// ---- both real pieces in one complex transform ------------------------------

RVX_INLINE Lanes someOf(const double *p, std::int64_t i, bool there)
{
    return there ? loadLanes(p + i) : Lanes{};
}

// dst[i] = (re[i], im[i]), with zeros for a part that is not there.
RVX_INLINE void interleave(const double *re, bool reThere, const double *im, bool imThere,
                           ZCplx *dst, std::int64_t n)
{
    std::int64_t i = 0;
    for (; i + 4 <= n; i += 4) {
        const Lanes a = someOf(re, i, reThere), b = someOf(im, i, imThere);
        storeLanes(dst + i, interleaveLow(a, b));
        storeLanes(dst + i + 2, interleaveHigh(a, b));
    }
    for (; i < n; ++i)
        dst[i] = {reThere ? re[i] : 0.0, imThere ? im[i] : 0.0};
}

RVX_KERNEL void interleaveBoth(const double *re, const double *im, ZCplx *dst, std::int64_t n)
{
    interleave(re, true, im, true, dst, n);
}

RVX_KERNEL void interleaveReal(const double *re, ZCplx *dst, std::int64_t n)
{
    interleave(re, true, nullptr, false, dst, n);
}

RVX_KERNEL void interleaveImaginary(const double *im, ZCplx *dst, std::int64_t n)
{
    interleave(nullptr, false, im, true, dst, n);
}

// The first `half` values at most of src1 behind `begin` in the real parts, N values
// of src2 from loLag further on in the imaginary ones; zeros outside the sequences.
void packPieces(const CrossTask<double, double> &task, const CorrBlocks &blocks, std::int64_t begin,
                ZCplx *dst)
{
    const std::int64_t n = blocks.whole;
    const std::int64_t begin2 = begin + task.loLag;
    const std::int64_t reEnd = std::min(blocks.half, task.len1 - begin);
    const std::int64_t imBegin = std::clamp<std::int64_t>(-begin2, 0, n);
    const std::int64_t imEnd = std::clamp<std::int64_t>(task.len2 - begin2, imBegin, n);
    std::int64_t borders[] = {reEnd, imBegin, imEnd, n};
    std::sort(borders, borders + 4);
    std::int64_t from = 0;
    for (const std::int64_t to : borders) {
        const bool reThere = to <= reEnd, imThere = from >= imBegin && to <= imEnd;
        // The other sequence has no such address.
        if (reThere && imThere)
            interleaveBoth(task.src1 + (begin + from), task.src2 + (begin2 + from), dst + from,
                           to - from);
        else if (reThere)
            interleaveReal(task.src1 + (begin + from), dst + from, to - from);
        else if (imThere)
            interleaveImaginary(task.src2 + (begin2 + from), dst + from, to - from);
        else if (from < to)
            rvxzbZero(dst + from, lengthOf(to - from));
        from = to;
    }
}

// With Z at frequencies k and N - k: A and B, the spectra of what stood in the real
// and in the imaginary parts; conj(A) * B is added to the slots.
template <typename T>
RVX_INLINE void addOpposites(T zRe, T zIm, T oppositeRe, T oppositeIm, T half, T &accRe, T &accIm)
{
    const T a = (zRe + oppositeRe) * half;
    const T b = (zIm - oppositeIm) * half;
    const T c = (zIm + oppositeIm) * half;
    const T d = (zRe - oppositeRe) * half;
    accRe = accRe + (c * a - d * b);
    accIm = accIm - (d * a + b * c);
}

// Four slots: Z at their frequency, and half a turn further on.
struct SlotParts {
    Lanes re, im, farRe, farIm;
};

RVX_INLINE SlotParts loadSlots(const ZCplx *z)
{
    const Lanes s0 = loadLanes(z), s1 = loadLanes(z + 2);
    const Lanes s2 = loadLanes(z + 4), s3 = loadLanes(z + 6);
    const Lanes re = evenElements(s0, s1), im = oddElements(s0, s1);
    const Lanes re2 = evenElements(s2, s3), im2 = oddElements(s2, s3);
    return {evenElements(re, re2), evenElements(im, im2), oddElements(re, re2),
            oddElements(im, im2)};
}

RVX_INLINE void addSlots(const SlotParts &slots, const SlotParts &mirror, ZCplx *acc)
{
    const Lanes a0 = loadLanes(acc), a1 = loadLanes(acc + 2);
    Lanes re = evenElements(a0, a1), im = oddElements(a0, a1);
    addOpposites(slots.re, slots.im, reversed(mirror.farRe), reversed(mirror.farIm), allLanes(0.5),
                 re, im);
    storeLanes(acc, interleaveLow(re, im));
    storeLanes(acc + 2, interleaveHigh(re, im));
}

// Slot j of acc gains the product at its frequency, for 0 <= j < half.
RVX_KERNEL void addPackedProducts(const ZCplx *z, ZCplx *acc, std::int64_t half)
{
    acc[0].re += z[0].re * z[0].im;
    acc[0].im += z[1].re * z[1].im;
    for (std::int64_t h = 1; h < 8; h *= 2)
        for (std::int64_t j = h; j < 2 * h; ++j) {
            const ZCplx opposite = z[6 * h - 1 - 2 * j];
            addOpposites(z[2 * j].re, z[2 * j].im, opposite.re, opposite.im, 0.5, acc[j].re,
                         acc[j].im);
        }
    for (std::int64_t h = 8; h < half; h *= 2)
        for (std::int64_t j = h; j < h + h / 2; j += 4) {
            const std::int64_t mirror = 3 * h - 4 - j;
            const SlotParts front = loadSlots(z + 2 * j), back = loadSlots(z + 2 * mirror);
            addSlots(front, back, acc + j);
            addSlots(back, front, acc + mirror);
        }
}

// ---- a real and a complex piece ---------------------------------------------

// (a0, -a1, -a2, a3)
RVX_INLINE Lanes negateInner(Lanes a)
{
    return {(RvxVector)((RvxBits)a.v ^ RvxBits{0, INT64_MIN, INT64_MIN, 0})};
}

// (a0, a1, -a2, -a3)
RVX_INLINE Lanes negateHigh(Lanes a)
{
    return {(RvxVector)((RvxBits)a.v ^ RvxBits{0, 0, INT64_MIN, INT64_MIN})};
}

// Bins k and N - k of the product of both spectra, from v at both frequencies and the
// real piece's spectrum r at k, once for each.
struct RealFirst {
    // conj(r) * v and r * v
    static RVX_INLINE Lanes product(Lanes r, Lanes v)
    {
        return realParts(r) * v + negateInner(imagParts(r)) * swapParts(v);
    }
    static RVX_INLINE ZCplx product(double r, ZCplx v) { return {r * v.re, r * v.im}; }
};

struct ComplexFirst {
    // conj(v) * r and conj(v) * conj(r)
    static RVX_INLINE Lanes product(Lanes r, Lanes v)
    {
        return conjugated(realParts(r)) * v + negateHigh(imagParts(r)) * swapParts(v);
    }
    static RVX_INLINE ZCplx product(double r, ZCplx v) { return {r * v.re, -(r * v.im)}; }
};

// r is a packed spectrum of half slots, v a spectrum of N = 2 * half bins.
template <typename Form>
RVX_INLINE void addMixed(const ZCplx *r, const ZCplx *v, ZCplx *acc, std::int64_t half)
{
    const ZCplx first = Form::product(r[0].re, v[0]), second = Form::product(r[0].im, v[1]);
    storeLanes(acc, loadLanes(acc) + pairLanes(first, second));
    for (std::int64_t h = 1; h < half; h *= 2)
        for (std::int64_t j = h; j < 2 * h; ++j) {
            const Lanes bins = pairLanes(r[j], r[3 * h - 1 - j]);
            const Lanes product = Form::product(bins, loadLanesOnce(v + 2 * j));
            storeLanes(acc + 2 * j, loadLanes(acc + 2 * j) + product);
        }
}

RVX_KERNEL void addRealFirstProducts(const ZCplx *r, const ZCplx *v, ZCplx *acc, std::int64_t half)
{
    addMixed<RealFirst>(r, v, acc, half);
}

RVX_KERNEL void addComplexFirstProducts(const ZCplx *r, const ZCplx *v, ZCplx *acc,
                                        std::int64_t half)
{
    addMixed<ComplexFirst>(r, v, acc, half);
}

// ---- two complex pieces -----------------------------------------------------

RVX_KERNEL void addConjugateProducts(const ZCplx *x, const ZCplx *y, ZCplx *acc, std::int64_t n)
{
    for (std::int64_t i = 0; i < n; i += 2) {
        const Lanes product = conjugateProduct(loadLanesOnce(x + i), loadLanesOnce(y + i));
        storeLanes(acc + i, loadLanes(acc + i) + product);
    }
}

// ---- the frame --------------------------------------------------------------

// Buffers and tables come and go with each call. A block of 128 KB to 32 MB has the C
// library keep twice its size from then on, where it would give memory back to the
// system and fetch it anew in each call, which may take longer than the transforms. So
// what would not do for the tables too is made longer; nothing is written there.
std::int64_t roomFor(std::int64_t len)
{
    constexpr std::int64_t few = 2500, many = 1 << 20, reserve = 9000;
    return len < few || len > many ? len : 2 * len + reserve;
}

// The cyclic correlation's first values, which are the lags.
RVX_KERNEL void scaleSums(const double *sums, double scale, std::int64_t count, double *dst)
{
    for (std::int64_t j = 0; j < count; ++j)
        dst[j] = sums[j] * scale;
}

void putLags(const double *sums, std::int64_t n, std::int64_t lags, double *dst)
{
    scaleSums(sums, 1.0 / static_cast<double>(n), lags, dst);
}

void putLags(const ZCplx *sums, std::int64_t n, std::int64_t lags, ZCplx *dst)
{
    scaleSums(&sums->re, 1.0 / static_cast<double>(n), 2 * lags, &dst->re);
}

// The mixed forms: the real sequence's pieces go to x, the complex one's to y.
void copyPieces(const CrossTask<double, ZCplx> &task, const CorrBlocks &blocks, std::int64_t begin,
                const CorrBuffers &buffers)
{
    const std::int64_t end = std::min(task.len1, begin + blocks.half);
    ownCopyPiece(task.src1, 0, end, begin, &buffers.x->re, blocks.whole);
    ownCopyPiece(task.src2, 1, task.len2, begin + task.loLag, buffers.y, blocks.whole);
}

void copyPieces(const CrossTask<ZCplx, double> &task, const CorrBlocks &blocks, std::int64_t begin,
                const CorrBuffers &buffers)
{
    const std::int64_t end = std::min(task.len1, begin + blocks.half);
    ownCopyPiece(task.src2, 1, task.len2, begin + task.loLag, &buffers.x->re, blocks.whole);
    ownCopyPiece(task.src1, 0, end, begin, buffers.y, blocks.whole);
}

using AddProducts = void (*)(const ZCplx *, const ZCplx *, ZCplx *, std::int64_t);

template <typename A, typename B>
bool mixedBlocks(const CrossTask<A, B> &task, AddProducts addProducts)
{
    const CorrBlocks blocks = ownCorrBlocks(task.len1, task.lags);
    const int n = lengthOf(blocks.whole), half = lengthOf(blocks.half);
    CorrBuffers buffers;
    if (blocks.order > RVX_CORR_MAX_ORDER || !ownObtainBuffers(half, n, n, &buffers))
        return false;
    CorrTables tables;
    const bool there = ownObtainTables(blocks.order, {true, true, false}, &tables);
    if (there) {
        rvxzbZero(buffers.acc, n);
        for (std::int64_t begin = 0; begin < task.len1; begin += half) {
            copyPieces(task, blocks, begin, buffers);
            rvxFftDifByFactors(buffers.x, half, 1, tables.half, 1.0);
            rvxSplitReversed(buffers.x, blocks.order - 1, tables.firstQuarter);
            rvxFftDifByFactors(buffers.y, n, 1, tables.whole, 1.0);
            addProducts(buffers.x, buffers.y, buffers.acc, half);
        }
        rvxFftDitByFactors(buffers.acc, n, -1, tables.whole, 1.0);
        putLags(buffers.acc, n, task.lags, task.dst);
    }
    ownDropTables(tables);
    ownReleaseBuffers(buffers);
    return there;
}

} // namespace

CorrBlocks ownCorrBlocks(std::int64_t len, std::int64_t lags)
{
    const int order = ownOrderFor(lags);
    const std::int64_t half = std::int64_t{1} << order;
    return {order + 1, half, 2 * half, (len + half - 1) / half};
}

bool ownObtainBuffers(std::int64_t xLen, std::int64_t yLen, std::int64_t accLen,
                      CorrBuffers *buffers)
{
    // Apart by more than a line of the cache beside a power of two: equal low bits of
    // the addresses make loads wait for stores to other arrays.
    constexpr std::int64_t apart = 24;
    const std::int64_t len = xLen + yLen + accLen + 2 * apart;
    buffers->block = rvxAllocZCplx(static_cast<std::uint32_t>(roomFor(len)));
    if (buffers->block == nullptr)
        return false;
    buffers->x = buffers->block;
    buffers->y = buffers->x + xLen + apart;
    buffers->acc = buffers->y + yLen + apart;
    return true;
}

void ownReleaseBuffers(const CorrBuffers &buffers)
{
    rvxFreeAligned(buffers.block);
}

void ownCopyPiece(const double *src, std::int64_t first, std::int64_t len, std::int64_t begin,
                  double *dst, std::int64_t n)
{
    copyPiece(src, first, len, begin, dst, n);
}

void ownCopyPiece(const ZCplx *src, std::int64_t first, std::int64_t len, std::int64_t begin,
                  ZCplx *dst, std::int64_t n)
{
    copyPiece(src, first, len, begin, dst, n);
}

template <>
bool ownCrossBlocks(const CrossTask<double, double> &task)
{
    const CorrBlocks blocks = ownCorrBlocks(task.len1, task.lags);
    const int n = lengthOf(blocks.whole), half = lengthOf(blocks.half);
    CorrBuffers buffers;
    if (blocks.order > RVX_CORR_MAX_ORDER || !ownObtainBuffers(n, 0, half, &buffers))
        return false;
    CorrTables tables;
    const bool there = ownObtainTables(blocks.order, {true, false, true}, &tables);
    if (there) {
        rvxzbZero(buffers.acc, half);
        for (std::int64_t begin = 0; begin < task.len1; begin += half) {
            packPieces(task, blocks, begin, buffers.x);
            rvxFftDifByFactors(buffers.x, n, 1, tables.whole, 1.0);
            addPackedProducts(buffers.x, buffers.acc, half);
        }
        rvxJoinReversed(buffers.acc, blocks.order - 1, tables.circleEnd);
        rvxFftDitByFactors(buffers.acc, half, -1, tables.half, 1.0);
        putLags(&buffers.acc->re, n, task.lags, task.dst);
    }
    ownDropTables(tables);
    ownReleaseBuffers(buffers);
    return there;
}

// This form alone leaves the tables in the thread: deliberate.
template <>
bool ownCrossBlocks(const CrossTask<ZCplx, ZCplx> &task)
{
    const CorrBlocks blocks = ownCorrBlocks(task.len1, task.lags);
    const int n = lengthOf(blocks.whole);
    CorrBuffers buffers;
    if (blocks.order > RVX_CORR_MAX_ORDER || !ownObtainBuffers(n, n, n, &buffers))
        return false;
    const ZCplx *forward = rvxGetFftTwdDif(blocks.order);
    const ZCplx *back = rvxGetFftTwdDit(blocks.order);
    const bool there = forward != nullptr && back != nullptr;
    if (there) {
        rvxzbZero(buffers.acc, n);
        for (std::int64_t begin = 0; begin < task.len1; begin += blocks.half) {
            const std::int64_t end = std::min(task.len1, begin + blocks.half);
            ownCopyPiece(task.src1, 0, end, begin, buffers.x, n);
            ownCopyPiece(task.src2, 1, task.len2, begin + task.loLag, buffers.y, n);
            rvxFftDif(buffers.x, n, 1, forward);
            rvxFftDif(buffers.y, n, 1, forward);
            addConjugateProducts(buffers.x, buffers.y, buffers.acc, n);
        }
        rvxFftDit(buffers.acc, n, -1, back);
        putLags(buffers.acc, n, task.lags, task.dst);
    }
    ownReleaseBuffers(buffers);
    return there;
}

template <>
bool ownCrossBlocks(const CrossTask<double, ZCplx> &task)
{
    return mixedBlocks(task, addRealFirstProducts);
}

template <>
bool ownCrossBlocks(const CrossTask<ZCplx, double> &task)
{
    return mixedBlocks(task, addComplexFirstProducts);
}
