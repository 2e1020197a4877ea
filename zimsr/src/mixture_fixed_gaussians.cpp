// One 16-bit frame against many Gaussians, a score for each.
#include <zimsr/mixture_fixed.h>

#include "zimcore/frame/checks.h"
#include "zimcore/frame/rows.h"
#include "zimsr/kernels/mixture_fixed.h"

using namespace zimsr;

// ---- The constants are overwritten by the scores

ZimStatus zimsLogGaussMultiMix_16s32s_D2Sfs(const Zim16s* mean, const Zim16s* invVar, int step, const Zim16s* src,
                                            int width, Zim32s* srcDst, int height, int scaleFactor)
{
    if (ZimStatus fault =
            firstFault(strideBelow(step, width), anyNull(mean, invVar, src, srcDst), anyBelowOne(width, height)))
        return fault;
    scoreFixedGaussians<PlainForm>(src, width, height, srcDst, scaleFactor, StoreScores{srcDst}, Rows(mean, step),
                                   Rows(invVar, step));
    return zimStsOk;
}

ZimStatus zimsLogGaussMultiMix_Scaled_16s32f_D2(const Zim16s* mean, const Zim16s* invVar, int step, const Zim16s* src,
                                                int width, Zim32f* srcDst, int height, int scaleFactor)
{
    if (ZimStatus fault =
            firstFault(strideBelow(step, width), anyNull(mean, invVar, src, srcDst), anyBelowOne(width, height)))
        return fault;
    scoreFixedGaussians<PlainForm>(src, width, height, srcDst, scaleFactor, StoreScores{srcDst}, Rows(mean, step),
                                   Rows(invVar, step));
    return zimStsOk;
}

ZimStatus zimsLogGaussMultiMix_16s32s_D2LSfs(const Zim16s* const* meanRows, const Zim16s* const* invVarRows,
                                             const Zim16s* src, int width, Zim32s* srcDst, int height, int scaleFactor)
{
    if (ZimStatus fault = firstFault(anyNull(meanRows, invVarRows, src, srcDst), anyBelowOne(width, height)))
        return fault;
    scoreFixedGaussians<PlainForm>(src, width, height, srcDst, scaleFactor, StoreScores{srcDst}, Rows(meanRows),
                                   Rows(invVarRows));
    return zimStsOk;
}

ZimStatus zimsLogGaussMultiMix_Scaled_16s32f_D2L(const Zim16s* const* meanRows, const Zim16s* const* invVarRows,
                                                 const Zim16s* src, int width, Zim32f* srcDst, int height,
                                                 int scaleFactor)
{
    if (ZimStatus fault = firstFault(anyNull(meanRows, invVarRows, src, srcDst), anyBelowOne(width, height)))
        return fault;
    scoreFixedGaussians<PlainForm>(src, width, height, srcDst, scaleFactor, StoreScores{srcDst}, Rows(meanRows),
                                   Rows(invVarRows));
    return zimStsOk;
}

ZimStatus zimsLogGaussMultiMix_Low_16s32s_D2Sfs(const Zim16s* mean, const Zim16s* invVar, int step, const Zim16s* src,
                                                int width, Zim32s* srcDst, int height, int scaleFactor)
{
    if (ZimStatus fault =
            firstFault(strideBelow(step, width), anyNull(mean, invVar, src, srcDst), anyBelowOne(width, height)))
        return fault;
    scoreFixedGaussians<LowForm>(src, width, height, srcDst, scaleFactor, StoreScores{srcDst}, Rows(mean, step),
                                 Rows(invVar, step));
    return zimStsOk;
}

ZimStatus zimsLogGaussMultiMix_LowScaled_16s32f_D2(const Zim16s* mean, const Zim16s* invVar, int step,
                                                   const Zim16s* src, int width, Zim32f* srcDst, int height,
                                                   int scaleFactor)
{
    if (ZimStatus fault =
            firstFault(strideBelow(step, width), anyNull(mean, invVar, src, srcDst), anyBelowOne(width, height)))
        return fault;
    scoreFixedGaussians<LowForm>(src, width, height, srcDst, scaleFactor, StoreScores{srcDst}, Rows(mean, step),
                                 Rows(invVar, step));
    return zimStsOk;
}

