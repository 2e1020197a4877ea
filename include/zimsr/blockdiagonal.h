/** @file
 *  Log-likelihood under a Gaussian whose inverse covariance is block-diagonal.
 *
 *  @defgroup blockdiagonal Block-diagonal Gaussians
 *
 *  A covariance between diagonal and full: features of one kind, such as the cepstra and each of their derivatives,
 *  depend on each other, features of different kinds do not. With the inverse covariance M made of square blocks along
 *  the diagonal, the score of a feature vector x is
 *
 *      d[i] = x[i] - mean[i]
 *      q    = sum over blocks b, over rows i of b, of d[i] * (sum over columns j of b of M[i][j] * d[j])
 *      score = gconst - 0.5 * q
 *
 *  where gconst is the score at x = mean. M is taken as it is given: that it is symmetric is the caller's business.
 *
 *  A matrix object is only read by the scores, so that any number of threads may share one.
 *
 *  Reference: M. J. F. Gales, "Semi-tied covariance matrices for hidden Markov models", IEEE Transactions on Speech and
 *  Audio Processing 7 (1999), for covariances between diagonal and full.
 *  @{
 */
#ifndef ZIMSR_BLOCKDIAGONAL_H
#define ZIMSR_BLOCKDIAGONAL_H

#include <zimsr/types.h>

ZIMSR_BEGIN_DECLS

/** Block-diagonal matrices of each element type. */
typedef struct ZimsBlockDMatrix_32f ZimsBlockDMatrix_32f;
typedef struct ZimsBlockDMatrix_64f ZimsBlockDMatrix_64f;
typedef struct ZimsBlockDMatrix_16s ZimsBlockDMatrix_16s;

/** @name The matrix
 *  `InitAlloc` makes a matrix of blockCount blocks, where block b has blockSizes[b] rows and columns, and writes its
 *  address to *matrix. rows has one pointer for each row of the matrix in the order of the blocks, to the elements
 * inside the row's block. Sizes and elements are copied; the caller's arrays are not needed afterwards. `Free` releases
 * all of it.
 *
 *  @return of `InitAlloc`: #zimStsNullPointer when matrix, rows or blockSizes is null; #zimStsBadSize when blockCount
 * or a block size is below 1; #zimStsAllocFailed when there is no memory or the dimension does not fit an `int`; in
 *          each case *matrix is not written. Of `Free`: #zimStsNullPointer when matrix is null.
 *  @{
 */
ZIMSR_API ZimStatus zimsBlockDMatrixInitAlloc_32f(ZimsBlockDMatrix_32f** matrix, const Zim32f* const* rows,
                                                  const Zim32s* blockSizes, int blockCount);
ZIMSR_API ZimStatus zimsBlockDMatrixInitAlloc_64f(ZimsBlockDMatrix_64f** matrix, const Zim64f* const* rows,
                                                  const Zim32s* blockSizes, int blockCount);
ZIMSR_API ZimStatus zimsBlockDMatrixInitAlloc_16s(ZimsBlockDMatrix_16s** matrix, const Zim16s* const* rows,
                                                  const Zim32s* blockSizes, int blockCount);
ZIMSR_API ZimStatus zimsBlockDMatrixFree_32f(ZimsBlockDMatrix_32f* matrix);
ZIMSR_API ZimStatus zimsBlockDMatrixFree_64f(ZimsBlockDMatrix_64f* matrix);
ZIMSR_API ZimStatus zimsBlockDMatrixFree_16s(ZimsBlockDMatrix_16s* matrix);
/** @} */

/** @name Scores
 *  dst[0] = score of src[0 .. len - 1], where len is the dimension of the matrix.
 *
 *  - `_32f`: d, the sums over rows and q in `Zim32f`; the last step in `Zim64f`, rounded once.
 *  - `_64f`: all in `Zim64f`.
 *  - `_32f64f`: d and the sums over rows in `Zim32f`; their products, q and the score in `Zim64f`.
 *  - `Scaled_16s32f`: score = gconst + (0 - 0.5 * q) * 2^-scaleFactor. d saturates in 16 bits; each d[j] * M[i][j] is
 * an exact integer, and all else is in `Zim32f`.
 *  - `16s32s_Sfs`: q as before, then gconst - 0.5 * (q * 2^-scaleFactor) in `Zim32f`, limited to 32 bits and truncated
 *    toward zero.
 *  - `_16s32f` is `Scaled_16s32f` with the scale factor 0.
 *
 *  2^-scaleFactor is infinite at or below the scale factor -128, where a q of 0 stays 0, and 0 at or above 150.
 *
 *  @return #zimStsNullPointer when a pointer is null; #zimStsBadSize when len is below 1 or not the dimension of the
 *          matrix; #zimStsAllocFailed when len is 112 or more and there is no working memory. Nothing is written then.
 *  @{
 */
ZIMSR_API ZimStatus zimsLogGaussSingle_BlockDVar_32f(const Zim32f* src, const Zim32f* mean,
                                                     const ZimsBlockDMatrix_32f* matrix, int len, Zim32f* dst,
                                                     Zim32f gconst);
ZIMSR_API ZimStatus zimsLogGaussSingle_BlockDVar_64f(const Zim64f* src, const Zim64f* mean,
                                                     const ZimsBlockDMatrix_64f* matrix, int len, Zim64f* dst,
                                                     Zim64f gconst);
ZIMSR_API ZimStatus zimsLogGaussSingle_BlockDVar_32f64f(const Zim32f* src, const Zim32f* mean,
                                                        const ZimsBlockDMatrix_32f* matrix, int len, Zim64f* dst,
                                                        Zim64f gconst);
ZIMSR_API ZimStatus zimsLogGaussSingle_BlockDVarScaled_16s32f(const Zim16s* src, const Zim16s* mean,
                                                              const ZimsBlockDMatrix_16s* matrix, int len, Zim32f* dst,
                                                              Zim32f gconst, int scaleFactor);
ZIMSR_API ZimStatus zimsLogGaussSingle_BlockDVar_16s32s_Sfs(const Zim16s* src, const Zim16s* mean,
                                                            const ZimsBlockDMatrix_16s* matrix, int len, Zim32s* dst,
                                                            Zim32s gconst, int scaleFactor);
ZIMSR_API ZimStatus zimsLogGaussSingle_BlockDVar_16s32f(const Zim16s* src, const Zim16s* mean,
                                                        const ZimsBlockDMatrix_16s* matrix, int len, Zim32f* dst,
                                                        Zim32f gconst);
/** @} */

ZIMSR_END_DECLS

/** @} */
#endif
