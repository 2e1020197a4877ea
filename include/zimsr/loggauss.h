/** @file
 *  Log-likelihood under a diagonal Gaussian, in floating point.
 *
 *  @defgroup loggauss Log-Gaussian scores
 *
 *  The score of a feature vector x under a Gaussian with diagonal covariance:
 *
 *      no qualifier:  gconst - 0.5 * sum over j of (x[j] - mean[j])^2 * invVar[j]
 *      IdVar:         gconst - 0.5 * sum over j of (x[j] - mean[j])^2
 *      DirectVar:     gconst - 0.5 * sum over j of (x[j] - mean[j])^2 / var[j]
 *
 *  - mean, invVar (1 / variance) and var are vectors as long as x.
 *  - gconst is the score at x = mean, in the log domain: minus half of n * ln(2 pi) plus the log-determinant of the
 *    covariance, and whatever else the caller adds, such as the log-weight of a mixture.
 *  - `Single`: one vector, one score. No `Single`: a block of height frames of width features, one score per frame.
 *
 *  **Arithmetic.** `_32f` and `_64f` compute in their type. `_32f64f` widens every operand before the subtraction and
 *  computes in `Zim64f`, result and gconst included. Every operation is rounded by itself: the difference, its square,
 * the product or quotient, the sum. `_32f` forms 0.5 * (2 * gconst - sum), `_64f` and `_32f64f` form gconst - 0.5 *
 * sum; exceptions stand with the functions. A vector is summed in one order in all functions of a type: the score of a
 * frame does not depend on its place in the block, on the matrix form or on alignment, to the bit.
 *
 *  Features and parameters are not tested: negative and non-finite values pass through the arithmetic. Elements between
 *  the rows of a matrix are not looked at.
 *
 *  The result may not overlap the operands.
 *
 *  @return #zimStsOk, or the first of
 *          - `D2`: #zimStsBadStride when step is below width; #zimStsNullPointer when a pointer is null; #zimStsBadSize
 *            when width or height is below 1;
 *          - `D2L` and `Single`: #zimStsNullPointer, then #zimStsBadSize.
 *
 *          A refused call has written nothing. The `DirectVar` forms have statuses of their own.
 *  @{
 */
#ifndef ZIMSR_LOGGAUSS_H
#define ZIMSR_LOGGAUSS_H

#include <zimsr/types.h>

ZIMSR_BEGIN_DECLS

/** @name One vector
 *  dst[0] = score of src[0 .. len - 1].
 *  @{
 */
ZIMSR_API ZimStatus zimsLogGaussSingle_32f(const Zim32f* src, const Zim32f* mean, const Zim32f* invVar, int len,
                                           Zim32f* dst, Zim32f gconst);
ZIMSR_API ZimStatus zimsLogGaussSingle_64f(const Zim64f* src, const Zim64f* mean, const Zim64f* invVar, int len,
                                           Zim64f* dst, Zim64f gconst);
ZIMSR_API ZimStatus zimsLogGaussSingle_32f64f(const Zim32f* src, const Zim32f* mean, const Zim32f* invVar, int len,
                                              Zim64f* dst, Zim64f gconst);
ZIMSR_API ZimStatus zimsLogGaussSingle_IdVar_32f(const Zim32f* src, const Zim32f* mean, int len, Zim32f* dst,
                                                 Zim32f gconst);
ZIMSR_API ZimStatus zimsLogGaussSingle_IdVar_64f(const Zim64f* src, const Zim64f* mean, int len, Zim64f* dst,
                                                 Zim64f gconst);
ZIMSR_API ZimStatus zimsLogGaussSingle_IdVar_32f64f(const Zim32f* src, const Zim32f* mean, int len, Zim64f* dst,
                                                    Zim64f gconst);
/** @} */

/** One vector, by reciprocals: invVar[j] = 1 / var[j] is rounded to `Zim32f` and enters as in `zimsLogGaussSingle_32f`.
 *  A variance of 0, of either sign, has the reciprocal plus infinity.
 *
 *  @return #zimStsNoMemory when there is no room for the reciprocals, and nothing is written; #zimStsDivByZeroWarn when
 *          some variance is 0, with dst written. */
ZIMSR_API ZimStatus zimsLogGaussSingle_DirectVar_32f(const Zim32f* src, const Zim32f* mean, const Zim32f* var, int len,
                                                     Zim32f* dst, Zim32f gconst);
/** One vector, each square divided by its variance. A variance of 0 is divided by as IEEE 754 says: the score is
 * infinite or NaN, the status #zimStsOk. */
ZIMSR_API ZimStatus zimsLogGaussSingle_DirectVar_64f(const Zim64f* src, const Zim64f* mean, const Zim64f* var, int len,
                                                     Zim64f* dst, Zim64f gconst);
