/** @file
 *  Mixtures of diagonal Gaussians.
 *
 *  @defgroup mixture Mixtures of Gaussians
 *
 *  One frame src of width features against a block of height Gaussians, one a row: row i of mean and row i of invVar
 *  (1 / variance) belong to Gaussian i. In the `D2` form both matrices have the same step. The score is that of the
 *  group @ref loggauss, in the same arithmetic and, to the bit, with the same result as `zimsLogGaussSingle` of the
 * type.
 *
 *  @return #zimStsOk, or the first of
 *          - `D2`: #zimStsBadStride when step is below width; #zimStsNullPointer when a pointer is null; #zimStsBadSize
 *            when width or height is below 1;
 *          - `D2L`: #zimStsNullPointer, then #zimStsBadSize.
 *
 *          A refused call has written nothing.
 *  @{
 */
#ifndef ZIMSR_MIXTURE_H
#define ZIMSR_MIXTURE_H

#include <zimsr/types.h>

ZIMSR_BEGIN_DECLS

/** @name One frame against many Gaussians
 *  srcDst[i] = score of src under Gaussian i with the constant srcDst[i]: srcDst holds the constants on entry and the
 *  scores on return.
 *  @{
 */
ZIMSR_API ZimStatus zimsLogGaussMultiMix_32f_D2(const Zim32f* mean, const Zim32f* invVar, int step, const Zim32f* src,
                                                int width, Zim32f* srcDst, int height);
ZIMSR_API ZimStatus zimsLogGaussMultiMix_64f_D2(const Zim64f* mean, const Zim64f* invVar, int step, const Zim64f* src,
                                                int width, Zim64f* srcDst, int height);
ZIMSR_API ZimStatus zimsLogGaussMultiMix_32f_D2L(const Zim32f* const* meanRows, const Zim32f* const* invVarRows,
                                                 const Zim32f* src, int width, Zim32f* srcDst, int height);
ZIMSR_API ZimStatus zimsLogGaussMultiMix_64f_D2L(const Zim64f* const* meanRows, const Zim64f* const* invVarRows,
                                                 const Zim64f* src, int width, Zim64f* srcDst, int height);
/** @} */

ZIMSR_END_DECLS

/** @} */
#endif
