/** @file
 *  Mel filter banks in floating point and in 16-bit fixed point.
 *
 *  @defgroup melfbank Mel filter banks
 *
 *  A filter bank turns a magnitude or power spectrum, or a frame of samples that it transforms itself, into a short
 *  vector of band energies: the first half of mel cepstra (Davis and Mermelstein, "Comparison of parametric
 *  representations for monosyllabic word recognition in continuously spoken sentences", IEEE Trans. ASSP 28, 1980).
 *
 *  **Mel scale.** mel(f) = ln(1 + f / melDiv) * melMul, with the natural logarithm. melMul = 1127.01048 and melDiv = 700
 *  give the usual scale (O'Shaughnessy, "Speech Communication: Human and Machine", 1987).
 *
 *  **Filters.** A bank has nFilter filters, counted from 1, and nFilter + 2 edge bins c[0] <= c[1] <= ... <=
 *  c[nFilter + 1] <= fftLen / 2. Filter i covers the bins c[i-1] .. c[i+1], with two rows of weights:
 *  - the lower row: c[i] - c[i-1] + 1 weights for the bins c[i-1] .. c[i];
 *  - the upper row: c[i+1] - c[i] weights for the bins c[i] + 1 .. c[i+1].
 *
 *  The `_32f` bank holds its weights as `Zim32f`, the `_16s` bank as 32-bit integers in Q14 (16384 is 1).
 *
 *  **Transform length.** fftLen is the smallest power of two that is at least 2 and at least frameLen;
 *  order = log2(fftLen). Bin k lies at k * sampleRate / fftLen Hz, and a spectrum has fftLen / 2 + 1 bins.
 *
 *  **Life of a bank.** A builder allocates it. A bank from `zimsEmptyFBankInitAlloc_*` is then filled: first its centres
 *  by `zimsFBankSetCenters_*`, then each filter by `zimsFBankSetCoeffs_*`. It is evaluated any number of times. In the
 *  end `zimsFBankFree_*` releases its tables, and zimsFree() the bank itself.
 *
 *  **A builder that fails** leaves nothing allocated. A refusal of its arguments has written nothing; a failure after
 *  that (#zimStsAllocFailed, or edges that a mel scale gone wrong has made useless) sets *state to null and does not
 *  write *order.
 *
 *  **Threads.** Calls may share a bank while none of them changes it. Evaluation with #ZimFBankFrameInput works in the
 *  bank's own buffer: such a bank serves one call at a time.
 *
 *  @{
 */
#ifndef ZIMSR_MELFBANK_H
#define ZIMSR_MELFBANK_H

#include <zimsr/types.h>

ZIMSR_BEGIN_DECLS

/** Option flags of a bank: one of the two kinds of slopes, with or without frame input. */
enum {
    ZimFBankMelSlopes = 1, /**< slopes are straight lines over mel; edges are truncated to bins */
    ZimFBankBinSlopes = 2, /**< slopes are straight lines over bins; edges are rounded to the nearest bin, ties to even */
    ZimFBankFrameInput = 4 /**< evaluation takes a frame of samples and transforms it itself */
};

/** Filter bank with weights in floating point. */
typedef struct ZimsFBankState_32f ZimsFBankState_32f;
/** Filter bank with weights in Q14. */
typedef struct ZimsFBankState_16s ZimsFBankState_16s;

/** @name Mel scale
 *  Between frequency and mel, element by element, in double precision between load and store. src and dst may be the
 *  same array.
 *
 *  - `MelToLinear`: dst[i] = (exp(src[i] * (1 / melMul)) - 1) * melDiv
 *  - `LinearToMel`: dst[i] = ln(src[i] * (1 / melDiv) + 1) * melMul
 *
 *  @return #zimStsNullPointer when src or dst is null, then #zimStsBadSize when len is below 1, when melMul is not above
 *  0, or when melDiv is not above 0.
 *  @{
 */
ZIMSR_API ZimStatus zimsMelToLinear_32f(const Zim32f* src, Zim32f* dst, int len, Zim32f melMul, Zim32f melDiv);
ZIMSR_API ZimStatus zimsLinearToMel_32f(const Zim32f* src, Zim32f* dst, int len, Zim32f melMul, Zim32f melDiv);
/** @} */

