/** @file
 *  Cosine transform with liftering: from log filter-bank energies to cepstra.
 *
 *  @defgroup dctlifter Cosine transform and liftering
 *
 *  One step from the logarithms of filter-bank energies (@ref melfbank) to liftered cepstra: a cosine transform by a
 *  stored matrix, and a lifter that scales each cepstrum (Davis and Mermelstein, IEEE Trans. ASSP 28, 1980; Juang,
 *  Rabiner and Wilpon, "On the use of bandpass liftering in speech recognition", IEEE Trans. ASSP 35, 1987).
 *
 *      dst[i - 1]       = lifter[i] * sum over j = 0 .. lenDCT - 1 of src[j] * cos(pi * i * (j + 1/2) / lenDCT),
 *                         for i = 1 .. lenCepstrum
 *      dst[lenCepstrum] = lifter[0] * sum over j of src[j],   in a state with C0
 *
 *  C0 comes last. The matrix has no normalising factor; one such as sqrt(2 / lenDCT) is the caller's, through the
 *  lifter. Matrix and lifter are `Zim32f` in both state types: the 16-bit forms compute in floating point and convert
 *  at the end.
 *
 *  | builder     | C0  | lifter[i], i >= 1                                     | lifter[0]                    |
 *  |-------------|-----|-------------------------------------------------------|------------------------------|
 *  | (plain)     | no  | (1 + nLifter / 2 * sin(pi * i / nLifter)) * val       |                              |
 *  | `_C0_`      | yes | as above                                              | val0                         |
 *  | `_Mul_`     | no  | lifterTable[i - 1]                                    |                              |
 *  | `_MulC0_`   | yes | lifterTable[i - 1]                                    | lifterTable[lenCepstrum - 1] |
 *
 *  **Life of a state.** An `InitAlloc` function allocates it. `zimsDCTLifterFree_*` releases its tables and zimsFree()
 *  the state itself. A state from zimsDCTLifterInit_MulC0_16s() lies in the caller's buffer, is not released, and may
 *  not be moved.
 *
 *  **A builder that fails** leaves nothing allocated: a refusal of its arguments has written nothing, and
 *  #zimStsAllocFailed sets *state to null.
 *
 *  **Threads.** A `_32f` state is only read by the transform, and calls may share it. A `_16s` state holds the results
 *  before conversion: it serves one call at a time.
 *
 *  @{
 */
#ifndef ZIMSR_DCTLIFTER_H
#define ZIMSR_DCTLIFTER_H

#include <zimsr/types.h>

ZIMSR_BEGIN_DECLS

/** Cosine matrix and lifter of the floating-point transform. */
typedef struct ZimsDCTLifterState_32f ZimsDCTLifterState_32f;
/** Cosine matrix, lifter and work buffer of the transforms to 16 bits. */
typedef struct ZimsDCTLifterState_16s ZimsDCTLifterState_16s;

/** @name Sine lifter
 *  lifter[i] = (1 + nLifter / 2 * sin(pi * i / nLifter)) * val, the sum in double precision, the product in single.
 *
 *  @param[out] state       the new state
 *  @param[in]  lenDCT      length of the input
 *  @param[in]  lenCepstrum number of cepstra without C0, at most lenDCT
 *  @param[in]  nLifter     lifter parameter, 22 in common use
 *  @param[in]  val         factor of the cepstra
 *  @param[in]  val0        factor of C0
 *
 *  @return In this order: #zimStsNullPointer when state is null; #zimStsBadSize when lenDCT, lenCepstrum or nLifter is
 *  below 1, or lenDCT is below lenCepstrum; #zimStsAllocFailed when memory is short.
 *  @{
 */
ZIMSR_API ZimStatus zimsDCTLifterInitAlloc_32f(ZimsDCTLifterState_32f** state, int lenDCT, int lenCepstrum, int nLifter,
                                               Zim32f val);
ZIMSR_API ZimStatus zimsDCTLifterInitAlloc_16s(ZimsDCTLifterState_16s** state, int lenDCT, int lenCepstrum, int nLifter,
                                               Zim32f val);
ZIMSR_API ZimStatus zimsDCTLifterInitAlloc_C0_32f(ZimsDCTLifterState_32f** state, int lenDCT, int lenCepstrum,
                                                  int nLifter, Zim32f val, Zim32f val0);
