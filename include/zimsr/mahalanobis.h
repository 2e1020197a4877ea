/** @file
 *  Mahalanobis distance under diagonal covariance, and the moments that its models are estimated from.
 *
 *  @defgroup mahalanobis Mahalanobis distance
 *
 *  The squared distance of a feature vector x from a Gaussian, weighted by its inverse variances:
 *
 *      sum over j of (x[j] - mean[j])^2 * invVar[j]
 *
 *  It is the sum of the score in the group @ref loggauss by itself: no constant, no factor 0.5, no square root, and the
 *  same arithmetic to the bit. The distance of a frame does not depend on its place in a block, on the matrix form or,
 *  but for the functions on `Zim16s` data, on alignment.
 *
 *  Features and parameters are not tested: negative and non-finite values pass through the arithmetic. Elements between
 *  the rows of a matrix are not looked at. The result may not overlap the operands.
 *
 *  @return #zimStsOk, or the first of
 *          - `D2`: #zimStsBadStride when step is below width; #zimStsNullPointer when a pointer is null; #zimStsBadSize
 *            when width or height is below 1;
 *          - all others: #zimStsNullPointer, then #zimStsBadSize.
 *
 *          A refused call has written nothing.
 *
 *  Reference: P. C. Mahalanobis, "On the generalised distance in statistics", Proceedings of the National Institute of
 *  Sciences of India 2 (1936).
 *  @{
 */
#ifndef ZIMSR_MAHALANOBIS_H
#define ZIMSR_MAHALANOBIS_H

#include <zimsr/types.h>

ZIMSR_BEGIN_DECLS

/** @name One vector
 *  dst[0] = distance of src[0 .. len - 1]. `_32f64f` widens every operand before the subtraction and computes in
 *  `Zim64f`.
 *  @{
 */
ZIMSR_API ZimStatus zimsMahDistSingle_32f(const Zim32f* src, const Zim32f* mean, const Zim32f* invVar, int len,
                                          Zim32f* dst);
ZIMSR_API ZimStatus zimsMahDistSingle_64f(const Zim64f* src, const Zim64f* mean, const Zim64f* invVar, int len,
                                          Zim64f* dst);
ZIMSR_API ZimStatus zimsMahDistSingle_32f64f(const Zim32f* src, const Zim32f* mean, const Zim32f* invVar, int len,
                                             Zim64f* dst);
/** @} */

/** @name One vector of 16 bits
 *  What is computed depends on whether src, mean and invVar all start on a 16-byte boundary.
 *
 *  - Aligned: as in `zimsLogGaussSingle_16s32f`. The difference saturates in 16 bits in each full group of 8 elements
 *    and is exact behind the last; its square is a 32-bit integer, and becomes a `Zim32f`, in which it is multiplied
 * and summed. `Sfs` scales the sum by 2^-scaleFactor, rounds to nearest even and saturates.
 *  - Otherwise `_16s32f` computes in `Zim32f` from the operands on, differences exact, and `_16s32s_Sfs` forms the
 * exact sum in 64 bits, shifts it by scaleFactor, to the right with rounding down, and saturates.
 *
 *  The two differ where a difference exceeds 16 bits, and by rounding.
 *  @{
 */
ZIMSR_API ZimStatus zimsMahDistSingle_16s32f(const Zim16s* src, const Zim16s* mean, const Zim16s* invVar, int len,
                                             Zim32f* dst);
ZIMSR_API ZimStatus zimsMahDistSingle_16s32s_Sfs(const Zim16s* src, const Zim16s* mean, const Zim16s* invVar, int len,
                                                 Zim32s* dst, int scaleFactor);
/** @} */

/** @name A block of frames from one Gaussian
 *  dst[i] = distance of frame i, for i = 0 .. height - 1.
 *  @{
 */
ZIMSR_API ZimStatus zimsMahDist_32f_D2(const Zim32f* mat, int step, const Zim32f* mean, const Zim32f* invVar, int width,
                                       Zim32f* dst, int height);
ZIMSR_API ZimStatus zimsMahDist_64f_D2(const Zim64f* mat, int step, const Zim64f* mean, const Zim64f* invVar, int width,
                                       Zim64f* dst, int height);
