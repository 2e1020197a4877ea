/** @file
 *  The greatest and the smallest element.
 *
 *  @defgroup extremes Extremes
 *
 *  An element that is NaN is passed over; a vector of nothing but NaN gives its first element. Where equal elements
 *  differ (as -0.0 and +0.0 do), the first one is taken.
 *
 *  All return #zimStsNullPointer when a pointer is null, then #zimStsBadSize when len is below 1.
 *  @{
 */
#ifndef ZIMSR_EXTREMES_H
#define ZIMSR_EXTREMES_H

#include <zimsr/types.h>

ZIMSR_BEGIN_DECLS

/** @name Extreme element of a vector
 *  *dst = the greatest (`Max`) or the smallest (`Min`) of src[0] .. src[len - 1].
 *  @{
 */
ZIMSR_API ZimStatus zimsMax_32f(const Zim32f* src, int len, Zim32f* dst);
ZIMSR_API ZimStatus zimsMax_64f(const Zim64f* src, int len, Zim64f* dst);
ZIMSR_API ZimStatus zimsMin_32f(const Zim32f* src, int len, Zim32f* dst);
ZIMSR_API ZimStatus zimsMin_64f(const Zim64f* src, int len, Zim64f* dst);
/** @} */

/** @name Greatest element and its index
 *  *dstMax = the greatest element, *dstIndex = its index, the smallest one among equal elements. dstIndex may be null;
 *  then the call is a `zimsMax`.
 *  @{
 */
ZIMSR_API ZimStatus zimsMaxIndx_32f(const Zim32f* src, int len, Zim32f* dstMax, int* dstIndex);
ZIMSR_API ZimStatus zimsMaxIndx_64f(const Zim64f* src, int len, Zim64f* dstMax, int* dstIndex);
/** @} */

/** @name Extreme of each pair of elements
 *  srcDst[i] becomes src[i] where src[i] is greater (`Max`) or smaller (`Min`); otherwise, and where either is NaN, it
 *  stays.
 *  @{
 */
ZIMSR_API ZimStatus zimsMaxEvery_32f_I(const Zim32f* src, Zim32f* srcDst, int len);
ZIMSR_API ZimStatus zimsMinEvery_32f_I(const Zim32f* src, Zim32f* srcDst, int len);
ZIMSR_API ZimStatus zimsMinEvery_32s_I(const Zim32s* src, Zim32s* srcDst, int len);
/** @} */

ZIMSR_END_DECLS

/** @} */
#endif
