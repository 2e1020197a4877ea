/** @file
 *  Gaussian selection: shortlists of the Gaussians worth scoring, as bit tables, and mixtures scored by them.
 *
 *  @defgroup selection Gaussian selection
 *
 *  Not every Gaussian of a mixture need be scored against every frame. A shortlist says which: a bit for each pair of a
 *  row (a frame or a cluster) and a column (a Gaussian or a codebook entry). The usual road: cluster the Gaussians,
 * keep for each cluster the Gaussians near it (`zimsFillShortlist`), find the clusters near each frame, gather their
 *  shortlists into a table of frames (`zimsBuildSignTable`) and score by it (`zimsLogGaussMixture_Select`).
 *
 *  **Bit tables.** Bit b of a row lies in byte b / 8, at the mask 0x80 >> (b % 8): the most significant bit comes
 * first.
 *  - A table of clusters is an array of row pointers, each to rowBytes bytes. Columns begin at bit startBit, so that
 *    several tables may lie side by side in one row.
 *  - A table of frames is one block of rows of (bits + 7) / 8 bytes without padding between them. The bits behind the
 *    last column of a row are 0 when it is written and do not matter when it is read.
 *
 *  **Index lists** stand one behind the other in an array. The plain forms have count entries in each list; in the
 * `Var` forms counts[i] is the length of list i.
 *
 *  No function reads a byte outside the rows of a table, or writes one.
 *
 *  Reference: E. Bocchieri, "Vector quantization for the efficient computation of continuous density likelihoods", IEEE
 *  International Conference on Acoustics, Speech, and Signal Processing (1993).
 *  @{
 */
#ifndef ZIMSR_SELECTION_H
#define ZIMSR_SELECTION_H

#include <zimsr/types.h>

ZIMSR_BEGIN_DECLS

/** @name Filling shortlists
 *  Toggle bits by exclusive or: a bit that is listed twice is as it was before, and so is a table that is filled twice
 *  by the same lists. No table is cleared first.
 *
 *  - `Row`: one list of columns, each below width, for each of the height rows. Toggles bit startBit + index of the
 *    list's row.
 *  - `Column`: one list of rows, each below height, for each of the width columns. Toggles bit startBit + column of the
 *    rows listed.
 *
 *  The row pointers are not tested. Calls that write to one row may not run at once.
 *
 *  @return #zimStsOk, or the first of
 *          - #zimStsNullPointer when a pointer is null;
 *          - #zimStsBadSize when count, width or height is below 1 or startBit is below 0; in `RowVar` also when an
 * entry of counts is below 1;
 *          - #zimStsBadStride when rowBytes is below (startBit + width + 7) / 8;
 *          - #zimStsBadSize when, in `ColumnVar`, an entry of counts is below 1;
 *          - #zimStsBadArgument when an index is below 0 or not below its limit.
 *
 *          A refused call has written nothing.
 *  @{
 */
ZIMSR_API ZimStatus zimsFillShortlist_Row_1u(const Zim32s* indices, int width, int count, Zim8u* const* rows,
                                             int height, int rowBytes, int startBit);
ZIMSR_API ZimStatus zimsFillShortlist_RowVar_1u(const Zim32s* indices, const Zim32s* counts, int width,
                                                Zim8u* const* rows, int height, int rowBytes, int startBit);
ZIMSR_API ZimStatus zimsFillShortlist_Column_1u(const Zim32s* indices, int count, Zim8u* const* rows, int height,
                                                int rowBytes, int startBit, int width);
ZIMSR_API ZimStatus zimsFillShortlist_ColumnVar_1u(const Zim32s* indices, const Zim32s* counts, Zim8u* const* rows,
                                                   int height, int rowBytes, int startBit, int width);
/** @} */

/** @name Gathering shortlists
 *  Makes a table of dstHeight frames and bits columns in dst from the shortlists of rows: bit b of frame f is set when
 *  bit startBit + b is set in any of the rows that list f names. What dst held before is lost. dst may not overlap the
 *  rows.
 *
 *  @return #zimStsOk, or the first of
 *          - #zimStsNullPointer when a pointer is null;
 *          - #zimStsBadSize when count, height, dstHeight or bits is below 1 or startBit is below 0;
 *          - #zimStsBadStride when rowBytes is below (startBit + bits + 7) / 8;
 *          - #zimStsBadSize when an entry of counts is below 1;
 *          - #zimStsBadArgument when an index is below 0 or not below height.
 *
 *          A refused call has written nothing.
 *  @{
 */
ZIMSR_API ZimStatus zimsBuildSignTable_8u1u(const Zim32s* indices, int count, const Zim8u* const* rows, int height,
                                            int rowBytes, int startBit, Zim8u* dst, int dstHeight, int bits);
ZIMSR_API ZimStatus zimsBuildSignTable_Var_8u1u(const Zim32s* indices, const Zim32s* counts, const Zim8u* const* rows,
                                                int height, int rowBytes, int startBit, Zim8u* dst, int dstHeight,
                                                int bits);
