// The engines of the Fourier transforms, and the fronts that are not exported.
//
// N is a power of two; direction is +1 for the forward kernel and -1 for its
// conjugate; twiddles come from rvxGetFftTwdDit or rvxGetFftTwdDif of the same
// order. Nothing is scaled but by the forms that take a scale: it multiplies each
// result after all additions.

#ifndef RVXFFTD_H
#define RVXFFTD_H

#include <cstdint>

#include "rvx.h"
#include "transform/rvxfftd_plan.h"

// Bit-reversed input to natural output, in place.
void rvxFftDit(ZCplx *data, int N, int direction, const ZCplx *twiddles);
void rvxrFftDit(double *re, double *im, int N, int direction, const ZCplx *twiddles);

void rvxFftDitScaled(ZCplx *data, int N, int direction, const ZCplx *twiddles, double scale);
void rvxrFftDitScaled(double *re, double *im, int N, int direction, const ZCplx *twiddles,
                      double scale);

// Natural input to bit-reversed output, in place.
void rvxFftDif(ZCplx *data, int N, int direction, const ZCplx *twiddles);
void rvxrFftDif(double *re, double *im, int N, int direction, const ZCplx *twiddles);
void rvxFftDifScaled(ZCplx *data, int N, int direction, const ZCplx *twiddles, double scale);
void rvxrFftDifScaled(double *re, double *im, int N, int direction, const ZCplx *twiddles,
                      double scale);

// Both from factors alone, for N of 16 and more.
void rvxFftDitByFactors(ZCplx *data, int N, int direction, FftFactors factors, double scale);
void rvxFftDifByFactors(ZCplx *data, int N, int direction, FftFactors factors, double scale);

// Natural order both ways: reversal and Dit in one. N of 2 and more; dst is src or
// does not overlap it, and in the split form likewise each part. Twiddles as for Dit.
void rvxFftNatural(const ZCplx *src, ZCplx *dst, int N, int direction, const ZCplx *twiddles,
                   double scale);
void rvxrFftNatural(const double *reSrc, const double *imSrc, double *reDst, double *imDst, int N,
                    int direction, const ZCplx *twiddles, double scale);

// Reversal by the swap list of the order; src and dst are distinct.
void rvxBitRevInPlace(ZCplx *data, int N, const std::uint32_t *swapTbl);
void rvxBitRevCopy(const ZCplx *src, ZCplx *dst, int N, const std::uint32_t *swapTbl);
void rvxBitRevCopyDoubles(const double *src, double *dst, int N, const std::uint32_t *swapTbl);

// The passes of the real transforms, h complex elements for 2h real samples; the
// table is that of the real length (rvxGetRealTwistTbl, rvxGetCcsTwistTbl).
//
// Transformed pairs of samples to bins 1..h-1, in place. With direction -1 the
// results are multiplied by scale.
void rvxRealFftPost(ZCplx *z, int h, int direction, double scale, const ZCplx *table);
// Bins 1..h-1 to what rvxFftDit turns into pairs of samples; dst may be src.
void rvxCcsFftPre(const ZCplx *src, ZCplx *dst, int h, int direction, const ZCplx *table);

// Transformed pairs of samples to what the inverse turns into twice those of the
// circular convolution, in place: Post, a product with `factors` and Pre in one pass.
// factors[k] is the other spectrum's bin k, factors[0] its two real bins, 0 and h. The
// table is that of rvxCcsFftPre; h of 8 and more.
void rvxRealFftProduct(const ZCplx *factors, ZCplx *z, int h, const ZCplx *table);

// Real transforms with packed spectra, in place, N doubles; RVX_FFT_OUT_RC_PACK
// or RVX_FFT_OUT_RC_PERM, and RVX_FFT_IN_RC_PACK or RVX_FFT_IN_RC_PERM, name the
// format.
void rvxdRealFftl(double *samps, int order, int flags);
void rvxdCcsFftl(double *samps, int order, int flags);

// dst becomes the product of two RCPack spectra.
void rvxdMpyRCPack2(const double *src, double *dst, int order);

#endif
