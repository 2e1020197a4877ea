// Blocks of frames against one Gaussian, folded into running scores.
#include <cstddef>

#include <zimsr/mixture.h>

#include "zimcore/frame/checks.h"
#include "zimcore/frame/rows.h"
#include "zimsr/kernels/loggauss.h"
#include "zimsr/kernels/mixture.h"

using namespace zimsr;

// Each score is that of the block function of its type, variance and matrix form, with what sets that one apart.

// ---- The maximum

ZimStatus zimsLogGaussMax_32f_D2(const Zim32f* mat, int step, const Zim32f* mean, const Zim32f* invVar, int width,
                                 Zim32f* srcDst, int height, Zim32f gconst)
{
    if (ZimStatus fault =
            firstFault(strideBelow(step, width), anyNull(mat, mean, invVar, srcDst), anyBelowOne(width, height)))
        return fault;
    scoreBlock<SquareByInverse>(Rows(mat, step), width, height, gconst, KeepGreater{srcDst}, mean, invVar);
    return zimStsOk;
}

ZimStatus zimsLogGaussMax_32f_D2L(const Zim32f* const* rows, const Zim32f* mean, const Zim32f* invVar, int width,
                                  Zim32f* srcDst, int height, Zim32f gconst)
{
    if (ZimStatus fault = firstFault(anyNull(rows, mean, invVar, srcDst), anyBelowOne(width, height)))
        return fault;
    scoreBlock<SquareByInverse>(Rows(rows), width, height, gconst, KeepGreater{srcDst}, mean, invVar);
    return zimStsOk;
}

ZimStatus zimsLogGaussMax_64f_D2(const Zim64f* mat, int step, const Zim64f* mean, const Zim64f* invVar, int width,
                                 Zim64f* srcDst, int height, Zim64f gconst)
{
    if (ZimStatus fault =
            firstFault(strideBelow(step, width), anyNull(mat, mean, invVar, srcDst), anyBelowOne(width, height)))
        return fault;
    scoreFrames<SquareByInverse<D4>, FromHalvedSum>(Rows(mat, step), width, height, gconst, KeepGreater{srcDst}, mean,
                                                    invVar);
    return zimStsOk;
}

ZimStatus zimsLogGaussMax_64f_D2L(const Zim64f* const* rows, const Zim64f* mean, const Zim64f* invVar, int width,
                                  Zim64f* srcDst, int height, Zim64f gconst)
{
    if (ZimStatus fault = firstFault(anyNull(rows, mean, invVar, srcDst), anyBelowOne(width, height)))
        return fault;
    // This form doubles the constant.
    scoreFrames<SquareByInverse<D4>, FromDoubledConstant>(Rows(rows), width, height, gconst, KeepGreater{srcDst}, mean,
                                                          invVar);
    return zimStsOk;
}

ZimStatus zimsLogGaussMax_IdVar_32f_D2(const Zim32f* mat, int step, const Zim32f* mean, int width, Zim32f* srcDst,
                                       int height, Zim32f gconst)
{
    if (ZimStatus fault = firstFault(strideBelow(step, width), anyNull(mat, mean, srcDst), anyBelowOne(width, height)))
        return fault;
    scoreBlock<Square>(Rows(mat, step), width, height, gconst, KeepGreater{srcDst}, mean);
    return zimStsOk;
}

ZimStatus zimsLogGaussMax_IdVar_32f_D2L(const Zim32f* const* rows, const Zim32f* mean, int width, Zim32f* srcDst,
                                        int height, Zim32f gconst)
{
    if (ZimStatus fault = firstFault(anyNull(rows, mean, srcDst), anyBelowOne(width, height)))
        return fault;
    // This form has no short path.
    scoreFrames<Square<F8>, FromDoubledConstant>(Rows(rows), width, height, gconst, KeepGreater{srcDst}, mean);
    return zimStsOk;
}

ZimStatus zimsLogGaussMax_IdVar_64f_D2(const Zim64f* mat, int step, const Zim64f* mean, int width, Zim64f* srcDst,
                                       int height, Zim64f gconst)
{
    if (ZimStatus fault = firstFault(strideBelow(step, width), anyNull(mat, mean, srcDst), anyBelowOne(width, height)))
        return fault;
    scoreFrames<Square<D4>, FromHalvedSum>(Rows(mat, step), width, height, gconst, KeepGreater{srcDst}, mean);
    return zimStsOk;
}

ZimStatus zimsLogGaussMax_IdVar_64f_D2L(const Zim64f* const* rows, const Zim64f* mean, int width, Zim64f* srcDst,
                                        int height, Zim64f gconst)
{
    if (ZimStatus fault = firstFault(anyNull(rows, mean, srcDst), anyBelowOne(width, height)))
        return fault;
    scoreFrames<Square<D4>, FromHalvedSum>(Rows(rows), width, height, gconst, KeepGreater{srcDst}, mean);
    return zimStsOk;
}

// ---- The log-domain sum

ZimStatus zimsLogGaussAdd_32f_D2(const Zim32f* mat, int step, const Zim32f* mean, const Zim32f* invVar, int width,
                                 Zim32f* srcDst, int height, Zim32f gconst)
{
    if (ZimStatus fault =
            firstFault(strideBelow(step, width), anyNull(mat, mean, invVar, srcDst), anyBelowOne(width, height)))
        return fault;
    addScores<frameBlock>(srcDst, height, [=](std::ptrdiff_t first, int count, Zim32f* scores) {
        scoreBlock<SquareByInverse>(Rows(mat, step).from(first), width, count, gconst, StoreScores{scores}, mean,
                                    invVar);
    });
    return zimStsOk;
}

