/** @file
 *  Dynamic features: deltas and delta-deltas of feature vectors.
 *
 *  @defgroup delta Delta features
 *
 *  A feature matrix has a row per frame, and in each row the static features x[t], their deltas d[t] and, in the
 *  `DeltaDelta` functions, the delta-deltas a[t], all of the same width: x in columns 0 .. width - 1, d in columns
 *  width .. 2 width - 1, a in columns 2 width .. 3 width - 1.
 *
 *  | Window | Delta of frame t |
 *  |---|---|
 *  | `Win1` | (x[t+1] - x[t-1]) * val |
 *  | `Win2` | ((x[t+1] - x[t-1]) + 2 (x[t+2] - x[t-2])) * val |
 *
 *  Delta-deltas are the same window on the deltas, multiplied by val2. No normalising factor is applied: the regression
 *  of Furui (1986) has val = 1/2 for `Win1` and 1/10 for `Win2`. Frames before the first are the first frame and frames
 *  after the last are the last frame, for x and for d alike.
 *
 *  **Streaming.** All functions but `zimsEvalDelta*` and `zimsCopyColumn_*` take an utterance in blocks. src is a block
 *  of height frames, one right after the other; dst is the feature matrix with a row stride of dstStep elements. The
 *  flags #ZimDeltaBegin and #ZimDeltaEnd tell where the utterance begins and ends; bits above them are ignored. The
 *  library keeps nothing between calls: the caller moves the last K rows of a block's matrix to the top of the next
 *  one's.
 *
 *  | Function | K | What rows 0 .. K - 1 hold when a block continues another |
 *  |---|---|---|
 *  | `Delta` `Win1` | 2 | statics of rows 0, 1 |
 *  | `Delta` `Win2` | 4 | statics of rows 0 .. 3 |
 *  | `DeltaDelta` `Win1` | 3 | statics of rows 1, 2; deltas of rows 0, 1 |
 *  | `DeltaDelta` `Win2` | 6 | statics of rows 2 .. 5; deltas of rows 0 .. 3 |
 *  | Aurora | 8 | statics of rows 0 .. 7 |
 *
 *  A block that continues another writes its statics to rows K .. K + height - 1; one with #ZimDeltaBegin writes them
 *  to rows 0 .. height - 1 and needs height >= K. Then every delta and delta-delta is written whose window is complete
 *  by these statics, and with #ZimDeltaEnd all that are left. Nothing else in dst is written. A call with #ZimDeltaEnd
 *  and height 0 closes the utterance. However an utterance is cut into blocks, the features are the same bit for bit.
 *
 *  **Mul** functions scale column by column: val has an element per column of the row. The static is src[c] * val[c],
 *  the delta (window of the scaled statics) * val[width + c], the delta-delta (window of the deltas) * val[2 width +
 *  c].
 *
 *  **Zim32f**: single precision, in the order of the formulas; `Win2` adds ((x[t+1] - x[t-1]) + e) + e with
 *  e = x[t+2] - x[t-2].
 *
 *  **Zim16s**: each product is exact; it is shifted right by scaleFactor, or left by -scaleFactor when that is below 0,
 *  without rounding, and saturated. Every difference and every doubling before the product saturates to 16 bits:
 *  `Win2` is sat(sat(x[t+1] - x[t-1]) + sat(e + e)) with e = sat(x[t+2] - x[t-2]). Two functions sum in 32 bits instead
 *  and saturate the end result alone: `zimsDeltaDelta_Win2_16s_D2Sfs` for a width of 14 and more, and
 *  `zimsDeltaDeltaMul_Win2_16s_D2Sfs`.
 *
 *  The streaming functions return, in this order: #zimStsNullPointer when a pointer is null; #zimStsBadSize when width
 *  is below 1, when height is below 0, or when it is 0 without #ZimDeltaEnd; #zimStsBadStride when dstStep is below the
 *  length of a row; #zimStsBadSize when height is below K with #ZimDeltaBegin. A refused call has written nothing.
 *  @{
 */
#ifndef ZIMSR_DELTA_H
#define ZIMSR_DELTA_H

#include <zimsr/types.h>

ZIMSR_BEGIN_DECLS

/** Flags of a block. Both together make it a whole utterance. */
enum {
    ZimDeltaBegin = 1, /**< src starts the utterance: there is no earlier frame */
    ZimDeltaEnd = 2    /**< src ends the utterance: no later frame follows */
};

/** @name Deltas
 *  Rows of 2 width columns.
 *  @{
 */
ZIMSR_API ZimStatus zimsDelta_Win1_32f_D2(const Zim32f* src, int width, Zim32f* dst, int dstStep, int height,
                                          Zim32f val, int flags);
ZIMSR_API ZimStatus zimsDelta_Win2_32f_D2(const Zim32f* src, int width, Zim32f* dst, int dstStep, int height,
                                          Zim32f val, int flags);
