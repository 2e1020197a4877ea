/** @file
 *  Means and variances of the columns of a feature matrix.
 *
 *  @defgroup columnstats Column means and variances
 *
 *  The frames of an utterance are the height rows of a matrix, its features the width columns. For each column c:
 *
 *      mean[c] = (sum over r of x[r][c]) / height
 *      var[c]  = (sum over r of x[r][c]^2 - height * mean[c]^2) / (height - 1)
 *
 *  - `MeanColumn` writes mean.
 *  - `VarColumn` takes mean as an input and writes var. The mean may be any vector; the formula is not corrected for
 * one that is not the columns' own, and may then be negative.
 *  - `MeanVarColumn` writes both, from one pass.
 *
 *  They serve mean and variance normalisation of cepstra (Furui, Cepstral analysis technique for automatic speaker
 *  verification, 1981; Viikki and Laurila, Cepstral domain segmental feature vector normalization, 1998) and the
 *  estimation of diagonal Gaussians. The one-pass formula cancels where the mean is large against the deviation;
 *  nothing keeps the variance from coming out slightly below 0.
 *
 *  **Arithmetic.** Every operation is rounded by itself. A column is summed in one order, whatever its place, the
 *  alignment and the matrix form: rows in fours, added up as (a + b) + (c + d) and then added to the sum, then a pair,
 *  then a single one. Divisions by height and by height - 1 are multiplications by the rounded reciprocals invH and
 *  invH1.
 *
 *  Elements between the rows of a matrix are not looked at. mean and var may not overlap the matrix or each other.
 *
 *  @return #zimStsOk, or the first of
 *          - `D2`, `MeanColumn` and `VarColumn`: #zimStsBadStride when step is below width; #zimStsNullPointer when a
 *            pointer is null; #zimStsBadSize when width is below 1, or height below 1 or, where a variance is written,
 *            below 2;
 *          - `D2`, `MeanVarColumn`: #zimStsNullPointer, #zimStsBadSize, #zimStsBadStride;
 *          - `D2L`: #zimStsNullPointer, #zimStsBadSize.
 *
 *          The `_16s` forms that allocate return #zimStsNoMemory when there is no room for their working storage of
 *          width + 8 floats (`MeanVarColumn`: 2 * width + 16). A refused call has written nothing.
 *  @{
 */
#ifndef ZIMSR_COLUMNSTATS_H
#define ZIMSR_COLUMNSTATS_H

#include <zimsr/types.h>

ZIMSR_BEGIN_DECLS

/** @name Floats
 *  Sums, products and factors in `Zim32f`; invH and invH1 are divided in `Zim64f` and narrowed.
 *
 *  - `MeanColumn` of a single row copies it.
 *  - `VarColumn` adds the squares onto -height * mean * mean and multiplies by invH1.
 *  - `MeanVarColumn`: var = (sum of squares - height * m * m) * invH1, with m the mean that is written.
 *  @{
 */
ZIMSR_API ZimStatus zimsMeanColumn_32f_D2(const Zim32f* src, int height, int step, Zim32f* mean, int width);
ZIMSR_API ZimStatus zimsMeanColumn_32f_D2L(const Zim32f* const* rows, int height, Zim32f* mean, int width);
ZIMSR_API ZimStatus zimsVarColumn_32f_D2(const Zim32f* src, int height, int step, const Zim32f* mean, Zim32f* var,
                                         int width);
ZIMSR_API ZimStatus zimsVarColumn_32f_D2L(const Zim32f* const* rows, int height, const Zim32f* mean, Zim32f* var,
                                          int width);
ZIMSR_API ZimStatus zimsMeanVarColumn_32f_D2(const Zim32f* src, int height, int step, Zim32f* mean, Zim32f* var,
                                             int width);
ZIMSR_API ZimStatus zimsMeanVarColumn_32f_D2L(const Zim32f* const* rows, int height, Zim32f* mean, Zim32f* var,
                                              int width);
/** @} */

