// What the search for extremes shares.

#ifndef RVXVEC_H
#define RVXVEC_H

// The largest or smallest value of a block, infinite the other way when there are
// only NaNs, and whether there are any. Of +0.0 and -0.0 either may come out.
struct Extreme {
    double value;
    bool anyNan;
};

Extreme rvxLargestValue(const double *vec, int n);
Extreme rvxSmallestValue(const double *vec, int n);

#endif
