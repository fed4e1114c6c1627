// Tones, beside the same recurrence in a plain loop and beside a sine per sample.

#include "compare.h"
#include "peer_tone.h"

namespace {

constexpr double FREQ = 0.123;

void compareAt(int n)
{
    // They live as long as the program.
    const auto size = static_cast<std::size_t>(n);
    double *real = (new std::vector<double>(size))->data();
    ZCplx *cplx = (new std::vector<ZCplx>(size))->data();
    auto *state = new rvxdToneState;
    auto *other = new rvxzToneState;
    rvxdToneInit(FREQ, 0.0, 1.0, state);
    rvxzToneInit(FREQ, 0.0, 1.0, other);

    const std::string text = std::to_string(n);
    const Contender ours = {"rvx", [=] { rvxdbTone(state, real, n); }};
    const Contender oursCplx = {"rvx", [=] { rvxzbTone(other, cplx, n); }};
    compare("tone, real", text, {ours, {"loop", [=] { loop::tone(state, real, n); }}});
    compare("tone, complex", text, {oursCplx, {"loop", [=] { loop::tone(other, cplx, n); }}});
    compare("tone, real; loop with fused operations", text,
            {ours, {"loop", [=] { loop::toneFused(state, real, n); }}});
    compare("tone, complex; loop with fused operations", text,
            {oursCplx, {"loop", [=] { loop::toneFused(other, cplx, n); }}});
    compare("tone, real; sine per sample", text,
            {ours, {"std::sin", [=] { loop::toneBySines(FREQ, real, n); }}});
    compare("tone, complex; sine and cosine per sample", text,
            {oursCplx, {"std::sin", [=] { loop::toneBySines(FREQ, cplx, n); }}});
}

} // namespace

void registerComparisons()
{
    const char *chain =
        "Each sample waits for the one before it, for a product and a difference: 3 and 3 "
        "cycles, measured 5.8 to 6.0 a sample, with one part or with two.";
    const char *fused = "A fused product and difference rounds once and is one operation to wait "
                        "for, not two; its bits are those of some machines alone.";
    limit("tone, real; loop with fused operations", 1.1, fused);
    limit("tone, complex; loop with fused operations", 1.1, fused);
    limit("tone, real; sine per sample", 0.2, chain);
    limit("tone, complex; sine and cosine per sample", 0.2, chain);
    limit("tone, real", 1.0, chain);
    limit("tone, complex", 1.0, chain);
    for (int n : {64, 1024, 65536})
        compareAt(n);
}
