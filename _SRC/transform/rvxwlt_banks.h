// The built-in filter banks.

#ifndef RVXWLT_BANKS_H
#define RVXWLT_BANKS_H

// The fields of a state that a bank gives. In order: analysis low-pass and high-pass,
// synthesis low-pass and high-pass.
struct RvxWtBank {
    int len[4];
    int ofs[4];
    const double *tap[4];
};

// Of a type from 1 to 9: whether it has banks of par1 (any where it has no such
// parameter), and its bank of a par1 that it has, or null if par2 is none of its.
bool rvxWtHasPar1(int wtType, int par1);
const RvxWtBank *rvxWtBank(int wtType, int par1, int par2);

#endif
