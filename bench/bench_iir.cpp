// Recursive filters on blocks of 4096, beside the loops that programs have instead.

#include <string>
#include <vector>

#include "compare.h"
#include "peer_iir.h"

namespace {

constexpr int LENGTH = 4096;

// Everything lives as long as the program.
template <typename T>
T *lasting(std::size_t n)
{
    return (new std::vector<T>(n))->data();
}

void setReal(double *x, double value)
{
    *x = value;
}

void setReal(ZCplx *z, double value)
{
    *z = {value, 0.5 * value};
}

// Noise that repeats; filters ring far above the subnormal numbers.
template <typename T>
T *noise(std::size_t n)
{
    T *block = lasting<T>(n);
    unsigned state = 1;
    for (std::size_t i = 0; i < n; ++i) {
        state = state * 1664525u + 1013904223u;
        setReal(&block[i], static_cast<double>(state) * 0x1p-31 - 1.0);
    }
    return block;
}

// b, then a with a[0] = 1 and small others.
template <typename T>
T *directTaps(int order)
{
    T *taps = lasting<T>(static_cast<std::size_t>(2 * order + 2));
    for (int i = 0; i <= order; ++i) {
        setReal(&taps[i], 0.5 / (i + 1));
        setReal(&taps[order + 1 + i], 0.2 / (i + 2));
    }
    taps[order + 1] = T();
    *reinterpret_cast<double *>(&taps[order + 1]) = 1.0;
    return taps;
}

template <typename T>
T *sectionTaps(int count)
{
    T *taps = lasting<T>(static_cast<std::size_t>(6 * count));
    for (int q = 0; q < count; ++q) {
        T *t = taps + 6 * q;
        setReal(&t[0], 0.7);
        setReal(&t[1], 0.2 + 0.01 * q);
        setReal(&t[2], 0.1);
        t[3] = T();
        *reinterpret_cast<double *>(&t[3]) = 1.0;
        setReal(&t[4], -0.3 + 0.01 * q);
        setReal(&t[5], 0.2);
    }
    return taps;
}

void compareDirect(int order)
{
    const double *taps = directTaps<double>(order);
    const double *x = noise<double>(LENGTH);
    double *y = lasting<double>(LENGTH);
    const auto elements = static_cast<std::size_t>(order);
    auto *state = new rvxIirState();
    rvxdIirInit(0, taps, order, state);
    double *past = lasting<double>(elements), *classicPast = lasting<double>(elements);
    const double *a = taps + order + 1;
    std::vector<Contender> contenders = {
        {"rvx", [=] { rvxdbIir(state, x, y, LENGTH); }},
        {"loop", [=] { loop::direct(taps, a, order, past, x, y, LENGTH); }},
        {"classic loop", [=] { classic::direct(taps, a, order, classicPast, x, y, LENGTH); }}};
    compare("direct form, real", "order " + std::to_string(order), contenders);
}

void compareDirectCplx(int order)
{
    const ZCplx *taps = directTaps<ZCplx>(order);
    const ZCplx *x = noise<ZCplx>(LENGTH);
    ZCplx *y = lasting<ZCplx>(LENGTH);
    auto *state = new rvxIirState();
    rvxzIirInit(0, taps, order, state);
    ZCplx *past = lasting<ZCplx>(static_cast<std::size_t>(order));
    const ZCplx *a = taps + order + 1;
    compare("direct form, complex", "order " + std::to_string(order),
            {{"rvx", [=] { rvxzbIir(state, x, y, LENGTH); }},
             {"loop", [=] { loop::direct(taps, a, order, past, x, y, LENGTH); }}});
}

std::string sections(int count)
{
    return std::to_string(count) + (count == 1 ? " section" : " sections");
}

void compareCascade(int count)
{
    const double *taps = sectionTaps<double>(count);
    const double *x = noise<double>(LENGTH);
    double *y = lasting<double>(LENGTH);
    const auto elements = static_cast<std::size_t>(2 * count);
    auto *state = new rvxIirState();
    rvxdIirInitBq(0, taps, count, state);
    double *past = lasting<double>(elements), *classicPast = lasting<double>(elements);
    compare("cascade, real", sections(count),
            {{"rvx", [=] { rvxdbIir(state, x, y, LENGTH); }},
             {"loop", [=] { loop::cascade(taps, count, past, x, y, LENGTH); }},
             {"classic loop", [=] { classic::cascade(taps, count, classicPast, x, y, LENGTH); }}});
}

void compareCascadeCplx(int count)
{
    const ZCplx *taps = sectionTaps<ZCplx>(count);
    const ZCplx *x = noise<ZCplx>(LENGTH);
    ZCplx *y = lasting<ZCplx>(LENGTH);
    auto *state = new rvxIirState();
    rvxzIirInitBq(0, taps, count, state);
    ZCplx *past = lasting<ZCplx>(static_cast<std::size_t>(2 * count));
    compare("cascade, complex", sections(count),
            {{"rvx", [=] { rvxzbIir(state, x, y, LENGTH); }},
             {"loop", [=] { loop::cascade(taps, count, past, x, y, LENGTH); }}});
}

// A loop for this order alone holds all in registers, as blocks here do, and fuses
// operations.
void compareOrder2()
{
    const double *taps = directTaps<double>(2);
    const double *x = noise<double>(LENGTH);
    double *y = lasting<double>(LENGTH);
    auto *state = new rvxIirState();
    rvxdIirInit(0, taps, 2, state);
    double *past = lasting<double>(2);
    compare("direct form, real; loop for this order", "order 2",
            {{"rvx", [=] { rvxdbIir(state, x, y, LENGTH); }},
             {"loop", [=] { loop::order2(taps, taps + 3, past, x, y, LENGTH); }}});
}

} // namespace

void registerComparisons()
{
    limit("direct form, real", 0.9, "a chain of four operations from output to output");
    limit("cascade, real", 0.85, "a chain of three operations in each section");
    bar("cascade, real", "4 sections", 0.55);
    bar("cascade, real", "16 sections", 0.3);
    limit("direct form, complex", 0.9,
          "a chain of five operations from output to output; from order 6 on the products and "
          "sums themselves");
    for (int order : {1, 2, 4, 7, 8, 16, 32})
        compareDirect(order);
    compareOrder2();
    for (int order : {2, 8})
        compareDirectCplx(order);
    for (int count : {1, 2, 4, 8, 16, 32})
        compareCascade(count);
    for (int count : {1, 4, 16})
        compareCascadeCplx(count);
}
