// rvxwin: a block times an analysis window, in place.
//
// One cosine per call; every further weight follows from the two before it
// (Goertzel, An algorithm for the evaluation of finite trigonometric series, 1958)
// and serves two mirrored elements. That chain of a product and a difference is
// what the time goes into: four weights are gathered in lanes and applied at both
// ends while the next four come.

#include "frame/rvxcheck.h"
#include "frame/rvxkernel.h"
#include "frame/rvxlanes.h"
#include "frame/rvxsine.h"
#include "rvx.h"

RVX_MODULE("rvxwin")

namespace {

// A chain gives the weights in their order, from the second on, one or four at
// a time.

// step, 2 step, 3 step, ... by repeated addition.
//
// Between two powers of two, doubles stand equally far apart. There each
// addition rounds the same way, so that the weights climb by one and the same
// exact rise, and four of them are known at once. (Should step lie halfway
// between two doubles, that begins with the second addition, when the weights
// are even.)
struct Ramp {
    double step;
    double now = 0.0;
    double power = 0x1p-31; // the power of two above now, once four() has been there
    double rise = 1.0;      // too large for power while it is not known

    RVX_INLINE double next() { return now += step; }
    RVX_INLINE Lanes four()
    {
        double w0 = now + rise;
        double w1 = now + 2.0 * rise;
        double w2 = now + 3.0 * rise;
        double w3 = now + 4.0 * rise;
        if (w3 >= power) {
            w0 = now + step;
            w1 = w0 + step;
            w2 = w1 + step;
            w3 = w2 + step;
            while (power <= w3)
                power += power;
            rise = w1 + w1 >= power ? w3 - w2 : 1.0;
        }
        now = w3;
        return lanesOf(w0, w1, w2, w3);
    }
};

// (base - c) - c * c * curve, which a curve of 0 leaves at base - c exactly, of
// c(k) = amp cos(2 pi k / (n - 1)).
struct CosineSum {
    double doubledCosine;
    double before; // c(k - 1)
    double now;    // c(k)
    double base;
    double curve;

    RVX_INLINE double nextCosine()
    {
        const double after = doubledCosine * now - before;
        before = now;
        now = after;
        return now;
    }
    RVX_INLINE double next()
    {
        const double c = nextCosine();
        return (base - c) - (c * c) * curve;
    }
    RVX_INLINE Lanes four()
    {
        const double c0 = nextCosine();
        const double c1 = nextCosine();
        const double c2 = nextCosine();
        const double c3 = nextCosine();
        const Lanes c = lanesOf(c0, c1, c2, c3);
        return (allLanes(base) - c) - (c * c) * allLanes(curve);
    }
};

RVX_INLINE void scale(double *element, double weight)
{
    *element = *element * weight;
}

RVX_INLINE void scale(ZCplx *element, double weight)
{
    element->re = element->re * weight;
    element->im = element->im * weight;
}

// Four elements from a place on.
RVX_INLINE void scaleFour(double *elements, Lanes weights)
{
    storeLanes(elements, loadLanes(elements) * weights);
}

RVX_INLINE void scaleFour(ZCplx *elements, Lanes weights)
{
    storeLanes(elements, loadLanes(elements) * lowTwice(weights));
    storeLanes(elements + 2, loadLanes(elements + 2) * highTwice(weights));
}

// vec[k] and vec[n - 1 - k] times w(k), where w(0) is first.
template <typename Chain, typename Element>
RVX_INLINE void weigh(double first, Chain chain, Element *vec, int n)
{
    const int half = n / 2;
    scale(vec, first);
    scale(vec + n - 1, first);
    int k = 1;
    for (; half - k >= 4; k += 4) {
        const Lanes weights = chain.four();
        scaleFour(vec + k, weights);
        scaleFour(vec + n - 4 - k, reversed(weights));
    }
    for (; k < half; ++k) {
        const double weight = chain.next();
        scale(vec + k, weight);
        scale(vec + n - 1 - k, weight);
    }
}

RVX_KERNEL void weighByRampReal(double step, double *vec, int n)
{
    weigh(0.0, Ramp{step}, vec, n);
}

RVX_KERNEL void weighByRampCplx(double step, ZCplx *vec, int n)
{
    weigh(0.0, Ramp{step}, vec, n);
}

RVX_KERNEL void weighByCosineReal(double first, CosineSum weights, double *vec, int n)
{
    weigh(first, weights, vec, n);
}

RVX_KERNEL void weighByCosineCplx(double first, CosineSum weights, ZCplx *vec, int n)
{
    weigh(first, weights, vec, n);
}

void weighByRamp(double step, double *vec, int n)
{
    weighByRampReal(step, vec, n);
}

void weighByRamp(double step, ZCplx *vec, int n)
{
    weighByRampCplx(step, vec, n);
}

void weighByCosine(double first, const CosineSum &weights, double *vec, int n)
{
    weighByCosineReal(first, weights, vec, n);
}

void weighByCosine(double first, const CosineSum &weights, ZCplx *vec, int n)
{
    weighByCosineCplx(first, weights, vec, n);
}

CosineSum cosineSum(double amp, double base, double curve, int n)
{
    const double start = cosine(-6.283185307179586 / (n - 1));
    return {start + start, amp * start, amp, base, curve};
}

void setZero(double *element)
{
    *element = 0.0;
}

void setZero(ZCplx *element)
{
    *element = {0.0, 0.0};
}

template <typename Element>
void clearEnds(Element *vec)
{
    setZero(vec);
    setZero(vec + 2);
}

template <typename Element>
void bartlett(Element *vec, int n)
{
    if (n == 3)
        return clearEnds(vec);
    weighByRamp(2.0 / (n - 1), vec, n);
}

template <typename Element>
void hann(Element *vec, int n)
{
    if (n == 3)
        return clearEnds(vec);
    weighByCosine(0.0, cosineSum(0.5, 0.5, 0.0, n), vec, n);
}

template <typename Element>
void hamming(Element *vec, int n)
{
    weighByCosine(0.08, cosineSum(0.46, 0.54, 0.0, n), vec, n);
}

template <typename Element>
void blackman(Element *vec, int n, double alpha)
{
    if (n == 3)
        return clearEnds(vec);
    const double base = alpha + 0.5;
    const double curve = alpha * 4.0;
    weighByCosine((base - 0.5) - 0.25 * curve, cosineSum(0.5, base, curve, n), vec, n);
}

// Any n is good here: the checks come later.
double optimalAlpha(int n)
{
    if (n == 3)
        return -0.25;
    const double quotient = 0.5 / cosine(3.141592653589793 / (static_cast<double>(n) - 1.0));
    return -(quotient * quotient);
}

} // namespace