/** @name Mel banks
 *  Edges evenly spaced in mel from lowFreq to highFreq: with g[i] = mel(lowFreq) + i * (mel(highFreq) - mel(lowFreq)) /
 *  (nFilter + 1), edge i is the bin of g[i], truncated or rounded by the flags.
 *
 *  With #ZimFBankBinSlopes
 *  - lower[j] = (j + 1) / (c[i] - c[i-1] + 1), which ends at exactly 1 on the centre;
 *  - upper[j] = (c[i+1] - c[i] - j) / (c[i+1] - c[i] + 1).
 *
 *  With #ZimFBankMelSlopes, the mel value of bin k standing between the unrounded edges,
 *  - lower: 0 for bin c[i-1], then (mel(k) - g[i-1]) / (g[i] - g[i-1]) for k = c[i-1] + 1 .. c[i];
 *  - upper: (g[i+1] - mel(k)) / (g[i+1] - g[i]) for k = c[i] + 1 .. c[i+1].
 *
 *  Weights in Q14 are truncated toward zero. Where rounding errors would carry an edge past bin fftLen / 2 or below the
 *  edge before it, it is held there.
 *
 *  @param[out] state      the bank
 *  @param[out] order      log2 of the transform length
 *  @param[in]  frameLen   length of a frame in samples
 *  @param[in]  sampleRate in Hz
 *  @param[in]  lowFreq    lowest edge in Hz, above 0
 *  @param[in]  highFreq   highest edge in Hz, from lowFreq to half of sampleRate
 *  @param[in]  nFilter    number of filters
 *  @param[in]  melMul,melDiv constants of the mel scale
 *  @param[in]  flags      #ZimFBankMelSlopes or #ZimFBankBinSlopes, with or without #ZimFBankFrameInput
 *
 *  @return In this order: #zimStsNullPointer when state or order is null; #zimStsBadSize when frameLen or nFilter is
 *  below 1, when sampleRate is not above 0, when lowFreq is not above 0; #zimStsFBankBadFlag when lowFreq is above
 *  highFreq, when highFreq is above half of sampleRate; #zimStsFBankBadMode for other flags; #zimStsAllocFailed when
 *  memory is short or frameLen is above 2^30; #zimStsFBankBadFlag when melMul and melDiv put an edge below bin 0 or
 *  nowhere at all. A NaN fails the test that it meets.
 *  @{
 */
ZIMSR_API ZimStatus zimsMelFBankInitAlloc_32f(ZimsFBankState_32f** state, int* order, int frameLen, Zim32f sampleRate,
                                              Zim32f lowFreq, Zim32f highFreq, int nFilter, Zim32f melMul,
                                              Zim32f melDiv, int flags);
ZIMSR_API ZimStatus zimsMelFBankInitAlloc_16s(ZimsFBankState_16s** state, int* order, int frameLen, Zim32f sampleRate,
                                              Zim32f lowFreq, Zim32f highFreq, int nFilter, Zim32f melMul,
                                              Zim32f melDiv, int flags);
/** @} */

/** @name Mixed banks
 *  Edges evenly spaced in Hz from lowFreq to linHighFreq for the first nLinear filters, and evenly in mel from
 *  linHighFreq to highFreq for the others:
 *  - nLinear = nFilter: h[i] = lowFreq + i * (linHighFreq - lowFreq) / (nFilter + 1), and edge i is the bin of h[i], for
 *    all i. highFreq is only checked;
 *  - nLinear < nFilter: h[i] = lowFreq + i * (linHighFreq - lowFreq) / nLinear gives the edges i < nLinear. The edges
 *    i >= nLinear are evenly spaced in mel, by (mel(highFreq) - mel(linHighFreq)) / (nFilter - nLinear + 1), from
 *    mel(linHighFreq) on.
 *
 *  With #ZimFBankBinSlopes all filters are those of a mel bank. With #ZimFBankMelSlopes
 *  - the linear filters, up to nLinear, have lower[k - c[i-1]] = (mel(k) - mel(h[i-1])) / (mel(h[i]) - mel(h[i-1])) for
 *    k = c[i-1] .. c[i], and upper[k - c[i] - 1] = (mel(h[i+1]) - mel(k)) / (mel(h[i+1]) - mel(h[i])) for
 *    k = c[i] + 1 .. c[i+1]. The upper slope of the last of several kinds, filter nLinear < nFilter, runs to the mel
 *    value of its upper edge in the same way. A slope between equal edges is 0;
 *  - the filters above nLinear have the bin slopes;
 *  - no weight is below 0.
 *
 *  @param linHighFreq upper edge of the linear part in Hz, from lowFreq to highFreq
 *  @param nLinear     number of linear filters, 1 .. nFilter
 *
 *  The other arguments are those of a mel bank.
 *
 *  @return As a mel bank, with these between the tests of lowFreq and of sampleRate against highFreq: #zimStsBadSize
 *  when nLinear is below 1 or above nFilter; #zimStsFBankBadFlag when lowFreq is above linHighFreq, when linHighFreq is
 *  above highFreq.
 *  @{
 */
