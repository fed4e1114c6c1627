#include "peer_win.h"

#include <cmath>

namespace loop {

void hannByCosines(double *vec, int n)
{
    for (int k = 0; k < n; ++k)
        vec[k] *= 0.5 - 0.5 * std::cos(6.283185307179586 * k / (n - 1));
}

void hannByCosines(ZCplx *vec, int n)
{
    for (int k = 0; k < n; ++k) {
        const double weight = 0.5 - 0.5 * std::cos(6.283185307179586 * k / (n - 1));
        vec[k].re *= weight;
        vec[k].im *= weight;
    }
}

void hannStored(const double *__restrict weights, double *__restrict vec, int n)
{
    for (int k = 0; k < n; ++k)
        vec[k] *= weights[k];
}

void hannStored(const double *__restrict weights, ZCplx *__restrict vec, int n)
{
    for (int k = 0; k < n; ++k) {
        vec[k].re *= weights[k];
        vec[k].im *= weights[k];
    }
}

} // namespace loop
