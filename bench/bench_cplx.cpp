// Complex block forms beside the compiler's loops, and polar forms beside the C
// library's vector functions (libmvec: up to 4 units in the last place) and SLEEF (1.0).

#include <cmath>
#include <random>

#include "compare.h"
#include "peer_cplx.h"

namespace {

struct Blocks {
    explicit Blocks(int n)
        : z(static_cast<std::size_t>(n)), zdst(2 * z.size()), mag(z.size(), 1.5), phase(z.size()),
          far(z.size()), dst(z.size()), dst2(z.size())
    {
        std::mt19937_64 bits(static_cast<unsigned>(n));
        const auto even = [&] { return static_cast<double>(bits() >> 11) * 0x1p-52 - 1.0; };
        for (std::size_t i = 0; i < z.size(); ++i) {
            z[i] = {even(), even()};
            phase[i] = 3.14159265 * even();
            far[i] = 1e6 * even();
        }
    }
    std::vector<ZCplx> z, zdst;
    std::vector<double> mag, phase, far, dst, dst2;
};

// A row of calls that differ in their names alone.
#define ROW(task, ours, peer, ...)                                                                 \
    compare(task, std::to_string(n),                                                               \
            {{"rvx", [=] { ours(__VA_ARGS__, n); }},                                               \
             {"loop", [=] { loop::peer(__VA_ARGS__, n); }},                                        \
             {"fast loop", [=] { fast::peer(__VA_ARGS__, n); }}})

#ifdef RVX_HAVE_SLEEF
#define SLEEF(peer, ...) {"SLEEF", [=] { sleef::peer(__VA_ARGS__, n); }},
#else
#define SLEEF(peer, ...)
#endif

#define POLAR(task, ours, peer, ...)                                                               \
    compare(task, std::to_string(n),                                                               \
            {{"rvx", [=] { ours(__VA_ARGS__, n); }},                                               \
             SLEEF(peer, __VA_ARGS__){"libmvec", [=] { fast::peer(__VA_ARGS__, n); }},             \
             {"C library", [=] { loop::peer(__VA_ARGS__, n); }}})

void compareAt(int n)
{
    auto *blocks = new Blocks(n); // lives as long as the program
    const ZCplx *z = blocks->z.data();
    ZCplx *zdst = blocks->zdst.data();
    const double *mag = blocks->mag.data(), *phase = blocks->phase.data();
    const double *far = blocks->far.data();
    double *dst = blocks->dst.data(), *dst2 = blocks->dst2.data();

    ROW("conjugate in place", rvxzbConj1, conjugate, zdst);
    ROW("conjugate", rvxzbConj2, conjugate, z, zdst);
    ROW("conjugate and reverse", rvxzbConjFlip2, flip, z, zdst);
    ROW("extend a spectrum", rvxzbConjExtend2, extend, z, zdst);
    ROW("real parts", rvxzbReal, real, z, dst);
    ROW("imaginary parts", rvxzbImag, imag, z, dst);
    ROW("both parts", rvxzbCplxTo2Real, takeApart, z, dst, dst2);
    ROW("join parts", rvxzb2RealToCplx, join, mag, phase, zdst);
    ROW("power spectrum", rvxzbPowerSpectr, power, z, dst);
    ROW("magnitude", rvxzbMag, magnitude, z, dst);
    POLAR("phase", rvxzbPhase, phase, z, dst);
    POLAR("cartesian to polar", rvxzbCartToPolar, toPolar, z, dst, dst2);
    POLAR("polar to cartesian", rvxzbPolarToCart, toCart, mag, phase, zdst);
    POLAR("polar to cartesian, phases to 1e6", rvxzbPolarToCart, toCart, mag, far, zdst);
}

} // namespace

void registerComparisons()
{
    for (const char *task :
         {"conjugate in place", "conjugate", "conjugate and reverse", "extend a spectrum",
          "real parts", "imaginary parts", "both parts", "join parts", "power spectrum"})
        limit(task, 1.05, "Loads and stores.");
    limit(
        "magnitude", 1.05,
        "The divider: 8.9 cycles for the roots of four numbers in 256 bits, of which ours takes "
        "9.0 to 9.9 as the arrays lie. Those of eight in the 512 bits of the fast loop take 15.8, "
        "1.13 times less, and it looks for no special values.");
    // Cycles against a chain of additions of known length in the same run, on a Zen 4;
    // operations counted in the machine code, libmvec's by single steps.
    limit("phase", 1.0,
          "Four floating-point units: for four values 70 operations, 17.5 cycles at least and "
          "29 taken, 13 of them in the first of three stages, with its 35 operations and 11 "
          "stores. libmvec's 71, of which 19 are fused, do eight values at two slots of a unit "
          "each: 24 cycles for four, good to 4 units in the last place.");
    limit("cartesian to polar", 1.0,
          "As the phase, with a root for each value: 32 cycles for four, libmvec 26.");
    limit("polar to cartesian", 0.7,
          "Four floating-point units: for four values 65 operations, 16.3 cycles at least and 24 "
          "taken. libmvec takes 26, so that the bar is at 18.");
    limit("polar to cartesian, phases to 1e6", 0.7,
          "Four floating-point units: for four values 70 operations, 17.5 cycles at least and 29 "
          "taken. libmvec takes 26, so that the bar is at 18.");
    for (int n : {256, 4096, 65536, 1000000})
        compareAt(n);
}
