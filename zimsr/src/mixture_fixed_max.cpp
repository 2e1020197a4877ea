// Blocks of 16-bit frames against one Gaussian, folded into running scores by maximum.
#include <zimsr/mixture_fixed.h>

#include "zimcore/frame/checks.h"
#include "zimcore/frame/rows.h"
#include "zimsr/kernels/mixture_fixed.h"

using namespace zimsr;

// ---- Plain

ZimStatus zimsLogGaussMax_16s32s_D2Sfs(const Zim16s* mat, int step, const Zim16s* mean, const Zim16s* invVar, int width,
                                       Zim32s* srcDst, int height, Zim32s gconst, int scaleFactor)
{
    if (ZimStatus fault =
            firstFault(strideBelow(step, width), anyNull(mat, mean, invVar, srcDst), anyBelowOne(width, height)))
        return fault;
    scoreFixedFrames<PlainMaxForm>(Rows(mat, step), width, height, gconst, scaleFactor, KeepGreaterInteger{srcDst},
                                   mean, invVar);
    return zimStsOk;
}

ZimStatus zimsLogGaussMax_Scaled_16s32f_D2(const Zim16s* mat, int step, const Zim16s* mean, const Zim16s* invVar,
                                           int width, Zim32f* srcDst, int height, Zim32f gconst, int scaleFactor)
{
    if (ZimStatus fault =
            firstFault(strideBelow(step, width), anyNull(mat, mean, invVar, srcDst), anyBelowOne(width, height)))
        return fault;
    scoreFixedFrames<PlainForm>(Rows(mat, step), width, height, gconst, scaleFactor, KeepGreater{srcDst}, mean, invVar);
    return zimStsOk;
}

ZimStatus zimsLogGaussMax_16s32s_D2LSfs(const Zim16s* const* rows, const Zim16s* mean, const Zim16s* invVar, int width,
                                        Zim32s* srcDst, int height, Zim32s gconst, int scaleFactor)
{
    if (ZimStatus fault = firstFault(anyNull(rows, mean, invVar, srcDst), anyBelowOne(width, height)))
        return fault;
    scoreFixedFrames<PlainMaxForm>(Rows(rows), width, height, gconst, scaleFactor, KeepGreaterInteger{srcDst}, mean,
                                   invVar);
    return zimStsOk;
}

ZimStatus zimsLogGaussMax_Scaled_16s32f_D2L(const Zim16s* const* rows, const Zim16s* mean, const Zim16s* invVar,
                                            int width, Zim32f* srcDst, int height, Zim32f gconst, int scaleFactor)
{
    if (ZimStatus fault = firstFault(anyNull(rows, mean, invVar, srcDst), anyBelowOne(width, height)))
        return fault;
    scoreFixedFrames<PlainForm>(Rows(rows), width, height, gconst, scaleFactor, KeepGreater{srcDst}, mean, invVar);
    return zimStsOk;
}

// ---- Identity variance

ZimStatus zimsLogGaussMax_IdVar_16s32s_D2Sfs(const Zim16s* mat, int step, const Zim16s* mean, int width, Zim32s* srcDst,
                                             int height, Zim32s gconst, int scaleFactor)
{
    if (ZimStatus fault = firstFault(strideBelow(step, width), anyNull(mat, mean, srcDst), anyBelowOne(width, height)))
        return fault;
    scoreFixedFrames<IdVarMaxForm>(Rows(mat, step), width, height, gconst, scaleFactor, KeepGreaterInteger{srcDst},
                                   mean);
    return zimStsOk;
}

ZimStatus zimsLogGaussMax_IdVarScaled_16s32f_D2(const Zim16s* mat, int step, const Zim16s* mean, int width,
                                                Zim32f* srcDst, int height, Zim32f gconst, int scaleFactor)
{
    if (ZimStatus fault = firstFault(strideBelow(step, width), anyNull(mat, mean, srcDst), anyBelowOne(width, height)))
        return fault;
    scoreFixedFrames<IdVarForm>(Rows(mat, step), width, height, gconst, scaleFactor, KeepGreater{srcDst}, mean);
    return zimStsOk;
}