/** @name Samples
 *  Formed in `Zim32f`, with invH and invH1 divided in `Zim32f`, then rounded half to even and saturated to 16 bits:
 *
 *      m = (sum of x) * invH,  v = (sum of x^2 - height * m * m) * invH1
 *      mean = saturate(round(m)),  var = saturate(round(v * 2^-scaleFactor))
 *
 *  `MeanVarColumn` takes m before it is rounded. The mean is never scaled.
 *
 *  A `D2L` form of which some row does not lie on a 16-byte boundary takes another way, which allocates nothing and
 *  truncates toward 0, so that its results may differ by one:
 *
 *  - `MeanColumn`: trunc(m), with the sum of x exact and rounded to `Zim32f` once.
 *  - `VarColumn`: the sum of x^2 - height * mean^2 is exact and rounded to `Zim32f` once, multiplied by invH1 and
 *    truncated to an integer u.
 *  - `MeanVarColumn`: mean = trunc(m) saturated; the squares are added in `Zim32f`, row after row, and
 *    u = trunc((sum of x^2 - m * m * height) * invH1).
 *  - var is u shifted by scaleFactor, to the right arithmetically if it is above 0, else to the left, and saturated.
 *  @{
 */
ZIMSR_API ZimStatus zimsMeanColumn_16s_D2(const Zim16s* src, int height, int step, Zim16s* mean, int width);
ZIMSR_API ZimStatus zimsMeanColumn_16s_D2L(const Zim16s* const* rows, int height, Zim16s* mean, int width);
ZIMSR_API ZimStatus zimsVarColumn_16s_D2Sfs(const Zim16s* src, int height, int step, const Zim16s* mean, Zim16s* var,
                                            int width, int scaleFactor);
ZIMSR_API ZimStatus zimsVarColumn_16s_D2LSfs(const Zim16s* const* rows, int height, const Zim16s* mean, Zim16s* var,
                                             int width, int scaleFactor);
ZIMSR_API ZimStatus zimsMeanVarColumn_16s_D2Sfs(const Zim16s* src, int height, int step, Zim16s* mean, Zim16s* var,
                                                int width, int scaleFactor);
ZIMSR_API ZimStatus zimsMeanVarColumn_16s_D2LSfs(const Zim16s* const* rows, int height, Zim16s* mean, Zim16s* var,
                                                 int width, int scaleFactor);
/** @} */

/** @name Samples, with wider results
 *  Formed in `Zim64f` from exact sums, rounded half to even, and saturated; nothing is allocated:
 *
 *      m = (sum of x) * invH,  mean = round(m)
 *      var = round((sum of x^2 - m * m * height) * (invH1 * 2^-scaleFactor))
 *
 *  with m before it is rounded. The mean is never scaled. `16s16s32s` has no scale factor. The `D2` forms divide invH
 *  and invH1 in `Zim64f`, the `D2L` forms in `Zim32f`, which are then widened.
 *  @{
 */
ZIMSR_API ZimStatus zimsMeanVarColumn_16s32s_D2Sfs(const Zim16s* src, int height, int step, Zim32s* mean, Zim32s* var,
                                                   int width, int scaleFactor);
ZIMSR_API ZimStatus zimsMeanVarColumn_16s32s_D2LSfs(const Zim16s* const* rows, int height, Zim32s* mean, Zim32s* var,
                                                    int width, int scaleFactor);
ZIMSR_API ZimStatus zimsMeanVarColumn_16s16s32s_D2(const Zim16s* src, int height, int step, Zim16s* mean, Zim32s* var,
                                                   int width);
ZIMSR_API ZimStatus zimsMeanVarColumn_16s16s32s_D2L(const Zim16s* const* rows, int height, Zim16s* mean, Zim32s* var,
                                                    int width);
/** @} */

/** @name Older names
 *  Of `zimsMeanColumn`, `zimsVarColumn` and `zimsMeanVarColumn`, with the same arguments.
 *  @{
 */
ZIMSR_API ZimStatus zimsMeanCol_32f_D2(const Zim32f* src, int height, int step, Zim32f* mean, int width);
ZIMSR_API ZimStatus zimsMeanCol_32f_D2L(const Zim32f* const* rows, int height, Zim32f* mean, int width);
ZIMSR_API ZimStatus zimsVarCol_32f_D2(const Zim32f* src, int height, int step, const Zim32f* mean, Zim32f* var,
                                      int width);
ZIMSR_API ZimStatus zimsVarCol_32f_D2L(const Zim32f* const* rows, int height, const Zim32f* mean, Zim32f* var,
                                       int width);
ZIMSR_API ZimStatus zimsMeanVarCol_32f_D2(const Zim32f* src, int height, int step, Zim32f* mean, Zim32f* var,
                                          int width);
ZIMSR_API ZimStatus zimsMeanVarCol_32f_D2L(const Zim32f* const* rows, int height, Zim32f* mean, Zim32f* var, int width);
/** @} */

ZIMSR_END_DECLS

/** @} */
#endif
