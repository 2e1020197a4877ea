/** @file
 *  Real discrete Fourier transform of power-of-two length.
 *
 *  @defgroup fft Real FFT
 *
 *  With N = 2^order, for k = 0 .. N - 1 and n = 0 .. N - 1:
 *
 *      forward   X[k] = f * sum over n of x[n] * exp(-2*pi*i*n*k/N)
 *      inverse   x[n] = f * sum over k of X[k] * exp(+2*pi*i*n*k/N)
 *
 *  The factor f of each direction follows from the plan's normalisation flag:
 *
 *  | flag | forward   | inverse   |
 *  |------|-----------|-----------|
 *  | 1    | 1/N       | 1         |
 *  | 2    | 1         | 1/N       |
 *  | 4    | 1/sqrt(N) | 1/sqrt(N) |
 *  | 8    | 1         | 1         |
 *
 *  **Spectrum formats.** The spectrum of a real signal is conjugate symmetric, so bins 0 to N/2 are stored. Bins 0 and
 *  N/2 are real.
 *
 *  | format | elements            | layout                                                                           |
 *  |--------|---------------------|----------------------------------------------------------------------------------|
 *  | CCS    | N + 2 (2 for N = 1) | Re X[0], 0, Re X[1], Im X[1], ..., Re X[N/2-1], Im X[N/2-1], Re X[N/2], 0          |
 *  | Pack   | N                   | Re X[0], Re X[1], Im X[1], ..., Re X[N/2-1], Im X[N/2-1], Re X[N/2]                |
 *
 *  CCS is an array of N/2 + 1 complex numbers, two elements longer than the signal. For N = 1 CCS is x[0], 0 and Pack is
 *  x[0].
 *
 *  **Plans.** A plan carries every table of its order and is only read by transforms, so that any number of threads may
 *  share one, each with arrays and a buffer of its own.
 *
 *  **Buffers.** A transform of order 4 and above works in a buffer of the size that #zimsFFTGetBufSize_R_32f tells, at any
 *  alignment, and allocates nothing. With a null buffer it allocates one for the call (#zimStsAllocFailed when there is no
 *  memory, before anything is written). Below order 4 the buffer is ignored.
 *
 *  src and dst of a transform in floating point may be the same array; neither needs any alignment, and no result depends
 *  on it. NaN and infinity propagate as the arithmetic has it, without a status.
 *
 *  The transform of length N is one complex transform of length N/2 with a recombination of bins k and N/2 - k; the
 *  root-mean-square error grows as sqrt(log N).
 *
 *  References: J. W. Cooley, P. A. W. Lewis, P. D. Welch, "The fast Fourier transform algorithm: programming
 *  considerations in the calculation of sine, cosine and Laplace transforms", Journal of Sound and Vibration 12 (1970);
 *  D. H. Bailey, "FFTs in external or hierarchical memory", Journal of Supercomputing 4 (1990).
 *  @{
 */
#ifndef ZIMSR_FFT_H
#define ZIMSR_FFT_H

#include <zimsr/types.h>

ZIMSR_BEGIN_DECLS

/** Plan of a transform in floating point. */
typedef struct ZimsFFTPlan_R_32f ZimsFFTPlan_R_32f;

/** Plan of a transform of 16-bit samples to a 32-bit spectrum. It owns a floating-point plan, which does the work. */
typedef struct ZimsFFTPlan_R_16s32s ZimsFFTPlan_R_16s32s;

/** @name Plans
 *  `InitAlloc` builds a plan for transforms of length 2^order, order 0 to 30, with the normalisation flag 1, 2, 4 or 8, and
 *  writes its address to *plan. hint has no effect. The plan is released by `Free`.
 *
 *  @return of `InitAlloc`: #zimStsNullPointer when plan is null, #zimStsBadFftOrder, #zimStsBadFftFlag, #zimStsAllocFailed
 *          (also when a size does not fit an `int`); in each case *plan is not written and nothing stays allocated.
 *          Of `Free`: #zimStsNullPointer when plan is null, #zimStsBadContext when it is no live plan of this type.
 *  @{
 */
ZIMSR_API ZimStatus zimsFFTInitAlloc_R_32f(ZimsFFTPlan_R_32f** plan, int order, int flag, int hint);
ZIMSR_API ZimStatus zimsFFTInitAlloc_R_16s32s(ZimsFFTPlan_R_16s32s** plan, int order, int flag, int hint);
ZIMSR_API ZimStatus zimsFFTFree_R_32f(ZimsFFTPlan_R_32f* plan);
ZIMSR_API ZimStatus zimsFFTFree_R_16s32s(ZimsFFTPlan_R_16s32s* plan);
/** @} */

/** Writes the bytes of buffer that one transform of the plan needs to *size: 0 below order 4, and the same at every
 *  instruction level and pointer width.
 *
 *  @return #zimStsNullPointer when plan is null, #zimStsBadContext when it is no live plan of this type,
 *          #zimStsNullPointer when size is null.
 */
ZIMSR_API ZimStatus zimsFFTGetBufSize_R_32f(const ZimsFFTPlan_R_32f* plan, int* size);

/** @name Transforms
 *  `Fwd_RToCCS` and `Fwd_RToPack` transform the signal src[0 .. N-1] to its spectrum in dst, `Inv_PackToR` a spectrum in
 *  Pack form to the signal.
 *
 *  @return #zimStsNullPointer when plan is null, #zimStsBadContext when it is no live plan of this type,
 *          #zimStsNullPointer when src or dst is null, #zimStsAllocFailed.
 *  @{
 */
ZIMSR_API ZimStatus zimsFFTFwd_RToCCS_32f(const Zim32f* src, Zim32f* dst, const ZimsFFTPlan_R_32f* plan, Zim8u* buffer);
ZIMSR_API ZimStatus zimsFFTFwd_RToPack_32f(const Zim32f* src, Zim32f* dst, const ZimsFFTPlan_R_32f* plan, Zim8u* buffer);
ZIMSR_API ZimStatus zimsFFTInv_PackToR_32f(const Zim32f* src, Zim32f* dst, const ZimsFFTPlan_R_32f* plan, Zim8u* buffer);
/** The samples are transformed in floating point; the spectrum is scaled by 2^-scaleFactor, rounded half to even and
 *  saturated. A caller's buffer holds 4*N + 16 bytes more than that of the floating-point plan of the same order: in all
 *  8*N + 32 bytes for order 4 to 17. */
ZIMSR_API ZimStatus zimsFFTFwd_RToCCS_16s32s_Sfs(const Zim16s* src, Zim32s* dst, const ZimsFFTPlan_R_16s32s* plan,
                                                 int scaleFactor, Zim8u* buffer);
/** @} */

/** Spectrum product in Pack form, srcDst[k] = src[k] * conj(srcDst[k]) for each bin k; of two signals' spectra it makes
 *  the spectrum of their cross-correlation. The first element, and for even len the last, is a real bin; the others are
 *  pairs of real and imaginary part. src and srcDst may be the same array.
 *
 *  @return #zimStsNullPointer, then #zimStsBadSize when len is below 1.
 */
ZIMSR_API ZimStatus zimsMulPackConj_32f_I(const Zim32f* src, Zim32f* srcDst, int len);

ZIMSR_END_DECLS

/** @} */
#endif
