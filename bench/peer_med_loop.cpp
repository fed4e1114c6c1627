#include "peer_med.h"

namespace loop {

namespace {

inline double low(double a, double b)
{
    return b < a ? b : a;
}

inline double high(double a, double b)
{
    return a < b ? b : a;
}

inline double middle(double a, double b, double c)
{
    return high(low(a, b), low(high(a, b), c));
}

inline void order(double &a, double &b)
{
    const double smaller = low(a, b);
    b = high(a, b);
    a = smaller;
}

// Three columns sorted, then the middle one of the largest low, the middle middle
// and the smallest high: J. L. Smith's 19 exchanges, 1996, without those that the
// median does not need.
inline double middleOfNine(double a, double b, double c, double d, double e, double f, double g,
                           double h, double i)
{
    order(b, c);
    order(a, b);
    order(b, c);
    order(e, f);
    order(d, e);
    order(e, f);
    order(h, i);
    order(g, h);
    order(h, i);
    return middle(high(high(a, d), g), middle(b, e, h), low(low(c, f), i));
}

} // namespace

void median3(const double *__restrict in, double *__restrict out, int n)
{
    for (int i = 1; i < n - 1; ++i)
        out[i] = middle(in[i - 1], in[i], in[i + 1]);
}

void median5(const double *__restrict in, double *__restrict out, int n)
{
    for (int i = 2; i < n - 2; ++i) {
        const double a = high(low(in[i - 2], in[i - 1]), low(in[i + 1], in[i + 2]));
        const double b = low(high(in[i - 2], in[i - 1]), high(in[i + 1], in[i + 2]));
        out[i] = middle(a, b, in[i]);
    }
}

void median9(const double *__restrict in, double *__restrict out, int n)
{
    for (int i = 4; i < n - 4; ++i)
        out[i] = middleOfNine(in[i - 4], in[i - 3], in[i - 2], in[i - 1], in[i], in[i + 1],
                              in[i + 2], in[i + 3], in[i + 4]);
}

} // namespace loop
