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
#include "frame/rvxcplx.h"
#include "frame/rvxlanes.h"
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

ZCplx *pairs(double *samples)
{
    return reinterpret_cast<ZCplx *>(samples);
}

const ZCplx *pairs(const double *samples)
{
    return reinterpret_cast<const ZCplx *>(samples);
}

template <typename Element>
void copyBlock(const Element *src, Element *dst, std::int64_t n)
{
    std::memcpy(dst, src, static_cast<std::size_t>(n) * sizeof(Element));
}

// len values and zeros up to n of them.
template <typename Element>
void copyPadded(const Element *src, std::int64_t len, Element *dst, std::int64_t n)
{
    copyBlock(src, dst, len);
    std::memset(dst + len, 0, static_cast<std::size_t>(n - len) * sizeof(Element));
}

// ---- a complex spectrum by that of a real sequence ----------------------------

// out[k] = full[k] bins[k] for all n bins, of which `bins` holds the first n/2 + 1 and
// means the conjugates of these by the others. out may be either.
RVX_KERNEL void convMirrorProduct(const ZCplx *full, const ZCplx *bins, ZCplx *out, int n)
{
    const int half = n / 2;
    const double first = bins[0].re;
    const double last = bins[half].re;
    // Two bins at either end, and bin half-1 is left: half is even.
    for (int k = 1; k + 1 < half; k += 2) {
        const Lanes low = loadLanes(bins + k);
        const Lanes conjugates = swapHalves(swapParts(negateEven(swapParts(low))));
        storeLanes(out + k, cplxProduct(loadLanes(full + k), low));
        storeLanes(out + n - k - 1, cplxProduct(loadLanes(full + n - k - 1), conjugates));
    }
    const ZCplx bin = bins[half - 1];
    const Lanes both = cplxProduct(pairLanes(full[half - 1], full[half + 1]),
                                   lanesOf(bin.re, bin.im, bin.re, -bin.im));
    storeFirst(out + half - 1, both);
    storeFirst(out + half + 1, swapHalves(both));
    out[half] = full[half] * last;
    out[0] = full[0] * first;
}

// ---- the forms ----------------------------------------------------------------

// A form works on transforms of N = 2^order points, in buffers of N slots. `warm`
// makes its tables; `filter` turns the shorter operand, which stands in front of its
// buffer, into the spectrum to multiply with; `convolve` takes N samples, which may
// stand in front of the work buffer, to N results, which may be that buffer. All are
// false when the core is to stop.

struct RealForm {
    using Long = double;
    using Short = double;
    using Slot = double;

    const char *core;
    int order;
    // Of the complex transform of N/2 points over pairs of samples.
    const ZCplx *twiddles;
    const ZCplx *realTwist;
    const ZCplx *ccsTwist;

    bool warm()
    {
        rvxdRealFftl(nullptr, order, RVX_FFT_INIT_TABLES);
        if (stopped(core))
            return false;
        rvxdCcsFftl(nullptr, order, RVX_FFT_INIT_TABLES);
        if (stopped(core))
            return false;
        // One that was made may have had to go for the next one.
        twiddles = rvxGetFftTwdDit(order - 1);
        realTwist = rvxGetRealTwistTbl(order);
        ccsTwist = rvxGetCcsTwistTbl(order);
        if (twiddles != nullptr && realTwist != nullptr && ccsTwist != nullptr)
            return true;
        RVX_REPORT_AS(core, RVX_STATUS_NO_MEMORY, "NULL Pointer");
        return false;
    }
    bool filter(double *spectrum) const
    {
        ZCplx *z = pairs(spectrum);
        const int h = 1 << (order - 1);
        rvxFftNatural(z, z, h, 1, twiddles, 1.0);
        rvxRealFftPost(z, h, 1, 1.0, realTwist);
        z[0] = {z[0].re + z[0].im, z[0].re - z[0].im};
        return true;
    }
    bool convolve(const double *spectrum, const double *samples, double *work, double *result) const
    {
        const int h = 1 << (order - 1);
        rvxFftNatural(pairs(samples), pairs(work), h, 1, twiddles, 1.0);
        rvxRealFftProduct(pairs(spectrum), pairs(work), h, ccsTwist);
        rvxFftNatural(pairs(work), pairs(result), h, -1, twiddles, 0.5 / h);
        return true;
    }
};

bool warmComplex(const char *core, int order)
{
    rvxzFft(nullptr, order, RVX_FFT_INIT_TABLES);
    return !stopped(core);
}

bool warmReal(const char *core, int order)
{
    rvxdRealFftl(nullptr, order, RVX_FFT_INIT_TABLES);
    return !stopped(core);
}