ZimStatus zimsLogGaussMax_IdVar_16s32s_D2LSfs(const Zim16s* const* rows, const Zim16s* mean, int width, Zim32s* srcDst,
                                              int height, Zim32s gconst, int scaleFactor)
{
    if (ZimStatus fault = firstFault(anyNull(rows, mean, srcDst), anyBelowOne(width, height)))
        return fault;
    scoreFixedFrames<IdVarMaxForm>(Rows(rows), width, height, gconst, scaleFactor, KeepGreaterInteger{srcDst}, mean);
    return zimStsOk;
}

ZimStatus zimsLogGaussMax_IdVarScaled_16s32f_D2L(const Zim16s* const* rows, const Zim16s* mean, int width,
                                                 Zim32f* srcDst, int height, Zim32f gconst, int scaleFactor)
{
    if (ZimStatus fault = firstFault(anyNull(rows, mean, srcDst), anyBelowOne(width, height)))
        return fault;
    scoreFixedFrames<IdVarForm>(Rows(rows), width, height, gconst, scaleFactor, KeepGreater{srcDst}, mean);
    return zimStsOk;
}

// ---- In integers

ZimStatus zimsLogGaussMax_Low_16s32s_D2Sfs(const Zim16s* mat, int step, const Zim16s* mean, const Zim16s* invVar,
                                           int width, Zim32s* srcDst, int height, Zim32s gconst, int scaleFactor)
{
    if (ZimStatus fault =
            firstFault(strideBelow(step, width), anyNull(mat, mean, invVar, srcDst), anyBelowOne(width, height)))
        return fault;
    scoreFixedFrames<LowMaxForm>(Rows(mat, step), width, height, gconst, scaleFactor, KeepGreaterInteger{srcDst}, mean,
                                 invVar);
    return zimStsOk;
}

ZimStatus zimsLogGaussMax_LowScaled_16s32f_D2(const Zim16s* mat, int step, const Zim16s* mean, const Zim16s* invVar,
                                              int width, Zim32f* srcDst, int height, Zim32f gconst, int scaleFactor)
{
    if (ZimStatus fault =
            firstFault(strideBelow(step, width), anyNull(mat, mean, invVar, srcDst), anyBelowOne(width, height)))
        return fault;
    scoreFixedFrames<LowForm>(Rows(mat, step), width, height, gconst, scaleFactor, KeepGreater{srcDst}, mean, invVar);
    return zimStsOk;
}

ZimStatus zimsLogGaussMax_Low_16s32s_D2LSfs(const Zim16s* const* rows, const Zim16s* mean, const Zim16s* invVar,
                                            int width, Zim32s* srcDst, int height, Zim32s gconst, int scaleFactor)
{
    if (ZimStatus fault = firstFault(anyNull(rows, mean, invVar, srcDst), anyBelowOne(width, height)))
        return fault;
    scoreFixedFrames<LowMaxForm>(Rows(rows), width, height, gconst, scaleFactor, KeepGreaterInteger{srcDst}, mean,
                                 invVar);
    return zimStsOk;
}

ZimStatus zimsLogGaussMax_LowScaled_16s32f_D2L(const Zim16s* const* rows, const Zim16s* mean, const Zim16s* invVar,
                                               int width, Zim32f* srcDst, int height, Zim32f gconst, int scaleFactor)
{
    if (ZimStatus fault = firstFault(anyNull(rows, mean, invVar, srcDst), anyBelowOne(width, height)))
        return fault;
    scoreFixedFrames<LowForm>(Rows(rows), width, height, gconst, scaleFactor, KeepGreater{srcDst}, mean, invVar);
    return zimStsOk;
}

