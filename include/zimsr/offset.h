/** @file
 *  Removal of a constant offset from a stream of samples.
 *
 *  @defgroup offset Offset removal
 *
 *  A first-order recursive high-pass filter, with a zero at frequency 0 and a pole at val:
 *
 *      y[i] = x[i] - x[i-1] + val * y[i-1]
 *
 *  val is a little below 1: 0.999 in the front end of ETSI ES 201 108 (offset compensation). The nearer to 1, the lower
 *  the frequencies that pass, and the longer the filter takes to settle.
 *
 *  **A stream in blocks.** The caller keeps the filter's state: *srcPrev is the last sample of the block before, x[-1],
 *  and each call sets it to the last sample of its own block; dstPrev is the last result of the block before, y[-1].
 *  A stream begins with both at 0, or with *srcPrev at its first sample, which spares it the first step. Blocks of one
 *  stream follow each other in order. The `Q15` results are the same however the stream is cut; in the others the first
 *  result of a block is rounded otherwise than the rest.
 *
 *  The `_I` functions work in place; dst may be src in the others too.
 *
 *  All return #zimStsNullPointer when src, dst, srcDst or srcPrev is null, then #zimStsBadSize when len is below 1.
 *  @{
 */
#ifndef ZIMSR_OFFSET_H
#define ZIMSR_OFFSET_H

#include <zimsr/types.h>

ZIMSR_BEGIN_DECLS

/** @name Single precision
 *  Each operation is rounded by itself: y[i] = val * y[i-1] + (x[i] - x[i-1]), the first one y[0] = (val * dstPrev +
 *  x[0]) - *srcPrev.
 *  @{
 */
ZIMSR_API ZimStatus zimsCompensateOffset_32f(const Zim32f* src, Zim32f* dst, int len, Zim32f* srcPrev, Zim32f dstPrev,
                                             Zim32f val);
ZIMSR_API ZimStatus zimsCompensateOffset_32f_I(Zim32f* srcDst, int len, Zim32f* srcPrev, Zim32f dstPrev, Zim32f val);
/** @} */

/** @name Samples of 16 bits
 *  Results saturate to 16 bits, and the saturated result enters the next one.
 *  - The first: y[0] = (x[0] + val * dstPrev) - *srcPrev in `Zim32f`, truncated toward zero.
 *  - Out of place with -1 <= val <= 1, in fixed point: y[i] = sat(((y[i-1] * q) >> 12) + sat(x[i] - x[i-1])) with
 *    q = trunc(4096 * val); the shift rounds down.
 *  - Otherwise, and always in place: y[i] = (x[i] - x[i-1]) + val * y[i-1] in `Zim32f`, rounded to the nearest integer,
 *    ties away from zero. A NaN gives -32768.
 *  @{
 */
ZIMSR_API ZimStatus zimsCompensateOffset_16s(const Zim16s* src, Zim16s* dst, int len, Zim16s* srcPrev, Zim16s dstPrev,
                                             Zim32f val);
ZIMSR_API ZimStatus zimsCompensateOffset_16s_I(Zim16s* srcDst, int len, Zim16s* srcPrev, Zim16s dstPrev, Zim32f val);
/** @} */

/** @name Samples of 16 bits and a coefficient in Q15
 *  y[i] = sat((2^15 * (x[i] - x[i-1]) + val * y[i-1]) / 2^15) for every i, 0 included: exact, then truncated toward
 *  zero and saturated. 32735 stands for 0.999.
 *
 *  @return also #zimStsBadSize when len is above 65535, and then #zimStsBadArgument when val is below 0.
 *  @{
 */
ZIMSR_API ZimStatus zimsCompensateOffsetQ15_16s(const Zim16s* src, Zim16s* dst, int len, Zim16s* srcPrev,
                                                Zim16s dstPrev, Zim16s val);
ZIMSR_API ZimStatus zimsCompensateOffsetQ15_16s_I(Zim16s* srcDst, int len, Zim16s* srcPrev, Zim16s dstPrev, Zim16s val);
/** @} */

ZIMSR_END_DECLS

/** @} */
#endif
