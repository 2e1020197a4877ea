/** @file
 *  Log-likelihood of 16-bit features under diagonal Gaussians.
 *
 *  @defgroup loggauss_fixed Log-Gaussian scoring in fixed point
 *
 *  The score of 16-bit features under a 16-bit model, with the result in integers or in single precision:
 *
 *  \f[ score = gconst - \frac12 2^{-scaleFactor} \sum_j (x_j - mean_j)^2 invVar_j \f]
 *
 *  Features and means share one fixed-point format, the inverse variances have one of their own, and scaleFactor
 *  brings the sum to the format of the score; the library does not look at these formats. In the notation of Q
 *  formats, features in Qf and inverse variances in Qv give a score in Qs for scaleFactor = 2f + v - s. @ref loggauss
 *  has the same functions in floating point.
 *
 *  | in a name      | means                                                                                          |
 *  |----------------|------------------------------------------------------------------------------------------------|
 *  | `Single`       | one vector against one Gaussian; otherwise a block of frames, one score a frame                |
 *  | `16s32s`, `Sfs`| score and gconst are `Zim32s`                                                                  |
 *  | `16s32f`       | score and gconst are `Zim32f`; without `Scaled`, scaleFactor is 0                              |
 *  | `IdVar`        | all variances are 1                                                                            |
 *  | `DirectVar`    | var holds the variances; the terms are divided by them                                         |
 *  | `Low`          | sums in 32-bit integers that wrap around, for a model whose scales leave room                  |
 *
 *  **Differences** x - mean saturate to 16 bits in every full group of eight elements. In the elements behind the
 *  last full group, where it shows only beyond the 16-bit range, they
 *  - are exact in the plain forms, and in `Low` forms with a negative scaleFactor;
 *  - saturate in `zimsLogGaussSingle_IdVarScaled_16s32f` and in `Low` forms with another scaleFactor;
 *  - saturate in groups of four and of two in `IdVarLow` forms, where a single last element is exact. (The frame that
 *    has no partner in a block of odd height is exact in all of them; `zimsLogGaussSingle_IdVarLow_16s32s_Sfs` with a
 *    scaleFactor of 0 or more squares the low 16 bits of the single last difference.)
 *
 *  The square of an exact difference, and the sum of two squares of neighbours, is a signed 32-bit number that wraps.
 *
 *  **Plain forms** sum in `Zim32f`: each square becomes a float and is multiplied by the inverse variance as a float.
 *  Without variances, the squares of two neighbours in a group of eight become one float in the forms on a block, and
 *  all squares are summed exactly, in 64 bits, in `zimsLogGaussSingle_IdVarScaled_16s32f`. A `Zim32s` score of a
 *  single vector is rounded to nearest, ties to even, and saturates; that of a block is truncated toward zero, and is
 *  -2147483648 when it is out of range. A `Zim32s` gconst passes through `Zim32f`, so that beyond 2^24 it loses its low
 *  bits.
 *
 *  **Low forms** with a scaleFactor of 0 or more split the half of a square into high * 2^15 + low, multiply both by
 *  the inverse variance, sum the products of high and of low apart in four 32-bit lanes each (neighbours in one
 *  lane), shift both sums by the scale and add them. All sums wrap. The shift drops low bits, so that its place shows
 *  in a score's last bits: once a frame for frames in pairs; once for all groups of eight and once for each of the
 *  smaller groups behind them in `Single` forms; once for each group of eight and each element behind them for the
 *  last frame of a block of odd height. A negative scaleFactor makes the sum that of the plain forms, truncated for
 *  `Zim32s`. `IdVarLow` forms on a block shift each sum of two neighbouring squares by itself, for every scaleFactor;
 *  `IdVarLow` forms with a `Zim32f` score sum those as floats.
 *
 *  Where a form shifts integers, a shift by 32 or more gives 0, or to the right the sign. Other scales are exact
 *  powers of two; that of a sum of floats is infinite above 2^127, where a sum of 0 stays 0, and 0 below 2^-149.
 *
 *  **Statuses.** On a block, #zimStsBadStride (form `D2`) when width exceeds step comes first. Then
 *  #zimStsNullPointer when a pointer is null, then #zimStsBadSize when len, width or height is below 1. A refused
 *  call writes nothing. The `DirectVar` forms work on a copy of the vectors: #zimStsNoMemory, with nothing written,
 *  when there is none, and #zimStsDivByZeroWarn when a variance is 0, whose reciprocal is then infinite.
 *
 *  src, mat and rows hold the features, mean and invVar or var hold len (width) elements of the model, result holds
 *  height scores, *dst is one. No array written may overlap one that is read.
 *  @{
 */
#ifndef ZIMSR_LOGGAUSS_FIXED_H
#define ZIMSR_LOGGAUSS_FIXED_H

#include <zimsr/types.h>

ZIMSR_BEGIN_DECLS

/** @name One vector
 *  @{
 */
ZIMSR_API ZimStatus zimsLogGaussSingle_16s32s_Sfs(const Zim16s* src, const Zim16s* mean, const Zim16s* invVar, int len,
                                                  Zim32s* dst, Zim32s gconst, int scaleFactor);
