// What other modules take from this one: the search for extremes, square roots.

#ifndef RVXVEC_H
#define RVXVEC_H

// An extreme value, NaNs passed over, infinite the other way when there is nothing
// else; of +0.0 and -0.0 either. special: there may be a NaN in the block.
struct Extreme {
    double value;
    bool special;
};

double rvxLargestValue(const double *vec, int n);
Extreme rvxSmallestValue(const double *vec, int n);

// dst[i] = sqrt(src[i]) as rvxdbSqrt2 has it, but for the report: true if a sign bit
// is set. dst may be src. Kernels that make roots on their way have tripleRoot in
// rvxvec_root.h; the last len % 3 elements of a block do not go through it.
bool rvxRootBlock(const double *src, double *dst, int len);

#endif
