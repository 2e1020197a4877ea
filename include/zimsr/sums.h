/** @file
 *  Sums and inner products.
 *
 *  @defgroup sums Sums and inner products
 *
 *  The result is one number, for i = 0 .. len - 1. The order in which a float sum is formed depends on len alone, so
 *  that a result does not depend on the place of the arrays in memory.
 *
 *  All return #zimStsNullPointer when a pointer is null, then #zimStsBadSize when len is below 1.
 *  @{
 */
#ifndef ZIMSR_SUMS_H
#define ZIMSR_SUMS_H

#include <zimsr/types.h>

ZIMSR_BEGIN_DECLS

/** *dst = sum of src[i], rounded to `Zim32f` at the end. A hint of 1 asks for the fast form: lanes of `Zim32f` over
 *  stretches of 32768 elements, carried from one to the next in 80-bit extended precision. Any other value gives the
 *  accurate form: eight sums in extended precision. */
ZIMSR_API ZimStatus zimsSum_32f(const Zim32f* src, int len, Zim32f* dst, int hint);

/** @name Integer sums
 *  *dst = saturate(round(sum of src[i] * 2^-scaleFactor)), half to even, for every factor. The sum is exact.
 *  @{
 */
ZIMSR_API ZimStatus zimsSum_32s_Sfs(const Zim32s* src, int len, Zim32s* dst, int scaleFactor);
ZIMSR_API ZimStatus zimsSum_16s32s_Sfs(const Zim16s* src, int len, Zim32s* dst, int scaleFactor);
/** @} */

/** @name Inner products
 *  *dst = sum of src1[i] * src2[i]. `32f` and `64f`: products and sums in the type of the elements. `32f64f`: exact
 *  products, sums in `Zim64f`. `16s64s`: exact. `16s32f`: exact, and rounded once to `Zim32f` at the end.
 *  @{
 */
ZIMSR_API ZimStatus zimsDotProd_32f(const Zim32f* src1, const Zim32f* src2, int len, Zim32f* dst);
ZIMSR_API ZimStatus zimsDotProd_64f(const Zim64f* src1, const Zim64f* src2, int len, Zim64f* dst);
ZIMSR_API ZimStatus zimsDotProd_32f64f(const Zim32f* src1, const Zim32f* src2, int len, Zim64f* dst);
ZIMSR_API ZimStatus zimsDotProd_16s64s(const Zim16s* src1, const Zim16s* src2, int len, Zim64s* dst);
ZIMSR_API ZimStatus zimsDotProd_16s32f(const Zim16s* src1, const Zim16s* src2, int len, Zim32f* dst);
/** @} */

ZIMSR_END_DECLS

/** @} */
#endif
