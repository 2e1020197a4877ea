// One frame against many Gaussians, a score for each.
#include <zimsr/mixture.h>

#include "zimcore/frame/checks.h"
#include "zimcore/frame/rows.h"
#include "zimsr/kernels/loggauss.h"
#include "zimsr/kernels/mixture.h"

using namespace zimsr;

// ---- The constants are overwritten by the scores

ZimStatus zimsLogGaussMultiMix_32f_D2(const Zim32f* mean, const Zim32f* invVar, int step, const Zim32f* src, int width,
                                      Zim32f* srcDst, int height)
{
    if (ZimStatus fault =
            firstFault(strideBelow(step, width), anyNull(mean, invVar, src, srcDst), anyBelowOne(width, height)))
        return fault;
    scoreGaussians<SquareByInverse<F8>, FromDoubledConstant>(src, width, height, srcDst, StoreScores{srcDst},
                                                             Rows(mean, step), Rows(invVar, step));
    return zimStsOk;
}

ZimStatus zimsLogGaussMultiMix_32f_D2L(const Zim32f* const* meanRows, const Zim32f* const* invVarRows,
                                       const Zim32f* src, int width, Zim32f* srcDst, int height)
{
    if (ZimStatus fault = firstFault(anyNull(meanRows, invVarRows, src, srcDst), anyBelowOne(width, height)))
        return fault;
    scoreGaussians<SquareByInverse<F8>, FromDoubledConstant>(src, width, height, srcDst, StoreScores{srcDst},
                                                             Rows(meanRows), Rows(invVarRows));
    return zimStsOk;
}

ZimStatus zimsLogGaussMultiMix_64f_D2(const Zim64f* mean, const Zim64f* invVar, int step, const Zim64f* src, int width,
                                      Zim64f* srcDst, int height)
{
    if (ZimStatus fault =
            firstFault(strideBelow(step, width), anyNull(mean, invVar, src, srcDst), anyBelowOne(width, height)))
        return fault;
    scoreGaussians<SquareByInverse<D4>, FromHalvedSum>(src, width, height, srcDst, StoreScores{srcDst},
                                                       Rows(mean, step), Rows(invVar, step));
    return zimStsOk;
}

ZimStatus zimsLogGaussMultiMix_64f_D2L(const Zim64f* const* meanRows, const Zim64f* const* invVarRows,
                                       const Zim64f* src, int width, Zim64f* srcDst, int height)
{
    if (ZimStatus fault = firstFault(anyNull(meanRows, invVarRows, src, srcDst), anyBelowOne(width, height)))
        return fault;
    scoreGaussians<SquareByInverse<D4>, FromHalvedSum>(src, width, height, srcDst, StoreScores{srcDst}, Rows(meanRows),
                                                       Rows(invVarRows));
    return zimStsOk;
}

// ---- Folded into running scores by maximum

ZimStatus zimsLogGaussMaxMultiMix_32f_D2(const Zim32f* mean, const Zim32f* invVar, int step, const Zim32f* src,
                                         int width, const Zim32f* val, Zim32f* srcDst, int height)
{
    if (ZimStatus fault =
            firstFault(strideBelow(step, width), anyNull(mean, invVar, src, val, srcDst), anyBelowOne(width, height)))
        return fault;
    scoreGaussians<SquareByInverse<F8>, FromDoubledConstant>(src, width, height, val, KeepGreater{srcDst},
                                                             Rows(mean, step), Rows(invVar, step));
    return zimStsOk;
}

ZimStatus zimsLogGaussMaxMultiMix_32f_D2L(const Zim32f* const* meanRows, const Zim32f* const* invVarRows,
                                          const Zim32f* src, int width, const Zim32f* val, Zim32f* srcDst, int height)
{
    if (ZimStatus fault = firstFault(anyNull(meanRows, invVarRows, src, val, srcDst), anyBelowOne(width, height)))
        return fault;
    scoreGaussians<SquareByInverse<F8>, FromDoubledConstant>(src, width, height, val, KeepGreater{srcDst},
                                                             Rows(meanRows), Rows(invVarRows));
    return zimStsOk;
}

