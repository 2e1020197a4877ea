/** @file
 *  Sums of the rows and columns of a matrix, and a vector against all of its rows.
 *
 *  @defgroup matrixsums Row and column sums
 *
 *  The matrix has height rows of width columns.
 *
 *      SumColumn:     dst[c] = sum over r of x[r][c]             (width values)
 *      SumRow:        dst[r] = sum over c of x[r][c]             (height values)
 *      AddAllRowSum:  dst[c] = dst[c] + x[0][c] + x[1][c] + ...  (width values)
 *      SubRow:        x[r][c] = x[r][c] - val[c]
 *
 *  The order of a sum's additions depends on its length alone: not on alignment, the matrix form or its place in the
 *  matrix. Columns: rows in fours, added up as (a + b) + (c + d) and then added to the sum, then a pair, then a single
 *  one. Rows: partial sums of every eighth element (`Zim64f`: fourth), then a tree over these; of samples, the exact
 *  sum, rounded once. These sums start from 0: one of negative zeros is a positive zero. `AddAllRowSum` adds row after
 *  row.
 *
 *  Elements between the rows of a matrix are not looked at. dst and val may not overlap the matrix.
 *
 *  @return #zimStsOk, or the first of #zimStsNullPointer when a pointer is null; #zimStsBadSize when width or height is
 *          below 1; `D2`: #zimStsBadStride when step is below width. A refused call has written nothing.
 *  @{
 */
#ifndef ZIMSR_MATRIXSUMS_H
#define ZIMSR_MATRIXSUMS_H

#include <zimsr/types.h>

ZIMSR_BEGIN_DECLS

/** @name Sums of columns
 *  - `32f`, `64f`: in the type of the elements.
 *  - `16s32f`: in `Zim32f`, exact as long as the sums stay below 2^24.
 *  - `16s32s`: the sum in `Zim32f`, then dst = saturate(round(sum * 2^-scaleFactor)), half to even. A sum above 2^24
 *    has lost its low bits, whatever the factor.
 *  @{
 */
ZIMSR_API ZimStatus zimsSumColumn_32f_D2(const Zim32f* src, int step, int height, Zim32f* dst, int width);
ZIMSR_API ZimStatus zimsSumColumn_32f_D2L(const Zim32f* const* rows, int height, Zim32f* dst, int width);
ZIMSR_API ZimStatus zimsSumColumn_64f_D2(const Zim64f* src, int step, int height, Zim64f* dst, int width);
ZIMSR_API ZimStatus zimsSumColumn_64f_D2L(const Zim64f* const* rows, int height, Zim64f* dst, int width);
ZIMSR_API ZimStatus zimsSumColumn_16s32f_D2(const Zim16s* src, int step, int height, Zim32f* dst, int width);
ZIMSR_API ZimStatus zimsSumColumn_16s32f_D2L(const Zim16s* const* rows, int height, Zim32f* dst, int width);
ZIMSR_API ZimStatus zimsSumColumn_16s32s_D2Sfs(const Zim16s* src, int step, int height, Zim32s* dst, int width,
                                               int scaleFactor);
ZIMSR_API ZimStatus zimsSumColumn_16s32s_D2LSfs(const Zim16s* const* rows, int height, Zim32s* dst, int width,
                                                int scaleFactor);
/** @} */

/** @name Sums of rows
 *  In the types of the column sums.
 *  @{
 */
ZIMSR_API ZimStatus zimsSumRow_32f_D2(const Zim32f* src, int width, int step, Zim32f* dst, int height);
ZIMSR_API ZimStatus zimsSumRow_32f_D2L(const Zim32f* const* rows, int width, Zim32f* dst, int height);
ZIMSR_API ZimStatus zimsSumRow_64f_D2(const Zim64f* src, int width, int step, Zim64f* dst, int height);
ZIMSR_API ZimStatus zimsSumRow_64f_D2L(const Zim64f* const* rows, int width, Zim64f* dst, int height);
ZIMSR_API ZimStatus zimsSumRow_16s32f_D2(const Zim16s* src, int width, int step, Zim32f* dst, int height);
ZIMSR_API ZimStatus zimsSumRow_16s32f_D2L(const Zim16s* const* rows, int width, Zim32f* dst, int height);
ZIMSR_API ZimStatus zimsSumRow_16s32s_D2Sfs(const Zim16s* src, int width, int step, Zim32s* dst, int height,
                                            int scaleFactor);