ZIMSR_API ZimStatus zimsMahDist_32f_D2L(const Zim32f* const* rows, const Zim32f* mean, const Zim32f* invVar, int width,
                                        Zim32f* dst, int height);
ZIMSR_API ZimStatus zimsMahDist_64f_D2L(const Zim64f* const* rows, const Zim64f* mean, const Zim64f* invVar, int width,
                                        Zim64f* dst, int height);
/** @} */

/** @name One frame from many Gaussians
 *  dst[i] = distance of src from Gaussian i, whose parameters are row i of both matrices, for i = 0 .. height - 1.
 *  @{
 */
ZIMSR_API ZimStatus zimsMahDistMultiMix_32f_D2(const Zim32f* mean, const Zim32f* invVar, int step, const Zim32f* src,
                                               int width, Zim32f* dst, int height);
ZIMSR_API ZimStatus zimsMahDistMultiMix_64f_D2(const Zim64f* mean, const Zim64f* invVar, int step, const Zim64f* src,
                                               int width, Zim64f* dst, int height);
ZIMSR_API ZimStatus zimsMahDistMultiMix_32f_D2L(const Zim32f* const* meanRows, const Zim32f* const* invVarRows,
                                                const Zim32f* src, int width, Zim32f* dst, int height);
ZIMSR_API ZimStatus zimsMahDistMultiMix_64f_D2L(const Zim64f* const* meanRows, const Zim64f* const* invVarRows,
                                                const Zim64f* src, int width, Zim64f* dst, int height);
/** @} */

/** @name Older names
 *  `MahDist1` is `MahDist`, `MahDist2` is `MahDistMultiMix`.
 *  @{
 */
ZIMSR_API ZimStatus zimsMahDist1_32f_D2(const Zim32f* mat, int step, const Zim32f* mean, const Zim32f* invVar,
                                        int width, Zim32f* dst, int height);
ZIMSR_API ZimStatus zimsMahDist1_64f_D2(const Zim64f* mat, int step, const Zim64f* mean, const Zim64f* invVar,
                                        int width, Zim64f* dst, int height);
ZIMSR_API ZimStatus zimsMahDist1_32f_D2L(const Zim32f* const* rows, const Zim32f* mean, const Zim32f* invVar, int width,
                                         Zim32f* dst, int height);
ZIMSR_API ZimStatus zimsMahDist1_64f_D2L(const Zim64f* const* rows, const Zim64f* mean, const Zim64f* invVar, int width,
                                         Zim64f* dst, int height);
ZIMSR_API ZimStatus zimsMahDist2_32f_D2(const Zim32f* mean, const Zim32f* invVar, int step, const Zim32f* src,
                                        int width, Zim32f* dst, int height);
ZIMSR_API ZimStatus zimsMahDist2_64f_D2(const Zim64f* mean, const Zim64f* invVar, int step, const Zim64f* src,
                                        int width, Zim64f* dst, int height);
ZIMSR_API ZimStatus zimsMahDist2_32f_D2L(const Zim32f* const* meanRows, const Zim32f* const* invVarRows,
                                         const Zim32f* src, int width, Zim32f* dst, int height);
ZIMSR_API ZimStatus zimsMahDist2_64f_D2L(const Zim64f* const* meanRows, const Zim64f* const* invVarRows,
                                         const Zim64f* src, int width, Zim64f* dst, int height);
/** @} */

/** @name Moments
 *  Adds the weighted first and second moment of the deviation from a mean to running sums, for each j:
 *
 *      d = src[j] - mean[j],  t = d * val
 *      meanAcc[j] += t,       varAcc[j] += d * t
 *
 *  val is the weight of the vector, such as its occupancy of the Gaussian. The caller sets both sums to zero before the
 *  first vector and divides by the sum of the weights after the last. The four arrays may not overlap.
 *  @{
 */
ZIMSR_API ZimStatus zimsMeanVarAcc_32f(const Zim32f* src, const Zim32f* mean, Zim32f* meanAcc, Zim32f* varAcc, int len,
                                       Zim32f val);
ZIMSR_API ZimStatus zimsMeanVarAcc_64f(const Zim64f* src, const Zim64f* mean, Zim64f* meanAcc, Zim64f* varAcc, int len,
                                       Zim64f val);
/** @} */

ZIMSR_END_DECLS

/** @} */
#endif