ZimStatus zimsLogGaussMultiMix_Low_16s32s_D2LSfs(const Zim16s* const* meanRows, const Zim16s* const* invVarRows,
                                                 const Zim16s* src, int width, Zim32s* srcDst, int height,
                                                 int scaleFactor)
{
    if (ZimStatus fault = firstFault(anyNull(meanRows, invVarRows, src, srcDst), anyBelowOne(width, height)))
        return fault;
    scoreFixedGaussians<LowForm>(src, width, height, srcDst, scaleFactor, StoreScores{srcDst}, Rows(meanRows),
                                 Rows(invVarRows));
    return zimStsOk;
}

ZimStatus zimsLogGaussMultiMix_LowScaled_16s32f_D2L(const Zim16s* const* meanRows, const Zim16s* const* invVarRows,
                                                    const Zim16s* src, int width, Zim32f* srcDst, int height,
                                                    int scaleFactor)
{
    if (ZimStatus fault = firstFault(anyNull(meanRows, invVarRows, src, srcDst), anyBelowOne(width, height)))
        return fault;
    scoreFixedGaussians<LowForm>(src, width, height, srcDst, scaleFactor, StoreScores{srcDst}, Rows(meanRows),
                                 Rows(invVarRows));
    return zimStsOk;
}

// ---- Folded into running scores by maximum

ZimStatus zimsLogGaussMaxMultiMix_16s32s_D2Sfs(const Zim16s* mean, const Zim16s* invVar, int step, const Zim16s* src,
                                               int width, const Zim32s* val, Zim32s* srcDst, int height,
                                               int scaleFactor)
{
    if (ZimStatus fault =
            firstFault(strideBelow(step, width), anyNull(mean, invVar, src, val, srcDst), anyBelowOne(width, height)))
        return fault;
    scoreFixedGaussians<HalvedMaxForm>(src, width, height, val, scaleFactor, KeepGreaterInteger{srcDst},
                                       Rows(mean, step), Rows(invVar, step));
    return zimStsOk;
}

ZimStatus zimsLogGaussMaxMultiMix_Scaled_16s32f_D2(const Zim16s* mean, const Zim16s* invVar, int step,
                                                   const Zim16s* src, int width, const Zim32f* val, Zim32f* srcDst,
                                                   int height, int scaleFactor)
{
    if (ZimStatus fault =
            firstFault(anyNull(mean, invVar, src, val, srcDst), anyBelowOne(width, height), strideBelow(step, width)))
        return fault;
    scoreFixedGaussians<PlainForm>(src, width, height, val, scaleFactor, KeepGreater{srcDst}, Rows(mean, step),
                                   Rows(invVar, step));
    return zimStsOk;
}

ZimStatus zimsLogGaussMaxMultiMix_16s32s_D2LSfs(const Zim16s* const* meanRows, const Zim16s* const* invVarRows,
                                                const Zim16s* src, int width, const Zim32s* val, Zim32s* srcDst,
                                                int height, int scaleFactor)
{
    if (ZimStatus fault = firstFault(anyNull(meanRows, invVarRows, src, val, srcDst), anyBelowOne(width, height)))
        return fault;
    scoreFixedGaussians<PlainMaxForm>(src, width, height, val, scaleFactor, KeepGreaterInteger{srcDst}, Rows(meanRows),
                                      Rows(invVarRows));
    return zimStsOk;
}

ZimStatus zimsLogGaussMaxMultiMix_Scaled_16s32f_D2L(const Zim16s* const* meanRows, const Zim16s* const* invVarRows,
                                                    const Zim16s* src, int width, const Zim32f* val, Zim32f* srcDst,
                                                    int height, int scaleFactor)
{
    if (ZimStatus fault = firstFault(anyNull(meanRows, invVarRows, src, val, srcDst), anyBelowOne(width, height)))
        return fault;
    scoreFixedGaussians<PlainForm>(src, width, height, val, scaleFactor, KeepGreater{srcDst}, Rows(meanRows),
                                   Rows(invVarRows));
    return zimStsOk;
}

