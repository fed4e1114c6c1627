// The four families of FIR filters as types, so that a test is written once, and what
// tests of these filters share.

#ifndef RVX_TEST_FIR_FAMILIES_H
#define RVX_TEST_FIR_FAMILIES_H

#include <cstring>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "filter/rvxfirh_state.h"
#include "reference/fir.h"
#include "rvx.h"

struct FamilyD {
    using Tap = double;
    using Sample = double;
    using Out = double;
    static constexpr const char *letters = "d";
    static constexpr auto init = rvxdFirInit;
    static constexpr auto initMr = rvxdFirInitMr;
    static constexpr auto one = rvxdFir;
    static constexpr auto block = rvxdbFir;
    static constexpr int tapsBlock = 4;
};

struct FamilyZ {
    using Tap = ZCplx;
    using Sample = ZCplx;
    using Out = ZCplx;
    static constexpr const char *letters = "z";
    static constexpr auto init = rvxzFirInit;
    static constexpr auto initMr = rvxzFirInitMr;
    static constexpr auto one = rvxzFir;
    static constexpr auto block = rvxzbFir;
    static constexpr int tapsBlock = 2;
};

struct FamilyDz {
    using Tap = ZCplx;
    using Sample = double;
    using Out = ZCplx;
    static constexpr const char *letters = "dz";
    static constexpr auto init = rvxdzFirInit;
    static constexpr auto initMr = rvxdzFirInitMr;
    static constexpr auto one = rvxdzFir;
    static constexpr auto block = rvxdzbFir;
    static constexpr int tapsBlock = 2;
};

struct FamilyZd {
    using Tap = double;
    using Sample = ZCplx;
    using Out = ZCplx;
    static constexpr const char *letters = "zd";
    static constexpr auto init = rvxzdFirInit;
    static constexpr auto initMr = rvxzdFirInitMr;
    static constexpr auto one = rvxzdFir;
    static constexpr auto block = rvxzdbFir;
    static constexpr int tapsBlock = 2;
};

using AllFamilies = ::testing::Types<FamilyD, FamilyZ, FamilyDz, FamilyZd>;

struct FamilyNames {
    template <typename Family>
    static std::string GetName(int)
    {
        return Family::letters;
    }
};

// Names of a family's functions, for reports.
template <typename Family>
std::string initName()
{
    return std::string("rvx") + Family::letters + "FirInit";
}

template <typename Family>
std::string initMrName()
{
    return initName<Family>() + "Mr";
}

template <typename Family>
std::string oneName()
{
    return std::string("rvx") + Family::letters + "Fir";
}

template <typename Family>
std::string blockName()
{
    return std::string("rvx") + Family::letters + "bFir";
}

// The elements that a record's pointer leads to.
template <typename Element>
std::vector<Element> taken(const void *from, int n)
{
    const Element *first = static_cast<const Element *>(from);
    return std::vector<Element>(first, first + n);
}

template <typename Element>
bool sameBytes(const std::vector<Element> &a, const std::vector<Element> &b)
{
    return a.size() == b.size() &&
           (a.empty() || std::memcmp(a.data(), b.data(), a.size() * sizeof(Element)) == 0);
}

// Random elements in [-1, 1).
class Noise {
public:
    explicit Noise(unsigned seed) : bits(seed) {}

    template <typename Element>
    std::vector<Element> block(int n)
    {
        std::vector<Element> elements(static_cast<std::size_t>(n));
        for (Element &element : elements)
            fill(element);
        return elements;
    }
    int below(int limit) { return static_cast<int>(bits() % static_cast<unsigned>(limit)); }

private:
    void fill(double &x) { x = static_cast<double>(bits() >> 11) * 0x1p-52 - 1.0; }
    void fill(ZCplx &z)
    {
        fill(z.re);
        fill(z.im);
    }
    std::mt19937_64 bits;
};

// A filter of random taps and past, and its state.
template <typename Family>
struct Filter {
    using Tap = typename Family::Tap;
    using Sample = typename Family::Sample;
    using Out = typename Family::Out;

    Filter(int tapsLen, reference::FirRates firRates, Noise &noise)
        : rates(firRates), taps(noise.block<Tap>(tapsLen)),
          past(noise.block<Sample>(reference::pastLen(tapsLen, firRates)))
    {
        state.self = nullptr;
        restart();
    }
    ~Filter()
    {
        if (state.self == &state)
            rvxFirFree(&state);
    }
    Filter(const Filter &) = delete;
    Filter &operator=(const Filter &) = delete;

    void restart()
    {
        Family::initMr(taps.data(), static_cast<int>(taps.size()), past.data(), rates.up,
                       rates.upPhase, rates.down, rates.downPhase, &state);
    }
    std::vector<Out> expected(const std::vector<Sample> &in) const
    {
        return reference::firExactly<Out>(taps, past, in, rates);
    }
    // The past samples that the state should hold after `in`.
    std::vector<Sample> pastAfter(const std::vector<Sample> &in) const
    {
        std::vector<Sample> all = past;
        all.insert(all.end(), in.begin(), in.end());
        return std::vector<Sample>(all.end() - static_cast<long>(past.size()), all.end());
    }
    std::vector<Sample> window() const
    {
        const Sample *cur = static_cast<const Sample *>(state.dlylCur);
        return std::vector<Sample>(cur, cur + state.dlylLen);
    }

    reference::FirRates rates;
    std::vector<Tap> taps;
    std::vector<Sample> past;
    rvxFirState state;
};

#endif