ZIMSR_API ZimStatus zimsDCTLifterInitAlloc_C0_16s(ZimsDCTLifterState_16s** state, int lenDCT, int lenCepstrum,
                                                  int nLifter, Zim32f val, Zim32f val0);
/** @} */

/** @name Lifter from a table
 *  lifterTable has lenCepstrum entries. The `_MulC0_` forms scale C0 by the last of them.
 *
 *  @return In this order: #zimStsNullPointer when state or lifterTable is null; #zimStsBadSize when lenDCT or
 *  lenCepstrum is below 1, or lenDCT is below lenCepstrum; #zimStsAllocFailed when memory is short.
 *  @{
 */
ZIMSR_API ZimStatus zimsDCTLifterInitAlloc_Mul_32f(ZimsDCTLifterState_32f** state, int lenDCT,
                                                   const Zim32f* lifterTable, int lenCepstrum);
ZIMSR_API ZimStatus zimsDCTLifterInitAlloc_Mul_16s(ZimsDCTLifterState_16s** state, int lenDCT,
                                                   const Zim32f* lifterTable, int lenCepstrum);
ZIMSR_API ZimStatus zimsDCTLifterInitAlloc_MulC0_32f(ZimsDCTLifterState_32f** state, int lenDCT,
                                                     const Zim32f* lifterTable, int lenCepstrum);
ZIMSR_API ZimStatus zimsDCTLifterInitAlloc_MulC0_16s(ZimsDCTLifterState_16s** state, int lenDCT,
                                                     const Zim32f* lifterTable, int lenCepstrum);
/** @} */

/** @name State in a buffer of the caller's
 *  Here lifterTable holds integers, each converted to `Zim32f`. The buffer may start at any multiple of 4 bytes. Its
 *  size in bytes, with L = lenCepstrum and D = lenDCT, is 8 L + 100 + (4 L + 4) + 32 (L + 1) + (4 L + 4) D + 32.
 *  @{
 */
/** Writes the size of the buffer.
 *  @return #zimStsNullPointer when size is null; #zimStsBadSize when lenDCT or lenCepstrum is below 1, lenDCT is below
 *  lenCepstrum, or lenDCT is above 8192. */
ZIMSR_API ZimStatus zimsDCTLifterGetSize_MulC0_16s(int lenDCT, int lenCepstrum, int* size);
/** Lays a state out in a buffer.
 *  @return #zimStsNullPointer when state or lifterTable is null; #zimStsBadSize when lenDCT or lenCepstrum is below 1,
 *  or lenDCT is below lenCepstrum. */
ZIMSR_API ZimStatus zimsDCTLifterInit_MulC0_16s(ZimsDCTLifterState_16s* state, int lenDCT, const Zim32s* lifterTable,
                                                int lenCepstrum);
/** @} */

/** @name Transform
 *  Reads lenDCT elements of src and writes lenCepstrum values to dst, and C0 behind them in a state with C0. Sums are in
 *  `Zim32f`, in an order that depends on lenDCT alone; that of C0 runs from left to right.
 *
 *  The `Sfs` forms convert each element of src to `Zim32f`, and each result to `Zim16s` as zimsConvert_32f16s_Sfs() does
 *  with rounding to nearest.
 *
 *  @return #zimStsNullPointer when a pointer is null.
 *  @{
 */
ZIMSR_API ZimStatus zimsDCTLifter_32f(const Zim32f* src, Zim32f* dst, const ZimsDCTLifterState_32f* state);
ZIMSR_API ZimStatus zimsDCTLifter_16s_Sfs(const Zim16s* src, Zim16s* dst, ZimsDCTLifterState_16s* state,
                                          int scaleFactor);
ZIMSR_API ZimStatus zimsDCTLifter_32s16s_Sfs(const Zim32s* src, Zim16s* dst, ZimsDCTLifterState_16s* state,
                                             int scaleFactor);
/** @} */

/** @name Release
 *  Releases the tables of a state from an `InitAlloc` function. The state itself stays allocated and goes back by
 *  zimsFree(). The state's fields are not cleared: it can be released once, and not used any more.
 *
 *  @return #zimStsNullPointer when state is null.
 *  @{
 */
ZIMSR_API ZimStatus zimsDCTLifterFree_32f(ZimsDCTLifterState_32f* state);
ZIMSR_API ZimStatus zimsDCTLifterFree_16s(ZimsDCTLifterState_16s* state);
/** @} */

ZIMSR_END_DECLS

/** @} */
#endif
