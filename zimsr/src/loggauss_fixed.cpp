// Log-likelihood of blocks of 16-bit frames under one diagonal Gaussian.
#include <zimsr/loggauss_fixed.h>

#include "zimcore/frame/checks.h"
#include "zimcore/frame/rows.h"
#include "zimsr/kernels/loggauss.h"
#include "zimsr/kernels/loggauss_fixed_forms.h"

using namespace zimsr;

// ---- Plain

ZimStatus zimsLogGauss_16s32s_D2Sfs(const Zim16s* mat, int step, const Zim16s* mean, const Zim16s* invVar, int width,
                                    Zim32s* result, int height, Zim32s gconst, int scaleFactor)
{
    if (ZimStatus fault =
            firstFault(strideBelow(step, width), anyNull(mat, mean, invVar, result), anyBelowOne(width, height)))
        return fault;
    scoreFixedFrames<PlainForm>(Rows(mat, step), width, height, gconst, scaleFactor, StoreScores{result}, mean, invVar);
    return zimStsOk;
}

ZimStatus zimsLogGauss_Scaled_16s32f_D2(const Zim16s* mat, int step, const Zim16s* mean, const Zim16s* invVar,
                                        int width, Zim32f* result, int height, Zim32f gconst, int scaleFactor)
{
    if (ZimStatus fault =
            firstFault(strideBelow(step, width), anyNull(mat, mean, invVar, result), anyBelowOne(width, height)))
        return fault;
    scoreFixedFrames<PlainForm>(Rows(mat, step), width, height, gconst, scaleFactor, StoreScores{result}, mean, invVar);
    return zimStsOk;
}

ZimStatus zimsLogGauss_16s32s_D2LSfs(const Zim16s* const* rows, const Zim16s* mean, const Zim16s* invVar, int width,
                                     Zim32s* result, int height, Zim32s gconst, int scaleFactor)
{
    if (ZimStatus fault = firstFault(anyNull(rows, mean, invVar, result), anyBelowOne(width, height)))
        return fault;
    scoreFixedFrames<PlainForm>(Rows(rows), width, height, gconst, scaleFactor, StoreScores{result}, mean, invVar);
    return zimStsOk;
}

ZimStatus zimsLogGauss_Scaled_16s32f_D2L(const Zim16s* const* rows, const Zim16s* mean, const Zim16s* invVar, int width,
                                         Zim32f* result, int height, Zim32f gconst, int scaleFactor)
{
    if (ZimStatus fault = firstFault(anyNull(rows, mean, invVar, result), anyBelowOne(width, height)))
        return fault;
    scoreFixedFrames<PlainForm>(Rows(rows), width, height, gconst, scaleFactor, StoreScores{result}, mean, invVar);
    return zimStsOk;
}

// ---- Identity variance

ZimStatus zimsLogGauss_IdVar_16s32s_D2Sfs(const Zim16s* mat, int step, const Zim16s* mean, int width, Zim32s* result,
                                          int height, Zim32s gconst, int scaleFactor)
{
    if (ZimStatus fault = firstFault(strideBelow(step, width), anyNull(mat, mean, result), anyBelowOne(width, height)))
        return fault;
    scoreFixedFrames<IdVarForm>(Rows(mat, step), width, height, gconst, scaleFactor, StoreScores{result}, mean);
    return zimStsOk;
}

ZimStatus zimsLogGauss_IdVarScaled_16s32f_D2(const Zim16s* mat, int step, const Zim16s* mean, int width, Zim32f* result,
                                             int height, Zim32f gconst, int scaleFactor)
{
    if (ZimStatus fault = firstFault(strideBelow(step, width), anyNull(mat, mean, result), anyBelowOne(width, height)))
        return fault;
    scoreFixedFrames<IdVarForm>(Rows(mat, step), width, height, gconst, scaleFactor, StoreScores{result}, mean);
    return zimStsOk;
}

