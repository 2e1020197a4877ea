/** @file
 *  Arithmetic on probabilities that are held as logarithms.
 *
 *  @defgroup logdomain Log-domain arithmetic
 *
 *  Likelihoods are held as natural logarithms, so that adding two of them is
 *  \f$ a \oplus b = \ln(e^a + e^b) = \max(a, b) + c(-|a - b|) \f$ with the correction \f$ c(d) = \ln(1 + e^d) \f$. The
 *  correction is a polynomial in d on each of three segments, so that no exponential and no logarithm is taken; the
 *  smaller operand is dropped where d lies below a threshold. Two levels of precision serve the element types:
 *
 *  |                                        | `_32f`, `_32s`, `_16s` | `_64f`                |
 *  |----------------------------------------|------------------------|-----------------------|
 *  | probability zero is delivered as       | -4500000               | -1e10                 |
 *  | a value counts as zero when it is below| -4500000               | -9e9                  |
 *  | the smaller operand is dropped below d | -15.3195879547406      | -23.0258509299405     |
 *  | error of the correction                | below 5e-9             | below 6e-15           |
 *
 *  The floor is looked at only where the smaller operand is dropped: there a sum below it is raised to it. Two equal
 *  operands give a + ln 2, also below the floor. An operand NaN passes through the maximum and the minimum as the
 *  processor has them, and the same infinity on both sides gives NaN.
 *
 *  **Scaled integers.** An integer x stands for the logarithm x 2^-scaleFactor. Results are truncated toward zero, not
 *  rounded, and saturate. Every scaleFactor is legal. From -97 down an operand may become infinite, and below -127 that
 *  of 0 is NaN; a sum that is NaN gives the least value of the type.
 *
 *  All return #zimStsBadSize when len is below 1, then #zimStsNullPointer when a pointer is null, then what the
 *  function adds. `src` and `srcDst` may be the same vector; they may not overlap otherwise.
 *  @{
 */
#ifndef ZIMSR_LOGDOMAIN_H
#define ZIMSR_LOGDOMAIN_H

#include <zimsr/types.h>

/** The logarithm of probability zero, for all but the `_64f` functions: a neutral start for a sum. */
#define ZIMSLOGZERO_F (-4500000.0)

ZIMSR_BEGIN_DECLS

/** @name Sum of two vectors
 *  srcDst[i] = ln(exp(src[i]) + exp(srcDst[i])). hint chooses the arithmetic of all but the `_64f` form, which has one:
 *
 *  | hint  |          | arithmetic                                                                              |
 *  |-------|----------|-----------------------------------------------------------------------------------------|
 *  | 0     | accurate | in `Zim64f`, the sum rounded once to `Zim32f`                                           |
 *  | 1     | fast     | all in `Zim32f`                                                                         |
 *  | 2     | scalar   | in 80-bit extended precision, element by element: a reference, and slow                 |
 *  | other |          | no sum is formed: float vectors stay as they are, integers are only converted and back  |
 *
 *  The integer forms convert both operands to `Zim32f` (a `Zim32s` beyond 2^24 loses its low bits), multiply them by
 *  2^-scaleFactor, and convert the sum back, toward zero.
 *  @{
 */
ZIMSR_API ZimStatus zimsLogAdd_32f(const Zim32f* src, Zim32f* srcDst, int len, int hint);
ZIMSR_API ZimStatus zimsLogAdd_64f(const Zim64f* src, Zim64f* srcDst, int len, int hint);
ZIMSR_API ZimStatus zimsLogAdd_32s_Sfs(const Zim32s* src, Zim32s* srcDst, int len, int scaleFactor, int hint);
ZIMSR_API ZimStatus zimsLogAdd_16s_Sfs(const Zim16s* src, Zim16s* srcDst, int len, int scaleFactor, int hint);
/** @} */

/** @name Sum over a vector
 *  *dst = ln(sum of exp(src[i])), one element. A single element is delivered as it is, also below the floor.
 *
 *  Elements are added in four running sums side by side (two for `_64f`), each taking every fourth (second) element;
 *  these are merged, and the elements left over behind the last group of four (two) are added one after the other, as
 *  fewer than eight (four) elements are from the start. `_32f` uses the arithmetic of hint 1. The integer forms add up
 *  to six elements one after the other in the arithmetic of hint 0, with a running value in `Zim32f`, and more by the
 *  float form in blocks of 128.
 *  @{
 */
ZIMSR_API ZimStatus zimsLogSum_32f(const Zim32f* src, Zim32f* dst, int len);
ZIMSR_API ZimStatus zimsLogSum_64f(const Zim64f* src, Zim64f* dst, int len);
ZIMSR_API ZimStatus zimsLogSum_32s_Sfs(const Zim32s* src, Zim32s* dst, int len, int scaleFactor);
ZIMSR_API ZimStatus zimsLogSum_16s_Sfs(const Zim16s* src, Zim16s* dst, int len, int scaleFactor);
/** @} */

/** @name Difference of two vectors
 *  srcDst[i] = ln(exp(src[i]) - exp(srcDst[i])) = a + ln(1 - exp(d)) with a = src[i], d = srcDst[i] - a.
 *
 *  #zimStsOutOfRange when some difference d is not below zero; nothing is written then. A NaN is not an error. Where d
 *  lies below the threshold of the sum or is NaN, the result is a, or probability zero for an a that is below the floor
 *  or NaN; where 1 - exp(d) vanishes, it is probability zero.
 *
 *  The integer forms keep a in its scale and add ln(1 - exp(d 2^-scaleFactor)) to it unscaled. `_32s` forms d by a
 *  subtraction that wraps for the test, and as a difference of floats for the exponential.
 *  @{
 */
ZIMSR_API ZimStatus zimsLogSub_32f(const Zim32f* src, Zim32f* srcDst, int len);
ZIMSR_API ZimStatus zimsLogSub_64f(const Zim64f* src, Zim64f* srcDst, int len);
ZIMSR_API ZimStatus zimsLogSub_32s_Sfs(const Zim32s* src, Zim32s* srcDst, int len, int scaleFactor);
ZIMSR_API ZimStatus zimsLogSub_16s_Sfs(const Zim16s* src, Zim16s* srcDst, int len, int scaleFactor);
/** @} */

ZIMSR_END_DECLS

/** @} */
#endif