ZimStatus zimsLogGaussMaxMultiMix_Low_16s32s_D2Sfs(const Zim16s* mean, const Zim16s* invVar, int step,
                                                   const Zim16s* src, int width, const Zim32s* val, Zim32s* srcDst,
                                                   int height, int scaleFactor)
{
    if (ZimStatus fault =
            firstFault(strideBelow(step, width), anyNull(mean, invVar, src, val, srcDst), anyBelowOne(width, height)))
        return fault;
    scoreFixedGaussians<LowMaxForm>(src, width, height, val, scaleFactor, KeepGreaterInteger{srcDst}, Rows(mean, step),
                                    Rows(invVar, step));
    return zimStsOk;
}

ZimStatus zimsLogGaussMaxMultiMix_LowScaled_16s32f_D2(const Zim16s* mean, const Zim16s* invVar, int step,
                                                      const Zim16s* src, int width, const Zim32f* val, Zim32f* srcDst,
                                                      int height, int scaleFactor)
{
    if (ZimStatus fault =
            firstFault(anyNull(mean, invVar, src, val, srcDst), anyBelowOne(width, height), strideBelow(step, width)))
        return fault;
    scoreFixedGaussians<LowForm>(src, width, height, val, scaleFactor, KeepGreater{srcDst}, Rows(mean, step),
                                 Rows(invVar, step));
    return zimStsOk;
}

ZimStatus zimsLogGaussMaxMultiMix_Low_16s32s_D2LSfs(const Zim16s* const* meanRows, const Zim16s* const* invVarRows,
                                                    const Zim16s* src, int width, const Zim32s* val, Zim32s* srcDst,
                                                    int height, int scaleFactor)
{
    if (ZimStatus fault = firstFault(anyNull(meanRows, invVarRows, src, val, srcDst), anyBelowOne(width, height)))
        return fault;
    scoreFixedGaussians<LowMaxForm>(src, width, height, val, scaleFactor, KeepGreaterInteger{srcDst}, Rows(meanRows),
                                    Rows(invVarRows));
    return zimStsOk;
}

ZimStatus zimsLogGaussMaxMultiMix_LowScaled_16s32f_D2L(const Zim16s* const* meanRows, const Zim16s* const* invVarRows,
                                                       const Zim16s* src, int width, const Zim32f* val, Zim32f* srcDst,
                                                       int height, int scaleFactor)
{
    if (ZimStatus fault = firstFault(anyNull(meanRows, invVarRows, src, val, srcDst), anyBelowOne(width, height)))
        return fault;
    scoreFixedGaussians<LowForm>(src, width, height, val, scaleFactor, KeepGreater{srcDst}, Rows(meanRows),
                                 Rows(invVarRows));
    return zimStsOk;
}

// ---- Folded by log-domain addition

ZimStatus zimsLogGaussAddMultiMix_Scaled_16s32f_D2(const Zim16s* mean, const Zim16s* invVar, int step,
                                                   const Zim16s* src, int width, const Zim32f* val, Zim32f* srcDst,
                                                   int height, int scaleFactor)
{
    if (ZimStatus fault =
            firstFault(strideBelow(step, width), anyNull(mean, invVar, src, val, srcDst), anyBelowOne(width, height)))
        return fault;
    addScores<gaussianBlock>(
        srcDst, height,
        scoresOfFixedGaussians<PlainForm>(src, width, val, scaleFactor, Rows(mean, step), Rows(invVar, step)));
    return zimStsOk;
}

ZimStatus zimsLogGaussAddMultiMix_Scaled_16s32f_D2L(const Zim16s* const* meanRows, const Zim16s* const* invVarRows,
                                                    const Zim16s* src, int width, const Zim32f* val, Zim32f* srcDst,
                                                    int height, int scaleFactor)
{
    if (ZimStatus fault = firstFault(anyNull(meanRows, invVarRows, src, val, srcDst), anyBelowOne(width, height)))
        return fault;
    addScores<gaussianBlock>(
        srcDst, height,
        scoresOfFixedGaussians<PlainForm>(src, width, val, scaleFactor, Rows(meanRows), Rows(invVarRows)));
    return zimStsOk;
}