// Bins stay in bit-reversed order from the transform to the way back.
bool toReversedBins(const char *core, ZCplx *block, int order)
{
    rvxzFft(block, order, RVX_FFT_FORWARD | RVX_FFT_OUT_BIT_REV);
    return !stopped(core);
}

bool throughReversedBins(const char *core, int order, const ZCplx *spectrum, const ZCplx *samples,
                         ZCplx *work, ZCplx *result)
{
    const int n = 1 << order;
    if (samples != work)
        copyBlock(samples, work, n);
    if (!toReversedBins(core, work, order))
        return false;
    rvxzbMpy3(spectrum, work, result, n);
    if (stopped(core))
        return false;
    rvxzFft(result, order, RVX_FFT_INVERSE | RVX_FFT_IN_BIT_REV);
    return !stopped(core);
}

struct CplxForm {
    using Long = ZCplx;
    using Short = ZCplx;
    using Slot = ZCplx;

    const char *core;
    int order;

    bool warm() const { return warmComplex(core, order); }
    bool filter(ZCplx *spectrum) const { return toReversedBins(core, spectrum, order); }
    bool convolve(const ZCplx *spectrum, const ZCplx *samples, ZCplx *work, ZCplx *result) const
    {
        return throughReversedBins(core, order, spectrum, samples, work, result);
    }
};

// Complex blocks, real taps: the spectrum of the taps is completed and reversed once,
// which saves the reversal of every block.
struct CplxRealForm {
    using Long = ZCplx;
    using Short = double;
    using Slot = ZCplx;

    const char *core;
    int order;

    bool warm() const { return warmComplex(core, order) && warmReal(core, order); }
    bool filter(ZCplx *spectrum) const
    {
        rvxdRealFft(doubles(spectrum), order, RVX_FFT_FORWARD);
        if (stopped(core))
            return false;
        const int n = 1 << order;
        for (int k = 1; k < n / 2; ++k)
            spectrum[n - k] = {spectrum[k].re, -spectrum[k].im};
        rvxzbBitRev1(spectrum, order);
        return !stopped(core);
    }
    bool convolve(const ZCplx *spectrum, const ZCplx *samples, ZCplx *work, ZCplx *result) const
    {
        return throughReversedBins(core, order, spectrum, samples, work, result);
    }
};

// Real blocks, complex taps. Deliberately unlike its twin: natural order, since half of
// a block's spectrum is made only with the product.
struct RealCplxForm {
    using Long = double;
    using Short = ZCplx;
    using Slot = ZCplx;

    const char *core;
    int order;

    bool warm() const { return warmComplex(core, order) && warmReal(core, order); }
    bool filter(ZCplx *spectrum) const
    {
        rvxzFft(spectrum, order, RVX_FFT_FORWARD);
        return !stopped(core);
    }
    bool convolve(const ZCplx *spectrum, const double *samples, ZCplx *work, ZCplx *result) const
    {
        if (samples == doubles(work))
            rvxdRealFft(doubles(work), order, RVX_FFT_FORWARD);
        else
            rvxdRealFftNip(samples, doubles(work), order, RVX_FFT_FORWARD);
        if (stopped(core))
            return false;
        convMirrorProduct(spectrum, work, work, 1 << order);
        if (result == work)
            rvxzFft(work, order, RVX_FFT_INVERSE);
        else
            rvxzFftNip(work, result, order, RVX_FFT_INVERSE);
        return !stopped(core);
    }
};

// ---- overlap-save -------------------------------------------------------------