ZIMSR_API ZimStatus zimsLogGaussSingle_Scaled_16s32f(const Zim16s* src, const Zim16s* mean, const Zim16s* invVar,
                                                     int len, Zim32f* dst, Zim32f gconst, int scaleFactor);
ZIMSR_API ZimStatus zimsLogGaussSingle_16s32f(const Zim16s* src, const Zim16s* mean, const Zim16s* invVar, int len,
                                              Zim32f* dst, Zim32f gconst);
ZIMSR_API ZimStatus zimsLogGaussSingle_IdVar_16s32s_Sfs(const Zim16s* src, const Zim16s* mean, int len, Zim32s* dst,
                                                        Zim32s gconst, int scaleFactor);
ZIMSR_API ZimStatus zimsLogGaussSingle_IdVarScaled_16s32f(const Zim16s* src, const Zim16s* mean, int len, Zim32f* dst,
                                                          Zim32f gconst, int scaleFactor);
ZIMSR_API ZimStatus zimsLogGaussSingle_IdVar_16s32f(const Zim16s* src, const Zim16s* mean, int len, Zim32f* dst,
                                                    Zim32f gconst);
ZIMSR_API ZimStatus zimsLogGaussSingle_Low_16s32s_Sfs(const Zim16s* src, const Zim16s* mean, const Zim16s* invVar,
                                                      int len, Zim32s* dst, Zim32s gconst, int scaleFactor);
ZIMSR_API ZimStatus zimsLogGaussSingle_LowScaled_16s32f(const Zim16s* src, const Zim16s* mean, const Zim16s* invVar,
                                                        int len, Zim32f* dst, Zim32f gconst, int scaleFactor);
ZIMSR_API ZimStatus zimsLogGaussSingle_Low_16s32f(const Zim16s* src, const Zim16s* mean, const Zim16s* invVar, int len,
                                                  Zim32f* dst, Zim32f gconst);
ZIMSR_API ZimStatus zimsLogGaussSingle_IdVarLow_16s32s_Sfs(const Zim16s* src, const Zim16s* mean, int len, Zim32s* dst,
                                                           Zim32s gconst, int scaleFactor);
ZIMSR_API ZimStatus zimsLogGaussSingle_IdVarLowScaled_16s32f(const Zim16s* src, const Zim16s* mean, int len,
                                                             Zim32f* dst, Zim32f gconst, int scaleFactor);
ZIMSR_API ZimStatus zimsLogGaussSingle_IdVarLow_16s32f(const Zim16s* src, const Zim16s* mean, int len, Zim32f* dst,
                                                       Zim32f gconst);
/** @} */

/** @name One vector, with the variances given
 *  The reciprocals of the variances are floats. `zimsLogGaussSingle_DirectVar_16s32s_Sfs` forms the differences in
 *  floats too, which are exact; its sum is scaled, rounded to nearest and saturated, then subtracted from gconst, and
 *  the difference saturates.
 *  @{
 */
ZIMSR_API ZimStatus zimsLogGaussSingle_DirectVar_16s32s_Sfs(const Zim16s* src, const Zim16s* mean, const Zim16s* var,
                                                            int len, Zim32s* dst, Zim32s gconst, int scaleFactor);
ZIMSR_API ZimStatus zimsLogGaussSingle_DirectVarScaled_16s32f(const Zim16s* src, const Zim16s* mean, const Zim16s* var,
                                                              int len, Zim32f* dst, Zim32f gconst, int scaleFactor);
ZIMSR_API ZimStatus zimsLogGaussSingle_DirectVar_16s32f(const Zim16s* src, const Zim16s* mean, const Zim16s* var,
                                                        int len, Zim32f* dst, Zim32f gconst);
/** @} */

/** @name A block of frames
 *  @{
 */
ZIMSR_API ZimStatus zimsLogGauss_16s32s_D2Sfs(const Zim16s* mat, int step, const Zim16s* mean, const Zim16s* invVar,
                                              int width, Zim32s* result, int height, Zim32s gconst, int scaleFactor);
ZIMSR_API ZimStatus zimsLogGauss_Scaled_16s32f_D2(const Zim16s* mat, int step, const Zim16s* mean, const Zim16s* invVar,
                                                  int width, Zim32f* result, int height, Zim32f gconst,
                                                  int scaleFactor);
ZIMSR_API ZimStatus zimsLogGauss_16s32f_D2(const Zim16s* mat, int step, const Zim16s* mean, const Zim16s* invVar,
                                           int width, Zim32f* result, int height, Zim32f gconst);
ZIMSR_API ZimStatus zimsLogGauss_16s32s_D2LSfs(const Zim16s* const* rows, const Zim16s* mean, const Zim16s* invVar,
                                               int width, Zim32s* result, int height, Zim32s gconst, int scaleFactor);
ZIMSR_API ZimStatus zimsLogGauss_Scaled_16s32f_D2L(const Zim16s* const* rows, const Zim16s* mean, const Zim16s* invVar,
                                                   int width, Zim32f* result, int height, Zim32f gconst,
                                                   int scaleFactor);
