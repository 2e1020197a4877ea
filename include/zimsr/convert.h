/** @file
 *  Conversions between element types.
 *
 *  @defgroup convert Conversions
 *
 *  The two tags in a name are the types of source and destination. Every conversion gives the same result in every
 *  rounding mode that the caller may have set in the processor, and leaves that mode as it was.
 *
 *  All return #zimStsNullPointer when a pointer is null, then #zimStsBadSize when len is below 1. There is no status for
 *  a scale factor or a value out of range: factors are limited, values saturate. In `zimsConvert_32s32f` and
 *  `zimsConvert_32f32s_Sfs`, whose elements are of one size, src and dst may be the same memory; elsewhere they must not
 *  overlap.
 *  @{
 */
#ifndef ZIMSR_CONVERT_H
#define ZIMSR_CONVERT_H

#include <zimsr/types.h>

ZIMSR_BEGIN_DECLS

/** @name Plain conversions
 *  dst[i] = src[i], exact where the destination holds the value, otherwise rounded to nearest, ties to even.
 *  @{
 */
ZIMSR_API ZimStatus zimsConvert_8u32f(const Zim8u* src, Zim32f* dst, int len);
ZIMSR_API ZimStatus zimsConvert_16s32f(const Zim16s* src, Zim32f* dst, int len);
ZIMSR_API ZimStatus zimsConvert_32s32f(const Zim32s* src, Zim32f* dst, int len);
ZIMSR_API ZimStatus zimsConvert_64f32f(const Zim64f* src, Zim32f* dst, int len);
/** @} */

/** @name Integer to scaled float
 *  dst[i] = src[i] * 2^-scaleFactor. 16-bit sources give exact results; a 32-bit source is rounded to `Zim32f` first.
 *  The factor is limited so that no result overflows or loses bits: to -112 .. 126 (`16s32f`), -1008 .. 1022 (`16s64f`)
 *  and -96 .. 126 (`32s32f`).
 *  @{
 */
ZIMSR_API ZimStatus zimsConvert_16s32f_Sfs(const Zim16s* src, Zim32f* dst, int len, int scaleFactor);
ZIMSR_API ZimStatus zimsConvert_16s64f_Sfs(const Zim16s* src, Zim64f* dst, int len, int scaleFactor);
ZIMSR_API ZimStatus zimsConvert_32s32f_Sfs(const Zim32s* src, Zim32f* dst, int len, int scaleFactor);
/** @} */

/** dst[i] = saturate(round(src[i] * 2^-scaleFactor)) in integer arithmetic, half to even. The factor is limited to
 *  -15 .. 31; a negative one shifts left and saturates. */
ZIMSR_API ZimStatus zimsConvert_32s16s_Sfs(const Zim32s* src, Zim16s* dst, int len, int scaleFactor);

/** @name Float to scaled integer
 *  dst[i] = saturate(round(src[i] * 2^-scaleFactor)), for every factor. rndMode 0 truncates toward zero, any other value
 *  rounds to nearest, ties to even. Values above the range of the destination give its greatest value; values below it,
 *  and NaN, its least.
 *  @{
 */
ZIMSR_API ZimStatus zimsConvert_32f16s_Sfs(const Zim32f* src, Zim16s* dst, int len, int rndMode, int scaleFactor);
ZIMSR_API ZimStatus zimsConvert_32f32s_Sfs(const Zim32f* src, Zim32s* dst, int len, int rndMode, int scaleFactor);
ZIMSR_API ZimStatus zimsConvert_64f32s_Sfs(const Zim64f* src, Zim32s* dst, int len, int rndMode, int scaleFactor);
/** @} */

ZIMSR_END_DECLS

/** @} */
#endif
