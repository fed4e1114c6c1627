// Transforms of 2, 4 and 8 points, straight through.

#include "transform/rvxfftd_engines.h"

namespace {

struct Value {
    double re;
    double im;
};

// a and b become a + b and a - b.
void sumDiff(Value &a, Value &b)
{
    const Value sum{a.re + b.re, a.im + b.im};
    b = {a.re - b.re, a.im - b.im};
    a = sum;
}

// a and b become a - jb and a + jb.
void sumDiffTurned(Value &a, Value &b)
{
    const Value minus{a.re + b.im, a.im - b.re};
    b = {a.re - b.im, a.im + b.re};
    a = minus;
}

// Natural order in and out, on the elements at x[0], x[step], …
void transform4(Value &a, Value &b, Value &c, Value &d)
{
    sumDiff(a, c);
    sumDiff(b, d);
    sumDiff(a, b);
    sumDiffTurned(c, d);
    const Value third = b;
    b = c;
    c = third;
}

void transform8(Value *x)
{
    constexpr double half = 0.70710678118654752440;
    transform4(x[0], x[2], x[4], x[6]);
    transform4(x[1], x[3], x[5], x[7]);
    x[3] = {(x[3].re + x[3].im) * half, (x[3].im - x[3].re) * half};
    x[7] = {(x[7].im - x[7].re) * half, (x[7].re + x[7].im) * half};
    sumDiff(x[0], x[1]);
    sumDiff(x[2], x[3]);
    sumDiffTurned(x[4], x[5]);
    const Value sum{x[6].re + x[7].re, x[6].im - x[7].im};
    x[7] = {x[6].re - x[7].re, x[6].im + x[7].im};
    x[6] = sum;
}

} // namespace

void rvxFftShort(const double *reSrc, const double *imSrc, double *reDst, double *imDst, int step,
                 int N, ShortForm form, double scale)
{
    static const int reversed[2][8] = {{0, 2, 1, 3}, {0, 4, 2, 6, 1, 5, 3, 7}};
    Value x[8];
    const int *places = reversed[N == 8];
    for (int i = 0; i < N; ++i) {
        const int from = step * (form.reversedInput && N > 2 ? places[i] : i);
        x[i] = {reSrc[from], imSrc[from]};
    }
    if (N == 2)
        sumDiff(x[0], x[1]);
    else if (N == 4)
        transform4(x[0], x[1], x[2], x[3]);
    else
        transform8(x);
    // The results of 8 stand at 0, 4, 1, 5, 2, 6, 3, 7.
    for (int k = 0; k < N; ++k) {
        const Value &value = N == 8 ? x[2 * (k % 4) + k / 4] : x[k];
        const int to = step * (form.reversedOutput && N > 2 ? places[k] : k);
        reDst[to] = value.re * scale;
        imDst[to] = value.im * scale;
    }
}
