// Direct form, blocks.
//
// An output needs the one before it through four operations, five if it is complex,
// and no order of work shortens that. Low orders keep the delay line in registers
// beside the chain. In higher ones a vector of outputs is made first, from the front
// of the delay line, and then their samples pass through the rest of it together,
// a vector of elements at a time: it moves by whole vectors.

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
        out[i] = gain * in[i];
}

// 1 <= order <= held
template <int held, typename Tap, typename Sample>
RVX_INLINE void heldBlock(const Tap *taps, int order, IirElement<Tap, Sample> *d, const Sample *in,
                          IirElement<Tap, Sample> *out, int n)
{
    if constexpr (held > 1)
        if (order < held)
            return heldBlock<held - 1>(taps, order, d, in, out, n);
    Tap t[2 * held + 1];
    IirElement<Tap, Sample> elements[held];
    for (int i = 0; i <= 2 * held; ++i)
        t[i] = taps[i];
    for (int i = 0; i < held; ++i)
        elements[i] = d[i];
    for (int i = 0; i < n; ++i)
        out[i] = directStep(t, held, elements, in[i]);
    for (int i = 0; i < held; ++i)
        d[i] = elements[i];
}

// ---------------------------------------------------------------------------
// Four real samples at a time.

constexpr int RVX_IIR_BATCH = 4;

struct RealBatch {
    const double *taps;
    int order;
    double x[RVX_IIR_BATCH], y[RVX_IIR_BATCH];

    // The outputs, with the first delay elements in front.
    RVX_INLINE void makeOutputs(const double *front)
    {
        for (int k = 0; k < RVX_IIR_BATCH; ++k) {
            double sum = front[k];
            for (int i = RVX_IIR_BATCH - 1; i >= 1; --i)
                if (i <= k)
                    sum = term(i, k - i) + sum;
            y[k] = taps[0] * x[k] + sum;
        }
    }

    // b[i] x - a[i] y of the k-th sample.
    RVX_INLINE double term(int i, int k) const { return directTerm(taps, order, i, x[k], y[k]); }

    // What delay element j is four samples later: what stood four places up, and a
    // term of each sample that met it on its way down. j + 4 < order.
    RVX_INLINE double moved(const double *d, int j) const
    {
        double sum = d[j + RVX_IIR_BATCH];
        for (int k = 0; k < RVX_IIR_BATCH; ++k)
            sum = term(j + RVX_IIR_BATCH - k, k) + sum;
        return sum;
    }

    // One of the last four elements, order - 4 + r: no sum reaches it from above,
    // and it begins with the term of sample r.
    RVX_INLINE double entered(int r) const
    {
        double sum = term(order, r);
        for (int k = 1; k < RVX_IIR_BATCH; ++k)
            if (k > r)
                sum = term(order - k + r, k) + sum;
        return sum;
    }
};

// The samples of a batch for vectors of taps.
struct SpreadBatch {
    Lanes x[RVX_IIR_BATCH], y[RVX_IIR_BATCH];

    RVX_INLINE explicit SpreadBatch(const RealBatch &batch)
    {
        for (int k = 0; k < RVX_IIR_BATCH; ++k) {
            x[k] = allLanes(batch.x[k]);
            y[k] = allLanes(batch.y[k]);
        }
    }

    // RealBatch::moved for the four elements from j on.
    RVX_INLINE Lanes moved(const double *taps, int order, const double *d, int j) const
    {
        Lanes sum = loadLanes(d + j + RVX_IIR_BATCH);
        for (int k = 0; k < RVX_IIR_BATCH; ++k) {
            const double *b = taps + j + RVX_IIR_BATCH - k;
            sum = (loadLanes(b) * x[k] - loadLanes(b + order) * y[k]) + sum;
        }
        return sum;
    }
};

