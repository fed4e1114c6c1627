// What the search for extremes shares.

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

#endif
