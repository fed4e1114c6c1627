// Wavelet transforms at full depth. GSL works in place: it transforms its own result again
// and again, which keeps its magnitude, but for the splines, where it begins with a copy.

#include "compare.h"
#include "rvx.h"

#include <algorithm>
#include <cmath>

#ifdef RVX_HAVE_GSL
#include <gsl/gsl_wavelet.h>
#endif

namespace {

struct Bank {
    const char *name;
    int wtType, par1, par2;
    double bar; // of the way there
    double barBack;
};

const Bank banks[] = {{"Haar", RVX_WT_HAAR, 0, 0, 0.3, 0.3},
                      {"Daubechies 4", RVX_WT_DAUBECHIES, 4, 0, 0.4, 0.5},
                      {"Daubechies 10", RVX_WT_DAUBECHIES, 10, 0, 0.4, 0.5},
                      {"Spline 2, 2", RVX_WT_BSPLINE, 2, 2, 0.4, 0.5}};

std::vector<double> *signal(int n)
{
    auto *x = new std::vector<double>(static_cast<std::size_t>(n)); // for good
    for (int i = 0; i < n; ++i)
        (*x)[static_cast<std::size_t>(i)] = std::sin(0.1 * i) + 0.5 * std::cos(1.7 * i);
    return x;
}

#ifdef RVX_HAVE_GSL
// Its number is that of taps, of the splines that of both orders.
gsl_wavelet *peerOf(const Bank &bank)
{
    if (bank.wtType == RVX_WT_HAAR)
        return gsl_wavelet_alloc(gsl_wavelet_haar, 2);
    if (bank.wtType == RVX_WT_DAUBECHIES)
        return gsl_wavelet_alloc(gsl_wavelet_daubechies, static_cast<std::size_t>(2 * bank.par1));
    return gsl_wavelet_alloc(gsl_wavelet_bspline,
                             static_cast<std::size_t>(100 * bank.par1 + bank.par2));
}

Contender peer(const Bank &bank, int n, gsl_wavelet_direction direction)
{
    const auto *src = signal(n);
    auto *data = signal(n);
    const gsl_wavelet *wavelet = peerOf(bank);
    gsl_wavelet_workspace *room = gsl_wavelet_workspace_alloc(static_cast<std::size_t>(n));
    const bool copies = bank.wtType == RVX_WT_BSPLINE;
    return {"GSL", [=] {
                if (copies)
                    std::copy(src->begin(), src->end(), data->begin());
                gsl_wavelet_transform(wavelet, data->data(), 1, data->size(), direction, room);
            }};
}
#endif

void compareBank(const Bank &bank, int order)
{
    const int n = 1 << order;
    auto *state = new rvxWtState();
    rvxdWtInit(bank.par1, bank.par2, order, order, state, bank.wtType);
    const double *src = signal(n)->data();
    double *dst = signal(n)->data();
    std::vector<Contender> there = {{"rvx", [=] { rvxdWtDecompose(state, src, dst); }}};
    std::vector<Contender> back = {{"rvx", [=] { rvxdWtReconstruct(state, src, dst); }}};
#ifdef RVX_HAVE_GSL
    there.push_back(peer(bank, n, gsl_wavelet_forward));
    back.push_back(peer(bank, n, gsl_wavelet_backward));
#endif
    compare(std::string(bank.name) + ", decompose", std::to_string(n), there);
    compare(std::string(bank.name) + ", reconstruct", std::to_string(n), back);
}

} // namespace

void registerComparisons()
{
    for (const Bank &bank : banks) {
        for (int order : {14, 18})
            compareBank(bank, order);
        const bool isHaar = bank.wtType == RVX_WT_HAAR;
        const std::string reason =
            isHaar ? "A load and a store for each value, and the caches."
                   : "Two products a cycle are two thirds of the time with 30 taps and a "
                     "third with 8; parting even from odd and beginning sums the rest.";
        limit(std::string(bank.name) + ", decompose", bank.bar, reason);
        limit(std::string(bank.name) + ", reconstruct", bank.barBack, reason);
    }
}
