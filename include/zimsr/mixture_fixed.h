/** @file
 *  Mixtures of diagonal Gaussians, in fixed point.
 *
 *  @addtogroup mixture
 *
 *  **In fixed point.** The same folds of the scores of the group @ref loggauss_fixed, whose words for the arithmetics
 *  and for scaleFactor hold here too. Without `Scaled`, a `16s32f` form that has no scaleFactor has the factor 0; the
 *  others are older names of the `Scaled` forms.
 *
 *  - The scores of frames are those of `zimsLogGauss` of the same name, so that the last of an odd number of frames has
 *    an arithmetic of its own in `Low` forms.
 *  - One frame against many Gaussians is scored like a block: `Low` forms take the Gaussians in pairs, and the last of
 *    an odd number as the last frame of an odd number. The `IdVar` forms of `Mixture` score one Gaussian after the
 *    other as `zimsLogGaussSingle` does.
 *  - The maximum of `Zim32s` scores. In `16s32s` forms that are not `Low` the score stays a float until it is compared,
 *    with the running score as a float; the greater of the two is truncated, and limited to the `Zim32s` range. All of
 *    it is done with rounding toward zero, whatever the caller has set, which is as it was afterwards. A running score
 *    beyond 2^24 loses its low bits even where it stays the greatest. `Low` forms with a scaleFactor of 0 or more
 *    (`IdVarLow`: -1 or more) compare integers; with a smaller one they compare floats and truncate as above, but with
 *    the caller's rounding.
 *  - `Add` adds in the accurate arithmetic (hint 0), but for `zimsLogGaussAdd_Scaled_16s32f_D2L` where all rows, mean,
 *    invVar and srcDst are aligned to 16 bytes, and `zimsLogGaussAdd_IdVarScaled_16s32f_D2` where mat and mean are,
 *    step is a multiple of 8 and width is at least 4: these add in the fast arithmetic (hint 1).
 *
 *  A `D2` form of `Mixture`, too, checks the stride first. `zimsLogGaussMaxMultiMix_Scaled_16s32f_D2` and
 *  `zimsLogGaussMaxMultiMix_LowScaled_16s32f_D2` check it last, after pointers and sizes.
 *  @{
 */
#ifndef ZIMSR_MIXTURE_FIXED_H
#define ZIMSR_MIXTURE_FIXED_H

#include <zimsr/types.h>

ZIMSR_BEGIN_DECLS

/** @name 16-bit frames against one Gaussian, by maximum
 *  @{
 */
ZIMSR_API ZimStatus zimsLogGaussMax_16s32s_D2Sfs(const Zim16s* mat, int step, const Zim16s* mean, const Zim16s* invVar,
                                                 int width, Zim32s* srcDst, int height, Zim32s gconst, int scaleFactor);
ZIMSR_API ZimStatus zimsLogGaussMax_Scaled_16s32f_D2(const Zim16s* mat, int step, const Zim16s* mean,
                                                     const Zim16s* invVar, int width, Zim32f* srcDst, int height,
                                                     Zim32f gconst, int scaleFactor);
ZIMSR_API ZimStatus zimsLogGaussMax_16s32s_D2LSfs(const Zim16s* const* rows, const Zim16s* mean, const Zim16s* invVar,
                                                  int width, Zim32s* srcDst, int height, Zim32s gconst,
                                                  int scaleFactor);
ZIMSR_API ZimStatus zimsLogGaussMax_Scaled_16s32f_D2L(const Zim16s* const* rows, const Zim16s* mean,
                                                      const Zim16s* invVar, int width, Zim32f* srcDst, int height,
                                                      Zim32f gconst, int scaleFactor);
ZIMSR_API ZimStatus zimsLogGaussMax_IdVar_16s32s_D2Sfs(const Zim16s* mat, int step, const Zim16s* mean, int width,
                                                       Zim32s* srcDst, int height, Zim32s gconst, int scaleFactor);
ZIMSR_API ZimStatus zimsLogGaussMax_IdVarScaled_16s32f_D2(const Zim16s* mat, int step, const Zim16s* mean, int width,
                                                          Zim32f* srcDst, int height, Zim32f gconst, int scaleFactor);
ZIMSR_API ZimStatus zimsLogGaussMax_IdVar_16s32s_D2LSfs(const Zim16s* const* rows, const Zim16s* mean, int width,
                                                        Zim32s* srcDst, int height, Zim32s gconst, int scaleFactor);