/** @} */

/** @name Mixtures by shortlists
 *  dst[f] = ln of the sum of exp(score of frame f under Gaussian g) over the Gaussians g whose bit is set in row f of
 *  table; defaultVal when none is. There are height frames of width features in src, and gaussCount Gaussians: their
 *  means and inverse variances, a row each, and their constants val. In the `D2` form the three matrices have the same
 *  step.
 *
 *  The score is, to the bit, that of `zimsLogGaussSingle` with the constant val[g]: `zimsLogGaussSingle_32f`,
 *  `zimsLogGaussSingle_IdVar_32f`, `zimsLogGaussSingle_Scaled_16s32f` or `zimsLogGaussSingle_IdVarScaled_16s32f`. The
 *  first score of a frame is taken as it is, so that one selected Gaussian gives its score; the others are added in the
 *  order of the Gaussians, as `zimsLogAdd_32f` adds them with the hint 0. `zimsLogGaussMixture_Select_32f_D2` and
 *  `zimsLogGaussMixture_SelectScaled_16s32f_D2` add as with the hint 1 when gaussCount is 9 or more and height 2 or
 *  more. The score of the latter is then that of `zimsLogGauss_Scaled_16s32f_D2`: another one at the scale factors -128
 *  and 149 alone, where one of 2^-scaleFactor and its half is infinite or 0 and the other is not.
 *
 *  dst may not overlap the operands.
 *
 *  @return #zimStsOk, or the first of
 *          - #zimStsNullPointer when a pointer is null;
 *          - #zimStsBadSize when width, gaussCount or height is below 1;
 *          - `D2`: #zimStsBadStride when step is below width;
 *          - `D2L`: #zimStsNullPointer when a row pointer is null;
 *          - #zimStsAllocFailed when there is no working memory.
 *
 *          A refused call has written nothing.
 *  @{
 */
ZIMSR_API ZimStatus zimsLogGaussMixture_Select_32f_D2(const Zim32f* src, const Zim32f* mean, const Zim32f* invVar,
                                                      int step, int width, const Zim32f* val, const Zim8u* table,
                                                      int gaussCount, Zim32f* dst, int height, Zim32f defaultVal);
ZIMSR_API ZimStatus zimsLogGaussMixture_Select_32f_D2L(const Zim32f* const* srcRows, const Zim32f* const* meanRows,
                                                       const Zim32f* const* invVarRows, int width, const Zim32f* val,
                                                       const Zim8u* table, int gaussCount, Zim32f* dst, int height,
                                                       Zim32f defaultVal);
ZIMSR_API ZimStatus zimsLogGaussMixture_SelectIdVar_32f_D2(const Zim32f* src, const Zim32f* mean, int step, int width,
                                                           const Zim32f* val, const Zim8u* table, int gaussCount,
                                                           Zim32f* dst, int height, Zim32f defaultVal);
ZIMSR_API ZimStatus zimsLogGaussMixture_SelectIdVar_32f_D2L(const Zim32f* const* srcRows, const Zim32f* const* meanRows,
                                                            int width, const Zim32f* val, const Zim8u* table,
                                                            int gaussCount, Zim32f* dst, int height, Zim32f defaultVal);
ZIMSR_API ZimStatus zimsLogGaussMixture_SelectScaled_16s32f_D2(const Zim16s* src, const Zim16s* mean,
                                                               const Zim16s* invVar, int step, int width,
                                                               const Zim32f* val, const Zim8u* table, int gaussCount,
                                                               Zim32f* dst, int height, Zim32f defaultVal,
                                                               int scaleFactor);
ZIMSR_API ZimStatus zimsLogGaussMixture_SelectScaled_16s32f_D2L(
    const Zim16s* const* srcRows, const Zim16s* const* meanRows, const Zim16s* const* invVarRows, int width,
    const Zim32f* val, const Zim8u* table, int gaussCount, Zim32f* dst, int height, Zim32f defaultVal, int scaleFactor);
ZIMSR_API ZimStatus zimsLogGaussMixture_SelectIdVarScaled_16s32f_D2(const Zim16s* src, const Zim16s* mean, int step,
                                                                    int width, const Zim32f* val, const Zim8u* table,
                                                                    int gaussCount, Zim32f* dst, int height,
                                                                    Zim32f defaultVal, int scaleFactor);
ZIMSR_API ZimStatus zimsLogGaussMixture_SelectIdVarScaled_16s32f_D2L(const Zim16s* const* srcRows,
                                                                     const Zim16s* const* meanRows, int width,
                                                                     const Zim32f* val, const Zim8u* table,
                                                                     int gaussCount, Zim32f* dst, int height,
                                                                     Zim32f defaultVal, int scaleFactor);
/** @} */

ZIMSR_END_DECLS

/** @} */
#endif
