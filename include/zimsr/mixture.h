/** @file
 *  Mixtures of diagonal Gaussians.
 *
 *  @defgroup mixture Mixtures of Gaussians
 *
 *  The score of a Gaussian, and what becomes of it: it stands by itself, or is folded into a running score, by maximum
 *  or by log-domain addition, or the scores of a whole mixture are summed. With score(x, g, c) the score of the group
 *  @ref loggauss of frame x under Gaussian g with the constant c, and \f$ \oplus \f$ the addition of the group
 *  @ref logdomain :
 *
 *  | name          | axis                 | result                                                            |
 *  |---------------|----------------------|-------------------------------------------------------------------|
 *  | `Max`         | frames, one Gaussian | srcDst[i] = max(srcDst[i], score(frame i, g, gconst))             |
 *  | `Add`         | frames, one Gaussian | srcDst[i] = score(frame i, g, gconst) \f$\oplus\f$ srcDst[i]      |
 *  | `MultiMix`    | Gaussians, one frame | srcDst[i] = score(src, Gaussian i, srcDst[i])                     |
 *  | `MaxMultiMix` | Gaussians, one frame | srcDst[i] = max(srcDst[i], score(src, Gaussian i, val[i]))        |
 *  | `AddMultiMix` | Gaussians, one frame | srcDst[i] = score(src, Gaussian i, val[i]) \f$\oplus\f$ srcDst[i] |
 *  | `Mixture`     | Gaussians, one frame | dst[0] = \f$\bigoplus_i\f$ score(src, Gaussian i, val[i])         |
 *
 *  - A block of frames, mat or rows, has height frames of width features, one a row; mean and invVar (1 / variance) of
 *    its one Gaussian are vectors of width elements, and gconst is the constant.
 *  - Of many Gaussians, row i of mean and row i of invVar belong to Gaussian i, i = 0 .. height - 1. In the `D2` form
 *    both matrices have the same step. val holds height constants, with the log-weights in them as
 *    `zimsOutProbPreCalc` makes them.
 *  - srcDst holds height running scores, which the caller starts: #ZIMSLOGZERO_F (-1e10 in `_64f`) is neutral.
 *  - `IdVar`: the variances are 1, and invVar falls away.
 *
 *  **Arithmetic.** A score has the bits that `zimsLogGauss` of the same type, variance and matrix form gives a frame,
 *  and `zimsLogGaussSingle` one frame under many Gaussians. The maximum keeps the running score where both are equal,
 *  and where the new score is NaN. `Add` and `AddMultiMix` add in the accurate arithmetic (hint 0). `Mixture` sums as
 *  `zimsLogSum` of its type does, 100 Gaussians at a time: the sum so far stands in front of the next 100 scores. The
 *  exception stands with its function. A Gaussian far from the frame is cheap to add: a group whose scores all lie too
 *  far below the running ones costs no polynomial.
 *
 *  The result may not overlap the operands.
 *
 *  @return #zimStsOk, or the first of
 *          - `D2`: #zimStsBadStride when step is below width; #zimStsNullPointer when a pointer is null; #zimStsBadSize
 *            when width or height is below 1;
 *          - `D2` of `Mixture`: #zimStsNullPointer, then #zimStsBadStride, then #zimStsBadSize;
 *          - `D2L`: #zimStsNullPointer, then #zimStsBadSize.
 *
 *          A refused call has written nothing.
 *  @{
 */
#ifndef ZIMSR_MIXTURE_H
#define ZIMSR_MIXTURE_H

#include <zimsr/types.h>

ZIMSR_BEGIN_DECLS

/** @name Frames against one Gaussian, by maximum
 *  srcDst[i] = max(srcDst[i], score of frame i).
 *  @{
 */
ZIMSR_API ZimStatus zimsLogGaussMax_32f_D2(const Zim32f* mat, int step, const Zim32f* mean, const Zim32f* invVar,
                                           int width, Zim32f* srcDst, int height, Zim32f gconst);
ZIMSR_API ZimStatus zimsLogGaussMax_64f_D2(const Zim64f* mat, int step, const Zim64f* mean, const Zim64f* invVar,
                                           int width, Zim64f* srcDst, int height, Zim64f gconst);
ZIMSR_API ZimStatus zimsLogGaussMax_32f_D2L(const Zim32f* const* rows, const Zim32f* mean, const Zim32f* invVar,
                                            int width, Zim32f* srcDst, int height, Zim32f gconst);