ZIMSR_API ZimStatus zimsLogGaussMax_IdVarScaled_16s32f_D2L(const Zim16s* const* rows, const Zim16s* mean, int width,
                                                           Zim32f* srcDst, int height, Zim32f gconst, int scaleFactor);
ZIMSR_API ZimStatus zimsLogGaussMax_16s32f_D2(const Zim16s* mat, int step, const Zim16s* mean, const Zim16s* invVar,
                                              int width, Zim32f* srcDst, int height, Zim32f gconst);
ZIMSR_API ZimStatus zimsLogGaussMax_16s32f_D2L(const Zim16s* const* rows, const Zim16s* mean, const Zim16s* invVar,
                                               int width, Zim32f* srcDst, int height, Zim32f gconst);
ZIMSR_API ZimStatus zimsLogGaussMax_IdVar_16s32f_D2(const Zim16s* mat, int step, const Zim16s* mean, int width,
                                                    Zim32f* srcDst, int height, Zim32f gconst);
ZIMSR_API ZimStatus zimsLogGaussMax_IdVar_16s32f_D2L(const Zim16s* const* rows, const Zim16s* mean, int width,
                                                     Zim32f* srcDst, int height, Zim32f gconst);
/** @} */

/** @name 16-bit frames against one Gaussian, by maximum, in integers
 *  @{
 */
ZIMSR_API ZimStatus zimsLogGaussMax_Low_16s32s_D2Sfs(const Zim16s* mat, int step, const Zim16s* mean,
                                                     const Zim16s* invVar, int width, Zim32s* srcDst, int height,
                                                     Zim32s gconst, int scaleFactor);
ZIMSR_API ZimStatus zimsLogGaussMax_LowScaled_16s32f_D2(const Zim16s* mat, int step, const Zim16s* mean,
                                                        const Zim16s* invVar, int width, Zim32f* srcDst, int height,
                                                        Zim32f gconst, int scaleFactor);
ZIMSR_API ZimStatus zimsLogGaussMax_Low_16s32s_D2LSfs(const Zim16s* const* rows, const Zim16s* mean,
                                                      const Zim16s* invVar, int width, Zim32s* srcDst, int height,
                                                      Zim32s gconst, int scaleFactor);
ZIMSR_API ZimStatus zimsLogGaussMax_LowScaled_16s32f_D2L(const Zim16s* const* rows, const Zim16s* mean,
                                                         const Zim16s* invVar, int width, Zim32f* srcDst, int height,
                                                         Zim32f gconst, int scaleFactor);
ZIMSR_API ZimStatus zimsLogGaussMax_IdVarLow_16s32s_D2Sfs(const Zim16s* mat, int step, const Zim16s* mean, int width,
                                                          Zim32s* srcDst, int height, Zim32s gconst, int scaleFactor);
ZIMSR_API ZimStatus zimsLogGaussMax_IdVarLowScaled_16s32f_D2(const Zim16s* mat, int step, const Zim16s* mean, int width,
                                                             Zim32f* srcDst, int height, Zim32f gconst,
                                                             int scaleFactor);
ZIMSR_API ZimStatus zimsLogGaussMax_IdVarLow_16s32s_D2LSfs(const Zim16s* const* rows, const Zim16s* mean, int width,
                                                           Zim32s* srcDst, int height, Zim32s gconst, int scaleFactor);
ZIMSR_API ZimStatus zimsLogGaussMax_IdVarLowScaled_16s32f_D2L(const Zim16s* const* rows, const Zim16s* mean, int width,
                                                              Zim32f* srcDst, int height, Zim32f gconst,
                                                              int scaleFactor);
/** @} */

/** @name 16-bit frames against one Gaussian, by log-domain addition
 *  @{
 */
ZIMSR_API ZimStatus zimsLogGaussAdd_Scaled_16s32f_D2(const Zim16s* mat, int step, const Zim16s* mean,
                                                     const Zim16s* invVar, int width, Zim32f* srcDst, int height,
                                                     Zim32f gconst, int scaleFactor);
ZIMSR_API ZimStatus zimsLogGaussAdd_Scaled_16s32f_D2L(const Zim16s* const* rows, const Zim16s* mean,
                                                      const Zim16s* invVar, int width, Zim32f* srcDst, int height,
                                                      Zim32f gconst, int scaleFactor);
ZIMSR_API ZimStatus zimsLogGaussAdd_IdVarScaled_16s32f_D2(const Zim16s* mat, int step, const Zim16s* mean, int width,
                                                          Zim32f* srcDst, int height, Zim32f gconst, int scaleFactor);