ZIMSR_API ZimStatus zimsLogGauss_16s32f_D2L(const Zim16s* const* rows, const Zim16s* mean, const Zim16s* invVar,
                                            int width, Zim32f* result, int height, Zim32f gconst);
/** @} */

/** @name A block of frames, with identity variance
 *  @{
 */
ZIMSR_API ZimStatus zimsLogGauss_IdVar_16s32s_D2Sfs(const Zim16s* mat, int step, const Zim16s* mean, int width,
                                                    Zim32s* result, int height, Zim32s gconst, int scaleFactor);
ZIMSR_API ZimStatus zimsLogGauss_IdVarScaled_16s32f_D2(const Zim16s* mat, int step, const Zim16s* mean, int width,
                                                       Zim32f* result, int height, Zim32f gconst, int scaleFactor);
ZIMSR_API ZimStatus zimsLogGauss_IdVar_16s32f_D2(const Zim16s* mat, int step, const Zim16s* mean, int width,
                                                 Zim32f* result, int height, Zim32f gconst);
ZIMSR_API ZimStatus zimsLogGauss_IdVar_16s32s_D2LSfs(const Zim16s* const* rows, const Zim16s* mean, int width,
                                                     Zim32s* result, int height, Zim32s gconst, int scaleFactor);
ZIMSR_API ZimStatus zimsLogGauss_IdVarScaled_16s32f_D2L(const Zim16s* const* rows, const Zim16s* mean, int width,
                                                        Zim32f* result, int height, Zim32f gconst, int scaleFactor);
ZIMSR_API ZimStatus zimsLogGauss_IdVar_16s32f_D2L(const Zim16s* const* rows, const Zim16s* mean, int width,
                                                  Zim32f* result, int height, Zim32f gconst);
/** @} */

/** @name A block of frames, in integers
 *  @{
 */
ZIMSR_API ZimStatus zimsLogGauss_Low_16s32s_D2Sfs(const Zim16s* mat, int step, const Zim16s* mean, const Zim16s* invVar,
                                                  int width, Zim32s* result, int height, Zim32s gconst,
                                                  int scaleFactor);
ZIMSR_API ZimStatus zimsLogGauss_LowScaled_16s32f_D2(const Zim16s* mat, int step, const Zim16s* mean,
                                                     const Zim16s* invVar, int width, Zim32f* result, int height,
                                                     Zim32f gconst, int scaleFactor);
ZIMSR_API ZimStatus zimsLogGauss_Low_16s32f_D2(const Zim16s* mat, int step, const Zim16s* mean, const Zim16s* invVar,
                                               int width, Zim32f* result, int height, Zim32f gconst);
ZIMSR_API ZimStatus zimsLogGauss_Low_16s32s_D2LSfs(const Zim16s* const* rows, const Zim16s* mean, const Zim16s* invVar,
                                                   int width, Zim32s* result, int height, Zim32s gconst,
                                                   int scaleFactor);
ZIMSR_API ZimStatus zimsLogGauss_LowScaled_16s32f_D2L(const Zim16s* const* rows, const Zim16s* mean,
                                                      const Zim16s* invVar, int width, Zim32f* result, int height,
                                                      Zim32f gconst, int scaleFactor);
ZIMSR_API ZimStatus zimsLogGauss_Low_16s32f_D2L(const Zim16s* const* rows, const Zim16s* mean, const Zim16s* invVar,
                                                int width, Zim32f* result, int height, Zim32f gconst);
/** @} */

/** @name A block of frames, in integers with identity variance
 *  @{
 */
ZIMSR_API ZimStatus zimsLogGauss_IdVarLow_16s32s_D2Sfs(const Zim16s* mat, int step, const Zim16s* mean, int width,
                                                       Zim32s* result, int height, Zim32s gconst, int scaleFactor);
ZIMSR_API ZimStatus zimsLogGauss_IdVarLowScaled_16s32f_D2(const Zim16s* mat, int step, const Zim16s* mean, int width,
                                                          Zim32f* result, int height, Zim32f gconst, int scaleFactor);
ZIMSR_API ZimStatus zimsLogGauss_IdVarLow_16s32f_D2(const Zim16s* mat, int step, const Zim16s* mean, int width,
                                                    Zim32f* result, int height, Zim32f gconst);
ZIMSR_API ZimStatus zimsLogGauss_IdVarLow_16s32s_D2LSfs(const Zim16s* const* rows, const Zim16s* mean, int width,
                                                        Zim32s* result, int height, Zim32s gconst, int scaleFactor);
ZIMSR_API ZimStatus zimsLogGauss_IdVarLowScaled_16s32f_D2L(const Zim16s* const* rows, const Zim16s* mean, int width,
                                                           Zim32f* result, int height, Zim32f gconst, int scaleFactor);
ZIMSR_API ZimStatus zimsLogGauss_IdVarLow_16s32f_D2L(const Zim16s* const* rows, const Zim16s* mean, int width,
                                                     Zim32f* result, int height, Zim32f gconst);
/** @} */

ZIMSR_END_DECLS

/** @} */
#endif
