// Cascades of second-order sections, blocks.
//
// The cascade runs as a pipeline: the sections stand side by side in lanes, and at
// step s section q works on sample s - 2 q. A section's own recurrence takes three
// operations in a row; the two steps between neighbours keep the way from section
// to section off that chain. The order of operations within a section is that of
// single steps.

#include <cstddef>
#include <type_traits>

#include "filter/rvxiirl_engines.h"
#include "filter/rvxiirl_steps.h"
#include "frame/rvxkernel.h"
#include "frame/rvxlanes.h"

namespace {

// Calls body(k) for 0 <= k < count with constants, so that arrays indexed by k are
// registers. Compilers unroll loops too late for that.
template <int count, int k = 0, typename Body>
RVX_INLINE void forEachVector(Body body)
{
    if constexpr (k < count) {
        body(std::integral_constant<int, k>());
        forEachVector<count, k + 1>(body);
    }
}

constexpr int RVX_IIR_SKEW = 2;
constexpr int RVX_IIR_PIPELINE_LEAST = 8; // samples that pay for filling a pipeline

// One tap of each section in a vector, from and to the places of lanes: those of
// its real part and those of its imaginary part, each once for every part of an
// element.
template <typename Tap>
struct SectionTap;

template <>
struct SectionTap<double> {
    static constexpr int kinds = 1;
    Lanes factor;
    RVX_INLINE Lanes times(Lanes x) const { return factor * x; }
    RVX_INLINE void load(const double *re, const double *) { factor = loadLanes(re); }
    RVX_INLINE static double part(double tap, int) { return tap; }
};

template <>
struct SectionTap<ZCplx> {
    static constexpr int kinds = 2;
    Lanes re, im;
    RVX_INLINE Lanes times(Lanes x) const { return subAdd(re * x, im * swapParts(x)); }
    RVX_INLINE void load(const double *reals, const double *imags)
    {
        re = loadLanes(reals);
        im = loadLanes(imags);
    }
    RVX_INLINE static double part(ZCplx tap, int kind) { return kind == 0 ? tap.re : tap.im; }
};

// How elements lie in lanes: shifted(a, b) is b moved up by an element with a's
// last element in front, putLast stores the last element.
template <typename Element>
struct ElementLanes;

template <>
struct ElementLanes<double> {
    static constexpr int parts = 1;
    RVX_INLINE static Lanes all(double x) { return allLanes(x); }
    RVX_INLINE static Lanes shifted(Lanes a, Lanes b) { return lastLaneThen(a, b); }
    RVX_INLINE static void putLast(double *p, Lanes a) { *p = a.v[3]; }
    RVX_INLINE static double part(double x, int) { return x; }
};

template <>
struct ElementLanes<ZCplx> {
    static constexpr int parts = 2;
    RVX_INLINE static Lanes all(ZCplx x) { return allLanes(x); }
    RVX_INLINE static Lanes shifted(Lanes a, Lanes b) { return lastHalfThen(a, b); }
    RVX_INLINE static void putLast(ZCplx *p, Lanes a) { *p = {a.v[2], a.v[3]}; }
    RVX_INLINE static double part(ZCplx x, int p) { return p == 0 ? x.re : x.im; }
};

// The sections fill the lanes up to the last one; fewer lanes than a vector has idle
// in front of the first section. Those and the first section take in the input.
template <int vectors, typename Tap, typename Element>
struct Pipeline {
    using Form = ElementLanes<Element>;
    static constexpr int parts = Form::parts;
    static constexpr int perVector = 4 / parts;
    static constexpr int room = vectors * perVector;

    SectionTap<Tap> a1[vectors], a2[vectors], b1[vectors], b2[vectors];
    Lanes d0[vectors], d1[vectors];
    Lanes lastOut[vectors], olderOut[vectors]; // of the last step and the one before
    LaneMask entry;
    Lanes delay[vectors]; // samples by which each lane is behind the input

