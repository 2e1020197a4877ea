/** @file
 *  Model parameter updates.
 *
 *  @defgroup update Model parameter updates
 *
 *  The last steps of a re-estimation pass over Gaussian mixtures: from the accumulators of a pass come new means,
 *  variances and mixture weights, and from these the constants of the scores in @ref loggauss and @ref mixture. The
 *  way of one mixture of diagonal Gaussians with n features:
 *
 *  1. For every frame x and every Gaussian with the share val of that frame, `zimsMeanVarAcc` adds val * (x - mean) to
 *     meanAcc and val * (x - mean)^2 to varAcc, and the caller adds val to the Gaussian's occupancy.
 *  2. `zimsUpdateVar` and `zimsUpdateMean` give each Gaussian its parameters, `zimsUpdateWeight` the mixture its
 *     weights, all of the occupancies being wgtAcc there.
 *  3. `zimsUpdateGConst` gives \f$ G = n \ln 2\pi + \sum_j \ln \sigma^2_j \f$ of each Gaussian, and
 *     `zimsOutProbPreCalc` the vector of logWeight - G / 2: the gconst of the scores.
 *
 *  Baum, Petrie, Soules, Weiss, "A maximization technique occurring in the statistical analysis of probabilistic
 *  functions of Markov chains", Annals of Mathematical Statistics 41 (1970); Liporace, "Maximum likelihood estimation
 *  for multivariate observations of Markov sources", IEEE Transactions on Information Theory 28 (1982).
 *
 *  Every operation is one of the element's type, rounded by itself, unless the function tells otherwise. Vectors have
 *  len elements, i = 0 .. len - 1. An output vector may be one of the inputs; it may overlap them otherwise only in
 *  #zimsUpdateMean_64f and #zimsNewVar_32f, which then go element after element and read what has been written.
 *
 *  All return #zimStsNullPointer when a pointer is null, then #zimStsBadSize when len is below 1, then what they name.
 * A refused call has written nothing.
 *  @{
 */
#ifndef ZIMSR_UPDATE_H
#define ZIMSR_UPDATE_H

#include <zimsr/types.h>

ZIMSR_BEGIN_DECLS

/** @name Means, variances and weights
 *  meanWgt, varWgt and wgtSum are occupancies: sums of the shares that were accumulated.
 *
 *      UpdateMean:    mean[i] = mean[i] + meanAcc[i] / meanWgt
 *      UpdateVar:     var[i] = max(varAcc[i] / varWgt - (meanAcc[i] / meanWgt)^2, varFloor[i])
 *      UpdateWeight:  weight[i] = max(wgtAcc[i] / wgtSum, wgtFloor);  *sum = sum of all weight[i]
 *
 *  A result that is not greater than its floor takes the floor; so does a NaN. The sum is that of the weights as they
 *  are written; floors may bring it above 1.
 *
 *  `_32f` multiplies by the reciprocals of the occupancies. `_64f` divides each element; only `zimsUpdateWeight_64f`
 *  multiplies.
 *
 *  @return #zimStsNegativeFactor when an occupancy is negative or NaN. #zimStsZeroOccupancy, a warning that nothing has
 *          been written, when one is at most the smallest normal number of the type (FLT_MIN, DBL_MIN).
 *          #zimStsResultFloored when every element took its floor.
 *  @{
 */
ZIMSR_API ZimStatus zimsUpdateMean_32f(const Zim32f* meanAcc, Zim32f* mean, int len, Zim32f meanWgt);
ZIMSR_API ZimStatus zimsUpdateMean_64f(const Zim64f* meanAcc, Zim64f* mean, int len, Zim64f meanWgt);
ZIMSR_API ZimStatus zimsUpdateVar_32f(const Zim32f* meanAcc, const Zim32f* varAcc, const Zim32f* varFloor, Zim32f* var,
                                      int len, Zim32f meanWgt, Zim32f varWgt);
ZIMSR_API ZimStatus zimsUpdateVar_64f(const Zim64f* meanAcc, const Zim64f* varAcc, const Zim64f* varFloor, Zim64f* var,
                                      int len, Zim64f meanWgt, Zim64f varWgt);
ZIMSR_API ZimStatus zimsUpdateWeight_32f(const Zim32f* wgtAcc, Zim32f* weight, int len, Zim32f* sum, Zim32f wgtSum,
                                         Zim32f wgtFloor);
ZIMSR_API ZimStatus zimsUpdateWeight_64f(const Zim64f* wgtAcc, Zim64f* weight, int len, Zim64f* sum, Zim64f wgtSum,
                                         Zim64f wgtFloor);
/** @} */

/** @name Constant of a Gaussian
 *  *gconst = len * 1.8378770664093 + sum of ln(var[i]), where the factor stands for ln(2 pi). `DirectVar` takes the
 *  variances, the form without it the inverse variances, and so subtracts the sum of their logarithms.
 *
 *  The product is formed in `Zim64f` and, like the sum, which is that of #zimsSumLn_32f or #zimsSumLn_64f, rounded to
 * the type before the two are added.
 *
 *  @return #zimStsLogOfZero, with plus infinity in *gconst, or #zimStsLogOfNegative, with NaN, when the first element
 *          that is not positive is zero or negative; in all four forms.
 *  @{
 */
ZIMSR_API ZimStatus zimsUpdateGConst_32f(const Zim32f* invVar, int len, Zim32f* gconst);
ZIMSR_API ZimStatus zimsUpdateGConst_64f(const Zim64f* invVar, int len, Zim64f* gconst);
ZIMSR_API ZimStatus zimsUpdateGConst_DirectVar_32f(const Zim32f* var, int len, Zim32f* gconst);
ZIMSR_API ZimStatus zimsUpdateGConst_DirectVar_64f(const Zim64f* var, int len, Zim64f* gconst);
/** @} */

