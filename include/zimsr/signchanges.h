/** @file
 *  Sign changes of a signal: its zero-crossing count.
 *
 *  @defgroup signchanges Sign changes
 *
 *  *res = the number of neighbours src[i], src[i+1], i = 0 .. len - 2, between which the signal changes its sign. The
 *  functions differ in what they make of zeros:
 *
 *  | Function | Counts | 1, 0, -1 | 1, 0, 1 |
 *  |---|---|---|---|
 *  | `SignChangeRate` | pairs with a negative product | 0 | 0 |
 *  | `SignChangeRate_Count0` | half the sum of abs(sgn(src[i+1]) - sgn(src[i])): two half steps over a zero | 1 | 1 |
 *  | `SignChangeRateXor` | pairs with different sign bits: 0.0 is positive, -0.0 negative | 1 | 0 |
 *
 *  A voiced sound crosses zero seldom, a fricative often (Rabiner and Sambur, "An algorithm for determining the
 *  endpoints of isolated utterances", Bell System Technical Journal 54, 1975). The third is the count of ITU-T G.729
 *  Annex B.
 *
 *  The count is exact, and a single sample has none. Those given as `Zim32f` are rounded to it at the end.
 *
 *  All return #zimStsNullPointer when src or res is null, then #zimStsBadSize when len is below 1.
 *  @{
 */
#ifndef ZIMSR_SIGNCHANGES_H
#define ZIMSR_SIGNCHANGES_H

#include <zimsr/types.h>

ZIMSR_BEGIN_DECLS

/** @name Negative products
 *  `32f`: the product is rounded to `Zim32f`, and where it is -0.0 or NaN, its place in memory shows. Up to the first
 *  address that is a multiple of 16, a pair counts unless its product is at least 0: -0.0 does not count, NaN does.
 *  From there on it counts when the sign bit of its product is set. In an array that is not aligned to 4 bytes, all
 *  pairs are of the first kind.
 *  @{
 */
ZIMSR_API ZimStatus zimsSignChangeRate_32f(const Zim32f* src, int len, Zim32f* res);
ZIMSR_API ZimStatus zimsSignChangeRate_16s(const Zim16s* src, int len, Zim32s* res);
/** @} */

/** @name Half steps over zeros
 *  sgn(x) is 1 above zero, 0 for a zero of either sign, and -1 otherwise: for NaN too. `16s` rounds a last half step
 *  down.
 *  @{
 */
ZIMSR_API ZimStatus zimsSignChangeRate_Count0_32f(const Zim32f* src, int len, Zim32f* res);
ZIMSR_API ZimStatus zimsSignChangeRate_Count0_16s(const Zim16s* src, int len, Zim32s* res);
/** @} */

/** Different sign bits. */
ZIMSR_API ZimStatus zimsSignChangeRateXor_32f(const Zim32f* src, int len, Zim32s* res);

ZIMSR_END_DECLS

/** @} */
#endif
