/** @file
 *  Mel filter banks without floating point.
 *
 *  @defgroup melfbank_fixed All-integer mel filter banks
 *
 *  The mel filter bank of @ref melfbank for processors without a floating-point unit: neither building nor evaluating
 *  one executes a floating-point instruction, and nothing is allocated. Filters, edge bins and transform length are
 *  those of the mel bank with #ZimFBankBinSlopes, on spectra of `Zim32s`; there is no transform.
 *
 *  **Arithmetic.** Frequencies are integers in Hz. The constants of the mel scale are Q15: melMul = 36929880 and melDiv
 * = 22937600 stand for 1127.01 and 700. The edges are found in Q22, with a logarithm that squares its argument once for
 *  each bit and an exponential that takes it apart into factors 1 + 2^-k (Specker, "A class of algorithms for ln x, exp
 *  x, sin x, cos x, tan^-1 x and cot^-1 x", IEEE Trans. Electronic Computers 14, 1965); an edge may lie one bin beside
 *  that of the floating-point bank. Edges where 1 + f / melDiv is above 512 are taken as 512. Weights are Q30,
 * truncated toward zero.
 *
 *  **Life of a bank.** zimsMelFBankGetSize_32s() tells the size of a block, zimsMelFBankInit_32s() builds the bank in
 *  one, and it goes with the block. The block may lie at any address.
 *
 *  **Threads.** Calls may share a bank.
 *  @{
 */
#ifndef ZIMSR_MELFBANK_FIXED_H
#define ZIMSR_MELFBANK_FIXED_H

#include <zimsr/types.h>

ZIMSR_BEGIN_DECLS

/** Filter bank with weights in Q30. */
typedef struct ZimsFBankState_32s ZimsFBankState_32s;

/** *size = how many bytes the block of a bank must have: with h = fftLen / 2 and r = 4 nFilter + 8,
 *  4 nFilter + 96 + 9 r + r (h + 9) + r h + 64.
 *
 *  @param mode 2, bin slopes
 *
 *  @return In this order: #zimStsNullPointer when size is null; #zimStsBadSize when nFilter is below 1 or frameLen
 *  outside 32 .. 8192; #zimStsFBankBadMode when mode is not 2; #zimStsBadSize when nFilter is above fftLen / 2. */
ZIMSR_API ZimStatus zimsMelFBankGetSize_32s(int frameLen, int nFilter, int mode, int* size);

/** Builds a bank in the block at state.
 *
 *  @param[out] state      the bank
 *  @param[out] order      log2 of the transform length
 *  @param[in]  frameLen   length of a frame in samples
 *  @param[in]  sampleRate in Hz
 *  @param[in]  lowFreq    lowest edge in Hz; may be 0
 *  @param[in]  highFreq   highest edge in Hz
 *  @param[in]  nFilter    number of filters
 *  @param[in]  melMul,melDiv constants of the mel scale, Q15
 *  @param[in]  mode       2, bin slopes
 *
 *  @return In this order: #zimStsNullPointer when state or order is null; #zimStsBadSize when nFilter or highFreq is
 *  below 1 or frameLen outside 32 .. 8192; #zimStsFBankBadMode when mode is not 2; #zimStsBadSize when sampleRate is
 *  outside 1 .. 48000 or lowFreq below 0; #zimStsFBankBadFlag when highFreq is not above lowFreq or is above 24000;
 *  #zimStsBadArgument when melDiv is not above 16 and below 8192, when melMul is not above 16 and below 32768. Then
 *  *order is written, and two more may follow: #zimStsBadSize when nFilter is above fftLen / 2 + 1, and
 *  #zimStsFBankBadFlag when the highest edge lies above bin fftLen / 2. The block is untouched by all of them. */
ZIMSR_API ZimStatus zimsMelFBankInit_32s(ZimsFBankState_32s* state, int* order, int frameLen, int sampleRate,
                                         int lowFreq, int highFreq, int nFilter, Zim32s melMul, Zim32s melDiv,
                                         int mode);

/** dst[i - 1] = round(2^-scaleFactor * the sum over filter i of weight times spectrum), for i = 1 .. nFilter, ties up,
 *  saturated to 32 bits.
 *
 *  Each product is exact and loses its lowest 8 bits, rounded down. The sum of 64 bits saturates at every step, and is
 *  then shifted by scaleFactor: to the right rounded down, to the left saturated. src is read from bin c[0] to bin
 *  c[nFilter + 1] and no further; it may be negative.
 *
 *  @return #zimStsNullPointer when src, dst or state is null; #zimStsBadArgument when scaleFactor is outside
 *  -31 .. 31. */
ZIMSR_API ZimStatus zimsEvalFBank_32s_Sfs(const Zim32s* src, Zim32s* dst, const ZimsFBankState_32s* state,
                                          int scaleFactor);

ZIMSR_END_DECLS

/** @} */
#endif
