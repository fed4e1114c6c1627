// The fronts of the complex Fourier transforms behind one signature.

#ifndef RVX_TEST_COMPLEX_FRONTS_H
#define RVX_TEST_COMPLEX_FRONTS_H

#include <cstring>
#include <vector>

#include <gtest/gtest.h>

#include "rvx.h"
#include "support/guarded.h"

using Signal = std::vector<ZCplx>;

inline Signal noise(int n, unsigned seed)
{
    unsigned long long state = seed * 2 + 1;
    const auto sample = [&state] {
        state = state * 6364136223846793005ULL + 1442695040888963407ULL;
        return static_cast<double>(static_cast<long long>(state) >> 11) * 0x1p-52;
    };
    Signal x(static_cast<std::size_t>(n));
    for (ZCplx &z : x)
        z = {sample(), sample()};
    return x;
}

// The three fronts, all as one that takes a signal and gives a signal.
enum class Front { inPlace, notInPlace, split };

inline constexpr Front fronts[] = {Front::inPlace, Front::notInPlace, Front::split};

inline const char *nameOf(Front front)
{
    switch (front) {
    case Front::inPlace:
        return "rvxzFft";
    case Front::notInPlace:
        return "rvxzFftNip";
    default:
        return "rvxzrFftNip";
    }
}

inline Signal transformed(Front front, const Signal &x, int order, int flags, int misalignment = 0)
{
    const int n = static_cast<int>(x.size());
    if (front == Front::inPlace) {
        Guarded<ZCplx> data(x, misalignment);
        rvxzFft(data.data(), order, flags);
        EXPECT_TRUE(data.intact());
        return data.values();
    }
    if (front == Front::notInPlace) {
        Guarded<ZCplx> in(x, (misalignment + 1) % 4);
        Guarded<ZCplx> out(n, misalignment);
        rvxzFftNip(in.data(), out.data(), order, flags);
        EXPECT_TRUE(in.intact() && out.intact());
        EXPECT_EQ(std::memcmp(in.data(), x.data(), sizeof(ZCplx) * x.size()), 0);
        return out.values();
    }
    Guarded<double> re(n, misalignment);
    Guarded<double> im(n, (misalignment + 3) % 4);
    Guarded<double> reOut(n, (misalignment + 1) % 4);
    Guarded<double> imOut(n, (misalignment + 2) % 4);
    for (int i = 0; i < n; ++i) {
        re[i] = x[static_cast<std::size_t>(i)].re;
        im[i] = x[static_cast<std::size_t>(i)].im;
    }
    rvxzrFftNip(re.data(), im.data(), reOut.data(), imOut.data(), order, flags);
    EXPECT_TRUE(re.intact() && im.intact() && reOut.intact() && imOut.intact());
    Signal result(x.size());
    Signal kept(x.size());
    for (int i = 0; i < n; ++i) {
        kept[static_cast<std::size_t>(i)] = {re[i], im[i]};
        result[static_cast<std::size_t>(i)] = {reOut[i], imOut[i]};
    }
    EXPECT_EQ(std::memcmp(kept.data(), x.data(), sizeof(ZCplx) * x.size()), 0);
    return result;
}

inline bool sameBits(const Signal &a, const Signal &b)
{
    return a.size() == b.size() && std::memcmp(a.data(), b.data(), sizeof(ZCplx) * a.size()) == 0;
}

#endif