ZimStatus zimsLogGauss_IdVar_16s32s_D2LSfs(const Zim16s* const* rows, const Zim16s* mean, int width, Zim32s* result,
                                           int height, Zim32s gconst, int scaleFactor)
{
    if (ZimStatus fault = firstFault(anyNull(rows, mean, result), anyBelowOne(width, height)))
        return fault;
    scoreFixedFrames<IdVarForm>(Rows(rows), width, height, gconst, scaleFactor, StoreScores{result}, mean);
    return zimStsOk;
}

ZimStatus zimsLogGauss_IdVarScaled_16s32f_D2L(const Zim16s* const* rows, const Zim16s* mean, int width, Zim32f* result,
                                              int height, Zim32f gconst, int scaleFactor)
{
    if (ZimStatus fault = firstFault(anyNull(rows, mean, result), anyBelowOne(width, height)))
        return fault;
    scoreFixedFrames<IdVarForm>(Rows(rows), width, height, gconst, scaleFactor, StoreScores{result}, mean);
    return zimStsOk;
}

// ---- In integers

ZimStatus zimsLogGauss_Low_16s32s_D2Sfs(const Zim16s* mat, int step, const Zim16s* mean, const Zim16s* invVar,
                                        int width, Zim32s* result, int height, Zim32s gconst, int scaleFactor)
{
    if (ZimStatus fault =
            firstFault(strideBelow(step, width), anyNull(mat, mean, invVar, result), anyBelowOne(width, height)))
        return fault;
    scoreFixedFrames<LowForm>(Rows(mat, step), width, height, gconst, scaleFactor, StoreScores{result}, mean, invVar);
    return zimStsOk;
}

ZimStatus zimsLogGauss_LowScaled_16s32f_D2(const Zim16s* mat, int step, const Zim16s* mean, const Zim16s* invVar,
                                           int width, Zim32f* result, int height, Zim32f gconst, int scaleFactor)
{
    if (ZimStatus fault =
            firstFault(strideBelow(step, width), anyNull(mat, mean, invVar, result), anyBelowOne(width, height)))
        return fault;
    scoreFixedFrames<LowForm>(Rows(mat, step), width, height, gconst, scaleFactor, StoreScores{result}, mean, invVar);
    return zimStsOk;
}

ZimStatus zimsLogGauss_Low_16s32s_D2LSfs(const Zim16s* const* rows, const Zim16s* mean, const Zim16s* invVar, int width,
                                         Zim32s* result, int height, Zim32s gconst, int scaleFactor)
{
    if (ZimStatus fault = firstFault(anyNull(rows, mean, invVar, result), anyBelowOne(width, height)))
        return fault;
    scoreFixedFrames<LowForm>(Rows(rows), width, height, gconst, scaleFactor, StoreScores{result}, mean, invVar);
    return zimStsOk;
}

ZimStatus zimsLogGauss_LowScaled_16s32f_D2L(const Zim16s* const* rows, const Zim16s* mean, const Zim16s* invVar,
                                            int width, Zim32f* result, int height, Zim32f gconst, int scaleFactor)
{
    if (ZimStatus fault = firstFault(anyNull(rows, mean, invVar, result), anyBelowOne(width, height)))
        return fault;
    scoreFixedFrames<LowForm>(Rows(rows), width, height, gconst, scaleFactor, StoreScores{result}, mean, invVar);
    return zimStsOk;
}

// ---- In integers, identity variance

ZimStatus zimsLogGauss_IdVarLow_16s32s_D2Sfs(const Zim16s* mat, int step, const Zim16s* mean, int width, Zim32s* result,
                                             int height, Zim32s gconst, int scaleFactor)
{
    if (ZimStatus fault = firstFault(strideBelow(step, width), anyNull(mat, mean, result), anyBelowOne(width, height)))
        return fault;
    scoreFixedFrames<IdVarLowForm>(Rows(mat, step), width, height, gconst, scaleFactor, StoreScores{result}, mean);
    return zimStsOk;
}

ZimStatus zimsLogGauss_IdVarLowScaled_16s32f_D2(const Zim16s* mat, int step, const Zim16s* mean, int width,
                                                Zim32f* result, int height, Zim32f gconst, int scaleFactor)
{
    if (ZimStatus fault = firstFault(strideBelow(step, width), anyNull(mat, mean, result), anyBelowOne(width, height)))
        return fault;
    scoreFixedFrames<IdVarLowForm>(Rows(mat, step), width, height, gconst, scaleFactor, StoreScores{result}, mean);
    return zimStsOk;
}