ZimStatus zimsLogGaussAddMultiMix_LowScaled_16s32f_D2(const Zim16s* mean, const Zim16s* invVar, int step,
                                                      const Zim16s* src, int width, const Zim32f* val, Zim32f* srcDst,
                                                      int height, int scaleFactor)
{
    if (ZimStatus fault =
            firstFault(strideBelow(step, width), anyNull(mean, invVar, src, val, srcDst), anyBelowOne(width, height)))
        return fault;
    addScores<gaussianBlock>(
        srcDst, height,
        scoresOfFixedGaussians<LowForm>(src, width, val, scaleFactor, Rows(mean, step), Rows(invVar, step)));
    return zimStsOk;
}

ZimStatus zimsLogGaussAddMultiMix_LowScaled_16s32f_D2L(const Zim16s* const* meanRows, const Zim16s* const* invVarRows,
                                                       const Zim16s* src, int width, const Zim32f* val, Zim32f* srcDst,
                                                       int height, int scaleFactor)
{
    if (ZimStatus fault = firstFault(anyNull(meanRows, invVarRows, src, val, srcDst), anyBelowOne(width, height)))
        return fault;
    addScores<gaussianBlock>(
        srcDst, height,
        scoresOfFixedGaussians<LowForm>(src, width, val, scaleFactor, Rows(meanRows), Rows(invVarRows)));
    return zimStsOk;
}

// ---- Older names

ZimStatus zimsLogGaussMultiMix_16s32f_D2(const Zim16s* mean, const Zim16s* invVar, int step, const Zim16s* src,
                                         int width, Zim32f* srcDst, int height)
{
    return zimsLogGaussMultiMix_Scaled_16s32f_D2(mean, invVar, step, src, width, srcDst, height, 0);
}

ZimStatus zimsLogGaussMultiMix_16s32f_D2L(const Zim16s* const* meanRows, const Zim16s* const* invVarRows,
                                          const Zim16s* src, int width, Zim32f* srcDst, int height)
{
    return zimsLogGaussMultiMix_Scaled_16s32f_D2L(meanRows, invVarRows, src, width, srcDst, height, 0);
}

ZimStatus zimsLogGaussMultiMix_Low_16s32f_D2(const Zim16s* mean, const Zim16s* invVar, int step, const Zim16s* src,
                                             int width, Zim32f* srcDst, int height)
{
    return zimsLogGaussMultiMix_LowScaled_16s32f_D2(mean, invVar, step, src, width, srcDst, height, 0);
}

ZimStatus zimsLogGaussMultiMix_Low_16s32f_D2L(const Zim16s* const* meanRows, const Zim16s* const* invVarRows,
                                              const Zim16s* src, int width, Zim32f* srcDst, int height)
{
    return zimsLogGaussMultiMix_LowScaled_16s32f_D2L(meanRows, invVarRows, src, width, srcDst, height, 0);
}

ZimStatus zimsLogGaussMaxMultiMix_16s32f_D2(const Zim16s* mean, const Zim16s* invVar, int step, const Zim16s* src,
                                            int width, const Zim32f* val, Zim32f* srcDst, int height)
{
    return zimsLogGaussMaxMultiMix_Scaled_16s32f_D2(mean, invVar, step, src, width, val, srcDst, height, 0);
}

ZimStatus zimsLogGaussMaxMultiMix_16s32f_D2L(const Zim16s* const* meanRows, const Zim16s* const* invVarRows,
                                             const Zim16s* src, int width, const Zim32f* val, Zim32f* srcDst,
                                             int height)
{
    return zimsLogGaussMaxMultiMix_Scaled_16s32f_D2L(meanRows, invVarRows, src, width, val, srcDst, height, 0);
}

ZimStatus zimsLogGaussAddMultiMix_16s32f_D2(const Zim16s* mean, const Zim16s* invVar, int step, const Zim16s* src,
                                            int width, const Zim32f* val, Zim32f* srcDst, int height, int scaleFactor)
{
    return zimsLogGaussAddMultiMix_Scaled_16s32f_D2(mean, invVar, step, src, width, val, srcDst, height, scaleFactor);
}

ZimStatus zimsLogGaussAddMultiMix_16s32f_D2L(const Zim16s* const* meanRows, const Zim16s* const* invVarRows,
                                             const Zim16s* src, int width, const Zim32f* val, Zim32f* srcDst,
                                             int height, int scaleFactor)
{
    return zimsLogGaussAddMultiMix_Scaled_16s32f_D2L(meanRows, invVarRows, src, width, val, srcDst, height,
                                                     scaleFactor);
}