/** @name Constants of a mixture's scores
 *  val[i] = logWeight[i] - gconst[i] / 2, for a Gaussian an element. `_I` overwrites gconst.
 *
 *  `_32s` halves by an arithmetic shift to the right, and the subtraction wraps. The last elements add 1 to gconst[i]
 *  before the shift, which wraps too: where all vectors are multiples of 16 bytes, the last one of an odd len; else the
 *  len % 4 last ones.
 *  @{
 */
ZIMSR_API ZimStatus zimsOutProbPreCalc_32f(const Zim32f* logWeight, const Zim32f* gconst, Zim32f* val, int len);
ZIMSR_API ZimStatus zimsOutProbPreCalc_64f(const Zim64f* logWeight, const Zim64f* gconst, Zim64f* val, int len);
ZIMSR_API ZimStatus zimsOutProbPreCalc_32s(const Zim32s* logWeight, const Zim32s* gconst, Zim32s* val, int len);
ZIMSR_API ZimStatus zimsOutProbPreCalc_32f_I(const Zim32f* logWeight, Zim32f* gconst, int len);
ZIMSR_API ZimStatus zimsOutProbPreCalc_64f_I(const Zim64f* logWeight, Zim64f* gconst, int len);
ZIMSR_API ZimStatus zimsOutProbPreCalc_32s_I(const Zim32s* logWeight, Zim32s* gconst, int len);
/** @} */

/** @name Variance from raw sums
 *  var[i] = (varAcc[i] - mean[i]^2 * wgt1) * wgt2: with varAcc the sum of the squares of N observations about zero,
 * wgt1 = N and wgt2 = 1 / N. `_I` and `_ISfs` overwrite varAcc. The weights are not tested.
 *
 *  `_32f` computes in `Zim32f` from a length of 11 on, if var overlaps no source and mean is a multiple of 4 bytes;
 *  excepted are the up to three elements in front of the first of mean that is a multiple of 16 bytes and, behind
 *  these, the last ones that fill no group of 8. Those, and all elements of other calls, are computed in `Zim64f` and
 *  rounded once. `_32f_I` computes in `Zim32f`.
 *
 *  `_32s` converts both sources to `Zim32f`, computes in it and multiplies by 2^-scaleFactor. The result saturates; NaN
 *  gives -2147483648. It is rounded to nearest even where mean and varAcc are multiples of 16 bytes, and truncated
 *  toward zero elsewhere.
 *  @{
 */
ZIMSR_API ZimStatus zimsNewVar_32f(const Zim32f* mean, const Zim32f* varAcc, Zim32f* var, int len, Zim32f wgt1,
                                   Zim32f wgt2);
ZIMSR_API ZimStatus zimsNewVar_32f_I(const Zim32f* mean, Zim32f* varAcc, int len, Zim32f wgt1, Zim32f wgt2);
ZIMSR_API ZimStatus zimsNewVar_32s_Sfs(const Zim32s* mean, const Zim32s* varAcc, Zim32s* var, int len, Zim32f wgt1,
                                       Zim32f wgt2, int scaleFactor);
ZIMSR_API ZimStatus zimsNewVar_32s_ISfs(const Zim32s* mean, Zim32s* varAcc, int len, Zim32f wgt1, Zim32f wgt2,
                                        int scaleFactor);
/** @} */

/** @name Interpolation of two parameter vectors
 *  dst[i] = a[i] * p + b[i] * q, with s = 1 / (wgtA + wgtB):
 *
 *      WeightedSum:      p = wgtA * s,  q = wgtB * s
 *      WeightedSumHalf:  p = s,         q = wgtB * s
 *
 *  `Half` is for a vector a that is a sum already, of observations with the weight wgtA in all.
 *
 *  `_16s` computes in `Zim32f` and saturates; NaN gives -32768. It rounds to nearest even where len is at least 8 and
 * all three vectors are multiples of 16 bytes, and truncates toward zero elsewhere.
 *
 *  @return #zimStsDivByZeroWarn when wgtA + wgtB is zero or NaN. Element i then has the sign of t = a[i] * wgtA + b[i]
 * * wgtB: it is plus infinity for a t above zero, minus infinity below, and NaN otherwise
 *          (#zimConstantOfINF_32f and so on); with `_16s`, 32767, -32768 and 0.
 *  @{
 */
ZIMSR_API ZimStatus zimsWeightedSum_32f(const Zim32f* a, const Zim32f* b, Zim32f* dst, int len, Zim32f wgtA,
                                        Zim32f wgtB);
ZIMSR_API ZimStatus zimsWeightedSum_64f(const Zim64f* a, const Zim64f* b, Zim64f* dst, int len, Zim64f wgtA,
                                        Zim64f wgtB);
ZIMSR_API ZimStatus zimsWeightedSum_16s(const Zim16s* a, const Zim16s* b, Zim16s* dst, int len, Zim32f wgtA,
                                        Zim32f wgtB);
ZIMSR_API ZimStatus zimsWeightedSumHalf_32f(const Zim32f* a, const Zim32f* b, Zim32f* dst, int len, Zim32f wgtA,
                                            Zim32f wgtB);
ZIMSR_API ZimStatus zimsWeightedSumHalf_64f(const Zim64f* a, const Zim64f* b, Zim64f* dst, int len, Zim64f wgtA,
                                            Zim64f wgtB);
ZIMSR_API ZimStatus zimsWeightedSumHalf_16s(const Zim16s* a, const Zim16s* b, Zim16s* dst, int len, Zim32f wgtA,
                                            Zim32f wgtB);
/** @} */

ZIMSR_END_DECLS

/** @} */
#endif
