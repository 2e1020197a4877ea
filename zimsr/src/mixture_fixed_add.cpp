// Blocks of 16-bit frames against one Gaussian, folded into running scores by log-domain addition.
#include <zimsr/mixture_fixed.h>

#include "zimcore/frame/checks.h"
#include "zimcore/frame/rows.h"
#include "zimsr/kernels/mixture_fixed.h"

using namespace zimsr;

// ---- Plain

ZimStatus zimsLogGaussAdd_Scaled_16s32f_D2(const Zim16s* mat, int step, const Zim16s* mean, const Zim16s* invVar,
                                           int width, Zim32f* srcDst, int height, Zim32f gconst, int scaleFactor)
{
    if (ZimStatus fault =
            firstFault(strideBelow(step, width), anyNull(mat, mean, invVar, srcDst), anyBelowOne(width, height)))
        return fault;
    addScores<frameBlock>(srcDst, height,
                          scoresOfFixedFrames<PlainForm>(Rows(mat, step), width, gconst, scaleFactor, mean, invVar));
    return zimStsOk;
}

ZimStatus zimsLogGaussAdd_Scaled_16s32f_D2L(const Zim16s* const* rows, const Zim16s* mean, const Zim16s* invVar,
                                            int width, Zim32f* srcDst, int height, Zim32f gconst, int scaleFactor)
{
    if (ZimStatus fault = firstFault(anyNull(rows, mean, invVar, srcDst), anyBelowOne(width, height)))
        return fault;
    const auto scores = scoresOfFixedFrames<PlainForm>(Rows(rows), width, gconst, scaleFactor, mean, invVar);
    // By contract, aligned operands are added in the fast arithmetic.
    if (allAligned(16, mean, invVar, srcDst) && !RowMatrAlErr(rows, height))
        addScores<frameBlock, FastAddition>(srcDst, height, scores);
    else
        addScores<frameBlock>(srcDst, height, scores);
    return zimStsOk;
}

// ---- Identity variance

ZimStatus zimsLogGaussAdd_IdVarScaled_16s32f_D2(const Zim16s* mat, int step, const Zim16s* mean, int width,
                                                Zim32f* srcDst, int height, Zim32f gconst, int scaleFactor)
{
    if (ZimStatus fault = firstFault(strideBelow(step, width), anyNull(mat, mean, srcDst), anyBelowOne(width, height)))
        return fault;
    const auto scores = scoresOfFixedFrames<IdVarForm>(Rows(mat, step), width, gconst, scaleFactor, mean);
    // By contract, aligned operands are added in the fast arithmetic.
    if (allAligned(16, mat, mean) && step % 8 == 0 && width >= 4)
        addScores<frameBlock, FastAddition>(srcDst, height, scores);
    else
        addScores<frameBlock>(srcDst, height, scores);
    return zimStsOk;
}

ZimStatus zimsLogGaussAdd_IdVarScaled_16s32f_D2L(const Zim16s* const* rows, const Zim16s* mean, int width,
                                                 Zim32f* srcDst, int height, Zim32f gconst, int scaleFactor)
{
    if (ZimStatus fault = firstFault(anyNull(rows, mean, srcDst), anyBelowOne(width, height)))
        return fault;
    addScores<frameBlock>(srcDst, height, scoresOfFixedFrames<IdVarForm>(Rows(rows), width, gconst, scaleFactor, mean));
    return zimStsOk;
}

// ---- In integers

ZimStatus zimsLogGaussAdd_LowScaled_16s32f_D2(const Zim16s* mat, int step, const Zim16s* mean, const Zim16s* invVar,
                                              int width, Zim32f* srcDst, int height, Zim32f gconst, int scaleFactor)
{
    if (ZimStatus fault =
            firstFault(strideBelow(step, width), anyNull(mat, mean, invVar, srcDst), anyBelowOne(width, height)))
        return fault;
    addScores<frameBlock>(srcDst, height,
                          scoresOfFixedFrames<LowForm>(Rows(mat, step), width, gconst, scaleFactor, mean, invVar));
    return zimStsOk;
}

ZimStatus zimsLogGaussAdd_LowScaled_16s32f_D2L(const Zim16s* const* rows, const Zim16s* mean, const Zim16s* invVar,
                                               int width, Zim32f* srcDst, int height, Zim32f gconst, int scaleFactor)
{
    if (ZimStatus fault = firstFault(anyNull(rows, mean, invVar, srcDst), anyBelowOne(width, height)))
        return fault;
    addScores<frameBlock>(srcDst, height,
                          scoresOfFixedFrames<LowForm>(Rows(rows), width, gconst, scaleFactor, mean, invVar));
    return zimStsOk;
}

// ---- In integers, identity variance

ZimStatus zimsLogGaussAdd_IdVarLowScaled_16s32f_D2(const Zim16s* mat, int step, const Zim16s* mean, int width,
                                                   Zim32f* srcDst, int height, Zim32f gconst, int scaleFactor)
{
    if (ZimStatus fault = firstFault(strideBelow(step, width), anyNull(mat, mean, srcDst), anyBelowOne(width, height)))
        return fault;
    addScores<frameBlock>(srcDst, height,
                          scoresOfFixedFrames<IdVarLowForm>(Rows(mat, step), width, gconst, scaleFactor, mean));
    return zimStsOk;
}

ZimStatus zimsLogGaussAdd_IdVarLowScaled_16s32f_D2L(const Zim16s* const* rows, const Zim16s* mean, int width,
                                                    Zim32f* srcDst, int height, Zim32f gconst, int scaleFactor)
{
    if (ZimStatus fault = firstFault(anyNull(rows, mean, srcDst), anyBelowOne(width, height)))
        return fault;
    addScores<frameBlock>(srcDst, height,
                          scoresOfFixedFrames<IdVarLowForm>(Rows(rows), width, gconst, scaleFactor, mean));
    return zimStsOk;
}

// ---- Older names

ZimStatus zimsLogGaussAdd_16s32f_D2(const Zim16s* mat, int step, const Zim16s* mean, const Zim16s* invVar, int width,
                                    Zim32f* srcDst, int height, Zim32f gconst, int scaleFactor)
{
    return zimsLogGaussAdd_Scaled_16s32f_D2(mat, step, mean, invVar, width, srcDst, height, gconst, scaleFactor);
}

ZimStatus zimsLogGaussAdd_16s32f_D2L(const Zim16s* const* rows, const Zim16s* mean, const Zim16s* invVar, int width,
                                     Zim32f* srcDst, int height, Zim32f gconst, int scaleFactor)
{
    return zimsLogGaussAdd_Scaled_16s32f_D2L(rows, mean, invVar, width, srcDst, height, gconst, scaleFactor);
}

ZimStatus zimsLogGaussAdd_IdVar_16s32f_D2(const Zim16s* mat, int step, const Zim16s* mean, int width, Zim32f* srcDst,
                                          int height, Zim32f gconst, int scaleFactor)
{
    return zimsLogGaussAdd_IdVarScaled_16s32f_D2(mat, step, mean, width, srcDst, height, gconst, scaleFactor);
}

ZimStatus zimsLogGaussAdd_IdVar_16s32f_D2L(const Zim16s* const* rows, const Zim16s* mean, int width, Zim32f* srcDst,
                                           int height, Zim32f gconst, int scaleFactor)
{
    return zimsLogGaussAdd_IdVarScaled_16s32f_D2L(rows, mean, width, srcDst, height, gconst, scaleFactor);
}