ZimStatus zimsLogGaussMaxMultiMix_64f_D2(const Zim64f* mean, const Zim64f* invVar, int step, const Zim64f* src,
                                         int width, const Zim64f* val, Zim64f* srcDst, int height)
{
    if (ZimStatus fault =
            firstFault(strideBelow(step, width), anyNull(mean, invVar, src, val, srcDst), anyBelowOne(width, height)))
        return fault;
    scoreGaussians<SquareByInverse<D4>, FromHalvedSum>(src, width, height, val, KeepGreater{srcDst}, Rows(mean, step),
                                                       Rows(invVar, step));
    return zimStsOk;
}

ZimStatus zimsLogGaussMaxMultiMix_64f_D2L(const Zim64f* const* meanRows, const Zim64f* const* invVarRows,
                                          const Zim64f* src, int width, const Zim64f* val, Zim64f* srcDst, int height)
{
    if (ZimStatus fault = firstFault(anyNull(meanRows, invVarRows, src, val, srcDst), anyBelowOne(width, height)))
        return fault;
    scoreGaussians<SquareByInverse<D4>, FromHalvedSum>(src, width, height, val, KeepGreater{srcDst}, Rows(meanRows),
                                                       Rows(invVarRows));
    return zimStsOk;
}

// ---- Folded by log-domain addition

ZimStatus zimsLogGaussAddMultiMix_32f_D2(const Zim32f* mean, const Zim32f* invVar, int step, const Zim32f* src,
                                         int width, const Zim32f* val, Zim32f* srcDst, int height)
{
    if (ZimStatus fault =
            firstFault(strideBelow(step, width), anyNull(mean, invVar, src, val, srcDst), anyBelowOne(width, height)))
        return fault;
    addScores<gaussianBlock>(srcDst, height,
                             scoresOfGaussians<SquareByInverse<F8>, FromDoubledConstant>(
                                 src, width, val, Rows(mean, step), Rows(invVar, step)));
    return zimStsOk;
}

ZimStatus zimsLogGaussAddMultiMix_32f_D2L(const Zim32f* const* meanRows, const Zim32f* const* invVarRows,
                                          const Zim32f* src, int width, const Zim32f* val, Zim32f* srcDst, int height)
{
    if (ZimStatus fault = firstFault(anyNull(meanRows, invVarRows, src, val, srcDst), anyBelowOne(width, height)))
        return fault;
    addScores<gaussianBlock>(
        srcDst, height,
        scoresOfGaussians<SquareByInverse<F8>, FromDoubledConstant>(src, width, val, Rows(meanRows), Rows(invVarRows)));
    return zimStsOk;
}

ZimStatus zimsLogGaussAddMultiMix_64f_D2(const Zim64f* mean, const Zim64f* invVar, int step, const Zim64f* src,
                                         int width, const Zim64f* val, Zim64f* srcDst, int height)
{
    if (ZimStatus fault =
            firstFault(strideBelow(step, width), anyNull(mean, invVar, src, val, srcDst), anyBelowOne(width, height)))
        return fault;
    addScores<gaussianBlock>(
        srcDst, height,
        scoresOfGaussians<SquareByInverse<D4>, FromHalvedSum>(src, width, val, Rows(mean, step), Rows(invVar, step)));
    return zimStsOk;
}

ZimStatus zimsLogGaussAddMultiMix_64f_D2L(const Zim64f* const* meanRows, const Zim64f* const* invVarRows,
                                          const Zim64f* src, int width, const Zim64f* val, Zim64f* srcDst, int height)
{
    if (ZimStatus fault = firstFault(anyNull(meanRows, invVarRows, src, val, srcDst), anyBelowOne(width, height)))
        return fault;
    addScores<gaussianBlock>(
        srcDst, height,
        scoresOfGaussians<SquareByInverse<D4>, FromHalvedSum>(src, width, val, Rows(meanRows), Rows(invVarRows)));
    return zimStsOk;
}

// ---- Older name

ZimStatus zimsLogGaussAdd2_32f_D2(const Zim32f* mean, const Zim32f* invVar, int step, const Zim32f* src, int width,
                                  const Zim32f* val, Zim32f* srcDst, int height)
{
    return zimsLogGaussAddMultiMix_32f_D2(mean, invVar, step, src, width, val, srcDst, height);
}
