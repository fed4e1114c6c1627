// Triangle waves, beside the same steps in a plain loop.

#include "compare.h"
#include "peer_trngl.h"

namespace {

void compareAt(double freq, const std::string &text)
{
    // They live as long as the program.
    constexpr int n = 4096;
    double *real = (new std::vector<double>(n))->data();
    ZCplx *cplx = (new std::vector<ZCplx>(n))->data();
    // A state for each: how well turning points are guessed does not depend on the
    // other's.
    auto *states = new rvxdTrnglState[2];
    auto *others = new rvxzTrnglState[2];
    for (int i = 0; i < 2; ++i) {
        rvxdTrnglInit(freq, 1.0, 1.0, 0.3, states + i);
        rvxzTrnglInit(freq, 1.0, 1.0, 0.3, others + i);
    }
    compare("triangle, real", text,
            {{"rvx", [=] { rvxdbTrngl(states, real, n); }},
             {"loop", [=] { loop::triangle(states + 1, real, n); }}});
    compare("triangle, complex", text,
            {{"rvx", [=] { rvxzbTrngl(others, cplx, n); }},
             {"loop", [=] { loop::triangle(others + 1, cplx, n); }}});
}

} // namespace

void registerComparisons()
{
    const char *chain =
        "Each value waits for the one before it, for an addition of 3 cycles or, at a "
        "turn, a sum, a product and a sum of 9: measured 3.3 cycles a sample at "
        "frequency 0.0123 and 6.7 at 0.321, where every other sample turns. Slow "
        "slopes are known many values at once.";
    const char *both = "Two chains as of the real form side by side: 3.8 and 7.5 cycles a sample.";
    limit("triangle, real", 1.0, chain);
    limit("triangle, complex", 1.0, both);
    compareAt(0.0001, "4096, frequency 0.0001");
    compareAt(0.001, "4096, frequency 0.001");
    compareAt(0.0123, "4096, frequency 0.0123");
    compareAt(0.0789, "4096, frequency 0.0789");
    compareAt(0.321, "4096, frequency 0.321");
}
