/** @file
 *  Normalisation of log-energies.
 *
 *  @defgroup energy Energy normalisation
 *
 *  Brings the log-energies of an utterance to a fixed maximum, with a floor under what counts as silence:
 *
 *      floor = maxE - silFloor * ln(10) / 10
 *      e'    = target - (maxE - max(e, floor)) * scale
 *
 *  - The energies are one column of a feature matrix: element i lies at srcDst[i * step]. They are natural logarithms,
 *    and are normalised in place. Nothing between them is read or written.
 *  - silFloor is how many decibels below the maximum silence begins.
 *  - maxE is the greatest of the energies. The `RT` functions are given it instead, an estimate or the maximum of what
 *    went before, and so can run frame by frame.
 *  - target is what the maximum becomes: 1.0 in `Zim32f`, the argument val in `Zim16s`.
 *
 *  The method is that of Young et al., "The HTK Book", on the energy measure.
 *
 *  **Zim32f**: single precision, each operation rounded by itself; floor = silFloor * -0.230259f + maxE. The greatest
 *  element passes over NaN; a NaN stays one.
 *
 *  **Zim16s**: floor is formed as for `Zim32f`. There are two ways from there, whose results may differ by one:
 *  - in floating point, when scale is at least 1.001, and in `zimsNormEnergy_16s` also when height is below 11: e' in
 *    `Zim32f`, truncated toward zero and saturated;
 *  - in fixed point otherwise: floor is rounded to the nearest integer, ties away from zero, and saturated; scale
 *    becomes s = trunc(1024 * scale); e' = sat(val - sat((sat(maxE - max(e, floor)) * s) >> 10)), where the shift
 *    rounds down and sat limits to 16 bits.
 *
 *  All return #zimStsNullPointer when srcDst is null, then #zimStsBadSize when step or height is below 1.
 *  @{
 */
#ifndef ZIMSR_ENERGY_H
#define ZIMSR_ENERGY_H

#include <zimsr/types.h>

ZIMSR_BEGIN_DECLS

/** @name Against the greatest energy
 *  @return `16s` also: #zimStsAllocFailed when height is above 1024 and there is no working memory; nothing is written.
 *  @{
 */
ZIMSR_API ZimStatus zimsNormEnergy_32f(Zim32f* srcDst, int step, int height, Zim32f silFloor, Zim32f scale);
ZIMSR_API ZimStatus zimsNormEnergy_16s(Zim16s* srcDst, int step, int height, Zim16s silFloor, Zim16s val, Zim32f scale);
/** @} */

/** @name Against a given maximum
 *  An energy above maxE becomes more than the target.
 *  @{
 */
ZIMSR_API ZimStatus zimsNormEnergy_RT_32f(Zim32f* srcDst, int step, int height, Zim32f silFloor, Zim32f maxE,
                                          Zim32f scale);
ZIMSR_API ZimStatus zimsNormEnergy_RT_16s(Zim16s* srcDst, int step, int height, Zim16s silFloor, Zim16s maxE,
                                          Zim16s val, Zim32f scale);
/** @} */

ZIMSR_END_DECLS

/** @} */
#endif
