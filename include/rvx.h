/*
 * rvx: signal processing in double precision, real and complex.
 *
 * Calls take plain arrays and small records that the caller owns. Lengths count
 * elements; an order is the base-2 logarithm of a length. Names carry the type:
 * d double, z complex; a b behind it marks a block operation. A digit gives the
 * form: 1 a scalar and a block in place, 2 a source and a block in place, 3 two
 * sources and a result.
 *
 * The same call on the same data gives the same bits on every x86-64 machine.
 * (Of a NaN only that it is one is fixed, not its payload or its sign, except in
 * functions that copy values or compare bit patterns.)
 *
 * Errors. A failed check stores a status for the calling thread, writes nothing
 * and returns. Each thread starts in error mode 0, in which a failed check ends
 * the process with exit code 1: call rvxSetErrMode(1) first in every thread that
 * wants to see statuses. Success does not clear a status; clear it with
 * rvxSetErrStatus(0). (Wavelets, and number conversions that take flags, clear it
 * themselves as they begin.) Each function's entry lists its checks in the order
 * in which they are made.
 *
 * Threads. Nothing is shared between threads. A record or an array is worked on
 * by one thread at a time.
 */

#ifndef RVX_H
#define RVX_H

#define RVX_VERSION_MAJOR 1
#define RVX_VERSION_MINOR 0
#define RVX_VERSION_PATCH 0

/* Programs that link the static library on Windows define RVX_STATIC. */
#if defined(_WIN32)
#if defined(RVX_BUILDING)
#define RVX_API __declspec(dllexport)
#elif defined(RVX_STATIC)
#define RVX_API
#else
#define RVX_API __declspec(dllimport)
#endif
#else
#define RVX_API __attribute__((visibility("default")))
#endif

