// Every bank, and states whose work buffer is the test's own.

#ifndef RVX_TEST_WAVELETS_H
#define RVX_TEST_WAVELETS_H

#include <algorithm>
#include <ostream>
#include <vector>

#include "rvx.h"
#include "support/guarded.h"
#include "transform/rvxwlt.h"

struct WaveletBank {
    int wtType;
    int par1;
    int par2;
};

inline std::ostream &operator<<(std::ostream &out, const WaveletBank &bank)
{
    return out << "type " << bank.wtType << ", " << bank.par1 << ", " << bank.par2;
}

// In types without parameters these are any numbers.
inline std::vector<WaveletBank> allWaveletBanks()
{
    std::vector<WaveletBank> banks = {{RVX_WT_HAAR, 77, -5}, {RVX_WT_VAIDYANATHAN, 0, 0}};
    const auto family = [&banks](int wtType, int count) {
        for (int par1 = 1; par1 <= count; ++par1)
            banks.push_back({wtType, par1, 1000});
    };
    family(RVX_WT_DAUBECHIES, 10);
    family(RVX_WT_SYMLET, 7);
    family(RVX_WT_COIFLET, 5);
    const std::vector<int> duals[] = {{1, 3, 5}, {2, 4, 6, 8}, {1, 3, 5, 7, 9}};
    for (int wtType : {RVX_WT_BSPLINE, RVX_WT_BSPLINE_DUAL})
        for (int par1 = 1; par1 <= 3; ++par1)
            for (int par2 : duals[par1 - 1])
                banks.push_back({wtType, par1, par2});
    banks.push_back({RVX_WT_LINEAR_SPLINE, 0, 0});
    banks.push_back({RVX_WT_QUADRATIC_SPLINE, -1, 99});
    return banks;
}

inline bool isHaarBank(const WaveletBank &bank)
{
    return bank.wtType == RVX_WT_HAAR || (bank.wtType == RVX_WT_DAUBECHIES && bank.par1 == 1);
}

inline bool isShiftedHaarBank(const WaveletBank &bank)
{
    return (bank.wtType == RVX_WT_BSPLINE || bank.wtType == RVX_WT_BSPLINE_DUAL) &&
           bank.par1 == 1 && bank.par2 == 1;
}

// What a work buffer is said to have room for.
inline int workLenOf(const rvxWtState &state)
{
    return state.lenLevel[0] + 2 * *std::max_element(state.len_filt, state.len_filt + 4);
}

// A state for any length with guards around its work buffer.
class GuardedWavelet {
public:
    GuardedWavelet(const WaveletBank &bank, int len, int level)
        : state(made(bank, len, level)), own(state.workBuf), work(workLenOf(state), len % 4)
    {
        state.workBuf = work.data();
    }
    ~GuardedWavelet()
    {
        state.workBuf = own;
        rvxWtFree(&state);
    }
    GuardedWavelet(const GuardedWavelet &) = delete;
    GuardedWavelet &operator=(const GuardedWavelet &) = delete;

    bool intact() const { return work.intact(); }

    rvxWtState state;

private:
    static rvxWtState made(const WaveletBank &bank, int len, int level)
    {
        rvxWtState fresh = {};
        int coefficients = 0;
        rvxdWtInitLen(bank.par1, bank.par2, len, level, &fresh, bank.wtType, &coefficients);
        return fresh;
    }
    double *own;
    Guarded<double> work;
};

// The deepest level that a length takes.
inline int deepestLevel(int len)
{
    int level = 0;
    while (2L << level < 2L * len)
        ++level;
    return level;
}

#endif