// ---- In integers, identity variance

ZimStatus zimsLogGaussMax_IdVarLow_16s32s_D2Sfs(const Zim16s* mat, int step, const Zim16s* mean, int width,
                                                Zim32s* srcDst, int height, Zim32s gconst, int scaleFactor)
{
    if (ZimStatus fault = firstFault(strideBelow(step, width), anyNull(mat, mean, srcDst), anyBelowOne(width, height)))
        return fault;
    scoreFixedFrames<IdVarLowMaxForm>(Rows(mat, step), width, height, gconst, scaleFactor, KeepGreaterInteger{srcDst},
                                      mean);
    return zimStsOk;
}

ZimStatus zimsLogGaussMax_IdVarLowScaled_16s32f_D2(const Zim16s* mat, int step, const Zim16s* mean, int width,
                                                   Zim32f* srcDst, int height, Zim32f gconst, int scaleFactor)
{
    if (ZimStatus fault = firstFault(strideBelow(step, width), anyNull(mat, mean, srcDst), anyBelowOne(width, height)))
        return fault;
    scoreFixedFrames<IdVarLowForm>(Rows(mat, step), width, height, gconst, scaleFactor, KeepGreater{srcDst}, mean);
    return zimStsOk;
}

ZimStatus zimsLogGaussMax_IdVarLow_16s32s_D2LSfs(const Zim16s* const* rows, const Zim16s* mean, int width,
                                                 Zim32s* srcDst, int height, Zim32s gconst, int scaleFactor)
{
    if (ZimStatus fault = firstFault(anyNull(rows, mean, srcDst), anyBelowOne(width, height)))
        return fault;
    scoreFixedFrames<IdVarLowMaxForm>(Rows(rows), width, height, gconst, scaleFactor, KeepGreaterInteger{srcDst}, mean);
    return zimStsOk;
}

ZimStatus zimsLogGaussMax_IdVarLowScaled_16s32f_D2L(const Zim16s* const* rows, const Zim16s* mean, int width,
                                                    Zim32f* srcDst, int height, Zim32f gconst, int scaleFactor)
{
    if (ZimStatus fault = firstFault(anyNull(rows, mean, srcDst), anyBelowOne(width, height)))
        return fault;
    scoreFixedFrames<IdVarLowForm>(Rows(rows), width, height, gconst, scaleFactor, KeepGreater{srcDst}, mean);
    return zimStsOk;
}

// ---- The scale factor 0

ZimStatus zimsLogGaussMax_16s32f_D2(const Zim16s* mat, int step, const Zim16s* mean, const Zim16s* invVar, int width,
                                    Zim32f* srcDst, int height, Zim32f gconst)
{
    return zimsLogGaussMax_Scaled_16s32f_D2(mat, step, mean, invVar, width, srcDst, height, gconst, 0);
}

ZimStatus zimsLogGaussMax_16s32f_D2L(const Zim16s* const* rows, const Zim16s* mean, const Zim16s* invVar, int width,
                                     Zim32f* srcDst, int height, Zim32f gconst)
{
    return zimsLogGaussMax_Scaled_16s32f_D2L(rows, mean, invVar, width, srcDst, height, gconst, 0);
}

ZimStatus zimsLogGaussMax_IdVar_16s32f_D2(const Zim16s* mat, int step, const Zim16s* mean, int width, Zim32f* srcDst,
                                          int height, Zim32f gconst)
{
    return zimsLogGaussMax_IdVarScaled_16s32f_D2(mat, step, mean, width, srcDst, height, gconst, 0);
}

ZimStatus zimsLogGaussMax_IdVar_16s32f_D2L(const Zim16s* const* rows, const Zim16s* mean, int width, Zim32f* srcDst,
                                           int height, Zim32f gconst)
{
    return zimsLogGaussMax_IdVarScaled_16s32f_D2L(rows, mean, width, srcDst, height, gconst, 0);
}
