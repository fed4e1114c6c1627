// The four families of recursive filters, and taps for them.

#ifndef RVX_TEST_IIRFAMILIES_H
#define RVX_TEST_IIRFAMILIES_H

#include <ostream>
#include <random>
#include <vector>

#include "filter/rvxiirl.h"
#include "rvx.h"

#define RVX_TEST_FAMILY(name, family, TapType, SampleType, OutType, tapInit, delayInit)            \
    struct name {                                                                                  \
        using Tap = TapType;                                                                       \
        using Sample = SampleType;                                                                 \
        using Out = OutType;                                                                       \
        static constexpr auto init = rvx##family##IirInit;                                         \
        static constexpr auto initBq = rvx##family##IirInitBq;                                     \
        static constexpr auto one = rvx##family##Iir;                                              \
        static constexpr auto block = rvx##family##bIir;                                           \
        static constexpr auto lowInit = tapInit;                                                   \
        static constexpr auto lowInitBq = tapInit##Bq;                                             \
        static constexpr auto lowDelay = delayInit##Dlyl;                                          \
        static constexpr auto lowOne = rvx##family##Iirl;                                          \
        static constexpr auto lowBlock = rvx##family##bIirl;                                       \
        static constexpr const char *initName = "rvx" #family "IirInit";                           \
        static constexpr const char *initBqName = "rvx" #family "IirInitBq";                       \
        static constexpr const char *oneName = "rvx" #family "Iir";                                \
        static constexpr const char *blockName = "rvx" #family "bIir";                             \
        static constexpr const char *lowInitName = #tapInit;                                       \
        static constexpr const char *lowInitBqName = #tapInit "Bq";                                \
        static constexpr const char *lowDelayName = #delayInit "Dlyl";                             \
        static constexpr const char *lowOneName = "rvx" #family "Iirl";                            \
        static constexpr const char *lowBlockName = "rvx" #family "bIirl";                         \
    }

RVX_TEST_FAMILY(Real, d, double, double, double, rvxdIirlInit, rvxdIirlInit);
RVX_TEST_FAMILY(Cplx, z, ZCplx, ZCplx, ZCplx, rvxzIirlInit, rvxzIirlInit);
RVX_TEST_FAMILY(CplxTaps, dz, ZCplx, double, ZCplx, rvxzIirlInit, rvxzIirlInit);
RVX_TEST_FAMILY(RealTaps, zd, double, ZCplx, ZCplx, rvxdIirlInit, rvxzIirlInit);

class IirSource {
public:
    explicit IirSource(unsigned seed) : bits(seed) {}
    void fill(double *x) { *x = static_cast<double>(bits() >> 11) * 0x1p-52 - 1.0; }
    void fill(ZCplx *z)
    {
        fill(&z->re);
        fill(&z->im);
    }
    template <typename T>
    std::vector<T> make(int n)
    {
        std::vector<T> block(static_cast<std::size_t>(n));
        for (T &x : block)
            fill(&x);
        return block;
    }
    int below(int limit) { return static_cast<int>(bits() % static_cast<unsigned>(limit)); }

private:
    std::mt19937_64 bits;
};

inline void raise(double *x)
{
    *x += 7.0;
}

inline void raise(ZCplx *z)
{
    z->re += 7.0;
}

// Taps whose leading ones are large, so that past values fade.
template <typename Tap>
std::vector<Tap> tapsFor(int mode, int len, unsigned seed)
{
    IirSource source(seed);
    std::vector<Tap> taps = source.make<Tap>(mode == 0 ? 2 * len + 2 : 6 * len);
    if (mode == 0)
        raise(&taps[static_cast<std::size_t>(len) + 1]);
    else
        for (std::size_t q = 0; q < taps.size(); q += 3)
            raise(&taps[q]);
    return taps;
}

struct Shape {
    int mode; // 0 direct form, 2 cascade
    int len;  // order or number of sections
};

inline std::ostream &operator<<(std::ostream &out, Shape shape)
{
    return out << (shape.mode == 0 ? "order " : "quads ") << shape.len;
}

inline std::vector<Shape> allShapes()
{
    std::vector<Shape> shapes;
    for (int order = 0; order <= 21; ++order)
        shapes.push_back({0, order});
    for (int quads = 1; quads <= 20; ++quads)
        shapes.push_back({2, quads});
    shapes.push_back({2, 33});
    return shapes;
}

template <typename Family>
rvxIirState start(Shape shape, const std::vector<typename Family::Tap> &taps)
{
    rvxIirState state = {};
    (shape.mode == 0 ? Family::init : Family::initBq)(0, taps.data(), shape.len, &state);
    return state;
}

#endif
