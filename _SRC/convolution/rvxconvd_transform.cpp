// The cores by transforms: one that holds the whole result, and overlap-save, whose
// first block has no history.
//
// T. G. Stockham, High-speed convolution and correlation, 1966. What each form of
// operands adds is how the spectrum of the shorter one is kept and how a block goes
// there and back.

#include <cstdint>
#include <cstring>

#include "convolution/rvxconvd.h"
#include "convolution/rvxconvd_checks.h"
#include "frame/rvxbuffer.h"
#include "transform/rvxfftd.h"
#include "transform/rvxmisc.h"
#include "transform/rvxtwd.h"

namespace {

// True when a status, be it an old one, ends the core.
bool stopped(const char *core)
{
    return rvxGetErrStatus() < 0 && RVX_REPORT_AS(core, RVX_STATUS_BACKTRACE, nullptr) != 0;
}

double *doubles(ZCplx *z)
{
    return &z->re;
}

ZCplx conjugate(ZCplx z)
{
    return {z.re, -z.im};
}

ZCplx scaled(ZCplx z, double factor)
{
    return {z.re * factor, z.im * factor};
}

// Below order 32: a table that is longer than memory has ended the call before.
bool allocSlots(double **buffer, int order)
{
    *buffer = rvxAllocDoubles(std::uint32_t{1} << order);
    return *buffer != nullptr;
}

bool allocSlots(ZCplx **buffer, int order)
{
    *buffer = rvxAllocZCplx(std::uint32_t{1} << order);
    return *buffer != nullptr;
}

// len values and zeros up to n of them.
template <typename Element>
void copyPadded(const Element *src, std::int64_t len, Element *dst, std::int64_t n)
{
    std::memcpy(dst, src, static_cast<std::size_t>(len) * sizeof(Element));
    std::memset(dst + len, 0, static_cast<std::size_t>(n - len) * sizeof(Element));
}

template <typename Element>
void copyBlock(const Element *src, Element *dst, std::int64_t n)
{
    std::memcpy(dst, src, static_cast<std::size_t>(n) * sizeof(Element));
}

// ---- the forms ----------------------------------------------------------------

// A form works on transforms of N = 2^order points, in buffers of N slots. `warm`
// makes tables; samples are put where `samples` says, the shorter operand's where
// `taps` says; `filter` turns that operand into the spectrum which `block` multiplies
// with, and `block` turns a block of samples into its convolution, at the buffer's
// start. All are false when the core is to stop.

struct RealForm {
    using Long = double;
    using Short = double;
    using Slot = double;

    static double *taps(double *buffer) { return buffer; }
    static double *samples(double *buffer) { return buffer; }
    static bool warm(const char *core, int order)
    {
        rvxdRealFftl(nullptr, order, RVX_FFT_INIT_TABLES);
        return !stopped(core);
    }
    static bool filter(const char *core, double *spectrum, int order)
    {
        rvxdRealFftl(spectrum, order, RVX_FFT_FORWARD | RVX_FFT_OUT_RC_PACK);
        return !stopped(core);
    }
    static bool block(const char *core, const double *spectrum, double *block, int order)
    {
        if (!filter(core, block, order))
            return false;
        rvxdMpyRCPack2(spectrum, block, order);
        if (stopped(core))
            return false;
        rvxdCcsFftl(block, order, RVX_FFT_INVERSE | RVX_FFT_IN_RC_PACK);
        return !stopped(core);
    }
};

bool warmComplex(const char *core, int order)
{
    rvxzFft(nullptr, order, RVX_FFT_INIT_TABLES);
    return !stopped(core);
}

// Bins stay in bit-reversed order from the transform to the way back.
bool toReversedBins(const char *core, ZCplx *block, int order)
{
    rvxzFft(block, order, RVX_FFT_FORWARD | RVX_FFT_OUT_BIT_REV);
    return !stopped(core);
}

bool throughReversedBins(const char *core, const ZCplx *spectrum, ZCplx *block, int order)
{
    if (!toReversedBins(core, block, order))
        return false;
    rvxzbMpy2(spectrum, block, 1 << order);
    if (stopped(core))
        return false;
    rvxzFft(block, order, RVX_FFT_INVERSE | RVX_FFT_IN_BIT_REV);
    return !stopped(core);
}

struct CplxForm {
    using Long = ZCplx;
    using Short = ZCplx;
    using Slot = ZCplx;

