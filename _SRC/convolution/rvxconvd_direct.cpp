// The direct cores: y[n] = sum of x[i] h[n-i], each sum in its stated order.
//
// The order is that of a walk over pairs of h and, within, pairs of x. To one output
// it means: for each pair of taps h[j], h[j+1] with j ascending, an even output adds
// x[n-j-1] h[j+1] before x[n-j] h[j], an odd one after it; last come the elements that
// an odd length leaves over, of h before that of x. So outputs stand side by side in
// lanes, the even ones apart from the odd ones, while j ascends.

#include <cstdint>
#include <cstring>

#include "convolution/rvxconvd.h"
#include "convolution/rvxconvd_checks.h"
#include "frame/rvxcplx.h"
#include "frame/rvxlanes.h"

namespace {

// ---- one output ---------------------------------------------------------------

// For what does not go in lanes.
template <typename Long, typename Short>
auto outputAt(const Long *x, int xLen, const Short *h, int hLen, std::int64_t n)
{
    using Out = decltype(*x * *h);
    const int xEven = xLen & ~1;
    const int hEven = hLen & ~1;
    Out y = {};
    for (std::int64_t j = n > xEven ? (n - xEven + 1) & ~1 : 0; j < hEven && j <= n; j += 2) {
        const std::int64_t i = n - j;
        const bool odd = i % 2 != 0;
        if (odd && i < xEven)
            y = x[i] * h[j] + y;
        if (i > 0 && i <= xEven)
            y = x[i - 1] * h[j + 1] + y;
        if (!odd && i < xEven)
            y = x[i] * h[j] + y;
    }
    const std::int64_t last = n - (hLen - 1);
    if (hLen != hEven && last >= 0 && last < xLen)
        y = y + x[last] * h[hLen - 1];
    const std::int64_t j = n - (xLen - 1);
    if (xLen != xEven && j >= 0 && j < hEven)
        y = y + x[xLen - 1] * h[j];
    return y;
}

// ---- outputs in lanes ---------------------------------------------------------

enum {
    RVX_CONV_LEAD = RVX_CONV_DIRECT_MAX / 2 + 2,         // pairs of x before a chunk's outputs
    RVX_CONV_CHUNK = 128,                                // pairs of outputs in a chunk
    RVX_CONV_WINDOW = RVX_CONV_LEAD + RVX_CONV_CHUNK + 4 // zeros go in fours
};

// Loads are made where they stand: compilers would carry what the next pair of taps
// needs again over in registers, and then have none left for the sums.
//
// Pairs of x with their even elements apart from the odd ones. Place p is pair
// first + p; pairs that are not there are zero, which leaves every sum as it is: the
// taps are finite, and no sum is ever -0.0.
struct RealWindow {
    enum { width = 4 }; // pairs in a vector
    double even[RVX_CONV_WINDOW];
    double odd[RVX_CONV_WINDOW];

    RVX_INLINE Lanes evenAt(int p) const { return loadLanesOnce(even + p); }
    RVX_INLINE Lanes oddAt(int p) const { return loadLanesOnce(odd + p); }
    RVX_INLINE void set(int p, double e, double o)
    {
        even[p] = e;
        odd[p] = o;
    }
    RVX_INLINE void clearFour(int p)
    {
        storeLanes(even + p, Lanes{});
        storeLanes(odd + p, Lanes{});
    }
    RVX_INLINE void setFour(int p, const double *x)
    {
        const Lanes low = loadLanes(x);
        const Lanes high = loadLanes(x + 4);
        storeLanes(even + p, evenElements(low, high));
        storeLanes(odd + p, oddElements(low, high));
    }
};

struct CplxWindow {
    enum { width = 4 };
    double evenRe[RVX_CONV_WINDOW];
    double evenIm[RVX_CONV_WINDOW];
    double oddRe[RVX_CONV_WINDOW];
    double oddIm[RVX_CONV_WINDOW];

