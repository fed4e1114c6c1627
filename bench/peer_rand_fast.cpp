#include "peer_rand.h"

#include <cstring>

void seedXoshiro(XoshiroLanes *lanes, std::uint64_t seed)
{
    // splitmix64, as its authors recommend
    for (auto &words : lanes->s)
        for (std::uint64_t &word : words) {
            seed += 0x9e3779b97f4a7c15ULL;
            std::uint64_t z = seed;
            z = (z ^ (z >> 30)) * 0xbf58476d1ce4e5b9ULL;
            z = (z ^ (z >> 27)) * 0x94d049bb133111ebULL;
            word = z ^ (z >> 31);
        }
}

void fastUniform(XoshiroLanes *lanes, double low, double high, double *samps, int n)
{
    XoshiroLanes x = *lanes;
    const double range = high - low, base = low - range; // samples are 1 to 2 at first
    for (int from = 0; from < n; from += XoshiroLanes::count)
        for (int i = 0; i < XoshiroLanes::count; ++i) {
            const std::uint64_t bits = (x.s[0][i] + x.s[3][i]) >> 12 | 0x3ff0000000000000ULL;
            double sample;
            std::memcpy(&sample, &bits, sizeof sample);
            samps[from + i] = sample * range + base;
            const std::uint64_t t = x.s[1][i] << 17;
            x.s[2][i] ^= x.s[0][i];
            x.s[3][i] ^= x.s[1][i];
            x.s[1][i] ^= x.s[2][i];
            x.s[0][i] ^= x.s[3][i];
            x.s[2][i] ^= t;
            x.s[3][i] = x.s[3][i] << 45 | x.s[3][i] >> 19;
        }
    *lanes = x;
}