void rvxdWinBartlett(double *vec, int n)
{
    RVX_REJECT_IF(vec == nullptr, "Null pointer to buffer");
    RVX_REJECT_IF(n < 3, "Bad number of items");
    bartlett(vec, n);
}

void rvxzWinBartlett(ZCplx *vec, int n)
{
    RVX_REJECT_IF(vec == nullptr, "Null pointer to buffer");
    RVX_REJECT_IF(n < 3, "Bad number of items");
    bartlett(vec, n);
}

void rvxdWinHann(double *vec, int n)
{
    RVX_REJECT_IF(vec == nullptr, "Null pointer to buffer");
    RVX_REJECT_IF(n < 3, "Bad number of items");
    hann(vec, n);
}

void rvxzWinHann(ZCplx *vec, int n)
{
    RVX_REJECT_IF(vec == nullptr, "Null pointer to buffer");
    RVX_REJECT_IF(n < 3, "Bad number of items");
    hann(vec, n);
}

void rvxdWinHamming(double *vec, int n)
{
    RVX_REJECT_IF(vec == nullptr, "Null pointer to buffer");
    RVX_REJECT_IF(n < 3, "Bad number of items");
    hamming(vec, n);
}

void rvxzWinHamming(ZCplx *vec, int n)
{
    RVX_REJECT_IF(vec == nullptr, "Null pointer to buffer");
    RVX_REJECT_IF(n < 3, "Bad number of items");
    hamming(vec, n);
}

void rvxdWinBlackman(double *vec, int n, double alpha)
{
    RVX_REJECT_IF(vec == nullptr, "Null pointer to buffer");
    RVX_REJECT_IF(n < 3, "Bad number of items");
    blackman(vec, n, alpha);
}

void rvxzWinBlackman(ZCplx *vec, int n, double alpha)
{
    RVX_REJECT_IF(vec == nullptr, "Null pointer to buffer");
    RVX_REJECT_IF(n < 3, "Bad number of items");
    blackman(vec, n, alpha);
}

// Deliberately without checks of their own: a failure is the Blackman window's.

void rvxdWinBlackmanOpt(double *vec, int n)
{
    rvxdWinBlackman(vec, n, optimalAlpha(n));
}

void rvxzWinBlackmanOpt(ZCplx *vec, int n)
{
    rvxzWinBlackman(vec, n, optimalAlpha(n));
}
