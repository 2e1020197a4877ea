// One 16-bit frame against whole mixtures.
#include <zimsr/mixture_fixed.h>

#include "zimcore/frame/checks.h"
#include "zimcore/frame/rows.h"
#include "zimsr/kernels/mixture_fixed.h"

using namespace zimsr;

// ---- Plain

ZimStatus zimsLogGaussMixture_Scaled_16s32f_D2(const Zim16s* src, const Zim16s* mean, const Zim16s* invVar, int height,
                                               int step, int width, const Zim32f* val, Zim32f* dst, int scaleFactor)
{
    if (ZimStatus fault =
            firstFault(strideBelow(step, width), anyNull(src, mean, invVar, val, dst), anyBelowOne(width, height)))
        return fault;
    *dst = sumScores<Zim32f>(
        height, scoresOfFixedGaussians<PlainForm>(src, width, val, scaleFactor, Rows(mean, step), Rows(invVar, step)));
    return zimStsOk;
}

ZimStatus zimsLogGaussMixture_Scaled_16s32f_D2L(const Zim16s* src, const Zim16s* const* meanRows,
                                                const Zim16s* const* invVarRows, int height, int width,
                                                const Zim32f* val, Zim32f* dst, int scaleFactor)
{
    if (ZimStatus fault = firstFault(anyNull(src, meanRows, invVarRows, val, dst), anyBelowOne(width, height)))
        return fault;
    *dst = sumScores<Zim32f>(
        height, scoresOfFixedGaussians<PlainForm>(src, width, val, scaleFactor, Rows(meanRows), Rows(invVarRows)));
    return zimStsOk;
}

// ---- Identity variance

ZimStatus zimsLogGaussMixture_IdVarScaled_16s32f_D2(const Zim16s* src, const Zim16s* mean, int height, int step,
                                                    int width, const Zim32f* val, Zim32f* dst, int scaleFactor)
{
    if (ZimStatus fault =
            firstFault(strideBelow(step, width), anyNull(src, mean, val, dst), anyBelowOne(width, height)))
        return fault;
    *dst = sumScores<Zim32f>(height, scoresOfSingles<IdVarSingleForm>(src, width, val, scaleFactor, Rows(mean, step)));
    return zimStsOk;
}

ZimStatus zimsLogGaussMixture_IdVarScaled_16s32f_D2L(const Zim16s* src, const Zim16s* const* meanRows, int height,
                                                     int width, const Zim32f* val, Zim32f* dst, int scaleFactor)
{
    if (ZimStatus fault = firstFault(anyNull(src, meanRows, val, dst), anyBelowOne(width, height)))
        return fault;
    *dst = sumScores<Zim32f>(height, scoresOfSingles<IdVarSingleForm>(src, width, val, scaleFactor, Rows(meanRows)));
    return zimStsOk;
}

// ---- In integers

ZimStatus zimsLogGaussMixture_LowScaled_16s32f_D2(const Zim16s* src, const Zim16s* mean, const Zim16s* invVar,
                                                  int height, int step, int width, const Zim32f* val, Zim32f* dst,
                                                  int scaleFactor)
{
    if (ZimStatus fault =
            firstFault(strideBelow(step, width), anyNull(src, mean, invVar, val, dst), anyBelowOne(width, height)))
        return fault;
    *dst = sumScores<Zim32f>(
        height, scoresOfFixedGaussians<LowForm>(src, width, val, scaleFactor, Rows(mean, step), Rows(invVar, step)));
    return zimStsOk;
}

ZimStatus zimsLogGaussMixture_LowScaled_16s32f_D2L(const Zim16s* src, const Zim16s* const* meanRows,
                                                   const Zim16s* const* invVarRows, int height, int width,
                                                   const Zim32f* val, Zim32f* dst, int scaleFactor)
{
    if (ZimStatus fault = firstFault(anyNull(src, meanRows, invVarRows, val, dst), anyBelowOne(width, height)))
        return fault;
    *dst = sumScores<Zim32f>(
        height, scoresOfFixedGaussians<LowForm>(src, width, val, scaleFactor, Rows(meanRows), Rows(invVarRows)));
    return zimStsOk;
}

// ---- In integers, identity variance

ZimStatus zimsLogGaussMixture_IdVarLowScaled_16s32f_D2(const Zim16s* src, const Zim16s* mean, int height, int step,
                                                       int width, const Zim32f* val, Zim32f* dst, int scaleFactor)
{
    if (ZimStatus fault =
            firstFault(strideBelow(step, width), anyNull(src, mean, val, dst), anyBelowOne(width, height)))
        return fault;
    *dst =
        sumScores<Zim32f>(height, scoresOfSingles<IdVarLowSingleForm>(src, width, val, scaleFactor, Rows(mean, step)));
    return zimStsOk;
}

ZimStatus zimsLogGaussMixture_IdVarLowScaled_16s32f_D2L(const Zim16s* src, const Zim16s* const* meanRows, int height,
                                                        int width, const Zim32f* val, Zim32f* dst, int scaleFactor)
{
    if (ZimStatus fault = firstFault(anyNull(src, meanRows, val, dst), anyBelowOne(width, height)))
        return fault;
    *dst = sumScores<Zim32f>(height, scoresOfSingles<IdVarLowSingleForm>(src, width, val, scaleFactor, Rows(meanRows)));
    return zimStsOk;
}