    // taps and d are those of the first of the sections. All goes by way of memory:
    // lanes that are indexed by a variable would stay there.
    RVX_INLINE void load(const Tap *taps, int sections, const Element *d)
    {
        constexpr int lanes = 4 * vectors;
        double tapRoom[4][2][lanes] = {}, pastRoom[2][lanes] = {}, delayRoom[lanes] = {};
        for (int q = 0; q < sections; ++q)
            for (int p = 0; p < parts; ++p) {
                const int lane = (q + room - sections) * parts + p;
                for (int i = 0; i < 4; ++i)
                    for (int kind = 0; kind < SectionTap<Tap>::kinds; ++kind)
                        tapRoom[i][kind][lane] = SectionTap<Tap>::part(taps[4 * q + i], kind);
                for (int i = 0; i < 2; ++i)
                    pastRoom[i][lane] = Form::part(d[2 * q + i], p);
                delayRoom[lane] = RVX_IIR_SKEW * q;
            }
        forEachVector<vectors>([&](auto k) __attribute__((always_inline)) {
            a1[k].load(tapRoom[0][0] + 4 * k, tapRoom[0][1] + 4 * k);
            a2[k].load(tapRoom[1][0] + 4 * k, tapRoom[1][1] + 4 * k);
            b1[k].load(tapRoom[2][0] + 4 * k, tapRoom[2][1] + 4 * k);
            b2[k].load(tapRoom[3][0] + 4 * k, tapRoom[3][1] + 4 * k);
            d0[k] = loadLanes(pastRoom[0] + 4 * k);
            d1[k] = loadLanes(pastRoom[1] + 4 * k);
            delay[k] = loadLanes(delayRoom + 4 * k);
            lastOut[k] = olderOut[k] = allLanes(0.0);
        });
        entry = isEqual(delay[0], allLanes(0.0));
    }

    RVX_INLINE void save(int sections, Element *d) const
    {
        Element pastRoom[2][room];
        forEachVector<vectors>([&](auto k) __attribute__((always_inline)) {
            storeLanes(pastRoom[0] + perVector * k, d0[k]);
            storeLanes(pastRoom[1] + perVector * k, d1[k]);
        });
        for (int q = 0; q < sections; ++q)
            for (int i = 0; i < 2; ++i)
                d[2 * q + i] = pastRoom[i][q + room - sections];
    }

