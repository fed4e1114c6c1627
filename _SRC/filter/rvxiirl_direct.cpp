// Direct form, blocks.
//
// An output needs the one before it through four operations, and no order of work
// shortens that. Low orders keep the delay line in registers beside the chain. From
// order 8 on four outputs are made first, from the front of the delay line, and
// then all four samples pass through the rest of it at once, several elements side
// by side.

#include "filter/rvxiirl_engines.h"
#include "filter/rvxiirl_steps.h"
#include "frame/rvxkernel.h"
#include "frame/rvxlanes.h"

namespace {

// ---------------------------------------------------------------------------
// Low orders.

template <typename Tap, typename Sample>
RVX_INLINE void scaleBlock(const Tap *taps, const Sample *in, IirElement<Tap, Sample> *out, int n)
{
    const Tap gain = taps[0];
    for (int i = 0; i < n; ++i)
        out[i] = tapTimes(gain, in[i]);
}

template <int order, typename Tap, typename Sample>
RVX_INLINE void lowOrderBlock(const Tap *taps, IirElement<Tap, Sample> *d, const Sample *in,
                              IirElement<Tap, Sample> *out, int n)
{
    Tap t[2 * order + 1];
    IirElement<Tap, Sample> held[order];
    for (int i = 0; i <= 2 * order; ++i)
        t[i] = taps[i];
    for (int i = 0; i < order; ++i)
        held[i] = d[i];
    for (int i = 0; i < n; ++i)
        out[i] = directStep(t, order, held, in[i]);
    for (int i = 0; i < order; ++i)
        d[i] = held[i];
}

// ---------------------------------------------------------------------------
// Four samples at a time.

// A sample in the form in which it meets the taps of a vector of delay elements:
// four real ones or two complex ones.
template <typename Tap, typename Value>
struct Spread;

template <>
struct Spread<double, double> {
    Lanes all;
    RVX_INLINE explicit Spread(double x) : all(allLanes(x)) {}
    RVX_INLINE Lanes times(const double *taps) const { return loadLanes(taps) * all; }
};

template <>
struct Spread<ZCplx, double> {
    Lanes all;
    RVX_INLINE explicit Spread(double x) : all(allLanes(x)) {}
    RVX_INLINE Lanes times(const ZCplx *taps) const { return loadLanes(taps) * all; }
};

template <>
struct Spread<double, ZCplx> {
    Lanes both;
    RVX_INLINE explicit Spread(ZCplx x) : both(allLanes(x)) {}
    RVX_INLINE Lanes times(const double *taps) const
    {
        return lanesOf(taps[0], taps[0], taps[1], taps[1]) * both;
    }
};

template <>
struct Spread<ZCplx, ZCplx> {
    Lanes re, im;
    RVX_INLINE explicit Spread(ZCplx x) : re(allLanes(x.re)), im(allLanes(x.im)) {}
    RVX_INLINE Lanes times(const ZCplx *taps) const
    {
        const Lanes t = loadLanes(taps);
        return subAdd(t * re, swapParts(t) * im);
    }
};

constexpr int RVX_IIR_BATCH = 4;
constexpr int RVX_IIR_BATCH_ORDER = 2 * RVX_IIR_BATCH; // the lowest that goes in batches

template <typename Tap, typename Sample>
struct Batch {
    using Element = IirElement<Tap, Sample>;
    static constexpr int width = 4 * sizeof(double) / sizeof(Element);
    const Tap *taps;
    int order;
    Sample x[RVX_IIR_BATCH];
    Element y[RVX_IIR_BATCH];

    // The outputs, with the first delay elements in front.
    RVX_INLINE void makeOutputs(const Element *front)
    {
        for (int k = 0; k < RVX_IIR_BATCH; ++k) {
            Element sum = front[k];
            for (int i = RVX_IIR_BATCH - 1; i >= 1; --i)
                if (i <= k)
                    sum = delayPlus(term(i, k - i), sum);
            y[k] = delayPlus(tapTimes(taps[0], x[k]), sum);
        }
    }

    // b[i] x - a[i] y of the k-th sample.
    RVX_INLINE Element term(int i, int k) const { return directTerm(taps, order, i, x[k], y[k]); }

    // What delay element j is four samples later: what stood four places up, and a
    // term of each sample that met it on its way down. j + 4 < order.
    RVX_INLINE Element moved(const Element *d, int j) const
    {
        Element sum = d[j + RVX_IIR_BATCH];
        for (int k = 0; k < RVX_IIR_BATCH; ++k)
            sum = delayPlus(term(j + RVX_IIR_BATCH - k, k), sum);
        return sum;
    }

    // One of the last four elements, order - 4 + r: no sum reaches it from above,
    // and it begins with the term of sample r.
    RVX_INLINE Element entered(int r) const
    {
        Element sum = term(order, r);
        for (int k = 1; k < RVX_IIR_BATCH; ++k)
            if (k > r)
                sum = delayPlus(term(order - k + r, k), sum);
        return sum;
    }
};

// The samples of a batch ready for vectors of taps.
template <typename Tap, typename Sample>
struct SpreadBatch {
    using Element = IirElement<Tap, Sample>;
    const Spread<Tap, Sample> x[RVX_IIR_BATCH];
    const Spread<Tap, Element> y[RVX_IIR_BATCH];

