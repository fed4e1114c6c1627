// One bin by Goertzel's recurrence, beside the same recurrence in a plain loop.

#include <cmath>

#include "compare.h"
#include "peer_grtzl.h"

namespace {

void compareAt(int n)
{
    // They live as long as the program.
    const auto size = static_cast<std::size_t>(n);
    auto *real = new std::vector<double>;
    auto *cplx = new std::vector<ZCplx>;
    for (std::size_t i = 0; i < size; ++i) {
        const double t = static_cast<double>(i);
        real->push_back(std::sin(t * t));
        cplx->push_back({std::sin(t * t), std::cos(3.0 * t * t)});
    }
    const double *x = real->data();
    const ZCplx *z = cplx->data();
    auto *state = new rvxdGoertzState;
    auto *other = new rvxzGoertzState;
    rvxdGoertzInit(0.123, state);
    rvxzGoertzInit(0.123, other);

    // From a cleared state each time, as for one block of a signal.
    using RealForm = ZCplx (*)(rvxdGoertzState *, const double *, int);
    using CplxForm = ZCplx (*)(rvxzGoertzState *, const ZCplx *, int);
    const auto runReal = [=](RealForm form) {
        return [=] {
            rvxdGoertzReset(state);
            ZCplx bin = form(state, x, n);
            escape(&bin);
        };
    };
    const auto runCplx = [=](CplxForm form) {
        return [=] {
            rvxzGoertzReset(other);
            ZCplx bin = form(other, z, n);
            escape(&bin);
        };
    };
    const std::string text = std::to_string(n);
    compare("Goertzel, real", text,
            {{"rvx", runReal(rvxdbGoertz)}, {"loop", runReal(loop::goertzel)}});
    compare("Goertzel, complex", text,
            {{"rvx", runCplx(rvxzbGoertz)}, {"loop", runCplx(loop::goertzel)}});
    compare("Goertzel, real; loop with fused operations", text,
            {{"rvx", runReal(rvxdbGoertz)}, {"loop", runReal(loop::goertzelFused)}});
    compare("Goertzel, complex; loop with fused operations", text,
            {{"rvx", runCplx(rvxzbGoertz)}, {"loop", runCplx(loop::goertzelFused)}});
}

} // namespace

void registerComparisons()
{
    const char *chain =
        "Each sample waits for the one before it, for a product and a sum: 3 and 3 cycles, "
        "measured 5.7 to 5.8 a sample, with one part or with two.";
    const char *fused = "A fused product and sum rounds once and is one operation to wait for, "
                        "not two; its bits are those of some machines alone.";
    limit("Goertzel, real; loop with fused operations", 1.3, fused);
    limit("Goertzel, complex; loop with fused operations", 1.3, fused);
    limit("Goertzel, real", 1.0, chain);
    limit("Goertzel, complex", 1.0, chain);
    for (int n : {64, 205, 1024, 65536})
        compareAt(n);
}