ZIMSR_API ZimStatus zimsMelLinFBankInitAlloc_32f(ZimsFBankState_32f** state, int* order, int frameLen,
                                                 Zim32f sampleRate, Zim32f lowFreq, Zim32f highFreq, int nFilter,
                                                 Zim32f linHighFreq, int nLinear, Zim32f melMul, Zim32f melDiv,
                                                 int flags);
ZIMSR_API ZimStatus zimsMelLinFBankInitAlloc_16s(ZimsFBankState_16s** state, int* order, int frameLen,
                                                 Zim32f sampleRate, Zim32f lowFreq, Zim32f highFreq, int nFilter,
                                                 Zim32f linHighFreq, int nLinear, Zim32f melMul, Zim32f melDiv,
                                                 int flags);
/** @} */

/** @name Empty banks
 *  A bank to be filled by hand. Its weights are 0 and it has no centres yet. It takes spectra, never frames, whatever
 *  flags says; with #ZimFBankFrameInput the transform is built and not used.
 *
 *  @return #zimStsNullPointer when state or order is null, #zimStsBadSize when frameLen or nFilter is below 1,
 *  #zimStsAllocFailed when memory is short or frameLen is above 2^30.
 *  @{
 */
ZIMSR_API ZimStatus zimsEmptyFBankInitAlloc_32f(ZimsFBankState_32f** state, int* order, int frameLen, int nFilter,
                                                int flags);
ZIMSR_API ZimStatus zimsEmptyFBankInitAlloc_16s(ZimsFBankState_16s** state, int* order, int frameLen, int nFilter,
                                                int flags);
/** @} */

/** @name Aurora banks
 *  The two constant banks of the advanced distributed front end (ETSI ES 202 050), for spectra of 65 bins at 8000 Hz,
 *  with bin slopes that leave out the edges themselves.
 *  - `Low`: 25 filters, the first on bin 0 alone, the others with centres 1, 2, 3, 4, 5, 7, 8, 10, 12, 14, 16, 18, 20,
 *    23, 26, 29, 32, 36, 39, 44, 48, 53, 58, 64. The weights of each filter are divided by their sum.
 *  - `High`: 3 filters with centres 8, 19, 37 and outer edges 1 and 64. The weights are not normalised.
 *
 *  @return #zimStsNullPointer when state is null, #zimStsAllocFailed when memory is short.
 *  @{
 */
ZIMSR_API ZimStatus zimsMelFBankInitAllocLow_Aurora_32f(ZimsFBankState_32f** state);
ZIMSR_API ZimStatus zimsMelFBankInitAllocLow_Aurora_16s(ZimsFBankState_16s** state);
ZIMSR_API ZimStatus zimsMelFBankInitAllocHigh_Aurora_32f(ZimsFBankState_32f** state);
ZIMSR_API ZimStatus zimsMelFBankInitAllocHigh_Aurora_16s(ZimsFBankState_16s** state);
/** @} */

/** @name Evaluation
 *  dst[i - 1] = the sum over filter i of weight times spectrum, for i = 1 .. nFilter.
 *
 *  Without #ZimFBankFrameInput src is the spectrum; it is read from bin c[0] to bin c[nFilter + 1] and no further. With
 *  it src is a frame of fftLen samples, and the spectrum is the magnitude of its forward transform, unscaled.
 *
 *  - `_32f` sums in `Zim32f`. The order of summation depends on the edges alone.
 *  - `_16s_Sfs`, `_16s32s_Sfs` form each product in 32 bits, which wrap, and their sum exactly. dst is the sum times
 *    2^-(scaleFactor + 14), rounded down and saturated to its type. Of a frame, the transform is multiplied by 8 and
 *    rounded, and so is its magnitude; the sum gives the factor of 64 back.
 *
 *  @return #zimStsNullPointer when src, dst or state is null or the bank has been freed; #zimStsFBankNoCoeffs when its
 *  centres have not been set; #zimStsAllocFailed when the transform needs memory and there is none.
 *  @{
 */
