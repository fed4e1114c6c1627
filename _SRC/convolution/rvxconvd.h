// What the convolutions are made of: the choice of a path, and the cores.

#ifndef RVXCONVD_H
#define RVXCONVD_H

#include <cstdint>

#include "rvx.h"

// By the types of the first and the second operand.
enum ConvForm { RVX_CONV_D, RVX_CONV_Z, RVX_CONV_ZD, RVX_CONV_DZ };

enum ConvCore {
    RVX_CONV_DIRECT, // a sum per output
    RVX_CONV_WHOLE,  // one transform that holds all of the result
    RVX_CONV_BLOCKS  // the longer operand block by block
};

struct ConvChoice {
    ConvCore core;
    int mode; // of blocks: 1, 2 or 3
};

// The path for these lengths, which depends on nothing else. longLen >= shortLen >= 1.
ConvChoice rvxChooseConv(ConvForm form, int longLen, int shortLen);

// The order of a transform that holds the whole result.
int rvxConvWholeOrder(int longLen, int shortLen);

// The order of the blocks of a mode: modes 2 and 3 have the same.
int rvxConvBlockOrder(int longLen, int shortLen, int mode);

// The cores. x is the longer operand, y holds xLen + hLen - 1 elements and overlaps
// neither. Each makes the five argument checks of the fronts under its own name, but
// for rvxzConv0, which reports nothing.

// Direct sums in their stated order. hLen is at most RVX_CONV_DIRECT_MAX.
enum { RVX_CONV_DIRECT_MAX = 108 };

void rvxdConv0(const double *x, int xLen, const double *h, int hLen, double *y);
void rvxzConv0(const ZCplx *x, int xLen, const ZCplx *h, int hLen, ZCplx *y);
void rvxzdConv0(const ZCplx *x, int xLen, const double *h, int hLen, ZCplx *y);
void rvxdzConv0(const double *x, int xLen, const ZCplx *h, int hLen, ZCplx *y);

// By transforms; hLen of 5 and more, in rvxdConv1 and rvxdConvm of 8 and more. A
// negative stored status, be it an old one, ends these after their tables are made.
void rvxdConv1(const double *x, int xLen, const double *h, int hLen, double *y);
void rvxzConv1(const ZCplx *x, int xLen, const ZCplx *h, int hLen, ZCplx *y);
void rvxzdConv1(const ZCplx *x, int xLen, const double *h, int hLen, ZCplx *y);
void rvxdzConv1(const double *x, int xLen, const ZCplx *h, int hLen, ZCplx *y);

void rvxdConvm(const double *x, int xLen, const double *h, int hLen, double *y, int mode);
void rvxzConvm(const ZCplx *x, int xLen, const ZCplx *h, int hLen, ZCplx *y, int mode);
void rvxzdConvm(const ZCplx *x, int xLen, const double *h, int hLen, ZCplx *y, int mode);
void rvxdzConvm(const double *x, int xLen, const ZCplx *h, int hLen, ZCplx *y, int mode);

#endif