    RVX_INLINE Quad evenAt(int p) const
    {
        return {loadLanesOnce(evenRe + p), loadLanesOnce(evenIm + p)};
    }
    RVX_INLINE Quad oddAt(int p) const
    {
        return {loadLanesOnce(oddRe + p), loadLanesOnce(oddIm + p)};
    }
    RVX_INLINE void set(int p, ZCplx e, ZCplx o)
    {
        evenRe[p] = e.re;
        evenIm[p] = e.im;
        oddRe[p] = o.re;
        oddIm[p] = o.im;
    }
    RVX_INLINE void clearFour(int p)
    {
        storeLanes(evenRe + p, Lanes{});
        storeLanes(evenIm + p, Lanes{});
        storeLanes(oddRe + p, Lanes{});
        storeLanes(oddIm + p, Lanes{});
    }
    RVX_INLINE void setFour(int p, const ZCplx *x)
    {
        const Lanes a = loadLanes(x);
        const Lanes b = loadLanes(x + 2);
        const Lanes c = loadLanes(x + 4);
        const Lanes d = loadLanes(x + 6);
        const Lanes even02 = firstHalves(a, c);
        const Lanes even13 = firstHalves(b, d);
        const Lanes odd02 = lastHalves(a, c);
        const Lanes odd13 = lastHalves(b, d);
        storeLanes(evenRe + p, evenLanes(even02, even13));
        storeLanes(evenIm + p, oddLanes(even02, even13));
        storeLanes(oddRe + p, evenLanes(odd02, odd13));
        storeLanes(oddIm + p, oddLanes(odd02, odd13));
    }
};

// Complex elements whole: real taps need no more.
struct PairWindow {
    enum { width = 2 };
    ZCplx even[RVX_CONV_WINDOW];
    ZCplx odd[RVX_CONV_WINDOW];

    RVX_INLINE Lanes evenAt(int p) const { return loadLanesOnce(even + p); }
    RVX_INLINE Lanes oddAt(int p) const { return loadLanesOnce(odd + p); }
    RVX_INLINE void set(int p, ZCplx e, ZCplx o)
    {
        even[p] = e;
        odd[p] = o;
    }
    RVX_INLINE void clearFour(int p)
    {
        for (int i = 0; i < 4; i += 2) {
            storeLanes(even + p + i, Lanes{});
            storeLanes(odd + p + i, Lanes{});
        }
    }
    RVX_INLINE void setFour(int p, const ZCplx *x)
    {
        for (int i = 0; i < 4; i += 2) {
            const Lanes a = loadLanes(x + 2 * i);
            const Lanes b = loadLanes(x + 2 * i + 2);
            storeLanes(even + p + i, firstHalves(a, b));
            storeLanes(odd + p + i, lastHalves(a, b));
        }
    }
};

// Places from..to-1, and up to three more that are not read. Places before the first pair
// come in fours.
template <typename Window, typename Long>
RVX_INLINE void fillWindow(Window &window, const Long *x, int pairs, int first, int from, int to)
{
    int p = from;
    for (; p < to && first + p < 0; p += 4)
        window.clearFour(p);
    for (; p + 4 <= to && first + p + 4 <= pairs; p += 4)
        window.setFour(p, x + 2 * (first + p));
    for (; p < to && first + p < pairs; ++p)
        window.set(p, x[2 * (first + p)], x[2 * (first + p) + 1]);
    for (; p < to; p += 4)
        window.clearFour(p);
}

// A vector of even outputs and the odd ones behind each.
RVX_INLINE void storeOutputs(double *y, Lanes even, Lanes odd)
{
    const Lanes outer = evenLanes(even, odd); // outputs 0, 1, 4, 5
    const Lanes inner = oddLanes(even, odd);
    storeLanes(y, firstHalves(outer, inner));
    storeLanes(y + 4, lastHalves(outer, inner));
}

RVX_INLINE void storeOutputs(ZCplx *y, Quad even, Quad odd)
{
    const Lanes even02 = evenLanes(even.re, even.im);
    const Lanes even13 = oddLanes(even.re, even.im);
    const Lanes odd02 = evenLanes(odd.re, odd.im);
    const Lanes odd13 = oddLanes(odd.re, odd.im);
    storeLanes(y, firstHalves(even02, odd02));
    storeLanes(y + 2, firstHalves(even13, odd13));
    storeLanes(y + 4, lastHalves(even02, odd02));
    storeLanes(y + 6, lastHalves(even13, odd13));
}

RVX_INLINE void storeOutputs(ZCplx *y, Lanes even, Lanes odd)
{
    storeLanes(y, firstHalves(even, odd));
    storeLanes(y + 2, lastHalves(even, odd));
}

// By hand: of a length that compilers do not know they would call a function.
template <typename Out>
RVX_INLINE void copyOutputs(const Out *src, int n, Out *dst)
{
    int i = 0;
    for (; i + 4 <= n; i += 4)
        std::memcpy(dst + i, src + i, 4 * sizeof(Out));
    for (; i < n; ++i)
        dst[i] = src[i];
}

// Taps in all lanes, one load for each where it is used. Compilers would load several
// and take them apart by shuffles.
template <typename Tap>
struct TapsInPlace {
    const Tap *taps;

