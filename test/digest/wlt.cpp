// Wavelet transforms.

#include "digest.h"

namespace {

struct Bank {
    int wtType, par1, par2;
};

std::vector<Bank> banks()
{
    std::vector<Bank> all = {{1, 0, 0}, {5, 0, 0}, {8, 0, 0}, {9, 0, 0}};
    for (int par1 = 1; par1 <= 10; ++par1)
        all.push_back({2, par1, 0});
    for (int par1 = 1; par1 <= 7; ++par1)
        all.push_back({3, par1, 0});
    for (int par1 = 1; par1 <= 5; ++par1)
        all.push_back({4, par1, 0});
    for (int wtType : {6, 7})
        for (int par2 = 1; par2 <= 9; ++par2) {
            if (par2 % 2 == 1 && par2 <= 5)
                all.push_back({wtType, 1, par2});
            if (par2 % 2 == 0)
                all.push_back({wtType, 2, par2});
            if (par2 % 2 == 1)
                all.push_back({wtType, 3, par2});
        }
    return all;
}

void digestTransform(Digest &digest, void (*transform)(rvxWtState *, const double *, double *),
                     std::uint64_t seed)
{
    FixedData data(seed);
    for (const Bank &bank : banks())
        for (int order = 1; order <= 11; ++order)
            for (int level : {order, order / 2}) {
                rvxWtState state;
                rvxdWtInit(bank.par1, bank.par2, order, level, &state, bank.wtType);
                const std::vector<double> src = data.samples(1 << order);
                std::vector<double> dst(src.size());
                transform(&state, src.data(), dst.data());
                digest.add(dst);
                digest.add(rvxGetErrStatus());
                rvxWtFree(&state);
            }
}

} // namespace

RVX_DIGEST(rvxdWtInit)
{
    for (const Bank &bank : banks()) {
        rvxWtState state;
        rvxdWtInit(bank.par1, bank.par2, 7, 5, &state, bank.wtType);
        for (int f = 0; f < 4; ++f) {
            digest.add(state.ofs_filt[f]);
            for (int n = 0; n < state.len_filt[f]; ++n)
                digest.add(state.tap_filt[f][n]);
        }
        for (int length : state.lenLevel)
            digest.add(length);
        digest.add(state.wtKind);
        digest.add(state.len_dec);
        rvxWtFree(&state);
    }
}

RVX_DIGEST(rvxdWtDecompose)
{
    digestTransform(digest, rvxdWtDecompose, 90);
}

RVX_DIGEST(rvxdWtReconstruct)
{
    digestTransform(digest, rvxdWtReconstruct, 91);
}

RVX_DIGEST(rvxWtFree)
{
    rvxWtState state;
    rvxdWtInit(0, 0, 4, 2, &state, 1);
    rvxWtFree(&state);
    digest.add(state.core);
    digest.add(state.level);
    digest.add(rvxGetErrStatus());
}