ZIMSR_API ZimStatus zimsLogGaussAdd_IdVarScaled_16s32f_D2L(const Zim16s* const* rows, const Zim16s* mean, int width,
                                                           Zim32f* srcDst, int height, Zim32f gconst, int scaleFactor);
ZIMSR_API ZimStatus zimsLogGaussAdd_LowScaled_16s32f_D2(const Zim16s* mat, int step, const Zim16s* mean,
                                                        const Zim16s* invVar, int width, Zim32f* srcDst, int height,
                                                        Zim32f gconst, int scaleFactor);
ZIMSR_API ZimStatus zimsLogGaussAdd_LowScaled_16s32f_D2L(const Zim16s* const* rows, const Zim16s* mean,
                                                         const Zim16s* invVar, int width, Zim32f* srcDst, int height,
                                                         Zim32f gconst, int scaleFactor);
ZIMSR_API ZimStatus zimsLogGaussAdd_IdVarLowScaled_16s32f_D2(const Zim16s* mat, int step, const Zim16s* mean, int width,
                                                             Zim32f* srcDst, int height, Zim32f gconst,
                                                             int scaleFactor);
ZIMSR_API ZimStatus zimsLogGaussAdd_IdVarLowScaled_16s32f_D2L(const Zim16s* const* rows, const Zim16s* mean, int width,
                                                              Zim32f* srcDst, int height, Zim32f gconst,
                                                              int scaleFactor);
ZIMSR_API ZimStatus zimsLogGaussAdd_16s32f_D2(const Zim16s* mat, int step, const Zim16s* mean, const Zim16s* invVar,
                                              int width, Zim32f* srcDst, int height, Zim32f gconst, int scaleFactor);
ZIMSR_API ZimStatus zimsLogGaussAdd_16s32f_D2L(const Zim16s* const* rows, const Zim16s* mean, const Zim16s* invVar,
                                               int width, Zim32f* srcDst, int height, Zim32f gconst, int scaleFactor);
ZIMSR_API ZimStatus zimsLogGaussAdd_IdVar_16s32f_D2(const Zim16s* mat, int step, const Zim16s* mean, int width,
                                                    Zim32f* srcDst, int height, Zim32f gconst, int scaleFactor);
ZIMSR_API ZimStatus zimsLogGaussAdd_IdVar_16s32f_D2L(const Zim16s* const* rows, const Zim16s* mean, int width,
                                                     Zim32f* srcDst, int height, Zim32f gconst, int scaleFactor);
/** @} */

/** @name One 16-bit frame against many Gaussians
 *  srcDst holds the constants on entry and the scores on return.
 *  @{
 */
ZIMSR_API ZimStatus zimsLogGaussMultiMix_16s32s_D2Sfs(const Zim16s* mean, const Zim16s* invVar, int step,
                                                      const Zim16s* src, int width, Zim32s* srcDst, int height,
                                                      int scaleFactor);
ZIMSR_API ZimStatus zimsLogGaussMultiMix_Scaled_16s32f_D2(const Zim16s* mean, const Zim16s* invVar, int step,
                                                          const Zim16s* src, int width, Zim32f* srcDst, int height,
                                                          int scaleFactor);
ZIMSR_API ZimStatus zimsLogGaussMultiMix_16s32s_D2LSfs(const Zim16s* const* meanRows, const Zim16s* const* invVarRows,
                                                       const Zim16s* src, int width, Zim32s* srcDst, int height,
                                                       int scaleFactor);
ZIMSR_API ZimStatus zimsLogGaussMultiMix_Scaled_16s32f_D2L(const Zim16s* const* meanRows,
                                                           const Zim16s* const* invVarRows, const Zim16s* src,
                                                           int width, Zim32f* srcDst, int height, int scaleFactor);
ZIMSR_API ZimStatus zimsLogGaussMultiMix_Low_16s32s_D2Sfs(const Zim16s* mean, const Zim16s* invVar, int step,
                                                          const Zim16s* src, int width, Zim32s* srcDst, int height,
                                                          int scaleFactor);
ZIMSR_API ZimStatus zimsLogGaussMultiMix_LowScaled_16s32f_D2(const Zim16s* mean, const Zim16s* invVar, int step,
                                                             const Zim16s* src, int width, Zim32f* srcDst, int height,
                                                             int scaleFactor);
ZIMSR_API ZimStatus zimsLogGaussMultiMix_Low_16s32s_D2LSfs(const Zim16s* const* meanRows,
                                                           const Zim16s* const* invVarRows, const Zim16s* src,
                                                           int width, Zim32s* srcDst, int height, int scaleFactor);