// Blocks go from the last to the first: then a block may leave all of its results in y,
// whose first ones, which are wrong, the block before it puts right.
template <typename Form, typename Out>
bool overlapSave(const Form &form, const typename Form::Long *x, int xLen,
                 const typename Form::Short *h, int hLen, Out *y, typename Form::Slot *spectrum,
                 typename Form::Slot *work)
{
    const std::int64_t total = std::int64_t{xLen} + hLen - 1;
    const std::int64_t n = std::int64_t{1} << form.order;
    const std::int64_t history = hLen - 1;
    const std::int64_t step = n - history;
    auto *const taps = reinterpret_cast<typename Form::Short *>(spectrum);
    auto *const samples = reinterpret_cast<typename Form::Long *>(work);

    copyPadded(h, hLen, taps, n);
    if (!form.filter(spectrum))
        return false;
    for (std::int64_t i = total <= n ? 0 : (total - 1) / step; i > 0; --i) {
        const std::int64_t end = (i + 1) * step;
        const std::int64_t start = end - n;
        const bool whole = end <= xLen;
        if (!whole)
            copyPadded(x + start, xLen - start, samples, n);
        Out *result = end <= total ? y + start : work;
        if (!form.convolve(spectrum, whole ? x + start : samples, work, result))
            return false;
        if (result == work)
            copyBlock(work + history, y + start + history, total - start - history);
    }
    copyPadded(x, step < xLen ? step : xLen, samples, n);
    if (!form.convolve(spectrum, samples, work, work))
        return false;
    copyBlock(work, y, total <= n ? total : step);
    return true;
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

// Takes the buffers for transforms of the form's order and runs them.
template <typename Form, typename Out>
void convolveByTransforms(Form form, const typename Form::Long *x, int xLen,
                          const typename Form::Short *h, int hLen, Out *y)
{
    if (!form.warm())
        return;
    typename Form::Slot *spectrum = nullptr;
    typename Form::Slot *work = nullptr;
    if (allocSlots(&spectrum, form.order) && allocSlots(&work, form.order))
        overlapSave(form, x, xLen, h, hLen, y, spectrum, work);
    else
        RVX_REPORT_AS(form.core, RVX_STATUS_NO_MEMORY, "NULL Pointer");
    rvxFreeAligned(spectrum);
    rvxFreeAligned(work);
}

// ---- one transform, mixed operands --------------------------------------------

// z becomes the convolution of what it holds and the real sequence r.
bool convolveSpectra(const char *core, ZCplx *z, double *r, int order)
{
    rvxzFft(z, order, RVX_FFT_FORWARD);
    if (stopped(core))
        return false;
    rvxdRealFft(r, order, RVX_FFT_FORWARD);
    if (stopped(core))
        return false;
    convMirrorProduct(z, pairs(r), z, 1 << order);
    rvxzFft(z, order, RVX_FFT_INVERSE);
    return !stopped(core);
}

void convolveMixed(const char *core, const ZCplx *cplx, int cplxLen, const double *real,
                   int realLen, ZCplx *y)
{
    const int order = rvxConvWholeOrder(cplxLen, realLen);
    if (!warmComplex(core, order) || !warmReal(core, order))
        return;
    const std::uint32_t n = std::uint32_t{1} << order;
    ZCplx *z = rvxAllocZCplx(n);
    double *r = z != nullptr ? rvxAllocDoubles(n + 2) : nullptr;
    if (r == nullptr) {
        RVX_REPORT_AS(core, RVX_STATUS_NO_MEMORY, "NULL Pointer");
    } else {
        copyPadded(cplx, cplxLen, z, n);
        copyPadded(real, realLen, r, n);
        if (convolveSpectra(core, z, r, order))
            copyBlock(z, y, std::int64_t{cplxLen} + realLen - 1);
    }
    rvxFreeAligned(z);
    rvxFreeAligned(r);
}

} // namespace

// ---- the cores ----------------------------------------------------------------

void rvxdConv1(const double *x, int xLen, const double *h, int hLen, double *y)
{
    if (rvxConvArgumentsGood(__func__, x, xLen, h, hLen, y))
        convolveByTransforms(
            RealForm{__func__, rvxConvWholeOrder(xLen, hLen), nullptr, nullptr, nullptr}, x, xLen,
            h, hLen, y);
}

void rvxzConv1(const ZCplx *x, int xLen, const ZCplx *h, int hLen, ZCplx *y)
{
    if (rvxConvArgumentsGood(__func__, x, xLen, h, hLen, y))
        convolveByTransforms(CplxForm{__func__, rvxConvWholeOrder(xLen, hLen)}, x, xLen, h, hLen,
                             y);
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
    if (rvxConvArgumentsGood(__func__, x, xLen, h, hLen, y))
        convolveByTransforms(
            RealForm{__func__, rvxConvBlockOrder(xLen, hLen, mode), nullptr, nullptr, nullptr}, x,
            xLen, h, hLen, y);
}

void rvxzConvm(const ZCplx *x, int xLen, const ZCplx *h, int hLen, ZCplx *y, int mode)
{
    if (rvxConvArgumentsGood(__func__, x, xLen, h, hLen, y))
        convolveByTransforms(CplxForm{__func__, rvxConvBlockOrder(xLen, hLen, mode)}, x, xLen, h,
                             hLen, y);
}

void rvxzdConvm(const ZCplx *x, int xLen, const double *h, int hLen, ZCplx *y, int mode)
{
    if (rvxConvArgumentsGood(__func__, x, xLen, h, hLen, y))
        convolveByTransforms(CplxRealForm{__func__, rvxConvBlockOrder(xLen, hLen, mode)}, x, xLen,
                             h, hLen, y);
}

void rvxdzConvm(const double *x, int xLen, const ZCplx *h, int hLen, ZCplx *y, int mode)
{
    if (rvxConvArgumentsGood(__func__, x, xLen, h, hLen, y))
        convolveByTransforms(RealCplxForm{__func__, rvxConvBlockOrder(xLen, hLen, mode)}, x, xLen,
                             h, hLen, y);
}