ZIMSR_API ZimStatus zimsLogGaussMax_64f_D2L(const Zim64f* const* rows, const Zim64f* mean, const Zim64f* invVar,
                                            int width, Zim64f* srcDst, int height, Zim64f gconst);
ZIMSR_API ZimStatus zimsLogGaussMax_IdVar_32f_D2(const Zim32f* mat, int step, const Zim32f* mean, int width,
                                                 Zim32f* srcDst, int height, Zim32f gconst);
ZIMSR_API ZimStatus zimsLogGaussMax_IdVar_64f_D2(const Zim64f* mat, int step, const Zim64f* mean, int width,
                                                 Zim64f* srcDst, int height, Zim64f gconst);
ZIMSR_API ZimStatus zimsLogGaussMax_IdVar_32f_D2L(const Zim32f* const* rows, const Zim32f* mean, int width,
                                                  Zim32f* srcDst, int height, Zim32f gconst);
ZIMSR_API ZimStatus zimsLogGaussMax_IdVar_64f_D2L(const Zim64f* const* rows, const Zim64f* mean, int width,
                                                  Zim64f* srcDst, int height, Zim64f gconst);
/** Older name of zimsLogGaussMax_32f_D2. */
ZIMSR_API ZimStatus zimsLogGaussMax1_32f_D2(const Zim32f* mat, int step, const Zim32f* mean, const Zim32f* invVar,
                                            int width, Zim32f* srcDst, int height, Zim32f gconst);
/** @} */

/** @name Frames against one Gaussian, by log-domain addition
 *  srcDst[i] = ln(exp(score of frame i) + exp(srcDst[i])).
 *  @{
 */
ZIMSR_API ZimStatus zimsLogGaussAdd_32f_D2(const Zim32f* mat, int step, const Zim32f* mean, const Zim32f* invVar,
                                           int width, Zim32f* srcDst, int height, Zim32f gconst);
ZIMSR_API ZimStatus zimsLogGaussAdd_64f_D2(const Zim64f* mat, int step, const Zim64f* mean, const Zim64f* invVar,
                                           int width, Zim64f* srcDst, int height, Zim64f gconst);
ZIMSR_API ZimStatus zimsLogGaussAdd_32f_D2L(const Zim32f* const* rows, const Zim32f* mean, const Zim32f* invVar,
                                            int width, Zim32f* srcDst, int height, Zim32f gconst);
ZIMSR_API ZimStatus zimsLogGaussAdd_64f_D2L(const Zim64f* const* rows, const Zim64f* mean, const Zim64f* invVar,
                                            int width, Zim64f* srcDst, int height, Zim64f gconst);
ZIMSR_API ZimStatus zimsLogGaussAdd_IdVar_32f_D2(const Zim32f* mat, int step, const Zim32f* mean, int width,
                                                 Zim32f* srcDst, int height, Zim32f gconst);
ZIMSR_API ZimStatus zimsLogGaussAdd_IdVar_64f_D2(const Zim64f* mat, int step, const Zim64f* mean, int width,
                                                 Zim64f* srcDst, int height, Zim64f gconst);
ZIMSR_API ZimStatus zimsLogGaussAdd_IdVar_32f_D2L(const Zim32f* const* rows, const Zim32f* mean, int width,
                                                  Zim32f* srcDst, int height, Zim32f gconst);
ZIMSR_API ZimStatus zimsLogGaussAdd_IdVar_64f_D2L(const Zim64f* const* rows, const Zim64f* mean, int width,
                                                  Zim64f* srcDst, int height, Zim64f gconst);
/** Older name of zimsLogGaussAdd_32f_D2. */
ZIMSR_API ZimStatus zimsLogGaussAdd1_32f_D2(const Zim32f* mat, int step, const Zim32f* mean, const Zim32f* invVar,
                                            int width, Zim32f* srcDst, int height, Zim32f gconst);
/** @} */

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

/** @name One frame against many Gaussians, by maximum
 *  srcDst[i] = max(srcDst[i], score of src under Gaussian i with the constant val[i]).
 *  @{
 */
ZIMSR_API ZimStatus zimsLogGaussMaxMultiMix_32f_D2(const Zim32f* mean, const Zim32f* invVar, int step,
                                                   const Zim32f* src, int width, const Zim32f* val, Zim32f* srcDst,
                                                   int height);
ZIMSR_API ZimStatus zimsLogGaussMaxMultiMix_64f_D2(const Zim64f* mean, const Zim64f* invVar, int step,
                                                   const Zim64f* src, int width, const Zim64f* val, Zim64f* srcDst,
                                                   int height);
