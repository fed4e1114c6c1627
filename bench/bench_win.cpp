// Windows, beside a cosine per element and beside a stored window.

#include "compare.h"
#include "peer_win.h"

namespace {

void compareAt(int n)
{
    // Zeros stay zeros under any number of windows; other values would sink to
    // subnormal ones, which some machines are slow at. They live as long as the
    // program.
    const auto size = static_cast<std::size_t>(n);
    auto *realBlock = new std::vector<double>(size, 0.0);
    auto *cplxBlock = new std::vector<ZCplx>(size, ZCplx{0.0, 0.0});
    auto *window = new std::vector<double>(size, 1.0);
    rvxdWinHann(window->data(), n);
    double *real = realBlock->data();
    ZCplx *cplx = cplxBlock->data();
    const double *weights = window->data();

    const std::string text = std::to_string(n);
    compare(
        "Hann, real; cosine per element", text,
        {{"rvx", [=] { rvxdWinHann(real, n); }}, {"loop", [=] { loop::hannByCosines(real, n); }}});
    compare(
        "Hann, complex; cosine per element", text,
        {{"rvx", [=] { rvxzWinHann(cplx, n); }}, {"loop", [=] { loop::hannByCosines(cplx, n); }}});
    compare("Bartlett, real; stored window", text,
            {{"rvx", [=] { rvxdWinBartlett(real, n); }},
             {"loop", [=] { loop::hannStored(weights, real, n); }}});
    compare("Hann, real; stored window", text,
            {{"rvx", [=] { rvxdWinHann(real, n); }},
             {"loop", [=] { loop::hannStored(weights, real, n); }}});
    compare("Blackman, real; stored window", text,
            {{"rvx", [=] { rvxdWinBlackman(real, n, -0.16); }},
             {"loop", [=] { loop::hannStored(weights, real, n); }}});
    compare("Hann, complex; stored window", text,
            {{"rvx", [=] { rvxzWinHann(cplx, n); }},
             {"loop", [=] { loop::hannStored(weights, cplx, n); }}});
}

} // namespace

void registerComparisons()
{
    const char *chain = "Each weight waits for the one before it: a product and a subtraction, 6 "
                        "cycles for two elements, whatever the block's size.";
    limit("Hann, real; cosine per element", 0.1, chain);
    limit("Hann, complex; cosine per element", 0.1, chain);
    limit("Hann, real; stored window", 2.5, chain);
    limit("Blackman, real; stored window", 2.5, chain);
    limit("Hann, complex; stored window", 2.5, chain);
    limit("Bartlett, real; stored window", 2.5,
          "Between two powers of two weights are made four at a time; at each power of two the "
          "sum starts anew.");
    for (int n : {256, 4096, 65536, 1000000})
        compareAt(n);
}