// order >= 8
RVX_INLINE void longBlock(const double *taps, int order, double *d, const double *in, double *out,
                          int n)
{
    // The first elements stay in registers: the next outputs wait for them.
    double front[RVX_IIR_BATCH];
    for (int k = 0; k < RVX_IIR_BATCH; ++k)
        front[k] = d[k];
    int i = 0;
    for (; i < n - (RVX_IIR_BATCH - 1); i += RVX_IIR_BATCH) {
        RealBatch batch;
        batch.taps = taps;
        batch.order = order;
        for (int k = 0; k < RVX_IIR_BATCH; ++k)
            batch.x[k] = in[i + k];
        batch.makeOutputs(front);
        for (int k = 0; k < RVX_IIR_BATCH; ++k)
            out[i + k] = batch.y[k];
        const SpreadBatch spread(batch);
        storeLanes(front, spread.moved(taps, order, d, 0));
        int j = RVX_IIR_BATCH;
        for (; j <= order - 2 * RVX_IIR_BATCH; j += RVX_IIR_BATCH)
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

// ---------------------------------------------------------------------------
// Two samples at a time, complex delay elements. A vector is two elements, and all
// values are vectors from the start: parts put together in memory would be waited
// for.

// Two taps, each for both parts of an element.
template <typename Tap>
struct TapPair;

template <>
struct TapPair<double> {
    Lanes taps;
    RVX_INLINE explicit TapPair(double one) : taps(allLanes(one)) {}
    RVX_INLINE explicit TapPair(const double *two) : taps(lanesOf(two[0], two[0], two[1], two[1]))
    {
    }
};

template <>
struct TapPair<ZCplx> {
    Lanes taps;
    RVX_INLINE explicit TapPair(ZCplx one) : taps(allLanes(one)) {}
    RVX_INLINE explicit TapPair(const ZCplx *two) : taps(loadLanes(two)) {}
};

// A value that both elements of a vector meet.
template <typename Value>
struct Twice;

template <>
struct Twice<double> {
    Lanes all;
    RVX_INLINE explicit Twice(double x) : all(allLanes(x)) {}
    RVX_INLINE Lanes times(const TapPair<ZCplx> &pair) const { return pair.taps * all; }
};

template <>
struct Twice<ZCplx> {
    Lanes both, re, im;
    RVX_INLINE explicit Twice(Lanes x) : both(x), re(realParts(x)), im(imagParts(x)) {}
    RVX_INLINE explicit Twice(ZCplx x) : Twice(allLanes(x)) {}
    RVX_INLINE Lanes times(const TapPair<double> &pair) const { return pair.taps * both; }
    RVX_INLINE Lanes times(const TapPair<ZCplx> &pair) const
    {
        return subAdd(pair.taps * re, swapParts(pair.taps) * im);
    }
};

// b x - a y for one tap of each kind or for two in a row.
template <typename Tap, typename Sample, typename Taps>
RVX_INLINE Lanes pairTerm(Taps b, Taps a, const Twice<Sample> &x, const Twice<ZCplx> &y)
{
    return x.times(TapPair<Tap>(b)) - y.times(TapPair<Tap>(a));
}

// order >= 4
template <typename Tap, typename Sample>
RVX_INLINE void longBlock(const Tap *taps, int order, ZCplx *d, const Sample *in, ZCplx *out, int n)
{
    const Tap *b = taps, *a = taps + order;
    Lanes front = loadLanes(d);
    int i = 0;
    for (; i < n - 1; i += 2) {
        const Twice<Sample> x0(in[i]), x1(in[i + 1]);
        const Twice<ZCplx> y0(x0.times(TapPair<Tap>(b[0])) + firstHalfTwice(front));
        const Lanes older = pairTerm<Tap>(b[1], a[1], x0, y0) + lastHalfTwice(front);
        const Twice<ZCplx> y1(x1.times(TapPair<Tap>(b[0])) + older);
        storeFirst(out + i, y0.both);
        storeFirst(out + i + 1, y1.both);

        // Elements j and j + 1 two samples later.
        const auto moved = [&](int j) __attribute__((always_inline))
        {
            const Lanes sum = pairTerm<Tap>(b + j + 2, a + j + 2, x0, y0) + loadLanes(d + j + 2);
            return pairTerm<Tap>(b + j + 1, a + j + 1, x1, y1) + sum;
        };
        front = moved(0);
        int j = 2;
        for (; j <= order - 4; j += 2)
            storeLanes(d + j, moved(j));
        // An odd one goes together with its neighbour, once more.
        if (j == order - 3)
            storeLanes(d + j - 1, moved(j - 1));
        // No sum reaches the last two from above: the later one is a term alone, and
        // adding -0.0 changes nothing.
        const Lanes first = pairTerm<Tap>(b[order], a[order], x0, y0);
        storeLanes(d + order - 2, pairTerm<Tap>(b + order - 1, a + order - 1, x1, y1) +
                                      outerHalves(first, allLanes(-0.0)));
    }
    storeLanes(d, front);
    for (; i < n; ++i)
        out[i] = directStep(taps, order, d, in[i]);
}

// The highest order whose delay line is held in registers.
template <typename Tap, typename Element>
constexpr int RVX_IIR_HELD_ORDER = 3;
template <>
constexpr int RVX_IIR_HELD_ORDER<double, ZCplx> = 5;
template <>
constexpr int RVX_IIR_HELD_ORDER<double, double> = 7;

template <typename Tap, typename Sample>
RVX_INLINE void directBlock(const Tap *taps, int order, IirElement<Tap, Sample> *d,
                            const Sample *in, IirElement<Tap, Sample> *out, int n)
{
    constexpr int held = RVX_IIR_HELD_ORDER<Tap, IirElement<Tap, Sample>>;
    if (order == 0)
        scaleBlock(taps, in, out, n);
    else if (order <= held)
        heldBlock<held>(taps, order, d, in, out, n);
    else
        longBlock(taps, order, d, in, out, n);
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