    static ZCplx *taps(ZCplx *buffer) { return buffer; }
    static ZCplx *samples(ZCplx *buffer) { return buffer; }
    static bool warm(const char *core, int order) { return warmComplex(core, order); }
    static bool filter(const char *core, ZCplx *spectrum, int order)
    {
        return toReversedBins(core, spectrum, order);
    }
    static bool block(const char *core, const ZCplx *spectrum, ZCplx *block, int order)
    {
        return throughReversedBins(core, spectrum, block, order);
    }
};

// A packed spectrum of real samples that starts at element 1 of its buffer has bin k
// at complex place k, bin 0 at element 1 and bin N/2 at element N.
bool toPackedBins(const char *core, double *buffer, int order)
{
    rvxdRealFftl(buffer + 1, order, RVX_FFT_FORWARD | RVX_FFT_OUT_RC_PACK);
    return !stopped(core);
}

// Complex blocks, real taps: the spectrum of the taps is completed and reversed once,
// which saves the reversal of every block.
struct CplxRealForm {
    using Long = ZCplx;
    using Short = double;
    using Slot = ZCplx;

    static double *taps(ZCplx *buffer) { return doubles(buffer) + 1; }
    static ZCplx *samples(ZCplx *buffer) { return buffer; }
    static bool warm(const char *core, int order) { return warmComplex(core, order); }
    static bool filter(const char *core, ZCplx *spectrum, int order)
    {
        if (!toPackedBins(core, doubles(spectrum), order))
            return false;
        const int n = 1 << order;
        const double last = doubles(spectrum)[n];
        spectrum[n / 2] = {last, 0.0};
        spectrum[0] = {spectrum[0].im, 0.0};
        for (int k = 1; k < n / 2; ++k)
            spectrum[n - k] = conjugate(spectrum[k]);
        rvxzbBitRev1(spectrum, order);
        return !stopped(core);
    }
    static bool block(const char *core, const ZCplx *spectrum, ZCplx *block, int order)
    {
        return throughReversedBins(core, spectrum, block, order);
    }
};

// Real blocks, complex taps. Deliberately unlike its twin: natural order, since half of
// a block's spectrum is made only with the product.
struct RealCplxForm {
    using Long = double;
    using Short = ZCplx;
    using Slot = ZCplx;

