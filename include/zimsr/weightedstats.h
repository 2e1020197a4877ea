/** @file
 *  Means and variances of the columns of a feature matrix whose rows carry weights.
 *
 *  @defgroup weightedstats Weighted column means and variances
 *
 *  The frames are the height rows of a matrix, the features its width columns, and weights holds one weight a row, such
 *  as the frame's occupation probability in the re-estimation of a Gaussian (Baum, Petrie, Soules and Weiss, 1970). For
 *  each column c:
 *
 *      mean[c] = sum over r of weights[r] * x[r][c]
 *      var[c]  = sum over r of weights[r] * x[r][c]^2 - mean[c]^2
 *
 *  Nothing divides by the sum of the weights: for true means and variances they sum up to 1. `WeightedVarColumn` takes
 *  mean as an input, `WeightedMeanVarColumn` writes both from one pass. The data are not centred, and a variance may
 *  come out slightly below 0.
 *
 *  **Arithmetic.** In the type of the elements, every operation rounded by itself; a term is weight * x and
 *  weight * (x * x). A column is summed in one order, whatever its place, the alignment and the matrix form: rows in
 *  fours, added up as (a + b) + (c + d) and then added to the sum, then a pair, then a single one.
 *
 *  mean and var may not overlap the matrix, the weights or each other.
 *
 *  @return #zimStsOk, or the first of #zimStsNullPointer when a pointer is null; `D2`: #zimStsBadStride when step is
 *          below width; #zimStsBadSize when height or width is below 1. A refused call has written nothing.
 *  @{
 */
#ifndef ZIMSR_WEIGHTEDSTATS_H
#define ZIMSR_WEIGHTEDSTATS_H

#include <zimsr/types.h>

ZIMSR_BEGIN_DECLS

/** @name Means
 *  @{
 */
ZIMSR_API ZimStatus zimsWeightedMeanColumn_32f_D2(const Zim32f* mat, int step, const Zim32f* weights, int height,
                                                  Zim32f* mean, int width);
ZIMSR_API ZimStatus zimsWeightedMeanColumn_32f_D2L(const Zim32f* const* rows, const Zim32f* weights, int height,
                                                   Zim32f* mean, int width);
ZIMSR_API ZimStatus zimsWeightedMeanColumn_64f_D2(const Zim64f* mat, int step, const Zim64f* weights, int height,
                                                  Zim64f* mean, int width);
ZIMSR_API ZimStatus zimsWeightedMeanColumn_64f_D2L(const Zim64f* const* rows, const Zim64f* weights, int height,
                                                   Zim64f* mean, int width);
/** @} */

/** @name Variances about given means
 *  @{
 */
ZIMSR_API ZimStatus zimsWeightedVarColumn_32f_D2(const Zim32f* mat, int step, const Zim32f* weights, int height,
                                                 const Zim32f* mean, Zim32f* var, int width);
ZIMSR_API ZimStatus zimsWeightedVarColumn_32f_D2L(const Zim32f* const* rows, const Zim32f* weights, int height,
                                                  const Zim32f* mean, Zim32f* var, int width);
ZIMSR_API ZimStatus zimsWeightedVarColumn_64f_D2(const Zim64f* mat, int step, const Zim64f* weights, int height,
                                                 const Zim64f* mean, Zim64f* var, int width);
ZIMSR_API ZimStatus zimsWeightedVarColumn_64f_D2L(const Zim64f* const* rows, const Zim64f* weights, int height,
                                                  const Zim64f* mean, Zim64f* var, int width);
/** @} */

/** @name Means and variances
 *  @{
 */
ZIMSR_API ZimStatus zimsWeightedMeanVarColumn_32f_D2(const Zim32f* mat, int step, const Zim32f* weights, int height,
                                                     Zim32f* mean, Zim32f* var, int width);
ZIMSR_API ZimStatus zimsWeightedMeanVarColumn_32f_D2L(const Zim32f* const* rows, const Zim32f* weights, int height,
                                                      Zim32f* mean, Zim32f* var, int width);
ZIMSR_API ZimStatus zimsWeightedMeanVarColumn_64f_D2(const Zim64f* mat, int step, const Zim64f* weights, int height,
                                                     Zim64f* mean, Zim64f* var, int width);
ZIMSR_API ZimStatus zimsWeightedMeanVarColumn_64f_D2L(const Zim64f* const* rows, const Zim64f* weights, int height,
                                                      Zim64f* mean, Zim64f* var, int width);
/** @} */

ZIMSR_END_DECLS

/** @} */
#endif
