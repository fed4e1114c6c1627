// xoshiro256+ (D. Blackman and S. Vigna, Scrambled linear pseudorandom number
// generators, 2021), several generators side by side, so that they go into vectors.

#ifndef RVX_BENCH_PEER_RAND_H
#define RVX_BENCH_PEER_RAND_H

#include <cstdint>

struct XoshiroLanes {
    static constexpr int count = 16;
    std::uint64_t s[4][count];
};

void seedXoshiro(XoshiroLanes *lanes, std::uint64_t seed);

// samps[i] from low to high; n is a multiple of XoshiroLanes::count.
void fastUniform(XoshiroLanes *lanes, double low, double high, double *samps, int n);

#endif