#ifdef __cplusplus
extern "C" {
#endif

/* A complex value, laid out like C's double complex and std::complex<double>. */
typedef struct ZCplx {
    double re;
    double im;
} ZCplx;

/* ---------------------------------------------------------------------------
 * Status and modes
 * ------------------------------------------------------------------------- */

/* 0 is success, failures are negative. The library itself raises BACKTRACE (a
 * function that it called failed), NO_MEMORY and BAD_ARGUMENT; the others are
 * words for callers and handlers. */
enum {
    RVX_STATUS_OK = 0,
    RVX_STATUS_BACKTRACE = -1,
    RVX_STATUS_BAD_STATE = -3,
    RVX_STATUS_NO_MEMORY = -4,
    RVX_STATUS_BAD_ARGUMENT = -5,
    RVX_STATUS_UNSUPPORTED = -6,
    RVX_STATUS_NO_CONVERGENCE = -7,
    RVX_STATUS_AUTOTRACE = -8,
    RVX_STATUS_NULL_POINTER = -10,
    RVX_STATUS_BAD_POINTER = -12,
    RVX_STATUS_BAD_DATA_STRUCTURE = -13,
    RVX_STATUS_BAD_LENGTH = -14
};

/* Reports a failure, as the library itself does.
 *   status   stored for the calling thread, but for BACKTRACE and AUTOTRACE,
 *            which leave the stored status as it is; 0 clears it
 *   func     name of the reporting function
 *   context  what failed; null when an inner failure is passed on
 *   file     name of the reporting module
 *   line     the reporter's source line
 * In error mode 0 ends the process by exit(1), without output; otherwise returns
 * status. Status 0 never ends the process. */
RVX_API int rvxError(int status, const char *func, const char *context, const char *file, int line);

/* The message of a status, zero-terminated, constant, never null. Values without
 * a name give "Unknown error or status code". */
RVX_API const char *rvxErrorStr(int status);

/* The calling thread's last status; 0 in a thread that never failed. */
RVX_API int rvxGetErrStatus(void);

/* Stores a status of any value for the calling thread. */
RVX_API void rvxSetErrStatus(int status);

/* The calling thread's error mode: 0 (as every thread starts) ends the process
 * at a failure, any other value returns. */
RVX_API int rvxGetErrMode(void);
RVX_API void rvxSetErrMode(int mode);

/* ---------------------------------------------------------------------------
 * Block fill and copy, complex scalars
 * ------------------------------------------------------------------------- */

/* dst[i] = 0.0 for 0 <= i < n.
 * Checks: n below 1; dst null. */
RVX_API void rvxdbZero(double *dst, int n);

/* dst[i] = val for 0 <= i < n, bit for bit.
 * Checks: n below 1; dst null. */
RVX_API void rvxdbSet(double val, double *dst, int n);
RVX_API void rvxzbSet(ZCplx val, ZCplx *dst, int n);

/* dst[i] = src[i] for 0 <= i < n, bit for bit, from the last element down to the
 * first: dst may be src, or overlap it from above. Where dst overlaps src from
 * below, elements are overwritten before they are read, as that order says.
 * Checks: n below 1; src null; dst null. */
RVX_API void rvxdbCopy(const double *src, double *dst, int n);

/* a + b, and a - b, part by part. */
RVX_API ZCplx rvxzAdd(ZCplx a, ZCplx b);
RVX_API ZCplx rvxzSub(ZCplx a, ZCplx b);

/* The product by its definition; infinities are not repaired:
 * re = b.re * a.re - b.im * a.im, im = b.im * a.re + b.re * a.im. */
RVX_API ZCplx rvxzMpy(ZCplx a, ZCplx b);

/* a / b by one reciprocal t = 1 / (b.im * b.im + b.re * b.re), unscaled: b must
 * keep its squares away from overflow and underflow (magnitudes between about
 * 1e-154 and 1e154).
 * Check: both parts of b zero or NaN; then gives 0 + 0i. */
RVX_API ZCplx rvxzDiv(ZCplx a, ZCplx b);

/* a with the sign of its imaginary part turned. */
RVX_API ZCplx rvxzConj(ZCplx a);

/* The complex value with these parts. */
RVX_API ZCplx rvxzSet(double re, double im);

/* ---------------------------------------------------------------------------
 * Block arithmetic
 *
 * Element by element for 0 <= i < n, one operation each, without special cases.
 * dst may be the same array as any source; blocks that overlap in any other way
 * are not supported. An element's result does not depend on its position.
 * ------------------------------------------------------------------------- */

/* dst[i] = dst[i] + val; dst[i] = dst[i] - val; dst[i] = dst[i] * val.
 * Checks: n below 1; dst null. */
RVX_API void rvxdbAdd1(double val, double *dst, int n);
RVX_API void rvxdbSub1(double val, double *dst, int n);
RVX_API void rvxdbMpy1(double val, double *dst, int n);

/* dst[i] = dst[i] + src[i]; dst[i] = dst[i] - val[i]; dst[i] = dst[i] * src[i].
 * Checks: n below 1; src (val) null; dst null. */
RVX_API void rvxdbAdd2(const double *src, double *dst, int n);
RVX_API void rvxdbSub2(const double *val, double *dst, int n);
RVX_API void rvxdbMpy2(const double *src, double *dst, int n);

/* dst[i] = srcA[i] + srcB[i]; dst[i] = src[i] - val[i]; dst[i] = srcA[i] * srcB[i].
 * Checks: n below 1; srcA (src) null; srcB (val) null; dst null. */
RVX_API void rvxdbAdd3(const double *srcA, const double *srcB, double *dst, int n);
RVX_API void rvxdbSub3(const double *src, const double *val, double *dst, int n);
RVX_API void rvxdbMpy3(const double *srcA, const double *srcB, double *dst, int n);

/* Complex: dst[i] = dst[i] + val, part by part, and dst[i] = dst[i] * val.
 * A product p * q, here and below, is formed by its definition,
 * re = p.re * q.re - p.im * q.im, im = p.im * q.re + p.re * q.im, each product
 * and sum rounded once; infinities are not repaired.
 * Checks: n below 1; dst null. */
RVX_API void rvxzbAdd1(ZCplx val, ZCplx *dst, int n);
RVX_API void rvxzbMpy1(ZCplx val, ZCplx *dst, int n);

/* Complex: dst[i] = dst[i] * src[i].
 * Checks: n below 1; src null; dst null. */
RVX_API void rvxzbMpy2(const ZCplx *src, ZCplx *dst, int n);

/* Complex: dst[i] = srcB[i] * srcA[i].
 * Checks: n below 1; srcA null; srcB null; dst null. */
RVX_API void rvxzbMpy3(const ZCplx *srcA, const ZCplx *srcB, ZCplx *dst, int n);

/* ---------------------------------------------------------------------------
 * Complex block forms
 * ------------------------------------------------------------------------- */

/* Conjugates for 0 <= i < n: vec[i] = conj(vec[i]), and dst[i] = conj(src[i]), where
 * dst may be src. The imaginary part's sign bit turns and all else is moved: zeros and
 * NaNs change sign too, payloads stay.
 * Checks: n below 1; vec (src) null; dst null. */
RVX_API void rvxzbConj1(ZCplx *vec, int n);
RVX_API void rvxzbConj2(const ZCplx *src, ZCplx *dst, int n);

/* dst[n - 1 - k] = conj(src[k]) for 0 <= k < n: reversed and conjugated. The blocks
 * must not overlap.
 * Checks: n below 1; src null; dst null. */
RVX_API void rvxzbConjFlip2(const ZCplx *src, ZCplx *dst, int n);

/* The whole of a conjugate-symmetric spectrum of 2n - 2 elements from its first n, of
 * which the last stands at the Nyquist frequency: vec[2n - 2 - k] = conj(vec[k]) for
 * 1 <= k <= n - 2, the first n elements stay as they are. An n of 1 or 2 changes
 * nothing.
 *   vec   has room for 2n - 2 elements
 * Checks: n below 1; vec null. */
RVX_API void rvxzbConjExtend1(ZCplx *vec, int n);

/* The same from src to dst: dst[k] = src[k] for 0 <= k < n, and dst[2n - 2 - k] =
 * conj(src[k]) for 1 <= k <= n - 2.
 *   src   n elements, but two when n is 1: element 1 is copied always
 *   dst   has room for 2n - 2 elements, but two when n is 1; may be src, must not
 *         overlap it otherwise
 * Checks: n below 1; src null; dst null. */
RVX_API void rvxzbConjExtend2(const ZCplx *src, ZCplx *dst, int n);

/* dst[i] = src[i].re, and dst[i] = src[i].im, for 0 <= i < length, bit for bit. dst may
 * begin where src does, and must not overlap it otherwise.
 * Checks: length below 1; src null; dst null. */
RVX_API void rvxzbReal(const ZCplx *src, double *dst, int length);
RVX_API void rvxzbImag(const ZCplx *src, double *dst, int length);

/* dstReal[i] = src[i].re and dstImag[i] = src[i].im for 0 <= i < length, bit for bit.
 * The three must not overlap.
 * Checks: length below 1; src null; dstReal null; dstImag null. */
RVX_API void rvxzbCplxTo2Real(const ZCplx *src, double *dstReal, double *dstImag, int length);

/* dst[i].re = srcReal[i] and dst[i].im = srcImag[i] for 0 <= i < length, bit for bit.
 * A null source stands for zeros; both may be null. dst must not overlap a source.
 * Checks: length below 1; dst null. */
RVX_API void rvxzb2RealToCplx(const double *srcReal, const double *srcImag, ZCplx *dst, int length);

/* spectr[i] = src[i].im * src[i].im + src[i].re * src[i].re for 0 <= i < length, each
 * product and the sum rounded once and not scaled: parts beyond about 1e154 give
 * infinity, parts below about 1e-162 zero. spectr may begin where src does, and must
 * not overlap it otherwise.
 * Checks, the result before the source: length below 1; spectr null; src null. */
RVX_API void rvxzbPowerSpectr(const ZCplx *src, double *spectr, int length);

/* Magnitudes: mag[i] = sqrt(src[i].im * src[i].im + src[i].re * src[i].re) for 0 <= i <
 * length, each operation rounded once, the squares not scaled, so that parts should lie
 * between about 1e-150 and 1e154. mag may begin where src does, and must not overlap it
 * otherwise.
 *
 * A length above 128 is taken in runs of 128, each by rvxzbPowerSpectr and then
 * rvxdbSqrt2, and a last part shorter than a run as above. In ordinary values this does
 * not show. Where a sum of squares is infinite or NaN, or subnormal, a run gives what
 * rvxdbSqrt2 gives: a finite result, of 2^512 about or of 2^-511, but in the last two
 * elements of the run; and a NaN whose sign bit is set, that of im if both parts are NaN,
 * is reported by rvxdbSqrt2, under its name, when its run is done.
 * Checks, the result before the source: length below 1; mag null; src null. */
RVX_API void rvxzbMag(const ZCplx *src, double *mag, int length);

/* Angles: phase[i] = atan2(src[i].im, src[i].re) for 0 <= i < length, from -pi to pi,
 * within 0.85 units in the last place for all arguments. Where src[i].im is zero of either
 * sign or NaN: +pi if src[i].re is negative or NaN, else 0.0; so a real value never has
 * -pi or -0.0. Else a src[i].re of NaN gives NaN. phase may begin where src does, and must
 * not overlap it otherwise. In this and the next two rounding is to nearest and
 * subnormals count, whatever is set, and no exception flag is raised.
 * Checks, the result before the source: length below 1; phase null; src null. */
RVX_API void rvxzbPhase(const ZCplx *src, double *phase, int length);

/* Magnitudes and angles for 0 <= i < length. Where src[i].im is zero of either sign or
 * NaN: mag[i] = |src[i].re|, and phase[i] is +pi if src[i].re is negative, else 0.0; a
 * src[i].re of NaN counts as zero there. Else mag[i] = sqrt(src[i].im * src[i].im +
 * src[i].re * src[i].re), unscaled, and phase[i] as rvxzbPhase has it. mag or phase may
 * begin where src does; blocks must not overlap otherwise.
 * Checks: length below 1; src null; mag null; phase null. */
RVX_API void rvxzbCartToPolar(const ZCplx *src, double *mag, double *phase, int length);

/* dst[i].re = cos(phase[i]) * mag[i] and dst[i].im = sin(phase[i]) * mag[i] for 0 <= i <
 * length. Sine and cosine are within 0.9 units in the last place for all arguments,
 * however large; the products are rounded once. Infinite phases and NaNs give NaN. dst
 * must not overlap a source.
 * Checks: length below 1; mag null; phase null; dst null. */
RVX_API void rvxzbPolarToCart(const double *mag, const double *phase, ZCplx *dst, int length);

/* ---------------------------------------------------------------------------
 * Thresholds, absolute value, square, root
 *
 * Element by element for 0 <= i < len: form 1 in place, dst[i] from src[i] in form
 * 2, where dst may be the same array as src and may not overlap it in any other
 * way.
 * ------------------------------------------------------------------------- */

/* |x|: the sign bit cleared, all other bits as they were, those of a NaN too.
 * Checks: len below 1; vec (src) null; dst null. */
RVX_API void rvxdbAbs1(double *vec, int len);
RVX_API void rvxdbAbs2(const double *src, double *dst, int len);

/* x * x. Complex: re = (re + im) * (re - im) and im = re * im + re * im, each sum
 * and product rounded once.
 * Checks: len below 1; vec (src) null; dst null. */
RVX_API void rvxdbSqr1(double *vec, int len);
RVX_API void rvxdbSqr2(const double *src, double *dst, int len);
RVX_API void rvxzbSqr1(ZCplx *vec, int len);
RVX_API void rvxzbSqr2(const ZCplx *src, ZCplx *dst, int len);

/* relOp of the thresholds: every value but 0 lowers. */
enum {
    RVX_THRESH_RAISE = 0, /* elements below the threshold are raised to it */
    RVX_THRESH_LOWER = 1  /* elements above it are lowered to it */
};

/* thresh where an element is below it (RVX_THRESH_RAISE) or above it, and the
 * element elsewhere, bit for bit. What is below is said by bit pattern, as sign and
 * magnitude: negative NaN, -inf, negative numbers, -0.0, +0.0, positive numbers,
 * +inf, positive NaN. So -0.0 is raised to a threshold of +0.0, and a positive NaN is
 * lowered to any number.
 * Checks: len below 1; vec (src) null; dst null. */
RVX_API void rvxdbThresh1(double *vec, int len, double thresh, int relOp);
RVX_API void rvxdbThresh2(const double *src, double *dst, int len, double thresh, int relOp);

/* Complex: brings the magnitude to thresh where it is below (RVX_THRESH_RAISE) or
 * above it, and keeps the angle. With p = re^2 + im^2 and t = thresh^2, rounded to
 * double and compared by bit pattern, both parts are multiplied by sqrt(t / p). An
 * element to be raised whose p is zero or subnormal gets thresh as its real part and
 * keeps its imaginary part. Magnitudes should be between about 1e-154 and 1e154. Of a
 * NaN element, p has the NaN's sign: it is raised if negative and lowered if
 * positive, which makes both parts NaN.
 * Checks: len below 1; vec (src) null; dst null; thresh below 0.0 or NaN. */
RVX_API void rvxzbThresh1(ZCplx *vec, int len, double thresh, int relOp);
RVX_API void rvxzbThresh2(const ZCplx *src, ZCplx *dst, int len, double thresh, int relOp);

/* 1 / x, correctly rounded, and at most 1 / thresh in magnitude: where |x| is at most
 * thresh, r = 1 / thresh for x of 0.0, -0.0 and above, -r below 0.0 and for a NaN.
 * With a thresh of zero or NaN a zero of either sign and a NaN give +inf, and are
 * reported after the whole block is done.
 * Checks: len below 1; vec (src) null; dst null; thresh below 0.0; after the work, an
 * element that is zero or NaN and a thresh that is. */
RVX_API void rvxdbInvThresh1(double *vec, int len, double thresh);
RVX_API void rvxdbInvThresh2(const double *src, double *dst, int len, double thresh);

/* Complex: re * d and -d * im, with d = 1 / (im^2 + re^2); where g = 1 / thresh^2 is
 * below d, with sqrt(d * g) in d's place, so that the magnitude is at most 1 / thresh.
 * All of this is rounded to double: magnitudes, thresh and the product of the two
 * should be between about 1e-154 and 1e154, or d, g and d * g leave the range.
 *
 * An element is zero when the high words of both parts are all zero (+0.0, and
 * positive numbers below 2^-1042); thresh is when its high word is. A zero element
 * gives (thresh * g, 0.0), or (+inf, 0.0) with a zero thresh, which is reported after
 * the whole block is done. Of each four elements from the first one on, none of them
 * zero, one that has a NaN part, or zero parts one of them -0.0, makes all four NaN.
 * Checks: len below 1; vec (src) null; dst null; thresh below 0.0 or NaN; after the
 * work, a zero element and a zero thresh. */
RVX_API void rvxzbInvThresh1(ZCplx *vec, int len, double thresh);
RVX_API void rvxzbInvThresh2(const ZCplx *src, ZCplx *dst, int len, double thresh);

/* The square root, correctly rounded. A sign bit anywhere in the block, that of
 * -0.0 too, is reported after the whole block is done.
 *
 * A block is taken as triples and a remainder of len % 3 elements. In the remainder
 * an element with the sign bit set is not written (in place it stays as it was) and
 * all others, infinity and NaN included, give their root. In triples there is always
 * a finite result, made from the bit pattern:
 *   - a negative number gives the root of its magnitude;
 *   - +0.0, and positive numbers below 2^-1042, give 0.0;
 *   - other subnormals of either sign, and -0.0, have f = 1.fraction and give
 *     sqrt(f) * 2^-511.5: about 2^-511 * sqrt(0.5) for -0.0;
 *   - infinities and NaNs give sqrt(f) * 2^512.
 * Checks: len below 1; vec (src) null; dst null; after the work, an element whose
 * sign bit is set. */
RVX_API void rvxdbSqrt1(double *vec, int len);
RVX_API void rvxdbSqrt2(const double *src, double *dst, int len);

/* The principal complex square root, with a real part that is never negative and
 * the imaginary part's own sign: from r = sqrt(re^2 + im^2), t = sqrt((r + |re|) / 2)
 * and w = |im| / t / 2 the root is t + iw, or w + it where the sign bit of re is set.
 * A zero gives 0 + 0i. A subnormal or zero imaginary part of the result becomes
 * +0.0; a subnormal real part stays.
 *
 * In triples r^2 and the other sums are rounded to double, and the two roots are
 * made as above: finite also where r^2 overflows, 0.0 where their argument is
 * subnormal. So magnitudes should be between about 1e-154 and 1e154. The remainder
 * of len % 3 elements is carried in extended precision and has no such limits.
 * Checks: len below 1; vec (src) null; dst null. */
RVX_API void rvxzbSqrt1(ZCplx *vec, int len);
RVX_API void rvxzbSqrt2(const ZCplx *src, ZCplx *dst, int len);

/* ---------------------------------------------------------------------------
 * Statistics, norms and dot products
 *
 * Sums are carried in extended precision or better: a result is either the
 * correctly rounded one or that of a 64-bit significand throughout, rounded
 * once at the end.
 * ------------------------------------------------------------------------- */

/* Sum of srcA[i] * srcB[i] for 0 <= i < len; nothing is conjugated. The forms
 * take real and real, complex and complex, real and complex, and complex and real
 * blocks. A len of 0 gives zero.
 * Checks: srcA null; srcB null; len below 0; the result is then zero. */
RVX_API double rvxdDotProd(const double *srcA, const double *srcB, int len);
RVX_API ZCplx rvxzDotProd(const ZCplx *srcA, const ZCplx *srcB, int len);
RVX_API ZCplx rvxdzDotProd(const double *srcA, const ZCplx *srcB, int len);
RVX_API ZCplx rvxzdDotProd(const ZCplx *srcA, const double *srcB, int len);

/* The sum of vec[i] for 0 <= i < len, divided by len.
 * Checks: len below 1; vec null; the result is then 0.0. */
RVX_API double rvxdMean(const double *vec, int len);

/* The sample standard deviation sqrt(v), by the computational formula
 * v = (len * sum(vec[i]^2) - sum(vec[i])^2) / (len * (len - 1)), or 0.0 where
 * rounding makes v negative. Its relative error grows as (mean / deviation)^2.
 * Checks: len below 1, vec null: 0.0; len of 1: -1.0. */
RVX_API double rvxdStdDev(const double *vec, int len);

/* The largest, the smallest element by bit pattern, that is in the order negative
 * NaN, -inf, negative numbers, -0.0, +0.0, positive numbers, +inf, positive NaN
 * (among NaNs by payload). The result has exactly the element's bits.
 * Checks: len below 1; vec null; the result is then 0.0. */
RVX_API double rvxdMax(const double *vec, int len);
RVX_API double rvxdMin(const double *vec, int len);

/* The largest, the smallest element and its position *index, by comparison of
 * values: of equal elements, which +0.0 and -0.0 are, the first. rvxdMaxExt passes
 * over a NaN unless it stands first, when it stays. rvxdMinExt takes a NaN, and
 * then whatever comes next: so it gives the smallest element behind the last NaN,
 * or that NaN if it stands last. index may be null: then as rvxdMax, rvxdMin.
 * Checks: len below 1; vec null; the result is then 0.0 and *index unwritten. */
RVX_API double rvxdMaxExt(const double *vec, int len, int *index);
RVX_API double rvxdMinExt(const double *vec, int len, int *index);

/* Flags of the norms: one of C, L1, L2 and L2SQ, and RELATIVE if wanted. */
enum {
    RVX_NORM_C = 1,        /* the largest magnitude */
    RVX_NORM_L1 = 2,       /* the sum of magnitudes */
    RVX_NORM_L2 = 4,       /* the root of the sum of squared magnitudes */
    RVX_NORM_RELATIVE = 8, /* divided by the same norm of srcA alone */
    RVX_NORM_L2SQ = 16     /* the sum of squared magnitudes */
};

/* The norm of srcA - srcB, or of srcA where srcB is null, over n elements. A
 * relative norm without srcB is 1.0. Where the difference's norm is below the
 * smallest normal number, 2.2e-308, the relative norm is 0.0; where it is not but
 * the norm of srcA is, the result is the largest finite number, 1.8e308. For L2
 * both are looked at before the root.
 * RVX_NORM_C passes over NaNs, the others give NaN. Differences and, for
 * RVX_NORM_C, squared magnitudes are rounded to double.
 * Checks: n below 1; srcA null; flag; the result is then 0.0. */
RVX_API double rvxdNorm(const double *srcA, const double *srcB, int n, int flag);
RVX_API double rvxzNorm(const ZCplx *srcA, const ZCplx *srcB, int n, int flag);

/* dst[i] = (src[i] - offset) * (1 / factor) for 0 <= i < n, with the reciprocal
 * rounded once; in the complex form part by part. dst may be src.
 * Checks: n below 1; src null; dst null; factor zero or NaN. */
RVX_API void rvxdbNormalize(const double *src, double *dst, int n, double offset, double factor);
RVX_API void rvxzbNormalize(const ZCplx *src, ZCplx *dst, int n, ZCplx offset, double factor);

/* ---------------------------------------------------------------------------
 * Elementary functions of blocks
 *
 * In place (1), or from a block or two into another (2, 3); dst may be a source.
 * Elements are worked on in groups that share one division, so the last bit of a
 * result may depend on its neighbours and on its place. What special values become
 * is told below and differs from the C library's functions.
 * ------------------------------------------------------------------------- */

/* The arctangent of each element, within 2.6 units in the last place. An infinity
 * gives +-pi/2, and so does a signalling NaN; of a quiet NaN the upper 32 bits are
 * kept and the lower cleared. Groups of four are formed from the end of the block,
 * past infinities and NaNs; before the first of them is begun, a negative quiet NaN
 * becomes -pi/2. What remains of a block of 4 or more when fewer than four elements
 * are left is exact to half a unit, and a NaN there stays one. In a shorter block each
 * element is by itself.
 * Checks: vec (src, dst) null; len below 1. */
RVX_API void rvxdbArctan1(double *vec, int len);
RVX_API void rvxdbArctan2(const double *src, double *dst, int len);

/* Division: dst[i] = dst[i] * (1 / val), with the reciprocal rounded once;
 * dst[i] = dst[i] / src[i]; dst[i] = srcA[i] / srcB[i], correctly rounded. A divisor
 * that is zero or a NaN gives the largest number, 1.8e308, with the sign of the
 * numerator; but where the numerator is zero or a NaN too, forms 1 and 2 leave it
 * and form 3 gives 0.0. After the whole block has been written this is reported as
 * "(Divide_by_Zero)", in mode 0 as well.
 * Checks: src, srcA null; srcB null; dst null; n below 1.
 * Result: 0; -9 divided by zero; -10 a pointer is null; -11 n below 1. The status is
 * RVX_STATUS_BAD_ARGUMENT in the last three cases. */
RVX_API int rvxdbDiv1(double val, double *dst, int n);
RVX_API int rvxdbDiv2(const double *src, double *dst, int n);
RVX_API int rvxdbDiv3(const double *srcA, const double *srcB, double *dst, int n);

/* The natural logarithm of each element, within 0.9 units in the last place. Pairs
 * are formed from the beginning of the block. In a pair +0.0 gives -inf, whatever has
 * its sign bit set, -0.0 and negative NaNs included, a NaN; +inf counts as 2^1024
 * and gives 709.78, a positive NaN about as much, and a subnormal number counts as
 * if it had a hidden bit: 2^-1023 and more. The last element of a block of odd length
 * is exact to half a unit instead: there both zeros give -inf, a negative number
 * gives a NaN, and +inf, NaNs and subnormal numbers are taken for what they are.
 * Rounding is to nearest whatever is set, and no exception flag is raised.
 * Checks: len below 1; vec (src, dst) null. */
RVX_API void rvxdbLn1(double *vec, int len);
RVX_API void rvxdbLn2(const double *src, double *dst, int len);

/* e to the power of each element, within 2.1 units in the last place. 1.0 up to about
 * 1.08e-19 in magnitude; 0.0 at and below -708.3935546875 and for negative NaNs; +inf
 * at and above 709.7822265625 and for positive NaNs, and in practice from 709.44 on,
 * since 2^1024 is a factor of the result there. The others form pairs from the end of
 * the block. If one of them is left without a partner, it is exact to half a unit, but
 * 0.0 from 708.3935546875 in magnitude on, also where it is positive.
 * Rounding is to nearest whatever is set, and no exception flag is raised.
 * Checks: len below 1; vec (src, dst) null. */
RVX_API void rvxdbExp1(double *vec, int len);
RVX_API void rvxdbExp2(const double *src, double *dst, int len);

/* The common logarithm of each element: its natural logarithm times log10(e), each
 * rounded, within 1.9 units in the last place. Groups of four are formed from the end of
 * the block and treat special values as the pairs of the natural logarithm do; what is
 * left at its beginning, at most three elements, is treated as the last element of
 * an odd block is there.
 * Rounding is to nearest whatever is set, and no exception flag is raised.
 * Checks: len below 1; vec (src, dst) null. */
RVX_API void rvxdbLg1(double *vec, int len);
RVX_API void rvxdbLg2(const double *src, double *dst, int len);

/* ---------------------------------------------------------------------------
 * Number conversions
 *
 * Between doubles and integers of 8, 16 or 32 bits. A fixed-point number of `size`
 * bits with fractBits bits of fraction stands for its integer times 2^-fractBits;
 * an integer is the case fractBits = 0. Blocks of integers are of signed char,
 * short and int, or of the unsigned types with RVX_CVT_UNSIGNED.
 *
 * To integers: v = src[i] * 2^fractBits, rounded once, as the flags say; dst[i] = v
 * where v is in the range of the integer. Where it is not, dst[i] is the end of the
 * range that v is beyond with RVX_CVT_CLIP, and else the low bits of v, as long as v
 * is below 2^30 in magnitude, 2^50 for 32 bits; what is stored beyond is left open. It is the
 * rounded v that counts: 127.4 fits 8 bits by RVX_CVT_NEAREST and does not by
 * RVX_CVT_CEIL. Infinities and NaNs are beyond the end of their sign.
 *
 * From integers: dst[i] = src[i] * 2^-fractBits, which is exact.
 *
 * Neither the rounding mode that the caller has in force nor the setting that
 * flushes subnormals to zero plays a part, and these and the exception flags are
 * afterwards as they were. dst and src must not overlap.
 *
 * Status: the functions with flags first set the status to RVX_STATUS_OK. They then
 * make all of their checks, each of which may report, and return without having
 * converted if there was a report. With RVX_CVT_REPORT they report "A float exceeds
 * an integer" once if any v was beyond the range, after all elements are written.
 * Functions without flags leave the status alone and return at the first failed
 * check, as other families do.
 * ------------------------------------------------------------------------- */

/* To integers exactly one of the first four, and of the others what is wanted; more
 * bits are ignored. From integers 0 or UNSIGNED. */
enum {
    RVX_CVT_NEAREST = 128,   /* to the nearest integer, of two to the even one */
    RVX_CVT_TRUNC = 256,     /* toward zero */
    RVX_CVT_FLOOR = 512,     /* downwards */
    RVX_CVT_CEIL = 1024,     /* upwards */
    RVX_CVT_UNSIGNED = 2048, /* integers have no sign */
    RVX_CVT_CLIP = 4096,     /* saturate what does not fit */
    RVX_CVT_REPORT = 8192    /* report what does not fit */
};

/* Doubles to integers of `size` bits.
 * With a size of 32 and the flags RVX_CVT_TRUNC | RVX_CVT_UNSIGNED | RVX_CVT_REPORT
 * and no other, here and in rvxdbFloatToFix, numbers are rounded downwards: those
 * between -1 and 0 then do not fit.
 * Checks: len below 1; src null; dst null; size not 8, 16 or 32; not exactly one of
 * the rounding flags. */
RVX_API void rvxdbFloatToInt(const double *src, void *dst, int len, int size, int flags);

/* Integers of `size` bits to doubles.
 * Checks: len below 1; src null; dst null; size not 8, 16 or 32; flags neither 0 nor
 * RVX_CVT_UNSIGNED. */
RVX_API void rvxdbIntToFloat(const void *src, double *dst, int len, int size, int flags);

/* Doubles to fixed point, and back.
 *   fractBits  0 to size - 1, or to size with RVX_CVT_UNSIGNED
 * Checks: len below 1; src null; dst null; size not 8, 16 or 32; flags as for
 * integers; fractBits out of range. */
RVX_API void rvxdbFloatToFix(const double *src, void *dst, int len, int size, int fractBits,
                             int flags);
RVX_API void rvxdbFixToFloat(const void *src, double *dst, int len, int size, int fractBits,
                             int flags);

/* Doubles to fixed point of 8, 16, 32 and 32 bits with 7, 15, 31 and 16 bits of
 * fraction. With RVX_CVT_UNSIGNED elements are of the unsigned type.
 * Checks: len below 1; src null; dst null; not exactly one of the rounding flags.
 * rvxdbFloatToS15Fix reports as "rvxdbFloaToS15Fix", and rvxdbFloatToS31Fix as
 * "rvxdbFloaToS31Fix". */
RVX_API void rvxdbFloatToS7Fix(const double *src, signed char *dst, int len, int flags);
RVX_API void rvxdbFloatToS15Fix(const double *src, short *dst, int len, int flags);
RVX_API void rvxdbFloatToS31Fix(const double *src, int *dst, int len, int flags);
RVX_API void rvxdbFloatToS1516Fix(const double *src, int *dst, int len, int flags);

/* The signed numbers of these formats to doubles.
 * Checks: len below 1; src null; dst null. */
RVX_API void rvxdbS7FixToFloat(const signed char *src, double *dst, int len);
RVX_API void rvxdbS15FixToFloat(const short *src, double *dst, int len);
RVX_API void rvxdbS31FixToFloat(const int *src, double *dst, int len);
RVX_API void rvxdbS1516FixToFloat(const int *src, double *dst, int len);

/* ---------------------------------------------------------------------------
 * Companding
 *
 * Samples from and to the codes of 8 bits of ITU-T Recommendation G.711, A-law with
 * its alternate bits inverted and mu-law inverted. Full scale is 1.0: a sample x
 * stands for x * 32768 in 16 bits.
 *
 * Encoders: v = x * 32768, truncated toward zero, is coded by its magnitude, so that
 * codes of v and -v differ in the sign alone; v = 0 is positive. In this they differ
 * by design from encoders that code -v - 1 for negative v: a negative v that begins
 * a step has the code of that step. In mu-law a v that ends a step (magnitudes 124,
 * 380, 892 and so on end segments) belongs to it. From a magnitude of 0.96875 on,
 * infinities and NaNs included, the code is the largest of the sign: 170 and 42 in
 * A-law, 128 and 0 in mu-law.
 *
 * Decoders: dst[i] = the 16-bit value that G.711 has for code src[i], divided by
 * 32768. Decoded and coded again each code comes back, but for 127 in mu-law, the
 * negative zero, which becomes 255.
 *
 * As with number conversions the rounding mode in force plays no part, and the
 * exception flags are afterwards as they were. dst and src must not overlap.
 * Checks: len below 1; src null; dst null.
 * ------------------------------------------------------------------------- */

RVX_API void rvxdbLinToALaw(const double *src, unsigned char *dst, int len);
RVX_API void rvxdbALawToLin(const unsigned char *src, double *dst, int len);
RVX_API void rvxdbLinToMuLaw(const double *src, unsigned char *dst, int len);
RVX_API void rvxdbMuLawToLin(const unsigned char *src, double *dst, int len);

/* ---------------------------------------------------------------------------
 * Fourier transforms
 *
 * N = 2^order. Flags are or-ed into one word; other bits are ignored.
 * ------------------------------------------------------------------------- */

enum {
    RVX_FFT_FORWARD = 1,        /* the kernel exp(-2 pi j k n / N) */
    RVX_FFT_INVERSE = 2,        /* the kernel exp(+2 pi j k n / N) and the factor 1/N */
    RVX_FFT_INIT_TABLES = 4,    /* build the tables that this call would use, and return */
    RVX_FFT_FREE_TABLES = 8,    /* release the tables that this call would use, and return */
    RVX_FFT_NO_SCALE = 16,      /* the inverse transform without its factor 1/N */
    RVX_FFT_NATURAL_ORDER = 32, /* the default, said aloud: excludes the next two */
    RVX_FFT_IN_BIT_REV = 64,    /* input in bit-reversed order, output in natural order */
    RVX_FFT_OUT_BIT_REV = 128,  /* input in natural order, output in bit-reversed order */
    /* Packed spectra, which no exported function reads or writes. */
    RVX_FFT_OUT_RC_PACK = 256,
    RVX_FFT_OUT_RC_PERM = 512,
    RVX_FFT_IN_RC_PACK = 1024,
    RVX_FFT_IN_RC_PERM = 4096
};

/* X[k] = sum over n of x[n] * exp(-2 pi j k n / N), 0 <= k < N, with
 * RVX_FFT_FORWARD; the conjugate kernel and the factor 1/N with RVX_FFT_INVERSE.
 *   samps     N values, in place
 *   inSamps   N values, left as they are; may be outSamps if the order of input
 *             or output is bit-reversed, and otherwise does not overlap it
 *   outSamps  N values
 *   order     0 to 31; tables of more than 4 GiB are refused as missing memory,
 *             which leaves orders up to 28
 *   flags     exactly one direction; at most one of RVX_FFT_NATURAL_ORDER,
 *             RVX_FFT_IN_BIT_REV and RVX_FFT_OUT_BIT_REV; RVX_FFT_NO_SCALE
 * An element of natural index i stands in bit-reversed order at the reversal of
 * the low `order` bits of i. Forward to bit-reversed order and inverse from it
 * need no reordering pass and suit convolution.
 *
 * RVX_FFT_FREE_TABLES releases this order's tables in the calling thread and
 * returns, before any check; RVX_FFT_INIT_TABLES builds them, after the checks of
 * the order, and looks at nothing else: the data pointers of both may be null.
 * Releasing an order above 9 releases the tables of order 9 too, which all larger
 * ones rest on. Tables are otherwise built by a thread's first transform of an
 * order and kept. RVX_FFT_OUT_BIT_REV alone selects one form of tables, everything
 * else the other.
 *
 * Checks: order below 0; above 31; no memory for the tables, "No working Twd
 * memory"; null pointers in the order of the arguments; both directions; none;
 * two of the three orderings. The data is untouched then; the tables stay built.
 *
 * Cooley and Tukey, An algorithm for the machine calculation of complex Fourier
 * series, 1965; Gentleman and Sande, Fast Fourier transforms for fun and profit,
 * 1966. */
RVX_API void rvxzFft(ZCplx *samps, int order, int flags);
RVX_API void rvxzFftNip(const ZCplx *inSamps, ZCplx *outSamps, int order, int flags);

/* The same with real and imaginary parts in arrays of their own, N doubles each;
 * the results of each part may go where the part came from under the same rule. */
RVX_API void rvxzrFftNip(const double *reInSamps, const double *imInSamps, double *reOutSamps,
                         double *imOutSamps, int order, int flags);

/* ---------------------------------------------------------------------------
 * Real Fourier transforms
 *
 * N = 2^order real samples x[n] and their spectrum X[k] = R[k] + j I[k], of which
 * bins 0 to N/2 are kept: X[N-k] is the conjugate of X[k], and I[0] = I[N/2] = 0.
 *
 * CCS, N + 2 doubles: R[0], 0, R[1], I[1], ..., R[N/2], 0. Element 2k holds R[k]
 * and element 2k + 1 holds I[k].
 *
 * Flags: one of RVX_FFT_FORWARD, sums with W = exp(-2 pi j / N), and
 * RVX_FFT_INVERSE, sums with its conjugate, times 1/N unless RVX_FFT_NO_SCALE is
 * set; RVX_FFT_INIT_TABLES and RVX_FFT_FREE_TABLES as for the complex transforms,
 * where a release takes the complex tables of order - 1 too, which these
 * transforms run on. Other flags are ignored: data is always in natural order.
 * rvxdRealFft with RVX_FFT_FORWARD and rvxdCcsFft with RVX_FFT_INVERSE undo each
 * other.
 *
 * Arrays need no alignment but that of double, and results do not depend on it.
 * After the first call of an order in a thread no memory is allocated until its
 * tables are released.
 *
 * Checks, the same in all four functions: order below 0; order above 31; tables
 * without memory (RVX_STATUS_NO_MEMORY); then, unless the call only builds
 * tables, samps (inSamps, outSamps) null; both directions; no direction. A
 * refused call leaves the data as it was; tables that it built stay. The status
 * of earlier calls plays no part.
 *
 * Method: a complex transform of N/2 points over pairs of samples, and one pass
 * that splits or joins even and odd samples (E. O. Brigham, The Fast Fourier
 * Transform, 1974, chapter 10).
 * ------------------------------------------------------------------------- */

/* X[k] = sum over n of x[n] W^(k n), in CCS. With RVX_FFT_INVERSE the conjugate of
 * that times 1/N, all N + 2 doubles scaled.
 *   samps  N + 2 doubles: the samples and two more, then the spectrum */
RVX_API void rvxdRealFft(double *samps, int order, int flags);

/* The same into another array; the two may not overlap.
 *   inSamps   N samples, left unchanged
 *   outSamps  N + 2 doubles */
RVX_API void rvxdRealFftNip(const double *inSamps, double *outSamps, int order, int flags);

/* x[n] = sum over k of X[k] W^(k n), k from 0 to N-1; with RVX_FFT_INVERSE
 * x[n] = 1/N sum over k of X[k] W^(-k n). I[0] and I[N/2] are not looked at.
 *   samps  N + 2 doubles: the spectrum in CCS, then the N samples; the last two
 *          doubles keep the values that they came with */
RVX_API void rvxdCcsFft(double *samps, int order, int flags);

/* The same into another array; outSamps may be inSamps.
 *   inSamps   N + 2 doubles in CCS, left unchanged
 *   outSamps  N samples */
RVX_API void rvxdCcsFftNip(const double *inSamps, double *outSamps, int order, int flags);

/* ---------------------------------------------------------------------------
 * Cosine transform
 *
 * Orthonormal, of any length L: type II forward, type III inverse.
 *
 * forward: y[0] = 1/sqrt(L) sum over n of x[n],
 *          y[k] = sqrt(2/L) sum over n of x[n] cos((2n+1) k pi / (2L));
 * inverse: x[n] = 1/sqrt(L) y[0]
 *                 + sqrt(2/L) sum over k from 1 of y[k] cos((2n+1) k pi / (2L)).
 *
 * Powers of two take a number of operations in proportion to L log L, every other
 * length L^2 / 2 products.
 *
 *   src    L samples or coefficients, left unchanged unless it is dst
 *   dst    L coefficients or samples; may be src or overlap it in any way
 *   len    L, from 1 on
 *   flags  RVX_FFT_FORWARD or RVX_FFT_INVERSE. The one value RVX_FFT_FREE_TABLES,
 *          with no other flag, releases the calling thread's tables of all cosine
 *          transforms instead; the other arguments are not looked at then. Other
 *          bits are ignored.
 *
 * A thread keeps two sets of tables, one for powers of two from 16 on (L - 8
 * doubles) and one for the other lengths (16 L doubles; up to L = 128, L^2 + 4L or
 * so), each for the length that came last: a new length replaces its set. They are
 * released by a call alone, not by the end of the thread. Each call takes and
 * releases a copy of L doubles.
 *
 * Checks: src or dst null; len < 1; both directions or none; no memory for the copy
 * or the tables (RVX_STATUS_NO_MEMORY). dst is untouched then. Tables that could not
 * be made are not half there: the next call makes them.
 *
 * N. Ahmed, T. Natarajan, K. R. Rao, Discrete cosine transform, 1974; B. G. Lee, A
 * new algorithm to compute the discrete cosine transform, 1984.
 * ------------------------------------------------------------------------- */

RVX_API void rvxdDct(const double *src, double *dst, int len, int flags);

/* ---------------------------------------------------------------------------
 * Goertzel
 *
 * One bin of the discrete Fourier transform, of a signal that comes in blocks of any
 * lengths. A state is a record of the caller's, for one signal; it holds no memory. It
 * is used with the functions of the type that it was initialised for and not before,
 * which the checks do not notice. Fields are for reading.
 *
 * G. Goertzel, An algorithm for the evaluation of finite trigonometric series, 1958.
 * ------------------------------------------------------------------------- */

typedef struct rvxdGoertzState {
    double rFreq;  /* relative frequency: cycles per sample */
    double cosV;   /* cos(omega), omega = 2 pi rFreq */
    double sinV;   /* sin(omega) */
    double twoCos; /* 2 cos(omega) */
    double prev2;  /* s[n-2] */
    double prev1;  /* s[n-1] */
} rvxdGoertzState;

typedef struct rvxzGoertzState {
    double rFreq;
    double cosV;
    double sinV;
    double twoCos;
    ZCplx prev2;
    ZCplx prev1;
} rvxzGoertzState;

/* Fill a record, for real or for complex samples, with the delay values zero.
 *   rFreq  0 <= rFreq < 1; k / M is bin k of M points, 1 - f the frequency -f
 * omega = rFreq * 2 pi is rounded to double, its cosine and its sine once each.
 * Checks: state null; rFreq out of range or NaN. The record stays as it was then. */
RVX_API void rvxdGoertzInit(double rFreq, rvxdGoertzState *state);
RVX_API void rvxzGoertzInit(double rFreq, rvxzGoertzState *state);

/* The delay values zero, for a new signal at the same frequency.
 * Check: state null. */
RVX_API void rvxdGoertzReset(rvxdGoertzState *state);
RVX_API void rvxzGoertzReset(rvxzGoertzState *state);

/* Take len samples in and give the bin of all samples since the initialisation or the
 * reset, x[0] to x[M-1]:
 *   e^(j omega M) * (sum over m of x[m] e^(-j omega m)),
 * which is X[k] where rFreq = k / M. The result is read off the state and does not
 * change it: blocks may be cut anywhere, to the bit.
 *   len  at least 1
 * Each sample, and of a complex one each part, makes s[n] = (x[n] - s[n-2]) + twoCos *
 * s[n-1], rounded after each operation. The error, measured on noise, is up to 3.6e-16
 * M min(M, 1 / |sin omega|) times the root of the sum of squares of the samples.
 * Checks: state null; src null; len below 1. The result is then zero and the state as
 * it was. */
RVX_API ZCplx rvxdbGoertz(rvxdGoertzState *state, const double *src, int len);
RVX_API ZCplx rvxzbGoertz(rvxzGoertzState *state, const ZCplx *src, int len);

/* ---------------------------------------------------------------------------
 * Wavelet transforms
 *
 * A two-channel filter bank, level by level, on a signal taken as periodic at each
 * level. With n(0) the signal's length, level i has n(i) = (n(i-1) + 1) / 2 values, in
 * integer arithmetic, in each of two bands; o and t are offsets and taps of the four
 * filters 0 analysis low-pass, 1 analysis high-pass, 2 synthesis low-pass, 3 synthesis
 * high-pass, and x the level before, which repeats its last value where n(i-1) is odd:
 *   a[k] = sum over j of t0[j] x[2k + o0 - j]   the approximation, 0 <= k < n(i)
 *   d[k] = sum over j of t1[j] x[2k + o1 - j]   the details
 *   x[t] = sum over k of a[k] t2[t + o2 - 2k] + sum over k of d[k] t3[t + o3 - 2k]
 * The next level takes a for its x.
 *
 * Coefficients: the approximation of the last level, its details, the details of the
 * level before it, and so on; the details of level 1, the finest, come last.
 *
 * Analysis low-passes sum to 1 and synthesis low-passes to 2: an approximation of a
 * constant is that constant, whatever the level.
 *
 * Each sum starts from +0.0, with j or k ascending, each product rounded and then
 * added; the sum of the details is complete before it is added to that of the
 * approximation. The two Haar banks, types RVX_WT_HAAR, RVX_WT_DAUBECHIES with par1 1,
 * and the splines with par1 and par2 1, take sums and differences instead:
 * d = (x1 - x0) 0.5, a = x0 + d and back x0 = a - d, x1 = a + d, where (x0, x1) is
 * (x[2k], x[2k+1]), for splines (x[2k], x[2k-1]). Results do not depend on where
 * arrays stand or on what was called before. These functions clear the status as they
 * begin.
 *
 * Sources: S. Mallat, A theory for multiresolution signal decomposition, 1989; of the
 * filters, I. Daubechies, Ten Lectures on Wavelets, 1992, chapters 6 and 8.
 * ------------------------------------------------------------------------- */

/* Wavelet types, and what their parameters mean. par2 counts for the splines alone.
 *   HAAR, VAIDYANATHAN   2 and 24 taps; par1 is ignored
 *   DAUBECHIES           par1 1 to 10 vanishing moments, 2 par1 taps
 *   SYMLET               par1 1 to 7, 2 (par1 + 3) taps: par1 + 3 vanishing moments
 *   COIFLET              par1 1 to 5, 6 par1 taps
 *   BSPLINE              par1 1 to 3, the order of the spline, and par2 that of its
 *                        dual: 1, 3, 5 with par1 1; 2, 4, 6, 8 with 2; 1, 3, 5, 7, 9
 *                        with 3. Biorthogonal
 *   BSPLINE_DUAL         the same, analysis and synthesis exchanged
 *   LINEAR_SPLINE        BSPLINE with 2 and 2; parameters are ignored
 *   QUADRATIC_SPLINE     BSPLINE with 3 and 3; parameters are ignored */
enum {
    RVX_WT_HAAR = 1,
    RVX_WT_DAUBECHIES = 2,
    RVX_WT_SYMLET = 3,
    RVX_WT_COIFLET = 4,
    RVX_WT_VAIDYANATHAN = 5,
    RVX_WT_BSPLINE = 6,
    RVX_WT_BSPLINE_DUAL = 7,
    RVX_WT_LINEAR_SPLINE = 8,
    RVX_WT_QUADRATIC_SPLINE = 9
};

/* A state serves any number of transforms, one at a time. The transforms go by what it
 * says and change nothing but *workBuf, so a caller may also fill one by hand: with
 * filters of its own, of any length and offset, or for a length that is no power of
 * two. */
typedef struct rvxWtState {
    int core;            /* 2 in a live state */
    int wtType;          /* RVX_WT_... */
    int wtKind;          /* 1 orthogonal, 2 biorthogonal; not read */
    int par1;            /* as passed, also where it is ignored */
    int par2;            /* likewise */
    int dataOrder;       /* base-2 logarithm of the length; not read */
    int level;           /* number of levels, 0 or more */
    int len_filt[4];     /* taps of each filter */
    int ofs_filt[4];     /* offset of each filter */
    double *tap_filt[4]; /* the taps; the library's own are constants: read only */
    double *workBuf;     /* lenLevel[0] + 2 * (largest of len_filt) doubles */
    int len_dec;         /* number of coefficients */
    int lenLevel[33];    /* n(0), the signal's length, to n(level), and zeros */
} rvxWtState;

/* Makes *wtState a state for signals of 2^dataOrder samples. What it held before is
 * not looked at: a live state is to be released first. A refused call leaves it as it
 * was.
 *   par1, par2  as the type says
 *   dataOrder   1 to 30: there is no int for 2^31
 *   level       0 to dataOrder; 0 copies
 *   wtState     a record of any contents
 *   wtType      RVX_WT_...
 * Checks: dataOrder outside 1..31, with the message of level; then, under the name
 * "rvxdWtInitLen" and followed by an RVX_STATUS_BACKTRACE of rvxdWtInit: wtState null;
 * dataOrder 31, as a length below 2; level below 0; level above dataOrder; wtType
 * unknown; par1, then par2, not one of its type's; no memory (RVX_STATUS_NO_MEMORY). */
RVX_API void rvxdWtInit(int par1, int par2, int dataOrder, int level, rvxWtState *wtState,
                        int wtType);

/* Releases the work buffer and sets the whole record to zero, so that it is refused
 * from then on. May be called again on a freed state.
 * Check: wtState null. */
RVX_API void rvxWtFree(rvxWtState *wtState);

/* The coefficients of a signal.
 *   src  lenLevel[0] samples, left unchanged
 *   dst  len_dec coefficients: after rvxdWtInit as many as samples; may not overlap src
 * Checks: wtState null; src null; dst null; *wtState not a live state. */
RVX_API void rvxdWtDecompose(rvxWtState *wtState, const double *src, double *dst);

/* The signal of given coefficients. Undoes rvxdWtDecompose to some roundings (types HAAR
 * and from BSPLINE on, DAUBECHIES up to 3, COIFLET 1), or as far as the digits go that the
 * other filters are tabulated with: for any signal of magnitude 1 and 8 levels within
 * 2e-7, and within 4e-9 but for VAIDYANATHAN and COIFLET 5. Each further level adds up to
 * 4e-8, and 2e-10 but for these two.
 *   src  len_dec coefficients, left unchanged
 *   dst  lenLevel[0] samples; may not overlap src
 * Checks: wtState null; src null; dst null; *wtState not a live state. */
RVX_API void rvxdWtReconstruct(rvxWtState *wtState, const double *src, double *dst);

/* ---------------------------------------------------------------------------
 * FIR filters
 *
 * Four families: d real taps and samples, z complex taps and samples, dz complex
 * taps and real samples, zd real taps and complex samples. Outputs are real in d
 * and complex in the others.
 *
 * Single rate: y[n] = sum of h[j] * x[n - j] over 0 <= j < tapsLen. Multi-rate:
 * y[m] = sum of h[j] * u[m * downFactor + downPhase - j] over the same j, where
 * u[t] is x[(t - upPhase) / upFactor] where that division leaves no rest, and
 * absent elsewhere; what would be thrown away is not computed. x[-1], x[-2] and so
 * on are the past samples.
 *
 * Each sum is taken from +0.0, the oldest sample first, each product rounded and
 * then added. A product of two complex values is formed first, each part by its
 * definition, and then added; in dz and zd the real factor multiplies each part by
 * itself. So a signal that is cut into blocks anywhere, one-sample calls among
 * them, gives the same bits as one call. An output without taps, which there is
 * where upFactor is above tapsLen, is +0.0.
 *
 * A record is the caller's and serves one filter; what its pointers lead to is the
 * library's, from an initialiser to rvxFirFree. It may not be moved or copied in
 * between: it is known as live by holding its own address. Only the functions of
 * the family that initialised it may be called on it; which one that was is not
 * checked. A status left from an earlier failure plays no part.
 * ------------------------------------------------------------------------- */

/* How one of the upFactor outputs of each step of a multi-rate filter is made. */
typedef struct rvxFirPhaseRow {
    int phase;     /* its subfilter: h[phase], h[phase + upFactor], ... */
    int numTaps;   /* taps of that subfilter; may be 0 */
    int dlyOffset; /* index, from the start of the window, of the sample that meets the
                      first stored tap in the first step of a block */
    int tapOffset; /* index in taps of the subfilter's first stored tap */
} rvxFirPhaseRow;

/* Fields are for reading: one-sample calls of a single-rate filter work ahead from the
 * taps and the window, and would not see a change. */
typedef struct rvxFirState {
    int upFactor;               /* 1 or more; 1 in a single-rate filter */
    int upPhase;                /* 0 to upFactor - 1 */
    int downFactor;             /* 1 or more; 1 in a single-rate filter */
    int downPhase;              /* 0 to downFactor - 1 */
    int isMultiRate;            /* 1 if a factor is above 1, else 0 */
    struct rvxFirState *self;   /* this record's own address while it is live */
    int tapsLen;                /* number of taps */
    int tapsBlockLen;           /* tapsLen rounded down to a multiple of 4 in d, of 2 in
                                   the other families */
    void *taps;                 /* double or ZCplx: the taps, reversed; those of a
                                   multi-rate filter one subfilter behind the other,
                                   each reversed */
    int dlylLen;                /* past samples kept: tapsLen - 1, in a multi-rate filter
                                   (tapsLen + upFactor - 1) / upFactor */
    int bufLen;                 /* positions over which the window slides: dlylLen or 63,
                                   whichever is more, and 1; in a multi-rate filter
                                   without the 1, but up to a multiple of downFactor */
    void *dlylBase;             /* double or ZCplx: dlylLen + bufLen samples */
    void *dlylEnd;              /* dlylBase + bufLen: where the window goes back */
    void *dlylCur;              /* the window: the past samples, oldest first; stands at
                                   dlylBase behind every block */
    rvxFirPhaseRow *phaseTable; /* upFactor rows; null in a single-rate filter */
} rvxFirState;

/* Make *statePtr a single-rate filter. A live state is released first, whatever
 * family it had: its own arrays may not be tapVals or dlyVals. A refused call leaves
 * it alive, one without memory does not.
 *   tapVals   tapsLen taps, copied; h[0] meets the newest sample. Null: all zero
 *   tapsLen   1 or more
 *   dlyVals   tapsLen - 1 past samples, the oldest first, copied. Null: all zero
 *   statePtr  a record of any contents
 * Checks: statePtr null; tapsLen below 1; no memory (RVX_STATUS_NO_MEMORY). */
RVX_API void rvxdFirInit(const double *tapVals, int tapsLen, const double *dlyVals,
                         rvxFirState *statePtr);
RVX_API void rvxzFirInit(const ZCplx *tapVals, int tapsLen, const ZCplx *dlyVals,
                         rvxFirState *statePtr);
RVX_API void rvxdzFirInit(const ZCplx *tapVals, int tapsLen, const double *dlyVals,
                          rvxFirState *statePtr);
RVX_API void rvxzdFirInit(const double *tapVals, int tapsLen, const ZCplx *dlyVals,
                          rvxFirState *statePtr);

/* Make *statePtr a multi-rate filter, which raises the rate by upFactor, filters, and
 * lowers it by downFactor. Factors of 1 give a single-rate filter. As above, and
 *   dlyVals     past samples at the input's rate: (tapsLen + upFactor - 1) / upFactor of
 *               them, tapsLen - 1 if both factors are 1
 *   upFactor    1 or more
 *   upPhase     0 to upFactor - 1: the raised time of the first sample
 *   downFactor  1 or more
 *   downPhase   0 to downFactor - 1: the raised time of the first output
 * Checks: statePtr null; upFactor below 1; downFactor below 1; upPhase out of range;
 * downPhase out of range; tapsLen below 1; no memory (RVX_STATUS_NO_MEMORY).
 * Crochiere and Rabiner, Multirate Digital Signal Processing, 1983. */
RVX_API void rvxdFirInitMr(const double *tapVals, int tapsLen, const double *dlyVals, int upFactor,
                           int upPhase, int downFactor, int downPhase, rvxFirState *statePtr);
RVX_API void rvxzFirInitMr(const ZCplx *tapVals, int tapsLen, const ZCplx *dlyVals, int upFactor,
                           int upPhase, int downFactor, int downPhase, rvxFirState *statePtr);
RVX_API void rvxdzFirInitMr(const ZCplx *tapVals, int tapsLen, const double *dlyVals, int upFactor,
                            int upPhase, int downFactor, int downPhase, rvxFirState *statePtr);
RVX_API void rvxzdFirInitMr(const double *tapVals, int tapsLen, const ZCplx *dlyVals, int upFactor,
                            int upPhase, int downFactor, int downPhase, rvxFirState *statePtr);

/* The next output of a single-rate filter, for the next sample. On a multi-rate
 * state results mean nothing: use the block forms.
 * Checks: statePtr null; *statePtr not initialised; the result is then zero. */
RVX_API double rvxdFir(rvxFirState *statePtr, double sample);
RVX_API ZCplx rvxzFir(rvxFirState *statePtr, ZCplx sample);
RVX_API ZCplx rvxdzFir(rvxFirState *statePtr, double sample);
RVX_API ZCplx rvxzdFir(rvxFirState *statePtr, ZCplx sample);

/* The next numIters steps; each reads downFactor samples and writes upFactor outputs.
 *   inSamps   numIters * downFactor samples, left unchanged
 *   outSamps  numIters * upFactor outputs; may not overlap inSamps
 *   numIters  1 or more
 * Checks: statePtr null; *statePtr not initialised; inSamps null; outSamps null;
 * numIters below 1. */
RVX_API void rvxdbFir(rvxFirState *statePtr, const double *inSamps, double *outSamps, int numIters);
RVX_API void rvxzbFir(rvxFirState *statePtr, const ZCplx *inSamps, ZCplx *outSamps, int numIters);
RVX_API void rvxdzbFir(rvxFirState *statePtr, const double *inSamps, ZCplx *outSamps, int numIters);
RVX_API void rvxzdbFir(rvxFirState *statePtr, const ZCplx *inSamps, ZCplx *outSamps, int numIters);

/* Releases what a live state of any family owns; self and phaseTable become null, the
 * other fields stay as they are. A failed check is reported under the name
 * "rvxFirrvxFree".
 * Checks: statePtr null; *statePtr not initialised. */
RVX_API void rvxFirFree(rvxFirState *statePtr);

/* ---------------------------------------------------------------------------
 * Recursive filters (IIR)
 *
 * A filter of order N in direct form,
 *   a[0] y[n] = b[0] x[n] + ... + b[N] x[n-N] - a[1] y[n-1] - ... - a[N] y[n-N],
 * or a cascade of second-order sections ("biquads") of that equation with N = 2.
 *
 * Four families: d has real samples and taps, z complex ones, dz real samples and
 * complex taps, zd complex samples and real taps. Results and past values are
 * complex in the last three. A real factor works on each part by itself.
 *
 * A filter is a record of the caller's: cleared at first (all bytes zero), filled
 * by an initialiser, used sample by sample or in blocks, freed. It starts from
 * zeros. One-sample and block calls mix freely: a block of any cut gives the bits
 * of one-sample calls. Every operation below is rounded once, in this order.
 *
 *   Direct form II transposed, b and a divided by a[0]:
 *     y = b[0] x + d[0]
 *     d[i-1] = (b[i] x - a[i] y) + d[i]    for 0 < i < N
 *     d[N-1] = b[N] x - a[N] y             and y = b[0] x where N is 0
 *   Cascade, a section's b divided by its b0 and a by its a0, with the gain g, the
 *   product of all b0 / a0, in front; each section in direct form II:
 *     v = g x
 *     w = (v - a1 d0) - a2 d1;  v = w + (b2 d1 + b1 d0);  d1 = d0;  d0 = w
 *
 * Statuses. Unlike other families these functions obey a status from before the
 * call. While it is negative, samples give zero, blocks write nothing, and both
 * leave the filter as it is; while it is not 0, initialisers fail. Clear it with
 * rvxSetErrStatus(0) first.
 *
 * Direct form II transposed, and direct form II: Oppenheim and Schafer,
 * Discrete-Time Signal Processing, 1989.
 * ------------------------------------------------------------------------- */

/* The structure and the normalised taps. */
typedef struct rvxIirTapState {
    int order;   /* delay elements: N, or twice the number of sections */
    void *taps;  /* double or ZCplx; b[0..N], a[1..N], or g and a1, a2, b1, b2 each */
    int iirType; /* as given; nothing depends on it */
    int mode;    /* 2 cascade; 0, 1 and 3 direct form */
} rvxIirTapState;

/* The past. */
typedef struct rvxIirDlyState {
    void *dlyl;   /* double or ZCplx, order of them; a section's newer one first */
    int initMark; /* RVX_IIR_INIT_MARK in a live record */
} rvxIirDlyState;

/* A filter. Must not hold RVX_IIR_INIT_MARK in dlySt.initMark by chance when it is
 * first handed in. Read its fields if you like, but write none. */
typedef struct rvxIirState {
    rvxIirTapState tapSt;
    rvxIirDlyState dlySt;
} rvxIirState;

enum { RVX_IIR_INIT_MARK = 31725 };

/* A filter in direct form, its past all zeros.
 *   iirType   0 or 1, which behave alike
 *   tapVals   2 order + 2 taps, b[0] to b[order], then a[0] to a[order]; copied
 *   order     0 or more
 *   statePtr  not live: free a live one first
 * Checks: statePtr null; tapVals null; order below 0; iirType; record live; no
 * memory. Then a[0] zero or NaN (complex: both parts so), reported by the low level
 * and passed on as RVX_STATUS_BACKTRACE, as is any status from before the call; the
 * record is not live then. */
RVX_API void rvxdIirInit(int iirType, const double *tapVals, int order, rvxIirState *statePtr);
RVX_API void rvxzIirInit(int iirType, const ZCplx *tapVals, int order, rvxIirState *statePtr);
RVX_API void rvxdzIirInit(int iirType, const ZCplx *tapVals, int order, rvxIirState *statePtr);
RVX_API void rvxzdIirInit(int iirType, const double *tapVals, int order, rvxIirState *statePtr);

/* A cascade of numQuads sections, its past all zeros.
 *   tapVals   6 numQuads taps, b0, b1, b2, a0, a1, a2 of each section; copied
 *   numQuads  1 or more
 * The rest as above. A section with b0 = 0 cannot be expressed: give such a filter
 * in direct form.
 * Checks: statePtr null; tapVals null; numQuads below 1; iirType; record live; no
 * memory. Then b0 or a0 of a section zero or NaN, as above. */
RVX_API void rvxdIirInitBq(int iirType, const double *tapVals, int numQuads, rvxIirState *statePtr);
RVX_API void rvxzIirInitBq(int iirType, const ZCplx *tapVals, int numQuads, rvxIirState *statePtr);
RVX_API void rvxdzIirInitBq(int iirType, const ZCplx *tapVals, int numQuads, rvxIirState *statePtr);
RVX_API void rvxzdIirInitBq(int iirType, const double *tapVals, int numQuads,
                            rvxIirState *statePtr);

/* The filter's next value.
 * Checks: statePtr null; record not live; the result is then zero. */
RVX_API double rvxdIir(rvxIirState *statePtr, double sample);
RVX_API ZCplx rvxzIir(rvxIirState *statePtr, ZCplx sample);
RVX_API ZCplx rvxdzIir(rvxIirState *statePtr, double sample);
RVX_API ZCplx rvxzdIir(rvxIirState *statePtr, ZCplx sample);

/* The filter's next values: numIters samples from inSamps to outSamps, which may be
 * the same array where the types are the same. Blocks that overlap in any other way
 * are not supported.
 * A numIters of 0 does nothing in direct form of order 0 and 1, and processes one
 * sample in every other filter.
 * Checks: statePtr null; record not live. Then, one by one, all reported: inSamps
 * null, outSamps null; and if these hold numIters below 0; by the low level, then
 * passed on as RVX_STATUS_BACKTRACE, as is any status from before the call. */
RVX_API void rvxdbIir(rvxIirState *statePtr, const double *inSamps, double *outSamps, int numIters);
RVX_API void rvxzbIir(rvxIirState *statePtr, const ZCplx *inSamps, ZCplx *outSamps, int numIters);
RVX_API void rvxdzbIir(rvxIirState *statePtr, const double *inSamps, ZCplx *outSamps, int numIters);
RVX_API void rvxzdbIir(rvxIirState *statePtr, const ZCplx *inSamps, ZCplx *outSamps, int numIters);

/* Releases what the filter owns. A freed record may be initialised again.
 * Checks: statePtr null; record not live. */
RVX_API void rvxIirFree(rvxIirState *statePtr);

/* ---------------------------------------------------------------------------
 * Adaptive filters
 *
 * Least mean squares with leakage: a filter of tapsLen taps which the caller's
 * error moves. Each step first adapts the taps with the error given now, and only
 * then takes the samples in and gives an output; the caller forms the error from
 * outputs given so far and hands it to a later step.
 *
 * Families: d real; z complex; dz real samples, complex taps, errors and outputs.
 *
 * taps[i] meets x[n-i], the i-th sample before the newest: neither the taps nor
 * their meaning is reversed. The state is a record of the caller's. An initialiser
 * fills it and allocates its two arrays, rvxLmsFree releases them. An initialiser
 * does not look at what the record held: free a live state before initialising it
 * again, or its arrays are lost. A record is used with the functions of the family
 * that it was initialised by, and not before it was initialised nor after it was
 * freed, which the checks do not notice. Fields are for reading.
 * ------------------------------------------------------------------------- */

typedef struct rvxLmsTapState {
    void *taps;      /* tapsLen taps, double or ZCplx, in the order given */
    int tapsLen;     /* number of taps */
    int upFactor;    /* always 1 */
    int upPhase;     /* always 0 */
    int downFactor;  /* decimation factor; 1 for a single rate */
    int downPhase;   /* decimation phase; 0 for a single rate */
    int isMultiRate; /* 1 when downFactor is at least 2, else 0 */
    int tapsReady;   /* 1 when taps was obtained and set, else 0 */
    float leak;      /* leakage factor */
    float step;      /* adaptation step */
    int errDly;      /* delay of the error, in input samples */
    int lmsType;     /* the caller's value, kept */
} rvxLmsTapState;

typedef struct rvxLmsDlyState {
    void *dlyl;   /* the delay line, double or ZCplx, newest sample first */
    int dlylLen;  /* tapsLen + errDly, and downFactor more after the Mr initialisers */
    int dlyReady; /* 1 when dlyl was obtained and set, else 0 */
} rvxLmsDlyState;

typedef struct rvxLmsState {
    rvxLmsTapState tapState;
    rvxLmsDlyState dlyState;
    ZCplx errVal; /* zero; a real filter's error has the place of re alone */
} rvxLmsState;

/* Fill a record and allocate its arrays, for one sample per step.
 *   lmsType  kept, and without effect
 *   tapVals  tapsLen first taps, or null for zeros
 *   tapsLen  number of taps, at least 1
 *   dlyVals  the tapsLen + errDly - 1 samples (Mr: and downFactor more) that went
 *            before, oldest first, or null for zeros
 *   step     adaptation step; at 0, below, or NaN the taps stay as they are and
 *            leak has no effect either
 *   leak     part of each tap that is lost in an adaptation: 0 for none
 *   errDly   how many input samples the error comes later than needed: 0 when the
 *            error of an output is given to the very next step; not checked
 * Checks: statePtr null; tapsLen below 1; no memory (RVX_STATUS_NO_MEMORY), which
 * leaves the record without arrays and with one ready flag, or both, at 0. A delay
 * line of more than 2^31 - 1 samples is refused as missing memory. A failed check
 * of an argument leaves the record as it was.
 *
 * B. Widrow and M. E. Hoff, Adaptive switching circuits, 1960. */
RVX_API void rvxdLmsInit(int lmsType, const double *tapVals, int tapsLen, const double *dlyVals,
                         float step, float leak, int errDly, rvxLmsState *statePtr);
RVX_API void rvxzLmsInit(int lmsType, const ZCplx *tapVals, int tapsLen, const ZCplx *dlyVals,
                         float step, float leak, int errDly, rvxLmsState *statePtr);
RVX_API void rvxdzLmsInit(int lmsType, const ZCplx *tapVals, int tapsLen, const double *dlyVals,
                          float step, float leak, int errDly, rvxLmsState *statePtr);

/* The same for downFactor samples per step, of which sample downPhase is the newest
 * in the output; 0 <= downPhase < downFactor.
 * Checks: statePtr null; tapsLen below 1; downPhase negative; downFactor not above
 * downPhase; no memory. */
RVX_API void rvxdLmsInitMr(int lmsType, const double *tapVals, int tapsLen, const double *dlyVals,
                           float step, float leak, int errDly, int downFactor, int downPhase,
                           rvxLmsState *statePtr);
RVX_API void rvxzLmsInitMr(int lmsType, const ZCplx *tapVals, int tapsLen, const ZCplx *dlyVals,
                           float step, float leak, int errDly, int downFactor, int downPhase,
                           rvxLmsState *statePtr);
RVX_API void rvxdzLmsInitMr(int lmsType, const ZCplx *tapVals, int tapsLen, const double *dlyVals,
                            float step, float leak, int errDly, int downFactor, int downPhase,
                            rvxLmsState *statePtr);

/* One step. With x[n] the newest sample before this step,
 *   taps[i] = taps[i] * (1 - leak) + step * err * conj(x[n - errDly - i])
 * if step is above 0; then sample comes in as x[n + 1], and the result is the sum
 * of taps[i] * x[n + 1 - i], from 0.0 with i ascending. Each product and sum is
 * rounded once, each complex product is formed before it is added. On a state for
 * several samples per step these take one sample like any other.
 * Checks: statePtr null; the taps, then the delay line, not ready. The result is
 * then zero. */
RVX_API double rvxdLms(rvxLmsState *statePtr, double sample, double err);
RVX_API ZCplx rvxzLms(rvxLmsState *statePtr, ZCplx sample, ZCplx err);
RVX_API ZCplx rvxdzLms(rvxLmsState *statePtr, double sample, ZCplx err);

/* One step of decimation: downFactor samples in, oldest first, one output. As
 * above, where x[n] is sample downPhase of the block before, and x[n + 1] stands
 * for inSamps[downPhase]: delays count input samples.
 * Checks: statePtr null; inSamps null; the taps, then the delay line, not ready. */
RVX_API double rvxdbLms(rvxLmsState *statePtr, const double *inSamps, double err);
RVX_API ZCplx rvxzbLms(rvxLmsState *statePtr, const ZCplx *inSamps, ZCplx err);
RVX_API ZCplx rvxdzbLms(rvxLmsState *statePtr, const double *inSamps, ZCplx err);

/* Releases the arrays and sets them to null; the rest of the record stays. May be
 * called again on a freed state; a null statePtr does nothing. */
RVX_API void rvxLmsFree(rvxLmsState *statePtr);

/* ---------------------------------------------------------------------------
 * Up and down sampling
 *
 * No filtering. The phase, 0 to factor - 1, is the caller's and carries over from
 * block to block, so that a signal may be cut anywhere. dst may be src; blocks that
 * overlap in any other way are not supported.
 *   src     srcLen samples
 *   dst     room for all results
 *   dstLen  gets the number of samples written to dst
 * Checks: srcLen below 1; src or dst null; dstLen null; phase null; factor below 1;
 * *phase negative; *phase not below factor (which has the factor's message).
 * Nothing is written then.
 * ------------------------------------------------------------------------- */

/* dst[k * factor + *phase] = src[k], zeros elsewhere, *dstLen = srcLen * factor; the
 * phase stays. Also checked: a length of the result above 2^31 - 1, last and with
 * the message of srcLen. */
RVX_API void rvxdUpSample(const double *src, int srcLen, double *dst, int *dstLen, int factor,
                          int *phase);
RVX_API void rvxzUpSample(const ZCplx *src, int srcLen, ZCplx *dst, int *dstLen, int factor,
                          int *phase);

/* dst[n] = src[*phase + n * factor] for all n that stay below srcLen, *dstLen of
 * them; *phase becomes the place of the next such sample in the next block. */
RVX_API void rvxdDownSample(const double *src, int srcLen, double *dst, int *dstLen, int factor,
                            int *phase);
RVX_API void rvxzDownSample(const ZCplx *src, int srcLen, ZCplx *dst, int *dstLen, int factor,
                            int *phase);

/* ---------------------------------------------------------------------------
 * Median filter
 * ------------------------------------------------------------------------- */

/* out[i] = the middle one of the m samples in[i-h] to in[i+h] for 0 < i < len - 1,
 * where h = (masksize - 1) / 2 and m = 2h + 1: an even mask is narrowed by one. The
 * end samples stand for what is beyond them. out[0] and out[len-1] are the samples
 * themselves. All medians are those of the unfiltered samples, in place too. Of
 * samples that are equal, +0.0 and -0.0, either may come out. NaNs are not
 * supported: where there is one, the medians are arbitrary.
 *   inout     len samples, in place
 *   in, out   len samples each; out may be in, or overlap it from above
 *   masksize  1 or 2 changes nothing
 * Masks of 7 and more take work memory: about 4096 + 5 m doubles up to 111, and four
 * times the larger of 4096 + m and 2 m for wider ones, where m counts no more than
 * 2 len, and 4096 no more than len.
 * Masks from 113 on by sorting lines of samples, each sample once or twice (Suomela,
 * Median filtering is equivalent to sorting, 2014).
 * Checks: len below 1; inout (in, then out) null; masksize below 1; no memory
 * (RVX_STATUS_NO_MEMORY, reported by rvxdbMedianFilter1): then inout is unchanged,
 * and out is a copy of in. */
RVX_API void rvxdbMedianFilter1(double *inout, int len, int masksize);
RVX_API void rvxdbMedianFilter2(const double *in, double *out, int len, int masksize);

/* ---------------------------------------------------------------------------
 * Convolution
 *
 * y[n] = sum of x[i] * h[n - i] over all i where both are there, for
 * 0 <= n < xLen + hLen - 1: the full linear convolution, unscaled. It is what a
 * filter with the taps h makes of x and of zeros before and behind.
 *   x, h  xLen and hLen elements, 1 and more, not written
 *   y     xLen + hLen - 1 elements, all written; overlaps neither x nor h
 * Letters of a name: the types of x and of h. y is complex when either is.
 *
 * Lengths alone decide how it is computed, by fixed tables; with L the larger and
 * S the smaller length:
 * - directly, for S up to 7 (rvxdConv), 4 (rvxzConv, rvxzdConv) or 6 (rvxdzConv),
 *   whatever L, and for S up to about 100 while L is below a limit that falls with S;
 * - by one transform that holds the result, or block by block (overlap-save with
 *   blocks of two to eight times S), whichever the tables say is cheaper.
 *
 * A direct sum rounds each product and adds in a fixed order; its error in an output
 * is at most S 2^-53, or (S + 1) 2^-53 where both operands are complex, times the sum
 * of the magnitudes of that output's products. A NaN or an infinity reaches the
 * outputs that it belongs to. By transforms of N points the error of an output was
 * measured to be at most 0.7 log2(N) 2^-53 |x| |h|, half of that where either operand
 * is complex; |h| is the root of the sum of squares of the shorter operand, |x| that
 * of the N values of the longer one that the block is made of. So small outputs beside
 * large ones have few digits that are right, and a NaN or an infinity makes its whole
 * block NaN.
 *
 * Transforms keep their tables in the calling thread (see rvxzFft).
 *
 * Checks: x null; xLen below 1; h null; hLen below 1; y null. A mixed form with
 * xLen < hLen is the other mixed form with the operands exchanged, and what it reports
 * bears that name. Without memory for work buffers or tables: RVX_STATUS_NO_MEMORY,
 * y as far as it was written. A negative status that was stored before the call ends
 * the call when its transforms' tables are made, with y as it was; a direct sum is
 * still written. The return value is the thread's status when that is not negative,
 * RVX_STATUS_BAD_ARGUMENT after a failed check, and otherwise RVX_STATUS_BACKTRACE:
 * so clear an old status first.
 * T. G. Stockham, High-speed convolution and correlation, 1966.
 * ------------------------------------------------------------------------- */
RVX_API int rvxdConv(const double *x, int xLen, const double *h, int hLen, double *y);
RVX_API int rvxzConv(const ZCplx *x, int xLen, const ZCplx *h, int hLen, ZCplx *y);
RVX_API int rvxzdConv(const ZCplx *x, int xLen, const double *h, int hLen, ZCplx *y);
RVX_API int rvxdzConv(const double *x, int xLen, const ZCplx *h, int hLen, ZCplx *y);

/* ---------------------------------------------------------------------------
 * Correlation
 *
 * Plain sums over a range of lags, without a mean taken off. dst must not overlap the
 * sequences, which are not written.
 *
 * The lengths of src1 (of src) and of the range of lags alone decide how it is
 * computed, by fixed counts of operations:
 * - few lags directly: below 40 of rvxdCrossCorr, 23 of rvxzCrossCorr, 32 of the mixed
 *   forms, 25 of rvxdAutoCorr and 15 of rvxzAutoCorr however long the sequence, and
 *   more of them where it is short;
 * - others by transforms of N points, N being twice the smallest power of two that is
 *   not below the number of lags, of m blocks of N/2 samples. Above N = 2^28 the sums
 *   are taken.
 *
 * A direct sum rounds each product and adds in ascending order of i; its error is at
 * most n 2^-53, or (n + 1) 2^-53 where both sequences are complex, times the sum of the
 * magnitudes of its n products. A NaN or an infinity reaches the lags that it belongs
 * to. By transforms the error of a lag was measured to be at most
 * 0.6 (log2(N) + sqrt(m)) 2^-53 |src1| |src2|, |x| being the root of the sum of squares;
 * rvxdCrossCorr transforms both sequences as one, so there the square of the larger of
 * |src1| and |src2| stands for the product. Then lags at which little meets have few
 * digits that are right, a lag without overlap may not be exactly 0, and a NaN or an
 * infinity makes all lags NaN.
 *
 * The transforms build their tables in the calling thread (see rvxzFft) and work
 * whatever status is stored. Without memory for them the sums are taken, and nothing
 * is reported.
 * C. M. Rader, An improved algorithm for high speed autocorrelation with applications to
 * spectral estimation, 1970.
 * ------------------------------------------------------------------------- */

/* dst[L - loLag] = sum of conj(src1[i]) * src2[i + L] over all i that are in both
 * sequences, for loLag <= L <= hiLag; 0 for a lag at which they do not meet. The peak
 * is at the lag by which src2 is later than src1.
 *   src1          len1 samples, conjugated where complex
 *   src2          len2 samples; may be src1
 *   dst           hiLag - loLag + 1 values
 *   loLag, hiLag  of any sign
 * In the three forms with a complex operand src2[0] counts as zero when transforms are
 * taken, and only then. Transforms end by releasing the calling thread's tables of all
 * Fourier transforms, but for rvxzCrossCorr, which releases none and leaves its own.
 * Checks: src1, src2, dst null; len1, len2 below 1; loLag above hiLag. */
RVX_API void rvxdCrossCorr(const double *src1, int len1, const double *src2, int len2, double *dst,
                           int loLag, int hiLag);
RVX_API void rvxzCrossCorr(const ZCplx *src1, int len1, const ZCplx *src2, int len2, ZCplx *dst,
                           int loLag, int hiLag);
RVX_API void rvxdzCrossCorr(const double *src1, int len1, const ZCplx *src2, int len2, ZCplx *dst,
                            int loLag, int hiLag);
RVX_API void rvxzdCrossCorr(const ZCplx *src1, int len1, const double *src2, int len2, ZCplx *dst,
                            int loLag, int hiLag);

/* Normalisations: r[k], r[k] / len, r[k] / (len - k). */
enum { RVX_AUTOCORR_NORMAL = 0, RVX_AUTOCORR_BIASED = 1, RVX_AUTOCORR_UNBIASED = 2 };

/* dst[k] = r[k], normalised, with r[k] = sum of conj(src[i]) * src[i + k] over
 * 0 <= i < len - k, for 0 <= k < nLags.
 *   src       len samples
 *   dst       nLags values
 *   nLags     1 to len
 *   corrType  one of the three above
 * Direct sums of the real form are divided by len - k; all other normalisations multiply
 * by the reciprocal, by transforms together with the scale 1/N. Transforms end by
 * releasing tables of the calling thread: the real form's all of the Fourier
 * transforms, the complex form's those of bit reversal.
 * Checks: src, dst null; len below 1; nLags below 1 or above len; another corrType. */
RVX_API void rvxdAutoCorr(const double *src, int len, double *dst, int nLags, int corrType);
RVX_API void rvxzAutoCorr(const ZCplx *src, int len, ZCplx *dst, int nLags, int corrType);

/* ---------------------------------------------------------------------------
 * Two-dimensional convolution
 * ------------------------------------------------------------------------- */

/* y[r][c] = sum of x[i][k] * h[r - i][c - k] over all i and k where both are there, for
 * 0 <= r < xRows + hRows - 1 and 0 <= c < xCols + hCols - 1: the full linear
 * convolution of two matrices, unscaled. Matrices are row by row, without gaps.
 *   x, h  xRows by xCols and hRows by hCols elements, 1 and more, not written
 *   y     xRows + hRows - 1 rows of xCols + hCols - 1 elements; overlaps neither
 * Sizes alone decide how it is computed; the first that holds:
 * - by a sum, where all four are below 17, or both of x or both of h below 8;
 * - by rvxdConv, where both are one row or both are one column;
 * - where one is at least as high and as wide as the other, and at least twice as
 *   high or twice as wide: by tiles of it, with transforms of twice to four times the
 *   other's size (overlapped and added);
 * - by one transform of twice to four times the larger height and the larger width.
 *
 * The sum: y starts at +0.0, and the coefficients of the narrower operand (of h, if
 * both are as wide), column by column and from top to bottom in each, add their
 * products with the other operand. A coefficient that is zero or NaN adds nothing,
 * whatever it meets. The error of an output is at most n 2^-53 times the sum of the
 * magnitudes of its n products.
 * The transforms are Hartley transforms along rows and columns. A NaN or an infinity
 * makes all outputs NaN that were transformed together with it. The error is spread
 * evenly over them, so that small outputs beside large ones have few digits that are
 * right; it grows with the longer side n of the transforms, and for noise is below
 * 3 n 2^-53 times the root of the outputs' mean square, for n up to 65536.
 *
 * Checks: x, h or y null; xRows or xCols below 1; hRows or hCols below 1. Without
 * memory RVX_STATUS_NO_MEMORY is reported: for the work arrays of one transform
 * by rvxdConv2D, and y is not written; for its tables by owndHftConv2d, and y is
 * zeros; for tiles by owndOverlapConv2d, and y is not written. Where a transform is
 * higher than wide it asks for room for a row, to bring its columns together and to
 * bring them back: dRotate_V and dRotate_V_Back report that there is none, the
 * convolution goes on without, and y holds no convolution. Arrays take 24 bytes for
 * each element of a transform; more than 2^32 elements are taken as no memory. The
 * status is not looked at, but by rvxdConv.
 * R. N. Bracewell, The fast Hartley transform, 1984. */
RVX_API void rvxdConv2D(const double *x, int xCols, int xRows, const double *h, int hCols,
                        int hRows, double *y);

/* ---------------------------------------------------------------------------
 * Two-dimensional filter
 *
 * Images and kernels are dense arrays, row after row.
 * ------------------------------------------------------------------------- */

/* y[r][c] = sum over i, j of h[i][j] * x[r + hRows/2 - i][c + hCols/2 - j], with
 * divisions that drop fractions and zeros outside the image: the middle part of the
 * full convolution, as large as the image.
 *   x             xRows rows of xCols values
 *   h             hRows rows of hCols values, unchanged on return; it may be larger
 *                 than the image. The kernel belongs to the call while it lasts:
 *                 no two threads may filter with one array at the same time
 *   y             the size of x; must not overlap x or h
 *   xCols, xRows, hCols, hRows  at least 1
 * A count of operations, a function of the four sizes alone, chooses between two
 * ways. Small kernels, on large images those below about 8 by 8, are summed: from
 * 0.0, each product and each sum rounded once, in descending order of i and within a
 * row of j. Taps that fall outside the image are not looked at. Large kernels go by
 * transforms of blocks of twice to four times the kernel's sides. The error of a value
 * is then about 1.2e-16 times the root of the sum of squares of the kernel times that
 * of the block about it, measured; and an infinity or NaN spreads over whole blocks.
 * This way takes two blocks and tables, which stay with the thread until a real or
 * mixed correlation goes by transforms; without memory for these the values are summed
 * all the same, and nothing is reported.
 * Checks: x null; h null (with the message of a source too); y null; xCols below 1;
 * xRows below 1; hCols below 1; hRows below 1.
 *
 * T. G. Stockham, High-speed convolution and correlation, 1966 (overlapping
 * blocks). */
RVX_API void rvxdFilter2D(const double *x, int xCols, int xRows, const double *h, int hCols,
                          int hRows, double *y);

/* ---------------------------------------------------------------------------
 * Tone
 *
 * x[n] = mag * cos(2 pi freq n + phase) from n = 0 on, in the complex form with
 * mag * sin(2 pi freq n + phase) as the imaginary part: one at a time or in blocks,
 * which may be mixed and cut anywhere, to the bit. A state is a record of the caller's
 * and holds no memory.
 * ------------------------------------------------------------------------- */

typedef struct rvxdToneState {
    double twoCos; /* 2 cos(w), w = 2 pi freq */
    double y1;     /* the sample before the next one */
    double y2;     /* the sample before that */
    double mag;    /* as given to the initialiser, and not read again: */
    double freq;   /* writing them has no effect */
    double phase;
    char marker[4]; /* "RVT" once initialised */
} rvxdToneState;

typedef struct rvxzToneState {
    double twoCos;
    ZCplx y1;
    ZCplx y2;
    double mag;
    double freq;
    double phase;
    char marker[4];
} rvxzToneState;

/* Fill a record.
 *   freq   cycles per sample, 0 <= freq < 0.5
 *   phase  in radians, 0 <= phase < 2 pi
 *   mag    0 or more, or NaN
 * y1 and y2 are mag times the cosine (and sine) of phase - w and (phase - w) - w, angles
 * in double, cosines and sines rounded once.
 * Checks: mag negative; freq, then phase, out of range or NaN; state null. The record
 * stays as it was then. */
RVX_API void rvxdToneInit(double freq, double phase, double mag, rvxdToneState *state);
RVX_API void rvxzToneInit(double freq, double phase, double mag, rvxzToneState *state);

/* The next sample, x[n] = twoCos * x[n-1] - x[n-2], rounded twice, each part by itself.
 * Roundings add up and are never mended: the error of x[n] is, as measured over ten
 * million samples, below 2.3e-16 mag (n + 2) min(n + 2, 1 / sin w).
 * Checks: state null; no "RVT" in the record. The result is then zero. */
RVX_API double rvxdTone(rvxdToneState *state);
RVX_API ZCplx rvxzTone(rvxzToneState *state);

/* The next sampsLen samples, at least one.
 * Checks: state null; samps null; sampsLen below 1; no "RVT" in the record. Record and
 * samps stay as they were then. */
RVX_API void rvxdbTone(rvxdToneState *state, double *samps, int sampsLen);
RVX_API void rvxzbTone(rvxzToneState *state, ZCplx *samps, int sampsLen);

/* ---------------------------------------------------------------------------
 * Triangle
 *
 * A wave between -mag and +mag made of two slopes. As a function of its phase p, from
 * 0 to 2 pi: +mag at 0, falling to -mag at pi + asym, rising to +mag at 2 pi. Sample n
 * is the wave at 2 pi freq n + phase. The imaginary part of the complex form is a
 * triangle of its own, ahead by (2 pi + (pi + asym)) / 2: by three quarters of a period
 * where asym is 0. A state is a record of the caller's and holds no memory; one that
 * was not initialised is not noticed.
 * ------------------------------------------------------------------------- */

typedef struct rvxdTrnglState {
    double mag;        /* as given to the initialiser */
    double step;       /* stepDown or stepUp, whichever is taken now */
    double stepDown;   /* per sample, while falling */
    double stepUp;     /* per sample, while rising */
    double reflectTop; /* slopes of the fold at +mag and at -mag */
    double reflectBottom;
    double spanUp; /* what a step beyond the whole other slope is taken back by */
    double spanDown;
    double offsetTop; /* folds about 0 instead of the turning point */
    double offsetBottom;
    double value; /* the next sample */
} rvxdTrnglState;

typedef struct rvxzTrnglState {
    double mag;
    double stepRe;
    double stepIm;
    double stepDown;
    double stepUp;
    double reflectTop;
    double reflectBottom;
    double spanUp;
    double spanDown;
    double offsetTop;
    double offsetBottom;
    double valueRe;
    double valueIm;
} rvxzTrnglState;

/* Fill a record.
 *   freq   periods per sample, 0 <= freq < 0.5
 *   phase  in radians, 0 <= phase < 2 pi
 *   mag    0 or more, up to 1.4e307; or NaN
 *   asym   -pi < asym < pi, the falling slope's part of the period above one half
 * Checks: mag negative; freq, then phase, then asym, out of range or NaN; state null.
 * The record stays as it was then. */
RVX_API void rvxdTrnglInit(double freq, double phase, double mag, double asym,
                           rvxdTrnglState *state);
RVX_API void rvxzTrnglInit(double freq, double phase, double mag, double asym,
                           rvxzTrnglState *state);

/* The next sample. The value that follows it is value + step; beyond a turning point, at
 * +mag or at -mag, that is folded back and the step becomes the other slope's. Where the
 * fold would leave the range at its other end, the step having jumped over a whole slope,
 * the value goes back by a span and the step stays. Each sum rounds, so that samples may
 * leave the range by a few units in the last place, and the wave drifts: the error of
 * sample n is, as measured over a hundred thousand samples, below
 * 2.5e-16 mag (n + 4) pi / (pi - |asym|).
 * Check: state null. The result is then zero. */
RVX_API double rvxdTrngl(rvxdTrnglState *state);
RVX_API ZCplx rvxzTrngl(rvxzTrnglState *state);

/* The next sampsLen samples, at least one. A block is one walk wherever it is cut, but
 * it folds by reflect * value + offset and looks for the turning point ahead alone: last
 * bits may differ from those of single samples.
 * Checks: state null; samps null; sampsLen below 1. Record and samps stay as they were
 * then. */
RVX_API void rvxdbTrngl(rvxdTrnglState *state, double *samps, int sampsLen);
RVX_API void rvxzbTrngl(rvxzTrnglState *state, ZCplx *samps, int sampsLen);

/* ---------------------------------------------------------------------------
 * Noise
 *
 * Uniform and Gaussian noise from a record that the caller owns. An initialiser
 * fills the record from a seed; each call goes on where the last one ended. A seed
 * gives the same sequence, bit for bit, on every machine and in whatever blocks it is
 * taken: a block of n is n blocks of one, and a complex block of n, real part first, is
 * a real block of 2 n. The initialisers and blocks of a kind share the record, so real
 * and complex blocks may take turns. Records need no release and may be copied: a copy
 * repeats what follows.
 *
 * Under both lies one generator of words of 32 bits, modulo 2^32 and read with a sign:
 *   t = x2 - x3 - carry; carry = 1 and t -= 18 if t <= 0, carry = 0 if not
 *   x3 = x2, x2 = x1, x1 = t; seedCong = 69069 seedCong + 1013904243
 * and the word is t + seedCong. It is quick and well spread, and no secret: do not use
 * it where somebody gains by a guess.
 *
 * A seed is a number whose fraction is dropped and which counts modulo 2^32: magnitudes
 * below 1 are seed 0, and -1.5 is 2^32 - 1. From magnitudes of 2^32 on leading bits of
 * the significand are taken; infinities and NaNs give seeds too.
 *
 * Seeds that are near each other begin nearly alike and have parted after some 80
 * samples: where that matters, draw a hundred and drop them.
 *
 * sampsLen is unsigned: a negative length asks for some billions of samples.
 *
 * G. Marsaglia and A. Zaman, A new class of random number generators, 1991;
 * G. Marsaglia and T. A. Bray, A convenient method for generating normal variables,
 * 1964.
 * ------------------------------------------------------------------------- */

/* Fields are for reading, and for storing where a sequence stands. */
typedef struct rvxRandUniState {
    double mean;       /* low + 0.5 (high - low) */
    double scale;      /* (high - low) 2.328306436539e-10, near 2^-32 */
    unsigned seedCong; /* the congruential generator */
    unsigned carry;    /* 0 or 1 */
    unsigned x1;       /* the last value of the generator with the carry */
    unsigned x2;       /* the one before */
    unsigned x3;       /* the oldest */
    unsigned seedInit; /* where the seed's own generator stopped */
} rvxRandUniState;

typedef struct rvxRandGausState {
    double mean;
    double stDev;
    double spare;       /* the second value of the last pair */
    unsigned haveSpare; /* not 0 while spare is still to come */
    unsigned seedCong;  /* these as above */
    unsigned carry;
    unsigned x1;
    unsigned x2;
    unsigned x3;
    unsigned seedInit;
} rvxRandGausState;

/* Begin the uniform noise of a seed, from low to high.
 *   seed       any double
 *   low, high  not checked: with high below low the range is the same; equal, they
 *              give that value alone
 *   state      written
 * Checks: state null. */
RVX_API void rvxdRandUniInit(double seed, double low, double high, rvxRandUniState *state);
RVX_API void rvxzRandUniInit(double seed, double low, double high, rvxRandUniState *state);

/* samps[i] = word scale + mean for 0 <= i < sampsLen: one word a sample, rounded after
 * the product and after the sum; a complex sample takes two.
 *   sampsLen  at least 1
 * Values are multiples of scale, about 2^-32 of the range, from mean. The least is below
 * low by 6.5e-14 of the range, the most is below high by 2^-32 of it.
 * Checks: state null; samps null; sampsLen 0. */
RVX_API void rvxdbRandUni(rvxRandUniState *state, double *samps, unsigned sampsLen);
RVX_API void rvxzbRandUni(rvxRandUniState *state, ZCplx *samps, unsigned sampsLen);

/* Begin the Gaussian noise of a seed.
 *   seed   any double; the sequence is not that of uniform noise with the same seed
 *   mean   any
 *   stDev  standard deviation, not checked: with 0 all samples are mean
 *   state  written, but for spare
 * Checks: state null. */
RVX_API void rvxdRandGausInit(double seed, double mean, double stDev, rvxRandGausState *state);
RVX_API void rvxzRandGausInit(double seed, double mean, double stDev, rvxRandGausState *state);

/* samps[i] = normally distributed, by the polar method. Two words are u and v, each times
 * 4.656612873077e-10; pairs are dropped until w = u u + v v is below 1 and not 0. With
 * f = sqrt(-(2 ln w) / w), the first sample is stDev f v + mean and the second, which
 * waits in the record if nobody has asked for it yet, stDev f u + mean. Every operation
 * is rounded once but the logarithm, which is within 0.507 units in the last place.
 *   sampsLen  at least 1
 * No sample is further from mean than 9.3 stDev.
 * Checks: state null; samps null; sampsLen 0. */
RVX_API void rvxdbRandGaus(rvxRandGausState *state, double *samps, unsigned sampsLen);
RVX_API void rvxzbRandGaus(rvxRandGausState *state, ZCplx *samps, unsigned sampsLen);

/* ---------------------------------------------------------------------------
 * Windows
 *
 * vec[k] = vec[k] * w(k) for 0 <= k < n, in place, with symmetric weights
 * w(n-1-k) = w(k); the middle element of an odd n has weight 1 and is not
 * touched. In the formulas x = 2 pi k / (n - 1). A block of ones becomes the
 * window itself; the first n weights of length n + 1 are the periodic window of
 * length n. The complex forms scale both parts. For n = 3 the weights of the ends
 * that are 0 are not multiplied: the two elements are set to 0, infinities and NaNs
 * included.
 *
 * The weights come from a recurrence with one cosine per call (Goertzel 1958).
 * Against the formulas their absolute error grows with n, and is for a Hann
 * window at most (n n / 86 + 2 n) 2^-53: 5e-14 at n = 128, 2.3e-11 at n = 4096,
 * 1.3e-6 at a million. That of a Bartlett window is at most (n / 6 + 1) 2^-53.
 * Checks: vec null; n below 3.
 * ------------------------------------------------------------------------- */

/* Bartlett: w(k) = 2 k / (n - 1) up to the middle, a triangle from 0. */
RVX_API void rvxdWinBartlett(double *vec, int n);
RVX_API void rvxzWinBartlett(ZCplx *vec, int n);

/* Hann: w(k) = 0.5 - 0.5 cos x. */
RVX_API void rvxdWinHann(double *vec, int n);
RVX_API void rvxzWinHann(ZCplx *vec, int n);

/* Hamming: w(k) = 0.54 - 0.46 cos x; the ends are exactly 0.08, for n = 3 too. */
RVX_API void rvxdWinHamming(double *vec, int n);
RVX_API void rvxzWinHamming(ZCplx *vec, int n);

/* Blackman: w(k) = (alpha + 1) / 2 - 0.5 cos x - (alpha / 2) cos 2x. The usual
 * Blackman window has alpha = -0.16; alpha = 0 gives the Hann window up to
 * rounding. alpha is not checked. */
RVX_API void rvxdWinBlackman(double *vec, int n, double alpha);
RVX_API void rvxzWinBlackman(ZCplx *vec, int n, double alpha);

/* Blackman with alpha = -(0.5 / cos(pi / (n - 1)))^2, for n = 3 -0.25: the
 * second weight from either end is 0 too. For long windows alpha is near -1/4,
 * the weights are near sin(x/2)^4, and sidelobes fall by 30 dB an octave.
 * A failed check is reported under the name of the Blackman function. */
RVX_API void rvxdWinBlackmanOpt(double *vec, int n);
RVX_API void rvxzWinBlackmanOpt(ZCplx *vec, int n);

#ifdef __cplusplus
}
#endif

#endif