ZIMSR_API ZimStatus zimsDeltaMul_Win1_32f_D2(const Zim32f* src, const Zim32f* val, int width, Zim32f* dst, int dstStep,
                                             int height, int flags);
ZIMSR_API ZimStatus zimsDeltaMul_Win2_32f_D2(const Zim32f* src, const Zim32f* val, int width, Zim32f* dst, int dstStep,
                                             int height, int flags);
ZIMSR_API ZimStatus zimsDelta_Win1_16s_D2Sfs(const Zim16s* src, int width, Zim16s* dst, int dstStep, int height,
                                             Zim16s val, int flags, int scaleFactor);
ZIMSR_API ZimStatus zimsDelta_Win2_16s_D2Sfs(const Zim16s* src, int width, Zim16s* dst, int dstStep, int height,
                                             Zim16s val, int flags, int scaleFactor);
ZIMSR_API ZimStatus zimsDeltaMul_Win1_16s_D2Sfs(const Zim16s* src, const Zim16s* val, int width, Zim16s* dst,
                                                int dstStep, int height, int flags, int scaleFactor);
ZIMSR_API ZimStatus zimsDeltaMul_Win2_16s_D2Sfs(const Zim16s* src, const Zim16s* val, int width, Zim16s* dst,
                                                int dstStep, int height, int flags, int scaleFactor);
/** @} */

/** @name Deltas and delta-deltas
 *  Rows of 3 width columns. val1 multiplies the deltas, val2 the delta-deltas.
 *  @{
 */
ZIMSR_API ZimStatus zimsDeltaDelta_Win1_32f_D2(const Zim32f* src, int width, Zim32f* dst, int dstStep, int height,
                                               Zim32f val1, Zim32f val2, int flags);
ZIMSR_API ZimStatus zimsDeltaDelta_Win2_32f_D2(const Zim32f* src, int width, Zim32f* dst, int dstStep, int height,
                                               Zim32f val1, Zim32f val2, int flags);
ZIMSR_API ZimStatus zimsDeltaDeltaMul_Win1_32f_D2(const Zim32f* src, const Zim32f* val, int width, Zim32f* dst,
                                                  int dstStep, int height, int flags);
ZIMSR_API ZimStatus zimsDeltaDeltaMul_Win2_32f_D2(const Zim32f* src, const Zim32f* val, int width, Zim32f* dst,
                                                  int dstStep, int height, int flags);
ZIMSR_API ZimStatus zimsDeltaDelta_Win1_16s_D2Sfs(const Zim16s* src, int width, Zim16s* dst, int dstStep, int height,
                                                  Zim16s val1, Zim16s val2, int flags, int scaleFactor);
ZIMSR_API ZimStatus zimsDeltaDelta_Win2_16s_D2Sfs(const Zim16s* src, int width, Zim16s* dst, int dstStep, int height,
                                                  Zim16s val1, Zim16s val2, int flags, int scaleFactor);
ZIMSR_API ZimStatus zimsDeltaDeltaMul_Win1_16s_D2Sfs(const Zim16s* src, const Zim16s* val, int width, Zim16s* dst,
                                                     int dstStep, int height, int flags, int scaleFactor);
ZIMSR_API ZimStatus zimsDeltaDeltaMul_Win2_16s_D2Sfs(const Zim16s* src, const Zim16s* val, int width, Zim16s* dst,
                                                     int dstStep, int height, int flags, int scaleFactor);
/** @} */

/** @name Features of the distributed front end
 *  The dynamic features of ETSI ES 202 050. A frame of src has 14 values: 12 cepstra, C0, the log energy. A row of dst
 *  has 39: 13 statics, 13 deltas, 13 delta-deltas. Static columns 0 .. 11 are the cepstra, column 12 is C0 * 0.6 / 23 +
 *  logE * 0.4. Deltas and delta-deltas both are windows on the statics, at frames t - 4 .. t + 4:
 *
 *  | Frame | -4 | -3 | -2 | -1 | 0 | 1 | 2 | 3 | 4 |
 *  |---|---|---|---|---|---|---|---|---|---|
 *  | delta | -1 | -0.75 | -0.5 | -0.25 | 0 | 0.25 | 0.5 | 0.75 | 1 |
 *  | delta-delta | 1 | 0.25 | -0.285714 | -0.607143 | -0.714286 | -0.607143 | -0.285714 | 0.25 | 1 |
 *
 *  `Mul`: val has 39 elements, one per column of a row; the windows run on the scaled statics.
 *
 *  `Zim32f`: single precision, each window summed from the leftmost frame to the rightmost.
 *
 *  `Zim16s`: every result is multiplied by its val (`Mul`), shifted right and saturated. Cepstra and deltas are exact
 *  up to the shift; the sum of a delta, with weights -4 .. 4, is shifted by scaleFactor + 2. Column 12 and the
 *  delta-deltas are formed in `Zim32f`, product included, and truncated to integers before the shift. Shifts are only
 *  to the right: a count below 0 counts as 0.
 *  @{
 */
