/** @file
 *  Mean and variance normalisation of the columns of a feature matrix.
 *
 *  @defgroup columnnorm Mean and variance normalisation
 *
 *  Two steps of the library with one of the caller's between them:
 *  1. `zimsSumMeanVar_*` gathers the sum and the sum of squares of each column, over as many calls as an utterance, a
 *     speaker or a corpus has blocks;
 *  2. the caller makes mean = sum / n and val = 1 / sqrt(sumSq / n - mean^2);
 *  3. `zimsNormalizeColumn_*` subtracts the mean of each column and multiplies it by val.
 *
 *  On cepstra this is cepstral mean and variance normalisation (Viikki and Laurila, "Cepstral domain segmental feature
 *  vector normalization for noise robust speech recognition", Speech Communication 25, 1998).
 *
 *  A matrix has height rows of width columns; nothing beside these columns is read or written.
 *  @{
 */
#ifndef ZIMSR_COLUMNNORM_H
#define ZIMSR_COLUMNNORM_H

#include <zimsr/types.h>

ZIMSR_BEGIN_DECLS

/** @name Sums and sums of squares
 *  For each column c: sum[c] = sum over r of src[r * step + c], sumSq[c] = sum over r of src[r * step + c]^2. The
 *  functions with `_I` and `_ISfs` add to what the arrays hold.
 *
 *  An element is taken to `Zim32f`, and so is its square; both sums are formed in `Zim32f`, row after row. The `16s32s`
 *  forms round them in the end: sum * 2^-scaleFactor to the nearest integer, ties to even, saturated. The scale is that
 *  of the whole sum: with a scaleFactor other than 0, `zimsSumMeanVar_16s32s_ISfs` rescales what the arrays held too.
 *
 *  sum and sumSq may not overlap.
 *
 *  @return #zimStsBadStride when step is below width, then #zimStsNullPointer when src, sum or sumSq is null, then
 *  #zimStsBadSize when height or width is below 1.
 *  @{
 */
ZIMSR_API ZimStatus zimsSumMeanVar_32f(const Zim32f* src, int step, int height, Zim32f* sum, Zim32f* sumSq, int width);
ZIMSR_API ZimStatus zimsSumMeanVar_32f_I(const Zim32f* src, int step, int height, Zim32f* sum, Zim32f* sumSq,
                                         int width);
ZIMSR_API ZimStatus zimsSumMeanVar_16s32f(const Zim16s* src, int step, int height, Zim32f* sum, Zim32f* sumSq,
                                          int width);
ZIMSR_API ZimStatus zimsSumMeanVar_16s32f_I(const Zim16s* src, int step, int height, Zim32f* sum, Zim32f* sumSq,
                                            int width);
ZIMSR_API ZimStatus zimsSumMeanVar_16s32s_Sfs(const Zim16s* src, int step, int height, Zim32s* sum, Zim32s* sumSq,
                                              int width, int scaleFactor);
ZIMSR_API ZimStatus zimsSumMeanVar_16s32s_ISfs(const Zim16s* src, int step, int height, Zim32s* sum, Zim32s* sumSq,
                                               int width, int scaleFactor);
/** @} */

/** @name Normalisation
 *  x[r][c] = (x[r][c] - mean[c]) * val[c], in place.
 *
 *  `Zim32f`: the difference and the product are rounded each by itself.
 *
 *  `Zim16s`: times 2^-scaleFactor, saturated to 16 bits, in one of three ways:
 *  - exact difference and product, rounded down;
 *  - the difference saturated to 16 bits, the product rounded down;
 *  - in `Zim32f`, rounded to the nearest integer, ties to even.
 *
 *  The first way is taken for the whole matrix unless all its rows, mean and val lie on 16-byte boundaries (for `D2`:
 *  srcDst, and step a multiple of 8). If they do, the second way is taken for the first width / 8 * 8 columns, and the
 *  third for the rest.
 *
 *  @return `D2`: #zimStsNullPointer when srcDst, mean or val is null, then #zimStsBadSize when height or width is below
 *  1, then #zimStsBadStride when step is below width. `D2L`: the first two.
 *  @{
 */
ZIMSR_API ZimStatus zimsNormalizeColumn_32f_D2(Zim32f* srcDst, int step, int height, const Zim32f* mean,
                                               const Zim32f* val, int width);
ZIMSR_API ZimStatus zimsNormalizeColumn_32f_D2L(Zim32f* const* rows, int height, const Zim32f* mean, const Zim32f* val,
                                                int width);
ZIMSR_API ZimStatus zimsNormalizeColumn_16s_D2Sfs(Zim16s* srcDst, int step, int height, const Zim16s* mean,
                                                  const Zim16s* val, int width, int scaleFactor);
ZIMSR_API ZimStatus zimsNormalizeColumn_16s_D2LSfs(Zim16s* const* rows, int height, const Zim16s* mean,
                                                   const Zim16s* val, int width, int scaleFactor);
/** @} */

/** `zimsNormalizeColumn_32f_D2` with its arguments in another order. */
ZIMSR_API ZimStatus zimsNormalizeCol_32f_D2(const Zim32f* mean, const Zim32f* val, int width, Zim32f* srcDst, int step,
                                            int height);

ZIMSR_END_DECLS

/** @} */
#endif
