#include "peer_lms.h"

namespace fast {

namespace {

template <typename Ring, typename Sample>
inline void put(Ring &ring, Sample sample)
{
    const auto n = static_cast<int>(ring.taps.size());
    ring.newest = ring.newest == 0 ? n - 1 : ring.newest - 1;
    ring.line[ring.newest] = sample;
    ring.line[ring.newest + n] = sample;
}

inline void adapt(double *__restrict taps, const double *__restrict x, int n, double kept, double g)
{
    for (int i = 0; i < n; ++i)
        taps[i] = taps[i] * kept + x[i] * g;
}

inline void adapt(ZCplx *__restrict taps, const ZCplx *__restrict x, int n, double kept, ZCplx g)
{
    for (int i = 0; i < n; ++i) {
        taps[i].re = taps[i].re * kept + x[i].re * g.re + x[i].im * g.im;
        taps[i].im = taps[i].im * kept + x[i].re * g.im - x[i].im * g.re;
    }
}

inline void adapt(ZCplx *__restrict taps, const double *__restrict x, int n, double kept, ZCplx g)
{
    for (int i = 0; i < n; ++i) {
        taps[i].re = taps[i].re * kept + x[i] * g.re;
        taps[i].im = taps[i].im * kept + x[i] * g.im;
    }
}

inline double output(const double *__restrict taps, const double *__restrict x, int n)
{
    double sum = 0.0;
    for (int i = 0; i < n; ++i)
        sum += taps[i] * x[i];
    return sum;
}

inline ZCplx output(const ZCplx *__restrict taps, const ZCplx *__restrict x, int n)
{
    double re = 0.0, im = 0.0;
    for (int i = 0; i < n; ++i) {
        re += taps[i].re * x[i].re - taps[i].im * x[i].im;
        im += taps[i].re * x[i].im + taps[i].im * x[i].re;
    }
    return {re, im};
}

inline ZCplx output(const ZCplx *__restrict taps, const double *__restrict x, int n)
{
    double re = 0.0, im = 0.0;
    for (int i = 0; i < n; ++i) {
        re += taps[i].re * x[i];
        im += taps[i].im * x[i];
    }
    return {re, im};
}

inline double scaled(double err, double step)
{
    return err * step;
}

inline ZCplx scaled(ZCplx err, double step)
{
    return {err.re * step, err.im * step};
}

template <typename Tap, typename Sample>
inline Tap step(Ring<Tap, Sample> &ring, const Sample *samples, int count, Tap err)
{
    const auto n = static_cast<int>(ring.taps.size());
    adapt(ring.taps.data(), ring.line.data() + ring.newest, n, ring.kept, scaled(err, ring.step));
    for (int i = 0; i < count; ++i)
        put(ring, samples[i]);
    return output(ring.taps.data(), ring.line.data() + ring.newest, n);
}

} // namespace

double lms(Ring<double, double> &ring, double sample, double err)
{
    return step(ring, &sample, 1, err);
}

ZCplx lms(Ring<ZCplx, ZCplx> &ring, ZCplx sample, ZCplx err)
{
    return step(ring, &sample, 1, err);
}

ZCplx lms(Ring<ZCplx, double> &ring, double sample, ZCplx err)
{
    return step(ring, &sample, 1, err);
}

double lms(Ring<double, double> &ring, const double *samples, int n, double err)
{
    return step(ring, samples, n, err);
}

ZCplx lms(Ring<ZCplx, ZCplx> &ring, const ZCplx *samples, int n, ZCplx err)
{
    return step(ring, samples, n, err);
}

ZCplx lms(Ring<ZCplx, double> &ring, const double *samples, int n, ZCplx err)
{
    return step(ring, samples, n, err);
}

} // namespace fast