ZIMSR_API ZimStatus zimsLogGaussMultiMix_LowScaled_16s32f_D2L(const Zim16s* const* meanRows,
                                                              const Zim16s* const* invVarRows, const Zim16s* src,
                                                              int width, Zim32f* srcDst, int height, int scaleFactor);
ZIMSR_API ZimStatus zimsLogGaussMultiMix_16s32f_D2(const Zim16s* mean, const Zim16s* invVar, int step,
                                                   const Zim16s* src, int width, Zim32f* srcDst, int height);
ZIMSR_API ZimStatus zimsLogGaussMultiMix_16s32f_D2L(const Zim16s* const* meanRows, const Zim16s* const* invVarRows,
                                                    const Zim16s* src, int width, Zim32f* srcDst, int height);
ZIMSR_API ZimStatus zimsLogGaussMultiMix_Low_16s32f_D2(const Zim16s* mean, const Zim16s* invVar, int step,
                                                       const Zim16s* src, int width, Zim32f* srcDst, int height);
ZIMSR_API ZimStatus zimsLogGaussMultiMix_Low_16s32f_D2L(const Zim16s* const* meanRows, const Zim16s* const* invVarRows,
                                                        const Zim16s* src, int width, Zim32f* srcDst, int height);
/** @} */

/** @name One 16-bit frame against many Gaussians, by maximum
 *  @{
 */
ZIMSR_API ZimStatus zimsLogGaussMaxMultiMix_16s32s_D2Sfs(const Zim16s* mean, const Zim16s* invVar, int step,
                                                         const Zim16s* src, int width, const Zim32s* val,
                                                         Zim32s* srcDst, int height, int scaleFactor);
ZIMSR_API ZimStatus zimsLogGaussMaxMultiMix_Scaled_16s32f_D2(const Zim16s* mean, const Zim16s* invVar, int step,
                                                             const Zim16s* src, int width, const Zim32f* val,
                                                             Zim32f* srcDst, int height, int scaleFactor);
ZIMSR_API ZimStatus zimsLogGaussMaxMultiMix_16s32s_D2LSfs(const Zim16s* const* meanRows,
                                                          const Zim16s* const* invVarRows, const Zim16s* src, int width,
                                                          const Zim32s* val, Zim32s* srcDst, int height,
                                                          int scaleFactor);
ZIMSR_API ZimStatus zimsLogGaussMaxMultiMix_Scaled_16s32f_D2L(const Zim16s* const* meanRows,
                                                              const Zim16s* const* invVarRows, const Zim16s* src,
                                                              int width, const Zim32f* val, Zim32f* srcDst, int height,
                                                              int scaleFactor);
ZIMSR_API ZimStatus zimsLogGaussMaxMultiMix_Low_16s32s_D2Sfs(const Zim16s* mean, const Zim16s* invVar, int step,
                                                             const Zim16s* src, int width, const Zim32s* val,
                                                             Zim32s* srcDst, int height, int scaleFactor);
ZIMSR_API ZimStatus zimsLogGaussMaxMultiMix_LowScaled_16s32f_D2(const Zim16s* mean, const Zim16s* invVar, int step,
                                                                const Zim16s* src, int width, const Zim32f* val,
                                                                Zim32f* srcDst, int height, int scaleFactor);
ZIMSR_API ZimStatus zimsLogGaussMaxMultiMix_Low_16s32s_D2LSfs(const Zim16s* const* meanRows,
                                                              const Zim16s* const* invVarRows, const Zim16s* src,
                                                              int width, const Zim32s* val, Zim32s* srcDst, int height,
                                                              int scaleFactor);
ZIMSR_API ZimStatus zimsLogGaussMaxMultiMix_LowScaled_16s32f_D2L(const Zim16s* const* meanRows,
                                                                 const Zim16s* const* invVarRows, const Zim16s* src,
                                                                 int width, const Zim32f* val, Zim32f* srcDst,
                                                                 int height, int scaleFactor);
ZIMSR_API ZimStatus zimsLogGaussMaxMultiMix_16s32f_D2(const Zim16s* mean, const Zim16s* invVar, int step,
                                                      const Zim16s* src, int width, const Zim32f* val, Zim32f* srcDst,
                                                      int height);
ZIMSR_API ZimStatus zimsLogGaussMaxMultiMix_16s32f_D2L(const Zim16s* const* meanRows, const Zim16s* const* invVarRows,
                                                       const Zim16s* src, int width, const Zim32f* val, Zim32f* srcDst,
                                                       int height);