ZIMSR_API ZimStatus zimsSumRow_16s32s_D2LSfs(const Zim16s* const* rows, int width, Zim32s* dst, int height,
                                             int scaleFactor);
/** @} */

/** @name Rows added to a vector
 *  Onto what dst holds, in row order.
 *  @{
 */
ZIMSR_API ZimStatus zimsAddAllRowSum_32f_D2(const Zim32f* src, int step, int height, Zim32f* dst, int width);
ZIMSR_API ZimStatus zimsAddAllRowSum_32f_D2L(const Zim32f* const* rows, int height, Zim32f* dst, int width);
/** @} */

/** @name A vector subtracted from every row
 *  In place; val has width elements. `16s` saturates.
 *  @{
 */
ZIMSR_API ZimStatus zimsSubRow_32f_D2(const Zim32f* val, int width, Zim32f* srcDst, int step, int height);
ZIMSR_API ZimStatus zimsSubRow_32f_D2L(const Zim32f* val, Zim32f* const* rows, int width, int height);
ZIMSR_API ZimStatus zimsSubRow_16s_D2(const Zim16s* val, int width, Zim16s* srcDst, int step, int height);
ZIMSR_API ZimStatus zimsSubRow_16s_D2L(const Zim16s* val, Zim16s* const* rows, int width, int height);
/** @} */

/** @name Older names of the column sums
 *  `SumCol` takes dst earlier: in `D2` forms before height, in `D2L` forms in exchange for width. `SumAllRow` takes the
 *  arguments of `SumColumn`.
 *  @{
 */
ZIMSR_API ZimStatus zimsSumCol_32f_D2(const Zim32f* src, int step, Zim32f* dst, int height, int width);
ZIMSR_API ZimStatus zimsSumCol_32f_D2L(const Zim32f* const* rows, int width, Zim32f* dst, int height);
ZIMSR_API ZimStatus zimsSumCol_64f_D2(const Zim64f* src, int step, Zim64f* dst, int height, int width);
ZIMSR_API ZimStatus zimsSumCol_64f_D2L(const Zim64f* const* rows, int width, Zim64f* dst, int height);
ZIMSR_API ZimStatus zimsSumAllRow_32f_D2(const Zim32f* src, int step, int height, Zim32f* dst, int width);
ZIMSR_API ZimStatus zimsSumAllRow_32f_D2L(const Zim32f* const* rows, int height, Zim32f* dst, int width);
/** @} */

/** @name One row
 *  The steps of a Householder reduction (Golub and Reinsch, Singular value decomposition and least squares solutions,
 *  1970).
 *
 *      SumRowAbs:  *dst = sum of |src[i]|
 *      SumRowSqr:  srcDst[i] = srcDst[i] * val, then *dst = sum of the squares of the new values
 *
 *  @return #zimStsNullPointer when a pointer is null, then #zimStsBadSize when len is below 1.
 *  @{
 */
ZIMSR_API ZimStatus zimsSumRowAbs_64f(const Zim64f* src, int len, Zim64f* dst);
ZIMSR_API ZimStatus zimsSumRowSqr_64f(Zim64f* srcDst, int len, Zim64f* dst, Zim64f val);
/** @} */

/** @name One column
 *  The same for column col, from row firstRow to the last, added from top to bottom. `SumColAbs` and `SumColSqr` are
 *  older names.
 *
 *  @return #zimStsNullPointer when rows or dst is null; #zimStsBadSize unless width and height are above 0, col lies in
 *          0 .. width - 1 and firstRow in 0 .. height - 1.
 *  @{
 */
ZIMSR_API ZimStatus zimsSumColumnAbs_64f_D2L(const Zim64f* const* rows, int width, int height, Zim64f* dst, int col,
                                             int firstRow);
ZIMSR_API ZimStatus zimsSumColumnSqr_64f_D2L(Zim64f* const* rows, int width, int height, Zim64f* dst, int col,
                                             int firstRow, Zim64f val);
ZIMSR_API ZimStatus zimsSumColAbs_64f_D2L(const Zim64f* const* rows, int width, int height, Zim64f* dst, int col,
                                          int firstRow);
ZIMSR_API ZimStatus zimsSumColSqr_64f_D2L(Zim64f* const* rows, int width, int height, Zim64f* dst, int col,
                                          int firstRow, Zim64f val);
/** @} */

ZIMSR_END_DECLS

/** @} */
#endif