    static RVX_INLINE Lanes everywhere(const double *tap)
    {
        return allLanes(*static_cast<const volatile double *>(tap));
    }
    static RVX_INLINE Quad everywhere(const ZCplx *tap)
    {
        return {everywhere(&tap->re), everywhere(&tap->im)};
    }
    RVX_INLINE auto operator[](int j) const { return everywhere(taps + j); }
};

// 2 * width * vectors outputs, whose first pair of x stands at place p, from the pairs of taps
// from..to-1 and the last tap of an odd number. Enough sums at a time to hide how long
// an addition takes.
template <int vectors, typename Window, typename Taps, typename Out>
RVX_INLINE void sumTile(const Window &window, int p, const Taps &taps, int tapsLen, int from,
                        int to, Out *y)
{
    using Sum = decltype(window.evenAt(0) * taps[0]);
    Sum even[vectors] = {};
    Sum odd[vectors] = {};
    for (int q = from; q < to; ++q) {
        const auto h0 = taps[2 * q];
        const auto h1 = taps[2 * q + 1];
        for (int v = 0; v < vectors; ++v) {
            const int at = p + Window::width * v - q;
            const auto x = window.evenAt(at);
            even[v] = x * h0 + (window.oddAt(at - 1) * h1 + even[v]);
            odd[v] = x * h1 + (window.oddAt(at) * h0 + odd[v]);
        }
    }
    for (int v = 0; v < vectors; ++v) {
        if (tapsLen % 2 != 0) {
            const auto last = taps[tapsLen - 1];
            const int at = p + Window::width * v - tapsLen / 2;
            even[v] = even[v] + window.evenAt(at) * last;
            odd[v] = odd[v] + window.oddAt(at) * last;
        }
        storeOutputs(y + 2 * Window::width * v, even[v], odd[v]);
    }
}

// What all taps and the pairs of x give, to `count` outputs from 2 * first on.
template <int vectors, typename Window, typename Long, typename Taps, typename Out>
RVX_INLINE void sumChunk(const Long *x, int xPairs, const Taps &taps, int tapsLen, int first,
                         int count, Out *y)
{
    constexpr int tilePairs = Window::width * vectors;
    const int hPairs = tapsLen / 2;
    const int pairs = (count + 1) / 2;
    Window window;
    fillWindow(window, x, xPairs, first - RVX_CONV_LEAD, RVX_CONV_LEAD - ((hPairs + 3) & ~3),
               RVX_CONV_LEAD + (pairs + tilePairs - 1) / tilePairs * tilePairs);
    for (int t = 0; 2 * t < count; t += tilePairs) {
        // Only taps that meet an element of x.
        const int from = first + t > xPairs ? first + t - xPairs : 0;
        const int to = first + t + tilePairs < hPairs ? first + t + tilePairs : hPairs;
        const int left = count - 2 * t;
        if (left >= 2 * tilePairs) {
            sumTile<vectors>(window, RVX_CONV_LEAD + t, taps, tapsLen, from, to, y + 2 * t);
            continue;
        }
        Out tile[2 * tilePairs];
        sumTile<vectors>(window, RVX_CONV_LEAD + t, taps, tapsLen, from, to, tile);
        copyOutputs(tile, left, y + 2 * t);
    }
}

template <int vectors, typename Window, typename Long, typename Short, typename Taps, typename Out>
RVX_INLINE void sumAll(const Long *x, int xLen, const Short *h, const Taps &taps, int hLen, Out *y)
{
    const std::int64_t total = std::int64_t{xLen} + hLen - 1;
    for (std::int64_t n = 0; n < total; n += 2 * RVX_CONV_CHUNK) {
        const std::int64_t left = total - n;
        const int count = left < 2 * RVX_CONV_CHUNK ? static_cast<int>(left) : 2 * RVX_CONV_CHUNK;
        sumChunk<vectors, Window>(x, xLen / 2, taps, hLen, static_cast<int>(n / 2), count, y + n);
    }
    // What an odd length of x leaves over.
    if (xLen % 2 != 0) {
        Out *end = y + (xLen - 1);
        for (int j = 0; j < hLen; ++j)
            end[j] = end[j] + x[xLen - 1] * h[j];
    }
}

// ---- few taps -----------------------------------------------------------------

// With few taps the way into windows and out of them would cost more than the sums.
// So x is taken as it stands, even and odd outputs by turns in a vector, which for the
// former of their two products get other elements and taps than for the latter.

struct FewRealReal {
    enum { width = 4 }; // outputs in a vector
    struct Tap {
        Lanes h;
    };
    static RVX_INLINE Lanes load(const double *x) { return loadLanes(x); }
    static RVX_INLINE Lanes mix(Lanes even, Lanes odd) { return blendOdd(even, odd); }
    static RVX_INLINE Tap tap(double even, double odd) { return {lanesOf(even, odd, even, odd)}; }
    static RVX_INLINE Lanes product(Lanes x, Tap t) { return x * t.h; }
};

struct FewCplxReal {
    enum { width = 2 };
    using Tap = FewRealReal::Tap;
    static RVX_INLINE Lanes load(const ZCplx *x) { return loadLanes(x); }
    static RVX_INLINE Lanes mix(Lanes even, Lanes odd) { return outerHalves(even, odd); }
    static RVX_INLINE Tap tap(double even, double odd) { return {lanesOf(even, even, odd, odd)}; }
    static RVX_INLINE Lanes product(Lanes x, Tap t) { return x * t.h; }
};

struct FewRealCplx {
    enum { width = 2 };
    using Tap = FewRealReal::Tap;
    static RVX_INLINE Lanes load(const double *x) { return lanesOf(x[0], x[0], x[1], x[1]); }
    static RVX_INLINE Lanes mix(Lanes even, Lanes odd) { return outerHalves(even, odd); }
    static RVX_INLINE Tap tap(ZCplx even, ZCplx odd) { return {pairLanes(even, odd)}; }
    static RVX_INLINE Lanes product(Lanes x, Tap t) { return x * t.h; }
};

struct FewCplxCplx {
    enum { width = 2 };
    struct Tap {
        Lanes re;
        Lanes im; // with the sign that it has in the product's real part
    };
    static RVX_INLINE Lanes load(const ZCplx *x) { return loadLanes(x); }
    static RVX_INLINE Lanes mix(Lanes even, Lanes odd) { return outerHalves(even, odd); }
    static RVX_INLINE Tap tap(ZCplx even, ZCplx odd)
    {
        const Lanes taps = pairLanes(even, odd);
        return {realParts(taps), negateEven(imagParts(taps))};
    }
    static RVX_INLINE Lanes product(Lanes x, Tap t) { return x * t.re + swapParts(x) * t.im; }
};

enum {
    RVX_CONV_FEW_TAPS = 7,
    RVX_CONV_FEW_VECTORS = 4,
    RVX_CONV_FEW_LEN = 32 // of x, that there be a vector of outputs between its ends
};

// Outputs from an even one on, `step` at a time, that all pairs of taps and of x
// contribute to; gives the first that is left.
template <typename Few, int hPairs, typename Long, typename Short, typename Out>
RVX_INLINE std::int64_t sumBetween(const Long *x, std::int64_t end, const Short *h, int hLen,
                                   Out *y)
{
    constexpr int step = Few::width * RVX_CONV_FEW_VECTORS;
    typename Few::Tap former[hPairs + 1];
    typename Few::Tap latter[hPairs + 1];
    for (int q = 0; q < hPairs; ++q) {
        former[q] = Few::tap(h[2 * q + 1], h[2 * q]);
        latter[q] = Few::tap(h[2 * q], h[2 * q + 1]);
    }
    const typename Few::Tap last = Few::tap(h[hLen - 1], h[hLen - 1]);
    std::int64_t n = 2 * hPairs;
    for (; n + step <= end; n += step) {
        Lanes sums[RVX_CONV_FEW_VECTORS] = {};
        for (int q = 0; q < hPairs; ++q)
            for (int v = 0; v < RVX_CONV_FEW_VECTORS; ++v) {
                const Long *at = x + n - 2 * q + Few::width * v;
                const Lanes here = Few::load(at);
                const Lanes before = Few::load(at - 1);
                sums[v] = Few::product(Few::mix(before, here), former[q]) + sums[v];
                sums[v] = Few::product(Few::mix(here, before), latter[q]) + sums[v];
            }
        for (int v = 0; v < RVX_CONV_FEW_VECTORS; ++v) {
            const int at = Few::width * v;
            if (hLen % 2 != 0)
                sums[v] = sums[v] + Few::product(Few::load(x + n - 2 * hPairs + at), last);
            storeLanes(y + n + at, sums[v]);
        }
    }
    return n;
}

template <typename Few, typename Long, typename Short, typename Out>
RVX_INLINE void sumFew(const Long *x, int xLen, const Short *h, int hLen, Out *y)
{
    const std::int64_t end = xLen & ~1;
    std::int64_t n;
    switch (hLen / 2) {
    case 0:
        n = sumBetween<Few, 0>(x, end, h, hLen, y);
        break;
    case 1:
        n = sumBetween<Few, 1>(x, end, h, hLen, y);
        break;
    case 2:
        n = sumBetween<Few, 2>(x, end, h, hLen, y);
        break;
    default:
        n = sumBetween<Few, 3>(x, end, h, hLen, y);
    }
    for (int i = 0; i < (hLen & ~1); ++i)
        y[i] = outputAt(x, xLen, h, hLen, i);
    for (; n < std::int64_t{xLen} + hLen - 1; ++n)
        y[n] = outputAt(x, xLen, h, hLen, n);
}

// ---- the engines --------------------------------------------------------------

RVX_KERNEL void convReal(const double *x, int xLen, const double *h, int hLen, double *y)
{
    sumAll<4, RealWindow>(x, xLen, h, TapsInPlace<double>{h}, hLen, y);
}

RVX_KERNEL void convFewReal(const double *x, int xLen, const double *h, int hLen, double *y)
{
    sumFew<FewRealReal>(x, xLen, h, hLen, y);
}

RVX_KERNEL void convComplexShort(const ZCplx *x, int xLen, const ZCplx *h, int hLen, ZCplx *y)
{
    sumAll<1, CplxWindow>(x, xLen, h, TapsInPlace<ZCplx>{h}, hLen, y);
}

// Tiles have too few outputs to hide how long it takes to spread taps, so for many of them
// it is done beforehand.
RVX_KERNEL void convComplexLong(const ZCplx *x, int xLen, const ZCplx *h, int hLen, ZCplx *y)
{
    Quad taps[RVX_CONV_DIRECT_MAX];
    for (int j = 0; j < hLen; ++j)
        taps[j] = broadcast(h[j]);
    sumAll<1, CplxWindow>(x, xLen, h, taps, hLen, y);
}

void convComplex(const ZCplx *x, int xLen, const ZCplx *h, int hLen, ZCplx *y)
{
    constexpr int longest = 32;
    (xLen <= longest ? convComplexShort : convComplexLong)(x, xLen, h, hLen, y);
}

RVX_KERNEL void convFewComplex(const ZCplx *x, int xLen, const ZCplx *h, int hLen, ZCplx *y)
{
    sumFew<FewCplxCplx>(x, xLen, h, hLen, y);
}

RVX_KERNEL void convComplexReal(const ZCplx *x, int xLen, const double *h, int hLen, ZCplx *y)
{
    sumAll<4, PairWindow>(x, xLen, h, TapsInPlace<double>{h}, hLen, y);
}

RVX_KERNEL void convFewComplexReal(const ZCplx *x, int xLen, const double *h, int hLen, ZCplx *y)
{
    sumFew<FewCplxReal>(x, xLen, h, hLen, y);
}

RVX_KERNEL void convRealComplex(const double *x, int xLen, const ZCplx *h, int hLen, ZCplx *y)
{
    sumAll<2, RealWindow>(x, xLen, h, TapsInPlace<ZCplx>{h}, hLen, y);
}

RVX_KERNEL void convFewRealComplex(const double *x, int xLen, const ZCplx *h, int hLen, ZCplx *y)
{
    sumFew<FewRealCplx>(x, xLen, h, hLen, y);
}

// Without a branch for each, since there are few: an exponent of all ones, and no other,
// carries into the sign.
bool allFinite(const double *h, int n)
{
    constexpr std::uint64_t exponent = 0x7FF0000000000000, lowest = 0x0010000000000000;
    std::uint64_t carries = 0;
    for (int j = 0; j < n; ++j) {
        std::uint64_t bits;
        std::memcpy(&bits, h + j, sizeof bits);
        carries |= (bits & exponent) + lowest;
    }
    return carries >> 63 == 0;
}

bool allFinite(const ZCplx *h, int n)
{
    return allFinite(&h->re, 2 * n);
}

template <typename Long, typename Short, typename Out>
struct Kernels {
    void (*tiles)(const Long *, int, const Short *, int, Out *);
    void (*few)(const Long *, int, const Short *, int, Out *);
};

template <typename Long, typename Short, typename Out>
void sumDirectly(const Long *x, int xLen, const Short *h, int hLen, Out *y,
                 Kernels<Long, Short, Out> kernels)
{
    if (!allFinite(h, hLen))
        for (std::int64_t n = 0; n < std::int64_t{xLen} + hLen - 1; ++n)
            y[n] = outputAt(x, xLen, h, hLen, n);
    else if (hLen <= RVX_CONV_FEW_TAPS && xLen >= RVX_CONV_FEW_LEN)
        kernels.few(x, xLen, h, hLen, y);
    else
        kernels.tiles(x, xLen, h, hLen, y);
}

} // namespace

