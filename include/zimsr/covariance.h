/** @file
 *  Accumulation of full covariance matrices.
 *
 *  @defgroup covariance Covariance accumulation
 *
 *  Adds the scatter of height frames of width features about a mean to a square matrix dst of width by width:
 *
 *      dst[i][j] = dst[i][j] + val * sum over r of (x[r][i] - mean[j]) * (x[r][j] - mean[j])   for i <= j
 *      dst[j][i] = dst[i][j]
 *
 *  Both factors subtract mean[j]. Summed over frames whose mean it is, the result is the covariance all the same, since
 *  their differences from mean[j] in column j sum up to 0 (Anderson, An Introduction to Multivariate Statistical
 *  Analysis, section 3.2). val is the weight of the block, such as 1 / (number of frames - 1). Only the upper triangle
 *  of dst is taken into account; the lower one is overwritten.
 *
 *  **Arithmetic.** The operands are widened and subtracted in `Zim64f`; the sum over the frames is formed in `Zim64f`,
 *  frame after frame, then multiplied by val and added. Large blocks in aligned memory go another way: frame after
 *  frame, (val * first factor) * second factor is added to dst[i][j], and
 *  - `32f64f` forms the differences in `Zim32f` and widens them;
 *  - `16s64f` limits the differences mean[j] - x[r][i] and x[r][j] - mean[j] to 16 bits, as far as j lies in a whole
 *    group of four columns counted from i; the columns behind the last such group are exact.
 *
 *  This happens
 *  - in `D2` forms when mat, mean and dst lie on 16-byte boundaries, step and dstStep are multiples of 4, and
 *    step * height is at least 140000 (`32f64f`) or 270000 (`16s64f`);
 *  - in `D2L` forms when mean and all rows of both matrices lie on 16-byte boundaries, and height * width is at least
 *    134000 (`32f64f`) or 260000 (`16s64f`).
 *
 *  dst may not overlap the frames or the mean.
 *
 *  @return #zimStsOk, or the first of #zimStsNullPointer when a pointer is null; #zimStsBadSize when height or width is
 *          below 1; `D2`: #zimStsBadStride when step or dstStep is below width. A refused call has written nothing.
 *  @{
 */
#ifndef ZIMSR_COVARIANCE_H
#define ZIMSR_COVARIANCE_H

#include <zimsr/types.h>

ZIMSR_BEGIN_DECLS

ZIMSR_API ZimStatus zimsAccCovarianceMatrix_32f64f_D2(const Zim32f* mat, int step, int height, const Zim32f* mean,
                                                      Zim64f* dst, int width, int dstStep, Zim64f val);
ZIMSR_API ZimStatus zimsAccCovarianceMatrix_32f64f_D2L(const Zim32f* const* rows, int height, const Zim32f* mean,
                                                       Zim64f* const* dstRows, int width, Zim64f val);
ZIMSR_API ZimStatus zimsAccCovarianceMatrix_16s64f_D2(const Zim16s* mat, int step, int height, const Zim16s* mean,
                                                      Zim64f* dst, int width, int dstStep, Zim64f val);
ZIMSR_API ZimStatus zimsAccCovarianceMatrix_16s64f_D2L(const Zim16s* const* rows, int height, const Zim16s* mean,
                                                       Zim64f* const* dstRows, int width, Zim64f val);

ZIMSR_END_DECLS

/** @} */
#endif