/** @} */

/** @name One 16-bit frame against many Gaussians, by log-domain addition
 *  @{
 */
ZIMSR_API ZimStatus zimsLogGaussAddMultiMix_Scaled_16s32f_D2(const Zim16s* mean, const Zim16s* invVar, int step,
                                                             const Zim16s* src, int width, const Zim32f* val,
                                                             Zim32f* srcDst, int height, int scaleFactor);
ZIMSR_API ZimStatus zimsLogGaussAddMultiMix_Scaled_16s32f_D2L(const Zim16s* const* meanRows,
                                                              const Zim16s* const* invVarRows, const Zim16s* src,
                                                              int width, const Zim32f* val, Zim32f* srcDst, int height,
                                                              int scaleFactor);
ZIMSR_API ZimStatus zimsLogGaussAddMultiMix_LowScaled_16s32f_D2(const Zim16s* mean, const Zim16s* invVar, int step,
                                                                const Zim16s* src, int width, const Zim32f* val,
                                                                Zim32f* srcDst, int height, int scaleFactor);
ZIMSR_API ZimStatus zimsLogGaussAddMultiMix_LowScaled_16s32f_D2L(const Zim16s* const* meanRows,
                                                                 const Zim16s* const* invVarRows, const Zim16s* src,
                                                                 int width, const Zim32f* val, Zim32f* srcDst,
                                                                 int height, int scaleFactor);
ZIMSR_API ZimStatus zimsLogGaussAddMultiMix_16s32f_D2(const Zim16s* mean, const Zim16s* invVar, int step,
                                                      const Zim16s* src, int width, const Zim32f* val, Zim32f* srcDst,
                                                      int height, int scaleFactor);
ZIMSR_API ZimStatus zimsLogGaussAddMultiMix_16s32f_D2L(const Zim16s* const* meanRows, const Zim16s* const* invVarRows,
                                                       const Zim16s* src, int width, const Zim32f* val, Zim32f* srcDst,
                                                       int height, int scaleFactor);
/** @} */

/** @name One 16-bit frame against a whole mixture
 *  *dst is the sum over all Gaussians.
 *  @{
 */
ZIMSR_API ZimStatus zimsLogGaussMixture_Scaled_16s32f_D2(const Zim16s* src, const Zim16s* mean, const Zim16s* invVar,
                                                         int height, int step, int width, const Zim32f* val,
                                                         Zim32f* dst, int scaleFactor);
ZIMSR_API ZimStatus zimsLogGaussMixture_Scaled_16s32f_D2L(const Zim16s* src, const Zim16s* const* meanRows,
                                                          const Zim16s* const* invVarRows, int height, int width,
                                                          const Zim32f* val, Zim32f* dst, int scaleFactor);
ZIMSR_API ZimStatus zimsLogGaussMixture_IdVarScaled_16s32f_D2(const Zim16s* src, const Zim16s* mean, int height,
                                                              int step, int width, const Zim32f* val, Zim32f* dst,
                                                              int scaleFactor);
ZIMSR_API ZimStatus zimsLogGaussMixture_IdVarScaled_16s32f_D2L(const Zim16s* src, const Zim16s* const* meanRows,
                                                               int height, int width, const Zim32f* val, Zim32f* dst,
                                                               int scaleFactor);
ZIMSR_API ZimStatus zimsLogGaussMixture_LowScaled_16s32f_D2(const Zim16s* src, const Zim16s* mean, const Zim16s* invVar,
                                                            int height, int step, int width, const Zim32f* val,
                                                            Zim32f* dst, int scaleFactor);
ZIMSR_API ZimStatus zimsLogGaussMixture_LowScaled_16s32f_D2L(const Zim16s* src, const Zim16s* const* meanRows,
                                                             const Zim16s* const* invVarRows, int height, int width,
                                                             const Zim32f* val, Zim32f* dst, int scaleFactor);
ZIMSR_API ZimStatus zimsLogGaussMixture_IdVarLowScaled_16s32f_D2(const Zim16s* src, const Zim16s* mean, int height,
                                                                 int step, int width, const Zim32f* val, Zim32f* dst,
                                                                 int scaleFactor);
ZIMSR_API ZimStatus zimsLogGaussMixture_IdVarLowScaled_16s32f_D2L(const Zim16s* src, const Zim16s* const* meanRows,
                                                                  int height, int width, const Zim32f* val, Zim32f* dst,
                                                                  int scaleFactor);
/** @} */

ZIMSR_END_DECLS

/** @} */
#endif