// The checks are the fronts', which have made them. Deliberate: rvxzConv0 alone has none.

void rvxdConv0(const double *x, int xLen, const double *h, int hLen, double *y)
{
    if (!rvxConvArgumentsGood(__func__, x, xLen, h, hLen, y))
        return;
    sumDirectly<double, double, double>(x, xLen, h, hLen, y, {convReal, convFewReal});
}

void rvxzConv0(const ZCplx *x, int xLen, const ZCplx *h, int hLen, ZCplx *y)
{
    sumDirectly<ZCplx, ZCplx, ZCplx>(x, xLen, h, hLen, y, {convComplex, convFewComplex});
}

void rvxzdConv0(const ZCplx *x, int xLen, const double *h, int hLen, ZCplx *y)
{
    if (!rvxConvArgumentsGood(__func__, x, xLen, h, hLen, y))
        return;
    sumDirectly<ZCplx, double, ZCplx>(x, xLen, h, hLen, y, {convComplexReal, convFewComplexReal});
}

void rvxdzConv0(const double *x, int xLen, const ZCplx *h, int hLen, ZCplx *y)
{
    if (!rvxConvArgumentsGood(__func__, x, xLen, h, hLen, y))
        return;
    sumDirectly<double, ZCplx, ZCplx>(x, xLen, h, hLen, y, {convRealComplex, convFewRealComplex});
}