    static ZCplx *taps(ZCplx *buffer) { return buffer; }
    static double *samples(ZCplx *buffer) { return doubles(buffer) + 1; }
    static bool warm(const char *core, int order) { return warmComplex(core, order); }
    static bool filter(const char *core, ZCplx *spectrum, int order)
    {
        rvxzFft(spectrum, order, RVX_FFT_FORWARD);
        return !stopped(core);
    }
    static bool block(const char *core, const ZCplx *spectrum, ZCplx *block, int order)
    {
        if (!toPackedBins(core, doubles(block), order))
            return false;
        const int half = 1 << (order - 1);
        const double first = block[0].im;
        const double last = block[half].re;
        block[half] = {last * spectrum[half].re, last * spectrum[half].im};
        for (int k = 1; k < half; ++k) {
            const ZCplx bin = block[half - k];
            block[half + k] = rvxzMpy(spectrum[half + k], conjugate(bin));
            block[half - k] = rvxzMpy(spectrum[half - k], bin);
        }
        block[0] = {first * spectrum[0].re, first * spectrum[0].im};
        rvxzFft(block, order, RVX_FFT_INVERSE);
        return !stopped(core);
    }
};

// ---- overlap-save -------------------------------------------------------------

template <typename Form, typename Out>
bool overlapSave(const char *core, const typename Form::Long *x, int xLen,
                 const typename Form::Short *h, int hLen, Out *y, int order,
                 typename Form::Slot *spectrum, typename Form::Slot *block)
{
    const std::int64_t total = std::int64_t{xLen} + hLen - 1;
    const std::int64_t n = std::int64_t{1} << order;
    const std::int64_t history = hLen - 1;
    const std::int64_t step = n - history;

    copyPadded(h, hLen, Form::taps(spectrum), n);
    if (!Form::filter(core, spectrum, order))
        return false;
    copyPadded(x, step < xLen ? step : xLen, Form::samples(block), n);
    if (!Form::block(core, spectrum, block, order))
        return false;
    copyBlock(block, y, total <= n ? total : step);
    if (total <= n)
        return true;
    for (std::int64_t end = 2 * step; end < total + step; end += step) {
        const std::int64_t start = end - n;
        copyPadded(x + start, end > xLen ? xLen - start : n, Form::samples(block), n);
        if (!Form::block(core, spectrum, block, order))
            return false;
        copyBlock(block + history, y + start + history,
                  end > total ? total - start - history : step);
    }
    return true;
}

enum { WHOLE = 0 };

// Takes the buffers for transforms of the whole, or of blocks in their mode, and runs
// these.
template <typename Form, typename Out>
void convolveByTransforms(const char *core, const typename Form::Long *x, int xLen,
                          const typename Form::Short *h, int hLen, Out *y, int mode)
{
    using Slot = typename Form::Slot;
    if (!rvxConvArgumentsGood(core, x, xLen, h, hLen, y))
        return;
    const int order =
        mode == WHOLE ? rvxConvWholeOrder(xLen, hLen) : rvxConvBlockOrder(xLen, hLen, mode);
    if (!Form::warm(core, order))
        return;
    Slot *spectrum = nullptr;
    Slot *block = nullptr;
    if (allocSlots(&spectrum, order) && allocSlots(&block, order))
        overlapSave<Form>(core, x, xLen, h, hLen, y, order, spectrum, block);
    else
        RVX_REPORT_AS(core, RVX_STATUS_NO_MEMORY, "NULL Pointer");
    rvxFreeAligned(spectrum);
    rvxFreeAligned(block);
}

// ---- one transform, mixed operands --------------------------------------------

// z becomes the convolution of what it holds and the real sequence that stands in r
// from element 1 on.
bool mixedProduct(const char *core, ZCplx *z, double *r, int order)
{
    rvxzFft(z, order, RVX_FFT_FORWARD);
    if (stopped(core) || !toPackedBins(core, r, order))
        return false;
    const int n = 1 << order;
    z[n / 2] = scaled(z[n / 2], r[n]);
    for (int k = 1; k < n / 2; ++k) {
        const ZCplx bin = {r[2 * k], r[2 * k + 1]};
        z[k] = rvxzMpy(z[k], bin);
        z[n - k] = rvxzMpy(z[n - k], conjugate(bin));
    }
    z[0] = scaled(z[0], r[1]);
    rvxzFft(z, order, RVX_FFT_INVERSE);
    return !stopped(core);
}

void convolveMixed(const char *core, const ZCplx *cplx, int cplxLen, const double *real,
                   int realLen, ZCplx *y)
{
    const int order = rvxConvWholeOrder(cplxLen, realLen);
    if (!warmComplex(core, order))
        return;
    const std::uint32_t n = std::uint32_t{1} << order;
    ZCplx *z = rvxAllocZCplx(n);
    double *r = z != nullptr ? rvxAllocDoubles(n + 2) : nullptr;
    if (r == nullptr) {
        RVX_REPORT_AS(core, RVX_STATUS_NO_MEMORY, "NULL Pointer");
    } else {
        copyPadded(cplx, cplxLen, z, n);
        copyPadded(real, realLen, r + 1, n);
        if (mixedProduct(core, z, r, order))
            copyBlock(z, y, std::int64_t{cplxLen} + realLen - 1);
    }
    rvxFreeAligned(z);
    rvxFreeAligned(r);
}

} // namespace

// ---- the cores ----------------------------------------------------------------

void rvxdConv1(const double *x, int xLen, const double *h, int hLen, double *y)
{
    convolveByTransforms<RealForm>(__func__, x, xLen, h, hLen, y, WHOLE);
}

void rvxzConv1(const ZCplx *x, int xLen, const ZCplx *h, int hLen, ZCplx *y)
{
    convolveByTransforms<CplxForm>(__func__, x, xLen, h, hLen, y, WHOLE);
}

void rvxzdConv1(const ZCplx *x, int xLen, const double *h, int hLen, ZCplx *y)
{
    if (rvxConvArgumentsGood(__func__, x, xLen, h, hLen, y))
        convolveMixed(__func__, x, xLen, h, hLen, y);
}

void rvxdzConv1(const double *x, int xLen, const ZCplx *h, int hLen, ZCplx *y)
{
    if (rvxConvArgumentsGood(__func__, x, xLen, h, hLen, y))
        convolveMixed(__func__, h, hLen, x, xLen, y);
}

void rvxdConvm(const double *x, int xLen, const double *h, int hLen, double *y, int mode)
{
    convolveByTransforms<RealForm>(__func__, x, xLen, h, hLen, y, mode);
}

void rvxzConvm(const ZCplx *x, int xLen, const ZCplx *h, int hLen, ZCplx *y, int mode)
{
    convolveByTransforms<CplxForm>(__func__, x, xLen, h, hLen, y, mode);
}

void rvxzdConvm(const ZCplx *x, int xLen, const double *h, int hLen, ZCplx *y, int mode)
{
    convolveByTransforms<CplxRealForm>(__func__, x, xLen, h, hLen, y, mode);
}

void rvxdzConvm(const double *x, int xLen, const ZCplx *h, int hLen, ZCplx *y, int mode)
{
    convolveByTransforms<RealCplxForm>(__func__, x, xLen, h, hLen, y, mode);
}