    RVX_INLINE explicit SpreadBatch(const Batch<Tap, Sample> &batch)
        : x{Spread<Tap, Sample>(batch.x[0]), Spread<Tap, Sample>(batch.x[1]),
            Spread<Tap, Sample>(batch.x[2]), Spread<Tap, Sample>(batch.x[3])},
          y{Spread<Tap, Element>(batch.y[0]), Spread<Tap, Element>(batch.y[1]),
            Spread<Tap, Element>(batch.y[2]), Spread<Tap, Element>(batch.y[3])}
    {
    }

    // Batch::moved for a vector of elements from j on.
    RVX_INLINE Lanes moved(const Tap *taps, int order, const Element *d, int j) const
    {
        Lanes sum = loadLanes(d + j + RVX_IIR_BATCH);
        for (int k = 0; k < RVX_IIR_BATCH; ++k) {
            const Tap *b = taps + j + RVX_IIR_BATCH - k;
            sum = (x[k].times(b) - y[k].times(b + order)) + sum;
        }
        return sum;
    }
};

template <typename Tap, typename Sample>
RVX_INLINE void highOrderBlock(const Tap *taps, int order, IirElement<Tap, Sample> *d,
                               const Sample *in, IirElement<Tap, Sample> *out, int n)
{
    using Element = IirElement<Tap, Sample>;
    constexpr int width = Batch<Tap, Sample>::width;
    // The first elements stay in registers: the next outputs wait for them.
    Element front[RVX_IIR_BATCH];
    for (int k = 0; k < RVX_IIR_BATCH; ++k)
        front[k] = d[k];
    int i = 0;
    for (; i < n - (RVX_IIR_BATCH - 1); i += RVX_IIR_BATCH) {
        Batch<Tap, Sample> batch;
        batch.taps = taps;
        batch.order = order;
        for (int k = 0; k < RVX_IIR_BATCH; ++k)
            batch.x[k] = in[i + k];
        batch.makeOutputs(front);
        for (int k = 0; k < RVX_IIR_BATCH; ++k)
            out[i + k] = batch.y[k];
        const SpreadBatch<Tap, Sample> spread(batch);
        for (int k = 0; k < RVX_IIR_BATCH; k += width)
            storeLanes(front + k, spread.moved(taps, order, d, k));
        int j = RVX_IIR_BATCH;
        for (; j <= order - RVX_IIR_BATCH - width; j += width)
            storeLanes(d + j, spread.moved(taps, order, d, j));
        for (; j < order - RVX_IIR_BATCH; ++j)
            d[j] = batch.moved(d, j);
        for (int r = 0; r < RVX_IIR_BATCH; ++r)
            d[order - RVX_IIR_BATCH + r] = batch.entered(r);
    }
    for (int k = 0; k < RVX_IIR_BATCH; ++k)
        d[k] = front[k];
    for (; i < n; ++i)
        out[i] = directStep(taps, order, d, in[i]);
}

template <typename Tap, typename Sample>
RVX_INLINE void directBlock(const Tap *taps, int order, IirElement<Tap, Sample> *d,
                            const Sample *in, IirElement<Tap, Sample> *out, int n)
{
    switch (order) {
    case 0:
        return scaleBlock(taps, in, out, n);
    case 1:
        return lowOrderBlock<1>(taps, d, in, out, n);
    case 2:
        return lowOrderBlock<2>(taps, d, in, out, n);
    case 3:
        return lowOrderBlock<3>(taps, d, in, out, n);
    case 4:
        return lowOrderBlock<4>(taps, d, in, out, n);
    case 5:
        return lowOrderBlock<5>(taps, d, in, out, n);
    case 6:
        return lowOrderBlock<6>(taps, d, in, out, n);
    case 7:
        return lowOrderBlock<7>(taps, d, in, out, n);
    default:
        static_assert(RVX_IIR_BATCH_ORDER == 8, "the orders above are those below it");
        return highOrderBlock(taps, order, d, in, out, n);
    }
}

RVX_KERNEL void iirDirectReal(const double *taps, int order, double *d, const double *in,
                              double *out, int n)
{
    directBlock(taps, order, d, in, out, n);
}

RVX_KERNEL void iirDirectCplx(const ZCplx *taps, int order, ZCplx *d, const ZCplx *in, ZCplx *out,
                              int n)
{
    directBlock(taps, order, d, in, out, n);
}

RVX_KERNEL void iirDirectCplxTaps(const ZCplx *taps, int order, ZCplx *d, const double *in,
                                  ZCplx *out, int n)
{
    directBlock(taps, order, d, in, out, n);
}

RVX_KERNEL void iirDirectRealTaps(const double *taps, int order, ZCplx *d, const ZCplx *in,
                                  ZCplx *out, int n)
{
    directBlock(taps, order, d, in, out, n);
}

} // namespace

void rvxIirDirect(const double *taps, int order, double *d, const double *in, double *out, int n)
{
    iirDirectReal(taps, order, d, in, out, n);
}

void rvxIirDirect(const ZCplx *taps, int order, ZCplx *d, const ZCplx *in, ZCplx *out, int n)
{
    iirDirectCplx(taps, order, d, in, out, n);
}

void rvxIirDirect(const ZCplx *taps, int order, ZCplx *d, const double *in, ZCplx *out, int n)
{
    iirDirectCplxTaps(taps, order, d, in, out, n);
}

void rvxIirDirect(const double *taps, int order, ZCplx *d, const ZCplx *in, ZCplx *out, int n)
{
    iirDirectRealTaps(taps, order, d, in, out, n);
}
