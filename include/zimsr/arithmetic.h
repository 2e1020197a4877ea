/** @file
 *  Elementwise arithmetic, magnitudes and square root.
 *
 *  @defgroup arithmetic Arithmetic
 *
 *  Elementwise operations on vectors of len elements, i = 0 .. len - 1. Each result is the exactly rounded IEEE 754
 *  result of each operation in the formula, in the element's type. An infinity or a NaN passes through the arithmetic.
 *
 *  All return #zimStsNullPointer when a pointer is null, then #zimStsBadSize when len is below 1 (`zimsZeroMean_16s`: in
 *  the other order), then what they name. A refused call has written nothing.
 *
 *  `_I` works in place, on srcDst. In the other functions the destination must not overlap a source.
 *  @{
 */
#ifndef ZIMSR_ARITHMETIC_H
#define ZIMSR_ARITHMETIC_H

#include <zimsr/types.h>

ZIMSR_BEGIN_DECLS

/** dst[i] = |src[i]|; the sign bit is cleared, of a NaN too. */
ZIMSR_API ZimStatus zimsAbs_64f(const Zim64f* src, Zim64f* dst, int len);

/** @name Sum and difference of two vectors
 *  `Add`: srcDst[i] = srcDst[i] + src[i]. `Sub`: srcDst[i] = srcDst[i] - src[i].
 *  @{
 */
ZIMSR_API ZimStatus zimsAdd_32f_I(const Zim32f* src, Zim32f* srcDst, int len);
ZIMSR_API ZimStatus zimsAdd_64f_I(const Zim64f* src, Zim64f* srcDst, int len);
ZIMSR_API ZimStatus zimsSub_32f_I(const Zim32f* src, Zim32f* srcDst, int len);
ZIMSR_API ZimStatus zimsSub_64f_I(const Zim64f* src, Zim64f* srcDst, int len);
/** @} */

/** dst[i] = src[i] + val. A val of exactly 0 is a copy: -0.0 and signalling NaNs stay as they are. */
ZIMSR_API ZimStatus zimsAddC_32f(const Zim32f* src, Zim32f val, Zim32f* dst, int len);

/** dst[i] = src1[i] * src2[i]. */
ZIMSR_API ZimStatus zimsMul_32f(const Zim32f* src1, const Zim32f* src2, Zim32f* dst, int len);

/** @name Product with a constant
 *  dst[i] = src[i] * val. A val of exactly 1 is a copy; a val of 0, of either sign, writes +0 everywhere, also for
 *  infinite and NaN sources. Long vectors are written past the cache (`zimsMulC_32f`) or fetched ahead (`_I`).
 *  @{
 */
ZIMSR_API ZimStatus zimsMulC_32f(const Zim32f* src, Zim32f val, Zim32f* dst, int len);
ZIMSR_API ZimStatus zimsMulC_64f(const Zim64f* src, Zim64f val, Zim64f* dst, int len);
ZIMSR_API ZimStatus zimsMulC_32f_I(Zim32f val, Zim32f* srcDst, int len);
ZIMSR_API ZimStatus zimsMulC_64f_I(Zim64f val, Zim64f* srcDst, int len);
/** @} */

/** @name Quotient of two vectors
 *  dst[i] = src2[i] / src1[i]: the divisor is the first argument. Where src1[i] is 0, of either sign, the element is
 *  plus infinity for a positive dividend, minus infinity for a negative one, and NaN (#zimConstantOfNAN_32f,
 *  #zimConstantOfNAN_64f) for a dividend of 0 or NaN. `zimsDiv_32f_I` (src, srcDst): srcDst[i] = srcDst[i] / src[i].
 *
 *  @return #zimStsDivByZeroWarn when some divisor is 0; all elements are computed.
 *  @{
 */
ZIMSR_API ZimStatus zimsDiv_32f(const Zim32f* src1, const Zim32f* src2, Zim32f* dst, int len);
ZIMSR_API ZimStatus zimsDiv_64f(const Zim64f* src1, const Zim64f* src2, Zim64f* dst, int len);
ZIMSR_API ZimStatus zimsDiv_32f_I(const Zim32f* src, Zim32f* srcDst, int len);
/** @} */

/** @name Quotient by a constant
 *  dst[i] = src[i] * (1 / val): the product with the rounded reciprocal, as `zimsMulC` forms it, not a division.
 *
 *  @return #zimStsDivideByZero when val is 0; nothing is written.
 *  @{
 */
ZIMSR_API ZimStatus zimsDivC_32f(const Zim32f* src, Zim32f val, Zim32f* dst, int len);
ZIMSR_API ZimStatus zimsDivC_64f(const Zim64f* src, Zim64f val, Zim64f* dst, int len);
ZIMSR_API ZimStatus zimsDivC_32f_I(Zim32f val, Zim32f* srcDst, int len);
ZIMSR_API ZimStatus zimsDivC_64f_I(Zim64f val, Zim64f* srcDst, int len);
/** @} */

/** dst[i] = saturate(round(src1[i] * src2[i] * 2^-scaleFactor)), half to even, for every factor: above 30 all elements
 *  are 0, below -15 an element is 0, or saturated to the sign of the product. */
ZIMSR_API ZimStatus zimsMul_16s_Sfs(const Zim16s* src1, const Zim16s* src2, Zim16s* dst, int len, int scaleFactor);

/** Subtracts the mean. With m = 2 * (sum of all elements) / len, truncated toward zero, and v = 2 * srcDst[i] - m, the
 *  result is (v - 1) >> 1 for a negative v, (v + 1) >> 1 for a positive one, 0 for 0, limited to -32767 .. 32767.
 *
 *  @return #zimStsBadSize when len is below 1, then #zimStsNullPointer. */
ZIMSR_API ZimStatus zimsZeroMean_16s(Zim16s* srcDst, int len);

/** @name Product of a column with a constant
 *  rows[r][col] = rows[r][col] * val for r = firstRow .. height - 1.
 *
 *  @return #zimStsNullPointer when rows is null, then #zimStsBadSize when width or height is below 1, when col is
 *          outside 0 .. width - 1 or firstRow outside 0 .. height - 1.
 *  @{
 */
ZIMSR_API ZimStatus zimsMulColumn_64f_D2L(Zim64f* const* rows, int width, int height, int col, int firstRow, Zim64f val);
/** The same function. */
ZIMSR_API ZimStatus zimsMulCol_64f_D2L(Zim64f* const* rows, int width, int height, int col, int firstRow, Zim64f val);
/** @} */

/** dst[i] = sqrt(re^2 + im^2) of src[i], each operation rounded to `Zim32f`; the squares have to fit the type. */
ZIMSR_API ZimStatus zimsMagnitude_32fc(const Zim32fc* src, Zim32f* dst, int len);

/** dst[i] = round(sqrt(re^2 + im^2) * 2^-scaleFactor), formed in `Zim64f`, limited to 2147483647 and rounded to nearest,
 *  ties to even, in every rounding mode of the caller. */
ZIMSR_API ZimStatus zimsMagnitude_32sc_Sfs(const Zim32sc* src, Zim32s* dst, int len, int scaleFactor);

/** srcDst[i] = sqrt(srcDst[i]). A negative element becomes #zimConstantOfNAN_64f; -0.0 stays.
 *
 *  @return #zimStsSqrtOfNegative when some element is negative; all elements are computed. */
ZIMSR_API ZimStatus zimsSqrt_64f_I(Zim64f* srcDst, int len);

ZIMSR_END_DECLS

/** @} */
#endif
