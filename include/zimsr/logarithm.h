/** @file
 *  Natural logarithms and their sums.
 *
 *  @defgroup logarithm Logarithms
 *
 *  Natural logarithms of vectors of len elements, i = 0 .. len - 1.
 *
 *  All return #zimStsNullPointer when a pointer is null, then #zimStsBadSize when len is below 1; a refused call has
 *  written nothing. An argument that has no logarithm is a warning: #zimStsLogOfZero for a zero of either sign,
 *  #zimStsLogOfNegative for a negative value. The first such element of the vector decides which, and the element's
 *  substitute is named with each function. A NaN is no fault, and an infinite element has the logarithm plus infinity.
 *  Subnormal elements have their true logarithm.
 *
 *  @{
 */
#ifndef ZIMSR_LOGARITHM_H
#define ZIMSR_LOGARITHM_H

#include <zimsr/types.h>

ZIMSR_BEGIN_DECLS

/** srcDst[i] = ln(srcDst[i]), within 3 units in the last place.
 *
 *  With x = m 2^e, sqrt(1/2) <= m < sqrt(2), z = (m - 1) / (m + 1) and w = z^2, the result is e ln2 + z P(w) where P is a
 *  polynomial of degree 4: the arrangement of Cody and Waite, Software Manual for the Elementary Functions, 1980. Every
 *  operation is one of `Zim32f`, so the result has the same bits everywhere.
 *
 *  Zero gives minus infinity, a negative element #zimConstantOfNAN_32f; a NaN stays as it is. All other elements are
 *  computed.
 */
ZIMSR_API ZimStatus zimsLn_32f_I(Zim32f* srcDst, int len);

/** @name Logarithms of integers
 *  dst[i] = ln(src[i]) scaled by 2^-scaleFactor, as an integer; `_ISfs` in place.
 *
 *  A scaleFactor of 0 and above: ln(src[i]) rounded to the nearest integer, exactly, then shifted right by scaleFactor
 *  without rounding (a factor above 31 counts as 31). A negative scaleFactor: the logarithm of #zimsLn_32f_I of the
 *  element rounded to `Zim32f`, times 2^-scaleFactor (a factor below -127 counts as -127), limited to 2147483520, rounded
 *  half to even.
 *
 *  An element of 0 or below gives -2147483648. All other elements are computed.
 *  @{
 */
ZIMSR_API ZimStatus zimsLn_32s_Sfs(const Zim32s* src, Zim32s* dst, int len, int scaleFactor);
ZIMSR_API ZimStatus zimsLn_32s_ISfs(Zim32s* srcDst, int len, int scaleFactor);
/** @} */

/** @name Sum of logarithms
 *  *dst = sum of ln(src[i]), as the logarithm of a product, in blocks of 512 elements: in each, lane j = 0 .. 7 multiplies
 *  the significands, in [1, 2), of the elements j, j + 8, j + 16, ... in `Zim64f`; the lanes are multiplied across, upper
 *  half by lower half, then neighbours; the exponents are summed as integers. Blocks add up in `Zim64f`, and the sum is
 *  rounded once to the type of dst. The products bring an error below len 2^-53; to it come, for each block, at most two
 *  units in the last place of its logarithm and half a unit of the sum so far.
 *
 *  An infinite element makes the sum infinite. The first element that is zero, negative or NaN ends the call: zero with
 *  plus infinity in *dst (not minus infinity) and #zimStsLogOfZero, a negative one with NaN and #zimStsLogOfNegative, a NaN
 *  with NaN and #zimStsOk.
 *  @{
 */
ZIMSR_API ZimStatus zimsSumLn_32f(const Zim32f* src, int len, Zim32f* dst);
ZIMSR_API ZimStatus zimsSumLn_64f(const Zim64f* src, int len, Zim64f* dst);
/** @} */

ZIMSR_END_DECLS

/** @} */
#endif