ZIMSR_API ZimStatus zimsLogGaussMaxMultiMix_32f_D2L(const Zim32f* const* meanRows, const Zim32f* const* invVarRows,
                                                    const Zim32f* src, int width, const Zim32f* val, Zim32f* srcDst,
                                                    int height);
ZIMSR_API ZimStatus zimsLogGaussMaxMultiMix_64f_D2L(const Zim64f* const* meanRows, const Zim64f* const* invVarRows,
                                                    const Zim64f* src, int width, const Zim64f* val, Zim64f* srcDst,
                                                    int height);
/** @} */

/** @name One frame against many Gaussians, by log-domain addition
 *  srcDst[i] = ln(exp(score of src under Gaussian i with the constant val[i]) + exp(srcDst[i])).
 *  @{
 */
ZIMSR_API ZimStatus zimsLogGaussAddMultiMix_32f_D2(const Zim32f* mean, const Zim32f* invVar, int step,
                                                   const Zim32f* src, int width, const Zim32f* val, Zim32f* srcDst,
                                                   int height);
ZIMSR_API ZimStatus zimsLogGaussAddMultiMix_64f_D2(const Zim64f* mean, const Zim64f* invVar, int step,
                                                   const Zim64f* src, int width, const Zim64f* val, Zim64f* srcDst,
                                                   int height);
ZIMSR_API ZimStatus zimsLogGaussAddMultiMix_32f_D2L(const Zim32f* const* meanRows, const Zim32f* const* invVarRows,
                                                    const Zim32f* src, int width, const Zim32f* val, Zim32f* srcDst,
                                                    int height);
ZIMSR_API ZimStatus zimsLogGaussAddMultiMix_64f_D2L(const Zim64f* const* meanRows, const Zim64f* const* invVarRows,
                                                    const Zim64f* src, int width, const Zim64f* val, Zim64f* srcDst,
                                                    int height);
/** Older name of zimsLogGaussAddMultiMix_32f_D2. */
ZIMSR_API ZimStatus zimsLogGaussAdd2_32f_D2(const Zim32f* mean, const Zim32f* invVar, int step, const Zim32f* src,
                                            int width, const Zim32f* val, Zim32f* srcDst, int height);
/** @} */

/** @name One frame against a whole mixture
 *  dst[0] = ln of the sum over i of exp(score of src under Gaussian i with the constant val[i]).
 *  @{
 */
ZIMSR_API ZimStatus zimsLogGaussMixture_32f_D2(const Zim32f* src, const Zim32f* mean, const Zim32f* invVar, int height,
                                               int step, int width, const Zim32f* val, Zim32f* dst);
ZIMSR_API ZimStatus zimsLogGaussMixture_64f_D2(const Zim64f* src, const Zim64f* mean, const Zim64f* invVar, int height,
                                               int step, int width, const Zim64f* val, Zim64f* dst);
ZIMSR_API ZimStatus zimsLogGaussMixture_32f_D2L(const Zim32f* src, const Zim32f* const* meanRows,
                                                const Zim32f* const* invVarRows, int height, int width,
                                                const Zim32f* val, Zim32f* dst);
ZIMSR_API ZimStatus zimsLogGaussMixture_64f_D2L(const Zim64f* src, const Zim64f* const* meanRows,
                                                const Zim64f* const* invVarRows, int height, int width,
                                                const Zim64f* val, Zim64f* dst);
/** This one adds the Gaussians in their order, one by one, in the accurate arithmetic; the running sum is rounded to
 *  `Zim32f` at each. */
ZIMSR_API ZimStatus zimsLogGaussMixture_IdVar_32f_D2(const Zim32f* src, const Zim32f* mean, int height, int step,
                                                     int width, const Zim32f* val, Zim32f* dst);
ZIMSR_API ZimStatus zimsLogGaussMixture_IdVar_64f_D2(const Zim64f* src, const Zim64f* mean, int height, int step,
                                                     int width, const Zim64f* val, Zim64f* dst);
ZIMSR_API ZimStatus zimsLogGaussMixture_IdVar_32f_D2L(const Zim32f* src, const Zim32f* const* meanRows, int height,
                                                      int width, const Zim32f* val, Zim32f* dst);
ZIMSR_API ZimStatus zimsLogGaussMixture_IdVar_64f_D2L(const Zim64f* src, const Zim64f* const* meanRows, int height,
                                                      int width, const Zim64f* val, Zim64f* dst);
/** @} */

ZIMSR_END_DECLS

/** @} */
#endif