ZIMSR_API ZimStatus zimsEvalFBank_32f(const Zim32f* src, Zim32f* dst, ZimsFBankState_32f* state);
ZIMSR_API ZimStatus zimsEvalFBank_16s_Sfs(const Zim16s* src, Zim16s* dst, ZimsFBankState_16s* state, int scaleFactor);
ZIMSR_API ZimStatus zimsEvalFBank_16s32s_Sfs(const Zim16s* src, Zim32s* dst, ZimsFBankState_16s* state,
                                             int scaleFactor);
/** @} */

/** @name Centres
 *  The nFilter + 2 edge bins of a bank. A table is valid when 0 <= c[0] <= c[1] <= ... <= c[nFilter + 1] <= fftLen / 2.
 *  Setting the centres leaves the weights as they are.
 *
 *  @return #zimStsNullPointer when state or centers is null, or when centres are set in a freed bank;
 *  #zimStsFBankNoCoeffs when there are no centres to get, as in a freed bank, or when the table to set is not valid. A
 *  refused table changes nothing.
 *  @{
 */
ZIMSR_API ZimStatus zimsFBankGetCenters_32f(const ZimsFBankState_32f* state, Zim32s* centers);
ZIMSR_API ZimStatus zimsFBankGetCenters_16s(const ZimsFBankState_16s* state, Zim32s* centers);
ZIMSR_API ZimStatus zimsFBankSetCenters_32f(ZimsFBankState_32f* state, const Zim32s* centers);
ZIMSR_API ZimStatus zimsFBankSetCenters_16s(ZimsFBankState_16s* state, const Zim32s* centers);
/** @} */

/** @name Coefficients
 *  The weights of one filter: its lower row, then its upper row, c[filter + 1] - c[filter - 1] + 1 values in all. A
 *  `_16s` bank gives them as weight * 2^-14, and takes them as 16384 * value, limited to 32 bits and truncated toward
 *  zero.
 *
 *  @param filter counted from 1. The low Aurora bank has a filter nFilter + 1 that can be got, a single 0.
 *
 *  @return In this order: #zimStsNullPointer when a pointer is null; #zimStsFBankNoCoeffs when the bank has no centres;
 *  #zimStsBadSize when there is no such filter.
 *  @{
 */
ZIMSR_API ZimStatus zimsFBankGetCoeffs_32f(const ZimsFBankState_32f* state, int filter, Zim32f* dst);
ZIMSR_API ZimStatus zimsFBankGetCoeffs_16s(const ZimsFBankState_16s* state, int filter, Zim32f* dst);
ZIMSR_API ZimStatus zimsFBankSetCoeffs_32f(ZimsFBankState_32f* state, int filter, const Zim32f* src);
ZIMSR_API ZimStatus zimsFBankSetCoeffs_16s(ZimsFBankState_16s* state, int filter, const Zim32f* src);
/** @} */

/** @name Release
 *  Releases the tables, the transform and the buffer of a bank. The bank itself stays allocated, without centres, and
 *  goes back by zimsFree().
 *
 *  @return #zimStsNullPointer when state is null.
 *  @{
 */
ZIMSR_API ZimStatus zimsFBankFree_32f(ZimsFBankState_32f* state);
ZIMSR_API ZimStatus zimsFBankFree_16s(ZimsFBankState_16s* state);
/** @} */

/** @name Padding
 *  Copies srcLen elements and sets the other dstLen - srcLen elements of dst to 0: brings a frame up to the transform
 *  length.
 *
 *  @return #zimStsNullPointer when src or dst is null; #zimStsBadSize when srcLen or dstLen is below 1, or dstLen is
 *  below srcLen.
 *  @{
 */
ZIMSR_API ZimStatus zimsCopyWithPadding_16s(const Zim16s* src, int srcLen, Zim16s* dst, int dstLen);
ZIMSR_API ZimStatus zimsCopyWithPadding_32f(const Zim32f* src, int srcLen, Zim32f* dst, int dstLen);
/** @} */

ZIMSR_END_DECLS

/** @} */
#endif