ZIMSR_API ZimStatus zimsDeltaDelta_Aurora_32f_D2(const Zim32f* src, Zim32f* dst, int dstStep, int height, int flags);
ZIMSR_API ZimStatus zimsDeltaDeltaMul_Aurora_32f_D2(const Zim32f* src, const Zim32f* val, Zim32f* dst, int dstStep,
                                                    int height, int flags);
ZIMSR_API ZimStatus zimsDeltaDelta_Aurora_16s_D2Sfs(const Zim16s* src, Zim16s* dst, int dstStep, int height, int flags,
                                                    int scaleFactor);
ZIMSR_API ZimStatus zimsDeltaDeltaMul_Aurora_16s_D2Sfs(const Zim16s* src, const Zim16s* val, Zim16s* dst, int dstStep,
                                                       int height, int flags, int scaleFactor);
/** @} */

/** @name Deltas of a whole utterance in place
 *  srcDst has height rows with a stride of step elements, H = height and W = winSize. Statics stand in columns
 *  offset .. offset + width - 1, deltas are written to the width columns behind them:
 *
 *  - t < W: d[t] = val * sum over k = 1 .. W of k * (x[t+k] - x[0])
 *  - W <= t < H - W: d[t] = val * sum over k = 1 .. W of k * (x[t+k] - x[t-k])
 *  - t >= H - W: d[t] = val * sum over k = 1 .. W of k * (x[H-1] - x[t-k])
 *
 *  Near the ends a whole side of the window is the first or the last frame, also where the frame it stands for exists.
 *  The regression has val = 1 / (2 * sum of k^2). In the `Mul` functions the val of column c is val[width + c]; the
 *  statics stay as they are, and val[0 .. width - 1] is not read.
 *
 *  `Zim32f`: single precision, summed from k = 1 upward. `Zim16s`: the sum is a 32-bit integer and wraps; its exact
 *  product with val is shifted by scaleFactor as in the streaming functions, and saturated.
 *
 *  @return #zimStsNullPointer when srcDst or val is null; #zimStsBadSize when height, width or winSize is below 1,
 *  offset below 0, or height below 2 winSize; #zimStsBadStride when step is below offset + 2 width.
 *  @{
 */
ZIMSR_API ZimStatus zimsEvalDelta_32f_D2(Zim32f* srcDst, int height, int step, int width, int offset, int winSize,
                                         Zim32f val);
ZIMSR_API ZimStatus zimsEvalDeltaMul_32f_D2(Zim32f* srcDst, int height, int step, const Zim32f* val, int width,
                                            int offset, int winSize);
ZIMSR_API ZimStatus zimsEvalDelta_16s_D2Sfs(Zim16s* srcDst, int height, int step, int width, int offset, int winSize,
                                            Zim16s val, int scaleFactor);
ZIMSR_API ZimStatus zimsEvalDeltaMul_16s_D2Sfs(Zim16s* srcDst, int height, int step, const Zim16s* val, int width,
                                               int offset, int winSize, int scaleFactor);
/** @} */

/** @name Copy of the statics alone
 *  Copies height rows of width elements, one right after the other in src, to rows of dst that are dstStep apart.
 *
 *  @return #zimStsNullPointer when a pointer is null; #zimStsBadSize when height or width is below 1; #zimStsBadStride
 *  when dstStep is below width.
 *  @{
 */
ZIMSR_API ZimStatus zimsCopyColumn_32f_D2(const Zim32f* src, int width, Zim32f* dst, int dstStep, int height);
ZIMSR_API ZimStatus zimsCopyColumn_16s_D2(const Zim16s* src, int width, Zim16s* dst, int dstStep, int height);
/** @} */

/** @name Other names
 *  `DeltaW1` and `DeltaW2` are `Delta_Win1` and `Delta_Win2`, `DeltaDeltaW1` and `DeltaDeltaW2` are `DeltaDelta_Win1`
 *  and `DeltaDelta_Win2`, `CopyCol` is `CopyColumn`.
 *  @{
 */
ZIMSR_API ZimStatus zimsDeltaW1_32f_D2(const Zim32f* src, int width, Zim32f* dst, int dstStep, int height, Zim32f val,
                                       int flags);
ZIMSR_API ZimStatus zimsDeltaW2_32f_D2(const Zim32f* src, int width, Zim32f* dst, int dstStep, int height, Zim32f val,
                                       int flags);
ZIMSR_API ZimStatus zimsDeltaDeltaW1_32f_D2(const Zim32f* src, int width, Zim32f* dst, int dstStep, int height,
                                            Zim32f val1, Zim32f val2, int flags);
ZIMSR_API ZimStatus zimsDeltaDeltaW2_32f_D2(const Zim32f* src, int width, Zim32f* dst, int dstStep, int height,
                                            Zim32f val1, Zim32f val2, int flags);
ZIMSR_API ZimStatus zimsCopyCol_32f_D2(const Zim32f* src, int width, Zim32f* dst, int dstStep, int height);
/** @} */

ZIMSR_END_DECLS

/** @} */
#endif
