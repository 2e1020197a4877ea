/** @file
 *  Autocorrelation.
 *
 *  @defgroup autocorr Autocorrelation
 *  @{
 */
#ifndef ZIMSR_AUTOCORR_H
#define ZIMSR_AUTOCORR_H

#include <zimsr/types.h>

ZIMSR_BEGIN_DECLS

/** Autocorrelation sequence of a real signal, not normalised:
 *
 *      dst[k] = sum for i = 0 .. srcLen - k - 1 of src[i] * src[i + k],    k = 0 .. dstLen - 1
 *
 *  so that dst[k] is 0 from lag srcLen on. Up to 855 lags are summed directly, in `Zim32f`, and nothing is allocated; from
 *  min(srcLen, dstLen) = 856 on the sequence is the inverse transform of the power spectrum of the zero-padded signal.
 *
 *  @return #zimStsNullPointer, then #zimStsBadSize when srcLen or dstLen is below 1. From 856 lags on also
 *          #zimStsAllocFailed, and #zimStsBadFftOrder when srcLen exceeds 2^29; dst is then incomplete.
 */
ZIMSR_API ZimStatus zimsAutoCorr_32f(const Zim32f* src, int srcLen, Zim32f* dst, int dstLen);

ZIMSR_END_DECLS

/** @} */
#endif