ZimStatus zimsLogGaussAdd_32f_D2L(const Zim32f* const* rows, const Zim32f* mean, const Zim32f* invVar, int width,
                                  Zim32f* srcDst, int height, Zim32f gconst)
{
    if (ZimStatus fault = firstFault(anyNull(rows, mean, invVar, srcDst), anyBelowOne(width, height)))
        return fault;
    addScores<frameBlock>(srcDst, height, [=](std::ptrdiff_t first, int count, Zim32f* scores) {
        scoreBlock<SquareByInverse>(Rows(rows).from(first), width, count, gconst, StoreScores{scores}, mean, invVar);
    });
    return zimStsOk;
}

ZimStatus zimsLogGaussAdd_64f_D2(const Zim64f* mat, int step, const Zim64f* mean, const Zim64f* invVar, int width,
                                 Zim64f* srcDst, int height, Zim64f gconst)
{
    if (ZimStatus fault =
            firstFault(strideBelow(step, width), anyNull(mat, mean, invVar, srcDst), anyBelowOne(width, height)))
        return fault;
    addScores<frameBlock>(srcDst, height, [=](std::ptrdiff_t first, int count, Zim64f* scores) {
        scoreFrames<SquareByInverse<D4>, FromHalvedSum>(Rows(mat, step).from(first), width, count, gconst,
                                                        StoreScores{scores}, mean, invVar);
    });
    return zimStsOk;
}

ZimStatus zimsLogGaussAdd_64f_D2L(const Zim64f* const* rows, const Zim64f* mean, const Zim64f* invVar, int width,
                                  Zim64f* srcDst, int height, Zim64f gconst)
{
    if (ZimStatus fault = firstFault(anyNull(rows, mean, invVar, srcDst), anyBelowOne(width, height)))
        return fault;
    // This form doubles the constant.
    addScores<frameBlock>(srcDst, height, [=](std::ptrdiff_t first, int count, Zim64f* scores) {
        scoreFrames<SquareByInverse<D4>, FromDoubledConstant>(Rows(rows).from(first), width, count, gconst,
                                                              StoreScores{scores}, mean, invVar);
    });
    return zimStsOk;
}

ZimStatus zimsLogGaussAdd_IdVar_32f_D2(const Zim32f* mat, int step, const Zim32f* mean, int width, Zim32f* srcDst,
                                       int height, Zim32f gconst)
{
    if (ZimStatus fault = firstFault(strideBelow(step, width), anyNull(mat, mean, srcDst), anyBelowOne(width, height)))
        return fault;
    addScores<frameBlock>(srcDst, height, [=](std::ptrdiff_t first, int count, Zim32f* scores) {
        scoreBlock<Square>(Rows(mat, step).from(first), width, count, gconst, StoreScores{scores}, mean);
    });
    return zimStsOk;
}

ZimStatus zimsLogGaussAdd_IdVar_32f_D2L(const Zim32f* const* rows, const Zim32f* mean, int width, Zim32f* srcDst,
                                        int height, Zim32f gconst)
{
    if (ZimStatus fault = firstFault(anyNull(rows, mean, srcDst), anyBelowOne(width, height)))
        return fault;
    // This form has no short path.
    addScores<frameBlock>(srcDst, height, [=](std::ptrdiff_t first, int count, Zim32f* scores) {
        scoreFrames<Square<F8>, FromDoubledConstant>(Rows(rows).from(first), width, count, gconst, StoreScores{scores},
                                                     mean);
    });
    return zimStsOk;
}

ZimStatus zimsLogGaussAdd_IdVar_64f_D2(const Zim64f* mat, int step, const Zim64f* mean, int width, Zim64f* srcDst,
                                       int height, Zim64f gconst)
{
    if (ZimStatus fault = firstFault(strideBelow(step, width), anyNull(mat, mean, srcDst), anyBelowOne(width, height)))
        return fault;
    addScores<frameBlock>(srcDst, height, [=](std::ptrdiff_t first, int count, Zim64f* scores) {
        scoreFrames<Square<D4>, FromHalvedSum>(Rows(mat, step).from(first), width, count, gconst, StoreScores{scores},
                                               mean);
    });
    return zimStsOk;
}

ZimStatus zimsLogGaussAdd_IdVar_64f_D2L(const Zim64f* const* rows, const Zim64f* mean, int width, Zim64f* srcDst,
                                        int height, Zim64f gconst)
{
    if (ZimStatus fault = firstFault(anyNull(rows, mean, srcDst), anyBelowOne(width, height)))
        return fault;
    addScores<frameBlock>(srcDst, height, [=](std::ptrdiff_t first, int count, Zim64f* scores) {
        scoreFrames<Square<D4>, FromHalvedSum>(Rows(rows).from(first), width, count, gconst, StoreScores{scores}, mean);
    });
    return zimStsOk;
}

// ---- Older names

ZimStatus zimsLogGaussMax1_32f_D2(const Zim32f* mat, int step, const Zim32f* mean, const Zim32f* invVar, int width,
                                  Zim32f* srcDst, int height, Zim32f gconst)
{
    return zimsLogGaussMax_32f_D2(mat, step, mean, invVar, width, srcDst, height, gconst);
}

ZimStatus zimsLogGaussAdd1_32f_D2(const Zim32f* mat, int step, const Zim32f* mean, const Zim32f* invVar, int width,
                                  Zim32f* srcDst, int height, Zim32f gconst)
{
    return zimsLogGaussAdd_32f_D2(mat, step, mean, invVar, width, srcDst, height, gconst);
}