    // Every section takes one sample in. In a partial step only those do whose
    // sample, step - delay, is one of the block's n.
    template <bool partial>
    RVX_INLINE void step(Lanes input, std::ptrdiff_t step, int n)
    {
        Lanes out[vectors];
        forEachVector<vectors>([&](auto k) __attribute__((always_inline)) {
            constexpr int before = k - (k > 0);
            Lanes v = Form::shifted(k == 0 ? input : olderOut[before], olderOut[k]);
            if (k == 0)
                v = choose(entry, input, v);
            const Lanes w = (v - a1[k].times(d0[k])) - a2[k].times(d1[k]);
            out[k] = w + (b2[k].times(d1[k]) + b1[k].times(d0[k]));
            if (partial) {
                const Lanes sample = allLanes(static_cast<double>(step)) - delay[k];
                const LaneMask active =
                    isBelow(sample, allLanes(n)) & isBelow(allLanes(-1.0), sample);
                d1[k] = choose(active, d0[k], d1[k]);
                d0[k] = choose(active, w, d0[k]);
            } else {
                d1[k] = d0[k];
                d0[k] = w;
            }
        });
        forEachVector<vectors>([&](auto k) __attribute__((always_inline)) {
            olderOut[k] = lastOut[k];
            lastOut[k] = out[k];
        });
    }
};

// source(s) gives sample s of the input.
template <int vectors, typename Tap, typename Source, typename Element>
RVX_INLINE void runPipeline(const Tap *taps, int sections, Element *d, Source source, Element *out,
                            int n)
{
    using Form = ElementLanes<Element>;
    const int fill = RVX_IIR_SKEW * (sections - 1);
    const Lanes none = allLanes(0.0);
    Pipeline<vectors, Tap, Element> line;
    line.load(taps, sections, d);
    std::ptrdiff_t s = 0; // goes beyond n
    for (; s < fill; ++s)
        line.template step<true>(s < n ? Form::all(source(s)) : none, s, n);
    for (; s < n; ++s) {
        line.template step<false>(Form::all(source(s)), s, n);
        Form::putLast(out + (s - fill), line.lastOut[vectors - 1]);
    }
    for (; s - fill < n; ++s) {
        line.template step<true>(none, s, n);
        Form::putLast(out + (s - fill), line.lastOut[vectors - 1]);
    }
    line.save(sections, d);
}

template <typename Tap, typename Sample>
struct ScaledInput {
    Tap gain;
    const Sample *in;
    RVX_INLINE IirElement<Tap, Sample> operator()(std::ptrdiff_t s) const { return gain * in[s]; }
};

template <typename Element>
struct PlainInput {
    const Element *in;
    RVX_INLINE Element operator()(std::ptrdiff_t s) const { return in[s]; }
};

template <typename Tap, typename Sample>
RVX_INLINE void cascadeBlock(const Tap *taps, int numQuads, IirElement<Tap, Sample> *d,
                             const Sample *in, IirElement<Tap, Sample> *out, int n)
{
    using Element = IirElement<Tap, Sample>;
    constexpr int perVector = Pipeline<1, Tap, Element>::perVector;
    constexpr int most = 4 * perVector; // four vectors run beside the chain for nothing
    if (n < RVX_IIR_PIPELINE_LEAST || numQuads < 1) {
        for (int i = 0; i < n; ++i)
            out[i] = cascadeStep(taps, numQuads, d, in[i]);
        return;
    }
    const ScaledInput<Tap, Sample> scaled = {taps[0], in};
    const Tap *sections = taps + 1;
    // What does not fit beside one chain passes over the results again. The first
    // pass takes the odd ones, so that the others are full.
    const int first = (numQuads - 1) % most + 1;
    if (first <= perVector)
        runPipeline<1>(sections, first, d, scaled, out, n);
    else if (first <= 2 * perVector)
        runPipeline<2>(sections, first, d, scaled, out, n);
    else if (first <= 3 * perVector)
        runPipeline<3>(sections, first, d, scaled, out, n);
    else
        runPipeline<4>(sections, first, d, scaled, out, n);
    for (int q = first; q < numQuads; q += most)
        runPipeline<4>(sections + 4 * q, most, d + 2 * q, PlainInput<Element>{out}, out, n);
}

RVX_KERNEL void iirCascadeReal(const double *taps, int numQuads, double *d, const double *in,
                               double *out, int n)
{
    cascadeBlock(taps, numQuads, d, in, out, n);
}

RVX_KERNEL void iirCascadeCplx(const ZCplx *taps, int numQuads, ZCplx *d, const ZCplx *in,
                               ZCplx *out, int n)
{
    cascadeBlock(taps, numQuads, d, in, out, n);
}

RVX_KERNEL void iirCascadeCplxTaps(const ZCplx *taps, int numQuads, ZCplx *d, const double *in,
                                   ZCplx *out, int n)
{
    cascadeBlock(taps, numQuads, d, in, out, n);
}

RVX_KERNEL void iirCascadeRealTaps(const double *taps, int numQuads, ZCplx *d, const ZCplx *in,
                                   ZCplx *out, int n)
{
    cascadeBlock(taps, numQuads, d, in, out, n);
}

} // namespace

void rvxIirCascade(const double *taps, int numQuads, double *d, const double *in, double *out,
                   int n)
{
    iirCascadeReal(taps, numQuads, d, in, out, n);
}

void rvxIirCascade(const ZCplx *taps, int numQuads, ZCplx *d, const ZCplx *in, ZCplx *out, int n)
{
    iirCascadeCplx(taps, numQuads, d, in, out, n);
}

void rvxIirCascade(const ZCplx *taps, int numQuads, ZCplx *d, const double *in, ZCplx *out, int n)
{
    iirCascadeCplxTaps(taps, numQuads, d, in, out, n);
}

void rvxIirCascade(const double *taps, int numQuads, ZCplx *d, const ZCplx *in, ZCplx *out, int n)
{
    iirCascadeRealTaps(taps, numQuads, d, in, out, n);
}