ZimStatus zimsLogGauss_IdVarLow_16s32s_D2LSfs(const Zim16s* const* rows, const Zim16s* mean, int width, Zim32s* result,
                                              int height, Zim32s gconst, int scaleFactor)
{
    if (ZimStatus fault = firstFault(anyNull(rows, mean, result), anyBelowOne(width, height)))
        return fault;
    scoreFixedFrames<IdVarLowForm>(Rows(rows), width, height, gconst, scaleFactor, StoreScores{result}, mean);
    return zimStsOk;
}

ZimStatus zimsLogGauss_IdVarLowScaled_16s32f_D2L(const Zim16s* const* rows, const Zim16s* mean, int width,
                                                 Zim32f* result, int height, Zim32f gconst, int scaleFactor)
{
    if (ZimStatus fault = firstFault(anyNull(rows, mean, result), anyBelowOne(width, height)))
        return fault;
    scoreFixedFrames<IdVarLowForm>(Rows(rows), width, height, gconst, scaleFactor, StoreScores{result}, mean);
    return zimStsOk;
}

// ---- The scale factor 0

ZimStatus zimsLogGauss_16s32f_D2(const Zim16s* mat, int step, const Zim16s* mean, const Zim16s* invVar, int width,
                                 Zim32f* result, int height, Zim32f gconst)
{
    return zimsLogGauss_Scaled_16s32f_D2(mat, step, mean, invVar, width, result, height, gconst, 0);
}

ZimStatus zimsLogGauss_16s32f_D2L(const Zim16s* const* rows, const Zim16s* mean, const Zim16s* invVar, int width,
                                  Zim32f* result, int height, Zim32f gconst)
{
    return zimsLogGauss_Scaled_16s32f_D2L(rows, mean, invVar, width, result, height, gconst, 0);
}

ZimStatus zimsLogGauss_IdVar_16s32f_D2(const Zim16s* mat, int step, const Zim16s* mean, int width, Zim32f* result,
                                       int height, Zim32f gconst)
{
    return zimsLogGauss_IdVarScaled_16s32f_D2(mat, step, mean, width, result, height, gconst, 0);
}

ZimStatus zimsLogGauss_IdVar_16s32f_D2L(const Zim16s* const* rows, const Zim16s* mean, int width, Zim32f* result,
                                        int height, Zim32f gconst)
{
    return zimsLogGauss_IdVarScaled_16s32f_D2L(rows, mean, width, result, height, gconst, 0);
}

ZimStatus zimsLogGauss_Low_16s32f_D2(const Zim16s* mat, int step, const Zim16s* mean, const Zim16s* invVar, int width,
                                     Zim32f* result, int height, Zim32f gconst)
{
    return zimsLogGauss_LowScaled_16s32f_D2(mat, step, mean, invVar, width, result, height, gconst, 0);
}

ZimStatus zimsLogGauss_Low_16s32f_D2L(const Zim16s* const* rows, const Zim16s* mean, const Zim16s* invVar, int width,
                                      Zim32f* result, int height, Zim32f gconst)
{
    return zimsLogGauss_LowScaled_16s32f_D2L(rows, mean, invVar, width, result, height, gconst, 0);
}

ZimStatus zimsLogGauss_IdVarLow_16s32f_D2(const Zim16s* mat, int step, const Zim16s* mean, int width, Zim32f* result,
                                          int height, Zim32f gconst)
{
    return zimsLogGauss_IdVarLowScaled_16s32f_D2(mat, step, mean, width, result, height, gconst, 0);
}

ZimStatus zimsLogGauss_IdVarLow_16s32f_D2L(const Zim16s* const* rows, const Zim16s* mean, int width, Zim32f* result,
                                           int height, Zim32f gconst)
{
    return zimsLogGauss_IdVarLowScaled_16s32f_D2L(rows, mean, width, result, height, gconst, 0);
}
