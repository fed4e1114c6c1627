// Blocks of doubles of every temper, for sums.

#ifndef RVX_TEST_BLOCKS_H
#define RVX_TEST_BLOCKS_H

#include <cmath>
#include <cstdint>
#include <limits>
#include <ostream>
#include <random>
#include <vector>

enum class Temper {
    uniform,      // in [-1, 1)
    positive,     // in [0, 1), most of them small
    small16,      // 16-bit integers over 32768, as audio has them
    offset,       // 1000 + noise
    cancelling,   // each element's negative follows somewhere, and a little remains
    wideRange,    // exponents within +-280
    fullRange,    // any finite bit pattern
    subnormal,    // subnormals alone
    mixedTiny,    // subnormals among ordinary numbers
    nearOverflow, // sums and squares leave the range
    ramp,         // each element about 1.2 times the one before
    burst,        // silence, then a peak, then little
    ties,         // sums that lie half-way between two doubles, or next to that
    zeros,        // of both signs
    specials,     // infinities and NaNs among ordinary numbers
    infinities
};

constexpr Temper allTempers[] = {
    Temper::uniform,    Temper::positive,     Temper::small16,   Temper::offset,
    Temper::cancelling, Temper::wideRange,    Temper::fullRange, Temper::subnormal,
    Temper::mixedTiny,  Temper::nearOverflow, Temper::ramp,      Temper::burst,
    Temper::ties,       Temper::zeros,        Temper::specials,  Temper::infinities};

inline bool allFinite(const std::vector<double> &block)
{
    for (double x : block)
        if (!std::isfinite(x))
            return false;
    return true;
}

inline std::ostream &operator<<(std::ostream &out, Temper temper)
{
    return out << "temper " << static_cast<int>(temper);
}

inline std::vector<double> makeBlock(Temper temper, int n, unsigned seed)
{
    std::mt19937_64 bits(seed * 64 + static_cast<unsigned>(temper));
    const auto unit = [&bits] { return static_cast<double>(bits() >> 11) * 0x1p-53; };
    const auto even = [&unit] { return 2.0 * unit() - 1.0; };
    const auto below = [&bits](int limit) {
        return static_cast<int>(bits() % static_cast<unsigned>(limit));
    };
    const double infinity = std::numeric_limits<double>::infinity();
    const double nan = std::numeric_limits<double>::quiet_NaN();
    std::vector<double> block;
    for (int i = 0; i < n; ++i) {
        const std::size_t at = static_cast<std::size_t>(i);
        double x = even();
        switch (temper) {
        case Temper::uniform:
            break;
        case Temper::positive:
            x = std::ldexp(0.5 * (x + 1.0), -below(16));
            break;
        case Temper::small16:
            x = (below(65536) - 32768) / 32768.0;
            break;
        case Temper::offset:
            x += 1000.0;
            break;
        case Temper::cancelling:
            x = i % 2 == 0 ? std::ldexp(x, below(60)) : -block[at - 1] + std::ldexp(x, -60);
            break;
        case Temper::wideRange:
            x = std::ldexp(x, below(561) - 280);
            break;
        case Temper::fullRange:
            x = std::ldexp(x, below(2045) - 1022);
            break;
        case Temper::subnormal:
            x = std::ldexp(x, -1022 - below(52));
            break;
        case Temper::mixedTiny:
            x = below(3) == 0 ? std::ldexp(x, -1022 - below(52)) : std::ldexp(x, below(500) - 250);
            break;
        case Temper::nearOverflow:
            x = std::ldexp(x, 1023 - below(4));
            break;
        case Temper::ramp:
            x = (1.5 + 0.5 * x) * std::pow(1.2, i % 1000);
            break;
        case Temper::burst:
            x = i < n / 2 ? 0.0 : i == n / 2 ? 1e6 : 1e-3 * x;
            break;
        case Temper::ties:
            x = i == 0   ? 1.0
                : i == 1 ? 0x1p-53
                : i == 2 ? (seed % 3 == 0   ? 0.0
                            : seed % 3 == 1 ? 0x1p-300
                                            : -0x1p-300)
                         : (i % 2 == 0 ? -block[at - 1] : x);
            break;
        case Temper::zeros:
            x = std::copysign(0.0, x);
            break;
        case Temper::specials:
            x = below(n + 4) >= 4 ? x : below(2) == 0 ? nan : std::copysign(infinity, x);
            break;
        case Temper::infinities:
            x = below(n + 4) < 6 ? std::copysign(infinity, x) : x;
            break;
        }
        block.push_back(x);
    }
    return block;
}

// All lengths to 100, and those about the edges of tiles.
inline std::vector<int> sumLengths()
{
    std::vector<int> lengths;
    for (int n = 1; n <= 100; ++n)
        lengths.push_back(n);
    for (int edge : {128, 256, 512, 1024, 1536, 4096})
        for (int n : {edge - 1, edge, edge + 1, edge + 13})
            lengths.push_back(n);
    return lengths;
}

#endif