/** One vector, each square divided by its variance.
 *
 *  @return #zimStsDivByZeroWarn when some variance is 0, and dst is not written. */
ZIMSR_API ZimStatus zimsLogGaussSingle_DirectVar_32f64f(const Zim32f* src, const Zim32f* mean, const Zim32f* var,
                                                        int len, Zim64f* dst, Zim64f gconst);

/** @name A block of frames against one Gaussian
 *  result[i] = score of frame i, for i = 0 .. height - 1.
 *
 *  Two things differ from what the group says:
 *  - With width below 4 the `_32f` functions, except `zimsLogGauss_IdVar_32f_D2L`, start at 2 * gconst, subtract the
 *    terms one by one and halve the outcome: the last bit may differ from `zimsLogGaussSingle_32f`.
 *  - `zimsLogGauss_64f_D2L` forms 0.5 * (2 * gconst - sum): it differs from `zimsLogGauss_64f_D2` where 2 * gconst
 *    overflows.
 *  @{
 */
ZIMSR_API ZimStatus zimsLogGauss_32f_D2(const Zim32f* mat, int step, const Zim32f* mean, const Zim32f* invVar,
                                        int width, Zim32f* result, int height, Zim32f gconst);
ZIMSR_API ZimStatus zimsLogGauss_64f_D2(const Zim64f* mat, int step, const Zim64f* mean, const Zim64f* invVar,
                                        int width, Zim64f* result, int height, Zim64f gconst);
ZIMSR_API ZimStatus zimsLogGauss_32f_D2L(const Zim32f* const* rows, const Zim32f* mean, const Zim32f* invVar, int width,
                                         Zim32f* result, int height, Zim32f gconst);
ZIMSR_API ZimStatus zimsLogGauss_64f_D2L(const Zim64f* const* rows, const Zim64f* mean, const Zim64f* invVar, int width,
                                         Zim64f* result, int height, Zim64f gconst);
ZIMSR_API ZimStatus zimsLogGauss_IdVar_32f_D2(const Zim32f* mat, int step, const Zim32f* mean, int width,
                                              Zim32f* result, int height, Zim32f gconst);
ZIMSR_API ZimStatus zimsLogGauss_IdVar_64f_D2(const Zim64f* mat, int step, const Zim64f* mean, int width,
                                              Zim64f* result, int height, Zim64f gconst);
ZIMSR_API ZimStatus zimsLogGauss_IdVar_32f_D2L(const Zim32f* const* rows, const Zim32f* mean, int width, Zim32f* result,
                                               int height, Zim32f gconst);
ZIMSR_API ZimStatus zimsLogGauss_IdVar_64f_D2L(const Zim64f* const* rows, const Zim64f* mean, int width, Zim64f* result,
                                               int height, Zim64f gconst);
/** @} */

/** @name Older names
 *  `LogGauss1` is `LogGauss`; `LogGauss2` is `zimsLogGaussMultiMix`, one frame against many Gaussians.
 *  @{
 */
ZIMSR_API ZimStatus zimsLogGauss1_32f_D2(const Zim32f* mat, int step, const Zim32f* mean, const Zim32f* invVar,
                                         int width, Zim32f* result, int height, Zim32f gconst);
ZIMSR_API ZimStatus zimsLogGauss1_64f_D2(const Zim64f* mat, int step, const Zim64f* mean, const Zim64f* invVar,
                                         int width, Zim64f* result, int height, Zim64f gconst);
ZIMSR_API ZimStatus zimsLogGauss1_32f_D2L(const Zim32f* const* rows, const Zim32f* mean, const Zim32f* invVar,
                                          int width, Zim32f* result, int height, Zim32f gconst);
ZIMSR_API ZimStatus zimsLogGauss1_64f_D2L(const Zim64f* const* rows, const Zim64f* mean, const Zim64f* invVar,
                                          int width, Zim64f* result, int height, Zim64f gconst);
ZIMSR_API ZimStatus zimsLogGauss2_32f_D2(const Zim32f* mean, const Zim32f* invVar, int step, const Zim32f* src,
                                         int width, Zim32f* srcDst, int height);
ZIMSR_API ZimStatus zimsLogGauss2_64f_D2(const Zim64f* mean, const Zim64f* invVar, int step, const Zim64f* src,
                                         int width, Zim64f* srcDst, int height);
ZIMSR_API ZimStatus zimsLogGauss2_32f_D2L(const Zim32f* const* meanRows, const Zim32f* const* invVarRows,
                                          const Zim32f* src, int width, Zim32f* srcDst, int height);
ZIMSR_API ZimStatus zimsLogGauss2_64f_D2L(const Zim64f* const* meanRows, const Zim64f* const* invVarRows,
                                          const Zim64f* src, int width, Zim64f* srcDst, int height);
/** @} */

ZIMSR_END_DECLS

/** @} */
#endif
